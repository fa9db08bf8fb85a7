// The hydrate line against its closed form, written the other way round.
#include "gas.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

struct Line {
  StatusCode status;
  std::vector<double> T, P;
};
Line line(WetGas& gas, int kind, double M, double W, int n) {
  const auto size = static_cast<std::size_t>(n > 0 ? n : 1);
  Line l{0, std::vector<double>(size, -7.25), std::vector<double>(size, -7.25)};
  l.status = HydrateLine(gas.dry.data(), kind, M, W, n, &gas.m.record, 9, l.T.data(), l.P.data());
  return l;
}

TEST(Hydrate, FollowsTheClosedForm) {
  WetGas gas = natural_gas();
  double mass = 0.0;
  for (int i = 0; i < 6; ++i) mass += gas.dry[static_cast<std::size_t>(i)] * gas.m.at(i, KV_COL_MOLAR_MASS);
  const double g = std::log(mass / 28.966);
  const Line l = line(gas, 0, 0.0, 0.0, 37);
  ASSERT_EQ(l.status, KV_OK);
  for (std::size_t k = 0; k < 37; ++k) {
    const double p = std::log(l.P[k] * 14.695948775513);
    const double F = 13.47 * p + 34.27 * g - 1.675 * p * g - 20.35;
    EXPECT_NEAR(l.T[k], (F + 459.67) / 1.8, 1e-10);
  }
  EXPECT_EQ(l.T.front(), 253.15);
  EXPECT_NEAR(l.P.back(), 200.0, 1e-10);
  for (std::size_t k = 1; k < 37; ++k) EXPECT_NEAR(l.T[k] - l.T[k - 1], (l.T[36] - l.T[0]) / 36.0, 1e-11);
}

TEST(Hydrate, InhibitorsShiftTheTemperatureOnly) {
  WetGas gas = natural_gas();
  const Line plain = line(gas, 0, 0.0, 0.0, 5);
  const double W = 20.0, by = W / (100.0 - W);
  const std::pair<int, double> shifts[] = {{1, 1623.96 / 32.0422 * by},
                                           {2, 2695.32 / 58.4425 * by},
                                           {3, 3241.29 / 74.551 * by},
                                           {4, 9106.73 / 110.983 * by},
                                           {5, 2335.0 / 62.07 * by / 1.8},
                                           {0, 0.0},
                                           {6, 0.0},
                                           {-1, 0.0}};
  for (const auto& [kind, shift] : shifts) {
    const Line l = line(gas, kind, 62.07, W, 5);
    ASSERT_EQ(l.status, KV_OK);
    EXPECT_EQ(l.P, plain.P);
    for (std::size_t k = 0; k < 5; ++k) EXPECT_NEAR(l.T[k], plain.T[k] - shift, 1e-12 * l.T[k]) << kind;
  }
  EXPECT_EQ(line(gas, 1, 0.0, 0.0, 5).T, plain.T);
}

TEST(Hydrate, Edges) {
  WetGas gas = natural_gas();
  for (const double M : {0.0, -1.0, static_cast<double>(NAN)}) {
    const Line l = line(gas, 5, M, 20.0, 3);
    EXPECT_EQ(l.status, KV_INHIBITOR_MASS);
    EXPECT_EQ(l.T, std::vector<double>(3, -7.25));
    EXPECT_EQ(l.P, std::vector<double>(3, -7.25));
  }
  EXPECT_EQ(line(gas, 1, 0.0, 20.0, 1).T[0], 253.15 - 1623.96 / 32.0422 * 20.0 / 80.0);
  EXPECT_EQ(line(gas, 1, 0.0, 20.0, 1).P[0], line(gas, 0, 0.0, 0.0, 9).P[0]);
  for (const int n : {0, -3}) {
    const Line l = line(gas, 2, 0.0, 5.0, n);
    EXPECT_EQ(l.status, KV_OK);
    EXPECT_EQ(l.T[0], -7.25);
  }
  EXPECT_EQ(line(gas, 2, 0.0, 100.0, 2).T[0], -INFINITY);
}

}  // namespace
