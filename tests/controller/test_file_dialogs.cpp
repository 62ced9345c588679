#include "controller/FileDialogs.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QUrl>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

/// Calls `look` with the panel that `open` shows, then closes it, unless `look` has.
void whileShown(const std::function<void()> &open, const std::function<void(QFileDialog &)> &look)
{
    bool looked = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        auto *panel = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        if (!panel || !panel->isVisible() || looked)
            return;
        looked = true;
        look(*panel);
        if (panel->isVisible())
            panel->reject();
    });
    timer.start(0);
    open();
    QVERIFY(looked);
}

void put(const QString &path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
}

void theFilterCanBeReadAsAWhole(QFileDialog &panel, const QString &text)
{
    const auto *filter = panel.findChild<QComboBox *>(u"fileTypeCombo"_s);
    QVERIFY(filter);
    QCOMPARE(filter->currentText(), text);
    QVERIFY(filter->fontMetrics().horizontalAdvance(text) < filter->width());
}

/// Types the path and presses the panel's button.
void choose(QFileDialog &panel, const QString &path)
{
    auto *name = panel.findChild<QLineEdit *>(u"fileNameEdit"_s);
    QVERIFY(name);
    name->setText(path);
    auto *buttons = panel.findChild<QDialogButtonBox *>();
    QVERIFY(buttons);
    for (QAbstractButton *button : buttons->buttons()) {
        if (buttons->buttonRole(button) == QDialogButtonBox::AcceptRole)
            button->click();
    }
}

} // namespace

/// Qt's own panels, which are shown where the desktop has none.
class TestFileDialogs final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFilterOfTheOpenPanelIsItsName()
    {
        FileDialogs dialogs;
        const QStringList extensions{ u"gp"_s, u"gp3"_s, u"gp4"_s, u"gp5"_s, u"gpx"_s, u"xml"_s, u"musicxml"_s,
            u"mxl"_s, u"pdf"_s };
        whileShown([&] { QVERIFY(!dialogs.chooseFileToOpen(extensions)); },
            [](QFileDialog &panel) { theFilterCanBeReadAsAWhole(panel, u"Scores and sheet music"_s); });
    }

    void theFilterOfTheSavePanelIsItsName()
    {
        FileDialogs dialogs;
        whileShown([&] { QVERIFY(!dialogs.chooseFileToSave(u"Song.gp"_s, u"gp"_s)); },
            [](QFileDialog &panel) { theFilterCanBeReadAsAWhole(panel, u"Guitar Pro files"_s); });
    }

    /// Names are matched by the patterns that are not shown.
    void theOpenPanelStillListsScoresOnly()
    {
        QTemporaryDir folder;
        for (const QString &name : { u"song.gp5"_s, u"LOUD.GP5"_s, u"notes.txt"_s })
            put(folder.filePath(name));
        FileDialogs dialogs;
        whileShown([&] { QVERIFY(!dialogs.chooseFileToOpen({ u"gp5"_s })); },
            [&](QFileDialog &panel) {
                panel.setDirectory(folder.path());
                const auto *list = panel.findChild<QAbstractItemView *>(u"listView"_s);
                QVERIFY(list);
                const auto names = [list] {
                    QStringList result;
                    for (int row = 0; row < list->model()->rowCount(list->rootIndex()); ++row)
                        result << list->model()->index(row, 0, list->rootIndex()).data().toString();
                    result.sort();
                    return result;
                };
                QTRY_COMPARE(names(), (QStringList{ u"LOUD.GP5"_s, u"song.gp5"_s }));
            });
    }

    void whatIsChosenIsOpened()
    {
        const QTemporaryDir folder;
        const QString song = folder.filePath(u"song.gp5"_s);
        put(song);
        FileDialogs dialogs;
        std::optional<QUrl> chosen;
        whileShown([&] { chosen = dialogs.chooseFileToOpen({ u"gp5"_s }); },
            [&](QFileDialog &panel) {
                QCOMPARE(panel.windowTitle(), u"Open"_s);
                QCOMPARE(panel.fileMode(), QFileDialog::ExistingFile);
                choose(panel, song);
            });
        QCOMPARE(chosen, QUrl::fromLocalFile(song));
    }

    void aNameWithoutAnEndingGetsOne()
    {
        const QTemporaryDir folder;
        FileDialogs dialogs;
        std::optional<QUrl> chosen;
        whileShown([&] { chosen = dialogs.chooseFileToSave(u"Song.gp"_s, u"gp"_s); },
            [&](QFileDialog &panel) {
                QCOMPARE(panel.windowTitle(), u"Export as Guitar Pro"_s);
                QCOMPARE(panel.acceptMode(), QFileDialog::AcceptSave);
                const auto *name = panel.findChild<QLineEdit *>(u"fileNameEdit"_s);
                QVERIFY(name);
                QCOMPARE(name->text(), u"Song.gp"_s);
                choose(panel, folder.filePath(u"Other"_s));
            });
        QCOMPARE(chosen, QUrl::fromLocalFile(folder.filePath(u"Other.gp"_s)));
    }
};

QTEST_MAIN(TestFileDialogs)
#include "test_file_dialogs.moc"
