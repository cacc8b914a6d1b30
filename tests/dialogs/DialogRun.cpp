// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/DialogRun.h"

#include "plugin/session/Logger.h"
#include "plugin/session/PatientSession.h"
#include "reader/CommandFileWriter.h"
#include "reader/StatusFileParser.h"

#include <QCoreApplication>

RecordingHost& testHost()
{
    static RecordingHost host;
    return host;
}

DialogRun::DialogRun(bool translated)
{
    RecordingHost& host = testHost();
    Logger::instance(nullptr, &host.services);
    PatientSession::setHost(&host.services, &host.database);
    PatientSession* session = PatientSession::create(nullptr);
    session->setPatientId(QStringLiteral("P-4711"));
    session->setPids(
        {QStringLiteral("Doe"), QStringLiteral("Jane"), QStringLiteral("1970-02-03"), QStringLiteral("X1")});
    reader.writeStatus(QStringLiteral("at rest"), QStringLiteral("NONE"), QStringLiteral("done"));
    CommandFileWriter::create(reader.drive());
    StatusFileParser::create(reader.drive());
    if (translated) {
        if (!m_translator.load(QStringLiteral(":/lang/i18n/mc_en_GB.qm")))
            qFatal("The translation can't be loaded");
        QCoreApplication::installTranslator(&m_translator);
    }
    host.journal.clear();
}

DialogRun::~DialogRun()
{
    delete StatusFileParser::instance();
    delete CommandFileWriter::instance();
}

void DialogRun::endRun(QObject* dialog, bool success, CommandStatus status, const QString& result, int error)
{
    StatusFileParser* parser = StatusFileParser::instance();
    parser->m_lastStatus = {QStringLiteral("h"), QStringLiteral("X"), status, result, error};
    Q_EMIT parser->finished(success);
    QCoreApplication::sendPostedEvents(dialog);
}
