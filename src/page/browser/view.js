/**
 * What of the timeline is in view, and how: seconds at the left edge, pixels (of the layout) a
 * second.
 */
class View {
  /** @param {number} length  of the timeline in seconds */
  constructor(length) {
    this.length = length;
    this.start = 0;
    this.width = 1;
    this.scale = 1;
  }

  get smallestScale() {
    return this.width / (this.length * 1.02);
  }

  /** Pixels of a sample or two: more shows nothing. */
  get largestScale() {
    return Math.max(20000, this.smallestScale);
  }

  /** @param {number} width */
  resize(width) {
    const showsAll = this.scale <= this.smallestScale;
    this.width = Math.max(1, width);
    if (showsAll) {
      this.fit();
    } else {
      this.keep();
    }
  }

  fit() {
    this.scale = this.smallestScale;
    this.start = -this.length * 0.01;
  }

  keep() {
    this.scale = Math.min(Math.max(this.scale, this.smallestScale), this.largestScale);
    const seconds = this.width / this.scale;
    const margin = this.length * 0.01;
    this.start = Math.min(Math.max(this.start, -margin), Math.max(-margin, this.length + margin - seconds));
  }

  /** @param {number} factor @param {number} x  the pixel that stays where it is */
  zoom(factor, x) {
    const fixed = this.timeAt(x);
    this.scale = Math.min(Math.max(this.scale * factor, this.smallestScale), this.largestScale);
    this.start = fixed - x / this.scale;
    this.keep();
  }

  /** @param {number} pixels */
  pan(pixels) {
    this.start += pixels / this.scale;
    this.keep();
  }

  /** Brings a stretch into view; what is in view already stays. @param {number} from @param {number} to */
  show(from, to) {
    const seconds = this.width / this.scale;
    if (to - from > seconds) {
      this.start = from - seconds * 0.1;
    } else if (from < this.start || to > this.start + seconds) {
      this.start = (from + to - seconds) / 2;
    }
    this.keep();
  }

  /** @param {number} time */
  xOf(time) {
    return (time - this.start) * this.scale;
  }

  /** @param {number} x */
  timeAt(x) {
    return this.start + x / this.scale;
  }

  get end() {
    return this.start + this.width / this.scale;
  }
}
