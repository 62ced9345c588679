#include "pdf/drawing/PagePainter.h"

#include <QImage>

#include <algorithm>
#include <vector>

namespace {

/// How many times larger a picture is drawn before it is made small. The library draws no line thinner than a pixel, so
/// that on a thumbnail staves would be black bars.
int enlargement(QSize size)
{
    constexpr int enough = 600;
    constexpr qint64 tooMuch = 4'000'000;
    int factor = std::clamp(enough / size.width(), 1, 6);
    while (factor > 1 && qint64(size.width()) * size.height() * factor * factor > tooMuch)
        --factor;
    return factor;
}

/// Adds the pixel's channels, laid on white, in 255ths of 255ths.
struct Sum {
    quint32 red = 0;
    quint32 green = 0;
    quint32 blue = 0;

    void add(QRgb pixel)
    {
        const quint32 alpha = pixel >> 24;
        const quint32 white = 255 * (255 - alpha);
        red += ((pixel >> 16) & 255) * alpha + white;
        green += ((pixel >> 8) & 255) * alpha + white;
        blue += (pixel & 255) * alpha + white;
    }

    QRgb over(quint32 count) const
    {
        const quint32 whole = 255 * count;
        const auto mean = [whole](quint32 sum) { return (sum + whole / 2) / whole; };
        return 0xff000000 | mean(red) << 16 | mean(green) << 8 | mean(blue);
    }
};

/// Makes `factor` by `factor` pixels one, by averaging, and lays it on white.
void reduce(const QImage &image, int factor, QSize size, QRgb *pixels)
{
    std::vector<const QRgb *> rows(static_cast<std::size_t>(factor));
    for (int y = 0; y < size.height(); ++y) {
        for (int i = 0; i < factor; ++i)
            rows[std::size_t(i)] = reinterpret_cast<const QRgb *>(image.constScanLine(y * factor + i));
        for (int x = 0; x < size.width(); ++x) {
            Sum sum;
            for (const QRgb *row : rows) {
                for (int i = 0; i < factor; ++i)
                    sum.add(row[x * factor + i]);
            }
            *pixels++ = sum.over(quint32(factor * factor));
        }
    }
}

/// The same, where nothing is made smaller.
void layOnWhite(const QImage &image, QRgb *pixels)
{
    const auto onWhite = [](quint32 channel, quint32 alpha) {
        const quint32 sum = channel * alpha + 255 * (255 - alpha) + 128;
        return (sum + (sum >> 8)) >> 8; // divided by 255, rounded
    };
    for (int y = 0; y < image.height(); ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QRgb c = row[x];
            const quint32 alpha = c >> 24;
            *pixels++ = 0xff000000 | onWhite((c >> 16) & 255, alpha) << 16 | onWhite((c >> 8) & 255, alpha) << 8
                | onWhite(c & 255, alpha);
        }
    }
}

} // namespace

PagePainter::PagePainter(const QByteArray &file)
    : m_document(nullptr)
{
    m_file.setData(file);
    m_file.open(QIODevice::ReadOnly);
    m_document.load(&m_file);
}

bool PagePainter::draw(int page, QSize size, QRgb *pixels)
{
    const int factor = enlargement(size);
    const QImage image = m_document.render(page, size * factor);
    if (image.size() != size * factor || image.format() != QImage::Format_ARGB32)
        return false;
    if (factor == 1)
        layOnWhite(image, pixels);
    else
        reduce(image, factor, size, pixels);
    return true;
}
