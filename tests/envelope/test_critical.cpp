// CriticalPoint: published points, the approach to pure components, what has none.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "common/mixture.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

struct Critical {
  StatusCode status = -1;
  double T = -1.0, P = -1.0, V = -1.0, Z = -1.0;
};

Critical critical(Mixture& m, const std::vector<double>& z) {
  m.use();
  Critical c;
  c.status = CriticalPoint(z.data(), &m.record, 0, &c.T, &c.P, &c.V, &c.Z);
  return c;
}

// The published example of Michelsen, Fluid Phase Equilib. 4 (1980) 1: 203.1 K and 58.1 atm with another cubic
// equation and no interaction parameters.
TEST(CriticalPoint, SevenComponentGas) {
  Mixture m = mixture_of(kLeanGas);
  const Critical c = critical(m, kLeanGasFeed);
  ASSERT_EQ(c.status, KV_OK);
  EXPECT_NEAR(c.T, 203.1, 1.0);
  EXPECT_NEAR(c.P, 58.1, 1.0);
  EXPECT_NEAR(c.Z, c.P * c.V / (82.057 * c.T), 1e-12);
}

// At a critical point the phases of a bubble and of a dew point meet: just below its temperature they are
// close.
TEST(CriticalPoint, BubbleAndDewPointsMeetThere) {
  for (const double x : {0.3, 0.5, 0.7, 0.85}) {
    Mixture m = mixture_of({"methane", "n_butane"});
    const std::vector<double> z{x, 1.0 - x};
    const Critical c = critical(m, z);
    ASSERT_EQ(c.status, KV_OK) << x;
    double above = 0.0, v[2], y[2], K[2];
    const double T = c.T * (1.0 - 1e-4);
    EXPECT_EQ(FlashLVatWT(0.0, T, z.data(), &m.record, nullptr, 1, &above, v, y, K), KV_OK);
    EXPECT_NEAR(above / c.P, 1.0, 1e-3) << x;
    EXPECT_LT(std::fabs(std::log(K[0])), 0.1);
  }
}

TEST(CriticalPoint, TurnsIntoThatOfThePureComponent) {
  Mixture pure = mixture_of({"methane"});
  const Critical own = critical(pure, {1.0});
  ASSERT_EQ(own.status, KV_OK);
  EXPECT_EQ(own.T, pure.at(0, KV_COL_TC));
  EXPECT_EQ(own.P, pure.at(0, KV_COL_PC));
  EXPECT_EQ(own.V, pure.at(0, KV_COL_VC));
  EXPECT_DOUBLE_EQ(own.Z, own.P * own.V / (82.057 * own.T));
  Mixture m = mixture_of({"methane", "n_decane", "propane"});
  // The equation's own critical point: its Omega_a and Omega_b are rounded in the fifth digit.
  const double limit = critical(m, {1.0 - 1.1e-12, 0.0, 1.1e-12}).T;
  EXPECT_NEAR(limit, own.T, 1e-2);
  double before = 1e9;
  for (const double trace : {1e-2, 1e-3, 1e-4, 1e-6, 1e-8, 1e-11}) {
    const Critical c = critical(m, {1.0 - trace, 0.0, trace});
    ASSERT_EQ(c.status, KV_OK) << trace;
    const double off = std::fabs(c.T - limit);
    EXPECT_LT(off, 600.0 * trace + 1e-9);
    EXPECT_LE(off, before + 1e-9);
    before = off;
  }
  EXPECT_EQ(critical(m, {1.0, 0.0, 0.0}).T, own.T);
}

TEST(CriticalPoint, NoneLeavesTheResultsAlone) {
  Mixture m = mixture_of({"methane", "ethane", "propane", "water"});
  const Critical c = critical(m, {0.9, 0.05, 0.03, 0.02});  // a second liquid is there long before
  EXPECT_EQ(c.status, KV_NO_CRITICAL);
  EXPECT_EQ(c.T, -1.0);
  EXPECT_EQ(c.Z, -1.0);
}

// Close to where it vanishes at a critical end point: the form has two zeros close to each other.
TEST(CriticalPoint, BesideACriticalEndPoint) {
  Mixture m = mixture_of({"carbon_dioxide", "n_decane"});
  EXPECT_NEAR(critical(m, {0.92, 0.08}).T, 329.285, 0.01);
}

// Two stable ones, vapour-liquid and liquid-liquid: that of the higher temperature counts, the envelope lists
// both.
TEST(CriticalPoint, HighestTemperatureOfSeveral) {
  Mixture m = mixture_of({"carbon_dioxide", "n_decane"});
  for (const double x : {0.89, 0.9, 0.91}) {
    SCOPED_TRACE(x);
    const std::vector<double> z{x, 1.0 - x};
    const Critical c = critical(m, z);
    ASSERT_EQ(c.status, KV_OK);
    double T[1000], P[1000], kind[1000], e[4];
    std::int32_t count = 0, criticals = 0;
    EXPECT_EQ(PhaseEnvelope(z.data(), &m.record, nullptr, 0, 0, 0, 0, 0, 1000, 1.0, 0, T, P, kind, &count,
                            &criticals, e, e + 1, e + 2, e + 3),
              KV_ENVELOPE_LIQUIDS);
    ASSERT_EQ(criticals, 2);
    double hottest = 0.0, coldest = 1e9;
    for (int k = 0; k < count; ++k) {
      if (kind[k] != 0.5) continue;
      coldest = std::min(coldest, T[k]);
      if (T[k] < hottest) continue;
      hottest = T[k];
      EXPECT_NEAR(P[k] / c.P, 1.0, 1e-8);
    }
    EXPECT_NEAR(hottest / c.T, 1.0, 1e-8);
    EXPECT_LT(coldest, 0.9 * c.T);
    EXPECT_LT(e[3], 200.0);  // the cricondenbar is that of vapour and liquid
  }
}

}  // namespace
