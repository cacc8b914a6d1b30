// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "host/HostEvents.h"
#include "host/ICommandHandler.h"
#include "host/IComponent.h"
#include "host/IDatabase.h"
#include "host/IDeviceAdmin.h"
#include "host/IEventPublisher.h"
#include "host/IImportDataCmd.h"
#include "host/IPermissions.h"
#include "host/IQueryDiaryCmd.h"
#include "host/IServices.h"

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
