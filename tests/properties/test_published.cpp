// The exports against published values and against the correlations of data/pure. The bands were set a little
// above the deviations found: they hold what the model reaches and catch gross errors, they judge nothing
// finer. The program prints the deviations that stand in docs/validation.md.
#include <cstdio>
#include <set>

#include "phase_calls.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

// Deviations of a group of values, relative.
struct Deviations {
  int count = 0;
  double sum = 0, sum_absolute = 0, worst = 0;
  std::string where;
  void add(double got, double published, const std::string& text) {
    const double d = got / published - 1;
    ++count;
    sum += d;
    sum_absolute += std::fabs(d);
    if (!(std::fabs(d) <= std::fabs(worst))) {
      worst = d;
      where = text;
    }
  }
};

struct Band {
  const char* group;
  double mean, worst;  // of the absolute deviations
};

constexpr Band kBands[] = {
    {"liquid density", 0.06, 0.15},
    {"heat of vaporisation", 0.02, 0.07},
    {"second virial/critical volume", 0.13, 0.2},
    {"Joule-Thomson by second virial", 0.13, 0.3},
    {"Z at 1 atm", 0.002, 0.01},
    {"Z compressed air", 0.03, 0.07},
    {"Z natural gas", 0.025, 0.035},
    {"saturated vapour density", 0.01, 0.02},
    {"saturated liquid density", 0.1, 0.15},
    {"steam density", 0.01, 0.02},
    {"liquid water density", 0.18, 0.2},
    {"steam heat capacity", 0.04, 0.11},
    {"speed of sound", 0.01, 0.03},
    {"dense steam (700 K; 30 MPa)", 0.17, 0.26},
    {"natural gas at 400 K and 50 MPa", 0.05, 0.09},
    {"Joule-Thomson coefficient", 0.17, 0.33},
    {"viscosity at 1 bar", 0.01, 0.03},
    {"viscosity of mixtures at 1 bar", 0.01, 0.03},
    {"viscosity dense gas", 0.03, 0.06},
    {"conductivity at 1 bar", 0.02, 0.06},
    {"conductivity of mixtures at 1 bar", 0.03, 0.05},
    {"conductivity dense gas", 0.02, 0.04},
};

void expect_within(std::map<std::string, Deviations>& groups) {
  std::size_t known = 0;
  for (const Band& band : kBands) {
    const Deviations& d = groups[band.group];
    ASSERT_GT(d.count, 0) << band.group;
    ++known;
    std::printf("%-36s %3d values: mean %+6.2f %%, mean absolute %5.2f %%, worst %+6.2f %% (%s)\n", band.group,
                d.count, 100 * d.sum / d.count, 100 * d.sum_absolute / d.count, 100 * d.worst, d.where.c_str());
    EXPECT_LE(d.sum_absolute / d.count, band.mean) << band.group;
    EXPECT_LE(std::fabs(d.worst), band.worst) << band.group << ": " << d.where;
  }
  EXPECT_EQ(known, groups.size());
}

double pressure_at_density(Phase p, double density) {
  double low = 0, high = 20000;  // atm
  while (high - low > 1e-12 * high) {
    p.P = 0.5 * (low + high);
    (p.density().value < density ? low : high) = p.P;
  }
  return p.P;
}

Phase phase_of(const Row& row) {
  Phase p(split(row.at("ids"), ';'), numbers(row, "x"));
  const double at = number(row, "at");
  p = p.at(number(row, "T_K"), at, static_cast<int>(number(row, "phase")));
  const std::string& unit = row.at("at_unit");
  if (unit == "MPa") p.P = at / 0.101325;
  if (unit == "bar") p.P = at / 1.01325;
  if (unit == "kg/m3") p.P = pressure_at_density(p, at / 1000);
  if (unit == "mol/L") p.P = pressure_at_density(p, at * p.molar_mass() / 1000);
  return p;
}

// The quantity of a row in its unit.
double calculated(const Phase& p, const Row& row) {
  const std::string &quantity = row.at("quantity"), &unit = row.at("unit");
  const double per_mass = unit == "kJ/(kg K)" ? kJoule / p.molar_mass() : kJoule;
  if (quantity == "Z") return p.normal().Z;
  if (quantity == "density") return 1000 * p.density().value / (unit == "mol/L" ? p.molar_mass() : 1.0);
  if (quantity == "Cp") return p.heat().Cp * per_mass;
  if (quantity == "Cv") return p.heat().Cv * per_mass;
  if (quantity == "w") return p.heat().w;
  if (quantity == "JT") return p.heat().JT;
  if (quantity == "viscosity") return 1000 * p.viscosity();
  if (quantity == "conductivity") return 1000 * p.conductivity();
  throw std::runtime_error("no quantity " + quantity);
}

// Value of a correlation of data/pure (forms: data/pure/README.md); NaN outside its range or when there is
// none.
double correlation(const std::string& table, const std::string& cas, double T) {
  for (const Row& row : rows(table + ".csv", std::string(KESTRUNE_DATA) + "/pure")) {
    if (row.at("cas") != cas || T < number(row, "Tmin") || T > number(row, "Tmax")) continue;
    if (row.at("source") == "FIT:TSONOPOULOS") continue;  // an estimate
    double c[8] = {};
    for (int k = 1; k < 8; ++k) c[k] = number(row, {'C', static_cast<char>('0' + k)});
    const double Tr = T / c[6], t = 1 - Tr;
    switch (std::stoi(row.at("eq"))) {
      case 101:
        return std::exp(c[1] + c[2] / T + c[3] * std::log(T) + c[4] * std::pow(T, c[5]));
      case 104:
        return c[1] + c[2] / T + c[3] / std::pow(T, 3) + c[4] / std::pow(T, 8) + c[5] / std::pow(T, 9);
      case 105:
        return c[1] / std::pow(c[2], 1 + std::pow(1 - T / c[3], c[4]));
      case 106:
        return c[1] * std::pow(t, c[2] + Tr * (c[3] + Tr * (c[4] + Tr * c[5])));
    }
  }
  return NAN;
}

void add_saturation(std::map<std::string, Deviations>& groups, const Phase& pure, const std::string& id,
                    const std::string& cas, double T) {
  const double saturation = correlation("vapour_pressure", cas, T) / 101325;
  if (!std::isfinite(saturation)) return;
  const Phase liquid = pure.at(T, saturation, KV_PHASE_LIQUID), gas = pure.at(T, saturation, KV_PHASE_GAS);
  const std::string text = id + " " + std::to_string(T) + " K";
  const double density = correlation("liquid_density", cas, T),
               heat = correlation("heat_of_vaporisation", cas, T);
  if (std::isfinite(density))
    groups["liquid density"].add(1000 * liquid.density().value / pure.molar_mass(), density, text);
  if (std::isfinite(heat))
    groups["heat of vaporisation"].add((gas.H() - liquid.H()) * kJoule * 1000, heat, text);
}

void add_virial(std::map<std::string, Deviations>& groups, const Phase& pure, const std::string& id,
                const std::string& cas, double T) {
  const auto published = [&](double t) { return 1000 * correlation("second_virial", cas, t); };  // cm3/mol
  if (!std::isfinite(published(T - 2)) || !std::isfinite(published(T + 2))) return;
  const Phase gas = pure.at(T, 1e-4, KV_PHASE_GAS);
  const std::string text = id + " " + std::to_string(T) + " K";
  const double Vc = pure.m->at(0, KV_COL_VC), model = (gas.normal().Z - 1) * kR * T / gas.P;
  groups["second virial/critical volume"].add(1 + (model - published(T)) / Vc, 1, text);
  const Heat c = gas.heat();
  const double shift = published(T) - T * slope(published, T, 0.5);
  if (T < 500) groups["Joule-Thomson by second virial"].add(c.JT, -shift * kCalPerCm3Atm / c.Cp, text);
}

void add_correlations(std::map<std::string, Deviations>& groups) {
  const std::set<std::string> asked{"methane",   "ethane",   "propane",  "isobutane",      "n_butane",
                                    "n_pentane", "n_hexane", "n_octane", "n_decane",       "benzene",
                                    "nitrogen",  "oxygen",   "argon",    "carbon_dioxide", "hydrogen_sulfide"};
  for (const Row& row : rows("components.csv", KESTRUNE_DATA)) {
    const std::string &id = row.at("id"), &cas = row.at("cas");
    if (!asked.contains(id)) continue;
    const Phase pure({id}, {1.0});
    const double Tc = number(row, "Tc_K");
    for (const double Tr : {0.55, 0.65, 0.75, 0.85, 0.93}) add_saturation(groups, pure, id, cas, Tr * Tc);
    for (const double Tr : {0.9, 1.2, 1.6, 2.0}) add_virial(groups, pure, id, cas, Tr * Tc);
  }
}

TEST(Published, WithinTheBandsOfThisKindOfModel) {
  std::map<std::string, Deviations> groups;
  for (const Row& row : rows("property_published.csv"))
    groups[row.at("group")].add(calculated(phase_of(row), row), number(row, "value"),
                                row.at("quantity") + " " + row.at("ids").substr(0, 24) + " " + row.at("T_K") +
                                    " K " + row.at("at") + " " + row.at("at_unit"));
  add_correlations(groups);
  expect_within(groups);
}

}  // namespace
