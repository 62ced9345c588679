#include "pdf/conversion/Folders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QUuid>

#include <filesystem>

using namespace Qt::StringLiterals;

namespace {

QString newTemporaryPath()
{
    // Where TMPDIR names no folder, Qt has none either.
    const QString parent = QDir::tempPath();
    return (parent.isEmpty() ? u"/tmp"_s : parent) + u"/qv-omr-"_s
        + QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

} // namespace

namespace PDFConverter {

std::optional<Failure> makeFolder(const QString &path)
{
    std::error_code error;
    std::filesystem::create_directories(QFile::encodeName(path).toStdString(), error);
    if (!error)
        return std::nullopt;
    return Failure{ QCoreApplication::translate("PDFConverter", "The folder %1 could not be made: %2.")
                        .arg(path, QString::fromLocal8Bit(error.message().c_str())) };
}

WorkingFolder::WorkingFolder(const std::optional<QString> &kept)
    : m_kept(kept.has_value())
    , m_path(kept ? *kept : newTemporaryPath())
    , m_failure(makeFolder(m_path))
{
}

WorkingFolder::~WorkingFolder()
{
    if (!m_kept && !m_failure)
        QDir(m_path).removeRecursively();
}

} // namespace PDFConverter
