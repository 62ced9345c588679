// @ts-check
/**
 * Channels for every track alone. Files give several tracks the same ones, and then muting one mutes them all.
 *
 * @typedef {{ primary: number, secondary: number }} Channels
 * @typedef {{ index: number, playbackInfo: { primaryChannel: number, secondaryChannel: number } }} ChannelledTrack
 */

/** What is played there is percussion, whatever the program. */
const percussionChannel = 9;

/**
 * @param {ChannelledTrack[]} tracks
 * @returns {Map<number, Channels>} the channels of each track that is no percussion, by its index; the synthesizer is
 *     not bound to sixteen
 */
export function separateChannels(tracks) {
  const separate = new Map();
  let next = 0;
  const take = () => {
    next += next === percussionChannel ? 1 : 0;
    return next++;
  };
  for (const { index, playbackInfo } of tracks) {
    if (playbackInfo.primaryChannel !== percussionChannel) {
      separate.set(index, { primary: take(), secondary: take() });
    }
  }
  return separate;
}

/**
 * Has the tracks play on the channels given while something is done with them; the score itself keeps its own.
 *
 * @param {ChannelledTrack[]} tracks
 * @param {Map<number, Channels>} channels
 * @param {() => void} work
 */
export function withChannels(tracks, channels, work) {
  const before = tracks.map(({ playbackInfo: { primaryChannel, secondaryChannel } }) => ({
    primaryChannel,
    secondaryChannel,
  }));
  for (const { index, playbackInfo } of tracks) {
    const own = channels.get(index);
    if (own) {
      playbackInfo.primaryChannel = own.primary;
      playbackInfo.secondaryChannel = own.secondary;
    }
  }
  try {
    work();
  } finally {
    tracks.forEach(({ playbackInfo }, index) => Object.assign(playbackInfo, before[index]));
  }
}
