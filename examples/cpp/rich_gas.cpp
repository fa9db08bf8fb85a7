// A rich gas: flash, dew point, extremes of the envelope, properties of its vapour. How to build it: docs/hosts.md.
#include <array>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "kestrune/kvgasthermo.h"

namespace {

// The gas of data/components.csv and data/ppr78_interactions.csv, by tools/make_bindings.py.
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
// end of the gas

using Fractions = std::array<double, N>;

// Group data of the library, with the buffers that it goes on reading.
struct GroupData {
  std::vector<double> a = std::vector<double>(GROUPS * GROUPS), b = a, ratio = a;
  std::vector<double> fractions = std::vector<double>(N * GROUPS), differences = std::vector<double>(GROUPS * N * N);
  GroupData() {
    double* const storage[6] = {nullptr, a.data(), b.data(), fractions.data(), ratio.data(), differences.data()};
    ConvertPPR78GroupData(N, GROUPS, counts, A, B, storage);
  }
};

// A record with the table that it points to; settings that are 0 take the defaults of records.h.
struct Gas {
  std::vector<double> table = std::vector<double>(KV_TABLE_COLUMNS * N);
  MixtureRecord record{};
  Gas() {
    for (int c = 0; c < COLUMNS; ++c)
      for (int i = 0; i < N; ++i) table[static_cast<std::size_t>((column_numbers[c] - 1) * N + i)] = columns[c][i];
    record.count = N;
    record.table = table.data();
  }
};

void show(const char* name, double value) {
  std::printf("%-18s %.17g\n", name, value);
}

// An exception in place of a status.
void require(const char* what, StatusCode status) {
  if (status == KV_OK) return;
  throw std::runtime_error(std::string(what) + ": status " + std::to_string(status) + ", " + kv_status_text(status));
}

void flash(Gas& gas, double T, double P, Fractions& y) {
  double beta = 0.0, dew_T = 0.0;
  Fractions x{}, K{}, dew_x{}, dew_y{};
  require("flash", FlashLVatTP(T, P, z, &gas.record, nullptr, 1, &beta, x.data(), y.data(), K.data()));
  show("vapour_fraction", beta);
  for (const double k : K) show("K", k);
  require("dew point",
          FlashLVatWP(1.0, P, z, &gas.record, nullptr, 1, &dew_T, dew_x.data(), dew_y.data(), K.data()));
  show("dew_temperature", dew_T);
}

void envelope(Gas& gas) {
  std::vector<double> T(500), P(T), kind(T);
  std::int32_t points = 0, critical_points = 0;
  double therm_T = 0.0, therm_P = 0.0, bar_T = 0.0, bar_P = 0.0;
  require("envelope", PhaseEnvelope(z, &gas.record, nullptr, 0, 0.0, 0.0, 200.0, 0, static_cast<std::int32_t>(T.size()),
                                    1.0, 0.0, T.data(), P.data(), kind.data(), &points, &critical_points, &therm_T,
                                    &therm_P, &bar_T, &bar_P));
  show("cricondentherm_T", therm_T);
  show("cricondentherm_P", therm_P);
  show("cricondenbar_T", bar_T);
  show("cricondenbar_P", bar_P);
}

void properties(Gas& gas, double T, double P, const Fractions& y) {
  double density = 0.0, d_dT = 0.0, d_dP = 0.0, d2 = 0.0, H = 0.0, Cp = 0.0, Cv = 0.0, sound = 0.0, joule_thomson = 0.0,
         viscosity = 0.0;
  require("density", GasDensity_PPR78(T, P, y.data(), &gas.record, &density, &d_dT, &d_dP, &d2));
  require("enthalpy", GasMolarEnthalpy_PPR78(T, P, y.data(), &gas.record, &H));
  require("heat", GasSpecificHeat_PPR78(T, P, y.data(), &gas.record, &Cp, &Cv, &sound, &joule_thomson));
  require("viscosity", GasDynamicViscosity_PPR78(T, P, y.data(), &gas.record, &viscosity));
  show("density", density);
  show("enthalpy", H);
  show("speed_of_sound", sound);
  show("viscosity", viscosity);
}

}  // namespace

int main() try {
  const GroupData groups;
  Gas gas;
  Fractions y{};
  flash(gas, 260.0, 40.0, y);  // K, atm
  envelope(gas);
  properties(gas, 260.0, 40.0, y);
} catch (const std::exception& e) {
  std::fprintf(stderr, "%s\n", e.what());
  return 1;
}
