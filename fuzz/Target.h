// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QtGlobal>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

/// The entry of every fuzz target, which libFuzzer and the replay call once for each input. A fault is told by the
/// sanitizers or by require(); 0 means that there was none.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Ends the program, by which a fuzzer knows that it has found something, with a message that says what isn't so.
inline void require(bool condition, const char* what)
{
    if (!condition)
        qFatal("not so: %s", what);
}

/// Takes values off the front of an input; zeros when it is used up.
class Input final
{
public:
    Input(const std::uint8_t* data, std::size_t size)
        : m_data(data)
        , m_size(size)
    {}

    bool isEmpty() const { return m_size == 0; }

    /// A value of a plain type, by its bytes.
    template <typename Type>
    Type take()
    {
        Type value{};
        const std::size_t count = qMin(sizeof value, m_size);
        if (count > 0)
            std::memcpy(&value, m_data, count);
        m_data += count;
        m_size -= count;
        return value;
    }

    /// All that is left, as UTF-8; what is none becomes replacement characters.
    QString takeText()
    {
        const QString text = QString::fromUtf8(reinterpret_cast<const char*>(m_data), static_cast<int>(m_size));
        m_size = 0;
        return text;
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_size;
};

/// Keeps Qt's messages to fatal ones, as a fuzzer prints millions of them.
inline void silenceLog()
{
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type == QtFatalMsg)
            std::fprintf(stderr, "%s\n", qUtf8Printable(text));
    });
}
