// Water dew points: statuses, starts, the iteration limit, several solutions and none. The judge of round trips
// is a program of its own.
#include <limits>

#include "gas.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

TEST(DewPressure, StatusesBeforeTheIteration) {
  WetGas gas = natural_gas();
  std::vector<double> z = gas.with_water(1e-3);
  double P = 33.0;
  for (double& v : z) v *= 1.0 + 2e-6;
  EXPECT_EQ(gas.dew_pressure(300.0, z, P), KV_FEED_SUM);
  gas.m.record.sum_tolerance = 1e-5;
  EXPECT_EQ(gas.dew_pressure(300.0, z, P, 5), KV_SPECIFICATION);
  EXPECT_EQ(P, 33.0);
  EXPECT_EQ(gas.dew_pressure(300.0, z, P), KV_OK);
  gas.m.at(5, KV_COL_CAS) = 7732186;
  double untouched = 33.0;
  EXPECT_EQ(gas.dew_pressure(300.0, z, untouched), KV_NO_WATER);
  EXPECT_EQ(gas.dew_temperature(50.0, z, untouched), KV_NO_WATER);
  EXPECT_EQ(untouched, 33.0);
}

TEST(DewPressure, StartsThatAreNoPressureCountAsOne) {
  WetGas gas = natural_gas();
  const std::vector<double> z = gas.with_water(1e-3);
  const double nan = NAN, inf = std::numeric_limits<double>::infinity();
  double wanted = 1.0;
  ASSERT_EQ(gas.dew_pressure(300.0, z, wanted), KV_OK);
  EXPECT_NEAR(gas.saturated(300.0, wanted), 1e-3, 1e-14);
  for (const double start : {0.0, -4.0, 2e10, nan, inf, -inf}) {
    double P = start;
    EXPECT_EQ(gas.dew_pressure(300.0, z, P), KV_OK);
    EXPECT_EQ(P, wanted);
  }
}

TEST(DewPressure, AConvergedStartIsNotChanged) {
  WetGas gas = natural_gas();
  const double P = 43.0, y = gas.saturated(290.0, P);
  for (const double off : {0.0, 0.9e-8, -0.9e-8}) {
    double found = P;
    EXPECT_EQ(gas.dew_pressure(290.0, gas.with_water(y + off), found), KV_OK);
    EXPECT_EQ(found, P);
  }
  double moved = P;
  EXPECT_EQ(gas.dew_pressure(290.0, gas.with_water(y + 1.1e-8), moved), KV_OK);
  EXPECT_NE(moved, P);
}

// The iteration as a host would write it, with Humidity for the model: the same pressures within its threshold,
// and the same end after ITEMAX + 1 updates.
TEST(DewPressure, NewtonsMethodAndItsLimit) {
  WetGas gas = natural_gas();
  const double T = 305.0, water = 7e-4;
  const std::vector<double> z = gas.with_water(water);
  for (const int limit : {1, 3, 5, 30}) {
    gas.m.record.ITEMAX = limit;
    double P = 2.0;
    int updates = 0;
    bool converged = false;
    while (updates <= limit && !converged) {
      const double F = gas.saturated(T, P) - water;
      converged = F * F < 1e-16;
      if (converged) break;
      const double step = P / 10000.0;
      P -= F / ((gas.saturated(T, P + step) - water - F) / step);
      ++updates;
    }
    double found = 2.0;
    EXPECT_EQ(gas.dew_pressure(T, z, found), converged ? KV_OK : KV_NOT_CONVERGED) << limit;
    EXPECT_NEAR(found, P, converged ? 1e-4 * P : 1e-7 * P) << limit;
  }
}

// Newton's method from a start far above a solution steps to a negative pressure, where a gas holds any amount
// of water and the slope is zero; in compressed carbon dioxide
// the content has a minimum, so that there are two solutions, and none for less water.
TEST(DewPressure, SearchesWhereNewtonsMethodLeavesTheRange) {
  WetGas gas = natural_gas();
  double P = 900.0;
  ASSERT_EQ(gas.dew_pressure(300.0, gas.with_water(0.01), P), KV_OK);
  EXPECT_NEAR(gas.saturated(300.0, P), 0.01, 1e-12);
  P = 1.0;  // below saturation at 420 K
  ASSERT_EQ(gas.dew_pressure(420.0, gas.with_water(0.1), P), KV_OK);
  EXPECT_NEAR(gas.saturated(420.0, P), 0.1, 1e-12);

  WetGas co2({"carbon_dioxide", "methane"}, {0.98, 0.02});
  const double y = co2.saturated(323.15, 40.0);
  for (const double start : {1.0, 300.0, 5000.0}) {
    double found = start;
    EXPECT_EQ(co2.dew_pressure(323.15, co2.with_water(y), found), KV_OK) << start;
    EXPECT_NEAR(co2.saturated(323.15, found) / y, 1.0, 1e-9);
  }
  for (const double start : {0.0, 60.0, 700.0}) {
    double none = start;
    EXPECT_EQ(co2.dew_pressure(323.15, co2.with_water(0.5 * y), none), KV_ZERO_SLOPE);
  }
  // A status of the model stands, beside the pressure at which it was given.
  for (const double start : {20.0, 0.0}) {
    double hot = start;
    EXPECT_EQ(gas.dew_pressure(643.0, gas.with_water(0.1), hot), KV_WATER_RANGE);
    EXPECT_EQ(hot, start > 0.0 ? start : 1.0);
  }
}

TEST(DewTemperature, EndsWithoutASolution) {
  WetGas gas = natural_gas();
  double T = 300.0;
  EXPECT_EQ(gas.dew_temperature(50.0, gas.dry, T), KV_NOT_CONVERGED);
  EXPECT_EQ(gas.dew_temperature(50.0, gas.with_water(1e-14), T), KV_NOT_CONVERGED);
  EXPECT_EQ(gas.dew_temperature(50.0, gas.with_water(1e-6), T, 2), KV_NOT_CONVERGED);  // below the chart
  EXPECT_EQ(gas.dew_temperature(500.0, gas.with_water(0.9), T), KV_NOT_CONVERGED);     // above 640 K
  for (const double start : {0.0, -3.0, 151.0, 639.0, 2000.0, static_cast<double>(NAN)}) {
    double found = start;
    ASSERT_EQ(gas.dew_temperature(1.0, gas.with_water(0.02), found), KV_OK) << start;
    EXPECT_NEAR(found, 290.9, 0.5);
  }
}

TEST(DewLine, EveryPointHasItsStatus) {
  WetGas gas = natural_gas();
  constexpr int n = 12;
  std::vector<double> T(n, -1.0), P(n, -1.0), z = gas.with_water(2e-5);
  std::vector<std::int32_t> status(n, -1);
  std::int32_t found = -1;
  const auto line = [&](int method, double low, double high, int points) {
    return WaterDewLine(z.data(), method, 0, 0, &gas.m.record, 0, low, high, points, T.data(), P.data(),
                        status.data(), &found);
  };
  ASSERT_EQ(line(2, 1.0, 100.0, n), KV_OK);  // the chart begins at 233.15 K
  EXPECT_EQ(found, std::count(status.begin(), status.end(), KV_OK));
  EXPECT_LT(found, n);
  ASSERT_EQ(line(1, 0.0, 0.0, n), KV_OK);
  EXPECT_EQ(found, n);
  EXPECT_EQ(P.front(), 1.0);
  EXPECT_EQ(P.back(), 200.0);
  for (std::size_t k = 0; k < n; ++k) {
    double single = 0.0;
    EXPECT_EQ(gas.dew_temperature(P[k], z, single), KV_OK);
    EXPECT_NEAR(T[k], single, 1e-9 * single);
    EXPECT_NEAR(gas.saturated(T[k], P[k]) / 2e-5, 1.0, 1e-9);
  }
  EXPECT_EQ(line(1, 10.0, 5.0, n), KV_SPECIFICATION);
  EXPECT_EQ(line(1, NAN, 5.0, n), KV_SPECIFICATION);
  EXPECT_EQ(line(1, 5.0, 10.0, 0), KV_OK);
  EXPECT_EQ(found, 0);
  EXPECT_EQ(line(1, 5.0, 10.0, 1), KV_OK);
  EXPECT_EQ(P[0], 5.0);
  EXPECT_EQ(line(1, 1e-310, 100.0, n), KV_OK);  // the ratio of the pressures is no number
  for (const double p : P) EXPECT_TRUE(p >= 1e-310 && p <= 100.0) << p;
}

}  // namespace
