// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/RuntimeObserver.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>

/// The timings of one object, by name.
using RuntimeTable = QMap<QString, QList<RuntimeItem>>;

/// Tracks the lifetime and the timings of one object. Make it a member of the class of the object; setObject()
/// registers it with the ObserverManager under the name of the class.
///
///     Importer::Importer() { m_observer.setObject(this, Q_FUNC_INFO, false); }
///
/// Inactive until setObject(). Its cost is one insertion into a list and one removal. GUI thread only.
class InstanceObserver final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(InstanceObserver)

public:
    /// Takes the next number of the process, starting at 1.
    InstanceObserver();
    /// Unregisters the object. The ObserverManager keeps the timings.
    ~InstanceObserver() override;

    /// Registers the object at @p address, which isn't accessed. The name of the type is the part of @p typeSignature
    /// before the first "::", so that "Importer::Importer()" yields the class. A return type isn't removed. A @p
    /// verbose observer writes to Qt's debug log when the object is registered and unregistered.
    ///
    /// A null address or an empty signature registers nothing; with an address and an empty signature, a verbose
    /// observer still logs its state and its destruction. A further call unregisters the former object.
    void setObject(const void* address, const QString& typeSignature, bool verbose);

    /// Writes a line to Qt's debug log if the observer is verbose and has an address.
    void logState() const;

    const void* address() const { return m_address; }
    QString typeName() const { return m_typeName; }
    const RuntimeTable& runtimes() const { return m_runtimes; }

public Q_SLOTS:
    /// Records the timing when @p timeObserver is destroyed.
    void timingStart(RuntimeObserver& timeObserver);
    /// Stores a finished timing.
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
