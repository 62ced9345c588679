#include "pdf/conversion/PageRasters.h"

#include "pdf/process/SharedMemory.h"

#include <QCoreApplication>

#include <cmath>
#include <new>

namespace {

constexpr double pixelsPerUnit = 600.0 / 72.0;
constexpr qint64 mostBytes = qint64(1) << 30;

PDFConverter::Failure cannotRasterize()
{
    return { QCoreApplication::translate("PDFConverter", "Could not rasterize a PDF page.") };
}

/// In pixels, halves away from zero.
QSizeF rasterSize(const PageBox &box)
{
    const QSizeF size = box.media.size() * pixelsPerUnit;
    const QSizeF rounded(std::round(size.width()), std::round(size.height()));
    return box.rotation % 180 == 0 ? rounded : rounded.transposed();
}

} // namespace

namespace PDFConverter {

PageRasters::PageRasters(FileDescriptor file, const std::stop_token &stop, const PDFProcess::Bounds &bounds)
    : m_file(std::move(file))
    , m_stop(stop)
    , m_bounds(bounds)
{
}

PageRasters::~PageRasters() = default;

std::unique_ptr<PageRasters> PageRasters::open(
    const QString &path, const std::stop_token &stop, const PDFProcess::Bounds &bounds)
{
    FileDescriptor file = PDFProcess::openFile(path);
    if (!file)
        return nullptr;
    std::unique_ptr<PageRasters> pages(new PageRasters(std::move(file), stop, bounds));
    return pages->start() ? std::move(pages) : nullptr;
}

bool PageRasters::start()
{
    m_memory.reset();
    m_process = PDFProcess::start(m_bounds);
    std::optional<std::vector<PageBox>> boxes;
    if (m_process)
        boxes = m_process->open(m_file, PDFProtocol::Verb::Rasterize, m_stop);
    // A file that was written to meanwhile is another one.
    if (!boxes || (!m_boxes.empty() && boxes->size() != m_boxes.size()))
        return false;
    m_boxes = std::move(*boxes);
    return true;
}

std::optional<qint64> PageRasters::pixels(int index) const
{
    const QSizeF size = index >= 0 && index < count() ? rasterSize(m_boxes[std::size_t(index)]) : QSizeF();
    if (size.width() < 1 || size.height() < 1 || size.width() * size.height() > double(mostBytes))
        return std::nullopt;
    return qint64(size.width()) * qint64(size.height());
}

Result<std::optional<GrayBitmap>> PageRasters::render(int index, std::vector<quint8> storage)
{
    if (index < 0 || index >= count())
        return std::optional<GrayBitmap>();
    const QSizeF size = rasterSize(m_boxes[std::size_t(index)]);
    if (size.width() < 1 || size.height() < 1)
        return Failure{ QCoreApplication::translate("PDFConverter", "Empty PDF page.") };
    if (size.width() * size.height() > double(mostBytes))
        return cannotRasterize();
    if (!m_process->isAlive() && !start())
        return cannotRasterize();

    const QSize pixels = size.toSize();
    const qint64 bytes = qint64(pixels.width()) * pixels.height();
    const bool isNew = !m_memory || m_memory->size() < bytes;
    if (isNew) {
        std::optional<SharedMemory> memory = SharedMemory::create(bytes);
        if (!memory)
            return cannotRasterize();
        m_memory = std::make_unique<SharedMemory>(std::move(*memory));
    }
    const PDFProtocol::Result result = m_process->raster(index, pixels, *m_memory, isNew, m_stop);
    if (result == PDFProtocol::Result::Missing)
        return std::optional<GrayBitmap>();
    if (result != PDFProtocol::Result::Done)
        return cannotRasterize();
    GrayBitmap bitmap{ std::move(storage), pixels.width(), pixels.height() };
    if (!readInto(bitmap))
        return cannotRasterize();
    return std::optional(std::move(bitmap));
}

bool PageRasters::readInto(GrayBitmap &bitmap) const
{
    try {
        bitmap.pixels.resize(std::size_t(bitmap.width) * std::size_t(bitmap.height));
        return m_memory && m_memory->read(bitmap.pixels.data(), qint64(bitmap.pixels.size()));
    } catch (const std::bad_alloc &) {
        return false;
    }
}

} // namespace PDFConverter
