#include "engine_host/bridge/BridgeCalls.h"
#include "tests/engine/EngineScores.h"
#include "tests/engine/EngineSession.h"

#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <numbers>

using namespace Qt::StringLiterals;

namespace {

/// What the hand-made sound sounds like on every key: far above the notes of the score.
constexpr double toneFrequency = 5000;
constexpr int toneRate = 40000;
constexpr int period = int(toneRate / toneFrequency);
constexpr int loopEnd = 500 * period;

constexpr double audible = 0.01;

/// A tone that fills the sample, as a file that Chromium decodes to the very same samples.
QByteArray toneAsWave()
{
    constexpr int frames = loopEnd + period;
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.writeRawData("RIFF", 4);
    stream << quint32(36 + frames * 2);
    stream.writeRawData("WAVEfmt ", 8);
    stream << quint32(16) << quint16(1) << quint16(1) << quint32(toneRate) << quint32(toneRate * 2) << quint16(2)
           << quint16(16);
    stream.writeRawData("data", 4);
    stream << quint32(frames * 2);
    for (int frame = 0; frame < frames; ++frame)
        stream << qint16(std::lround(16000 * std::sin(2 * std::numbers::pi * frame / period)));
    return bytes;
}

/// A file of the fine bank: one sample, looped, that no key tunes.
QByteArray soundFile(const QByteArray &stream)
{
    const QByteArray description
        = u"{\"name\":\"Tone\",\"bank\":0,\"program\":0,\"zones\":[{\"keys\":[0,127],\"velocities\":[0,127],"
          "\"sample\":0,\"loop\":[0,%1],\"generators\":[[54,1],[56,0]]}],\"samples\":[{\"at\":0,\"length\":%2,"
          "\"frames\":1000000,\"rate\":%3,\"root\":60,\"correction\":0}]}"_s
              .arg(QString::number(loopEnd), QString::number(stream.size()), QString::number(toneRate))
              .toUtf8();
    QByteArray bytes;
    QDataStream head(&bytes, QIODevice::WriteOnly);
    head.setByteOrder(QDataStream::LittleEndian);
    head << quint32(description.size());
    return bytes + description + stream;
}

/// The built page with another fine bank.
class PageFolder final {
public:
    /// The sounds by their names; none for a page that was built without.
    explicit PageFolder(const QMap<QString, QByteArray> &sounds)
    {
        const QDir built(qEnvironmentVariable("QUAVERLY_WEB_FOLDER"));
        for (const QString &entry : built.entryList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
            if (entry != u"sounds")
                QFile::link(built.filePath(entry), m_folder.filePath(entry));
        }
        QDir(m_folder.path()).mkdir(u"sounds"_s);
        QStringList names;
        for (const auto &[name, bytes] : sounds.asKeyValueRange()) {
            names << u'"' + name + u'"';
            write(name, bytes);
        }
        write(u"index.json"_s, u"[%1]"_s.arg(names.join(u',')).toUtf8());
    }

    QString path() const { return m_folder.path(); }

private:
    void write(const QString &name, const QByteArray &bytes)
    {
        QFile file(m_folder.filePath(u"sounds/"_s + name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    QTemporaryDir m_folder;
};

} // namespace

/// The sounds that take the place of those that a score begins with.
class TestPageInstruments final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        QCOMPARE(m_session->complaints(), QStringList());
        m_session.reset();
        m_page.reset();
    }

    void theFineSoundIsHeardWithoutABreak()
    {
        open({ { u"0-0"_s, soundFile(toneAsWave()) } });
        play();
        QVERIFY(m_session->waitFor([&] { return tone() > audible; }));
        QCOMPARE(m_session->count(u"playerReady"_s), 1);
        QCOMPARE(m_session->count(u"state"_s), 1);
        double reached = 0;
        for (const EngineSession::Heard &one : m_session->heard(u"position"_s)) {
            const double place = one.message.value(u"currentTime"_s).toDouble();
            QVERIFY2(place >= reached, qPrintable(QString::number(place)));
            reached = place;
        }
    }

    void theMixerHolds()
    {
        open({ { u"0-0"_s, soundFile(toneAsWave()) } });
        m_session->call(BridgeCalls::setTrackMute(0, true));
        m_session->call(BridgeCalls::setTrackVolume(1, 0.2));
        play();
        QVERIFY(m_session->waitFor([&] { return tone() > audible / 2; }));
        const double soft = steadyTone();
        m_session->call(BridgeCalls::setTrackVolume(1, 1));
        QVERIFY(m_session->waitFor([&] { return tone() > soft * 4; }));
        QVERIFY2(steadyTone() < soft * 6, qPrintable(QString::number(steadyTone() / soft)));
        m_session->call(BridgeCalls::setTrackMute(1, true));
        QVERIFY(m_session->waitFor([&] { return m_session->loudness() < 0.001; }));
    }

    void theNextScoreHasItToo()
    {
        open({ { u"0-0"_s, soundFile(toneAsWave()) } });
        QVERIFY(m_session->open(EngineScores::musicXml({ .title = u"Other"_s, .bars = 60 })));
        play();
        QVERIFY(m_session->waitFor([&] { return tone() > audible; }));
    }

    void withoutTheBankTheLightSoundsPlay()
    {
        open({});
        play();
        QVERIFY(m_session->waitFor([&] { return m_session->loudness() > audible; }));
        QVERIFY(m_session->waitFor([&] { return m_session->position() > 3000; }));
        QVERIFY(m_session->loudness() > audible);
        QVERIFY(tone() < audible / 4);
    }

    void aSoundThatCannotBeReadLeavesTheLightOne()
    {
        open({ { u"0-0"_s, soundFile("no stream") } });
        play();
        QVERIFY(m_session->waitFor([&] { return m_session->position() > 3000; }));
        QVERIFY(m_session->loudness() > audible);
    }

    void theBanksStreamsAreDecodedWhole()
    {
        const QString built = qEnvironmentVariable("QUAVERLY_WEB_FOLDER");
        QVERIFY2(QFile::exists(built + u"/sounds/0-25"_s), "built without the fine bank: fluidr3mono-gm-soundfont");
        m_session = std::make_unique<EngineSession>();
        QVERIFY(m_session->start());
        m_session->valueOf(uR"((() => {
            globalThis.decoded = "";
            const decodeAll = async () => {
                const { fetchBytes } = await import(document.baseURI + "/../src/shared/resources.js");
                const { readSoundFile } = await import(document.baseURI + "/../src/soundfont/sound-file.js");
                const { description, streamOf } = readSoundFile(await fetchBytes("sounds/0-25"));
                const wrong = [];
                for (const [index, { rate, frames }] of description.samples.entries()) {
                    const context = new OfflineAudioContext(1, 1, rate);
                    const { length } = await context.decodeAudioData(streamOf(index).slice().buffer);
                    if (length < frames) {
                        wrong.push(`${index}: ${length} of ${frames}`);
                    }
                }
                return `${description.samples.length} decoded; ${wrong.join()}`;
            };
            decodeAll().catch(String).then((answer) => { globalThis.decoded = answer; });
            return true;
        })())"_s);
        QString answer;
        QVERIFY(m_session->waitFor([&] {
            answer = m_session->valueOf(u"decoded"_s).toString();
            return !answer.isEmpty();
        }));
        QCOMPARE(answer, u"10 decoded; "_s);
    }

private:
    void open(const QMap<QString, QByteArray> &sounds)
    {
        m_page = std::make_unique<PageFolder>(sounds);
        m_session = std::make_unique<EngineSession>(m_page->path());
        QVERIFY(m_session->start());
        m_session->listen();
        QVERIFY(m_session->open(EngineScores::musicXml({ .parts = { u"Left"_s, u"Right"_s }, .bars = 60 })));
    }

    void play()
    {
        m_session->call(BridgeCalls::playPause());
        QVERIFY(m_session->waitFor([&] { return m_session->isPlaying(); }));
    }

    /// How much of the hand-made tone there is in the last three quarters of a second: its mean amplitude. Looked at
    /// window by window, as each note begins the tone anew.
    double tone()
    {
        return m_session
            ->valueOf(uR"((() => {
                const samples = new Float32Array(32768);
                globalThis.tap?.getFloatTimeDomainData(samples);
                const window = 1024;
                let sum = 0;
                for (let from = 0; from < samples.length; from += window) {
                    let [real, imaginary] = [0, 0];
                    samples.subarray(from, from + window).forEach((sample, at) => {
                        const hann = 1 - Math.cos((2 * Math.PI * at) / window);
                        const angle = (2 * Math.PI * %1 * at) / globalThis.tap.context.sampleRate;
                        real += sample * hann * Math.cos(angle);
                        imaginary += sample * hann * Math.sin(angle);
                    });
                    sum += (2 * Math.hypot(real, imaginary)) / window;
                }
                return (sum * window) / samples.length;
            })())"_s.arg(toneFrequency))
            .toDouble();
    }

    /// The tone of a whole stretch in which nothing changed.
    double steadyTone()
    {
        const double from = m_session->position();
        if (!m_session->waitFor([&] { return m_session->position() > from + 1500; }))
            return 0;
        return tone();
    }

    std::unique_ptr<PageFolder> m_page;
    std::unique_ptr<EngineSession> m_session;
};

int main(int argc, char *argv[]) { return runEngineTest<TestPageInstruments>(argc, argv); }
#include "test_page_instruments.moc"
