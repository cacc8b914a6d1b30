// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/host/Robot.h"

#include "workbench/host/HostApplication.h"
#include "workbench/host/WidgetFinder.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QKeyEvent>
#include <QMenu>
#include <QMessageBox>
#include <QRadioButton>
#include <QStackedWidget>
#include <QWindow>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

// Where Qt's own test library puts events into the window system's queue; declared as its public headers do.
QT_BEGIN_NAMESPACE
Q_GUI_EXPORT void qt_handleMouseEvent(QWindow* window, const QPointF& local, const QPointF& global,
                                      Qt::MouseButtons state, Qt::MouseButton button, QEvent::Type type,
                                      Qt::KeyboardModifiers mods, int timestamp);
Q_GUI_EXPORT void qt_handleKeyEvent(QWindow* window, QEvent::Type type, int key, Qt::KeyboardModifiers mods,
                                    const QString& text, bool autorep, ushort count);
QT_END_NAMESPACE

namespace {

using namespace std::chrono_literals;

constexpr auto TickEvery = 20ms;

/// Where a click hits the widget: its middle, but for boxes that only react on their mark and text.
QPoint hitPointOf(const QWidget* widget)
{
    if (!qobject_cast<const QCheckBox*>(widget) && !qobject_cast<const QRadioButton*>(widget))
        return widget->rect().center();
    const int inset = widget->height() / 2;
    return {widget->isLeftToRight() ? inset : widget->width() - inset, widget->height() / 2};
}

/// The text that a keyboard gives with a key.
QString textOfKey(int key)
{
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return "\r";
    case Qt::Key_Tab:
        return "\t";
    default:
        return key < Qt::Key_Escape ? QString(QChar(key)).toLower() : QString();
    }
}

/// What a window manager does when a window is clicked or the one in front of it closes; without one nobody else would.
void activate(QWindow* window)
{
    if (QGuiApplication::focusWindow() != window)
        window->requestActivate();
}

/// To the window that takes input.
void sendKey(int key, Qt::KeyboardModifiers modifiers, const QString& text)
{
    const QWidget* input = WidgetFinder::inputWindow();
    if (!input)
        return;
    const QPointer<QWindow> window = input->windowHandle();
    activate(window);
    qt_handleKeyEvent(window, QEvent::KeyPress, key, modifiers, text, false, 1);
    if (window) // the key can have closed it
        qt_handleKeyEvent(window, QEvent::KeyRelease, key, modifiers, text, false, 1);
}

QModelIndex cellOf(const QAbstractItemView* view, const QString& text)
{
    const QAbstractItemModel* model = view->model();
    const QModelIndex root = view->rootIndex();
    for (int row = 0; row < model->rowCount(root); ++row)
        for (int column = 0; column < model->columnCount(root); ++column)
            if (model->index(row, column, root).data().toString() == text)
                return model->index(row, column, root);
    return {};
}

} // namespace

Robot::Robot(HostApplication& host, const RobotScript& script, const RobotOptions& options, QObject* parent)
    : QObject(parent)
    , m_host(host)
    , m_script(script)
    , m_options(options)
{
    m_timer.setInterval(TickEvery);
    connect(&m_timer, &QTimer::timeout, this, &Robot::tick);
}

void Robot::start()
{
    QApplication::setQuitOnLastWindowClosed(false); // the run ends with its last step
    qApp->installEventFilter(this);
    m_clock.start();
    m_timer.start();
}

void Robot::tick()
{
    const RobotStep& step = m_script.steps().at(m_index);
    Outcome outcome = attempt(step);
    if (outcome.kind == Outcome::Waiting) {
        if (!m_clock.hasExpired(step.limit.count()))
            return;
        outcome.kind = Outcome::Failed;
    }
    report(step, outcome, m_clock.elapsed());
    m_isPosted = false;
    m_isDelivered = false;
    m_clock.restart();
    ++m_index;
    if (outcome.kind == Outcome::Failed)
        m_failure = QString("%1: step failed: %2: %3").arg(step.place, step.text, outcome.seen);
    if (m_failure.isEmpty() && m_index < m_script.steps().size())
        return;
    m_timer.stop();
    qApp->removeEventFilter(this);
    QCoreApplication::exit();
}

void Robot::report(const RobotStep& step, const Outcome& outcome, qint64 milliseconds) const
{
    const bool isDone = outcome.kind == Outcome::Done;
    QJsonObject object{{"step", m_index + 1},
                       {"line", step.line},
                       {"text", step.text},
                       {"outcome", isDone ? "ok" : "failed"},
                       {"milliseconds", milliseconds}};
    QString line = QString("%1  %2  %3 ms  %4")
                       .arg(m_index + 1, 3)
                       .arg(isDone ? "ok    " : "FAILED")
                       .arg(milliseconds, 6)
                       .arg(step.text);
    if (!isDone) {
        object.insert("seen", outcome.seen);
        line += QString("\n     instead: %1").arg(outcome.seen);
    }
    const QByteArray bytes = m_options.json ? QJsonDocument(object).toJson(QJsonDocument::Compact) : line.toLocal8Bit();
    std::fprintf(stdout, "%s\n", bytes.constData());
    std::fflush(stdout);
}

const Robot::Verb Robot::Verbs[] = {
    {"answer", 1, 5, &Robot::answer},
    {"click", 1, 1, &Robot::click},
    {"close-diary", 0, 0, &Robot::closeDiary},
    {"expect", 1, 5, &Robot::expect},
    {"include", 1, 1, nullptr},
    {"key", 1, 2, &Robot::pressKey},
    {"limit", 1, 1, nullptr},
    {"open", 1, 1, &Robot::openDiary},
    {"patient", 2, 5, &Robot::addPatient},
    {"pause", 1, 1, &Robot::pause},
    {"picture", 1, 2, &Robot::takePicture},
    {"quit", 0, 0, &Robot::quit},
    {"row", 2, 2, &Robot::selectRow},
    {"trigger", 0, 1, &Robot::trigger},
    {"type", 2, 2, &Robot::type},
    {"wait", 1, 5, &Robot::waitFor},
};

const Robot::Verb* Robot::findVerb(const QString& name)
{
    const auto found =
        std::find_if(std::begin(Verbs), std::end(Verbs), [&name](const Verb& verb) { return name == verb.name; });
    return found == std::end(Verbs) ? nullptr : found;
}

std::optional<std::pair<int, int>> Robot::wordsAfter(const QString& verb)
{
    const Verb* found = findVerb(verb);
    return found ? std::make_optional(std::make_pair(found->minWords, found->maxWords)) : std::nullopt;
}

Robot::Outcome Robot::attempt(const RobotStep& step)
{
    if (!m_isPosted)
        return (this->*findVerb(step.verb)->attempt)(step);
    return m_isDelivered ? Outcome() : waiting("the input doesn't arrive; " + WidgetFinder::describeWindows());
}

Robot::Outcome Robot::addPatient(const RobotStep& step)
{
    const PatientRecord patient{step.words.at(0), step.words.mid(1)};
    const bool isThere = m_host.database().findPatient(patient.puid).has_value();
    if (!(isThere ? m_host.database().changePatient(patient) : m_host.database().addPatient(patient)))
        return failed(m_host.database().errorText());
    if (isThere)
        m_host.events().publishChanged(patient);
    else
        m_host.events().publishCreated();
    return {};
}

Robot::Outcome Robot::openDiary(const RobotStep& step)
{
    const auto patient = m_host.database().findPatient(step.words.at(0));
    if (!m_host.database().errorText().isEmpty())
        return failed(m_host.database().errorText());
    if (!patient)
        return failed(QString("there is no patient '%1'").arg(step.words.at(0)));
    m_host.events().openDiary(*patient);
    return {};
}

Robot::Outcome Robot::closeDiary(const RobotStep& step)
{
    Q_UNUSED(step)
    m_host.events().closeDiary();
    return {};
}

Robot::Outcome Robot::trigger(const RobotStep& step)
{
    const auto* menu = m_host.window().findChild<QMenu*>("deviceMenu");
    QStringList titles;
    const QList<QAction*> actions = menu->actions();
    for (QAction* action : actions) {
        titles.append(action->text());
        if (!step.words.isEmpty() && action->text() != step.words.at(0))
            continue;
        if (!action->isEnabled() || QApplication::activeModalWidget())
            return waiting("the entry can't be reached; " + WidgetFinder::describeWindows());
        post([action = QPointer<QAction>(action)] {
            if (action)
                action->trigger();
        });
        return waiting({});
    }
    return failed("the menu has the entries: " + titles.join(", "));
}

Robot::Outcome Robot::click(const RobotStep& step)
{
    const QString name = step.words.at(0);
    QWidget* widget = WidgetFinder::widget(name);
    const Outcome outcome = reachable(widget, name);
    if (outcome.kind == Outcome::Done)
        postClick(widget, hitPointOf(widget));
    return outcome.kind == Outcome::Done ? waiting({}) : outcome;
}

Robot::Outcome Robot::selectRow(const RobotStep& step)
{
    const QString name = step.words.at(0);
    auto* view = qobject_cast<QAbstractItemView*>(WidgetFinder::widget(name));
    const Outcome outcome = reachable(view, name);
    if (outcome.kind != Outcome::Done)
        return outcome;
    const QModelIndex cell = cellOf(view, step.words.at(1));
    if (!cell.isValid())
        return waiting(QString("none of its %1 rows shows that").arg(view->model()->rowCount(view->rootIndex())));
    view->scrollTo(cell);
    postClick(view->viewport(), view->visualRect(cell).center());
    return waiting({});
}

Robot::Outcome Robot::type(const RobotStep& step)
{
    const QString name = step.words.at(0);
    QWidget* widget = WidgetFinder::widget(name);
    const Outcome outcome = reachable(widget, name);
    if (outcome.kind != Outcome::Done)
        return outcome;
    post([field = QPointer<QWidget>(widget), text = step.words.at(1)] {
        if (!field)
            return;
        field->setFocus(Qt::OtherFocusReason);
        // As a user does who replaces what is there.
        if (field->metaObject()->indexOfMethod("selectAll()") >= 0) {
            QMetaObject::invokeMethod(field, "selectAll");
            if (text.isEmpty())
                sendKey(Qt::Key_Delete, Qt::NoModifier, QString());
        }
        for (const QChar character : text)
            sendKey(character.toUpper().unicode(), Qt::NoModifier, QString(character));
    });
    return waiting({});
}

Robot::Outcome Robot::pressKey(const RobotStep& step)
{
    const int code = *RobotScript::keyCombination(step.words.at(0));
    const int key = code & ~int(Qt::KeyboardModifierMask);
    QWidget* target = nullptr;
    if (step.words.size() > 1) {
        target = WidgetFinder::widget(step.words.at(1));
        const Outcome outcome = reachable(target, step.words.at(1));
        if (outcome.kind != Outcome::Done)
            return outcome;
    } else if (!WidgetFinder::inputWindow()) {
        return waiting(WidgetFinder::describeWindows());
    }
    const auto modifiers = Qt::KeyboardModifiers(code & int(Qt::KeyboardModifierMask));
    post([target = QPointer<QWidget>(target), key, modifiers] {
        if (target)
            target->setFocus(Qt::OtherFocusReason);
        sendKey(key, modifiers, modifiers & ~Qt::ShiftModifier ? QString() : textOfKey(key));
    });
    return waiting({});
}

Robot::Outcome Robot::pause(const RobotStep& step)
{
    return m_clock.hasExpired(qRound64(step.words.at(0).toDouble() * 1000)) ? Outcome() : waiting({});
}

Robot::Outcome Robot::answer(const RobotStep& step)
{
    const Outcome outcome = checkBox(step.words, 1);
    if (outcome.kind != Outcome::Done)
        return outcome;
    QWidget* box = QApplication::activeModalWidget();
    QAbstractButton* button = WidgetFinder::button(box, step.words.at(0));
    if (!button)
        return failed(QString("the box has no button '%1'; ").arg(step.words.at(0)) + WidgetFinder::describeWindows());
    postClick(button, button->rect().center());
    return waiting({});
}

Robot::Outcome Robot::takePicture(const RobotStep& step)
{
    QWidget* widget = WidgetFinder::inputWindow();
    if (step.words.size() > 1) {
        widget = WidgetFinder::window(step.words.at(1));
        if (!widget)
            widget = WidgetFinder::widget(step.words.at(1));
        if (!widget || !widget->isVisible())
            return waiting(QString("'%1' isn't shown; ").arg(step.words.at(1)) + WidgetFinder::describeWindows());
    }
    if (!widget)
        widget = &m_host.window();
    const QDir folder(m_options.pictures.isEmpty() ? "." : m_options.pictures);
    QString file = folder.filePath(step.words.at(0));
    if (!file.endsWith(".png"))
        file += ".png";
    QDir().mkpath(QFileInfo(file).path());
    return widget->grab().save(file, "PNG", 0) ? Outcome() : failed(QString("'%1' can't be written").arg(file));
}

Robot::Outcome Robot::quit(const RobotStep& step)
{
    Q_UNUSED(step)
    if (QApplication::activeModalWidget() || !m_host.window().close())
        return waiting("the window stays open; " + WidgetFinder::describeWindows());
    return {};
}

Robot::Outcome Robot::waitFor(const RobotStep& step)
{
    return checkCondition(step.words);
}

Robot::Outcome Robot::expect(const RobotStep& step)
{
    Outcome outcome = checkCondition(step.words);
    if (outcome.kind == Outcome::Waiting)
        outcome.kind = Outcome::Failed;
    return outcome;
}

Robot::Outcome Robot::checkCondition(const QStringList& words)
{
    const QString& subject = words.at(0);
    if (subject == "box")
        return checkBox(words, 1);
    const QString& object = words.at(1);
    if (subject == "dialog") {
        const bool isOpen = WidgetFinder::window(object) != nullptr;
        return isOpen == (words.at(2) == "open") ? Outcome() : waiting(WidgetFinder::describeWindows());
    }
    if (subject == "imports") {
        const QString puid = words.size() > 2 ? words.at(2) : m_host.events().openPatient().puid;
        const int count = m_host.database().imports(puid).size();
        if (!m_host.database().errorText().isEmpty())
            return failed(m_host.database().errorText());
        return count == object.toInt() ? Outcome() : waiting(QString("patient '%1' has %2").arg(puid).arg(count));
    }
    if (subject == "diary") {
        const QString puid = m_host.events().isOpen() ? m_host.events().openPatient().puid : "closed";
        return puid == object ? Outcome() : waiting("the diary is: " + puid);
    }
    if (subject == "log")
        return m_host.log().contains(object) ? Outcome() : waiting("no record of the log holds that");
    return checkWidget(words);
}

Robot::Outcome Robot::checkWidget(const QStringList& words)
{
    QWidget* widget = WidgetFinder::widget(words.at(0));
    if (!widget)
        return waiting(QString("there is no '%1'; ").arg(words.at(0)) + WidgetFinder::describeWindows());
    const QString& state = words.at(1);
    if (state == "text") {
        const QString text = WidgetFinder::textOf(widget);
        const bool isRight = words.at(2) == "equals" ? WidgetFinder::textEquals(text, words.at(3))
                                                     : WidgetFinder::textContains(text, words.at(3));
        return isRight ? Outcome() : waiting(QString("its text is '%1'").arg(text));
    }
    if (state == "rows") {
        const auto* view = qobject_cast<const QAbstractItemView*>(widget);
        if (!view)
            return failed(QString("'%1' has no rows").arg(words.at(0)));
        const int rows = view->model() ? view->model()->rowCount(view->rootIndex()) : 0;
        return rows == words.at(2).toInt() ? Outcome() : waiting(QString("it has %1 rows").arg(rows));
    }
    if (state == "page") {
        const auto* pages = qobject_cast<const QStackedWidget*>(widget);
        if (!pages)
            return failed(QString("'%1' has no pages").arg(words.at(0)));
        const QString page = pages->currentWidget() ? pages->currentWidget()->objectName() : QString();
        return page == words.at(2) ? Outcome() : waiting(QString("its page is '%1'").arg(page));
    }
    const bool holds = state == "hidden"    ? !widget->isVisible()
                       : state == "enabled" ? widget->isEnabled()
                                            : !widget->isEnabled();
    return holds ? Outcome() : waiting("it isn't " + state);
}

Robot::Outcome Robot::checkBox(const QStringList& words, int from)
{
    const auto* box = qobject_cast<const QMessageBox*>(QApplication::activeModalWidget());
    if (!box)
        return waiting("no message box is open; " + WidgetFinder::describeWindows());
    for (int i = from; i + 1 < words.size(); i += 2) {
        const bool isRight = words.at(i) == "title" ? box->windowTitle() == words.at(i + 1)
                                                    : WidgetFinder::textContains(box->text(), words.at(i + 1));
        if (!isRight)
            return waiting(WidgetFinder::describeWindows());
    }
    return {};
}

Robot::Outcome Robot::reachable(QWidget* widget, const QString& name)
{
    if (!widget)
        return waiting(QString("there is no such '%1'; ").arg(name) + WidgetFinder::describeWindows());
    if (!widget->isVisible())
        return waiting(QString("'%1' is hidden; ").arg(name) + WidgetFinder::describeWindows());
    if (!widget->isEnabled())
        return waiting(QString("'%1' is disabled; ").arg(name) + WidgetFinder::describeWindows());
    const QWidget* modal = QApplication::activeModalWidget();
    if (modal && widget->window() != modal)
        return waiting(QString("'%1' is behind a modal window; ").arg(name) + WidgetFinder::describeWindows());
    return {};
}

void Robot::post(const std::function<void()>& action)
{
    m_isPosted = true;
    m_clicked = nullptr;
    QTimer::singleShot(0, this, [this, action] {
        m_isDelivered = true;
        action();
    });
}

void Robot::postClick(QWidget* widget, const QPoint& position)
{
    m_isPosted = true;
    m_clicked = widget;
    QTimer::singleShot(0, this, [this, position] {
        if (!m_clicked)
            return;
        const QPointer<QWindow> window = m_clicked->window()->windowHandle();
        activate(window);
        const QPointF local = m_clicked->mapTo(m_clicked->window(), position);
        const QPointF global = m_clicked->mapToGlobal(position);
        m_timestamp += QApplication::doubleClickInterval() + 1; // two clicks never make a double click
        qt_handleMouseEvent(window, local, global, Qt::LeftButton, Qt::LeftButton, QEvent::MouseButtonPress,
                            Qt::NoModifier, m_timestamp);
        if (window)
            qt_handleMouseEvent(window, local, global, Qt::NoButton, Qt::LeftButton, QEvent::MouseButtonRelease,
                                Qt::NoModifier, m_timestamp + 1);
    });
}

bool Robot::eventFilter(QObject* watched, QEvent* event)
{
    // The release comes to the widget that took the press. From here on its own loop may run.
    if (event->type() == QEvent::MouseButtonRelease && m_isPosted && m_clicked && watched == m_clicked)
        m_isDelivered = true;
    return false;
}
