#include "pdf/conversion/PDFDocument.h"
#include "pdf/viewing/PagePicture.h"
#include "pdf/viewing/PageRenderQueue.h"
#include "tests/support/TestPDFs.h"
#include "tests/support/TestSurroundings.h"

#include <QElapsedTimer>
#include <QTest>
#include <QThread>

using namespace Qt::StringLiterals;
using Urgency = PageRenderQueue::Urgency;

namespace {

/// Somebody who wants pages and writes down what comes.
class Reader final : public QObject {
public:
    Reader(PageRenderQueue &queue, std::shared_ptr<const PDFDocument> document)
        : m_queue(queue)
        , m_document(std::move(document))
    {
    }

    void want(const PageRenderQueue::Requests &requests)
    {
        m_queue.want(
            *this, m_document, requests, [this](const PageRenderQueue::Request &request, const PagePicture &picture) {
                QCOMPARE(QThread::currentThread(), qApp->thread());
                arrived << request.key;
                last = picture.image();
                if (order)
                    *order << request.key;
            });
    }

    QStringList arrived;
    QImage last;
    QStringList *order = nullptr;

private:
    PageRenderQueue &m_queue;
    const std::shared_ptr<const PDFDocument> m_document;
};

PageRenderQueue::Request page(int index, const QString &key, Urgency urgency = Urgency::OnScreen)
{
    return { index, key, QSize(40, 60), 20, urgency };
}

std::shared_ptr<const PDFDocument> open(const QByteArray &bytes)
{
    const TestSurroundings world;
    std::shared_ptr<const PDFDocument> document = PDFDocument::open(world.file(u"x.pdf"_s, bytes).toLocalFile());
    if (!document)
        qFatal("the document does not open");
    return document;
}

} // namespace

class TestPageRenderQueue final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pagesArriveInTheOrderWanted()
    {
        PageRenderQueue queue;
        Reader reader(queue, open(TestPDFs::colored(5)));
        reader.want({ page(3, u"a"_s), page(0, u"b"_s), page(4, u"c"_s) });
        QTRY_COMPARE(reader.arrived, (QStringList{ u"a"_s, u"b"_s, u"c"_s }));
        QCOMPARE(reader.last.size(), QSize(40, 60));
        QCOMPARE(reader.last.pixel(20, 30), TestPDFs::colorOf(4));
    }

    void theMoreUrgentComesFirstWhoeverWantsIt()
    {
        PageRenderQueue queue;
        const auto document = open(TestPDFs::colored(5));
        QStringList order;
        Reader grid(queue, document);
        Reader list(queue, document);
        grid.order = list.order = &order;
        // The first one goes to the worker at once; the choice is between the others.
        grid.want({ page(0, u"first"_s) });
        QTRY_COMPARE(order.size(), 1);
        list.want({ page(0, u"thumbnail"_s, Urgency::Thumbnail), page(1, u"further thumbnail"_s, Urgency::Nearby) });
        grid.want({ page(1, u"page"_s), page(2, u"next page"_s, Urgency::Nearby) });
        QTRY_COMPARE(order.size(), 5);
        // Which of the two asks first decides over the very next page only.
        order.removeAll(u"thumbnail"_s);
        QCOMPARE(order, (QStringList{ u"first"_s, u"page"_s, u"further thumbnail"_s, u"next page"_s }));
    }

    void whatIsNoLongerWantedIsNotDrawn()
    {
        PageRenderQueue queue;
        Reader reader(queue, open(TestPDFs::colored(200)));
        PageRenderQueue::Requests all;
        for (int i = 0; i < 200; ++i)
            all.push_back(page(i, QString::number(i)));
        reader.want(all);
        reader.want({ page(7, u"seven"_s) });
        QTRY_VERIFY(reader.arrived.contains(u"seven"_s));
        QTest::qWait(50); // nothing to wait for: more must not come
        QVERIFY2(queue.drawnCount() <= 2, qPrintable(QString::number(queue.drawnCount())));
    }

    void whatIsBeingDrawnIsNotBegunAgain()
    {
        PageRenderQueue queue;
        Reader reader(queue, open(TestPDFs::file({ TestPDFs::slowPage(), {} })));
        const PageRenderQueue::Requests wanted{ page(0, u"slow"_s), page(1, u"other"_s) };
        for (int i = 0; i < 20; ++i) {
            reader.want(wanted);
            QThread::msleep(1); // the events of the main thread stay undelivered meanwhile
        }
        QTRY_VERIFY(reader.arrived.contains(u"other"_s));
        QCOMPARE(reader.arrived, (QStringList{ u"slow"_s, u"other"_s }));
        QCOMPARE(queue.drawnCount(), 2);
    }

    void askingNeverWaits()
    {
        PageRenderQueue queue;
        Reader reader(queue, open(TestPDFs::file(QList<TestPDFs::Page>(20, TestPDFs::slowPage()))));
        PageRenderQueue::Requests all;
        for (int i = 0; i < 20; ++i)
            all.push_back({ i, QString::number(i), QSize(1000, 1400), 20, Urgency::OnScreen });
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < 100; ++i)
            reader.want(all);
        QVERIFY2(timer.elapsed() < 100, qPrintable(QString::number(timer.elapsed())));
    }

    void aReaderThatGoesTakesItsWishesAlong()
    {
        PageRenderQueue queue;
        const auto document = open(TestPDFs::colored(50));
        auto gone = std::make_unique<Reader>(queue, document);
        PageRenderQueue::Requests all;
        for (int i = 0; i < 50; ++i)
            all.push_back(page(i, QString::number(i)));
        gone->want(all);
        gone.reset();
        Reader stays(queue, document);
        stays.want({ page(1, u"one"_s, Urgency::Nearby) });
        QTRY_COMPARE(stays.arrived, QStringList{ u"one"_s });
        QVERIFY2(queue.drawnCount() <= 2, qPrintable(QString::number(queue.drawnCount())));
    }

    void anotherDocumentsPictureDoesNotArrive()
    {
        PageRenderQueue queue;
        QObject client;
        QList<QRgb> seen;
        const auto arrived = [&seen](const PageRenderQueue::Request &, const PagePicture &picture) {
            seen << picture.image().pixel(20, 30);
        };
        queue.want(client, open(TestPDFs::file({ TestPDFs::slowPage() })), { page(0, u"0"_s) }, arrived);
        QThread::msleep(5); // lets the worker begin
        queue.want(client, open(TestPDFs::colored(1)), { page(0, u"0"_s) }, arrived);
        QTRY_COMPARE(seen, QList<QRgb>{ TestPDFs::colorOf(0) });
    }

    void thePageThatIsNotThereIsNoPicture()
    {
        PageRenderQueue queue;
        Reader reader(queue, open(TestPDFs::colored(1)));
        reader.want({ page(5, u"none"_s) });
        QTRY_COMPARE(reader.arrived, QStringList{ u"none"_s });
        QVERIFY(reader.last.isNull());
    }

    void aSecondDocumentDoesNotWaitForAnEndlessPage()
    {
        PageRenderQueue queue;
        auto endless = std::make_unique<Reader>(queue, open(TestPDFs::file({ TestPDFs::endlessPage() })));
        endless->want({ page(0, u"endless"_s) });
        QTest::qWait(100); // lets the worker begin
        QElapsedTimer timer;
        timer.start();
        endless.reset();
        Reader reader(queue, open(TestPDFs::colored(1)));
        reader.want({ page(0, u"next"_s) });
        QTRY_COMPARE(reader.arrived, QStringList{ u"next"_s });
        QCOMPARE(reader.last.pixel(20, 30), TestPDFs::colorOf(0));
        QVERIFY2(
            timer.elapsed() < PDFProcess::forViewing.page.count() / 2, qPrintable(QString::number(timer.elapsed())));
    }

    void anEndlessPageThatIsNoLongerWantedIsGivenUp()
    {
        PageRenderQueue queue;
        Reader reader(queue, open(TestPDFs::file({ TestPDFs::endlessPage(), {} })));
        reader.want({ page(0, u"endless"_s) });
        QElapsedTimer timer;
        timer.start();
        // As a reader who scrolls on asks again and again.
        QTRY_VERIFY((reader.want({ page(1, u"next"_s) }), !reader.arrived.isEmpty()));
        QCOMPARE(reader.arrived, QStringList{ u"next"_s });
        QVERIFY2(
            timer.elapsed() < PDFProcess::forViewing.page.count() / 2, qPrintable(QString::number(timer.elapsed())));
    }

    void theEndDoesNotWaitForAnEndlessPage()
    {
        auto queue = std::make_unique<PageRenderQueue>();
        Reader reader(*queue, open(TestPDFs::file({ TestPDFs::endlessPage() })));
        reader.want({ page(0, u"endless"_s) });
        QTest::qWait(100); // lets the worker begin
        QElapsedTimer timer;
        timer.start();
        queue.reset();
        QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));
    }

    void theEndDoesNotWaitForTheOthers()
    {
        auto queue = std::make_unique<PageRenderQueue>();
        Reader reader(*queue, open(TestPDFs::file(QList<TestPDFs::Page>(100, TestPDFs::slowPage()))));
        PageRenderQueue::Requests all;
        for (int i = 0; i < 100; ++i)
            all.push_back({ i, QString::number(i), QSize(1000, 1400), 20, Urgency::OnScreen });
        reader.want(all);
        QTRY_VERIFY(!reader.arrived.isEmpty());
        QElapsedTimer one;
        one.start();
        QTRY_VERIFY(reader.arrived.size() >= 3);
        queue.reset();
        // As long as three pages took, doubled twice for a busy machine, is nowhere near a hundred pages.
        QVERIFY2(reader.arrived.size() < 10, "the queue was worked off");
    }
};

QTEST_MAIN(TestPageRenderQueue)
#include "test_page_render_queue.moc"
