// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "base/Logger.h"

#include "base/QueuedCall.h"
#include "hostapi/IServices.h"

#include <QCoreApplication>
#include <QEvent>
#include <QLoggingCategory>
#include <QStringList>
#include <QThread>

namespace {

constexpr int ValueLevel = 4;

const QLoggingCategory& category()
{
    static const QLoggingCategory instance("plugin.merivoconnections");
    return instance;
}

/// The category for measurements. No record uses it.
[[maybe_unused]] const QLoggingCategory& profileCategory()
{
    static const QLoggingCategory instance("plugin.merivoconnections.profile"); // GCOVR_EXCL_LINE
    return instance;
}

QtMsgType messageTypeForChannel(const QString& channel)
{
    if (channel == QLatin1String("Info") || channel == QLatin1String("txt"))
        return QtInfoMsg;
    if (channel == QLatin1String("Warning"))
        return QtWarningMsg;
    if (channel == QLatin1String("Error") || channel == QLatin1String("err"))
        return QtCriticalMsg;
    return QtDebugMsg;
}

QDebug streamFor(QtMsgType type)
{
    const QMessageLogger logger(nullptr, 0, nullptr, category().categoryName());
    switch (type) {
    case QtInfoMsg:
        return logger.info();
    case QtWarningMsg:
        return logger.warning();
    case QtCriticalMsg:
        return logger.critical();
    default:
        return logger.debug();
    }
}

} // namespace

Logger* Logger::instance(IPlugin* plugin, IServices* services)
{
    static Logger logger(plugin, services);
    return &logger;
}

Logger::Logger(IPlugin* plugin, IServices* services)
    : m_plugin(plugin)
    , m_services(services)
{}

Logger::~Logger()
{
    m_plugin = nullptr;
    m_services = nullptr;
}

void Logger::write(const QString& message, const QString& channel, const QString& detail1, const QString& detail2)
{
    const QtMsgType type = messageTypeForChannel(channel);
    if (category().isEnabled(type)) {
        // Empty details are joined too: programs that read the log rely on the "; ; " after a record without details.
        const QString text = QStringList{message, detail1, detail2}.join(QStringLiteral("; "));
        streamFor(type).noquote() << "[MC]" << text;
    }

    if (!m_services)
        return;

    if (QThread::currentThread() != thread()) {
        invokeQueued(this, [this, message, channel, detail1, detail2] {
            m_services->logLine(m_plugin, channel, message, detail1, detail2);
        });
        return;
    }
    // Records that another thread has written before must reach the host first.
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
    m_services->logLine(m_plugin, channel, message, detail1, detail2);
}

quintptr Logger::logValue(const QString& value1, const QString& value2, const QString& value3, const QString& value4,
                          const QString& value5)
{
    return m_services ? m_services->logValue(ValueLevel, value1, value2, value3, value4, value5) : 0;
}
