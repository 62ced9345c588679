#include "engine_host/bridge/BridgeCalls.h"
#include "tests/engine/EngineScores.h"
#include "tests/engine/PageTest.h"
#include "tests/engine/RecordedScores.h"

using namespace Qt::StringLiterals;

namespace {

/// Below this peak nothing is heard: it is a thousandth of full scale.
constexpr double silence = 0.001;
constexpr double audible = 0.01;

} // namespace

/// What comes out of the audio output, measured where the page hands it over.
class TestPageSound final : public PageTest {
    Q_OBJECT

private Q_SLOTS:
    void playingIsHeard()
    {
        play();
        QVERIFY(becomesAudible());
    }

    void masterVolumeRulesEverything()
    {
        m_session->call(BridgeCalls::setMasterVolume(0));
        play();
        QVERIFY(staysSilent());
        m_session->call(BridgeCalls::setMasterVolume(0.8));
        QVERIFY(becomesAudible());
    }

    void mutedTracksAreSilent()
    {
        m_session->call(BridgeCalls::setTrackMute(0, true));
        m_session->call(BridgeCalls::setTrackMute(1, true));
        play();
        QVERIFY(staysSilent());
        m_session->call(BridgeCalls::setTrackMute(1, false));
        QVERIFY(becomesAudible());
    }

    void eachOfSeveralDrumTracksHasItsOwnMute()
    {
        QVERIFY(
            m_session->open(EngineScores::musicXml({ .parts = { u"Snare"_s, u"More"_s }, .drums = true, .bars = 60 })));
        m_session->call(BridgeCalls::setTrackMute(0, true));
        play();
        QVERIFY(becomesAudible());
        m_session->call(BridgeCalls::setTrackMute(1, true));
        QVERIFY(becomesSilent());
        m_session->call(BridgeCalls::setTrackMute(0, false));
        QVERIFY(becomesAudible());
    }

    void theBackingTrackIsHeard()
    {
        QVERIFY(m_session->open(recordedScore()));
        QCOMPARE(m_session->last(u"score"_s).value(u"hasBackingTrack"_s), QVariant(true));
        play();
        QVERIFY(becomesAudible());
        QVERIFY(m_session->waitFor([&] { return m_session->position() > 1500; }));
        const double before = m_session->position();
        const qsizetype told = m_session->count(u"position"_s);
        m_session->call(BridgeCalls::setSoundSource(true));
        QVERIFY(m_session->waitFor([&] { return m_session->isPlaying() && m_session->position() > before + 300; }));
        for (const EngineSession::Heard &one : m_session->heard(u"position"_s).sliced(told)) {
            const double reached = one.message.value(u"currentTime"_s).toDouble();
            QVERIFY2(reached > before - 100, qPrintable(QString::number(reached)));
        }
        QVERIFY(becomesAudible());
        QCOMPARE(m_session->count(u"playerReady"_s), 1);
        m_session->call(BridgeCalls::setSoundSource(false));
        const double after = m_session->position();
        QVERIFY(m_session->waitFor([&] { return m_session->isPlaying() && m_session->position() > after + 300; }));
    }

    void masterVolumeRulesABackingTrackWithItsMetronome()
    {
        QVERIFY(m_session->open(recordedScore()));
        m_session->call(BridgeCalls::setMetronome(true));
        m_session->call(BridgeCalls::setMasterVolume(0));
        play();
        QVERIFY(staysSilent());
        m_session->call(BridgeCalls::setMasterVolume(1.0));
        QVERIFY(becomesAudible());
    }

    void aBackingTrackGoesOnAtAnotherSpeedFromWhereItIs()
    {
        QVERIFY(m_session->open(recordedScore()));
        play();
        QVERIFY(m_session->waitFor([&] { return m_session->position() > 2000; }));
        const double before = m_session->position();
        const qsizetype told = m_session->count(u"position"_s);
        m_session->call(BridgeCalls::setSpeed(0.5));
        QVERIFY(m_session->waitFor([&] { return m_session->position() > before + 500; }));
        const auto since = m_session->heard(u"position"_s).sliced(told);
        for (const EngineSession::Heard &one : since)
            QVERIFY(one.message.value(u"currentTime"_s).toDouble() > before - 20);
        // Half a second of the score takes a second.
        const double reached = m_session->position() - since.constFirst().message.value(u"currentTime"_s).toDouble();
        const qint64 took = m_session->heard(u"position"_s).constLast().at - since.constFirst().at;
        QVERIFY2(took > 1.6 * reached && took < 2.6 * reached, qPrintable(u"%1 in %2 ms"_s.arg(reached).arg(took)));
    }

    void aBackingTrackStartsOverInALoop()
    {
        QVERIFY(m_session->open(recordedScore()));
        const double end = m_session->last(u"position"_s).value(u"endTime"_s).toDouble();
        QVERIFY(end > 60000);
        m_session->call(BridgeCalls::setLooping(true));
        m_session->call(BridgeCalls::seekToTime(end - 1500));
        play();
        QVERIFY(m_session->waitFor([&] { return m_session->position() > end - 1000; }));
        QVERIFY(m_session->waitFor([&] { return m_session->position() < 5000 && m_session->position() > 1000; }));
        QVERIFY(m_session->isPlaying());
        QVERIFY(becomesAudible());
        QCOMPARE(m_session->count(u"state"_s), 1); // it never stopped
    }

    void theSynthesizerTakesThePlaceOfABackingTrackThatCannotBeDecoded()
    {
        m_session->failToDecodeWaveFiles();
        const qsizetype before = m_session->count(u"score"_s);
        QVERIFY(m_session->open(recordedScore()));
        m_session->call(BridgeCalls::setTrackMute(0, true));
        play();
        QVERIFY(m_session->waitForCount(u"score"_s, before + 2));
        QVERIFY(m_session->last(u"error"_s).value(u"message"_s).toString().contains(u"out of memory"_s));
        const QList<EngineSession::Heard> scores = m_session->heard(u"score"_s);
        QCOMPARE(scores.at(before).message.value(u"hasBackingTrack"_s), QVariant(true));
        QCOMPARE(scores.at(before + 1).message.value(u"hasBackingTrack"_s), QVariant(false));
        QVERIFY(!scores.at(before + 1).message.contains(u"tracks"_s));
        QVERIFY(becomesAudible());
        QVERIFY(m_session->waitFor([&] { return m_session->isPlaying() && m_session->position() > 1000; }));
        m_session->call(BridgeCalls::setTrackMute(1, true));
        QVERIFY(becomesSilent());
        m_session->call(BridgeCalls::setSoundSource(true));
        m_session->call(BridgeCalls::setSoundSource(false));
        QVERIFY(m_session->isPlaying());
    }

    void theMixerOutlivesAChangeOfSound()
    {
        QVERIFY(m_session->open(recordedScore()));
        const int tracks = int(m_session->last(u"score"_s).value(u"tracks"_s).toList().size());
        for (int track = 0; track < tracks; ++track)
            m_session->call(BridgeCalls::setTrackVolume(track, 0));
        m_session->call(BridgeCalls::setSoundSource(true));
        play();
        QVERIFY(staysSilent());
    }

    void theMarkOutlivesAChangeOfSound()
    {
        // Where the cursor is; empty without one.
        const QString cursor
            = u"[...document.querySelectorAll('.at-cursor-beat')].map((cursor) => cursor.getBoundingClientRect()."
              "x).filter((x) => x > 0).join()"_s;
        QVERIFY(m_session->open(recordedScore()));
        for (const bool synthesized : { true, false }) {
            m_session->call(BridgeCalls::setSoundSource(synthesized));
            const QString before = m_session->valueOf(cursor).toString();
            play();
            QVERIFY(m_session->waitFor([&] { return m_session->valueOf(cursor).toString() != before; }));
            QVERIFY(!m_session->valueOf(cursor).toString().isEmpty());
            m_session->call(BridgeCalls::stop());
            QVERIFY(m_session->waitFor([&] { return !m_session->isPlaying(); }));
        }
    }

    void aSoloedTrackSilencesTheOthers()
    {
        m_session->call(BridgeCalls::setTrackVolume(0, 0));
        m_session->call(BridgeCalls::setTrackSolo(0, true));
        play();
        QVERIFY(staysSilent());
        m_session->call(BridgeCalls::setTrackSolo(1, true));
        QVERIFY(becomesAudible());
    }

    void trackVolumeIsHeard()
    {
        m_session->call(BridgeCalls::setTrackVolume(0, 0));
        m_session->call(BridgeCalls::setTrackVolume(1, 0));
        play();
        QVERIFY(staysSilent());
        m_session->call(BridgeCalls::setTrackVolume(0, 1.0));
        QVERIFY(becomesAudible());
    }

    void theMixerStartsAfreshWithAScore()
    {
        m_session->call(BridgeCalls::setTrackMute(0, true));
        m_session->call(BridgeCalls::setTrackSolo(0, true));
        m_session->call(BridgeCalls::setTrackVolume(0, 0));
        QVERIFY(m_session->open(EngineScores::musicXml({ .title = u"Other"_s, .bars = 60 })));
        play();
        QVERIFY(becomesAudible());
    }

    void theMetronomeClicks_data()
    {
        QTest::addColumn<QString>("sound");
        QTest::addColumn<QString>("mode");
        QTest::newRow("woodblock") << u"woodblock"_s << u"bar"_s;
        QTest::newRow("beep") << u"beep"_s << u"beat"_s;
        QTest::newRow("click") << u"click"_s << u"half"_s;
        QTest::newRow("tick") << u"tick"_s << u"quarter"_s;
    }

    void theMetronomeClicks()
    {
        QFETCH(QString, sound);
        QFETCH(QString, mode);
        silenceTracks();
        m_session->call(BridgeCalls::configMetronome(0.8, sound, true, mode));
        play();
        QVERIFY(staysSilent());
        m_session->call(BridgeCalls::setMetronome(true));
        QVERIFY(becomesAudible());
        m_session->call(BridgeCalls::configMetronome(0, sound, true, mode));
        QVERIFY(becomesSilent());
        m_session->call(BridgeCalls::configMetronome(0.8, sound, true, mode));
        QVERIFY(becomesAudible());
        m_session->call(BridgeCalls::setMetronome(false));
        QVERIFY(becomesSilent());
    }

    void theMetronomeGoesOnBesideASolo()
    {
        m_session->call(BridgeCalls::setTrackVolume(0, 0));
        m_session->call(BridgeCalls::setTrackSolo(0, true));
        m_session->call(BridgeCalls::setMetronome(true));
        play();
        QVERIFY(becomesAudible());
    }

    void theMetronomeOutlivesTheScore()
    {
        m_session->call(BridgeCalls::setMetronome(true));
        QVERIFY(m_session->open(EngineScores::musicXml({ .title = u"Other"_s, .bars = 60 })));
        m_session->call(BridgeCalls::setTrackMute(0, true));
        play();
        QVERIFY(becomesAudible());
    }

    void aPreviewIsHeardWhileNothingPlays()
    {
        m_session->call(BridgeCalls::configMetronome(0.7, u"beep"_s, true, u"beat"_s));
        m_session->call(BridgeCalls::previewMetronome());
        QVERIFY(becomesAudible());
        QVERIFY(!m_session->isPlaying());
        QVERIFY(becomesSilent());
    }

    void theCountInComesBeforeTheScore()
    {
        m_session->call(BridgeCalls::setCountIn(true));
        silenceTracks();
        play();
        QVERIFY(becomesAudible());
        QVERIFY(m_session->position() < 50);
        QVERIFY(m_session->waitFor([&] { return m_session->position() > 300; }));
        // A bar of four beats at 120 came first.
        const qint64 began = m_session->heard(u"state"_s).constFirst().at;
        const qint64 moved = m_session->heard(u"position"_s).constLast().at;
        QVERIFY2(moved - began > 2000, qPrintable(QString::number(moved - began)));
        m_session->call(BridgeCalls::stop());
        m_session->call(BridgeCalls::setCountIn(false));
        QVERIFY(m_session->waitFor([&] { return !m_session->isPlaying(); }));
        QVERIFY(becomesSilent()); // what is measured reaches back to the last click
        play();
        QVERIFY(staysSilent());
    }

    void aPauseEndsTheCountIn()
    {
        m_session->call(BridgeCalls::setCountIn(true));
        m_session->call(BridgeCalls::seekToTime(4000));
        silenceTracks();
        play();
        QVERIFY(becomesAudible());
        m_session->call(BridgeCalls::playPause());
        QVERIFY(m_session->waitFor([&] { return !m_session->isPlaying(); }));
        QVERIFY(becomesSilent());
        QVERIFY2(qAbs(m_session->position() - 4000) < 20, qPrintable(QString::number(m_session->position())));
    }

    void theChoiceOfSoundChangesNothingWithoutABackingTrack()
    {
        m_session->call(BridgeCalls::setSoundSource(true));
        play();
        QVERIFY(becomesAudible());
        m_session->call(BridgeCalls::setSoundSource(false));
        QVERIFY(m_session->isPlaying());
        QVERIFY(becomesAudible());
    }

private:
    bool prepare() override
    {
        m_session->listen();
        return m_session->open(EngineScores::musicXml({ .parts = { u"Left"_s, u"Right"_s }, .bars = 60 }));
    }

    /// Eighty seconds of score and backing track.
    static QByteArray recordedScore() { return RecordedScores::score(RecordedScores::tone(80), 40); }

    void play()
    {
        m_session->call(BridgeCalls::playPause());
        QVERIFY(m_session->waitFor([&] { return m_session->isPlaying(); }));
    }

    void silenceTracks()
    {
        m_session->call(BridgeCalls::setTrackMute(0, true));
        m_session->call(BridgeCalls::setTrackMute(1, true));
    }

    bool becomesAudible()
    {
        return m_session->waitFor([&] { return m_session->loudness() > audible; });
    }

    bool becomesSilent()
    {
        return m_session->waitFor([&] { return m_session->loudness() < silence; });
    }

    /// Nothing is heard while the score plays on for three beats.
    bool staysSilent()
    {
        const double start = qMax(m_session->position(), 0.0);
        bool heard = false;
        const bool played = m_session->waitFor([&] {
            heard = heard || m_session->loudness() > silence;
            return heard || m_session->position() > start + 1500;
        });
        return played && !heard;
    }
};

int main(int argc, char *argv[]) { return runEngineTest<TestPageSound>(argc, argv); }
#include "test_page_sound.moc"
