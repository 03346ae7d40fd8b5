// SPDX-License-Identifier: Apache-2.0
// The page for eyes, ears and hands of all kinds, on screens of all sizes.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { after, test } from "node:test";
import { close, opened, pageOfExample, pagesOfExamples, sample } from "./support.mjs";

after(close);

const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");

async function violations(page) {
  await page.evaluate(axe);
  const { violations: found } = await page.evaluate("axe.run(document)");
  return found.map((each) => each.id + ": " + each.nodes.map((node) => node.html).join(" | "));
}

for (const colorScheme of ["light", "dark"]) {
  for (const name of ["everything", "empty", "hostile", "reel"]) {
    test(`no barrier: ${name}, ${colorScheme}`, () => opened(sample(name), async (page) => {
      assert.deepEqual(await violations(page), []);
    }, { colorScheme }));
  }
}

test("no barrier with something chosen and the keys shown", () =>
  opened(pageOfExample("session"), async (page) => {
    await page.locator("#lanes").press("ArrowRight");
    assert.deepEqual(await violations(page), []);
    await page.locator("#lanes").press("?");
    assert.deepEqual(await violations(page), []);
  }));

test("no barrier in an index", async () => {
  for (const file of pagesOfExamples().slice(0, 1)) {
    await opened(file, async (page) => {
      assert.deepEqual(await violations(page), []);
      assert.equal(await page.locator("tbody a").count(), 3);
    });
  }
});

// 1,280 pixels at 200 % are 640, a narrow screen has 320.
for (const width of [1280, 640, 320]) {
  test(`nothing is beyond the edge of ${width} pixels`, () =>
    opened(sample("everything"), async (page) => {
      assert.equal(await page.evaluate(() => document.documentElement.scrollWidth
        - document.documentElement.clientWidth), 0);
      const small = await page.evaluate(() => [...document.querySelectorAll("button")]
        .filter((button) => button.offsetParent)
        .filter((button) => button.offsetWidth < 24 || button.offsetHeight < 24).map((it) => it.textContent));
      assert.deepEqual(small, []);
    }, { viewport: { width, height: 800 } }));
}

test("whoever wants no motion gets none", () => opened(sample("everything"), async (page) => {
  assert.equal(await page.evaluate(() => getComputedStyle(document.querySelector("button"))
    .transitionDuration), "0s");
}, { reducedMotion: "reduce" }));
