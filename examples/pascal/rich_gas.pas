{ A rich gas: flash, dew point, extremes of the envelope, properties of its vapour. How to build it: docs/hosts.md. }
program rich_gas;

{$mode objfpc}{$H+}

uses
  SysUtils, kestrune;

{ The gas of data/components.csv and data/ppr78_interactions.csv, by tools/make_bindings.py. }
const
  N = 6;
  Groups = 5;
  z: array[0..N - 1] of Double = (0.76, 0.09, 0.06, 0.04, 0.03, 0.02); { methane, ethane, propane, n-butane, n-pentane, carbon dioxide }
  ColumnNumbers: array[0..11] of Integer = (2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 41, 43);
  Columns: array[0..11, 0..N - 1] of Double = (
    (16.04246, 30.06904, 44.09562, 58.12220, 72.14878, 44.00950), { 2: molar mass, g/mol }
    (90.6941, 90.368, 85.525, 134.895, 143.47, 216.592), { 3: triple point, K }
    (111.6672, 184.5686, 231.0362, 272.6599, 309.2093, 194.67), { 4: normal boiling point, K }
    (190.564, 305.32, 369.83, 425.12, 469.7, 304.21), { 5: critical temperature, K }
    (45.388601, 48.082902, 41.924500, 37.463607, 33.259314, 72.864545), { 6: critical pressure, atm }
    (98.6, 145.5, 200.0, 255.0, 313.0, 94.0), { 7: critical volume, cm3/mol }
    (0.28620, 0.27924, 0.27630, 0.27385, 0.27010, 0.27438), { 8: critical compressibility factor }
    (0.0115478, 0.099493, 0.152291, 0.200164, 0.251506, 0.223621), { 9: acentric factor }
    (0.0, 0.0, 0.08, 0.0, 0.0, 0.0), { 10: dipole moment, debye }
    (90.69, 90.35, 85.47, 134.86, 143.42, 216.58), { 11: lowest temperature of the vapour pressure, K }
    (0.0, 0.0, 0.0, 0.0, 0.0, 0.0), { 41: family code }
    (74828.0, 74840.0, 74986.0, 106978.0, 109660.0, 124389.0) { 43: CAS number }
  );
  { Groups CH3, CH2, CH4, C2H6, CO2: how often in each component, and their interactions in MPa. }
  Counts: array[0..Groups * N - 1] of LongInt = (
    0, 0, 1, 0, 0,
    0, 0, 0, 1, 0,
    2, 1, 0, 0, 0,
    2, 2, 0, 0, 0,
    2, 3, 0, 0, 0,
    0, 0, 0, 0, 1);
  A: array[0..Groups * Groups - 1] of Double = (
    0, 0, 0, 0, 0,
    65.54, 0, 0, 0, 0,
    28.48, 37.75, 0, 0, 0,
    3.775, 29.85, 9.951, 0, 0,
    144.8, 141.4, 136.6, 136.2, 0);
  B: array[0..Groups * Groups - 1] of Double = (
    0, 0, 0, 0, 0,
    105.7, 0, 0, 0, 0,
    20.25, 74.81, 0, 0, 0,
    8.922, 65.88, 13.73, 0, 0,
    401.5, 237.1, 214.8, 235.7, 0);
{ end of the gas }

const
  Capacity = 500;
  T = 260.0; { K }
  P = 40.0; { atm }

type
  TFractions = array[0..N - 1] of Double;

procedure Show(const name: string; value: Double);
var
  text: string;
begin
  Str(value: 24, text);
  WriteLn(Format('%-18s', [name]), text);
end;

procedure Require(const what: string; status: LongInt);
begin
  if status <> KV_OK then raise Exception.CreateFmt('%s: status %d, %s', [what, status, StatusText(status)]);
end;

var
  table: array of Double;
  T_curve, P_curve, kind: array[0..Capacity - 1] of Double;
  x, y, K, dew_x, dew_y: TFractions;
  gas: TMixtureRecord;
  beta, dew_T, therm_T, therm_P, bar_T, bar_P, density, d_dT, d_dP, d2, H, Cp, Cv, sound, joule_thomson, viscosity: Double;
  points, critical_points, c, i: LongInt;
begin
  SetLength(table, KV_TABLE_COLUMNS * N);
  for c := 0 to High(ColumnNumbers) do
    for i := 0 to N - 1 do table[(ColumnNumbers[c] - 1) * N + i] := Columns[c][i];
  gas := NewMixture(table, N);
  ConvertPPR78GroupData(N, Groups, Counts, A, B);

  beta := 0;
  Require('flash', FlashLVatTP(T, P, z, gas, nil, 1, beta, x, y, K));
  Show('vapour_fraction', beta);
  for i := 0 to N - 1 do Show('K', K[i]);

  dew_T := 0;
  Require('dew point', FlashLVatWP(1.0, P, z, gas, nil, 1, dew_T, dew_x, dew_y, K));
  Show('dew_temperature', dew_T);

  Require('envelope', PhaseEnvelope(z, gas, nil, 0, 0, 0, 200, 0, Capacity, 1.0, 0, T_curve, P_curve, kind, points,
    critical_points, therm_T, therm_P, bar_T, bar_P));
  Show('cricondentherm_T', therm_T);
  Show('cricondentherm_P', therm_P);
  Show('cricondenbar_T', bar_T);
  Show('cricondenbar_P', bar_P);

  Require('density', GasDensity_PPR78(T, P, y, gas, density, d_dT, d_dP, d2));
  Require('enthalpy', GasMolarEnthalpy_PPR78(T, P, y, gas, H));
  Require('heat', GasSpecificHeat_PPR78(T, P, y, gas, Cp, Cv, sound, joule_thomson));
  Require('viscosity', GasDynamicViscosity_PPR78(T, P, y, gas, viscosity));
  Show('density', density);
  Show('enthalpy', H);
  Show('speed_of_sound', sound);
  Show('viscosity', viscosity);
end.
