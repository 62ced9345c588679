#pragma once

#include "pdf/process/PDFProcess.h"

#include <memory>
#include <mutex>
#include <set>
#include <stop_token>
#include <vector>

class QImage;
class QSize;

/// One open PDF file, read by a process of its own.
///
/// The process may die over a page, or take too long; that page has no picture then, and the next one is drawn by
/// another process. What a window asks for while it lays itself out - page count and boxes - is told when the document
/// is opened and asks no process after.
class PDFDocument final {
    Q_DISABLE_COPY_MOVE(PDFDocument)

public:
    ~PDFDocument();

    /// Opens the file at `path`; null when it is missing, no regular file, not a PDF, needs a password, has no page, or
    /// cannot be read within `bounds`. Any thread; waits as long as the bounds allow, or until `stop` is requested.
    ///
    /// The file stays open. Whoever lets go of the document last does not wait for its process to end.
    static std::shared_ptr<PDFDocument> open(const QString &path, const std::stop_token &stop = {},
        const PDFProcess::Bounds &bounds = PDFProcess::forViewing);

    /// At least 1.
    int pageCount() const { return int(m_boxes.size()); }

    /// Where the page lies on its media box; null when there is no page of that index.
    const PageBox *box(int index) const;

    /// The page as it is displayed - its crop box, turned - stretched over `size` and laid on white. Null when there is
    /// no such page, or when it cannot be drawn within the bounds; one that could not be is not tried again. Any
    /// thread; waits while another one draws. Null soon, too, when `stop` is requested.
    QImage picture(int index, QSize size, const std::stop_token &stop = {}) const;

    /// Of the process that draws now; 0 when there is none.
    int processId() const;

private:
    PDFDocument(FileDescriptor file, const PDFProcess::Bounds &bounds);

    bool ready(const std::stop_token &stop) const;

    const FileDescriptor m_file;
    const PDFProcess::Bounds m_bounds;
    std::vector<PageBox> m_boxes;
    /// Holds what follows together: one page is drawn at a time.
    mutable std::mutex m_drawing;
    mutable std::unique_ptr<PDFProcess> m_process;
    mutable std::set<int> m_undrawable;
};
