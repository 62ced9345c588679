#include "engine_host/process/LaunchCode.h"

#include <QCryptographicHash>
#include <QFile>
#include <QTest>

#include <link.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// What this process has of files in its memory, in kilobytes.
qint64 fromFiles()
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("RssFile:"))
            return line.mid(8).simplified().split(' ').first().toLongLong();
    }
    return -1;
}

/// Reads something of each page of all libraries, so that all of them are in this process's memory.
void useEverything()
{
    ::dl_iterate_phdr(
        [](dl_phdr_info *library, size_t, void *) {
            for (int i = 0; i < library->dlpi_phnum; ++i) {
                const ElfW(Phdr) &segment = library->dlpi_phdr[i];
                if (segment.p_type != PT_LOAD || !(segment.p_flags & PF_R))
                    continue;
                const ElfW(Addr) begin = library->dlpi_addr + segment.p_vaddr;
                for (ElfW(Addr) at = begin; at < begin + segment.p_filesz; at += 4096) [[maybe_unused]]
                    const char read = *reinterpret_cast<const volatile char *>(at); // NOLINT
            }
            return 0;
        },
        nullptr);
}

// NOLINTNEXTLINE(*-avoid-non-const-global-variables)
int written = 1;
constexpr char constants[] = "What is read comes back from the file.";

} // namespace

class TestLaunchCode final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theProcessLetsGoOfWhatItDoesNotUse()
    {
        useEverything();
        const qint64 before = fromFiles();
        QVERIFY(before > 0);
        LaunchCode::giveBack();
        const qint64 after = fromFiles();
        QVERIFY2(after < before / 2, qPrintable(u"%1 of %2 kB"_s.arg(after).arg(before)));
    }

    void everythingIsThereAfterwards()
    {
        const QByteArray text(constants);
        const QByteArray hash = QCryptographicHash::hash(text, QCryptographicHash::Sha256);
        written = 2;
        for (int i = 0; i < 100; ++i)
            LaunchCode::giveBack();
        QCOMPARE(written, 2);
        QCOMPARE(QByteArray(constants), text);
        QCOMPARE(QCryptographicHash::hash(text, QCryptographicHash::Sha256), hash);
    }

    void aDebuggerKeepsItsBreakpoints()
    {
        const pid_t traced = ::fork();
        QVERIFY(traced >= 0);
        if (traced == 0) {
            if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
                ::_exit(2);
            useEverything();
            const qint64 before = fromFiles();
            LaunchCode::giveBack();
            ::_exit(fromFiles() >= before ? 0 : 1);
        }
        int status = 0;
        QCOMPARE(::waitpid(traced, &status, 0), traced);
        QVERIFY(WIFEXITED(status));
        if (WEXITSTATUS(status) == 2)
            QSKIP("This system lets no process be traced.");
        QCOMPARE(WEXITSTATUS(status), 0);
    }
};

QTEST_GUILESS_MAIN(TestLaunchCode)

#include "test_launch_code.moc"
