// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/host/HostLog.h"

#include <QBrush>
#include <QColor>
#include <QGuiApplication>
#include <QPalette>

#include <algorithm>

namespace {

constexpr int MaxRows = 20000;
constexpr int MaxWaiting = MaxRows / 10; ///< the most records that wait for the table
/// Users don't read faster, and each update lays out and paints the table.
constexpr int ShowEveryMs = 50;

/// Returns a colour with enough contrast on the table's light or dark background.
QColor colourOf(HostLog::Level level)
{
    const bool isDark = QGuiApplication::palette().color(QPalette::Base).lightness() < 128;
    switch (level) {
    case HostLog::Error:
        return isDark ? "#ff8a80" : "#b00020";
    case HostLog::Warning:
        return isDark ? "#ffc16b" : "#8a5000";
    case HostLog::Info:
        return isDark ? "#82b8ff" : "#0b57a4";
    case HostLog::Trace:
        break;
    }
    return QGuiApplication::palette().color(QPalette::Text);
}

QString onOneLine(QString text)
{
    return text.replace('\\', "\\\\").replace('\n', "\\n").replace('\r', "\\r").replace('\t', "\\t");
}

} // namespace

HostLog::HostLog(QObject* parent)
    : QAbstractTableModel(parent)
{
    m_showTimer.setSingleShot(true);
    m_showTimer.setInterval(ShowEveryMs);
    connect(&m_showTimer, &QTimer::timeout, this, &HostLog::showWaiting);
}

bool HostLog::openFile(const QString& path, QString* error, const LogLimits& limits)
{
    if (m_file.open(path, limits))
        return true;
    *error = m_file.errorText();
    return false;
}

void HostLog::write(const QString& source, const QString& channel, const QString& message, const QStringList& details)
{
    QStringList filled = details;
    filled.removeAll(QString());
    const Record record{QDateTime::currentDateTime(), levelOf(channel), source, channel, message, filled.join("; ")};
    m_records.append(record);
    const QStringList fields{record.time.toString(Qt::ISODateWithMs), channel, source, onOneLine(message),
                             onOneLine(record.details)};
    if (!m_file.write(fields.join('\t').toUtf8() + '\n'))
        Q_EMIT fileFailed(m_file.errorText());
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

bool HostLog::contains(const QString& text) const
{
    return std::any_of(m_records.cbegin(), m_records.cend(), [&text](const Record& record) {
        return record.message.contains(text) || record.details.contains(text);
    });
}

HostLog::Level HostLog::levelOf(const QString& channel)
{
    if (channel == "Info" || channel == "txt")
        return Info;
    if (channel == "Warning")
        return Warning;
    if (channel == "Error" || channel == "err")
        return Error;
    return Trace;
}

QString HostLog::levelName(Level level)
{
    const QStringList names{tr("Trace"), tr("Information"), tr("Warning"), tr("Error")};
    return names.at(level);
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
        return record.time.toString("hh:mm:ss.zzz");
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
