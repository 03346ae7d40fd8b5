/**
 * The shapes that the parts of the script share.
 *
 * @typedef {{rate: [number, number], nominal: number, drop: boolean, zero: number}} Clock
 * @typedef {{gain: number, pan?: number, muted: boolean, solo: boolean, envelope?: number,
 *   panEnvelope?: number}} TrackData
 * @typedef {{curve: number, places: number[], values: number[]}} Envelope
 * @typedef {{length: number, curve: number, envelope: number, isReversed: boolean}} Fade
 *
 * @typedef {object} Lane  the clips of one track
 * @property {number} track
 * @property {string} name
 * @property {Int32Array} clips  numbers, by ascending start
 * @property {Float64Array} latestEnd  of these clips, each with all before it
 * @property {number[]} losses  numbers, by ascending start
 *
 * @typedef {object} Model  times in seconds from the timeline's zero
 * @property {Clock} clock
 * @property {number} length  of the timeline, above 0
 * @property {TrackData[]} tracks
 * @property {Lane[]} lanes
 * @property {string[]} states  of the sources
 * @property {number[]} rates  of the sources, samples in a second
 * @property {string[]} searched
 * @property {Envelope[]} envelopes
 * @property {number} count  of clips
 * @property {Int32Array} track
 * @property {Int32Array} source
 * @property {Float64Array} start
 * @property {Float64Array} duration
 * @property {Map<number, number>} gains
 * @property {Map<number, number>} automation
 * @property {Map<number, Fade>} fadeIn
 * @property {Map<number, Fade>} fadeOut
 * @property {Set<number>} muted  clips that are muted themselves
 * @property {Float64Array} offset  first frame of its source that a clip plays
 * @property {Map<number, number>} channels  of the sources, that clips play, from 0
 * @property {{track: number[], start: number[], length: number[], dropped: number[]}} losses
 *   start -1: place not known
 */
