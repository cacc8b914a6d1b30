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
/// Texts and labels in right-to-left layouts. lmEmbedLeftToRight() is thread-safe; the other functions use the
/// application's layout direction, a label or a painter and are for the GUI thread only.

/// Invisible characters that control the direction of a text.
namespace LmBidi {

constexpr QChar RLM{u'\u200F'}; ///< Right-to-left mark.
constexpr QChar LRE{u'\u202A'}; ///< Left-to-right embedding, up to PDF.
constexpr QChar RLO{u'\u202E'}; ///< Right-to-left override, up to PDF.
constexpr QChar PDF{u'\u202C'}; ///< Pop directional formatting.

} // namespace LmBidi

/// Moves the minus of a negative number in a QLabel after its digits, and writes a debug entry to Qt's log.
///
/// Does nothing if the application isn't right to left, if @p label is null or isn't a QLabel, or if its text isn't a
/// negative number in the C locale. A second call does nothing.
void lmFixNegativeNumberLabel(QObject* label);

/// Draws @p text in @p rect, vertically centred, @p indent pixels inside the edge where a line begins.
///
/// The direction is the one of @p widget, or of the application if that is null; the layout direction of the painter
/// has no effect. The painter must be active. A null painter draws nothing.
void lmDrawTextLeading(QPainter* painter, const QRect& rect, int indent, const QString& text, QWidget* widget);
/// Draws @p text in @p rect, vertically centred, @p indent pixels inside the edge where a line ends. Otherwise it is
/// like lmDrawTextLeading().
void lmDrawTextTrailing(QPainter* painter, const QRect& rect, int indent, const QString& text, QWidget* widget);

/// Returns @p text with a right-to-left mark before it. Returns @p text unchanged if it is right to left without the
/// mark, or if the application is left to right.
QString lmMarkRightToLeft(const QString& text);

/// Returns the right-to-left @p text in a right-to-left override, with each occurrence of @p part, such as the path of
/// a file, embedded left to right. An empty part embeds nothing. A @p text that isn't right to left is returned
/// unchanged.
QString lmEmbedLeftToRight(const QString& text, QString part);
/// Returns the right-to-left @p text in a right-to-left override, with each of several parts embedded left to right.
/// The parts are embedded in their order, each in the result of the ones before it.
QString lmEmbedLeftToRight(const QString& text, QStringList parts);
