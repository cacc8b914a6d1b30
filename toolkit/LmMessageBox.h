// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/LmLogProxy.h"

#include <QMap>
#include <QMessageBox>

/// A modal message box that is never narrower than its title. It is created on the stack and run by exec(), which
/// blocks with a running event loop. The text may be rich text. GUI thread only.
///
/// Two forms are in use, both without a default button: a warning with Ok, and a question with Yes and No.
class LmMessageBox : public QMessageBox, public LmLogProxy
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmMessageBox)

public:
    /// A parent that is a LmLogProxy becomes the next link of the log chain. It may be null or any other widget.
    explicit LmMessageBox(QWidget* parent);
    LmMessageBox(QMessageBox::Icon icon, const QString& title, const QString& text,
                 QMessageBox::StandardButtons buttons, QWidget* parent);
    ~LmMessageBox() override;

    /// Sets the text of @p button, a QMessageBox::StandardButton, and its minimum width: that of the text in the font
    /// of the message box and 50 pixels more, at least 60. A later, shorter text reduces it.
    ///
    /// A button that the message box doesn't have is ignored. As in QMessageBox, QMessageBox::Ok is added to a message
    /// box without buttons.
    void setButtonText(int button, const QString& text);

    /// Passes title and text to the log function for the icon, from which the next link gets them by logCritical().
    /// Does nothing for a question or if there is no icon.
    void logDisplayedMessage();

private:
    void fitWidthToTitle();

    QMap<int, QString> m_buttonTexts; ///< Always empty.
};
