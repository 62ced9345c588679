#include "engine_host/AlphaTabWebView.h"
#include "engine_host/bridge/BridgeCalls.h"
#include "tests/engine/EngineScores.h"
#include "tests/engine/SheetTest.h"
#include "tests/support/KeyRecorder.h"

#include <QWidget>

using namespace Qt::StringLiterals;

/// The score page: layouts, sizes, tracks, the mouse.
class TestPageSheet final : public SheetTest {
    Q_OBJECT

private Q_SLOTS:
    void everyTrackIsDrawnAfterALoad()
    {
        QVERIFY(m_session->open(threeParts()));
        const QString text = drawnText();
        for (const QString &name : { u"Flute"_s, u"Viola"_s, u"Bass"_s })
            QVERIFY2(text.contains(name), qPrintable(text));
    }

    void theFirstPictureShowsTheMarkAtTheFirstBeat()
    {
        // The second score comes while the cursor is far on in the first one.
        for (int turn = 0; turn < 2; ++turn) {
            m_session->call(
                u"for (const drawn of document.querySelectorAll('#notation svg')) { drawn.dataset.before = ''; } "
                "window.firstCursors = null; "
                "window.cursors = () => [...document.querySelectorAll('.at-cursor-bar, "
                ".at-cursor-beat')].flatMap((cursor) "
                "=> "
                "{ const { x, y, width, height } = cursor.getBoundingClientRect(); return [x, y, width, height]; }); "
                "const look = () => { if (document.querySelector('#notation svg:not([data-before])')) { "
                "setTimeout(() => { firstCursors = cursors(); }); } else { requestAnimationFrame(look); } }; look();"_s);
            QVERIFY(m_session->open(threeParts()));
            const QVariantList first = m_session->valueOf(u"firstCursors"_s).toList();
            const QVariantList last = m_session->valueOf(u"cursors()"_s).toList();
            QCOMPARE(first.size(), 8);
            QVERIFY(last.at(2).toDouble() > 50 && last.at(7).toDouble() > 50);
            for (qsizetype i = 0; i < first.size(); ++i)
                QVERIFY2(qAbs(first.at(i).toDouble() - last.at(i).toDouble()) < 1.5,
                    qPrintable(u"%1: %2 %3"_s.arg(i).arg(first.at(i).toDouble()).arg(last.at(i).toDouble())));
            m_session->call(BridgeCalls::seekToTime(9000));
            QVERIFY(m_session->waitFor([&] { return m_session->valueOf(u"cursors()"_s).toList() != last; }));
        }
    }

    void onlyTheChosenTracksAreDrawn()
    {
        QVERIFY(m_session->open(threeParts()));
        redraw(BridgeCalls::renderTracks({ 0, 2 }));
        QVERIFY(m_session->waitFor([&] { return !drawnText().contains(u"Viola"_s); }));
        QVERIFY(drawnText().contains(u"Flute"_s) && drawnText().contains(u"Bass"_s));
        redraw(BridgeCalls::renderTracks({ 0, 1, 2 }));
        QVERIFY(m_session->waitFor([&] { return drawnText().contains(u"Viola"_s); }));
    }

    void aNewScoreShowsAllItsTracksAgain()
    {
        QVERIFY(m_session->open(threeParts()));
        redraw(BridgeCalls::renderTracks({ 1 }));
        QVERIFY(m_session->open(threeParts()));
        QVERIFY(drawnText().contains(u"Flute"_s) && drawnText().contains(u"Bass"_s));
    }

    /// The range's tint and that of the bar would make a third one.
    void aRangeReplacesTheTintOfTheBar()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({})));
        const auto tinted = [this] {
            return m_session->valueOf(u"getComputedStyle(document.querySelector('.at-cursor-bar')).opacity > 0"_s)
                .toBool();
        };
        QVERIFY(tinted());
        drag(beatAt(0, 0), beatAt(0, 3));
        QVERIFY(m_session->waitFor([&] { return ranges() == 1 && !tinted(); }));
        click(beatAt(1, 0));
        QVERIFY(m_session->waitFor([&] { return ranges() == 0 && tinted(); }));
    }

    void aNameBesideABraceIsNotCutOff()
    {
        const QByteArray twoStaves = EngineScores::musicXml({ .parts = { u"Piano"_s, u"Voice"_s } })
                                         .replace("</time></attributes>", "</time><staves>2</staves></attributes>");
        QVERIFY(m_session->open(twoStaves));
        redraw(BridgeCalls::setZoom(2.0));
        // What is cut off is not hit either.
        const QString hit
            = m_session
                  ->valueOf(u"(() => { const name = [...document.querySelectorAll('#notation text')]"
                            ".find(({ textContent }) => textContent === 'Piano').getBoundingClientRect();"
                            "const hit = document.elementFromPoint(name.left + 1, name.top + name.height / 2);"
                            "return hit?.closest('.at-surface') ? 'name' : hit?.id ?? 'nothing'; })()"_s)
                  .toString();
        QCOMPARE(hit, u"name"_s);
    }

    void theCopyrightStandsBelowEverythingElse()
    {
        const QByteArray score
            = EngineScores::musicXml({}).replace("</creator>", "</creator><rights>2026 Nobody</rights>");
        QVERIFY(m_session->open(score));
        // alphaTab's lines come last in the notation, its partials may not be painted yet.
        const auto below = [this] {
            return m_session
                ->valueOf(u"(() => { const lines = [...document.querySelectorAll('#score-footer p')];"
                          "const tops = lines.map((line) => line.getBoundingClientRect().top);"
                          "return lines.length === 2 && lines[0].textContent === '2026 Nobody'"
                          "&& tops[1] > tops[0] + 10 && tops[0] >= document.getElementById('notation')"
                          ".getBoundingClientRect().bottom && !drawnTexts().includes('2026 Nobody'); })()"_s)
                .toBool();
        };
        m_session->call(u"window.drawnTexts = () => [...document.querySelectorAll('#notation text')]"
                        ".map((text) => text.textContent)"_s);
        QVERIFY(below());
        redraw(BridgeCalls::setLayout(true));
        QVERIFY(below());
        QVERIFY(m_session->open(EngineScores::musicXml({})));
        QCOMPARE(m_session->valueOf(u"document.getElementById('score-footer').textContent"_s).toString(), QString());
    }

    void everyDrawingIsReported()
    {
        QVERIFY(m_session->open(threeParts()));
        QCOMPARE(m_session->count(u"rendered"_s), 1);
        redraw(BridgeCalls::setZoom(0.75));
        QCOMPARE(m_session->count(u"rendered"_s), 2);
        redraw(BridgeCalls::setLayout(true));
        QCOMPARE(m_session->count(u"rendered"_s), 3);
    }

    void theHorizontalLayoutIsOneLine()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 40 })));
        QVERIFY(scrollRoom(u"Height"_s) > 0);
        redraw(BridgeCalls::setLayout(true));
        QVERIFY(scrollRoom(u"Width"_s) > 2000);
        QCOMPARE(scrollRoom(u"Height"_s), 0);
        redraw(BridgeCalls::setLayout(false));
        QCOMPARE(scrollRoom(u"Width"_s), 0);
    }

    void theHorizontalLayoutIsDrawnOnce()
    {
        // The line makes the sheet as wide as it is, which is no other room for it.
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 40 })));
        m_session->call(
            u"window.renderings = 0; const { postMessage } = Worker.prototype; "
            "Worker.prototype.postMessage = function (...given) { renderings += given[0].cmd === 'draw' ? 1 : 0; "
            "return postMessage.apply(this, given); };"_s);
        redraw(BridgeCalls::setLayout(true));
        letThePageSettle();
        QCOMPARE(m_session->valueOf(u"renderings"_s).toInt(), 1);
        const int width = m_session->valueOf(u"innerWidth"_s).toInt();
        m_session->host().view()->resize(600, 800);
        QVERIFY(m_session->waitFor([&] { return m_session->valueOf(u"innerWidth"_s).toInt() < width; }));
        letThePageSettle();
        QCOMPARE(m_session->valueOf(u"renderings"_s).toInt(), 1);
        redraw(BridgeCalls::setLayout(false));
        QCOMPARE(scrollRoom(u"Width"_s), 0);
        QCOMPARE(m_session->valueOf(u"renderings"_s).toInt(), 2);
    }

    void readersStayWhereTheyAreWhenTheScoreIsDrawnAnew()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 240 })));
        const double top = 10;
        letThePageSettle();
        m_session->call(u"document.getElementById('viewport').scrollTop = 1000"_s);
        QVERIFY(m_session->waitFor([&] { return firstBarInView() > 0; }));
        const int bar = firstBarInView();
        m_session->call(
            u"document.getElementById('viewport').scrollBy(0, %1 - %2)"_s.arg(placeOfBar(bar).y()).arg(top));
        QVERIFY(m_session->waitFor([&] { return qAbs(placeOfBar(bar).y() - top) < 2; }));
        const QStringList changes{ BridgeCalls::setZoom(1.75), BridgeCalls::setZoom(0.5), BridgeCalls::setLayout(true),
            BridgeCalls::setZoom(1.0), BridgeCalls::setLayout(false) };
        for (const QString &change : changes) {
            redraw(change);
            const QPointF place = placeOfBar(bar);
            // The only line there is may be lower on the score page than any on pages was.
            const bool sideways = scrollRoom(u"Height"_s) == 0;
            QVERIFY2((sideways || qAbs(place.y() - top) < 10) && place.x() >= 0 && place.x() < 1200,
                qPrintable(u"%1: %2 %3"_s.arg(change).arg(place.x()).arg(place.y())));
        }
        const qsizetype drawn = m_session->count(u"rendered"_s);
        m_session->host().view()->resize(700, 800);
        QVERIFY(m_session->waitForCount(u"rendered"_s, drawn + 1));
        QVERIFY2(qAbs(placeOfBar(bar).y() - top) < 10, qPrintable(QString::number(placeOfBar(bar).y())));
    }

    void theMarkStaysInViewWhenTheScoreIsDrawnAnew()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 240 })));
        m_session->call(BridgeCalls::seekToTime(240000));
        QVERIFY(m_session->waitFor([&] { return cursorInView() && scrolled() > 500; }));
        const double before = markTop();
        for (const QString &change : { BridgeCalls::setZoom(2.0), BridgeCalls::setZoom(0.75) }) {
            redraw(change);
            QVERIFY2(m_session->waitFor([&] { return cursorInView() && qAbs(markTop() - before) < 3; }),
                qPrintable(u"%1: %2 %3"_s.arg(change).arg(before).arg(markTop())));
        }
    }

    void theBeginningStaysInView()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 120 })));
        for (const QString &change :
            { BridgeCalls::setZoom(2.0), BridgeCalls::setZoom(0.5), BridgeCalls::setLayout(true) }) {
            redraw(change);
            QCOMPARE(scrolled(), 0);
        }
    }

    void layoutAndZoomComeBeforeTheScoreToo()
    {
        m_session->call(BridgeCalls::setLayout(true));
        m_session->call(BridgeCalls::setZoom(2.0));
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 40 })));
        QVERIFY(scrollRoom(u"Width"_s) > 4000);
    }

    void aNarrowWindowBreaksLinesSooner()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 40 })));
        const int wide = scrollRoom(u"Height"_s);
        const qsizetype drawn = m_session->count(u"rendered"_s);
        m_session->host().view()->resize(600, 800);
        QVERIFY(m_session->waitForCount(u"rendered"_s, drawn + 1));
        QVERIFY(m_session->waitFor([&] { return scrollRoom(u"Height"_s) > wide; }));
        QCOMPARE(scrollRoom(u"Width"_s), 0);
    }

    void aHiddenPageOpensAScoreAllTheSame()
    {
        m_session = std::make_unique<EngineSession>();
        QVERIFY(m_session->start({ 1200, 800 }, false));
        m_session->call(BridgeCalls::loadBase64(threeParts()));
        QVERIFY(m_session->waitForCount(u"score"_s, 1));
        QVERIFY(m_session->waitForCount(u"playerReady"_s, 1));
        m_session->host().view()->show();
        QVERIFY(m_session->waitForCount(u"rendered"_s, 1));
        QVERIFY(m_session->waitFor([&] { return drawnText().contains(u"Viola"_s); }));
    }

    void thePlaceBeingPlayedIsMarkedAndStaysInView()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 80 })));
        m_session->call(BridgeCalls::seekToTime(120000));
        QVERIFY(m_session->waitFor([&] { return cursorInView() && scrolled() > 500; }));
        m_session->call(BridgeCalls::stop());
        QVERIFY(m_session->waitFor([&] { return cursorInView() && scrolled() == 0; }));
        m_session->call(BridgeCalls::setSpeed(8));
        m_session->call(BridgeCalls::playPause());
        QVERIFY(m_session->waitFor([&] { return m_session->position() > 90000; }, 40000));
        QVERIFY(m_session->waitFor([&] { return cursorInView() && scrolled() > 500; }));
        QVERIFY(m_session->valueOf(u"document.querySelectorAll('.at-highlight').length"_s).toInt() > 0);
    }

    void keysScrollBeforeAnyClick()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 80 })));
        target()->setFocus();
        QTest::keyClick(target(), Qt::Key_PageDown);
        QVERIFY(m_session->waitFor([&] { return scrolled() > 300; }));
        QTest::keyClick(target(), Qt::Key_Home);
        QVERIFY(m_session->waitFor([&] { return scrolled() == 0; }));
    }

    void whatThePageHasNoUseForEndsAtItsPlace()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 2 })));
        QWidget around;
        KeyRecorder reachesAround(around);
        AlphaTabWebView place(m_session->host().view(), &around);
        KeyRecorder reachesPlace(place);
        around.show();
        // The page takes keys when it has learnt that it has the focus.
        QVERIFY(QTest::qWaitForWindowActive(&around));
        target()->setFocus();
        QVERIFY(m_session->waitFor([&] { return m_session->valueOf(u"document.hasFocus()"_s).toBool(); }));
        QVERIFY(m_session
                ->valueOf(u"window.seen = ''; addEventListener('keydown', ({ key }) => (window.seen += key)); true"_s)
                .toBool());
        // Chromium gives the first one back before it hands the page the second.
        for (const Qt::Key key : { Qt::Key_X, Qt::Key_Y })
            QTest::keyClick(target(), key);
        QVERIFY(m_session->waitFor([&] { return m_session->valueOf(u"window.seen"_s).toString() == u"xy"; }));
        QVERIFY(reachesPlace.keys.contains(Qt::Key_X));
        QVERIFY(reachesAround.keys.isEmpty());
    }

    void aClickOnABeatGoesThere()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 8 })));
        const QPoint third = beatAt(2, 0);
        const QPoint lateInThird = beatAt(2, 3);
        click(third);
        QVERIFY2(m_session->waitFor([&] { return qAbs(m_session->position() - 4000) < 20; }),
            qPrintable(QString::number(m_session->position())));
        click(lateInThird);
        QVERIFY(m_session->waitFor([&] { return qAbs(m_session->position() - 5500) < 20; }));
        QCOMPARE(ranges(), 0);
    }

    void aDragChoosesWhatLoops()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 8 })));
        drag(beatAt(1, 0), beatAt(1, 3));
        QVERIFY(m_session->waitFor([&] { return ranges() == 1 && qAbs(m_session->position() - 2000) < 20; }));
        m_session->call(BridgeCalls::setLooping(true));
        m_session->call(BridgeCalls::setSpeed(2));
        m_session->call(BridgeCalls::playPause());
        QVERIFY(m_session->waitFor([&] { return m_session->position() > 3500; }));
        const qsizetype before = m_session->count(u"position"_s);
        QVERIFY(m_session->waitFor([&] { return m_session->position() < 2500; }));
        QVERIFY(m_session->waitFor([&] { return m_session->position() > 3500; }));
        for (const EngineSession::Heard &one : m_session->heard(u"position"_s).mid(before)) {
            const double at = one.message.value(u"currentTime"_s).toDouble();
            QVERIFY2(at > 1900 && at < 4100, qPrintable(QString::number(at)));
        }
        click(beatAt(4, 0));
        QVERIFY(m_session->waitFor([&] { return ranges() == 0 && m_session->position() > 7900; }));
    }

    void oneBeatCanBeChosenAndAShakyClickChoosesNone()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 8 })));
        const QPoint beat = beatAt(1, 2);
        drag(beat, beat + QPoint(6, 0));
        QVERIFY(m_session->waitFor([&] { return qAbs(m_session->position() - 3000) < 20; }));
        QCOMPARE(ranges(), 0);
        drag(beat, beat + QPoint(20, 0));
        QVERIFY(m_session->waitFor([&] { return ranges() == 1; }));
        const double width = rangeWidth();
        QVERIFY2(width > 10 && width < beatAt(2, 2).x() - beat.x(), qPrintable(QString::number(width)));
        m_session->call(BridgeCalls::setLooping(true));
        m_session->call(BridgeCalls::playPause());
        QVERIFY(m_session->waitFor([&] { return m_session->position() > 3300; }));
        QVERIFY(m_session->waitFor([&] { return m_session->position() < 3200; }));
    }

    void shiftAndAClickExtendTheRange()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 8 })));
        click(beatAt(1, 0));
        QVERIFY(m_session->waitFor([&] { return qAbs(m_session->position() - 2000) < 20; }));
        click(beatAt(1, 3), Qt::ShiftModifier);
        QVERIFY(m_session->waitFor([&] { return ranges() == 1; }));
        const double before = rangeWidth();
        click(beatAt(2, 3), Qt::ShiftModifier);
        QVERIFY(m_session->waitFor([&] { return rangeWidth() > 1.5 * before; }));
        // To the other side of where it was begun.
        click(beatAt(0, 0), Qt::ShiftModifier);
        QVERIFY(m_session->waitFor([&] { return qAbs(m_session->position()) < 20; }));
        click(beatAt(2, 0));
        QVERIFY(m_session->waitFor([&] { return ranges() == 0; }));
    }

    void theWheelExtendsTheRangeDuringADrag()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 80 })));
        const QPoint from = beatAt(1, 0);
        const QPoint to = from + QPoint(120, 0);
        QTest::mousePress(target(), Qt::LeftButton, {}, from);
        QTest::mouseMove(target(), to, 20);
        QVERIFY(m_session->waitFor([&] { return ranges() == 1; }));
        m_session->call(u"document.getElementById('viewport').scrollBy(0, 400)"_s);
        QVERIFY(m_session->waitFor([&] { return ranges() > 1; }));
        QTest::mouseRelease(target(), Qt::LeftButton, {}, to);
        QVERIFY(m_session->waitFor([&] { return qAbs(m_session->position() - 2000) < 20; }));
        QVERIFY(ranges() > 1);
    }

    void aDragAtTheEdgeScrolls()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 80 })));
        const QPoint from = beatAt(1, 0);
        const QPoint edge(from.x(), m_session->host().view()->height() - 4);
        QTest::mousePress(target(), Qt::LeftButton, {}, from);
        QTest::mouseMove(target(), edge, 20);
        QVERIFY(m_session->waitFor([&] { return scrolled() > 300 && ranges() > 2; }));
        QTest::mouseRelease(target(), Qt::LeftButton, {}, edge);
        QVERIFY(m_session->waitFor([&] { return qAbs(m_session->position() - 2000) < 20; }));
    }

    void aRangeBindsOnlyTheLooping()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 8 })));
        drag(beatAt(1, 0), beatAt(1, 3));
        QVERIFY(m_session->waitFor([&] { return ranges() == 1; }));
        m_session->call(BridgeCalls::seekToTime(9000));
        QVERIFY(m_session->waitFor([&] { return qAbs(m_session->position() - 9000) < 20; }));
    }

    void aRangeIsGoneWithItsScoreAndSurvivesItsTrack()
    {
        QVERIFY(m_session->open(threeParts()));
        drag(beatAt(1, 0), beatAt(1, 3));
        QVERIFY(m_session->waitFor([&] { return ranges() == 1; }));
        redraw(BridgeCalls::renderTracks({ 1 }));
        redraw(BridgeCalls::renderTracks({ 0, 1, 2 }));
        QCOMPARE(ranges(), 1);
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 8 })));
        QCOMPARE(ranges(), 0);
    }

private:
    static QByteArray threeParts()
    {
        return EngineScores::musicXml({ .parts = { u"Flute"_s, u"Viola"_s, u"Bass"_s }, .bars = 12 });
    }

    /// Waits for what follows a change of sizes: alphaTab notices it with a frame, and waits 10 ms before it draws
    /// anew.
    void letThePageSettle()
    {
        m_session->call(u"window.settled = false; const begun = performance.now(); let frames = 0; "
                        "const frame = () => { settled = ++frames > 4 && performance.now() - begun > 100; "
                        "if (!settled) { requestAnimationFrame(frame); } }; frame();"_s);
        QVERIFY(m_session->waitFor([&] { return m_session->valueOf(u"settled"_s).toBool(); }));
    }

    QString drawnText() { return m_session->valueOf(u"document.getElementById('notation').textContent"_s).toString(); }

    double rangeWidth()
    {
        return m_session->valueOf(u"document.querySelector('.range')?.getBoundingClientRect().width ?? 0"_s).toDouble();
    }

    int scrollRoom(const QString &direction)
    {
        return m_session
            ->valueOf(
                u"(() => { const viewport = document.getElementById('viewport'); return viewport.scroll%1 - viewport.client%1; })()"_s
                    .arg(direction))
            .toInt();
    }

    /// Where the number of a bar is drawn; far away if it is not.
    QPointF placeOfBar(int number)
    {
        const QVariantList place
            = m_session
                  ->valueOf(u"(() => { const text = [...document.querySelectorAll('#notation text')]"
                            ".find((one) => one.textContent.trim() === '%1'); "
                            "const { left, top } = text?.getBoundingClientRect() ?? {}; "
                            "return text ? [left, top] : []; })()"_s.arg(number))
                  .toList();
        return place.size() == 2 ? QPointF(place.at(0).toDouble(), place.at(1).toDouble()) : QPointF(-1e6, -1e6);
    }

    int firstBarInView()
    {
        return m_session
            ->valueOf(
                u"Number([...document.querySelectorAll('#notation text')].filter((text) => "
                u"/^\\s*\\d+\\s*$/.test(text.textContent) "
                "&& text.getBoundingClientRect().top > 100).sort((a, b) => a.textContent - b.textContent)[0]?.textContent ?? 0)"_s)
            .toInt();
    }

    double markTop()
    {
        return m_session->valueOf(u"document.querySelector('.at-cursor-bar').getBoundingClientRect().top"_s).toDouble();
    }
};

int main(int argc, char *argv[]) { return runEngineTest<TestPageSheet>(argc, argv); }
#include "test_page_sheet.moc"
