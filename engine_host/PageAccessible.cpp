#include "engine_host/PageAccessible.h"

#include "engine_host/EngineView.h"

#include <QAccessible>
#include <QAccessibleWidget>

using namespace Qt::StringLiterals;

namespace {

/// One thing that has the focus when its widget has it.
class Surface final : public QAccessibleWidget {
public:
    explicit Surface(QWidget *surface)
        : QAccessibleWidget(surface, QAccessible::WebDocument, EngineView::tr("Score"))
    {
    }

    int childCount() const override { return 0; }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
};

QAccessibleInterface *makeView(const QString &className, QObject *object)
{
    auto *view = className == "EngineView"_L1 ? qobject_cast<EngineView *>(object) : nullptr;
    return view ? new QAccessibleWidget(view) : nullptr;
}

} // namespace

namespace PageAccessible {

bool isLeftToChromium()
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0) // goes when Debian 12 is dropped, together with the rest of this file
    return true;
#else
    return qEnvironmentVariableIsSet("QTWEBENGINE_ENABLE_LINUX_ACCESSIBILITY");
#endif
}

void install() { [[maybe_unused]] static const bool installed = (QAccessible::installFactory(makeView), true); }

void describe(QWidget &surface)
{
    // Qt has registered its own for it already, and removes whatever is registered when it takes another surface.
    QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(QAccessible::queryAccessibleInterface(&surface)));
    QAccessible::registerAccessibleInterface(new Surface(&surface));
}

} // namespace PageAccessible
