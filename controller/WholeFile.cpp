#include "controller/WholeFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// What files in the making are called, before the number of the program that makes them.
const QString prefix = u".quaverly-save-"_s;
/// A file that is written in place is kept in memory meanwhile; a larger one is not written.
constexpr qint64 largestKept = 64 << 20;

/// An open file that reports a failed close as any other failure, and otherwise closes itself.
class Output final {
    Q_DISABLE_COPY_MOVE(Output)

public:
    Output(const QString &path, int flags, mode_t mode = 0666)
        : m_number(::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC | O_NOCTTY, mode))
    {
    }
    ~Output() { close(); }

    bool isOpen() const { return m_number >= 0; }
    int number() const { return m_number; }

    bool write(const QByteArray &bytes) const
    {
        qsizetype done = 0;
        while (done < bytes.size()) {
            const ssize_t step = ::write(m_number, bytes.constData() + done, std::size_t(bytes.size() - done));
            if (step < 0 && errno != EINTR)
                return false;
            done += std::max<ssize_t>(step, 0);
        }
        return true;
    }

    bool settle(WholeFile::Durability durability) const
    {
        return durability == WholeFile::Durability::WithSystem || ::fsync(m_number) == 0;
    }

    bool close() { return m_number < 0 || ::close(std::exchange(m_number, -1)) == 0; }

private:
    int m_number;
};

/// The file itself, where the path is a symbolic link's.
QString targetOf(const QString &path)
{
    const QString target = QFileInfo(path).canonicalFilePath();
    return target.isEmpty() ? path : target;
}

QString temporaryName(const QString &folder)
{
    static int count = 0;
    return folder + u'/' + prefix + QString::number(::getpid()) + u'-' + QString::number(++count);
}

/// 0, or the number of the system's error.
int replace(const QString &path, const QByteArray &bytes, WholeFile::Durability durability)
{
    const QString made = temporaryName(QFileInfo(path).path());
    Output file(made, O_WRONLY | O_CREAT | O_EXCL);
    if (!file.isOpen())
        return errno;
    struct stat before{};
    // It stays readable for whom it was; one that cannot be, is new.
    const bool existed = ::stat(QFile::encodeName(path).constData(), &before) == 0;
    if (existed)
        ::fchmod(file.number(), before.st_mode & 07777);
    if (file.write(bytes) && file.settle(durability) && file.close()
        && ::rename(QFile::encodeName(made).constData(), QFile::encodeName(path).constData()) == 0)
        return 0;
    const int reason = errno;
    QFile::remove(made);
    return reason;
}

/// The same.
int writeInPlace(const QString &path, const QByteArray &bytes, WholeFile::Durability durability)
{
    QFile old(path);
    if (old.size() > largestKept || !old.open(QIODevice::ReadOnly))
        return EACCES;
    const QByteArray before = old.readAll();
    Output file(path, O_WRONLY);
    if (!file.isOpen())
        return errno;
    const auto put = [&file, durability](const QByteArray &contents) {
        return ::lseek(file.number(), 0, SEEK_SET) == 0 && file.write(contents)
            && ::ftruncate(file.number(), contents.size()) == 0 && file.settle(durability);
    };
    if (put(bytes) && file.close())
        return 0;
    const int reason = errno;
    put(before);
    return reason;
}

bool isAlive(pid_t program) { return ::kill(program, 0) == 0 || errno != ESRCH; }

} // namespace

namespace WholeFile {

std::optional<QString> write(const QString &path, const QByteArray &bytes, Durability durability)
{
    const QString target = targetOf(path);
    const QFileInfo there(target);
    if (path.isEmpty() || there.isDir())
        return qt_error_string(path.isEmpty() ? ENOENT : EISDIR);
    // A pipe or a device keeps what it is given to itself.
    if (there.exists() && !there.isFile())
        return qt_error_string(EINVAL);
    int reason = replace(target, bytes, durability);
    const bool folderRefused = reason == EACCES || reason == EPERM || reason == EROFS;
    if (folderRefused && there.isFile())
        reason = writeInPlace(target, bytes, durability);
    return reason == 0 ? std::nullopt : std::optional(qt_error_string(reason));
}

void sweep(const QString &folder)
{
    const QStringList left = QDir(folder).entryList({ prefix + u'*' }, QDir::Files | QDir::Hidden);
    for (const QString &name : left) {
        bool isNumber = false;
        const int program = name.sliced(prefix.size()).section(u'-', 0, 0).toInt(&isNumber);
        if (isNumber && program > 0 && !isAlive(program))
            QFile::remove(folder + u'/' + name);
    }
}

} // namespace WholeFile
