// The WebAssembly module: its memory, its calls, its texts and its end. Nothing here knows thermodynamics.
import { INTERNAL, KestruneError } from "./errors.js";

const ERROR_SIZE = 4096;
const SCRATCH = 1 << 16;
const LARGEST = 1 << 28; // bytes of one piece of memory
const NO_ENTRY = 44; // ENOENT of WASI
const BAD_FILE = 8; // EBADF
const encoder = new TextEncoder();
const decoder = new TextDecoder();

/** What the module imports: two streams for messages, and a system without files, clocks and environment. */
function imports(instance, onMessage) {
  const lines = ["", ""];
  const view = () => new DataView(instance().exports.memory.buffer);
  const none = (result) => () => result;
  const zeros = (...at) => {
    for (const address of at) view().setUint32(address, 0, true);
    return 0;
  };
  const write = (file, pieces, count, written) => {
    if (file !== 1 && file !== 2) return BAD_FILE;
    let total = 0;
    for (let k = 0; k < count; ++k) {
      const at = view().getUint32(pieces + 8 * k, true);
      const size = view().getUint32(pieces + 8 * k + 4, true);
      lines[file - 1] += decoder.decode(new Uint8Array(view().buffer, at, size));
      total += size;
    }
    view().setUint32(written, total, true);
    const whole = lines[file - 1].split("\n");
    lines[file - 1] = whole.pop();
    for (const line of whole) onMessage(line);
    return 0;
  };
  const stop = (code) => {
    throw new WebAssembly.RuntimeError(`the module ended itself with code ${code}`);
  };
  const known = {
    fd_write: write,
    fd_close: none(BAD_FILE),
    fd_read: none(BAD_FILE),
    fd_seek: none(BAD_FILE),
    environ_sizes_get: zeros,
    environ_get: none(0),
    proc_exit: stop,
    emscripten_notify_memory_growth: none(undefined),
  };
  return { known, missing: none(-NO_ENTRY) };
}

/** Everything that a module asks for; a system call that it has not heard of fails with "no such file". */
function importsOf(module, instance, onMessage) {
  const { known, missing } = imports(instance, onMessage);
  const all = {};
  for (const { module: from, name } of WebAssembly.Module.imports(module))
    (all[from] ??= {})[name] = known[name] ?? missing;
  return all;
}

/** One instance of the module with its memory. After a trap it is of no use any more and says so. */
export class Module {
  #instance;
  #scratch = 0;
  #used = 0;
  #extra = [];
  #trap = null;
  #registry;
  #view = new Float64Array(0);
  #room = ERROR_SIZE; // for a text of the module, at least what the last ones needed: it is made anew where that is too little

  constructor(compiled, onMessage) {
    this.#instance = new WebAssembly.Instance(compiled, importsOf(compiled, () => this.#instance, onMessage));
    this.#registry = new FinalizationRegistry((handle) => this.#release(handle));
    this.#guarded(() => this.#instance.exports._initialize());
    this.#scratch = this.#guarded(() => this.#instance.exports.malloc(SCRATCH));
    if (!this.#scratch) throw new RangeError("there is no memory for the module");
    this.call("ka_open", "KVGasThermo");
  }

  /** Whether it can still calculate. */
  get alive() {
    return this.#trap === null;
  }

  #guarded(body) {
    if (this.#trap !== null) throw this.#stopped();
    try {
      return body();
    } catch (error) {
      this.#trap = error;
      throw this.#stopped();
    }
  }

  #stopped() {
    const why = this.#trap instanceof Error ? this.#trap.message : String(this.#trap);
    const error = new KestruneError(
      INTERNAL,
      `the WebAssembly module stopped (${why}) and cannot go on: make a new one with loadKestrune()`,
    );
    error.cause = this.#trap;
    return error;
  }

  /** Size of its memory, which grows and never shrinks. */
  get memoryBytes() {
    return this.#buffer().byteLength;
  }

  /** Runs body; the memory that it takes is free again afterwards. */
  frame(body) {
    const used = this.#used;
    const extra = this.#extra.length;
    try {
      return body();
    } finally {
      this.#used = used;
      for (const address of this.#extra.splice(extra)) if (this.alive) this.#instance.exports.free(address);
    }
  }

  /** Address of so many bytes, aligned for doubles, until the frame ends. */
  take(bytes) {
    const size = Math.max(16, (bytes + 15) & ~15);
    if (!(bytes <= LARGEST)) throw new RangeError(`${bytes} bytes are too many for one call: ${LARGEST} at most`);
    if (this.#used + size <= SCRATCH) {
      const at = this.#scratch + this.#used;
      this.#used += size;
      return at;
    }
    const address = this.#guarded(() => this.#instance.exports.malloc(size));
    if (!address) throw new KestruneError(9010, "not enough memory for the work arrays");
    this.#extra.push(address);
    return address;
  }

  doubles(length) {
    return this.take(8 * length);
  }
  integers(length) {
    return this.take(4 * length);
  }
  /** Address of a copy of numbers. */
  copyIn(numbers) {
    const at = this.doubles(numbers.length);
    this.#all().set(numbers, at / 8);
    return at;
  }
  /** A copy of numbers of the module. */
  copyOut(at, length) {
    return this.#all().slice(at / 8, at / 8 + length);
  }
  integersOut(at, length) {
    return new Int32Array(this.#buffer(), at, length).slice();
  }
  bytesOut(at, length) {
    return new Uint8Array(this.#buffer(), at, length).slice();
  }
  /** The memory as bytes, until the next call. */
  bytes(at, length) {
    return new Uint8Array(this.#buffer(), at, length);
  }

  #buffer() {
    return this.#instance.exports.memory.buffer;
  }
  /** All memory as doubles; growing it ends the view. */
  #all() {
    if (this.#view.length === 0) this.#view = new Float64Array(this.#buffer());
    return this.#view;
  }

  /** Address of a text with its zero. */
  text(text) {
    const bytes = encoder.encode(text);
    if (bytes.includes(0))
      throw new RangeError(`a text has a NUL character, at which the module would end it: ${JSON.stringify(text.slice(0, 60))}`);
    const at = this.take(bytes.length + 1);
    this.bytes(at, bytes.length + 1).set(bytes);
    this.bytes(at + bytes.length, 1)[0] = 0;
    return at;
  }

  /** A text of the module that ends with a zero. */
  textAt(at) {
    const all = new Uint8Array(this.#buffer(), at);
    return decoder.decode(all.subarray(0, all.indexOf(0)));
  }

  /** Calls a function as it is, texts as their addresses. */
  raw(name, ...args) {
    return this.frame(() => {
      const passed = args.map((a) => (typeof a === "string" ? this.text(a) : a));
      return this.#guarded(() => this.#instance.exports[name](...passed));
    });
  }

  /** Calls a function that answers -1 with a message; RangeError with that message. */
  call(name, ...args) {
    return this.frame(() => {
      const message = this.take(ERROR_SIZE);
      const result = this.raw(name, ...args, message, ERROR_SIZE);
      if (result < 0 || (name === "ka_mixture" && result === 0)) throw refusal(this.textAt(message));
      return result;
    });
  }

  /** What a function writes as a text of any length. */
  read(name, ...args) {
    for (let size = this.#room; ; ) {
      const [length, text] = this.frame(() => {
        const at = this.take(size);
        const written = this.raw(name, ...args, at, size);
        return [written, this.textAt(at)];
      });
      if (length < 0) throw refusal(text.slice(0, ERROR_SIZE));
      if (length < size) return text;
      size = length + 1;
      this.#room = Math.max(this.#room, Math.min(size, SCRATCH / 4));
    }
  }

  /** Frees the mixture when its owner is gone. */
  keep(owner, handle) {
    this.#registry.register(owner, handle, owner);
  }
  free(owner, handle) {
    this.#registry.unregister(owner);
    this.#release(handle);
  }
  #release(handle) {
    if (this.alive) this.#guarded(() => this.#instance.exports.ka_free(handle));
  }
}

/** Messages are those of every host, options in the words of this one. */
function refusal(message) {
  return new RangeError(message.replace("allow_missing_pairs=True takes", "allowMissingPairs: true takes"));
}
