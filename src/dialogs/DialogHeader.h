// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "ui_DialogHeader.h"

/// The top line of a dialog: its title, the path of a simulated reader, and the open patient.
///
/// The host's style sheet sets the fonts, by the dynamic properties "BigSizeFont" and "HighlightFont" in the forms.
class DialogHeader final : public QWidget, private Ui::DialogHeader
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DialogHeader)
    Q_PROPERTY(QString title READ title WRITE setTitle) // for the forms

public:
    explicit DialogHeader(QWidget* parent);

    QString title() const { return m_TitleLabel->text(); }
    void setTitle(const QString& title) { m_TitleLabel->setText(title); }
    void hideTitle() { m_TitleLabel->hide(); }

    /// Shows @p simulationPath and the open patient, and hides labels without text, and itself if none is left.
    void fill(const QString& simulationPath);
};
