// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "tools/robot/RobotScript.h"

#include <QDir>
#include <QElapsedTimer>
#include <QObject>
#include <QPoint>
#include <QTimer>

#include <functional>

class QWidget;

/// The operations of the program that the robot uses. The functions return what failed, or an empty text.
struct RobotHost
{
    QWidget& window; ///< closed by the step "quit"
    std::function<QString(const QString& puid, const QStringList& ids)> addOrChangePatient;
    std::function<QString(const QString& puid)> openDiary;
};

/// Performs the steps of a script as a user at the window would, and reports each on standard output.
///
/// A timer starts the steps, also in the nested event loop of a modal dialog. Mouse and keyboard events are sent to
/// windows, as the window system does: a dialog that blocks its parent blocks the robot too. A step that isn't done
/// within its limit ends the script. The robot doesn't detect a GUI thread that hangs.
class Robot final : public QObject
{
    Q_OBJECT

public:
    /// Pictures are written to @p pictures.
    Robot(const RobotHost& host, const QVector<RobotStep>& steps, const QDir& pictures, QObject* parent = nullptr);

    /// Returns the forms of all steps.
    static QStringList forms();

    /// Starts with the first step. Ends all event loops of the application after the last one.
    void start();

    /// Returns the step that failed and what was seen instead, or an empty text.
    QString failure() const { return m_failure; }

private:
    struct Outcome
    {
        enum Kind { Done, Waiting, Failed };
        Kind kind = Done;
        QString seen; ///< what is seen instead if it isn't done
    };
    struct Verb
    {
        const char* form;
        Outcome (Robot::*attempt)(const QStringList& words);
    };
    static const QVector<Verb> Verbs;

    static Outcome waiting(const QString& seen) { return {Outcome::Waiting, seen}; }
    static Outcome failed(const QString& seen) { return {Outcome::Failed, seen}; }
    static Outcome doneUnless(const QString& error) { return error.isEmpty() ? Outcome() : failed(error); }
    static Outcome doneIf(bool isDone, const QString& seen) { return isDone ? Outcome() : waiting(seen); }

    void tick();

    Outcome addOrChangePatient(const QStringList& words);
    Outcome openDiary(const QStringList& words);
    Outcome pause(const QStringList& words);
    Outcome quit(const QStringList& words);
    Outcome takePicture(const QStringList& words);
    Outcome click(const QStringList& words);
    Outcome selectRow(const QStringList& words);
    Outcome answer(const QStringList& words);
    Outcome type(const QStringList& words);
    Outcome pressKey(const QStringList& words);
    Outcome checkMessageBox(const QStringList& words);
    Outcome checkDialog(const QStringList& words);
    Outcome checkWidget(const QStringList& words);
    static Outcome checkReachable(const QWidget* widget, const QString& name);

    // Input is sent by queued calls, because it may open a modal dialog: the timer doesn't fire in its event loop until
    // tick() has returned.
    void sendClick(QWidget* widget, const QPoint& position);

    const RobotHost m_host;
    const QVector<RobotStep> m_steps;
    const QDir m_pictures;
    QTimer m_timer;
    QElapsedTimer m_clock;
    int m_index = 0;
    QString m_failure;
};
