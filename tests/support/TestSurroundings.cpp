#include "tests/support/TestSurroundings.h"

#include <QFile>
#include <QObject>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;

TestSurroundings::TestSurroundings() = default;

Surroundings TestSurroundings::make()
{
    Surroundings made;
    made.log = [log = log](const QString &line) { log->append(line); };
    made.defaults = defaults();
    made.scoreMemory = scoreMemory();
    made.dialogs = std::make_unique<ScriptedDialogs>(dialogs);
    made.environment = environment;
    made.temporaryFolder = m_folder.path();
    // Nothing lies there unless a test puts it there.
    made.packagedAudiveris = path(u"opt/audiveris/bin/Audiveris"_s);
    made.webFolder = webFolder;
    made.makeEngine = [engine = engine](ScriptHandler &, const std::optional<QString> &) {
        return std::make_unique<RecordingEngine>(engine);
    };
    made.after = [delayed = delayed](std::chrono::milliseconds delay, QObject *context, std::function<void()> work) {
        delayed->append({ delay, [alive = QPointer<QObject>(context), work = std::move(work)] {
                             if (alive)
                                 work();
                         } });
    };
    made.inBackground = inBackground;
    made.setMainWindowTitle = [titles = windowTitles](const QString &title) { titles->append(title); };
    return made;
}

void TestSurroundings::letTimePass()
{
    const QList<DelayedWork> due = std::exchange(*delayed, {});
    for (const DelayedWork &one : due)
        one.work();
}

QUrl TestSurroundings::file(const QString &name, const QByteArray &bytes) const
{
    QFile file(path(name));
    const bool written = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    Q_ASSERT(written);
    return QUrl::fromLocalFile(written ? file.fileName() : QString());
}

std::unique_ptr<ScoreMemory> TestSurroundings::scoreMemory()
{
    return std::make_unique<ScoreMemory>(
        path(u"state/scores.json"_s), [log = log](const QString &line) { log->append(line); });
}

std::unique_ptr<DefaultsStore> TestSurroundings::defaults()
{
    return std::make_unique<DefaultsStore>(
        path(u"defaults.json"_s), [log = log](const QString &line) { log->append(line); });
}
