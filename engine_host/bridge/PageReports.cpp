#include "engine_host/bridge/PageReports.h"

using namespace Qt::StringLiterals;

PageReports::PageReports(QObject *parent)
    : QObject(parent)
{
}

QString PageReports::name() { return u"host"_s; }

void PageReports::reportAudioOutput(bool working) { Q_EMIT audioOutputChanged(working); }

void PageReports::reportSynthLost() { Q_EMIT synthLost(); }
