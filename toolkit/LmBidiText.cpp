// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmBidiText.h"

#include <QDebug>
#include <QGuiApplication>
#include <QLabel>
#include <QPainter>

namespace {

bool isRightToLeft(const QWidget* widget)
{
    return (widget ? widget->layoutDirection() : QGuiApplication::layoutDirection()) == Qt::RightToLeft;
}

void drawAtEdge(QPainter* painter, QRect rect, bool atRight, int indent, const QString& text)
{
    if (!painter)
        return;
    if (atRight)
        rect.setRight(rect.right() - indent);
    else
        rect.setLeft(rect.left() + indent);
    // Without AlignAbsolute, a right-to-left painter would swap left and right again. A widget's painter is right to
    // left in a right-to-left application, an image's if the text is.
    constexpr int Line = int(Qt::AlignAbsolute) | int(Qt::AlignVCenter);
    painter->drawText(rect, Line | (atRight ? Qt::AlignRight : Qt::AlignLeft), text);
}

} // namespace

void lmFixNegativeNumberLabel(QObject* label)
{
    auto* const shown = qobject_cast<QLabel*>(label);
    if (!shown || QGuiApplication::layoutDirection() != Qt::RightToLeft)
        return;
    const QString text = shown->text();
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    if (!isNumber || !(value < 0))
        return;
    if (text.startsWith(QLatin1Char('-')))
        shown->setText(QStringLiteral("%1-").arg(text.mid(1)));
    qDebug().noquote() << QStringLiteral("Negative number in R2L-label fixed as '%1'->'%2'").arg(text, shown->text());
}

void lmDrawTextLeading(QPainter* painter, const QRect& rect, int indent, const QString& text, QWidget* widget)
{
    drawAtEdge(painter, rect, isRightToLeft(widget), indent, text);
}

void lmDrawTextTrailing(QPainter* painter, const QRect& rect, int indent, const QString& text, QWidget* widget)
{
    drawAtEdge(painter, rect, !isRightToLeft(widget), indent, text);
}

QString lmMarkRightToLeft(const QString& text)
{
    if (QGuiApplication::layoutDirection() == Qt::LeftToRight || text.isRightToLeft())
        return text;
    return LmBidi::RLM + text;
}

QString lmEmbedLeftToRight(const QString& text, QString part)
{
    return lmEmbedLeftToRight(text, QStringList{part});
}

QString lmEmbedLeftToRight(const QString& text, QStringList parts)
{
    if (!text.isRightToLeft())
        return text;
    QString embedded = text;
    for (const QString& part : qAsConst(parts)) {
        if (!part.isEmpty())
            embedded.replace(part, LmBidi::LRE + part + LmBidi::PDF);
    }
    return LmBidi::RLO + embedded + LmBidi::PDF;
}
