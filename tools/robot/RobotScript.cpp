// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/robot/RobotScript.h"

#include <QFile>
#include <QKeySequence>
#include <QRegularExpression>

#include <algorithm>

namespace {

using std::chrono::milliseconds;

constexpr milliseconds DefaultLimit{10000};
constexpr double MaxSeconds = 3600;

/// Splits a line into words. Returns none if a quote is unterminated or not followed by a space.
QStringList wordsOf(const QString& line)
{
    static const QRegularExpression word(R"re(\G\s*(?:"([^"]*)"|([^"\s]+))(?=\s|$))re");
    QStringList words;
    int end = 0;
    for (auto matches = word.globalMatch(line); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        words.append(match.captured(1) + match.captured(2));
        end = match.capturedEnd();
    }
    return end == line.size() ? words : QStringList();
}

/// Returns 0 for a text that isn't a time in seconds.
milliseconds timeOf(const QString& seconds)
{
    const double value = seconds.toDouble();
    return milliseconds(value > 0 && value <= MaxSeconds ? static_cast<milliseconds::rep>(value * 1000) : 0);
}

bool isKey(const QString& name)
{
    const QKeySequence sequence = QKeySequence::fromString(name, QKeySequence::PortableText);
    return sequence.count() == 1 && (sequence[0] & ~int(Qt::KeyboardModifierMask)) != Qt::Key_unknown;
}

bool hasForm(const QString& word, const QString& part)
{
    if (part == "COUNT") {
        bool isNumber = false;
        word.toUInt(&isNumber);
        return isNumber;
    }
    if (part == "SECONDS")
        return timeOf(word).count() > 0;
    if (part == "KEY")
        return isKey(word);
    return part == part.toUpper() || part.split('|').contains(word);
}

bool haveForm(const QStringList& words, QString form)
{
    const int optional = form.count('[');
    const QStringList parts = form.remove('[').remove(']').split(' ');
    if (words.size() > parts.size() || words.size() < parts.size() - optional)
        return false;
    return std::equal(words.cbegin(), words.cend(), parts.cbegin(), hasForm);
}

} // namespace

bool RobotScript::load(const QString& path, const QStringList& forms, QString* error)
{
    m_steps.clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QString("%1: %2").arg(path, file.errorString());
        return false;
    }
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = lines.at(i).trimmed();
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        RobotStep step;
        step.place = QString("%1:%2").arg(path).arg(i + 1);
        const QString wrong = parse(line, forms, &step);
        if (!wrong.isEmpty()) {
            *error = step.place + ": " + wrong;
            return false;
        }
        m_steps.append(step);
    }
    if (m_steps.isEmpty())
        *error = path + ": it has no step";
    return !m_steps.isEmpty();
}

/// Returns what is wrong with the line, or nothing.
QString RobotScript::parse(const QString& line, const QStringList& forms, RobotStep* step)
{
    QStringList words = wordsOf(line);
    if (words.isEmpty())
        return "unterminated quote, or no space after it";
    step->text = line;
    step->limit = DefaultLimit;
    if (words.size() > 2 && words.at(words.size() - 2) == "within") {
        step->limit = timeOf(words.takeLast());
        words.removeLast();
        if (step->limit.count() == 0)
            return "'within' takes seconds, above 0 and up to 3600";
    }
    step->words = words;
    const auto form =
        std::find_if(forms.cbegin(), forms.cend(), [&words](const QString& each) { return haveForm(words, each); });
    if (form != forms.cend()) {
        step->form = static_cast<int>(form - forms.cbegin());
        if (words.first() == "pause")
            step->limit += timeOf(words.last());
        return {};
    }
    QStringList similar = forms;
    const auto end = std::remove_if(similar.begin(), similar.end(), [&words](const QString& each) {
        return !hasForm(words.first(), each.section(' ', 0, 0));
    });
    similar.erase(end, similar.end());
    return similar.isEmpty() ? QString("unknown step '%1'").arg(words.first()) : "write " + similar.join(", or ");
}
