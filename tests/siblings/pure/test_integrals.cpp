// Integrals of the heat capacities against quadrature of the heat capacities themselves.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "csv_rows.hpp"

using namespace pure_test;

namespace {

struct Family {
  KvPureProperty cp, over_t, over_ln_t;
  const char* table;
};

const Family families[] = {
    {&IdealGasSpecificHeat_EX, &IdealGasSpecificHeatIT_EX, &IdealGasSpecificHeatTIT_EX,
     "ideal_gas_heat_capacity"},
    {&IdealGasSpecificHeat_EX, &IdealGasSpecificHeatIT_EX, &IdealGasSpecificHeatTIT_EX,
     "ideal_gas_heat_capacity_published"},
    {&LiquidSpecificHeat_EX, &LiquidSpecificHeatIT_EX, &LiquidSpecificHeatTIT_EX, "liquid_heat_capacity"},
    {&SolidSpecificHeat_EX, &SolidSpecificHeatIT_EX, &SolidSpecificHeatTIT_EX, "solid_heat_capacity"}};

// Five-point Gauss-Legendre rule on many panels of ln T, broken where a constant continuation begins.
// first: integral of Cp over T, second: of Cp/T.
std::pair<double, double> quadrature(const Family& f, const CsvRow& row, double a, double t) {
  const double x[] = {-0.906179845938663993, -0.538469310105683091, 0.0, 0.538469310105683091,
                      0.906179845938663993};
  const double w[] = {0.236926885056189088, 0.478628670499366468, 0.568888888888888889, 0.478628670499366468,
                      0.236926885056189088};
  double bounds[] = {std::min(a, t), std::max(a, t), row.t_min, row.t_max};
  std::sort(bounds + 2, bounds + 4);
  std::vector<double> cut = {bounds[0]};
  for (const double end : {bounds[2], bounds[3]}) {
    if (end > bounds[0] && end < bounds[1]) cut.push_back(end);
  }
  cut.push_back(bounds[1]);
  long double first = 0;
  long double second = 0;
  for (std::size_t i = 0; i + 1 < cut.size(); ++i) {
    const double span = std::log(cut[i + 1] / cut[i]);
    const double width = row.equation == 114 ? 0.0005 : 0.02;  // 114 has a pole at its critical temperature
    const int panels = 1 + static_cast<int>(span / width);
    for (int k = 0; k < panels; ++k) {
      const double lo = cut[i] * std::exp(span * k / panels);
      const double hi = k + 1 == panels ? cut[i + 1] : cut[i] * std::exp(span * (k + 1) / panels);
      const double half = (hi - lo) / 2;
      for (int j = 0; j < 5; ++j) {
        const double at = (lo + hi) / 2 + half * x[j];
        const double cp = call(f.cp, row.cas, at, row.equation).value;
        first += half * w[j] * cp;
        second += half * w[j] * cp / at;
      }
    }
  }
  const double sign = a < t ? 1.0 : -1.0;
  return {sign * static_cast<double>(first), sign * static_cast<double>(second)};
}

void expect_integrals(const Family& f, const CsvRow& row, double a, double t) {
  const std::pair<double, double> reference = quadrature(f, row, a, t);
  const bool outside = t < row.t_min || t > row.t_max;
  const Answer over_t = call_integral(f.over_t, row.cas, t, a, 0.0, row.equation);
  const Answer over_ln_t = call_integral(f.over_ln_t, row.cas, t, a, 0.0, row.equation);
  const std::string what = row.name + " " + std::to_string(row.equation) + " " + std::to_string(a) + " to " +
                           std::to_string(t) + " K, " + f.table;
  EXPECT_EQ(over_t.status, outside ? 3 : 0) << what;
  EXPECT_EQ(over_ln_t.status, over_t.status) << what;
  EXPECT_NEAR(over_t.value, reference.first, 1e-10 * std::fabs(reference.first)) << what;
  EXPECT_NEAR(over_ln_t.value, reference.second, 1e-10 * std::fabs(reference.second)) << what;
}

}  // namespace

TEST(PureIntegrals, AgreeWithQuadratureForEveryRow) {
  for (const Family& f : families) {
    const bool published = std::string(f.table).find("published") != std::string::npos;
    for (const CsvRow& row : correlation_rows(f.table)) {
      if (published) {  // where the main table has the equation, the entry answers with that row
        bool shadowed = false;
        for (const CsvRow& own : correlation_rows("ideal_gas_heat_capacity")) {
          shadowed = shadowed || (own.cas == row.cas && own.equation == row.equation);
        }
        if (shadowed) continue;
      }
      const double mid = 0.4 * row.t_min + 0.6 * row.t_max;
      for (const double t : {2.0, 0.5 * row.t_min, row.t_min, 0.7 * row.t_min + 0.3 * row.t_max, row.t_max,
                             1.3 * row.t_max, 3000.0}) {
        expect_integrals(f, row, mid, t);
      }
      expect_integrals(f, row, 0.9 * row.t_min, mid);
      expect_integrals(f, row, 0.3 * row.t_min, 2.0 * row.t_max);
      expect_integrals(f, row, 2.0 * row.t_max, 3.0 * row.t_max);
      expect_integrals(f, row, 0.8 * row.t_min, 0.3 * row.t_min);
    }
  }
}

TEST(PureIntegrals, KeepTheirDigitsAtSmallSteps) {
  for (const Family& f : families) {
    for (const CsvRow& row : correlation_rows(f.table)) {
      const double a = 0.5 * (row.t_min + row.t_max);
      for (const double step : {1e-4, 1e-6, 1e-9, -1e-7}) {
        const double t = a + a * step;
        const double cp = call(f.cp, row.cas, 0.5 * (a + t), row.equation).value;
        const double over_t = call_integral(f.over_t, row.cas, t, a, 0.0, row.equation).value;
        const double over_ln_t = call_integral(f.over_ln_t, row.cas, t, a, 0.0, row.equation).value;
        // The midpoint rule is exact to the square of the relative step.
        const double tolerance = 1e-11 + 20.0 * step * step;
        EXPECT_NEAR(over_t / (cp * (t - a)), 1.0, tolerance) << row.name << row.equation << f.table;
        EXPECT_NEAR(over_ln_t / (cp * std::log1p((t - a) / a)), 1.0, tolerance) << row.name << f.table;
      }
    }
  }
}

TEST(PureIntegrals, BoundAndValueAtTheBound) {
  for (const Family& f : families) {
    for (const std::int32_t cas : {7732185, 74840, 463581}) {
      for (const KvPureProperty integral : {f.over_t, f.over_ln_t}) {
        EXPECT_EQ(call_integral(integral, cas, 298.15, 298.15, -1234.5).value, -1234.5);
        const double there = call_integral(integral, cas, 350.0, 120.0, 0.0).value;
        EXPECT_DOUBLE_EQ(call_integral(integral, cas, 120.0, 350.0, 0.0).value, -there);
        const double half = call_integral(integral, cas, 200.0, 120.0, 10.0).value;
        const double whole = call_integral(integral, cas, 350.0, 200.0, half).value;
        EXPECT_NEAR(whole, there + 10.0, 1e-11 * std::fabs(there));
      }
    }
  }
}

TEST(PureIntegrals, PublishedEnthalpyAndEntropySteps) {
  // JANAF tables: H(1000 K) - H(298.15 K), J/mol, and S(1000 K) - S(298.15 K), J/mol/K.
  const struct {
    std::int32_t cas;
    double h, s, tolerance;  // the table for methane leaves out what raises Cp by 2 % at 1000 K
  } figures[] = {{7727379, 21463, 228.170 - 191.609, 2e-3},
                 {124389, 33397, 269.299 - 213.795, 2e-3},
                 {7732185, 26000, 232.738 - 188.834, 2e-3},
                 {74828, 38179, 247.549 - 186.251, 9e-3}};
  for (const auto& f : figures) {
    EXPECT_NEAR(call_integral(&IdealGasSpecificHeatIT_EX, f.cas, 1000.0, 298.15, 0.0).value / 1e3, f.h,
                f.tolerance * f.h);
    EXPECT_NEAR(call_integral(&IdealGasSpecificHeatTIT_EX, f.cas, 1000.0, 298.15, 0.0).value / 1e3, f.s,
                f.tolerance * f.s);
  }
}

TEST(PureIntegrals, ExtremeTemperatures) {
  for (const CsvRow& row : correlation_rows("ideal_gas_heat_capacity")) {
    for (const double t : {1e-300, 1e-3, 1.0, 10.0, 1e5, 1e300}) {
      for (const KvPureProperty f : {&IdealGasSpecificHeatIT_EX, &IdealGasSpecificHeatTIT_EX}) {
        const Answer answer = call_integral(f, row.cas, t, 298.15, 0.0);
        EXPECT_EQ(answer.status, t < row.t_min || t > row.t_max ? 3 : 0);
        EXPECT_TRUE(std::isfinite(answer.value)) << row.name << t;
        EXPECT_EQ(answer.value > 0.0, t > 298.15) << row.name << t;
      }
    }
  }
}
