// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>

/// A frame that can be clicked. With an id of 0 or above it emits the signals that have the id as argument, otherwise
/// those without an argument. GUI thread only.
///
/// Any mouse button counts, and so does a press that is dragged out of the frame before its release. A double click
/// emits clicked(), doubleClicked() and, at its second release, clicked() again.
class LmClickFrame : public QFrame
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmClickFrame)
    /// The argument of the signals; a negative id means none. Initially -1.
    Q_PROPERTY(int id READ id WRITE setId)
    /// The value of the dynamic property "ClickStyle"; false while that doesn't exist.
    Q_PROPERTY(bool clickStyle READ clickStyle WRITE setClickStyle)

public:
    explicit LmClickFrame(QWidget* parent = nullptr);

    /// Sets the dynamic property "ClickStyle", on which a style sheet can select, and applies the style sheet.
    void setClickStyle(bool on);
    bool clickStyle() const;
    /// Sets the argument of the signals. A negative id, such as the initial -1, means none.
    void setId(int id);
    int id() const;

Q_SIGNALS:
    /// Emitted at a release of a mouse button if the id is negative.
    void clicked();
    /// Emitted at a release of a mouse button if the id is 0 or above.
    void clicked(int id);
    /// Emitted at a double click if the id is negative.
    void doubleClicked();
    /// Emitted at a double click if the id is 0 or above.
    void doubleClicked(int id);

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    int m_id = -1;
};
