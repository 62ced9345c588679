#include "controller/AlphaTabController.h"

#include <QFileInfo>

#include <future>
#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr qsizetype maximumRecents = 8;

/// The disks' time to say which files are there. A file server that is gone would take minutes, and nobody sees a
/// window before.
constexpr auto diskTimeout = 250ms;

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

QStringList thatExist(const QStringList &paths)
{
    QStringList found;
    for (const QString &path : paths) {
        if (found.size() < maximumRecents && QFileInfo::exists(path))
            found << path;
    }
    return found;
}

/// All of them where no answer comes in time: one that is not there goes when it is opened.
QStringList thatExistSoon(const QStringList &paths, const FileReading::Background &background)
{
    const auto found = std::make_shared<std::promise<QStringList>>();
    std::future<QStringList> answer = found->get_future();
    background([found, paths] { found->set_value(thatExist(paths)); });
    return answer.wait_for(diskTimeout) == std::future_status::ready ? answer.get() : paths.mid(0, maximumRecents);
}

} // namespace

void AlphaTabController::loadRecents()
{
    // The store keeps the paths that are missing now: the disk that holds them may come back.
    QList<QUrl> urls;
    const QStringList paths = m_surroundings.defaults->textList(recentsKey()).value_or(QStringList());
    for (const QString &path : thatExistSoon(paths, m_surroundings.inBackground))
        urls << QUrl::fromLocalFile(path);
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
