#include "engine_host/bridge/BridgeMessages.h"
#include "engine_host/bridge/MessageReceiver.h"
#include "engine_host/bridge/ScriptHandler.h"
#include "engine_host/process/SystemLog.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace BridgeMessages;

namespace {

/// The typed message of that kind, or nothing.
template <typename T> std::optional<T> parsedAs(const QVariantMap &map)
{
    const std::optional<Message> message = parse(map);
    if (!message || !std::holds_alternative<T>(*message))
        return std::nullopt;
    return std::get<T>(*message);
}

class Receiver final : public MessageReceiver {
public:
    void handle(const QVariantMap &message) override { messages << message; }
    void pageHealthChanged(PageHealth health) override { healths << health; }
    QList<QVariantMap> messages;
    QList<PageHealth> healths;
};

} // namespace

class TestBridgeMessages final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutATextTypeThereIsNoMessage()
    {
        QVERIFY(!parse({}));
        QVERIFY(!parse({ { u"typ"_s, u"ready"_s } }));
        QVERIFY(!parse({ { u"type"_s, 1 } }));
        QVERIFY(!parse({ { u"type"_s, QVariant() } }));
    }

    void typesAreCaseSensitive()
    {
        QVERIFY(parsedAs<Ready>({ { u"type"_s, u"ready"_s } }));
        QVERIFY(parsedAs<Unknown>({ { u"type"_s, u"Ready"_s } }));
        QVERIFY(parsedAs<PlayerReady>({ { u"type"_s, u"playerReady"_s } }));
        QVERIFY(parsedAs<Rendered>({ { u"type"_s, u"rendered"_s } }));
    }

    void scoreFieldsFallBackOneByOne()
    {
        const auto score = parsedAs<Score>({ { u"type"_s, u"score"_s }, { u"title"_s, 7 }, { u"artist"_s, u"A"_s },
            { u"tracks"_s, u"none"_s }, { u"hasBackingTrack"_s, 1 } });
        QVERIFY(score);
        QCOMPARE(score->title, QString());
        QCOMPARE(score->artist, u"A"_s);
        QVERIFY(!score->tracks);
        QVERIFY(!score->hasBackingTrack);
    }

    void trackEntries()
    {
        const QVariantList entries{
            QVariantMap{ { u"index"_s, 0 }, { u"name"_s, u"Guitar"_s } },
            QVariantMap{ { u"name"_s, u"nobody"_s } },
            QVariantMap{ { u"index"_s, 2.0 } },
            QVariantMap{ { u"index"_s, 2.5 }, { u"name"_s, u"between"_s } },
            QVariantMap{ { u"index"_s, u"3"_s } },
            QVariantMap{ { u"index"_s, 1e10 }, { u"name"_s, u"beyond"_s } },
            QVariantMap{ { u"index"_s, 5 }, { u"name"_s, 5 } },
        };
        const auto score = parsedAs<Score>({ { u"type"_s, u"score"_s }, { u"tracks"_s, entries } });
        QVERIFY(score && score->tracks);
        const QList<TrackEntry> expected{ { 0, u"Guitar"_s }, { 2, u"Track 3"_s }, { 5, u"Track 6"_s } };
        QCOMPARE(*score->tracks, expected);
    }

    void anEntryThatIsNoDictionarySpoilsTheList()
    {
        const QVariantList entries{ QVariantMap{ { u"index"_s, 0 } }, 1 };
        const auto score = parsedAs<Score>({ { u"type"_s, u"score"_s }, { u"tracks"_s, entries } });
        QVERIFY(score);
        QVERIFY(!score->tracks);
    }

    void anEmptyListIsAList()
    {
        const auto score = parsedAs<Score>({ { u"type"_s, u"score"_s }, { u"tracks"_s, QVariantList() } });
        QVERIFY(score && score->tracks);
        QVERIFY(score->tracks->isEmpty());
    }

    void positionTakesEveryKindOfNumber()
    {
        auto position = parsedAs<Position>(
            { { u"type"_s, u"position"_s }, { u"currentTime"_s, 1500 }, { u"endTime"_s, 2500.5 } });
        QVERIFY(position);
        QCOMPARE(position->currentTime, 1500.0);
        QCOMPARE(position->endTime, 2500.5);
        position = parsedAs<Position>({ { u"type"_s, u"position"_s }, { u"currentTime"_s, u"1500"_s } });
        QVERIFY(position);
        QCOMPARE(position->currentTime, 0.0);
        QCOMPARE(position->endTime, 0.0);
    }

    void stateErrorAndData()
    {
        QVERIFY(parsedAs<State>({ { u"type"_s, u"state"_s }, { u"playing"_s, true } })->playing);
        QVERIFY(!parsedAs<State>({ { u"type"_s, u"state"_s }, { u"playing"_s, u"true"_s } })->playing);
        QCOMPARE(parsedAs<Error>({ { u"type"_s, u"error"_s } })->message, u"?"_s);
        QCOMPARE(parsedAs<Error>({ { u"type"_s, u"error"_s }, { u"message"_s, u"bad"_s } })->message, u"bad"_s);
        QCOMPARE(parsedAs<Error>({ { u"type"_s, u"error"_s }, { u"message"_s, 4 } })->message, u"4"_s);
        const auto data = parsedAs<GpData>({ { u"type"_s, u"gpData"_s }, { u"data"_s, u"QUI="_s } });
        QCOMPARE(data->data, u"QUI="_s);
        QCOMPARE(data->title, QString());
    }

    void theTextualForm()
    {
        QCOMPARE(describe(QVariantMap{ { u"type"_s, u"ready"_s } }), u"[\"type\": \"ready\"]"_s);
        QCOMPARE(describe(QVariantMap{ { u"a"_s, QVariantList{ 1, 2.5, true, QVariant() } },
                     { u"b"_s, u"say \"x\"\n"_s }, { u"c"_s, QVariantMap() } }),
            u"[\"a\": [1, 2.5, true, null], \"b\": \"say \\\"x\\\"\\n\", \"c\": [:]]"_s);
    }

    void onlyDictionariesReachTheReceiver()
    {
        QStringList log;
        ScriptHandler handler([&log](const QString &line) { log << line; });
        handler.postMessage(QJsonObject{ { u"type"_s, u"ready"_s } }); // nobody there: dropped
        Receiver receiver;
        handler.setController(&receiver);
        handler.postMessage(u"ready"_s);
        handler.postMessage(4);
        handler.postMessage(QJsonArray{ 1 });
        handler.postMessage(QJsonValue());
        QVERIFY(receiver.messages.isEmpty());
        handler.postMessage(QJsonObject{ { u"type"_s, u"position"_s }, { u"currentTime"_s, 3 } });
        QCOMPARE(receiver.messages.size(), 1);
        QCOMPARE(parsedAs<Position>(receiver.messages.constFirst())->currentTime, 3.0);
        QVERIFY(log.isEmpty());
        handler.navigationFailed(u"gone"_s);
        QCOMPARE(log, QStringList{ u"[Quaverly] navigation failed: gone"_s });
    }

    void aLogEntryIsOneLine() { QCOMPARE(SystemLog::singleLine(u"a\nb\r\nc"_s), u"a b  c"_s); }
};

QTEST_GUILESS_MAIN(TestBridgeMessages)
#include "test_bridge_messages.moc"
