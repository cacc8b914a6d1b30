// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "bench/endurance/InstantReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {

constexpr int LookMs = 20;
constexpr int ExchangeFileBytes = 64 * 1024;
constexpr int ConnectionLost = 32;
const char* const SerialNumber = "1234567";

QString folderPattern()
{
    const QString inMemory = QStringLiteral("/dev/shm");
    return (QFileInfo(inMemory).isWritable() ? inMemory : QDir::tempPath()) + QStringLiteral("/endurance-XXXXXX");
}

/// How long a command takes. An ABORT that ends before the plug-in looks for it would be waited for in vain.
int durationMs(const QString& word)
{
    if (word == QLatin1String("ABORT"))
        return 3500;
    return word == QLatin1String("BTREAD") || word == QLatin1String("SEARCH") ? 1000 : LookMs;
}

} // namespace

InstantReader::InstantReader()
    : m_folder(folderPattern())
{
    QDir(drive()).mkdir(QStringLiteral("MISC"));
    writeFile(QStringLiteral("V0001.log"), "Log\n\n\n\nFirmware version 3.2.23\n");
    writeFile(QStringLiteral("DEVLIST.XML"),
              QByteArray("<DEVICELIST><DEVICE><NAME>Cygnara</NAME><SERIALNR>") + SerialNumber +
                  "</SERIALNR><INTERFACE><BTADR>00:11:22:33:44:55</BTADR><PATIENT_ID>0</PATIENT_ID></INTERFACE>"
                  "</DEVICE></DEVICELIST>");
    m_word = QStringLiteral("NONE");
    writeStatus(QStringLiteral("done"), {}, 0);
    m_work.setSingleShot(true);
    connect(&m_work, &QTimer::timeout, this, &InstantReader::finish);
    connect(&m_looks, &QTimer::timeout, this, &InstantReader::look);
    m_looks.start(LookMs);
}

void InstantReader::prepare(bool isPaired, Fault fault)
{
    m_isPaired = isPaired;
    m_fault = fault;
    QFile::remove(drive() + QStringLiteral("/MISC/I0001.xml"));
}

void InstantReader::look()
{
    QFile file(drive() + QStringLiteral("/MISC/CommandFile.txt"));
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QString line = QString::fromUtf8(file.readAll().split('\n').value(1));
    file.remove();
    m_word = line.section(QLatin1Char('='), 1).section(QLatin1Char(' '), 0, 0);
    m_work.stop();
    if (m_fault == ReadStarves && m_word == QLatin1String("BTREAD"))
        return;
    writeStatus(QStringLiteral("running"), {}, 0);
    if (m_fault != SearchGoesOn || m_word != QLatin1String("SEARCH"))
        m_work.start(durationMs(m_word));
}

void InstantReader::finish()
{
    if (m_fault == ReadFails && m_word == QLatin1String("BTREAD")) {
        writeStatus(QStringLiteral("failed"), {}, ConnectionLost);
        return;
    }
    QString result;
    if (m_word == QLatin1String("BTREAD"))
        writeFile(QStringLiteral("I0001.xml"), QByteArray(ExchangeFileBytes, 'x'));
    else if (m_word == QLatin1String("BTPAIRCONFIRM"))
        m_isPaired = true;
    else if (m_word == QLatin1String("BTDELETEADDR"))
        m_isPaired = false;
    else if (m_word == QLatin1String("BTPAIR"))
        result = QStringLiteral("123 456");
    else if (m_word == QLatin1String("BTISPAIRED"))
        result = QLatin1String(m_isPaired ? SerialNumber : "0");
    writeStatus(QStringLiteral("done"), result, 0);
}

void InstantReader::writeStatus(const QString& status, const QString& result, int error)
{
    writeFile(QStringLiteral("STATUS.TXT"),
              QStringLiteral("Reader status %1\nCmd=%2\nStatus  = %3\nResult  = %4\nError code -%5.\n")
                  .arg(QString::number(++m_statusCount), m_word, status, result, QString::number(error))
                  .toUtf8());
}

void InstantReader::writeFile(const QString& nameInMisc, const QByteArray& bytes) const
{
    QSaveFile file(drive() + QStringLiteral("/MISC/") + nameInMisc);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        qFatal("can't write %s", qUtf8Printable(file.fileName()));
}
