// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/reader/TrafficReplay.h"

#include "tools/reader/ReaderDrive.h"

#include <algorithm>

TrafficReplay::TrafficReplay(ReaderDrive& drive, const QVector<TrafficEntry>& entries, bool instant, QObject* parent)
    : QObject(parent)
    , m_drive(drive)
    , m_entries(entries)
    , m_instant(instant)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        playNext();
        waitForNext();
    });
    connect(&m_drive, &ReaderDrive::commandWritten, this, &TrafficReplay::onCommandWritten);
    connect(&m_drive, &ReaderDrive::failed, this, &TrafficReplay::failed);
}

void TrafficReplay::start()
{
    while (atAnswer())
        playNext();
    m_drive.showStatus();
    m_drive.listen();
    // The plug-in's commands contain its patient's key, so the replay needs a patient with the same one.
    const QByteArray query = QByteArrayLiteral("Command=BTISPAIRED ");
    for (const TrafficEntry& entry : m_entries) {
        const int at = entry.isCommand() && entry.bytes ? entry.bytes->indexOf(query) : -1;
        if (at < 0)
            continue;
        Q_EMIT logged(QString("the patient is \"%1\"").arg(QString::fromUtf8(entry.bytes->mid(at + query.size()))));
        break;
    }
}

bool TrafficReplay::atAnswer() const
{
    // A removed command file, as with the whole drive, isn't a command to wait for.
    return m_next < m_entries.size() && !(m_entries.at(m_next).isCommand() && m_entries.at(m_next).bytes);
}

void TrafficReplay::onCommandWritten(const QByteArray& bytes)
{
    // A computer that is faster than the recorded one finds the drive in the same state.
    m_timer.stop();
    while (atAnswer())
        playNext();

    const auto found = std::find_if(m_entries.cbegin() + m_next, m_entries.cend(), [&bytes](const TrafficEntry& entry) {
        return entry.isCommand() && entry.bytes == bytes;
    });
    const QString command = QString::fromUtf8(bytes).section('\n', 1);
    if (found == m_entries.cend()) {
        Q_EMIT logged(QString("doesn't answer \"%1\": the rest of the recording has no such command").arg(command));
        return;
    }
    Q_EMIT logged(QString("answers \"%1\" as recorded at %2 ms").arg(command).arg(found->ms));
    m_next = static_cast<int>(found - m_entries.cbegin()) + 1;
    waitForNext();
}

void TrafficReplay::waitForNext()
{
    if (!atAnswer())
        return;
    const qint64 pause = m_entries.at(m_next).ms - m_entries.at(m_next - 1).ms;
    m_timer.start(m_instant ? 0 : static_cast<int>(pause));
}

void TrafficReplay::playNext()
{
    const TrafficEntry& entry = m_entries.at(m_next++);
    if (entry.isCommand())
        return;
    const std::optional<QByteArray> content = entry.content();
    if (entry.isStatus() && content)
        m_drive.setStatus({*content});
    else if (content)
        m_drive.replaceFile(entry.name(), *content);
    else
        m_drive.removeFile(entry.name());
}
