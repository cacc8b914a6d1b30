// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/reader/ReaderMemory.h"
#include "workbench/reader/Scenario.h"
#include "workbench/traffic/ReaderCommand.h"

#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <functional>
#include <optional>

class ReaderDrive;

/// Plays the device reader on a drive. One command is at work at a time: a new one takes the place of an unfinished
/// one, as a reader has no queue. Lives on one thread, whose event loop carries it.
class ReaderSimulator final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ReaderSimulator)

public:
    /// The drive is open already, not owned, and outlives this object. With @p instant every duration is 0.
    ReaderSimulator(ReaderDrive& drive, const Scenario& scenario, bool instant, QObject* parent = nullptr);

    /// Takes up what an earlier run has kept, writes the first status, the firmware log and the device list, and
    /// listens. False with a sentence for the user if the kept pairings can't be read or written.
    bool start(QString* error);

    /// Pairs a pump with a patient at start(), whatever the scenario or an earlier run says.
    void pairBeforehand(const QString& serialNumber, const QString& patientId);

Q_SIGNALS:
    /// One line of what the reader does, for people.
    void logged(const QString& line);
    /// The reader can't go on.
    void failed(const QString& error);

private:
    /// What a command comes to: it takes a time, and then fails with a code or has an effect and a result.
    struct Plan
    {
        int durationMs = 0;
        int failCode = 0;
        std::function<QString()> effect;
    };

    void onCommandWritten(const QByteArray& bytes);
    void begin(const ReaderCommand& command);
    void dropCommand();
    void showRunning();
    void onProgress();
    void finish();

    bool leavesAt(const QString& moment) const;
    QString leaving() const;
    void leaveWhenSeen();
    void leave();
    void comeBack();

    static Plan overLink(const Pump& pump, const Plan& plan);
    Plan planFor(const ReaderCommand& command);
    Plan planSearch(const ReaderCommand& command);
    Plan planPair(const ReaderCommand& command);
    Plan planConfirm(const ReaderCommand& command);
    Plan planRead(const ReaderCommand& command);
    Plan planIsPaired(const ReaderCommand& command);
    Plan planDelete(const ReaderCommand& command);
    Plan planReassign(const ReaderCommand& command);
    Plan planAbort(const ReaderCommand& command);
    QString publishExchangeFile(const Pump& pump);
    void growExchangeFile();
    bool keepMemory();

    Pump* find(const QString& serialNumber);
    void pair(const QString& serialNumber, const QString& patientId);
    void writeDeviceList();
    void writeFirmwareLogs(const QString& version);
    void showFirstStatus();
    void showAtOnce(const QString& command, const QString& word);
    void setStatus(const QString& command, const QString& word, const QString& result = {}, int error = 0);
    int duration(int milliseconds) const;
    void fail(const QString& error);

    ReaderDrive& m_drive;
    const Scenario m_scenario;
    const bool m_instant;
    FaultSet m_faults;
    ReaderMemory m_memory;
    QHash<QString, QString> m_pairedBeforehand;
    QSet<QString> m_seen;
    int m_statusCount = 0;
    bool m_hasFailed = false;

    QString m_active;
    ActiveFaults m_activeFaults;
    Plan m_plan;
    QTimer m_step;
    QTimer m_progress;
    QElapsedTimer m_running;
    std::function<void()> m_next;
    /// Called some time after a trigger has made the latest status visible, so that the computer has read it.
    std::function<void()> m_whenSeen;
    std::optional<ReaderCommand> m_toConfirm;
    /// The bytes of the latest status, and of the one ahead of the command at work.
    QByteArray m_status;
    QByteArray m_oldStatus;
    bool m_isStatusSpoilt = false;
    bool m_isListSpoilt = false;
    bool m_isLeaving = false;
    QTimer m_return;
    QTimer m_growth;
    QString m_growingFile;
    QByteArray m_growingRest;
    int m_growingPiece = 0;
};
