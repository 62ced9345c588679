#include "app/menus/UnsavedMenu.h"

#include "controller/AlphaTabController.h"

#include <QDir>

using namespace Qt::StringLiterals;

UnsavedMenu::UnsavedMenu(AlphaTabController &controller, QWidget *parent)
    : QMenu(tr("Settings cannot be saved"), parent)
    , m_controller(controller)
{
    controller.unsavedFiles.observe(this, [this](const QMap<QString, QString> &files) {
        menuAction()->setVisible(!files.isEmpty());
        fill(files);
    });
}

UnsavedMenu::~UnsavedMenu() = default;

void UnsavedMenu::fill(const QMap<QString, QString> &files)
{
    clear();
    QStringList lines;
    for (auto file = files.begin(); file != files.end(); ++file) {
        lines << tr("%1: %2", "a file, and why it cannot be saved").arg(QDir::toNativeSeparators(file.key()), *file);
        addAction(QString(lines.constLast()).replace(u'&', "&&"_L1))->setEnabled(false);
    }
    // Whoever hears the window does not get to items that cannot be chosen.
    setAccessibleDescription(lines.join(u'\n'));
    addSeparator();
    // Later, because this item goes with the others when it has worked.
    QAction *again = addAction(tr("Try Again"));
    connect(again, &QAction::triggered, &m_controller, &AlphaTabController::saveWhatIsUnsaved, Qt::QueuedConnection);
}
