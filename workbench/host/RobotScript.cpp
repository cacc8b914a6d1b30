// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/host/RobotScript.h"

#include "workbench/host/HostDatabase.h"
#include "workbench/host/Robot.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QKeySequence>

#include <algorithm>
#include <optional>

namespace {

using std::chrono::milliseconds;

constexpr milliseconds DefaultLimit{10000};
constexpr double MaxLimitSeconds = 3600;
constexpr int MaxIncludeDepth = 8;

/// Splits a line into words; nothing if a quote isn't closed or touches the word beside it.
std::optional<QStringList> wordsOf(const QString& line)
{
    QStringList words;
    int at = 0;
    while (at < line.size()) {
        if (line.at(at).isSpace()) {
            ++at;
            continue;
        }
        QString word;
        if (line.at(at) == '"') {
            for (++at; at < line.size() && line.at(at) != '"'; ++at) {
                if (line.at(at) == '\\' && at + 1 < line.size()) {
                    ++at;
                    word += line.at(at) == 'n' ? QChar('\n') : line.at(at);
                } else {
                    word += line.at(at);
                }
            }
            if (at == line.size())
                return std::nullopt;
            ++at;
            if (at < line.size() && !line.at(at).isSpace())
                return std::nullopt;
        } else {
            for (; at < line.size() && !line.at(at).isSpace(); ++at) {
                if (line.at(at) == '"')
                    return std::nullopt;
                word += line.at(at);
            }
        }
        words.append(word);
    }
    return words;
}

std::optional<milliseconds> limitOf(const QString& seconds)
{
    bool isNumber = false;
    const double value = seconds.toDouble(&isNumber);
    if (!isNumber || !(value > 0) || value > MaxLimitSeconds)
        return std::nullopt;
    return milliseconds(static_cast<milliseconds::rep>(value * 1000));
}

/// "title T" and "text T" in any order, from a position on.
bool areBoxTexts(const QStringList& words, int from)
{
    if ((words.size() - from) % 2 != 0)
        return false;
    for (int i = from; i < words.size(); i += 2)
        if (words.at(i) != "title" && words.at(i) != "text")
            return false;
    return true;
}

bool isNumber(const QString& word)
{
    bool isInteger = false;
    return word.toInt(&isInteger) >= 0 && isInteger;
}

/// The forms of a condition: COUNT is a number, any other word in capitals is any text.
const QStringList ConditionForms{"dialog WINDOW open|closed",
                                 "imports COUNT",
                                 "imports COUNT PUID",
                                 "diary PUID",
                                 "log TEXT",
                                 "NAME text equals|contains TEXT",
                                 "NAME rows COUNT",
                                 "NAME page PAGE",
                                 "NAME hidden|enabled|disabled"};

bool hasForm(const QStringList& words, const QString& form)
{
    const QStringList parts = form.split(' ');
    bool isGood = words.size() == parts.size();
    for (int i = 0; isGood && i < words.size(); ++i)
        isGood = parts.at(i) == "COUNT"
                     ? isNumber(words.at(i))
                     : parts.at(i) == parts.at(i).toUpper() || parts.at(i).split('|').contains(words.at(i));
    return isGood;
}

bool isCondition(const QStringList& words)
{
    if (words.first() == "box")
        return areBoxTexts(words, 1);
    return std::any_of(ConditionForms.cbegin(), ConditionForms.cend(),
                       [&words](const QString& form) { return hasForm(words, form); });
}

QString whatIsWrong(const RobotStep& step)
{
    const auto range = Robot::wordsAfter(step.verb);
    if (!range)
        return QString("unknown step '%1'").arg(step.verb);
    const auto [min, max] = *range;
    if (step.words.size() < min || step.words.size() > max) {
        const QString count = min == max ? QString::number(min) : QString("%1 to %2").arg(min).arg(max);
        return QString("'%1' takes %2 words, not %3").arg(step.verb, count).arg(step.words.size());
    }
    if ((step.verb == "wait" || step.verb == "expect") && !isCondition(step.words))
        return "none of the conditions: box [title T] [text T], " + ConditionForms.join(", ");
    if (step.verb == "answer" && !areBoxTexts(step.words, 1))
        return "'answer' takes a button, then 'title T' and 'text T'";
    if ((step.verb == "limit" || step.verb == "pause") && !limitOf(step.words.at(0)))
        return QString("'%1' isn't a time in seconds, above 0 and up to 3600").arg(step.words.at(0));
    if (step.verb == "key" && !RobotScript::keyCombination(step.words.at(0)))
        return QString("there is no key '%1'").arg(step.words.at(0));
    if (step.verb == "patient")
        return HostDatabase::whatIsWrongWith({step.words.at(0), step.words.mid(1)});
    return {};
}

} // namespace

std::optional<int> RobotScript::keyCombination(QString name)
{
    if (name.endsWith("Escape"))
        name.chop(3); // Qt knows it as "Esc"
    const QKeySequence sequence = QKeySequence::fromString(name, QKeySequence::PortableText);
    if (sequence.count() != 1 || (sequence[0] & ~int(Qt::KeyboardModifierMask)) == Qt::Key_unknown)
        return std::nullopt;
    return sequence[0];
}

bool RobotScript::load(const QString& path, QString* error)
{
    m_name = path;
    m_steps.clear();
    return appendFile(path, 0, error) && hasSteps(error);
}

bool RobotScript::parse(const QString& name, const QString& text, QString* error)
{
    m_name = name;
    m_steps.clear();
    return append(name, text, 0, error) && hasSteps(error);
}

bool RobotScript::hasSteps(QString* error) const
{
    if (m_steps.isEmpty())
        *error = QString("%1: there is no step in it").arg(m_name);
    return !m_steps.isEmpty();
}

bool RobotScript::appendFile(const QString& path, int depth, QString* error)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly))
        return append(path, QString::fromUtf8(file.readAll()), depth, error);
    *error = QString("%1: %2").arg(path, file.errorString());
    return false;
}

bool RobotScript::append(const QString& name, const QString& text, int depth, QString* error)
{
    milliseconds limit = DefaultLimit;
    const QStringList lines = text.split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        const QString place = QString("%1:%2").arg(name).arg(i + 1);
        const auto refuse = [&](const QString& what) {
            *error = QString("%1: %2").arg(place, what);
            m_steps.clear();
            return false;
        };
        const QString line = lines.at(i).trimmed();
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        auto words = wordsOf(line);
        if (!words)
            return refuse("a quote isn't closed, or touches the word beside it");

        RobotStep step;
        step.place = place;
        step.line = i + 1;
        step.text = line;
        step.limit = limit;
        if (words->size() > 2 && words->at(words->size() - 2) == "within") {
            const auto ownLimit = limitOf(words->last());
            if (!ownLimit)
                return refuse("'within' takes seconds, above 0 and up to 3600");
            step.limit = *ownLimit;
            words->erase(words->end() - 2, words->end());
        }
        step.verb = words->takeFirst();
        step.words = *words;
        const QString wrong = whatIsWrong(step);
        if (!wrong.isEmpty())
            return refuse(wrong);
        if (step.verb == "pause")
            step.limit += *limitOf(step.words.at(0));
        if (step.verb == "limit") {
            limit = *limitOf(step.words.at(0));
        } else if (step.verb == "include") {
            if (depth == MaxIncludeDepth)
                return refuse("files include each other without an end");
            QString inner;
            if (!appendFile(QFileInfo(name).dir().filePath(step.words.at(0)), depth + 1, &inner))
                return refuse(inner);
        } else {
            m_steps.append(step);
        }
    }
    return true;
}
