// SPDX-License-Identifier: Apache-2.0
// What is heard: the page's own schedule, rendered, against a sum worked out elsewhere.
import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { after, test } from "node:test";
import { close, opened, pageOfExample, sample } from "./support.mjs";

after(close);

/**
 * The page with a way in for the test: its script with one line more, and so without the policy that
 * knows it by its hash.
 */
function openToTests(file) {
  const text = readFileSync(file, "utf8")
    .replace(/<meta http-equiv="Content-Security-Policy"[^>]*>/, "")
    .replace(/\}\)\(\);\n<\/script>\n<\/body>/,
      "window.inside = { model, audible: stage.painter.audible, Mixer, embedded, scheduleChunk, mixRate };"
      + "\n})();\n</script>\n</body>");
  const open = file.replace(".html", "-open.html");
  writeFileSync(open, text);
  return open;
}

/** Ten seconds as the player schedules them, on an offline context: left and right by turns. */
async function rendered(page, muted) {
  const text = await page.evaluate(async (silent) => {
    const { model, audible, Mixer, embedded, scheduleChunk, mixRate } = window.inside;
    silent.forEach((track) => (audible.muted[track] = true));
    const mixer = new Mixer(model, audible, embedded("previews"));
    const samples = 480000;
    const context = new OfflineAudioContext(2, samples, mixRate);
    const chunk = 12000;
    for (let at = 0; at < samples; at += chunk) {
      await mixer.prepare(context, at / mixRate, (at + chunk) / mixRate);
      scheduleChunk(context, mixer, at, chunk, at / mixRate);
    }
    const buffer = await context.startRendering();
    const mix = new Float32Array(samples * 2);
    for (let channel = 0; channel < 2; ++channel) {
      buffer.getChannelData(channel).forEach((value, i) => (mix[2 * i + channel] = value));
    }
    const bytes = new Uint8Array(mix.buffer);
    let letters = "";
    for (let i = 0; i < bytes.length; i += 32768) {
      letters += String.fromCharCode(...bytes.subarray(i, i + 32768));
    }
    return btoa(letters);
  }, muted);
  const bytes = Buffer.from(text, "base64");
  return new Float32Array(bytes.buffer, bytes.byteOffset, bytes.length / 4);
}

test("the mix is the sum of clips, fades, automation, crossfades and pans", () =>
  opened(openToTests(sample("playback")), async (page) => {
    const bytes = readFileSync(sample("playback").replace(".html", ".f32"));
    const expected = new Float32Array(bytes.buffer, bytes.byteOffset, bytes.length / 4);
    const mix = await rendered(page, []);
    assert.equal(mix.length, expected.length);
    let furthest = 0;
    let loudest = 0;
    mix.forEach((value, i) => {
      furthest = Math.max(furthest, Math.abs(value - expected[i]));
      loudest = Math.max(loudest, Math.abs(value));
    });
    console.log(`furthest apart ${furthest}, loudest ${loudest}`);
    assert.ok(furthest < 1e-4, String(furthest));
    assert.ok(loudest > 0.5, "nearly silent");
  }));

test("a muted track is not heard", () => opened(openToTests(sample("playback")), async (page) => {
  const mix = await rendered(page, [0, 1, 2, 3, 4, 5]);
  assert.equal(mix.findIndex((value) => value !== 0), -1);
}));

test("play moves the cursor, and stop leaves it where it is", () =>
  opened(pageOfExample("session"), async (page) => {
    const timecode = () => page.locator("#timecode").textContent();
    await page.locator("#play").click();
    assert.equal(await page.locator("#play").textContent(), "Stop");
    await page.waitForFunction(() => document.getElementById("timecode").textContent > "01:00:00;05");
    await page.locator("#play").click();
    const stopped = await timecode();
    await page.waitForTimeout(300);
    assert.equal(await timecode(), stopped);
    assert.equal(await page.locator("#play").textContent(), "Play");
  }));

test("a loop goes round the chosen clip", () => opened(pageOfExample("session"), async (page) => {
  await page.locator("#lanes").press("ArrowRight");
  await page.locator("#loop").click();
  await page.locator("#lanes").press(" ");
  const seen = [];
  for (let i = 0; i < 60; ++i) {
    seen.push(await page.locator("#timecode").textContent());
    await page.waitForTimeout(20);
  }
  // The clip plays from 01:00:00;15 to 01:00:01;00.
  assert.ok(seen.every((label) => label >= "01:00:00;15" && label <= "01:00:01;00"), String(seen));
  assert.ok(seen.some((label, i) => i > 0 && label < seen[i - 1]), "it never began again");
}));

test("M and S press the switches of the track", () => opened(pageOfExample("session"), async (page) => {
  await page.locator("#lanes").press("ArrowRight");
  await page.locator("#lanes").press("m");
  const pressed = () => page.locator(".head").first().locator("button").evaluateAll((buttons) =>
    buttons.map((button) => button.getAttribute("aria-label") + " " + button.getAttribute("aria-pressed")));
  assert.deepEqual(await pressed(), ["Mute Dialog_L true", "Solo Dialog_L false"]);
  await page.locator("#lanes").press("s");
  assert.deepEqual(await pressed(), ["Mute Dialog_L true", "Solo Dialog_L true"]);
}));

test("waveforms are drawn from the page", () => opened(pageOfExample("session"), async (page) => {
  const lengths = await page.evaluate(() =>
    JSON.parse(document.getElementById("waves").textContent).map((text) => atob(text).length));
  assert.equal(lengths.length, 4);
  assert.ok(lengths.every((length) => length > 24), String(lengths));
}));

test("without sound there is nothing to play", () =>
  opened(pageOfExample("session", "--no-audio"), async (page) => {
    assert.equal(await page.locator("#transport").isVisible(), false);
    await page.locator("#lanes").press(" ");
    assert.equal(await page.locator("#timecode").textContent(), "01:00:00;00");
  }));
