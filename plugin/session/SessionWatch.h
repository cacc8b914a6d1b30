// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "plugin/session/PatientSession.h"

#include <QPointer>

/// Watches whether the diary that was open when this object was made is still open.
///
/// The host's diary events come in at any turn of an event loop, also while a dialog is open, and replace
/// PatientSession. A run that goes on then would act for a patient whom its user did not choose.
class SessionWatch final
{
public:
    /// Returns true once the session has been replaced, also by one for the same patient.
    bool hasDiaryChanged() const { return m_session.isNull(); }

private:
    QPointer<PatientSession> m_session{PatientSession::instance()};
};
