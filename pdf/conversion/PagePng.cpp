#include "pdf/conversion/PagePng.h"

#include "pdf/conversion/GrayBitmap.h"

#include <QCoreApplication>
#include <QFile>
#include <QtEndian>

#include <zlib.h>

using namespace Qt::StringLiterals;

namespace {

/// Staff lines and long white rows compress in one pass as well as they do with any row filter, and at level 3 nearly
/// as fast as at level 1; the levels above take twice the time for a quarter less.
constexpr int compressionLevel = 3;
constexpr qsizetype chunkBytes = 256 << 10;

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

    bool data(const QByteArray &compressed) { return compressed.isEmpty() || chunk("IDAT"_ba, compressed); }

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

/// Compresses into the data chunks of a file as the bytes come, without a copy of the picture.
class PixelStream final {
    Q_DISABLE_COPY_MOVE(PixelStream)

public:
    explicit PixelStream(PngFile &file)
        : m_file(file)
        , m_ready(deflateInit(&m_stream, compressionLevel) == Z_OK)
    {
        startChunk();
    }

    ~PixelStream()
    {
        if (m_ready)
            deflateEnd(&m_stream);
    }

    bool isReady() const { return m_ready; }

    bool add(const quint8 *bytes, std::size_t count)
    {
        m_stream.next_in = const_cast<Bytef *>(bytes);
        m_stream.avail_in = uInt(count);
        while (m_stream.avail_in > 0) {
            deflate(&m_stream, Z_NO_FLUSH);
            if (m_stream.avail_out == 0 && !sendChunk())
                return false;
        }
        return true;
    }

    bool finish()
    {
        while (deflate(&m_stream, Z_FINISH) != Z_STREAM_END) {
            if (!sendChunk())
                return false;
        }
        return sendChunk();
    }

private:
    void startChunk()
    {
        m_stream.next_out = reinterpret_cast<Bytef *>(m_chunk.data());
        m_stream.avail_out = uInt(m_chunk.size());
    }

    bool sendChunk()
    {
        const bool sent = m_file.data(m_chunk.first(m_chunk.size() - qsizetype(m_stream.avail_out)));
        startChunk();
        return sent;
    }

    PngFile &m_file;
    z_stream m_stream{};
    const bool m_ready;
    QByteArray m_chunk{ chunkBytes, Qt::Uninitialized };
};

bool addRows(PixelStream &stream, const GrayBitmap &bitmap)
{
    const quint8 unfiltered = 0;
    for (int y = 0; y < bitmap.height; ++y) {
        const quint8 *row = bitmap.pixels.data() + std::size_t(y) * std::size_t(bitmap.width);
        if (!stream.add(&unfiltered, 1) || !stream.add(row, std::size_t(bitmap.width)))
            return false;
    }
    return stream.finish();
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
    PngFile file(path);
    PixelStream stream(file);
    if (!isBitmap(bitmap) || !stream.isReady() || !file.create())
        return Failure{ QCoreApplication::translate("PDFConverter", "Could not encode a page image.") };
    if (!file.signature() || !file.header(bitmap.width, bitmap.height) || !addRows(stream, bitmap) || !file.finish())
        return Failure{ QCoreApplication::translate("PDFConverter", "Could not write a page image.") };
    return std::nullopt;
}

} // namespace PDFConverter
