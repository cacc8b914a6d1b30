// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/host/ExtensionPoints.h"

#include "hostapi/ICommandHandler.h"
#include "hostapi/IEventPublisher.h"
#include "hostapi/IPlugin.h"
#include "tools/host/HostDatabase.h"
#include "tools/host/HostDates.h"
#include "tools/host/HostDeviceAdmin.h"
#include "tools/host/HostLog.h"

#include <QCoreApplication>

HostServices::HostServices(HostLog& log, HostDatabase& database)
    : m_log(log)
    , m_database(database)
{}

QString HostServices::formatDate(const QDate& date)
{
    return shownDate(date);
}

QString HostServices::path(int kind)
{
    switch (kind) {
    case DatabasePath:
        return m_database.path();
    case TranslationsPath:
        return QCoreApplication::applicationDirPath() + "/translations";
    default:
        return {};
    }
}

void HostServices::logLine(IPlugin* source, const QString& channel, const QString& message, const QString& detail1,
                           const QString& detail2)
{
    m_log.write(source ? source->pluginName() : "?", channel, message, {detail1, detail2});
}

quintptr HostServices::logValue(int level, const QString& value1, const QString& value2, const QString& value3,
                                const QString& value4, const QString& value5)
{
    m_log.write(QString("value %1").arg(level), "mcp", value1, {value2, value3, value4, value5});
    return 0;
}

DatabasePoint::DatabasePoint(HostLog& log, HostDatabase& database)
    : m_log(log)
    , m_database(database)
{}

void DatabasePoint::import(QString cache, IPlugin* pPlugin)
{
    m_log.write(pPlugin ? pPlugin->pluginName() : "?", "Error", "An import by cache file isn't offered by this host.",
                {cache});
}

QString DatabasePoint::databaseGuid(const QString& path)
{
    return path == m_database.path() ? m_database.guid() : QString();
}

QMap<QString, PatientRecord> DatabasePoint::patients(const QString& databaseGuid)
{
    if (databaseGuid != m_database.guid())
        return {};
    const QString revision = m_database.revision();
    if (revision.isEmpty() || revision != m_revision) {
        m_patients.clear();
        m_revision.clear();
        const QVector<PatientRecord> patients = revision.isEmpty() ? QVector<PatientRecord>() : m_database.patients();
        if (!m_database.errorText().isEmpty()) {
            m_log.write("host", "Error", m_database.errorText());
            return {};
        }
        for (const PatientRecord& patient : patients)
            m_patients.insert(patient.puid, patient);
        m_revision = revision;
    }
    return m_patients;
}

ExtensionPoints::ExtensionPoints(HostLog& log, HostDatabase& database, HostDeviceAdmin& deviceAdmin,
                                 ICommandHandler& commandHandler, IEventPublisher& eventPublisher)
    : m_services(log, database)
    , m_database(log, database)
    , m_points{{"ServicesExtensionPoint", &m_services},
               {"DeviceAdminExtensionPoint", &deviceAdmin},
               {"CommandHandlerExtensionPoint", &commandHandler},
               {"EventPublisherExtensionPoint", &eventPublisher},
               {"DatabaseExtensionPoint", &m_database}}
{}

IExtensionPoint* ExtensionPoints::extensionPoint(const QString& name)
{
    return m_points.value(name, nullptr);
}
