// A thousand rounds of random words, keys and clicks in the page: it stays whole, and calculates as before.
import assert from "node:assert/strict";
import { test } from "node:test";
import { open, rested, text } from "./browser.mjs";

const FIRST = "a=methane:85;ethane:9;propane:4;n-butane:2&T=-60&P=40";

/** In the page: so many acts, each on a field or a button that is there. */
function acts(rounds, seed) {
  const next = (n) => (seed = (seed * 48271) % 2147483647) % n;
  const pick = (list) => list[next(list.length)];
  const WORDS = [
    "",
    "methane",
    "CO2",
    "water",
    "H2S",
    "n-C10",
    "x",
    "-1",
    "1e999",
    "85,12",
    "9%",
    "0",
    "0.5",
    "-300",
    "1e6",
    "NaN",
    "M=200, SG=0.8",
    "M=",
    "<img src=x>",
    "\u{1f4a5}",
    "C7+",
    "a\tb\nc",
    "methane\t1\nethane\t2",
    "z=1,y=2",
    "__proto__",
    "7".repeat(390),
  ];
  const pause = () => new Promise((done) => setTimeout(done, next(3) ? 0 : 25));
  const act = () => {
    const input = pick([...document.querySelectorAll("input[type=text], textarea")]);
    const set = (element, value) => {
      element.value = value;
      element.dispatchEvent(new Event("input", { bubbles: true }));
    };
    const kinds = [
      () => set(input, pick(WORDS)),
      () => set(input, String((next(2000) - 400) / 10)),
      () => {
        const select = pick([...document.querySelectorAll("select")]);
        select.value = pick([...select.options]).value;
        select.dispatchEvent(new Event("change", { bubbles: true }));
      },
      () => pick([...document.querySelectorAll("input[type=checkbox]")]).click(),
      () =>
        pick(
          [...document.querySelectorAll("button")].filter((b) => !/^Export/.test(b.getAttribute("aria-label") ?? "")),
        ).click(),
      () => {
        const clipboardData = new DataTransfer();
        clipboardData.setData(
          "text/plain",
          Array.from({ length: next(5) }, () => `${pick(WORDS)}\t${pick(WORDS)}`).join("\n"),
        );
        (document.querySelector(".composition input") ?? input).dispatchEvent(
          new ClipboardEvent("paste", { clipboardData, bubbles: true, cancelable: true }),
        );
      },
      () =>
        (location.hash = `#${pick(["a", "b", "T", "units", "cut", "zz"])}=${encodeURIComponent(pick(WORDS))}&${location.hash.slice(1)}`),
      () =>
        document.activeElement.dispatchEvent(
          new KeyboardEvent("keydown", { key: pick(["z", "y"]), ctrlKey: true, bubbles: true }),
        ),
      () =>
        document.querySelector(".handle").dispatchEvent(
          new KeyboardEvent("keydown", {
            key: pick(["ArrowUp", "ArrowDown", "ArrowLeft", "ArrowRight"]),
            shiftKey: next(2) === 0,
            bubbles: true,
          }),
        ),
    ];
    pick(kinds)();
  };
  return (async () => {
    for (let round = 0; round < rounds; ++round) {
      act();
      await pause();
    }
  })();
}

test("a thousand rounds", async () => {
  const page = await open(FIRST);
  const before = await text(page, '[aria-label="At the operating point"] table');
  for (let k = 0; k < 10; ++k) {
    await page.evaluate(acts, 100, 7 + k);
    await rested(page);
    assert.ok((await page.$("h1")) && (await page.$("#envelope .drawing")), `after ${100 * (k + 1)} rounds`);
    assert.doesNotMatch(await text(page, ".message"), /started anew|could not be loaded/);
  }
  assert.deepEqual(page.faults, []);
  await page.evaluate((address) => (location.hash = `#${address}`), FIRST);
  await new Promise((done) => setTimeout(done, 100));
  await rested(page);
  assert.equal(await text(page, '[aria-label="At the operating point"] table'), before);
  await page.close();
});
