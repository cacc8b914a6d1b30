// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/host/RobotScript.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <optional>
#include <utility>

class HostApplication;
class QWidget;

struct RobotOptions
{
    bool json = false; ///< one object a step in place of a line for people
    QString pictures;  ///< folder of the pictures; empty: the current one
};

/// Does the steps of a script as a user at the window would, and tells of each on standard output.
///
/// Steps go on by a timer, so also inside the nested event loop of a modal dialog. Mouse and keyboard events go in
/// where those of the window system come in: a dialog that blocks its parent blocks the robot too. A step that isn't
/// done within its limit ends the run. A GUI thread that hangs shows as the caller's own time-out.
class Robot final : public QObject
{
    Q_OBJECT

public:
    Robot(HostApplication& host, const RobotScript& script, const RobotOptions& options, QObject* parent = nullptr);

    /// Begins with the first step. At the end of the run all event loops of the application are ended.
    void start();
    /// Returns how many words follow a verb, or nothing if there is no such verb.
    static std::optional<std::pair<int, int>> wordsAfter(const QString& verb);

    /// Names the first step that didn't end as asked, and what was seen instead; empty if there was none.
    QString failure() const { return m_failure; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Outcome
    {
        enum Kind { Done, Waiting, Failed };
        Kind kind = Done;
        QString seen; ///< where it isn't done: what there is instead
    };
    struct Verb
    {
        const char* name;
        int minWords;
        int maxWords;
        Outcome (Robot::*attempt)(const RobotStep&); ///< null if only the script knows the verb
    };
    static const Verb Verbs[];

    static const Verb* findVerb(const QString& name);
    static Outcome waiting(const QString& seen) { return {Outcome::Waiting, seen}; }
    static Outcome failed(const QString& seen) { return {Outcome::Failed, seen}; }

    void tick();
    void report(const RobotStep& step, const Outcome& outcome, qint64 milliseconds) const;
    Outcome attempt(const RobotStep& step);

    Outcome addPatient(const RobotStep& step);
    Outcome openDiary(const RobotStep& step);
    Outcome closeDiary(const RobotStep& step);
    Outcome trigger(const RobotStep& step);
    Outcome click(const RobotStep& step);
    Outcome selectRow(const RobotStep& step);
    Outcome type(const RobotStep& step);
    Outcome pause(const RobotStep& step);
    Outcome pressKey(const RobotStep& step);
    Outcome answer(const RobotStep& step);
    Outcome takePicture(const RobotStep& step);
    Outcome quit(const RobotStep& step);
    Outcome waitFor(const RobotStep& step);
    Outcome expect(const RobotStep& step);

    Outcome checkCondition(const QStringList& words);
    Outcome checkWidget(const QStringList& words);
    static Outcome checkBox(const QStringList& words, int from);
    static Outcome reachable(QWidget* widget, const QString& name);

    void post(const std::function<void()>& action);
    void postClick(QWidget* widget, const QPoint& position);

    HostApplication& m_host;
    const RobotScript& m_script;
    const RobotOptions m_options;
    QTimer m_timer;
    QElapsedTimer m_clock;
    int m_index = 0;
    QString m_failure;

    // Input is given by an event of its own, since it may block there in a dialog's loop, in which a timer whose slot
    // hasn't returned doesn't fire again. It counts as done once it has been delivered.
    bool m_isPosted = false;
    bool m_isDelivered = false;
    QPointer<QWidget> m_clicked;
    int m_timestamp = 0; // of the last click, in milliseconds
};
