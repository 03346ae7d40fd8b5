/** Frames or seconds between two marks of the ruler, so that labels have room. */
class Ruler {
  /** @param {Clock} clock */
  constructor(clock) {
    this.clock = clock;
    this.framesPerSecond = clock.rate[0] / clock.rate[1];
  }

  /** @param {number} scale  pixels a second @returns {number} frames */
  stepFor(scale) {
    const widest = 104;
    const { nominal } = this.clock;
    const steps = [1, 2, 5, 10];
    for (const seconds of [1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200, 14400]) {
      steps.push(seconds * nominal);
    }
    const wanted = (widest / scale) * this.framesPerSecond;
    const found = steps.find((step) => step >= wanted);
    return found === undefined ? 86400 * nominal : found;
  }

  /**
   * Times and labels of the marks between two times.
   * @param {number} from @param {number} to @param {number} scale
   * @returns {{time: number, label: string}[]}
   */
  marks(from, to, scale) {
    const step = this.stepFor(scale);
    const { clock, framesPerSecond } = this;
    const earliest = Math.floor(Math.max(0, from) * framesPerSecond) + clock.zero;
    const marks = [];
    for (let i = Math.ceil(labelNumber(clock, earliest) / step); marks.length < 500; ++i) {
      const frame = frameOfLabel(clock, i * step);
      const time = (frame - clock.zero) / framesPerSecond;
      if (time > to) {
        break;
      }
      marks.push({ time, label: labelOfFrame(clock, frame) });
    }
    return marks;
  }

  /**
   * @param {CanvasRenderingContext2D} context @param {View} view @param {number} height
   * @param {Record<string, string>} colours
   */
  paint(context, view, height, colours) {
    context.clearRect(0, 0, view.width, height);
    context.font = "12px system-ui, sans-serif";
    context.textBaseline = "top";
    for (const { time, label } of this.marks(view.start, view.end, view.scale)) {
      const x = view.xOf(time);
      context.fillStyle = colours["strong-line"];
      context.fillRect(x, height - 9, 1, 9);
      context.fillStyle = colours["soft-ink"];
      context.fillText(label, x + 4, 6);
    }
  }
}
