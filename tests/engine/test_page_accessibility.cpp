#include "engine_host/PageAccessible.h"
#include "tests/engine/EngineScores.h"
#include "tests/engine/PageTest.h"

#include <QAccessible>
#include <QPushButton>
#include <QWebEngineView>

using namespace Qt::StringLiterals;

namespace {

/// The names of all parts of the page that say they have the focus.
QStringList focused(const QAccessibleInterface *part)
{
    QStringList names;
    for (int i = 0; part && i < part->childCount(); ++i) {
        const QAccessibleInterface *child = part->child(i);
        if (child && child->state().focused)
            names << u"%1 \"%2\""_s.arg(int(child->role())).arg(child->text(QAccessible::Name));
        names << focused(child);
    }
    return names;
}

} // namespace

/// What assistive tools are told of the page, where they are told of it.
class TestPageAccessibility final : public PageTest {
    Q_OBJECT

    QStringList focusedInPage() { return focused(QAccessible::queryAccessibleInterface(m_session->host().view())); }

protected:
    bool prepare() override
    {
        // As when a screen reader starts. Chromium has to be there already, or it does not hear of it.
        QAccessible::setActive(true);
        return true;
    }

private Q_SLOTS:
    void theFocusIsInOnePlace()
    {
        if (!PageAccessible::isLeftToChromium())
            QSKIP("Chromium does not describe the page");
        QVERIFY(m_session->open(EngineScores::musicXml({})));
        QWidget *view = m_session->host().view();
        QPushButton elsewhere(u"elsewhere"_s);
        elsewhere.show();
        for (int turn = 0; turn < 2; ++turn) {
            view->activateWindow();
            view->setFocus();
            QVERIFY(m_session->waitFor([&] { return focusedInPage().size() == 1; }));
            elsewhere.activateWindow();
            elsewhere.setFocus();
            QVERIFY(m_session->waitFor([&] { return elsewhere.hasFocus(); }));
            m_session->waitFor([&] { return focusedInPage().isEmpty(); }, 5000);
            QCOMPARE(focusedInPage().join(u' '), QString());
        }
    }

    void keysScrollWhileTheFocusIsElsewhere()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 200 })));
        QPushButton elsewhere(u"elsewhere"_s);
        elsewhere.show();
        elsewhere.activateWindow();
        QVERIFY(m_session->waitFor([&] { return !m_session->valueOf(u"document.hasFocus()"_s).toBool(); }));
        QTest::keyClick(m_session->host().view()->focusProxy(), Qt::Key_PageDown);
        QVERIFY(m_session->waitFor(
            [&] { return m_session->valueOf(u"document.getElementById('viewport').scrollTop"_s).toInt() > 0; }));
    }
};

int main(int argc, char *argv[]) { return runEngineTest<TestPageAccessibility>(argc, argv); }
#include "test_page_accessibility.moc"
