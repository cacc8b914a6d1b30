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

/// Takes the fields of a JSON object one by one and keeps the list of what was wrong with them. A field that is absent
/// leaves its target as it is, unless it is required.
class JsonFields
{
public:
    /// @p path is the object's own place, empty for the document's root; @p errors outlives this object.
    JsonFields(const QJsonValue& value, const QString& path, QStringList* errors);

    bool has(const QString& name) const { return m_object.contains(name); }
    void require(const QString& name);

    void text(const QString& name, QString* target);
    void number(const QString& name, int minimum, int maximum, int* target);
    void flag(const QString& name, bool* target);
    /// Calls @p each with every element and its path.
    void array(const QString& name, const std::function<void(const QJsonValue&, const QString&)>& each);
    /// The field's value and path, to go deeper; undefined if it is absent.
    QJsonValue take(const QString& name, QString* path);

    void fail(const QString& name, const QString& what);
    /// Complains of the fields that nobody took. Called last.
    void refuseOthers();

    QStringList names() const { return m_object.keys(); }

private:
    QString pathOf(const QString& name) const;

    const QString m_path;
    QJsonObject m_object;
    QStringList* m_errors;
    QSet<QString> m_taken;
};

/// The document's root in @p bytes; null with an error that names the line and column if it isn't JSON.
QJsonValue parseJson(const QByteArray& bytes, QStringList* errors);
