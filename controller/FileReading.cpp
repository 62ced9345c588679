#include "controller/FileReading.h"

#include "controller/ScoreMemory.h"
#include "engine_host/bridge/BridgeCalls.h"

#include <QFile>
#include <QThread>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// A number of an open file, closed with this object.
class Handle final {
    Q_DISABLE_COPY(Handle)

public:
    explicit Handle(int number)
        : m_number(number)
    {
    }
    Handle(Handle &&other) noexcept
        : m_number(std::exchange(other.m_number, -1))
    {
    }
    Handle &operator=(Handle &&) = delete;
    ~Handle()
    {
        if (isOpen())
            ::close(m_number);
    }

    bool isOpen() const { return m_number >= 0; }
    int number() const { return m_number; }

private:
    int m_number;
};

struct Bytes {
    std::optional<QByteArray> bytes;
    QString error;
};

/// Reads to the end, or a little further than the file may be long: it may grow meanwhile.
Bytes readAll(const Handle &file, qint64 expected)
{
    constexpr qsizetype step = 1 << 20;
    QByteArray bytes;
    bytes.reserve(expected + 1);
    qsizetype done = 0;
    while (done <= FileReading::largestFile) {
        bytes.resize(done + (done < expected ? expected - done : step));
        const ssize_t count = ::read(file.number(), bytes.data() + done, size_t(bytes.size() - done));
        if (count < 0 && errno != EINTR)
            return { std::nullopt, qt_error_string(errno) };
        if (count == 0)
            break;
        done += std::max<ssize_t>(count, 0);
    }
    if (done > FileReading::largestFile)
        return { std::nullopt, FileReading::tooLarge() };
    bytes.truncate(done);
    return { std::move(bytes), {} };
}

/// Reads regular files alone: to open a pipe or a device can take for ever, or do something.
Bytes readWhole(const QString &path)
{
    if (path.isEmpty())
        return { std::nullopt, u"Not a local file"_s };
    const Handle name(::open(QFile::encodeName(path).constData(), O_PATH | O_CLOEXEC));
    struct stat status{};
    if (!name.isOpen() || ::fstat(name.number(), &status) != 0)
        return { std::nullopt, qt_error_string(errno) };
    if (!S_ISREG(status.st_mode))
        return { std::nullopt, S_ISDIR(status.st_mode) ? u"Is a directory"_s : u"Not a regular file"_s };
    if (status.st_size > FileReading::largestFile)
        return { std::nullopt, FileReading::tooLarge() };
    // The file that was looked at, whatever the path names by now.
    const QByteArray same = "/proc/self/fd/" + QByteArray::number(name.number());
    const Handle file(::open(same.constData(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    return file.isOpen() ? readAll(file, status.st_size) : Bytes{ std::nullopt, qt_error_string(errno) };
}

} // namespace

struct FileReading::Shared {
    std::mutex mutex;
    /// Null when nobody waits any more.
    FileReading *reading = nullptr;
    Arrived arrived;

    void deliver(Result result)
    {
        std::unique_lock lock(mutex);
        if (!reading)
            return;
        if (reading->thread() == QThread::currentThread()) {
            lock.unlock();
            arrived(result);
            return;
        }
        // What is posted to an object goes with it.
        QMetaObject::invokeMethod(
            reading,
            [receiver = arrived, result = std::move(result)] {
                // Which may well begin the next reading, and end this one.
                const Arrived copy = receiver;
                copy(result);
            },
            Qt::QueuedConnection);
    }
};

QString FileReading::tooLarge() { return tr("The file is larger than 200 MB."); }

FileReading::Result FileReading::read(const QString &path, Key key)
{
    const Bytes file = readWhole(path);
    if (!file.bytes)
        return { std::nullopt, file.error, {} };
    return { BridgeCalls::loadBase64(*file.bytes), {},
        key == Key::OfContent ? ScoreMemory::keyFor(*file.bytes) : QString() };
}

FileReading::FileReading(const QString &path, const Background &background, Arrived arrived, Key key)
    : m_shared(std::make_shared<Shared>())
{
    m_shared->reading = this;
    m_shared->arrived = std::move(arrived);
    background([shared = m_shared, path, key] { shared->deliver(read(path, key)); });
}

FileReading::~FileReading()
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->reading = nullptr;
}
