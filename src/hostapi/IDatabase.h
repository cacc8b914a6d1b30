// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IExtensionPoint.h"

#include <QMap>
#include <QObject>
#include <QStringList>

class IPlugin;

/// One patient of the host's database.
struct PatientRecord
{
    QString puid;    ///< the patient's key in the host
    QStringList ids; ///< two name parts, birthday as yyyy-MM-dd, extension text; any may be empty or missing
};

/// The host's patient databases, "DatabaseExtensionPoint". GUI thread only.
class IDatabase : public QObject, public IExtensionPoint
{
    Q_OBJECT

public:
    explicit IDatabase(QObject* parent = nullptr);
    ~IDatabase() override;

public Q_SLOTS:
    virtual void import(QString cache, IPlugin* pPlugin) = 0;

public:
    /// Returns the GUID text of the database at @p path; see IServices::DatabasePath.
    virtual QString databaseGuid(const QString& path) = 0;
    virtual void reserved2() = 0;
    virtual void reserved3() = 0;
    /// Returns all patients of the database with that GUID. The host chooses the keys of the map.
    virtual QMap<QString, PatientRecord> patients(const QString& databaseGuid) = 0;

Q_SIGNALS:
    void attached(QString db);
    void detached(QString db);
    void imported(QString cache);
};
