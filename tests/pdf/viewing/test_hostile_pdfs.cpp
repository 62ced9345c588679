#include "pdf/conversion/PDFDocument.h"
#include "pdf/viewing/PDFSheetView.h"
#include "pdf/viewing/PageCells.h"
#include "tests/support/OpenedPDF.h"
#include "tests/support/TestPDFs.h"
#include "tests/views/ShownWindow.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>
#include <QTimer>

#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

/// The longest time in which the main thread did not turn to anything else, in milliseconds.
class Pulse final : public QObject {
public:
    Pulse()
    {
        connect(&m_timer, &QTimer::timeout, this, [this] { m_longest = std::max(m_longest, m_since.restart()); });
        m_since.start();
        m_timer.start(1);
    }
    qint64 longest() const { return m_longest; }

private:
    QTimer m_timer;
    QElapsedTimer m_since;
    qint64 m_longest = 0;
};

qint64 peakMiB(int who)
{
    rusage used{};
    ::getrusage(who, &used);
    return used.ru_maxrss / 1024;
}

/// Files that were made to bring the program down: this project's own kinds, and those that lie beside the samples.
QMap<QString, QByteArray> hostileFiles()
{
    QMap<QString, QByteArray> files{ { u"endless page"_s, TestPDFs::file({ TestPDFs::endlessPage(), {} }) },
        { u"boundless form"_s, TestPDFs::boundlessForm() }, { u"fatal table"_s, TestPDFs::fatalTable() },
        { u"endless page tree"_s, TestPDFs::endlessPageTree() } };
    const QDir folder(qEnvironmentVariable("QUAVERLY_SAMPLES") + u"/../hostile"_s);
    const QStringList names = folder.entryList({ u"*.pdf"_s }, QDir::Files);
    for (const QString &name : names) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            files.insert(name, file.readAll());
    }
    return files;
}

} // namespace

class TestHostilePDFs final : public QObject {
    Q_OBJECT

private:
    static PDFSheetView *pageGrid(const ShownWindow &w) { return w.window.findChild<PDFSheetView *>(); }

    static bool showsFirstPage(const ShownWindow &w)
    {
        return pageGrid(w) && !pageGrid(w)->cells().cell(0).image().isNull();
    }

private Q_SLOTS:
    void threeTimesInARowAndAGoodFileAfterEach()
    {
        const QMap<QString, QByteArray> files = hostileFiles();
        ShownWindow w;
        const QUrl good = w.world.file(u"good.pdf"_s, TestPDFs::colored(2));
        QVERIFY(openPDF(w.controller, good));
        QTRY_VERIFY(showsFirstPage(w));
        const qint64 before = peakMiB(RUSAGE_SELF);
        const Pulse pulse;
        for (int round = 0; round < 3; ++round) {
            for (auto file = files.begin(); file != files.end(); ++file) {
                const QString &name = file.key();
                const QUrl bad = w.world.file(u"bad.pdf"_s, file.value());
                w.world.log->clear();
                w.controller.load(bad);
                // The first time it is seen to its end, the others a reader moves on.
                const auto isOver = [&] {
                    const bool refused = !w.world.log->isEmpty();
                    const bool told = w.controller.pdfURL.value() == bad && pageGrid(w)
                        && (pageGrid(w)->cells().cell(0).isUndrawable() || showsFirstPage(w));
                    return refused || told;
                };
                if (round == 0)
                    QVERIFY2(QTest::qWaitFor(isOver, 30'000), qPrintable(name));
                else
                    QTest::qWait(200);
                QVERIFY2(openPDF(w.controller, good), qPrintable(name));
                QVERIFY2(QTest::qWaitFor([&] { return showsFirstPage(w); }, 5000), qPrintable(name));
            }
        }
        QVERIFY2(pulse.longest() < 1000, qPrintable(QString::number(pulse.longest())));
        QVERIFY2(peakMiB(RUSAGE_SELF) - before < 200, qPrintable(QString::number(peakMiB(RUSAGE_SELF) - before)));
        QVERIFY2(peakMiB(RUSAGE_CHILDREN) < 800, qPrintable(QString::number(peakMiB(RUSAGE_CHILDREN))));
    }
};

QTEST_MAIN(TestHostilePDFs)
#include "test_hostile_pdfs.moc"
