// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/reader/ReaderSimulator.h"

#include "tools/reader/ReaderDrive.h"
#include "tools/reader/ReaderFiles.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

const QString Running = "running";
const QString Failed = "failed";
const QString Done = "done";
const QString NoCommand = "NONE";
const QString NoPump = "0";
const int MaxSerialInName = 64;
const QString SecondLog = ReaderNames::FirmwareLog + ".1";
/// Longer than the interval between two reads of the status, so that the computer has read what a trigger made visible.
const int SeenAfterMs = 300;
const int GrowEveryMs = 100;
const int GrowingPieces = 10;

/// The reader's own error codes. The plug-in has no texts for those below 30.
enum ReaderError {
    NothingToConfirm = 20,
    DeclinedByUser = 21,
    UserTimedOut = 22,
    NotPaired = 24,
    NoPatient = 25,
    PumpNotFound = 31,
    LinkLost = 32,
    AlreadyPaired = 124,
};

QString memoryFile(const ReaderDrive& drive)
{
    return drive.path() + "/.merivo-reader.json";
}

QString exchangeName(const Pump& pump, int number)
{
    QString serial;
    // The number makes the name unique; the serial number is cut because file names have a maximum length.
    for (const QChar c : pump.serialNumber.left(MaxSerialInName))
        serial += c.unicode() < 0x80 && c.isLetterOrNumber() ? c : '-';
    return QString("I%1_%2.xml").arg(serial).arg(number, 4, 10, QChar('0'));
}

} // namespace

ReaderSimulator::ReaderSimulator(ReaderDrive& drive, const Scenario& scenario, bool instant, QObject* parent)
    : QObject(parent)
    , m_drive(drive)
    , m_scenario(scenario)
    , m_instant(instant)
    , m_faults(scenario.faults)
{
    m_step.setSingleShot(true);
    m_step.setTimerType(Qt::PreciseTimer);
    connect(&m_step, &QTimer::timeout, this, [this] { std::exchange(m_next, nullptr)(); });
    connect(&m_progress, &QTimer::timeout, this, &ReaderSimulator::onProgress);
    m_return.setSingleShot(true);
    connect(&m_return, &QTimer::timeout, this, &ReaderSimulator::restore);
    m_growth.setInterval(GrowEveryMs);
    connect(&m_growth, &QTimer::timeout, this, &ReaderSimulator::growExchangeFile);
    connect(&m_drive, &ReaderDrive::triggered, this, [this] {
        if (!m_whenSeen || !m_drive.isStatusShown())
            return;
        m_next = std::exchange(m_whenSeen, nullptr);
        m_step.start(SeenAfterMs);
    });
    connect(&m_drive, &ReaderDrive::commandWritten, this, &ReaderSimulator::onCommandWritten);
    connect(&m_drive, &ReaderDrive::failed, this, &ReaderSimulator::fail);
}

void ReaderSimulator::pairAtStart(const QString& serialNumber, const QString& patientId)
{
    m_pairedAtStart.insert(serialNumber, patientId);
}

bool ReaderSimulator::start(QString* error)
{
    if (!loadMemory(memoryFile(m_drive), m_scenario.pumps, &m_memory, error))
        return false;
    for (auto it = m_pairedAtStart.cbegin(); it != m_pairedAtStart.cend(); ++it) {
        if (!find(it.key())) {
            *error = QString("there is no pump \"%1\" to pair").arg(it.key());
            return false;
        }
        pair(it.key(), it.value());
    }
    m_pairedAtStart.clear();
    m_statusCount = 0;
    ++m_memory.starts;
    if (!saveMemory(memoryFile(m_drive), m_memory, error))
        return false;

    m_activeFaults = m_faults.take({});
    const QString version = m_activeFaults.value("old-firmware", m_scenario.firmware);
    writeFirmwareLogs(version);
    writeDeviceList();
    showFirstStatus();
    m_drive.listen();
    Q_EMIT logged(QString("firmware %1, start %2").arg(version).arg(m_memory.starts));
    return true;
}

void ReaderSimulator::showFirstStatus()
{
    // Closed before the file is replaced, as Windows requires.
    if (QFile shown(m_drive.filePath(ReaderNames::Status)); shown.open(QIODevice::ReadOnly))
        m_status = shown.readAll();
    if (m_activeFaults.contains("left-running"))
        showAtOnce(m_activeFaults.value("left-running"), Running);
    else if (!isRunning(m_status))
        showAtOnce(NoCommand, Done);
    else // The reader no longer knows the command, but doesn't rewrite the file before the next one.
        Q_EMIT logged("kept the status of a command that an earlier run didn't finish");
}

void ReaderSimulator::showAtOnce(const QString& command, const QString& word)
{
    setStatus(command, word);
    m_drive.showStatus();
}

void ReaderSimulator::onCommandWritten(const QByteArray& bytes)
{
    QString fault;
    const std::optional<ReaderCommand> command = parseCommandFile(bytes, &fault);
    if (command)
        begin(*command);
    else
        Q_EMIT logged("refused a command file: " + fault);
}

void ReaderSimulator::begin(const ReaderCommand& command)
{
    Q_EMIT logged(QString("received %1").arg(command.word));
    const bool isVanishing = m_isVanishing;
    cancelCommand();
    if (isVanishing) {
        vanish();
        return;
    }
    m_activeFaults.clear();
    if (std::exchange(m_statusNeedsReset, false))
        showAtOnce(NoCommand, Done);
    if (std::exchange(m_listNeedsReset, false))
        writeDeviceList();
    // Any other command cancels a pairing whose code the user hasn't confirmed.
    if (command.word != "BTPAIRCONFIRM")
        m_toConfirm.reset();
    m_active = command.word;
    m_activeFaults = m_faults.take(command.word);
    m_oldStatus = m_status;
    if (m_activeFaults.contains("blocked-trigger"))
        m_drive.block(m_drive.triggerPath(), m_activeFaults.value("blocked-trigger").toInt());
    if (m_activeFaults.contains("blocked-command"))
        m_drive.block(m_drive.commandPath(), m_activeFaults.value("blocked-command").toInt());
    if (vanishesAt("command")) {
        vanish();
        return;
    }
    if (m_activeFaults.contains("no-start")) {
        Q_EMIT logged(QString("doesn't answer %1: fault no-start").arg(command.word));
        return;
    }

    const bool isVerdict = command.word == "BTPAIRCONFIRM" && m_toConfirm;
    const Pump* pump = find(isVerdict ? m_toConfirm->serialNumber : command.serialNumber);
    m_plan = planFor(command);
    if (pump && m_plan.failCode == 0 && pump->errors.contains(command.word)) {
        m_plan.failCode = pump->errors.value(command.word);
        m_plan.durationMs /= 2;
    }
    if (m_activeFaults.contains("fail"))
        m_plan.failCode = m_activeFaults.value("fail").toInt();
    if (m_activeFaults.contains("fail-without-code"))
        m_plan.failCode = NoErrorCode;

    m_next = [this] {
        showRunning();
    };
    m_step.start(duration(m_scenario.times.pickup));
}

void ReaderSimulator::cancelCommand()
{
    m_step.stop();
    m_progress.stop();
    m_whenSeen = nullptr;
    m_isVanishing = false;
    if (!m_active.isEmpty())
        Q_EMIT logged(QString("cancelled %1").arg(m_active));
    m_active.clear();
}

void ReaderSimulator::showRunning()
{
    if (!m_activeFaults.contains("no-running"))
        setStatus(m_active, Running);
    m_running.start();
    m_plan.durationMs = duration(m_plan.durationMs);
    if (m_scenario.times.progress > 0 && m_plan.durationMs > 0)
        m_progress.start(m_scenario.times.progress);
    if (vanishesAt("running"))
        vanishWhenSeen();
    else if (m_activeFaults.contains("foreign-abort"))
        m_whenSeen = [this] {
            cancelCommand();
            setStatus("ABORT", Done);
        };
    if (m_whenSeen || m_activeFaults.contains("no-end"))
        return;
    m_next = [this] {
        finish();
    };
    m_step.start(m_plan.durationMs);
}

void ReaderSimulator::onProgress()
{
    const qint64 percent = std::min<qint64>(100, 100 * m_running.elapsed() / m_plan.durationMs);
    if (!m_activeFaults.contains("no-running"))
        setStatus(m_active, Running, QString("%1%").arg(percent));
}

void ReaderSimulator::finish()
{
    m_progress.stop();
    QString result;
    if (m_plan.failCode == 0 && m_plan.effect)
        result = m_plan.effect();
    m_listNeedsReset = m_activeFaults.contains("list-missing") || m_activeFaults.contains("list-cut") ||
                       m_activeFaults.contains("list-devices");
    if (m_listNeedsReset)
        writeDeviceList();
    // A change that couldn't be saved isn't shown as done.
    if (m_hasFailed)
        return;
    setStatus(m_active, m_plan.failCode == 0 ? Done : Failed, result, m_plan.failCode);
    m_active.clear();
    if (vanishesAt("done"))
        vanishWhenSeen();
}

bool ReaderSimulator::vanishesAt(const QString& moment) const
{
    return vanishFault().section(',', 0, 0) == moment;
}

QString ReaderSimulator::vanishFault() const
{
    return m_activeFaults.value("vanish", m_activeFaults.value("vanish-folder"));
}

void ReaderSimulator::vanishWhenSeen()
{
    m_isVanishing = true;
    m_whenSeen = [this] {
        vanish();
    };
}

/// Loses the current command and keeps the memory, like an unplugged reader.
void ReaderSimulator::vanish()
{
    cancelCommand();
    m_growth.stop();
    m_toConfirm.reset();
    m_seen.clear();
    m_statusNeedsReset = false;
    m_listNeedsReset = false;
    if (!m_drive.removeDrive(m_activeFaults.contains("vanish")))
        return;
    Q_EMIT logged("drive removed");
    const int awayMs = vanishFault().section(',', 1).toInt();
    if (awayMs > 0)
        m_return.start(awayMs);
}

void ReaderSimulator::restore()
{
    QString error;
    if (!m_drive.open(&error) || !start(&error))
        fail(error);
}

/// Returns the plan, or its failure if the link to the pump breaks before its end.
ReaderSimulator::Plan ReaderSimulator::overLink(const Pump& pump, const Plan& plan)
{
    return plan.durationMs > pump.linkHoldsMs ? Plan{pump.linkHoldsMs, LinkLost, {}} : plan;
}

ReaderSimulator::Plan ReaderSimulator::planFor(const ReaderCommand& command)
{
    static const QHash<QString, Plan (ReaderSimulator::*)(const ReaderCommand&)> plans{
        {"SEARCH", &ReaderSimulator::planSearch},           {"BTPAIR", &ReaderSimulator::planPair},
        {"BTPAIRCONFIRM", &ReaderSimulator::planConfirm},   {"BTREAD", &ReaderSimulator::planRead},
        {"BTISPAIRED", &ReaderSimulator::planIsPaired},     {"BTDELETEADDR", &ReaderSimulator::planDelete},
        {"BTPUMPREASSIGN", &ReaderSimulator::planReassign}, {"ABORT", &ReaderSimulator::planAbort},
    };
    return (this->*plans.value(command.word))(command);
}

ReaderSimulator::Plan ReaderSimulator::planAbort(const ReaderCommand& /*command*/)
{
    return {m_scenario.times.abort, 0, {}};
}

ReaderSimulator::Plan ReaderSimulator::planIsPaired(const ReaderCommand& command)
{
    return {m_scenario.times.isPaired, 0, [this, patientId = command.patientId] {
                for (const Pump& pump : qAsConst(m_memory.pumps)) {
                    if (!patientId.isEmpty() && pump.patientId == patientId)
                        return pump.serialNumber;
                }
                return NoPump;
            }};
}

ReaderSimulator::Plan ReaderSimulator::planSearch(const ReaderCommand& /*command*/)
{
    return {m_scenario.times.search, 0, [this] {
                m_seen.clear();
                for (const Pump& pump : qAsConst(m_memory.pumps)) {
                    if (pump.inRange)
                        m_seen.insert(pump.serialNumber);
                }
                writeDeviceList();
                return QString::number(m_seen.size());
            }};
}

ReaderSimulator::Plan ReaderSimulator::planPair(const ReaderCommand& command)
{
    const auto fails = [this](int code) {
        return Plan{m_scenario.times.connect, code, {}};
    };
    const Pump* pump = find(command.serialNumber);
    if (!isPatientId(command.patientId))
        return fails(NoPatient);
    if (!pump || pump->address != command.address)
        return fails(PumpNotFound);
    // Answered from the reader's memory, also if the pump is out of range.
    if (!pump->patientId.isEmpty())
        return fails(AlreadyPaired);
    if (!pump->inRange)
        return fails(PumpNotFound);
    return overLink(*pump, {m_scenario.times.pair, 0, [this, command, code = pump->confirmationCode] {
                                m_toConfirm = command;
                                return code;
                            }});
}

ReaderSimulator::Plan ReaderSimulator::planConfirm(const ReaderCommand& command)
{
    const std::optional<ReaderCommand> pairing = std::exchange(m_toConfirm, std::nullopt);
    if (!pairing)
        return {m_scenario.times.confirm, NothingToConfirm, {}};
    if (!command.accepted)
        return {m_scenario.times.confirm, 0, {}};

    const Pump& pump = *find(pairing->serialNumber);
    const int limit = m_scenario.times.userLimit;
    if (pump.user == PumpUser::DoesNothing || pump.userTakesMs > limit)
        return overLink(pump, {limit, UserTimedOut, {}});
    if (pump.user == PumpUser::Declines)
        return overLink(pump, {pump.userTakesMs, DeclinedByUser, {}});
    if (pump.user == PumpUser::WalksAway)
        return overLink(pump, {pump.userTakesMs, LinkLost, {}});
    return overLink(pump, {pump.userTakesMs + m_scenario.times.confirm, 0, [this, pairing] {
                               pair(pairing->serialNumber, pairing->patientId);
                               return pairing->serialNumber;
                           }});
}

ReaderSimulator::Plan ReaderSimulator::planRead(const ReaderCommand& command)
{
    const Pump* pump = find(command.serialNumber);
    if (!pump || pump->patientId.isEmpty() || !pump->inRange)
        return {m_scenario.times.connect, PumpNotFound, {}};

    return overLink(*pump, {m_scenario.times.read, 0, [this, pump = *pump] {
                                return publishExchangeFile(pump);
                            }});
}

QString ReaderSimulator::publishExchangeFile(const Pump& pump)
{
    m_growth.stop();
    const QStringList older = QDir(m_drive.filePath()).entryList({ReaderNames::ExchangeFilter});
    for (const QString& name : older)
        m_drive.removeFile(name);
    if (m_activeFaults.contains("no-exchange-file"))
        return {};

    const QByteArray bytes = exchangeFileXml(pump, m_scenario.exchange, m_scenario.seed);
    if (m_activeFaults.contains("two-exchange-files"))
        m_drive.replaceFile(exchangeName(pump, ++m_memory.readouts), bytes);
    const QString name = exchangeName(pump, ++m_memory.readouts);
    if (m_activeFaults.contains("exchange-folder")) {
        QDir().mkdir(m_drive.filePath(name));
    } else if (m_activeFaults.contains("exchange-grows")) {
        m_growingFile = m_drive.filePath(name);
        m_growingRest = bytes;
        m_growingPiece = bytes.size() / GrowingPieces + 1;
        m_growth.start();
        growExchangeFile();
    } else {
        m_drive.replaceFile(name, bytes);
    }
    keepMemory();
    return name;
}

void ReaderSimulator::growExchangeFile()
{
    QFile file(m_growingFile);
    const QByteArray piece = m_growingRest.left(m_growingPiece);
    m_growingRest.remove(0, m_growingPiece);
    if (!file.open(QIODevice::Append) || file.write(piece) != piece.size() || !file.flush())
        fail(QString("%1: %2").arg(m_growingFile, file.errorString()));
    if (m_growingRest.isEmpty())
        m_growth.stop();
}

bool ReaderSimulator::keepMemory()
{
    QString error;
    const bool isKept = saveMemory(memoryFile(m_drive), m_memory, &error);
    if (!isKept)
        fail(error);
    return isKept;
}

ReaderSimulator::Plan ReaderSimulator::planReassign(const ReaderCommand& command)
{
    const Pump* pump = find(command.serialNumber);
    if (!isPatientId(command.patientId))
        return {m_scenario.times.reassign, NoPatient, {}};
    if (!pump)
        return {m_scenario.times.reassign, PumpNotFound, {}};
    // An unpaired pump must be paired first, as its user has to compare the code.
    if (pump->patientId.isEmpty())
        return {m_scenario.times.reassign, NotPaired, {}};
    return {m_scenario.times.reassign, 0, [this, command] {
                pair(command.serialNumber, command.patientId);
                return command.serialNumber;
            }};
}

ReaderSimulator::Plan ReaderSimulator::planDelete(const ReaderCommand& command)
{
    if (!find(command.serialNumber))
        return {m_scenario.times.remove, PumpNotFound, {}};
    return {m_scenario.times.remove, 0, [this, serialNumber = command.serialNumber] {
                pair(serialNumber, {});
                return serialNumber;
            }};
}

Pump* ReaderSimulator::find(const QString& serialNumber)
{
    const auto found = std::find_if(m_memory.pumps.begin(), m_memory.pumps.end(),
                                    [&](const Pump& pump) { return pump.serialNumber == serialNumber; });
    return found == m_memory.pumps.end() ? nullptr : found;
}

void ReaderSimulator::pair(const QString& serialNumber, const QString& patientId)
{
    m_memory.pair(serialNumber, patientId);
    if (keepMemory())
        writeDeviceList();
}

void ReaderSimulator::writeDeviceList()
{
    QVector<Pump> listed;
    std::copy_if(m_memory.pumps.cbegin(), m_memory.pumps.cend(), std::back_inserter(listed),
                 [this](const Pump& pump) { return !pump.patientId.isEmpty() || m_seen.contains(pump.serialNumber); });
    while (listed.size() < m_activeFaults.value("list-devices").toInt()) {
        Pump pump;
        pump.serialNumber = QString("FILL-%1").arg(listed.size(), 6, 10, QChar('0'));
        pump.address = QString("00:00:%1").arg(listed.size(), 8, 10, QChar('0'));
        listed.append(pump);
    }
    QByteArray bytes = deviceListXml(listed);
    if (m_activeFaults.contains("list-cut"))
        bytes.truncate(m_activeFaults.value("list-cut").toInt());
    if (m_activeFaults.contains("list-missing"))
        m_drive.removeFile(ReaderNames::DeviceList);
    else
        m_drive.replaceFile(ReaderNames::DeviceList, bytes);
}

void ReaderSimulator::writeFirmwareLogs(const QString& version)
{
    QByteArray text = firmwareLogText(version);
    if (m_activeFaults.contains("log-binary")) {
        QRandomGenerator random(m_scenario.seed);
        text.resize(4096);
        std::generate(text.begin(), text.end(), [&random] { return static_cast<char>(random.bounded(256)); });
    }
    m_drive.removeFile(ReaderNames::FirmwareLog);
    m_drive.removeFile(SecondLog);
    if (!m_activeFaults.contains("log-missing"))
        m_drive.replaceFile(ReaderNames::FirmwareLog, text);
    if (m_activeFaults.contains("log-several"))
        m_drive.replaceFile(SecondLog, firmwareLogText(m_activeFaults.value("log-several")));
}

void ReaderSimulator::setStatus(const QString& command, const QString& word, const QString& result, int error)
{
    // The counter distinguishes two equal answers.
    if (!m_activeFaults.contains("same-header"))
        ++m_statusCount;
    const QString header = QString("QD17-C RemoteControl File %1-%2")
                               .arg(m_memory.starts, 4, 10, QChar('0'))
                               .arg(m_statusCount, 6, 10, QChar('0'));
    QString shownCommand = m_activeFaults.value("wrong-word", command);
    if (m_activeFaults.contains("lower-case-word"))
        shownCommand = shownCommand.toLower();
    const QString shownWord = m_activeFaults.value("unknown-status-word", word);
    QByteArray text = statusText({header, shownCommand, shownWord, result, error});
    if (m_activeFaults.contains("header-only"))
        text = header.toUtf8() + m_oldStatus.mid(m_oldStatus.indexOf('\n'));
    if (m_activeFaults.contains("unchanged-status") && word != Running)
        text = m_oldStatus;
    if (m_activeFaults.contains("empty-status"))
        text.clear();
    if (!m_activeFaults.contains("stale-status")) {
        ShownStatus status{text};
        status.triggers = m_activeFaults.value("stale-until", "1").toInt();
        status.firstBytes = m_activeFaults.value("half-status").toInt();
        status.isFolder = m_activeFaults.contains("folder-status");
        m_statusNeedsReset = text.isEmpty() || status.isFolder;
        m_status = text;
        m_drive.setStatus(status);
    }
    Q_EMIT logged(QString("%1 %2, result \"%3\", error %4").arg(command, shownWord, result).arg(error));
}

int ReaderSimulator::duration(int milliseconds) const
{
    return (m_instant ? 0 : milliseconds) + m_activeFaults.value("slow").toInt();
}

void ReaderSimulator::fail(const QString& error)
{
    m_hasFailed = true;
    m_step.stop();
    m_progress.stop();
    m_growth.stop();
    Q_EMIT failed(error);
}
