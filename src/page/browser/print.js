const vectorGraphics = "http://www.w3.org/2000/svg";

/** @param {Element} parent @param {string} name @param {Record<string, string | number>} values */
function addVector(parent, name, values) {
  const element = document.createElementNS(vectorGraphics, name);
  for (const [key, value] of Object.entries(values)) {
    element.setAttribute(key, String(value));
  }
  parent.append(element);
  return element;
}

/** The timeline on paper: rows of so many minutes, each with all lanes. */
class PrintedTimeline {
  /** @param {Model} model @param {(clip: number) => string} nameOf */
  constructor(model, nameOf) {
    this.model = model;
    this.nameOf = nameOf;
    this.width = 1000;
    this.headWidth = 90;
    // Many lanes still fit on one sheet.
    this.laneHeight = Math.min(18, Math.max(7, 560 / Math.max(1, model.lanes.length)));
    this.ruler = new Ruler(model.clock);
  }

  /** Seconds of a row: as few as lead to at most twelve rows. */
  get rowSeconds() {
    const lengths = [5, 10, 15, 30, 60, 120, 300, 600, 1200, 1800, 3600, 7200];
    return lengths.find((length) => this.model.length <= length * 12) || this.model.length / 12;
  }

  /** @param {Element} into */
  draw(into) {
    const seconds = this.rowSeconds;
    for (let from = 0; from < this.model.length; from += seconds) {
      this.drawRow(into, from, seconds);
    }
  }

  /** @param {Element} into @param {number} from @param {number} seconds */
  drawRow(into, from, seconds) {
    const { model, width, headWidth, laneHeight } = this;
    const height = 16 + model.lanes.length * laneHeight;
    const svg = addVector(into, "svg", { viewBox: "0 0 " + width + " " + height });
    const scale = (width - headWidth) / seconds;
    /** @param {number} time */
    const x = (time) => headWidth + (time - from) * scale;
    for (const { time, label } of this.ruler.marks(from, from + seconds, scale)) {
      addVector(svg, "path", { d: "M" + x(time) + " 2V" + height, stroke: "#bbb", "stroke-width": 0.5 });
      this.addText(svg, label, x(time) + 2, 10, "#444");
    }
    model.lanes.forEach((lane, i) => {
      const y = 14 + i * laneHeight;
      this.addText(svg, lane.name.slice(0, 18), 0, y + this.laneHeight * 0.6, "#000");
      this.drawLane(svg, lane, y, from, from + seconds, x);
    });
  }

  /** @param {Element} svg @param {string} text @param {number} x @param {number} y @param {string} fill */
  addText(svg, text, x, y, fill) {
    const element = addVector(svg, "text", { x, y, fill, "font-size": Math.min(8.5, this.laneHeight * 0.6), "font-family": "sans-serif" });
    element.textContent = text;
  }

  /**
   * @param {Element} svg @param {Lane} lane @param {number} y @param {number} from
   * @param {number} to @param {(time: number) => number} x
   */
  drawLane(svg, lane, y, from, to, x) {
    const { model } = this;
    const audible = new Audible(model);
    let painted = -Infinity;
    for (let i = firstBehind(lane, from); i < lane.clips.length; ++i) {
      const clip = lane.clips[i];
      if (model.start[clip] >= to) {
        break;
      }
      const left = x(Math.max(from, model.start[clip]));
      const right = x(Math.min(to, model.start[clip] + model.duration[clip]));
      if (right > painted + 0.4) {
        const isThere = ["embedded", "located"].includes(model.states[model.source[clip]]);
        addVector(svg, "rect", {
          x: left, y, width: Math.max(0.4, right - left), height: this.laneHeight - 4,
          fill: audible.isHeard(clip) ? "#dbe7f3" : "#eee", stroke: isThere ? "#567" : "#a00",
          "stroke-width": 0.6, "stroke-dasharray": isThere ? "none" : "2 1.5",
        });
        painted = right;
        this.drawFades(svg, clip, y, from, to, x);
        const letters = Math.floor((right - left - 4) / 4.6);
        if (letters >= 2) {
          this.addText(svg, this.nameOf(clip).slice(0, letters), left + 2, y + this.laneHeight * 0.55, "#000");
        }
      }
    }
    this.drawPins(svg, lane, y, from, to, x);
  }

  /**
   * @param {Element} svg @param {number} clip @param {number} y @param {number} from
   * @param {number} to @param {(time: number) => number} x
   */
  drawFades(svg, clip, y, from, to, x) {
    const { model } = this;
    const start = model.start[clip];
    const end = start + model.duration[clip];
    const height = this.laneHeight - 4;
    /** @param {Fade | undefined} fade @param {number} begin @param {typeof fadeInGain} gainOf */
    const draw = (fade, begin, gainOf) => {
      if (!fade || x(begin + fade.length) - x(begin) < 3) {
        return;
      }
      const points = [];
      for (let i = 0; i <= 24; ++i) {
        const time = begin + (fade.length * i) / 24;
        if (time >= from && time <= to) {
          const gain = Math.min(1, Math.max(0, gainOf(model, fade, i / 24)));
          points.push(x(time).toFixed(1) + "," + (y + height * (1 - gain)).toFixed(1));
        }
      }
      addVector(svg, "polyline", { points: points.join(" "), fill: "none", stroke: "#234", "stroke-width": 0.6 });
    };
    draw(model.fadeIn.get(clip), start, fadeInGain);
    const fadeOut = model.fadeOut.get(clip);
    draw(fadeOut, end - (fadeOut ? fadeOut.length : 0), fadeOutGain);
  }

  /**
   * @param {Element} svg @param {Lane} lane @param {number} y @param {number} from
   * @param {number} to @param {(time: number) => number} x
   */
  drawPins(svg, lane, y, from, to, x) {
    let free = -Infinity;
    for (const loss of lane.losses) {
      const start = this.model.losses.start[loss];
      if (start >= from && start < to && x(start) >= free) {
        const label = String(loss + 1);
        const width = 4 + 5 * label.length;
        addVector(svg, "rect", {
          x: x(start), y: y - 2, width, height: 9, fill: "#fff", stroke: "#a00",
          rx: this.model.losses.dropped[loss] ? 0 : 4, "stroke-width": 0.8,
        });
        this.addText(svg, label, x(start) + 2, y + 5.4, "#a00");
        free = x(start) + width;
      }
    }
  }
}

/** @param {Model} model @param {TableView[]} tables @param {(clip: number) => string} nameOf */
function setUpPrinting(model, tables, nameOf) {
  const paper = element("printed");
  addEventListener("beforeprint", () => {
    new PrintedTimeline(model, nameOf).draw(paper);
    tables.forEach((table) => table.showAll());
  });
  addEventListener("afterprint", () => {
    paper.replaceChildren();
    tables.forEach((table) => table.render());
  });
}
