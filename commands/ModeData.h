// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "host/IModeData.h"

#include <QStringList>

/// The mode record of a command.
class ModeData : public virtual IModeData
{
public:
    ModeData() = default;
    ModeData(const QString& mode, bool optionA, bool optionB);

    bool optionA() const override { return m_optionA; }
    bool optionB() const override { return m_optionB; }
    QString control() const override { return m_control; }
    QString mode() const override { return m_mode; }

    /// Copies from any other implementation of the interface; false, and nothing copied, for null.
    bool assign(const IModeData* other);

    /// Takes "-mode" or "-control" with its value from the front of @p args, which holds a word at least. False, and
    /// @p args as it was, for any other word and for a missing value.
    bool parseModeOption(QStringList& args);

    QString m_mode;
    bool m_optionA = true;
    bool m_optionB = true;
    QString m_control;
};
