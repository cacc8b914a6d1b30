// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The words of a command line: the input's lines.

#include "commands/CommandExt.h"
#include "commands/ModeData.h"
#include "commands/PatientData.h"
#include "fuzz/Target.h"

namespace {

/// A command that takes every option that there is.
class EveryOption final : public CommandExt
{
public:
    EveryOption()
        : CommandExt(nullptr)
    {}

    ICommand* command() override { return nullptr; }
    QString commandName() const override { return {}; }

    bool parseOption(QStringList& args) override
    {
        const QStringList before = args;
        const bool taken = m_mode.parseModeOption(args) || m_patient.parsePatientOption(args);
        require(args == before.mid(taken ? 2 : 0), "an option is taken with its value or left");
        return taken;
    }

private:
    ModeData m_mode;
    PatientData m_patient;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    silenceLog();
    const QStringList words = Input(data, size).takeText().split(QLatin1Char('\n'));
    QStringList left = words;
    EveryOption command;
    const bool understood = command.setArguments(left);

    require(left == words.mid(words.size() - left.size()), "what is left is the end");
    const bool atCommand = left.isEmpty() || !left.first().startsWith(QLatin1Char('-'));
    require(!understood || atCommand, "an option stops only as unknown");
    require(understood || left.size() < words.size(), "an unknown option is taken out");
    const QString line = command.commandLine();
    require(!line.contains(QLatin1Char('"')), "a command line has no double quotes");
    require(line.count(QLatin1Char('\'')) % 2 == 0, "single quotes come in pairs");
    require(line.isEmpty() == (left.size() == words.size()), "what was taken shows");
    return 0;
}
