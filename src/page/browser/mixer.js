/** Samples in a second of everything that is played: what previews decode to. */
const mixRate = 48000;

/**
 * A part of a source, to be decoded when it is needed.
 *
 * @typedef {object} Piece
 * @property {number} first  frame of the source that is its first sample
 * @property {number} channel  of the source; -1: it has all of them
 * @property {string} text  the file, base64
 * @property {AudioBuffer | null} buffer
 * @property {Promise<void> | null} decoding
 * @property {number} end  behind its last sample, as a frame of the source; known when decoded
 */

/** What is heard: which tracks, by mute and solo as a person sets them. */
class Audible {
  /** @param {Model} model */
  constructor(model) {
    this.model = model;
    this.muted = model.tracks.map((track) => track.muted);
    this.solo = model.tracks.map((track) => track.solo);
  }

  /** @param {number} track */
  isTrackHeard(track) {
    return !this.muted[track] && (this.solo[track] || !this.solo.includes(true));
  }

  /** @param {number} clip */
  isHeard(clip) {
    const track = this.model.track[clip];
    return track >= 0 && !this.model.muted.has(clip) && this.isTrackHeard(track);
  }
}

/** The mix of the timeline, any stretch of it, sample by sample. */
class Mixer {
  /** @param {Model} model @param {Audible} audible @param {[number, number, number, string][]} pieces */
  constructor(model, audible, pieces) {
    this.model = model;
    this.audible = audible;
    /** @type {Map<number, Piece[]>} */
    this.pieces = new Map();
    for (const [source, channel, first, text] of pieces) {
      const list = this.pieces.get(source) || [];
      list.push({ first, channel, text, buffer: null, decoding: null, end: Infinity });
      this.pieces.set(source, list);
    }
    /** @type {Piece[]}  those that are decoded, the one used last at the end */
    this.decoded = [];
  }

  /** Clips of a lane that sound between two times. @param {Lane} lane @param {number} from @param {number} to */
  clipsBetween(lane, from, to) {
    const { start, duration } = this.model;
    const found = [];
    for (let i = firstBehind(lane, from); i < lane.clips.length; ++i) {
      const clip = lane.clips[i];
      if (start[clip] >= to) {
        break;
      }
      if (start[clip] + duration[clip] > from && this.audible.isHeard(clip)) {
        found.push(clip);
      }
    }
    return found;
  }

  /** The piece that holds a frame of what a clip plays. @param {number} clip @param {number} frame */
  pieceAt(clip, frame) {
    const channel = this.model.channels.get(clip) || 0;
    const list = this.pieces.get(this.model.source[clip]) || [];
    let found = null;
    for (const piece of list) {
      const isFit = piece.channel < 0 || piece.channel === channel;
      if (isFit && piece.first <= frame && (!found || piece.first >= found.first)) {
        found = piece;
      }
    }
    return found;
  }

  /** The frame of its source that a clip has at a time. @param {number} clip @param {number} time */
  frameAt(clip, time) {
    const { model } = this;
    return model.offset[clip] + (time - model.start[clip]) * model.rates[model.source[clip]];
  }

  /**
   * Decodes what a stretch needs. @param {BaseAudioContext} context
   * @param {number} from @param {number} to  seconds
   */
  async prepare(context, from, to) {
    /** @type {Set<Piece>} */
    const needed = new Set();
    for (const lane of this.model.lanes) {
      for (const clip of this.clipsBetween(lane, from, to)) {
        const { start, duration } = this.model;
        const end = Math.min(to, start[clip] + duration[clip]);
        const step = 60;
        for (let time = Math.max(from, start[clip]); time < end; time += step) {
          const piece = this.pieceAt(clip, this.frameAt(clip, time) + 0.5);
          if (piece) {
            needed.add(piece);
          }
        }
        const last = this.pieceAt(clip, this.frameAt(clip, end));
        if (last) {
          needed.add(last);
        }
      }
    }
    await Promise.all([...needed].map((piece) => this.decode(context, piece)));
    this.forget(needed);
  }

  /** @param {BaseAudioContext} context @param {Piece} piece */
  decode(context, piece) {
    if (!piece.decoding) {
      piece.decoding = context
        .decodeAudioData(bytesOf(piece.text).buffer)
        .then((buffer) => {
          piece.buffer = buffer;
        })
        .catch(() => undefined);
    }
    this.decoded = this.decoded.filter((each) => each !== piece);
    this.decoded.push(piece);
    return piece.decoding;
  }

  /** Keeps what is decoded within about 200 MB. @param {Set<Piece>} needed */
  forget(needed) {
    let samples = 0;
    for (let i = this.decoded.length - 1; i >= 0; --i) {
      const piece = this.decoded[i];
      samples += piece.buffer ? piece.buffer.length * piece.buffer.numberOfChannels : 0;
      if (samples > 50e6 && !needed.has(piece)) {
        piece.buffer = null;
        piece.decoding = null;
        this.decoded.splice(i, 1);
      }
    }
  }

  /**
   * The mix of some samples, left and right; what it needs is decoded.
   * @param {number} from  first sample, counted from the timeline's zero @param {number} count
   * @returns {[Float32Array, Float32Array]}
   */
  mix(from, count) {
    const left = new Float32Array(count);
    const right = new Float32Array(count);
    const { model } = this;
    for (const lane of model.lanes) {
      const heard = this.clipsBetween(lane, (from - 1) / mixRate, (from + count + 1) / mixRate);
      if (heard.length > 0) {
        const track = new Float32Array(count);
        heard.forEach((clip) => this.addClip(clip, from, track));
        this.addTrack(lane.track, from, track, left, right);
      }
    }
    return [left, right];
  }

  /** @param {number} clip @param {number} from @param {Float32Array} track */
  addClip(clip, from, track) {
    const { model } = this;
    const begin = Math.max(from, Math.round(model.start[clip] * mixRate));
    const end = Math.min(
      from + track.length,
      Math.round((model.start[clip] + model.duration[clip]) * mixRate),
    );
    const rate = model.rates[model.source[clip]];
    for (let at = begin; at < end; ) {
      const frame = this.frameAt(clip, at / mixRate);
      const piece = this.pieceAt(clip, frame + 0.5 * (rate / mixRate));
      const buffer = piece && piece.buffer;
      if (!piece || !buffer) {
        return;
      }
      const samples = buffer.getChannelData(
        piece.channel < 0 ? Math.min(model.channels.get(clip) || 0, buffer.numberOfChannels - 1) : 0,
      );
      const place = ((frame - piece.first) * mixRate) / rate;
      const until = Math.min(end, at + Math.max(0, Math.ceil(samples.length - place)));
      if (until <= at) {
        return;
      }
      this.addSamples(clip, samples, place, at, until, from, track);
      at = until;
    }
  }

  /**
   * @param {number} clip @param {Float32Array} samples @param {number} place  in `samples`, of `at`
   * @param {number} at @param {number} until @param {number} from @param {Float32Array} track
   */
  addSamples(clip, samples, place, at, until, from, track) {
    const { model } = this;
    const fixed = model.gains.has(clip) ? /** @type {number} */ (model.gains.get(clip)) : 1;
    const isFixed =
      !model.automation.has(clip) && !model.fadeIn.has(clip) && !model.fadeOut.has(clip);
    // Places that are whole but for rounding are whole.
    const nearest = Math.round(place);
    const first = Math.abs(place - nearest) < 1e-4 ? nearest : place;
    const part = first - Math.floor(first);
    for (let sample = at; sample < until; ++sample) {
      const index = Math.floor(first) + sample - at;
      const value = part === 0 || index + 1 >= samples.length
        ? samples[index]
        : samples[index] + (samples[index + 1] - samples[index]) * part;
      track[sample - from] += value * (isFixed ? fixed : this.gainAt(clip, sample / mixRate));
    }
  }

  /** All that is done to a clip at a time. @param {number} clip @param {number} time */
  gainAt(clip, time) {
    const { model } = this;
    const within = time - model.start[clip];
    const duration = model.duration[clip];
    let gain = clipGain(model, clip, within / duration);
    const fadeIn = model.fadeIn.get(clip);
    if (fadeIn && within < fadeIn.length) {
      gain *= fadeInGain(model, fadeIn, within / fadeIn.length);
    }
    const fadeOut = model.fadeOut.get(clip);
    if (fadeOut && within > duration - fadeOut.length) {
      gain *= fadeOutGain(model, fadeOut, (within - duration + fadeOut.length) / fadeOut.length);
    }
    return gain;
  }

  /**
   * Gain and pan of a track: constant power, in the middle where it has none.
   * @param {number} number @param {number} from @param {Float32Array} samples
   * @param {Float32Array} left @param {Float32Array} right
   */
  addTrack(number, from, samples, left, right) {
    const { model } = this;
    const track = model.tracks[number];
    let gain = track.gain;
    let pan = track.pan === undefined ? 0.5 : track.pan;
    let [toLeft, toRight] = panGains(pan);
    for (let i = 0; i < samples.length; ++i) {
      const place = (from + i) / mixRate / model.length;
      if (track.envelope !== undefined) {
        gain = track.gain * envelopeValue(model.envelopes[track.envelope], place);
      }
      if (track.panEnvelope !== undefined) {
        pan = envelopeValue(model.envelopes[track.panEnvelope], place);
        [toLeft, toRight] = panGains(pan);
      }
      left[i] += samples[i] * gain * toLeft;
      right[i] += samples[i] * gain * toRight;
    }
  }
}
