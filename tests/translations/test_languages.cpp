#include "app/QuaverlyApp.h"
#include "controller/AlphaTabController.h"
#include "tests/support/TestSurroundings.h"
#include "translations/Translations.h"
#include "views/MetronomeMenu.h"

#include <QApplication>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>
#include <QTranslator>

using namespace Qt::StringLiterals;

namespace {

void speakEnglish()
{
    for (QTranslator *translator : qApp->findChildren<QTranslator *>())
        delete translator;
}

} // namespace

class TestLanguages final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        speakEnglish();
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    }

    void theUsersFirstLanguageThatIsSpokenCounts()
    {
        QCOMPARE(Translations::languageFor({ u"de-AT"_s, u"de"_s }), u"de"_s);
        QCOMPARE(Translations::languageFor({ u"fr"_s, u"de"_s }), u"fr"_s);
        QCOMPARE(Translations::languageFor({ u"nl-BE"_s, u"fr-BE"_s }), u"fr"_s);
        // English is spoken too.
        QCOMPARE(Translations::languageFor({ u"en-GB"_s, u"de"_s }), QString());
        QCOMPARE(Translations::languageFor({ u"C"_s }), QString());
        QCOMPARE(Translations::languageFor({ u"ja-JP"_s }), QString());
        QCOMPARE(Translations::languageFor({}), QString());
    }

    void theWindowSpeaks_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("demo");
        QTest::newRow("English") << QString() << u"File"_s << u"Try the demo"_s;
        QTest::newRow("German") << u"de"_s << u"Datei"_s << u"Beispiel ausprobieren"_s;
        QTest::newRow("French") << u"fr"_s << u"Fichier"_s << u"Essayer la démo"_s;
    }

    /// At its smallest, too, and from right to left.
    void theWindowSpeaks()
    {
        QFETCH(QString, language);
        QFETCH(QString, file);
        QFETCH(QString, demo);
        Translations::install(*qApp, language);
        for (const auto direction : { Qt::LeftToRight, Qt::RightToLeft }) {
            QGuiApplication::setLayoutDirection(direction);
            TestSurroundings world;
            AlphaTabController controller(world.make());
            QuaverlyApp app(controller);
            QVERIFY(QTest::qWaitForWindowExposed(&app.window()));
            QCOMPARE(app.window().menuBar()->actions().constFirst()->text().remove(u'&'), file);
            QStringList buttons;
            for (const auto *button : app.window().findChildren<QAbstractButton *>())
                buttons << button->text();
            QVERIFY2(buttons.contains(demo), qPrintable(buttons.join(u' ')));
            app.window().resize(760, 520);
            QCOMPARE(app.window().size(), QSize(760, 520));
            for (const QWidget *widget : app.window().findChildren<QAbstractButton *>()) {
                if (!widget->isVisible())
                    continue;
                const QRect place(widget->mapTo(&app.window(), QPoint()), widget->size());
                QVERIFY2(app.window().rect().contains(place), qPrintable(widget->accessibleName()));
                QVERIFY2(widget->width() >= widget->minimumSizeHint().width(), qPrintable(widget->accessibleName()));
            }
        }
    }

    void theMetronomesTextsFit_data() { theWindowSpeaks_data(); }

    void theMetronomesTextsFit()
    {
        QFETCH(QString, language);
        Translations::install(*qApp, language);
        TestSurroundings world;
        AlphaTabController controller(world.make());
        QWidget window;
        MetronomeMenu menu(controller, {}, {}, &window);
        window.resize(600, 600);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const QList<QAbstractButton *> toggles = menu.findChildren<QAbstractButton *>();
        QCOMPARE(toggles.size(), 3);
        for (const auto *toggle : toggles) {
            const QRect place(toggle->mapTo(&menu, QPoint()), toggle->size());
            QVERIFY2(menu.rect().contains(place), qPrintable(toggle->text()));
            QVERIFY2(toggle->width() >= toggle->sizeHint().width(), qPrintable(toggle->text()));
        }
    }
};

QTEST_MAIN(TestLanguages)
#include "test_languages.moc"
