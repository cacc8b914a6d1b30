// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QStringList>

class IDatabase;
class IServices;

/// The patient whose diary is open in the host, as EventsObserver reports it, and that patient's pump, as the reader
/// reports it.
///
/// Each diary event replaces the object, even during a run: call instance() each time and don't keep the pointer across
/// an event loop. GUI thread only. The last object is never deleted.
class PatientSession final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PatientSession)

public:
    /// Returns the current session. Creates one with @p parent if there is none.
    static PatientSession* instance(QObject* parent = nullptr);
    /// Deletes the current session, if any, and returns a new, empty one.
    static PatientSession* create(QObject* parent);
    /// Replaces the session by one for the patient whose diary the host has opened. If a run for that patient is under
    /// way (see SessionWatch), the new session takes over pump, device name and exchange file.
    static PatientSession* open(const QString& patientId);
    /// Sets the host interfaces that patientIdExt() with a valid birthday and patientIdsOf() need. Not owned.
    static void setHost(IServices* services, IDatabase* database);

    /// Returns the patient's key in the host ("puid"); empty if no patient is open.
    QString patientId() const { return m_patientId; }
    void setPatientId(const QString& patientId) { m_patientId = patientId; }

    /// Returns two name parts, birthday as yyyy-MM-dd and extension text; any may be empty or missing.
    QStringList pids() const { return m_pids; }
    void setPids(const QStringList& pids) { m_pids = pids; }

    /// Returns the serial number of the patient's pump; empty if none is assigned.
    QString pumpSerialNumber() const { return m_pumpSerialNumber; }
    void setPumpSerialNumber(const QString& serialNumber) { m_pumpSerialNumber = serialNumber; }

    QString deviceName() const { return m_deviceName; }
    void setDeviceName(const QString& deviceName) { m_deviceName = deviceName; }

    /// Returns the absolute path of the exchange file of the last read-out.
    QString exchangeFilePath() const { return m_exchangeFilePath; }
    void setExchangeFilePath(const QString& path) { m_exchangeFilePath = path; }

    QString diaryName() const { return m_diaryName; }
    void setDiaryName(const QString& diaryName) { m_diaryName = diaryName; }

    /// Sets the device name to the display name of @p type, or of the default type if it is empty.
    void setDeviceType(const QString& type);
    /// Sets the patient's pump. Without a device name, or with the default type, the device name becomes the default
    /// display name. Two empty texts remove the pump.
    void setPump(const QString& serialNumber, const QString& deviceName);

    /// Returns "NAME1, NAME2", the first two of @p pids, for the first patient line of the dialogs; "NAME1" if the
    /// second one is missing or empty.
    static QString patientName(const QStringList& pids);
    QString patientName() const { return patientName(m_pids); }

    /// Returns birthday and extension text for the second patient line of the dialogs. The birthday has the host's date
    /// format if it is valid, and is unchanged otherwise.
    static QString patientIdExt(const QStringList& pids);
    QString patientIdExt() const { return patientIdExt(m_pids); }

    /// Returns the ids of the patient with that key in the open database; an empty list if there is none. Queries the
    /// host at each call, in linear time.
    static QStringList patientIdsOf(const QString& puid);

    /// Returns the display name of a model name that the reader reports. Unknown names are unchanged.
    static QString displayNameOfDevice(const QString& type);

private:
    friend class SessionWatch;
    explicit PatientSession(QObject* parent);

    QString m_patientId;
    QStringList m_pids;
    QString m_pumpSerialNumber;
    QString m_deviceName;
    QString m_exchangeFilePath;
    QString m_diaryName;
    int m_diary; ///< Number of the opened diary; open() keeps it if the new session takes over.
};
