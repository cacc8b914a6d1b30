// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

/// The vocabulary of the host's command data, common to all commands. It is created when the library is loaded.
namespace CommandKeys {

/// Report names and their variants.
inline const QMap<QString, QStringList> ReportVariants{
    {QStringLiteral("measurement"), {QStringLiteral("cgm"), QStringLiteral("smbg")}},
    {QStringLiteral("graph"), {QStringLiteral("combined"), QStringLiteral("staggered")}},
    {QStringLiteral("logbook"), {QStringLiteral("meals"), QStringLiteral("hours")}},
};

/// The host's report formats.
inline const QStringList OutputFormats{QStringLiteral("pdf"), QStringLiteral("png"),  QStringLiteral("txt"),
                                       QStringLiteral("csv"), QStringLiteral("html"), QStringLiteral("xml")};

inline const QString JobCommand = QStringLiteral("jobcmd");
inline const QString JobId = QStringLiteral("jobid");
inline const QString MessageId = QStringLiteral("msgid");
inline const QString MessageText = QStringLiteral("msgtxt");
inline const QString Puid = QStringLiteral("puid");
inline const QString Pid1 = QStringLiteral("pid1");
inline const QString Pid2 = QStringLiteral("pid2");
inline const QString Pid3 = QStringLiteral("pid3");
inline const QString Pid4 = QStringLiteral("pid4");
inline const QString PidO1 = QStringLiteral("pido1");
inline const QString PidO2 = QStringLiteral("pido2");
inline const QString PidO3 = QStringLiteral("pido3");
inline const QString PidO4 = QStringLiteral("pido4");
inline const QString DiaryFrom = QStringLiteral("diary-from");
inline const QString DiaryTo = QStringLiteral("diary-to");
inline const QString RangeFrom = QStringLiteral("range-from");
inline const QString RangeTo = QStringLiteral("range-to");
inline const QString TestingFrom = QStringLiteral("testing-from");
inline const QString TestingTo = QStringLiteral("testing-to");
inline const QString PeriodFrom = QStringLiteral("period-from");
inline const QString PeriodTo = QStringLiteral("period-to");
inline const QString BgMean = QStringLiteral("bg-mean");
inline const QString BgSd = QStringLiteral("bg-sd");
inline const QString BgHbgi = QStringLiteral("bg-hbgi");
inline const QString BgLbgi = QStringLiteral("bg-lbgi");
inline const QString BgUnit = QStringLiteral("bg-unit");
inline const QString BgCount = QStringLiteral("bg-count");
inline const QString BgFreq = QStringLiteral("bg-freq");
inline const QString BgColorHypo = QStringLiteral("bg-color-hypo");
inline const QString BgColorMean = QStringLiteral("bg-color-mean");
inline const QString BgColorSd = QStringLiteral("bg-color-sd");
inline const QString BgTargetHigh = QStringLiteral("bg-target-high");
inline const QString BgTargetLow = QStringLiteral("bg-target-low");
inline const QString BgTargetHypo = QStringLiteral("bg-target-hypo");
inline const QString BgTargetCountHigh = QStringLiteral("bg-target-count-high");
inline const QString BgTargetCountIn = QStringLiteral("bg-target-count-in");
inline const QString BgTargetCountLow = QStringLiteral("bg-target-count-low");
inline const QString BgTargetCountHypo = QStringLiteral("bg-target-count-hypo");
inline const QString IpBolusCount = QStringLiteral("ip-bolus-count");
inline const QString IpBolusFreq = QStringLiteral("ip-bolus-freq");
inline const QString IpBolusAvg = QStringLiteral("ip-bolus-avg");
inline const QString IpBasalAvg = QStringLiteral("ip-basal-avg");
inline const QString AppPath = QStringLiteral("app-path");
inline const QString DiaryName = QStringLiteral("diaryname");
inline const QString DataPath = QStringLiteral("datapath");
inline const QString InstanceId = QStringLiteral("instance-id");
inline const QString PatientGuid = QStringLiteral("patient-guid");
inline const QString Vtlpid = QStringLiteral("vtlpid");
inline const QString DiaryDiffs = QStringLiteral("diarydiffs");

/// All keys, in the host's order.
// clang-format off
inline const QStringList All{
    JobCommand, JobId, MessageId, MessageText, Puid, Pid1, Pid2, Pid3, Pid4, PidO1, PidO2, PidO3, PidO4,
    DiaryFrom, DiaryTo, RangeFrom, RangeTo, TestingFrom, TestingTo, PeriodFrom, PeriodTo, BgMean, BgSd, BgHbgi,
    BgLbgi, BgUnit, BgCount, BgFreq, BgColorHypo, BgColorMean, BgColorSd, BgTargetHigh, BgTargetLow,
    BgTargetHypo, BgTargetCountHigh, BgTargetCountIn, BgTargetCountLow, BgTargetCountHypo, IpBolusCount,
    IpBolusFreq, IpBolusAvg, IpBasalAvg, AppPath, DiaryName, DataPath, InstanceId, PatientGuid, Vtlpid,
    DiaryDiffs};
// clang-format on

} // namespace CommandKeys
