// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QProgressBar>

/// A progress bar whose format may hold "%L1": the percentage in the digits of the default locale, cut off, not
/// rounded. The format at the beginning is "%p%". GUI thread only.
///
/// "%L1" takes the place of QProgressBar's "%p", "%v" and "%m": beside it these stay as they are. A plain "%1" isn't a
/// percentage: alone it shows as it stands, beside "%L1" as "%p".
class LmProgressBar : public QProgressBar
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmProgressBar)

public:
    explicit LmProgressBar(QWidget* parent = nullptr);

    QString text() const override;
};
