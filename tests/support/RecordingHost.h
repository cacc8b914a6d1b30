// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/ICommandHandler.h"
#include "hostapi/IDatabase.h"
#include "hostapi/IDevice.h"
#include "hostapi/IDeviceAdmin.h"
#include "hostapi/IEventPublisher.h"
#include "hostapi/IExtensionRegistry.h"
#include "hostapi/IImportDataCmd.h"
#include "hostapi/IServices.h"
#include "tools/host/PatientEvent.h"

#include <QDate>
#include <QHash>
#include <QThread>

#include <functional>
#include <memory>
#include <vector>

/// The plug-in's calls of its host, one line for each, and their threads. A log record is
/// "channel|message|detail1|detail2".
struct Journal
{
    QStringList lines;
    QList<QThread*> threads;

    void add(const QString& line)
    {
        lines.append(line);
        threads.append(QThread::currentThread());
    }
    bool contains(const QString& line) const { return lines.contains(line); }
    void clear() { *this = {}; }
};

/// The base of the extension points, which share a journal.
struct Recorder
{
    explicit Recorder(Journal& journal)
        : m_journal(journal)
    {}

    Journal& m_journal;
};

class RecordingServices final : public IServices, private Recorder
{
public:
    using Recorder::Recorder;
    QString formatDate(const QDate& date) override { return date.toString(QStringLiteral("dd.MM.yyyy")); }
    QString path(int kind) override { return paths.value(kind); }
    void logLine(IPlugin* source, const QString& channel, const QString& message, const QString& detail1,
                 const QString& detail2) override
    {
        lastSource = source;
        if (beforeLogLine)
            beforeLogLine(message);
        m_journal.add(QStringList{channel, message, detail1, detail2}.join('|'));
    }
    quintptr logValue(int level, const QString&, const QString&, const QString&, const QString&,
                      const QString&) override
    {
        return static_cast<quintptr>(level);
    }

    QHash<int, QString> paths{{2, QStringLiteral("/data/open.db")}};
    IPlugin* lastSource = nullptr;
    std::function<void(const QString& message)> beforeLogLine; ///< called before each record, if set
};

class RecordingDevice final : public IDevice, private Recorder
{
public:
    RecordingDevice(Journal& journal, const QString& path)
        : Recorder(journal)
        , m_path(path)
    {}
    ~RecordingDevice() override { m_journal.add("device deleted"); }
    void reserved12() override {}
    void reserved13() override {}
    void reserved14() override {}
    void reserved15() override {}
    void reserved16() override {}
    QString drivePath() override
    {
        m_journal.add("drivePath");
        return m_path;
    }

private:
    QString m_path;
};

class RecordingDeviceAdmin final : public IDeviceAdmin, private Recorder
{
public:
    using Recorder::Recorder;
    IDevice* acquireDevice(int type, const QString& name) override
    {
        m_journal.add(QStringLiteral("acquireDevice(%1, '%2')").arg(type).arg(name));
        return new RecordingDevice(m_journal, drivePath);
    }
    bool setDeviceHold(bool hold) override
    {
        m_journal.add(QStringLiteral("setDeviceHold(%1)").arg(hold));
        return holdChanges;
    }

    QString drivePath;
    bool holdChanges = false; ///< what setDeviceHold() returns
};

class RecordingCommandHandler final : public ICommandHandler, private Recorder
{
public:
    using Recorder::Recorder;
    bool execute(ICommand* command) override
    {
        m_journal.add(QStringLiteral("execute(%1)").arg(command->type()));
        if (auto* import = dynamic_cast<IImportDataCmd*>(command))
            imports.emplace_back(import);
        return true;
    }

    std::vector<std::unique_ptr<IImportDataCmd>> imports; ///< the import commands received, owned as a host owns them
};

class RecordingDatabase final : public IDatabase, private Recorder
{
public:
    using Recorder::Recorder;
    void import(QString, IPlugin*) override {}
    QString databaseGuid(const QString& path) override
    {
        m_journal.add(QStringLiteral("databaseGuid('%1')").arg(path));
        return guid;
    }
    void reserved2() override {}
    void reserved3() override {}
    QMap<QString, PatientRecord> patients(const QString& databaseGuid) override
    {
        m_journal.add(QStringLiteral("patients('%1')").arg(databaseGuid));
        return records;
    }

    QString guid = QStringLiteral("{d2f7a4a0-0001-4c1e-9a55-000000000001}");
    QMap<QString, PatientRecord> records;
};

/// A host that does nothing by itself and records each call.
class RecordingHost final : public IExtensionRegistry
{
public:
    void* reserved0() override { return nullptr; }
    IExtensionPoint* extensionPoint(const QString& name) override
    {
        journal.add(QStringLiteral("extensionPoint('%1')").arg(name));
        const QHash<QString, IExtensionPoint*> points{
            {QStringLiteral("ServicesExtensionPoint"), &services},
            {QStringLiteral("DeviceAdminExtensionPoint"), &deviceAdmin},
            {QStringLiteral("CommandHandlerExtensionPoint"), &commandHandler},
            {QStringLiteral("EventPublisherExtensionPoint"), foundPublisher},
            {QStringLiteral("DatabaseExtensionPoint"), foundDatabase},
        };
        return points.value(name);
    }
    void openDiary(const QString& puid, const QStringList& pids = {})
    {
        using Event = PatientEvent<IDiarySessionOpenedEvt>;
        Q_EMIT publisher.diarySessionOpened(IDiarySessionOpenedEvtPtr(new Event({puid, pids})));
    }
    void changePatient(const QString& puid, const QStringList& pids)
    {
        using Event = PatientEvent<IPatientChangedEvt>;
        Q_EMIT publisher.patientChanged(IPatientChangedEvtPtr(new Event({puid, pids})));
    }

    Journal journal;
    RecordingServices services{journal};
    RecordingDeviceAdmin deviceAdmin{journal};
    RecordingCommandHandler commandHandler{journal};
    IEventPublisher publisher;
    RecordingDatabase database{journal};
    IEventPublisher* foundPublisher = &publisher; ///< the plug-in deletes it when it finds another one
    IDatabase* foundDatabase = &database;         ///< the plug-in deletes it when it finds another one
};
