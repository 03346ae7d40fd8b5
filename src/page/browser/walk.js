/** Where a person is in the timeline: a clip, a loss, a time; said aloud and shown everywhere. */
class Walk {
  /**
   * @param {Model} model @param {Stage} stage
   * @param {Record<string, TableView | undefined>} tables
   */
  constructor(model, stage, tables) {
    this.model = model;
    this.stage = stage;
    this.tables = tables;
    this.clip = -1;
    this.loss = -1;
    this.track = 0;
  }

  /** @param {string} text */
  speak(text) {
    element("said").textContent = text;
  }

  /** @param {number} seconds */
  moveCursor(seconds) {
    this.stage.cursor = Math.min(Math.max(0, seconds), this.model.length);
    element("timecode").textContent = timecodeAt(this.model.clock, this.stage.cursor);
    this.stage.ask();
  }

  /** @param {number} clip @param {boolean} [stays]  the view stays where it is */
  goToClip(clip, stays) {
    const { model, stage } = this;
    this.clip = clip;
    this.loss = -1;
    this.track = model.track[clip];
    stage.painter.focused = clip;
    this.moveCursor(model.start[clip]);
    if (!stays) {
      stage.view.show(model.start[clip], model.start[clip] + model.duration[clip]);
    }
    stage.showTrack(this.track);
    this.tables.clips?.select(clip);
    this.speak(this.aboutClip(clip));
  }

  /** @param {number} loss */
  goToLoss(loss) {
    const { model, stage } = this;
    this.loss = loss;
    const start = model.losses.start[loss];
    if (start >= 0) {
      stage.view.show(start, start + Math.max(0, model.losses.length[loss]));
      this.moveCursor(start);
    }
    if (model.losses.track[loss] >= 0) {
      this.track = model.losses.track[loss];
      stage.showTrack(this.track);
    }
    this.tables.losses?.select(loss);
    const cells = this.tables.losses?.rows.cells(loss) || [];
    const place = [cells[4], cells[2]].filter((text) => text).join(", ");
    this.speak(say("lossSaid", loss + 1, cells[6] || "") + (place ? " (" + place + ")" : ""));
  }

  /** @param {number} clip */
  aboutClip(clip) {
    const { model } = this;
    const cells = this.tables.clips?.rows.cells(clip) || [];
    const lane = model.lanes[this.track];
    const parts = [
      say("clipSaid", cells[3] || say("unnamedClip"), cells[0], cells[1], cells[2], cells[4]),
      say("clipPlace", lane ? lane.clips.indexOf(clip) + 1 : 0, lane ? lane.clips.length : 0),
    ];
    if (model.gains.has(clip)) {
      parts.push(say("gainSaid", cells[6].replace(" ~", "")));
    }
    if (model.automation.has(clip)) {
      parts.push(say("gainMoves"));
    }
    if (cells[7]) {
      parts.push(say("fadeInSaid", cells[7]));
    }
    if (cells[8]) {
      parts.push(say("fadeOutSaid", cells[8]));
    }
    if (!this.stage.painter.audible.isHeard(clip)) {
      parts.push(say("mutedSaid"));
    }
    return parts.join(", ") + this.aboutMissing(clip) + this.aboutLosses(clip);
  }

  /** @param {number} clip */
  aboutMissing(clip) {
    const source = this.model.source[clip];
    if (source < 0 || !this.stage.painter.isMissing(clip)) {
      return "";
    }
    const cells = this.tables.sources?.rows.cells(source) || [];
    const places = [cells[7], say("searchedBeside"), ...this.model.searched].filter((text) => text);
    return "\n" + say("searchedSaid", cells[1], cells[2], places.join("; "));
  }

  /** @param {number} clip */
  aboutLosses(clip) {
    const numbers = (this.tables.clips?.rows.cells(clip)[10] || "").match(/\d+/g) || [];
    return numbers
      .map((number) => {
        const cells = this.tables.losses?.rows.cells(Number(number) - 1) || [];
        return "\n" + say("lossSaid", number, cells[6] || "");
      })
      .join("");
  }

  /** The place of the clip in its lane. @returns {number} */
  place() {
    const lane = this.model.lanes[this.track];
    return lane ? lane.clips.indexOf(this.clip) : -1;
  }

  /** To another clip of the lane. @param {number} step */
  step(step) {
    const lane = this.model.lanes[this.track];
    if (!lane || lane.clips.length === 0) {
      this.changeTrack(1);
      return;
    }
    const place = this.place();
    const next = place < 0 ? 0 : Math.min(Math.max(0, place + step), lane.clips.length - 1);
    this.goToClip(lane.clips[next]);
  }

  /** To the clip nearest in time on the next lane that has one. @param {number} step */
  changeTrack(step) {
    const { model, stage } = this;
    for (let track = this.track + step; track >= 0 && track < model.lanes.length; track += step) {
      const { clips } = model.lanes[track];
      if (clips.length > 0) {
        let nearest = clips[0];
        for (const clip of clips) {
          if (Math.abs(model.start[clip] - stage.cursor) < Math.abs(model.start[nearest] - stage.cursor)) {
            nearest = clip;
          }
        }
        this.goToClip(nearest);
        return;
      }
    }
  }

  /** @param {boolean} isLast */
  end(isLast) {
    const lane = this.model.lanes[this.track];
    if (lane && lane.clips.length > 0) {
      this.goToClip(lane.clips[isLast ? lane.clips.length - 1 : 0]);
    }
  }

  /** @param {number} step */
  stepLoss(step) {
    const count = this.model.losses.start.length;
    if (count > 0) {
      const next = this.loss < 0 ? (step > 0 ? 0 : count - 1) : this.loss + step;
      this.goToLoss((next + count) % count);
    }
  }

  /** Copies a text; where the browser does not allow that, it is said. @param {string} text */
  async copy(text) {
    try {
      await navigator.clipboard.writeText(text);
      this.speak(say("copied", text));
    } catch {
      this.speak(say("notCopied", text));
    }
  }

  timecode() {
    return timecodeAt(this.model.clock, this.stage.cursor);
  }

  link() {
    return location.href.replace(/#.*$/, "") + "#at=" + this.timecode();
  }

  /** Opens at the place that the link names: "#at=01:00:02:03". */
  followLink() {
    const named = /^#at=(.+)$/.exec(decodeURIComponent(location.hash));
    const seconds = named ? secondsAt(this.model.clock, named[1]) : undefined;
    if (seconds !== undefined) {
      this.moveCursor(seconds);
      const { view } = this.stage;
      view.zoom(view.smallestScale < 50 ? 50 / view.scale : 1, 0);
      view.start = seconds - view.width / view.scale / 3;
      view.keep();
    }
  }
}
