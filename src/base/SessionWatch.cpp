// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "base/SessionWatch.h"

#include "base/PatientSession.h"

#include <QVector>

namespace {

QVector<int> s_watched; // the diary of each watch

} // namespace

SessionWatch::SessionWatch()
    : m_diary(PatientSession::instance()->m_diary)
{
    s_watched.append(m_diary);
}

SessionWatch::~SessionWatch()
{
    s_watched.removeOne(m_diary);
}

bool SessionWatch::isWatched(const PatientSession& session)
{
    return s_watched.contains(session.m_diary);
}

bool SessionWatch::hasDiaryChanged() const
{
    return PatientSession::instance()->m_diary != m_diary;
}
