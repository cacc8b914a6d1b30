// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "base/PatientSession.h"

#include "base/SessionWatch.h"
#include "hostapi/IDatabase.h"
#include "hostapi/IServices.h"

#include <QDate>
#include <QDebug>
#include <QPointer>

#include <algorithm>

namespace {

const QString DefaultDeviceType = QStringLiteral("Cygnara");

QPointer<PatientSession> s_instance; // also null if its parent has deleted it
IServices* s_services = nullptr;
IDatabase* s_database = nullptr;
int s_diaries = 0;

void traceBirthday(const char* direction, const QString& birthday)
{
    qDebug().noquote() << "static QString PatientSession::patientIdExt(const QStringList&)"
                       << QString::fromLatin1(direction).arg(birthday);
}

} // namespace

PatientSession* PatientSession::instance(QObject* parent)
{
    return s_instance ? s_instance.data() : create(parent);
}

PatientSession* PatientSession::create(QObject* parent)
{
    delete s_instance;
    s_instance = new PatientSession(parent);
    return s_instance;
}

PatientSession* PatientSession::open(const QString& patientId)
{
    auto* session = new PatientSession(nullptr);
    session->m_patientId = patientId;
    const PatientSession* before = s_instance;
    if (before && before->m_patientId == patientId && SessionWatch::isWatched(*before)) {
        session->m_diary = before->m_diary;
        session->m_pumpSerialNumber = before->m_pumpSerialNumber;
        session->m_deviceName = before->m_deviceName;
        session->m_exchangeFilePath = before->m_exchangeFilePath;
    }
    delete s_instance;
    s_instance = session;
    return session;
}

void PatientSession::setHost(IServices* services, IDatabase* database)
{
    s_services = services;
    s_database = database;
}

PatientSession::PatientSession(QObject* parent)
    : QObject(parent)
    , m_diary(++s_diaries)
{
    setDeviceType({});
}

void PatientSession::setDeviceType(const QString& type)
{
    m_deviceName = displayNameOfDevice(type.isEmpty() ? DefaultDeviceType : type);
}

void PatientSession::setPump(const QString& serialNumber, const QString& deviceName)
{
    m_pumpSerialNumber = serialNumber;
    if (deviceName.isEmpty() || deviceName == DefaultDeviceType)
        setDeviceType({});
    else
        m_deviceName = deviceName;
}

QString PatientSession::patientName(const QStringList& pids)
{
    const QStringList parts = pids.mid(0, 2);
    if (parts.isEmpty())
        return {};
    if (parts.size() == 1 || parts.at(1).isEmpty())
        return parts.first();
    return tr("%1, %2", "Pattern to display patient name and surname").arg(parts.at(0), parts.at(1));
}

QString PatientSession::patientIdExt(const QStringList& pids)
{
    const QStringList parts = pids.mid(2, 2);
    if (parts.isEmpty())
        return {};
    QString birthday = parts.first();
    if (birthday.isEmpty())
        return parts.last();

    traceBirthday(">> birthday = '%1'", birthday);
    const QDate date = QDate::fromString(birthday, QStringLiteral("yyyy-MM-dd"));
    if (date.isValid())
        birthday = s_services->formatDate(date);
    traceBirthday("<< birthday = '%1'", birthday);

    // The last part, not the second one: a list that ends with the birthday shows it again, unformatted.
    if (parts.last().isEmpty())
        return birthday;
    return tr("%1, %2", "Pattern to display patient line 2 (birthday and extension)").arg(birthday, parts.last());
}

QStringList PatientSession::patientIdsOf(const QString& puid)
{
    const QString path = s_services->path(IServices::DatabasePath);
    const QString guid = s_database->databaseGuid(path);
    const QMap<QString, PatientRecord> records = s_database->patients(guid);
    const auto found =
        std::find_if(records.cbegin(), records.cend(), [&puid](const PatientRecord& r) { return r.puid == puid; });
    return found == records.cend() ? QStringList() : found->ids;
}

QString PatientSession::displayNameOfDevice(const QString& type)
{
    return type == DefaultDeviceType ? QStringLiteral("Sanvio Merivo") : type;
}
