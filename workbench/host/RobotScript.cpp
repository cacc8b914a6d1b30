// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/host/RobotScript.h"

#include "workbench/host/HostDatabase.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QKeySequence>

#include <optional>

namespace {

using std::chrono::milliseconds;

constexpr milliseconds DefaultLimit{10000};
constexpr double MaxLimitSeconds = 3600;
constexpr int MaxIncludeDepth = 8;

struct Arity
{
    int least;
    int most;
};

/// How many words follow each verb.
const QHash<QString, Arity> Verbs{
    {QStringLiteral("answer"), {1, 5}}, {QStringLiteral("ask"), {1, 2}},         {QStringLiteral("click"), {1, 1}},
    {QStringLiteral("close"), {1, 1}},  {QStringLiteral("close-diary"), {0, 0}}, {QStringLiteral("drive"), {1, 1}},
    {QStringLiteral("expect"), {1, 5}}, {QStringLiteral("include"), {1, 1}},     {QStringLiteral("key"), {1, 2}},
    {QStringLiteral("limit"), {1, 1}},  {QStringLiteral("open"), {1, 1}},        {QStringLiteral("patient"), {2, 5}},
    {QStringLiteral("pause"), {1, 1}},  {QStringLiteral("picture"), {1, 2}},     {QStringLiteral("quit"), {0, 0}},
    {QStringLiteral("row"), {2, 2}},    {QStringLiteral("trigger"), {0, 1}},     {QStringLiteral("type"), {2, 2}},
    {QStringLiteral("wait"), {1, 5}},
};

const QStringList WidgetStates{QStringLiteral("visible"),  QStringLiteral("hidden"),  QStringLiteral("enabled"),
                               QStringLiteral("disabled"), QStringLiteral("checked"), QStringLiteral("unchecked"),
                               QStringLiteral("focused")};

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
        if (line.at(at) == QLatin1Char('"')) {
            for (++at; at < line.size() && line.at(at) != QLatin1Char('"'); ++at) {
                if (line.at(at) == QLatin1Char('\\') && at + 1 < line.size()) {
                    ++at;
                    word += line.at(at) == QLatin1Char('n') ? QChar(QLatin1Char('\n')) : line.at(at);
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
                if (line.at(at) == QLatin1Char('"'))
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
        if (words.at(i) != QLatin1String("title") && words.at(i) != QLatin1String("text"))
            return false;
    return true;
}

bool isNumber(const QString& word)
{
    bool isInteger = false;
    return word.toInt(&isInteger) >= 0 && isInteger;
}

/// What is wrong with the condition of a wait or an expect; empty: nothing.
QString whatIsWrongWithCondition(const QStringList& words)
{
    const QString& subject = words.at(0);
    if (subject == QLatin1String("box"))
        return areBoxTexts(words, 1) ? QString() : QStringLiteral("box takes 'title T' and 'text T'");
    if (words.size() < 2)
        return QStringLiteral("'%1' lacks its state").arg(subject);
    const QString& second = words.at(1);
    if (subject == QLatin1String("dialog")) {
        const bool isGood =
            words.size() == 3 && (words.at(2) == QLatin1String("open") || words.at(2) == QLatin1String("closed"));
        return isGood ? QString() : QStringLiteral("dialog takes a name and 'open' or 'closed'");
    }
    if (subject == QLatin1String("imports")) {
        const bool isGood = words.size() <= 3 && isNumber(second);
        return isGood ? QString() : QStringLiteral("imports takes a count and perhaps a patient");
    }
    if (subject == QLatin1String("diary") || subject == QLatin1String("log"))
        return words.size() == 2 ? QString() : QStringLiteral("%1 takes one word").arg(subject);
    if (second == QLatin1String("text")) {
        const bool isGood =
            words.size() == 4 && (words.at(2) == QLatin1String("equals") || words.at(2) == QLatin1String("contains"));
        return isGood ? QString() : QStringLiteral("text takes 'equals' or 'contains' and a text");
    }
    if (second == QLatin1String("rows"))
        return words.size() == 3 && isNumber(words.at(2)) ? QString() : QStringLiteral("rows takes a count");
    if (second == QLatin1String("page"))
        return words.size() == 3 ? QString() : QStringLiteral("page takes a name");
    if (words.size() == 2 && WidgetStates.contains(second))
        return {};
    return QStringLiteral("unknown state '%1'").arg(second);
}

QString whatIsWrong(const RobotStep& step)
{
    const auto verb = Verbs.constFind(step.verb);
    if (verb == Verbs.constEnd())
        return QStringLiteral("unknown step '%1'").arg(step.verb);
    if (step.words.size() < verb->least || step.words.size() > verb->most) {
        const QString count = verb->least == verb->most ? QString::number(verb->least)
                                                        : QStringLiteral("%1 to %2").arg(verb->least).arg(verb->most);
        return QStringLiteral("'%1' takes %2 words, not %3").arg(step.verb, count).arg(step.words.size());
    }
    if (step.verb == QLatin1String("wait") || step.verb == QLatin1String("expect"))
        return whatIsWrongWithCondition(step.words);
    if (step.verb == QLatin1String("answer") && !areBoxTexts(step.words, 1))
        return QStringLiteral("'answer' takes a button, then 'title T' and 'text T'");
    if ((step.verb == QLatin1String("limit") || step.verb == QLatin1String("pause")) && !limitOf(step.words.at(0)))
        return QStringLiteral("'%1' isn't a time in seconds, above 0 and up to 3600").arg(step.words.at(0));
    if (step.verb == QLatin1String("key") && !RobotScript::keyCombination(step.words.at(0)))
        return QStringLiteral("there is no key '%1'").arg(step.words.at(0));
    if (step.verb == QLatin1String("patient"))
        return HostDatabase::whatIsWrongWith({step.words.at(0), step.words.mid(1)});
    return {};
}

} // namespace

std::optional<int> RobotScript::keyCombination(QString name)
{
    if (name.endsWith(QLatin1String("Escape")))
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
        *error = QStringLiteral("%1: there is no step in it").arg(m_name);
    return !m_steps.isEmpty();
}

bool RobotScript::appendFile(const QString& path, int depth, QString* error)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly))
        return append(path, QString::fromUtf8(file.readAll()), depth, error);
    *error = QStringLiteral("%1: %2").arg(path, file.errorString());
    return false;
}

bool RobotScript::append(const QString& name, const QString& text, int depth, QString* error)
{
    milliseconds limit = DefaultLimit;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        const QString place = QStringLiteral("%1:%2").arg(name).arg(i + 1);
        const auto refuse = [&](const QString& what) {
            *error = QStringLiteral("%1: %2").arg(place, what);
            m_steps.clear();
            return false;
        };
        const QString line = lines.at(i).trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        auto words = wordsOf(line);
        if (!words)
            return refuse(QStringLiteral("a quote isn't closed, or touches the word beside it"));

        RobotStep step;
        step.place = place;
        step.line = i + 1;
        step.text = line;
        step.limit = limit;
        if (words->size() > 2 && words->at(words->size() - 2) == QLatin1String("within")) {
            const auto ownLimit = limitOf(words->last());
            if (!ownLimit)
                return refuse(QStringLiteral("'within' takes seconds, above 0 and up to 3600"));
            step.limit = *ownLimit;
            words->erase(words->end() - 2, words->end());
        }
        step.verb = words->takeFirst();
        step.words = *words;
        const QString wrong = whatIsWrong(step);
        if (!wrong.isEmpty())
            return refuse(wrong);
        if (step.verb == QLatin1String("pause"))
            step.limit += *limitOf(step.words.at(0));
        if (step.verb == QLatin1String("limit")) {
            limit = *limitOf(step.words.at(0));
        } else if (step.verb == QLatin1String("include")) {
            if (depth == MaxIncludeDepth)
                return refuse(QStringLiteral("files include each other without an end"));
            QString inner;
            if (!appendFile(QFileInfo(name).dir().filePath(step.words.at(0)), depth + 1, &inner))
                return refuse(inner);
        } else {
            m_steps.append(step);
        }
    }
    return true;
}
