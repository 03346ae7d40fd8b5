/** @param {number} value */
function twoDigits(value) {
  return value < 10 ? "0" + value : String(value);
}

/**
 * What labels count: frames with those that drop-frame counting skips.
 * @param {Clock} clock @param {number} frame  from 00:00:00:00
 */
function labelNumber(clock, frame) {
  const { nominal, drop } = clock;
  if (!drop) {
    return frame;
  }
  const dropped = nominal / 15;
  const perTenMinutes = nominal * 600 - dropped * 9;
  const perMinute = nominal * 60 - dropped;
  const within = frame % perTenMinutes;
  const minutes = within < nominal * 60 ? 0 : Math.floor((within - nominal * 60) / perMinute) + 1;
  return frame + dropped * (Math.floor(frame / perTenMinutes) * 9 + minutes);
}

/** The frame of a label; of one that is skipped the frame behind it. @param {Clock} clock @param {number} number */
function frameOfLabel(clock, number) {
  if (!clock.drop) {
    return number;
  }
  const minutes = Math.floor(number / (clock.nominal * 60));
  const dropped = clock.nominal / 15;
  const isSkipped = minutes % 10 !== 0 && number % (clock.nominal * 60) < dropped;
  const whole = isSkipped ? minutes * clock.nominal * 60 + dropped : number;
  return whole - dropped * (minutes - Math.floor(minutes / 10));
}

/**
 * The label of a frame, counted from 00:00:00:00.
 * @param {Clock} clock @param {number} frame
 */
function labelOfFrame(clock, frame) {
  const { nominal, drop } = clock;
  const number = labelNumber(clock, frame) % (nominal * 86400);
  const seconds = Math.floor(number / nominal);
  return (
    [Math.floor(seconds / 3600), Math.floor(seconds / 60) % 60, seconds % 60]
      .map(twoDigits)
      .join(":") +
    (drop ? ";" : ":") +
    twoDigits(number % nominal)
  );
}

/** The label at a time, to the nearest frame. @param {Clock} clock @param {number} seconds */
function timecodeAt(clock, seconds) {
  const frames = Math.round((seconds * clock.rate[0]) / clock.rate[1]) + clock.zero;
  return labelOfFrame(clock, Math.max(0, frames));
}

/**
 * The time of a label, which may have been typed; absent where it is none.
 * @param {Clock} clock @param {string} label @returns {number | undefined}
 */
function secondsAt(clock, label) {
  const parts = /^(\d{1,2})[:;.](\d{1,2})[:;.](\d{1,2})[:;.](\d{1,3})$/.exec(label.trim());
  if (!parts) {
    return undefined;
  }
  const [hours, minutes, seconds, frames] = parts.slice(1).map(Number);
  const number = ((hours * 60 + minutes) * 60 + seconds) * clock.nominal + frames;
  return ((frameOfLabel(clock, number) - clock.zero) * clock.rate[1]) / clock.rate[0];
}
