/** Keys of the timeline. @param {Walk} walk @param {Stage} stage @param {Transport} transport */
function setUpKeys(walk, stage, transport) {
  const { view, canvas } = stage;
  const xOfCursor = () => Math.min(Math.max(0, view.xOf(stage.cursor)), view.width);
  /** @param {number} factor */
  const zoom = (factor) => {
    view.zoom(factor, xOfCursor());
    stage.ask();
  };
  const fit = () => {
    view.fit();
    stage.ask();
  };
  /** @type {Record<string, (event: KeyboardEvent) => void>} */
  const keys = {
    ArrowLeft: () => walk.step(-1),
    ArrowRight: () => walk.step(1),
    ArrowUp: () => walk.changeTrack(-1),
    ArrowDown: () => walk.changeTrack(1),
    Home: () => walk.end(false),
    End: () => walk.end(true),
    "+": () => zoom(1.5),
    "=": () => zoom(1.5),
    "-": () => zoom(1 / 1.5),
    0: fit,
    l: () => walk.stepLoss(1),
    L: () => walk.stepLoss(-1),
    c: () => void walk.copy(walk.timecode()),
    Enter: () => walk.tables.clips?.focusCurrent(),
    " ": () => transport.toggle(),
    o: () => transport.toggleLoop(),
    m: () => transport.press("mute"),
    s: () => transport.press("solo"),
    "?": showHelp,
  };
  canvas.addEventListener("keydown", (event) => {
    const action = keys[event.key];
    if (action && !event.ctrlKey && !event.altKey && !event.metaKey) {
      action(event);
      event.preventDefault();
    }
  });
  /** @type {[string, () => void][]} */
  const buttons = [
    ["zoom-in", () => zoom(1.5)],
    ["zoom-out", () => zoom(1 / 1.5)],
    ["zoom-fit", fit],
    ["previous-clip", () => walk.step(-1)],
    ["next-clip", () => walk.step(1)],
    ["previous-loss", () => walk.stepLoss(-1)],
    ["next-loss", () => walk.stepLoss(1)],
    ["copy-timecode", () => void walk.copy(walk.timecode())],
    ["copy-link", () => void walk.copy(walk.link())],
    ["keys", showHelp],
  ];
  for (const [id, action] of buttons) {
    element(id).addEventListener("click", action);
  }
}

function showHelp() {
  /** @type {HTMLDialogElement} */ (element("help")).showModal();
}

/** Wheel: with Ctrl it zooms, with Shift or sideways it moves in time. @param {Stage} stage */
function setUpWheel(stage) {
  for (const canvas of [stage.canvas, stage.rulerCanvas]) {
    canvas.addEventListener(
      "wheel",
      (event) => {
        const x = event.clientX - canvas.getBoundingClientRect().left;
        if (event.ctrlKey) {
          stage.view.zoom(Math.exp(-event.deltaY / 300), x);
        } else if (event.shiftKey || Math.abs(event.deltaX) > Math.abs(event.deltaY)) {
          stage.view.pan(event.deltaX || event.deltaY);
        } else {
          return;
        }
        event.preventDefault();
        stage.ask();
      },
      { passive: false },
    );
  }
}

/** Mouse, pen and fingers: one moves, two zoom, a tap chooses. @param {Walk} walk @param {Stage} stage */
function setUpPointers(walk, stage) {
  const { canvas, view } = stage;
  /** @type {Map<number, number>} */
  const pointers = new Map();
  let moved = 0;
  /** @param {PointerEvent} event */
  const place = (event) => {
    const box = canvas.getBoundingClientRect();
    return { x: event.clientX - box.left, y: event.clientY - box.top };
  };
  canvas.addEventListener("pointerdown", (event) => {
    canvas.focus({ preventScroll: true });
    canvas.setPointerCapture(event.pointerId);
    pointers.set(event.pointerId, place(event).x);
    moved = 0;
  });
  canvas.addEventListener("pointermove", (event) => {
    const before = pointers.get(event.pointerId);
    if (before === undefined) {
      return;
    }
    const { x } = place(event);
    const other = [...pointers.entries()].find(([id]) => id !== event.pointerId);
    if (other) {
      const factor = Math.max(10, Math.abs(x - other[1])) / Math.max(10, Math.abs(before - other[1]));
      view.zoom(factor, (x + other[1]) / 2);
    } else {
      view.pan(before - x);
    }
    moved += Math.abs(x - before);
    pointers.set(event.pointerId, x);
    stage.ask();
  });
  canvas.addEventListener("pointercancel", (event) => pointers.delete(event.pointerId));
  canvas.addEventListener("pointerup", (event) => {
    pointers.delete(event.pointerId);
    const { x, y } = place(event);
    if (moved < 4 && pointers.size === 0) {
      const loss = stage.lossAt(x, y);
      const clip = stage.clipAt(x, y);
      if (loss >= 0) {
        walk.goToLoss(loss);
      } else if (clip >= 0) {
        walk.goToClip(clip, true);
        walk.moveCursor(view.timeAt(x));
      } else {
        walk.moveCursor(view.timeAt(x));
      }
    }
  });
  stage.rulerCanvas.addEventListener("pointerdown", (event) => {
    walk.moveCursor(view.timeAt(event.clientX - stage.rulerCanvas.getBoundingClientRect().left));
  });
}

/** The overview: the stretch in view follows the pointer. @param {Stage} stage */
function setUpOverview(stage) {
  const { overview, view } = stage;
  /** @param {PointerEvent} event */
  const follow = (event) => {
    const box = overview.getBoundingClientRect();
    const time = ((event.clientX - box.left) / box.width) * stage.model.length;
    view.start = time - view.width / view.scale / 2;
    view.keep();
    stage.ask();
  };
  overview.addEventListener("pointerdown", (event) => {
    overview.setPointerCapture(event.pointerId);
    follow(event);
  });
  overview.addEventListener("pointermove", (event) => {
    if (overview.hasPointerCapture(event.pointerId)) {
      follow(event);
    }
  });
}
