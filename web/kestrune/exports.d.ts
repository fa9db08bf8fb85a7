/**
 * The exports of KVGasThermo in the WebAssembly module, version 0.2.0, word by word. Made by tools/make_bindings.py from bindings/exports.toml; change that and run it.
 * Units: K, atm, cal/mol, cal/(mol K), cm3/mol, g/cm3 unless a word says otherwise.
 */
import type { Kestrune } from "./index.js";

/** Status: [name, text]. */
export const STATUS: Readonly<Record<number, readonly [string, string]>>;

/** Columns of the component table, from 1. */
export const COLUMN: {
  readonly COL_DATABANK_NUMBER: 1;
  readonly COL_MOLAR_MASS: 2;
  readonly COL_MELTING_POINT: 3;
  readonly COL_BOILING_POINT: 4;
  readonly COL_TC: 5;
  readonly COL_PC: 6;
  readonly COL_VC: 7;
  readonly COL_ZC: 8;
  readonly COL_OMEGA: 9;
  readonly COL_DIPOLE: 10;
  readonly COL_TMIN_PSAT: 11;
  readonly COL_CP_A: 12;
  readonly COL_CP_TMIN: 17;
  readonly COL_CP_TMAX: 18;
  readonly COL_FAMILY: 41;
  readonly COL_CAS: 43;
};

export const CONSTANT: {
  readonly TABLE_COLUMNS: number;
  readonly FAMILY_WATER: number;
  readonly MAX_COMPONENTS: number;
  readonly MOST_ITERATIONS: number;
  readonly DEFAULT_CRIT: number;
  readonly DEFAULT_CLIM: number;
  readonly DEFAULT_EPS: number;
  readonly DEFAULT_ITEMAX: number;
  readonly DEFAULT_NEW: number;
  readonly DEFAULT_RELAXATION: number;
  readonly DEFAULT_PURE_TOLERANCE: number;
  readonly DEFAULT_SUM_TOLERANCE: number;
  readonly ROUTINE_COUNT: number;
  readonly ROUTINE_LL_FLASH: number;
  readonly ROUTINE_LV_FLASH: number;
  readonly ROUTINE_FUGACITY: number;
  readonly ROUTINE_LIQUID_ORDER: number;
  readonly ROUTINE_GAS_ENTHALPY: number;
  readonly ROUTINE_GAS_ENTROPY: number;
  readonly ROUTINE_LIQUID_ENTHALPY: number;
  readonly ROUTINE_LIQUID_ENTROPY: number;
  readonly PHASE_GAS: number;
  readonly PHASE_LIQUID: number;
  readonly DERIV_T: number;
  readonly DERIV_P: number;
  readonly DERIV_N: number;
};

/** A mixture and the settings of its calculations, all 0 for the defaults. */
export class MixtureRecord {
  /** table: 43 * count doubles, column by column. */
  constructor(table: Float64Array | readonly number[], count: number);
  count: number;
  table: Float64Array;
  /** bit 0: FreeWaterFlag */
  flags: number;
  /** water solubility limit s(T) = exp(a - b / T), capped at 1 */
  solubility_a: number;
  /** b of that limit, K */
  solubility_b: number;
  /** convergence criterion on the iteration error */
  CRIT: number;
  /** error level below which the method may be changed, 0: never */
  CLIM: number;
  /** stagnation tolerance */
  EPS: number;
  /** iteration limit */
  ITEMAX: number;
  /** iterations granted to the global method, in units of count + 1 */
  NEW: number;
  /** not 0: write the trace */
  trace_flag: number;
  /** 6 standard output, 0 standard error, n the file fort.n */
  trace_unit: number;
  /** factor of the substitution, 1: full step */
  relaxation: number;
  /** a feed with one fraction above 1 - this counts as pure */
  pure_tolerance: number;
  /** largest |sum of the feed - 1| where it is tested */
  sum_tolerance: number;
}

/** Methods by the names of the exports, of a module of their own: group data are one per module. */
export function bareExports(kestrune: Kestrune): BareExports;

export interface BareExports {
  /**
   * Hands over groups and group interactions, once, before any other calculation.
   * @param nC number of components
   * @param nG number of groups
   * @param counts how often group k occurs in component i, one column a component, [nG * nC]
   * @param A group interactions, column by column, upper triangle read, MPa, [nG * nG]
   * @param B as A, MPa, [nG * nG]
   * @param storage six buffers of doubles that stay with the host: unused, nG*nG, nG*nG, nC*nG, nG*nG, nG*nC*nC
   */
  ConvertPPR78GroupData(nC: number, nG: number, counts: Int32Array | readonly number[], A: Float64Array | readonly number[], B: Float64Array | readonly number[], storage: null): void;
  /**
   * Molar mass of a mixture. Returns the status.
   * @param nc number of components
   * @param x composition, mol/mol, [nc]
   * @param M molar masses, g/mol, [nc]
   * @param mean sum of x[i] M[i], g/mol, out
   */
  MolecularWeight(nc: number, x: Float64Array | readonly number[], M: Float64Array | readonly number[], mean: Float64Array): number;
  /**
   * Liquid and vapour at temperature and pressure. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param z feed, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param routines routines of the host; null: the library's own
   * @param options start, 1: cold start; clear: warm start from the result arguments
   * @param beta vapour fraction, mol/mol, in and out
   * @param x liquid, mol/mol, [count], in and out
   * @param y vapour, mol/mol, [count], in and out
   * @param K y / x, [count], out
   */
  FlashLVatTP(T: number, P: number, z: Float64Array | readonly number[], mixture: MixtureRecord, routines: null, options: number, beta: Float64Array, x: Float64Array, y: Float64Array, K: Float64Array): number;
  /**
   * Liquid and vapour at enthalpy and pressure. Returns the status.
   * @param H enthalpy of one mole of feed, cal/mol
   * @param P pressure, above 0, atm
   * @param z feed, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param routines routines of the host; null: the library's own
   * @param options start, 1: cold start; clear: warm start from the result arguments
   * @param T temperature; exactly 0 counts as no estimate, K, in and out
   * @param beta vapour fraction, mol/mol, in and out
   * @param x liquid, mol/mol, [count], in and out
   * @param y vapour, mol/mol, [count], in and out
   * @param K y / x, [count], out
   * @param HL molar enthalpy of the liquid, cal/mol, out
   * @param HV molar enthalpy of the vapour, cal/mol, out
   */
  FlashLVatHP(H: number, P: number, z: Float64Array | readonly number[], mixture: MixtureRecord, routines: null, options: number, T: Float64Array, beta: Float64Array, x: Float64Array, y: Float64Array, K: Float64Array, HL: Float64Array, HV: Float64Array): number;
  /**
   * Liquid and vapour at entropy and pressure. Returns the status.
   * @param S entropy of one mole of feed, cal/(mol K)
   * @param P pressure, above 0, atm
   * @param z feed, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param routines routines of the host; null: the library's own
   * @param options start, 1: cold start; clear: warm start from the result arguments
   * @param T temperature; exactly 0 counts as no estimate, K, in and out
   * @param beta vapour fraction, mol/mol, in and out
   * @param x liquid, mol/mol, [count], in and out
   * @param y vapour, mol/mol, [count], in and out
   * @param K y / x, [count], out
   * @param SL molar entropy of the liquid, cal/(mol K), out
   * @param SV molar entropy of the vapour, cal/(mol K), out
   */
  FlashLVatSP(S: number, P: number, z: Float64Array | readonly number[], mixture: MixtureRecord, routines: null, options: number, T: Float64Array, beta: Float64Array, x: Float64Array, y: Float64Array, K: Float64Array, SL: Float64Array, SV: Float64Array): number;
  /**
   * Temperature of a vapour fraction at a pressure. Returns the status.
   * @param W vapour fraction, 0 bubble point, 1 dew point, mol/mol
   * @param P pressure, above 0, atm
   * @param z feed, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param routines routines of the host; null: the library's own
   * @param options start, 1: cold start; clear: warm start from the result arguments
   * @param T temperature; not above 0 counts as no estimate, K, in and out
   * @param x liquid, mol/mol, [count], in and out
   * @param y vapour, mol/mol, [count], in and out
   * @param K y / x, [count], out
   */
  FlashLVatWP(W: number, P: number, z: Float64Array | readonly number[], mixture: MixtureRecord, routines: null, options: number, T: Float64Array, x: Float64Array, y: Float64Array, K: Float64Array): number;
  /**
   * Pressure of a vapour fraction at a temperature. Returns the status.
   * @param W vapour fraction, 0 bubble point, 1 dew point, mol/mol
   * @param T temperature, above 0, K
   * @param z feed, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param routines routines of the host; null: the library's own
   * @param options start, 1: cold start; clear: warm start from the result arguments
   * @param P pressure; not above 0 counts as no estimate, atm, in and out
   * @param x liquid, mol/mol, [count], in and out
   * @param y vapour, mol/mol, [count], in and out
   * @param K y / x, [count], out
   */
  FlashLVatWT(W: number, T: number, z: Float64Array | readonly number[], mixture: MixtureRecord, routines: null, options: number, P: Float64Array, x: Float64Array, y: Float64Array, K: Float64Array): number;
  /**
   * Up to two liquids and a vapour at temperature and pressure. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param z feed, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param routines routines of the host; null: the library's own
   * @param options start, 1: the result arguments hold an estimate
   * @param beta share of liquid A, mol/mol, in and out
   * @param V share of the vapour, mol/mol, in and out
   * @param xA liquid A, the lighter one, mol/mol, [count], in and out
   * @param xB liquid B, the denser one, mol/mol, [count], in and out
   * @param y vapour, mol/mol, [count], in and out
   * @param KLL xA / xB, [count], out
   * @param KLV y / xA, [count], out
   */
  FlashLLVatTP(T: number, P: number, z: Float64Array | readonly number[], mixture: MixtureRecord, routines: null, options: number, beta: Float64Array, V: Float64Array, xA: Float64Array, xB: Float64Array, y: Float64Array, KLL: Float64Array, KLV: Float64Array): number;
  /**
   * Up to two liquids and a vapour at enthalpy and pressure. Returns the status.
   * @param H enthalpy of one mole of feed, cal/mol
   * @param P pressure, above 0, atm
   * @param z feed, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param routines routines of the host; null: the library's own
   * @param options start, 1: the result arguments hold an estimate
   * @param T temperature; exactly 0 counts as no estimate, K, in and out
   * @param beta share of liquid A, mol/mol, in and out
   * @param V share of the vapour, mol/mol, in and out
   * @param xA liquid A, the lighter one, mol/mol, [count], in and out
   * @param xB liquid B, the denser one, mol/mol, [count], in and out
   * @param y vapour, mol/mol, [count], in and out
   * @param KLL xA / xB, [count], out
   * @param KLV y / xA, [count], out
   * @param HA molar enthalpy of liquid A, cal/mol, out
   * @param HB molar enthalpy of liquid B, cal/mol, out
   * @param HV molar enthalpy of the vapour, cal/mol, out
   */
  FlashLLVatHP(H: number, P: number, z: Float64Array | readonly number[], mixture: MixtureRecord, routines: null, options: number, T: Float64Array, beta: Float64Array, V: Float64Array, xA: Float64Array, xB: Float64Array, y: Float64Array, KLL: Float64Array, KLV: Float64Array, HA: Float64Array, HB: Float64Array, HV: Float64Array): number;
  /**
   * Up to two liquids and a vapour at entropy and pressure. Returns the status.
   * @param S entropy of one mole of feed, cal/(mol K)
   * @param P pressure, above 0, atm
   * @param z feed, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param routines routines of the host; null: the library's own
   * @param options start, 1: the result arguments hold an estimate
   * @param T temperature; exactly 0 counts as no estimate, K, in and out
   * @param beta share of liquid A, mol/mol, in and out
   * @param V share of the vapour, mol/mol, in and out
   * @param xA liquid A, the lighter one, mol/mol, [count], in and out
   * @param xB liquid B, the denser one, mol/mol, [count], in and out
   * @param y vapour, mol/mol, [count], in and out
   * @param KLL xA / xB, [count], out
   * @param KLV y / xA, [count], out
   * @param SA molar entropy of liquid A, cal/(mol K), out
   * @param SB molar entropy of liquid B, cal/(mol K), out
   * @param SV molar entropy of the vapour, cal/(mol K), out
   */
  FlashLLVatSP(S: number, P: number, z: Float64Array | readonly number[], mixture: MixtureRecord, routines: null, options: number, T: Float64Array, beta: Float64Array, V: Float64Array, xA: Float64Array, xB: Float64Array, y: Float64Array, KLL: Float64Array, KLV: Float64Array, SA: Float64Array, SB: Float64Array, SV: Float64Array): number;
  /**
   * Temperature of a vapour fraction beside up to two liquids. Returns the status.
   * @param W vapour fraction, 0 bubble point, 1 dew point, mol/mol
   * @param P pressure, above 0, atm
   * @param z feed, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param routines routines of the host; null: the library's own
   * @param options start, 1: the result arguments hold an estimate
   * @param T temperature; not above 0 counts as no estimate, K, in and out
   * @param beta share of liquid A, mol/mol, in and out
   * @param xA liquid A, the lighter one, mol/mol, [count], in and out
   * @param xB liquid B, the denser one, mol/mol, [count], in and out
   * @param y vapour, mol/mol, [count], in and out
   * @param KLL xA / xB, [count], out
   * @param KLV y / xA, [count], out
   */
  FlashLLVatWP(W: number, P: number, z: Float64Array | readonly number[], mixture: MixtureRecord, routines: null, options: number, T: Float64Array, beta: Float64Array, xA: Float64Array, xB: Float64Array, y: Float64Array, KLL: Float64Array, KLV: Float64Array): number;
  /**
   * Pressure of a vapour fraction beside up to two liquids. Returns the status.
   * @param W vapour fraction, 0 bubble point, 1 dew point, mol/mol
   * @param T temperature, above 0, K
   * @param z feed, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param routines routines of the host; null: the library's own
   * @param options start, 1: the result arguments hold an estimate
   * @param P pressure; not above 0 counts as no estimate, atm, in and out
   * @param beta share of liquid A, mol/mol, in and out
   * @param xA liquid A, the lighter one, mol/mol, [count], in and out
   * @param xB liquid B, the denser one, mol/mol, [count], in and out
   * @param y vapour, mol/mol, [count], in and out
   * @param KLL xA / xB, [count], out
   * @param KLV y / xA, [count], out
   */
  FlashLLVatWT(W: number, T: number, z: Float64Array | readonly number[], mixture: MixtureRecord, routines: null, options: number, P: Float64Array, beta: Float64Array, xA: Float64Array, xB: Float64Array, y: Float64Array, KLL: Float64Array, KLV: Float64Array): number;
  /**
   * Two liquids at temperature and pressure. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param z feed, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param routines routines of the host; null: the library's own
   * @param options start, 1: the result arguments hold an estimate
   * @param beta share of liquid 2, mol/mol, in and out
   * @param liquid1 the denser liquid, mol/mol, [count], in and out
   * @param liquid2 the lighter liquid, mol/mol, [count], in and out
   * @param K liquid2 / liquid1, [count], out
   */
  FlashLLatTP(T: number, P: number, z: Float64Array | readonly number[], mixture: MixtureRecord, routines: null, options: number, beta: Float64Array, liquid1: Float64Array, liquid2: Float64Array, K: Float64Array): number;
  /**
   * Bubble and dew curves, or the line of a vapour fraction. Returns the status.
   * @param z feed, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param routines routines of the host; null: the library's own
   * @param options 0
   * @param first_P first pressure, 0: 1 atm, atm
   * @param max_P highest pressure, 0: 2000 atm, atm
   * @param min_T lowest temperature, 0: 50 K, K
   * @param points number wanted, 0: as traced
   * @param capacity of the three point arrays
   * @param fraction 1: bubble and dew curves; between 0 and 1: that line, mol/mol
   * @param accuracy 0, or 1e-10 and more: every point is converged to 1e-10
   * @param T temperatures, K, [capacity], out
   * @param P pressures, atm, [capacity], out
   * @param kind 1 dew, 0 bubble, 0.5 critical, 4 two liquids, [capacity], out
   * @param number_of_points points found, out
   * @param number_of_critical_points critical points among them, out
   * @param cricondentherm_T highest temperature, K, out
   * @param cricondentherm_P and its pressure, atm, out
   * @param cricondenbar_T temperature of the highest pressure, K, out
   * @param cricondenbar_P highest pressure, atm, out
   */
  PhaseEnvelope(z: Float64Array | readonly number[], mixture: MixtureRecord, routines: null, options: number, first_P: number, max_P: number, min_T: number, points: number, capacity: number, fraction: number, accuracy: number, T: Float64Array, P: Float64Array, kind: Float64Array, number_of_points: Int32Array, number_of_critical_points: Int32Array, cricondentherm_T: Float64Array, cricondentherm_P: Float64Array, cricondenbar_T: Float64Array, cricondenbar_P: Float64Array): number;
  /**
   * Critical point of a mixture. Returns the status.
   * @param z feed, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param options 0
   * @param Tc temperature, K, out
   * @param Pc pressure, atm, out
   * @param Vc molar volume, cm3/mol, out
   * @param Zc compressibility factor, out
   */
  CriticalPoint(z: Float64Array | readonly number[], mixture: MixtureRecord, options: number, Tc: Float64Array, Pc: Float64Array, Vc: Float64Array, Zc: Float64Array): number;
  /**
   * Water dew temperature at a pressure. Returns the status.
   * @param P pressure, above 0, atm
   * @param z feed, mol/mol, [count]
   * @param method 1 (or 0) equation of state, 2 chart
   * @param routes 0
   * @param unused not read
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param reserved not read
   * @param T dew temperature, in: a start, K, in and out
   */
  WaterDewTemperature(P: number, z: Float64Array | readonly number[], method: number, routes: number, unused: number, mixture: MixtureRecord, reserved: number, T: Float64Array): number;
  /**
   * Water dew pressure at a temperature. Returns the status.
   * @param T temperature, above 0, K
   * @param z feed, mol/mol, [count]
   * @param method 1 (or 0) equation of state, 2 chart
   * @param routes 0
   * @param unused not read
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param reserved not read
   * @param P dew pressure, in: a start, atm, in and out
   */
  WaterDewPressure(T: number, z: Float64Array | readonly number[], method: number, routes: number, unused: number, mixture: MixtureRecord, reserved: number, P: Float64Array): number;
  /**
   * Water dew temperatures at pressures evenly spaced in ln P. Returns the status.
   * @param z feed, mol/mol, [count]
   * @param method 1 (or 0) equation of state, 2 chart
   * @param routes 0
   * @param unused not read
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param reserved not read
   * @param min_P first pressure, 0: 1 atm, atm
   * @param max_P last pressure, 0: 200 atm, atm
   * @param points number of points
   * @param T dew temperatures, 0 where there is none, K, [points], out
   * @param P pressures, atm, [points], out
   * @param status status of every point, [points], out
   * @param found points with status 0, out
   */
  WaterDewLine(z: Float64Array | readonly number[], method: number, routes: number, unused: number, mixture: MixtureRecord, reserved: number, min_P: number, max_P: number, points: number, T: Float64Array, P: Float64Array, status: Int32Array, found: Int32Array): number;
  /**
   * Water in a saturated gas. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param method 1 (or 0) equation of state, 2 chart
   * @param z feed, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param water_fraction water in the saturated gas, mol/mol, out
   * @param water_content the same in mass per normal volume, 0 C and 1 atm, mg/Nm3, out
   */
  Humidity(T: number, P: number, method: number, z: Float64Array | readonly number[], mixture: MixtureRecord, water_fraction: Float64Array, water_content: Float64Array): number;
  /**
   * The gas saturated with water. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param z feed, mol/mol, [count]
   * @param method_switch 1: method 1, and method 2 where that fails
   * @param method 1 (or 0) equation of state, 2 chart
   * @param routes 0
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param reserved not read
   * @param wet the saturated gas; may be z, mol/mol, [count], out
   */
  WetGasComposition(T: number, P: number, z: Float64Array | readonly number[], method_switch: number, method: number, routes: number, mixture: MixtureRecord, reserved: number, wet: Float64Array): number;
  /**
   * Hydrate formation curve of a gas by its gravity. Returns the status.
   * @param z feed, mol/mol, [count]
   * @param kind inhibitor: 0 none, 1 methanol, 2 NaCl, 3 KCl, 4 CaCl2, 5 of molar mass M
   * @param M molar mass of inhibitor 5, g/mol
   * @param percent inhibitor in the aqueous solution, % by mass
   * @param points number of points
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param unused not read
   * @param T temperatures, K, [points], out
   * @param P pressures, atm, [points], out
   */
  HydrateLine(z: Float64Array | readonly number[], kind: number, M: number, percent: number, points: number, mixture: MixtureRecord, unused: number, T: Float64Array, P: Float64Array): number;
  /**
   * Gas at T and P against the normal state (0 C, 1 atm). Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param x composition of the phase, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param Z compressibility factor at T and P, out
   * @param Z_normal and at the normal state, out
   * @param density_normal density at the normal state, kg/m3, out
   * @param normal_volume normal m3 in one m3 at T and P, Nm3/m3, out
   */
  GasN(T: number, P: number, x: Float64Array | readonly number[], mixture: MixtureRecord, Z: Float64Array, Z_normal: Float64Array, density_normal: Float64Array, normal_volume: Float64Array): number;
  /**
   * Mass density of a liquid. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param x composition of the phase, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param density mass density, g/cm3, out
   * @param d_dT derivative with T, g/cm3/K, out
   * @param d_dP derivative with P, g/cm3/atm, out
   * @param d2_dTdP second derivative, g/cm3/K/atm, out
   */
  LiquidDensity_PPR78(T: number, P: number, x: Float64Array | readonly number[], mixture: MixtureRecord, density: Float64Array, d_dT: Float64Array, d_dP: Float64Array, d2_dTdP: Float64Array): number;
  /**
   * Mass density of a gas. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param x composition of the phase, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param density mass density, g/cm3, out
   * @param d_dT derivative with T, g/cm3/K, out
   * @param d_dP derivative with P, g/cm3/atm, out
   * @param d2_dTdP second derivative, g/cm3/K/atm, out
   */
  GasDensity_PPR78(T: number, P: number, x: Float64Array | readonly number[], mixture: MixtureRecord, density: Float64Array, d_dT: Float64Array, d_dP: Float64Array, d2_dTdP: Float64Array): number;
  /**
   * Molar enthalpy of a liquid. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param x composition of the phase, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param value molar enthalpy, cal/mol, out
   */
  LiquidMolarEnthalpy_PPR78(T: number, P: number, x: Float64Array | readonly number[], mixture: MixtureRecord, value: Float64Array): number;
  /**
   * Molar enthalpy of a gas. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param x composition of the phase, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param value molar enthalpy, cal/mol, out
   */
  GasMolarEnthalpy_PPR78(T: number, P: number, x: Float64Array | readonly number[], mixture: MixtureRecord, value: Float64Array): number;
  /**
   * Molar entropy of a liquid. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param x composition of the phase, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param value molar entropy, cal/(mol K), out
   */
  LiquidMolarEntropy_PPR78(T: number, P: number, x: Float64Array | readonly number[], mixture: MixtureRecord, value: Float64Array): number;
  /**
   * Molar entropy of a gas. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param x composition of the phase, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param value molar entropy, cal/(mol K), out
   */
  GasMolarEntropy_PPR78(T: number, P: number, x: Float64Array | readonly number[], mixture: MixtureRecord, value: Float64Array): number;
  /**
   * Molar free enthalpy of a liquid. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param x composition of the phase, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param value molar free enthalpy, cal/mol, out
   */
  LiquidMolarFreeEnthalpy_PPR78(T: number, P: number, x: Float64Array | readonly number[], mixture: MixtureRecord, value: Float64Array): number;
  /**
   * Molar free enthalpy of a gas. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param x composition of the phase, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param value molar free enthalpy, cal/mol, out
   */
  GasMolarFreeEnthalpy_PPR78(T: number, P: number, x: Float64Array | readonly number[], mixture: MixtureRecord, value: Float64Array): number;
  /**
   * Molar enthalpy of a liquid with derivatives. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param x composition of the phase, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param mask derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
   * @param value molar enthalpy, cal/mol, out
   * @param d_dT derivative with T, cal/(mol K), out, only with bit 1 of mask
   * @param d_dP derivative with P, cal/(mol atm), out, only with bit 2 of mask
   * @param d_dn derivatives with the mole numbers, cal/mol, [count], out, only with bit 4 of mask
   */
  LiquidMolarEnthalpy_Derivatives_PPR78(T: number, P: number, x: Float64Array | readonly number[], mixture: MixtureRecord, mask: number, value: Float64Array, d_dT: Float64Array | null, d_dP: Float64Array | null, d_dn: Float64Array | null): number;
  /**
   * Molar enthalpy of a gas with derivatives. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param x composition of the phase, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param mask derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
   * @param value molar enthalpy, cal/mol, out
   * @param d_dT derivative with T, cal/(mol K), out, only with bit 1 of mask
   * @param d_dP derivative with P, cal/(mol atm), out, only with bit 2 of mask
   * @param d_dn derivatives with the mole numbers, cal/mol, [count], out, only with bit 4 of mask
   */
  GasMolarEnthalpy_Derivatives_PPR78(T: number, P: number, x: Float64Array | readonly number[], mixture: MixtureRecord, mask: number, value: Float64Array, d_dT: Float64Array | null, d_dP: Float64Array | null, d_dn: Float64Array | null): number;
  /**
   * Molar entropy of a liquid with derivatives. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param x composition of the phase, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param mask derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
   * @param value molar entropy, cal/(mol K), out
   * @param d_dT derivative with T, cal/(mol K2), out, only with bit 1 of mask
   * @param d_dP derivative with P, cal/(mol K atm), out, only with bit 2 of mask
   * @param d_dn derivatives with the mole numbers, cal/(mol K), [count], out, only with bit 4 of mask
   */
  LiquidMolarEntropy_Derivatives_PPR78(T: number, P: number, x: Float64Array | readonly number[], mixture: MixtureRecord, mask: number, value: Float64Array, d_dT: Float64Array | null, d_dP: Float64Array | null, d_dn: Float64Array | null): number;
  /**
   * Molar entropy of a gas with derivatives. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param x composition of the phase, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param mask derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
   * @param value molar entropy, cal/(mol K), out
   * @param d_dT derivative with T, cal/(mol K2), out, only with bit 1 of mask
   * @param d_dP derivative with P, cal/(mol K atm), out, only with bit 2 of mask
   * @param d_dn derivatives with the mole numbers, cal/(mol K), [count], out, only with bit 4 of mask
   */
  GasMolarEntropy_Derivatives_PPR78(T: number, P: number, x: Float64Array | readonly number[], mixture: MixtureRecord, mask: number, value: Float64Array, d_dT: Float64Array | null, d_dP: Float64Array | null, d_dn: Float64Array | null): number;
  /**
   * ln phi of a liquid with derivatives. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param x composition of the phase, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param option 2
   * @param mask derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
   * @param ln_phi ln of the fugacity coefficients, [count], out
   * @param d_dT derivatives with T, 1/K, [count], out, only with bit 1 of mask
   * @param d_dP derivatives with P, 1/atm, [count], out, only with bit 2 of mask
   * @param d_dn entry (i, j) = d ln phi_i / d n_j, i fastest, [count * count], out, only with bit 4 of mask
   */
  LiquidPhi_Derivatives_PPR78(T: number, P: number, x: Float64Array | readonly number[], mixture: MixtureRecord, option: number, mask: number, ln_phi: Float64Array, d_dT: Float64Array | null, d_dP: Float64Array | null, d_dn: Float64Array | null): number;
  /**
   * ln phi of a gas with derivatives. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param x composition of the phase, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param option 2
   * @param mask derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
   * @param ln_phi ln of the fugacity coefficients, [count], out
   * @param d_dT derivatives with T, 1/K, [count], out, only with bit 1 of mask
   * @param d_dP derivatives with P, 1/atm, [count], out, only with bit 2 of mask
   * @param d_dn entry (i, j) = d ln phi_i / d n_j, i fastest, [count * count], out, only with bit 4 of mask
   */
  GasPhi_Derivatives_PPR78(T: number, P: number, x: Float64Array | readonly number[], mixture: MixtureRecord, option: number, mask: number, ln_phi: Float64Array, d_dT: Float64Array | null, d_dP: Float64Array | null, d_dn: Float64Array | null): number;
  /**
   * Heat capacities of a gas and what follows from them. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param x composition of the phase, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param Cp at constant pressure, cal/(mol K), out
   * @param Cv at constant volume, cal/(mol K), out
   * @param speed_of_sound speed of sound, m/s, out
   * @param joule_thomson Joule-Thomson coefficient, K/atm, out
   */
  GasSpecificHeat_PPR78(T: number, P: number, x: Float64Array | readonly number[], mixture: MixtureRecord, Cp: Float64Array, Cv: Float64Array, speed_of_sound: Float64Array, joule_thomson: Float64Array): number;
  /**
   * Viscosity of a gas. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param x composition of the phase, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param viscosity dynamic viscosity, cP, out
   */
  GasDynamicViscosity_PPR78(T: number, P: number, x: Float64Array | readonly number[], mixture: MixtureRecord, viscosity: Float64Array): number;
  /**
   * Thermal conductivity of a gas. Returns the status.
   * @param T temperature, above 0, K
   * @param P pressure, above 0, atm
   * @param x composition of the phase, mol/mol, [count]
   * @param mixture record of the mixture; only its flags change, and only during the call
   * @param conductivity thermal conductivity, W/(m K), out
   */
  GasThermalConductivity_PPR78(T: number, P: number, x: Float64Array | readonly number[], mixture: MixtureRecord, conductivity: Float64Array): number;
}
