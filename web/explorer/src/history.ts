// Undo and redo: the states one after the other. Changes of one thing in quick succession are one step.

const TOGETHER = 1200; // ms

export class History<S> {
  #states: S[];
  #at = 0;
  #last = "";
  #time = -Infinity;

  constructor(first: S) {
    this.#states = [first];
  }

  get state(): S {
    return this.#states[this.#at];
  }
  get canUndo(): boolean {
    return this.#at > 0;
  }
  get canRedo(): boolean {
    return this.#at + 1 < this.#states.length;
  }

  /** Makes a state the present one; what names the thing that was changed. */
  add(state: S, what: string, now: number): void {
    const joined = what !== "" && what === this.#last && now - this.#time < TOGETHER && !this.canRedo && this.canUndo;
    this.#states.length = this.#at + (joined ? 0 : 1);
    this.#states.push(state);
    if (this.#states.length > 500) this.#states.shift();
    this.#at = this.#states.length - 1;
    this.#last = what;
    this.#time = now;
  }

  /** What comes next is a step of its own. */
  settle(): void {
    this.#last = "";
  }
  undo(): S {
    if (this.canUndo) --this.#at;
    this.settle();
    return this.state;
  }
  redo(): S {
    if (this.canRedo) ++this.#at;
    this.settle();
    return this.state;
  }
}
