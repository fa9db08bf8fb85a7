{ Made by tools/make_bindings.py from bindings/exports.toml; change that and run it.

  The exports of KVGasThermo for Free Pascal and Delphi. A function here has the name and the words of the export and
  returns the status; it raises EArgumentException, before the library is called, where an array has the wrong length
  or the record has no table. An array of derivatives that mask does not ask for may be empty.
  Units: K, atm, cal/mol, cal/(mol K), cm3/mol, g/cm3 unless a word says otherwise. }
unit kestrune;

{$ifdef fpc}{$mode objfpc}{$endif}{$H+}

interface

uses
  SysUtils;

const
  KestruneVersion = '0.2.0';
  { Statuses. }
  KV_OK = 0;
  KV_NO_WATER = -1;
  KV_INHIBITOR_MASS = 1;
  KV_NO_WATER_LIMIT = 4;
  KV_NO_ROOT = 51;
  KV_FEED_SUM = 111;
  KV_NOT_CONVERGED = 112;
  KV_DAMPING = 113;
  KV_RELAXATION = 114;
  KV_ZERO_SLOPE = 115;
  KV_NO_SATURATION = 116;
  KV_UNSTABLE_POINT = 117;
  KV_FOURTH_PHASE = 118;
  KV_TRIVIAL = 120;
  KV_TRIVIAL_LV = 121;
  KV_LV_ANSWER_DOUBTFUL = 134;
  KV_LL_ANSWER_DOUBTFUL = 135;
  KV_NO_START = 136;
  KV_ENVELOPE_OPEN = 140;
  KV_ENVELOPE_COLD = 141;
  KV_ENVELOPE_FULL = 142;
  KV_ENVELOPE_UNSTABLE = 143;
  KV_ENVELOPE_BROKEN = 144;
  KV_NO_CRITICAL = 145;
  KV_ENVELOPE_LIQUIDS = 146;
  KV_WATER_RANGE = 151;
  KV_PURE_UNKNOWN = 1001;
  KV_PURE_NO_CORRELATION = 1002;
  KV_PURE_RANGE = 1003;
  KV_PURE_ARGUMENT = 1004;
  KV_NULL_ARGUMENT = 9002;
  KV_COMPONENT_COUNT = 9003;
  KV_TEMPERATURE = 9004;
  KV_PRESSURE = 9005;
  KV_COMPOSITION = 9006;
  KV_COMPONENT_DATA = 9007;
  KV_GROUP_DATA = 9008;
  KV_SPECIFICATION = 9009;
  KV_MEMORY = 9010;
  KV_INTERNAL = 9011;
  KV_NOT_FINITE = 9012;
  { Columns of the component table, from 1. }
  KV_COL_DATABANK_NUMBER = 1; { running number in the host's databank, not read }
  KV_COL_MOLAR_MASS = 2; { g/mol }
  KV_COL_MELTING_POINT = 3; { triple or melting point, K }
  KV_COL_BOILING_POINT = 4; { normal boiling point, K }
  KV_COL_TC = 5; { critical temperature, K }
  KV_COL_PC = 6; { critical pressure, atm }
  KV_COL_VC = 7; { critical volume, cm3/mol }
  KV_COL_ZC = 8; { critical compressibility factor }
  KV_COL_OMEGA = 9; { acentric factor }
  KV_COL_DIPOLE = 10; { dipole moment, debye }
  KV_COL_TMIN_PSAT = 11; { lowest temperature of its vapour-pressure correlation, K }
  KV_COL_CP_A = 12; { own ideal-gas heat capacity: A, and B to E in the columns behind it }
  KV_COL_CP_TMIN = 17; { range of it, K }
  KV_COL_CP_TMAX = 18; { as the one before }
  KV_COL_FAMILY = 41; { family code, KV_FAMILY_WATER marks water }
  KV_COL_CAS = 43; { CAS number as a whole number: 7732185 is 7732-18-5 }
  { Settings, routines of a host, phases and derivatives. }
  KV_TABLE_COLUMNS = 43;
  KV_FAMILY_WATER = 20.0;
  KV_MAX_COMPONENTS = 10000;
  KV_MOST_ITERATIONS = 10000;
  KV_DEFAULT_CRIT = 1e-12;
  KV_DEFAULT_CLIM = 1e10;
  KV_DEFAULT_EPS = 1e-6;
  KV_DEFAULT_ITEMAX = 200;
  KV_DEFAULT_NEW = 0;
  KV_DEFAULT_RELAXATION = 1.0;
  KV_DEFAULT_PURE_TOLERANCE = 1e-12;
  KV_DEFAULT_SUM_TOLERANCE = 1e-6;
  KV_ROUTINE_COUNT = 14;
  KV_ROUTINE_LL_FLASH = 1;
  KV_ROUTINE_LV_FLASH = 2;
  KV_ROUTINE_FUGACITY = 8;
  KV_ROUTINE_LIQUID_ORDER = 10;
  KV_ROUTINE_GAS_ENTHALPY = 11;
  KV_ROUTINE_GAS_ENTROPY = 12;
  KV_ROUTINE_LIQUID_ENTHALPY = 13;
  KV_ROUTINE_LIQUID_ENTROPY = 14;
  KV_PHASE_GAS = 1;
  KV_PHASE_LIQUID = 2;
  KV_DERIV_T = 1;
  KV_DERIV_P = 2;
  KV_DERIV_N = 4;
  FreeWaterFlag = 1;

type
  { A mixture and the settings of its calculations; all settings 0: the defaults. }
  TMixtureRecord = packed record
    count: LongInt; { 0: number of components, 1 .. 10 000 }
    table: PDouble; { 4: ComponentTable, 43 columns of count doubles }
    reserved8: array[0..11 - SizeOf(Pointer)] of Byte;
    flags: Byte; { 16: bit 0: FreeWaterFlag }
    solubility_a: Double; { 17: water solubility limit s(T) = exp(a - b / T), capped at 1 }
    solubility_b: Double; { 25: b of that limit, K }
    reserved33: array[0..27] of Byte;
    CRIT: Double; { 61: convergence criterion on the iteration error }
    CLIM: Double; { 69: error level below which the method may be changed, 0: never }
    EPS: Double; { 77: stagnation tolerance }
    ITEMAX: LongInt; { 85: iteration limit }
    NEW: LongInt; { 89: iterations granted to the global method, in units of count + 1 }
    trace_flag: LongInt; { 93: not 0: write the trace }
    trace_unit: LongInt; { 97: 6 standard output, 0 standard error, n the file fort.n }
    relaxation: Double; { 101: factor of the substitution, 1: full step }
    pure_tolerance: Double; { 109: a feed with one fraction above 1 - this counts as pure }
    sum_tolerance: Double; { 117: largest |sum of the feed - 1| where it is tested }
  end;

  { Addresses of a host's routines, entry k at k; nil: the library's own. }
  TModelRoutines = array[1..KV_ROUTINE_COUNT] of Pointer;
  PModelRoutines = ^TModelRoutines;

{ Record of count components; table: 43 * count doubles, column by column, which has to live as long as the record. }
function NewMixture(const table: array of Double; count: LongInt): TMixtureRecord;
function StatusText(status: LongInt): string;

{ Hands over groups and group interactions, once, before any other calculation. counts: how often group k occurs in
  component i, one column a component; A, B: interactions in MPa, column by column, upper triangle read. }
procedure ConvertPPR78GroupData(nC, nG: LongInt; const counts: array of LongInt; const A, B: array of Double);

{ Molar mass of a mixture. Returns the status.
    nc: number of components
    x: composition, mol/mol, [nc]
    M: molar masses, g/mol, [nc]
    mean: sum of x[i] M[i], g/mol, out }
function MolecularWeight(nc: LongInt; const x: array of Double; const M: array of Double; var mean: Double): LongInt;

{ Liquid and vapour at temperature and pressure. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    z: feed, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    routines: routines of the host; null: the library's own
    options: start, 1: cold start; clear: warm start from the result arguments
    beta: vapour fraction, mol/mol, in and out
    x: liquid, mol/mol, [count], in and out
    y: vapour, mol/mol, [count], in and out
    K: y / x, [count], out }
function FlashLVatTP(T: Double; P: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var beta: Double; var x: array of Double; var y: array of Double;
  var K: array of Double): LongInt;

{ Liquid and vapour at enthalpy and pressure. Returns the status.
    H: enthalpy of one mole of feed, cal/mol
    P: pressure, above 0, atm
    z: feed, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    routines: routines of the host; null: the library's own
    options: start, 1: cold start; clear: warm start from the result arguments
    T: temperature; exactly 0 counts as no estimate, K, in and out
    beta: vapour fraction, mol/mol, in and out
    x: liquid, mol/mol, [count], in and out
    y: vapour, mol/mol, [count], in and out
    K: y / x, [count], out
    HL: molar enthalpy of the liquid, cal/mol, out
    HV: molar enthalpy of the vapour, cal/mol, out }
function FlashLVatHP(H: Double; P: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var T: Double; var beta: Double; var x: array of Double;
  var y: array of Double; var K: array of Double; var HL: Double; var HV: Double): LongInt;

{ Liquid and vapour at entropy and pressure. Returns the status.
    S: entropy of one mole of feed, cal/(mol K)
    P: pressure, above 0, atm
    z: feed, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    routines: routines of the host; null: the library's own
    options: start, 1: cold start; clear: warm start from the result arguments
    T: temperature; exactly 0 counts as no estimate, K, in and out
    beta: vapour fraction, mol/mol, in and out
    x: liquid, mol/mol, [count], in and out
    y: vapour, mol/mol, [count], in and out
    K: y / x, [count], out
    SL: molar entropy of the liquid, cal/(mol K), out
    SV: molar entropy of the vapour, cal/(mol K), out }
function FlashLVatSP(S: Double; P: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var T: Double; var beta: Double; var x: array of Double;
  var y: array of Double; var K: array of Double; var SL: Double; var SV: Double): LongInt;

{ Temperature of a vapour fraction at a pressure. Returns the status.
    W: vapour fraction, 0 bubble point, 1 dew point, mol/mol
    P: pressure, above 0, atm
    z: feed, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    routines: routines of the host; null: the library's own
    options: start, 1: cold start; clear: warm start from the result arguments
    T: temperature; not above 0 counts as no estimate, K, in and out
    x: liquid, mol/mol, [count], in and out
    y: vapour, mol/mol, [count], in and out
    K: y / x, [count], out }
function FlashLVatWP(W: Double; P: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var T: Double; var x: array of Double; var y: array of Double;
  var K: array of Double): LongInt;

{ Pressure of a vapour fraction at a temperature. Returns the status.
    W: vapour fraction, 0 bubble point, 1 dew point, mol/mol
    T: temperature, above 0, K
    z: feed, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    routines: routines of the host; null: the library's own
    options: start, 1: cold start; clear: warm start from the result arguments
    P: pressure; not above 0 counts as no estimate, atm, in and out
    x: liquid, mol/mol, [count], in and out
    y: vapour, mol/mol, [count], in and out
    K: y / x, [count], out }
function FlashLVatWT(W: Double; T: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var P: Double; var x: array of Double; var y: array of Double;
  var K: array of Double): LongInt;

{ Up to two liquids and a vapour at temperature and pressure. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    z: feed, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    routines: routines of the host; null: the library's own
    options: start, 1: the result arguments hold an estimate
    beta: share of liquid A, mol/mol, in and out
    V: share of the vapour, mol/mol, in and out
    xA: liquid A, the lighter one, mol/mol, [count], in and out
    xB: liquid B, the denser one, mol/mol, [count], in and out
    y: vapour, mol/mol, [count], in and out
    KLL: xA / xB, [count], out
    KLV: y / xA, [count], out }
function FlashLLVatTP(T: Double; P: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var beta: Double; var V: Double; var xA: array of Double;
  var xB: array of Double; var y: array of Double; var KLL: array of Double; var KLV: array of Double): LongInt;

{ Up to two liquids and a vapour at enthalpy and pressure. Returns the status.
    H: enthalpy of one mole of feed, cal/mol
    P: pressure, above 0, atm
    z: feed, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    routines: routines of the host; null: the library's own
    options: start, 1: the result arguments hold an estimate
    T: temperature; exactly 0 counts as no estimate, K, in and out
    beta: share of liquid A, mol/mol, in and out
    V: share of the vapour, mol/mol, in and out
    xA: liquid A, the lighter one, mol/mol, [count], in and out
    xB: liquid B, the denser one, mol/mol, [count], in and out
    y: vapour, mol/mol, [count], in and out
    KLL: xA / xB, [count], out
    KLV: y / xA, [count], out
    HA: molar enthalpy of liquid A, cal/mol, out
    HB: molar enthalpy of liquid B, cal/mol, out
    HV: molar enthalpy of the vapour, cal/mol, out }
function FlashLLVatHP(H: Double; P: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var T: Double; var beta: Double; var V: Double;
  var xA: array of Double; var xB: array of Double; var y: array of Double; var KLL: array of Double;
  var KLV: array of Double; var HA: Double; var HB: Double; var HV: Double): LongInt;

{ Up to two liquids and a vapour at entropy and pressure. Returns the status.
    S: entropy of one mole of feed, cal/(mol K)
    P: pressure, above 0, atm
    z: feed, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    routines: routines of the host; null: the library's own
    options: start, 1: the result arguments hold an estimate
    T: temperature; exactly 0 counts as no estimate, K, in and out
    beta: share of liquid A, mol/mol, in and out
    V: share of the vapour, mol/mol, in and out
    xA: liquid A, the lighter one, mol/mol, [count], in and out
    xB: liquid B, the denser one, mol/mol, [count], in and out
    y: vapour, mol/mol, [count], in and out
    KLL: xA / xB, [count], out
    KLV: y / xA, [count], out
    SA: molar entropy of liquid A, cal/(mol K), out
    SB: molar entropy of liquid B, cal/(mol K), out
    SV: molar entropy of the vapour, cal/(mol K), out }
function FlashLLVatSP(S: Double; P: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var T: Double; var beta: Double; var V: Double;
  var xA: array of Double; var xB: array of Double; var y: array of Double; var KLL: array of Double;
  var KLV: array of Double; var SA: Double; var SB: Double; var SV: Double): LongInt;

{ Temperature of a vapour fraction beside up to two liquids. Returns the status.
    W: vapour fraction, 0 bubble point, 1 dew point, mol/mol
    P: pressure, above 0, atm
    z: feed, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    routines: routines of the host; null: the library's own
    options: start, 1: the result arguments hold an estimate
    T: temperature; not above 0 counts as no estimate, K, in and out
    beta: share of liquid A, mol/mol, in and out
    xA: liquid A, the lighter one, mol/mol, [count], in and out
    xB: liquid B, the denser one, mol/mol, [count], in and out
    y: vapour, mol/mol, [count], in and out
    KLL: xA / xB, [count], out
    KLV: y / xA, [count], out }
function FlashLLVatWP(W: Double; P: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var T: Double; var beta: Double; var xA: array of Double;
  var xB: array of Double; var y: array of Double; var KLL: array of Double; var KLV: array of Double): LongInt;

{ Pressure of a vapour fraction beside up to two liquids. Returns the status.
    W: vapour fraction, 0 bubble point, 1 dew point, mol/mol
    T: temperature, above 0, K
    z: feed, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    routines: routines of the host; null: the library's own
    options: start, 1: the result arguments hold an estimate
    P: pressure; not above 0 counts as no estimate, atm, in and out
    beta: share of liquid A, mol/mol, in and out
    xA: liquid A, the lighter one, mol/mol, [count], in and out
    xB: liquid B, the denser one, mol/mol, [count], in and out
    y: vapour, mol/mol, [count], in and out
    KLL: xA / xB, [count], out
    KLV: y / xA, [count], out }
function FlashLLVatWT(W: Double; T: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var P: Double; var beta: Double; var xA: array of Double;
  var xB: array of Double; var y: array of Double; var KLL: array of Double; var KLV: array of Double): LongInt;

{ Two liquids at temperature and pressure. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    z: feed, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    routines: routines of the host; null: the library's own
    options: start, 1: the result arguments hold an estimate
    beta: share of liquid 2, mol/mol, in and out
    liquid1: the denser liquid, mol/mol, [count], in and out
    liquid2: the lighter liquid, mol/mol, [count], in and out
    K: liquid2 / liquid1, [count], out }
function FlashLLatTP(T: Double; P: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var beta: Double; var liquid1: array of Double;
  var liquid2: array of Double; var K: array of Double): LongInt;

{ Bubble and dew curves, or the line of a vapour fraction. Returns the status.
    z: feed, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    routines: routines of the host; null: the library's own
    options: 0
    first_P: first pressure, 0: 1 atm, atm
    max_P: highest pressure, 0: 2000 atm, atm
    min_T: lowest temperature, 0: 50 K, K
    points: number wanted, 0: as traced
    capacity: of the three point arrays
    fraction: 1: bubble and dew curves; between 0 and 1: that line, mol/mol
    accuracy: 0, or 1e-10 and more: every point is converged to 1e-10
    T: temperatures, K, [capacity], out
    P: pressures, atm, [capacity], out
    kind: 1 dew, 0 bubble, 0.5 critical, 4 two liquids, [capacity], out
    number_of_points: points found, out
    number_of_critical_points: critical points among them, out
    cricondentherm_T: highest temperature, K, out
    cricondentherm_P: and its pressure, atm, out
    cricondenbar_T: temperature of the highest pressure, K, out
    cricondenbar_P: highest pressure, atm, out }
function PhaseEnvelope(const z: array of Double; var mixture: TMixtureRecord; routines: PModelRoutines;
  options: LongInt; first_P: Double; max_P: Double; min_T: Double; points: LongInt; capacity: LongInt;
  fraction: Double; accuracy: Double; var T: array of Double; var P: array of Double; var kind: array of Double;
  var number_of_points: LongInt; var number_of_critical_points: LongInt; var cricondentherm_T: Double;
  var cricondentherm_P: Double; var cricondenbar_T: Double; var cricondenbar_P: Double): LongInt;

{ Critical point of a mixture. Returns the status.
    z: feed, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    options: 0
    Tc: temperature, K, out
    Pc: pressure, atm, out
    Vc: molar volume, cm3/mol, out
    Zc: compressibility factor, out }
function CriticalPoint(const z: array of Double; var mixture: TMixtureRecord; options: LongInt; var Tc: Double;
  var Pc: Double; var Vc: Double; var Zc: Double): LongInt;

{ Water dew temperature at a pressure. Returns the status.
    P: pressure, above 0, atm
    z: feed, mol/mol, [count]
    method: 1 (or 0) equation of state, 2 chart
    routes: 0
    unused: not read
    mixture: record of the mixture; only its flags change, and only during the call
    reserved: not read
    T: dew temperature, in: a start, K, in and out }
function WaterDewTemperature(P: Double; const z: array of Double; method: LongInt; routes: LongInt; unused: LongInt;
  var mixture: TMixtureRecord; reserved: LongInt; var T: Double): LongInt;

{ Water dew pressure at a temperature. Returns the status.
    T: temperature, above 0, K
    z: feed, mol/mol, [count]
    method: 1 (or 0) equation of state, 2 chart
    routes: 0
    unused: not read
    mixture: record of the mixture; only its flags change, and only during the call
    reserved: not read
    P: dew pressure, in: a start, atm, in and out }
function WaterDewPressure(T: Double; const z: array of Double; method: LongInt; routes: LongInt; unused: LongInt;
  var mixture: TMixtureRecord; reserved: LongInt; var P: Double): LongInt;

{ Water dew temperatures at pressures evenly spaced in ln P. Returns the status.
    z: feed, mol/mol, [count]
    method: 1 (or 0) equation of state, 2 chart
    routes: 0
    unused: not read
    mixture: record of the mixture; only its flags change, and only during the call
    reserved: not read
    min_P: first pressure, 0: 1 atm, atm
    max_P: last pressure, 0: 200 atm, atm
    points: number of points
    T: dew temperatures, 0 where there is none, K, [points], out
    P: pressures, atm, [points], out
    status: status of every point, [points], out
    found: points with status 0, out }
function WaterDewLine(const z: array of Double; method: LongInt; routes: LongInt; unused: LongInt;
  var mixture: TMixtureRecord; reserved: LongInt; min_P: Double; max_P: Double; points: LongInt;
  var T: array of Double; var P: array of Double; var status: array of LongInt; var found: LongInt): LongInt;

{ Water in a saturated gas. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    method: 1 (or 0) equation of state, 2 chart
    z: feed, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    water_fraction: water in the saturated gas, mol/mol, out
    water_content: the same in mass per normal volume, 0 C and 1 atm, mg/Nm3, out }
function Humidity(T: Double; P: Double; method: LongInt; const z: array of Double; var mixture: TMixtureRecord;
  var water_fraction: Double; var water_content: Double): LongInt;

{ The gas saturated with water. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    z: feed, mol/mol, [count]
    method_switch: 1: method 1, and method 2 where that fails
    method: 1 (or 0) equation of state, 2 chart
    routes: 0
    mixture: record of the mixture; only its flags change, and only during the call
    reserved: not read
    wet: the saturated gas; may be z, mol/mol, [count], out }
function WetGasComposition(T: Double; P: Double; const z: array of Double; method_switch: LongInt; method: LongInt;
  routes: LongInt; var mixture: TMixtureRecord; reserved: LongInt; var wet: array of Double): LongInt;

{ Hydrate formation curve of a gas by its gravity. Returns the status.
    z: feed, mol/mol, [count]
    kind: inhibitor: 0 none, 1 methanol, 2 NaCl, 3 KCl, 4 CaCl2, 5 of molar mass M
    M: molar mass of inhibitor 5, g/mol
    percent: inhibitor in the aqueous solution, % by mass
    points: number of points
    mixture: record of the mixture; only its flags change, and only during the call
    unused: not read
    T: temperatures, K, [points], out
    P: pressures, atm, [points], out }
function HydrateLine(const z: array of Double; kind: LongInt; M: Double; percent: Double; points: LongInt;
  var mixture: TMixtureRecord; unused: LongInt; var T: array of Double; var P: array of Double): LongInt;

{ Gas at T and P against the normal state (0 C, 1 atm). Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    x: composition of the phase, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    Z: compressibility factor at T and P, out
    Z_normal: and at the normal state, out
    density_normal: density at the normal state, kg/m3, out
    normal_volume: normal m3 in one m3 at T and P, Nm3/m3, out }
function GasN(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord; var Z: Double;
  var Z_normal: Double; var density_normal: Double; var normal_volume: Double): LongInt;

{ Mass density of a liquid. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    x: composition of the phase, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    density: mass density, g/cm3, out
    d_dT: derivative with T, g/cm3/K, out
    d_dP: derivative with P, g/cm3/atm, out
    d2_dTdP: second derivative, g/cm3/K/atm, out }
function LiquidDensity_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var density: Double; var d_dT: Double; var d_dP: Double; var d2_dTdP: Double): LongInt;

{ Mass density of a gas. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    x: composition of the phase, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    density: mass density, g/cm3, out
    d_dT: derivative with T, g/cm3/K, out
    d_dP: derivative with P, g/cm3/atm, out
    d2_dTdP: second derivative, g/cm3/K/atm, out }
function GasDensity_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var density: Double; var d_dT: Double; var d_dP: Double; var d2_dTdP: Double): LongInt;

{ Molar enthalpy of a liquid. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    x: composition of the phase, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    value: molar enthalpy, cal/mol, out }
function LiquidMolarEnthalpy_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var value: Double): LongInt;

{ Molar enthalpy of a gas. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    x: composition of the phase, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    value: molar enthalpy, cal/mol, out }
function GasMolarEnthalpy_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var value: Double): LongInt;

{ Molar entropy of a liquid. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    x: composition of the phase, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    value: molar entropy, cal/(mol K), out }
function LiquidMolarEntropy_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var value: Double): LongInt;

{ Molar entropy of a gas. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    x: composition of the phase, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    value: molar entropy, cal/(mol K), out }
function GasMolarEntropy_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var value: Double): LongInt;

{ Molar free enthalpy of a liquid. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    x: composition of the phase, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    value: molar free enthalpy, cal/mol, out }
function LiquidMolarFreeEnthalpy_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var value: Double): LongInt;

{ Molar free enthalpy of a gas. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    x: composition of the phase, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    value: molar free enthalpy, cal/mol, out }
function GasMolarFreeEnthalpy_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var value: Double): LongInt;

{ Molar enthalpy of a liquid with derivatives. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    x: composition of the phase, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    mask: derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
    value: molar enthalpy, cal/mol, out
    d_dT: derivative with T, cal/(mol K), out, only with bit 1 of mask
    d_dP: derivative with P, cal/(mol atm), out, only with bit 2 of mask
    d_dn: derivatives with the mole numbers, cal/mol, [count], out, only with bit 4 of mask }
function LiquidMolarEnthalpy_Derivatives_PPR78(T: Double; P: Double; const x: array of Double;
  var mixture: TMixtureRecord; mask: LongInt; var value: Double; var d_dT: Double; var d_dP: Double;
  var d_dn: array of Double): LongInt;

{ Molar enthalpy of a gas with derivatives. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    x: composition of the phase, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    mask: derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
    value: molar enthalpy, cal/mol, out
    d_dT: derivative with T, cal/(mol K), out, only with bit 1 of mask
    d_dP: derivative with P, cal/(mol atm), out, only with bit 2 of mask
    d_dn: derivatives with the mole numbers, cal/mol, [count], out, only with bit 4 of mask }
function GasMolarEnthalpy_Derivatives_PPR78(T: Double; P: Double; const x: array of Double;
  var mixture: TMixtureRecord; mask: LongInt; var value: Double; var d_dT: Double; var d_dP: Double;
  var d_dn: array of Double): LongInt;

{ Molar entropy of a liquid with derivatives. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    x: composition of the phase, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    mask: derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
    value: molar entropy, cal/(mol K), out
    d_dT: derivative with T, cal/(mol K2), out, only with bit 1 of mask
    d_dP: derivative with P, cal/(mol K atm), out, only with bit 2 of mask
    d_dn: derivatives with the mole numbers, cal/(mol K), [count], out, only with bit 4 of mask }
function LiquidMolarEntropy_Derivatives_PPR78(T: Double; P: Double; const x: array of Double;
  var mixture: TMixtureRecord; mask: LongInt; var value: Double; var d_dT: Double; var d_dP: Double;
  var d_dn: array of Double): LongInt;

{ Molar entropy of a gas with derivatives. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    x: composition of the phase, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    mask: derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
    value: molar entropy, cal/(mol K), out
    d_dT: derivative with T, cal/(mol K2), out, only with bit 1 of mask
    d_dP: derivative with P, cal/(mol K atm), out, only with bit 2 of mask
    d_dn: derivatives with the mole numbers, cal/(mol K), [count], out, only with bit 4 of mask }
function GasMolarEntropy_Derivatives_PPR78(T: Double; P: Double; const x: array of Double;
  var mixture: TMixtureRecord; mask: LongInt; var value: Double; var d_dT: Double; var d_dP: Double;
  var d_dn: array of Double): LongInt;

{ ln phi of a liquid with derivatives. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    x: composition of the phase, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    option: 2
    mask: derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
    ln_phi: ln of the fugacity coefficients, [count], out
    d_dT: derivatives with T, 1/K, [count], out, only with bit 1 of mask
    d_dP: derivatives with P, 1/atm, [count], out, only with bit 2 of mask
    d_dn: entry (i, j) = d ln phi_i / d n_j, i fastest, [count * count], out, only with bit 4 of mask }
function LiquidPhi_Derivatives_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  option: LongInt; mask: LongInt; var ln_phi: array of Double; var d_dT: array of Double; var d_dP: array of Double;
  var d_dn: array of Double): LongInt;

{ ln phi of a gas with derivatives. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    x: composition of the phase, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    option: 2
    mask: derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
    ln_phi: ln of the fugacity coefficients, [count], out
    d_dT: derivatives with T, 1/K, [count], out, only with bit 1 of mask
    d_dP: derivatives with P, 1/atm, [count], out, only with bit 2 of mask
    d_dn: entry (i, j) = d ln phi_i / d n_j, i fastest, [count * count], out, only with bit 4 of mask }
function GasPhi_Derivatives_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  option: LongInt; mask: LongInt; var ln_phi: array of Double; var d_dT: array of Double; var d_dP: array of Double;
  var d_dn: array of Double): LongInt;

{ Heat capacities of a gas and what follows from them. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    x: composition of the phase, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    Cp: at constant pressure, cal/(mol K), out
    Cv: at constant volume, cal/(mol K), out
    speed_of_sound: speed of sound, m/s, out
    joule_thomson: Joule-Thomson coefficient, K/atm, out }
function GasSpecificHeat_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var Cp: Double; var Cv: Double; var speed_of_sound: Double; var joule_thomson: Double): LongInt;

{ Viscosity of a gas. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    x: composition of the phase, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    viscosity: dynamic viscosity, cP, out }
function GasDynamicViscosity_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var viscosity: Double): LongInt;

{ Thermal conductivity of a gas. Returns the status.
    T: temperature, above 0, K
    P: pressure, above 0, atm
    x: composition of the phase, mol/mol, [count]
    mixture: record of the mixture; only its flags change, and only during the call
    conductivity: thermal conductivity, W/(m K), out }
function GasThermalConductivity_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var conductivity: Double): LongInt;

implementation

const
  LibraryName = {$ifdef windows}'KVGasThermo.dll'{$else}'KVGasThermo'{$endif};

{$if sizeof(TMixtureRecord) <> 125}{$error TMixtureRecord is not packed}{$endif}

type
  TBuffers = array[0..5] of array of Double;

var
  GroupBuffers: TBuffers; { stay alive for the library }

type
  PMixture = ^TMixtureRecord;
  PPDouble = ^PDouble;

procedure c_ConvertPPR78GroupData(nC: LongInt; nG: LongInt; counts: PLongInt; A: PDouble; B: PDouble;
  storage: PPDouble); {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'ConvertPPR78GroupData';
function c_MolecularWeight(nc: LongInt; x: PDouble; M: PDouble; mean: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'MolecularWeight';
function c_FlashLVatTP(T: Double; P: Double; z: PDouble; mixture: PMixture; routines: PModelRoutines;
  options: LongInt; beta: PDouble; x: PDouble; y: PDouble; K: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'FlashLVatTP';
function c_FlashLVatHP(H: Double; P: Double; z: PDouble; mixture: PMixture; routines: PModelRoutines;
  options: LongInt; T: PDouble; beta: PDouble; x: PDouble; y: PDouble; K: PDouble; HL: PDouble; HV: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'FlashLVatHP';
function c_FlashLVatSP(S: Double; P: Double; z: PDouble; mixture: PMixture; routines: PModelRoutines;
  options: LongInt; T: PDouble; beta: PDouble; x: PDouble; y: PDouble; K: PDouble; SL: PDouble; SV: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'FlashLVatSP';
function c_FlashLVatWP(W: Double; P: Double; z: PDouble; mixture: PMixture; routines: PModelRoutines;
  options: LongInt; T: PDouble; x: PDouble; y: PDouble; K: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'FlashLVatWP';
function c_FlashLVatWT(W: Double; T: Double; z: PDouble; mixture: PMixture; routines: PModelRoutines;
  options: LongInt; P: PDouble; x: PDouble; y: PDouble; K: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'FlashLVatWT';
function c_FlashLLVatTP(T: Double; P: Double; z: PDouble; mixture: PMixture; routines: PModelRoutines;
  options: LongInt; beta: PDouble; V: PDouble; xA: PDouble; xB: PDouble; y: PDouble; KLL: PDouble;
  KLV: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'FlashLLVatTP';
function c_FlashLLVatHP(H: Double; P: Double; z: PDouble; mixture: PMixture; routines: PModelRoutines;
  options: LongInt; T: PDouble; beta: PDouble; V: PDouble; xA: PDouble; xB: PDouble; y: PDouble; KLL: PDouble;
  KLV: PDouble; HA: PDouble; HB: PDouble; HV: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'FlashLLVatHP';
function c_FlashLLVatSP(S: Double; P: Double; z: PDouble; mixture: PMixture; routines: PModelRoutines;
  options: LongInt; T: PDouble; beta: PDouble; V: PDouble; xA: PDouble; xB: PDouble; y: PDouble; KLL: PDouble;
  KLV: PDouble; SA: PDouble; SB: PDouble; SV: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'FlashLLVatSP';
function c_FlashLLVatWP(W: Double; P: Double; z: PDouble; mixture: PMixture; routines: PModelRoutines;
  options: LongInt; T: PDouble; beta: PDouble; xA: PDouble; xB: PDouble; y: PDouble; KLL: PDouble;
  KLV: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'FlashLLVatWP';
function c_FlashLLVatWT(W: Double; T: Double; z: PDouble; mixture: PMixture; routines: PModelRoutines;
  options: LongInt; P: PDouble; beta: PDouble; xA: PDouble; xB: PDouble; y: PDouble; KLL: PDouble;
  KLV: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'FlashLLVatWT';
function c_FlashLLatTP(T: Double; P: Double; z: PDouble; mixture: PMixture; routines: PModelRoutines;
  options: LongInt; beta: PDouble; liquid1: PDouble; liquid2: PDouble; K: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'FlashLLatTP';
function c_PhaseEnvelope(z: PDouble; mixture: PMixture; routines: PModelRoutines; options: LongInt; first_P: Double;
  max_P: Double; min_T: Double; points: LongInt; capacity: LongInt; fraction: Double; accuracy: Double; T: PDouble;
  P: PDouble; kind: PDouble; number_of_points: PLongInt; number_of_critical_points: PLongInt;
  cricondentherm_T: PDouble; cricondentherm_P: PDouble; cricondenbar_T: PDouble; cricondenbar_P: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'PhaseEnvelope';
function c_CriticalPoint(z: PDouble; mixture: PMixture; options: LongInt; Tc: PDouble; Pc: PDouble; Vc: PDouble;
  Zc: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'CriticalPoint';
function c_WaterDewTemperature(P: Double; z: PDouble; method: LongInt; routes: LongInt; unused: LongInt;
  mixture: PMixture; reserved: LongInt; T: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'WaterDewTemperature';
function c_WaterDewPressure(T: Double; z: PDouble; method: LongInt; routes: LongInt; unused: LongInt;
  mixture: PMixture; reserved: LongInt; P: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'WaterDewPressure';
function c_WaterDewLine(z: PDouble; method: LongInt; routes: LongInt; unused: LongInt; mixture: PMixture;
  reserved: LongInt; min_P: Double; max_P: Double; points: LongInt; T: PDouble; P: PDouble; status: PLongInt;
  found: PLongInt): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'WaterDewLine';
function c_Humidity(T: Double; P: Double; method: LongInt; z: PDouble; mixture: PMixture; water_fraction: PDouble;
  water_content: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'Humidity';
function c_WetGasComposition(T: Double; P: Double; z: PDouble; method_switch: LongInt; method: LongInt;
  routes: LongInt; mixture: PMixture; reserved: LongInt; wet: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'WetGasComposition';
function c_HydrateLine(z: PDouble; kind: LongInt; M: Double; percent: Double; points: LongInt; mixture: PMixture;
  unused: LongInt; T: PDouble; P: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'HydrateLine';
function c_GasN(T: Double; P: Double; x: PDouble; mixture: PMixture; Z: PDouble; Z_normal: PDouble;
  density_normal: PDouble; normal_volume: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'GasN';
function c_LiquidDensity_PPR78(T: Double; P: Double; x: PDouble; mixture: PMixture; density: PDouble; d_dT: PDouble;
  d_dP: PDouble; d2_dTdP: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'LiquidDensity_PPR78';
function c_GasDensity_PPR78(T: Double; P: Double; x: PDouble; mixture: PMixture; density: PDouble; d_dT: PDouble;
  d_dP: PDouble; d2_dTdP: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'GasDensity_PPR78';
function c_LiquidMolarEnthalpy_PPR78(T: Double; P: Double; x: PDouble; mixture: PMixture; value: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'LiquidMolarEnthalpy_PPR78';
function c_GasMolarEnthalpy_PPR78(T: Double; P: Double; x: PDouble; mixture: PMixture; value: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'GasMolarEnthalpy_PPR78';
function c_LiquidMolarEntropy_PPR78(T: Double; P: Double; x: PDouble; mixture: PMixture; value: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'LiquidMolarEntropy_PPR78';
function c_GasMolarEntropy_PPR78(T: Double; P: Double; x: PDouble; mixture: PMixture; value: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'GasMolarEntropy_PPR78';
function c_LiquidMolarFreeEnthalpy_PPR78(T: Double; P: Double; x: PDouble; mixture: PMixture;
  value: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'LiquidMolarFreeEnthalpy_PPR78';
function c_GasMolarFreeEnthalpy_PPR78(T: Double; P: Double; x: PDouble; mixture: PMixture; value: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'GasMolarFreeEnthalpy_PPR78';
function c_LiquidMolarEnthalpy_Derivatives_PPR78(T: Double; P: Double; x: PDouble; mixture: PMixture; mask: LongInt;
  value: PDouble; d_dT: PDouble; d_dP: PDouble; d_dn: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'LiquidMolarEnthalpy_Derivatives_PPR78';
function c_GasMolarEnthalpy_Derivatives_PPR78(T: Double; P: Double; x: PDouble; mixture: PMixture; mask: LongInt;
  value: PDouble; d_dT: PDouble; d_dP: PDouble; d_dn: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'GasMolarEnthalpy_Derivatives_PPR78';
function c_LiquidMolarEntropy_Derivatives_PPR78(T: Double; P: Double; x: PDouble; mixture: PMixture; mask: LongInt;
  value: PDouble; d_dT: PDouble; d_dP: PDouble; d_dn: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'LiquidMolarEntropy_Derivatives_PPR78';
function c_GasMolarEntropy_Derivatives_PPR78(T: Double; P: Double; x: PDouble; mixture: PMixture; mask: LongInt;
  value: PDouble; d_dT: PDouble; d_dP: PDouble; d_dn: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'GasMolarEntropy_Derivatives_PPR78';
function c_LiquidPhi_Derivatives_PPR78(T: Double; P: Double; x: PDouble; mixture: PMixture; option: LongInt;
  mask: LongInt; ln_phi: PDouble; d_dT: PDouble; d_dP: PDouble; d_dn: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'LiquidPhi_Derivatives_PPR78';
function c_GasPhi_Derivatives_PPR78(T: Double; P: Double; x: PDouble; mixture: PMixture; option: LongInt;
  mask: LongInt; ln_phi: PDouble; d_dT: PDouble; d_dP: PDouble; d_dn: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'GasPhi_Derivatives_PPR78';
function c_GasSpecificHeat_PPR78(T: Double; P: Double; x: PDouble; mixture: PMixture; Cp: PDouble; Cv: PDouble;
  speed_of_sound: PDouble; joule_thomson: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'GasSpecificHeat_PPR78';
function c_GasDynamicViscosity_PPR78(T: Double; P: Double; x: PDouble; mixture: PMixture;
  viscosity: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'GasDynamicViscosity_PPR78';
function c_GasThermalConductivity_PPR78(T: Double; P: Double; x: PDouble; mixture: PMixture;
  conductivity: PDouble): LongInt; {$ifdef win32}stdcall{$else}cdecl{$endif};
  external LibraryName name 'GasThermalConductivity_PPR78';

procedure Need(length: Int64; wanted: Int64; const routine, word: string);
begin
  if wanted < 0 then wanted := 0;
  if length <> wanted then
    raise EArgumentException.CreateFmt('%s: %s: %d elements, %d are needed', [routine, word, length, wanted]);
end;

function CountOf(const mixture: TMixtureRecord; const routine: string): LongInt;
begin
  if (mixture.count < 1) or (mixture.table = nil) then
    raise EArgumentException.CreateFmt('%s: mixture: the record has no components or no table', [routine]);
  Result := mixture.count;
end;

{ Address of the first element; nil of an empty array. }
function First(const values: array of Double): PDouble;
begin
  if High(values) < 0 then Result := nil else Result := @values[0];
end;

function First(const values: array of LongInt): PLongInt;
begin
  if High(values) < 0 then Result := nil else Result := @values[0];
end;

function NewMixture(const table: array of Double; count: LongInt): TMixtureRecord;
begin
  if count < 1 then raise EArgumentException.CreateFmt('NewMixture: count: %d, at least one component is needed', [count]);
  Need(High(table) + 1, Int64(KV_TABLE_COLUMNS) * count, 'NewMixture', 'table');
  FillChar(Result, SizeOf(Result), 0);
  Result.count := count;
  Result.table := @table[0];
end;

function StatusText(status: LongInt): string;
begin
  case status of
    KV_OK: Result := 'success';
    KV_NO_WATER: Result := 'no component of the mixture has the CAS number of water';
    KV_INHIBITOR_MASS: Result := 'the molar mass of a user-defined inhibitor is not positive';
    KV_NO_WATER_LIMIT: Result := 'the gas takes up any amount of water at this temperature and pressure';
    KV_NO_ROOT: Result := 'the equation of state has no root above the co-volume';
    KV_FEED_SUM: Result := 'the feed mole fractions do not sum to one within the tolerance of the record';
    KV_NOT_CONVERGED: Result := 'no convergence within the iteration limit; what the results hold is no answer';
    KV_DAMPING: Result := 'the damping of the Newton step is exhausted';
    KV_RELAXATION: Result := 'the relaxation factor fell below its limit';
    KV_ZERO_SLOPE: Result := 'the derivative of the residual is zero';
    KV_NO_SATURATION: Result := 'no temperature or pressure has this vapour fraction with two phases';
    KV_UNSTABLE_POINT: Result := 'a point of this vapour fraction was found, but another phase splits off before it';
    KV_FOURTH_PHASE: Result := 'three phases were found, but a fourth would split off; results hold these three';
    KV_TRIVIAL: Result := 'the iteration ended on two identical phases or broke down';
    KV_TRIVIAL_LV: Result := 'the vapour and the second liquid became the same phase';
    KV_LV_ANSWER_DOUBTFUL: Result := 'one liquid and a vapour remain; the flash that said so had a status';
    KV_LL_ANSWER_DOUBTFUL: Result := 'no vapour remains; the flash that said so had a status';
    KV_NO_START: Result := 'no starting point for three phases could be built';
    KV_ENVELOPE_OPEN: Result := 'the envelope is open: it reached the default highest pressure';
    KV_ENVELOPE_COLD: Result := 'the envelope reached the default lowest temperature';
    KV_ENVELOPE_FULL: Result := 'the arrays are too short for all points of the curve';
    KV_ENVELOPE_UNSTABLE: Result := 'another phase splits off before the marked points of the curve';
    KV_ENVELOPE_BROKEN: Result := 'the curve could not be followed to its end';
    KV_NO_CRITICAL: Result := 'the mixture has no stable critical point';
    KV_ENVELOPE_LIQUIDS: Result := 'a part of the curve is where a second liquid forms';
    KV_WATER_RANGE: Result := 'temperature, pressure or gas outside the range of the water-content method';
    KV_PURE_UNKNOWN: Result := 'pure-component library: component unknown';
    KV_PURE_NO_CORRELATION: Result := 'pure-component library: no correlation for this property';
    KV_PURE_RANGE: Result := 'pure-component library: temperature outside the range of the correlation';
    KV_PURE_ARGUMENT: Result := 'pure-component library: an argument is not finite';
    KV_NULL_ARGUMENT: Result := 'an argument that is read or written is a null pointer';
    KV_COMPONENT_COUNT: Result := 'the number of components is below 1 or above 10000';
    KV_TEMPERATURE: Result := 'the temperature is not finite or not positive';
    KV_PRESSURE: Result := 'the pressure is not finite or not positive';
    KV_COMPOSITION: Result := 'a composition has an entry that is negative or not finite, or is all zero';
    KV_COMPONENT_DATA: Result := 'a critical temperature, critical pressure, acentric factor or molar mass is unusable';
    KV_GROUP_DATA: Result := 'no group data for this number of components: call ConvertPPR78GroupData first';
    KV_SPECIFICATION: Result := 'a specified quantity or option is not finite or out of range';
    KV_MEMORY: Result := 'not enough memory for the work arrays';
    KV_INTERNAL: Result := 'unexpected failure inside the library; please report it';
    KV_NOT_FINITE: Result := 'the equation of state gave a value that is not finite at these conditions';
  else
    Result := 'unknown status';
  end;
end;

procedure ConvertPPR78GroupData(nC, nG: LongInt; const counts: array of LongInt; const A, B: array of Double);
var
  fresh: TBuffers;
  storage: array[0..5] of PDouble;
  k: Integer;
begin
  if nC < 1 then raise EArgumentException.CreateFmt('ConvertPPR78GroupData: nC: %d, at least one is needed', [nC]);
  if nG < 1 then raise EArgumentException.CreateFmt('ConvertPPR78GroupData: nG: %d, at least one is needed', [nG]);
  if Int64(nG) * nC > High(LongInt) div nC then
    raise EArgumentException.Create('ConvertPPR78GroupData: nC: nG * nC * nC is more than 32 bits hold');
  Need(High(counts) + 1, Int64(nG) * nC, 'ConvertPPR78GroupData', 'counts');
  Need(High(A) + 1, Int64(nG) * nG, 'ConvertPPR78GroupData', 'A');
  Need(High(B) + 1, Int64(nG) * nG, 'ConvertPPR78GroupData', 'B');
  SetLength(fresh[0], 1);
  SetLength(fresh[1], nG * nG);
  SetLength(fresh[2], nG * nG);
  SetLength(fresh[3], nC * nG);
  SetLength(fresh[4], nG * nG);
  SetLength(fresh[5], nG * nC * nC);
  for k := 0 to 5 do storage[k] := @fresh[k][0];
  c_ConvertPPR78GroupData(nC, nG, First(counts), First(A), First(B), @storage[0]);
  GroupBuffers := fresh;
end;

function MolecularWeight(nc: LongInt; const x: array of Double; const M: array of Double; var mean: Double): LongInt;
begin
  Need(High(x) + 1, nc, 'MolecularWeight', 'x');
  Need(High(M) + 1, nc, 'MolecularWeight', 'M');
  Result := c_MolecularWeight(nc, First(x), First(M), @mean);
end;

function FlashLVatTP(T: Double; P: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var beta: Double; var x: array of Double; var y: array of Double;
  var K: array of Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'FlashLVatTP');
  Need(High(z) + 1, count, 'FlashLVatTP', 'z');
  Need(High(x) + 1, count, 'FlashLVatTP', 'x');
  Need(High(y) + 1, count, 'FlashLVatTP', 'y');
  Need(High(K) + 1, count, 'FlashLVatTP', 'K');
  Result := c_FlashLVatTP(T, P, First(z), @mixture, routines, options, @beta, First(x), First(y), First(K));
end;

function FlashLVatHP(H: Double; P: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var T: Double; var beta: Double; var x: array of Double;
  var y: array of Double; var K: array of Double; var HL: Double; var HV: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'FlashLVatHP');
  Need(High(z) + 1, count, 'FlashLVatHP', 'z');
  Need(High(x) + 1, count, 'FlashLVatHP', 'x');
  Need(High(y) + 1, count, 'FlashLVatHP', 'y');
  Need(High(K) + 1, count, 'FlashLVatHP', 'K');
  Result := c_FlashLVatHP(H, P, First(z), @mixture, routines, options, @T, @beta, First(x), First(y), First(K), @HL,
    @HV);
end;

function FlashLVatSP(S: Double; P: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var T: Double; var beta: Double; var x: array of Double;
  var y: array of Double; var K: array of Double; var SL: Double; var SV: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'FlashLVatSP');
  Need(High(z) + 1, count, 'FlashLVatSP', 'z');
  Need(High(x) + 1, count, 'FlashLVatSP', 'x');
  Need(High(y) + 1, count, 'FlashLVatSP', 'y');
  Need(High(K) + 1, count, 'FlashLVatSP', 'K');
  Result := c_FlashLVatSP(S, P, First(z), @mixture, routines, options, @T, @beta, First(x), First(y), First(K), @SL,
    @SV);
end;

function FlashLVatWP(W: Double; P: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var T: Double; var x: array of Double; var y: array of Double;
  var K: array of Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'FlashLVatWP');
  Need(High(z) + 1, count, 'FlashLVatWP', 'z');
  Need(High(x) + 1, count, 'FlashLVatWP', 'x');
  Need(High(y) + 1, count, 'FlashLVatWP', 'y');
  Need(High(K) + 1, count, 'FlashLVatWP', 'K');
  Result := c_FlashLVatWP(W, P, First(z), @mixture, routines, options, @T, First(x), First(y), First(K));
end;

function FlashLVatWT(W: Double; T: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var P: Double; var x: array of Double; var y: array of Double;
  var K: array of Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'FlashLVatWT');
  Need(High(z) + 1, count, 'FlashLVatWT', 'z');
  Need(High(x) + 1, count, 'FlashLVatWT', 'x');
  Need(High(y) + 1, count, 'FlashLVatWT', 'y');
  Need(High(K) + 1, count, 'FlashLVatWT', 'K');
  Result := c_FlashLVatWT(W, T, First(z), @mixture, routines, options, @P, First(x), First(y), First(K));
end;

function FlashLLVatTP(T: Double; P: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var beta: Double; var V: Double; var xA: array of Double;
  var xB: array of Double; var y: array of Double; var KLL: array of Double; var KLV: array of Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'FlashLLVatTP');
  Need(High(z) + 1, count, 'FlashLLVatTP', 'z');
  Need(High(xA) + 1, count, 'FlashLLVatTP', 'xA');
  Need(High(xB) + 1, count, 'FlashLLVatTP', 'xB');
  Need(High(y) + 1, count, 'FlashLLVatTP', 'y');
  Need(High(KLL) + 1, count, 'FlashLLVatTP', 'KLL');
  Need(High(KLV) + 1, count, 'FlashLLVatTP', 'KLV');
  Result := c_FlashLLVatTP(T, P, First(z), @mixture, routines, options, @beta, @V, First(xA), First(xB), First(y),
    First(KLL), First(KLV));
end;

function FlashLLVatHP(H: Double; P: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var T: Double; var beta: Double; var V: Double;
  var xA: array of Double; var xB: array of Double; var y: array of Double; var KLL: array of Double;
  var KLV: array of Double; var HA: Double; var HB: Double; var HV: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'FlashLLVatHP');
  Need(High(z) + 1, count, 'FlashLLVatHP', 'z');
  Need(High(xA) + 1, count, 'FlashLLVatHP', 'xA');
  Need(High(xB) + 1, count, 'FlashLLVatHP', 'xB');
  Need(High(y) + 1, count, 'FlashLLVatHP', 'y');
  Need(High(KLL) + 1, count, 'FlashLLVatHP', 'KLL');
  Need(High(KLV) + 1, count, 'FlashLLVatHP', 'KLV');
  Result := c_FlashLLVatHP(H, P, First(z), @mixture, routines, options, @T, @beta, @V, First(xA), First(xB),
    First(y), First(KLL), First(KLV), @HA, @HB, @HV);
end;

function FlashLLVatSP(S: Double; P: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var T: Double; var beta: Double; var V: Double;
  var xA: array of Double; var xB: array of Double; var y: array of Double; var KLL: array of Double;
  var KLV: array of Double; var SA: Double; var SB: Double; var SV: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'FlashLLVatSP');
  Need(High(z) + 1, count, 'FlashLLVatSP', 'z');
  Need(High(xA) + 1, count, 'FlashLLVatSP', 'xA');
  Need(High(xB) + 1, count, 'FlashLLVatSP', 'xB');
  Need(High(y) + 1, count, 'FlashLLVatSP', 'y');
  Need(High(KLL) + 1, count, 'FlashLLVatSP', 'KLL');
  Need(High(KLV) + 1, count, 'FlashLLVatSP', 'KLV');
  Result := c_FlashLLVatSP(S, P, First(z), @mixture, routines, options, @T, @beta, @V, First(xA), First(xB),
    First(y), First(KLL), First(KLV), @SA, @SB, @SV);
end;

function FlashLLVatWP(W: Double; P: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var T: Double; var beta: Double; var xA: array of Double;
  var xB: array of Double; var y: array of Double; var KLL: array of Double; var KLV: array of Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'FlashLLVatWP');
  Need(High(z) + 1, count, 'FlashLLVatWP', 'z');
  Need(High(xA) + 1, count, 'FlashLLVatWP', 'xA');
  Need(High(xB) + 1, count, 'FlashLLVatWP', 'xB');
  Need(High(y) + 1, count, 'FlashLLVatWP', 'y');
  Need(High(KLL) + 1, count, 'FlashLLVatWP', 'KLL');
  Need(High(KLV) + 1, count, 'FlashLLVatWP', 'KLV');
  Result := c_FlashLLVatWP(W, P, First(z), @mixture, routines, options, @T, @beta, First(xA), First(xB), First(y),
    First(KLL), First(KLV));
end;

function FlashLLVatWT(W: Double; T: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var P: Double; var beta: Double; var xA: array of Double;
  var xB: array of Double; var y: array of Double; var KLL: array of Double; var KLV: array of Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'FlashLLVatWT');
  Need(High(z) + 1, count, 'FlashLLVatWT', 'z');
  Need(High(xA) + 1, count, 'FlashLLVatWT', 'xA');
  Need(High(xB) + 1, count, 'FlashLLVatWT', 'xB');
  Need(High(y) + 1, count, 'FlashLLVatWT', 'y');
  Need(High(KLL) + 1, count, 'FlashLLVatWT', 'KLL');
  Need(High(KLV) + 1, count, 'FlashLLVatWT', 'KLV');
  Result := c_FlashLLVatWT(W, T, First(z), @mixture, routines, options, @P, @beta, First(xA), First(xB), First(y),
    First(KLL), First(KLV));
end;

function FlashLLatTP(T: Double; P: Double; const z: array of Double; var mixture: TMixtureRecord;
  routines: PModelRoutines; options: LongInt; var beta: Double; var liquid1: array of Double;
  var liquid2: array of Double; var K: array of Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'FlashLLatTP');
  Need(High(z) + 1, count, 'FlashLLatTP', 'z');
  Need(High(liquid1) + 1, count, 'FlashLLatTP', 'liquid1');
  Need(High(liquid2) + 1, count, 'FlashLLatTP', 'liquid2');
  Need(High(K) + 1, count, 'FlashLLatTP', 'K');
  Result := c_FlashLLatTP(T, P, First(z), @mixture, routines, options, @beta, First(liquid1), First(liquid2),
    First(K));
end;

function PhaseEnvelope(const z: array of Double; var mixture: TMixtureRecord; routines: PModelRoutines;
  options: LongInt; first_P: Double; max_P: Double; min_T: Double; points: LongInt; capacity: LongInt;
  fraction: Double; accuracy: Double; var T: array of Double; var P: array of Double; var kind: array of Double;
  var number_of_points: LongInt; var number_of_critical_points: LongInt; var cricondentherm_T: Double;
  var cricondentherm_P: Double; var cricondenbar_T: Double; var cricondenbar_P: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'PhaseEnvelope');
  Need(High(z) + 1, count, 'PhaseEnvelope', 'z');
  Need(High(T) + 1, capacity, 'PhaseEnvelope', 'T');
  Need(High(P) + 1, capacity, 'PhaseEnvelope', 'P');
  Need(High(kind) + 1, capacity, 'PhaseEnvelope', 'kind');
  Result := c_PhaseEnvelope(First(z), @mixture, routines, options, first_P, max_P, min_T, points, capacity, fraction,
    accuracy, First(T), First(P), First(kind), @number_of_points, @number_of_critical_points, @cricondentherm_T,
    @cricondentherm_P, @cricondenbar_T, @cricondenbar_P);
end;

function CriticalPoint(const z: array of Double; var mixture: TMixtureRecord; options: LongInt; var Tc: Double;
  var Pc: Double; var Vc: Double; var Zc: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'CriticalPoint');
  Need(High(z) + 1, count, 'CriticalPoint', 'z');
  Result := c_CriticalPoint(First(z), @mixture, options, @Tc, @Pc, @Vc, @Zc);
end;

function WaterDewTemperature(P: Double; const z: array of Double; method: LongInt; routes: LongInt; unused: LongInt;
  var mixture: TMixtureRecord; reserved: LongInt; var T: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'WaterDewTemperature');
  Need(High(z) + 1, count, 'WaterDewTemperature', 'z');
  Result := c_WaterDewTemperature(P, First(z), method, routes, unused, @mixture, reserved, @T);
end;

function WaterDewPressure(T: Double; const z: array of Double; method: LongInt; routes: LongInt; unused: LongInt;
  var mixture: TMixtureRecord; reserved: LongInt; var P: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'WaterDewPressure');
  Need(High(z) + 1, count, 'WaterDewPressure', 'z');
  Result := c_WaterDewPressure(T, First(z), method, routes, unused, @mixture, reserved, @P);
end;

function WaterDewLine(const z: array of Double; method: LongInt; routes: LongInt; unused: LongInt;
  var mixture: TMixtureRecord; reserved: LongInt; min_P: Double; max_P: Double; points: LongInt;
  var T: array of Double; var P: array of Double; var status: array of LongInt; var found: LongInt): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'WaterDewLine');
  Need(High(z) + 1, count, 'WaterDewLine', 'z');
  Need(High(T) + 1, points, 'WaterDewLine', 'T');
  Need(High(P) + 1, points, 'WaterDewLine', 'P');
  Need(High(status) + 1, points, 'WaterDewLine', 'status');
  Result := c_WaterDewLine(First(z), method, routes, unused, @mixture, reserved, min_P, max_P, points, First(T),
    First(P), First(status), @found);
end;

function Humidity(T: Double; P: Double; method: LongInt; const z: array of Double; var mixture: TMixtureRecord;
  var water_fraction: Double; var water_content: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'Humidity');
  Need(High(z) + 1, count, 'Humidity', 'z');
  Result := c_Humidity(T, P, method, First(z), @mixture, @water_fraction, @water_content);
end;

function WetGasComposition(T: Double; P: Double; const z: array of Double; method_switch: LongInt; method: LongInt;
  routes: LongInt; var mixture: TMixtureRecord; reserved: LongInt; var wet: array of Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'WetGasComposition');
  Need(High(z) + 1, count, 'WetGasComposition', 'z');
  Need(High(wet) + 1, count, 'WetGasComposition', 'wet');
  Result := c_WetGasComposition(T, P, First(z), method_switch, method, routes, @mixture, reserved, First(wet));
end;

function HydrateLine(const z: array of Double; kind: LongInt; M: Double; percent: Double; points: LongInt;
  var mixture: TMixtureRecord; unused: LongInt; var T: array of Double; var P: array of Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'HydrateLine');
  Need(High(z) + 1, count, 'HydrateLine', 'z');
  Need(High(T) + 1, points, 'HydrateLine', 'T');
  Need(High(P) + 1, points, 'HydrateLine', 'P');
  Result := c_HydrateLine(First(z), kind, M, percent, points, @mixture, unused, First(T), First(P));
end;

function GasN(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord; var Z: Double;
  var Z_normal: Double; var density_normal: Double; var normal_volume: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'GasN');
  Need(High(x) + 1, count, 'GasN', 'x');
  Result := c_GasN(T, P, First(x), @mixture, @Z, @Z_normal, @density_normal, @normal_volume);
end;

function LiquidDensity_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var density: Double; var d_dT: Double; var d_dP: Double; var d2_dTdP: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'LiquidDensity_PPR78');
  Need(High(x) + 1, count, 'LiquidDensity_PPR78', 'x');
  Result := c_LiquidDensity_PPR78(T, P, First(x), @mixture, @density, @d_dT, @d_dP, @d2_dTdP);
end;

function GasDensity_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var density: Double; var d_dT: Double; var d_dP: Double; var d2_dTdP: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'GasDensity_PPR78');
  Need(High(x) + 1, count, 'GasDensity_PPR78', 'x');
  Result := c_GasDensity_PPR78(T, P, First(x), @mixture, @density, @d_dT, @d_dP, @d2_dTdP);
end;

function LiquidMolarEnthalpy_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var value: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'LiquidMolarEnthalpy_PPR78');
  Need(High(x) + 1, count, 'LiquidMolarEnthalpy_PPR78', 'x');
  Result := c_LiquidMolarEnthalpy_PPR78(T, P, First(x), @mixture, @value);
end;

function GasMolarEnthalpy_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var value: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'GasMolarEnthalpy_PPR78');
  Need(High(x) + 1, count, 'GasMolarEnthalpy_PPR78', 'x');
  Result := c_GasMolarEnthalpy_PPR78(T, P, First(x), @mixture, @value);
end;

function LiquidMolarEntropy_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var value: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'LiquidMolarEntropy_PPR78');
  Need(High(x) + 1, count, 'LiquidMolarEntropy_PPR78', 'x');
  Result := c_LiquidMolarEntropy_PPR78(T, P, First(x), @mixture, @value);
end;

function GasMolarEntropy_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var value: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'GasMolarEntropy_PPR78');
  Need(High(x) + 1, count, 'GasMolarEntropy_PPR78', 'x');
  Result := c_GasMolarEntropy_PPR78(T, P, First(x), @mixture, @value);
end;

function LiquidMolarFreeEnthalpy_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var value: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'LiquidMolarFreeEnthalpy_PPR78');
  Need(High(x) + 1, count, 'LiquidMolarFreeEnthalpy_PPR78', 'x');
  Result := c_LiquidMolarFreeEnthalpy_PPR78(T, P, First(x), @mixture, @value);
end;

function GasMolarFreeEnthalpy_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var value: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'GasMolarFreeEnthalpy_PPR78');
  Need(High(x) + 1, count, 'GasMolarFreeEnthalpy_PPR78', 'x');
  Result := c_GasMolarFreeEnthalpy_PPR78(T, P, First(x), @mixture, @value);
end;

function LiquidMolarEnthalpy_Derivatives_PPR78(T: Double; P: Double; const x: array of Double;
  var mixture: TMixtureRecord; mask: LongInt; var value: Double; var d_dT: Double; var d_dP: Double;
  var d_dn: array of Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'LiquidMolarEnthalpy_Derivatives_PPR78');
  Need(High(x) + 1, count, 'LiquidMolarEnthalpy_Derivatives_PPR78', 'x');
  if (mask and 4 <> 0) or (High(d_dn) >= 0) then Need(High(d_dn) + 1, count, 'LiquidMolarEnthalpy_Derivatives_PPR78', 'd_dn');
  Result := c_LiquidMolarEnthalpy_Derivatives_PPR78(T, P, First(x), @mixture, mask, @value, @d_dT, @d_dP,
    First(d_dn));
end;

function GasMolarEnthalpy_Derivatives_PPR78(T: Double; P: Double; const x: array of Double;
  var mixture: TMixtureRecord; mask: LongInt; var value: Double; var d_dT: Double; var d_dP: Double;
  var d_dn: array of Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'GasMolarEnthalpy_Derivatives_PPR78');
  Need(High(x) + 1, count, 'GasMolarEnthalpy_Derivatives_PPR78', 'x');
  if (mask and 4 <> 0) or (High(d_dn) >= 0) then Need(High(d_dn) + 1, count, 'GasMolarEnthalpy_Derivatives_PPR78', 'd_dn');
  Result := c_GasMolarEnthalpy_Derivatives_PPR78(T, P, First(x), @mixture, mask, @value, @d_dT, @d_dP, First(d_dn));
end;

function LiquidMolarEntropy_Derivatives_PPR78(T: Double; P: Double; const x: array of Double;
  var mixture: TMixtureRecord; mask: LongInt; var value: Double; var d_dT: Double; var d_dP: Double;
  var d_dn: array of Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'LiquidMolarEntropy_Derivatives_PPR78');
  Need(High(x) + 1, count, 'LiquidMolarEntropy_Derivatives_PPR78', 'x');
  if (mask and 4 <> 0) or (High(d_dn) >= 0) then Need(High(d_dn) + 1, count, 'LiquidMolarEntropy_Derivatives_PPR78', 'd_dn');
  Result := c_LiquidMolarEntropy_Derivatives_PPR78(T, P, First(x), @mixture, mask, @value, @d_dT, @d_dP, First(d_dn));
end;

function GasMolarEntropy_Derivatives_PPR78(T: Double; P: Double; const x: array of Double;
  var mixture: TMixtureRecord; mask: LongInt; var value: Double; var d_dT: Double; var d_dP: Double;
  var d_dn: array of Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'GasMolarEntropy_Derivatives_PPR78');
  Need(High(x) + 1, count, 'GasMolarEntropy_Derivatives_PPR78', 'x');
  if (mask and 4 <> 0) or (High(d_dn) >= 0) then Need(High(d_dn) + 1, count, 'GasMolarEntropy_Derivatives_PPR78', 'd_dn');
  Result := c_GasMolarEntropy_Derivatives_PPR78(T, P, First(x), @mixture, mask, @value, @d_dT, @d_dP, First(d_dn));
end;

function LiquidPhi_Derivatives_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  option: LongInt; mask: LongInt; var ln_phi: array of Double; var d_dT: array of Double; var d_dP: array of Double;
  var d_dn: array of Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'LiquidPhi_Derivatives_PPR78');
  Need(High(x) + 1, count, 'LiquidPhi_Derivatives_PPR78', 'x');
  Need(High(ln_phi) + 1, count, 'LiquidPhi_Derivatives_PPR78', 'ln_phi');
  if (mask and 1 <> 0) or (High(d_dT) >= 0) then Need(High(d_dT) + 1, count, 'LiquidPhi_Derivatives_PPR78', 'd_dT');
  if (mask and 2 <> 0) or (High(d_dP) >= 0) then Need(High(d_dP) + 1, count, 'LiquidPhi_Derivatives_PPR78', 'd_dP');
  if (mask and 4 <> 0) or (High(d_dn) >= 0) then Need(High(d_dn) + 1, Int64(count) * count, 'LiquidPhi_Derivatives_PPR78', 'd_dn');
  Result := c_LiquidPhi_Derivatives_PPR78(T, P, First(x), @mixture, option, mask, First(ln_phi), First(d_dT),
    First(d_dP), First(d_dn));
end;

function GasPhi_Derivatives_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  option: LongInt; mask: LongInt; var ln_phi: array of Double; var d_dT: array of Double; var d_dP: array of Double;
  var d_dn: array of Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'GasPhi_Derivatives_PPR78');
  Need(High(x) + 1, count, 'GasPhi_Derivatives_PPR78', 'x');
  Need(High(ln_phi) + 1, count, 'GasPhi_Derivatives_PPR78', 'ln_phi');
  if (mask and 1 <> 0) or (High(d_dT) >= 0) then Need(High(d_dT) + 1, count, 'GasPhi_Derivatives_PPR78', 'd_dT');
  if (mask and 2 <> 0) or (High(d_dP) >= 0) then Need(High(d_dP) + 1, count, 'GasPhi_Derivatives_PPR78', 'd_dP');
  if (mask and 4 <> 0) or (High(d_dn) >= 0) then Need(High(d_dn) + 1, Int64(count) * count, 'GasPhi_Derivatives_PPR78', 'd_dn');
  Result := c_GasPhi_Derivatives_PPR78(T, P, First(x), @mixture, option, mask, First(ln_phi), First(d_dT),
    First(d_dP), First(d_dn));
end;

function GasSpecificHeat_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var Cp: Double; var Cv: Double; var speed_of_sound: Double; var joule_thomson: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'GasSpecificHeat_PPR78');
  Need(High(x) + 1, count, 'GasSpecificHeat_PPR78', 'x');
  Result := c_GasSpecificHeat_PPR78(T, P, First(x), @mixture, @Cp, @Cv, @speed_of_sound, @joule_thomson);
end;

function GasDynamicViscosity_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var viscosity: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'GasDynamicViscosity_PPR78');
  Need(High(x) + 1, count, 'GasDynamicViscosity_PPR78', 'x');
  Result := c_GasDynamicViscosity_PPR78(T, P, First(x), @mixture, @viscosity);
end;

function GasThermalConductivity_PPR78(T: Double; P: Double; const x: array of Double; var mixture: TMixtureRecord;
  var conductivity: Double): LongInt;
var
  count: LongInt;
begin
  count := CountOf(mixture, 'GasThermalConductivity_PPR78');
  Need(High(x) + 1, count, 'GasThermalConductivity_PPR78', 'x');
  Result := c_GasThermalConductivity_PPR78(T, P, First(x), @mixture, @conductivity);
end;

end.
