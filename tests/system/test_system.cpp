// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QScopeGuard>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <QVariant>
#include <QXmlStreamReader>

namespace {

constexpr int LimitMs = 170000;

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A process that doesn't outlive the test.
class Program final : public QProcess
{
public:
    ~Program() override { end(); }
    void end()
    {
        terminate();
        if (!waitForFinished(5000))
            kill();
        waitForFinished();
    }
    bool waitForLine(const QByteArray& text)
    {
        QByteArray output;
        while (!output.contains(text) && waitForReadyRead(10000))
            output += readAll();
        return output.contains(text);
    }
};

/// Patients by the serial number of their pump.
using Pairings = QMap<QString, QString>;

Pairings keptByReader(const QString& drive)
{
    Pairings pairings;
    const QJsonDocument memory = QJsonDocument::fromJson(bytesOf(drive + "/.merivo-reader.json"));
    const QJsonArray pumps = memory["pumps"].toArray();
    for (const auto& pump : pumps)
        if (const QString patient = pump["patientId"].toString(); !patient.isEmpty())
            pairings.insert(pump["serialNumber"].toString(), patient);
    return pairings;
}

Pairings shownByReader(const QString& drive)
{
    Pairings pairings;
    QString serial;
    QXmlStreamReader xml(bytesOf(drive + "/MISC/DEVLIST.XML"));
    while (!xml.atEnd()) {
        xml.readNextStartElement();
        if (xml.name() == "SERIALNR")
            serial = xml.readElementText();
        else if (xml.name() == "PATIENT_ID")
            if (const QString patient = xml.readElementText(); patient != "0")
                pairings.insert(serial, patient);
    }
    return pairings;
}

/// The texts behind a mark at the begin of a line.
QStringList textsBehind(const QString& mark, const QByteArray& steps)
{
    QStringList texts;
    for (const QString& line : QString::fromUtf8(steps).split('\n'))
        if (line.startsWith(mark))
            texts << line.mid(mark.size());
    return texts;
}

} // namespace

/// Whole runs: the built library in merivo-host, merivo-reader as its reader, a robot as its user. The ways lie in
/// steps/, one in a file. Beside the robot's steps a file tells with what arguments the reader starts ("#reader";
/// "none" for no reader), what the host's log must hold in this order ("#log"), and how it ends ("#ends"): the pairings
/// that the reader keeps and, with a plus sign, whose the imports are. The robot asks here for a comparison of reader,
/// session and database ("ask agree LABEL"), or for a new start of the reader ("ask "reader ARGUMENTS"").
class SystemTest final : public QObject
{
    Q_OBJECT

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }
    bool startReader(const QString& arguments);
    QString answerTo(const QJsonObject& question);
    QString disagreement(const QString& patient, const QString& label);

    std::unique_ptr<QTemporaryDir> m_folder;
    Program m_reader;
    QSqlDatabase m_database = QSqlDatabase::addDatabase("QSQLITE");
    QStringList m_comparedPatients;
    QMap<qlonglong, QString> m_imports; // seen so far, with their patients

private Q_SLOTS:
    void wholeRun_data();
    void wholeRun();
};

void SystemTest::wholeRun_data()
{
    QTest::addColumn<QString>("file");
    for (const QFileInfo& file : QDir(STEPS).entryInfoList({"*.steps"}, QDir::Files))
        QTest::newRow(qPrintable(file.completeBaseName())) << file.filePath();
}

void SystemTest::wholeRun()
{
    QFETCH(const QString, file);
    const QByteArray steps = bytesOf(file);
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(startReader(textsBehind("#reader ", steps).value(0)));

    Program host;
    host.start(MERIVO_HOST_PROGRAM,
               {"--plugin", MERIVO_PLUGIN_LIBRARY, "--database", path("db"), "--drive", path("drive"), "--log",
                path("host.log"), "--robot", file, "--pictures", m_folder->path(), "--locale", "de_DE", "--json"});
    QByteArray told;
    while (host.state() != QProcess::NotRunning && host.waitForReadyRead(LimitMs))
        while (host.canReadLine()) {
            told += host.readLine();
            const QJsonObject step = QJsonDocument::fromJson(told.mid(told.lastIndexOf('\n', -2) + 1)).object();
            if (step.contains("asks"))
                host.write(answerTo(step).toUtf8() + '\n');
        }
    host.waitForFinished(5000);
    const bool isEnded =
        host.state() == QProcess::NotRunning && host.exitStatus() == QProcess::NormalExit && host.exitCode() == 0;
    const QString records = QString::fromUtf8(bytesOf(path("host.log")));
    const auto logs = qScopeGuard([&] {
        if (QTest::currentTestFailed())
            qInfo().noquote() << told << '\n' << records << '\n' << bytesOf(path("reader.log"));
    });
    QVERIFY2(isEnded, host.readAllStandardError());
    QVERIFY2(m_comparedPatients.contains("P-1") && m_comparedPatients.contains("P-2"), "not compared at the end");

    QString end;
    const Pairings kept = keptByReader(path("drive"));
    for (auto pairing = kept.cbegin(); pairing != kept.cend(); ++pairing)
        end += ' ' + pairing.key() + '=' + pairing.value();
    for (const QString& patient : qAsConst(m_imports))
        end += " +" + patient;
    QCOMPARE(textsBehind("#ends", steps), QStringList(end));

    int at = 0;
    for (const QString& text : textsBehind("#log ", steps)) {
        at = records.indexOf(text, at);
        QVERIFY2(at >= 0, qPrintable(text + " isn't in the host's log, or not in its place"));
    }
}

bool SystemTest::startReader(const QString& arguments)
{
    m_reader.end();
    if (arguments == "none")
        return !QFile::exists(path("drive")) || QFile::rename(path("drive"), path("unplugged"));
    if (!QFile::rename(path("unplugged"), path("drive")))
        QDir(m_folder->path()).mkdir("drive");
    QStringList all =
        arguments.split(' ', Qt::SkipEmptyParts) + QStringList{"--log", path("reader.log"), path("drive")};
    if (!arguments.contains("--scenario"))
        all += {"--scenario", "one.json"};
    m_reader.setWorkingDirectory(STEPS);
    m_reader.start(MERIVO_READER_PROGRAM, all);
    return m_reader.waitForLine("merivo-reader: serving");
}

QString SystemTest::answerTo(const QJsonObject& question)
{
    const QString word = question["asks"].toString();
    if (word.startsWith("reader"))
        return startReader(word.mid(7)) ? "ok" : m_reader.readAllStandardError();
    m_comparedPatients << question["diary"].toString();
    const QString difference = disagreement(m_comparedPatients.last(), question["text"].toString());
    return difference.isEmpty() ? "ok" : difference;
}

/// What of reader, session and database doesn't go together; empty if all does. The label shows the session.
QString SystemTest::disagreement(const QString& patient, const QString& label)
{
    const Pairings kept = keptByReader(path("drive"));
    if (kept != shownByReader(path("drive")))
        return "the reader's device list isn't what it keeps";
    QStringList patients = kept.values();
    if (patients.removeDuplicates() > 0)
        return "the reader keeps two pumps for a patient";
    const QString serial = kept.key(patient);
    if (label != (serial.isEmpty() ? "No pump assigned" : QString("Assigned pump: Serial number '%1'.").arg(serial)))
        return QString("the session of '%1' has \"%2\", the reader '%3'").arg(patient, label, serial);

    m_database.setDatabaseName(path("db"));
    if (!m_database.open())
        return "the database can't be opened";
    QSqlQuery query("SELECT id, puid, file_name, bytes FROM imports JOIN import_files ON import_id = imports.id");
    QMap<qlonglong, QString> imports;
    while (query.next()) {
        const qlonglong id = query.value(0).toLongLong();
        const QString name = query.value(2).toString();
        imports.insert(id, query.value(1).toString());
        if (m_imports.contains(id))
            continue;
        if (kept.value(name.mid(1).section('_', 0, 0)) != imports[id])
            return QString("'%1' lies under patient '%2', who doesn't have that pump").arg(name, imports[id]);
        if (query.value(3).toByteArray().size() < 10000 ||
            query.value(3).toByteArray() != bytesOf(path("drive/MISC/" + name)))
            return QString("the import of '%1' isn't what lies on the drive").arg(name);
    }
    for (auto seen = m_imports.cbegin(); seen != m_imports.cend(); ++seen)
        if (imports.value(seen.key()) != seen.value())
            return QString("the import %1 went from patient '%2'").arg(seen.key()).arg(seen.value());
    m_imports = imports;
    return {};
}

QTEST_GUILESS_MAIN(SystemTest)

#include "test_system.moc"
