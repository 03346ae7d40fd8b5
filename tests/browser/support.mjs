// SPDX-License-Identifier: Apache-2.0
// A browser, the pages that are opened in it, and what must never happen there.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import path from "node:path";
import { chromium } from "playwright-core";

export const source = process.env.TRELLANT_SOURCE;
/** Sizes of the lanes in pixels, as the script has them. */
export const laneStep = 72;
export const firstLane = 8;
export const clipTop = 16;
export const clipHeight = 48;

const folder = mkdtempSync(path.join(tmpdir(), "trellant-pages-"));
const browser = await chromium.launch({
  executablePath: process.env.TRELLANT_CHROMIUM || "/usr/bin/chromium",
  args: ["--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
    "--disable-background-networking", "--disable-component-update", "--disable-sync"],
});

/** To be called when all tests of a file are done. */
export async function close() {
  await browser.close();
  rmSync(folder, { recursive: true });
}

let areWritten = false;

/** The path of a page that write_page_samples writes. */
export function sample(name) {
  if (!areWritten) {
    execFileSync(process.env.TRELLANT_PAGE_SAMPLES, [folder]);
    areWritten = true;
  }
  return path.join(folder, name + ".html");
}

/** The path of a page that the command writes of an example. */
export function pageOfExample(name, ...options) {
  const file = path.join(folder, name + options.join("") + ".html");
  execFileSync(process.env.TRELLANT_COMMAND,
    ["page", path.join(source, "examples", name + ".omf"), "-o", file, "--force", ...options]);
  return file;
}

/** The paths of an index and pages of all examples. */
export function pagesOfExamples() {
  const names = ["archive", "external", "session"];
  execFileSync(process.env.TRELLANT_COMMAND, ["page",
    ...names.map((name) => path.join(source, "examples", name + ".omf")), "-o", folder, "--force"]);
  return ["index", ...names].map((name) => path.join(folder, name + ".html"));
}

/**
 * Opens a page, lets the test look at it, and holds it to silence: no message, no request.
 * `expected` matches messages that the test asked for, `before` runs in front of the script.
 */
export async function opened(file, look, options = {}) {
  const { hash = "", before, expected, ...context } = options;
  const tab = await browser.newContext({ viewport: { width: 1280, height: 1000 }, ...context });
  const page = await tab.newPage();
  const said = [];
  page.on("console", (message) => said.push(message.text()));
  page.on("pageerror", (error) => said.push(error.message));
  page.on("dialog", (dialog) => said.push(dialog.message()));
  page.on("request", (request) => {
    if (!request.url().startsWith("data:") && request.url().replace(/#.*$/, "") !== "file://" + file) {
      said.push("request of " + request.url());
    }
  });
  if (before) {
    await page.addInitScript(before);
  }
  try {
    await page.goto("file://" + file + hash);
    if (context.javaScriptEnabled !== false) {
      await settled(page);
    }
    await look(page);
    assert.deepEqual(said.filter((text) => !expected || !expected.test(text)), []);
  } finally {
    await tab.close();
  }
}

/** Waits until what was asked for is painted. */
export async function settled(page) {
  await page.evaluate(() => new Promise((done) => {
    requestAnimationFrame(() => requestAnimationFrame(done));
  }));
}

/** What the page says of the clip or the loss that was gone to. */
export function said(page) {
  return page.locator("#said").textContent();
}

/** Where a time lies on the canvas while all of a timeline of that length is in view. */
export async function xOf(page, seconds, length) {
  const width = await page.evaluate(() => document.getElementById("lanes").clientWidth);
  return ((seconds + length * 0.01) / (length * 1.02)) * width;
}

/** Red, green and blue of a column of pixels of the canvas, as many as wanted from a point down. */
export function pixels(page, x, y, count) {
  return page.evaluate(([atX, atY, height]) => {
    const copy = document.createElement("canvas");
    copy.width = 1;
    copy.height = height;
    const context = copy.getContext("2d", { willReadFrequently: true });
    context.drawImage(document.getElementById("lanes"), -Math.round(atX), -Math.round(atY));
    const { data } = context.getImageData(0, 0, 1, height);
    return Array.from({ length: height }, (_, i) => [...data.slice(i * 4, i * 4 + 3)]);
  }, [x, y, count]);
}

/** Red, green and blue of a pixel of the canvas. */
export async function pixel(page, x, y) {
  return (await pixels(page, x, y, 1))[0];
}

/** A colour of the style as red, green and blue. */
export async function colour(page, name) {
  const text = await page.evaluate((wanted) =>
    getComputedStyle(document.documentElement).getPropertyValue("--" + wanted).trim(), name);
  return [1, 3, 5].map((at) => parseInt(text.slice(at, at + 2), 16));
}

/** How far two colours are from one another. */
export function distance(one, other) {
  return Math.hypot(...one.map((part, i) => part - other[i]));
}
