// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "host/ICommandHandler.h"

#include <QObject>

class HostDatabase;
class HostDeviceAdmin;
class HostLog;
class IImportDataCmd;
class PatientEvents;

/// What became of a command, with the sentence that the user sees.
struct ImportOutcome
{
    enum Kind {
        Stored,   ///< facts and bytes are in the database
        Repeated, ///< the same bytes are there already for this patient; nothing was stored
        Refused   ///< the command isn't one that is carried out, or fails a check; nothing was stored
    };

    Kind kind = Refused;
    QString sentence;
};
Q_DECLARE_METATYPE(ImportOutcome)

/// Carries out the commands of plug-ins: "CommandHandlerExtensionPoint". Only the import is known here. GUI thread
/// only.
class ImportHandler final : public QObject, public ICommandHandler
{
    Q_OBJECT

public:
    ImportHandler(HostDatabase& database, PatientEvents& events, HostLog& log, const HostDeviceAdmin& deviceAdmin,
                  QObject* parent = nullptr);

    /// How the reader is reached where it isn't by a drive, as for a simulation; stands in the facts of an import.
    void setSimulation(bool isSimulation) { m_isSimulation = isSimulation; }

    /// Takes the command over and frees it. Writes the outcome in the log, emits finished() and publishes the event.
    /// True if the file is in the database, also if it was before.
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
