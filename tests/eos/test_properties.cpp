// The inner routines of the phase and transport properties, which the exports show only in part.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "eos/transport.hpp"
#include "eos_case.hpp"

namespace {

using namespace kestrune;

// Reference figures: the formulas in 30-digit arithmetic.
TEST(ReducedViscosity, CurvesAndBlend) {
  EXPECT_NEAR(eos::reduced_viscosity(1.5, 0.0, 0.0), 49.869460246893279, 1e-12);
  EXPECT_NEAR(eos::reduced_viscosity(9.0, 1.0, 0.0), 202.82788549277363, 1e-11);
  EXPECT_NEAR(eos::reduced_viscosity(58.0, 0.0, 1.0), 755.30457325195824, 1e-10);
  const double general = eos::reduced_viscosity(2.0, 0.0, 0.0);
  const double blend = eos::reduced_viscosity(2.0, 0.25, 0.25);
  EXPECT_NEAR(blend,
              0.5 * general + 0.25 * eos::reduced_viscosity(2.0, 1.0, 0.0) +
                  0.25 * eos::reduced_viscosity(2.0, 0.0, 1.0),
              1e-12);
}

TEST(ReducedViscosity, HydrogenByNumberTheLastPresentOneWins) {
  tests::Mixture m = tests::mixture_of({"hydrogen", "methane", "hydrogen", "hydrogen"});
  const double x[] = {0.3, 0.3, 0.4, 0.0};
  const eos::Critical c{200.0, 40.0, 100.0, 0.29, 12.0};
  const double V = 0.5 * (82.057 * 0.29 * 200.0 / 40.0 + 100.0);
  const double scale = std::sqrt(12.0) * std::pow(V, 2.0 / 3.0) / std::pow(200.0, 1.0 / 6.0) * 1e-8;
  EXPECT_NEAR(eos::corresponding_viscosity(300.0, m.record, x, c) / scale,
              eos::reduced_viscosity(1.5, 0.4, 0.0), 1e-11);
}

class Dilute : public testing::Test {
 protected:
  tests::Mixture m = tests::mixture_of({"methane", "hydrogen", "n_hexane"});
  double alone[3] = {};
  eos::Critical constants(int i) {
    return {m.at(i, KV_COL_TC), m.at(i, KV_COL_PC), m.at(i, KV_COL_VC), m.at(i, KV_COL_ZC),
            m.at(i, KV_COL_MOLAR_MASS)};
  }
};

TEST_F(Dilute, WithoutACorrelationTheCurvesAreRightInSize) {
  for (const int i : {0, 2}) {  // hydrogen has a curve of its own, by its number
    const eos::Critical c = constants(i);
    const double viscosity = eos::dilute_viscosity(400.0, m.record, i, c, alone);
    const double conductivity = eos::dilute_conductivity(400.0, m.record, i, c);
    m.at(i, KV_COL_CAS) = 1.0;
    EXPECT_NEAR(eos::dilute_viscosity(400.0, m.record, i, c, alone) / viscosity, 1.0, 0.05) << i;
    EXPECT_NEAR(eos::dilute_conductivity(400.0, m.record, i, c) / conductivity, 1.0, 0.25) << i;
  }
}

TEST_F(Dilute, NoJumpWhereACorrelationEnds) {
  for (int i = 0; i < 3; ++i) {
    const eos::Critical c = constants(i);
    double before_mu = 0.0, before_lambda = 0.0;
    for (double T = 20.0; T < 3000.0; T *= 1.002) {
      const double mu = eos::dilute_viscosity(T, m.record, i, c, alone);
      const double lambda = eos::dilute_conductivity(T, m.record, i, c);
      EXPECT_GT(mu, before_mu) << T;
      EXPECT_GT(lambda, before_lambda * 0.98) << T;
      if (before_mu > 0.0) {
        EXPECT_LT(mu / before_mu, 1.02) << T;
        EXPECT_LT(lambda / before_lambda, 1.05) << T;
      }
      before_mu = mu;
      before_lambda = lambda;
    }
  }
}

TEST(DenseTerms, ContinuousFromZero) {
  EXPECT_EQ(eos::dense_viscosity(0.0), 0.0);
  EXPECT_EQ(eos::dense_conductivity(0.0), 0.0);
  for (const double joint : {0.5, 2.0})
    EXPECT_NEAR(eos::dense_conductivity(joint - 1e-9), eos::dense_conductivity(joint), 1e-10);
  for (double r = 0.05; r < 3.0; r += 0.05) {
    EXPECT_GT(eos::dense_viscosity(r), eos::dense_viscosity(r - 0.05));
    EXPECT_GT(eos::dense_conductivity(r), eos::dense_conductivity(r - 0.05));
  }
}

TEST(SpecificHeat, SelectorDecidesHowFarDownTheListItGoes) {
  tests::Mixture m = tests::mixture_of(tests::kLeanGas);
  frame::state().group_data = tests::converted(m);
  const eos::Phase p{300.0, 60.0, tests::kLeanGasFeed.data(), KV_PHASE_GAS, &m.record};
  const auto outputs = [&](int selector) {
    eos::SpecificHeat c;
    EXPECT_EQ(eos::specific_heat(p, selector, c), KV_OK);
    return std::array<double, 7>{
        c.Cp_res, c.Cp, c.Cv, c.speed_of_sound, c.joule_thomson, c.compressibility, c.pressure_coefficient};
  };
  const auto all = outputs(-1);
  for (int selector = 0; selector <= 6; ++selector) {
    const auto some = outputs(selector);
    for (int k = 0; k < 7; ++k)
      EXPECT_EQ(some[k], (selector == 6 ? k == 6 : k <= selector) ? all[k] : 0.0) << selector << ' ' << k;
  }
  // kappa P -> 1 and T beta -> 1 in an ideal gas.
  eos::SpecificHeat ideal;
  const eos::Phase thin{300.0, 1e-6, tests::kLeanGasFeed.data(), KV_PHASE_GAS, &m.record};
  ASSERT_EQ(eos::specific_heat(thin, -1, ideal), KV_OK);
  EXPECT_NEAR(ideal.compressibility * 1e-6, 1.0, 1e-7);
  EXPECT_NEAR(ideal.pressure_coefficient * 300.0, 1.0, 1e-7);
  EXPECT_NEAR(ideal.Cp - ideal.Cv, 1.9872, 1e-5);
}

}  // namespace
