// Wilson's coefficients, the vapour pressure of water and its solubility limit.
#include <gtest/gtest.h>

#include <cmath>

#include "eos/eos_case.hpp"
#include "flash/wilson.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

TEST(Water, VapourPressureBelowAndAboveTheCriticalTemperature) {
  // Boiling point, triple point and critical point of water, within what the correlation claims.
  EXPECT_NEAR(eos::water_vapour_pressure(373.124).value, 1.0, 0.003);
  EXPECT_NEAR(eos::water_vapour_pressure(273.16).value * 101325.0, 611.657, 2.0);
  EXPECT_NEAR(eos::water_vapour_pressure(647.096).value, 217.75, 1.5);
  EXPECT_DOUBLE_EQ(std::log(eos::water_vapour_pressure(700.0).value),
                   12.778500904682147 - 4789.269321502071 / 700.0);
  // The line takes over where the correlation ends.
  const double below = eos::water_vapour_pressure(647.096).value,
               above = eos::water_vapour_pressure(647.0961).value;
  EXPECT_NEAR(above / below, 1.0, 1e-5);
  for (const double T : {250.0, 300.0, 500.0, 646.0, 648.0, 900.0}) {
    const double h = 1e-3;
    const double slope =
        (eos::water_vapour_pressure(T + h).value - eos::water_vapour_pressure(T - h).value) / (2 * h);
    EXPECT_NEAR(eos::water_vapour_pressure(T).d_dT / slope, 1.0, 1e-7) << T;
  }
}

TEST(Water, SolubilityIsCapped) {
  const eos::WithSlope s = eos::water_solubility(300.0, 8.0, 4000.0);
  EXPECT_DOUBLE_EQ(s.value, std::exp(8.0 - 4000.0 / 300.0));
  EXPECT_DOUBLE_EQ(s.d_dT, 4000.0 / 9e4 * s.value);
  for (const double A : {4000.0 / 300.0, 20.0, 1e6}) {
    const eos::WithSlope capped = eos::water_solubility(300.0, A, 4000.0);
    EXPECT_EQ(capped.value, 1.0);
    EXPECT_EQ(capped.d_dT, 0.0);
  }
}

TEST(Wilson, FormulaClampsAndWater) {
  Mixture m = mixture_of({"methane", "water", "n_decane"});
  EXPECT_EQ(eos::find_water_family(m.record), 1);
  double K[3], slope[3], low[3], high[3];
  const double T = 320.0, P = 12.0, h = 1e-3;
  for (const bool free_water : {false, true}) {
    flash::wilson(T, P, m.record, free_water, K, slope);
    for (int i = 0; i < 3; ++i) {
      double expected = m.at(i, 6) / P * std::exp(5.37 * (1 + m.at(i, 9)) * (1 - m.at(i, 5) / T));
      if (free_water && i == 1)
        expected = std::exp(73.649 - 7258.2 / T - 7.3037 * std::log(T) + 4.1653e-6 * T * T) / 101325.0 / P;
      EXPECT_NEAR(K[i] / expected, 1.0, 1e-13) << i;
    }
    flash::wilson(T - h, P, m.record, free_water, low, nullptr);
    flash::wilson(T + h, P, m.record, free_water, high, nullptr);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(slope[i] / ((high[i] - low[i]) / (2 * h)), 1.0, 1e-7) << i;
  }
  // Water's slope keeps its form above the critical temperature.
  flash::wilson(700.0, P, m.record, true, K, slope);
  EXPECT_NEAR(slope[1] / ((7258.2 / 490000 - 7.3037 / 700 + 8.3306e-6 * 700) * K[1]), 1.0, 1e-13);
  // Exponent and coefficient have their own bounds.
  flash::wilson(60.0, 1.0, m.record, false, K, slope);
  EXPECT_NEAR(K[2] / (m.at(2, 6) * std::exp(-34.5)), 1.0, 1e-13);
  flash::wilson(60.0, 1e9, m.record, false, K, nullptr);
  EXPECT_EQ(K[2], 1e-15);
  flash::wilson(2000.0, 1e-20, m.record, false, K, nullptr);
  for (const double k : K) EXPECT_EQ(k, 1e15);
  flash::wilson(200.0, 1e20, m.record, true, K, nullptr);
  EXPECT_EQ(K[1], 1e-15);
}

}  // namespace
