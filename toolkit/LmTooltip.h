// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

class QLabel;

/// A small frameless window with a text, which the user can drag. Dragging keeps it within the joined width of all
/// screens and doesn't limit it vertically; when its content grows, it remains on the screen that contains the point
/// (0, 0). The dynamic property "LmTooltip" is true, for style sheets. GUI thread only.
class LmTooltip : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmTooltip)
    /// The plain or rich text that is shown.
    Q_PROPERTY(QString text READ text WRITE setText)

public:
    explicit LmTooltip(QWidget* parent);
    ~LmTooltip() override;

    /// Sets the plain or rich text that is shown.
    void setText(const QString& text);
    QString text() const;

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void moveWithinScreens(int x, int y, bool clampVertically, int screen);

    [[maybe_unused]] int m_reserved = -1;
    QLabel* m_label = nullptr;
    bool m_dragging = false;
    int m_dragOffsetX = 0; ///< Position of the mouse in the window.
    int m_dragOffsetY = 0;
};
