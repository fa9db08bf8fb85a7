// The page for everyone: screen readers, a phone's width, dark colours. The screenshots are for people to look at.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { test } from "node:test";
import { open, SHOTS } from "./browser.mjs";

const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
const PIPELINE =
  "a=methane:0.943;ethane:0.027;propane:0.0074;n-butane:0.0049;n-pentane:0.0027;n-hexane:0.001;nitrogen:0.014&T=-30&P=60&quality=0.99+0.95&hydrate=1&water=1&ppm=60";
const TWO =
  "a=methane:85;ethane:9;propane:4;n-butane:2&b=methane:80;ethane:9;propane:4;n-butane:2;C7%2B:1&bfraction=C7%2B:M=110,+SG=0.74&T=-20&P=60&cut=T";
const WRONG =
  "a=methan:85;ethane:-1;:3;C2:4;propane:&b=water:1&T=-500&P=x&afraction=C7%2B:SG&strange=1&quality=7&water=1&hydrate=1&inhibitor=MEG";
const PHONE = { width: 360, height: 740 };

for (const [name, address, view] of [
  ["light", PIPELINE, {}],
  ["dark", PIPELINE, { scheme: "dark" }],
  ["narrow", PIPELINE, PHONE],
  ["compare", TWO, {}],
  ["compare_dark_narrow", TWO, { ...PHONE, scheme: "dark" }],
  ["wrong", WRONG, {}],
  ["wrong_dark", WRONG, { scheme: "dark" }],
])
  test(`no violation of axe, nothing wider than the screen: ${name}`, async () => {
    const page = await open(address, view);
    await page.screenshot({ path: `${SHOTS}/${name}.png`, fullPage: true });
    await page.$$eval("details", (all) => all.forEach((details) => (details.open = true)));
    await page.evaluate(axe);
    const { violations } = await page.evaluate(() => axe.run());
    assert.deepEqual(
      violations.map((v) => `${v.id}: ${v.nodes.map((n) => n.html.slice(0, 120)).join(" | ")}`),
      [],
    );
    assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth));
    assert.deepEqual(page.faults, []);
    await page.close();
  });

test("suggestions have no violation either, and everything is reached with Tab", async () => {
  const page = await open();
  await page.$eval('[aria-label="Component 1"]', (input) => input.select());
  await page.keyboard.type("eth");
  await page.waitForSelector(".suggestions:not([hidden]) li");
  await page.keyboard.press("ArrowDown");
  await page.evaluate(axe);
  assert.deepEqual(await page.evaluate(async () => (await axe.run()).violations.map((v) => v.id)), []);
  await page.keyboard.press("Escape");
  const reached = new Set();
  for (let k = 0; k < 60; ++k) {
    await page.keyboard.press("Tab");
    reached.add(
      await page.evaluate(() => document.activeElement.closest("header, .gas, .view, .conditions, .report")?.className),
    );
  }
  assert.deepEqual([...reached].filter((name) => name !== undefined).sort(), [
    "",
    "conditions",
    "gas",
    "report",
    "view",
  ]);
  await page.close();
});
