#include "pdf/conversion/Folders.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace PDFConverter;
using namespace Qt::StringLiterals;

class TestFolders final : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_temporary;

    QStringList left() const { return QDir(m_temporary->path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot); }

    /// Makes the folder look as if it was made a minute ago.
    void age(const QString &name) const
    {
        const timespec then{ ::time(nullptr) - 60, 0 };
        const std::array<timespec, 2> times{ then, then };
        const QByteArray path = QFile::encodeName(m_temporary->filePath(name));
        QCOMPARE(::utimensat(AT_FDCWD, path.constData(), times.data(), 0), 0);
    }

private Q_SLOTS:
    void init()
    {
        m_temporary = std::make_unique<QTemporaryDir>();
        qputenv("TMPDIR", QFile::encodeName(m_temporary->path()));
    }
    void cleanup() { qunsetenv("TMPDIR"); }

    void theFolderIsForThisUserAlone()
    {
        {
            const WorkingFolder folder(std::nullopt);
            QVERIFY(!folder.failure());
            QCOMPARE(left().size(), 1);
            struct stat status{};
            QCOMPARE(::stat(qPrintable(m_temporary->filePath(left().constFirst())), &status), 0);
            QCOMPARE(status.st_mode & 07777, 0700U);
        }
        QVERIFY(left().isEmpty());
    }

    void whatAKilledProgramLeftIsSwept()
    {
        const pid_t child = ::fork();
        if (child == 0) {
            const WorkingFolder folder(std::nullopt);
            ::_exit(folder.failure() ? 1 : 0);
        }
        int status = -1;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QCOMPARE(status, 0);
        QCOMPARE(left().size(), 1);
        // It may belong to a program that is about to hold it.
        WorkingFolder::sweep();
        QCOMPARE(left().size(), 1);
        age(left().constFirst());
        WorkingFolder::sweep();
        QVERIFY(left().isEmpty());
    }

    void whatIsInUseStays()
    {
        const WorkingFolder folder(std::nullopt);
        age(left().constFirst());
        const pid_t child = ::fork();
        if (child == 0) {
            WorkingFolder::sweep();
            ::_exit(0);
        }
        ::waitpid(child, nullptr, 0);
        QCOMPARE(left().size(), 1);
    }

    void whatIsSomethingElseStays()
    {
        QVERIFY(QDir().mkdir(m_temporary->filePath(u"other"_s)));
        QVERIFY(QFile::link(m_temporary->filePath(u"other"_s), m_temporary->filePath(u"qv-omr-LINK"_s)));
        age(u"other"_s);
        WorkingFolder::sweep();
        QVERIFY(QFileInfo(m_temporary->filePath(u"other"_s)).isDir());
        QVERIFY(QFileInfo(m_temporary->filePath(u"qv-omr-LINK"_s)).isSymLink());
    }
};

QTEST_GUILESS_MAIN(TestFolders)
#include "test_folders.moc"
