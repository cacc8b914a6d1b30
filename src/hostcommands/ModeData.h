// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IModeData.h"

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

    /// Copies @p other. Returns false and copies nothing if it is null.
    bool assign(const IModeData* other);

    /// Removes "-mode" or "-control" and its value from the front of @p args, which must not be empty. Returns false
    /// and leaves @p args unchanged for any other argument, or without a value.
    bool parseModeOption(QStringList& args);

    QString m_mode;
    bool m_optionA = true;
    bool m_optionB = true;
    QString m_control;
};
