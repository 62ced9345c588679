#include "pdf/conversion/ResultFiles.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <memory>
#include <zip.h>

using namespace Qt::StringLiterals;

namespace {

/// The last path component without its extension. A name that is nothing but a dot and a word has none.
QString stemOf(const QString &path) { return QFileInfo(path).completeBaseName(); }

bool isResult(const QFileInfo &file)
{
    return file.suffix().compare("mxl"_L1, Qt::CaseInsensitive) == 0 && !file.completeBaseName().isEmpty();
}

/// In the order of their paths, whatever order the file system keeps.
QStringList resultsBelow(const QString &folder)
{
    QStringList found;
    QDirIterator files(folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        if (isResult(files.fileInfo()))
            found << path;
    }
    std::sort(found.begin(), found.end());
    return found;
}

struct CloseArchive {
    // Opened for reading: there is nothing to write back.
    void operator()(zip_t *archive) const { zip_discard(archive); }
};

struct CloseMember {
    void operator()(zip_file_t *member) const { zip_fclose(member); }
};

/// Whether the member's bytes are a part of the score.
bool isScore(zip_t *archive, zip_uint64_t index)
{
    const char *raw = zip_get_name(archive, index, ZIP_FL_ENC_RAW);
    const QByteArrayView name(raw ? raw : "");
    return !name.startsWith("META-INF/") && !name.endsWith('/');
}

/// Appends the member's bytes; false when it is broken, locked, or would take `bytes` beyond `most`.
bool append(zip_t *archive, zip_uint64_t index, qint64 most, QByteArray &bytes)
{
    const std::unique_ptr<zip_file_t, CloseMember> member(zip_fopen_index(archive, index, 0));
    if (!member)
        return false;
    constexpr qsizetype step = 256 << 10;
    QByteArray piece(step, Qt::Uninitialized);
    zip_int64_t count = 0;
    while ((count = zip_fread(member.get(), piece.data(), zip_uint64_t(step))) > 0) {
        if (bytes.size() + count > most)
            return false;
        bytes.append(piece.constData(), qsizetype(count));
    }
    return count == 0;
}

QByteArray unpack(const QString &file, qint64 most)
{
    const std::unique_ptr<zip_t, CloseArchive> archive(
        zip_open(QFile::encodeName(file).constData(), ZIP_RDONLY, nullptr));
    if (!archive)
        return {};
    QByteArray bytes;
    const auto members = zip_uint64_t(zip_get_num_entries(archive.get(), 0));
    for (zip_uint64_t index = 0; index < members; ++index) {
        if (isScore(archive.get(), index) && !append(archive.get(), index, most, bytes))
            return {};
    }
    return bytes;
}

} // namespace

namespace PDFConverter {

QStringList collectMxls(const QString &folder, const QStringList &order)
{
    const QStringList found = resultsBelow(folder);
    QStringList ordered;
    for (const QString &input : order) {
        const QString stem = stemOf(input);
        const auto match = std::find_if(
            found.begin(), found.end(), [&stem](const QString &result) { return stemOf(result) == stem; });
        if (match != found.end())
            ordered << *match;
    }
    return ordered.isEmpty() ? found : ordered;
}

Result<QByteArray> extractScoreXml(const QString &file, qint64 most)
{
    QByteArray bytes = unpack(file, most);
    if (bytes.isEmpty()) {
        return Failure{
            QCoreApplication::translate("PDFConverter", "Could not unpack %1.").arg(QFileInfo(file).fileName())
        };
    }
    return bytes;
}

} // namespace PDFConverter
