/*
 * A C program that links the import library, as an alternative to resolving names at run time. Needs the DLL
 * beside it. Checks that each call reaches its export and that the stack is in order afterwards.
 */
#include <math.h>
#include <stdio.h>

#include "kestrune/kvgasthermo.h"

enum { N = 2, GROUPS = 2 };

static int failures = 0;

static void expect(int good, const char* what) {
  if (!good) {
    printf("FAILED: %s\n", what);
    ++failures;
  }
}

/* Methane and propane: molar mass, Tb, Tc, Pc, Vc, Zc, acentric factor, CAS number. */
static void fill_table(double* table) {
  static const int columns[] = {KV_COL_MOLAR_MASS, KV_COL_BOILING_POINT, KV_COL_TC, KV_COL_PC, KV_COL_VC,
                                KV_COL_ZC,         KV_COL_OMEGA,         KV_COL_CAS};
  static const double values[][N] = {{16.043, 44.096}, {111.66, 231.1}, {190.564, 369.83}, {45.39, 41.92},
                                     {98.6, 200.0},    {0.286, 0.276},  {0.0115, 0.1523},  {74828, 74986}};
  size_t c;
  int i;
  for (c = 0; c < sizeof columns / sizeof columns[0]; ++c)
    for (i = 0; i < N; ++i) table[(columns[c] - 1) * N + i] = values[c][i];
}

int main(void) {
  static double table[KV_TABLE_COLUMNS * N];
  static double a_atm[GROUPS * GROUPS], b_atm[GROUPS * GROUPS], ratio[GROUPS * GROUPS];
  static double fractions[N * GROUPS], differences[GROUPS * N * N];
  static const double no_interaction[GROUPS * GROUPS] = {0};
  static const int32_t counts[GROUPS * N] = {1, 0, 0, 1};
  double* const storage[6] = {NULL, a_atm, b_atm, fractions, ratio, differences};
  const double z[N] = {0.5, 0.5};
  double mass = 0.0, beta = 0.5, x[N] = {0}, y[N] = {0}, K[N] = {0};
  MixtureRecord mixture = {0};
  StatusCode status;
  int i;

  fill_table(table);
  mixture.count = N;
  mixture.table = table;

  status = MolecularWeight(N, z, table + (KV_COL_MOLAR_MASS - 1) * N, &mass);
  expect(status == KV_OK && fabs(mass - 30.0695) < 1e-9, "MolecularWeight");
  status = FlashLVatTP(250.0, 20.0, z, &mixture, NULL, 1, &beta, x, y, K);
  expect(status == KV_GROUP_DATA, "a flash before the group data is refused");

  ConvertPPR78GroupData(N, GROUPS, counts, no_interaction, no_interaction, storage);
  status = FlashLVatTP(250.0, 20.0, z, &mixture, NULL, 1, &beta, x, y, K);
  printf("status %ld, beta %.6f\n", (long)status, beta);
  expect(status == KV_OK, kv_status_text(status));
  expect(beta > 0.0 && beta < 1.0, "two phases");
  for (i = 0; i < N; ++i) {
    expect(fabs((1.0 - beta) * x[i] + beta * y[i] - z[i]) < 1e-9, "the phases add up to the feed");
    expect(fabs(K[i] * x[i] - y[i]) < 1e-9, "K is y / x");
  }
  expect(K[0] > 1.0 && K[1] < 1.0, "methane is the lighter component");
  return failures != 0;
}
