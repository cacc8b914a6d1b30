// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/support/Platform.h"

#include <QCoreApplication>
#include <QFile>
#include <QTimer>

#include <algorithm>
#include <array>
#include <csignal>

static volatile std::sig_atomic_t s_isStopRequested = 0;

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
    auto* timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, qApp, [] {
        if (s_isStopRequested)
            QCoreApplication::quit();
    });
    timer->start(CheckEveryMs);
}
