// The stability test by itself: of a feed, and of two and three phases in equilibrium.
#include <gtest/gtest.h>

#include <numeric>

#include "../eos/eos_case.hpp"
#include "flash/isothermal/isothermal.hpp"
#include "flash/stability/stability.hpp"
#include "flash3/three_phase.hpp"

namespace {

using namespace kestrune;

struct StabilityOfGas : testing::Test {
  tests::Mixture m = tests::mixture_of(tests::kRichGas);
  eos::GroupData data = tests::converted(m);
  flash::Feed feed{tests::kRichGasFeed.data(), tests::context_with(m, data)};
  double beta = 0.0, x[10] = {}, y[10] = {}, K[10] = {}, w[10] = {}, log_k[10] = {};
};

TEST_F(StabilityOfGas, FeedIsCutWhereItSplits) {
  flash::StabilityCall call{feed, 400.0, 20.0};
  flash::StabilityResult hot;
  ASSERT_EQ(flash::test_stability(call, hot), KV_OK);
  EXPECT_FALSE(hot.cut);
  EXPECT_GE(hot.distance, 0.0);
  call.T = 230.0;
  flash::StabilityResult cold;
  cold.w = w;
  cold.log_k = log_k;
  ASSERT_EQ(flash::test_stability(call, cold), KV_OK);
  EXPECT_TRUE(cold.cut);
  EXPECT_LT(cold.distance, 0.0);
  EXPECT_NEAR(std::accumulate(w, w + 10, 0.0), 1.0, 1e-12);
  EXPECT_GT(w[7], 10.0 * feed.z[7]);  // a liquid: hexane gathers in it, and its K says so
  EXPECT_GT(log_k[7], log_k[0]);
}

TEST_F(StabilityOfGas, PhasesOfAFlashAreNot) {
  ASSERT_EQ(flash::isothermal_flash({feed, 230.0, 20.0, &beta, x, y, K}), KV_OK);
  for (const auto effort : {flash::Effort::usual, flash::Effort::every_component, flash::Effort::thorough}) {
    flash::StabilityResult found;
    ASSERT_EQ(flash::test_stability({feed, 230.0, 20.0, nullptr, effort, 2, {x, y}}, found), KV_OK);
    EXPECT_FALSE(found.cut);
    EXPECT_GT(found.distance, -1e-9);
  }
  // A phase that lies in the feed's plane, as the feed's own: no trial counts that comes to it.
  flash::StabilityCall call{feed, 400.0, 20.0};
  call.incipient = feed.z;
  flash::StabilityResult itself;
  ASSERT_EQ(flash::test_stability(call, itself), KV_OK);
  EXPECT_FALSE(itself.cut);
}

// Gas, hydrocarbons and water: the third one lies in the plane of two of them, and cuts that of the best pair.
TEST(StabilityOfThree, FindsThePhaseThatIsMissing) {
  tests::Mixture m = tests::mixture_of({"methane", "n_butane", "water"});
  const eos::GroupData data = tests::converted(m);
  const double z[] = {0.3, 0.4, 0.3};
  const flash::Feed feed{z, tests::context_with(m, data)};
  double beta, V, A[3], B[3], y[3], KLL[3], KLV[3], w[3] = {};
  ASSERT_EQ(flash3::three_phase_flash({feed, 300.0, 10.0, {&beta, &V, A, B, y, KLL, KLV}}), KV_OK);
  const double* const phases[] = {A, B, y};
  for (int missing = 0; missing < 3; ++missing) {
    flash::StabilityCall call{feed, 300.0, 10.0, nullptr, flash::Effort::thorough, 2};
    call.phase[0] = phases[(missing + 1) % 3];
    call.phase[1] = phases[(missing + 2) % 3];
    flash::StabilityResult found;
    ASSERT_EQ(flash::test_stability(call, found), KV_OK);
    EXPECT_NEAR(found.distance, 0.0, 1e-8) << missing;  // it lies in their plane
  }
  flash::StabilityResult of_all;
  ASSERT_EQ(flash::test_stability({feed, 300.0, 10.0, nullptr, flash::Effort::thorough, 3, {A, B, y}}, of_all),
            KV_OK);
  EXPECT_FALSE(of_all.cut);

  double x2[3], y2[3], K[3], beta2 = 0.0;
  flash::ThirdPhase third{w};
  flash::IsothermalCall two{feed, 300.0, 10.0, &beta2, x2, y2, K};
  two.third = &third;
  ASSERT_EQ(flash::isothermal_flash(two), KV_OK);
  EXPECT_TRUE(third.found);
  flash::StabilityResult cut;
  cut.w = w;
  ASSERT_EQ(flash::test_stability({feed, 300.0, 10.0, nullptr, flash::Effort::thorough, 2, {x2, y2}}, cut),
            KV_OK);
  EXPECT_TRUE(cut.cut);
  EXPECT_LT(cut.distance, -1e-6);
}

}  // namespace
