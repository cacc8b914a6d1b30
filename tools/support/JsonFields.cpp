// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/support/JsonFields.h"

#include <QJsonDocument>

#include <algorithm>
#include <cmath>

void JsonFields::parse(const QByteArray& bytes, QStringList* errors, const Read& read)
{
    QJsonParseError fault;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &fault);
    if (fault.error == QJsonParseError::NoError)
        return JsonFields::read(document.isObject() ? document.object() : QJsonValue(), {}, errors, read);
    const QByteArray before = bytes.left(fault.offset);
    errors->append(QString("line %1, column %2: %3")
                       .arg(before.count('\n') + 1)
                       .arg(before.size() - before.lastIndexOf('\n'))
                       .arg(fault.errorString()));
}

void JsonFields::read(const QJsonValue& value, const QString& path, QStringList* errors, const Read& read)
{
    JsonFields fields(value, path, errors);
    read(fields);
    for (const QString& name : fields.names()) {
        if (!fields.m_taken.contains(name))
            fields.fail(name, "unknown field");
    }
}

JsonFields::JsonFields(const QJsonValue& value, const QString& path, QStringList* errors)
    : m_path(path)
    , m_object(value.toObject())
    , m_errors(errors)
{
    if (!value.isObject())
        m_errors->append(QString("%1: must be an object").arg(path.isEmpty() ? "the whole" : path));
}

QString JsonFields::pathOf(const QString& name) const
{
    const bool isPlain = !name.isEmpty() && !name.contains(':');
    const QString shown = isPlain ? name : '"' + name + '"';
    return m_path.isEmpty() ? shown : m_path + '.' + shown;
}

void JsonFields::fail(const QString& name, const QString& what)
{
    m_errors->append(pathOf(name) + ": " + what);
}

void JsonFields::require(const QString& name)
{
    if (!has(name))
        fail(name, "is missing");
}

QJsonValue JsonFields::take(const QString& name)
{
    m_taken.insert(name);
    return m_object.value(name);
}

void JsonFields::text(const QString& name, QString* target)
{
    const QJsonValue value = take(name);
    if (value.isUndefined())
        return;
    if (!value.isString())
        return fail(name, "must be a text");
    const QString text = value.toString();
    const bool isControl =
        std::any_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 0x20 || c.unicode() == 0x7f; });
    if (isControl)
        return fail(name, "must not contain control characters");
    // Half a surrogate pair, for instance, would end a device list there.
    if (QString::fromUtf8(text.toUtf8()) != text || text.contains(QChar(0xfffe)) || text.contains(QChar(0xffff)))
        return fail(name, "must contain only complete characters");
    *target = text;
}

void JsonFields::number(const QString& name, int minimum, int maximum, int* target)
{
    const QJsonValue value = take(name);
    if (value.isUndefined())
        return;
    const double number = value.toDouble();
    if (!value.isDouble() || std::trunc(number) != number || number < minimum || number > maximum)
        return fail(name, QString("must be a whole number from %1 to %2").arg(minimum).arg(maximum));
    *target = static_cast<int>(number);
}

void JsonFields::flag(const QString& name, bool* target)
{
    const QJsonValue value = take(name);
    if (value.isBool())
        *target = value.toBool();
    else if (!value.isUndefined())
        fail(name, "must be true or false");
}

void JsonFields::object(const QString& name, const Read& read)
{
    const QJsonValue value = take(name);
    if (!value.isUndefined())
        JsonFields::read(value, pathOf(name), m_errors, read);
}

void JsonFields::objects(const QString& name, const Read& read)
{
    array(name, [&](const QJsonValue& value, const QString& path) { JsonFields::read(value, path, m_errors, read); });
}

void JsonFields::array(const QString& name, const std::function<void(const QJsonValue&, const QString&)>& each)
{
    const QJsonValue value = take(name);
    if (value.isUndefined())
        return;
    if (!value.isArray())
        return fail(name, "must be a list");
    const QJsonArray elements = value.toArray();
    for (int i = 0; i < elements.size(); ++i)
        each(elements.at(i), QString("%1[%2]").arg(pathOf(name)).arg(i));
}
