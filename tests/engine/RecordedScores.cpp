#include "tests/engine/RecordedScores.h"

#include <QDataStream>
#include <QFile>
#include <QIODevice>
#include <QList>
#include <QPair>

#include <cmath>
#include <numbers>
#include <zip.h>

using namespace Qt::StringLiterals;

namespace RecordedScores {
namespace {

constexpr int tracks = 2;
constexpr int beatsInABar = 4;
const QString backingTrackPath = u"Content/Assets/recording"_s;

QString automation(const QString &type, const QString &value)
{
    return u"<Automation><Type>%1</Type><Linear>false</Linear><Bar>0</Bar><Position>0</Position><Visible>true</Visible>"
           "<Value>%2</Value></Automation>"_s.arg(type, value);
}

QString track(int index)
{
    return u"<Track id=\"%1\"><Name>Guitar %1</Name><Staves><Staff><Properties><Property name=\"Tuning\">"
           "<Pitches>40 45 50 55 59 64</Pitches></Property></Properties></Staff></Staves><Sounds><Sound><Name>a</Name>"
           "<Path>a</Path><Role>Factory</Role><MIDI><LSB>0</LSB><MSB>0</MSB><Program>25</Program></MIDI></Sound></"
           "Sounds>"
           "</Track>"_s.arg(index);
}

QString numbers(int first, int count)
{
    QStringList all;
    for (int number = first; number < first + count; ++number)
        all << QString::number(number);
    return all.join(u' ');
}

QByteArray notation(int bars)
{
    QString masterBars;
    QString staffBars;
    QString voices;
    QString beats;
    QString notes;
    for (int bar = 0; bar < bars; ++bar)
        masterBars += u"<MasterBar><Time>4/4</Time><Bars>%1</Bars></MasterBar>"_s.arg(numbers(bar * tracks, tracks));
    for (int bar = 0; bar < bars * tracks; ++bar) {
        staffBars += u"<Bar id=\"%1\"><Clef>G2</Clef><Voices>%1 -1 -1 -1</Voices></Bar>"_s.arg(bar);
        voices += u"<Voice id=\"%1\"><Beats>%2</Beats></Voice>"_s.arg(
            QString::number(bar), numbers(bar * beatsInABar, beatsInABar));
    }
    for (int beat = 0; beat < bars * tracks * beatsInABar; ++beat) {
        beats += u"<Beat id=\"%1\"><Rhythm ref=\"0\"/><Notes>%1</Notes></Beat>"_s.arg(beat);
        notes += u"<Note id=\"%1\"><Properties><Property name=\"Fret\"><Fret>3</Fret></Property><Property "
                 "name=\"String\"><String>2</String></Property></Properties></Note>"_s.arg(beat);
    }
    const QString syncPoint = u"<BarIndex>0</BarIndex><BarOccurrence>0</BarOccurrence><FrameOffset>0</FrameOffset>"_s;
    return u"<GPIF><GPVersion>7</GPVersion><Score><Title>Recorded</Title><Artist>Nobody</Artist></Score><MasterTrack>"
           "<Tracks>%1</Tracks><Automations>%2%3</Automations></MasterTrack><BackingTrack><Enabled>true</Enabled>"
           "<Source>Local</Source><AssetId>0</AssetId><FramePadding>0</FramePadding></BackingTrack><Tracks>%4</Tracks>"
           "<MasterBars>%5</MasterBars><Bars>%6</Bars><Voices>%7</Voices><Beats>%8</Beats><Notes>%9</Notes>"_s
               .arg(numbers(0, tracks), automation(u"Tempo"_s, u"120 2"_s), automation(u"SyncPoint"_s, syncPoint),
                   track(0) + track(1), masterBars, staffBars, voices, beats, notes)
               .toUtf8()
        + u"<Rhythms><Rhythm id=\"0\"><NoteValue>Quarter</NoteValue></Rhythm></Rhythms><Assets><Asset id=\"0\">"
          "<EmbeddedFilePath>%1</EmbeddedFilePath></Asset></Assets></GPIF>"_s.arg(backingTrackPath)
              .toUtf8();
}

/// A zip archive of what stays valid until this returns.
QByteArray zipped(const QList<QPair<QString, QByteArray>> &files)
{
    zip_source_t *target = zip_source_buffer_create(nullptr, 0, 0, nullptr);
    zip_source_keep(target);
    zip_t *archive = zip_open_from_source(target, ZIP_TRUNCATE, nullptr);
    for (const auto &[name, bytes] : files) {
        zip_source_t *source = zip_source_buffer(archive, bytes.constData(), zip_uint64_t(bytes.size()), 0);
        zip_file_add(archive, name.toUtf8().constData(), source, ZIP_FL_ENC_UTF_8);
    }
    QByteArray bytes;
    if (zip_close(archive) == 0 && zip_source_open(target) == 0) {
        zip_source_seek(target, 0, SEEK_END);
        bytes.resize(qsizetype(zip_source_tell(target)));
        zip_source_seek(target, 0, SEEK_SET);
        zip_source_read(target, bytes.data(), zip_uint64_t(bytes.size()));
        zip_source_close(target);
    }
    zip_source_free(target);
    return bytes;
}

} // namespace

QByteArray tone(double seconds)
{
    constexpr quint32 rate = 11025;
    constexpr double pitch = 220;
    const auto count = quint32(seconds * rate);
    const quint32 dataLength = count * sizeof(qint16);
    QByteArray file;
    QDataStream stream(&file, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.writeRawData("RIFF", 4);
    stream << quint32(36 + dataLength);
    stream.writeRawData("WAVEfmt ", 8);
    stream << quint32(16) << quint16(1) << quint16(1) << rate << quint32(rate * sizeof(qint16)) << quint16(2)
           << quint16(16);
    stream.writeRawData("data", 4);
    stream << dataLength;
    for (quint32 frame = 0; frame < count; ++frame)
        stream << qint16(std::lround(10900 * std::sin(2 * std::numbers::pi * pitch * frame / rate)));
    return file;
}

QByteArray encoded(const QString &name)
{
    QFile file(qEnvironmentVariable("QUAVERLY_RECORDINGS") + u'/' + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray score(const QByteArray &backingTrack, int bars)
{
    return zipped(
        { { u"VERSION"_s, "7.0" }, { u"Content/score.gpif"_s, notation(bars) }, { backingTrackPath, backingTrack } });
}

} // namespace RecordedScores
