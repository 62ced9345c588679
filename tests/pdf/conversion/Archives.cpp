#include "tests/pdf/conversion/Archives.h"

#include <QFile>

#include <zip.h>

void writeArchive(const QString &path, const QList<Member> &members, const QByteArray &password)
{
    zip_t *archive = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    if (!archive)
        qFatal("cannot write %s", qPrintable(path));
    for (const Member &member : members) {
        const QByteArray name = member.name.toUtf8();
        if (name.endsWith('/')) {
            zip_dir_add(archive, name.constData(), ZIP_FL_ENC_UTF_8);
            continue;
        }
        // Read when the archive is closed, within the life of `members`.
        zip_source_t *source
            = zip_source_buffer(archive, member.bytes.constData(), zip_uint64_t(member.bytes.size()), 0);
        const zip_int64_t index = zip_file_add(archive, name.constData(), source, ZIP_FL_ENC_UTF_8);
        if (!password.isEmpty())
            zip_file_set_encryption(archive, zip_uint64_t(index), ZIP_EM_AES_256, password.constData());
    }
    if (zip_close(archive) != 0)
        qFatal("cannot write %s: %s", qPrintable(path), zip_strerror(archive));
}

QByteArray memberOf(const QString &archivePath, const QByteArray &name)
{
    zip_t *archive = zip_open(QFile::encodeName(archivePath).constData(), ZIP_RDONLY, nullptr);
    if (!archive)
        return {};
    QByteArray bytes;
    zip_stat_t stat;
    if (zip_stat(archive, name.constData(), 0, &stat) == 0) {
        bytes.resize(qsizetype(stat.size));
        zip_file_t *file = zip_fopen(archive, name.constData(), 0);
        if (!file || zip_fread(file, bytes.data(), stat.size) != zip_int64_t(stat.size))
            bytes.clear();
        if (file)
            zip_fclose(file);
    }
    zip_discard(archive);
    return bytes;
}
