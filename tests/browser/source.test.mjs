// SPDX-License-Identifier: Apache-2.0
// The browser's part as a compiler reads it, and the documents as a validator does.
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { readFileSync, writeFileSync } from "node:fs";
import path from "node:path";
import { after, test } from "node:test";
import { HtmlValidate } from "html-validate";
import { close, pagesOfExamples, sample, source } from "./support.mjs";

after(close);

test("the script has types that agree", () => {
  const settings = JSON.parse(readFileSync("tsconfig.json", "utf8"));
  settings.include = [path.join(source, "src/page/browser/*.js")];
  settings.files = undefined;
  writeFileSync("tsconfig.here.json", JSON.stringify(settings));
  const checked = spawnSync("npx", ["tsc", "-p", "tsconfig.here.json"], { encoding: "utf8" });
  assert.equal(checked.stdout, "");
  assert.equal(checked.status, 0);
});

/**
 * With the end tags of rows and cells, which the standard lets be left out and the validator does
 * not: long tables are a third shorter without them.
 */
function withEndTags(text) {
  const closed = (line, cell) =>
    line.replace(new RegExp(`(?<!<tr>)<${cell}[ >]`, "g"), (tag) => `</${cell}>` + tag) + `</${cell}></tr>`;
  return text.split("\n").map((line) => {
    if (line.startsWith("<thead>")) {
      return closed(line, "th") + "</thead>";
    }
    return line.startsWith("<tr>") ? closed(line, "td") : line;
  }).join("\n").replaceAll("\n</table>", "</tbody>\n</table>");
}

test("the documents are valid", async () => {
  const validator = new HtmlValidate({
    extends: ["html-validate:recommended"],
    rules: {
      "no-trailing-whitespace": "off",
      "long-title": "off",
      "no-raw-characters": "off",
    },
  });
  for (const file of [...pagesOfExamples(), ...["everything", "empty", "hostile", "reel"].map(sample)]) {
    const report = await validator.validateString(withEndTags(readFileSync(file, "utf8")));
    assert.deepEqual(report.results.flatMap((result) => result.messages)
      .map((message) => `${path.basename(file)} ${message.line}: ${message.ruleId}: ${message.message}`)
      .slice(0, 20), []);
  }
});
