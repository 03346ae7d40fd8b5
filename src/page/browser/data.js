/** The element of that id, which the document has. @param {string} id @returns {HTMLElement} */
function element(id) {
  return /** @type {HTMLElement} */ (document.getElementById(id));
}

/** @param {string} id @returns {any} */
function embedded(id) {
  return JSON.parse(element(id).textContent || "");
}

/** @type {Record<string, string>} */
const texts = embedded("texts");

/**
 * A text of the document's catalogue with {0}, {1}, ... filled.
 * @param {string} name @param {...(string | number)} values
 */
function say(name, ...values) {
  return texts[name].replace(/\{(\d)\}/g, (_, digit) => String(values[Number(digit)]));
}

/**
 * Seconds of a time of the data: a number of units, or a fraction of a second as text.
 * @param {number | string} time @param {[number, number]} unit
 */
function secondsOf(time, unit) {
  if (typeof time === "number") {
    return (time * unit[0]) / unit[1];
  }
  const [numerator, denominator] = time.split("/");
  return Number(numerator) / Number(denominator || 1);
}

/** Values of a list that has a number in front of each. @param {number[]} list */
function byNumber(list) {
  /** @type {Map<number, number>} */
  const map = new Map();
  for (let i = 0; i < list.length; i += 2) {
    map.set(list[i], list[i + 1]);
  }
  return map;
}

/** @param {any[]} list @param {[number, number]} unit */
function fadesOf(list, unit) {
  /** @type {Map<number, Fade>} */
  const map = new Map();
  for (let i = 0; i < list.length; i += 5) {
    map.set(list[i], {
      length: secondsOf(list[i + 1], unit),
      curve: list[i + 2],
      envelope: list[i + 3],
      isReversed: list[i + 4] === 1,
    });
  }
  return map;
}

/** @param {[number, number[]][]} list @returns {Envelope[]} */
function envelopesOf(list) {
  return list.map(([curve, pairs]) => ({
    curve,
    places: pairs.filter((_, i) => i % 2 === 0),
    values: pairs.filter((_, i) => i % 2 === 1),
  }));
}

/** @param {any} losses @param {[number, number]} unit */
function lossesOf(losses, unit) {
  /** @param {any} time */
  const seconds = (time) => (time === -1 ? -1 : secondsOf(time, unit));
  return {
    track: losses.track,
    start: losses.start.map(seconds),
    length: losses.length.map(seconds),
    dropped: losses.dropped,
  };
}

/**
 * The lanes: clips and losses by track, in order of start.
 * @param {Model} model @param {(track: number) => string} nameOf
 */
function lanesOf(model, nameOf) {
  /** @type {number[][]} */
  const clips = model.tracks.map(() => []);
  for (let i = 0; i < model.count; ++i) {
    if (model.track[i] >= 0) {
      clips[model.track[i]].push(i);
    }
  }
  const { start, duration, losses } = model;
  return clips.map((numbers, track) => {
    const order = Int32Array.from(numbers.sort((a, b) => start[a] - start[b] || a - b));
    const latestEnd = new Float64Array(order.length);
    let latest = -Infinity;
    order.forEach((clip, i) => {
      latest = Math.max(latest, start[clip] + duration[clip]);
      latestEnd[i] = latest;
    });
    return { track, name: nameOf(track), clips: order, latestEnd, losses: /** @type {number[]} */ ([]) };
  });
}

/** @param {Model} model */
function placeLosses(model) {
  const { track, start } = model.losses;
  start
    .map((_, i) => i)
    .filter((i) => start[i] >= 0 && track[i] >= 0)
    .sort((a, b) => start[a] - start[b] || a - b)
    .forEach((i) => model.lanes[track[i]].losses.push(i));
}

/**
 * What the document holds for its script.
 * @param {(track: number) => string} nameOf  what a person calls a track
 * @returns {Model}
 */
function readModel(nameOf) {
  const data = embedded("data");
  const { clips, unit } = data;
  /** @param {(number | string)[]} times */
  const seconds = (times) => Float64Array.from(times, (time) => secondsOf(time, unit));
  /** @type {Model} */
  const model = {
    clock: data.clock,
    length: 0,
    tracks: data.tracks,
    lanes: [],
    states: data.states,
    rates: data.rates.map((/** @type {number | string} */ rate) => secondsOf(rate, [1, 1])),
    searched: data.searched,
    envelopes: envelopesOf(data.envelopes),
    count: clips.track.length,
    track: Int32Array.from(clips.track),
    source: Int32Array.from(clips.source),
    start: seconds(clips.start),
    duration: seconds(clips.length),
    gains: byNumber(clips.gains),
    automation: byNumber(clips.automation),
    fadeIn: fadesOf(clips.fadeIn, unit),
    fadeOut: fadesOf(clips.fadeOut, unit),
    muted: new Set(clips.muted),
    offset: Float64Array.from(clips.offset),
    channels: byNumber(clips.channels),
    losses: lossesOf(data.losses, unit),
  };
  let end = data.length === undefined ? 0 : secondsOf(data.length, unit);
  for (let i = 0; i < model.count; ++i) {
    end = Math.max(end, model.start[i] + model.duration[i]);
  }
  model.length = end > 0 ? end : 1;
  model.lanes = lanesOf(model, nameOf);
  placeLosses(model);
  return model;
}
