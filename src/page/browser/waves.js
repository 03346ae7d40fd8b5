/** @param {string} text  base64 */
function bytesOf(text) {
  const letters = atob(text);
  const bytes = new Uint8Array(letters.length);
  for (let i = 0; i < letters.length; ++i) {
    bytes[i] = letters.charCodeAt(i);
  }
  return bytes;
}

/**
 * Waveforms of the sources: version 2 of audiowaveform's data, 8 bits.
 *
 * @typedef {{rate: number, framesPerPair: number, length: number, channels: number,
 *   pairs: Int8Array}} Wave
 */
class Waves {
  /** @param {Model} model */
  constructor(model) {
    this.model = model;
    /** @type {string[]} */
    this.texts = embedded("waves");
    /** @type {Map<number, Wave | null>} */
    this.read = new Map();
    /** Pixels that a column is wide. */
    this.step = 1;
  }

  /** @param {number} source @returns {Wave | null} */
  of(source) {
    let wave = this.read.get(source);
    if (wave === undefined) {
      wave = this.texts[source] ? this.decoded(this.texts[source]) : null;
      this.read.set(source, wave);
    }
    return wave;
  }

  /** @param {string} text @returns {Wave} */
  decoded(text) {
    const bytes = bytesOf(text);
    const view = new DataView(bytes.buffer);
    const headerBytes = 24;
    return {
      rate: view.getInt32(8, true),
      framesPerPair: view.getInt32(12, true),
      length: view.getUint32(16, true),
      channels: view.getInt32(20, true),
      pairs: new Int8Array(bytes.buffer, headerBytes),
    };
  }

  /**
   * The part of a clip between two pixels.
   * @param {CanvasRenderingContext2D} context @param {View} view @param {number} clip
   * @param {number} from @param {number} to @param {number} y @param {number} height
   * @param {string} colour
   */
  paint(context, view, clip, from, to, y, height, colour) {
    const { model } = this;
    const wave = model.source[clip] < 0 ? null : this.of(model.source[clip]);
    if (!wave || wave.length === 0) {
      return;
    }
    const rate = model.rates[model.source[clip]];
    const channel = Math.min(model.channels.get(clip) || 0, wave.channels - 1);
    /** @param {number} x */
    const pairAt = (x) =>
      (model.offset[clip] + (view.timeAt(x) - model.start[clip]) * rate) / wave.framesPerPair;
    const middle = Math.round(y + height / 2);
    const half = (height / 2 - 2) / 128;
    // Whole pixels, one by one: a path of so many edges takes ten times as long to fill.
    context.fillStyle = colour;
    const { step } = this;
    for (let x = Math.floor(Math.max(0, from) / step) * step; x < to; x += step) {
      const first = Math.max(0, Math.floor(pairAt(x)));
      const last = Math.min(wave.length - 1, Math.max(first, Math.ceil(pairAt(x + step)) - 1));
      let lowest = 127;
      let highest = -128;
      for (let pair = first; pair <= last; ++pair) {
        const at = (pair * wave.channels + channel) * 2;
        lowest = Math.min(lowest, wave.pairs[at]);
        highest = Math.max(highest, wave.pairs[at + 1]);
      }
      if (highest >= lowest) {
        const top = middle - Math.round((highest + 1) * half);
        const left = Math.max(x, Math.floor(from));
        context.fillRect(left, top, Math.min(x + step, Math.ceil(to)) - left, Math.max(1, middle - Math.round(lowest * half) - top));
      }
    }
  }
}
