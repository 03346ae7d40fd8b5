/**
 * A canvas at the size that it has in the layout, in the pixels of the screen.
 * @param {HTMLCanvasElement} canvas @param {number} width @param {number} height
 */
function fitCanvas(canvas, width, height) {
  const ratio = window.devicePixelRatio || 1;
  const context = /** @type {CanvasRenderingContext2D} */ (canvas.getContext("2d"));
  const pixels = [Math.max(1, Math.round(width * ratio)), Math.max(1, Math.round(height * ratio))];
  if (canvas.width !== pixels[0] || canvas.height !== pixels[1]) {
    [canvas.width, canvas.height] = pixels;
  }
  context.setTransform(ratio, 0, 0, ratio, 0, 0);
  return context;
}

/** The picture of the timeline: overview, ruler, lanes with their heads, and the cursor. */
class Stage {
  /** @param {Model} model @param {(clip: number) => string} nameOf */
  constructor(model, nameOf) {
    this.model = model;
    this.view = new View(model.length);
    this.ruler = new Ruler(model.clock);
    this.canvas = /** @type {HTMLCanvasElement} */ (element("lanes"));
    this.overview = /** @type {HTMLCanvasElement} */ (element("overview"));
    this.rulerCanvas = /** @type {HTMLCanvasElement} */ (element("ruler"));
    this.scroller = element("scroller");
    this.heads = element("heads");
    const context = /** @type {CanvasRenderingContext2D} */ (this.canvas.getContext("2d"));
    this.painter = new LanePainter(context, model, this.view, nameOf);
    this.cursor = 0;
    this.height = 0;
    this.headWidth = 0;
    this.isAsked = false;
    /** @type {HTMLCanvasElement | null} */
    this.picture = null;
    /** @type {(track: number, head: HTMLElement) => void} */
    this.fillHead = () => undefined;
    /** @type {Map<number, HTMLElement>} */
    this.shownHeads = new Map();
    element("spacer").style.height = model.lanes.length * (laneHeight + laneGap) + laneGap + "px";
    this.painter.setColours(currentColours());
    new ResizeObserver(() => this.resize()).observe(this.scroller);
    this.scroller.addEventListener("scroll", () => this.ask());
  }

  /** Colours have changed. */
  repaint() {
    this.painter.setColours(currentColours());
    this.picture = null;
    this.ask();
  }

  resize() {
    this.headWidth = this.scroller.clientWidth < 560 ? 84 : 168;
    this.height = this.scroller.clientHeight;
    const width = Math.max(50, this.scroller.clientWidth - this.headWidth);
    for (const canvas of [this.canvas, this.rulerCanvas]) {
      canvas.style.marginLeft = this.headWidth + "px";
      canvas.style.width = width + "px";
    }
    this.canvas.style.height = this.height + "px";
    this.view.resize(width);
    this.picture = null;
    this.shownHeads.forEach((head) => head.remove());
    this.shownHeads.clear();
    this.ask();
  }

  /** Paints before the next picture of the screen. */
  ask() {
    if (!this.isAsked) {
      this.isAsked = true;
      requestAnimationFrame(() => {
        this.isAsked = false;
        this.paint();
      });
    }
  }

  paint() {
    this.paintLanes();
    const colours = this.painter.colours;
    const height = this.rulerCanvas.clientHeight;
    const ruler = fitCanvas(this.rulerCanvas, this.view.width, height);
    this.ruler.paint(ruler, this.view, height, colours);
    const x = this.view.xOf(this.cursor);
    ruler.fillStyle = colours.cursor;
    ruler.beginPath();
    ruler.moveTo(x - 5, height - 8);
    ruler.lineTo(x + 5, height - 8);
    ruler.lineTo(x, height);
    ruler.fill();
    this.paintOverview();
  }

  /** The lanes in view: first and behind the last. @returns {[number, number]} */
  lanesInView() {
    const step = laneHeight + laneGap;
    const top = this.scroller.scrollTop;
    return [
      Math.max(0, Math.floor((top - laneGap) / step)),
      Math.min(this.model.lanes.length, Math.ceil((top + this.height) / step)),
    ];
  }

  /** Where a lane begins on the canvas. @param {number} track */
  topOf(track) {
    return laneGap + track * (laneHeight + laneGap) - this.scroller.scrollTop;
  }

  paintLanes() {
    const { view, painter } = this;
    const context = fitCanvas(this.canvas, view.width, this.height);
    context.fillStyle = painter.colours.surface;
    context.fillRect(0, 0, view.width, this.height);
    const [first, behind] = this.lanesInView();
    context.fillStyle = painter.colours.line;
    for (const { time } of this.ruler.marks(view.start, view.end, view.scale)) {
      context.fillRect(view.xOf(time), 0, 1, this.height);
    }
    // Many lanes of fine columns would take longer than a picture may.
    painter.waves.step = (behind - first) * view.width > 5000 ? 2 : 1;
    for (let track = first; track < behind; ++track) {
      painter.paint(this.model.lanes[track], this.topOf(track));
    }
    context.fillStyle = painter.colours.cursor;
    context.fillRect(view.xOf(this.cursor) - 0.75, 0, 1.5, this.height);
    this.placeHeads(first, behind);
  }

  /** @param {number} first @param {number} behind */
  placeHeads(first, behind) {
    this.shownHeads.forEach((head, track) => {
      if (track < first || track >= behind) {
        head.remove();
        this.shownHeads.delete(track);
      }
    });
    for (let track = first; track < behind; ++track) {
      if (!this.shownHeads.has(track)) {
        const head = document.createElement("div");
        head.className = "head";
        head.style.top = laneGap + track * (laneHeight + laneGap) + "px";
        head.style.height = laneHeight + "px";
        head.style.width = this.headWidth + "px";
        this.fillHead(track, head);
        this.heads.append(head);
        this.shownHeads.set(track, head);
      }
    }
  }

  paintOverview() {
    const width = this.overview.clientWidth;
    const height = this.overview.clientHeight;
    const { colours } = this.painter;
    if (!this.picture) {
      this.picture = document.createElement("canvas");
      paintWhole(fitCanvas(this.picture, width, height), this.model, width, height, colours);
    }
    const context = fitCanvas(this.overview, width, height);
    context.clearRect(0, 0, width, height);
    context.drawImage(this.picture, 0, 0, width, height);
    const scale = width / this.model.length;
    const left = Math.max(0, this.view.start * scale);
    const right = Math.min(width, this.view.end * scale);
    context.strokeStyle = colours.accent;
    context.lineWidth = 2;
    context.strokeRect(left + 1, 1, Math.max(2, right - left - 2), height - 2);
    context.fillStyle = colours.cursor;
    context.fillRect(this.cursor * scale - 0.75, 0, 1.5, height);
  }

  /** The clip under a point of the canvas; -1: none. @param {number} x @param {number} y */
  clipAt(x, y) {
    const track = this.trackAt(y);
    if (track < 0 || y - this.topOf(track) < clipTop) {
      return -1;
    }
    const { model, view } = this;
    const lane = model.lanes[track];
    const slack = 2 / view.scale;
    const time = view.timeAt(x);
    let found = -1;
    for (let i = firstBehind(lane, time - slack); i < lane.clips.length; ++i) {
      const clip = lane.clips[i];
      if (model.start[clip] > time + slack) {
        break;
      }
      if (model.start[clip] + model.duration[clip] >= time - slack) {
        found = clip;
      }
    }
    return found;
  }

  /** The loss whose pin is under a point; -1: none. @param {number} x @param {number} y */
  lossAt(x, y) {
    const track = this.trackAt(y);
    if (track < 0 || y - this.topOf(track) >= clipTop) {
      return -1;
    }
    const near = this.model.lanes[track].losses.filter(
      (loss) => Math.abs(this.view.xOf(this.model.losses.start[loss]) - x) <= pinRadius + 4,
    );
    return near.length === 0 ? -1 : near[0];
  }

  /** @param {number} y */
  trackAt(y) {
    const track = Math.floor((y + this.scroller.scrollTop - laneGap) / (laneHeight + laneGap));
    return track >= 0 && track < this.model.lanes.length ? track : -1;
  }

  /** Scrolls a lane into view. @param {number} track */
  showTrack(track) {
    const top = laneGap + track * (laneHeight + laneGap);
    const { scroller } = this;
    if (top < scroller.scrollTop) {
      scroller.scrollTop = top - laneGap;
    } else if (top + laneHeight > scroller.scrollTop + this.height) {
      scroller.scrollTop = top + laneHeight + laneGap - this.height;
    }
  }
}

/**
 * The whole timeline in a strip.
 * @param {CanvasRenderingContext2D} context @param {Model} model @param {number} width
 * @param {number} height @param {Record<string, string>} colours
 */
function paintWhole(context, model, width, height, colours) {
  context.fillStyle = colours.lane;
  context.fillRect(0, 0, width, height);
  const scale = width / model.length;
  const step = (height - 6) / Math.max(1, model.lanes.length);
  model.lanes.forEach((lane, track) => {
    const y = 3 + track * step;
    context.fillStyle = colours["clip-edge"];
    let painted = -Infinity;
    for (const clip of lane.clips) {
      const left = Math.max(model.start[clip] * scale, painted);
      const right = (model.start[clip] + model.duration[clip]) * scale;
      if (right > painted + 0.25) {
        context.fillRect(left, y, Math.max(right - left - 0.5, 0.5), Math.max(step - 1, 0.5));
        painted = right;
      }
    }
    let free = -Infinity;
    for (const loss of lane.losses) {
      const x = model.losses.start[loss] * scale;
      if (x >= free) {
        context.fillStyle = colours[model.losses.dropped[loss] ? "bad" : "changed"];
        context.fillRect(x - 1, 0, 3, height);
        free = x + 1;
      }
    }
  });
}
