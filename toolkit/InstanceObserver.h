// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/RuntimeObserver.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>

/// The timed runs of one object, by name.
using RuntimeTable = QMap<QString, QList<RuntimeItem>>;

/// Keeps book of one object that lives: a member of the object's class, which registers it with the ObserverManager
/// under the name of its type, and collects the object's timed runs.
///
///     Importer::Importer() { m_observer.setObject(this, Q_FUNC_INFO, false); }
///
/// Inert until setObject(). Costs one insertion and one removal in a list besides. GUI thread only.
class InstanceObserver final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(InstanceObserver)

public:
    /// Takes the next number of the process, from 1.
    InstanceObserver();
    /// Ends the watch. The runs stay with the ObserverManager.
    ~InstanceObserver() override;

    /// Begins the watch of the object at @p address, which isn't accessed. The type is what stands before the first
    /// "::" of @p typeSignature, so that "Importer::Importer()" gives the class; a return type ahead of it isn't taken
    /// off. A @p verbose observer writes to Qt's debug log when the watch begins and ends.
    ///
    /// With a null address or an empty signature nothing is registered, and no watch begins; with the latter alone a
    /// verbose observer still writes its state and its end. A further call ends the former watch.
    void setObject(const void* address, const QString& typeSignature, bool verbose);

    /// Writes a line to Qt's debug log if this is verbose and has an address.
    void logState() const;

    const void* address() const { return m_address; }
    QString typeName() const { return m_typeName; }
    const RuntimeTable& runtimes() const { return m_runtimes; }

public Q_SLOTS:
    /// Collects the run that ends when @p timeObserver goes.
    void timingStart(RuntimeObserver& timeObserver);
    /// Stores a finished run.
    void timingStop(RuntimeItem item);

private:
    /// The pattern takes number, type name and address.
    void logEvent(const QString& pattern) const;

    const void* m_address = nullptr;
    int m_number;
    bool m_verbose = false;
    RuntimeTable m_runtimes;
    QString m_typeName;
};
