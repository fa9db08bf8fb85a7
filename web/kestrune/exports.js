// The exports of KVGasThermo in the WebAssembly module, word by word.
// Made by tools/make_bindings.py from bindings/exports.toml; change that and run it.
//
//   const library = bareExports(await loadKestrune());   // of a module of its own: group data are one per module
//   library.ConvertPPR78GroupData(n, groups, counts, A, B, null);
//   const status = library.FlashLVatTP(280, 30, z, new MixtureRecord(table, n), null, 1, beta, x, y, K);
//
// A number behind an address and every array that is written is a Float64Array (Int32Array); what is only read may be an
// array. TypeError for a wrong type or null, RangeError for a wrong length or count, before the library is called.

/** Status: [name, text]. */
export const STATUS = {
  0: ["KV_OK", "success"],
  [-1]: ["KV_NO_WATER", "no component of the mixture has the CAS number of water"],
  1: ["KV_INHIBITOR_MASS", "the molar mass of a user-defined inhibitor is not positive"],
  4: ["KV_NO_WATER_LIMIT", "the gas takes up any amount of water at this temperature and pressure"],
  51: ["KV_NO_ROOT", "the equation of state has no root above the co-volume"],
  111: ["KV_FEED_SUM", "the feed mole fractions do not sum to one within the tolerance of the record"],
  112: ["KV_NOT_CONVERGED", "no convergence within the iteration limit; what the results hold is no answer"],
  113: ["KV_DAMPING", "the damping of the Newton step is exhausted"],
  114: ["KV_RELAXATION", "the relaxation factor fell below its limit"],
  115: ["KV_ZERO_SLOPE", "the derivative of the residual is zero"],
  116: ["KV_NO_SATURATION", "no temperature or pressure has this vapour fraction with two phases"],
  117: ["KV_UNSTABLE_POINT", "a point of this vapour fraction was found, but another phase splits off before it"],
  118: ["KV_FOURTH_PHASE", "three phases were found, but a fourth would split off; results hold these three"],
  120: ["KV_TRIVIAL", "the iteration ended on two identical phases or broke down"],
  121: ["KV_TRIVIAL_LV", "the vapour and the second liquid became the same phase"],
  134: ["KV_LV_ANSWER_DOUBTFUL", "one liquid and a vapour remain; the flash that said so had a status"],
  135: ["KV_LL_ANSWER_DOUBTFUL", "no vapour remains; the flash that said so had a status"],
  136: ["KV_NO_START", "no starting point for three phases could be built"],
  140: ["KV_ENVELOPE_OPEN", "the envelope is open: it reached the default highest pressure"],
  141: ["KV_ENVELOPE_COLD", "the envelope reached the default lowest temperature"],
  142: ["KV_ENVELOPE_FULL", "the arrays are too short for all points of the curve"],
  143: ["KV_ENVELOPE_UNSTABLE", "another phase splits off before the marked points of the curve"],
  144: ["KV_ENVELOPE_BROKEN", "the curve could not be followed to its end"],
  145: ["KV_NO_CRITICAL", "the mixture has no stable critical point"],
  146: ["KV_ENVELOPE_LIQUIDS", "a part of the curve is where a second liquid forms"],
  151: ["KV_WATER_RANGE", "temperature, pressure or gas outside the range of the water-content method"],
  1001: ["KV_PURE_UNKNOWN", "pure-component library: component unknown"],
  1002: ["KV_PURE_NO_CORRELATION", "pure-component library: no correlation for this property"],
  1003: ["KV_PURE_RANGE", "pure-component library: temperature outside the range of the correlation"],
  1004: ["KV_PURE_ARGUMENT", "pure-component library: an argument is not finite"],
  9002: ["KV_NULL_ARGUMENT", "an argument that is read or written is a null pointer"],
  9003: ["KV_COMPONENT_COUNT", "the number of components is below 1 or above 10000"],
  9004: ["KV_TEMPERATURE", "the temperature is not finite or not positive"],
  9005: ["KV_PRESSURE", "the pressure is not finite or not positive"],
  9006: ["KV_COMPOSITION", "a composition has an entry that is negative or not finite, or is all zero"],
  9007: ["KV_COMPONENT_DATA", "a critical temperature, critical pressure, acentric factor or molar mass is unusable"],
  9008: ["KV_GROUP_DATA", "no group data for this number of components: call ConvertPPR78GroupData first"],
  9009: ["KV_SPECIFICATION", "a specified quantity or option is not finite or out of range"],
  9010: ["KV_MEMORY", "not enough memory for the work arrays"],
  9011: ["KV_INTERNAL", "unexpected failure inside the library; please report it"],
  9012: ["KV_NOT_FINITE", "the equation of state gave a value that is not finite at these conditions"],
};

/** Columns of the component table, from 1. */
export const COLUMN = {
  COL_DATABANK_NUMBER: 1, // running number in the host's databank, not read
  COL_MOLAR_MASS: 2, // g/mol
  COL_MELTING_POINT: 3, // triple or melting point, K
  COL_BOILING_POINT: 4, // normal boiling point, K
  COL_TC: 5, // critical temperature, K
  COL_PC: 6, // critical pressure, atm
  COL_VC: 7, // critical volume, cm3/mol
  COL_ZC: 8, // critical compressibility factor
  COL_OMEGA: 9, // acentric factor
  COL_DIPOLE: 10, // dipole moment, debye
  COL_TMIN_PSAT: 11, // lowest temperature of its vapour-pressure correlation, K
  COL_CP_A: 12, // own ideal-gas heat capacity: A, and B to E in the columns behind it
  COL_CP_TMIN: 17, // range of it, K
  COL_CP_TMAX: 18, // as the one before
  COL_FAMILY: 41, // family code, KV_FAMILY_WATER marks water
  COL_CAS: 43, // CAS number as a whole number: 7732185 is 7732-18-5
};

/** Settings, phases and derivatives. */
export const CONSTANT = {
  TABLE_COLUMNS: 43,
  FAMILY_WATER: 20.0,
  MAX_COMPONENTS: 10000,
  MOST_ITERATIONS: 10000,
  DEFAULT_CRIT: 1e-12,
  DEFAULT_CLIM: 1e10,
  DEFAULT_EPS: 1e-6,
  DEFAULT_ITEMAX: 200,
  DEFAULT_NEW: 0,
  DEFAULT_RELAXATION: 1.0,
  DEFAULT_PURE_TOLERANCE: 1e-12,
  DEFAULT_SUM_TOLERANCE: 1e-6,
  ROUTINE_COUNT: 14,
  ROUTINE_LL_FLASH: 1,
  ROUTINE_LV_FLASH: 2,
  ROUTINE_FUGACITY: 8,
  ROUTINE_LIQUID_ORDER: 10,
  ROUTINE_GAS_ENTHALPY: 11,
  ROUTINE_GAS_ENTROPY: 12,
  ROUTINE_LIQUID_ENTHALPY: 13,
  ROUTINE_LIQUID_ENTROPY: 14,
  PHASE_GAS: 1,
  PHASE_LIQUID: 2,
  DERIV_T: 1,
  DERIV_P: 2,
  DERIV_N: 4,
};

/** Fields of a mixture: offset and kind. */
const FIELDS = {
  flags: [16, "Uint8"], // bit 0: FreeWaterFlag
  solubility_a: [17, "Float64"], // water solubility limit s(T) = exp(a - b / T), capped at 1
  solubility_b: [25, "Float64"], // b of that limit, K
  CRIT: [61, "Float64"], // convergence criterion on the iteration error
  CLIM: [69, "Float64"], // error level below which the method may be changed, 0: never
  EPS: [77, "Float64"], // stagnation tolerance
  ITEMAX: [85, "Int32"], // iteration limit
  NEW: [89, "Int32"], // iterations granted to the global method, in units of count + 1
  trace_flag: [93, "Int32"], // not 0: write the trace
  trace_unit: [97, "Int32"], // 6 standard output, 0 standard error, n the file fort.n
  relaxation: [101, "Float64"], // factor of the substitution, 1: full step
  pure_tolerance: [109, "Float64"], // a feed with one fraction above 1 - this counts as pure
  sum_tolerance: [117, "Float64"], // largest |sum of the feed - 1| where it is tested
};
const [RECORD_SIZE, TABLE_OFFSET] = [125, 4];

/** Exports: name, kind, direction, shape and bit of mask of their words. */
const EXPORTS = {
  ConvertPPR78GroupData: [
    ["nC", "int", "", "", 0],
    ["nG", "int", "", "", 0],
    ["counts", "ints", "in", "nG*nC", 0],
    ["A", "doubles", "in", "nG*nG", 0],
    ["B", "doubles", "in", "nG*nG", 0],
    ["storage", "buffers", "in", "6", 0],
  ],
  MolecularWeight: [
    ["nc", "int", "", "", 0],
    ["x", "doubles", "in", "nc", 0],
    ["M", "doubles", "in", "nc", 0],
    ["mean", "doubles", "out", "1", 0],
  ],
  FlashLVatTP: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["z", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["routines", "routines", "in", "1", 0],
    ["options", "int", "", "", 0],
    ["beta", "doubles", "inout", "1", 0],
    ["x", "doubles", "inout", "count", 0],
    ["y", "doubles", "inout", "count", 0],
    ["K", "doubles", "out", "count", 0],
  ],
  FlashLVatHP: [
    ["H", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["z", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["routines", "routines", "in", "1", 0],
    ["options", "int", "", "", 0],
    ["T", "doubles", "inout", "1", 0],
    ["beta", "doubles", "inout", "1", 0],
    ["x", "doubles", "inout", "count", 0],
    ["y", "doubles", "inout", "count", 0],
    ["K", "doubles", "out", "count", 0],
    ["HL", "doubles", "out", "1", 0],
    ["HV", "doubles", "out", "1", 0],
  ],
  FlashLVatSP: [
    ["S", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["z", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["routines", "routines", "in", "1", 0],
    ["options", "int", "", "", 0],
    ["T", "doubles", "inout", "1", 0],
    ["beta", "doubles", "inout", "1", 0],
    ["x", "doubles", "inout", "count", 0],
    ["y", "doubles", "inout", "count", 0],
    ["K", "doubles", "out", "count", 0],
    ["SL", "doubles", "out", "1", 0],
    ["SV", "doubles", "out", "1", 0],
  ],
  FlashLVatWP: [
    ["W", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["z", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["routines", "routines", "in", "1", 0],
    ["options", "int", "", "", 0],
    ["T", "doubles", "inout", "1", 0],
    ["x", "doubles", "inout", "count", 0],
    ["y", "doubles", "inout", "count", 0],
    ["K", "doubles", "out", "count", 0],
  ],
  FlashLVatWT: [
    ["W", "double", "", "", 0],
    ["T", "double", "", "", 0],
    ["z", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["routines", "routines", "in", "1", 0],
    ["options", "int", "", "", 0],
    ["P", "doubles", "inout", "1", 0],
    ["x", "doubles", "inout", "count", 0],
    ["y", "doubles", "inout", "count", 0],
    ["K", "doubles", "out", "count", 0],
  ],
  FlashLLVatTP: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["z", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["routines", "routines", "in", "1", 0],
    ["options", "int", "", "", 0],
    ["beta", "doubles", "inout", "1", 0],
    ["V", "doubles", "inout", "1", 0],
    ["xA", "doubles", "inout", "count", 0],
    ["xB", "doubles", "inout", "count", 0],
    ["y", "doubles", "inout", "count", 0],
    ["KLL", "doubles", "out", "count", 0],
    ["KLV", "doubles", "out", "count", 0],
  ],
  FlashLLVatHP: [
    ["H", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["z", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["routines", "routines", "in", "1", 0],
    ["options", "int", "", "", 0],
    ["T", "doubles", "inout", "1", 0],
    ["beta", "doubles", "inout", "1", 0],
    ["V", "doubles", "inout", "1", 0],
    ["xA", "doubles", "inout", "count", 0],
    ["xB", "doubles", "inout", "count", 0],
    ["y", "doubles", "inout", "count", 0],
    ["KLL", "doubles", "out", "count", 0],
    ["KLV", "doubles", "out", "count", 0],
    ["HA", "doubles", "out", "1", 0],
    ["HB", "doubles", "out", "1", 0],
    ["HV", "doubles", "out", "1", 0],
  ],
  FlashLLVatSP: [
    ["S", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["z", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["routines", "routines", "in", "1", 0],
    ["options", "int", "", "", 0],
    ["T", "doubles", "inout", "1", 0],
    ["beta", "doubles", "inout", "1", 0],
    ["V", "doubles", "inout", "1", 0],
    ["xA", "doubles", "inout", "count", 0],
    ["xB", "doubles", "inout", "count", 0],
    ["y", "doubles", "inout", "count", 0],
    ["KLL", "doubles", "out", "count", 0],
    ["KLV", "doubles", "out", "count", 0],
    ["SA", "doubles", "out", "1", 0],
    ["SB", "doubles", "out", "1", 0],
    ["SV", "doubles", "out", "1", 0],
  ],
  FlashLLVatWP: [
    ["W", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["z", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["routines", "routines", "in", "1", 0],
    ["options", "int", "", "", 0],
    ["T", "doubles", "inout", "1", 0],
    ["beta", "doubles", "inout", "1", 0],
    ["xA", "doubles", "inout", "count", 0],
    ["xB", "doubles", "inout", "count", 0],
    ["y", "doubles", "inout", "count", 0],
    ["KLL", "doubles", "out", "count", 0],
    ["KLV", "doubles", "out", "count", 0],
  ],
  FlashLLVatWT: [
    ["W", "double", "", "", 0],
    ["T", "double", "", "", 0],
    ["z", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["routines", "routines", "in", "1", 0],
    ["options", "int", "", "", 0],
    ["P", "doubles", "inout", "1", 0],
    ["beta", "doubles", "inout", "1", 0],
    ["xA", "doubles", "inout", "count", 0],
    ["xB", "doubles", "inout", "count", 0],
    ["y", "doubles", "inout", "count", 0],
    ["KLL", "doubles", "out", "count", 0],
    ["KLV", "doubles", "out", "count", 0],
  ],
  FlashLLatTP: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["z", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["routines", "routines", "in", "1", 0],
    ["options", "int", "", "", 0],
    ["beta", "doubles", "inout", "1", 0],
    ["liquid1", "doubles", "inout", "count", 0],
    ["liquid2", "doubles", "inout", "count", 0],
    ["K", "doubles", "out", "count", 0],
  ],
  PhaseEnvelope: [
    ["z", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["routines", "routines", "in", "1", 0],
    ["options", "int", "", "", 0],
    ["first_P", "double", "", "", 0],
    ["max_P", "double", "", "", 0],
    ["min_T", "double", "", "", 0],
    ["points", "int", "", "", 0],
    ["capacity", "int", "", "", 0],
    ["fraction", "double", "", "", 0],
    ["accuracy", "double", "", "", 0],
    ["T", "doubles", "out", "capacity", 0],
    ["P", "doubles", "out", "capacity", 0],
    ["kind", "doubles", "out", "capacity", 0],
    ["number_of_points", "ints", "out", "1", 0],
    ["number_of_critical_points", "ints", "out", "1", 0],
    ["cricondentherm_T", "doubles", "out", "1", 0],
    ["cricondentherm_P", "doubles", "out", "1", 0],
    ["cricondenbar_T", "doubles", "out", "1", 0],
    ["cricondenbar_P", "doubles", "out", "1", 0],
  ],
  CriticalPoint: [
    ["z", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["options", "int", "", "", 0],
    ["Tc", "doubles", "out", "1", 0],
    ["Pc", "doubles", "out", "1", 0],
    ["Vc", "doubles", "out", "1", 0],
    ["Zc", "doubles", "out", "1", 0],
  ],
  WaterDewTemperature: [
    ["P", "double", "", "", 0],
    ["z", "doubles", "in", "count", 0],
    ["method", "int", "", "", 0],
    ["routes", "int", "", "", 0],
    ["unused", "int", "", "", 0],
    ["mixture", "record", "inout", "1", 0],
    ["reserved", "int", "", "", 0],
    ["T", "doubles", "inout", "1", 0],
  ],
  WaterDewPressure: [
    ["T", "double", "", "", 0],
    ["z", "doubles", "in", "count", 0],
    ["method", "int", "", "", 0],
    ["routes", "int", "", "", 0],
    ["unused", "int", "", "", 0],
    ["mixture", "record", "inout", "1", 0],
    ["reserved", "int", "", "", 0],
    ["P", "doubles", "inout", "1", 0],
  ],
  WaterDewLine: [
    ["z", "doubles", "in", "count", 0],
    ["method", "int", "", "", 0],
    ["routes", "int", "", "", 0],
    ["unused", "int", "", "", 0],
    ["mixture", "record", "inout", "1", 0],
    ["reserved", "int", "", "", 0],
    ["min_P", "double", "", "", 0],
    ["max_P", "double", "", "", 0],
    ["points", "int", "", "", 0],
    ["T", "doubles", "out", "points", 0],
    ["P", "doubles", "out", "points", 0],
    ["status", "ints", "out", "points", 0],
    ["found", "ints", "out", "1", 0],
  ],
  Humidity: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["method", "int", "", "", 0],
    ["z", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["water_fraction", "doubles", "out", "1", 0],
    ["water_content", "doubles", "out", "1", 0],
  ],
  WetGasComposition: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["z", "doubles", "in", "count", 0],
    ["method_switch", "int", "", "", 0],
    ["method", "int", "", "", 0],
    ["routes", "int", "", "", 0],
    ["mixture", "record", "inout", "1", 0],
    ["reserved", "int", "", "", 0],
    ["wet", "doubles", "out", "count", 0],
  ],
  HydrateLine: [
    ["z", "doubles", "in", "count", 0],
    ["kind", "int", "", "", 0],
    ["M", "double", "", "", 0],
    ["percent", "double", "", "", 0],
    ["points", "int", "", "", 0],
    ["mixture", "record", "inout", "1", 0],
    ["unused", "int", "", "", 0],
    ["T", "doubles", "out", "points", 0],
    ["P", "doubles", "out", "points", 0],
  ],
  GasN: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["x", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["Z", "doubles", "out", "1", 0],
    ["Z_normal", "doubles", "out", "1", 0],
    ["density_normal", "doubles", "out", "1", 0],
    ["normal_volume", "doubles", "out", "1", 0],
  ],
  LiquidDensity_PPR78: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["x", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["density", "doubles", "out", "1", 0],
    ["d_dT", "doubles", "out", "1", 0],
    ["d_dP", "doubles", "out", "1", 0],
    ["d2_dTdP", "doubles", "out", "1", 0],
  ],
  GasDensity_PPR78: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["x", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["density", "doubles", "out", "1", 0],
    ["d_dT", "doubles", "out", "1", 0],
    ["d_dP", "doubles", "out", "1", 0],
    ["d2_dTdP", "doubles", "out", "1", 0],
  ],
  LiquidMolarEnthalpy_PPR78: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["x", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["value", "doubles", "out", "1", 0],
  ],
  GasMolarEnthalpy_PPR78: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["x", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["value", "doubles", "out", "1", 0],
  ],
  LiquidMolarEntropy_PPR78: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["x", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["value", "doubles", "out", "1", 0],
  ],
  GasMolarEntropy_PPR78: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["x", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["value", "doubles", "out", "1", 0],
  ],
  LiquidMolarFreeEnthalpy_PPR78: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["x", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["value", "doubles", "out", "1", 0],
  ],
  GasMolarFreeEnthalpy_PPR78: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["x", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["value", "doubles", "out", "1", 0],
  ],
  LiquidMolarEnthalpy_Derivatives_PPR78: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["x", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["mask", "int", "", "", 0],
    ["value", "doubles", "out", "1", 0],
    ["d_dT", "doubles", "out", "1", 1],
    ["d_dP", "doubles", "out", "1", 2],
    ["d_dn", "doubles", "out", "count", 4],
  ],
  GasMolarEnthalpy_Derivatives_PPR78: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["x", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["mask", "int", "", "", 0],
    ["value", "doubles", "out", "1", 0],
    ["d_dT", "doubles", "out", "1", 1],
    ["d_dP", "doubles", "out", "1", 2],
    ["d_dn", "doubles", "out", "count", 4],
  ],
  LiquidMolarEntropy_Derivatives_PPR78: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["x", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["mask", "int", "", "", 0],
    ["value", "doubles", "out", "1", 0],
    ["d_dT", "doubles", "out", "1", 1],
    ["d_dP", "doubles", "out", "1", 2],
    ["d_dn", "doubles", "out", "count", 4],
  ],
  GasMolarEntropy_Derivatives_PPR78: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["x", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["mask", "int", "", "", 0],
    ["value", "doubles", "out", "1", 0],
    ["d_dT", "doubles", "out", "1", 1],
    ["d_dP", "doubles", "out", "1", 2],
    ["d_dn", "doubles", "out", "count", 4],
  ],
  LiquidPhi_Derivatives_PPR78: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["x", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["option", "int", "", "", 0],
    ["mask", "int", "", "", 0],
    ["ln_phi", "doubles", "out", "count", 0],
    ["d_dT", "doubles", "out", "count", 1],
    ["d_dP", "doubles", "out", "count", 2],
    ["d_dn", "doubles", "out", "count*count", 4],
  ],
  GasPhi_Derivatives_PPR78: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["x", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["option", "int", "", "", 0],
    ["mask", "int", "", "", 0],
    ["ln_phi", "doubles", "out", "count", 0],
    ["d_dT", "doubles", "out", "count", 1],
    ["d_dP", "doubles", "out", "count", 2],
    ["d_dn", "doubles", "out", "count*count", 4],
  ],
  GasSpecificHeat_PPR78: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["x", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["Cp", "doubles", "out", "1", 0],
    ["Cv", "doubles", "out", "1", 0],
    ["speed_of_sound", "doubles", "out", "1", 0],
    ["joule_thomson", "doubles", "out", "1", 0],
  ],
  GasDynamicViscosity_PPR78: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["x", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["viscosity", "doubles", "out", "1", 0],
  ],
  GasThermalConductivity_PPR78: [
    ["T", "double", "", "", 0],
    ["P", "double", "", "", 0],
    ["x", "doubles", "in", "count", 0],
    ["mixture", "record", "inout", "1", 0],
    ["conductivity", "doubles", "out", "1", 0],
  ],
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
