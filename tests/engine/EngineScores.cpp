#include "tests/engine/EngineScores.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace EngineScores {
namespace {

QDir samples() { return { qEnvironmentVariable("QUAVERLY_SAMPLES") }; }

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

const QString melodyNote
    = u"<note><pitch><step>%1</step><octave>4</octave></pitch><duration>1</duration><type>quarter</type></note>"_s;
const QString drumNote
    = u"<note><unpitched><display-step>C</display-step><display-octave>5</display-octave></unpitched>"
      "<duration>1</duration><instrument id=\"%1-drum\"/><type>quarter</type></note>"_s;

QString measure(int number, const Tune &tune, const QString &part)
{
    QString music;
    if (number == 1) {
        music
            += u"<attributes><divisions>1</divisions><time><beats>4</beats><beat-type>4</beat-type></time></attributes>"
               "<direction><direction-type><metronome><beat-unit>quarter</beat-unit><per-minute>%1</per-minute>"
               "</metronome></direction-type><sound tempo=\"%1\"/></direction>"_s.arg(tune.tempo);
    }
    for (const QChar step : u"CEGE"_s)
        music += tune.drums ? drumNote.arg(part) : melodyNote.arg(step);
    return u"<measure number=\"%1\">%2</measure>"_s.arg(QString::number(number), music);
}

QString partEntry(const QString &id, const QString &name, bool drums)
{
    const QString drum
        = u"<score-instrument id=\"%1-drum\"><instrument-name>Snare</instrument-name></score-instrument>"
          "<midi-instrument id=\"%1-drum\"><midi-channel>10</midi-channel><midi-unpitched>39</midi-unpitched>"
          "</midi-instrument>"_s;
    return u"<score-part id=\"%1\"><part-name>%2</part-name>%3</score-part>"_s.arg(
        id, name, drums ? drum.arg(id) : QString());
}

} // namespace

QByteArray musicXml(const Tune &tune)
{
    QString list;
    QString parts;
    for (qsizetype part = 0; part < tune.parts.size(); ++part) {
        const QString id = u"P%1"_s.arg(part + 1);
        list += partEntry(id, tune.parts.at(part), tune.drums);
        parts += u"<part id=\"%1\">"_s.arg(id);
        for (int bar = 1; bar <= tune.bars; ++bar)
            parts += measure(bar, tune, id);
        parts += u"</part>"_s;
    }
    return u"<?xml version=\"1.0\" encoding=\"UTF-8\"?><score-partwise "
           u"version=\"4.0\"><work><work-title>%1</work-title>"
           "</work><identification><creator type=\"composer\">%2</creator></identification><part-list>%3</part-list>%4"
           "</score-partwise>"_s.arg(tune.title, tune.composer, list, parts)
               .toUtf8();
}

QByteArray ferry(const QString &kind)
{
    return contents(qEnvironmentVariable("QUAVERLY_SCORES") + u"/ferry."_s + kind);
}

QByteArray sample(const QString &name) { return contents(samples().filePath(name)); }

bool haveSamples() { return samples().exists(u"canon.gp5"_s); }

} // namespace EngineScores
