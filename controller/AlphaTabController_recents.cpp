#include "controller/AlphaTabController.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype maximumRecents = 8;

const QString &recentsKey()
{
    static const QString key = u"recentFiles"_s;
    return key;
}

QList<QUrl> without(QList<QUrl> files, const QString &path)
{
    files.removeIf([&path](const QUrl &file) { return file.toLocalFile() == path; });
    return files;
}

} // namespace

void AlphaTabController::loadRecents()
{
    // The store keeps the paths that are missing now: the disk that holds them may come back.
    QList<QUrl> urls;
    const QStringList paths = m_surroundings.defaults->textList(recentsKey()).value_or(QStringList());
    for (const QString &path : paths) {
        if (urls.size() < maximumRecents && QFileInfo::exists(path))
            urls << QUrl::fromLocalFile(path);
    }
    recentFiles = urls;
}

void AlphaTabController::recordRecent(const QUrl &url)
{
    QList<QUrl> urls = without(recentFiles, url.toLocalFile());
    urls.prepend(url);
    if (urls.size() > maximumRecents)
        urls.resize(maximumRecents);
    recentFiles = urls;
    saveRecents();
}

void AlphaTabController::saveRecents()
{
    QStringList paths;
    for (const QUrl &url : recentFiles.value())
        paths << url.toLocalFile();
    m_surroundings.defaults->setTextList(recentsKey(), paths);
}

void AlphaTabController::clearRecents()
{
    recentFiles = QList<QUrl>();
    saveRecents();
}

void AlphaTabController::forgetRecent(const QString &path)
{
    recentFiles = without(recentFiles, path);
    saveRecents();
}
