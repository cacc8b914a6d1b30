// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "hostapi/HostEvents.h"
#include "hostapi/ICommandHandler.h"
#include "hostapi/IComponent.h"
#include "hostapi/IDatabase.h"
#include "hostapi/IDeviceAdmin.h"
#include "hostapi/IEventPublisher.h"
#include "hostapi/IImportDataCmd.h"
#include "hostapi/IPermissions.h"
#include "hostapi/IQueryDiaryCmd.h"
#include "hostapi/IServices.h"

// Constructors and destructors are out of line, so that not every file that uses an interface emits its virtual table.

IExtensionPoint::~IExtensionPoint() = default;

IServices::~IServices() = default;

IDeviceAdmin::~IDeviceAdmin() = default;

bool IDeviceAdmin::setDeviceHold(bool)
{
    return false;
}

ICommandHandler::~ICommandHandler() = default;

IEventPublisher::IEventPublisher(QObject* parent)
    : QObject(parent)
{}

IEventPublisher::~IEventPublisher() = default;

IDatabase::IDatabase(QObject* parent)
    : QObject(parent)
{}

IDatabase::~IDatabase() = default;

IPermissions::IPermissions(QObject* parent)
    : QObject(parent)
{}

IPermissions::~IPermissions() = default;

IComponent::~IComponent() = default;

IModeData::~IModeData() = default;

IPatientData::~IPatientData() = default;

IHostEvent::~IHostEvent() = default;

IImportDataCmd::IImportDataCmd()
    : ICommand(Import)
{}

IImportDataCmd::~IImportDataCmd() = default;

IQueryDiaryCmd::IQueryDiaryCmd()
    : ICommand(QueryDiary)
{}
