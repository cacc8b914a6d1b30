// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdio>

/// The entry of every fuzz target, which libFuzzer and the replay call once for each input. Always returns 0: the
/// sanitizers or require() report faults.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Ends the program with a message unless @p condition holds, so that the fuzzer keeps the input.
inline void require(bool condition, const char* what)
{
    if (!condition)
        qFatal("violated: %s", what);
}

/// Returns the bytes of an input. Disables Qt's messages except fatal ones, as a fuzzer causes millions of them.
inline QByteArray inputOf(const std::uint8_t* data, std::size_t size)
{
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type == QtFatalMsg)
            std::fprintf(stderr, "%s\n", qUtf8Printable(text));
    });
    return {reinterpret_cast<const char*>(data), static_cast<int>(size)};
}

/// A reader's drive, for code that reads files. Removed when the process ends; fuzz/run creates it in memory.
class Drive final
{
public:
    Drive() { require(m_folder.isValid() && QDir(m_folder.path()).mkdir("MISC"), "a folder can be created"); }

    QString path() const { return m_folder.path(); }
    QString misc() const { return m_folder.path() + "/MISC"; }

    /// Replaces a file in MISC and returns its path.
    QString write(const QString& name, const QByteArray& bytes) const
    {
        QFile file(misc() + '/' + name);
        require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush(),
                "a file can be written");
        return file.fileName();
    }

private:
    QTemporaryDir m_folder;
};
