#pragma once

#include "pdf/conversion/GrayBitmap.h"
#include "pdf/conversion/Result.h"
#include "pdf/process/PDFProcess.h"

#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

namespace PDFConverter {

/// The pages of a PDF one by one at 600 dots per inch, drawn by a process of their own.
class PageRasters final {
    Q_DISABLE_COPY_MOVE(PageRasters)

public:
    /// Null when the file at `path` is missing, no regular file, cannot be read as a PDF, needs a password or has no
    /// page, or when `stop` was requested.
    static std::unique_ptr<PageRasters> open(const QString &path, const std::stop_token &stop = {},
        const PDFProcess::Bounds &bounds = PDFProcess::forConversion);
    ~PageRasters();

    /// At least 1.
    int count() const { return int(m_boxes.size()); }

    /// How many pixels render() makes of page `index`, known before anything is drawn; nothing where it fails for its
    /// size.
    std::optional<qint64> pixels(int index) const;

    /// The whole media box of page `index`, as it is displayed, on white: one PDF unit is 25/3 pixels. Nothing for a
    /// page that is too damaged to be taken out of the file.
    ///
    /// Fails with "Empty PDF page." when a side rounds to no pixel, and with "Could not rasterize a PDF page." when it
    /// cannot be drawn within the bounds, would take more than 1 GiB, or the stop was requested.
    /// @param storage the pixels of a bitmap that is done with: to use its memory again spares the time to get it anew
    Result<std::optional<GrayBitmap>> render(int index, std::vector<quint8> storage = {});

private:
    PageRasters(FileDescriptor file, const std::stop_token &stop, const PDFProcess::Bounds &bounds);

    bool start();
    bool readInto(GrayBitmap &bitmap) const;

    const FileDescriptor m_file;
    const std::stop_token m_stop;
    const PDFProcess::Bounds m_bounds;
    std::vector<PageBox> m_boxes;
    std::unique_ptr<PDFProcess> m_process;
    /// Where the process draws; the same for all pages that are no larger.
    std::unique_ptr<SharedMemory> m_memory;
};

} // namespace PDFConverter
