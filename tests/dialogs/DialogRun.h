// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "readerlink/StatusFileParser.h"
#include "support/ModalUser.h"
#include "support/ReaderFolder.h"
#include "support/RecordingHost.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

struct DialogSetup
{
    QString simulationPath = {};
    QStringList pids = {"Doe", "Jane", "1970-02-03", "X1"};
    QString pump = "PU1234";
};

/// One dialog in a run of the plug-in, whose user, host and reader are controlled by the test. Instead of a polling,
/// the test reports its end. The host opens the diary again for its patient at each step and log record.
///
/// An operation returns its events, one line each: log records (except the reader link's own), commands, pollings,
/// message boxes, changes of the session, signals, and the end of the dialog.
class DialogRun final
{
public:
    enum Kind { Main, MainAfterLeftOverCommand, Read, Add, Remove };
    using Steps = std::function<QStringList(DialogRun&)>;

    explicit DialogRun(Kind kind, const DialogSetup& setup = {});
    ~DialogRun();

    /// Clicks the visible button with that text or object name. The steps have to close the dialog that it opens.
    QStringList click(const QString& button, Steps inOpenedDialog = {});
    /// Adds a button that the dialog doesn't have to its button box, and clicks it.
    QStringList clickForeignButton(QDialogButtonBox::StandardButton button)
    {
        auto* buttonBox = front()->findChild<QDialogButtonBox*>("m_DialogButtonBox");
        buttonBox->setStandardButtons(QDialogButtonBox::Cancel | button);
        return step([=] { buttonBox->button(button)->click(); });
    }
    QStringList press(Qt::Key key)
    {
        return step([=] { QTest::keyClick(front(), key); });
    }
    QStringList closeWindow()
    {
        return step([this] { front()->close(); });
    }
    QStringList selectRow(int row);
    void answerNextBox(QMessageBox::StandardButton answer) { m_boxes.answer = answer; }
    /// Calls @p action while the next message box is open, whose event loop is the first to run.
    static void duringNextBox(const std::function<void()>& action) { QTimer::singleShot(0, qApp, action); }

    QStringList readerEnds(CommandStatus status, const QString& result = {}, int error = 0)
    {
        m_parser->m_lastStatus = {"h", "X", status, result, error};
        return emitQueued([this] { Q_EMIT m_parser->finished(true); });
    }
    QStringList readerDoesNotExecute(CommandStatus status = CommandStatus::Unknown)
    {
        m_parser->m_lastStatus = {"h", "X", status, {}, 0};
        return emitQueued([this] { Q_EMIT m_parser->finished(false); });
    }
    QStringList readerStaysSilent()
    {
        return emitQueued([this] { Q_EMIT m_parser->timeout(); });
    }
    QStringList report(int percentage)
    {
        return emitQueued([=] { Q_EMIT m_parser->progress(percentage); });
    }
    void setPolling(StatusFileParser::State state) { m_parser->m_state = state; }
    /// Writes the list of pumps; a serial number may be followed by "=" and the key of the patient.
    void listPumps(const QStringList& pumps);
    /// Makes the timer of that interval fire now.
    QStringList fireTimer(int ms);
    /// Opens the diary of another patient, who has no pump.
    void endDiary();
    void setPump(const QString& serialNumber);

    // The steps to the states of the dialogs.
    QStringList startReading()
    {
        reader.writeFile("I1.xml", "<data/>");
        return fireTimer(2600);
    }
    QStringList startRemoving()
    {
        answerNextBox(QMessageBox::Yes);
        return click("Remove");
    }
    QStringList startSearch()
    {
        setPolling(StatusFileParser::Ended);
        return click("m_OverviewButton");
    }
    QStringList findPumps(const QStringList& pumps)
    {
        startSearch();
        listPumps(pumps);
        return readerEnds(CommandStatus::Done);
    }
    QStringList showList() { return findPumps({"S1"}); }
    QStringList assign()
    {
        showList();
        return click("m_AssignButton");
    }
    QStringList receiveCode()
    {
        assign();
        return readerEnds(CommandStatus::Done, "847213");
    }
    QStringList decline()
    {
        receiveCode();
        return click("m_DeclineButton");
    }
    QStringList confirmCode()
    {
        receiveCode();
        return click("m_ConfirmButton");
    }
    QStringList openReassignPage()
    {
        findPumps({"S1", "S2=P9", "S3=P1"});
        selectRow(1);
        return click("m_AssignButton");
    }
    QStringList reassign()
    {
        openReassignPage();
        answerNextBox(QMessageBox::Yes);
        return click("OK");
    }

    /// Returns the page, what is shown to the user, and the visible buttons; disabled ones are in parentheses.
    QString shown() const;
    /// Returns the events since the latest operation began.
    QStringList takeEvents();

    static RecordingHost host;
    ReaderFolder reader;
    std::unique_ptr<QDialog> dialog;

private:
    QStringList step(const std::function<void()>& action);
    QStringList emitQueued(const std::function<void()>& emission);
    QDialog* front() const;
    void refreshDiary() const;
    void noteSession();

    StatusFileParser* m_parser;
    BoxAnswerer m_boxes{&host.journal.lines};
    bool m_isDiaryOpen = true;
    QStringList m_session; ///< as last noted
};
Q_DECLARE_METATYPE(DialogRun::Kind)
Q_DECLARE_METATYPE(DialogRun::Steps)

#define COMPARE_EVENTS(events, ...) QCOMPARE((events).join('\n'), QStringList(__VA_ARGS__).join('\n'))

/// Returns the event of a message box.
QString box(const QString& text);
extern const QString ReaderSilentBox;
extern const QString ReassignBox;
extern const QString RemoveBox;
extern const QStringList DiaryEnded;     ///< of the main dialog: log record, message box and closing
extern const QStringList ConnectionLost; ///< error 32: the log record and the message box
