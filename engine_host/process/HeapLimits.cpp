#include "engine_host/process/HeapLimits.h"

#include <array>
#include <malloc.h>

namespace HeapLimits {

namespace {

/// With a single one everybody who allocates would be in the audio thread's way; with two about half of them are.
constexpr int heaps = 2;

/// In bytes: where the C library begins, too.
constexpr int largeBlock = 128 * 1024;

struct Limit {
    const char *variable;
    int parameter;
    int value;
};

constexpr std::array limits{
    Limit{ "MALLOC_ARENA_MAX", M_ARENA_MAX, heaps },
    Limit{ "MALLOC_MMAP_THRESHOLD_", M_MMAP_THRESHOLD, largeBlock },
    Limit{ "MALLOC_TRIM_THRESHOLD_", M_TRIM_THRESHOLD, largeBlock },
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
    for (const Limit &limit : limits) {
        qputenv(limit.variable, after.value(QString::fromLatin1(limit.variable)).toLatin1());
        // This process has read its environment already, and with it what the user wants.
        if (!before.contains(QString::fromLatin1(limit.variable)))
            mallopt(limit.parameter, limit.value);
    }
}

} // namespace HeapLimits
