#pragma once

#include "pdf/process/PDFProtocol.h"

#include <QByteArray>

#include <memory>

class PagePainter;
class PageExtractor;

/// Answers the window's requests about one PDF, one after the other.
class PageServer final {
    Q_DISABLE_COPY_MOVE(PageServer)

public:
    explicit PageServer(int socket);
    ~PageServer();

    /// Returns when the window has closed its end.
    void serve();

private:
    /// A file that the window handed over, in memory.
    struct Mapping {
        char *bytes = nullptr;
        qint64 size = 0;
    };

    bool answer(const PDFProtocol::Request &request, const FileDescriptor &file);
    bool open(PDFProtocol::Verb verb, const FileDescriptor &file);
    std::vector<PageBox> view();
    std::vector<PageBox> takeApart();
    PDFProtocol::Result draw(const PDFProtocol::Request &request, const FileDescriptor &memory);
    PDFProtocol::Result rasterize(const PDFProtocol::Request &request, const FileDescriptor &memory);

    const int m_socket;
    /// The whole PDF.
    QByteArray m_pdf;
    std::unique_ptr<PagePainter> m_painter;
    std::unique_ptr<PageExtractor> m_pages;
    Mapping m_raster;
};
