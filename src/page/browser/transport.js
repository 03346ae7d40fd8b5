/**
 * Play, loop, and the mutes and solos of the tracks. Without previews in the page nothing of it is
 * shown but what the file says.
 */
class Transport {
  /** @param {Walk} walk @param {Stage} stage @param {Audible} audible */
  constructor(walk, stage, audible) {
    this.walk = walk;
    this.stage = stage;
    this.audible = audible;
    this.isLooping = false;
    /** @type {[number, number, number, string][]} */
    this.pieces = embedded("previews");
    /** @type {Player | null} */
    this.player = null;
    this.button = element("play");
    if (this.pieces.length > 0) {
      element("transport").hidden = false;
      this.button.addEventListener("click", () => this.toggle());
      element("loop").addEventListener("click", () => this.toggleLoop());
    }
  }

  /** @returns {Player} */
  get readyPlayer() {
    if (!this.player) {
      const mixer = new Mixer(this.walk.model, this.audible, this.pieces);
      this.player = new Player(mixer, (seconds) => this.moved(seconds), () => this.show());
    }
    return this.player;
  }

  toggle() {
    if (this.pieces.length === 0) {
      return;
    }
    const player = this.readyPlayer;
    if (player.isPlaying) {
      player.stop();
    } else {
      const { length } = this.walk.model;
      const loop = this.stretch();
      let from = this.stage.cursor >= length ? 0 : this.stage.cursor;
      if (loop && (from < loop[0] || from >= loop[1])) {
        from = loop[0];
      }
      void player.play(from, length, loop);
    }
    this.show();
  }

  toggleLoop() {
    this.isLooping = !this.isLooping;
    element("loop").setAttribute("aria-pressed", String(this.isLooping));
    if (this.player && this.player.isPlaying) {
      this.toggle();
      this.toggle();
    }
  }

  /** What is repeated: the chosen clip, else what is in view. @returns {[number, number] | null} */
  stretch() {
    const { walk, stage } = this;
    const { model } = walk;
    if (!this.isLooping) {
      return null;
    }
    return walk.clip >= 0
      ? [model.start[walk.clip], model.start[walk.clip] + model.duration[walk.clip]]
      : [Math.max(0, stage.view.start), Math.min(model.length, stage.view.end)];
  }

  /** @param {number} seconds */
  moved(seconds) {
    this.walk.moveCursor(seconds);
    const { view } = this.stage;
    if (seconds > view.end || seconds < view.start) {
      view.start = seconds;
      view.keep();
    }
  }

  show() {
    const isPlaying = this.player !== null && this.player.isPlaying;
    this.button.textContent = say(isPlaying ? "stop" : "play");
    this.button.setAttribute("aria-pressed", String(isPlaying));
  }

  /** @param {number} track @param {HTMLElement} head */
  addSwitches(track, head) {
    const box = document.createElement("div");
    const { name } = this.walk.model.lanes[track];
    box.className = "switches";
    box.append(
      this.switchOf(say("mute"), say("muteSaid", name), this.audible.muted, track),
      this.switchOf(say("soloShort"), say("soloShortSaid", name), this.audible.solo, track),
    );
    head.append(box);
  }

  /** @param {string} letter @param {string} label @param {boolean[]} states @param {number} track */
  switchOf(letter, label, states, track) {
    const button = document.createElement("button");
    button.type = "button";
    button.textContent = letter;
    button.setAttribute("aria-label", label);
    button.setAttribute("aria-pressed", String(states[track]));
    button.addEventListener("click", () => {
      states[track] = !states[track];
      button.setAttribute("aria-pressed", String(states[track]));
      this.stage.ask();
      if (this.player) {
        this.player.refresh();
      }
    });
    return button;
  }

  /** Mutes or solos the track of the timeline's focus. @param {string} name */
  press(name) {
    const head = this.stage.shownHeads.get(this.walk.track);
    const buttons = head ? head.querySelectorAll("button") : [];
    buttons[name === "mute" ? 0 : 1]?.click();
  }
}
