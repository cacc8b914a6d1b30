// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/support/Platform.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QTextCodec>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <array>
#include <csignal>
#include <system_error>

#ifdef Q_OS_WIN
#include <QAbstractNativeEventFilter>

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <memory>
#endif

static volatile std::sig_atomic_t s_isStopRequested = 0;

#ifdef Q_OS_WIN
namespace {

/// Receives the message WM_CLOSE that QProcess::terminate() in another program posts to the main thread of this one.
class CloseFilter final : public QAbstractNativeEventFilter
{
    bool nativeEventFilter(const QByteArray& /*type*/, void* message, long* /*result*/) override
    {
        const MSG* received = static_cast<MSG*>(message);
        if (received->message == WM_CLOSE && !received->hwnd)
            s_isStopRequested = 1;
        return false;
    }
};

} // namespace
#endif

void Platform::prepareProgram()
{
#ifdef Q_OS_WIN
    // Lines end as on other systems, for programs that read them.
    for (std::FILE* stream : {stdout, stderr})
        if (_fileno(stream) >= 0)
            _setmode(_fileno(stream), _O_BINARY);
    // Qt 5's codec for code pages can't decode UTF-8, which the program's manifest selects as the code page.
    if (GetACP() == CP_UTF8)
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    // Qt's platform "offscreen" only finds fonts in this folder.
    if (qEnvironmentVariableIsEmpty("QT_QPA_FONTDIR"))
        qputenv("QT_QPA_FONTDIR", qgetenv("SystemRoot") + "/Fonts");
#endif
}

std::FILE* Platform::outputFor(std::FILE* stream)
{
#ifdef Q_OS_WIN
    if (_fileno(stream) < 0) {
        static std::FILE* const console = [] {
            AttachConsole(ATTACH_PARENT_PROCESS);
            return std::fopen("CONOUT$", "wb");
        }();
        return console ? console : stream;
    }
#endif
    return stream;
}

QStringList Platform::arguments(int argc, char** argv)
{
    QStringList arguments;
#ifdef Q_OS_WIN
    Q_UNUSED(argv)
    const std::unique_ptr<LPWSTR[], decltype(&LocalFree)> texts(CommandLineToArgvW(GetCommandLineW(), &argc),
                                                                LocalFree);
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromWCharArray(texts[static_cast<std::size_t>(i)]));
#else
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
#endif
    return arguments;
}

bool Platform::isWithoutDisplay()
{
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    constexpr std::array variables{"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"};
    return std::all_of(variables.begin(), variables.end(), qEnvironmentVariableIsEmpty);
#else
    return false;
#endif
}

bool Platform::isKnownNoise(const QString& message)
{
    constexpr std::array known{"This plugin does not support", "QStandardPaths: XDG_RUNTIME_DIR not set"};
    return std::any_of(known.begin(), known.end(), [&message](const char* start) { return message.startsWith(start); });
}

std::filesystem::path Platform::nativePath(const QString& path)
{
#ifdef Q_OS_WIN
    return std::filesystem::path(path.toStdWString());
#else
    return std::filesystem::path(QFile::encodeName(path).toStdString());
#endif
}

QString Platform::rename(const QString& from, const QString& to)
{
#ifdef Q_OS_WIN
    constexpr int MaxLockMs = 1000;
#else
    constexpr int MaxLockMs = 0;
#endif
    constexpr int RetryMs = 2;
    const QDeadlineTimer limit(MaxLockMs);
    std::error_code error;
    for (;;) {
        std::filesystem::rename(nativePath(from), nativePath(to), error);
        // The error depends on which of the two files is open.
        const bool isOpen = error == std::errc::permission_denied || error == std::errc::io_error;
        if (!isOpen || limit.hasExpired())
            break;
        QThread::msleep(RetryMs);
    }
    return error ? QString::fromStdString(error.message()) : QString();
}

QString Platform::localeCodecName()
{
    const QByteArray name = QTextCodec::codecForLocale()->name();
#ifdef Q_OS_WIN
    if (name == "System")
        return QString("code page %1").arg(GetACP());
#endif
    return QString::fromLatin1(name);
}

bool Platform::writeThrough(QFile& file, const QByteArray& bytes)
{
    // A write to a full disk can be partial, without an error in Qt. Writing the rest sets the error.
    return file.write(bytes) == bytes.size() && (file.flush() || file.flush());
}

void Platform::quitOnStopRequest()
{
    constexpr int CheckEveryMs = 50;
    for (const int signal : {SIGINT, SIGTERM})
        std::signal(signal, [](int) { s_isStopRequested = 1; });
#ifdef Q_OS_WIN
    static CloseFilter filter;
    qApp->installNativeEventFilter(&filter);
#endif
    auto* timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, qApp, [] {
        if (s_isStopRequested)
            QCoreApplication::quit();
    });
    timer->start(CheckEveryMs);
}
