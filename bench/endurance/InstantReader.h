// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QTemporaryDir>
#include <QTimer>

/// A reader that answers each command as fast as the plug-in can see: it takes the command file away when it has read
/// it, shows "running" at once and the end of the command a moment later. It knows one pump and one patient.
class InstantReader final : public QObject
{
    Q_OBJECT

public:
    /// What it does otherwise than it should.
    enum Fault {
        NoFault,
        ReadFails,    ///< a read-out ends with an error
        ReadStarves,  ///< a read-out is never begun
        SearchGoesOn, ///< a search never ends
    };

    /// Its drive lies in memory if the system has a folder for that, and is gone with the object.
    InstantReader();

    QString drive() const { return m_folder.path(); }
    /// What the next run finds.
    void prepare(bool isPaired, Fault fault);
    bool isPaired() const { return m_isPaired; }

private:
    void look();
    void finish();
    void writeStatus(const QString& status, const QString& result, int error);
    void writeFile(const QString& nameInMisc, const QByteArray& bytes) const;

    QTemporaryDir m_folder;
    QTimer m_looks;
    QTimer m_work;
    QString m_word; ///< the command that it works on
    int m_statusCount = 0;
    bool m_isPaired = true;
    Fault m_fault = NoFault;
};
