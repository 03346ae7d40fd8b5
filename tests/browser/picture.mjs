// SPDX-License-Identifier: Apache-2.0
// Writes the picture of a page that the README shows: node picture.mjs PAGE PICTURE
import { chromium } from "playwright-core";

const [page, picture] = process.argv.slice(2);
const browser = await chromium.launch({
  executablePath: process.env.TRELLANT_CHROMIUM || "/usr/bin/chromium",
  args: ["--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
    "--disable-background-networking", "--disable-component-update", "--disable-sync"],
});
const tab = await browser.newPage({ viewport: { width: 1280, height: 1120 } });
await tab.goto("file://" + page);
await tab.locator("#lanes").press("ArrowRight");
await tab.locator("#lanes").press("ArrowRight");
await tab.locator("#lanes").press("ArrowRight");
await tab.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
await tab.screenshot({ path: picture });
await browser.close();
