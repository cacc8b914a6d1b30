// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/host/TrafficKeeper.h"

#include "workbench/reader/TrafficWatcher.h"
#include "workbench/support/Platform.h"

#include <QDateTime>
#include <QDir>
#include <QMap>
#include <QRegularExpression>

#include <functional>
#include <limits>
#include <memory>
#include <utility>

namespace {

const QString NameForm = QStringLiteral("traffic-%1.jsonl");
const QString TimeForm = QStringLiteral("yyyyMMdd-hhmmss-zzz");

/// Digits alone in the place of the time: what someone else has put into the folder stays, and goes into no report.
QStringList nameFilter()
{
    static const QRegularExpression Letter(QStringLiteral("[A-Za-z]"));
    return {NameForm.arg(QString(TimeForm).replace(Letter, QStringLiteral("[0-9]")))};
}

int sizeOf(const TrafficEntry& entry)
{
    return entry.bytes ? entry.bytes->size() : 0;
}

/// Of the content the size stays, and whether it differs from another.
void dropContent(TrafficEntry& entry)
{
    if (!entry.bytes)
        return;
    const uint mark = qHash(*entry.bytes) & uint(std::numeric_limits<int>::max());
    entry.filler = TrafficFiller{sizeOf(entry), static_cast<int>(mark)};
    entry.bytes.reset();
}

/// Lives on the keeper's thread, but for its making.
class TrafficStore final : public QObject
{
public:
    TrafficStore(const QString& folder, const TrafficLimits& limits, std::function<void(const QString&)> tellFailure)
        : m_folder(folder)
        , m_limits(limits)
        , m_tellFailure(std::move(tellFailure))
    {}
    ~TrafficStore() override { end(); }
    Q_DISABLE_COPY_MOVE(TrafficStore)

    void begin(const QString& drivePath)
    {
        end();
        m_state.clear();
        m_begin = 0;
        if (!openNext())
            return;
        m_watcher = std::make_unique<TrafficWatcher>(drivePath);
        connect(m_watcher.get(), &TrafficWatcher::changed, this, &TrafficStore::add);
        m_watcher->start();
    }

    void end()
    {
        if (m_watcher)
            m_watcher->stop();
        m_watcher.reset();
        m_file.close();
    }

private:
    void add(TrafficEntry entry)
    {
        if (!m_file.isOpen())
            return;
        if (sizeOf(entry) > m_limits.contentBytes)
            dropContent(entry);
        m_state.remove(entry.file);
        const bool isFull = m_file.size() + trafficLine(entry).size() > m_limits.fileBytes;
        if (isFull && m_file.size() > m_stateBytes && !nextFile(entry.ms))
            return;
        if (!entry.isCommand() && !entry.isTrigger() && (entry.bytes || entry.filler))
            m_state.insert(entry.file, entry);
        entry.ms -= m_begin;
        write(entry);
    }

    /// Goes on in another file, which begins with all that lies on the drive. Where that is much the largest contents
    /// are left out, so that half of the file is there for what happens.
    bool nextFile(qint64 ms)
    {
        m_begin = ms;
        if (!openNext())
            return false;
        QMultiMap<int, QString> bySize;
        for (auto it = m_state.cbegin(); it != m_state.cend(); ++it)
            bySize.insert(sizeOf(*it), it.key());
        for (const QString& file : qAsConst(bySize)) {
            TrafficEntry entry = *m_state.constFind(file);
            entry.ms = 0;
            if (m_file.size() + trafficLine(entry).size() > m_limits.fileBytes / 2)
                dropContent(entry);
            if (!write(entry))
                return false;
        }
        m_stateBytes = m_file.size();
        return true;
    }

    bool openNext()
    {
        m_file.close();
        m_stateBytes = 0;
        makeRoom();
        m_file.setFileName(m_folder.filePath(NameForm.arg(QDateTime::currentDateTime().toString(TimeForm))));
        return m_file.open(QIODevice::WriteOnly | QIODevice::Append) || fail();
    }

    bool write(const TrafficEntry& entry) { return Platform::writeThrough(m_file, trafficLine(entry)) || fail(); }

    bool fail()
    {
        const QString sentence = QStringLiteral("traffic file '%1': %2").arg(m_file.fileName(), m_file.errorString());
        m_file.close();
        m_tellFailure(sentence);
        return false;
    }

    /// Removes what is too old, and the oldest until there is room for one more file.
    void makeRoom()
    {
        QFileInfoList files = m_folder.entryInfoList(nameFilter(), QDir::Files, QDir::Name);
        qint64 total = m_limits.fileBytes;
        for (const QFileInfo& file : qAsConst(files))
            total += file.size();
        const QDateTime earliest = QDateTime::currentDateTime().addSecs(-3600LL * m_limits.hours);
        for (const QFileInfo& file : qAsConst(files)) {
            if (total <= m_limits.totalBytes && file.lastModified() >= earliest)
                continue;
            if (QFile::remove(file.filePath()))
                total -= file.size();
        }
    }

    const QDir m_folder;
    const TrafficLimits m_limits;
    const std::function<void(const QString&)> m_tellFailure;
    std::unique_ptr<TrafficWatcher> m_watcher;
    QMap<QString, TrafficEntry> m_state; // what lies on the drive by now
    QFile m_file;
    qint64 m_stateBytes = 0; // what the file began with
    qint64 m_begin = 0;      // of the file, in the watcher's time
};

} // namespace

TrafficKeeper::TrafficKeeper(const QString& folder, const TrafficLimits& limits, QObject* parent)
    : QObject(parent)
    , m_store(new TrafficStore(folder, limits, [this](const QString& sentence) { Q_EMIT failed(sentence); }))
{
    m_store->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_store, &QObject::deleteLater);
    m_thread.start();
}

TrafficKeeper::~TrafficKeeper()
{
    m_thread.quit();
    m_thread.wait();
}

void TrafficKeeper::begin(const QString& drivePath)
{
    auto* store = static_cast<TrafficStore*>(m_store);
    QMetaObject::invokeMethod(
        store, [store, drivePath] { store->begin(drivePath); }, Qt::QueuedConnection);
}

void TrafficKeeper::end()
{
    auto* store = static_cast<TrafficStore*>(m_store);
    QMetaObject::invokeMethod(
        store, [store] { store->end(); }, Qt::QueuedConnection);
}

QStringList TrafficKeeper::recordingsIn(const QString& folder)
{
    return QDir(folder).entryList(nameFilter(), QDir::Files, QDir::Name);
}
