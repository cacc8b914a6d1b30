// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QChar>
#include <QString>
#include <QStringList>

class QObject;
class QPainter;
class QRect;
class QWidget;

/// @file
/// Texts and labels in right-to-left layouts. What asks for the application's direction, a label or a painter belongs
/// to the GUI thread; lmEmbedLeftToRight() is safe on any.

/// The invisible characters that steer the direction of a text.
namespace LmBidi {

constexpr QChar RLM{u'\u200F'}; ///< Right-to-left mark.
constexpr QChar LRE{u'\u202A'}; ///< Left-to-right embedding, up to PDF.
constexpr QChar RLO{u'\u202E'}; ///< Right-to-left override, up to PDF.
constexpr QChar PDF{u'\u202C'}; ///< Pop directional formatting.

} // namespace LmBidi

/// In a right-to-left application, puts the minus of a QLabel that shows a negative number, in plain digits with a
/// point, behind the digits, and writes what it did to the debug log. Anything else, null too, is left alone; a second
/// call finds no number any more.
void lmFixNegativeNumberLabel(QObject* label);

/// Draws @p text in @p rect, vertically centred, at the edge where reading begins, @p indent pixels inside of it. The
/// direction is that of @p widget, or the application's if that is null; the painter's own one, which may differ,
/// doesn't move the text. The painter must be active; null draws nothing.
void lmDrawTextLeading(QPainter* painter, const QRect& rect, int indent, const QString& text, QWidget* widget);
/// The same at the edge where reading ends.
void lmDrawTextTrailing(QPainter* painter, const QRect& rect, int indent, const QString& text, QWidget* widget);

/// In an application that isn't left to right, @p text with a mark in front that makes it right to left, unless it is
/// so by itself.
QString lmMarkRightToLeft(const QString& text);

/// A right-to-left text with each @p part of it, say a file's path, kept left to right, all of it in a right-to-left
/// override. A text that isn't right to left comes back as it is, an empty part embeds nothing.
QString lmEmbedLeftToRight(const QString& text, QString part);
/// The same with several parts, each applied to what the ones before have made.
QString lmEmbedLeftToRight(const QString& text, QStringList parts);
