#include "engine_host/bridge/Base64Text.h"

#include <array>

namespace Base64Text {

namespace {

constexpr char16_t alphabet[] = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

struct Pair {
    char16_t first;
    char16_t second;
};

/// The two characters of every twelve bits.
constexpr std::array<Pair, 4096> pairs = [] {
    std::array<Pair, 4096> all{};
    for (size_t bits = 0; bits < all.size(); ++bits)
        all[bits] = { alphabet[bits >> 6], alphabet[bits & 63] };
    return all;
}();

char16_t *put(char16_t *out, const Pair &pair)
{
    *out++ = pair.first;
    *out++ = pair.second;
    return out;
}

} // namespace

void append(QString &text, QByteArrayView bytes)
{
    const qsizetype before = text.size();
    text.resize(before + length(bytes.size()));
    auto *out = reinterpret_cast<char16_t *>(text.data()) + before;
    const auto *in = reinterpret_cast<const uchar *>(bytes.data());
    const uchar *const end = in + bytes.size() / 3 * 3;
    for (; in != end; in += 3) {
        const unsigned bits = unsigned(in[0]) << 16 | unsigned(in[1]) << 8 | in[2];
        out = put(out, pairs[bits >> 12]);
        out = put(out, pairs[bits & 0xfff]);
    }
    const qsizetype left = bytes.size() % 3;
    if (left == 0)
        return;
    const unsigned bits = unsigned(in[0]) << 16 | (left == 2 ? unsigned(in[1]) << 8 : 0);
    out = put(out, pairs[bits >> 12]);
    put(out, { left == 2 ? pairs[bits & 0xfff].first : u'=', u'=' });
}

} // namespace Base64Text
