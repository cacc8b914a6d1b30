// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/host/HostWindow.h"

#include "hostapi/IComponent.h"
#include "hostapi/IPlugin.h"
#include "tools/host/HostDatabase.h"
#include "tools/host/HostDates.h"
#include "tools/host/HostDeviceAdmin.h"
#include "tools/host/HostLog.h"
#include "tools/host/ImportHandler.h"
#include "tools/host/PatientDialog.h"
#include "tools/host/PatientEvents.h"
#include "tools/host/PluginHost.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QHeaderView>
#include <QLocale>
#include <QMessageBox>
#include <QScrollBar>
#include <QStandardPaths>
#include <QTimer>

#include <algorithm>

namespace {

constexpr int PuidRole = Qt::UserRole;
constexpr int LookForReaderEveryMs = 1000;

/// Returns a model with the rows of @p source that contain the filter's text in any column.
QSortFilterProxyModel* textFilter(QAbstractItemModel* source, const QLineEdit* filter, QObject* parent)
{
    auto* model = new QSortFilterProxyModel(parent);
    model->setSourceModel(source);
    model->setFilterKeyColumn(-1);
    model->setFilterCaseSensitivity(Qt::CaseInsensitive);
    QObject::connect(filter, &QLineEdit::textChanged, model, &QSortFilterProxyModel::setFilterFixedString);
    return model;
}

/// Makes a button trigger an action and follow its enabled state.
void setAction(QAbstractButton* button, QAction* action)
{
    QObject::connect(button, &QAbstractButton::clicked, action, &QAction::trigger);
    QObject::connect(action, &QAction::changed, button, [=] { button->setEnabled(action->isEnabled()); });
}

/// Returns "Doe, Jane", or the only part of the name.
QString nameOf(const PatientRecord& patient)
{
    QStringList parts{patient.ids.value(0), patient.ids.value(1)};
    parts.removeAll(QString());
    return parts.join(", ");
}

QString birthdayOf(const PatientRecord& patient)
{
    const QDate date = QDate::fromString(patient.ids.value(2), "yyyy-MM-dd");
    return date.isValid() ? shownDate(date) : patient.ids.value(2);
}

QList<QStandardItem*> rowOf(const QStringList& texts)
{
    QList<QStandardItem*> row;
    for (const QString& text : texts) {
        auto* item = new QStandardItem(text); // the model takes ownership
        item->setToolTip(text);
        row.append(item);
    }
    return row;
}

/// Limits a column's width, so that a long text doesn't hide the others; the tooltip shows all of it.
void fitColumns(QTableView* table, int maxCharacters)
{
    const int widest = table->fontMetrics().averageCharWidth() * maxCharacters;
    for (int column = 0; column < table->model()->columnCount(); ++column) {
        if (table->horizontalHeader()->sectionResizeMode(column) == QHeaderView::Stretch)
            continue;
        table->resizeColumnToContents(column);
        table->setColumnWidth(column, std::min(table->columnWidth(column), widest));
    }
}

void setUpHeaders(QTableView* table, int stretched)
{
    table->verticalHeader()->hide();
    table->horizontalHeader()->setHighlightSections(false);
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    table->horizontalHeader()->setSectionResizeMode(stretched, QHeaderView::Stretch);
}

} // namespace

HostWindow::HostWindow(HostDatabase& database, PatientEvents& events, HostLog& log, PluginHost& pluginHost,
                       const ImportHandler& importHandler, const HostDeviceAdmin& deviceAdmin, QWidget* parent)
    : QMainWindow(parent)
    , m_database(database)
    , m_events(events)
    , m_pluginHost(pluginHost)
    , m_deviceAdmin(deviceAdmin)
{
    setupUi(this);
    messageBar->hide();
    pluginButton->hide();
    QFont nameFont = diaryName->font();
    nameFont.setPointSizeF(nameFont.pointSizeF() * 1.3);
    nameFont.setBold(true);
    diaryName->setFont(nameFont);
    auto* levelFilter = new QSortFilterProxyModel(this);
    levelFilter->setSourceModel(&log);
    levelFilter->setFilterRole(HostLog::LevelRole);
    logTable->setModel(textFilter(levelFilter, logFilter, this));
    setUpTables();
    mainSplitter->setStretchFactor(1, 1);
    mainSplitter->setSizes({430, 790});
    resizeDocks({logDock}, {220}, Qt::Vertical);
    viewMenu->addAction(logDock->toggleViewAction());
    for (const HostLog::Level level : {HostLog::Trace, HostLog::Info, HostLog::Warning, HostLog::Error})
        logLevel->addItem(HostLog::levelName(level), level);

    connect(messageDismiss, &QPushButton::clicked, messageBar, &QWidget::hide);
    connect(patientTable->selectionModel(), &QItemSelectionModel::selectionChanged, this, &HostWindow::refreshActions);
    connect(patientTable, &QTableView::activated, this, &HostWindow::openDiary);
    connect(addPatientAction, &QAction::triggered, this, &HostWindow::addPatient);
    connect(editPatientAction, &QAction::triggered, this, &HostWindow::editPatient);
    connect(deletePatientAction, &QAction::triggered, this, &HostWindow::deletePatient);
    connect(openDiaryAction, &QAction::triggered, this, &HostWindow::openDiary);
    connect(closeDiaryAction, &QAction::triggered, &m_events, &PatientEvents::closeDiary);
    setAction(addPatientButton, addPatientAction);
    setAction(editPatientButton, editPatientAction);
    setAction(deletePatientButton, deletePatientAction);
    setAction(openDiaryButton, openDiaryAction);
    setAction(closeDiaryButton, closeDiaryAction);
    connect(saveReportAction, &QAction::triggered, this, &HostWindow::askForReport);
    connect(quitAction, &QAction::triggered, this, &QWidget::close);
    connect(aboutAction, &QAction::triggered, this, [this] {
        const IPlugin* plugin = m_pluginHost.plugin();
        QMessageBox::about(this, tr("About Merivo Host"),
                           tr("A host application to run, show and test a plug-in with.\n\nPlug-in: %1, version %2\n%3")
                               .arg(plugin->title(), plugin->version(), plugin->copyright()));
    });
    connect(logLevel, QOverload<int>::of(&QComboBox::currentIndexChanged), levelFilter, [levelFilter](int lowest) {
        levelFilter->setFilterRegularExpression(QString("[%1-%2]").arg(lowest).arg(HostLog::Error));
    });
    connect(logTable->model(), &QAbstractItemModel::rowsInserted, logTable, &QTableView::scrollToBottom);
    connect(&log, &HostLog::fileFailed, this, &HostWindow::showError);

    connect(&m_events, &IEventPublisher::patientCreated, this, &HostWindow::refresh);
    connect(&m_events, &IEventPublisher::patientChanged, this, &HostWindow::refresh);
    connect(&m_events, &IEventPublisher::patientDeleted, this, &HostWindow::refresh);
    // A notice about one patient's import must not be shown above another patient's diary.
    connect(&m_events, &IEventPublisher::diarySessionOpened, messageBar, &QWidget::hide);
    connect(&m_events, &IEventPublisher::diarySessionClosed, messageBar, &QWidget::hide);
    connect(&m_events, &IEventPublisher::diarySessionOpened, this, &HostWindow::refreshDiary);
    connect(&m_events, &IEventPublisher::diarySessionClosed, this, &HostWindow::refreshDiary);
    connect(&importHandler, &ImportHandler::finished, this, &HostWindow::onImportFinished);
    connect(&m_pluginHost, &PluginHost::runningChanged, this, &HostWindow::refreshActions);
    // QFileSystemWatcher can't watch a folder that doesn't exist yet.
    auto* readerTimer = new QTimer(this);
    connect(readerTimer, &QTimer::timeout, this, &HostWindow::refreshStatus);
    readerTimer->start(LookForReaderEveryMs);
}

void HostWindow::setUpTables()
{
    m_patients.setHorizontalHeaderLabels({tr("Name"), tr("Birthday"), tr("Further id"), tr("Key")});
    m_shownPatients = textFilter(&m_patients, patientFilter, this);
    patientTable->setModel(m_shownPatients);
    setUpHeaders(patientTable, 0);

    m_imports.setHorizontalHeaderLabels({tr("When"), tr("Pump file"), tr("Size"), tr("State"), tr("MAC")});
    importTable->setModel(&m_imports);
    setUpHeaders(importTable, 4);

    logTable->verticalHeader()->hide();
    logTable->verticalHeader()->setDefaultSectionSize(logTable->fontMetrics().height() + 6);
    // Fixed widths, as measuring all records again becomes slower the longer the log is.
    const int unit = logTable->fontMetrics().averageCharWidth();
    logTable->setColumnWidth(HostLog::TimeColumn, unit * 15);
    logTable->setColumnWidth(HostLog::LevelColumn, unit * 13);
    logTable->setColumnWidth(HostLog::SourceColumn, unit * 21);
    logTable->setColumnWidth(HostLog::MessageColumn, unit * 60);
    logTable->horizontalHeader()->setStretchLastSection(true);
    logTable->horizontalHeader()->setHighlightSections(false);
    logTable->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void HostWindow::showComponents()
{
    deviceMenu->clear();
    for (IComponent* component : m_pluginHost.components()) {
        auto* action = new QAction(component->icon(), component->title(), deviceMenu);
        action->setObjectName(component->elementKey());
        action->setEnabled(component->isEnabled());
        connect(action, &QAction::triggered, this, [this, component] { runComponent(component); });
        deviceMenu->addAction(action);
        if (deviceMenu->actions().size() > 1)
            continue;
        pluginButton->setIcon(action->icon());
        pluginButton->setText(action->text());
        pluginButton->show();
        setAction(pluginButton, action);
    }
    refreshActions();
}

void HostWindow::runComponent(IComponent* component)
{
    m_pluginHost.run(component, this);
    refreshStatus();
}

void HostWindow::askForReport()
{
    const QString title = tr("Save report");
    QMessageBox question(
        QMessageBox::Question, title,
        tr("The report contains the log, versions, settings and the latest traffic with the reader. Without "
           "replacement it also contains names, ids and serial numbers: give such a report only to "
           "people who may see the patients' data."),
        QMessageBox::Save | QMessageBox::Cancel, this);
    auto* replacePersonal = new QCheckBox(tr("&Replace names, ids, serial numbers, addresses and paths"), &question);
    replacePersonal->setObjectName("replacePersonal");
    replacePersonal->setChecked(true);
    question.setCheckBox(replacePersonal);
    if (question.exec() != QMessageBox::Save)
        return;
    const QString name = QDateTime::currentDateTime().toString("'merivo-report-'yyyyMMdd-hhmmss'.zip'");
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    // A report never replaces a file, so no confirmation is needed.
    const QString path = QFileDialog::getSaveFileName(this, title, folder.filePath(name), tr("Archives (*.zip)"),
                                                      nullptr, QFileDialog::DontConfirmOverwrite);
    if (!path.isEmpty())
        Q_EMIT reportRequested(path, !replacePersonal->isChecked());
}

void HostWindow::addPatient()
{
    PatientDialog dialog({}, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_database.addPatient(dialog.patient());
    if (!reportDatabaseError())
        m_events.publishCreated();
}

void HostWindow::editPatient()
{
    const auto patient = selectedPatient();
    if (!patient)
        return;
    PatientDialog dialog(*patient, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_database.changePatient(dialog.patient());
    if (!reportDatabaseError())
        m_events.publishChanged(dialog.patient());
}

void HostWindow::deletePatient()
{
    const auto patient = selectedPatient();
    if (!patient)
        return;
    const int count = m_database.imports(patient->puid).size();
    if (reportDatabaseError())
        return;
    QMessageBox question(
        QMessageBox::Warning, tr("Delete patient"),
        tr("Delete %1 with all imported pump files (%2)? This can't be undone.").arg(nameOf(*patient)).arg(count),
        QMessageBox::Cancel, this);
    QPushButton* confirm = question.addButton(tr("Delete"), QMessageBox::DestructiveRole);
    question.setDefaultButton(QMessageBox::Cancel);
    question.exec();
    if (question.clickedButton() != confirm)
        return;
    m_database.removePatient(patient->puid);
    if (!reportDatabaseError())
        m_events.publishDeleted(patient->puid);
}

void HostWindow::openDiary()
{
    const auto patient = selectedPatient();
    if (patient)
        m_events.openDiary(*patient);
}

void HostWindow::onImportFinished(const ImportOutcome& outcome)
{
    refreshDiary();
    if (outcome.kind == ImportOutcome::Refused)
        showError(outcome.sentence);
    else
        showNotice(outcome.sentence);
}

void HostWindow::refresh()
{
    refreshPatients();
    refreshDiary();
    refreshStatus();
}

void HostWindow::refreshPatients()
{
    const QModelIndex selected = patientTable->currentIndex();
    const QString puid = selected.siblingAtColumn(0).data(PuidRole).toString();
    // Keeps the list if it can't be read: an empty one would look like lost patients.
    const QVector<PatientRecord> patients = m_database.patients();
    if (reportDatabaseError())
        return;
    m_patients.removeRows(0, m_patients.rowCount());
    for (const PatientRecord& patient : patients) {
        const QList<QStandardItem*> row =
            rowOf({nameOf(patient), birthdayOf(patient), patient.ids.value(3), patient.puid});
        row.first()->setData(patient.puid, PuidRole);
        m_patients.appendRow(row);
        if (patient.puid == puid)
            patientTable->setCurrentIndex(m_shownPatients->mapFromSource(m_patients.indexFromItem(row.first())));
    }
    fitColumns(patientTable, 14);
}

void HostWindow::refreshDiary()
{
    const PatientRecord patient = m_events.openPatient();
    diaryName->setText(m_events.isOpen() ? nameOf(patient) : tr("No diary is open"));
    QStringList details{birthdayOf(patient), patient.ids.value(3), patient.puid};
    details.removeAll(QString());
    diaryName->setToolTip(diaryName->text());
    diaryDetails->setText(m_events.isOpen() ? details.join("  \u00b7  ") : tr("Select a patient and open the diary."));
    m_imports.removeRows(0, m_imports.rowCount());
    const QVector<ImportFacts> imports = m_database.imports(patient.puid);
    const bool isRead = !reportDatabaseError();
    for (const ImportFacts& facts : imports) {
        const QDateTime importedAt = facts.importedAt.toLocalTime();
        m_imports.appendRow(rowOf({shownDate(importedAt.date()) + importedAt.toString(" hh:mm"), facts.fileName,
                                   QLocale::c().formattedDataSize(facts.fileSize),
                                   tr("verified, %1").arg(facts.deviceState), facts.mac}));
    }
    fitColumns(importTable, 26);
    importLabel->setText(!isRead             ? tr("&Imported pump files: the database can't be read now")
                         : imports.isEmpty() ? tr("&Imported pump files: none yet")
                                             : tr("&Imported pump files"));
    refreshActions();
}

void HostWindow::refreshActions()
{
    const bool isFree = !m_pluginHost.isRunning();
    const bool isSelected = isFree && patientTable->selectionModel()->hasSelection();
    const bool isOpen = isFree && m_events.isOpen();
    addPatientAction->setEnabled(isFree);
    for (QAction* action : {editPatientAction, deletePatientAction, openDiaryAction})
        action->setEnabled(isSelected);
    closeDiaryAction->setEnabled(isOpen);
    // The entry is enabled without a diary, too: the plug-in reports that itself.
    for (QAction* action : deviceMenu->actions())
        action->setEnabled(isFree);
}

void HostWindow::refreshStatus()
{
    const QString reader = m_deviceAdmin.drivePath().isEmpty() ? tr("no reader's drive is set")
                           : m_deviceAdmin.isReaderThere()
                               ? tr("reader at %1").arg(QDir::toNativeSeparators(m_deviceAdmin.drivePath()))
                               : tr("reader not plugged in");
    hostStatusBar->showMessage(tr("Database %1; %2").arg(QDir::toNativeSeparators(m_database.path()), reader));
}

void HostWindow::showError(const QString& sentence)
{
    messageIcon->setAccessibleName(tr("Error"));
    showMessage(sentence, QStyle::SP_MessageBoxCritical, QColor(0xfd, 0xe0, 0xe0));
}

void HostWindow::showNotice(const QString& sentence)
{
    messageIcon->setAccessibleName(tr("Note"));
    showMessage(sentence, QStyle::SP_MessageBoxInformation, QColor(0xe0, 0xee, 0xfb));
}

void HostWindow::showMessage(const QString& sentence, QStyle::StandardPixmap icon, const QColor& background)
{
    QPalette palette = messageBar->palette();
    palette.setColor(QPalette::Window, background);
    palette.setColor(QPalette::WindowText, Qt::black);
    messageBar->setPalette(palette);
    messageIcon->setPixmap(style()->standardIcon(icon).pixmap(24));
    messageText->setText(sentence);
    messageText->setAccessibleName(sentence);
    messageBar->show();
}

bool HostWindow::reportDatabaseError()
{
    if (m_database.errorText().isEmpty())
        return false;
    showError(m_database.errorText());
    return true;
}

std::optional<PatientRecord> HostWindow::selectedPatient()
{
    const QModelIndexList rows = patientTable->selectionModel()->selectedRows();
    if (rows.isEmpty())
        return std::nullopt;
    const QString puid = rows.first().data(PuidRole).toString();
    const auto patient = m_database.findPatient(puid);
    if (!reportDatabaseError() && !patient)
        showError(tr("The patient '%1' isn't in the database any more.").arg(puid));
    return patient;
}

void HostWindow::closeEvent(QCloseEvent* event)
{
    event->setAccepted(!m_pluginHost.isRunning());
}
