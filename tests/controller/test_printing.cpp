#include "controller/AlphaTabController.h"
#include "tests/support/Report.h"
#include "tests/support/TestSurroundings.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

class TestPrinting final : public QObject {
    Q_OBJECT

private:
    /// A controller whose page shows a score, in a world in which a file is chosen.
    struct Shown {
        TestSurroundings world;
        AlphaTabController controller{ world.make() };

        Shown()
        {
            controller.handle({ { u"type"_s, u"score"_s }, { u"title"_s, u"Song"_s } });
            world.dialogs->printTarget = PrintTarget{ .layout = {}, .filePath = path(), .printer = nullptr };
        }

        QString path() const { return world.path(u"song.pdf"_s); }

        QByteArray file() const
        {
            QFile file(path());
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        }
    };

private Q_SLOTS:
    void writesThePdfWhereTheUserWantsIt()
    {
        Shown s;
        s.controller.print();
        QCOMPARE(s.world.dialogs->printedTitle, u"Song"_s);
        QCOMPARE(s.world.engine->prints.size(), 1);
        QVERIFY(s.controller.printing);
        QVERIFY(s.file().isEmpty());
        s.world.engine->printed({ .succeeded = true, .pdf = "%PDF" });
        QVERIFY(!s.controller.printing);
        QCOMPARE(s.file(), QByteArray("%PDF"));
        QVERIFY(!s.controller.conversionError.value());
    }

    void printsNothingWithoutAScoreOrAChoice()
    {
        Shown s;
        report(s.controller.hasScore, false);
        s.controller.print();
        report(s.controller.hasScore, true);
        s.world.dialogs->printTarget.reset();
        s.controller.print();
        QVERIFY(s.world.engine->prints.isEmpty());
        QVERIFY(!s.controller.printing);
    }

    void printsOneThingAtATime()
    {
        Shown s;
        s.controller.print();
        s.controller.print();
        QCOMPARE(s.world.engine->prints.size(), 1);
        s.world.engine->printed({ .succeeded = true, .pdf = "%PDF" });
        s.controller.print();
        QCOMPARE(s.world.engine->prints.size(), 2);
    }

    void aFailureIsSaid()
    {
        Shown s;
        s.controller.print();
        s.world.engine->printed({});
        QVERIFY(s.controller.conversionError.value());
        QVERIFY(s.file().isEmpty());
        s.controller.conversionError = std::nullopt;
        s.world.dialogs->printTarget->filePath = u"/proc/none/song.pdf"_s;
        s.controller.print();
        s.world.engine->printed({ .succeeded = true, .pdf = "%PDF" });
        QVERIFY(s.controller.conversionError.value());
    }
};

QTEST_GUILESS_MAIN(TestPrinting)
#include "test_printing.moc"
