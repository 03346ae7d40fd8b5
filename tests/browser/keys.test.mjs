// SPDX-License-Identifier: Apache-2.0
import assert from "node:assert/strict";
import { after, test } from "node:test";
import { close, opened, pageOfExample, said, sample } from "./support.mjs";

after(close);

test("arrows walk from clip to clip and from track to track", () =>
  opened(pageOfExample("session"), async (page) => {
    const canvas = page.locator("#lanes");
    const names = [];
    for (const key of ["ArrowRight", "ArrowRight", "ArrowRight", "ArrowDown", "ArrowDown", "ArrowUp",
      "Home", "End", "ArrowLeft"]) {
      await canvas.press(key);
      names.push((await said(page)).split(", ").slice(0, 2).join(" on "));
    }
    assert.deepEqual(names, [
      "Anna take 1 on Dialog_L", "Ben answers on Dialog_L", "Anna take 2 on Dialog_L",
      // Anna take 2 begins a frame behind Anna calls and twelve before Ben aside.
      "Anna calls on Dialog_R", "Theme on Music_L", "Ben aside on Dialog_R",
      "Ben aside on Dialog_R", "Anna calls on Dialog_R", "Ben aside on Dialog_R",
    ]);
  }));

test("what is said of a clip is all that is to be seen of it", () =>
  opened(pageOfExample("session"), async (page) => {
    await page.locator("#lanes").press("ArrowRight");
    assert.equal(await said(page), "Anna take 1, Dialog_L, from 01:00:00;15 to 01:00:01;00, "
      + "Voice_Anna.wav, Clip 1 of 4 on this track, fade in 1f linear, fade out 3f power");
  }));

test("L goes from loss to loss and around", () => opened(pageOfExample("session"), async (page) => {
  const canvas = page.locator("#lanes");
  const numbers = [];
  for (const key of ["l", "l", "l", "l", "Shift+L"]) {
    await canvas.press(key);
    numbers.push((await said(page)).split(":")[0]);
  }
  assert.deepEqual(numbers, ["Loss 1", "Loss 2", "Loss 3", "Loss 1", "Loss 3"]);
}));

test("Enter leads to the row, and a row back to its clip", () =>
  opened(pageOfExample("session"), async (page) => {
    await page.locator("#lanes").press("End");
    await page.locator("#lanes").press("Enter");
    const focused = () => page.evaluate(() => document.activeElement.cells?.[3]?.textContent);
    assert.equal(await focused(), "Ben leaves");
    await page.keyboard.press("ArrowUp");
    assert.equal(await focused(), "Anna take 2");
    await page.keyboard.press("Enter");
    assert.match(await said(page), /^Anna take 2, Dialog_L/);
  }));

test("C copies the timecode", () => opened(sample("everything"), async (page) => {
  await page.locator("#lanes").press("ArrowDown");
  await page.locator("#lanes").press("c");
  await page.waitForFunction(() => document.getElementById("said").textContent.includes("01:00:00:00"));
  assert.match(await said(page), /^(Copied: |The browser does not allow copying)/);
}));

test("the question mark shows the keys, Escape takes them away", () =>
  opened(sample("everything"), async (page) => {
    await page.locator("#lanes").press("?");
    assert.equal(await page.locator("#help").isVisible(), true);
    await page.keyboard.press("Escape");
    assert.equal(await page.locator("#help").isVisible(), false);
    assert.equal(await page.evaluate(() => document.activeElement.id), "lanes");
  }));

test("the tab key reaches every part, and the timeline is one stop", () =>
  opened(sample("everything"), async (page) => {
    const stops = [];
    for (let i = 0; i < 30; ++i) {
      await page.keyboard.press("Tab");
      stops.push(await page.evaluate(() => document.activeElement.id || document.activeElement.className));
    }
    assert.deepEqual(stops.slice(0, 27), ["skip", "theme", "zoom-out", "zoom-in", "zoom-fit",
      "previous-clip", "next-clip", "previous-loss", "next-loss", "copy-timecode", "copy-link", "keys",
      ...Array(14).fill(""), "lanes"]);
    assert.equal(stops.filter((stop) => stop === "lanes").length, 1);
  }));
