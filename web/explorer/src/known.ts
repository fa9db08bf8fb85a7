// What is known of the state: the parts that the worker has sent.
import type { Part, Parts } from "./protocol.ts";
import { texts } from "./texts.ts";

export class Known {
  /** By kind and gas; a part stays until the next one of its kind, or until a job is done that did not send it. */
  readonly parts = new Map<string, Part>();
  symbols: Record<string, string> = {};
  gases = 1;
  /** One bar, and no pressure at all, in the units shown. */
  bar = 1;
  vacuum = 0;
  fieldErrors: [string, string] = ["", ""];
  #sent = new Set<string>();

  take(part: Part): void {
    if (part.part === "units") {
      const changed = JSON.stringify(this.symbols) !== JSON.stringify(part.symbols);
      if (changed) for (const [key, old] of this.parts) if (old.part !== "gas") this.parts.delete(key);
      ({ symbols: this.symbols, bar: this.bar, vacuum: this.vacuum, fieldErrors: this.fieldErrors } = part);
      return;
    }
    const key = part.part + part.gas;
    this.parts.set(key, part);
    this.#sent.add(key);
  }

  /** Why a gas cannot be calculated; empty for one that can. */
  whyNot(gas: number): string {
    const part = this.of("gas", gas);
    if (part === undefined || part.ok) return "";
    return [part.error, ...part.rowErrors, ...part.definitionErrors].find((text) => text !== "") ?? "";
  }
  /** The name of a curve or a table, where there are two gases with its own, and that it is old where that is none now. */
  named(gas: number, text: string): string {
    if (this.gases === 1) return text; // beside the composition it says so
    return texts.ofGas(gas, this.whyNot(gas) === "" ? text : texts.old(text));
  }

  /** Ends a job: what it did not send is no more, but for the curves of a gas that cannot be calculated now. */
  finish(gases: number): void {
    this.gases = gases;
    for (const [key, part] of this.parts) {
      const gas = this.of("gas", part.gas);
      const stays = part.part !== "point" && part.part !== "cut"; // they belong to a point that may have moved
      const stale = part.gas < gases && gas !== undefined && !gas.ok && stays;
      if (!this.#sent.has(key) && !stale) this.parts.delete(key);
    }
    this.#sent.clear();
  }

  begin(): void {
    this.#sent.clear();
  }

  of<K extends keyof Parts>(kind: K, gas: number): Parts[K] | undefined {
    return this.parts.get(kind + gas) as Parts[K] | undefined;
  }

  all<K extends keyof Parts>(kind: K): Parts[K][] {
    return [...this.parts.values()].filter((part) => part.part === kind) as Parts[K][];
  }
}
