// The exports of @LIBRARY@ in the WebAssembly module, word by word.
// @MADE@
//
//   const library = bareExports(await loadKestrune());   // of a module of its own: group data are one per module
//   library.ConvertPPR78GroupData(n, groups, counts, A, B, null);
//   const status = library.FlashLVatTP(280, 30, z, new MixtureRecord(table, n), null, 1, beta, x, y, K);
//
// A number behind an address and every array that is written is a Float64Array (Int32Array); what is only read may be an
// array. TypeError for a wrong type or null, RangeError for a wrong length or count, before the library is called.

/** Status: [name, text]. */
export const STATUS = {
@STATUSES@
};

/** Columns of the component table, from 1. */
export const COLUMN = {
@COLUMNS@
};

/** Settings, phases and derivatives. */
export const CONSTANT = {
@CONSTANTS@
};

/** Fields of a mixture: offset and kind. */
const FIELDS = {
@FIELDS@
};
const [RECORD_SIZE, TABLE_OFFSET] = [@SIZE@, @TABLE@];

/** Exports: name, kind, direction, shape and bit of mask of their words. */
const EXPORTS = {
@EXPORTS@
};

/** A mixture and the settings of its calculations, all 0 for the defaults. table: 43 * count doubles, column by column. */
export class MixtureRecord {
  constructor(table, count) {
    whole("count", count);
    if (count < 1 || count > 10000) throw new RangeError(`count: ${count}, but a mixture has 1 to 10000 components`);
    this.count = count;
    this.table = Float64Array.from(array("table", "doubles", "in", table, 43 * count));
    for (const name of Object.keys(FIELDS)) this[name] = 0;
  }
}

function whole(name, value) {
  if (!Number.isInteger(value)) throw new TypeError(`${name}: ${String(value)}, but an integer is needed`);
  if (value < -(2 ** 31) || value >= 2 ** 31) throw new RangeError(`${name}: ${value} is no 32-bit integer`);
}

/** The array itself where it has the type and length that are needed. */
function array(name, kind, dir, value, length) {
  const type = kind === "doubles" ? Float64Array : Int32Array;
  const list = dir === "in" && Array.isArray(value);
  if (!list && !(value instanceof type)) throw new TypeError(`${name}: a ${type.name} is needed, not ${typeof value}`);
  if (value.length !== length) throw new RangeError(`${name}: ${value.length} values, ${length} are needed`);
  if (!list) return value;
  value.forEach((v, k) => {
    if (kind === "ints") whole(`${name}[${k}]`, v);
    else if (typeof v !== "number") throw new TypeError(`${name}[${k}]: ${typeof v}, but a number is needed`);
  });
  return type.from(value);
}

/** Methods by the names of the exports, of a module that loadKestrune made. */
export function bareExports({ module }) {
  let components = null; // of the group data
  let storage = []; // buffers that stay with the library

  const record = (value) => {
    if (value.table.length !== 43 * value.count)
      throw new RangeError(`mixture: count is ${value.count}, but its table is one of ${value.table.length / 43} components`);
    if (components !== null && components < value.count)
      throw new RangeError(`mixture: ${value.count} components, but the group data are those of ${components}`);
    const at = module.take(RECORD_SIZE);
    const table = module.copyIn(value.table);
    const view = new DataView(module.bytes(at, RECORD_SIZE).fill(0).buffer, at, RECORD_SIZE);
    view.setInt32(0, value.count, true);
    view.setUint32(TABLE_OFFSET, table, true);
    for (const [name, [offset, kind]] of Object.entries(FIELDS)) {
      if (typeof value[name] !== "number") throw new TypeError(`mixture: ${name} is a number, not ${typeof value[name]}`);
      view[`set${kind}`](offset, value[name], true);
    }
    return at;
  };

  const buffers = ({ nC, nG }) => {
    if (nC < 1 || nG < 1 || nC > 400 || nG > 200)
      throw new RangeError(`nC: ${nC}, nG: ${nG}, but 1 to 400 components and 1 to 200 groups are needed`);
    const sizes = [1, nG * nG, nG * nG, nC * nG, nG * nG, nG * nC * nC];
    const made = [];
    for (const size of sizes) {
      const address = module.raw("malloc", 8 * size);
      if (address === 0) {
        for (const before of made) module.raw("free", before);
        throw new RangeError(`storage: no memory for the group data of ${nC} components`);
      }
      made.push(address);
    }
    for (const before of storage) module.raw("free", before);
    storage = made;
    components = nC;
    const at = module.integers(made.length);
    new Uint32Array(module.bytes(at, 0).buffer, at, made.length).set(made);
    return at;
  };

  const byValue = { double: false, int: true }; // true for an integer
  const call = (name, args) => {
    const words = EXPORTS[name];
    if (args.length !== words.length)
      throw new TypeError(`${name} takes ${words.length} arguments (${words.map(([w]) => w).join(", ")}), ${args.length} were given`);
    const known = {};
    words.forEach(([word, kind], k) => {
      if (byValue[kind]) whole(word, (known[word] = args[k]));
      else if (kind === "double" && typeof args[k] !== "number") throw new TypeError(`${word}: ${typeof args[k]}, but a number is needed`);
      else if (kind === "record") {
        if (!(args[k] instanceof MixtureRecord)) throw new TypeError(`${word}: a MixtureRecord is needed`);
        known.count = args[k].count;
      }
    });
    return module.frame(() => {
      const written = [];
      const passed = words.map(([word, kind, dir, shape, bit], k) => {
        const value = args[k];
        if (kind in byValue) return value;
        if (kind === "record") return record(value);
        if (value === null && kind === "buffers") return 0;
        if (value === null && (kind === "routines" || (bit !== 0 && !(known.mask & bit)))) return 0;
        if (kind === "routines" || kind === "buffers") throw new TypeError(`${word}: null is needed here`);
        const length = shape.split("*").reduce((n, f) => n * Math.max(0, known[f] ?? Number(f)), 1);
        const numbers = array(word, kind, dir, value, length);
        const at = module.take(numbers.byteLength);
        const bytes = new Uint8Array(numbers.buffer, numbers.byteOffset, numbers.byteLength);
        module.bytes(at, bytes.length).set(bytes);
        if (dir !== "in") written.push([at, bytes]);
        return at;
      });
      const own = words.findIndex(([, kind]) => kind === "buffers");
      if (own >= 0) {
        if (args[own] !== null) throw new TypeError("storage: null is needed, the buffers are the binding's own");
        passed[own] = buffers(known);
      }
      const status = module.raw(name, ...passed);
      for (const [at, bytes] of written) bytes.set(module.bytes(at, bytes.length));
      return status;
    });
  };
  return Object.freeze(Object.fromEntries(Object.keys(EXPORTS).map((name) => [name, (...args) => call(name, args)])));
}
