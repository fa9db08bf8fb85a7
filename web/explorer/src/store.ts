// The state of the page and who is told when it changes.
import { History } from "./history.ts";
import type { Gas, State } from "./state.ts";

export class Store {
  #history: History<State>;
  #told: (() => void)[] = [];

  constructor(first: State) {
    this.#history = new History(first);
  }

  get state(): State {
    return this.#history.state;
  }
  /** The gas in the table. */
  get gas(): Gas {
    return this.state.gases[this.state.chosen];
  }
  get canUndo(): boolean {
    return this.#history.canUndo;
  }
  get canRedo(): boolean {
    return this.#history.canRedo;
  }

  /** what names the thing that changes; quick changes of one thing are undone together, those of "" one by one. */
  change(next: Partial<State>, what: string): void {
    this.#history.add({ ...this.state, ...next }, what, performance.now());
    this.#tell();
  }
  changeGas(next: Partial<Gas>, what: string): void {
    const gases = this.state.gases.map((gas, k) => (k === this.state.chosen ? { ...gas, ...next } : gas));
    this.change({ gases }, what && `${what} ${this.state.chosen}`);
  }
  /** What is changed from now on is a step of its own. */
  settle(): void {
    this.#history.settle();
  }
  undo(): void {
    this.#history.undo();
    this.#tell();
  }
  redo(): void {
    this.#history.redo();
    this.#tell();
  }

  onChange(told: () => void): void {
    this.#told.push(told);
  }
  #tell(): void {
    for (const told of this.#told) told();
  }
}
