#include "pdf/conversion/PagePng.h"

#include "pdf/conversion/GrayBitmap.h"

#include <QCoreApplication>
#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <libdeflate.h>
#include <thread>
#include <vector>
#include <zlib.h>

using namespace Qt::StringLiterals;

namespace {

/// Line art is runs of equal bytes: to look for nothing else is quickest, and smaller than what the quick levels of the
/// full search find. Row filters cost more time than they save.
constexpr int strategy = Z_RLE;
constexpr int compressionLevel = 3;
constexpr qsizetype bufferBytes = 256 << 10;
constexpr int mostThreads = 4;

/// The parts of a PNG file, https://www.w3.org/TR/png, "Datastream structure".
class PngFile final {
    Q_DISABLE_COPY_MOVE(PngFile)

public:
    explicit PngFile(const QString &path)
        : m_file(path)
    {
    }

    bool create() { return m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered); }

    bool signature() { return put("\x89PNG\r\n\x1a\n"_ba); }

    bool header(int width, int height)
    {
        QByteArray fields;
        append(fields, quint32(width));
        append(fields, quint32(height));
        // 8 bits, gray alone; the one compression, the one set of filters, no interlacing
        fields.append("\x08\x00\x00\x00\x00", 5);
        return chunk("IHDR"_ba, fields);
    }

    bool data(const QByteArray &compressed) { return chunk("IDAT"_ba, compressed); }

    /// False when anything has not reached the file.
    bool finish()
    {
        const bool written = chunk("IEND"_ba, {});
        m_file.close();
        return written && m_file.error() == QFileDevice::NoError;
    }

private:
    static void append(QByteArray &bytes, quint32 number)
    {
        const quint32 bigEndian = qToBigEndian(number);
        bytes.append(reinterpret_cast<const char *>(&bigEndian), sizeof bigEndian);
    }

    static const Bytef *bytesOf(const QByteArray &array) { return reinterpret_cast<const Bytef *>(array.constData()); }

    bool put(const QByteArray &bytes) { return m_file.write(bytes) == bytes.size(); }

    bool chunk(const QByteArray &type, const QByteArray &content)
    {
        QByteArray head;
        append(head, quint32(content.size()));
        head += type;
        uLong sum = crc32(0, bytesOf(type), uInt(type.size()));
        if (!content.isEmpty())
            sum = crc32(sum, bytesOf(content), uInt(content.size()));
        QByteArray tail;
        append(tail, quint32(sum));
        return put(head) && put(content) && put(tail);
    }

    QFile m_file;
};

/// Some rows of the picture in the compressed form of RFC 1951, and the checksum of what they were.
struct Piece {
    QByteArray compressed;
    uLong checksum = adler32(0, nullptr, 0);
    z_off_t length = 0;
    bool complete = false;
};

/// One run of the compressor, which gives its memory back.
class Deflater final {
    Q_DISABLE_COPY_MOVE(Deflater)

public:
    Deflater()
        : m_ready(
              deflateInit2(&m_stream, compressionLevel, Z_DEFLATED, -MAX_WBITS, MAX_MEM_LEVEL - 1, strategy) == Z_OK)
    {
    }

    ~Deflater()
    {
        if (m_ready)
            deflateEnd(&m_stream);
    }

    bool isReady() const { return m_ready; }

    void add(const quint8 *bytes, std::size_t count, Piece &piece)
    {
        // The same sum as the other library's, several times as fast.
        piece.checksum = libdeflate_adler32(quint32(piece.checksum), bytes, count);
        piece.length += z_off_t(count);
        m_stream.next_in = const_cast<Bytef *>(bytes);
        m_stream.avail_in = uInt(count);
        run(Z_NO_FLUSH, piece);
    }

    /// @param last whether no other piece follows; otherwise this one ends on a whole byte
    void finish(bool last, Piece &piece)
    {
        run(last ? Z_FINISH : Z_SYNC_FLUSH, piece);
        piece.complete = true;
    }

private:
    void run(int flush, Piece &piece)
    {
        do {
            m_stream.next_out = reinterpret_cast<Bytef *>(m_buffer.data());
            m_stream.avail_out = uInt(m_buffer.size());
            deflate(&m_stream, flush);
            piece.compressed.append(m_buffer.constData(), m_buffer.size() - qsizetype(m_stream.avail_out));
        } while (m_stream.avail_out == 0);
    }

    z_stream m_stream{};
    const bool m_ready;
    QByteArray m_buffer{ bufferBytes, Qt::Uninitialized };
};

Piece compressRows(const GrayBitmap &bitmap, int from, int to)
{
    Piece piece;
    Deflater deflater;
    if (!deflater.isReady())
        return piece;
    const quint8 unfiltered = 0;
    for (int y = from; y < to; ++y) {
        deflater.add(&unfiltered, 1, piece);
        deflater.add(
            bitmap.pixels.data() + std::size_t(y) * std::size_t(bitmap.width), std::size_t(bitmap.width), piece);
    }
    deflater.finish(to == bitmap.height, piece);
    return piece;
}

/// The pieces from the top to the bottom, each compressed in a thread of its own.
std::vector<Piece> compress(const GrayBitmap &bitmap)
{
    const int count = std::clamp(int(std::thread::hardware_concurrency()), 1, std::min(mostThreads, bitmap.height));
    const auto border = [&](int index) { return int(qint64(bitmap.height) * index / count); };
    std::vector<Piece> pieces{ std::size_t(count) };
    {
        std::vector<std::jthread> threads;
        for (int index = 1; index < count; ++index)
            threads.emplace_back(
                [&, index] { pieces[index] = compressRows(bitmap, border(index), border(index + 1)); });
        pieces[0] = compressRows(bitmap, border(0), border(1));
    }
    return pieces;
}

/// The pieces joined to one stream in the format of RFC 1950.
bool writePieces(PngFile &file, const std::vector<Piece> &pieces)
{
    uLong checksum = pieces.front().checksum;
    for (auto piece = pieces.begin() + 1; piece != pieces.end(); ++piece)
        checksum = adler32_combine(checksum, piece->checksum, piece->length);
    const quint32 trailer = qToBigEndian(quint32(checksum));
    return file.data("\x78\x5e"_ba) // deflate with its full window, compressed fast
        && std::all_of(
            pieces.begin(), pieces.end(), [&file](const Piece &piece) { return file.data(piece.compressed); })
        && file.data(QByteArray(reinterpret_cast<const char *>(&trailer), sizeof trailer));
}

bool isBitmap(const GrayBitmap &bitmap)
{
    return bitmap.width >= 1 && bitmap.height >= 1
        && bitmap.pixels.size() == std::size_t(bitmap.width) * std::size_t(bitmap.height);
}

} // namespace

namespace PDFConverter {

std::optional<Failure> writePNG(const GrayBitmap &bitmap, const QString &path)
{
    Failure cannotEncode{ QCoreApplication::translate("PDFConverter", "Could not encode a page image.") };
    if (!isBitmap(bitmap))
        return cannotEncode;
    const std::vector<Piece> pieces = compress(bitmap);
    const bool compressed
        = std::all_of(pieces.begin(), pieces.end(), [](const Piece &piece) { return piece.complete; });
    PngFile file(path);
    if (!compressed || !file.create())
        return cannotEncode;
    if (!file.signature() || !file.header(bitmap.width, bitmap.height) || !writePieces(file, pieces) || !file.finish())
        return Failure{ QCoreApplication::translate("PDFConverter", "Could not write a page image.") };
    return std::nullopt;
}

} // namespace PDFConverter
