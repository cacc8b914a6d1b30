// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QSize>

class QDialog;
class QLabel;

/// Keeps the texts of a dialog whole by a smaller font, down to one of 10 pixels.
///
/// The dialogs have their sizes in pixels while fonts are in points: on a fine screen whose windows aren't scaled, or
/// with a very long name, a text can need more room than there is. The font is looked at when the dialog shows and
/// after each change of its texts. It never grows back, so that a dialog doesn't change its looks to and fro.
///
/// A plain text that no font could make room for, such as a serial number of thousands of characters, doesn't tear the
/// dialog apart nor shrink the others: it is cut at the end of its first line, and stands whole in the tool tip.
class FontFitter final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FontFitter)

public:
    /// For a dialog whose form is set up. Becomes a child of @p dialog.
    explicit FontFitter(QDialog* dialog);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool fits() const;
    bool shrink();
    void layOut();
    bool isHopeless(const QLabel& label) const;
    bool cutHopelessTexts();
    void fit();

    QDialog* m_dialog;
    const QSize m_room; ///< the size that the form gives the dialog
    int m_steps = 0;    ///< how far down the fonts have gone
};
