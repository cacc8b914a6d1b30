// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QObject>
#include <QPair>
#include <QStringList>
#include <QVariant>

class IDeviceValues;

/// A device that the host administers. The plug-in calls drivePath() only; the reserved operations keep the order of
/// the virtual table.
class IDevice : public QObject
{
    Q_OBJECT

public:
    explicit IDevice(QObject* parent = nullptr);
    ~IDevice() override;

    virtual QStringList reserved0();
    virtual bool reserved1();
    virtual bool reserved2(void* argument);
    virtual bool reserved3();
    virtual bool reserved4(void* argument);
    virtual bool reserved5(void* argument);
    virtual bool reserved6();
    virtual bool reserved7();
    virtual QStringList reserved8();
    virtual QVariant reserved9(void* argument);
    virtual int reserved10(void* argument1, void* argument2);
    virtual bool reserved11(void* argument);
    virtual void reserved12() = 0;
    virtual void reserved13() = 0;
    virtual void reserved14() = 0;
    virtual void reserved15() = 0;
    virtual void reserved16() = 0;
    virtual QPair<QDateTime, QDateTime> reserved17();

    /// Returns the root path of the device's drive; empty if it has none.
    virtual QString drivePath();

Q_SIGNALS:
    void configChanged(IDeviceValues* pValuesAccessor);
};
