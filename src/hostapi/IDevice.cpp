// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "hostapi/IDevice.h"

IDevice::IDevice(QObject* parent)
    : QObject(parent)
{}

IDevice::~IDevice() = default;

QStringList IDevice::reserved0()
{
    return {};
}

bool IDevice::reserved1()
{
    return false;
}

bool IDevice::reserved2(void*)
{
    return false;
}

bool IDevice::reserved3()
{
    return false;
}

bool IDevice::reserved4(void*)
{
    return false;
}

bool IDevice::reserved5(void*)
{
    return false;
}

bool IDevice::reserved6()
{
    return false;
}

bool IDevice::reserved7()
{
    return true;
}

QStringList IDevice::reserved8()
{
    return {};
}

QVariant IDevice::reserved9(void*)
{
    return {};
}

int IDevice::reserved10(void*, void*)
{
    return 0;
}

bool IDevice::reserved11(void*)
{
    return false;
}

QPair<QDateTime, QDateTime> IDevice::reserved17()
{
    return {};
}

QString IDevice::drivePath()
{
    return {};
}
