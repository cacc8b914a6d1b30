// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>

class QAction;
class QObject;

/// @file
/// The keys of an application, written as QKeySequence::PortableText. GUI thread only.

/// All actions among the descendants of @p root that have a shortcut, by their (first) shortcut; of two with the same
/// one the later in the tree of objects, depth first. The actions stay their parents' own. Empty for null.
QMap<QString, QAction*> lmActionShortcuts(QObject* root);

/// What this platform gives for each standard key that it knows, by the name of its QKeySequence::StandardKey.
/// QKeySequence::Cancel isn't among them.
QMap<QString, QString> lmStandardKeys();
