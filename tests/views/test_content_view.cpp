#include "design/Button.h"
#include "engine_host/AlphaTabWebView.h"
#include "pdf/viewing/PDFSheetView.h"
#include "pdf/viewing/PageList.h"
#include "tests/support/KeyRecorder.h"
#include "tests/support/Report.h"
#include "tests/support/TestPDFs.h"
#include "tests/views/ShownWindow.h"
#include "views/ContentView.h"
#include "views/EmptyState.h"
#include "views/PageFailure.h"
#include "views/TrackSidebar.h"
#include "views/TransportBar.h"

#include <QAccessible>
#include <QDropEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>
#include <QTest>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

bool drop(QWidget &target, const QList<QUrl> &urls)
{
    QMimeData data;
    data.setUrls(urls);
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&target, &enter);
    QDropEvent dropped(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&target, &dropped);
    if (enter.isAccepted() != dropped.isAccepted())
        qFatal("the pointer promises another thing than the drop does");
    return dropped.isAccepted();
}

QString loading(const QByteArray &bytes)
{
    return u"window.qv.loadBase64('%1')"_s.arg(QString::fromLatin1(bytes.toBase64()));
}

/// Does with keys what a page of Chromium does with those that it has no use for.
class GivesKeysBack final : public QObject {
public:
    explicit GivesKeysBack(QWidget &page)
        : m_page(page)
    {
        page.installEventFilter(this);
    }
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() != QEvent::KeyPress)
            return false;
        const int key = static_cast<QKeyEvent *>(event)->key();
        const auto giveBack = [this, key] {
            QKeyEvent again(QEvent::KeyPress, key, Qt::NoModifier);
            QCoreApplication::sendEvent(m_page.parentWidget(), &again);
        };
        QMetaObject::invokeMethod(&m_page, giveBack, Qt::QueuedConnection);
        return true;
    }

private:
    QWidget &m_page;
};

template <typename T> T *shown(const ShownWindow &w)
{
    T *view = w.window.findChild<T *>();
    return view && view->isVisible() ? view : nullptr;
}

} // namespace

class TestContentView final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFirstAcceptedFileOfADropIsOpened_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QString>("opened");
        QTest::newRow("only the second is a score") << QStringList{ u"a.txt"_s, u"b.gp"_s, u"c.jpg"_s } << u"b.gp"_s;
        QTest::newRow("two scores") << QStringList{ u"one.gpx"_s, u"two.gp5"_s } << u"one.gpx"_s;
        QTest::newRow("upper case") << QStringList{ u"SONG.GP5"_s } << u"SONG.GP5"_s;
        QTest::newRow("none") << QStringList{ u"a.txt"_s, u"gp"_s } << QString();
        QTest::newRow("nothing") << QStringList() << QString();
    }

    void theFirstAcceptedFileOfADropIsOpened()
    {
        QFETCH(QStringList, names);
        QFETCH(QString, opened);
        ShownWindow w;
        w.controller.handle({ { u"type"_s, u"ready"_s } });
        w.sent();
        QList<QUrl> urls;
        for (const QString &name : names)
            urls << w.world.file(name, name.toUtf8());
        QCOMPARE(drop(*w.content, urls), !opened.isEmpty());
        QCOMPARE(w.sent(), opened.isEmpty() ? QStringList() : QStringList{ loading(opened.toUtf8()) });
    }

    void thePagesEndIsToldAndOneButtonLeadsOn()
    {
        ShownWindow w;
        w.controller.handle({ { u"type"_s, u"ready"_s } });
        w.score(u"Song"_s, { u"Guitar"_s });
        QVERIFY(!shown<PageFailure>(w));
        const auto *web = w.window.findChild<AlphaTabWebView *>();
        QVERIFY(web->isEnabled());
        w.controller.pageHealthChanged(PageHealth::NotAnswering);
        QVERIFY(shown<PageFailure>(w));
        // What is covered takes no keys.
        QVERIFY(!web->isEnabled());
        QVERIFY(w.label(u"The score view does not answer"_s));
        w.click(u"Stop reading"_s);
        QCOMPARE(w.world.engine->ends, 1);

        w.controller.pageHealthChanged(PageHealth::Ended);
        QVERIFY(w.label(u"The score view has ended"_s));
        QVERIFY(!w.control(u"Stop reading"_s));
        const qsizetype loads = w.world.engine->loads.size();
        w.click(u"Start again"_s);
        QCOMPARE(w.world.engine->loads.size(), loads + 1);
        QVERIFY(!shown<PageFailure>(w));

        // Such as when the process that makes all others has been killed.
        w.controller.pageHealthChanged(PageHealth::Ended);
        QVERIFY(w.label(
            u"It could not be started again. Quit Quaverly and open it anew: your files and settings are safe."_s));
        QVERIFY(w.control(u"Start again"_s)->isEnabled());
    }

    void theStartScreenIsCoveredTooWhenThePageHasEnded()
    {
        ShownWindow w;
        w.controller.pageHealthChanged(PageHealth::Ended);
        QVERIFY(shown<PageFailure>(w));
        QVERIFY(!w.control(u"Try the demo"_s)->isEnabled());
        // A PDF needs no page.
        w.openPDF();
        QVERIFY(!w.control(u"Start again"_s)->isEnabled());
    }

    void aLinkToTheWebIsRefused()
    {
        ShownWindow w;
        w.controller.handle({ { u"type"_s, u"ready"_s } });
        w.sent();
        const QUrl link(u"https://example.org/song.gp"_s);
        QVERIFY(!drop(*w.content, { link }));
        QCOMPARE(w.sent(), QStringList());
        QVERIFY(w.world.log->isEmpty());
        QVERIFY(drop(*w.content, { link, w.world.file(u"own.gp"_s) }));
    }

    void aPDFReplacesTheScoreSide()
    {
        ShownWindow w;
        w.score(u"Song"_s, { u"Guitar"_s });
        QWidget *const web = w.controller.webView();
        w.openPDF();
        QVERIFY(!shown<TransportBar>(w));
        QVERIFY(!shown<TrackSidebar>(w));
        QVERIFY(w.control(u"Open"_s));
        for (const QString &name : { u"Demo"_s, u"Horizontal"_s, u"Zoom out"_s, u"Zoom in"_s })
            QVERIFY2(!w.control(name), qPrintable(name));

        report(w.controller.pdfDocument, nullptr);
        QVERIFY(shown<TransportBar>(w) && shown<TrackSidebar>(w) && w.control(u"Demo"_s));
        QCOMPARE(w.controller.webView(), web);
        QVERIFY(web->isVisible());
    }

    void theSheetTakesTheStartScreensPlace()
    {
        ShownWindow w;
        auto *empty = shown<EmptyState>(w);
        QVERIFY(empty);
        w.openPDF();
        QWidget *top = w.window.childAt(empty->mapTo(&w.window, empty->rect().center()));
        QVERIFY(top);
        QVERIFY(top != empty && !empty->isAncestorOf(top));
        // A screen reader reads what is visible to it, whatever lies above.
        QVERIFY(!shown<EmptyState>(w) && !w.control(u"Try the demo"_s));
        QVERIFY(QAccessible::queryAccessibleInterface(empty)->state().invisible);
        report(w.controller.pdfDocument, nullptr);
        QVERIFY(shown<EmptyState>(w) && w.control(u"Try the demo"_s));
    }

    void theEmptyStateCoversTheEngineUntilThereIsAScore()
    {
        ShownWindow w;
        auto *web = w.window.findChild<AlphaTabWebView *>();
        auto *empty = shown<EmptyState>(w);
        QVERIFY(web->isVisible());
        QVERIFY(empty);
        QCOMPARE(empty->size(), web->size());
        QVERIFY(!web->isEnabled());
        w.score(u"Song"_s, { u"Guitar"_s });
        QVERIFY(!shown<EmptyState>(w));
        QVERIFY(web->isVisible() && web->isEnabled());
    }

    void keysThatNoControlWantsGoToTheScore()
    {
        ShownWindow w;
        w.score(u"Song"_s, { u"Guitar"_s });
        KeyRecorder score(*w.controller.webView());
        QCOMPARE(w.window.focusWidget(), w.controller.webView());
        // A click on a button leaves them there.
        w.click(u"Zoom in"_s);
        QCOMPARE(w.window.focusWidget(), w.controller.webView());
        // A control that has the focus keeps what it wants.
        auto *stop = w.control(u"Stop"_s);
        QVERIFY(stop);
        stop->setFocus(Qt::TabFocusReason);
        for (const Qt::Key key : { Qt::Key_PageDown, Qt::Key_End, Qt::Key_Return })
            QTest::keyClick(stop, key);
        QCOMPARE(score.keys, (QList<int>{ Qt::Key_PageDown, Qt::Key_End }));
        QCOMPARE(w.window.focusWidget(), stop);
    }

    void aKeyThatThePageGivesBackIsNotPassedOnAgain()
    {
        ShownWindow w;
        w.score(u"Song"_s, { u"Guitar"_s });
        QWidget &web = *w.controller.webView();
        const GivesKeysBack chromium(web);
        KeyRecorder score(web);
        auto *stop = w.control(u"Stop"_s);
        QVERIFY(stop);
        stop->setFocus(Qt::TabFocusReason);
        QTest::keyClick(stop, Qt::Key_X);
        // Behind everything that the key has brought about, and what that brings about.
        for (int turn = 0; turn < 5; ++turn)
            QCoreApplication::processEvents();
        QCOMPARE(score.keys, QList<int>{ Qt::Key_X });
    }

    void aModifierAloneIsNotPassedOn()
    {
        ShownWindow w;
        w.score(u"Song"_s, { u"Guitar"_s });
        KeyRecorder score(*w.controller.webView());
        auto *stop = w.control(u"Stop"_s);
        QVERIFY(stop);
        stop->setFocus(Qt::TabFocusReason);
        for (const Qt::Key key : { Qt::Key_Alt, Qt::Key_Shift, Qt::Key_Control, Qt::Key_Super_L, Qt::Key_PageUp })
            QTest::keyClick(stop, key);
        QCOMPARE(score.keys, QList<int>{ Qt::Key_PageUp });
    }

    void keysScrollThePagesAfterAClickInTheirSidebar()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(12));
        auto *pages = shown<PDFSheetView>(w);
        QVERIFY(pages && pages->verticalScrollBar()->maximum() > 0);
        auto *list = w.window.findChild<PageList *>();
        QVERIFY(list);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, QPoint(60, 30));
        QTest::keyClick(w.window.windowHandle(), Qt::Key_End);
        QTRY_COMPARE(pages->verticalScrollBar()->value(), pages->verticalScrollBar()->maximum());
    }

    void zoomStepsStayInRange_data()
    {
        QTest::addColumn<double>("before");
        QTest::addColumn<QString>("button");
        QTest::addColumn<double>("after");
        QTest::newRow("out at the end") << 0.5 << u"Zoom out"_s << 0.5;
        QTest::newRow("in at the end") << 2.0 << u"Zoom in"_s << 2.0;
        QTest::newRow("unrounded") << 0.8999999999999999 << u"Zoom out"_s << 0.8999999999999999 - 0.1;
        QTest::newRow("pulled up") << 0.1 << u"Zoom out"_s << 0.5;
        QTest::newRow("pulled down") << 3.0 << u"Zoom in"_s << 2.0;
        // Each button knows one end only.
        QTest::newRow("in from far below") << 0.1 << u"Zoom in"_s << 0.2;
    }

    void zoomStepsStayInRange()
    {
        QFETCH(double, before);
        QFETCH(QString, button);
        ShownWindow w;
        w.controller.zoom = before;
        w.sent();
        w.click(button);
        QTEST(w.controller.zoom.value(), "after");
        QCOMPARE(w.sent().size(), 1);
    }

    void theToolBarSendsItsCalls()
    {
        ShownWindow w;
        w.click(u"Demo"_s);
        QCOMPARE(w.sent(), QStringList{ u"window.qv.loadSample()"_s });
        w.click(u"Horizontal"_s);
        QCOMPARE(w.sent(), QStringList{ u"window.qv.setLayout('horizontal')"_s });
        w.click(u"Horizontal"_s);
        QCOMPARE(w.sent(), QStringList{ u"window.qv.setLayout('page')"_s });
        w.click(u"Zoom in"_s);
        QCOMPARE(w.sent(), QStringList{ u"window.qv.setZoom(1.1)"_s });
        w.click(u"Open"_s);
        QCOMPARE(w.world.dialogs->opened, 1);
        QVERIFY(w.sent().isEmpty());
    }

    void horizontalFollowsTheController()
    {
        ShownWindow w;
        auto *horizontal = w.control<Button>(u"Horizontal"_s);
        w.controller.horizontalLayout = true;
        QVERIFY(horizontal->isChecked());
        QCOMPARE(w.sent().size(), 1); // the assignment's own call
    }

    void dismissingTheAlertClearsTheError()
    {
        ShownWindow w;
        w.controller.conversionError = u"Audiveris <was> not found."_s;
        auto *alert = w.window.findChild<QMessageBox *>();
        QVERIFY(alert && alert->isVisible());
        QCOMPARE(alert->windowTitle(), u"Conversion"_s);
        QCOMPARE(alert->text(), u"Audiveris <was> not found."_s);
        QCOMPARE(alert->textFormat(), Qt::PlainText);
        QCOMPARE(alert->buttons().size(), 1);
        QCOMPARE(alert->buttons().constFirst()->text(), u"OK"_s);

        alert->buttons().constFirst()->click();
        QVERIFY(!w.controller.conversionError.value());
        QTRY_VERIFY(!w.window.findChild<QMessageBox *>());

        w.controller.conversionError = u"Another one."_s;
        alert = w.window.findChild<QMessageBox *>();
        QVERIFY(alert);
        QTest::keyClick(alert, Qt::Key_Escape);
        QVERIFY(!w.controller.conversionError.value());
    }

    void whatFollowsTheSentenceIsBehindDetails()
    {
        ShownWindow w;
        w.controller.conversionError = u"Audiveris failed.\n\nline 1\n"_s + QString(2'000'000, u'x');
        auto *alert = w.window.findChild<QMessageBox *>();
        QVERIFY(alert);
        QCOMPARE(alert->text(), u"Audiveris failed."_s);
        QVERIFY(alert->detailedText().startsWith("line 1\nxxx"_L1));
        QVERIFY(alert->height() < w.window.height());
        w.controller.conversionError = QString(2'000'000, u'y');
        QVERIFY(alert->text().size() < 1000);
        QCOMPARE(alert->detailedText().size(), 2'000'000);
        QVERIFY(alert->height() < w.window.height());
        w.controller.conversionError = u"Short."_s;
        QVERIFY(alert->detailedText().isEmpty());
        QTest::keyClick(alert, Qt::Key_Escape);
        QVERIFY(!w.controller.conversionError.value());
    }

    void aLaterErrorReplacesTheText()
    {
        ShownWindow w;
        w.controller.conversionError = u"First."_s;
        w.controller.conversionError = u"Second."_s;
        const auto alerts = w.window.findChildren<QMessageBox *>();
        QCOMPARE(alerts.size(), 1);
        QCOMPARE(alerts.constFirst()->text(), u"Second."_s);
        w.controller.conversionError = std::nullopt;
        QTRY_VERIFY(!w.window.findChild<QMessageBox *>());
    }

    void theSidebarKeepsItsLimits()
    {
        ShownWindow w;
        auto *columns = w.window.findChild<QSplitter *>();
        QCOMPARE(columns->sizes().constFirst(), 220);
        const auto drag = [columns](int to) {
            QWidget *handle = columns->handle(1);
            QTest::mousePress(handle, Qt::LeftButton, {}, QPoint(0, 100));
            QTest::mouseMove(handle, handle->mapFrom(columns, QPoint(to, 100)));
            QTest::mouseRelease(handle, Qt::LeftButton);
            return columns->sizes().constFirst();
        };
        QCOMPARE(drag(10), 180);
        QCOMPARE(drag(900), 320);
        QCOMPARE(drag(250), 250);
        w.window.resize(2000, 900);
        QCoreApplication::processEvents();
        QCOMPARE(columns->sizes().constFirst(), 250);
    }

    void nothingOverlapsAtAnySize_data()
    {
        QTest::addColumn<QSize>("size");
        for (const QSize size : { QSize(760, 520), QSize(900, 600), QSize(1400, 900), QSize(2560, 1440) })
            QTest::addRow("%dx%d", size.width(), size.height()) << size;
    }

    void nothingOverlapsAtAnySize()
    {
        QFETCH(QSize, size);
        ShownWindow w({}, size);
        w.score(QString(200, u'W'), { QString(100, u'W'), u"Bass"_s }, true);
        w.playerReady();
        w.position(3599000, 5400000);
        QCOMPARE(w.window.size(), size);
        const QStringList names{ u"Open"_s, u"Demo"_s, u"Horizontal"_s, u"Zoom out"_s, u"Zoom in"_s, u"Play"_s,
            u"Stop"_s, u"Position"_s, u"Speed"_s, u"Volume"_s, u"Original"_s, u"Synth"_s, u"Loop selected range"_s,
            u"Metronome & count-in"_s, u"Show Bass"_s, u"Mute Bass"_s, u"Solo Bass"_s, u"Volume of Bass"_s };
        QList<QRect> taken;
        for (const QString &name : names) {
            QWidget *control = w.control(name);
            QVERIFY2(control, qPrintable(name));
            QVERIFY2(control->visibleRegion() == QRegion(control->rect()), qPrintable(name + u" is cut off"_s));
            QVERIFY2(control->width() >= control->minimumSizeHint().width(), qPrintable(name));
            const QRect place(control->mapTo(&w.window, QPoint()), control->size());
            for (const QRect &other : std::as_const(taken))
                QVERIFY2(!other.intersects(place), qPrintable(name));
            taken << place;
        }
    }
};

QTEST_MAIN(TestContentView)
#include "test_content_view.moc"
