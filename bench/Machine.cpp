// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "bench/Machine.h"

#include "bench/Report.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <chrono>
#include <random>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>

#include <ctime>
#endif
#ifdef __GLIBC__
#include <malloc.h>
#endif

long peakMemory()
{
    QFile file("/proc/self/status");
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = file.readAll();
    const int place = text.indexOf("VmHWM:");
    return place < 0 ? 0 : text.mid(place + 6, 32).simplified().split(' ').constFirst().toLong();
}

double threadMilliseconds()
{
#ifdef Q_OS_UNIX
    timespec time{};
    if (::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time) == 0)
        return 1e3 * static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_nsec);
#endif
    return -1;
}

double workMilliseconds()
{
    const double time = threadMilliseconds();
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return time >= 0 ? time : std::chrono::duration<double, std::milli>(now).count();
}

bool bareRead([[maybe_unused]] const char* trigger, [[maybe_unused]] const char* status)
{
#ifdef Q_OS_UNIX
    const int written = ::open(trigger, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (written < 0)
        return false;
    ::close(written);

    const int read = ::open(status, O_RDONLY | O_CLOEXEC);
    if (read < 0)
        return false;
    char bytes[4096];
    const ssize_t size = ::read(read, bytes, sizeof bytes);
    ::close(read);
    return size > 0;
#else
    return false;
#endif
}

void keepFreedMemory()
{
#ifdef __GLIBC__
    constexpr int Never = 1 << 30; // bytes
    ::mallopt(M_MMAP_THRESHOLD, Never);
    ::mallopt(M_TRIM_THRESHOLD, Never);
    ::mallopt(M_TOP_PAD, 64 << 20);
#endif
}

QString memoryFolder()
{
    const QString memory = "/dev/shm";
    return QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
}

bool writeRandomFile(const QString& path, int mebibytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    std::mt19937 random(1); // NOLINT(cert-msc51-cpp): the same bytes in each call
    QByteArray bytes(1024 * 1024, Qt::Uninitialized);
    for (int i = 0; i < mebibytes; ++i) {
        for (char& byte : bytes)
            byte = static_cast<char>(random());
        if (file.write(bytes) != bytes.size())
            return false;
    }
    return true;
}

std::optional<std::vector<double>> runChild(const QString& argument)
{
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(), {"--child", argument});
    if (!child.waitForFinished(-1) || child.exitStatus() != QProcess::NormalExit || child.exitCode() != 0)
        return std::nullopt;
    std::vector<double> numbers;
    for (const QByteArray& number : child.readAllStandardOutput().simplified().split(' '))
        numbers.push_back(number.toDouble());
    return numbers;
}

std::optional<QString> childArgument(int argc, char** argv)
{
    if (argc != 3 || qstrcmp(argv[1], "--child") != 0)
        return std::nullopt;
    disableLog();
    return QFile::decodeName(argv[2]);
}
