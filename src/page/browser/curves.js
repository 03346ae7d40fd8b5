/** Curves by the numbers that the data has for them. */
const Curve = { linear: 0, constant: 1, power: 2, logarithmic: 3, unknown: 4 };

/** The least of a logarithmic way, as a part of its larger end: -60 dB. */
const logarithmicFloor = 0.001;

/**
 * Even in decibels; a way from one sign to the other is linear.
 * @param {number} from @param {number} to @param {number} place
 */
function logarithmicBetween(from, to, place) {
  if (from * to < 0 || (from === 0 && to === 0)) {
    return from + (to - from) * place;
  }
  const sign = from + to < 0 ? -1 : 1;
  const least = Math.max(Math.abs(from), Math.abs(to)) * logarithmicFloor;
  const first = Math.max(Math.abs(from), least);
  const last = Math.max(Math.abs(to), least);
  return sign * first * Math.pow(last / first, place);
}

/**
 * The value at a place of the way from one value to another.
 * @param {number} curve @param {number} from @param {number} to @param {number} place  from 0 to 1
 */
function valueBetween(curve, from, to, place) {
  if (place <= 0) {
    return from;
  }
  if (place >= 1) {
    return to;
  }
  switch (curve) {
    case Curve.constant:
      return from;
    case Curve.power: {
      const turn = (place * Math.PI) / 2;
      return to > from ? from + (to - from) * Math.sin(turn) : to + (from - to) * Math.cos(turn);
    }
    case Curve.logarithmic:
      return logarithmicBetween(from, to, place);
    default:
      return from + (to - from) * place;
  }
}

/**
 * The value of an envelope: before its first point that one's, behind the last one that one's, of
 * several points at one place the last one's.
 * @param {Envelope} envelope @param {number} place  from 0 to 1 of its owner
 */
function envelopeValue(envelope, place) {
  const { places, values, curve } = envelope;
  let behind = places.length;
  let low = 0;
  while (low < behind) {
    const middle = (low + behind) >> 1;
    if (places[middle] <= place) {
      low = middle + 1;
    } else {
      behind = middle;
    }
  }
  if (behind === 0) {
    return values[0];
  }
  if (behind === places.length) {
    return values[behind - 1];
  }
  const before = behind - 1;
  const way = (place - places[before]) / (places[behind] - places[before]);
  return valueBetween(curve, values[before], values[behind], way);
}

/**
 * The gain that a clip's own line has at a place of it.
 * @param {Model} model @param {number} clip @param {number} place  from 0 to 1
 */
function clipGain(model, clip, place) {
  const fixed = model.gains.get(clip);
  const automation = model.automation.get(clip);
  return (
    (fixed === undefined ? 1 : fixed) *
    (automation === undefined ? 1 : envelopeValue(model.envelopes[automation], place))
  );
}

/** @param {Model} model @param {Fade} fade @param {number} place */
function pointGain(model, fade, place) {
  return envelopeValue(model.envelopes[fade.envelope], fade.isReversed ? 1 - place : place);
}

/** @param {Model} model @param {Fade} fade @param {number} place  from 0 (its start) to 1 */
function fadeInGain(model, fade, place) {
  return fade.envelope < 0 ? valueBetween(fade.curve, 0, 1, place) : pointGain(model, fade, place);
}

/** @param {Model} model @param {Fade} fade @param {number} place  from 0 (its start) to 1 */
function fadeOutGain(model, fade, place) {
  return fade.envelope < 0 ? valueBetween(fade.curve, 1, 0, place) : pointGain(model, fade, place);
}

/** What a pan does to a mono signal: left and right. @param {number} pan  from 0 (left) to 1 */
function panGains(pan) {
  const turn = (Math.min(Math.max(pan, 0), 1) * Math.PI) / 2;
  return [Math.cos(turn), Math.sin(turn)];
}
