#include "tests/views/ShownWindow.h"

#include "tests/support/OpenedPDF.h"
#include "tests/support/TestPDFs.h"
#include "views/ContentView.h"

#include <QAccessible>
#include <QLabel>
#include <QTest>

using namespace Qt::StringLiterals;

ShownWindow::ShownWindow(const std::function<void(ShownWindow &)> &prepare, QSize size)
    : controller(world.make())
    , content(new ContentView(controller))
{
    window.setCentralWidget(content);
    window.resize(size);
    if (prepare)
        prepare(*this);
    window.show();
    if (!QTest::qWaitForWindowActive(&window))
        qFatal("the window does not come up");
    QCoreApplication::processEvents();
    world.engine->take();
}

ShownWindow::~ShownWindow() = default;

void ShownWindow::score(const QString &title, const QStringList &tracks, bool backingTrack)
{
    QVariantList list;
    for (const QString &name : tracks)
        list << QVariantMap{ { u"index"_s, int(list.size()) }, { u"name"_s, name } };
    controller.handle({ { u"type"_s, u"score"_s }, { u"title"_s, title }, { u"artist"_s, QString() },
        { u"tracks"_s, list }, { u"hasBackingTrack"_s, backingTrack } });
    QCoreApplication::processEvents();
}

void ShownWindow::position(double currentTime, double endTime)
{
    controller.handle({ { u"type"_s, u"position"_s }, { u"currentTime"_s, currentTime }, { u"endTime"_s, endTime } });
}

void ShownWindow::playerReady() { controller.handle({ { u"type"_s, u"playerReady"_s } }); }

void ShownWindow::openPDF(const QByteArray &file)
{
    if (!::openPDF(controller, world.file(u"pages.pdf"_s, file.isEmpty() ? TestPDFs::colored(1) : file)))
        qFatal("the document does not open");
    QCoreApplication::processEvents();
}

QWidget *ShownWindow::control(const QString &name) const
{
    const QWidgetList all = window.findChildren<QWidget *>();
    for (QWidget *widget : all) {
        if (widget->isVisible() && !qobject_cast<QLabel *>(widget) && accessibleName(widget) == name)
            return widget;
    }
    return nullptr;
}

void ShownWindow::click(const QString &name)
{
    QWidget *widget = control(name);
    if (!widget)
        qFatal("no control is called %s", qPrintable(name));
    QTest::mouseClick(widget, Qt::LeftButton);
}

QWidget *ShownWindow::label(const QString &text) const
{
    const QList<QLabel *> labels = window.findChildren<QLabel *>();
    for (QLabel *label : labels) {
        if (label->isVisible() && label->text() == text)
            return label;
    }
    return nullptr;
}

QString accessibleName(QWidget *widget)
{
    const QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(widget);
    return interface ? interface->text(QAccessible::Name) : QString();
}
