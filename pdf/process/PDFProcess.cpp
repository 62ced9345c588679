#include "pdf/process/PDFProcess.h"

#include "pdf/process/HelperPrograms.h"
#include "pdf/process/SharedMemory.h"

#include <QFile>
#include <QImage>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>

using namespace PDFProtocol;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

std::atomic<qint64> requestCount = 0;
std::atomic<qint64> byteCount = 0;

/// Starts the program with nothing of this one's but its environment, its output and the two files.
pid_t launch(const QString &program, int socket, int lifeline, qint64 memory)
{
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    // Onto themselves: that has them stay open.
    posix_spawn_file_actions_adddup2(&files, socket, socket);
    posix_spawn_file_actions_adddup2(&files, lifeline, lifeline);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);

    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    sigset_t all;
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    // Of a group of its own, so that Ctrl+C in a terminal is this program's business.
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);

    std::array<QByteArray, 5> words{ QFile::encodeName(program), QByteArray::number(version),
        QByteArray::number(socket), QByteArray::number(lifeline), QByteArray::number(memory) };
    std::array<char *, 6> arguments{};
    for (std::size_t i = 0; i < words.size(); ++i)
        arguments[i] = words[i].data();
    pid_t id = -1;
    if (::posix_spawn(&id, words[0].constData(), &files, &attributes, arguments.data(), environ) != 0)
        id = -1;
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return id;
}

} // namespace

const PDFProcess::Bounds PDFProcess::forViewing{ 10s, 10s, qint64(640) << 20 };
const PDFProcess::Bounds PDFProcess::forConversion{ 60s, 60s, qint64(832) << 20 };

FileDescriptor PDFProcess::openFile(const QString &path)
{
    if (path.isEmpty())
        return {};
    FileDescriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status{};
    if (!file || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    return file;
}

std::unique_ptr<PDFProcess> PDFProcess::start(const Bounds &bounds)
{
    static const QString program = HelperPrograms::find(u"quaverly-pdf"_s);
    std::array<int, 2> sockets{ -1, -1 };
    std::array<int, 2> lifeline{ -1, -1 };
    if (program.isEmpty() || ::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets.data()) != 0)
        return nullptr;
    FileDescriptor ours(sockets[0]);
    const FileDescriptor theirs(sockets[1]);
    if (::pipe2(lifeline.data(), O_CLOEXEC) != 0)
        return nullptr;
    const FileDescriptor watched(lifeline[0]);
    FileDescriptor held(lifeline[1]);
    const pid_t id = launch(program, theirs.number(), watched.number(), bounds.memory);
    if (id < 0)
        return nullptr;
    return std::unique_ptr<PDFProcess>(new PDFProcess(id, std::move(ours), std::move(held), bounds));
}

PDFProcess::PDFProcess(int id, FileDescriptor socket, FileDescriptor lifeline, const Bounds &bounds)
    : m_id(id)
    , m_socket(std::move(socket))
    , m_lifeline(std::move(lifeline))
    , m_bounds(bounds)
{
}

PDFProcess::~PDFProcess()
{
    end();
    int status = 0;
    while (::waitpid(m_id, &status, 0) < 0 && errno == EINTR) { }
}

void PDFProcess::end()
{
    const std::lock_guard lock(m_ending);
    // Its number is its own until it has been waited for, which the destructor does.
    if (!m_ended.exchange(true))
        ::kill(m_id, SIGKILL);
}

bool PDFProcess::waitForMessage(Clock::time_point deadline)
{
    while (true) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd ready{ m_socket.number(), POLLIN, 0 };
        const int found = ::poll(&ready, 1, int(std::max<qint64>(left.count(), 0)));
        if (found > 0)
            return (ready.revents & POLLIN) != 0;
        if (found == 0 || errno != EINTR)
            return false;
    }
}

std::optional<Reply> PDFProcess::ask(
    Request request, int descriptor, std::chrono::milliseconds limit, const std::stop_token &stop)
{
    const std::stop_callback stopped(stop, [this] { end(); });
    ++requestCount;
    // A little more than here, where it is known what for.
    request.limit = qint32((limit + 1s).count());
    Reply reply;
    if (m_ended || !PDFProtocol::send(m_socket.number(), &request, sizeof(request), descriptor)
        || !waitForMessage(Clock::now() + limit) || !receive(m_socket.number(), &reply, sizeof(reply))) {
        end();
        return std::nullopt;
    }
    return reply;
}

std::optional<std::vector<PageBox>> PDFProcess::receiveBoxes(int count)
{
    std::vector<PageBox> boxes;
    boxes.reserve(std::size_t(count));
    std::vector<Box> message;
    while (int(boxes.size()) < count) {
        message.resize(std::size_t(std::min(count - int(boxes.size()), boxesAMessage)));
        if (!waitForMessage(Clock::now() + m_bounds.page)
            || !receive(m_socket.number(), message.data(), message.size() * sizeof(Box)))
            return std::nullopt;
        for (const Box &box : message) {
            const std::optional<PageBox> page = unpacked(box);
            if (!page)
                return std::nullopt;
            boxes.push_back(*page);
        }
    }
    return boxes;
}

std::optional<std::vector<PageBox>> PDFProcess::open(const FileDescriptor &pdf, Verb verb, const std::stop_token &stop)
{
    const std::optional<Reply> reply = ask({ verb }, pdf.number(), m_bounds.opening, stop);
    if (!reply || reply->result != Result::Done || reply->pages < 1 || reply->pages > mostPages)
        return std::nullopt;
    const std::stop_callback stopped(stop, [this] { end(); });
    std::optional<std::vector<PageBox>> boxes = receiveBoxes(reply->pages);
    if (!boxes)
        end();
    return boxes;
}

QImage PDFProcess::picture(int page, QSize size, const std::stop_token &stop)
{
    const qint64 row = qint64(sizeof(QRgb)) * size.width();
    const std::optional<SharedMemory> memory = SharedMemory::create(row * size.height());
    if (!memory)
        return {};
    const std::optional<Reply> reply
        = ask({ Verb::Picture, page, size.width(), size.height() }, memory->descriptor(), m_bounds.page, stop);
    if (!reply || reply->result != Result::Done)
        return {};
    struct Mapping {
        const uchar *memory;
        qint64 size;
    };
    const uchar *pixels = memory->map();
    if (!pixels)
        return {};
    byteCount += memory->size();
    auto *mapping = new Mapping{ pixels, memory->size() };
    const auto giveBack = [](void *given) {
        const std::unique_ptr<Mapping> done(static_cast<Mapping *>(given));
        SharedMemory::unmap(done->memory, done->size);
    };
    return { pixels, size.width(), size.height(), qsizetype(row), QImage::Format_RGB32, giveBack, mapping };
}

Result PDFProcess::raster(int page, QSize size, const SharedMemory &memory, bool isNew, const std::stop_token &stop)
{
    const std::optional<Reply> reply = ask(
        { Verb::Raster, page, size.width(), size.height() }, isNew ? memory.descriptor() : -1, m_bounds.page, stop);
    if (!reply)
        return Result::Failed;
    if (reply->result == Result::Done)
        byteCount += qint64(size.width()) * size.height();
    return reply->result;
}

PDFProcess::Traffic PDFProcess::traffic() { return { requestCount, byteCount }; }
