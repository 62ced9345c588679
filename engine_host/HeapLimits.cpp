#include "engine_host/HeapLimits.h"

#include <array>
#include <malloc.h>

namespace HeapLimits {

namespace {

/// In bytes: where the C library begins, too.
constexpr int largeBlock = 128 * 1024;

struct Limit {
    const char *variable;
    int value;
};

constexpr std::array limits{
    Limit{ "MALLOC_MMAP_THRESHOLD_", largeBlock },
    Limit{ "MALLOC_TRIM_THRESHOLD_", largeBlock },
};

} // namespace

QProcessEnvironment limited(QProcessEnvironment environment)
{
    for (const Limit &limit : limits) {
        const QString name = QString::fromLatin1(limit.variable);
        if (!environment.contains(name))
            environment.insert(name, QString::number(limit.value));
    }
    return environment;
}

void adapt()
{
    const QProcessEnvironment before = QProcessEnvironment::systemEnvironment();
    const QProcessEnvironment after = limited(before);
    for (const Limit &limit : limits)
        qputenv(limit.variable, after.value(QString::fromLatin1(limit.variable)).toLatin1());
#ifdef __GLIBC__
    // This process has read its environment already, and with it what the user wants.
    if (!before.contains(QStringLiteral("MALLOC_MMAP_THRESHOLD_")))
        mallopt(M_MMAP_THRESHOLD, largeBlock);
    if (!before.contains(QStringLiteral("MALLOC_TRIM_THRESHOLD_")))
        mallopt(M_TRIM_THRESHOLD, largeBlock);
#endif
}

} // namespace HeapLimits
