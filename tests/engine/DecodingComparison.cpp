#include "tests/engine/DecodingComparison.h"

using namespace Qt::StringLiterals;

namespace DecodingComparison {

QString script(const QByteArray &file, int wholeRate, int partsRate)
{
    return uR"(globalThis.compared = null; (async () => {
    const { decodeBackingTrack } = await import("qv-app://app/src/backing-track/decode/backing-track-decoder.js");
    const bytes = Uint8Array.from(atob("%1"), (letter) => letter.charCodeAt(0));
    const whole = await new OfflineAudioContext(1, 1, %2).decodeAudioData(bytes.slice().buffer);
    const own = Array.from({ length: whole.numberOfChannels }, () => []);
    let parts = 0;
    for await (const { blocks } of decodeBackingTrack(bytes, %3)) {
        blocks.forEach((some, channel) => own[channel].push(...some));
        parts++;
    }
    let worst = 0;
    let loudest = 0;
    let length = 0;
    own.forEach((blocks, channel) => {
        const samples = whole.getChannelData(channel);
        let frame = 0;
        for (const block of blocks) {
            for (const sample of block) {
                worst = Math.max(worst, Math.abs(sample - Math.max(-1, Math.min(1, samples[frame] ?? sample / 32767)) * 32767));
                loudest = Math.max(loudest, Math.abs(sample));
                frame++;
            }
        }
        length = frame;
    });
    globalThis.compared = { parts, length, worst, loudest, wholeLength: whole.length };
})().catch((reason) => { globalThis.compared = { failed: String(reason) }; }); true)"_s.arg(
        QString::fromLatin1(file.toBase64()), QString::number(wholeRate), QString::number(partsRate));
}

} // namespace DecodingComparison
