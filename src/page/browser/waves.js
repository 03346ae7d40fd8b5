/**
 * Waveforms: the highest and lowest samples of the sources.
 *
 * @typedef {object} Waves
 * @property {(context: CanvasRenderingContext2D, clip: number, from: number, to: number, y: number,
 *   height: number, colour: string) => void} paint
 */
