// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

class PatientSession;

/// Watches the diary that is open when the watch is created. The component and each dialog of a run have a watch of
/// their own. GUI thread only.
///
/// The host's diary events come in at any turn of an event loop and replace PatientSession. If the same patient's diary
/// is opened again, as by a host that refreshes, the run goes on with the new session. A run whose diary was closed, or
/// replaced by that of another patient, would act for a patient whom its user did not choose.
class SessionWatch final
{
    Q_DISABLE_COPY_MOVE(SessionWatch)

public:
    SessionWatch();
    ~SessionWatch();

    /// Returns true while a run for the diary of @p session is under way, that is while it has a watch.
    static bool isWatched(const PatientSession& session);

    /// Returns true once the diary was closed or another patient's was opened, also if it has been opened again since.
    bool hasDiaryChanged() const;

private:
    int m_diary;
};
