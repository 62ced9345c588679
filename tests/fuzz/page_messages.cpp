// What a page that somebody else has taken over might say: messages to the controller, and reports to its host.
#include "controller/AlphaTabController.h"
#include "desktop/MediaPlayer.h"
#include "desktop/MediaPlayerInterfaces.h"
#include "engine_host/bridge/BridgeMessages.h"
#include "tests/fuzz/Expect.h"
#include "tests/support/TestSurroundings.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

void report(PageReports &reports, const QVariantMap &map)
{
    reports.reportSections(map.value(u"sections"_s).toList());
    reports.reportLoopSpan(map.value(u"start"_s).toDouble(), map.value(u"end"_s).toDouble());
    reports.reportRange(map);
    if (const auto range = MarkedRange::fromMap(map))
        expect(MarkedRange::fromMap(range->toMap()).has_value(), "what is a range is one when it is written");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static int count = 0;
    static char *none = nullptr;
    static const QCoreApplication application(count, &none);
    static const TestSurroundings surroundings;
    static AlphaTabController controller(const_cast<TestSurroundings &>(surroundings).make());
    static MediaPlayer player(QDBusConnection(u"none"_s), controller);
    static const auto *media = player.findChild<MediaPlayerControls *>();

    const QJsonDocument document = QJsonDocument::fromJson(bytesOf(data, size));
    QJsonArray messages = document.array();
    if (document.isObject())
        messages.append(document.object());
    for (const QJsonValue &message : messages) {
        const QVariantMap map = message.toObject().toVariantMap();
        expect(!BridgeMessages::describe(map).contains(u'\n'), "a description is one line");
        controller.handle(map);
        report(surroundings.engine->reports, map);
        controller.seek(0.5);
        media->metadata();
        media->position();
        surroundings.delayed->clear();
        surroundings.engine->take();
        surroundings.log->clear();
        surroundings.windowTitles->clear();
    }
    return 0;
}
