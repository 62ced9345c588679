#include "design/IconLabel.h"
#include "design/Picker.h"
#include "design/Popover.h"
#include "design/Slider.h"
#include "design/Toggle.h"
#include "tests/support/Report.h"
#include "tests/views/ShownWindow.h"
#include "views/MetronomeMenu.h"

#include <QGraphicsOpacityEffect>
#include <QScopeGuard>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QStringList settings{ u"Plays on"_s, u"Metronome volume"_s, u"Sound"_s, u"Accent first beat of bar"_s };

void open(ShownWindow &w)
{
    w.click(u"Metronome & count-in"_s);
    QCoreApplication::processEvents();
    w.sent();
}

/// How strongly the widget is drawn, effects of all its parents together.
double opacity(const QWidget *widget)
{
    double result = 1;
    for (; widget; widget = widget->parentWidget()) {
        const auto *effect = qobject_cast<QGraphicsOpacityEffect *>(widget->graphicsEffect());
        if (effect && effect->isEnabled())
            result *= effect->opacity();
    }
    return result;
}

void settle()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

const QString preview = u"window.qv.previewMetronome()"_s;

QString configuration(const QString &sound, const QString &mode = u"beat"_s, const QString &volume = u"0.6"_s,
    const QString &accent = u"true"_s)
{
    return u"window.qv.configMetronome(%1, '%2', %3, '%4')"_s.arg(volume, sound, accent, mode);
}

} // namespace

class TestMetronomeMenu final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theButtonOpensAndClosesIt()
    {
        ShownWindow w;
        QVERIFY(!w.control(u"Count-in"_s));
        w.click(u"Metronome & count-in"_s);
        QVERIFY(w.control(u"Count-in"_s));
        w.click(u"Metronome & count-in"_s);
        QVERIFY(!w.control(u"Count-in"_s));
        w.click(u"Metronome & count-in"_s);
        QVERIFY(w.control(u"Count-in"_s));
        QVERIFY(w.sent().isEmpty());
    }

    void theFocusRingStaysClearOfWhatItSurrounds()
    {
        ShownWindow w;
        open(w);
        for (const QString &name : { u"Metronome"_s, u"Accent first beat of bar"_s, u"Count-in"_s }) {
            auto *toggle = w.control<Toggle>(name);
            const auto picture = [toggle](Qt::FocusReason reason) {
                if (reason == Qt::TabFocusReason)
                    toggle->setFocus(reason);
                else
                    toggle->clearFocus();
                QImage image(toggle->size(), QImage::Format_RGB32);
                image.fill(Qt::white);
                toggle->render(&image, {}, {}, {});
                return image;
            };
            w.controller.metronome = true;
            const QImage plain = picture(Qt::OtherFocusReason);
            const QImage ringed = picture(Qt::TabFocusReason);
            QVERIFY(plain != ringed);
            const auto nearInk = [&plain](QPoint place) {
                const QRect around = QRect(place - QPoint(2, 2), QSize(5, 5)) & plain.rect();
                for (int y = around.top(); y <= around.bottom(); ++y) {
                    for (int x = around.left(); x <= around.right(); ++x) {
                        if (plain.pixelColor(x, y) != QColor(Qt::white))
                            return true;
                    }
                }
                return false;
            };
            for (int y = 0; y < plain.height(); ++y) {
                for (int x = 0; x < plain.width(); ++x) {
                    if (plain.pixel(x, y) != ringed.pixel(x, y))
                        QVERIFY2(!nearInk({ x, y }), qPrintable(u"%1 at %2, %3"_s.arg(name).arg(x).arg(y)));
                }
            }
        }
    }

    void whatThePopoverShowsBeginsAtOneEdge()
    {
        ShownWindow w;
        open(w);
        const auto left = [&w](const QString &name) {
            QWidget *control = w.control(name);
            const int inset = qobject_cast<Toggle *>(control) ? Toggle::outset : 0;
            return control->mapTo(&w.window, QPoint(inset, 0)).x();
        };
        for (const QString &name : { u"Plays on"_s, u"Sound"_s, u"Accent first beat of bar"_s, u"Count-in"_s })
            QCOMPARE(left(name), left(u"Metronome"_s));
    }

    void theLouderLoudspeakerStaysOnTheRight()
    {
        const auto restore = qScopeGuard([] { QGuiApplication::setLayoutDirection(Qt::LeftToRight); });
        for (const auto direction : { Qt::LeftToRight, Qt::RightToLeft }) {
            QGuiApplication::setLayoutDirection(direction);
            ShownWindow w;
            open(w);
            const QWidget *slider = w.control(u"Metronome volume"_s);
            const QList<IconLabel *> icons = slider->parentWidget()->findChildren<IconLabel *>();
            QCOMPARE(icons.size(), 2);
            QVERIFY(icons[0]->x() < slider->x() && slider->x() < icons[1]->x());
        }
    }

    void theChoicesComeInOrder()
    {
        ShownWindow w;
        open(w);
        const auto choices = [&w](const QString &name) {
            QStringList list;
            const auto *picker = w.control<Picker>(name);
            for (int i = 0; i < picker->count(); ++i)
                list << picker->itemData(i).toString() + u'=' + picker->itemText(i);
            return list;
        };
        QCOMPARE(choices(u"Plays on"_s),
            (QStringList{ u"bar=On every bar"_s, u"beat=On every beat"_s, u"half=On every ½ beat"_s,
                u"quarter=On every ¼ beat"_s }));
        QCOMPARE(choices(u"Sound"_s),
            (QStringList{ u"woodblock=Woodblock"_s, u"beep=Beep"_s, u"click=Click"_s, u"tick=Tick"_s }));
        QCOMPARE(w.control<Picker>(u"Plays on"_s)->currentText(), u"On every beat"_s);
        QCOMPARE(w.control<Picker>(u"Sound"_s)->currentText(), u"Woodblock"_s);
        QCOMPARE(w.window.findChild<MetronomeMenu *>()->width(), 280);
    }

    void withTheMetronomeOffItsSettingsAreDimmedAndDead()
    {
        ShownWindow w;
        open(w);
        for (const QString &name : settings) {
            QWidget *control = w.control(name);
            QCOMPARE(opacity(control), 0.45);
            QVERIFY(!control->isEnabled());
            QTest::mouseClick(control, Qt::LeftButton);
        }
        settle();
        QVERIFY(w.sent().isEmpty());
        QVERIFY(w.control(u"Count-in"_s)->isEnabled());
        QCOMPARE(opacity(w.control(u"Count-in"_s)), 1.0);
        w.click(u"Count-in"_s);
        QCOMPARE(w.sent(), QStringList{ u"window.qv.setCountIn(1)"_s });

        w.click(u"Metronome"_s);
        QCOMPARE(w.sent(), QStringList{ u"window.qv.setMetronome(true)"_s });
        for (const QString &name : settings) {
            QCOMPARE(opacity(w.control(name)), 1.0);
            QVERIFY(w.control(name)->isEnabled());
        }
    }

    void theCountInNeedsTheSynth_data()
    {
        QTest::addColumn<bool>("backingTrack");
        QTest::addColumn<bool>("preferSynth");
        QTest::addColumn<bool>("enabled");
        QTest::newRow("no recording, original") << false << false << true;
        QTest::newRow("no recording, synth") << false << true << true;
        QTest::newRow("recording, original") << true << false << false;
        QTest::newRow("recording, synth") << true << true << true;
    }

    void theCountInNeedsTheSynth()
    {
        QFETCH(bool, backingTrack);
        QFETCH(bool, preferSynth);
        QFETCH(bool, enabled);
        ShownWindow w;
        open(w);
        reportRecording(w.controller, backingTrack);
        w.controller.preferSynth = preferSynth;
        const QWidget *countIn = w.control(u"Count-in"_s);
        QCOMPARE(countIn->isEnabled(), enabled);
        QCOMPARE(countIn->toolTip(),
            enabled ? u"Count-in before playback"_s
                    : u"Count-in needs the synth — switch the sound to “Synth” to use it"_s);
    }

    void anotherSoundIsHeardOnceAfterItIsSet()
    {
        ShownWindow w;
        w.controller.metronome = true;
        open(w);
        auto *sound = w.control<Picker>(u"Sound"_s);
        QTest::keyClick(sound, Qt::Key_Down);
        settle();
        QCOMPARE(w.sent(), (QStringList{ configuration(u"beep"_s), preview }));
        sound->setCurrentIndex(sound->currentIndex());
        settle();
        QVERIFY(w.sent().isEmpty());
    }

    void theSameSoundAgainIsNotHeard()
    {
        ShownWindow w;
        open(w);
        w.controller.metronomeSound = u"woodblock"_s;
        settle();
        QCOMPARE(w.sent(), QStringList{ configuration(u"woodblock"_s) });
    }

    void aSoundSetElsewhereIsHeardWhileTheMenuIsOpen()
    {
        ShownWindow w;
        w.controller.metronomeSound = u"click"_s;
        settle();
        QCOMPARE(w.sent(), QStringList{ configuration(u"click"_s) });
        open(w);
        w.controller.metronomeSound = u"tick"_s;
        settle();
        QCOMPARE(w.sent(), (QStringList{ configuration(u"tick"_s), preview }));
        QCOMPARE(w.control<Picker>(u"Sound"_s)->currentText(), u"Tick"_s);
        w.click(u"Metronome & count-in"_s);
        w.controller.metronomeSound = u"beep"_s;
        settle();
        QCOMPARE(w.sent(), QStringList{ configuration(u"beep"_s) });
    }

    void modeVolumeAndAccentAreNotHeard()
    {
        ShownWindow w;
        w.controller.metronome = true;
        open(w);
        QTest::keyClick(w.control(u"Plays on"_s), Qt::Key_Down);
        QTest::keyClick(w.control(u"Metronome volume"_s), Qt::Key_Left);
        w.click(u"Accent first beat of bar"_s);
        settle();
        QCOMPARE(w.sent(),
            (QStringList{ configuration(u"woodblock"_s, u"half"_s), configuration(u"woodblock"_s, u"half"_s, u"0.55"_s),
                configuration(u"woodblock"_s, u"half"_s, u"0.55"_s, u"false"_s) }));
    }

    void aChoiceThatIsNoneOfTheTableShowsNothing()
    {
        ShownWindow w;
        w.controller.metronomeMode = u"never"_s;
        open(w);
        QCOMPARE(w.control<Picker>(u"Plays on"_s)->currentText(), QString());
        QVERIFY(w.sent().isEmpty());
        QCOMPARE(w.controller.metronomeMode.value(), u"never"_s);
    }

    void itFollowsTheController()
    {
        ShownWindow w;
        open(w);
        w.controller.metronome = true;
        w.controller.countIn = true;
        w.controller.metronomeAccent = false;
        w.controller.metronomeVolume = 0.25;
        w.controller.metronomeMode = u"quarter"_s;
        QVERIFY(w.control<Toggle>(u"Metronome"_s)->isChecked());
        QVERIFY(w.control<Toggle>(u"Count-in"_s)->isChecked());
        QVERIFY(!w.control<Toggle>(u"Accent first beat of bar"_s)->isChecked());
        QCOMPARE(w.control<Slider>(u"Metronome volume"_s)->shown(), 0.25);
        QCOMPARE(w.control<Picker>(u"Plays on"_s)->currentText(), u"On every ¼ beat"_s);
        QCOMPARE(w.sent().size(), 5); // one for each assignment above
    }
};

QTEST_MAIN(TestMetronomeMenu)
#include "test_metronome_menu.moc"
