#include "engine_host/bridge/BridgeCalls.h"
#include "tests/engine/EngineScores.h"
#include "tests/engine/SheetTest.h"

using namespace Qt::StringLiterals;

/// The score in another size.
class TestPageZoom final : public SheetTest {
    Q_OBJECT

private Q_SLOTS:
    void zoomMakesTheNotationLarger()
    {
        QVERIFY(
            m_session->open(EngineScores::musicXml({ .parts = { u"Flute"_s, u"Viola"_s, u"Bass"_s }, .bars = 12 })));
        const double normal = systemHeight();
        // The cursor, by which the height is known, follows a frame later.
        redraw(BridgeCalls::setZoom(2.0));
        QVERIFY(m_session->waitFor([&] { return systemHeight() > 1.7 * normal; }));
        redraw(BridgeCalls::setZoom(0.5));
        QVERIFY(m_session->waitFor([&] { return systemHeight() < 0.6 * normal; }));
    }

    void theHorizontalLayoutEndsWithItsLastBarAtEveryZoom()
    {
        m_session->call(BridgeCalls::setLayout(true));
        m_session->call(BridgeCalls::setZoom(0.5));
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 60 })));
        QVERIFY2(qAbs(behindTheEnd()) < 80, qPrintable(QString::number(behindTheEnd())));
        for (const double zoom : { 2.0, 0.75 }) {
            redraw(BridgeCalls::setZoom(zoom));
            QVERIFY2(qAbs(behindTheEnd()) < 80, qPrintable(u"%1: %2"_s.arg(zoom).arg(behindTheEnd())));
        }
    }

    void theCursorGrowsWithOneLine()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 60 })));
        redraw(BridgeCalls::setLayout(true));
        const double left = cursorLeft();
        m_session->call(BridgeCalls::seekToTime(20000));
        QVERIFY(m_session->waitFor([&] { return cursorLeft() > left + 500; }));
        const double normal = systemHeight();
        const double there = cursorLeft() - left;
        for (const double zoom : { 0.5, 2.0, 1.0 }) {
            redraw(BridgeCalls::setZoom(zoom));
            const auto grows = [&](double size, double before) { return qAbs(size / before - zoom) < 0.05; };
            QVERIFY2(
                m_session->waitFor([&] { return grows(systemHeight(), normal) && grows(cursorLeft() - left, there); }),
                qPrintable(u"%1: %2, %3"_s.arg(zoom).arg(systemHeight() / normal).arg((cursorLeft() - left) / there)));
        }
    }

private:
    /// Pixels from the end of the last bar to that of what can be scrolled, but for the half view that is left free.
    double behindTheEnd()
    {
        return m_session
            ->valueOf(u"(() => { const viewport = document.getElementById('viewport'); const ends = "
                      "[...document.querySelectorAll('#notation .at-surface > div')]"
                      ".map((part) => part.getBoundingClientRect().right); return viewport.scrollWidth - "
                      "viewport.scrollLeft - Math.max(...ends) - innerWidth / 2; })()"_s)
            .toDouble();
    }

    /// In the notation, wherever it is scrolled.
    double cursorLeft()
    {
        return m_session
            ->valueOf(u"document.querySelector('.at-cursor-bar').getBoundingClientRect().left"
                      " - document.getElementById('notation').getBoundingClientRect().left"_s)
            .toDouble();
    }

    double systemHeight()
    {
        return m_session->valueOf(u"document.querySelector('.at-cursor-bar').getBoundingClientRect().height"_s)
            .toDouble();
    }
};

int main(int argc, char *argv[]) { return runEngineTest<TestPageZoom>(argc, argv); }
#include "test_page_zoom.moc"
