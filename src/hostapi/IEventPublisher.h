// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/HostEvents.h"
#include "hostapi/IExtensionPoint.h"

#include <QObject>

/// The host's events, "EventPublisherExtensionPoint". They are emitted on the GUI thread, also during a run. Host and
/// plug-in each compile a meta-object of this class, so the order of the signals is part of the binary contract.
class IEventPublisher : public QObject, public IExtensionPoint
{
    Q_OBJECT

public:
    explicit IEventPublisher(QObject* parent = nullptr);
    ~IEventPublisher() override;

Q_SIGNALS:
    void commandFailed(ICmdFailedEvtPtr evt);
    void commandSucceeded(ICmdSucceededEvtPtr evt);
    void commandsReceived(ICommandsReceivedEvtPtr evt);
    void patientCreated(IPatientCreatedEvtPtr evt);
    void patientDeleted(IPatientDeletedEvtPtr evt);
    void patientChanged(IPatientChangedEvtPtr evt);
    void diarySessionOpened(IDiarySessionOpenedEvtPtr evt);
    void diarySessionClosed(IDiarySessionClosedEvtPtr evt);
    void diaryImported(IDiaryImportedEvtPtr evt);
    void diarySynced(IDiarySyncedEvtPtr evt);
    void diaryChanged(IDiaryChangedEvtPtr evt);
    void queryReply(IQueryReplyEvtPtr evt);
    void diaryLimits(IDiaryLimitsEvtPtr evt);
    void diaryAnalyzed(IDiaryAnalyzedEvtPtr evt);
    void appStartup(IStartupEvtPtr evt);
    void appShutdown(IShutdownEvtPtr evt);
};
