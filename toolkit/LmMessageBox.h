// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/LmLogProxy.h"

#include <QMap>
#include <QMessageBox>

/// The one modal message window: a QMessageBox that is never narrower than its title needs. Built on the stack, run by
/// exec(), which blocks with a running event loop. Two shapes are in use: a warning with Ok and a question with Yes and
/// No, both without a default button. The text may be rich text. GUI thread only.
class LmMessageBox final : public QMessageBox, public LmLogProxy
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmMessageBox)

public:
    /// A parent that is a LmLogProxy becomes the next link of the log chain; null and any other are fine.
    explicit LmMessageBox(QWidget* parent);
    LmMessageBox(QMessageBox::Icon icon, const QString& title, const QString& text,
                 QMessageBox::StandardButtons buttons, QWidget* parent);
    ~LmMessageBox() override;

    /// Sets the text of @p button (of QMessageBox::StandardButton) and widens the button to it. A button that the box
    /// doesn't have is ignored.
    void setButtonText(int button, const QString& text);

    /// Hands title and text up the log chain, at the level of the icon. A question and a box without an icon log
    /// nothing.
    void logDisplayedMessage();

private:
    void fitWidthToTitle();

    QMap<int, QString> m_buttonTexts; ///< Filled by nothing so far.
};
