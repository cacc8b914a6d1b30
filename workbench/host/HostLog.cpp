// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/host/HostLog.h"

#include "workbench/support/Platform.h"

#include <QBrush>
#include <QColor>
#include <QGuiApplication>
#include <QPalette>

#include <algorithm>

namespace {

constexpr int MaxRows = 20000;
constexpr int MaxWaiting = MaxRows / 10; ///< records that aren't shown yet
/// Nobody reads faster, and each showing lays the table out and draws it.
constexpr int ShowEveryMs = 50;

/// Colours that stand out on the table's background, a light or a dark one.
QColor colourOf(HostLog::Level level)
{
    const bool isDark = QGuiApplication::palette().color(QPalette::Base).lightness() < 128;
    switch (level) {
    case HostLog::Error:
        return isDark ? QColor(0xff, 0x8a, 0x80) : QColor(0xb0, 0x00, 0x20);
    case HostLog::Warning:
        return isDark ? QColor(0xff, 0xc1, 0x6b) : QColor(0x8a, 0x50, 0x00);
    case HostLog::Info:
        return isDark ? QColor(0x82, 0xb8, 0xff) : QColor(0x0b, 0x57, 0xa4);
    case HostLog::Trace:
        break;
    }
    return QGuiApplication::palette().color(QPalette::Text);
}

QString asidePath(const QString& path, int number)
{
    return number == 0 ? path : path + QLatin1Char('.') + QString::number(number);
}

/// True if the file's last line has no end, as a full disk can leave it.
bool isTorn(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.size() > 0 && file.seek(file.size() - 1) && file.read(1) != "\n";
}

QString onOneLine(QString text)
{
    return text.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
        .replace(QLatin1Char('\n'), QLatin1String("\\n"))
        .replace(QLatin1Char('\r'), QLatin1String("\\r"))
        .replace(QLatin1Char('\t'), QLatin1String("\\t"));
}

} // namespace

HostLog::HostLog(QObject* parent)
    : QAbstractTableModel(parent)
{
    m_showTimer.setSingleShot(true);
    m_showTimer.setInterval(ShowEveryMs);
    connect(&m_showTimer, &QTimer::timeout, this, &HostLog::showWaiting);
}

/// What the file lacks would be told nowhere else.
HostLog::~HostLog()
{
    m_rest = QDeadlineTimer();
    if (m_isWritten && !m_file.isOpen())
        takeFileUpAgain();
}

bool HostLog::openFile(const QString& path, QString* error, const LogLimits& limits)
{
    m_limits = limits;
    m_file.setFileName(path);
    m_isWritten = m_file.open(QIODevice::WriteOnly | QIODevice::Append);
    if (m_isWritten && isTorn(path))
        Platform::writeThrough(m_file, "\n");
    if (m_isWritten)
        return true;
    *error = QStringLiteral("log file '%1': %2").arg(path, m_file.errorString());
    return false;
}

void HostLog::write(const QString& source, const QString& channel, const QString& message, const QStringList& details)
{
    QStringList filled = details;
    filled.removeAll(QString());
    const Record record{QDateTime::currentDateTime(),    levelOf(channel), source, channel, message,
                        filled.join(QLatin1String("; "))};
    m_records.append(record);
    writeToFile(record);
    if (m_records.size() - m_rowCount >= MaxWaiting)
        showWaiting();
    else if (!m_showTimer.isActive())
        m_showTimer.start();
}

void HostLog::showWaiting()
{
    if (m_rowCount == m_records.size())
        return;
    if (m_records.size() > MaxRows) {
        beginRemoveRows({}, 0, MaxRows / 10 - 1);
        m_records.remove(0, MaxRows / 10);
        m_rowCount -= MaxRows / 10;
        endRemoveRows();
    }
    beginInsertRows({}, m_rowCount, m_records.size() - 1);
    m_rowCount = m_records.size();
    endInsertRows();
}

QByteArray HostLog::lineOf(const Record& record)
{
    const QStringList fields{record.time.toString(Qt::ISODateWithMs), record.channel, record.source,
                             onOneLine(record.message), onOneLine(record.details)};
    return fields.join(QLatin1Char('\t')).toUtf8() + '\n';
}

void HostLog::writeToFile(const Record& record)
{
    if (!m_isWritten)
        return;
    if (!m_file.isOpen() && !takeFileUpAgain()) {
        ++m_lacking;
        return;
    }
    const QByteArray line = lineOf(record);
    if (m_limits.bytes > 0 && m_file.size() > 0 && m_file.size() + line.size() > m_limits.bytes)
        startNewFile();
    if (Platform::writeThrough(m_file, line))
        return;
    const QString sentence = QStringLiteral("log file '%1': %2").arg(m_file.fileName(), m_file.errorString());
    m_file.close();
    m_rest.setRemainingTime(m_limits.restMs);
    m_lacking = 1;
    Q_EMIT fileFailed(sentence);
}

bool HostLog::takeFileUpAgain()
{
    if (!m_rest.hasExpired())
        return false;
    m_rest.setRemainingTime(m_limits.restMs);
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Append))
        return false;
    const Record gap{QDateTime::currentDateTime(),
                     Warning,
                     QStringLiteral("host"),
                     QStringLiteral("Warning"),
                     QStringLiteral("The log couldn't be written: %1 records are missing here.").arg(m_lacking),
                     {}};
    // Behind a line end, as what failed can have left a part of its line.
    if (Platform::writeThrough(m_file, '\n' + lineOf(gap)))
        return true;
    m_file.close();
    return false;
}

/// Where a file can't be put aside, the log goes on in the one that there is: no record is lost for a limit. The older
/// ones move up no further than to the gap that an attempt has left, or each attempt would push one more out.
void HostLog::startNewFile()
{
    const QString path = m_file.fileName();
    m_file.close();
    int free = 1;
    while (free < m_limits.files - 1 && QFile::exists(asidePath(path, free)))
        ++free;
    QFile::remove(asidePath(path, free));
    for (int number = free; number > 0; --number)
        QFile::rename(asidePath(path, number - 1), asidePath(path, number));
    m_file.open(QIODevice::WriteOnly | QIODevice::Append);
}

QStringList HostLog::files() const
{
    return filesAt(m_file.fileName(), m_limits.bytes > 0 ? m_limits.files : 1);
}

QStringList HostLog::filesAt(const QString& path, int most)
{
    QStringList paths;
    for (int number = most - 1; number >= 0; --number)
        if (QFile::exists(asidePath(path, number)))
            paths.append(asidePath(path, number));
    return paths;
}

bool HostLog::contains(const QString& text) const
{
    return std::any_of(m_records.cbegin(), m_records.cend(), [&text](const Record& record) {
        return record.message.contains(text) || record.details.contains(text);
    });
}

HostLog::Level HostLog::levelOf(const QString& channel)
{
    if (channel == QLatin1String("Info") || channel == QLatin1String("txt"))
        return Info;
    if (channel == QLatin1String("Warning"))
        return Warning;
    if (channel == QLatin1String("Error") || channel == QLatin1String("err"))
        return Error;
    return Trace;
}

QString HostLog::levelName(Level level)
{
    switch (level) {
    case Error:
        return tr("Error");
    case Warning:
        return tr("Warning");
    case Info:
        return tr("Information");
    case Trace:
        break;
    }
    return tr("Trace");
}

int HostLog::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rowCount;
}

int HostLog::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant HostLog::data(const QModelIndex& index, int role) const
{
    const Record& record = m_records.at(index.row());
    if (role == LevelRole)
        return record.level;
    if (role == Qt::ForegroundRole)
        return QBrush(colourOf(record.level));
    if (role == Qt::ToolTipRole && index.column() >= MessageColumn)
        return index.column() == MessageColumn ? record.message : record.details;
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case TimeColumn:
        return record.time.toString(QStringLiteral("hh:mm:ss.zzz"));
    case LevelColumn:
        return levelName(record.level);
    case SourceColumn:
        return record.source;
    case MessageColumn:
        return record.message;
    default:
        return record.details;
    }
}

QVariant HostLog::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    static const QStringList titles{tr("Time"), tr("Level"), tr("Source"), tr("Message"), tr("Details")};
    return titles.value(section);
}
