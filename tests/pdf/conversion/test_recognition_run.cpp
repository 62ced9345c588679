#include "pdf/conversion/RecognitionOutput.h"
#include "pdf/conversion/RecognitionRun.h"
#include "pdf/process/HelperPrograms.h"
#include "tests/pdf/conversion/Files.h"
#include "tests/pdf/conversion/Processes.h"
#include "tests/pdf/conversion/StandIn.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <sys/resource.h>
#include <thread>

using namespace PDFConverter;
using namespace Qt::StringLiterals;

class TestRecognitionRun final : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;

    QString path(const QString &name) const { return m_folder->filePath(name); }

    QString pdf(const QString &name) const { return writeFile(m_folder->path(), name, "%PDF-1.7\n"); }

    std::optional<Failure> run(const QStringList &inputs) const
    {
        return runAudiveris(StandIn::program(), inputs, path(u"deep/er/out"_s));
    }

    /// A program of these shell commands.
    QString script(const QByteArray &commands) const
    {
        const QString program = writeFile(m_folder->path(), u"engine"_s, "#!/bin/sh\n" + commands + '\n');
        QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return program;
    }

    /// The most memory that this process has ever had.
    static qint64 peakKiB()
    {
        rusage used{};
        ::getrusage(RUSAGE_SELF, &used);
        return used.ru_maxrss;
    }

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void theArgumentsAndTheFolder()
    {
        // The stand-in refuses anything but the right arguments.
        const StandIn audiveris(m_folder->path());
        const QStringList inputs{ pdf(u"b.pdf"_s), pdf(u"a b.pdf"_s), pdf(u"ä.pdf"_s) };
        QVERIFY(!run(inputs));
        QCOMPARE(audiveris.report(), inputs);
        QVERIFY(QFile::exists(path(u"deep/er/out/a b.mxl"_s)));
        QVERIFY(QFile::exists(path(u"deep/er/out/ä.mxl"_s)));
    }

    void anInputThatLooksLikeAnOption()
    {
        const StandIn audiveris(m_folder->path());
        const QString before = QDir::currentPath();
        QDir::setCurrent(m_folder->path());
        pdf(u"-help.pdf"_s);
        const std::optional<Failure> failure = run({ u"-help.pdf"_s });
        QDir::setCurrent(before);
        QVERIFY(!failure);
        QCOMPARE(audiveris.report(), QStringList{ u"-help.pdf"_s });
    }

    void statusZeroIsSuccessWithoutResultsToo()
    {
        const StandIn audiveris(m_folder->path(), "nothing");
        QVERIFY(!run({ pdf(u"song.pdf"_s) }));
        QVERIFY(QDir(path(u"deep/er/out"_s)).isEmpty());
    }

    void failures_data()
    {
        QTest::addColumn<QByteArray>("words");
        QTest::addColumn<QString>("message");
        QTest::newRow("six of ten lines, empty ones not counted")
            << QByteArray("fail") << u"Audiveris failed.\n\nline 5\nline 6\nline 7\nline 8\nline 9\nline 10"_s;
        QTest::newRow("no output") << QByteArray("mute") << u"Audiveris failed.\n\n"_s;
        QTest::newRow("no UTF-8") << QByteArray("latin1") << u"Audiveris failed.\n\n"_s;
        QTest::newRow("a crash") << QByteArray("crash") << u"Audiveris failed.\n\nWARN  [song#1] about to crash"_s;
    }

    void failures()
    {
        QFETCH(QByteArray, words);
        const StandIn audiveris(m_folder->path(), words.constData());
        const std::optional<Failure> failure = run({ pdf(u"song.pdf"_s) });
        QVERIFY(failure);
        QTEST(failure->message, "message");
    }

    void whatTheUserCanDoStandsBelow_data()
    {
        QTest::addColumn<QByteArray>("words");
        QTest::addColumn<QString>("advice");
        QTest::newRow("an image that is too large") << QByteArray("large") << u"A page is too large for it."_s;
        QTest::newRow("no memory") << QByteArray("memory") << u"It ran out of memory."_s;
        QTest::newRow("too slow") << QByteArray("slow") << u"A step took longer than Audiveris allows itself."_s;
    }

    void whatTheUserCanDoStandsBelow()
    {
        // The reason lies further up than the last six lines.
        QFETCH(QByteArray, words);
        QFETCH(QString, advice);
        const StandIn engine(m_folder->path(), words.constData());
        const std::optional<Failure> failure = run({ pdf(u"song.pdf"_s) });
        QVERIFY(failure);
        const QStringList parts = failure->message.split(u"\n\n"_s);
        QCOMPARE(parts.size(), 3);
        QCOMPARE(parts[0], u"Audiveris failed."_s);
        QCOMPARE(parts[1].count(u'\n'), 5);
        QVERIFY2(parts[2].startsWith(advice), qPrintable(parts[2]));
    }

    void itsStepsAreReported()
    {
        const StandIn engine(m_folder->path(), "steps");
        QStringList steps;
        QVERIFY(!runAudiveris(StandIn::program(), { pdf(u"song.pdf"_s) }, path(u"out"_s), {},
            [&steps](const Progress &progress) { steps << progress.step; }));
        QVERIFY(!steps.isEmpty());
        QCOMPARE(steps.last(), u"HEADS"_s);
        QCOMPARE(numberOfStep(steps.last()), 9);
    }

    void stepsAreToldFromOtherWords()
    {
        QCOMPARE(stepIn("INFO [a#1] GridBuilder | page 2 loaded"), QString());
        QCOMPARE(stepIn("SHEETS PAGES"), QString());
        QCOMPARE(stepIn("x LOAD\ny STEM_SEEDS: done"), u"STEM_SEEDS"_s);
    }

    void muchOutputOnBothStreams()
    {
        const StandIn audiveris(m_folder->path(), "loud fail");
        const std::optional<Failure> failure = run({ pdf(u"song.pdf"_s) });
        QVERIFY(failure);
        QVERIFY2(failure->message.endsWith(u"line 9\nline 10"_s), qPrintable(failure->message));
        const StandIn fine(m_folder->path(), "loud");
        QVERIFY(!run({ pdf(u"song.pdf"_s) }));
    }

    void aProcessThatStillWritesBelongsToTheRun()
    {
        const std::optional<Failure> failure
            = runAudiveris(script("(sleep 0.5; echo late) & exit 3"), {}, path(u"out"_s));
        QVERIFY(failure);
        QCOMPARE(failure->message, u"Audiveris failed.\n\nlate"_s);
        const QString result = path(u"out/late.mxl"_s);
        QVERIFY(!runAudiveris(script("(sleep 0.5; touch '" + result.toUtf8() + "') & exit 0"), {}, path(u"out"_s)));
        QVERIFY(QFile::exists(result));
    }

    void outputWithoutEndTakesNoMemory()
    {
        const qint64 before = peakKiB();
        const std::optional<Failure> failure = runAudiveris(
            script("head -c 200000000 /dev/zero | tr '\\0' x; echo; yes | head -c 2000000; echo; echo last; exit 1"),
            {}, path(u"out"_s));
        QVERIFY(failure);
        QCOMPARE(failure->message, u"Audiveris failed.\n\ny\ny\ny\ny\ny\nlast"_s);
        QVERIFY2(peakKiB() - before < 50'000, qPrintable(QString::number(peakKiB() - before)));
    }

    void aLongLineIsToldByItsBeginning()
    {
        const std::optional<Failure> failure
            = runAudiveris(script("printf begin; head -c 1000000 /dev/zero | tr '\\0' x; exit 1"), {}, path(u"out"_s));
        QVERIFY(failure);
        QVERIFY(failure->message.startsWith(u"Audiveris failed.\n\nbeginxxx"_s));
        QVERIFY(failure->message.size() < 5000);
    }

    void aStopEndsWhatLeftTheGroup()
    {
        const QString numbers = path(u"numbers"_s);
        const QString program
            = script("setsid sh -c 'echo $$ > \"" + numbers.toUtf8() + ".part\"; mv \"" + numbers.toUtf8()
                + ".part\" \"" + numbers.toUtf8() + "\"; trap \"\" TERM; while :; do sleep 1; done' & wait");
        std::jthread worker([&](const std::stop_token &stop) { runAudiveris(program, {}, path(u"out"_s), stop); });
        QTRY_VERIFY(QFile::exists(numbers));
        QFile file(numbers);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString process = QString::fromLatin1(file.readAll()).trimmed();
        QVERIFY(anyRuns(process));
        worker.request_stop();
        worker.join();
        QTRY_VERIFY(!anyRuns(process));
    }

    void theEndOfTheProgramEndsTheEngine()
    {
        // A program that is killed closes the guard's input, and so does this one.
        const StandIn engine(m_folder->path(), "hang");
        QDir().mkdir(path(u"out"_s));
        QProcess guard;
        guard.start(HelperPrograms::find(u"quaverly-guard"_s),
            { StandIn::program(), u"-batch"_s, u"-export"_s, u"-output"_s, path(u"out"_s), u"-constant"_s,
                u"org.audiveris.omr.step.LoadStep.maxPixelCount=40000000"_s, u"--"_s, pdf(u"song.pdf"_s) });
        QVERIFY(guard.waitForStarted());
        QTRY_COMPARE(engine.report().size(), 2);
        const QString processes = engine.report().at(1);
        QVERIFY(anyRuns(processes));
        guard.closeWriteChannel();
        QVERIFY(guard.waitForFinished());
        QTRY_VERIFY(!anyRuns(processes));
    }

    void whatCannotBeStarted_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("reason");
        QTest::newRow("missing") << u"missing"_s << u"No such file or directory"_s;
        QTest::newRow("no program") << u"text"_s << u"Exec format error"_s;
        QTest::newRow("a folder") << u"."_s << u"Permission denied"_s;
    }

    void whatCannotBeStarted()
    {
        QFETCH(QString, name);
        QFETCH(QString, reason);
        QFile::setPermissions(writeFile(m_folder->path(), u"text"_s, "hello"), QFile::ReadOwner | QFile::ExeOwner);
        const std::optional<Failure> failure = runAudiveris(path(name), { pdf(u"song.pdf"_s) }, path(u"out"_s));
        QVERIFY(failure);
        QVERIFY2(failure->message.startsWith(u"Could not launch Audiveris: "_s), qPrintable(failure->message));
        QVERIFY2(failure->message.contains(reason), qPrintable(failure->message));
    }

    void aFolderThatCannotBeMade()
    {
        const StandIn audiveris(m_folder->path());
        const QString file = pdf(u"song.pdf"_s);
        const std::optional<Failure> failure = runAudiveris(StandIn::program(), { file }, file + u"/out"_s);
        QVERIFY(failure);
        QVERIFY2(failure->message.contains(u"Not a directory"_s), qPrintable(failure->message));
        QVERIFY(audiveris.report().isEmpty());
    }

    void offTheMainThread()
    {
        const StandIn audiveris(m_folder->path(), "fail");
        const QString file = pdf(u"song.pdf"_s);
        std::optional<Failure> failure;
        std::thread([&] { failure = run({ file }); }).join();
        QVERIFY(failure);
        QVERIFY2(failure->message.endsWith(u"line 10"_s), qPrintable(failure->message));
    }

    void aStopEndsTheEngineAndItsChildren()
    {
        const StandIn audiveris(m_folder->path(), "hang");
        const QString file = pdf(u"song.pdf"_s);
        std::optional<Failure> failure;
        std::jthread worker([&](const std::stop_token &stop) {
            failure = runAudiveris(StandIn::program(), { file }, path(u"out"_s), stop);
        });
        QTRY_COMPARE(audiveris.report().size(), 2);
        const QString processes = audiveris.report().at(1);
        QVERIFY(anyRuns(processes));

        QElapsedTimer clock;
        clock.start();
        worker.request_stop();
        worker.join();
        QVERIFY2(clock.elapsed() < 3000, qPrintable(QString::number(clock.elapsed())));
        QVERIFY(failure);
        QTRY_VERIFY(!anyRuns(processes));
    }

    void aStopBeforeTheStart()
    {
        const StandIn audiveris(m_folder->path(), "hang");
        std::stop_source stop;
        stop.request_stop();
        QVERIFY(runAudiveris(StandIn::program(), { pdf(u"song.pdf"_s) }, path(u"out"_s), stop.get_token()));
    }
};

QTEST_GUILESS_MAIN(TestRecognitionRun)
#include "test_recognition_run.moc"
