#include "pdf/conversion/GrayBitmap.h"
#include "pdf/conversion/PagePng.h"

#include <QImageReader>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/resource.h>

using namespace PDFConverter;
using namespace Qt::StringLiterals;

namespace {

GrayBitmap noise(int width, int height)
{
    GrayBitmap bitmap{ std::vector<quint8>(std::size_t(width) * std::size_t(height)), width, height };
    QRandomGenerator random(42);
    std::generate(bitmap.pixels.begin(), bitmap.pixels.end(), [&random] { return quint8(random.bounded(256)); });
    return bitmap;
}

GrayBitmap lineArt(int width, int height)
{
    GrayBitmap bitmap{ std::vector<quint8>(std::size_t(width) * std::size_t(height), 255), width, height };
    for (int y = 0; y < height; y += 42)
        std::fill_n(bitmap.pixels.begin() + std::ptrdiff_t(y) * width, width, quint8(0));
    return bitmap;
}

/// While it lives, no file grows beyond `bytes`: a disk that is full.
class FullDisk final {
    Q_DISABLE_COPY_MOVE(FullDisk)

public:
    explicit FullDisk(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{ bytes, m_before.rlim_max };
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &limit);
    }

    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_before{};
    void (*m_handler)(int) = nullptr;
};

} // namespace

class TestPagePng final : public QObject {
    Q_OBJECT

private:
    const QTemporaryDir m_folder;

    QString path() const { return m_folder.filePath(u"page.png"_s); }

private Q_SLOTS:
    void readsBackByteForByte_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<bool>("noisy");
        QTest::newRow("one pixel") << 1 << 1 << true;
        QTest::newRow("one row") << 5000 << 1 << true;
        QTest::newRow("one column") << 1 << 5000 << true;
        QTest::newRow("noise, larger than its chunks") << 1021 << 2011 << true;
        QTest::newRow("an A4 page") << 4961 << 7016 << false;
    }

    void readsBackByteForByte()
    {
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(bool, noisy);
        const GrayBitmap bitmap = noisy ? noise(width, height) : lineArt(width, height);
        QVERIFY(!writePNG(bitmap, path()));

        QImageReader::setAllocationLimit(0); // the reader expects four bytes a pixel
        QImageReader reader(path());
        QCOMPARE(reader.format(), QByteArray("png"));
        const QImage image = reader.read();
        QCOMPARE(image.size(), QSize(width, height));
        QCOMPARE(image.format(), QImage::Format_Grayscale8); // one channel, no alpha
        for (int y = 0; y < height; ++y)
            QVERIFY(std::equal(image.constScanLine(y), image.constScanLine(y) + width,
                bitmap.pixels.begin() + std::ptrdiff_t(y) * width));
    }

    void replacesWhatIsThere()
    {
        QVERIFY(!writePNG(noise(300, 300), path()));
        QVERIFY(!writePNG(lineArt(2, 2), path()));
        QCOMPARE(QImage(path()).size(), QSize(2, 2));
    }

    void whatIsNoBitmapOrNoPlace()
    {
        const QString message = u"Could not encode a page image."_s;
        const QList<GrayBitmap> none{ { {}, 0, 0 }, { { 1, 2, 3 }, 2, 2 }, { { 1 }, -1, -1 } };
        for (const GrayBitmap &bitmap : none) {
            const auto failure = writePNG(bitmap, path());
            QVERIFY(failure);
            QCOMPARE(failure->message, message);
        }
        const auto failure = writePNG(lineArt(2, 2), m_folder.filePath(u"missing/page.png"_s));
        QVERIFY(failure);
        QCOMPARE(failure->message, message);
    }

    void aFullDisk()
    {
        const GrayBitmap bitmap = noise(600, 600);
        for (const rlim_t bytes : { 0, 20, 100000 }) {
            const FullDisk disk(bytes);
            const auto failure = writePNG(bitmap, path());
            QVERIFY(failure);
            QCOMPARE(failure->message, u"Could not write a page image."_s);
        }
        QVERIFY(!writePNG(bitmap, path()));
    }
};

QTEST_GUILESS_MAIN(TestPagePng)
#include "test_page_png.moc"
