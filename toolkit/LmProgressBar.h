// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QProgressBar>

/// A progress bar whose format may contain "%L1": the percentage in the digits of the default locale, truncated. The
/// initial format is "%p%". GUI thread only.
///
/// "%L1" replaces the placeholders of QProgressBar: in a format with "%L1", "%p", "%v" and "%m" appear unchanged. A
/// "%1" isn't a placeholder: it appears unchanged, or as "%p" in a format with "%L1".
class LmProgressBar : public QProgressBar
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmProgressBar)

public:
    explicit LmProgressBar(QWidget* parent = nullptr);

    QString text() const override;
};
