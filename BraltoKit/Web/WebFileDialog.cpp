#include "Web/WebFileDialog.h"

#include "Web/WebContents.h"

#include <QEventLoop>
#include <QFileDialog>
#include <QMimeDatabase>
#include <QPointer>
#include <QWebEngineView>

namespace Bralto::WebFileDialog {

namespace {

QFileDialog::FileMode modeFor(QWebEnginePage::FileSelectionMode mode)
{
    switch (mode) {
    case QWebEnginePage::FileSelectOpenMultiple:
        return QFileDialog::ExistingFiles;
    case QWebEnginePage::FileSelectUploadFolder:
        return QFileDialog::Directory;
    case QWebEnginePage::FileSelectSave:
        return QFileDialog::AnyFile;
    default:
        return QFileDialog::ExistingFile;
    }
}

QStringList patternsFor(const QString& type)
{
    if (type.startsWith(u'.'))
        return {u'*' + type};
    QStringList result;
    const QMimeDatabase database;
    if (type.endsWith(QStringLiteral("/*"))) {
        const QString family = type.left(type.size() - 1);
        for (const QMimeType& each : database.allMimeTypes())
            if (each.name().startsWith(family))
                result += each.globPatterns();
        return result;
    }
    return database.mimeTypeForName(type).globPatterns();
}

} // namespace

QStringList nameFilters(const QStringList& types)
{
    QStringList patterns;
    for (const QString& type : types)
        patterns += patternsFor(type.trimmed().toLower());
    patterns.removeDuplicates();
    const QString all = QStringLiteral("All files (*)");
    if (patterns.isEmpty())
        return {all};
    return {QStringLiteral("Files for this page (%1)").arg(patterns.join(u' ')), all};
}

QStringList choose(WebContents& page, QWebEnginePage::FileSelectionMode mode,
                   const QStringList& types)
{
    QWebEngineView* view = QWebEngineView::forPage(&page);
    // The window may go, and the dialog with it.
    const QPointer<QFileDialog> dialog(new QFileDialog(view ? view->window() : nullptr));
    dialog->setFileMode(modeFor(mode));
    dialog->setNameFilters(nameFilters(types));
    QEventLoop loop;
    QStringList chosen;
    QObject::connect(dialog, &QDialog::finished, &loop, [&](int result) {
        if (result == QDialog::Accepted)
            chosen = dialog->selectedFiles();
        loop.quit();
    });
    QObject::connect(dialog, &QObject::destroyed, &loop, &QEventLoop::quit);
    QObject::connect(&page, &WebContents::retired, &loop, &QEventLoop::quit);
    QObject::connect(&page, &QWebEnginePage::renderProcessTerminated, &loop, &QEventLoop::quit);
    dialog->open();
    loop.exec();
    delete dialog;
    return chosen;
}

} // namespace Bralto::WebFileDialog
