#include "pdf/conversion/Folders.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QString prefix = u"qv-omr-"_s;

QString temporaryFolder()
{
    // Where TMPDIR names no folder, Qt has none either.
    const QString folder = QDir::tempPath();
    return folder.isEmpty() ? u"/tmp"_s : folder;
}

QString newTemporaryPath()
{
    return temporaryFolder() + u'/' + prefix + QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

PDFConverter::Failure cannotBeMade(const QString &path, const QString &reason)
{
    return { QCoreApplication::translate("PDFConverter", "The folder %1 could not be made: %2.").arg(path, reason) };
}

/// For this user alone.
std::optional<PDFConverter::Failure> makePrivate(const QString &path)
{
    if (std::optional<PDFConverter::Failure> failure = PDFConverter::makeFolder(QFileInfo(path).path()))
        return failure;
    if (::mkdir(QFile::encodeName(path).constData(), 0700) == 0)
        return std::nullopt;
    return cannotBeMade(path, QString::fromLocal8Bit(std::strerror(errno)));
}

/// The folder, held for as long as it is open; none when it cannot be opened, is another user's or is held already.
FileDescriptor hold(const QString &path)
{
    FileDescriptor folder(::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status{};
    if (!folder || ::fstat(folder.number(), &status) != 0 || status.st_uid != ::geteuid()
        || ::flock(folder.number(), LOCK_EX | LOCK_NB) != 0)
        return {};
    return folder;
}

} // namespace

namespace PDFConverter {

std::optional<Failure> makeFolder(const QString &path)
{
    std::error_code error;
    std::filesystem::create_directories(QFile::encodeName(path).toStdString(), error);
    if (!error)
        return std::nullopt;
    return cannotBeMade(path, QString::fromLocal8Bit(error.message().c_str()));
}

WorkingFolder::WorkingFolder(const std::optional<QString> &kept)
    : m_kept(kept.has_value())
    , m_path(kept ? *kept : newTemporaryPath())
    , m_failure(m_kept ? makeFolder(m_path) : makePrivate(m_path))
    , m_hold(m_kept ? FileDescriptor() : hold(m_path))
{
}

WorkingFolder::~WorkingFolder()
{
    if (!m_kept && !m_failure)
        QDir(m_path).removeRecursively();
}

void WorkingFolder::sweep()
{
    // One that was made in this moment may not be held yet.
    const QDateTime young = QDateTime::currentDateTimeUtc().addSecs(-10);
    const QFileInfoList folders
        = QDir(temporaryFolder()).entryInfoList({ prefix + u'*' }, QDir::Dirs | QDir::NoSymLinks);
    for (const QFileInfo &folder : folders) {
        if (folder.lastModified() < young && hold(folder.filePath()))
            QDir(folder.filePath()).removeRecursively();
    }
}

} // namespace PDFConverter
