#pragma once

#include "controller/FileReading.h"
#include "controller/Reported.h"
#include "controller/ScoreSource.h"
#include "controller/Surroundings.h"
#include "controller/TrackInfo.h"
#include "engine_host/bridge/LoopSpan.h"
#include "engine_host/bridge/MarkedRange.h"
#include "engine_host/bridge/MessageReceiver.h"
#include "engine_host/bridge/ScoreSection.h"
#include "engine_host/bridge/ShownStaves.h"
#include "pdf/conversion/ConversionProgress.h"
#include "pdf/conversion/PDFOpening.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QStringList>
#include <QUrl>

#include <memory>
#include <optional>

class ConversionWorker;
class PDFDocument;
class ScriptHandler;
struct PrintResult;

namespace BridgeMessages {
struct Ready;
struct PlayerReady;
struct Score;
struct State;
struct Position;
struct Error;
struct GpData;
struct Rendered;
struct Unknown;
} // namespace BridgeMessages

namespace PDFConverter {
template <typename T> class Result;
} // namespace PDFConverter

/// Holds everything that the window shows and does everything that the window can be asked for.
///
/// Views read the published properties and change the system by assigning them or by calling the operations below.
/// What the page reports, and what the operations make of it, only the controller assigns (Reported). Main thread only.
/// Times are milliseconds of score time.
class AlphaTabController final : public QObject, public MessageReceiver {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AlphaTabController)

    /// Before the properties, which take their first values from the settings in it.
    Surroundings m_surroundings;

    template <typename T> using Reported = ::Reported<T, AlphaTabController>;

public:
    explicit AlphaTabController(Surroundings surroundings);
    ~AlphaTabController() override;

    /// The program's one controller, made on first use and never destroyed.
    static AlphaTabController &shared();

    // File kinds (FileKinds), as lower-case file-name extensions without the dot
    static const QStringList &scoreExtensions();
    static const QStringList &openableExtensions();
    /// What the open panel offers.
    static const QStringList &gpContentTypes();

    // What the page reports
    Reported<bool> bridgeReady{ false };
    Reported<bool> playerReady{ false };
    Reported<bool> isPlaying{ false };
    Reported<bool> hasScore{ false };
    Reported<double> currentTime{ 0.0 };
    Reported<double> endTime{ 0.0 };
    Reported<QString> title;
    Reported<QString> artist;
    Reported<QList<TrackInfo>> tracks;
    Reported<bool> hasBackingTrack{ false };
    /// Whether the music that plays can be counted in: the file's recording cannot.
    Reported<bool> canCountIn{ true };
    /// What the score marks, in the order of playing.
    Reported<QList<ScoreSection>> sections;
    /// What looping loops: the chosen range, or the whole score.
    Reported<LoopSpan> loopSpan;
    /// Whether the page is there and answers.
    Reported<PageHealth> pageHealth{ PageHealth::Well };
    /// The page ended before it was ready, after it had been started again. Changes before pageHealth does.
    Reported<bool> pageCannotStart{ false };

    // Documents
    /// Most recent first, at most eight.
    Published<QList<QUrl>> recentFiles;
    Reported<std::shared_ptr<PDFDocument>> pdfDocument;
    Reported<std::optional<QUrl>> pdfURL;
    /// The page index to scroll to.
    Published<std::optional<int>> pdfScrollTarget;
    /// Turns the pages, 1 on or -1 back, with each assignment.
    Published<int> pdfTurn{ 0 };
    /// Whether they are turned by half pages.
    Published<bool> pdfHalfTurns{ false };
    /// 1...6
    Published<int> pdfPagesAcross;
    Reported<bool> converting{ false };
    /// Of the conversion that is going on.
    Reported<PDFConverter::Progress> conversionProgress;
    /// From the choice of a printer or file until the score is there.
    Reported<bool> printing{ false };
    /// The files of what the user has set that could not be saved, each with the system's word for why. Saving them is
    /// tried again and again.
    Reported<QMap<QString, QString>> unsavedFiles;
    /// A whole sentence for the user; nothing when all is well.
    Published<std::optional<QString>> conversionError;

    // Settings; each assignment is sent to the page at once
    Published<bool> preferSynth;
    /// The sliders offer 25...200.
    Published<double> tempoPercent;
    /// 0...1
    Published<double> masterVolume;
    Published<bool> looping;
    Published<bool> metronome;
    Published<bool> countIn;
    /// Whether the count-in, where it is on, is before each pass of a loop, and not only before the first.
    Published<bool> countsInPasses;
    /// 0...1
    Published<double> metronomeVolume;
    /// "woodblock", "beep", "click" or "tick"
    Published<QString> metronomeSound;
    Published<bool> metronomeAccent;
    /// "bar", "beat", "half" or "quarter"
    Published<QString> metronomeMode;
    Published<bool> horizontalLayout;
    /// The buttons offer 0.5...2.
    Published<double> zoom;
    /// Whether scores come back as they were left: mixer, position, and the settings from tempoPercent on that a score
    /// has to itself.
    Published<bool> rememberScores;
    /// The strip below the score that shows where the notes are pressed.
    Published<bool> fretboard;
    Published<bool> leftHandedFretboard;
    /// What staves with strings show.
    Published<ShownStaves> staves;
    /// Light notation on dark paper, of scores and of PDFs.
    Published<bool> darkPaper;

    /// The one web view, null where there is none to show (tests).
    QWidget *webView() const;
    /// Evaluates `script` in the page; a failure leaves one log line and nothing else.
    void js(const QString &script);
    /// Hands the page a key that it answers for (PageReports::pressKey).
    void pressKey(const QString &key);
    /// A picture of the page's visible content; null when there is none.
    void snapshot(std::function<void(const QImage &)> arrived);
    void handle(const QVariantMap &message) override;

    // The end of the page
    void pageHealthChanged(PageHealth health) override;
    /// Ends a page that does not answer, with whatever it is reading.
    void stopReading();
    /// Loads a page that has ended anew, with the score that it showed, at the same place, mixed and set as before.
    void startPageAgain();

    // Loading
    /// Opens a local file of any kind: a PDF is shown, everything else goes to the engine. Before the engine is ready
    /// the file waits; the last one asked for wins, also over a file that is still being read. Nobody waits for the
    /// file. One that cannot be read, or has more than FileReading::largestFile bytes, leaves one log line.
    void load(const QUrl &url);
    void presentOpenPanel();

    // Conversion of the open PDF into a score
    /// The executable of Audiveris: what QV_AUDIVERIS names, else where its Debian package is
    /// installed, else ~/.local/opt/audiveris/bin/Audiveris.
    std::optional<QString> audiverisBinary() const;
    /// Reads the notation of the open PDF off the main thread and opens the result as a score; `converting` tells while
    /// it goes on, `conversionError` why it failed. Without a PDF, and while one is being converted, nothing happens.
    void convertOpenPDF();

    // Recent files
    void saveRecents();
    void clearRecents();

    /// Tries once more what could not be saved.
    void saveWhatIsUnsaved();

    /// Prints what is shown of the score, to a printer or a file that the user chooses.
    void print();

    // Mixer; an id that no track has is ignored
    void toggleVisible(int id);
    void toggleMute(int id);
    void toggleSolo(int id);
    /// @param volume stored and sent as given
    void setTrackVolume(int id, double volume);
    /// Sends the visible tracks to the page; with none visible the page keeps what it shows.
    void setVisibleTracks();
    /// Shows the tracks with these ids and hides all others, in one drawing.
    void showTracks(const QList<int> &ids);

    // View
    /// @param steps of 0.1, down where negative; ends at 0.5 and 2
    void stepZoom(int steps);

    // Transport
    /// @param fraction of the whole score; values outside 0...1 are pulled into the range
    void seek(double toFraction);

private:
    void apply(const BridgeMessages::Ready &);
    void apply(const BridgeMessages::PlayerReady &);
    void apply(const BridgeMessages::Score &score);
    void apply(const BridgeMessages::State &state);
    void apply(const BridgeMessages::Position &position);
    void apply(const BridgeMessages::Error &error);
    void apply(const BridgeMessages::GpData &answer);
    void apply(const BridgeMessages::Rendered &);
    void apply(const BridgeMessages::Unknown &);

    void pushMetronomeConfig();
    void showFretboard();
    void soundSourceChanged();
    /// What plays has changed: the synthesizer or the file's recording.
    void refreshCountIn();

    void loadScore(const QUrl &url);
    void scoreRead(const QUrl &url, const FileReading::Result &result);
    void loadConverted(const QByteArray &musicXml);
    void loadPDF(const QUrl &url);
    void pdfOpened(const QUrl &url, const PDFOpening::Result &result);
    void forgetRecent(const QString &path);
    void setWindowTitle(const QString &title);
    /// The file's name without its last extension: a.b.gp gives a.b.
    static QString nameWithoutExtension(const QString &path);

    void conversionEnded(const QString &path, const PDFConverter::Result<QByteArray> &result);
    void convertIfSmoke();

    /// What a page that was loaded anew comes back to.
    struct Return {
        ScoreSource source;
        double position = 0;
        QList<TrackInfo> tracks;
        /// False for what the page that ended has not shown.
        bool wasShown = false;
    };
    static QUrl pageAddress();
    void startPageWith(const Return &target);
    void resendSettings();
    void openSourceAgain(const ScoreSource &source);
    void returnToMixer();
    void returnToPosition();

    // What is remembered of scores
    void rememberScoresChanged();
    /// The key of what is no file; empty while nothing is remembered.
    QString keyOf(const ScoreSource &source) const;
    void rememberShownScore();
    void recallScore();
    void recallMixer(const QList<TrackInfo> &remembered);
    void recallPosition();

    void loadRecents();
    void recordRecent(const QUrl &url);

    bool editTrack(int id, const std::function<void(TrackInfo &)> &change);

    void printed(const QString &path, const PrintResult &result);
    void saveGp(const QString &base64, const QString &title);

    void watchSaving();
    void saved(const QString &path, const std::optional<QString> &reason);

    void startSmokeLog();
    void smokeLog(const QString &line);
    void snapshotIfSmoke();

    const std::unique_ptr<ScriptHandler> m_scriptHandler;
    std::optional<QUrl> m_pendingURL;
    const bool m_smokeTest;
    const QString m_smokeLogPath;
    bool m_didSnapshot = false;
    /// Whether a time is set at which saving is tried again.
    bool m_savesAgain = false;
    /// The score that the page was last asked for, and the one that it shows.
    ScoreSource m_requestedSource;
    ScoreSource m_shownSource;
    /// The same two in the memory of scores; empty where nothing is remembered.
    QString m_requestedKey;
    QString m_shownKey;
    /// Where the score was left, until it can be sought.
    std::optional<double> m_recalledPosition;
    /// What looping loops.
    std::optional<MarkedRange> m_range;
    /// Set from the loading of a page anew until its score has its position again.
    std::optional<Return> m_return;
    /// From the moment that a page is loaded anew until it is ready.
    bool m_starting = false;
    const std::unique_ptr<EngineHost> m_engine;
    std::unique_ptr<FileReading> m_reading;
    std::unique_ptr<FileReading> m_keyReading;
    std::unique_ptr<PDFOpening> m_opening;
    std::unique_ptr<ConversionWorker> m_conversion;
};
