// FlashLLatTP: two liquids in their order, one liquid, no split at all.
#include <gtest/gtest.h>

#include "common/flash_call.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

struct Liquids {
  StatusCode status = -1;
  double beta = -7.0;
  std::vector<double> first, second, K;
};

Liquids split(Mixture& m, double T, double P, const std::vector<double>& z, int options = 0,
              const ModelRoutines* routines = nullptr, Liquids start = {}) {
  Liquids l = std::move(start);
  for (auto* array : {&l.first, &l.second, &l.K}) array->resize(z.size(), 0.0);
  l.status = FlashLLatTP(T, P, z.data(), &m.record, routines, options, &l.beta, l.first.data(), l.second.data(),
                         l.K.data());
  return l;
}

double density(Mixture& m, double T, double P, const std::vector<double>& x) {
  double rho = 0.0, d[3];
  EXPECT_EQ(LiquidDensity_PPR78(T, P, x.data(), &m.record, &rho, d, d + 1, d + 2), KV_OK);
  return rho;
}

// What orders liquids, with a status that says nothing; or with nothing but that.
StatusCode KV_CALL lightness(double T, double P, const double* x, MixtureRecord* m, double* rho, double* a,
                             double* b, double* c) {
  EXPECT_EQ(LiquidDensity_PPR78(T, P, x, m, rho, a, b, c), KV_OK);
  *rho = 1.0 / *rho;
  return 77;
}
StatusCode KV_CALL no_order(double, double, const double*, MixtureRecord*, double*, double*, double*, double*) {
  return 77;
}

// The library's own coefficients, counted.
int asked = 0;
StatusCode KV_CALL counted(double T, double P, const double* x, MixtureRecord* m, int32_t phase, int32_t option,
                           int32_t mask, double* ln_phi, double* dT, double* dP, double* dn) {
  ++asked;
  const auto phi = phase == KV_PHASE_GAS ? GasPhi_Derivatives_PPR78 : LiquidPhi_Derivatives_PPR78;
  return phi(T, P, x, m, option, mask, ln_phi, dT, dP, dn);
}

struct Case {
  std::vector<std::string> ids;
  std::vector<double> z;
  double T, P;
};
const Case kSplitCases[] = {{{"nitrogen", "ethane"}, {0.5, 0.5}, 110, 60},
                            {{"methane", "hydrogen_sulfide"}, {0.7, 0.3}, 160, 60},
                            {{"carbon_dioxide", "methane", "n_decane"}, {0.7, 0.1, 0.2}, 240, 80},
                            {{"methane", "n_hexane", "water"}, {0.1, 0.4, 0.5}, 350, 60},
                            {{"methane", "n_eicosane", "water", "ethane"}, {0.1, 0.4, 0.5, 0.0}, 300, 60}};

TEST(LiquidLiquid, TwoLiquidsTheDenserFirst) {
  for (const Case& c : kSplitCases) {
    SCOPED_TRACE(c.ids[0] + " " + c.ids[1]);
    Mixture m = mixture_of(c.ids);
    m.use();
    const Liquids l = split(m, c.T, c.P, c.z);
    ASSERT_EQ(l.status, KV_OK);
    ASSERT_GT(l.beta, 0.0);
    ASSERT_LT(l.beta, 1.0);
    EXPECT_GT(density(m, c.T, c.P, l.first), density(m, c.T, c.P, l.second));
    const PhaseState a = phase_state(m, c.T, c.P, l.first, KV_PHASE_LIQUID),
                     b = phase_state(m, c.T, c.P, l.second, KV_PHASE_LIQUID);
    for (std::size_t i = 0; i < c.z.size(); ++i) {
      EXPECT_NEAR((1.0 - l.beta) * l.first[i] + l.beta * l.second[i], c.z[i], 1e-12);
      EXPECT_EQ(l.K[i], l.first[i] == 0.0 ? 1e15 : std::max(l.second[i] / l.first[i], 1e-15));
      EXPECT_TRUE(l.first[i] == 0.0 || l.first[i] >= 1e-15);
      if (l.K[i] > 1e-14 && l.K[i] < 1e14) {
        EXPECT_NEAR(std::log(l.first[i]) + a.ln_phi[i], std::log(l.second[i]) + b.ln_phi[i], 1e-8);
      }
    }
    // Ordered by what the host's routine says; from the answer as an estimate the same again.
    ModelRoutines routines{};
    routines.entry[KV_ROUTINE_LIQUID_ORDER - 1] = reinterpret_cast<void*>(lightness);
    const Liquids other = split(m, c.T, c.P, c.z, 0, &routines);
    EXPECT_EQ(other.status, KV_OK);
    routines.entry[KV_ROUTINE_LIQUID_ORDER - 1] = reinterpret_cast<void*>(no_order);
    const Liquids own = split(m, c.T, c.P, c.z, 0, &routines);
    EXPECT_EQ(own.status, KV_OK);
    EXPECT_EQ(own.first, l.first);
    const Liquids again = split(m, c.T, c.P, c.z, 1, nullptr, l);
    EXPECT_NEAR(other.beta, 1.0 - l.beta, 1e-12);
    EXPECT_NEAR(again.beta, l.beta, 1e-9);
    for (std::size_t i = 0; i < c.z.size(); ++i) {
      EXPECT_NEAR(other.first[i], l.second[i], 1e-12);
      EXPECT_NEAR(other.K[i] * l.K[i], l.first[i] + l.second[i] > 0.0 ? 1.0 : 1e30, 1e-9);
      EXPECT_NEAR(again.first[i], l.first[i], 1e-9);
    }
  }
}

// With the flag and less water than its limit the estimate of the host is what the flash starts from.
TEST(LiquidLiquid, AnEstimateBesideFreeWaterBelowItsLimit) {
  Mixture m = mixture_of({"carbon_dioxide", "methane", "n_decane", "water"});
  m.use();
  m.record.flags = 1;
  m.record.solubility_a = 0.0;  // 1.6 % at 240 K
  m.record.solubility_b = 1000.0;
  ModelRoutines routines{};
  routines.entry[KV_ROUTINE_FUGACITY - 1] = reinterpret_cast<void*>(counted);
  const std::vector<double> z{0.7, 0.1, 0.199, 0.001};
  asked = 0;
  const Liquids cold = split(m, 240, 80, z, 0, &routines);
  const int cold_calls = asked;
  asked = 0;
  const Liquids warm = split(m, 240, 80, z, 1, &routines, cold);
  ASSERT_EQ(cold.status, KV_OK);
  ASSERT_EQ(warm.status, KV_OK);
  EXPECT_GT(cold.beta, 0.0);
  EXPECT_LT(cold.beta, 1.0);
  EXPECT_NEAR(warm.beta, cold.beta, 1e-9);
  EXPECT_LT(asked, cold_calls) << "of " << cold_calls;
}

TEST(LiquidLiquid, OneLiquidAndPureFeeds) {
  Mixture m = mixture_of({"propane", "n_butane"});
  m.use();
  const Liquids one = split(m, 280, 20, {0.4, 0.6});
  EXPECT_EQ(one.status, KV_OK);
  EXPECT_EQ(one.beta, 0.0);
  EXPECT_NEAR(one.first[0], 0.4, 1e-15);
  EXPECT_EQ(one.second, std::vector<double>(2, 0.0));
  EXPECT_EQ(one.K, std::vector<double>(2, 0.0));
  m.record.pure_tolerance = 0.25;  // exactly 1 - tolerance is not pure, and the feed counts as it is given
  for (const double share : {0.75, 0.76})
    for (const double rest : {1.0 - share, 0.2, 0.3}) {
      const Liquids pure = split(m, 280, 20, {share, rest});
      EXPECT_EQ(pure.status, KV_OK);
      EXPECT_EQ(pure.beta, 0.0);
      EXPECT_EQ(pure.K[0], share > 0.75 ? 1e-15 : 0.0);
      EXPECT_EQ(pure.first[0], share / (share + rest));
    }
}

}  // namespace
