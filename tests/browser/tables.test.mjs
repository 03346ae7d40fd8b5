// SPDX-License-Identifier: Apache-2.0
import assert from "node:assert/strict";
import { after, test } from "node:test";
import { close, opened, pageOfExample, said, sample } from "./support.mjs";

after(close);

const column = (page, table, place) =>
  page.locator(`#${table} tbody td:nth-child(${place})`).allTextContents();

test("tables are there without script", () => opened(sample("reel"), async (page) => {
  assert.equal(await page.locator("#clips tbody tr").count(), 2000);
  assert.equal(await page.locator("#tracks tbody tr").count(), 24);
  assert.equal(await page.locator("#stage").isVisible(), false);
  assert.match(await page.locator("#timeline").innerText(), /The tables below are whole/);
}, { javaScriptEnabled: false }));

test("a long table shows its rows in parts", () => opened(sample("reel"), async (page) => {
  const clips = page.locator("#clips");
  assert.equal(await clips.locator("tbody tr").count(), 500);
  assert.equal(await clips.locator(".shown").textContent(), "Rows 1 to 500 of 2000");
  await clips.getByText("Next rows").click();
  assert.equal(await clips.locator(".shown").textContent(), "Rows 501 to 1000 of 2000");
  assert.equal((await column(page, "clips", 4))[0], "Scene 12 take 101");
}));

test("titles sort, up and down", () => opened(sample("everything"), async (page) => {
  const title = page.locator("#clips th").nth(3);
  await title.getByRole("button").click();
  assert.equal(await title.getAttribute("aria-sort"), "ascending");
  const names = ["Constant clip", "First", "Linear clip", "Logarithmic clip", "Lost take",
    "Power clip", "Ridden", "Second"];
  assert.deepEqual(await column(page, "clips", 4), names);
  await title.getByRole("button").click();
  assert.equal(await title.getAttribute("aria-sort"), "descending");
  assert.deepEqual(await column(page, "clips", 4), names.reverse());
}));

test("numbers sort as numbers", () => opened(sample("reel"), async (page) => {
  await page.locator("#sources th").nth(0).getByRole("button").click();
  assert.deepEqual((await column(page, "sources", 1)).slice(0, 11).map(Number),
    [1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11]);
}));

test("a filter keeps the rows that hold the word", () => opened(sample("reel"), async (page) => {
  await page.locator("#clips input").fill("TAKE 200");
  // Every 200th of 2,000 clips.
  assert.equal(await page.locator("#clips tbody tr").count(), 10);
}));

test("a row leads to its clip", () => opened(pageOfExample("session"), async (page) => {
  await page.locator("#clips tbody tr").filter({ hasText: "Rain close" }).click();
  assert.match(await said(page), /^Rain close, Atmo, from 01:00:01;00/);
  await page.locator("#losses tbody tr").nth(2).click();
  assert.match(await said(page), /^Loss 3: The clip is left out/);
}));

test("a clip leads to its row, in whatever part that is", () => opened(sample("reel"), async (page) => {
  await page.locator("#lanes").press("ArrowRight");
  await page.locator("#lanes").press("End");
  // The first of 24 tracks has the clips 1, 25, ..., 1993.
  assert.equal(await page.locator("#clips .shown").textContent(), "Rows 1501 to 2000 of 2000");
  assert.equal(await page.locator("#clips tr[aria-current] td").nth(0).textContent(), "Track 1");
}));

test("the page of a German speaks German", () =>
  opened(pageOfExample("session", "--language", "de"), async (page) => {
    assert.equal(await page.locator("html").getAttribute("lang"), "de");
    await page.locator("#lanes").press("l");
    assert.equal(await said(page),
      "Verlust 1: Der Übergang ist hier ein harter Schnitt: seine Blende fehlt. (Dialog_L, 01:00:01;20)");
  }));
