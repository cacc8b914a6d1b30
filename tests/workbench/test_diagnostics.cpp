// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/Programs.h"
#include "workbench/reader/ReaderCommand.h"
#include "workbench/reader/TrafficAnonymiser.h"

#include <QDir>
#include <QTemporaryDir>

namespace {

/// The first of the planted values that can be found in the bytes, as text of either width, as hexadecimal digits or in
/// base 64 at any place; empty if none is.
QString leakIn(const QByteArray& bytes, const QStringList& planted)
{
    const QByteArray lower = bytes.toLower();
    for (const QString& value : planted) {
        const auto* units = reinterpret_cast<const char*>(value.utf16());
        const QByteArray wide(units, value.size() * 2);
        for (const QByteArray& form : {value.toUtf8(), value.toLatin1(), wide, value.toUtf8().toHex()})
            if (lower.contains(form.toLower()))
                return value;
        for (int skipped = 0; skipped < 3; ++skipped) {
            const QByteArray whole = value.toUtf8().mid(skipped);
            if (whole.size() >= 3 && bytes.contains(whole.left(whole.size() / 3 * 3).toBase64()))
                return value;
        }
    }
    return {};
}

TrafficEntry entry(const QString& name, const QByteArray& bytes)
{
    return {0, "MISC/" + name, bytes, {}};
}

} // namespace

class TestDiagnostics final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordingHoldsNothingPersonal()
    {
        const QByteArray head = "QD17-C RemoteControl File";
        const auto given = [&](const QByteArray& command) {
            return entry("CommandFile.txt", head + "\nCommand=" + command);
        };
        const auto shown = [&](const QByteArray& count, const QByteArray& word, const QByteArray& rest) {
            return entry("STATUS.TXT", head + " 0001-" + count + "\nCmd=" + word + "\nStatus  = " + rest);
        };
        const QVector<TrafficEntry> entries{
            given("BTISPAIRED Q-7"),
            shown("000001", "BTISPAIRED", "done\nResult  = ZK987654\nError code -0.\n"),
            shown("000002", "BTISPAIRED", "done\r\nResult  = ZK987654\r\nError code -31.\r\nQuentina"),
            given("BTPAIR 9C:1E:42:7A:03:D1 \"ZK987654\" Q-7"),
            given("BTREAD \"ZK987654\""),
            given("BTISPAIRED Zo\xeb Zackerly"),
            shown("000003", "BTREAD", "done\nResult  = IZK987654_47110815.xml\nError code -0.\n"),
            shown("000004", "Zackerly", "Quentina\nZackerly= ZK987654x\nQuentina"),
            entry("IZK987654_47110815.xml", "<pump name='Quentina'/>"),
            entry("IZK987654_4712.xml", "<pump name='Zackerly'/>"),
            entry("DEVLIST.XML", "<DEVICELIST><DEVICE><NAME>Quentina&apos;s</NAME><SERIALNR>ZK987654</SERIALNR><!-- "
                                 "Zackerly --><INTERFACE><BTADR>9C1E427A03D1</BTADR><PATIENT_ID>0</PATIENT_ID></"),
            entry("Vzackerly.logZK987654", "a\nb\nc\nOwner: Quentina 555-987654\nFirmware version 3.2.23"),
            entry("V2.log", QByteArray("Q\0u\0e\0n\0t\0i\0n\0a\0", 16)),
        };
        TrafficAnonymiser anonymiser;
        anonymiser.learn(entries);
        QVector<TrafficEntry> result;
        for (const TrafficEntry& original : entries) {
            result << anonymiser.anonymised(original);
            const QByteArray seen = result.last().file.toUtf8() + '\n' + result.last().content().value_or("gone");
            const QStringList planted{"Zackerly", "Quentina", "987654",   "9C:1E:42",
                                      "9C1E42",   "Q-7",      "47110815", QString(QChar(0xeb))};
            QVERIFY2(leakIn(seen, planted).isEmpty(), seen);
            QVERIFY(isTrafficFile(result.last().name()));
            QVERIFY2(original.name() == "DEVLIST.XML" || result.last().content()->size() == original.content()->size(),
                     seen);
        }
        const auto text = [&](int i) {
            return QString::fromLatin1(*result[i].content());
        };
        QString fault;
        const auto pairing = parseCommandFile(*result[3].bytes, &fault);
        QVERIFY2(pairing && result[0].bytes->endsWith("\nCommand=BTISPAIRED " + pairing->patientId.toUtf8()), "id");
        const QString serial = pairing->serialNumber;
        QVERIFY(text(4).endsWith("BTREAD \"" + serial + '"') && text(10).contains(">" + serial + "</SERIALNR>"));
        QVERIFY(
            text(10).contains(">" + QString(pairing->address).remove(':') + "</BTADR><PATIENT_ID>0</PATIENT_ID></"));
        QCOMPARE(result[8].name().left(10), 'I' + serial + '_');
        QVERIFY(text(6).contains("Result  = " + result[8].name() + "\nError code -0.\n"));
        QVERIFY(text(1) != text(2) && text(1).contains("\nResult  = " + serial + "\nError code -0.\n"));
        QVERIFY(text(2).contains("done\r\nResult  = " + serial + "\r\nError code -31.\r\n"));
        QVERIFY(text(11).endsWith("\nFirmware version 3.2.23") && text(8) != text(9));
    }
};

QTEST_GUILESS_MAIN(TestDiagnostics)

#include "test_diagnostics.moc"
