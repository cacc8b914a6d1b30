// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmDriveSpace.h"

#include "toolkit/LmMemoryInfo.h"

#include <QDebug>
#include <QStorageInfo>

LmDriveSpace::LmDriveSpace(const QString& path)
    : m_path(path)
{
    refresh();
}

LmDriveSpace::~LmDriveSpace() = default;

bool LmDriveSpace::refresh()
{
    const QStorageInfo storage(m_path);
    const auto total = double(storage.bytesTotal());
    const auto free = double(storage.bytesFree());
    // Compared exactly, since the figures are whole numbers.
    const bool changed = total < m_total || total > m_total || free < m_free || free > m_free;
    m_total = total;
    m_free = free;
    return changed;
}

double LmDriveSpace::freePercent() const
{
    return m_total > 0 && m_free >= 0 ? m_free * 100 / m_total : -1;
}

double LmDriveSpace::scaled(double value, int unitSteps)
{
    if (value > 0) {
        for (; unitSteps > 0; --unitSteps)
            value /= 1024;
    }
    return value;
}

QPair<double, double> LmDriveSpace::memoryInfo(int kind)
{
    const LmMemoryFigures figures = lmMemoryFigures(kind);
    return {figures.total, figures.available};
}

LmDriveSpace LmDriveSpace::driveInfo(const QString& path)
{
    constexpr int GiB = 3;
    const QString root = QStorageInfo(path).rootPath();
    const LmDriveSpace drive(root);
    qInfo() << "=> drive information for" << root;
    qDebug() << "  path  :" << path;
    qDebug().nospace() << "  usage : " << drive.free(GiB) << "GiB"
                       << " (" << drive.freePercent() << "%) of " << drive.total(GiB) << "GiB";
    return drive;
}
