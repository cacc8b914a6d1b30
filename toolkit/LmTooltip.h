// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

class QLabel;

/// A small frameless window with one text, which the user can drag. Dragging keeps it within the joined width of all
/// screens and leaves it free vertically; when its content grows, it stays on the screen that holds the point (0, 0).
/// A style sheet addresses it by the property "LmTooltip". GUI thread only.
class LmTooltip final : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmTooltip)

public:
    explicit LmTooltip(QWidget* parent);
    ~LmTooltip() override;

    /// Plain or rich text.
    void setText(const QString& text);

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
    int m_dragOffsetX = 0; ///< Where in the window the mouse took hold.
    int m_dragOffsetY = 0;
};
