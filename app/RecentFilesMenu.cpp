#include "app/RecentFilesMenu.h"

#include "controller/AlphaTabController.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Enough to tell the entries of a list apart: the name, and the folder where another entry has the same name.
QString label(const QUrl &url, const QList<QUrl> &all)
{
    const QFileInfo file(url.toLocalFile());
    const auto sameName
        = [&file](const QUrl &other) { return QFileInfo(other.toLocalFile()).fileName() == file.fileName(); };
    QString text = file.fileName();
    if (std::count_if(all.begin(), all.end(), sameName) > 1)
        text += u" – "_s + QDir::toNativeSeparators(file.path());
    return text.replace(u'&', "&&"_L1);
}

} // namespace

RecentFilesMenu::RecentFilesMenu(AlphaTabController &controller, QWidget *parent)
    : QMenu(tr("Open Recent"), parent)
    , m_controller(controller)
{
    setToolTipsVisible(true);
    controller.recentFiles.observe(
        this, [this](const QList<QUrl> &files) { menuAction()->setEnabled(!files.isEmpty()); });
    connect(this, &QMenu::aboutToShow, this, &RecentFilesMenu::fill);
}

RecentFilesMenu::~RecentFilesMenu() = default;

void RecentFilesMenu::fill()
{
    clear();
    const QList<QUrl> files = m_controller.recentFiles;
    for (const QUrl &url : files) {
        QAction *open = addAction(label(url, files), this, [this, url] { m_controller.load(url); });
        open->setToolTip(url.toLocalFile());
    }
    addSeparator();
    addAction(tr("Clear"), this, [this] { m_controller.clearRecents(); });
}
