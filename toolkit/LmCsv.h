// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// @file
/// Fields of a CSV export. A field is a number if the default locale can parse it after all percent signs are removed
/// and a minus on either side of the digits, with the right-to-left marks of Hebrew, is ignored. Thread-safe.

/// Returns a field for a spreadsheet to calculate with.
///
/// A number keeps its sign and percent signs; its decimal point becomes the one of the system's locale, which a
/// spreadsheet expects, and right-to-left marks are removed. Group separators aren't changed.
///
/// Any other text, also an empty one, becomes the formula `="text"`, so that a spreadsheet doesn't take it for a date
/// or a number. Line feeds, carriage returns and tabs are removed and backslashes are doubled. Double quotes aren't
/// escaped.
QString lmFixCsvItem(const QString& item);

/// Returns a field for people to read in one line, without quotes.
///
/// White space at the end is removed, with a debug entry in Qt's log. A number loses its right-to-left marks and keeps
/// its decimal point. In any other text, line feeds become blanks (also after a full stop), carriage returns and tabs
/// are removed, and backslashes are doubled. With @p blankZero, a number that is exactly 0 and the text "-" become
/// empty.
QString lmFixTextCsvItem(const QString& item, bool blankZero);
