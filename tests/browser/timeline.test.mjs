// SPDX-License-Identifier: Apache-2.0
import assert from "node:assert/strict";
import { after, test } from "node:test";
import { clipHeight, clipTop, close, colour, distance, firstLane, laneStep, opened, pageOfExample, pixel, pixels,
  said, sample, settled, xOf } from "./support.mjs";

after(close);

/** Of the page "everything", as its builder has it. */
const length = 20;

/** The height, from the top of a clip, at which a line of that colour crosses the pixel column. */
async function heightOfLine(page, track, seconds, wanted) {
  const x = await xOf(page, seconds, length);
  const top = firstLane + track * laneStep + clipTop;
  let found = -1;
  let nearest = Infinity;
  const column = await pixels(page, x, top, clipHeight);
  for (let y = 1; y < clipHeight - 1; ++y) {
    const away = distance(column[y], wanted);
    if (away < nearest) {
      nearest = away;
      found = y;
    }
  }
  assert.ok(nearest < 90, "no line at " + seconds + " s: " + nearest);
  return found;
}

/** Places of a fade of four seconds, and the gain that its curve has there by its formula. */
const curves = [
  { track: 0, name: "linear", gain: (place) => place },
  { track: 2, name: "power", gain: (place) => Math.sin((place * Math.PI) / 2) },
  { track: 3, name: "logarithmic", gain: (place) => 10 ** (-3 * (1 - place)) },
];
for (const { track, name, gain } of curves) {
  test("a fade is drawn by its curve: " + name, () => opened(sample("everything"), async (page) => {
    const ink = await colour(page, "fade");
    for (const place of [0.5, 0.7, 0.8]) {
      const expected = clipHeight * (1 - gain(place));
      assert.ok(Math.abs(await heightOfLine(page, track, 4 * place, ink) - expected) <= 2, "in " + place);
      assert.ok(Math.abs(await heightOfLine(page, track, 10 - 4 * place, ink) - expected) <= 2,
        "out " + place);
    }
  }));
}

test("the gain line is drawn in decibels", () => opened(sample("everything"), async (page) => {
  // Half of a quarter, in the middle of the clip of 2 to 10 s, is -18.06 dB; 12 dB are at its top
  // and -48 dB at its foot, within a pixel at each end.
  const level = 20 * Math.log10(0.5 * 0.25);
  const expected = 1 + ((12 - level) / 60) * (clipHeight - 2);
  assert.ok(Math.abs(await heightOfLine(page, 4, 6, await colour(page, "gain")) - expected) <= 2);
}));

test("a track's own gain and pan run through its lane", () => opened(sample("everything"), async (page) => {
  // The gain falls from 1 to a quarter over the 20 s: 0.55 at 12 s, where no clip is. The pan goes
  // from the left, at the top, to the right, at the foot. Both lines have gaps: the nearest of
  // twelve columns counts.
  const places = { gain: (12 - 20 * Math.log10(0.55)) / 60, accent: 0.6 };
  for (const [name, part] of Object.entries(places)) {
    const wanted = await colour(page, name);
    const x = await xOf(page, 12, length);
    const top = firstLane + 6 * laneStep + clipTop;
    const seen = [];
    for (let column = 0; column < 12; ++column) {
      (await pixels(page, x + column, top, clipHeight)).forEach((at, y) => seen.push([distance(at, wanted), y]));
    }
    const [nearest, y] = seen.reduce((best, one) => (one[0] < best[0] ? one : best));
    assert.ok(nearest < 90, name + ": " + nearest);
    assert.ok(Math.abs(y - (1 + part * (clipHeight - 2))) <= 2, name + " at " + y);
  }
}));

test("a pin stands where the loss is", () => opened(sample("everything"), async (page) => {
  // Loss 1 sounds different, at 5 s of the first track; loss 2 was dropped, at 15 s of the third.
  const places = [[5, 0, "changed"], [15, 2, "bad"]];
  for (const [seconds, track, name] of places) {
    const x = await xOf(page, seconds, length);
    const at = await pixel(page, x - 6, firstLane + track * laneStep + 8);
    assert.ok(distance(at, await colour(page, name)) < 30, name);
  }
}));

test("a pin says what was lost", () => opened(sample("everything"), async (page) => {
  await page.locator("#lanes").click({ position: { x: await xOf(page, 5, length), y: firstLane + 6 } });
  assert.equal(await said(page),
    "Loss 1: This stretch is silent: the effect on it is not known. (Linear, 01:00:05:00)");
}));

test("missing media are hatched, and where they were looked for is said", () =>
  opened(sample("everything"), async (page) => {
    const colours = new Set();
    for (let x = 0; x < 12; ++x) {
      colours.add(String(await pixel(page, await xOf(page, 4, length) + x,
        firstLane + 6 * laneStep + clipTop + 30)));
    }
    assert.ok(colours.size > 3, "one plain colour");
    await page.locator("#scroller").evaluate((box) => box.scrollTo(0, 1000));
    await page.locator("#next-clip").click();
    for (let i = 0; i < 6; ++i) {
      await page.locator("#lanes").press("ArrowDown");
    }
    assert.match(await said(page),
      /Gone\.wav: missing\. Looked for in: D:\\Audio\\Gone\.wav; the folder of the OMF file; Audio disk/);
  }));

test("wheel and buttons zoom and move", () => opened(sample("everything"), async (page) => {
  const canvas = page.locator("#lanes");
  const picture = () => canvas.evaluate((it) => it.toDataURL());
  const whole = await picture();
  await canvas.hover({ position: { x: 200, y: 100 } });
  await page.keyboard.down("Control");
  await page.mouse.wheel(0, -300);
  await page.keyboard.up("Control");
  await settled(page);
  const zoomed = await picture();
  assert.notEqual(zoomed, whole);
  await page.keyboard.down("Shift");
  await page.mouse.wheel(0, 200);
  await page.keyboard.up("Shift");
  await settled(page);
  assert.notEqual(await picture(), zoomed);
  await page.locator("#zoom-fit").click();
  await page.mouse.move(0, 0);
  await settled(page);
  assert.equal(await picture(), whole);
}));

test("two fingers zoom, one moves, a tap sets the cursor", () =>
  opened(sample("everything"), async (page) => {
    const box = await page.locator("#lanes").boundingBox();
    const fingers = await page.context().newCDPSession(page);
    const touch = (type, ...places) => fingers.send("Input.dispatchTouchEvent", {
      type, touchPoints: places.map((x, id) => ({ x: box.x + x, y: box.y + 100, id })),
    });
    // The first finger makes 200 pixels between the two 300, the second 400: the scale is doubled.
    await touch("touchStart", 300);
    await touch("touchStart", 300, 500);
    await touch("touchMove", 200, 500);
    await touch("touchMove", 200, 600);
    await touch("touchEnd");
    await touch("touchStart", 500);
    await touch("touchMove", 400);
    await touch("touchEnd");
    await touch("touchStart", 400);
    await touch("touchEnd");
    await settled(page);
    // Pixels of the whole view, each worth so much less: what was at 350 stays between the fingers,
    // from there to 400 is 50 / 1.5, and a move of 100 is 100 / 2.
    const perPixel = (length * 1.02) / box.width;
    const expected = (350 + 50 / 1.5 + 100 / 2) * perPixel - length * 0.01;
    const [, seconds, frames] = /^01:00:(\d\d):(\d\d)$/.exec(await page.locator("#timecode").textContent());
    assert.ok(Math.abs(Number(seconds) + Number(frames) / 25 - expected) < 0.06,
      `${seconds}:${frames} for ${expected} s`);
  }, { hasTouch: true }));

test("the cursor follows a click on the ruler", () => opened(sample("everything"), async (page) => {
  await page.locator("#ruler").click({ position: { x: await xOf(page, 12, length), y: 10 } });
  // A pixel is about 0.02 s, half a frame.
  assert.match(await page.locator("#timecode").textContent(), /^01:00:1(2:00|1:24|2:01)$/);
}));

test("a link opens the page at its place", () => opened(sample("everything"), async (page) => {
  assert.equal(await page.locator("#timecode").textContent(), "01:00:07:13");
}, { hash: "#at=01:00:07:13" }));

test("timecodes of drop-frame counting are those of the table", () =>
  opened(pageOfExample("session"), async (page) => {
    for (let i = 0; i < 4; ++i) {
      await page.locator("#lanes").press("ArrowRight");
      const row = page.locator("#clips tr[aria-current] td");
      assert.equal(await page.locator("#timecode").textContent(), await row.nth(1).textContent());
    }
  }));

test("dark is dark", () => opened(sample("everything"), async (page) => {
  const ground = await page.evaluate(() => getComputedStyle(document.body).backgroundColor);
  assert.equal(ground, "rgb(20, 23, 27)");
  await page.locator("#theme").click();
  assert.equal(await page.evaluate(() => getComputedStyle(document.body).backgroundColor),
    "rgb(246, 246, 243)");
}, { colorScheme: "dark" }));

test("paper shows the timeline in rows and every row of the tables", () =>
  opened(sample("reel"), async (page) => {
    await page.emulateMedia({ media: "print" });
    await page.evaluate(() => dispatchEvent(new Event("beforeprint")));
    assert.equal(await page.locator("#clips tbody tr").count(), 2000);
    // 199.2 s in at most twelve rows are seven of 30 s.
    assert.equal(await page.locator("#printed svg").count(), 7);
    assert.equal(await page.locator("#stage").isVisible(), false);
    await page.evaluate(() => dispatchEvent(new Event("afterprint")));
    assert.equal(await page.locator("#printed svg").count(), 0);
    assert.equal(await page.locator("#clips tbody tr").count(), 500);
  }));
