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
#include <memory>

class ExchangeFile;
class ReaderDrive;

/// The codes with which the simulated reader itself fails. Those below 30 are its own: no one else has a name for them.
namespace ReaderError {
inline constexpr int NothingToConfirm = 20;
inline constexpr int UserSaidNo = 21;
inline constexpr int UserSilent = 22;
inline constexpr int NotPaired = 24;
inline constexpr int NoPatient = 25;
inline constexpr int PumpNotFound = 31;
inline constexpr int LinkLost = 32;
inline constexpr int AlreadyPaired = 124;
} // namespace ReaderError

/// Plays the device reader on a drive. One command is at work at a time: a new one takes the place of an unfinished
/// one, as a reader has no queue. Lives on one thread, whose event loop carries it.
class ReaderSimulator final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ReaderSimulator)

public:
    /// The drive is open already, not owned, and outlives this object. With @p instant every duration is 0.
    ReaderSimulator(ReaderDrive& drive, const Scenario& scenario, bool instant, QObject* parent = nullptr);
    ~ReaderSimulator() override;

    /// Takes up what an earlier run has kept, writes the first status, the firmware log and the device list, and
    /// listens. False with a sentence for the user if the kept pairings can't be read or written.
    bool start(QString* error);

    /// Ties a pump to a patient before start(), whatever the scenario or an earlier run says.
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
    void giveUpAsAborted();

    /// Does @p next a while after the status that waits was seen, so that whoever polls has read it.
    void whenSeen(std::function<void()> next);
    void leaveWhenSeen();
    void leave();
    void comeBack();

    static Plan overLink(const Pump& pump, const Plan& plan);
    Plan planFor(const ReaderCommand& command);
    Plan planSearch();
    Plan planPair(const ReaderCommand& command);
    Plan planConfirm(bool accepted);
    Plan planRead(const ReaderCommand& command);
    Plan planReassign(const ReaderCommand& command);
    Plan planDelete(const ReaderCommand& command);
    QString publishExchangeFile(const Pump& pump);
    void beginToGrow(const QString& path);
    void growExchangeFile();

    Pump* find(const QString& serialNumber);
    void tie(const QString& serialNumber, const QString& patientId);
    void writeDeviceList();
    /// The pumps of the device list, and so many more that it has @p leastCount.
    QVector<Pump> listedPumps(int leastCount = 0) const;
    void spoilDeviceList();
    void writeFirmwareLogs(const QString& version, const Behaviour& behaviour);
    void showFirstStatus(const QString& leftRunning);
    void showNoCommand();
    void setStatus(const QString& word, const QString& result, int error);
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
    Behaviour m_behaviour;
    Plan m_plan;
    QTimer m_step;
    QTimer m_progress;
    QElapsedTimer m_running;
    std::function<void()> m_next;
    std::function<void()> m_whenSeen;
    std::unique_ptr<ExchangeFile> m_exchange;
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
