#pragma once

#include "pdf/process/FileDescriptor.h"
#include "pdf/process/PDFProtocol.h"

#include <QSize>
#include <QString>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <vector>

class QImage;
class SharedMemory;

/// A process of its own that reads one PDF and draws its pages.
///
/// The libraries that do so crash, loop and grow on files that were made for it. The process has no network, no files
/// but the fonts and the one it was handed, a bound on its memory, and none on how often it may die: whoever wants the
/// next page starts another one.
///
/// One thread at a time asks; its requests end early when the stop token they were given is told to stop.
class PDFProcess final {
    Q_DISABLE_COPY_MOVE(PDFProcess)

public:
    struct Bounds {
        /// How long a document may take to be opened, and one page to be drawn.
        std::chrono::milliseconds opening;
        std::chrono::milliseconds page;
        /// What the process may have in memory for itself, in bytes; pictures come on top.
        qint64 memory;
    };
    /// For pages that somebody looks at: ten seconds, 640 MiB.
    static const Bounds forViewing;
    /// For pages at 600 dots per inch, one colour scan of which takes 660 MiB: a minute, 832 MiB.
    static const Bounds forConversion;

    /// The regular file at `path`, open for reading; none when there is no such file. Never waits for a pipe's other
    /// end.
    static FileDescriptor openFile(const QString &path);

    /// Null when no process can be started.
    static std::unique_ptr<PDFProcess> start(const Bounds &bounds);
    /// Ends the process.
    ~PDFProcess();

    /// The boxes of all pages, at least one; nothing when the file is no PDF, needs a password, or is too much.
    /// @param verb View or Rasterize
    std::optional<std::vector<PageBox>> open(
        const FileDescriptor &pdf, PDFProtocol::Verb verb, const std::stop_token &stop = {});

    /// The displayed page stretched over `size`, on white. Null when it cannot be drawn.
    QImage picture(int page, QSize size, const std::stop_token &stop = {});

    /// Draws the page's media box, one byte a pixel, into the first bytes of `memory`.
    /// @param isNew whether it is another memory than the last time
    PDFProtocol::Result raster(
        int page, QSize size, const SharedMemory &memory, bool isNew, const std::stop_token &stop = {});

    /// False once it has died, or was ended because it took too long.
    bool isAlive() const { return !m_ended; }
    /// Of the system's.
    int id() const { return m_id; }

    /// How many requests were made of all processes, and how many bytes of pictures they drew.
    struct Traffic {
        qint64 requests = 0;
        qint64 bytes = 0;
    };
    static Traffic traffic();

private:
    PDFProcess(int id, FileDescriptor socket, FileDescriptor lifeline, const Bounds &bounds);

    std::optional<PDFProtocol::Reply> ask(
        PDFProtocol::Request request, int descriptor, std::chrono::milliseconds limit, const std::stop_token &stop);
    std::optional<std::vector<PageBox>> receiveBoxes(int count);
    bool waitForMessage(std::chrono::steady_clock::time_point deadline);
    void end();

    const int m_id;
    const FileDescriptor m_socket;
    /// Nothing is ever said on it. Its end, which comes with this program's, ends the process.
    const FileDescriptor m_lifeline;
    const Bounds m_bounds;
    std::mutex m_ending;
    std::atomic<bool> m_ended = false;
};
