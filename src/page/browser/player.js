/** Seconds of sound that are handed to the browser at a time, and how far ahead. */
const chunkSeconds = 0.25;
const aheadSeconds = 1;

/**
 * Hands the mix from a sample on to an audio context, as one buffer that begins at `when`.
 * @param {BaseAudioContext} context @param {Mixer} mixer @param {number} from @param {number} count
 * @param {number} when
 */
function scheduleChunk(context, mixer, from, count, when) {
  const buffer = context.createBuffer(2, count, mixRate);
  const [left, right] = mixer.mix(from, count);
  buffer.getChannelData(0).set(left);
  buffer.getChannelData(1).set(right);
  const node = context.createBufferSource();
  node.buffer = buffer;
  node.connect(context.destination);
  node.start(when);
  return node;
}

/** Plays the timeline. */
class Player {
  /** @param {Mixer} mixer @param {(seconds: number) => void} at @param {() => void} ended */
  constructor(mixer, at, ended) {
    this.mixer = mixer;
    this.at = at;
    this.ended = ended;
    /** @type {AudioContext | null} */
    this.context = null;
    /** @type {{node: AudioBufferSourceNode, when: number, from: number, count: number}[]} */
    this.queue = [];
    this.next = 0;
    this.nextWhen = 0;
    this.end = 0;
    /** @type {[number, number] | null}  samples */
    this.loop = null;
    this.run = 0;
    this.isPlaying = false;
  }

  /** @param {number} seconds @param {number} end  of the timeline @param {[number, number] | null} loop  seconds */
  async play(seconds, end, loop) {
    this.stop();
    if (!this.context) {
      this.context = new AudioContext({ sampleRate: mixRate });
    }
    this.isPlaying = true;
    const run = ++this.run;
    await this.context.resume();
    this.loop = loop && /** @type {[number, number]} */ (loop.map((time) => Math.round(time * mixRate)));
    this.end = Math.round(end * mixRate);
    this.next = Math.round(seconds * mixRate);
    this.nextWhen = 0;
    void this.feed(run);
    this.follow(run);
  }

  /** @param {number} run */
  async feed(run) {
    const context = /** @type {AudioContext} */ (this.context);
    while (run === this.run && this.isPlaying && this.next < this.end) {
      if (this.nextWhen - context.currentTime < aheadSeconds) {
        const stop = this.loop && this.next < this.loop[1] ? this.loop[1] : this.end;
        const count = Math.min(Math.round(chunkSeconds * mixRate), stop - this.next);
        const from = this.next;
        await this.mixer.prepare(context, from / mixRate, (from + count) / mixRate);
        if (run !== this.run) {
          return;
        }
        const when = Math.max(this.nextWhen, context.currentTime + 0.05);
        const node = scheduleChunk(context, this.mixer, from, count, when);
        this.queue.push({ node, when, from, count });
        this.nextWhen = when + count / mixRate;
        this.next = this.loop && from + count === this.loop[1] ? this.loop[0] : from + count;
      } else {
        await new Promise((wake) => setTimeout(wake, 50));
      }
    }
  }

  /** The sample that is heard now; -1: nothing is. */
  position() {
    const now = /** @type {AudioContext} */ (this.context).currentTime;
    while (this.queue.length > 1 && this.queue[1].when <= now) {
      this.queue.shift();
    }
    const heard = this.queue[0];
    if (!heard || now < heard.when) {
      return -1;
    }
    return heard.from + Math.min(heard.count, (now - heard.when) * mixRate);
  }

  /** @param {number} run */
  follow(run) {
    if (run !== this.run || !this.isPlaying) {
      return;
    }
    const sample = this.position();
    if (sample >= 0) {
      this.at(sample / mixRate);
    }
    if (sample >= this.end) {
      this.stop();
      this.ended();
    } else {
      requestAnimationFrame(() => this.follow(run));
    }
  }

  /** Mutes and solos have changed: what is not heard yet is mixed anew. */
  refresh() {
    if (!this.isPlaying || !this.context) {
      return;
    }
    const keep = this.queue.findIndex(({ when }) => when > /** @type {AudioContext} */ (this.context).currentTime + 0.1);
    if (keep > 0) {
      for (const { node } of this.queue.splice(keep)) {
        node.stop();
      }
      const last = this.queue[this.queue.length - 1];
      this.next = last.from + last.count;
      if (this.loop && this.next === this.loop[1]) {
        this.next = this.loop[0];
      }
      this.nextWhen = last.when + last.count / mixRate;
      const run = ++this.run;
      void this.feed(run);
      this.follow(run);
    }
  }

  stop() {
    this.isPlaying = false;
    ++this.run;
    for (const { node } of this.queue) {
      node.stop();
    }
    this.queue = [];
  }
}
