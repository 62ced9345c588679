#include "pdf/drawing/PageServer.h"

#include "pdf/drawing/PageBoxes.h"
#include "pdf/drawing/PageExtractor.h"
#include "pdf/drawing/PagePainter.h"
#include "pdf/drawing/PageRaster.h"

#include <optional>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/time.h>

using namespace PDFProtocol;

namespace {

/// Ends this process in that many milliseconds; 0 calls it off.
void endAfter(qint32 limit)
{
    itimerval timer{};
    timer.it_value.tv_sec = limit / 1000;
    timer.it_value.tv_usec = limit % 1000 * 1000L;
    ::setitimer(ITIMER_REAL, &timer, nullptr);
}

/// How long a document may take whose page tree contains itself, in milliseconds: the library that draws is soon done
/// with it, or never.
constexpr qint32 circularLimit = 1000;

qint64 sizeOf(const FileDescriptor &file)
{
    struct stat status{};
    return file && ::fstat(file.number(), &status) == 0 ? qint64(status.st_size) : 0;
}

/// The displayed pages as the drawing library takes them, where the file's own words cannot be had.
std::vector<PageBox> sizesAsDrawn(const PagePainter &painter)
{
    std::vector<PageBox> boxes;
    for (int i = 0; i < painter.pageCount(); ++i) {
        const QRectF page(QPointF(), painter.size(i));
        boxes.push_back({ .media = page, .crop = page });
    }
    return boxes;
}

} // namespace

PageServer::PageServer(int socket)
    : m_socket(socket)
{
}

PageServer::~PageServer() = default;

void PageServer::serve()
{
    while (true) {
        Request request;
        FileDescriptor file;
        if (!receive(m_socket, &request, sizeof(request), &file))
            return;
        endAfter(request.limit);
        if (!answer(request, file))
            return;
        endAfter(0);
    }
}

bool PageServer::answer(const Request &request, const FileDescriptor &file)
{
    Reply reply;
    switch (request.verb) {
    case Verb::View:
    case Verb::Rasterize:
        return open(request.verb, file);
    case Verb::Picture:
        reply.result = draw(request, file);
        break;
    case Verb::Raster:
        reply.result = rasterize(request, file);
        break;
    }
    return send(m_socket, &reply, sizeof(reply));
}

bool PageServer::open(Verb verb, const FileDescriptor &file)
{
    const qint64 size = sizeOf(file);
    void *bytes = size > 0 ? ::mmap(nullptr, std::size_t(size), PROT_READ, MAP_PRIVATE, file.number(), 0) : MAP_FAILED;
    std::vector<PageBox> boxes;
    if (bytes != MAP_FAILED) {
        m_pdf = QByteArray::fromRawData(static_cast<const char *>(bytes), size);
        boxes = verb == Verb::View ? view() : takeApart();
    }
    Reply reply;
    if (!boxes.empty() && boxes.size() <= std::size_t(mostPages))
        reply = { Result::Done, qint32(boxes.size()) };
    if (!send(m_socket, &reply, sizeof(reply)))
        return false;
    std::vector<Box> message;
    for (std::size_t first = 0; first < std::size_t(reply.pages); first += message.size()) {
        message.clear();
        for (std::size_t i = first; i < boxes.size() && message.size() < std::size_t(boxesAMessage); ++i)
            message.push_back(packed(boxes[i]));
        if (!send(m_socket, message.data(), message.size() * sizeof(Box)))
            return false;
    }
    return true;
}

std::vector<PageBox> PageServer::view()
{
    bool circular = false;
    std::optional<std::vector<PageBox>> boxes = PageBoxes::read(m_pdf, &circular);
    // Not for the drawing library's eyes: see there.
    if (boxes && boxes->empty())
        return {};
    if (circular)
        endAfter(circularLimit);
    m_painter = std::make_unique<PagePainter>(m_pdf);
    // In a damaged file each library may find pages that the other one does not.
    if (!boxes || boxes->size() != std::size_t(m_painter->pageCount()))
        boxes = sizesAsDrawn(*m_painter);
    return *boxes;
}

std::vector<PageBox> PageServer::takeApart()
{
    m_pages = PageExtractor::open(m_pdf);
    return m_pages ? m_pages->boxes() : std::vector<PageBox>();
}

Result PageServer::draw(const Request &request, const FileDescriptor &memory)
{
    const qint64 size = qint64(sizeof(QRgb)) * request.width * request.height;
    if (!m_painter || request.width < 1 || request.height < 1 || sizeOf(memory) < size)
        return Result::Failed;
    void *pixels = ::mmap(nullptr, std::size_t(size), PROT_READ | PROT_WRITE, MAP_SHARED, memory.number(), 0);
    if (pixels == MAP_FAILED)
        return Result::Failed;
    const bool drawn = m_painter->draw(request.page, QSize(request.width, request.height), static_cast<QRgb *>(pixels));
    ::munmap(pixels, std::size_t(size));
    return drawn ? Result::Done : Result::Failed;
}

Result PageServer::rasterize(const Request &request, const FileDescriptor &memory)
{
    if (memory) {
        if (m_raster.bytes)
            ::munmap(m_raster.bytes, std::size_t(m_raster.size));
        m_raster = { nullptr, sizeOf(memory) };
        void *bytes
            = ::mmap(nullptr, std::size_t(m_raster.size), PROT_READ | PROT_WRITE, MAP_SHARED, memory.number(), 0);
        if (bytes == MAP_FAILED)
            return Result::Failed;
        m_raster.bytes = static_cast<char *>(bytes);
    }
    if (!m_pages || !m_raster.bytes || request.width < 1 || request.height < 1
        || qint64(request.width) * request.height > m_raster.size)
        return Result::Failed;
    const std::optional<ExtractedPage> page = m_pages->page(request.page);
    if (!page)
        return Result::Missing;
    const PageRaster raster{ reinterpret_cast<quint8 *>(m_raster.bytes), request.width, request.height };
    return render(*page, raster) ? Result::Done : Result::Failed;
}
