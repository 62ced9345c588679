#include "engine_host/bridge/BridgeCalls.h"
#include "tests/engine/EngineScores.h"
#include "tests/engine/PageTest.h"

#include <QBuffer>
#include <QDebug>
#include <QPageLayout>
#include <QPdfDocument>
#include <QPdfSelection>
#include <QPrinter>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <cmath>
#include <optional>

using namespace Qt::StringLiterals;

class TestPagePrinting final : public PageTest {
    Q_OBJECT

    /// Prints what is shown into a PDF of format A4 with margins of 15 mm.
    QByteArray print() { return print(QPageSize::A4, QPageLayout::Portrait, 15); }

    QByteArray print(QPageSize::PageSizeId size, QPageLayout::Orientation orientation, double margin)
    {
        const QPageLayout layout(
            QPageSize(size), orientation, QMarginsF(margin, margin, margin, margin), QPageLayout::Millimeter);
        std::optional<PrintResult> result;
        m_session->host().print({ .layout = layout, .filePath = u"x.pdf"_s, .printer = nullptr },
            [&](const PrintResult &r) { result = r; });
        if (!m_session->waitFor([&] { return result.has_value(); }, 60000))
            return {};
        return result->pdf;
    }

    /// The text of each page, without its blanks: they are put where letters are set one by one.
    static QStringList textsOf(QByteArray pdf)
    {
        QBuffer buffer(&pdf);
        buffer.open(QIODevice::ReadOnly);
        QPdfDocument document;
        document.load(&buffer);
        QStringList texts;
        for (int page = 0; page < document.pageCount(); ++page)
            texts << document.getAllText(page).text().remove(QRegularExpression(u"\\s"_s));
        return texts;
    }

    /// What is not white of the first page of a PDF, in millimetres.
    static QRectF inkOn(QPdfDocument &document)
    {
        constexpr double dotsPerMm = 4;
        const QSizeF mm = document.pagePointSize(0) * 25.4 / 72;
        const QImage page = document.render(0, (mm * dotsPerMm).toSize()).convertToFormat(QImage::Format_ARGB32);
        QRect ink;
        for (int y = 0; y < page.height(); ++y) {
            for (int x = 0; x < page.width(); ++x) {
                const QRgb dot = page.pixel(x, y);
                if (qAlpha(dot) > 128 && qGray(dot) < 128)
                    ink |= QRect(x, y, 1, 1);
            }
        }
        return { ink.x() / dotsPerMm, ink.y() / dotsPerMm, ink.width() / dotsPerMm, ink.height() / dotsPerMm };
    }

    static QByteArray longTune() { return EngineScores::musicXml({ .title = u"A Long Tune"_s, .bars = 160 }); }

private Q_SLOTS:
    void everyPageHasItsNumberAndTheFirstTheTitle()
    {
        QVERIFY(m_session->open(longTune()));
        const QStringList texts = textsOf(print());
        QVERIFY(texts.size() >= 2);
        for (qsizetype page = 0; page < texts.size(); ++page) {
            const QString number = u"%1/%2"_s.arg(page + 1).arg(texts.size());
            QVERIFY2(texts[page].contains(number), qPrintable(texts[page]));
            QCOMPARE(texts[page].contains(u"ALongTune"_s), page == 0);
        }
    }

    void everyBarIsPrintedOnce()
    {
        QVERIFY(m_session->open(longTune()));
        m_session->call(BridgeCalls::setLayout(true));
        QStringList numbers;
        for (const QString &page : textsOf(print())) {
            for (const QString &word : page.split(QRegularExpression(u"\\D+"_s), Qt::SkipEmptyParts))
                numbers << word;
        }
        for (int bar = 2; bar <= 160; ++bar)
            QVERIFY2(numbers.contains(QString::number(bar)), qPrintable(QString::number(bar)));
    }

    void thereIsNoPageWithoutMusic_data()
    {
        QTest::addColumn<QPageSize::PageSizeId>("size");
        QTest::addColumn<bool>("landscape");
        QTest::addColumn<double>("margin");
        for (const double margin : { 10.7, 15.0 }) {
            for (const bool landscape : { false, true }) {
                QTest::addRow("A4 %d %.1f", landscape, margin) << QPageSize::A4 << landscape << margin;
                QTest::addRow("Letter %d %.1f", landscape, margin) << QPageSize::Letter << landscape << margin;
            }
        }
    }

    void thereIsNoPageWithoutMusic()
    {
        QFETCH(const QPageSize::PageSizeId, size);
        QFETCH(const bool, landscape);
        QFETCH(const double, margin);
        QVERIFY(m_session->open(longTune()));
        const QStringList texts
            = textsOf(print(size, landscape ? QPageLayout::Landscape : QPageLayout::Portrait, margin));
        QVERIFY(!texts.isEmpty());
        const QString number = u"%1/%1"_s.arg(texts.size());
        QVERIFY2(texts.constLast().contains(number), qPrintable(number));
    }

    void thePageIsAfterwardsAsItWasBefore()
    {
        QVERIFY(m_session->open(longTune()));
        const QString state = u"[document.getElementById('notation').innerHTML.length,"
                              "document.querySelectorAll('#printed').length,"
                              "document.getElementById('score-page').offsetWidth].join()"_s;
        const QString before = m_session->valueOf(state).toString();
        const qsizetype drawn = m_session->count(u"rendered"_s);
        QVERIFY(!print().isEmpty());
        QCOMPARE(m_session->valueOf(state).toString(), before);
        QCOMPARE(m_session->count(u"rendered"_s), drawn);
    }

    void aPrinterGetsThePages()
    {
        QVERIFY(m_session->open(longTune()));
        const QTemporaryDir folder;
        const auto printer = std::make_shared<QPrinter>();
        printer->setOutputFormat(QPrinter::PdfFormat);
        printer->setResolution(150);
        printer->setPageLayout(
            { QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter });
        printer->setOutputFileName(folder.filePath(u"printed.pdf"_s));
        std::optional<PrintResult> result;
        m_session->host().print({ .layout = printer->pageLayout(), .filePath = {}, .printer = printer },
            [&](const PrintResult &r) { result = r; });
        QVERIFY(m_session->waitFor([&] { return result.has_value(); }, 60000));
        QVERIFY(result->succeeded);
        QPdfDocument document;
        document.load(folder.filePath(u"printed.pdf"_s));
        QByteArray pdf = print();
        QBuffer buffer(&pdf);
        buffer.open(QIODevice::ReadOnly);
        QPdfDocument file;
        file.load(&buffer);
        QCOMPARE(document.pageCount(), file.pageCount());
        // All of it, where the file has it.
        const QRectF printed = inkOn(document);
        const QRectF wanted = inkOn(file);
        QVERIFY(wanted.width() > 150);
        for (const double off : { printed.left() - wanted.left(), printed.top() - wanted.top(),
                 printed.right() - wanted.right(), printed.bottom() - wanted.bottom() })
            QVERIFY2(std::abs(off) < 1, qPrintable(QDebug::toString(printed) + QDebug::toString(wanted)));
    }

    void withoutAScoreNothingIsPrinted() { QVERIFY(print().isEmpty()); }
};

int main(int argc, char *argv[]) { return runEngineTest<TestPagePrinting>(argc, argv); }
#include "test_page_printing.moc"
