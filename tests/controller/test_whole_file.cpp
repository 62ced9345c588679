#include "controller/WholeFile.h"
#include "tests/support/FullDisk.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(cannot be read)");
}

bool write(const QString &path, const QByteArray &bytes)
{
    return !WholeFile::write(path, bytes, WholeFile::Durability::OnDisk);
}

/// Runs `work` as a user who is not root; its answer.
template <typename Work> int asNobody(const Work &work)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(::geteuid() != 0 || ::setuid(65534) == 0 ? work() : 99);
    int status = -1;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

class TestWholeFile final : public QObject {
    Q_OBJECT

private:
    const QTemporaryDir m_folder;

    QString path(const QString &name) const { return m_folder.filePath(name); }

private Q_SLOTS:
    void aNewFileAndAnOldOne()
    {
        QVERIFY(write(path(u"a"_s), "one"));
        QCOMPARE(contents(path(u"a"_s)), QByteArray("one"));
        QVERIFY(write(path(u"a"_s), {}));
        QCOMPARE(contents(path(u"a"_s)), QByteArray());
    }

    void itsRightsStay()
    {
        QVERIFY(write(path(u"private"_s), "one"));
        QCOMPARE(::chmod(qPrintable(path(u"private"_s)), 0640), 0);
        QVERIFY(write(path(u"private"_s), "two"));
        struct stat status{};
        QCOMPARE(::stat(qPrintable(path(u"private"_s)), &status), 0);
        QCOMPARE(status.st_mode & 07777, 0640U);
    }

    void aLinkStaysALink()
    {
        QVERIFY(write(path(u"real"_s), "one"));
        QVERIFY(QFile::link(path(u"real"_s), path(u"link"_s)));
        QVERIFY(write(path(u"link"_s), "two"));
        QVERIFY(QFileInfo(path(u"link"_s)).isSymLink());
        QCOMPARE(contents(path(u"real"_s)), QByteArray("two"));
    }

    void whatIsNoFileIsLeftAlone()
    {
        QCOMPARE(::mkfifo(qPrintable(path(u"pipe"_s)), 0600), 0);
        QVERIFY(!write(path(u"pipe"_s), "x"));
        QVERIFY(!QFileInfo(path(u"pipe"_s)).isFile());
        QVERIFY(!write(m_folder.path(), "x"));
        QVERIFY(!write({}, "x"));
        QVERIFY(!write(path(u"missing/folder/x"_s), "x"));
    }

    void aFullDisk_data()
    {
        QTest::addColumn<int>("size");
        QTest::newRow("a short file") << 2000;
        QTest::newRow("a long one") << 200'000;
    }

    void aFullDisk()
    {
        QFETCH(int, size);
        const QString name = path(u"full"_s);
        QVERIFY(write(name, "what was there"));
        const QStringList before = QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden);
        {
            const FullDisk disk(1000);
            const auto reason = WholeFile::write(name, QByteArray(size, 'x'), WholeFile::Durability::WithSystem);
            QCOMPARE(reason, qt_error_string(EFBIG));
        }
        QCOMPARE(contents(name), QByteArray("what was there"));
        QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden), before);
    }

    void aFolderThatTakesNoFiles()
    {
        const QString folder = path(u"locked"_s);
        QVERIFY(QDir().mkdir(folder));
        const QString name = folder + u"/shared.gp"_s;
        const QString secret = folder + u"/secret.gp"_s;
        QVERIFY(write(name, "a longer text than the new one") && write(secret, "x"));
        QCOMPARE(::chmod(qPrintable(m_folder.path()), 0755), 0);
        QCOMPARE(::chmod(qPrintable(name), 0666), 0);
        QCOMPARE(::chmod(qPrintable(secret), 0400), 0);
        QCOMPARE(::chmod(qPrintable(folder), 0555), 0);
        const int saved = asNobody([&] { return write(name, "new") ? 0 : 1; });
        const int refused = asNobody([&] { return write(secret, "new") ? 0 : 1; });
        const int broken = asNobody([&] {
            const FullDisk disk(5);
            return write(name, "much too long") ? 0 : 1;
        });
        QCOMPARE(::chmod(qPrintable(folder), 0755), 0);
        QCOMPARE(saved, 0);
        QCOMPARE(refused, 1);
        QCOMPARE(broken, 1);
        QCOMPARE(contents(name), QByteArray("new"));
        QCOMPARE(contents(secret), QByteArray("x"));
    }
};

QTEST_GUILESS_MAIN(TestWholeFile)
#include "test_whole_file.moc"
