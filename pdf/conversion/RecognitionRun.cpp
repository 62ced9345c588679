#include "pdf/conversion/RecognitionRun.h"

#include "pdf/conversion/Folders.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QProcess>
#include <QUtf8StringView>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype reportedLines = 6;

/// How long the engine may take to end by itself when it is asked to, in milliseconds.
constexpr int grace = 300;

QStringList arguments(const QStringList &inputs, const QString &outDir)
{
    QStringList list{ u"-batch"_s, u"-export"_s, u"-output"_s, outDir, u"-constant"_s,
        // Letter and A4 pages at 600 dots per inch are larger than what the engine accepts by default.
        u"org.audiveris.omr.step.LoadStep.maxPixelCount=40000000"_s,
        // What follows are files, whatever they begin with.
        u"--"_s };
    return list << inputs;
}

/// The last lines that are not empty; nothing of an output that is not valid UTF-8.
QString tailOf(const QByteArray &output)
{
    if (!QUtf8StringView(output).isValidUtf8())
        return {};
    const QStringList lines = QString::fromUtf8(output).split(u'\n', Qt::SkipEmptyParts);
    return lines.sliced(std::max<qsizetype>(0, lines.size() - reportedLines)).join(u'\n');
}

/// Has the child lead a process group of its own, so that it can be ended with everything it starts, and lets it end
/// when this program is killed.
void leadAGroup()
{
    ::setpgid(0, 0);
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
}

void endGroup(QProcess &process)
{
    const auto group = pid_t(process.processId());
    if (group <= 0)
        return;
    ::kill(-group, SIGTERM);
    process.waitForFinished(grace);
    // Also when the leader has ended: the number belongs to the group for as long as one of its processes lives.
    ::kill(-group, SIGKILL);
    process.waitForFinished(-1);
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

std::optional<Failure> runAudiveris(
    const QString &bin, const QStringList &inputs, const QString &outDir, const std::stop_token &stop)
{
    if (std::optional<Failure> failure = makeFolder(outDir))
        return failure;

    // Comes first: a process that is started in a thread without event loops is not watched.
    QEventLoop loop;
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setChildProcessModifier(&leadAGroup);
    process.start(bin, arguments(inputs, outDir), QIODevice::ReadOnly);
    if (!process.waitForStarted(-1)) {
        return Failure{
            QCoreApplication::translate("PDFConverter", "Could not launch Audiveris: %1").arg(process.errorString())
        };
    }
    if (!waitForEnd(process, loop, stop)) {
        endGroup(process);
        return Failure{ QCoreApplication::translate("PDFConverter", "The conversion was stopped.") };
    }
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
        return std::nullopt;
    return Failure{ QCoreApplication::translate("PDFConverter", "Audiveris failed.") + u"\n\n"_s
        + tailOf(process.readAll()) };
}

} // namespace PDFConverter
