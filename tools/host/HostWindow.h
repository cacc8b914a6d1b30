// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IDatabase.h"
#include "ui_HostWindow.h"

#include <QMainWindow>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>

#include <optional>

class HostDatabase;
class HostDeviceAdmin;
class HostLog;
class IComponent;
class ImportHandler;
class PatientEvents;
class PluginHost;
struct ImportOutcome;

/// The host's window: patients, the open diary with its imports, the log, and the plug-in's menu entry. Shows failures
/// in a bar at the top. The objects passed to the constructor must outlive it.
class HostWindow final : public QMainWindow, private Ui::HostWindow
{
    Q_OBJECT

public:
    HostWindow(HostDatabase& database, PatientEvents& events, HostLog& log, PluginHost& pluginHost,
               const ImportHandler& importHandler, const HostDeviceAdmin& deviceAdmin, QWidget* parent = nullptr);

    /// Adds the components of the loaded plug-in to the menu "Devices".
    void showComponents();
    /// Reads patients and imports again.
    void refresh();
    void showError(const QString& sentence);
    void showNotice(const QString& sentence);

Q_SIGNALS:
    /// Emitted when the user requests a report, which is to be written to @p path.
    void reportRequested(const QString& path, bool withPersonalData);

protected:
    /// Ignores the event while the plug-in runs.
    void closeEvent(QCloseEvent* event) override;

private:
    void setUpTables();
    void askForReport();
    void addPatient();
    void editPatient();
    void deletePatient();
    void openDiary();
    void onImportFinished(const ImportOutcome& outcome);
    void runComponent(IComponent* component);
    void refreshPatients();
    void refreshDiary();
    void refreshActions();
    void refreshStatus();
    void showMessage(const QString& sentence, QStyle::StandardPixmap icon, const QColor& background);
    bool reportDatabaseError();
    std::optional<PatientRecord> selectedPatient();

    HostDatabase& m_database;
    PatientEvents& m_events;
    PluginHost& m_pluginHost;
    const HostDeviceAdmin& m_deviceAdmin;
    QStandardItemModel m_patients;
    QSortFilterProxyModel* m_shownPatients = nullptr; // those that match the filter
    QStandardItemModel m_imports;
};
