// The settings file and what is remembered of scores, as another program or a broken disk may leave them.
#include "controller/AlphaTabController.h"
#include "controller/SpeedRange.h"
#include "controller/ZoomRange.h"
#include "tests/fuzz/Expect.h"
#include "tests/support/TestSurroundings.h"

#include <QCoreApplication>
#include <QDir>

using namespace Qt::StringLiterals;

namespace {

void recall(const QByteArray &bytes)
{
    TestSurroundings surroundings;
    QDir().mkpath(surroundings.path(u"state"_s));
    surroundings.file(u"state/scores.json"_s, bytes);
    const auto memory = surroundings.scoreMemory();
    if (const auto score = memory->recall(u"a"_s)) {
        expect(score->tempoPercent >= SpeedRange::slowest && score->tempoPercent <= SpeedRange::fastest
                && score->zoom >= ZoomRange::smallest && score->zoom <= ZoomRange::largest && score->position >= 0,
            "what is remembered lies in its ranges");
        expect(RememberedScore::fromJson(score->toJson()) == *score, "it is written as it is read");
        memory->remember(u"a"_s, *score);
        expect(memory->recall(u"a"_s) == score, "it is remembered");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static int count = 0;
    static char *none = nullptr;
    static const QCoreApplication application(count, &none);
    const QByteArray bytes = bytesOf(data, size);
    {
        TestSurroundings surroundings;
        surroundings.file(u"defaults.json"_s, bytes);
        AlphaTabController controller(surroundings.make());
        expect(controller.pdfPagesAcross >= 1 && controller.pdfPagesAcross <= 6, "the pages across are in their range");
        expect(controller.recentFiles.value().size() <= 8, "there are at most eight recent files");
        controller.pdfPagesAcross = 3;
        controller.saveRecents();
        expect(surroundings.defaults()->integer(u"pdfPagesAcross"_s) == 3, "an assignment is in the file");
    }
    recall(bytes);
    return 0;
}
