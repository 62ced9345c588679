#include "engine_host/EnginePage.h"
#include "engine_host/bridge/BridgeCalls.h"
#include "engine_host/bridge/BridgeMessages.h"
#include "engine_host/serving/RequestInterceptor.h"
#include "tests/engine/EngineScores.h"
#include "tests/engine/PageTest.h"

using namespace Qt::StringLiterals;

namespace {

/// Every call the program can make, with arguments of the right kind.
QStringList allCalls()
{
    return { BridgeCalls::loadBase64({}), BridgeCalls::loadSample(), BridgeCalls::playPause(), BridgeCalls::stop(),
        BridgeCalls::seekToTime(1000), BridgeCalls::setSpeed(0.75), BridgeCalls::setMasterVolume(0.5),
        BridgeCalls::setLooping(true), BridgeCalls::setMetronome(true), BridgeCalls::setCountIn(true),
        BridgeCalls::configMetronome(0.5, u"tick"_s, true, u"half"_s), BridgeCalls::previewMetronome(),
        BridgeCalls::setSoundSource(true), BridgeCalls::setLayout(true), BridgeCalls::setZoom(1.5),
        BridgeCalls::renderTracks({ 0, 1 }), BridgeCalls::setTrackMute(0, true), BridgeCalls::setTrackSolo(0, true),
        BridgeCalls::setTrackVolume(0, 0.5), BridgeCalls::exportGp() };
}

/// Notes every address the page asks for.
class RequestRecorder final : public QWebEngineUrlRequestInterceptor {
public:
    void interceptRequest(QWebEngineUrlRequestInfo &info) override { addresses << info.requestUrl(); }

    QList<QUrl> addresses;
};

QString nameOf(const QString &call)
{
    const qsizetype start = QLatin1String("window.qv.").size();
    return call.mid(start, call.indexOf(u'(') - start);
}

} // namespace

class TestPageProtocol final : public PageTest {
    Q_OBJECT

private Q_SLOTS:
    void thePageHasNoPeerConnections()
    {
        const QString names = u"Object.getOwnPropertyNames(globalThis).filter(n => /RTC/.test(n)).join(' ')"_s;
        QCOMPARE(m_session->valueOf(names).toString(), QString());
    }

    void thePageOffersExactlyTheCallsThatTheProgramMakes()
    {
        QStringList made;
        for (const QString &call : allCalls())
            made << nameOf(call);
        QStringList offered = m_session->valueOf(u"Object.keys(window.qv)"_s).toStringList();
        made.sort();
        offered.sort();
        QCOMPARE(made.size(), 20);
        QCOMPARE(offered, made);
    }

    void thePageKnowsExactlyTheMessagesThatTheProgramReads()
    {
        m_session->valueOf(u"import('qv-app://app/src/bridge/bridge.js').then((bridge) => { "
                           "globalThis.types = bridge.messageTypes; }); 1"_s);
        QStringList types;
        QVERIFY(m_session->waitFor([&] {
            types = m_session->valueOf(u"globalThis.types"_s).toStringList();
            return !types.isEmpty();
        }));
        QCOMPARE(types.size(), 8);
        for (const QString &type : types) {
            const auto message = BridgeMessages::parse({ { u"type"_s, type } });
            QVERIFY2(message && !std::holds_alternative<BridgeMessages::Unknown>(*message), qPrintable(type));
        }
    }

    void readyIsPostedOnce()
    {
        QVERIFY(m_session->openDemo());
        QCOMPARE(m_session->count(u"ready"_s), 1);
    }

    void withoutAScoreEveryCallIsAcceptedAndNothingBreaks()
    {
        for (const QString &call : allCalls()) {
            if (nameOf(call) != u"loadSample"_s)
                m_session->call(call);
        }
        // Two of them have something to say: there is nothing to open and nothing to export.
        QVERIFY(m_session->waitForCount(u"error"_s, 2));
        QVERIFY(m_session->openDemo());
        QCOMPARE(m_session->count(u"error"_s), 2);
    }

    void callsWithNonsenseAreIgnored()
    {
        QVERIFY(m_session->openDemo());
        for (const QString &call :
            { u"seekToTime(NaN)"_s, u"setSpeed(0)"_s, u"setZoom(-1)"_s, u"setTrackMute(99, true)"_s,
                u"setTrackVolume(0, NaN)"_s, u"renderTracks([])"_s, u"renderTracks([77])"_s,
                u"configMetronome(0.5, 'gong', true, 'sometimes')"_s, u"setLayout('circle')"_s })
            m_session->call(u"window.qv."_s + call);
        m_session->call(BridgeCalls::seekToTime(5000));
        QVERIFY(m_session->waitFor([&] { return qAbs(m_session->position() - 5000) < 20; }));
    }

    void noRequestLeavesTheProgram()
    {
        m_session = std::make_unique<EngineSession>();
        RequestRecorder recorder;
        m_session->host().page()->setUrlRequestInterceptor(&recorder);
        QVERIFY(m_session->start());
        QVERIFY(m_session->openDemo());
        m_session->call(BridgeCalls::playPause());
        QVERIFY(m_session->waitFor([&] { return m_session->position() > 500; }));
        m_session->host().page()->setUrlRequestInterceptor(nullptr);
        QVERIFY(recorder.addresses.size() > 5);
        for (const QUrl &address : recorder.addresses)
            QVERIFY2(RequestInterceptor::allows(address), qPrintable(address.toString()));
    }

    void thePagesOwnRulesForbidForeignRequests()
    {
        m_session->valueOf(u"globalThis.refused = []; document.addEventListener('securitypolicyviolation', "
                           "(event) => refused.push(event.effectiveDirective)); "
                           "new Image().src = 'https://example.org/x.png'; "
                           "try { new WebSocket('wss://example.org/'); } catch {} "
                           "const script = document.createElement('script'); script.src = 'https://example.org/x.js'; "
                           "document.head.append(script); 1"_s);
        QStringList refused;
        QVERIFY(m_session->waitFor([&] {
            refused = m_session->valueOf(u"refused"_s).toStringList();
            return refused.size() >= 3;
        }));
        refused.sort();
        QCOMPARE(refused, QStringList({ u"connect-src"_s, u"img-src"_s, u"script-src-elem"_s }));
        // The refusals are console errors, as they should be, and there are no others.
        const QStringList complaints = m_session->complaints();
        QVERIFY2(complaints.size() >= 3, qPrintable(complaints.join(u'\n')));
        for (const QString &complaint : complaints)
            QVERIFY2(complaint.contains("Content Security Policy"_L1), qPrintable(complaint));
        m_session = std::make_unique<EngineSession>();
    }
};

int main(int argc, char *argv[]) { return runEngineTest<TestPageProtocol>(argc, argv); }
#include "test_page_protocol.moc"
