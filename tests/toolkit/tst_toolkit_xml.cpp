// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmFiles.h"
#include "toolkit/LmXmlMessages.h"
#include "toolkit/LmXmlValidator.h"

#include <QSourceLocation>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

class TestToolkitXml : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void documentsAreValidated()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath("document.xml");
        const QUrl file = QUrl::fromLocalFile(path);
        LmXmlValidator validator(QUrl::fromLocalFile(DOSE_SCHEMA), nullptr);
        LmXmlValidator withoutSchema(file, nullptr);
        LmXmlMessages messages(nullptr);
        QVERIFY(validator.isValid() && !withoutSchema.isValid() && withoutSchema.schemaUrl() == file);
        QVERIFY(!validator.validate(file, messages) && messages.messages().isEmpty()); // It doesn't exist yet.
        // Wrong and right in turn, so that each finds the messages of the previous one in the collector.
        for (const QByteArray document : {"<dose>\n  many</dose>", "<dose>1.5</dose>", "<dose", "<dose>1.5</dose>"}) {
            QVERIFY(lmWriteBytes(document, path, QIODevice::WriteOnly));
            const bool isRight = document.contains("1.5");
            QVERIFY(validator.validate(document, messages) == isRight && validator.validate(file, messages) == isRight);
            QCOMPARE(messages.messages().isEmpty(), isRight);
            QVERIFY(withoutSchema.validate(document, messages) && messages.messages().isEmpty());
        }
    }

    void messageOfHigherTypeReplacesTheOthers()
    {
        LmXmlMessages messages(nullptr);
        const QStringList lines{"Error at (line 3;column 7) - 0%3", "Error at (line 3;column 7) - 1%3",
                                "Info at (line 3;column 7) - 2%3"};
        const std::pair<QtMsgType, QStringList> rows[] = {
            {QtDebugMsg, {lines[0]}},    {QtCriticalMsg, {lines[2]}},           {QtWarningMsg, {lines[2], lines[1]}},
            {QtCriticalMsg, {lines[2]}}, {QtCriticalMsg, {lines[2], lines[2]}},
        };
        for (const auto& [type, expected] : rows) {
            messages.message(type, QString::number(type) + "%3", QUrl(), QSourceLocation(QUrl(), 3, 7));
            QCOMPARE(messages.messages(), expected);
        }
    }
};

QTEST_GUILESS_MAIN(TestToolkitXml)

#include "tst_toolkit_xml.moc"
