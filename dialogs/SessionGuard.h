// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "plugin/session/PatientSession.h"

#include <QPointer>

/// Tells whether the diary that was open when this object was made is still the same.
///
/// The host's diary events come in at any turn of an event loop, also while a dialog is open, and replace
/// PatientSession. A run that goes on then would act for a patient whom its user didn't choose.
class SessionGuard final
{
public:
    /// False for good once that session has been replaced, also by one for the same patient.
    bool holds() const { return !m_session.isNull(); }

private:
    QPointer<PatientSession> m_session{PatientSession::instance()};
};
