/** Sizes of the lanes, in pixels of the layout. */
const laneHeight = 64;
const laneGap = 8;
const clipTop = 16;
const pinRadius = 8;

/**
 * The first clip of a lane that ends behind a time.
 * @param {Lane} lane @param {number} time
 */
function firstBehind(lane, time) {
  let low = 0;
  let high = lane.clips.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (lane.latestEnd[middle] <= time) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return low;
}

/** Where the gain line runs: 12 dB at the top of a clip, -48 dB at its foot. @param {number} gain */
function gainHeight(gain) {
  const level = gain === 0 ? -48 : 20 * Math.log10(Math.abs(gain));
  return Math.min(1, Math.max(0, (12 - level) / 60));
}

/** Draws lanes onto a canvas. */
class LanePainter {
  /**
   * @param {CanvasRenderingContext2D} context @param {Model} model @param {View} view
   * @param {(clip: number) => string} nameOf
   */
  constructor(context, model, view, nameOf) {
    this.context = context;
    this.model = model;
    this.view = view;
    this.nameOf = nameOf;
    /** @type {Record<string, string>} */
    this.colours = {};
    this.focused = -1;
    /** @type {CanvasPattern | string} */
    this.hatch = "";
    this.waves = new Waves(model);
    this.audible = new Audible(model);
  }

  /** @param {Record<string, string>} colours */
  setColours(colours) {
    this.colours = colours;
    const tile = document.createElement("canvas");
    tile.width = tile.height = 8;
    const context = /** @type {CanvasRenderingContext2D} */ (tile.getContext("2d"));
    context.fillStyle = colours["bad-ground"];
    context.fillRect(0, 0, 8, 8);
    context.strokeStyle = colours.bad;
    context.globalAlpha = 0.55;
    context.lineWidth = 1.5;
    context.beginPath();
    for (const at of [-8, 0, 8]) {
      context.moveTo(at, 8);
      context.lineTo(at + 8, 0);
    }
    context.stroke();
    this.hatch = this.context.createPattern(tile, "repeat") || colours["bad-ground"];
  }

  /** @param {number} clip */
  isMissing(clip) {
    const source = this.model.source[clip];
    const state = source < 0 ? "missing" : this.model.states[source];
    return state !== "embedded" && state !== "located";
  }

  /** @param {Lane} lane @param {number} clip @returns {CanvasPattern | string} */
  fillOf(lane, clip) {
    if (this.isMissing(clip)) {
      return this.hatch;
    }
    return !this.audible.isHeard(clip)
      ? this.colours.silent
      : this.colours["clip-" + (lane.track % 6)];
  }

  /** @param {Lane} lane @param {number} y */
  paint(lane, y) {
    const { context, view, model, colours } = this;
    context.fillStyle = colours.lane;
    context.fillRect(0, y + clipTop, view.width, laneHeight - clipTop);
    this.paintStretches(lane, y);
    /** @type {[number, number, number][]} */
    const wide = [];
    // Clips of a pixel or two: columns of pixels, those side by side in one rectangle.
    let from = 0;
    let to = -Infinity;
    const endRun = () => {
      if (to > from) {
        context.fillRect(from, y + clipTop, to - from, laneHeight - clipTop);
      }
    };
    context.fillStyle = colours["clip-edge"];
    for (let i = firstBehind(lane, view.start); i < lane.clips.length; ++i) {
      const clip = lane.clips[i];
      const left = view.xOf(model.start[clip]);
      if (left > view.width) {
        break;
      }
      const right = view.xOf(model.start[clip] + model.duration[clip]);
      if (right - left >= 3) {
        wide.push([clip, left, right]);
      } else if (Math.ceil(right) > to) {
        const column = Math.max(0, Math.floor(left));
        if (column > to) {
          endRun();
          from = column;
        }
        to = Math.max(Math.ceil(right), column + 1);
      }
    }
    endRun();
    // Bodies first: where clips cross, the curves of both stay visible.
    wide.forEach(([clip, left, right]) => this.paintBody(lane, clip, left, right, y + clipTop));
    wide.forEach(([clip, left, right]) => this.paintLines(clip, left, right, y + clipTop));
    this.paintEdges(wide, y + clipTop);
    this.paintTrack(lane, y + clipTop);
    this.paintPins(lane, y);
  }

  /** @param {Lane} lane @param {number} clip @param {number} left @param {number} right @param {number} y */
  paintBody(lane, clip, left, right, y) {
    const { context, colours, view } = this;
    const height = laneHeight - clipTop;
    const from = Math.max(left, -2);
    const to = Math.min(right, view.width + 2);
    context.fillStyle = this.fillOf(lane, clip);
    context.globalAlpha = 0.85;
    context.fillRect(from, y, to - from, height);
    context.globalAlpha = 1;
    this.waves.paint(context, view, clip, from, to, y, height, colours.wave);
  }

  /** @param {number} clip @param {number} left @param {number} right @param {number} y */
  paintLines(clip, left, right, y) {
    if (right - left < 8) {
      return;
    }
    const { model, view } = this;
    const height = laneHeight - clipTop;
    this.paintFade(model.fadeIn.get(clip), fadeInGain, left, 1, y, height);
    this.paintFade(model.fadeOut.get(clip), fadeOutGain, right, -1, y, height);
    this.paintGain(clip, left, right, y, height);
    const from = Math.max(left, -2);
    const to = Math.min(right, view.width + 2);
    if (to - from >= 28) {
      this.paintName(clip, from, to, y);
    }
  }

  /** In one stroke, which costs a tenth of one for each. @param {[number, number, number][]} clips @param {number} y */
  paintEdges(clips, y) {
    const { context, colours, view } = this;
    const height = laneHeight - clipTop;
    context.beginPath();
    for (const [, left, right] of clips) {
      const from = Math.max(left, -2);
      const width = Math.min(right, view.width + 2) - from;
      if (width < 8) {
        context.rect(from + 0.5, y, 0, height);
      } else {
        context.rect(from + 0.5, y + 0.5, width - 1, height - 1);
      }
    }
    context.strokeStyle = colours["clip-edge"];
    context.lineWidth = 1;
    context.stroke();
    const focused = clips.find(([clip]) => clip === this.focused);
    if (focused) {
      const from = Math.max(focused[1], -2);
      context.strokeStyle = colours.focus;
      context.lineWidth = 3;
      context.strokeRect(from + 1.5, y + 1.5, Math.max(1, Math.min(focused[2], view.width + 2) - from - 3), height - 3);
    }
  }

  /** @param {number} clip @param {number} from @param {number} to @param {number} y */
  paintName(clip, from, to, y) {
    const { context, colours } = this;
    context.font = "12px system-ui, sans-serif";
    context.textBaseline = "top";
    const name = this.nameOf(clip);
    // The gain line stays to be seen through it.
    context.globalAlpha = 0.62;
    context.fillStyle = this.isMissing(clip) ? colours["bad-ground"] : this.colours.surface;
    if (name === "") {
      context.globalAlpha = 1;
      return;
    }
    const width = context.measureText(name).width + 8;
    const isCut = width > to - from;
    if (isCut) {
      context.save();
      context.beginPath();
      context.rect(from, y, to - from, laneHeight);
      context.clip();
    }
    context.fillRect(from + 1, y + 1, width, 16);
    context.globalAlpha = 1;
    context.fillStyle = this.isMissing(clip) ? colours.bad : colours["clip-ink"];
    context.fillText(name, from + 5, y + 3);
    if (isCut) {
      context.restore();
    }
  }

  /**
   * A fade from its outer end at `x` on: the curve, and what it takes away in shadow.
   * @param {Fade | undefined} fade
   * @param {(model: Model, fade: Fade, place: number) => number} gainOf
   * @param {number} x @param {number} direction  1: a fade-in @param {number} y @param {number} height
   */
  paintFade(fade, gainOf, x, direction, y, height) {
    if (!fade || fade.length <= 0) {
      return;
    }
    const { context, colours, view, model } = this;
    const width = fade.length * view.scale;
    const steps = Math.max(2, Math.min(Math.ceil(width / 2), 200));
    context.beginPath();
    for (let i = 0; i <= steps; ++i) {
      const part = i / steps;
      const gain = Math.min(1, Math.max(0, gainOf(model, fade, direction > 0 ? part : 1 - part)));
      const at = x + direction * width * part;
      if (i === 0) {
        context.moveTo(at, y + height * (1 - gain));
      } else {
        context.lineTo(at, y + height * (1 - gain));
      }
    }
    context.strokeStyle = colours.fade;
    context.lineWidth = 1.5;
    context.stroke();
    context.lineTo(x + direction * width, y);
    context.lineTo(x, y);
    context.closePath();
    context.globalAlpha = 0.14;
    context.fillStyle = colours.fade;
    context.fill();
    context.globalAlpha = 1;
  }

  /** The clip's gain as a line. @param {number} clip @param {number} left @param {number} right @param {number} y @param {number} height */
  paintGain(clip, left, right, y, height) {
    const { context, colours, model, view } = this;
    const automation = model.automation.get(clip);
    if (automation === undefined && !model.gains.has(clip)) {
      return;
    }
    const width = right - left;
    const from = Math.max(0, (0 - left) / width);
    const to = Math.min(1, (view.width - left) / width);
    const steps = automation === undefined ? 1 : Math.max(2, Math.min(Math.ceil((to - from) * width / 2), 1000));
    context.beginPath();
    for (let i = 0; i <= steps; ++i) {
      const place = from + ((to - from) * i) / steps;
      const at = y + 1 + gainHeight(clipGain(model, clip, place)) * (height - 2);
      if (i === 0) {
        context.moveTo(left + width * place, at);
      } else {
        context.lineTo(left + width * place, at);
      }
    }
    context.strokeStyle = colours.gain;
    context.lineWidth = 1.5;
    context.stroke();
  }

  /**
   * What the track does to its clips: its gain in dashes, on the scale of the clips' own, and a pan
   * that moves in dots, left at the top and right at the foot.
   * @param {Lane} lane @param {number} y
   */
  paintTrack(lane, y) {
    const { model, colours } = this;
    const track = model.tracks[lane.track];
    const { envelope, panEnvelope } = track;
    if (envelope !== undefined || track.gain !== 1) {
      this.paintAcross(y, colours.gain, [8, 4], envelope !== undefined, (place) => gainHeight(
        track.gain * (envelope === undefined ? 1 : envelopeValue(model.envelopes[envelope], place)),
      ));
    }
    if (panEnvelope !== undefined) {
      this.paintAcross(y, colours.accent, [2, 4], true, (place) =>
        Math.min(1, Math.max(0, envelopeValue(model.envelopes[panEnvelope], place))));
    }
  }

  /**
   * A line through what is in view of a lane.
   * @param {number} y @param {string} colour @param {number[]} dashes @param {boolean} moves
   * @param {(place: number) => number} heightAt  0 the top, at a place from 0 to 1 of the timeline
   */
  paintAcross(y, colour, dashes, moves, heightAt) {
    const { context, view, model } = this;
    const height = laneHeight - clipTop;
    const end = Math.min(view.width, view.xOf(model.length));
    const steps = moves ? Math.max(2, Math.min(Math.ceil(end / 2), 1000)) : 1;
    context.beginPath();
    for (let i = 0; i <= steps; ++i) {
      const x = (end * i) / steps;
      const at = y + 1 + heightAt((view.start + x / view.scale) / model.length) * (height - 2);
      if (i === 0) {
        context.moveTo(x, at);
      } else {
        context.lineTo(x, at);
      }
    }
    context.setLineDash(dashes);
    context.strokeStyle = colour;
    context.lineWidth = 1.5;
    context.stroke();
    context.setLineDash([]);
  }

  /** What losses take of a lane, hatched on its upper edge. @param {Lane} lane @param {number} y */
  paintStretches(lane, y) {
    const { context, view, model, colours } = this;
    for (const loss of lane.losses) {
      const left = view.xOf(model.losses.start[loss]);
      const right = view.xOf(model.losses.start[loss] + Math.max(0, model.losses.length[loss]));
      if (left > view.width) {
        break;
      }
      if (right >= 0 && right > left) {
        context.fillStyle = colours[model.losses.dropped[loss] ? "bad" : "changed"];
        context.globalAlpha = 0.16;
        context.fillRect(left, y + clipTop, right - left, laneHeight - clipTop);
        context.globalAlpha = 1;
        context.fillRect(left, y + clipTop - 3, right - left, 3);
      }
    }
  }

  /**
   * Pins with the numbers of losses: a square where something was dropped, a circle where it sounds
   * different. Of those that would lie over one another only the first has its number.
   * @param {Lane} lane @param {number} y
   */
  paintPins(lane, y) {
    const { view, model } = this;
    let free = -Infinity;
    for (const loss of lane.losses) {
      const x = view.xOf(model.losses.start[loss]);
      if (x > view.width + pinRadius) {
        break;
      }
      if (x >= -pinRadius && x >= free) {
        free = x + this.paintPin(loss, x, y + pinRadius);
      }
    }
  }

  /** @param {number} loss @param {number} x @param {number} y @returns {number} its width */
  paintPin(loss, x, y) {
    const { context, colours, model } = this;
    const text = String(loss + 1);
    context.font = "600 11px system-ui, sans-serif";
    const half = Math.max(pinRadius, context.measureText(text).width / 2 + 4);
    const isDropped = model.losses.dropped[loss];
    context.fillStyle = colours[isDropped ? "bad" : "changed"];
    context.beginPath();
    if (isDropped) {
      context.rect(x - half, y - pinRadius, 2 * half, 2 * pinRadius - 1);
    } else {
      context.roundRect(x - half, y - pinRadius, 2 * half, 2 * pinRadius - 1, pinRadius);
    }
    context.fill();
    context.fillRect(x - 0.75, y, 1.5, laneHeight - pinRadius);
    context.fillStyle = colours.surface;
    context.textBaseline = "middle";
    context.textAlign = "center";
    context.fillText(text, x, y);
    context.textAlign = "start";
    return 2 * half + 1;
  }
}
