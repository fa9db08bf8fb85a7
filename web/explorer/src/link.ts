// The page's end of the worker: it sends states, of which the newest counts, and asks questions.
import type { Answer, Part, Request } from "./protocol.ts";
import type { State } from "./state.ts";

const PATIENCE = 20_000; // ms without a word from a worker that calculates

type Asked = { kind: "find" | "read" | "convert" } & Record<string, unknown>;
export interface Listener {
  ready(version: string): void;
  part(part: Part): void;
  done(): void;
  /** A calculation ended without an answer; the worker goes on. started: false where it never began. */
  failed(message: string, started: boolean): void;
  tooLong(): void;
}

export class Link {
  #worker!: Worker;
  #job = 0;
  #calculating = 0;
  #timer = 0;
  #ready = false;
  #waiting = new Map<number, (answer: Answer) => void>();

  constructor(
    private readonly source: string,
    private readonly module: string,
    private readonly listener: Listener,
  ) {
    this.#start();
  }

  #start(): void {
    const url = URL.createObjectURL(new Blob([this.source], { type: "text/javascript" }));
    this.#worker = new Worker(url);
    this.#worker.onmessage = ({ data }: MessageEvent<Answer>) => this.#hear(data);
    this.#worker.onerror = (event) => this.listener.failed(event.message, this.#ready);
    this.#worker.postMessage({ kind: "start", module: this.module } satisfies Request);
  }

  #hear(answer: Answer): void {
    if (answer.kind === "ready") {
      this.#ready = true;
      return this.listener.ready(answer.version);
    }
    const waiting = this.#waiting.get(answer.job);
    if (waiting !== undefined) {
      this.#waiting.delete(answer.job);
      return waiting(answer);
    }
    if (answer.kind === "failed") this.listener.failed(answer.message, this.#ready);
    if (answer.job !== this.#calculating) return;
    this.#watch(answer.kind === "part");
    if (answer.kind === "part") this.listener.part(answer.part);
    if (answer.kind === "done") this.listener.done();
  }

  /** A worker that says nothing for too long is ended and another one started. */
  #watch(on: boolean): void {
    clearTimeout(this.#timer);
    if (!on) return;
    this.#timer = window.setTimeout(() => {
      this.#worker.terminate();
      for (const [job, waiting] of this.#waiting) waiting({ kind: "failed", job, message: "" });
      this.#waiting.clear();
      this.#start();
      this.listener.tooLong();
    }, PATIENCE);
  }

  calculate(state: State): void {
    this.#calculating = ++this.#job;
    this.#worker.postMessage({ kind: "calculate", job: this.#job, state } satisfies Request);
    this.#watch(true);
  }

  /** The answer to a question of its own. */
  ask<K extends Answer["kind"]>(request: Asked, kind: K): Promise<Extract<Answer, { kind: K }>> {
    const job = ++this.#job;
    return new Promise((resolve, reject) => {
      this.#waiting.set(job, (answer) =>
        answer.kind === kind
          ? resolve(answer as Extract<Answer, { kind: K }>)
          : reject(new Error(answer.kind === "failed" ? answer.message : "")),
      );
      this.#worker.postMessage({ ...request, job });
    });
  }
}
