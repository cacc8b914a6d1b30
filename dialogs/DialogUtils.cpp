// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/DialogUtils.h"

#include "dialogs/FormScale.h"
#include "plugin/session/PatientSession.h"
#include "toolkit/LmIcons.h"

#include <QDialog>
#include <QLabel>
#include <QPixmap>
#include <QTextDocumentFragment>
#include <QVariant>

namespace {

void showIfAny(QLabel* label, const QString& text, int maxLines)
{
    showForeignText(label, text, maxLines);
    label->setVisible(!text.isEmpty());
}

} // namespace

void markBigSizeFont(QWidget* widget)
{
    widget->setProperty("BigSizeFont", true);
}

void markHighlightFont(QWidget* widget)
{
    widget->setProperty("HighlightFont", true);
}

void showSimulationPath(QLabel* label, const QString& path)
{
    if (path.isEmpty()) {
        label->hide();
        return;
    }
    // A developer's aid and no part of the translation.
    showForeignText(label, QStringLiteral("SimulationPath: '%1'").arg(path), 4);
}

void showPatient(QLabel* line1, QLabel* line2)
{
    markHighlightFont(line1);
    const PatientSession* session = PatientSession::instance();
    showIfAny(line1, session->patientName(), 3);
    showIfAny(line2, session->patientIdExt(), 2);
}

QString escapedForPrompt(const QString& text)
{
    constexpr int MaxLength = 200;
    return (text.size() <= MaxLength ? text : elided(text, MaxLength)).toHtmlEscaped();
}

QString htmlToPlainText(const QString& text)
{
    return QTextDocumentFragment::fromHtml(text).toPlainText().simplified();
}

void showScaledToWidth(QLabel* label, const QString& path, int width)
{
    if (!label)
        return;
    const QPixmap current = label->pixmap(Qt::ReturnByValue);
    const QSize size = current.scaledToWidth(qRound(width * formScale(label)), Qt::FastTransformation).size();
    label->setPixmap(lmIcon(path).pixmap(size));
}

void closeAsRejected(QDialog* dialog)
{
    dialog->done(QDialog::Rejected);
}
