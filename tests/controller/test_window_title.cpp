#include "controller/WindowTitle.h"

#include <QTest>

using namespace Qt::StringLiterals;

class TestWindowTitle final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatTurnsTextAroundEndsWithIt_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("ends");
        QTest::newRow("plain") << u"Blues in A"_s << QString();
        QTest::newRow("other scripts") << u"שיר 嵐"_s << QString();
        QTest::newRow("override") << u"a\u202eb"_s << u"\u202c"_s;
        QTest::newRow("closed already") << u"a\u202eb\u202c"_s << QString();
        QTest::newRow("isolate in an embedding") << u"\u202aa\u2067b"_s << u"\u2069\u202c"_s;
        QTest::newRow("an isolate closes what is in it") << u"\u2066a\u202eb\u2069"_s << QString();
        QTest::newRow("closed too often") << u"a\u202c\u2069"_s << QString();
    }

    void whatTurnsTextAroundEndsWithIt()
    {
        QFETCH(const QString, text);
        QFETCH(const QString, ends);
        QCOMPARE(WindowTitle::closed(text), text + ends);
    }

    void theMarkOfAChangedDocumentIsOnlyText()
    {
        QCOMPARE(WindowTitle::forWidget(u"Song"_s), u"Song"_s);
        QCOMPARE(WindowTitle::forWidget(u"Take [*] 2 [*]"_s), u"Take [*][*] 2 [*][*]"_s);
    }
};

QTEST_GUILESS_MAIN(TestWindowTitle)
#include "test_window_title.moc"
