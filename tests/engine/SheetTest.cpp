#include "tests/engine/SheetTest.h"

#include <QWidget>

using namespace Qt::StringLiterals;

void SheetTest::redraw(const QString &script)
{
    const qsizetype drawn = m_session->count(u"rendered"_s);
    m_session->call(script);
    QVERIFY(m_session->waitForCount(u"rendered"_s, drawn + 1));
}

int SheetTest::ranges() { return m_session->valueOf(u"document.querySelectorAll('.range').length"_s).toInt(); }

int SheetTest::scrolled() { return m_session->valueOf(u"document.getElementById('viewport').scrollTop"_s).toInt(); }

bool SheetTest::cursorInView()
{
    return m_session
        ->valueOf(u"(() => { const box = document.querySelector('.at-cursor-bar').getBoundingClientRect(); "
                  "return box.top >= -1 && box.top < innerHeight / 2 && box.left < innerWidth && box.right > 0; })()"_s)
        .toBool();
}

QPoint SheetTest::beatAt(int bar, int beat)
{
    const QVariantList place
        = m_session
              ->valueOf(
                  u"(() => { const heads = [...document.querySelectorAll('#notation .at-surface g[class^=b]')]"
                  ".map((group) => group.getBoundingClientRect()).filter((box) => box.width > 0); "
                  "const tops = Math.min(...heads.map((box) => box.top)); "
                  "const line = heads.filter((box) => box.top < tops + 60).sort((a, b) => a.left - b.left); "
                  "const box = line[%1]; return [box.left + 4, box.top + box.height / 2]; })()"_s.arg(bar * 4 + beat))
              .toList();
    return place.size() == 2 ? QPoint(int(place.at(0).toDouble()), int(place.at(1).toDouble())) : QPoint();
}

QWidget *SheetTest::target() { return m_session->host().view()->focusProxy(); }

void SheetTest::click(QPoint at, Qt::KeyboardModifiers modifiers)
{
    QTest::mouseClick(target(), Qt::LeftButton, modifiers, at);
}

void SheetTest::drag(QPoint from, QPoint to)
{
    QTest::mousePress(target(), Qt::LeftButton, {}, from);
    for (int step = 1; step <= 4; ++step)
        QTest::mouseMove(target(), from + (to - from) * step / 4, 20);
    QTest::mouseRelease(target(), Qt::LeftButton, {}, to);
}
