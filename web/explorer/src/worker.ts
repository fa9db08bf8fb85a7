// The thread that calculates. Of the states that come in the newest wins: an older one is dropped between two parts.
import { loadKestrune, type Kestrune } from "kestrune";
import { partsOf, Session } from "./calculate.ts";
import { inWords } from "./gas.ts";
import { tableOf } from "./paste.ts";
import type { Answer, Found, Request } from "./protocol.ts";

const scope = self as unknown as {
  postMessage(answer: Answer): void;
  onmessage: (event: MessageEvent<Request>) => void;
};
let session: Promise<Session>;
let compiled: WebAssembly.Module;
let newest = 0;

/** The module from the text that the page holds: gzip in base64. */
async function compile(text: string): Promise<WebAssembly.Module> {
  const packed = await fetch(`data:application/octet-stream;base64,${text}`);
  const bytes = packed.body!.pipeThrough(new DecompressionStream("gzip"));
  return WebAssembly.compileStreaming(new Response(bytes, { headers: { "Content-Type": "application/wasm" } }));
}

const fresh = async () => new Session(await loadKestrune({ wasm: compiled, onMessage: () => {} }));

/** Lets messages in that wait. */
const pause = () =>
  new Promise<void>((resolve) => {
    const channel = new MessageChannel();
    channel.port1.onmessage = () => {
      channel.port1.close();
      resolve();
    };
    channel.port2.postMessage(0);
  });

function foundOf(kestrune: Kestrune, text: string): Found[] {
  const wanted = text.trim().toLowerCase();
  const rank = ({ name, formula, cas }: Found) =>
    [formula.toLowerCase() === wanted || cas === wanted, name.toLowerCase().startsWith(wanted)].findIndex(Boolean) +
      1 || 9;
  const all = kestrune.components(text.trim()).map(({ name, formula, cas }) => ({ name, formula, cas }));
  return all.sort((a, b) => rank(a) - rank(b)).slice(0, 12);
}

async function answer(request: Request): Promise<void> {
  if (request.kind === "start") {
    session = compile(request.module).then((module) => ((compiled = module), fresh()));
    scope.postMessage({ kind: "ready", version: (await session).kestrune.version });
    return;
  }
  const { job } = request;
  if (request.kind === "calculate") newest = job;
  const own = await session;
  if (request.kind === "find") scope.postMessage({ kind: "found", job, found: foundOf(own.kestrune, request.text) });
  if (request.kind === "convert") {
    const [from, to] = [own.kestrune.units(request.from), own.kestrune.units(request.to)];
    const T = request.T.map((v) => to.fromSi("temperature", from.toSi("temperature", v)));
    const P = request.P.map((v) => to.fromSi("pressure", from.toSi("pressure", v)));
    scope.postMessage({ kind: "converted", job, T, P });
  }
  if (request.kind === "read") {
    try {
      scope.postMessage({ kind: "read", job, read: tableOf(own.kestrune, request.text, request.gas), error: "" });
    } catch (error) {
      if (!own.kestrune.alive) throw error;
      scope.postMessage({ kind: "read", job, read: null, error: inWords(error) });
    }
  }
  if (request.kind === "calculate") {
    for (const part of partsOf(own, request.state)) {
      if (job !== newest) return;
      scope.postMessage({ kind: "part", job, part });
      await pause();
    }
    if (job === newest) scope.postMessage({ kind: "done", job });
  }
}

scope.onmessage = ({ data }) => {
  answer(data).catch(async (error) => {
    const job = "job" in data ? data.job : 0;
    scope.postMessage({ kind: "failed", job, message: inWords(error) });
    // After a trap the module is of no use: a new one takes its place.
    const old = await Promise.resolve(session).catch(() => null);
    if (compiled !== undefined && !old?.kestrune.alive) session = fresh();
  });
};
