#pragma once

#include "pdf/process/FileDescriptor.h"
#include "pdf/process/PageBox.h"

#include <QtGlobal>

#include <optional>
#include <vector>

/// What the window and the process that reads a PDF for it say to each other, over a socket that keeps messages apart.
///
/// One request, one reply; only the reply to an opening is followed by further messages, with the boxes of the pages.
/// Both sides are built together: messages are plain structures.
namespace PDFProtocol {

/// The first argument of the process; another one means that the two were not built together.
inline constexpr int version = 1;

enum class Verb : quint32 {
    /// Opens the PDF whose file comes along, to show its pages.
    View,
    /// The same, to take its pages out one by one and draw them for recognition.
    Rasterize,
    /// Draws the displayed page on white into the memory that comes along, four bytes a pixel, without gaps.
    Picture,
    /// Draws the page's media box on white, one byte a pixel, into the memory that came along last.
    Raster,
};

struct Request {
    Verb verb = Verb::View;
    qint32 page = 0;
    /// Pixels.
    qint32 width = 0;
    qint32 height = 0;
    /// The process ends itself when it takes longer than this, in milliseconds, should nobody be left to end it.
    qint32 limit = 0;
};

enum class Result : quint32 {
    Done,
    /// The page is too damaged to be taken out of its file.
    Missing,
    Failed,
};

struct Reply {
    Result result = Result::Failed;
    /// How many pages the document has.
    qint32 pages = 0;
};

/// A document with more pages than this does not open.
inline constexpr int mostPages = 100'000;
/// How many boxes fit into one message; no system's socket takes less than these 64 KiB.
inline constexpr int boxesAMessage = 900;

struct Box {
    double media[4];
    double crop[4];
    qint32 rotation;
    qint32 unused;
};

Box packed(const PageBox &box);
/// Nothing when it is no box that there could be: the other side may be in a stranger's hands.
std::optional<PageBox> unpacked(const Box &box);

/// False when the other side is gone.
bool send(int socket, const void *bytes, std::size_t count, int descriptor = -1);
/// One message of exactly `count` bytes; false when the other side is gone or sent anything else.
/// @param descriptor takes the file that came along, if one did; without it, files are not accepted
bool receive(int socket, void *bytes, std::size_t count, FileDescriptor *descriptor = nullptr);

} // namespace PDFProtocol
