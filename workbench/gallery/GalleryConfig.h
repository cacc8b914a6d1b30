// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/LmGuiConfig.h"

/// Weeks and days off as the default locale has them.
class GalleryConfig final : public LmGuiConfig
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(GalleryConfig)

public:
    using LmGuiConfig::LmGuiConfig;

    bool isWeekend(const QDate& date) const override;
    int firstWeekDay() const override;
};
