// Debian's Chromium with the page of KESTRUNE_PAGE from the file system, and the package beside it to hold numbers against.
import { mkdtemp, readdir, readFile } from "node:fs/promises";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after } from "node:test";
import { pathToFileURL } from "node:url";
import puppeteer from "puppeteer-core";

export const PAGE = pathToFileURL(process.env.KESTRUNE_PAGE).href;
export const SHOTS = process.env.KESTRUNE_SHOTS;

const browser = await puppeteer.launch({
  executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
  args: ["--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage"],
});
after(() => browser.close());
const folder = await mkdtemp(join(tmpdir(), "kestrune-explorer-"));

/** A page that is calculated; faults and requests gather in `faults`. Each has storage of its own. */
export async function open(address = "", { width = 1280, height = 900, scheme = "light" } = {}) {
  const context = await browser.createBrowserContext({ downloadBehavior: { policy: "allow", downloadPath: folder } });
  const page = await context.newPage();
  page.faults = [];
  page.on("console", (message) => ["error", "warn"].includes(message.type()) && page.faults.push(message.text()));
  page.on("pageerror", (error) => page.faults.push(error.message));
  page.on("request", (request) => /^https?:/.test(request.url()) && page.faults.push(request.url()));
  await page.setViewport({ width, height });
  await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: scheme }]);
  await page.goto(PAGE + (address && `#${address}`));
  await rested(page);
  return page;
}

/** Waits until everything is calculated and drawn. */
export async function rested(page) {
  await page.waitForFunction(() => document.documentElement.dataset.state === "done", { polling: 20, timeout: 30_000 });
  await page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
}

export const text = (page, selector) => page.$eval(selector, (element) => element.textContent);
/** The field of a label that is seen or read out. */
const fieldOf = (page, label) =>
  page.evaluateHandle((name) => {
    const labels = [...document.querySelectorAll("label")].filter((l) => l.textContent === name);
    return document.querySelector(`input[aria-label="${name}"]`) ?? labels.map((l) => l.control)[0];
  }, label);
export const value = async (page, label) => (await fieldOf(page, label)).evaluate((element) => element.value);
export const shows = (page, label) =>
  page.waitForFunction(
    (name) => [...document.querySelectorAll("label")].some((l) => l.textContent === name),
    { polling: 20 },
    label,
  );
export const rowsOf = (page, selector) =>
  page.$$eval(`${selector} tbody tr`, (rows) => rows.map((row) => [...row.children].map((cell) => cell.textContent)));

/** Types into a field in place of what is there. */
export async function type(page, label, words) {
  const field = await fieldOf(page, label);
  await field.evaluate((element) => {
    element.focus();
    element.select?.();
  });
  if (words === "") await page.keyboard.press("Backspace");
  else await field.type(words);
  await rested(page);
}

export async function press(page, label) {
  await page.$$eval(
    "button",
    (all, name) => all.find((b) => [b.textContent, b.getAttribute("aria-label")].includes(name)).click(),
    label,
  );
  await rested(page);
}

export async function choose(page, label, option) {
  const field = await page.evaluateHandle(
    (name) => [...document.querySelectorAll("select")].find((s) => s.labels[0].textContent === name),
    label,
  );
  await field.select(option);
  await rested(page);
}

/** A file that a button hands over. */
export async function download(page, label, name) {
  await press(page, label);
  for (let k = 0; k < 200; ++k) {
    if ((await readdir(folder)).includes(name)) return readFile(join(folder, name));
    await new Promise((done) => setTimeout(done, 50));
  }
  throw new Error(`${name} did not come`);
}
