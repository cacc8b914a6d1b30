// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>

/// A frame that can be clicked. With an id of 0 or above its signals carry the id, otherwise those without an argument
/// come. GUI thread only.
///
/// Any mouse button counts, and a press that is dragged out of the frame before it is released counts too. A double
/// click gives, in this order, a click, a double click and, at its second release, another click.
class LmClickFrame : public QFrame
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmClickFrame)

public:
    explicit LmClickFrame(QWidget* parent = nullptr);

    /// Sets the property "ClickStyle", on which a style sheet may select, and lets it take effect.
    void setClickStyle(bool on);
    /// A negative id, as at the beginning -1, is none.
    void setId(int id);
    int id() const;

Q_SIGNALS:
    void clicked();
    void clicked(int id);
    void doubleClicked();
    void doubleClicked(int id);

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    int m_id = -1;
};
