// Makes the page of one file: node build.mjs KESTRUNE PAGE, the folder of the npm package and the file to be written.
import { build } from "esbuild";
import { readFile, writeFile } from "node:fs/promises";
import { join } from "node:path";
import { gzipSync } from "node:zlib";

const [kestrune, page] = process.argv.slice(2);
const packages = new Set();
const bundle = async (entry) => {
  const { outputFiles, metafile } = await build({
    ...{
      entryPoints: [entry],
      bundle: true,
      write: false,
      format: "iife",
      target: "es2022",
      minify: true,
      metafile: true,
      legalComments: "none",
    },
    alias: { kestrune: join(kestrune, "index.js") },
    // The module comes with the page; the place beside the package is never asked for.
    define: { "import.meta.url": '"about:blank"' },
  });
  for (const input of Object.keys(metafile.inputs)) packages.add(/node_modules\/([^/]+)/.exec(input)?.[1]);
  return outputFiles[0].text.replaceAll("</script", "<\\/script");
};
const parts = {
  STYLE: await readFile("style.css", "utf8"),
  WORKER: await bundle("src/worker.ts"),
  MODULE: gzipSync(await readFile(join(kestrune, "kestrune.wasm")), { level: 9 }).toString("base64"),
  PAGE: await bundle("src/main.ts"),
};

/** The licences of what is in the page, each once. */
async function notices() {
  const files = [...packages].filter(Boolean).map((name) => join("node_modules", name, "LICENSE"));
  const texts = await Promise.all([...files.sort(), join(kestrune, "NOTICE.md")].map((file) => readFile(file, "utf8")));
  const heading = `Kestrune: Apache License 2.0. With ${[...packages].filter(Boolean).sort().join(", ")}:`;
  return [heading, ...new Set(texts)].join("\n\n").replaceAll("--", "- -");
}
parts.NOTICES = await notices();
const template = await readFile("page.html", "utf8");
const html = template.replace(/\/\*(STYLE|WORKER|MODULE|PAGE|NOTICES)\*\//g, (_, name) => parts[name].trim());
await writeFile(page, html);
for (const [name, text] of Object.entries(parts))
  console.log(`explorer: ${name.toLowerCase()} ${text.length} bytes, ${gzipSync(text).length} with gzip`);
console.log(`explorer: the page ${html.length} bytes, ${gzipSync(html, { level: 9 }).length} with gzip -9`);
