#include "pdf/conversion/RecognitionRun.h"
#include "tests/pdf/conversion/Files.h"
#include "tests/pdf/conversion/Processes.h"
#include "tests/pdf/conversion/StandIn.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

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

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void theArgumentsAndTheFolder()
    {
        // The stand-in refuses anything but the right arguments.
        const StandIn engine(m_folder->path());
        const QStringList inputs{ pdf(u"b.pdf"_s), pdf(u"a b.pdf"_s), pdf(u"ä.pdf"_s) };
        QVERIFY(!run(inputs));
        QCOMPARE(engine.report(), inputs);
        QVERIFY(QFile::exists(path(u"deep/er/out/a b.mxl"_s)));
        QVERIFY(QFile::exists(path(u"deep/er/out/ä.mxl"_s)));
    }

    void anInputThatLooksLikeAnOption()
    {
        const StandIn engine(m_folder->path());
        const QString before = QDir::currentPath();
        QDir::setCurrent(m_folder->path());
        pdf(u"-help.pdf"_s);
        const std::optional<Failure> failure = run({ u"-help.pdf"_s });
        QDir::setCurrent(before);
        QVERIFY(!failure);
        QCOMPARE(engine.report(), QStringList{ u"-help.pdf"_s });
    }

    void statusZeroIsSuccessWithoutResultsToo()
    {
        const StandIn engine(m_folder->path(), "nothing");
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
        const StandIn engine(m_folder->path(), words.constData());
        const std::optional<Failure> failure = run({ pdf(u"song.pdf"_s) });
        QVERIFY(failure);
        QTEST(failure->message, "message");
    }

    void muchOutputOnBothStreams()
    {
        const StandIn engine(m_folder->path(), "loud fail");
        const std::optional<Failure> failure = run({ pdf(u"song.pdf"_s) });
        QVERIFY(failure);
        QVERIFY2(failure->message.endsWith(u"line 9\nline 10"_s), qPrintable(failure->message));
        const StandIn fine(m_folder->path(), "loud");
        QVERIFY(!run({ pdf(u"song.pdf"_s) }));
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
        const StandIn engine(m_folder->path());
        const QString file = pdf(u"song.pdf"_s);
        const std::optional<Failure> failure = runAudiveris(StandIn::program(), { file }, file + u"/out"_s);
        QVERIFY(failure);
        QVERIFY2(failure->message.contains(u"Not a directory"_s), qPrintable(failure->message));
        QVERIFY(engine.report().isEmpty());
    }

    void offTheMainThread()
    {
        const StandIn engine(m_folder->path(), "fail");
        const QString file = pdf(u"song.pdf"_s);
        std::optional<Failure> failure;
        std::thread([&] { failure = run({ file }); }).join();
        QVERIFY(failure);
        QVERIFY2(failure->message.endsWith(u"line 10"_s), qPrintable(failure->message));
    }

    void aStopEndsTheEngineAndItsChildren()
    {
        const StandIn engine(m_folder->path(), "hang");
        const QString file = pdf(u"song.pdf"_s);
        std::optional<Failure> failure;
        std::jthread worker([&](const std::stop_token &stop) {
            failure = runAudiveris(StandIn::program(), { file }, path(u"out"_s), stop);
        });
        QTRY_COMPARE(engine.report().size(), 2);
        const QString processes = engine.report().at(1);
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
        const StandIn engine(m_folder->path(), "hang");
        std::stop_source stop;
        stop.request_stop();
        QVERIFY(runAudiveris(StandIn::program(), { pdf(u"song.pdf"_s) }, path(u"out"_s), stop.get_token()));
    }
};

QTEST_GUILESS_MAIN(TestRecognitionRun)
#include "test_recognition_run.moc"
