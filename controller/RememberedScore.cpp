#include "controller/RememberedScore.h"

#include "controller/SpeedRange.h"
#include "controller/ZoomRange.h"

#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QJsonObject trackToJson(const TrackInfo &track)
{
    return { { u"visible"_s, track.visible }, { u"mute"_s, track.mute }, { u"solo"_s, track.solo },
        { u"volume"_s, track.volume } };
}

TrackInfo trackFromJson(int id, const QJsonObject &object)
{
    TrackInfo track{ .id = id };
    track.visible = object[u"visible"_s].toBool(track.visible);
    track.mute = object[u"mute"_s].toBool(track.mute);
    track.solo = object[u"solo"_s].toBool(track.solo);
    track.volume = std::clamp(object[u"volume"_s].toDouble(track.volume), 0.0, 1.0);
    return track;
}

} // namespace

QJsonObject RememberedScore::toJson() const
{
    QJsonArray list;
    for (const TrackInfo &track : tracks)
        list.append(trackToJson(track));
    QJsonObject object{ { u"tempoPercent"_s, tempoPercent }, { u"zoom"_s, zoom },
        { u"horizontalLayout"_s, horizontalLayout }, { u"looping"_s, looping }, { u"metronome"_s, metronome },
        { u"countIn"_s, countIn }, { u"position"_s, position }, { u"tracks"_s, list } };
    if (range)
        object.insert(u"range"_s, QJsonObject::fromVariantMap(range->toMap()));
    return object;
}

RememberedScore RememberedScore::fromJson(const QJsonObject &object)
{
    RememberedScore score;
    score.tempoPercent
        = std::clamp(object[u"tempoPercent"_s].toDouble(score.tempoPercent), SpeedRange::slowest, SpeedRange::fastest);
    score.zoom = std::clamp(object[u"zoom"_s].toDouble(score.zoom), ZoomRange::smallest, ZoomRange::largest);
    score.horizontalLayout = object[u"horizontalLayout"_s].toBool();
    score.looping = object[u"looping"_s].toBool();
    score.metronome = object[u"metronome"_s].toBool();
    score.countIn = object[u"countIn"_s].toBool();
    score.position = std::max(object[u"position"_s].toDouble(), 0.0);
    score.range = MarkedRange::fromMap(object[u"range"_s].toObject().toVariantMap());
    const QJsonArray list = object[u"tracks"_s].toArray();
    for (const QJsonValue track : list)
        score.tracks.append(trackFromJson(int(score.tracks.size()), track.toObject()));
    return score;
}
