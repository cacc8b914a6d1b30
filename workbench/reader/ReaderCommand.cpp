// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/ReaderCommand.h"

#include <QTextCodec>

#include <algorithm>

namespace {

const QByteArray Header = QByteArrayLiteral("QD17-C RemoteControl File\n");

/// The argument text behind the word and its blank: S is a serial number that ends at the quote, B an address that ends
/// at a blank, P a patient id up to the file's end, V the verdict 0 or 1; anything else stands for itself.
struct CommandForm
{
    ReaderCommand::Kind kind;
    const char* word;
    const char* arguments;
};

const CommandForm Forms[] = {
    {ReaderCommand::Kind::Search, "SEARCH", "00100"},
    {ReaderCommand::Kind::Pair, "BTPAIR", "B \"S\" P"},
    {ReaderCommand::Kind::ConfirmPairing, "BTPAIRCONFIRM", "V"},
    {ReaderCommand::Kind::Read, "BTREAD", "\"S\""},
    {ReaderCommand::Kind::IsPaired, "BTISPAIRED", "P"},
    // The one command with a blank of its own in front of the quote, two in all.
    {ReaderCommand::Kind::DeleteAddress, "BTDELETEADDR", " \"S\""},
    {ReaderCommand::Kind::Reassign, "BTPUMPREASSIGN", "\"S\" P"},
    {ReaderCommand::Kind::Abort, "ABORT", ""},
};

const CommandForm* formOf(const QByteArray& word)
{
    const auto found = std::find_if(std::begin(Forms), std::end(Forms),
                                    [&word](const CommandForm& form) { return word == form.word; });
    return found == std::end(Forms) ? nullptr : found;
}

QString named(char byte)
{
    const auto code = static_cast<unsigned char>(byte);
    if (byte == '\n')
        return QStringLiteral("a line feed");
    if (byte == '\r')
        return QStringLiteral("a carriage return");
    if (byte == ' ')
        return QStringLiteral("a blank");
    if (code > 0x20 && code < 0x7f)
        return QStringLiteral("'%1'").arg(QLatin1Char(byte));
    return QStringLiteral("the byte 0x%1").arg(code, 2, 16, QLatin1Char('0'));
}

class Scanner
{
public:
    explicit Scanner(const QByteArray& bytes)
        : m_bytes(bytes)
    {}

    bool atEnd() const { return m_position == m_bytes.size(); }
    QString fault() const { return m_fault; }

    bool fail(const QString& what) { return fail(m_position, what); }

    bool fail(int position, const QString& what)
    {
        const int line = static_cast<int>(std::count(m_bytes.cbegin(), m_bytes.cbegin() + position, '\n')) + 1;
        const int column = line == 1 ? position + 1 : position - m_bytes.lastIndexOf('\n', position - 1);
        m_fault = QStringLiteral("line %1, column %2: %3").arg(line).arg(column).arg(what);
        return false;
    }

    bool literal(char byte)
    {
        if (atEnd())
            return fail(QStringLiteral("%1 expected, but the file ends").arg(named(byte)));
        if (m_bytes.at(m_position) != byte)
            return fail(QStringLiteral("%1 expected, found %2").arg(named(byte), named(m_bytes.at(m_position))));
        ++m_position;
        return true;
    }

    bool literal(const QByteArray& text)
    {
        return std::all_of(text.cbegin(), text.cend(), [this](char byte) { return literal(byte); });
    }

    /// Takes the text in front of @p stop, or all that is left without one. Control characters end it with a fault.
    bool text(std::optional<char> stop, QString* value)
    {
        const int from = m_position;
        while (!atEnd() && (!stop || m_bytes.at(m_position) != *stop)) {
            const auto code = static_cast<unsigned char>(m_bytes.at(m_position));
            if (code < 0x20 || code == 0x7f)
                return fail(QStringLiteral("%1 inside a value").arg(named(m_bytes.at(m_position))));
            ++m_position;
        }
        QTextCodec::ConverterState state;
        *value = QTextCodec::codecForName("UTF-8")->toUnicode(m_bytes.constData() + from, m_position - from, &state);
        if (state.invalidChars > 0 || state.remainingChars > 0)
            return fail(from, QStringLiteral("a value that isn't UTF-8"));
        return true;
    }

    bool end()
    {
        return atEnd() || fail(QStringLiteral("the file should end here, found %1").arg(named(m_bytes.at(m_position))));
    }

    int position() const { return m_position; }

private:
    const QByteArray m_bytes;
    int m_position = 0;
    QString m_fault;
};

bool scanArgument(Scanner& scanner, char form, ReaderCommand& command)
{
    const int from = scanner.position();
    QString verdict;
    switch (form) {
    case 'S':
        return scanner.text('"', &command.serialNumber);
    case 'B':
        return scanner.text(' ', &command.address) &&
               (!command.address.isEmpty() || scanner.fail(QStringLiteral("an address expected")));
    case 'P':
        // Nothing in the form tells a blank too many from an id that begins or ends with one, so neither passes.
        return scanner.text(std::nullopt, &command.patientId) &&
               (command.patientId == command.patientId.trimmed() ||
                scanner.fail(from, QStringLiteral("a blank at an end of the patient id")));
    case 'V':
        if (!scanner.text(std::nullopt, &verdict))
            return false;
        command.accepted = verdict == QLatin1String("1");
        return command.accepted || verdict == QLatin1String("0") ||
               scanner.fail(from, QStringLiteral("0 or 1 expected, found \"%1\"").arg(verdict));
    default:
        return scanner.literal(form);
    }
}

bool scanCommand(Scanner& scanner, ReaderCommand& command)
{
    if (!scanner.literal(Header) || !scanner.literal(QByteArrayLiteral("Command=")))
        return false;

    const int from = scanner.position();
    if (!scanner.text(' ', &command.word))
        return false;
    const CommandForm* form = formOf(command.word.toUtf8());
    if (!form)
        return scanner.fail(from, QStringLiteral("unknown command \"%1\"").arg(command.word));
    command.kind = form->kind;

    if (!scanner.literal(' '))
        return false;
    const QByteArray arguments(form->arguments);
    return std::all_of(arguments.cbegin(), arguments.cend(),
                       [&](char argument) { return scanArgument(scanner, argument, command); }) &&
           scanner.end();
}

} // namespace

std::optional<ReaderCommand> parseCommandFile(const QByteArray& bytes, QString* fault)
{
    Scanner scanner(bytes);
    ReaderCommand command;
    if (scanCommand(scanner, command))
        return command;
    *fault = scanner.fault();
    return std::nullopt;
}

bool isCommandWord(const QString& word)
{
    return formOf(word.toUtf8()) != nullptr;
}
