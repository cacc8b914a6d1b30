// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>

/// Reads the fields of a JSON object one by one and adds an error with the field's path for each invalid one. An absent
/// field leaves its target unchanged, unless it is required.
class JsonFields final
{
public:
    using Read = std::function<void(JsonFields&)>;

    /// Reads the fields of the JSON document in @p bytes with @p read. Fields that it doesn't read are errors.
    static void parse(const QByteArray& bytes, QStringList* errors, const Read& read);

    bool has(const QString& name) const { return m_object.contains(name); }
    QStringList names() const { return m_object.keys(); }
    void require(const QString& name);

    void text(const QString& name, QString* target);
    void number(const QString& name, int minimum, int maximum, int* target);
    void flag(const QString& name, bool* target);
    void object(const QString& name, const Read& read);
    void objects(const QString& name, const Read& read);
    /// Calls @p each with each element of a list and its path.
    void array(const QString& name, const std::function<void(const QJsonValue&, const QString&)>& each);
    QJsonValue take(const QString& name);

    void fail(const QString& name, const QString& what);

private:
    JsonFields(const QJsonValue& value, const QString& path, QStringList* errors);
    static void read(const QJsonValue& value, const QString& path, QStringList* errors, const Read& read);
    QString pathOf(const QString& name) const;

    const QString m_path;
    QJsonObject m_object;
    QStringList* m_errors;
    QSet<QString> m_taken;
};
