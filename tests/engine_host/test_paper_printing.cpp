#include "engine_host/PaperPrinting.h"

#include <QBuffer>
#include <QPainter>
#include <QPdfDocument>
#include <QPdfWriter>
#include <QPrinter>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace Qt::StringLiterals;

/// What arrives at a printer, which is a file here.
class TestPaperPrinting final : public QObject {
    Q_OBJECT

    static constexpr double dotsPerMm = 4;

    QTemporaryDir m_folder;

    QString path() const { return m_folder.filePath(u"printed.pdf"_s); }

    /// A document whose pages have a black rectangle each, in millimetres from the paper's corner.
    static QByteArray pagesWith(const QList<QRectF> &rectangles, QPageLayout::Orientation orientation)
    {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        QPdfWriter writer(&buffer);
        writer.setResolution(254);
        writer.setPageLayout({ QPageSize(QPageSize::A4), orientation, QMarginsF() });
        QPainter painter(&writer);
        for (qsizetype page = 0; page < rectangles.size(); ++page) {
            if (page > 0)
                writer.newPage();
            painter.setPen(Qt::NoPen);
            painter.setBrush(Qt::black);
            painter.drawRect(QRectF(rectangles[page].topLeft() * 10, rectangles[page].size() * 10));
        }
        painter.end();
        return buffer.data();
    }

    /// A printer with margins of 15 mm.
    void setUp(QPrinter &printer, QPageLayout::Orientation orientation) const
    {
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setResolution(150);
        printer.setPageLayout(
            { QPageSize(QPageSize::A4), orientation, QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter });
        printer.setOutputFileName(path());
    }

    static QImage pageOf(QPdfDocument &document, int page)
    {
        const QSizeF mm = document.pagePointSize(page) * 25.4 / 72;
        QImage image(document.render(page, (mm * dotsPerMm).toSize()));
        QPainter painter(&image);
        painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
        painter.fillRect(image.rect(), Qt::white);
        return image;
    }

    /// What is dark of a page, in millimetres.
    static QRectF inkOn(const QImage &page)
    {
        const QImage gray = page.convertToFormat(QImage::Format_Grayscale8);
        QRect ink;
        for (int y = 0; y < gray.height(); ++y) {
            const uchar *line = gray.constScanLine(y);
            for (int x = 0; x < gray.width(); ++x) {
                if (line[x] < 128)
                    ink |= QRect(x, y, 1, 1);
            }
        }
        return { ink.x() / dotsPerMm, ink.y() / dotsPerMm, ink.width() / dotsPerMm, ink.height() / dotsPerMm };
    }

    static bool isNear(const QRectF &one, const QRectF &other)
    {
        const QMarginsF off(one.left() - other.left(), one.top() - other.top(), one.right() - other.right(),
            one.bottom() - other.bottom());
        return std::abs(off.left()) < 1 && std::abs(off.top()) < 1 && std::abs(off.right()) < 1
            && std::abs(off.bottom()) < 1;
    }

private Q_SLOTS:
    void eachPageIsWhereTheDocumentHasIt_data()
    {
        QTest::addColumn<QPageLayout::Orientation>("orientation");
        QTest::newRow("upright") << QPageLayout::Portrait;
        QTest::newRow("across") << QPageLayout::Landscape;
    }

    void eachPageIsWhereTheDocumentHasIt()
    {
        QFETCH(const QPageLayout::Orientation, orientation);
        const QList<QRectF> rectangles{ { 5, 6, 190, 20 }, { 100, 150, 40, 50 } };
        QPrinter printer;
        setUp(printer, orientation);
        QVERIFY(PaperPrinting::print(pagesWith(rectangles, orientation), printer));
        QPdfDocument document;
        document.load(path());
        QCOMPARE(document.pageCount(), rectangles.size());
        for (int page = 0; page < document.pageCount(); ++page) {
            QCOMPARE(document.pagePointSize(page).width() > document.pagePointSize(page).height(),
                orientation == QPageLayout::Landscape);
            const QRectF ink = inkOn(pageOf(document, page));
            QVERIFY2(isNear(ink, rectangles[page]), qPrintable(QDebug::toString(ink)));
        }
    }

    void theLastPageComesFirstWhereThePrinterWantsThat()
    {
        QPrinter printer;
        setUp(printer, QPageLayout::Portrait);
        printer.setPageOrder(QPrinter::LastPageFirst);
        const QList<QRectF> rectangles{ { 20, 20, 10, 10 }, { 40, 40, 10, 10 }, { 60, 60, 10, 10 } };
        QVERIFY(PaperPrinting::print(pagesWith(rectangles, QPageLayout::Portrait), printer));
        QPdfDocument document;
        document.load(path());
        QCOMPARE(document.pageCount(), 3);
        for (int page = 0; page < 3; ++page)
            QVERIFY(isNear(inkOn(pageOf(document, page)), rectangles[2 - page]));
    }

    void aLineHasNoHazeAroundIt()
    {
        QPrinter printer;
        setUp(printer, QPageLayout::Portrait);
        QVERIFY(PaperPrinting::print(pagesWith({ { 20, 20, 100, 0.2 } }, QPageLayout::Portrait), printer));
        QPdfDocument document;
        document.load(path());
        const QImage page = pageOf(document, 0);
        for (int y = 0; y < page.height(); ++y) {
            if (std::abs(y / dotsPerMm - 20) > 1)
                QCOMPARE(page.pixel(int(50 * dotsPerMm), y), qRgb(255, 255, 255));
        }
    }

    void whatIsNoDocumentIsNotPrinted()
    {
        QPrinter printer;
        setUp(printer, QPageLayout::Portrait);
        QVERIFY(!PaperPrinting::print("no PDF", printer));
        QVERIFY(!PaperPrinting::print({}, printer));
    }

    void aPrinterThatTakesNothingFails()
    {
        QPrinter printer;
        setUp(printer, QPageLayout::Portrait);
        printer.setOutputFileName(m_folder.filePath(u"none/printed.pdf"_s));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"."_s));
        QVERIFY(!PaperPrinting::print(pagesWith({ { 20, 20, 10, 10 } }, QPageLayout::Portrait), printer));
    }
};

QTEST_MAIN(TestPaperPrinting)
#include "test_paper_printing.moc"
