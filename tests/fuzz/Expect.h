#pragma once

#include <QByteArray>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// What has to hold for every input. Where it does not, the program ends as it does after a crash, so that the input
/// is kept.
inline void expect(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

inline QByteArray bytesOf(const std::uint8_t *data, std::size_t size)
{
    return { reinterpret_cast<const char *>(data), qsizetype(size) };
}
