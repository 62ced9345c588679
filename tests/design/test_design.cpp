#include "design/Button.h"
#include "design/ElidedLabel.h"
#include "design/Icons.h"
#include "design/Picker.h"
#include "design/Popover.h"
#include "design/Slider.h"
#include "design/Theme.h"
#include "design/WrappedText.h"
#include "tests/views/ShownWindow.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QDirIterator>
#include <QIcon>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <QVBoxLayout>
#include <QWheelEvent>

using namespace Qt::StringLiterals;

namespace {

QPalette darkSystem()
{
    QPalette palette(QColor(0x30, 0x30, 0x30));
    for (const auto role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText })
        palette.setColor(role, Qt::white);
    return palette;
}

/// As the guidelines for the web define it (WCAG 2.1).
double luminance(const QColor &color)
{
    const auto linear = [](double c) { return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor &a, const QColor &b)
{
    const double high = std::max(luminance(a), luminance(b));
    const double low = std::min(luminance(a), luminance(b));
    return (high + 0.05) / (low + 0.05);
}

/// A window with one button and a popover of 200 by 150 at it.
struct PopoverScene {
    PopoverScene(QSize windowSize, QPoint buttonPlace)
        : anchor(new Button(Button::Look::Tool, &window))
    {
        window.resize(windowSize);
        anchor->setGeometry(QRect(buttonPlace, QSize(30, 30)));
        window.show();
        if (!QTest::qWaitForWindowActive(&window))
            qFatal("the window does not come up");
        content = new QWidget;
        content->setFixedSize(200, 150);
        popover = Popover::open(content, *anchor);
        QCoreApplication::processEvents();
    }

    QRect body() const { return { content->mapTo(&window, QPoint()), content->size() }; }

    QWidget window;
    Button *anchor;
    QWidget *content;
    QPointer<Popover> popover;
};

} // namespace

class TestDesign final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Theme::install(); }
    void cleanup() { QApplication::setPalette(QPalette()); }

    void textStandsOutEverywhere_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::newRow("light") << false;
        QTest::newRow("dark") << true;
    }

    /// The contrast that readers with weak sight need: 4.5 to 1 for text (WCAG 2.1, 1.4.3), 3 to 1 for the parts of a
    /// control (1.4.11).
    void textStandsOutEverywhere()
    {
        QFETCH(bool, dark);
        const QPalette palette = dark ? darkSystem() : QPalette(Qt::white);
        const Theme::Colors &colors = Theme::colors(palette);
        for (const QColor &ground : { colors.canvas, colors.bar, colors.sidebar, colors.popover }) {
            for (const QColor &ink : { colors.text, colors.secondary, colors.accent, colors.muted })
                QVERIFY2(contrast(ink, ground) >= 4.5, qPrintable(ink.name() + u" on "_s + ground.name()));
        }
        QVERIFY(contrast(colors.text, colors.fill) >= 4.5);
        QVERIFY(contrast(colors.secondary, colors.fill) >= 4.5);
        QVERIFY(contrast(colors.onAccent, colors.accent) >= 4.5);
        QVERIFY(contrast(colors.positive, colors.popover) >= 3);
        QVERIFY(contrast(colors.unavailable, colors.fill) >= 3);
        for (const QColor &ground : { colors.canvas, colors.bar, colors.viewport, colors.popover })
            QVERIFY2(contrast(colors.edge, ground) >= 1.5, qPrintable(ground.name()));
        // A letter that is on stands on a tint of its own colour.
        for (const QColor &ink : { colors.accent, colors.muted }) {
            const auto mixed = [&ink, &colors](float ground, float part) { return ground + (part - ground) * 0.16F; };
            const QColor body = QColor::fromRgbF(mixed(colors.sidebar.redF(), ink.redF()),
                mixed(colors.sidebar.greenF(), ink.greenF()), mixed(colors.sidebar.blueF(), ink.blueF()));
            QVERIFY2(contrast(ink, body) >= 3, qPrintable(ink.name()));
        }
    }

    void aBoxWithoutATickCanBeSeen_data() { textStandsOutEverywhere_data(); }

    void aBoxWithoutATickCanBeSeen()
    {
        QFETCH(bool, dark);
        QApplication::setPalette(dark ? darkSystem() : QPalette(Qt::white));
        QWidget window;
        auto *layout = new QVBoxLayout(&window);
        const QList<QAbstractButton *> boxes{ new QCheckBox, new QRadioButton };
        for (QAbstractButton *box : boxes)
            layout->addWidget(box);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        for (QAbstractButton *box : boxes) {
            const QImage picture = box->grab().toImage();
            const QColor ground = Theme::colors(window.palette()).bar;
            double most = 1;
            for (int x = 0; x < picture.width(); ++x)
                most = std::max(most, contrast(picture.pixelColor(x, picture.height() / 2), ground));
            QVERIFY2(most >= 3, qPrintable(QString::number(most)));
        }
    }

    /// Without a compositor, as on a plain X11 screen, nothing but its edge tells a menu from what lies below.
    void smallWindowsHaveARoundEdge_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::newRow("light") << false;
        QTest::newRow("dark") << true;
    }

    void smallWindowsHaveARoundEdge()
    {
        QFETCH(bool, dark);
        QApplication::setPalette(dark ? darkSystem() : QPalette());
        const auto roundWithEdge = [](QWidget &popup) {
            const QImage picture = popup.grab().toImage();
            const QRect rect = picture.rect();
            const QColor edge = Theme::colors(popup.palette()).edge;
            for (const QPoint &side : { QPoint(rect.center().x(), 0), QPoint(rect.center().x(), rect.bottom()),
                     QPoint(0, rect.center().y()), QPoint(rect.right(), rect.center().y()) }) {
                QCOMPARE(picture.pixelColor(side).name(), edge.name());
                QVERIFY(popup.mask().contains(side));
            }
            // Nor is there a gap in the corners: the edge runs diagonally past them.
            QVERIFY(picture.pixelColor(2, 1).lightness() != Theme::colors(popup.palette()).popover.lightness());
            for (const QPoint &corner : { rect.topLeft(), rect.topRight(), rect.bottomLeft(), rect.bottomRight() })
                QVERIFY(!popup.mask().contains(corner));
        };
        QMenu menu;
        menu.addAction(u"Open…"_s);
        menu.addAction(u"Quit"_s);
        menu.popup({ 20, 20 });
        QVERIFY(QTest::qWaitForWindowExposed(&menu));
        roundWithEdge(menu);
        menu.close();

        Picker picker;
        picker.addItem(u"Woodblock"_s, u"woodblock"_s);
        picker.addItem(u"Beep"_s, u"beep"_s);
        picker.show();
        QVERIFY(QTest::qWaitForWindowExposed(&picker));
        picker.showPopup();
        roundWithEdge(*picker.view()->window());
        picker.hidePopup();

        QToolTip::showText({ 30, 30 }, u"Loop selected range"_s, &picker);
        QWidget *tip = nullptr;
        const auto shown = [&tip] {
            for (QWidget *widget : QApplication::topLevelWidgets()) {
                if (widget->isVisible() && widget->inherits("QTipLabel"))
                    tip = widget;
            }
            return tip != nullptr;
        };
        QTRY_VERIFY(shown());
        roundWithEdge(*tip);
        QToolTip::hideText();
    }

    void aButtonThatCannotBePressedCanStillBeRead()
    {
        const QColor fill = Theme::colors(QApplication::palette()).fill;
        for (const bool isDefault : { false, true }) {
            QPushButton button(u"Open"_s);
            button.setDefault(isDefault);
            button.setEnabled(false);
            const QImage picture = button.grab().toImage();
            int darkest = 255;
            for (int x = 10; x < picture.width() - 10; ++x)
                darkest = std::min(darkest, picture.pixelColor(x, picture.height() / 2).lightness());
            QVERIFY2(fill.lightness() - darkest > 60, qPrintable(u"%1 on %2"_s.arg(darkest).arg(fill.lightness())));
        }
    }

    void theReachOfAButtonPressesItAndPaintsNothing()
    {
        Button plain(Button::Look::Plain);
        plain.setText(u"S"_s);
        Button reaching(Button::Look::Plain);
        reaching.setText(u"S"_s);
        reaching.setReach({ 4, 5, 6, 7 });
        QCOMPARE(reaching.sizeHint(), plain.sizeHint() + QSize(10, 12));
        plain.resize(plain.sizeHint());
        reaching.resize(reaching.sizeHint());
        QSignalSpy clicked(&reaching, &Button::clicked);
        QTest::mouseClick(&reaching, Qt::LeftButton, {}, QPoint(1, 1));
        QCOMPARE(clicked.size(), 1);
        for (const bool on : { false, true }) {
            for (Button *button : { &plain, &reaching }) {
                button->setCheckable(true);
                button->setChecked(on);
            }
            const QImage inner = reaching.grab(QRect(QPoint(4, 5), plain.size())).toImage();
            QCOMPARE(inner, plain.grab().toImage());
        }
    }

    void aDoubleClickBringsTheUsualValueBack()
    {
        Slider slider(25, 200, 175, 1);
        slider.resize(200, 22);
        slider.setUsualValue(100);
        slider.display(30);
        QSignalSpy moved(&slider, &Slider::moved);
        QTest::mouseDClick(&slider, Qt::LeftButton, {}, QPoint(150, 11));
        QCOMPARE(slider.shown(), 100.0);
        QVERIFY(!moved.isEmpty());
        QCOMPARE(moved.last().constFirst().toDouble(), 100.0);
        QVERIFY(!slider.isSliderDown());

        Slider other(0, 1, 1000, 50);
        other.resize(200, 22);
        QTest::mouseDClick(&other, Qt::LeftButton, {}, QPoint(199, 11));
        QCOMPARE(other.shown(), 1.0);
    }

    void theWindowTurnsDarkWithTheSystem()
    {
        ShownWindow w;
        w.score(u"Song"_s, { u"Lead"_s });
        const auto brightness = [&w] {
            return w.window.grab()
                .toImage()
                .scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                .pixelColor(0, 0)
                .lightness();
        };
        w.controller.webView()->setVisible(false);
        const int light = brightness();
        QApplication::setPalette(darkSystem());
        QCoreApplication::processEvents();
        const int dark = brightness();
        QApplication::setPalette(QPalette());
        QCoreApplication::processEvents();
        QVERIFY2(light > 200 && dark < 60, qPrintable(u"%1 %2"_s.arg(light).arg(dark)));
        QCOMPARE(brightness(), light);
    }

    void aTextTurnsDarkWithTheSystemAndBack()
    {
        QApplication::setPalette(QPalette(Qt::white));
        const auto restored = qScopeGuard([] { QApplication::setPalette(QPalette()); });
        WrappedText title(u"Title"_s, Theme::Type::Title, &Theme::Colors::text);
        WrappedText explanation(u"More"_s, Theme::Type::Body, &Theme::Colors::secondary);
        title.show();
        explanation.show();
        for (const QPalette &system :
            { Theme::darkPalette(), QPalette(Qt::white), darkSystem(), QPalette(Qt::white) }) {
            QApplication::setPalette(system);
            QTRY_COMPARE(title.palette().color(QPalette::WindowText), Theme::colors(system).text);
            QTRY_COMPARE(explanation.palette().color(QPalette::WindowText), Theme::colors(system).secondary);
        }
    }

    void behindTheScoreItIsLightOrDarkToo()
    {
        ShownWindow w;
        const auto viewport = [&w] { return w.controller.webView()->palette().color(QPalette::Window).lightness(); };
        QVERIFY(viewport() > 200);
        QApplication::setPalette(darkSystem());
        QTRY_VERIFY(viewport() < 60);
        QApplication::setPalette(QPalette());
        QTRY_VERIFY(viewport() > 200);
    }

    void everyIdentifierHasADrawing_data()
    {
        QTest::addColumn<QString>("identifier");
        for (const QString &identifier :
            { u"folder"_s, u"music.note"_s, u"arrow.left.and.right"_s, u"minus.magnifyingglass"_s,
                u"plus.magnifyingglass"_s, u"play.fill"_s, u"pause.fill"_s, u"stop.fill"_s, u"metronome"_s,
                u"metronome.fill"_s, u"speaker.fill"_s, u"speaker.wave.2.fill"_s, u"speaker.wave.3.fill"_s, u"repeat"_s,
                u"checkmark.square.fill"_s, u"square"_s, u"guitars"_s, u"doc.text"_s, u"exclamationmark.triangle"_s })
            QTest::newRow(qPrintable(identifier)) << identifier;
    }

    void everyIdentifierHasADrawing()
    {
        QFETCH(QString, identifier);
        for (const qreal scale : { 1.0, 2.0 }) {
            const QImage image = Icons::pixmap(identifier, 18, QColor(200, 10, 20), scale).toImage();
            QCOMPARE(image.size(), QSize(18, 18) * scale);
            int inked = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const QColor pixel = image.pixelColor(x, y);
                    if (pixel.alpha() < 200)
                        continue;
                    ++inked;
                    QVERIFY(std::abs(pixel.red() - 200) < 8 && pixel.green() < 18 && pixel.blue() < 28);
                }
            }
            QVERIFY(inked > 10);
        }
    }

    void theApplicationHasAnIcon()
    {
        const QImage image = QIcon(u":/icons/quaverly.svg"_s).pixmap(64).toImage();
        QVERIFY(image.pixelColor(32, 8).alpha() == 255);
        QCOMPARE(image.pixelColor(2, 62).alpha(), 0);
    }

    void aSliderShowsRealsExactly()
    {
        Slider slider(0, 1, 1000, 50);
        QSignalSpy moved(&slider, &Slider::moved);
        for (const double value : { 0.0, 0.001, 0.25, 0.6, 0.999, 1.0 }) {
            slider.display(value);
            QCOMPARE(slider.shown(), value);
        }
        slider.display(7);
        QCOMPARE(slider.shown(), 1.0);
        slider.display(-7);
        QCOMPARE(slider.shown(), 0.0);
        slider.display(std::numeric_limits<double>::quiet_NaN());
        QCOMPARE(slider.shown(), 0.0);
        slider.display(std::numeric_limits<double>::infinity());
        QCOMPARE(slider.shown(), 1.0);
        QCOMPARE(moved.size(), 0);
    }

    void theWheelPassesASliderBy()
    {
        Slider slider(0, 1, 1000, 50);
        slider.display(0.5);
        QWheelEvent wheel(QPointF(5, 5), QPointF(5, 5), QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier,
            Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&slider, &wheel);
        QVERIFY(!wheel.isAccepted());
        QCOMPARE(slider.shown(), 0.5);
    }

    void takingTheKnobDoesNotMoveIt()
    {
        Slider slider(0, 1, 1000, 50);
        slider.resize(200, 22);
        slider.display(0.5);
        QSignalSpy moved(&slider, &Slider::moved);
        QSignalSpy settled(&slider, &Slider::settled);
        QTest::mousePress(&slider, Qt::LeftButton, {}, QPoint(104, 11));
        QCOMPARE(slider.shown(), 0.5);
        QTest::mouseRelease(&slider, Qt::LeftButton, {}, QPoint(104, 11));
        QCOMPARE(moved.size(), 0);
        QCOMPARE(settled.size(), 1);
        QTest::mouseClick(&slider, Qt::RightButton, {}, QPoint(20, 11));
        QCOMPARE(slider.shown(), 0.5);
        QCOMPARE(settled.size(), 1);
    }

    void aPopoverOpensWhereThereIsRoom()
    {
        const PopoverScene below({ 600, 400 }, { 285, 10 });
        QVERIFY(below.body().top() > below.anchor->geometry().bottom());
        const PopoverScene above({ 600, 400 }, { 285, 360 });
        QVERIFY(above.body().bottom() < above.anchor->geometry().top());
        QVERIFY(std::abs(above.body().center().x() - above.anchor->geometry().center().x()) <= 1);
        const PopoverScene corner({ 600, 400 }, { 568, 360 });
        QVERIFY(corner.window.rect().contains(corner.body()));
    }

    void aPopoverFollowsItsWindow()
    {
        PopoverScene scene({ 600, 400 }, { 285, 360 });
        scene.window.resize(320, 400);
        scene.anchor->move(280, 360);
        QTRY_VERIFY(scene.window.rect().contains(scene.body()));
    }

    void aPressOutsideClosesThePopoverAndGoesOn()
    {
        PopoverScene scene({ 600, 400 }, { 285, 360 });
        Button other(Button::Look::Tool, &scene.window);
        other.setGeometry(10, 10, 30, 30);
        other.show();
        QSignalSpy clicked(&other, &Button::clicked);
        QTest::mouseClick(scene.content, Qt::LeftButton);
        QVERIFY(scene.popover->isVisible());
        QTest::mouseClick(&other, Qt::LeftButton);
        QCOMPARE(clicked.size(), 1);
        QTRY_VERIFY(!scene.popover);
    }

    void aPopoverGoesWithItsControl()
    {
        PopoverScene scene({ 600, 400 }, { 285, 360 });
        scene.anchor->hide();
        QTRY_VERIFY(!scene.popover);
    }

    void escapeClosesThePopoverAndGivesTheFocusBack()
    {
        PopoverScene scene({ 600, 400 }, { 285, 360 });
        QVERIFY(scene.popover->hasFocus());
        QTest::keyClick(scene.popover, Qt::Key_Escape);
        QVERIFY(scene.anchor->hasFocus());
        QTRY_VERIFY(!scene.popover);
    }

    void longTextsAreShortened()
    {
        ElidedLabel label(Theme::Type::Body, &Theme::Colors::text, Qt::ElideMiddle);
        label.setText(u"/home/robin/Scores/Very/Deep/Down/Below"_s);
        label.resize(120, 20);
        QVERIFY(label.shownText().contains(u'…') && label.shownText().startsWith(u"/home"_s));
        label.resize(1000, 20);
        QCOMPARE(label.shownText(), label.text());
        label.setText(u"two\nlines"_s);
        QCOMPARE(label.shownText(), u"two lines"_s);
        label.setText(u"two\u2028lines\u2029more"_s);
        QCOMPARE(label.shownText(), u"two lines more"_s);
    }
};

QTEST_MAIN(TestDesign)
#include "test_design.moc"
