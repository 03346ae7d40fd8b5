// SPDX-License-Identifier: Apache-2.0
// Names that would like to be more than names.
import assert from "node:assert/strict";
import { after, test } from "node:test";
import { close, opened, sample, said, settled } from "./support.mjs";

after(close);

for (const name of ["hostile", "endless"]) {
  test("no name does harm: " + name, () => opened(sample(name), async (page) => {
    await page.locator("#lanes").press("ArrowRight");
    await page.locator("#lanes").press("l");
    for (const table of ["losses", "clips", "tracks", "sources"]) {
      await page.locator(`#${table} th button`).first().click();
    }
    await page.evaluate(() => dispatchEvent(new Event("beforeprint")));
    await settled(page);
    assert.equal(await page.evaluate(() => window.harm), undefined);
    assert.equal(await page.locator("img").count(), 0);
    assert.equal(await page.locator("script").count(), 5);
  }));
}

test("a name is shown as it is", () => opened(sample("hostile"), async (page) => {
  const name = '</script><img src=x onerror="window.harm=1">\'"&amp;<!--\uFFFDtxt.exe\\u0000\\u001b[31m]]>';
  assert.equal(await page.locator("h1").textContent(), name);
  assert.equal(await page.locator("#clips tbody td").nth(3).textContent(), name);
  await page.locator("#lanes").press("ArrowRight");
  assert.ok((await said(page)).startsWith(name));
}));

test("a name of ten kilobytes neither fills nor widens the page", () =>
  opened(sample("endless"), async (page) => {
    assert.equal((await page.locator("h1").textContent()).length, 203);
    assert.equal(await page.evaluate(() => document.documentElement.scrollWidth
      - document.documentElement.clientWidth), 0);
  }));

test("the policy lets no other script run", () => opened(sample("everything"), async (page) => {
  await page.evaluate(() => {
    const script = document.createElement("script");
    script.textContent = "window.harm = 1";
    document.addEventListener("securitypolicyviolation", () => (window.refused = true));
    document.body.append(script);
  });
  assert.equal(await page.evaluate(() => window.harm), undefined);
  await page.waitForFunction(() => window.refused);
}, { expected: /Content Security Policy/ }));
