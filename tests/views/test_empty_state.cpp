#include "design/ElidedLabel.h"
#include "tests/views/ShownWindow.h"
#include "views/RecentFileRow.h"
#include "views/RecentFilesList.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

void recents(ShownWindow &w, const QStringList &paths)
{
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls << QUrl::fromLocalFile(path);
    w.controller.recentFiles = urls;
    QCoreApplication::processEvents();
}

} // namespace

class TestEmptyState final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutRecentFilesOnlyTheInvitationShows()
    {
        ShownWindow w;
        QVERIFY(w.label(u"Open a Guitar Pro file, MusicXML, or PDF"_s));
        QVERIFY(w.label(u"Drag a .gp / .gp3–.gp5 / .gpx / .mxl / .pdf file here, or:"_s));
        QVERIFY(w.control(u"Open…"_s) && w.control(u"Try the demo"_s));
        QVERIFY(!w.label(u"Recent"_s) && !w.control(u"Clear"_s));
    }

    void theButtonsAskAndSend()
    {
        ShownWindow w;
        w.click(u"Open…"_s);
        QCOMPARE(w.world.dialogs->opened, 1);
        QVERIFY(w.sent().isEmpty());
        w.click(u"Try the demo"_s);
        QCOMPARE(w.sent(), QStringList{ u"window.qv.loadSample()"_s });
    }

    void aRowShowsNameAndFolder()
    {
        ShownWindow w;
        recents(w, { u"/Users/x/Scores/My Song.gp5"_s });
        QVERIFY(w.label(u"My Song"_s) && w.label(u"/Users/x/Scores"_s) && w.label(u"Recent"_s));
        QVERIFY(w.control(u"My Song"_s));
        const QWidget *list = w.window.findChild<RecentFilesList *>();
        QVERIFY(list->width() <= 360);
    }

    void theExtensionIsTheLastOne()
    {
        ShownWindow w;
        recents(w, { u"/scores/a.b.gp"_s, u"/scores/100% <b>.pdf"_s });
        QVERIFY(w.label(u"a.b"_s) && w.label(u"100% <b>"_s));
    }

    void rowsComeInOrderAndOpenTheirFile()
    {
        ShownWindow w;
        w.controller.handle({ { u"type"_s, u"ready"_s } });
        const QString first = w.world.file(u"first.gp"_s, "1").toLocalFile();
        const QString second = w.world.file(u"second.gp"_s, "2").toLocalFile();
        recents(w, { first, second });
        w.sent();
        QVERIFY(w.control(u"first"_s)->mapTo(&w.window, QPoint()).y()
            < w.control(u"second"_s)->mapTo(&w.window, QPoint()).y());
        // The whole rectangle is the button.
        QWidget *row = w.control(u"second"_s);
        QTest::mouseClick(row, Qt::LeftButton, {}, QPoint(row->width() - 2, row->height() - 2));
        QCOMPARE(w.sent(), QStringList{ u"window.qv.loadBase64('Mg==')"_s });
        QCOMPARE(w.controller.recentFiles.value().constFirst().toLocalFile(), second);
    }

    void aMissingFileIsListedUntilItIsChosen()
    {
        ShownWindow w;
        w.controller.handle({ { u"type"_s, u"ready"_s } });
        recents(w, { u"/nowhere/gone.gp"_s });
        w.sent();
        w.click(u"gone"_s);
        QVERIFY(w.sent().isEmpty());
        QCOMPARE(w.world.log->size(), 1);
        QVERIFY(!w.control(u"gone"_s));
    }

    void clearEmptiesAndPersistsAtOnce()
    {
        ShownWindow w;
        recents(w, { u"/a/one.gp"_s, u"/a/two.gp"_s });
        w.controller.saveRecents();
        w.click(u"Clear"_s);
        QVERIFY(w.controller.recentFiles.value().isEmpty());
        QCOMPARE(w.world.defaults()->textList(u"recentFiles"_s), QStringList());
        QVERIFY(!w.label(u"Recent"_s) && !w.control(u"Clear"_s) && !w.control(u"one"_s));
    }

    void aLongFolderIsShortenedInTheMiddle()
    {
        ShownWindow w;
        const QString folder = u"/home/robin/"_s + QString(u"Music/"_s).repeated(40) + u"Guitar/Week 12"_s;
        recents(w, { folder + u"/Etude.gp"_s });
        const auto *label = qobject_cast<ElidedLabel *>(w.label(folder));
        QVERIFY(label);
        const QString shown = label->shownText();
        QVERIFY(shown.size() < folder.size());
        QVERIFY2(shown.startsWith(u"/home/robin"_s) && shown.endsWith(u"Week 12"_s), qPrintable(shown));
        QCOMPARE(shown.count(u'…'), 1);
    }

    void theSmallestWindowScrollsEightFiles()
    {
        ShownWindow w({}, QSize(760, 520));
        QStringList paths;
        for (int i = 0; i < 8; ++i)
            paths << u"/scores/file %1.gp"_s.arg(i);
        recents(w, paths);
        QCOMPARE(w.window.size(), QSize(760, 520));
        QCOMPARE(w.window.findChildren<RecentFileRow *>().size(), 8);
        QWidget *last = w.control(u"file 7"_s);
        QVERIFY(last->visibleRegion().isEmpty());
        w.control(u"file 6"_s)->setFocus(Qt::TabFocusReason);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(last->visibleRegion(), QRegion(last->rect()));
    }
};

QTEST_MAIN(TestEmptyState)
#include "test_empty_state.moc"
