// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "plugin/session/SessionWatch.h"

#include "plugin/session/PatientSession.h"

namespace {

int s_watches = 0;

} // namespace

SessionWatch::SessionWatch()
{
    if (++s_watches == 1)
        PatientSession::instance()->m_isOfRun = true;
}

SessionWatch::~SessionWatch()
{
    if (--s_watches == 0)
        PatientSession::instance()->m_isOfRun = false;
}

bool SessionWatch::hasDiaryChanged() const
{
    return !PatientSession::instance()->m_isOfRun;
}
