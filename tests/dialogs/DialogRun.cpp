// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/DialogRun.h"

#include "base/Logger.h"
#include "base/PatientSession.h"
#include "dialogs/DevicesTable.h"
#include "dialogs/MainDialog.h"
#include "dialogs/PumpAddDialog.h"
#include "dialogs/PumpReadDialog.h"
#include "dialogs/PumpRemoveDialog.h"
#include "readerlink/CommandFileWriter.h"
#include "toolkit/LmIcons.h"
#include "workflows/ReadoutPumpControl.h"

#include <QLabel>
#include <QMovie>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QStackedWidget>
#include <QTimerEvent>

const QString ReaderSilentBox = box("Something is wrong with the devicereader. Please reconnect it to the PC.");
const QString RemoveBox = box("Are you sure to remove the pump <b>PU1234</b> from patient <b>Doe, Jane</b>?<br/>"
                              "<b>Note:</b><br/><i> The data that was downloaded from the pump remains in the patient "
                              "record.</i>");
const QString ReassignBox = box("Are you sure to reassign the pump <b>S2</b> from patient <b>'%3 &lt;Old, R&amp;D'</b> "
                                "to patient <b>'Doe, Jane'</b>?<br/><b>Note:</b><br/><i>The data that was downloaded "
                                "from the pump remains in the patient record.</b>");
const QStringList DiaryEnded{"err|=!= [Main dialog] Diary closed or changed, run ended.",
                             box("The patient's diary was closed or changed. Nothing was imported. Please open the "
                                 "diary and start the plugin again."),
                             "rejected"};
const QStringList ConnectionLost{"err|Error message box: code='32'",
                                 box("<b>Connection lost</b><br/>Maybe the battery is weak, or the pump is too far "
                                     "away. Please move it closer and try again to connect.")};
RecordingHost DialogRun::host;

namespace {

QPushButton* visibleButton(const QWidget& window, const QString& text)
{
    for (auto* button : window.findChildren<QPushButton*>()) {
        if (button->isVisible() && (button->text().remove('&') == text || button->objectName() == text))
            return button;
    }
    qFatal("There is no button %s", qPrintable(text));
}

QString shownBy(const QLabel& label)
{
    const QMovie* movie = label.movie();
    if (movie && !movie->currentPixmap().isNull())
        return movie->state() == QMovie::Running ? "busy" : "idle";
    const QImage image = label.pixmap(Qt::ReturnByValue).toImage();
    if (image.isNull())
        return label.text();
    for (const QString icon : {"icon_connected", "icon_plus_grey_dark"}) {
        if (image == lmIcon(":/img/Images/" + icon + ".svg").pixmap(32, 32).toImage())
            return icon;
    }
    return label.objectName();
}

} // namespace

QString box(const QString& text)
{
    return "box|Merivo Connections|" + text;
}

DialogRun::DialogRun(Kind kind, const DialogSetup& setup)
{
    Logger::instance(nullptr, &host.services);
    PatientSession::setHost(&host.services, &host.database);
    host.database.records = {{"1", {"P1", setup.pids}}, {"9", {"P9", {"%3 <Old", "R&D"}}}};
    reader.writeStatus("at rest", "BTREAD", kind == MainAfterLeftOverCommand ? "running" : "done");
    CommandFileWriter::create(reader.drive());
    m_parser = StatusFileParser::create(reader.drive());
    QObject::disconnect(m_parser, &StatusFileParser::pollingRequested, nullptr, nullptr);
    const auto note = [this](const QString& line) {
        noteSession();
        host.journal.lines << line;
    };
    const auto notePolling = [note](int stop, int start, int delay) {
        note(QString("poll %1 %2 %3").arg(stop).arg(start).arg(delay));
    };
    QObject::connect(m_parser, &StatusFileParser::pollingRequested, m_parser, notePolling, Qt::DirectConnection);
    PatientSession::create(nullptr)->setPatientId("P1");
    PatientSession::instance()->setPids(setup.pids);
    PatientSession::instance()->setDeviceName("stays");
    setPump(setup.pump);
    host.journal.clear();
    host.services.beforeLogLine = [this](const QString&) {
        refreshDiary();
        noteSession();
    };
    if (kind == Add)
        dialog = std::make_unique<PumpAddDialog>(&host.services, &host.database, setup.simulationPath, nullptr);
    else if (kind == Remove)
        dialog = std::make_unique<PumpRemoveDialog>(&host.services, &host.database, setup.simulationPath, nullptr);
    else if (kind == Read)
        dialog = std::make_unique<PumpReadDialog>(&host.services, &host.database, setup.simulationPath, nullptr);
    else
        dialog = std::make_unique<MainDialog>(&host.services, &host.database, setup.simulationPath, nullptr);
    if (auto* main = qobject_cast<MainDialog*>(dialog.get()))
        QObject::connect(main, &MainDialog::importDataReady, main, [=](QString guid) { note("import " + guid); });
    if (auto* read = qobject_cast<PumpReadDialog*>(dialog.get()))
        QObject::connect(read, &PumpReadDialog::importDataReady, read, [=] { note("data"); });
    if (auto* opened = qobject_cast<PumpDialog*>(dialog.get()))
        QObject::connect(opened, &PumpDialog::deviceReaderCritical, opened, [=] { note("critical"); });
    QObject::connect(dialog.get(), &QDialog::finished, dialog.get(),
                     [=](int result) { note(result == QDialog::Accepted ? "accepted" : "rejected"); });
    dialog->show();
}

DialogRun::~DialogRun()
{
    host.services.beforeLogLine = nullptr;
    dialog.reset();
    delete StatusFileParser::instance(); // a later run has destroyed this one's
    delete CommandFileWriter::instance();
}

QStringList DialogRun::click(const QString& button, Steps inOpenedDialog)
{
    QTimer timer; // opening a dialog blocks until it is closed
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        if (inOpenedDialog && front() != dialog.get())
            std::exchange(inOpenedDialog, nullptr)(*this);
    });
    timer.start(1);
    const QStringList events = step([&] { QTest::mouseClick(visibleButton(*front(), button), Qt::LeftButton); });
    if (inOpenedDialog)
        qFatal("No dialog was opened by %s", qPrintable(button));
    return events;
}

QStringList DialogRun::selectRow(int row)
{
    auto* table = front()->findChild<DevicesTable*>();
    const QModelIndex index = table->model()->index(row, 0);
    table->scrollTo(index);
    return step([&] { QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(index).center()); });
}

QStringList DialogRun::emitQueued(const std::function<void()>& emission)
{
    return step([&] {
        QStringList& lines = host.journal.lines;
        const QStringList linesBefore = lines;
        const QString before = shown();
        emission();
        if (shown() != before || lines != linesBefore)
            lines << "handled on the emitting thread";
        const QObjectList receivers = front()->children();
        for (QObject* receiver : receivers)
            QCoreApplication::sendPostedEvents(receiver);
        if (front()->findChild<ReadoutPumpControl*>() && shown() != before)
            lines << "handled by the read dialog before its workflow was through";
    });
}

void DialogRun::listPumps(const QStringList& pumps)
{
    QString xml;
    for (const QString& pump : pumps)
        xml += QString("<DEVICE><SERIALNR>%1</SERIALNR><NAME>Cygnara</NAME><INTERFACE><BTADR>B-%1</BTADR>"
                       "<PATIENT_ID>%2</PATIENT_ID></INTERFACE></DEVICE>")
                   .arg(pump.section('=', 0, 0), pump.section('=', 1));
    reader.writeFile("DEVLIST.XML", "<DEVICELIST>" + xml.toUtf8() + "</DEVICELIST>");
}

QStringList DialogRun::fireTimer(int ms)
{
    for (auto* timer : front()->findChildren<QTimer*>()) {
        QTimerEvent event(timer->timerId());
        if (timer->isActive() && timer->interval() == ms)
            return step([&] { QCoreApplication::sendEvent(timer, &event); });
    }
    qFatal("No timer of %d ms is set", ms);
}

void DialogRun::endDiary()
{
    m_isDiaryOpen = false;
    PatientSession::open("P2");
    setPump({});
}

void DialogRun::setPump(const QString& serialNumber)
{
    PatientSession::instance()->setPumpSerialNumber(serialNumber);
    m_session.clear();
    noteSession();
}

/// The dialog of a pump that the main dialog has opened, or else the dialog itself.
QDialog* DialogRun::front() const
{
    auto* opened = qobject_cast<PumpDialog*>(QApplication::activeModalWidget());
    return opened ? opened : dialog.get();
}

QString DialogRun::shown() const
{
    QStringList parts;
    if (const auto* pages = front()->findChild<QStackedWidget*>())
        parts << QString("page %1").arg(pages->currentIndex());
    const QRegularExpression told("Result|Busy.*Label|m_MessageLabel|PairingCode|Progress|Graphic.*2|pumpAssign");
    for (const auto* label : front()->findChildren<QLabel*>(told)) {
        if (label->isVisible() && front()->objectName() != "PumpRemoveDialog")
            parts << shownBy(*label);
    }
    if (const auto* bar = front()->findChild<QProgressBar*>())
        parts << QString::number(bar->value()) + '%';
    if (const auto* table = front()->findChild<DevicesTable*>(); table && table->isVisible())
        parts << QString("row %1").arg(table->selectedIndexes().value(0).row());
    for (const auto* button : front()->findChildren<QPushButton*>()) {
        if (button->isVisible())
            parts << QString(button->isEnabled() ? "%1" : "(%1)").arg(button->text().remove('&'));
    }
    return parts.join(", ");
}

QStringList DialogRun::step(const std::function<void()>& action)
{
    takeEvents();
    refreshDiary();
    action();
    QCoreApplication::sendPostedEvents(front());
    return takeEvents();
}

QStringList DialogRun::takeEvents()
{
    noteSession();
    static const QRegularExpression linkTrace("^mcp(?!.*(Controller\\]|dialog\\]|Paired pump|canceling))");
    static const QRegularExpression noDetail("\\|\\|$");
    QStringList events;
    for (QString line : std::exchange(host.journal.lines, {})) {
        if (line.startsWith("mcp|<== <"))
            events << "command " + line.section('<', 2).section('>', 0, 0).trimmed();
        else if (!line.contains(linkTrace))
            events << line.remove(noDetail).remove(reader.misc() + '/').trimmed();
    }
    for (const BoxAnswerer::Box& seen : std::exchange(m_boxes.seen, {})) {
        const bool isQuestion = seen.text.contains('?');
        if (seen.icon != (isQuestion ? QMessageBox::Question : QMessageBox::Warning) || seen.parent ||
            seen.buttons != (isQuestion ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok))
            events << "other icon, buttons or parent of the message box: " + seen.text;
        if (seen.size.boundedTo(QGuiApplication::primaryScreen()->size()) != seen.size)
            events << "message box larger than the screen";
    }
    return events;
}

void DialogRun::refreshDiary() const
{
    if (!m_isDiaryOpen)
        return;
    const QStringList pids = PatientSession::instance()->pids();
    PatientSession::open("P1")->setPids(pids);
}

/// Adds what has changed in the session to the events, unless nothing was noted before.
void DialogRun::noteSession()
{
    const PatientSession* session = PatientSession::instance();
    const QString pump = session->pumpSerialNumber().isEmpty() ? "none" : session->pumpSerialNumber();
    const QStringList now{"pump " + pump, "file " + QFileInfo(session->exchangeFilePath()).fileName()};
    for (int i = 0; i < m_session.size(); ++i) {
        if (m_session.at(i) != now.at(i))
            host.journal.lines << now.at(i);
    }
    m_session = now;
}
