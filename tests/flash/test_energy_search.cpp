// The search behind the main solver of the flashes at enthalpy and entropy.
#include <gtest/gtest.h>

#include <cmath>

#include "../eos/eos_case.hpp"
#include "flash/energy/energy_state.hpp"

namespace {

using namespace kestrune;

TEST(EnergySearch, ScaleOfTheResidual) {
  EXPECT_EQ(flash::residual_scale(-20000.0), 10000.0);
  EXPECT_EQ(flash::residual_scale(20000.0), 10000.0);
  EXPECT_EQ(flash::residual_scale(-10000.0), -10000.0);
  EXPECT_EQ(flash::residual_scale(-500.0), -500.0);
  EXPECT_EQ(flash::residual_scale(0.5), 1.0);
  EXPECT_EQ(flash::residual_scale(-0.5), -1.0);
}

TEST(EnergySearch, FindsWhatTheMainSolverFinds) {
  tests::Mixture m = tests::mixture_of(tests::kRichGas);
  const eos::GroupData data = tests::converted(m);
  const eos::Context context = tests::context_with(m, data);
  const flash::Feed feed{tests::kRichGasFeed.data(), context};
  for (const double wanted : {-3000.0, -1200.0, 500.0, 4000.0})
    for (const auto property : {flash::Property::enthalpy, flash::Property::entropy}) {
      double T[2] = {0.0, 260.0}, beta, x[10], y[10], K[10], liquid, vapour;
      const double value = property == flash::Property::enthalpy ? wanted : -8.0 + wanted / 500.0;
      flash::EnergyCall call{feed, property, value, 20.0, &T[0], &beta, x, y, K, &liquid, &vapour};
      ASSERT_EQ(flash::energy_flash(call), KV_OK);
      call.T = &T[1];
      EXPECT_EQ(flash::energy_search(call), KV_OK);
      EXPECT_NEAR(T[1], T[0], 1e-7);  // though CRIT is compared with the square of the scaled residual
    }
}

TEST(EnergySearch, EndsWithoutAnAnswer) {
  tests::Mixture m = tests::mixture_of(tests::kLeanGas);
  const eos::GroupData data = tests::converted(m);
  const eos::Context context = tests::context_with(m, data);
  for (const double wanted : {1e8, -1e6}) {
    double T = 300.0, beta, x[7], y[7], K[7], liquid, vapour;
    const double* z = tests::kLeanGasFeed.data();
    const flash::EnergyCall call{
        {z, context}, flash::Property::enthalpy, wanted, 20.0, &T, &beta, x, y, K, &liquid, &vapour};
    EXPECT_NE(flash::energy_search(call), KV_OK);
    EXPECT_GT(T, flash::kColdest);  // where the second pass began
    EXPECT_LT(T, flash::kHottest);
  }
}

}  // namespace
