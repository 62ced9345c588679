#include "pdf/conversion/PDFDocument.h"

#include <QImage>
#include <QThreadPool>

PDFDocument::PDFDocument(FileDescriptor file, const PDFProcess::Bounds &bounds)
    : m_file(std::move(file))
    , m_bounds(bounds)
{
}

PDFDocument::~PDFDocument() = default;

std::shared_ptr<PDFDocument> PDFDocument::open(
    const QString &path, const std::stop_token &stop, const PDFProcess::Bounds &bounds)
{
    FileDescriptor file = PDFProcess::openFile(path);
    if (!file)
        return nullptr;
    // The system takes a moment to clear away what a process had.
    const auto closeElsewhere
        = [](PDFDocument *done) { QThreadPool::globalInstance()->start([done] { delete done; }); };
    std::shared_ptr<PDFDocument> document(new PDFDocument(std::move(file), bounds), closeElsewhere);
    document->m_process = PDFProcess::start(bounds);
    std::optional<std::vector<PageBox>> boxes;
    if (document->m_process)
        boxes = document->m_process->open(document->m_file, PDFProtocol::Verb::View, stop);
    if (!boxes)
        return nullptr;
    document->m_boxes = std::move(*boxes);
    return document;
}

const PageBox *PDFDocument::box(int index) const
{
    return index >= 0 && index < pageCount() ? &m_boxes[size_t(index)] : nullptr;
}

/// Has a process that has read the document, a new one where the last one is dead.
bool PDFDocument::ready(const std::stop_token &stop) const
{
    if (m_process && m_process->isAlive())
        return true;
    m_process = PDFProcess::start(m_bounds);
    return m_process && m_process->open(m_file, PDFProtocol::Verb::View, stop);
}

QImage PDFDocument::picture(int index, QSize size, const std::stop_token &stop) const
{
    if (!box(index) || size.isEmpty())
        return {};
    const std::lock_guard lock(m_drawing);
    if (stop.stop_requested() || m_undrawable.contains(index) || !ready(stop))
        return {};
    QImage picture = m_process->picture(index, size, stop);
    if (!m_process->isAlive() && !stop.stop_requested())
        m_undrawable.insert(index);
    return picture;
}

int PDFDocument::processId() const
{
    const std::lock_guard lock(m_drawing);
    return m_process && m_process->isAlive() ? m_process->id() : 0;
}
