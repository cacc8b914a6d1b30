// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "readerlink/UsbDeviceAdapter.h"

#include "hostapi/IDeviceAdmin.h"

#include <QCoreApplication>
#include <QCursor>
#include <QDebug>
#include <QGuiApplication>
#include <QTime>

#include <chrono>
#include <thread>

namespace {

constexpr int ReaderType = 1;
constexpr int HoldPauseMs = 1200;
constexpr int ReleasePauseMs = 2700;
constexpr int StepMs = 20;

void traceWait(const char* text)
{
    qDebug().noquote() << "static bool UsbDeviceAdapter::wait(int)"
                       << QString::fromLatin1(text).arg(QTime::currentTime().toString(QStringLiteral("hh:mm:ss.zzz")));
}

} // namespace

UsbDeviceAdapter::UsbDeviceAdapter(IDeviceAdmin* deviceAdmin)
    : m_deviceAdmin(deviceAdmin)
{
    if (!m_deviceAdmin)
        return;
    m_device.reset(m_deviceAdmin->acquireDevice(ReaderType, QString()));
    if (!m_device)
        return;
    if (m_deviceAdmin->setDeviceHold(true)) {
        m_restoreHold = false;
        wait(HoldPauseMs);
    }
    m_drivePath = m_device->drivePath();
}

UsbDeviceAdapter::~UsbDeviceAdapter()
{
    if (!m_device)
        return;
    m_deviceAdmin->setDeviceHold(m_restoreHold);
    // The reader needs the pause before its device is deleted, whatever the host has returned.
    wait(ReleasePauseMs);
    m_device.reset();
}

bool UsbDeviceAdapter::wait(int milliseconds)
{
    traceWait(">>> Start waiting: at %1");
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    for (int remaining = milliseconds; remaining > 0; remaining -= StepMs) {
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        // Continues after an interruption by a signal.
        std::this_thread::sleep_for(std::chrono::milliseconds(StepMs));
    }
    QGuiApplication::restoreOverrideCursor();
    traceWait(">>> Stopp waiting: at %1");
    return true;
}
