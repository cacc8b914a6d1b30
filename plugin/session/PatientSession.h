// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QStringList>

class IDatabase;
class IServices;

/// The plug-in's memory of the patient whose diary is open in the host, written by EventsObserver as the host tells it,
/// and of that patient's pump as the reader tells it.
///
/// Each diary event replaces the object, also in the middle of a run: never keep the pointer across an event loop, call
/// instance() each time. GUI thread only. The last object is never freed.
class PatientSession final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PatientSession)

public:
    /// The current session, made by create(@p parent) if there is none.
    static PatientSession* instance(QObject* parent = nullptr);
    /// Deletes the current session at once, if there is one, and makes a new, empty one.
    static PatientSession* create(QObject* parent);
    /// Replaces the session, as create() does, by one for the patient whose diary the host has opened. If a run for
    /// that patient is under way (see SessionWatch), the new session takes over what belongs to the run: pump, device
    /// name and exchange file.
    static PatientSession* open(const QString& patientId);
    /// Where the look-ups ask; both stay the host's. patientIdExt() with a valid birthday and patientIdsOf() need them.
    static void setHost(IServices* services, IDatabase* database);

    /// The patient's key in the host ("puid"); empty: no patient is open.
    QString patientId() const { return m_patientId; }
    void setPatientId(const QString& patientId) { m_patientId = patientId; }

    /// The patient's identity: two name parts, birthday as yyyy-MM-dd, extension text; any may be empty or missing.
    QStringList pids() const { return m_pids; }
    void setPids(const QStringList& pids) { m_pids = pids; }

    /// Serial number of the pump assigned to the patient; empty: none.
    QString pumpSerialNumber() const { return m_pumpSerialNumber; }
    void setPumpSerialNumber(const QString& serialNumber) { m_pumpSerialNumber = serialNumber; }

    /// The pump's display name.
    QString deviceName() const { return m_deviceName; }
    void setDeviceName(const QString& deviceName) { m_deviceName = deviceName; }

    /// Absolute path of the exchange file of the last read-out.
    QString exchangeFilePath() const { return m_exchangeFilePath; }
    void setExchangeFilePath(const QString& path) { m_exchangeFilePath = path; }

    /// Name of the open diary.
    QString diaryName() const { return m_diaryName; }
    void setDiaryName(const QString& diaryName) { m_diaryName = diaryName; }

    /// The device name becomes the display name of @p type; an empty type stands for the default one.
    void setDeviceType(const QString& type);
    /// The pump of the patient. An empty device name, or the default type's, gives the default display name; any other
    /// stands as it is. Two empty texts forget the pump.
    void setPump(const QString& serialNumber, const QString& deviceName);

    /// "Name, Surname" for the dialogs' first patient line, or the one part that there is.
    static QString patientName(const QStringList& pids);
    QString patientName() const { return patientName(m_pids); }

    /// Birthday as the host shows dates, and extension text, for the dialogs' second patient line. A birthday that is
    /// no date is shown as it came.
    static QString patientIdExt(const QStringList& pids);
    QString patientIdExt() const { return patientIdExt(m_pids); }

    /// The ids of the patient with that key in the open database; an empty list if there is none. Asks the host at each
    /// call and takes time linear in the number of patients.
    static QStringList patientIdsOf(const QString& puid);

    /// The display name of a model name as the reader writes it; an unknown one stands as it is.
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
    int m_diary; ///< the same number in a session that took over from another one
};
