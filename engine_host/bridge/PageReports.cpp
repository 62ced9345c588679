#include "engine_host/bridge/PageReports.h"

#include <cmath>

using namespace Qt::StringLiterals;

PageReports::PageReports(QObject *parent)
    : QObject(parent)
{
}

QString PageReports::name() { return u"host"_s; }

void PageReports::reportAudioOutput(bool working) { Q_EMIT audioOutputChanged(working); }

void PageReports::reportSynthLost() { Q_EMIT synthLost(); }

void PageReports::reportSections(const QVariantList &sections)
{
    QList<ScoreSection> list;
    for (const QVariant &entry : sections) {
        const QVariantMap section = entry.toMap();
        bool isNumber = false;
        const double start = section.value(u"start"_s).toDouble(&isNumber);
        const QString title = section.value(u"title"_s).toString();
        if (isNumber && std::isfinite(start) && start >= 0 && !title.isEmpty())
            list.append({ title, start });
    }
    Q_EMIT sectionsChanged(list);
}

void PageReports::reportLoopSpan(double startMs, double endMs)
{
    if (std::isfinite(startMs) && std::isfinite(endMs) && startMs >= 0 && endMs > startMs)
        Q_EMIT loopSpanChanged({ startMs, endMs });
}

void PageReports::reportLoopWanted() { Q_EMIT loopWanted(); }

void PageReports::setLook(const QString &name, const QVariant &value)
{
    m_look.insert(name, value);
    Q_EMIT lookChanged();
}

void PageReports::setCountsInPasses(bool on)
{
    m_countsInPasses = on;
    Q_EMIT countsInPassesChanged();
}

void PageReports::pressKey(const QString &key) { Q_EMIT keyPressed(key); }

void PageReports::reportRange(const QVariantMap &range) { Q_EMIT rangeChanged(MarkedRange::fromMap(range)); }

void PageReports::reportPrintPrepared(bool succeeded) { Q_EMIT printPrepared(succeeded); }

void PageReports::chooseRange(const MarkedRange &range) { Q_EMIT rangeWanted(range.toMap()); }

void PageReports::showFretboard(bool shown, bool leftHanded) { Q_EMIT fretboardWanted(shown, leftHanded); }

void PageReports::wantPrint(double width, double height) { Q_EMIT printWanted(width, height); }

void PageReports::endPrint() { Q_EMIT printEnded(); }
