// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/DialogUtils.h"

#include "dialogs/FormScale.h"
#include "toolkit/LmIcons.h"

#include <QDialog>
#include <QLabel>
#include <QPixmap>
#include <QTextDocumentFragment>

QString escapedForPrompt(const QString& text)
{
    constexpr int MaxLength = 200;
    return (text.size() <= MaxLength ? text : elided(text, MaxLength)).toHtmlEscaped();
}

QString htmlToPlainText(const QString& html)
{
    return QTextDocumentFragment::fromHtml(html).toPlainText().simplified();
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
