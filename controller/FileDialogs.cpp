#include "controller/FileDialogs.h"

#include "controller/KeyWindow.h"
#include "controller/PrintPanel.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QStandardPaths>

#include <algorithm>
#include <utility>

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

/// The patterns of a filter are longer than any panel is wide.
void showNameOnly(QFileDialog &dialog) { dialog.setOption(QFileDialog::HideNameFilterDetails); }

/// The field for the name in Qt's own panel; null where the panel is the desktop's.
QLineEdit *nameField(const QFileDialog &dialog) { return dialog.findChild<QLineEdit *>(u"fileNameEdit"_s); }

/// Qt's own panel takes straight quotes for a list of names, and saves under the first of them.
QString withCurlyQuotes(QString name)
{
    bool opens = true;
    for (QChar &c : name) {
        if (c == u'"')
            c = std::exchange(opens, !opens) ? u'“' : u'”';
    }
    return name;
}

/// Without a meta-object of its own, which would have Qt show its own panel everywhere.
class SavePanel final : public QFileDialog {
public:
    using QFileDialog::QFileDialog;

    void accept() override
    {
        if (QLineEdit *field = nameField(*this))
            field->setText(withCurlyQuotes(field->text()));
        QFileDialog::accept();
    }
};

} // namespace

std::optional<QUrl> FileDialogs::chooseFileToOpen(const QStringList &extensions)
{
    QFileDialog dialog(KeyWindow::find(), tr("Open"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    showNameOnly(dialog);
    dialog.setNameFilter(nameFilter(tr("Scores and sheet music"), extensions));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedUrls().isEmpty())
        return std::nullopt;
    return dialog.selectedUrls().constFirst();
}

std::optional<QUrl> FileDialogs::chooseFileToSave(const QString &proposedName, const QString &extension)
{
    SavePanel dialog(KeyWindow::find(), tr("Export as Guitar Pro"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    showNameOnly(dialog);
    dialog.setNameFilter(nameFilter(tr("Guitar Pro files"), { extension }));
    dialog.setDefaultSuffix(extension);
    dialog.setDirectory(documentsFolder());
    const QString name = fileNameFor(proposedName);
    dialog.selectFile(nameField(dialog) ? withCurlyQuotes(name) : name);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedUrls().isEmpty())
        return std::nullopt;
    return dialog.selectedUrls().constFirst();
}

std::optional<PrintTarget> FileDialogs::choosePrintTarget(const QString &title) { return PrintPanel::choose(title); }

QString FileDialogs::documentsFolder()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QFileInfo(documents).isDir() ? documents : QDir::homePath();
}

QString FileDialogs::fileNameFor(const QString &name)
{
    QString result = name;
    for (QChar &c : result) {
        if (c == u'/')
            c = u'-';
        else if (c.category() == QChar::Other_Control)
            c = u' ';
    }
    // 255 bytes is what Linux file systems take; the ending has to survive the cut.
    constexpr qsizetype most = 255;
    // Not of QFileInfo, which counts in 16 bits.
    const qsizetype ending = result.size() - std::max<qsizetype>(result.lastIndexOf(u'.'), 0);
    // At once, because a title may be as long as a book; what is left is looked at letter by letter.
    if (result.size() > most) {
        result.remove(most - ending, result.size() - most);
        if (result[most - ending - 1].isHighSurrogate())
            result.remove(most - ending - 1, 1);
    }
    while (result.toUtf8().size() > most) {
        const qsizetype last = result.size() - ending - 1;
        const bool isPair = last > 0 && result[last].isLowSurrogate() && result[last - 1].isHighSurrogate();
        result.remove(isPair ? last - 1 : last, isPair ? 2 : 1);
    }
    return result;
}
