/** Curves by the numbers that the data has for them. */
const Curve = { linear: 0, constant: 1, power: 2, logarithmic: 3, unknown: 4 };

/**
 * The gain of a rising fade; a falling one is the same from its other end.
 * @param {number} curve @param {number} part  from 0 (silence) to 1
 */
function fadeGain(curve, part) {
  switch (curve) {
    case Curve.constant:
      return 1;
    case Curve.power:
      return Math.sin((part * Math.PI) / 2);
    case Curve.logarithmic:
      return part === 0 ? 0 : Math.pow(10, 3 * (part - 1));
    default:
      return part;
  }
}

/**
 * The value of an envelope.
 * @param {Envelope} envelope @param {number} place  from 0 to 1 of its owner
 */
function envelopeValue(envelope, place) {
  const { places, values, curve } = envelope;
  let before = 0;
  let behind = places.length - 1;
  if (place <= places[before]) {
    return values[before];
  }
  if (place >= places[behind]) {
    return values[behind];
  }
  while (behind - before > 1) {
    const middle = (before + behind) >> 1;
    if (places[middle] <= place) {
      before = middle;
    } else {
      behind = middle;
    }
  }
  if (curve === Curve.constant) {
    return values[before];
  }
  const part = (place - places[before]) / (places[behind] - places[before]);
  return values[before] + (values[behind] - values[before]) * part;
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

/**
 * The gain of a fade.
 * @param {Model} model @param {Fade} fade @param {number} part  from 0 (its silent end) to 1
 */
function gainOfFade(model, fade, part) {
  return fade.envelope < 0
    ? fadeGain(fade.curve, part)
    : envelopeValue(model.envelopes[fade.envelope], part);
}
