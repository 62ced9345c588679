#include "engine_host/bridge/BridgeCalls.h"
#include "engine_host/bridge/PageReports.h"
#include "tests/engine/EngineScores.h"
#include "tests/engine/PageTest.h"

#include <cmath>

using namespace Qt::StringLiterals;

class TestPageFretboard final : public PageTest {
    Q_OBJECT

    void show(bool shown, bool leftHanded = false) { m_session->host().reports().showFretboard(shown, leftHanded); }

    bool waitFor(const QString &expression)
    {
        return m_session->waitFor([&] { return m_session->valueOf(expression).toBool(); });
    }

    QString valueOf(const QString &expression) { return m_session->valueOf(expression).toString(); }

    bool prepare() override { return m_session->open(EngineScores::ferry(u"gp"_s)); }

    const QString m_positions
        = u"Array.from(document.querySelectorAll('#fretboard .sounding'), (dot) => dot.getAttribute('cx')).join()"_s;

private Q_SLOTS:
    void thereIsNothingOfItUntilItIsWanted()
    {
        QCOMPARE(valueOf(u"String(document.getElementById('fretboard'))"_s), u"null"_s);
        const QString height = u"String(document.getElementById('viewport').offsetHeight)"_s;
        const QString before = valueOf(height);
        show(true);
        QVERIFY(waitFor(u"document.querySelectorAll('#fretboard .string').length > 3"_s));
        QVERIFY(valueOf(height).toInt() < before.toInt());
        QVERIFY(waitFor(u"document.getElementById('viewport').offsetHeight + "
                        "document.getElementById('fretboard').offsetHeight === innerHeight"_s));
        show(false);
        QVERIFY(waitFor(u"!document.getElementById('fretboard')"_s));
        QCOMPARE(valueOf(height), before);
    }

    void itCanBeThereBeforeAScore()
    {
        // As when it was shown when the program was left. A complaint of the page fails the test.
        m_session = std::make_unique<EngineSession>();
        QVERIFY(m_session->start());
        show(true);
        QVERIFY(waitFor(u"document.getElementById('fretboard')?.offsetHeight > 0"_s));
        QVERIFY(m_session->open(EngineScores::ferry(u"gp"_s)));
        QVERIFY(waitFor(u"document.querySelectorAll('#fretboard .string').length > 3"_s));
    }

    void itShowsStringsThatWereChosenAfterTheFirstScreen()
    {
        show(true);
        QVERIFY(waitFor(u"document.querySelectorAll('#fretboard .sounding').length > 0"_s));
        EngineScores::Tune tune;
        tune.parts = { u"Voice"_s };
        const QByteArray recognised = EngineScores::musicXml(tune).replace("<part-list>",
            "<identification><encoding><software>Audiveris</software></encoding></identification><part-list>");
        QVERIFY(m_session->open(recognised));
        QVERIFY(waitFor(u"document.querySelector('#fretboard > .name').textContent === 'Guitar' && "
                        "document.querySelectorAll('#fretboard .sounding').length === 1"_s));
    }

    void itFollowsTheMusic()
    {
        show(true);
        QVERIFY(waitFor(u"document.querySelectorAll('#fretboard .sounding').length > 0"_s));
        const QString first = valueOf(m_positions);
        m_session->call(BridgeCalls::playPause());
        QVERIFY(m_session->waitFor([&] { return valueOf(m_positions) != first; }));
    }

    void theLeftHandedOneIsMirrored()
    {
        show(true);
        QVERIFY(waitFor(u"document.querySelectorAll('#fretboard .sounding').length > 0"_s));
        const double right = valueOf(m_positions).section(u',', 0, 0).toDouble();
        show(true, true);
        QVERIFY(m_session->waitFor([&] {
            const double left = valueOf(m_positions).section(u',', 0, 0).toDouble();
            const double width = valueOf(u"String(document.getElementById('fretboard').clientWidth)"_s).toDouble();
            return std::abs(left + right - width) < 0.01;
        }));
    }
};

int main(int argc, char *argv[]) { return runEngineTest<TestPageFretboard>(argc, argv); }
#include "test_page_fretboard.moc"
