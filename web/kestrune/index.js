// Kestrune in WebAssembly: phase equilibria and properties of natural gases and hydrocarbon mixtures with water.
import { numberOf, optionsOf, shown, textOf } from "./lib/arguments.js";
import { KestruneError } from "./lib/errors.js";
import { componentOf, Mixture } from "./lib/mixture.js";
import { Module } from "./lib/module.js";
import { Pure } from "./lib/pure.js";
import { Units } from "./lib/units.js";

export { KestruneError };

/** A module that is loaded: mixtures, components and units. Each has memory and group data of its own. */
class Kestrune {
  #units = new Map();

  constructor(module) {
    this.module = module;
    this.version = module.textAt(module.raw("ka_version"));
    Object.freeze(this);
  }

  /** Whether the module can still calculate; after a trap loadKestrune makes a new one. */
  get alive() {
    return this.module.alive;
  }

  /** A mixture of components by name, formula or CAS number: { methane: 0.9, "n-butane": 0.1 }. */
  mixture(components, options) {
    return Mixture.of(this, components, options);
  }

  /** Components of the databank whose name, alias, formula or CAS number contains the text; all for none. */
  components(filter = "") {
    return JSON.parse(this.module.read("ka_components", textOf("filter", filter))).map(componentOf);
  }

  /** A component of the databank with its correlations. */
  pure(name) {
    return new Pure(this.module, textOf("a component", name), (units) => this.unitsOf(units));
  }

  /** Units by name: "si", "engineering", "field", "C,bar", "C,bar,kJ/kmol". */
  units(name = "si") {
    const known = this.#units.get(name);
    if (known !== undefined) return known;
    const made = new Units(this.module, name);
    if (this.#units.size < 64) this.#units.set(name, made);
    return made;
  }

  /** Units of a name, or themselves. */
  unitsOf(units) {
    return units instanceof Units ? units : this.units(units);
  }

  /** What a status means. */
  statusText(status) {
    const number = numberOf("status", status);
    if (!Number.isInteger(number) || Math.abs(number) > 1e9) throw new RangeError(`a status is a whole number, not ${status}`);
    return this.module.textAt(this.module.raw("ka_status_text", number));
  }
}

let ownModule = null;

/** The compiled module of what `wasm` names: a URL, bytes, a Response, a compiled module, or a promise of one of them. */
async function compiledOf(wasm) {
  const source = await wasm;
  if (source instanceof WebAssembly.Module) return source;
  if (source instanceof ArrayBuffer || ArrayBuffer.isView(source)) return WebAssembly.compile(source);
  if (typeof Response !== "undefined" && source instanceof Response) return fromResponse(source);
  if (!(source instanceof URL) && typeof source !== "string")
    throw new TypeError(`wasm is a URL, bytes, a Response or a WebAssembly.Module, not ${shown(source)}`);
  const url = new URL(source, import.meta.url);
  if (url.protocol === "file:" && typeof process !== "undefined") {
    const files = "node:fs/promises"; // not a literal: a bundler for browsers has no such module
    const { readFile } = await import(/* @vite-ignore */ files);
    return WebAssembly.compile(await readFile(url));
  }
  return fromResponse(await fetch(url));
}

async function fromResponse(response) {
  if (!response.ok) throw new Error(`${response.url}: HTTP ${response.status} ${response.statusText}`);
  return WebAssembly.compile(await response.arrayBuffer());
}

/**
 * Loads the module; each call makes one of its own, the compilation is done once.
 * options: wasm, where it is (default kestrune.wasm beside this file); onMessage, what takes lines that the library prints
 * (default console.error).
 */
export async function loadKestrune(options) {
  const { wasm, onMessage = (text) => console.error(text) } = optionsOf("loadKestrune", options, ["wasm", "onMessage"]);
  if (typeof onMessage !== "function") throw new TypeError(`onMessage is a function, not ${shown(onMessage)}`);
  if (wasm !== undefined) return new Kestrune(new Module(await compiledOf(wasm), onMessage));
  ownModule ??= compiledOf(new URL("./kestrune.wasm", import.meta.url)).catch((error) => {
    ownModule = null;
    throw error;
  });
  return new Kestrune(new Module(await ownModule, onMessage));
}
