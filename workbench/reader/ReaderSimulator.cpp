// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/ReaderSimulator.h"

#include "workbench/reader/ExchangeFile.h"
#include "workbench/reader/ReaderDrive.h"
#include "workbench/reader/ReaderFiles.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

const QString Running = "running";
const QString Failed = "failed";
const QString Done = "done";
const QString NoPump = "0";
const int LongestSerialInName = 64;
/// Behind the name of an exchange file that is being written.
const QString Unfinished = ".part";
const QString SecondLog = ReaderNames::FirmwareLog + ".1";
/// Longer than the pause between two reads of the status, so one of them has seen what a trigger brought to light.
const int SeenAfterMs = 300;
const int GrowEveryMs = 100;
const int GrowingPieces = 10;

QString memoryFile(const ReaderDrive& drive)
{
    return drive.path() + "/.merivo-reader.json";
}

QString exchangeName(const Pump& pump, int number)
{
    QString serial;
    // The number tells the files apart; a name has an end, a serial number hasn't.
    for (const QChar c : pump.serialNumber.left(LongestSerialInName))
        serial += c.unicode() < 0x80 && c.isLetterOrNumber() ? c : '-';
    return QString("I%1_%2.xml").arg(serial).arg(number, 4, 10, QChar('0'));
}

void removeFiles(ReaderDrive& drive, const QString& filter)
{
    const QStringList names = QDir(drive.filePath()).entryList({filter}, QDir::Files | QDir::Dirs);
    for (const QString& name : names)
        drive.removeFile(name);
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
    connect(&m_return, &QTimer::timeout, this, &ReaderSimulator::comeBack);
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

ReaderSimulator::~ReaderSimulator() = default;

void ReaderSimulator::pairBeforehand(const QString& serialNumber, const QString& patientId)
{
    m_pairedBeforehand.insert(serialNumber, patientId);
}

bool ReaderSimulator::start(QString* error)
{
    if (!loadMemory(memoryFile(m_drive), m_scenario.pumps, &m_memory, error))
        return false;
    for (auto it = m_pairedBeforehand.cbegin(); it != m_pairedBeforehand.cend(); ++it) {
        if (!find(it.key())) {
            *error = QString("there is no pump \"%1\" to pair").arg(it.key());
            return false;
        }
        tie(it.key(), it.value());
    }
    m_pairedBeforehand.clear();
    m_statusCount = 0;
    ++m_memory.starts;
    if (!saveMemory(memoryFile(m_drive), m_memory, error))
        return false;

    m_behaviour = {};
    const Behaviour behaviour = m_faults.strike({});
    const QString version = behaviour.firmware.isEmpty() ? m_scenario.firmware : behaviour.firmware;
    writeFirmwareLogs(version, behaviour);
    writeDeviceList();

    removeFiles(m_drive, ReaderNames::ExchangeFilter + Unfinished);
    showFirstStatus(behaviour.leftRunning);
    m_drive.listen();
    Q_EMIT logged(QString("firmware %1, start %2").arg(version).arg(m_memory.starts));
    return true;
}

void ReaderSimulator::showFirstStatus(const QString& leftRunning)
{
    QFile shown(m_drive.filePath(ReaderNames::Status));
    if (shown.open(QIODevice::ReadOnly))
        m_status = shown.readAll();
    if (leftRunning.isEmpty() && isRunning(m_status)) {
        // The reader has forgotten the command, but as long as nobody asks it for more, nothing rewrites the file.
        Q_EMIT logged("left the status of a command that an earlier run didn't end");
        return;
    }
    if (leftRunning.isEmpty()) {
        showNoCommand();
        return;
    }
    m_active = leftRunning;
    setStatus(Running, {}, 0);
    m_drive.showStatus();
    m_active.clear();
}

void ReaderSimulator::showNoCommand()
{
    m_active = "NONE";
    setStatus(Done, {}, 0);
    m_drive.showStatus();
    m_active.clear();
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
    Q_EMIT logged(QString("took %1").arg(command.word));
    const bool isLeaving = m_isLeaving;
    dropCommand();
    if (isLeaving) {
        leave();
        return;
    }
    m_behaviour = {};
    if (std::exchange(m_isStatusSpoilt, false))
        showNoCommand();
    if (std::exchange(m_isListSpoilt, false))
        writeDeviceList();
    // A code that the user hasn't answered is given up by whatever else comes.
    if (command.kind != ReaderCommand::Kind::ConfirmPairing)
        m_toConfirm.reset();
    m_active = command.word;
    m_behaviour = m_faults.strike(command.word);
    m_oldStatus = m_status;
    if (m_behaviour.triggerBlockedMs)
        m_drive.block(m_drive.triggerPath(), *m_behaviour.triggerBlockedMs);
    if (m_behaviour.commandBlockedMs)
        m_drive.block(m_drive.commandPath(), *m_behaviour.commandBlockedMs);
    if (m_behaviour.leavesAt == LeavingMoment::Command) {
        leave();
        return;
    }
    if (!m_behaviour.answers) {
        Q_EMIT logged(QString("leaves %1 unanswered, as the fault no-start says").arg(command.word));
        return;
    }

    const bool isVerdict = command.kind == ReaderCommand::Kind::ConfirmPairing && m_toConfirm;
    const Pump* pump = find(isVerdict ? m_toConfirm->serialNumber : command.serialNumber);
    m_plan = planFor(command);
    if (pump && m_plan.failCode == 0 && pump->errors.contains(command.word)) {
        m_plan.failCode = pump->errors.value(command.word);
        m_plan.durationMs /= 2;
    }
    if (m_behaviour.failCode)
        m_plan.failCode = *m_behaviour.failCode;

    m_next = [this] {
        showRunning();
    };
    m_step.start(duration(m_scenario.times.pickup));
}

void ReaderSimulator::dropCommand()
{
    m_step.stop();
    m_progress.stop();
    m_whenSeen = nullptr;
    m_isLeaving = false;
    m_exchange.reset();
    if (!m_active.isEmpty())
        Q_EMIT logged(QString("dropped %1, which hadn't ended").arg(m_active));
    m_active.clear();
}

void ReaderSimulator::showRunning()
{
    if (m_behaviour.showsRunning)
        setStatus(Running, {}, 0);
    m_running.start();
    m_plan.durationMs = duration(m_plan.durationMs);
    if (m_scenario.times.progress > 0 && m_plan.durationMs > 0)
        m_progress.start(m_scenario.times.progress);
    if (m_behaviour.leavesAt == LeavingMoment::Running)
        leaveWhenSeen();
    else if (m_behaviour.abortsItself)
        whenSeen([this] { giveUpAsAborted(); });
    if (m_whenSeen || !m_behaviour.ends)
        return;
    m_next = [this] {
        finish();
    };
    m_step.start(m_plan.durationMs);
}

void ReaderSimulator::onProgress()
{
    const double part = std::min(1.0, double(m_running.elapsed()) / m_plan.durationMs);
    if (m_exchange)
        m_exchange->writeUpTo(part);
    if (m_behaviour.showsRunning)
        setStatus(Running, QString("%1%").arg(static_cast<int>(100 * part)), 0);
}

void ReaderSimulator::finish()
{
    m_progress.stop();
    QString result;
    if (m_plan.failCode == 0 && m_plan.effect)
        result = m_plan.effect();
    m_exchange.reset();
    // What couldn't be kept isn't told as done.
    if (m_hasFailed)
        return;
    spoilDeviceList();
    setStatus(m_plan.failCode == 0 ? Done : Failed, result, m_plan.failCode);
    m_active.clear();
    if (m_behaviour.leavesAt == LeavingMoment::Done)
        leaveWhenSeen();
}

void ReaderSimulator::giveUpAsAborted()
{
    dropCommand();
    m_active = "ABORT";
    setStatus(Done, {}, 0);
    m_active.clear();
}

void ReaderSimulator::whenSeen(std::function<void()> next)
{
    m_whenSeen = std::move(next);
}

void ReaderSimulator::leaveWhenSeen()
{
    m_isLeaving = true;
    whenSeen([this] { leave(); });
}

/// Unplugged, the reader loses what it was at, and keeps its memory.
void ReaderSimulator::leave()
{
    dropCommand();
    m_growth.stop();
    m_toConfirm.reset();
    m_seen.clear();
    m_isStatusSpoilt = false;
    m_isListSpoilt = false;
    if (!m_drive.goAway(m_behaviour.leavesWhole))
        return;
    Q_EMIT logged("took the drive away");
    if (m_behaviour.awayMs > 0)
        m_return.start(m_behaviour.awayMs);
}

void ReaderSimulator::comeBack()
{
    QString error;
    if (!m_drive.open(&error) || !start(&error))
        fail(error);
}

/// The plan, unless the link to the pump breaks before it is through.
ReaderSimulator::Plan ReaderSimulator::overLink(const Pump& pump, const Plan& plan)
{
    return plan.durationMs > pump.linkHoldsMs ? Plan{pump.linkHoldsMs, ReaderError::LinkLost, {}} : plan;
}

ReaderSimulator::Plan ReaderSimulator::planFor(const ReaderCommand& command)
{
    switch (command.kind) {
    case ReaderCommand::Kind::Search:
        return planSearch();
    case ReaderCommand::Kind::Pair:
        return planPair(command);
    case ReaderCommand::Kind::ConfirmPairing:
        return planConfirm(command.accepted);
    case ReaderCommand::Kind::Read:
        return planRead(command);
    case ReaderCommand::Kind::Reassign:
        return planReassign(command);
    case ReaderCommand::Kind::DeleteAddress:
        return planDelete(command);
    case ReaderCommand::Kind::IsPaired:
        return {m_scenario.times.isPaired, 0, [this, patientId = command.patientId] {
                    const auto found =
                        std::find_if(m_memory.pumps.cbegin(), m_memory.pumps.cend(), [&](const Pump& pump) {
                            return !patientId.isEmpty() && pump.patientId == patientId;
                        });
                    return found == m_memory.pumps.cend() ? NoPump : found->serialNumber;
                }};
    case ReaderCommand::Kind::Abort:
        break;
    }
    return {m_scenario.times.abort, 0, {}};
}

ReaderSimulator::Plan ReaderSimulator::planSearch()
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
        return fails(ReaderError::NoPatient);
    if (!pump || pump->address != command.address)
        return fails(ReaderError::PumpNotFound);
    // The reader's own memory says so, however far the pump is.
    if (!pump->patientId.isEmpty())
        return fails(ReaderError::AlreadyPaired);
    if (!pump->inRange)
        return fails(ReaderError::PumpNotFound);
    return overLink(*pump, {m_scenario.times.pair, 0, [this, command, code = pump->confirmationCode] {
                                m_toConfirm = command;
                                return code;
                            }});
}

ReaderSimulator::Plan ReaderSimulator::planConfirm(bool accepted)
{
    const std::optional<ReaderCommand> pairing = std::exchange(m_toConfirm, std::nullopt);
    if (!pairing)
        return {m_scenario.times.confirm, ReaderError::NothingToConfirm, {}};
    if (!accepted)
        return {m_scenario.times.confirm, 0, {}};

    const Pump& pump = *find(pairing->serialNumber);
    const int limit = m_scenario.times.userLimit;
    if (pump.user == PumpUser::DoesNothing || pump.userTakesMs > limit)
        return overLink(pump, {limit, ReaderError::UserSilent, {}});
    if (pump.user == PumpUser::Declines)
        return overLink(pump, {pump.userTakesMs, ReaderError::UserSaidNo, {}});
    if (pump.user == PumpUser::WalksAway)
        return overLink(pump, {pump.userTakesMs, ReaderError::LinkLost, {}});
    return overLink(pump, {pump.userTakesMs + m_scenario.times.confirm, 0, [this, pairing] {
                               tie(pairing->serialNumber, pairing->patientId);
                               return pairing->serialNumber;
                           }});
}

ReaderSimulator::Plan ReaderSimulator::planRead(const ReaderCommand& command)
{
    const Pump* pump = find(command.serialNumber);
    if (!pump || pump->patientId.isEmpty() || !pump->inRange)
        return {m_scenario.times.connect, ReaderError::PumpNotFound, {}};

    const QString beside = m_drive.filePath(exchangeName(*pump, m_memory.readouts + 1)) + Unfinished;
    m_exchange = std::make_unique<ExchangeFile>(beside, *pump, m_scenario);
    if (!m_exchange->open())
        fail(QString("%1: %2").arg(beside, m_exchange->errorString()));
    return overLink(*pump, {m_scenario.times.read, 0, [this, pump = *pump] {
                                return publishExchangeFile(pump);
                            }});
}

QString ReaderSimulator::publishExchangeFile(const Pump& pump)
{
    if (!m_exchange->finish()) {
        fail(QString("%1: %2").arg(m_exchange->path(), m_exchange->errorString()));
        return {};
    }
    m_growth.stop();
    removeFiles(m_drive, ReaderNames::ExchangeFilter);

    const ExchangeForm form = m_behaviour.exchange;
    if (form == ExchangeForm::NoFile)
        return {};
    if (form == ExchangeForm::TwoFiles)
        QFile::copy(m_exchange->path(), m_drive.filePath(exchangeName(pump, ++m_memory.readouts)));
    const QString name = exchangeName(pump, ++m_memory.readouts);
    const QString path = m_drive.filePath(name);
    if (form == ExchangeForm::Folder) {
        QDir().mkdir(path);
    } else if (form == ExchangeForm::GrowingFile) {
        beginToGrow(path);
    } else {
        m_drive.moveInto(m_exchange->path(), name);
    }
    QString error;
    if (!saveMemory(memoryFile(m_drive), m_memory, &error))
        fail(error);
    return name;
}

/// Gives the exchange file's bytes to the file @p path, a piece now and the others one by one.
void ReaderSimulator::beginToGrow(const QString& path)
{
    QFile whole(m_exchange->path());
    if (!whole.open(QIODevice::ReadOnly)) {
        fail(QString("%1: %2").arg(whole.fileName(), whole.errorString()));
        return;
    }
    m_growingRest = whole.readAll();
    m_growingPiece = m_growingRest.size() / GrowingPieces + 1;
    m_growingFile = path;
    m_growth.start();
    growExchangeFile();
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

ReaderSimulator::Plan ReaderSimulator::planReassign(const ReaderCommand& command)
{
    const Pump* pump = find(command.serialNumber);
    if (!isPatientId(command.patientId))
        return {m_scenario.times.reassign, ReaderError::NoPatient, {}};
    if (!pump)
        return {m_scenario.times.reassign, ReaderError::PumpNotFound, {}};
    // A pump without a pairing needs its code compared first.
    if (pump->patientId.isEmpty())
        return {m_scenario.times.reassign, ReaderError::NotPaired, {}};
    return {m_scenario.times.reassign, 0, [this, command] {
                tie(command.serialNumber, command.patientId);
                return command.serialNumber;
            }};
}

ReaderSimulator::Plan ReaderSimulator::planDelete(const ReaderCommand& command)
{
    if (!find(command.serialNumber))
        return {m_scenario.times.remove, ReaderError::PumpNotFound, {}};
    return {m_scenario.times.remove, 0, [this, serialNumber = command.serialNumber] {
                tie(serialNumber, {});
                return serialNumber;
            }};
}

Pump* ReaderSimulator::find(const QString& serialNumber)
{
    const auto found = std::find_if(m_memory.pumps.begin(), m_memory.pumps.end(),
                                    [&](const Pump& pump) { return pump.serialNumber == serialNumber; });
    return found == m_memory.pumps.end() ? nullptr : found;
}

void ReaderSimulator::tie(const QString& serialNumber, const QString& patientId)
{
    // A patient has one pump at most, so BTISPAIRED has one answer.
    for (Pump& pump : m_memory.pumps) {
        if (pump.serialNumber == serialNumber)
            pump.patientId = patientId;
        else if (pump.patientId == patientId)
            pump.patientId.clear();
    }
    QString error;
    if (!saveMemory(memoryFile(m_drive), m_memory, &error))
        fail(error);
    else
        writeDeviceList();
}

void ReaderSimulator::writeDeviceList()
{
    m_drive.replaceFile(ReaderNames::DeviceList, deviceListXml(listedPumps()));
}

QVector<Pump> ReaderSimulator::listedPumps(int leastCount) const
{
    QVector<Pump> listed;
    std::copy_if(m_memory.pumps.cbegin(), m_memory.pumps.cend(), std::back_inserter(listed),
                 [this](const Pump& pump) { return !pump.patientId.isEmpty() || m_seen.contains(pump.serialNumber); });
    while (listed.size() < leastCount) {
        Pump pump;
        pump.serialNumber = QString("FILL-%1").arg(listed.size(), 6, 10, QChar('0'));
        pump.address = QString("00:00:%1").arg(listed.size(), 8, 10, QChar('0'));
        listed.append(pump);
    }
    return listed;
}

/// What the fault in force makes of the list; the next command writes it anew.
void ReaderSimulator::spoilDeviceList()
{
    const int pumps = m_behaviour.listDevices;
    m_isListSpoilt = !m_behaviour.hasDeviceList || m_behaviour.listBytes || pumps > 0;
    if (pumps > 0)
        m_drive.replaceFile(ReaderNames::DeviceList, deviceListXml(listedPumps(pumps)));
    if (m_behaviour.listBytes)
        m_drive.replaceFile(ReaderNames::DeviceList, deviceListXml(listedPumps(pumps)).left(*m_behaviour.listBytes));
    if (!m_behaviour.hasDeviceList)
        m_drive.removeFile(ReaderNames::DeviceList);
}

void ReaderSimulator::writeFirmwareLogs(const QString& version, const Behaviour& behaviour)
{
    QByteArray text = firmwareLogText(version);
    if (behaviour.hasBinaryLog) {
        QRandomGenerator random(m_scenario.seed);
        text.resize(4096);
        std::generate(text.begin(), text.end(), [&random] { return static_cast<char>(random.bounded(256)); });
    }
    if (behaviour.hasFirmwareLog)
        m_drive.replaceFile(ReaderNames::FirmwareLog, text);
    else
        m_drive.removeFile(ReaderNames::FirmwareLog);
    if (behaviour.secondFirmware.isEmpty())
        m_drive.removeFile(SecondLog);
    else
        m_drive.replaceFile(SecondLog, firmwareLogText(behaviour.secondFirmware));
}

void ReaderSimulator::setStatus(const QString& word, const QString& result, int error)
{
    // Nothing else in the file would tell a second equal answer from the first.
    if (m_behaviour.changesHeader)
        ++m_statusCount;
    const QString header = QString("QD17-C RemoteControl File %1-%2")
                               .arg(m_memory.starts, 4, 10, QChar('0'))
                               .arg(m_statusCount, 6, 10, QChar('0'));
    const QString command = m_behaviour.commandWord.isEmpty() ? m_active : m_behaviour.commandWord;
    const QString shown = m_behaviour.statusWord.isEmpty() ? word : m_behaviour.statusWord;
    QByteArray text =
        statusText({header, m_behaviour.hasLowerCaseWord ? command.toLower() : command, shown, result, error});
    if (m_behaviour.changesHeaderAlone)
        text = header.toUtf8() + m_oldStatus.mid(m_oldStatus.indexOf('\n'));
    if (m_behaviour.endsWithOldStatus && word != Running)
        text = m_oldStatus;
    if (m_behaviour.emptiesStatus)
        text.clear();
    if (m_behaviour.refreshesStatus) {
        m_isStatusSpoilt = m_behaviour.emptiesStatus || m_behaviour.manner.isFolder;
        m_status = text;
        m_drive.setStatus(text, m_behaviour.manner);
    }
    Q_EMIT logged(QString("%1 %2, result \"%3\", error %4").arg(m_active, shown, result).arg(error));
}

int ReaderSimulator::duration(int milliseconds) const
{
    const qint64 slowed = qint64(m_instant ? 0 : milliseconds) + m_behaviour.extraMs;
    return int(std::min<qint64>(slowed, std::numeric_limits<int>::max()));
}

void ReaderSimulator::fail(const QString& error)
{
    m_hasFailed = true;
    m_step.stop();
    m_progress.stop();
    m_growth.stop();
    Q_EMIT failed(error);
}
