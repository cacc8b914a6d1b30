// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "tools/reader/ReaderMemory.h"
#include "tools/reader/Scenario.h"
#include "tools/traffic/ReaderCommand.h"

#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <functional>
#include <optional>

class ReaderDrive;

/// Simulates the device reader on a drive. Executes one command at a time: a new one replaces an unfinished one, as a
/// reader has no queue. Needs a thread with an event loop.
class ReaderSimulator final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ReaderSimulator)

public:
    /// The drive must be open and outlive this object; it is not owned. With @p instant every duration is 0.
    ReaderSimulator(ReaderDrive& drive, const Scenario& scenario, bool instant, QObject* parent = nullptr);

    /// Loads the saved pairings, writes the first status, the firmware log and the device list, and starts to watch the
    /// drive. Returns false with an error for the user if the pairings can't be read or written.
    bool start(QString* error);

    /// Pairs a pump with a patient at start(), overriding the scenario and earlier runs.
    void pairAtStart(const QString& serialNumber, const QString& patientId);

Q_SIGNALS:
    /// Emitted with one line about what the reader does.
    void logged(const QString& line);
    /// Emitted when the reader can't continue.
    void failed(const QString& error);

private:
    /// The execution of a command: after a time it fails with a code, or has an effect and a result.
    struct Plan
    {
        int durationMs = 0;
        int failCode = 0;
        std::function<QString()> effect;
    };

    void onCommandWritten(const QByteArray& bytes);
    void begin(const ReaderCommand& command);
    void cancelCommand();
    void showRunning();
    void onProgress();
    void finish();

    bool vanishesAt(const QString& moment) const;
    QString vanishFault() const;
    void vanishWhenSeen();
    void vanish();
    void restore();

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
    QHash<QString, QString> m_pairedAtStart;
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
    /// Called some time after a trigger has made the latest status visible, when the computer has read it.
    std::function<void()> m_whenSeen;
    std::optional<ReaderCommand> m_toConfirm;
    /// The bytes of the latest status, and of the one before the current command.
    QByteArray m_status;
    QByteArray m_oldStatus;
    bool m_statusNeedsReset = false;
    bool m_listNeedsReset = false;
    bool m_isVanishing = false;
    QTimer m_return;
    QTimer m_growth;
    QString m_growingFile;
    QByteArray m_growingRest;
    int m_growingPiece = 0;
};
