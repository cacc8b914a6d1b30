// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/ICommandHandler.h"

#include <QObject>

class HostDatabase;
class HostDeviceAdmin;
class HostLog;
class IImportDataCmd;
class PatientEvents;

/// The result of a command, with the sentence for the user.
struct ImportOutcome
{
    enum Kind {
        Stored,   ///< the file is in the database
        Repeated, ///< the patient has an import of the same bytes already; nothing was stored
        Refused   ///< the command isn't supported or fails a check; nothing was stored
    };

    Kind kind = Refused;
    QString sentence;
};
Q_DECLARE_METATYPE(ImportOutcome)

/// "CommandHandlerExtensionPoint": executes the commands of plug-ins. Supports only the import. GUI thread only.
class ImportHandler final : public QObject, public ICommandHandler
{
    Q_OBJECT

public:
    ImportHandler(HostDatabase& database, PatientEvents& events, HostLog& log, const HostDeviceAdmin& deviceAdmin,
                  QObject* parent = nullptr);

    /// Sets the device state that imports are stored with when the reader isn't accessed by a drive, as in a
    /// simulation.
    void setSimulation(bool isSimulation) { m_isSimulation = isSimulation; }

    /// Takes ownership of the command and deletes it. Logs the result, emits finished() and publishes the event.
    /// Returns true if the file is in the database, also if it was before.
    bool execute(ICommand* command) override;

Q_SIGNALS:
    void finished(const ImportOutcome& outcome);

private:
    ImportOutcome carryOut(const IImportDataCmd& command);
    QString deviceState() const;

    HostDatabase& m_database;
    PatientEvents& m_events;
    HostLog& m_log;
    const HostDeviceAdmin& m_deviceAdmin;
    bool m_isSimulation = false;
};
