#include "design/Button.h"
#include "design/SegmentedControl.h"
#include "design/Spinner.h"
#include "pdf/viewing/PDFSheetView.h"
#include "tests/support/Report.h"
#include "tests/support/TestPDFs.h"
#include "tests/views/ShownWindow.h"

#include <QAccessible>
#include <QTest>

using namespace Qt::StringLiterals;

class TestPDFToolbarControls final : public QObject {
    Q_OBJECT

private:
    static SegmentedControl *picker(const ShownWindow &w)
    {
        const auto all = w.window.findChildren<SegmentedControl *>();
        for (SegmentedControl *control : all) {
            if (control->isVisible())
                return control;
        }
        return nullptr;
    }

private Q_SLOTS:
    void theyComeAndGoWithThePDF()
    {
        ShownWindow w;
        QVERIFY(!w.control(u"Convert to Guitar Pro"_s));
        w.openPDF();
        QVERIFY(w.control(u"Open"_s) && w.control(u"Convert to Guitar Pro"_s) && picker(w));
        report(w.controller.pdfDocument, nullptr);
        QVERIFY(!w.control(u"Convert to Guitar Pro"_s));
    }

    void aNumberLaysTheGridOutAtOnce()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(20));
        for (const int pages : { 6, 1, 3, 5, 4, 2 }) {
            w.click(QString::number(pages));
            QCOMPARE(w.controller.pdfPagesAcross.value(), pages);
            QCOMPARE(w.window.findChild<PDFSheetView *>()->grid().columns(), pages);
            QCOMPARE(w.world.defaults()->integer(u"pdfPagesAcross"_s), pages);
        }
        QVERIFY(w.sent().isEmpty());
    }

    void thePickerFollowsTheController()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(20));
        QCOMPARE(picker(w)->shown(), 1);
        int assignments = 0;
        w.controller.pdfPagesAcross.onChange(&w.window, [&assignments](int) { ++assignments; });
        w.controller.pdfPagesAcross = 5;
        QCOMPARE(picker(w)->shown(), 4);
        QCOMPARE(assignments, 1);
    }

    void namesAndTooltips()
    {
        ShownWindow w;
        w.openPDF();
        QCOMPARE(accessibleName(picker(w)), u"Pages"_s);
        QCOMPARE(QAccessible::queryAccessibleInterface(picker(w))->role(), QAccessible::Grouping);
        QCOMPARE(picker(w)->toolTip(), u"How many pages to show side by side"_s);
        auto *convert = w.control<Button>(u"Convert to Guitar Pro"_s);
        QCOMPARE(convert->iconName(), u"wand.and.stars"_s);
        QCOMPARE(convert->toolTip(), u"Read the notation with Audiveris and open it as an interactive score (beta)"_s);
    }

    void aSpinnerStandsInForTheButton()
    {
        ShownWindow w;
        w.openPDF();
        auto *spinner = w.window.findChild<Spinner *>();
        QVERIFY(!spinner->isVisible());
        const QPoint before = picker(w)->pos();
        report(w.controller.converting, true);
        QVERIFY(!w.control(u"Convert to Guitar Pro"_s));
        QVERIFY(spinner->isVisible());
        QCOMPARE(spinner->toolTip(), u"Reading the sheet music…"_s);
        QCOMPARE(accessibleName(spinner), u"Reading the sheet music…"_s);
        QCoreApplication::processEvents();
        QCOMPARE(picker(w)->pos(), before);
        const QImage first = spinner->grab().toImage();
        QTRY_VERIFY2(spinner->grab().toImage() != first, "it does not turn");
        report(w.controller.converting, false);
        QVERIFY(w.control(u"Convert to Guitar Pro"_s));
        QVERIFY(!spinner->isVisible());
    }

    void theSpinnerTellsHowFarItIs()
    {
        ShownWindow w;
        w.openPDF();
        auto *spinner = w.window.findChild<Spinner *>();
        report(w.controller.converting, true);
        report(w.controller.conversionProgress, PDFConverter::Progress{ .page = 2, .pages = 5, .step = {} });
        QCOMPARE(spinner->toolTip(), u"Reading the sheet music…\nPreparing page 2 of 5, for 0:00"_s);
        QCOMPARE(accessibleName(spinner), u"Reading the sheet music…"_s);
        QCOMPARE(spinner->accessibleDescription(), u"Preparing page 2 of 5, for 0:00"_s);
        report(w.controller.conversionProgress, PDFConverter::Progress{ .step = u"STEM_SEEDS"_s });
        QVERIFY(spinner->toolTip().contains(u"Audiveris is reading: stem seeds (step 6 of 20), for 0:0"_s));
        QTRY_VERIFY2(!spinner->toolTip().endsWith(u"0:00"_s), "time stands still");
        report(w.controller.converting, false);
        report(w.controller.converting, true);
        QCOMPARE(spinner->toolTip(), u"Reading the sheet music…"_s);
    }

    void theButtonConverts()
    {
        // Either it begins, or the alert says that there is nothing to do it with.
        ShownWindow w;
        w.openPDF();
        w.click(u"Convert to Guitar Pro"_s);
        QVERIFY(w.controller.converting || w.controller.conversionError.value());
    }
};

QTEST_MAIN(TestPDFToolbarControls)
#include "test_pdf_toolbar_controls.moc"
