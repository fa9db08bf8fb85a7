// FlashLVatHP and FlashLVatSP: the state that an enthalpy or entropy was taken from is found again.
#include <gtest/gtest.h>

#include "common/flash_call.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

struct Energy {
  StatusCode status = -1;
  double T = 0.0, liquid = -7.0, vapour = -7.0;
  FlashResult phases;
};

using Value = decltype(&GasMolarEnthalpy_PPR78);
Value of_gas(bool entropy) {
  return entropy ? GasMolarEntropy_PPR78 : GasMolarEnthalpy_PPR78;
}
Value of_liquid(bool entropy) {
  return entropy ? LiquidMolarEntropy_PPR78 : LiquidMolarEnthalpy_PPR78;
}

// Enthalpy or entropy of one mole of a flash's answer.
double total(Mixture& m, bool entropy, double T, double P, const FlashResult& r) {
  double liquid = 0.0, vapour = 0.0;
  if (r.beta < 1.0) {
    EXPECT_LE(of_liquid(entropy)(T, P, r.x.data(), &m.record, &liquid), KV_PURE_RANGE);
  }
  if (r.beta > 0.0) {
    EXPECT_LE(of_gas(entropy)(T, P, r.y.data(), &m.record, &vapour), KV_PURE_RANGE);
  }
  return (1.0 - r.beta) * liquid + r.beta * vapour;
}

Energy energy_flash(Mixture& m, bool entropy, double wanted, double P, const std::vector<double>& z,
                    double T = 0.0, int options = 1, const FlashResult& start = {},
                    const ModelRoutines* routines = nullptr) {
  Energy e;
  e.T = T;
  e.phases = start;
  FlashResult& r = e.phases;
  for (auto* array : {&r.x, &r.y, &r.K}) array->resize(z.size(), 0.0);
  e.status =
      (entropy ? FlashLVatSP : FlashLVatHP)(wanted, P, z.data(), &m.record, routines, options, &e.T, &r.beta,
                                            r.x.data(), r.y.data(), r.K.data(), &e.liquid, &e.vapour);
  return e;
}

void expect_round_trip(Mixture& m, bool entropy, double T, double P, const std::vector<double>& z, double start,
                       const ModelRoutines* routines = nullptr) {
  SCOPED_TRACE(testing::Message() << (entropy ? "S " : "H ") << T << " K " << P << " atm from " << start);
  const FlashResult there = flash(m, T, P, z);
  ASSERT_EQ(there.status, KV_OK);
  const double wanted = total(m, entropy, T, P, there);
  const Energy e = energy_flash(m, entropy, wanted, P, z, start, 1, {}, routines);
  ASSERT_EQ(e.status, KV_OK);
  EXPECT_NEAR(e.T, T, 1e-6);
  EXPECT_NEAR(e.phases.beta, there.beta, 1e-6);
  EXPECT_NEAR(total(m, entropy, e.T, P, e.phases), wanted, 1e-7 * std::max(1.0, std::fabs(wanted)));
  EXPECT_NEAR((1.0 - e.phases.beta) * e.liquid + e.phases.beta * e.vapour, wanted,
              1e-7 * std::max(1.0, std::fabs(wanted)));
  if (e.phases.beta == 0.0) {
    EXPECT_EQ(e.vapour, 0.0);
  }
  if (e.phases.beta == 1.0) {
    EXPECT_EQ(e.liquid, 0.0);
  }
}

TEST(EnergyFlash, RoundTripsFromAnyEstimate) {
  Mixture m = mixture_of(kRichGas);
  m.use();
  std::vector<Condition> states(std::begin(kTwoPhases), std::end(kTwoPhases));
  states.insert(states.end(), {{350, 30}, {180, 120}, {600, 0.01}, {259.8, 113.5}, {265, 100}});
  for (const Condition& c : states)
    for (const bool entropy : {false, true})
      for (const double start : {0.0, c.T + 60.0, c.T - 60.0, 5.0, 5000.0, -3.0, static_cast<double>(NAN)})
        expect_round_trip(m, entropy, c.T, c.P, kRichGasFeed, start);
}

TEST(EnergyFlash, NearlyIsothermalRegions) {
  // Almost pure, and the azeotrope of carbon dioxide with ethane: T stands still while the vapour grows.
  for (const double trace : {1e-4, 1e-8, 1e-11}) {
    Mixture m = mixture_of({"propane", "n_butane"});
    m.use();
    const std::vector<double> z{1.0 - trace, trace};
    double T[2] = {0.0, 0.0}, x[2], y[2], K[2], H[2];
    for (int W = 0; W < 2; ++W)
      ASSERT_EQ(FlashLVatWP(W, 8.0, z.data(), &m.record, nullptr, 1, &T[W], x, y, K), KV_OK);
    LiquidMolarEnthalpy_PPR78(T[0], 8.0, z.data(), &m.record, &H[0]);
    GasMolarEnthalpy_PPR78(T[1], 8.0, z.data(), &m.record, &H[1]);
    for (const double part : {0.02, 0.5, 0.97}) {
      const double wanted = H[0] + part * (H[1] - H[0]);
      const Energy e = energy_flash(m, false, wanted, 8.0, z);
      ASSERT_EQ(e.status, KV_OK) << trace << ' ' << part;
      EXPECT_GE(e.T, T[0] - 1e-6);
      EXPECT_LE(e.T, T[1] + 1e-6);
      EXPECT_NEAR(e.phases.beta, part, 2e-3);
      EXPECT_NEAR((1.0 - e.phases.beta) * e.liquid + e.phases.beta * e.vapour, wanted,
                  1e-6 * std::fabs(wanted));
    }
  }
}

TEST(EnergyFlash, SingleComponent) {
  Mixture m = mixture_of({"propane"});
  m.use();
  const std::vector<double> z{1.0};
  double T = 0.0, x, y, K;
  ASSERT_EQ(FlashLVatWP(0.0, 10.0, z.data(), &m.record, nullptr, 1, &T, &x, &y, &K), KV_OK);
  for (const bool entropy : {false, true}) {
    double liquid = 0.0, vapour = 0.0;
    of_liquid(entropy)(T, 10.0, z.data(), &m.record, &liquid);
    of_gas(entropy)(T, 10.0, z.data(), &m.record, &vapour);
    for (const double beta : {0.0, 0.25, 1.0}) {
      const Energy e = energy_flash(m, entropy, liquid + beta * (vapour - liquid), 10.0, z, 250.0);
      ASSERT_EQ(e.status, KV_OK);
      EXPECT_NEAR(e.T, T, 1e-9);
      EXPECT_NEAR(e.phases.beta, beta, 1e-9);
    }
    for (const double other : {150.0, T - 1e-3, T + 1e-3, 500.0})
      expect_round_trip(m, entropy, other, 10.0, z, 0.0);
    for (const double other : {200.0, 370.0, 380.0}) expect_round_trip(m, entropy, other, 50.0, z, 0.0);
  }
}

TEST(EnergyFlash, WarmStartsEndOnTheSameAnswer) {
  Mixture m = mixture_of(kRichGas);
  m.use();
  const FlashResult there = flash(m, 240.0, 30.0, kRichGasFeed);
  const double wanted = total(m, false, 240.0, 30.0, there);
  const Energy warm =
      energy_flash(m, false, wanted, 30.0, kRichGasFeed, 235.0, 0, flash(m, 235.0, 30.0, kRichGasFeed));
  ASSERT_EQ(warm.status, KV_OK);
  EXPECT_NEAR(warm.T, 240.0, 1e-6);
  expect_same(warm.phases, there, 1e-7);
  FlashResult nonsense = there;
  nonsense.x[0] = NAN;
  EXPECT_NEAR(energy_flash(m, false, wanted, 30.0, kRichGasFeed, 0.0, 0, nonsense).T, 240.0, 1e-6);
}

TEST(EnergyFlash, FreeWater) {
  Mixture m = mixture_of({"methane", "n_hexane", "water"});
  m.use();
  m.record.flags = FreeWaterFlag;
  m.record.solubility_a = 6.92;
  m.record.solubility_b = 4330.0;
  for (const Condition& c : {Condition{300, 20}, {400, 5}, {350, 60}, {290, 1}})
    for (const bool entropy : {false, true}) expect_round_trip(m, entropy, c.T, c.P, {0.6, 0.2, 0.2}, 0.0);
  EXPECT_EQ(m.record.flags, FreeWaterFlag);
}

int calls = 0;
StatusCode KV_CALL counted_gas(double T, double P, const double* x, MixtureRecord* m, double* H) {
  ++calls;
  return GasMolarEnthalpy_PPR78(T, P, x, m, H);
}
StatusCode KV_CALL counted_liquid(double T, double P, const double* x, MixtureRecord* m, double* H) {
  ++calls;
  return LiquidMolarEnthalpy_PPR78(T, P, x, m, H);
}

TEST(EnergyFlash, RoutinesOfTheHostAreCalled) {
  Mixture m = mixture_of(kRichGas);
  m.use();
  ModelRoutines routines{};
  routines.entry[KV_ROUTINE_GAS_ENTHALPY - 1] = reinterpret_cast<void*>(counted_gas);
  routines.entry[KV_ROUTINE_LIQUID_ENTHALPY - 1] = reinterpret_cast<void*>(counted_liquid);
  for (const Condition& c : {Condition{250, 40}, {350, 30}})
    expect_round_trip(m, false, c.T, c.P, kRichGasFeed, 0.0, &routines);
  EXPECT_GT(calls, 4);
}

TEST(EnergyFlash, ValuesThatNoTemperatureHas) {
  Mixture m = mixture_of(kRichGas);
  m.use();
  for (const double wanted : {-1e6, 1e9}) {
    const Energy e = energy_flash(m, false, wanted, 30.0, kRichGasFeed);
    EXPECT_EQ(e.status, KV_NOT_CONVERGED);
    EXPECT_TRUE(std::isfinite(e.T));
  }
  m.at(4, KV_COL_CAS) = 1.0;
  EXPECT_EQ(energy_flash(m, false, 0.0, 30.0, kRichGasFeed).status, KV_PURE_UNKNOWN);
  double T = 0.0;
  FlashResult r = flash(m, 300.0, 30.0, kRichGasFeed);
  double HL, HV;
  FlashLVatHP(0.0, 30.0, kRichGasFeed.data(), &m.record, nullptr, 1, &T, &r.beta, r.x.data(), r.y.data(),
              r.K.data(), &HL, &HV);
  EXPECT_EQ(T, 298.15);  // written back
}

}  // namespace
