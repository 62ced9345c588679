#include "engine_host/bridge/BridgeCalls.h"
#include "tests/engine/EngineScores.h"
#include "tests/engine/SheetTest.h"

using namespace Qt::StringLiterals;

/// What is being played stays in view, whatever was done with the mouse before.
class TestPageAutoScroll final : public SheetTest {
    Q_OBJECT

private Q_SLOTS:
    void musicIsFollowedAfterAClickAndAfterADrag_data()
    {
        QTest::addColumn<bool>("horizontal");
        QTest::addColumn<bool>("dragged");
        QTest::newRow("click, pages") << false << false;
        QTest::newRow("drag, pages") << false << true;
        QTest::newRow("click, one line") << true << false;
        QTest::newRow("drag, one line") << true << true;
    }

    void musicIsFollowedAfterAClickAndAfterADrag()
    {
        QFETCH(const bool, horizontal);
        QFETCH(const bool, dragged);
        m_session->call(BridgeCalls::setLayout(horizontal));
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 80 })));
        if (dragged)
            drag(beatAt(1, 0), beatAt(1, 3));
        else
            click(beatAt(1, 0));
        QVERIFY(m_session->waitFor([&] { return qAbs(m_session->position() - 2000) < 20; }));
        QCOMPARE(ranges(), dragged ? 1 : 0);
        playUntil(90000);
        QVERIFY(m_session->waitFor([&] { return cursorInView() && scrolledAway(); }));
    }

    void nothingMovesUnderAPressedButton()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 80 })));
        QTest::mousePress(target(), Qt::LeftButton, {}, beatAt(1, 0));
        playUntil(60000);
        QVERIFY(!scrolledAway());
        QTest::mouseRelease(target(), Qt::LeftButton, {}, beatAt(1, 0));
        QVERIFY(m_session->waitFor([&] { return m_session->position() < 10000; }));
        QVERIFY(m_session->waitFor([&] { return m_session->position() > 60000; }));
        QVERIFY(m_session->waitFor([&] { return cursorInView() && scrolledAway(); }));
    }

    void theNextLineIsSeenBeforeItIsPlayed_data()
    {
        QTest::addColumn<int>("height");
        QTest::newRow("lines as high as the view") << 420;
        QTest::newRow("lines higher than the view") << 300;
        QTest::newRow("room for two lines") << 900;
    }

    void theNextLineIsSeenBeforeItIsPlayed()
    {
        QFETCH(const int, height);
        m_session->host().view()->resize(900, height);
        QVERIFY(
            m_session->open(EngineScores::musicXml({ .parts = { u"Flute"_s, u"Viola"_s, u"Bass"_s }, .bars = 40 })));
        // For each line that the music comes to: how much of it could be seen in the frame before, as a part of the
        // view or of the line, whichever is less.
        m_session->call(uR"((() => {
            const viewport = document.getElementById("viewport");
            const cursor = document.querySelector(".at-cursor-bar");
            window.seen = [];
            window.unseenFrames = 0;
            let scrolled = viewport.scrollTop, line = null;
            const look = () => {
                const { top, bottom } = cursor.getBoundingClientRect();
                const height = viewport.clientHeight;
                const visible = (shift) => Math.min(bottom + shift, height) - Math.max(top + shift, 0);
                if (line !== null && Math.abs(top + viewport.scrollTop - line) > 50) {
                    seen.push(visible(viewport.scrollTop - scrolled) / Math.min(height, bottom - top));
                }
                unseenFrames += visible(0) > 0 ? 0 : 1;
                line = top + viewport.scrollTop;
                scrolled = viewport.scrollTop;
                requestAnimationFrame(look);
            };
            look();
        })())"_s);
        m_session->call(BridgeCalls::setSpeed(2));
        m_session->call(BridgeCalls::playPause());
        QVERIFY(m_session->waitFor([&] { return m_session->valueOf(u"seen.length"_s).toInt() >= 4; }, 60000));
        const QVariantList seen = m_session->valueOf(u"seen"_s).toList();
        for (const QVariant &part : seen)
            QVERIFY2(part.toDouble() > 0.3, qPrintable(QString::number(part.toDouble())));
        QCOMPARE(m_session->valueOf(u"unseenFrames"_s).toInt(), 0);
    }

    void aStopIsShownAlsoWhileTheScoreIsDrawnAnew()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 120 })));
        m_session->call(BridgeCalls::seekToTime(200000));
        QVERIFY(m_session->waitFor([&] { return cursorInView() && scrolledAway(); }));
        const qsizetype drawn = m_session->count(u"rendered"_s);
        m_session->call(BridgeCalls::setZoom(1.75));
        m_session->call(BridgeCalls::stop());
        QVERIFY(m_session->waitForCount(u"rendered"_s, drawn + 1));
        QVERIFY(m_session->waitFor([&] { return cursorInView() && scrolled() == 0; }));
    }

private:
    void playUntil(double milliseconds)
    {
        m_session->call(BridgeCalls::setSpeed(8));
        m_session->call(BridgeCalls::playPause());
        QVERIFY(m_session->waitFor([&] { return m_session->position() > milliseconds; }, 40000));
    }

    bool scrolledAway()
    {
        return m_session
            ->valueOf(
                u"(({ scrollTop, scrollLeft }) => scrollTop + scrollLeft > 500)(document.getElementById('viewport'))"_s)
            .toBool();
    }
};

int main(int argc, char *argv[]) { return runEngineTest<TestPageAutoScroll>(argc, argv); }
#include "test_page_auto_scroll.moc"
