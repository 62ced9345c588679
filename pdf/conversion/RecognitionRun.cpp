#include "pdf/conversion/RecognitionRun.h"

#include "pdf/conversion/Folders.h"
#include "pdf/conversion/OutputTail.h"
#include "pdf/conversion/RecognitionOutput.h"
#include "pdf/process/HelperPrograms.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QProcess>

using namespace Qt::StringLiterals;

namespace {

/// How long the guard may take to end the engine and all its processes, in milliseconds.
constexpr int endingTimeoutMs = 1500;

QStringList arguments(const QStringList &inputs, const QString &outDir)
{
    QStringList list{ u"-batch"_s, u"-export"_s, u"-output"_s, outDir, u"-constant"_s,
        // Letter and A4 pages at 600 dots per inch are larger than what Audiveris accepts by default.
        u"org.audiveris.omr.step.LoadStep.maxPixelCount=40000000"_s,
        // What follows are files, whatever they begin with.
        u"--"_s };
    return list << inputs;
}

/// The first advice that an output gives, whatever pieces it comes in.
class Advice final {
public:
    void add(const QByteArray &bytes)
    {
        if (!m_text.isEmpty())
            return;
        m_text = PDFConverter::adviceFor(m_before + bytes);
        // What tells of it may be cut in two.
        constexpr qsizetype longestClue = 64;
        m_before = bytes.last(std::min(bytes.size(), longestClue));
    }
    const QString &text() const { return m_text; }

private:
    QByteArray m_before;
    QString m_text;
};

/// The end of its input tells the guard to end everything.
void endAll(QProcess &guard)
{
    guard.closeWriteChannel();
    if (guard.waitForFinished(endingTimeoutMs))
        return;
    guard.kill();
    guard.waitForFinished(-1);
}

/// Waits without polling; false when the stop came first.
bool waitForEnd(const QProcess &process, QEventLoop &loop, const std::stop_token &stop)
{
    QObject::connect(&process, &QProcess::finished, &loop, &QEventLoop::quit);
    const std::stop_callback stopped(
        stop, [&loop] { QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection); });
    if (process.state() != QProcess::NotRunning)
        loop.exec();
    return process.state() == QProcess::NotRunning;
}

} // namespace

namespace PDFConverter {

std::optional<Failure> runAudiveris(const QString &bin, const QStringList &inputs, const QString &outDir,
    const std::stop_token &stop, const ProgressReport &report)
{
    if (std::optional<Failure> failure = makeFolder(outDir))
        return failure;

    const auto couldNotLaunch = [](const QString &reason) {
        return Failure{ QCoreApplication::translate("PDFConverter", "Could not launch Audiveris: %1").arg(reason) };
    };
    // Comes first: a process that is started in a thread without event loops is not watched.
    QEventLoop loop;
    QProcess guard;
    OutputTail tail;
    Advice advice;
    const auto take = [&guard, &tail, &advice, &report] {
        const QByteArray news = guard.readAllStandardOutput();
        tail.add(news);
        advice.add(news);
        if (const QString step = stepIn(news); report && !step.isEmpty())
            report({ .step = step });
    };
    QObject::connect(&guard, &QProcess::readyReadStandardOutput, &loop, take);
    guard.start(HelperPrograms::find(u"quaverly-guard"_s), QStringList{ bin } + arguments(inputs, outDir));
    if (!guard.waitForStarted(-1))
        return couldNotLaunch(guard.errorString());
    if (!waitForEnd(guard, loop, stop)) {
        endAll(guard);
        return Failure{ QCoreApplication::translate("PDFConverter", "The conversion was stopped.") };
    }
    take();
    if (const int reason = guard.readAllStandardError().toInt(); reason != 0)
        return couldNotLaunch(qt_error_string(reason));
    if (guard.exitStatus() == QProcess::NormalExit && guard.exitCode() == 0)
        return std::nullopt;
    QString message = QCoreApplication::translate("PDFConverter", "Audiveris failed.") + u"\n\n"_s + tail.text();
    if (!advice.text().isEmpty())
        message += u"\n\n"_s + advice.text();
    return Failure{ message };
}

} // namespace PDFConverter
