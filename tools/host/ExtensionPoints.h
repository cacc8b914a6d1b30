// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IDatabase.h"
#include "hostapi/IExtensionRegistry.h"
#include "hostapi/IServices.h"

class HostDatabase;
class HostDeviceAdmin;
class HostLog;
class ICommandHandler;
class IEventPublisher;

/// "ServicesExtensionPoint", based on the log and the open database.
class HostServices final : public IServices
{
public:
    HostServices(HostLog& log, HostDatabase& database);

    QString formatDate(const QDate& date) override;
    QString path(int kind) override;
    void logLine(IPlugin* source, const QString& channel, const QString& message, const QString& detail1,
                 const QString& detail2) override;
    quintptr logValue(int level, const QString& value1, const QString& value2, const QString& value3,
                      const QString& value4, const QString& value5) override;

private:
    HostLog& m_log;
    HostDatabase& m_database;
};

/// "DatabaseExtensionPoint": access to the open database. Any other path or GUID is unknown.
class DatabasePoint final : public IDatabase
{
    Q_OBJECT

public:
    DatabasePoint(HostLog& log, HostDatabase& database);

    /// Logs an error: imports by a cache file aren't supported.
    void import(QString cache, IPlugin* pPlugin) override;
    QString databaseGuid(const QString& path) override;
    void reserved2() override {}
    void reserved3() override {}
    /// Reads the patients again only if the database has changed since the last call.
    QMap<QString, PatientRecord> patients(const QString& databaseGuid) override;

private:
    HostLog& m_log;
    HostDatabase& m_database;
    QMap<QString, PatientRecord> m_patients; ///< as of m_revision
    QString m_revision;                      ///< empty if nothing was read
};

/// The registry passed to a plug-in: finds the five extension points by name. Owns those that it creates; the others
/// must outlive it, and all must outlive the plug-in.
class ExtensionPoints final : public IExtensionRegistry
{
public:
    ExtensionPoints(HostLog& log, HostDatabase& database, HostDeviceAdmin& deviceAdmin, ICommandHandler& commandHandler,
                    IEventPublisher& eventPublisher);

    void* reserved0() override { return nullptr; }
    IExtensionPoint* extensionPoint(const QString& name) override;

private:
    HostServices m_services;
    DatabasePoint m_database;
    QMap<QString, IExtensionPoint*> m_points;
};
