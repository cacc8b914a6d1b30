// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/JsonFields.h"

#include <QJsonDocument>

#include <algorithm>
#include <cmath>

namespace {

/// A field's name as a message tells it: in JSON's own quotes and escapes unless it is a plain word, as a message of a
/// field named ": " couldn't be taken apart.
QString shownName(const QString& name)
{
    const bool isWord = !name.isEmpty() && std::all_of(name.cbegin(), name.cend(), [](QChar c) {
        return c.isLetterOrNumber() || c == QLatin1Char('_') || c == QLatin1Char('-');
    });
    if (isWord)
        return name;
    const QByteArray list = QJsonDocument(QJsonArray{name}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(list.mid(1, list.size() - 2));
}

} // namespace

JsonFields::JsonFields(const QJsonValue& value, const QString& path, QStringList* errors)
    : m_path(path)
    , m_object(value.toObject())
    , m_errors(errors)
{
    if (!value.isObject())
        m_errors->append(
            QStringLiteral("%1: must be an object").arg(path.isEmpty() ? QStringLiteral("the whole") : path));
}

QString JsonFields::pathOf(const QString& name) const
{
    const QString shown = shownName(name);
    return m_path.isEmpty() ? shown : m_path + QLatin1Char('.') + shown;
}

void JsonFields::fail(const QString& name, const QString& what)
{
    m_errors->append(QStringLiteral("%1: %2").arg(pathOf(name), what));
}

void JsonFields::require(const QString& name)
{
    if (!has(name))
        fail(name, QStringLiteral("is missing"));
}

QJsonValue JsonFields::take(const QString& name, QString* path)
{
    m_taken.insert(name);
    if (path)
        *path = pathOf(name);
    return m_object.value(name);
}

void JsonFields::text(const QString& name, QString* target)
{
    const QJsonValue value = take(name, nullptr);
    if (value.isUndefined())
        return;
    if (!value.isString())
        return fail(name, QStringLiteral("must be a text"));
    const QString text = value.toString();
    const bool isControl =
        std::any_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 0x20 || c.unicode() == 0x7f; });
    if (isControl)
        return fail(name, QStringLiteral("must not hold control characters"));
    // Half a surrogate pair, say: a device list with it would break off there.
    if (QString::fromUtf8(text.toUtf8()) != text || text.contains(QChar(0xfffe)) || text.contains(QChar(0xffff)))
        return fail(name, QStringLiteral("must hold whole characters"));
    *target = text;
}

void JsonFields::number(const QString& name, int minimum, int maximum, int* target)
{
    const QJsonValue value = take(name, nullptr);
    if (value.isUndefined())
        return;
    const double number = value.toDouble();
    if (!value.isDouble() || std::trunc(number) != number || number < minimum || number > maximum)
        return fail(name, QStringLiteral("must be a whole number from %1 to %2").arg(minimum).arg(maximum));
    *target = static_cast<int>(number);
}

void JsonFields::flag(const QString& name, bool* target)
{
    const QJsonValue value = take(name, nullptr);
    if (value.isUndefined())
        return;
    if (!value.isBool())
        return fail(name, QStringLiteral("must be true or false"));
    *target = value.toBool();
}

void JsonFields::array(const QString& name, const std::function<void(const QJsonValue&, const QString&)>& each)
{
    const QJsonValue value = take(name, nullptr);
    if (value.isUndefined())
        return;
    if (!value.isArray())
        return fail(name, QStringLiteral("must be a list"));
    const QJsonArray elements = value.toArray();
    for (int i = 0; i < elements.size(); ++i)
        each(elements.at(i), QStringLiteral("%1[%2]").arg(pathOf(name)).arg(i));
}

void JsonFields::refuseOthers()
{
    const QStringList all = names();
    for (const QString& name : all) {
        if (!m_taken.contains(name))
            fail(name, QStringLiteral("unknown field"));
    }
}

QJsonValue parseJson(const QByteArray& bytes, QStringList* errors)
{
    QJsonParseError fault;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &fault);
    if (fault.error == QJsonParseError::NoError)
        return document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
    const QByteArray before = bytes.left(fault.offset);
    errors->append(QStringLiteral("line %1, column %2: %3")
                       .arg(before.count('\n') + 1)
                       .arg(before.size() - before.lastIndexOf('\n'))
                       .arg(fault.errorString()));
    return QJsonValue(QJsonValue::Null);
}
