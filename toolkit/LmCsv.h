// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// @file
/// Fields of a CSV export. A field counts as a number if the default locale reads one from it, after percent signs and
/// a minus on either side of the digits (with the marks that Hebrew puts there) are put aside. Both are safe on any
/// thread.

/// A field for a spreadsheet to calculate with. A number stays as it is, sign and percent sign included, but with the
/// decimal point of the system's locale, which is the one that a spreadsheet expects, and without right-to-left marks;
/// group separators aren't changed. Anything else, an empty field too, becomes the formula ="text", so that the
/// spreadsheet can't take it for a date or a number: line feeds, carriage returns and tabs are removed and backslashes
/// doubled, but double quotes aren't escaped.
QString lmFixCsvItem(const QString& item);

/// A field for people to read in one line, unquoted. White space at its end is removed, with an entry in the debug log.
/// A number loses its right-to-left marks and keeps its decimal point; in any other text line feeds become blanks
/// (one after a full stop too), carriage returns and tabs are removed and backslashes doubled. With @p blankZero, a
/// number that is exactly 0 and a text that is just "-" become empty.
QString lmFixTextCsvItem(const QString& item, bool blankZero);
