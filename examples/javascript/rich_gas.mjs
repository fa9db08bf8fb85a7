// A rich gas: flash, dew point, extremes of the envelope, properties of its vapour, through the bare exports.
//
//     node examples/javascript/rich_gas.mjs          in a folder where the package kestrune is installed
import { loadKestrune } from "kestrune";
import { bareExports, MixtureRecord, STATUS } from "kestrune/exports";

// The gas of data/components.csv and data/ppr78_interactions.csv, by tools/make_bindings.py.
const z = [0.76, 0.09, 0.06, 0.04, 0.03, 0.02]; // methane, ethane, propane, n-butane, n-pentane, carbon dioxide
const columns = {
  2: [16.04246, 30.06904, 44.09562, 58.12220, 72.14878, 44.00950], // molar mass, g/mol
  3: [90.6941, 90.368, 85.525, 134.895, 143.47, 216.592], // triple point, K
  4: [111.6672, 184.5686, 231.0362, 272.6599, 309.2093, 194.67], // normal boiling point, K
  5: [190.564, 305.32, 369.83, 425.12, 469.7, 304.21], // critical temperature, K
  6: [45.388601, 48.082902, 41.924500, 37.463607, 33.259314, 72.864545], // critical pressure, atm
  7: [98.6, 145.5, 200.0, 255.0, 313.0, 94.0], // critical volume, cm3/mol
  8: [0.28620, 0.27924, 0.27630, 0.27385, 0.27010, 0.27438], // critical compressibility factor
  9: [0.0115478, 0.099493, 0.152291, 0.200164, 0.251506, 0.223621], // acentric factor
  10: [0.0, 0.0, 0.08, 0.0, 0.0, 0.0], // dipole moment, debye
  11: [90.69, 90.35, 85.47, 134.86, 143.42, 216.58], // lowest temperature of the vapour pressure, K
  41: [0.0, 0.0, 0.0, 0.0, 0.0, 0.0], // family code
  43: [74828.0, 74840.0, 74986.0, 106978.0, 109660.0, 124389.0], // CAS number
};
// Groups CH3, CH2, CH4, C2H6, CO2: how often in each component, and their interactions in MPa.
const counts = [
    0, 0, 1, 0, 0,
    0, 0, 0, 1, 0,
    2, 1, 0, 0, 0,
    2, 2, 0, 0, 0,
    2, 3, 0, 0, 0,
    0, 0, 0, 0, 1];
const A = [
    0, 0, 0, 0, 0,
    65.54, 0, 0, 0, 0,
    28.48, 37.75, 0, 0, 0,
    3.775, 29.85, 9.951, 0, 0,
    144.8, 141.4, 136.6, 136.2, 0];
const B = [
    0, 0, 0, 0, 0,
    105.7, 0, 0, 0, 0,
    20.25, 74.81, 0, 0, 0,
    8.922, 65.88, 13.73, 0, 0,
    401.5, 237.1, 214.8, 235.7, 0];
// end of the gas

/** Ends the program unless the status is 0. */
function require(what, status) {
  if (status === 0) return;
  console.error(`${what}: status ${status}, ${STATUS[status]?.[1] ?? "unknown"}`);
  process.exit(1);
}

const show = (name, value) => console.log(`${name.padEnd(18)} ${typeof value === "number" ? value : value[0]}`);
const zeros = (length = 1) => new Float64Array(length);

const library = bareExports(await loadKestrune());
const n = z.length;
const groups = Math.sqrt(A.length);
const table = zeros(43 * n);
for (const [column, values] of Object.entries(columns)) table.set(values, (column - 1) * n);
library.ConvertPPR78GroupData(n, groups, counts, A, B, null);
const mixture = new MixtureRecord(table, n);
const [T, P] = [260, 40]; // K, atm

const [beta, x, y, K] = [zeros(), zeros(n), zeros(n), zeros(n)];
require("flash", library.FlashLVatTP(T, P, z, mixture, null, 1, beta, x, y, K));
show("vapour_fraction", beta);
for (const k of K) show("K", k);
const dew = zeros();
require("dew point", library.FlashLVatWP(1, P, z, mixture, null, 1, dew, zeros(n), zeros(n), zeros(n)));
show("dew_temperature", dew);

const capacity = 500;
const [points, criticalPoints] = [new Int32Array(1), new Int32Array(1)];
const curve = [zeros(capacity), zeros(capacity), zeros(capacity)];
const extremes = [zeros(), zeros(), zeros(), zeros()];
require(
  "envelope",
  library.PhaseEnvelope(z, mixture, null, 0, 0, 0, 200, 0, capacity, 1, 0, ...curve, points, criticalPoints, ...extremes),
);
["cricondentherm_T", "cricondentherm_P", "cricondenbar_T", "cricondenbar_P"].forEach((name, k) => show(name, extremes[k]));

const [density, H, Cp, Cv, sound, jouleThomson, viscosity] = Array.from({ length: 7 }, () => zeros());
require("density", library.GasDensity_PPR78(T, P, y, mixture, density, zeros(), zeros(), zeros()));
require("enthalpy", library.GasMolarEnthalpy_PPR78(T, P, y, mixture, H));
require("heat", library.GasSpecificHeat_PPR78(T, P, y, mixture, Cp, Cv, sound, jouleThomson));
require("viscosity", library.GasDynamicViscosity_PPR78(T, P, y, mixture, viscosity));
show("density", density);
show("enthalpy", H);
show("speed_of_sound", sound);
show("viscosity", viscosity);
