// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/robot/Robot.h"

#include "tools/robot/WidgetFinder.h"
#include "tools/support/CommandLine.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QFileInfo>
#include <QInputMethodEvent>
#include <QMessageBox>
#include <QPointer>
#include <QStackedWidget>
#include <QTest>
#include <QWindow>

#include <algorithm>

namespace {

using namespace std::chrono_literals;

constexpr auto TickInterval = 20ms;

/// Returns the point to click: near the left or right edge, as a check box reacts only on its mark and text.
QPoint hitPointOf(const QWidget* widget)
{
    const int inset = std::min(widget->width(), widget->height()) / 2;
    return {widget->isLeftToRight() ? inset : widget->width() - inset, widget->height() / 2};
}

/// Activates the window, as a window manager does when a window is clicked or the one in front of it closes.
void activate(QWindow* window)
{
    if (QGuiApplication::focusWindow() != window)
        window->requestActivate();
}

QModelIndex cellOf(const QAbstractItemView* view, const QString& text)
{
    const QAbstractItemModel* model = view->model();
    for (int column = 0; column < model->columnCount(view->rootIndex()); ++column) {
        const QModelIndex start = model->index(0, column, view->rootIndex());
        const QModelIndexList cells = model->match(start, Qt::DisplayRole, text, 1, Qt::MatchExactly);
        if (!cells.isEmpty())
            return cells.first();
    }
    return {};
}

/// Returns the value that a condition on a widget compares.
QString valueOf(const QWidget* widget, const QString& aspect)
{
    if (aspect == "text")
        return WidgetFinder::textOf(widget);
    if (aspect == "rows") {
        const auto* view = qobject_cast<const QAbstractItemView*>(widget);
        return view && view->model() ? QString::number(view->model()->rowCount(view->rootIndex())) : "none";
    }
    if (aspect == "page") {
        const auto* pages = qobject_cast<const QStackedWidget*>(widget);
        return pages && pages->currentWidget() ? pages->currentWidget()->objectName() : "none";
    }
    return widget->isEnabled() ? "enabled" : "disabled";
}

} // namespace

const QVector<Robot::Verb> Robot::Verbs{
    {"answer BUTTON [TEXT]", &Robot::answer},
    {"click NAME", &Robot::click},
    {"key KEY", &Robot::pressKey},
    {"open PUID", &Robot::openDiary},
    {"patient PUID FAMILY [GIVEN] [BIRTHDAY] [ID]", &Robot::addOrChangePatient},
    {"pause SECONDS", &Robot::pause},
    {"picture FILE [NAME]", &Robot::takePicture},
    {"quit", &Robot::quit},
    {"row NAME TEXT", &Robot::selectRow},
    {"type NAME TEXT", &Robot::type},
    {"wait|expect box TEXT", &Robot::checkMessageBox},
    {"wait|expect dialog WINDOW open|closed", &Robot::checkDialog},
    {"wait|expect NAME enabled|disabled", &Robot::checkWidget},
    {"wait|expect NAME page PAGE", &Robot::checkWidget},
    {"wait|expect NAME rows COUNT", &Robot::checkWidget},
    {"wait|expect NAME text equals|contains TEXT", &Robot::checkWidget},
};

Robot::Robot(const RobotHost& host, const QVector<RobotStep>& steps, const QDir& pictures, QObject* parent)
    : QObject(parent)
    , m_host(host)
    , m_steps(steps)
    , m_pictures(pictures)
{
    m_timer.setInterval(TickInterval);
    connect(&m_timer, &QTimer::timeout, this, &Robot::tick);
}

QStringList Robot::forms()
{
    QStringList forms;
    for (const Verb& verb : Verbs)
        forms.append(verb.form);
    return forms;
}

void Robot::start()
{
    QApplication::setQuitOnLastWindowClosed(false); // the application ends with the last step
    m_clock.start();
    m_timer.start();
}

void Robot::tick()
{
    if (m_index == m_steps.size() || !m_failure.isEmpty()) {
        m_timer.stop();
        QCoreApplication::exit();
        return;
    }
    const RobotStep& step = m_steps.at(m_index);
    Outcome outcome = (this->*Verbs.at(step.form).attempt)(step.words);
    if (outcome.kind == Outcome::Waiting) {
        if (step.words.first() != "expect" && !m_clock.hasExpired(step.limit.count()))
            return;
        outcome.kind = Outcome::Failed;
    }
    const bool isDone = outcome.kind == Outcome::Done;
    print(QString("%1  %2  %3 ms  %4")
              .arg(m_index + 1, 3)
              .arg(isDone ? "ok    " : "FAILED")
              .arg(m_clock.elapsed(), 6)
              .arg(step.text));
    if (!isDone)
        m_failure = QString("%1: step failed: %2: %3; %4")
                        .arg(step.place, step.text, outcome.seen, WidgetFinder::describeWindows());
    ++m_index;
    m_clock.restart();
    m_timer.start(); // after what the step has queued
}

Robot::Outcome Robot::addOrChangePatient(const QStringList& words)
{
    return doneUnless(m_host.addOrChangePatient(words.at(1), words.mid(2)));
}

Robot::Outcome Robot::openDiary(const QStringList& words)
{
    return doneUnless(m_host.openDiary(words.at(1)));
}

Robot::Outcome Robot::pause(const QStringList& words)
{
    return doneIf(m_clock.hasExpired(qRound64(words.at(1).toDouble() * 1000)), "the time isn't over");
}

Robot::Outcome Robot::quit(const QStringList&)
{
    return doneIf(!QApplication::activeModalWidget() && m_host.window.close(), "the window stays open");
}

Robot::Outcome Robot::takePicture(const QStringList& words)
{
    QWidget* widget = words.size() > 2 ? WidgetFinder::widget(words.at(2)) : WidgetFinder::inputWindow();
    if (!widget || !widget->isVisible())
        return waiting("it isn't shown");
    const QString file = m_pictures.filePath(words.at(1) + ".png");
    QDir().mkpath(QFileInfo(file).path());
    return widget->grab().save(file, "PNG", 0) ? Outcome() : failed(QString("'%1' can't be written").arg(file));
}

Robot::Outcome Robot::click(const QStringList& words)
{
    QWidget* widget = WidgetFinder::widget(words.at(1));
    const Outcome outcome = checkReachable(widget, words.at(1));
    if (outcome.kind == Outcome::Done)
        sendClick(widget, hitPointOf(widget));
    return outcome;
}

Robot::Outcome Robot::selectRow(const QStringList& words)
{
    auto* view = qobject_cast<QAbstractItemView*>(WidgetFinder::widget(words.at(1)));
    const Outcome outcome = checkReachable(view, words.at(1));
    if (outcome.kind != Outcome::Done)
        return outcome;
    const QModelIndex cell = cellOf(view, words.at(2));
    if (!cell.isValid())
        return waiting("none of its rows shows that");
    view->scrollTo(cell);
    sendClick(view->viewport(), view->visualRect(cell).center());
    return {};
}

Robot::Outcome Robot::answer(const QStringList& words)
{
    const Outcome outcome = checkMessageBox({"wait", "box", words.value(2)});
    if (outcome.kind != Outcome::Done)
        return outcome;
    QAbstractButton* button = WidgetFinder::button(QApplication::activeModalWidget(), words.at(1));
    if (!button)
        return failed(QString("the message box has no button '%1'").arg(words.at(1)));
    sendClick(button, hitPointOf(button));
    return {};
}

Robot::Outcome Robot::type(const QStringList& words)
{
    QWidget* field = WidgetFinder::widget(words.at(1));
    const Outcome outcome = checkReachable(field, words.at(1));
    if (outcome.kind != Outcome::Done)
        return outcome;
    field->setFocus(Qt::OtherFocusReason);
    // Commits the text as an input method does. Typed keys would go to the list of completions, once it has opened.
    const auto input = [field = QPointer<QWidget>(field), text = words.at(2)] {
        if (!field)
            return;
        QMetaObject::invokeMethod(field, "clear");
        QInputMethodEvent event;
        event.setCommitString(text);
        QCoreApplication::sendEvent(field, &event);
    };
    QMetaObject::invokeMethod(this, input, Qt::QueuedConnection);
    return {};
}

Robot::Outcome Robot::pressKey(const QStringList& words)
{
    const auto press = [keys = QKeySequence::fromString(words.at(1), QKeySequence::PortableText)] {
        if (const QWidget* input = WidgetFinder::inputWindow()) {
            activate(input->windowHandle());
            QTest::keySequence(input->windowHandle(), keys);
        }
    };
    QMetaObject::invokeMethod(this, press, Qt::QueuedConnection);
    return {};
}

Robot::Outcome Robot::checkMessageBox(const QStringList& words)
{
    const auto* box = qobject_cast<const QMessageBox*>(QApplication::activeModalWidget());
    const bool isRight =
        box && (box->windowTitle().contains(words.at(2)) || WidgetFinder::textOf(box).contains(words.at(2)));
    return doneIf(isRight, box ? "another message box is open" : "no message box is open");
}

Robot::Outcome Robot::checkDialog(const QStringList& words)
{
    const bool isOpen = WidgetFinder::window(words.at(2)) != nullptr;
    return doneIf(isOpen == (words.at(3) == "open"), isOpen ? "it is open" : "it isn't open");
}

Robot::Outcome Robot::checkWidget(const QStringList& words)
{
    const QWidget* widget = WidgetFinder::widget(words.at(1));
    if (!widget)
        return waiting(QString("there is no '%1'").arg(words.at(1)));
    const QString value = valueOf(widget, words.at(2));
    const bool isRight =
        words.at(words.size() - 2) == "contains" ? value.contains(words.last()) : value == words.last();
    return doneIf(isRight, QString("it is '%1'").arg(value));
}

Robot::Outcome Robot::checkReachable(const QWidget* widget, const QString& name)
{
    const QWidget* modal = QApplication::activeModalWidget();
    if (!widget)
        return waiting(QString("there is no such '%1'").arg(name));
    if (!widget->isVisible())
        return waiting(QString("'%1' is hidden").arg(name));
    if (!widget->isEnabled())
        return waiting(QString("'%1' is disabled").arg(name));
    return doneIf(!modal || widget->window() == modal, QString("'%1' is blocked by a modal window").arg(name));
}

void Robot::sendClick(QWidget* widget, const QPoint& position)
{
    const auto send = [target = QPointer<QWidget>(widget), position] {
        if (!target)
            return;
        QWindow* window = target->window()->windowHandle();
        activate(window);
        QTest::mouseClick(window, Qt::LeftButton, {}, target->mapTo(target->window(), position));
    };
    QMetaObject::invokeMethod(this, send, Qt::QueuedConnection);
}
