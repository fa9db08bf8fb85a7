/* A rich gas: flash, dew point, extremes of the envelope, properties of its vapour. How to build it: docs/hosts.md. */
#include <stdio.h>

#include "kestrune/kvgasthermo.h"

/* The gas of data/components.csv and data/ppr78_interactions.csv, by tools/make_bindings.py. */
enum { N = 6, GROUPS = 5, COLUMNS = 12 }; /* methane, ethane, propane, n-butane, n-pentane, carbon dioxide */
static const double z[N] = {0.76, 0.09, 0.06, 0.04, 0.03, 0.02};
static const int column_numbers[COLUMNS] = {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 41, 43};
static const double columns[COLUMNS][N] = {
    {16.04246, 30.06904, 44.09562, 58.12220, 72.14878, 44.00950}, /* 2: molar mass, g/mol */
    {90.6941, 90.368, 85.525, 134.895, 143.47, 216.592}, /* 3: triple point, K */
    {111.6672, 184.5686, 231.0362, 272.6599, 309.2093, 194.67}, /* 4: normal boiling point, K */
    {190.564, 305.32, 369.83, 425.12, 469.7, 304.21}, /* 5: critical temperature, K */
    {45.388601, 48.082902, 41.924500, 37.463607, 33.259314, 72.864545}, /* 6: critical pressure, atm */
    {98.6, 145.5, 200.0, 255.0, 313.0, 94.0}, /* 7: critical volume, cm3/mol */
    {0.28620, 0.27924, 0.27630, 0.27385, 0.27010, 0.27438}, /* 8: critical compressibility factor */
    {0.0115478, 0.099493, 0.152291, 0.200164, 0.251506, 0.223621}, /* 9: acentric factor */
    {0.0, 0.0, 0.08, 0.0, 0.0, 0.0}, /* 10: dipole moment, debye */
    {90.69, 90.35, 85.47, 134.86, 143.42, 216.58}, /* 11: lowest temperature of the vapour pressure, K */
    {0.0, 0.0, 0.0, 0.0, 0.0, 0.0}, /* 41: family code */
    {74828.0, 74840.0, 74986.0, 106978.0, 109660.0, 124389.0}, /* 43: CAS number */
};
/* Groups CH3, CH2, CH4, C2H6, CO2: how often in each component, and their interactions in MPa. */
static const int32_t counts[GROUPS * N] = {
    0, 0, 1, 0, 0,
    0, 0, 0, 1, 0,
    2, 1, 0, 0, 0,
    2, 2, 0, 0, 0,
    2, 3, 0, 0, 0,
    0, 0, 0, 0, 1};
static const double A[GROUPS * GROUPS] = {
    0, 0, 0, 0, 0,
    65.54, 0, 0, 0, 0,
    28.48, 37.75, 0, 0, 0,
    3.775, 29.85, 9.951, 0, 0,
    144.8, 141.4, 136.6, 136.2, 0};
static const double B[GROUPS * GROUPS] = {
    0, 0, 0, 0, 0,
    105.7, 0, 0, 0, 0,
    20.25, 74.81, 0, 0, 0,
    8.922, 65.88, 13.73, 0, 0,
    401.5, 237.1, 214.8, 235.7, 0};
/* end of the gas */

enum { CAPACITY = 500 };

/* Shows a number with its name; a status other than 0 ends the program with its text. */
static void show(const char* name, double value) { printf("%-18s %.17g\n", name, value); }

static int failed(const char* what, StatusCode status) {
  if (status != KV_OK) fprintf(stderr, "%s: status %ld, %s\n", what, (long)status, kv_status_text(status));
  return status != KV_OK;
}

int main(void) {
  static double table[KV_TABLE_COLUMNS * N], T_curve[CAPACITY], P_curve[CAPACITY], kind[CAPACITY];
  static double a[GROUPS * GROUPS], b[GROUPS * GROUPS], ratio[GROUPS * GROUPS];
  static double fractions[N * GROUPS], differences[GROUPS * N * N];
  double* const storage[6] = {NULL, a, b, fractions, ratio, differences};
  const double T = 260.0, P = 40.0; /* K, atm */
  double beta = 0.0, x[N] = {0}, y[N] = {0}, K[N], dew_T = 0.0, dew_x[N] = {0}, dew_y[N] = {0};
  double therm_T, therm_P, bar_T, bar_P, density, d_dT, d_dP, d2, H, Cp, Cv, sound, joule_thomson, viscosity;
  int32_t points, critical_points;
  MixtureRecord mixture = {0}; /* settings that are 0 take the defaults of records.h */

  for (int c = 0; c < COLUMNS; ++c)
    for (int i = 0; i < N; ++i) table[(column_numbers[c] - 1) * N + i] = columns[c][i];
  mixture.count = N;
  mixture.table = table;
  ConvertPPR78GroupData(N, GROUPS, counts, A, B, storage);

  if (failed("flash", FlashLVatTP(T, P, z, &mixture, NULL, 1, &beta, x, y, K))) return 1;
  show("vapour_fraction", beta);
  for (int i = 0; i < N; ++i) show("K", K[i]);

  if (failed("dew point", FlashLVatWP(1.0, P, z, &mixture, NULL, 1, &dew_T, dew_x, dew_y, K))) return 1;
  show("dew_temperature", dew_T);

  if (failed("envelope", PhaseEnvelope(z, &mixture, NULL, 0, 0.0, 0.0, 200.0, 0, CAPACITY, 1.0, 0.0, T_curve, P_curve,
                                       kind, &points, &critical_points, &therm_T, &therm_P, &bar_T, &bar_P)))
    return 1;
  show("cricondentherm_T", therm_T);
  show("cricondentherm_P", therm_P);
  show("cricondenbar_T", bar_T);
  show("cricondenbar_P", bar_P);

  if (failed("density", GasDensity_PPR78(T, P, y, &mixture, &density, &d_dT, &d_dP, &d2))) return 1;
  if (failed("enthalpy", GasMolarEnthalpy_PPR78(T, P, y, &mixture, &H))) return 1;
  if (failed("heat", GasSpecificHeat_PPR78(T, P, y, &mixture, &Cp, &Cv, &sound, &joule_thomson))) return 1;
  if (failed("viscosity", GasDynamicViscosity_PPR78(T, P, y, &mixture, &viscosity))) return 1;
  show("density", density);
  show("enthalpy", H);
  show("speed_of_sound", sound);
  show("viscosity", viscosity);
  return 0;
}
