// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "bench/endurance/VirtualTime.h"

#include <QByteArray>

int readerMain(int argc, char** argv);

/// merivo-reader, by the clock that it shares with the host of the trials.
int main(int argc, char** argv)
{
    const QByteArray clock = qgetenv("MERIVO_TRIAL_CLOCK");
    if (!VirtualTime::join(clock.toStdString(), 1))
        qFatal("%s: can't be used as a clock", clock.constData());
    return readerMain(argc, argv);
}
