// Calls of the module on many states, some thousands at a time, so that its memory stays small.
const SLAB = 4096;
/** Rows of properties, KA_PROPERTY_COUNT of python/native/arrays.h. */
const ROWS = 18;
const FLASH_BYTES = 80; // of KaFlash where an address has four bytes

/** Calls body(start, size) for the slabs of count states. */
function inSlabs(count, body) {
  for (let start = 0; start < count; start += SLAB) body(start, Math.min(SLAB, count - start));
}

/**
 * Flash of columns of count numbers (SI) in the order of the kind: 0 T, P; 1 H, P; 2 S, P; 3 beta, P; 4 beta, T.
 * feed: null or count rows. Returns T, P, status, and of each phase its fractions and x, one row of nc numbers a state.
 */
export function flash(module, handle, nc, { kind, phases, first, second, feed }) {
  const count = first.length;
  const array = (size = count) => new Float64Array(size);
  const found = {
    T: array(),
    P: array(),
    status: new Int32Array(count),
    fractions: Array.from({ length: phases }, () => array()),
    x: Array.from({ length: phases }, () => array(count * nc)),
  };
  inSlabs(count, (start, size) =>
    module.frame(() => {
      const given = [first, second].map((c) => module.copyIn(c.subarray(start, start + size)));
      const z = feed === null ? 0 : module.copyIn(feed.subarray(start * nc, (start + size) * nc));
      const [T, P] = [module.doubles(size), module.doubles(size)];
      const fractions = found.fractions.map(() => module.doubles(size));
      const x = found.x.map(() => module.doubles(size * nc));
      const status = module.integers(size);
      const job = module.take(FLASH_BYTES);
      const words = new DataView(module.bytes(job, FLASH_BYTES).fill(0).buffer, job, FLASH_BYTES);
      const put = (offset, value) => words.setInt32(offset, value, true);
      put(0, kind);
      put(4, phases);
      words.setBigInt64(8, BigInt(size), true);
      put(16, 1); // thread
      [...given, z, T, P, ...padded(fractions), ...padded(x), status].forEach((word, k) => put(24 + 4 * k, word));
      module.call("ka_flash", handle, job);
      found.T.set(module.copyOut(T, size), start);
      found.P.set(module.copyOut(P, size), start);
      found.status.set(module.integersOut(status, size), start);
      fractions.forEach((at, p) => found.fractions[p].set(module.copyOut(at, size), start));
      x.forEach((at, p) => found.x[p].set(module.copyOut(at, size * nc), start * nc));
    }),
  );
  return found;
}

const padded = (addresses) => [...addresses, 0].slice(0, 3);

/** SI values, a row of count numbers a property, and the statuses. */
export function properties(module, handle, nc, { kind, T, P, x, wanted }) {
  const count = T.length;
  const values = Array.from({ length: ROWS }, () => new Float64Array(count).fill(NaN));
  const status = new Int32Array(count);
  inSlabs(count, (start, size) =>
    module.frame(() => {
      const inputs = phaseIn(module, nc, { T, P, x }, start, size);
      const [out, states] = [module.doubles(ROWS * size), module.integers(size)];
      module.call("ka_properties", handle, kind, BigInt(size), ...inputs, wanted, 1, out, states);
      for (let row = 0; row < ROWS; ++row)
        if ((wanted >> row) & 1) values[row].set(module.copyOut(out + 8 * row * size, size), start);
      status.set(module.integersOut(states, size), start);
    }),
  );
  return { values, status };
}

/** ln of the fugacity coefficients, rows of nc, and the statuses. */
export function lnPhi(module, handle, nc, { kind, T, P, x }) {
  const count = T.length;
  const values = new Float64Array(count * nc);
  const status = new Int32Array(count);
  inSlabs(count, (start, size) =>
    module.frame(() => {
      const inputs = phaseIn(module, nc, { T, P, x }, start, size);
      const [out, states] = [module.doubles(size * nc), module.integers(size)];
      module.call("ka_ln_phi", handle, kind, BigInt(size), ...inputs, 1, out, states);
      values.set(module.copyOut(out, size * nc), start * nc);
      status.set(module.integersOut(states, size), start);
    }),
  );
  return { values, status };
}

const phaseIn = (module, nc, { T, P, x }, start, size) => [
  module.copyIn(T.subarray(start, start + size)),
  module.copyIn(P.subarray(start, start + size)),
  module.copyIn(x.subarray(start * nc, (start + size) * nc)),
];

/** Whether the rows of nc fractions count as aqueous. */
export function aqueous(module, handle, nc, x) {
  const count = x.length / nc;
  const flags = new Uint8Array(count);
  inSlabs(count, (start, size) =>
    module.frame(() => {
      const [of, out] = [module.copyIn(x.subarray(start * nc, (start + size) * nc)), module.take(size)];
      module.call("ka_aqueous", handle, BigInt(size), of, out);
      flags.set(module.bytesOut(out, size), start);
    }),
  );
  return flags;
}

/**
 * Saturation with water at columns T, P (`wanted` null), or water dew points ("temperature" at pressures, "pressure" at
 * temperatures) of feeds in rows of nc. Returns arrays and the statuses.
 */
export function water(module, handle, nc, { method, wanted, first, second, feed }) {
  const count = first.length;
  const outputs = [new Float64Array(count), new Float64Array(count)];
  const status = new Int32Array(count);
  inSlabs(count, (start, size) =>
    module.frame(() => {
      const one = module.copyIn(first.subarray(start, start + size));
      const states = module.integers(size);
      const out = outputs.map(() => module.doubles(size));
      if (wanted === null) {
        const two = module.copyIn(second.subarray(start, start + size));
        module.call("ka_saturation", handle, method, BigInt(size), one, two, 0, 1, ...out, states);
      } else {
        const z = module.copyIn(feed.subarray(start * nc, (start + size) * nc));
        const atPressure = wanted === "temperature" ? 1 : 0;
        module.call("ka_water_dew", handle, method, atPressure, BigInt(size), one, z, 1, out[0], states);
      }
      outputs.forEach((o, k) => o.set(module.copyOut(out[k], size), start));
      status.set(module.integersOut(states, size), start);
    }),
  );
  return { outputs, status };
}
