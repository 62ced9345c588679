#include "controller/FileDialogs.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

/// A name filter in both letter cases, because the desktop's own dialogs compare literally.
QString nameFilter(const QString &label, const QStringList &extensions)
{
    QStringList patterns;
    for (const QString &extension : extensions)
        patterns << u"*."_s + extension << u"*."_s + extension.toUpper();
    return label + u" ("_s + patterns.join(u' ') + u')';
}

QString documentsFolder()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QFileInfo(documents).isDir() ? documents : QDir::homePath();
}

} // namespace

std::optional<QUrl> FileDialogs::chooseFileToOpen(const QStringList &extensions)
{
    QFileDialog dialog(QApplication::activeWindow(), tr("Open"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilter(nameFilter(tr("Scores and sheet music"), extensions));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedUrls().isEmpty())
        return std::nullopt;
    return dialog.selectedUrls().constFirst();
}

std::optional<QUrl> FileDialogs::chooseFileToSave(const QString &proposedName, const QString &extension)
{
    QFileDialog dialog(QApplication::activeWindow(), tr("Export as Guitar Pro"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilter(nameFilter(tr("Guitar Pro files"), { extension }));
    dialog.setDefaultSuffix(extension);
    dialog.setDirectory(documentsFolder());
    dialog.selectFile(fileNameFor(proposedName));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedUrls().isEmpty())
        return std::nullopt;
    return dialog.selectedUrls().constFirst();
}

QString FileDialogs::fileNameFor(const QString &name)
{
    QString result = name;
    for (QChar &c : result) {
        if (c == u'/' || c == u'\\')
            c = u'-';
        else if (c.category() == QChar::Other_Control)
            c = u' ';
    }
    while (result.startsWith(u'.') && result.size() > 1)
        result.remove(0, 1);
    // 255 bytes is what Linux file systems take; the ending has to survive the cut.
    const QString suffix = u'.' + QFileInfo(result).suffix();
    while (result.toUtf8().size() > 255)
        result.remove(result.size() - suffix.size() - 1, 1);
    return result;
}
