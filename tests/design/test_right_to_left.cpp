#include "design/Button.h"
#include "design/Picker.h"
#include "design/Theme.h"
#include "design/Toggle.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QMenu>
#include <QTest>

#include <cmath>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

/// What stands out in a picture.
struct Ink {
    int pixels = 0;
    /// Of all of it, from the left.
    double middle = 0;
};

Ink inkOf(const QImage &picture)
{
    const int ground = qGray(picture.pixel(picture.width() / 2, 4));
    Ink ink;
    double sum = 0;
    for (int y = picture.height() / 4; y < picture.height() * 3 / 4; ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (std::abs(qGray(picture.pixel(x, y)) - ground) > 40) {
                ++ink.pixels;
                sum += x + 0.5;
            }
        }
    }
    ink.middle = sum / ink.pixels;
    return ink;
}

QImage pictureOf(QWidget *control, Qt::LayoutDirection direction)
{
    QWidget window;
    window.setLayoutDirection(direction);
    auto *layout = new QHBoxLayout(&window);
    control->setFixedWidth(200);
    layout->addWidget(control);
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        qFatal("the window does not come up");
    return control->grab().toImage();
}

} // namespace

/// The controls that paint themselves, in a window whose lines run from right to left.
class TestRightToLeft final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Theme::install(); }
    void cleanup() { QGuiApplication::setLayoutDirection(Qt::LeftToRight); }

    void controlsAreTurnedRound_data()
    {
        QTest::addColumn<std::function<QWidget *()>>("make");
        // A text that looks the same from both sides.
        const QString text = u"ooo"_s;
        const auto toggle = [text](Toggle::Look look) {
            return [text, look]() -> QWidget * {
                auto *made = new Toggle(look, text);
                made->setChecked(true);
                return made;
            };
        };
        QTest::newRow("switch") << std::function<QWidget *()>(toggle(Toggle::Look::Switch));
        QTest::newRow("box") << std::function<QWidget *()>(toggle(Toggle::Look::CheckBox));
        QTest::newRow("picker") << std::function<QWidget *()>([text]() -> QWidget * {
            auto *made = new Picker;
            made->addItem(text);
            return made;
        });
        QTest::newRow("button") << std::function<QWidget *()>([text]() -> QWidget * {
            auto *made = new Button(Button::Look::Tool);
            made->setIconName(u"speaker.wave.3.fill"_s);
            made->setText(text);
            return made;
        });
        QTest::newRow("button with reach") << std::function<QWidget *()>([]() -> QWidget * {
            auto *made = new Button(Button::Look::Plain);
            made->setIconName(u"square"_s);
            made->setReach(QMargins(0, 0, 60, 0));
            return made;
        });
    }

    void controlsAreTurnedRound()
    {
        QFETCH(std::function<QWidget *()>, make);
        const QImage picture = pictureOf(make(), Qt::LeftToRight);
        const Ink fromLeft = inkOf(picture);
        const Ink fromRight = inkOf(pictureOf(make(), Qt::RightToLeft));
        QVERIFY(std::abs(fromLeft.middle - picture.width() / 2.0) > 5);
        // What lies on something else would be missing.
        QVERIFY2(std::abs(fromLeft.pixels - fromRight.pixels) <= fromLeft.pixels / 10,
            qPrintable(u"%1 and %2"_s.arg(fromLeft.pixels).arg(fromRight.pixels)));
        QVERIFY2(std::abs(fromLeft.middle - (picture.width() - fromRight.middle)) < 3,
            qPrintable(u"%1 and %2"_s.arg(fromLeft.middle).arg(fromRight.middle)));
    }

    /// A bracket is the other one where it is read from the right.
    void aMenuShowsTheKeyThatItTakes()
    {
        QGuiApplication::setLayoutDirection(Qt::RightToLeft);
        QMenu menu;
        // As a menu of a menu bar writes the keys of an item.
        QAction *item = menu.addAction(u"ooo\t["_s);
        menu.show();
        QVERIFY(QTest::qWaitForWindowExposed(&menu));
        const QRect place = menu.actionGeometry(item);
        const QImage picture = menu.grab(place.adjusted(4, 0, -4, 0)).toImage();
        const auto isInked = [&picture](int x) {
            for (int y = 0; y < picture.height(); ++y) {
                if (qGray(picture.pixel(x, y)) < 128)
                    return true;
            }
            return false;
        };
        int left = 0;
        while (left < picture.width() && !isInked(left))
            ++left;
        int right = left;
        while (right < picture.width() && isInked(right))
            ++right;
        const QImage bracket = picture.copy(left, 0, right - left, picture.height());
        QVERIFY2(right > left && right - left < 12, qPrintable(u"%1 to %2"_s.arg(left).arg(right)));
        // Its stem is on the left.
        QVERIFY2(inkOf(bracket).middle < bracket.width() / 2.0, qPrintable(QString::number(inkOf(bracket).middle)));
    }
};

QTEST_MAIN(TestRightToLeft)
#include "test_right_to_left.moc"
