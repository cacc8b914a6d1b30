// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IPatientData.h"

#include <QSharedPointer>

/// Base of the events of IEventPublisher, except IPatientChangedEvt and IDiarySessionOpenedEvt, which have
/// IPatientData as a virtual base. Events are shared and don't change after they are published.
class IHostEvent
{
public:
    IHostEvent() = default;
    virtual ~IHostEvent();
    Q_DISABLE_COPY_MOVE(IHostEvent)
};

class IPatientChangedEvt : public virtual IPatientData
{};

class IDiarySessionOpenedEvt : public virtual IPatientData
{};

class ICmdFailedEvt : public IHostEvent
{};

class ICmdSucceededEvt : public IHostEvent
{};

class ICommandsReceivedEvt : public IHostEvent
{};

class IPatientCreatedEvt : public IHostEvent
{};

class IPatientDeletedEvt : public IHostEvent
{};

class IDiarySessionClosedEvt : public IHostEvent
{};

class IDiaryImportedEvt : public IHostEvent
{};

class IDiarySyncedEvt : public IHostEvent
{};

class IDiaryChangedEvt : public IHostEvent
{};

class IQueryReplyEvt : public IHostEvent
{};

class IDiaryLimitsEvt : public IHostEvent
{};

class IDiaryAnalyzedEvt : public IHostEvent
{};

class IStartupEvt : public IHostEvent
{};

class IShutdownEvt : public IHostEvent
{};

using ICmdFailedEvtPtr = QSharedPointer<ICmdFailedEvt>;
using ICmdSucceededEvtPtr = QSharedPointer<ICmdSucceededEvt>;
using ICommandsReceivedEvtPtr = QSharedPointer<ICommandsReceivedEvt>;
using IPatientCreatedEvtPtr = QSharedPointer<IPatientCreatedEvt>;
using IPatientDeletedEvtPtr = QSharedPointer<IPatientDeletedEvt>;
using IPatientChangedEvtPtr = QSharedPointer<IPatientChangedEvt>;
using IDiarySessionOpenedEvtPtr = QSharedPointer<IDiarySessionOpenedEvt>;
using IDiarySessionClosedEvtPtr = QSharedPointer<IDiarySessionClosedEvt>;
using IDiaryImportedEvtPtr = QSharedPointer<IDiaryImportedEvt>;
using IDiarySyncedEvtPtr = QSharedPointer<IDiarySyncedEvt>;
using IDiaryChangedEvtPtr = QSharedPointer<IDiaryChangedEvt>;
using IQueryReplyEvtPtr = QSharedPointer<IQueryReplyEvt>;
using IDiaryLimitsEvtPtr = QSharedPointer<IDiaryLimitsEvt>;
using IDiaryAnalyzedEvtPtr = QSharedPointer<IDiaryAnalyzedEvt>;
using IStartupEvtPtr = QSharedPointer<IStartupEvt>;
using IShutdownEvtPtr = QSharedPointer<IShutdownEvt>;
