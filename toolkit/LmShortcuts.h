// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>

class QAction;
class QObject;

/// @file
/// The keys of an application, written as QKeySequence::PortableText. GUI thread only.

/// Returns all descendants of @p root that are actions with a shortcut, by their first shortcut. Of two actions with
/// the same shortcut, the later one in depth-first order is returned. Not owned. Returns an empty map for null.
QMap<QString, QAction*> lmActionShortcuts(QObject* root);

/// Returns the key sequences of this platform by the names of QKeySequence::StandardKey. Standard keys without a
/// sequence and QKeySequence::Cancel aren't included.
QMap<QString, QString> lmStandardKeys();
