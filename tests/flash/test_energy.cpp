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

// Of a phase. A vapour whose liquid root has the lower Gibbs energy is the lighter one of two liquids.
double value_of(Mixture& m, bool entropy, double T, double P, const std::vector<double>& w, bool vapour) {
  const double gas = phase_state(m, T, P, w, KV_PHASE_GAS).gibbs;
  const double liquid = phase_state(m, T, P, w, KV_PHASE_LIQUID).gibbs;
  if (std::fabs(gas - liquid) > 1e-7) vapour = gas < liquid;
  double value = 0.0;
  EXPECT_LE((vapour ? of_gas(entropy) : of_liquid(entropy))(T, P, w.data(), &m.record, &value), KV_PURE_RANGE);
  return value;
}

// Enthalpy or entropy of one mole of a flash's answer.
double total(Mixture& m, bool entropy, double T, double P, const FlashResult& r) {
  const double liquid = r.beta < 1.0 ? value_of(m, entropy, T, P, r.x, false) : 0.0;
  const double vapour = r.beta > 0.0 ? value_of(m, entropy, T, P, r.y, true) : 0.0;
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

// What was asked is what the phases returned have, and the flash at the temperature returned says the same.
void expect_value(Mixture& m, bool entropy, double wanted, double P, const std::vector<double>& z,
                  double start) {
  SCOPED_TRACE(testing::Message() << (entropy ? "S " : "H ") << wanted << " at " << P << " atm from " << start);
  const Energy e = energy_flash(m, entropy, wanted, P, z, start);
  ASSERT_EQ(e.status, KV_OK) << e.T;
  const double scale = std::max(std::fabs(wanted), 1.9872 * (entropy ? 1.0 : e.T));
  EXPECT_NEAR(total(m, entropy, e.T, P, e.phases), wanted, 1.1e-9 * scale) << e.T;
  EXPECT_NEAR((1.0 - e.phases.beta) * e.liquid + e.phases.beta * e.vapour, wanted, 1e-9 * scale);
  // Where the vapour fraction grows within a hair of T, between phases of nearly one composition, it is not the
  // flash that knows it.
  double apart = 0.0;
  for (std::size_t i = 0; i < z.size(); ++i) apart = std::max(apart, std::fabs(e.phases.x[i] - e.phases.y[i]));
  const FlashResult there = flash(m, e.T, P, z);
  EXPECT_EQ(there.status, KV_OK);
  if (!e.phases.two_phases() || apart > 0.01) {
    EXPECT_NEAR(there.beta, e.phases.beta, 1e-6) << e.T;
  }
}

TEST(EnergyFlash, ValuesOverARange) {
  struct Case {
    std::vector<std::string> ids;
    std::vector<double> z, P;
    double first, last, step;  // enthalpies
  };
  const Case cases[] = {
      // Two liquids at the cold end, where a narrow bracket is no region of one temperature.
      {{"methane", "ethane", "propane", "n_butane", "n_pentane", "n_hexane", "nitrogen", "carbon_dioxide"},
       {0.7, 0.1, 0.07, 0.04, 0.02, 0.02, 0.02, 0.03},
       {20.0},
       -5370.0,
       -5070.0,
       50.0},
      {{"carbon_dioxide", "n_decane"}, {0.7, 0.3}, {20.0}, -8017.97, -8017.97, 1.0},
      {{"methane", "ethane", "hydrogen_sulfide", "n_butane", "n_hexane"},
       {0.35, 0.1, 0.3, 0.15, 0.1},
       {50.0},
       -6500.0,
       6500.0,
       500.0},
      // Almost pure, and the azeotrope of carbon dioxide with ethane: T stands still while the vapour grows.
      {{"propane", "n_butane"}, {1.0 - 1e-4, 1e-4}, {8.0}, -4500.0, 1500.0, 400.0},
      {{"propane", "n_butane"}, {1.0 - 2e-6, 2e-6}, {8.0}, -4500.0, 1500.0, 400.0},
      {{"propane", "n_butane"}, {1.0 - 1e-11, 1e-11}, {8.0}, -4500.0, 1500.0, 400.0},
      {{"propane", "n_butane"}, {1.0 - 1e-8, 1e-8}, {0.073765821522003269}, -1728.6502555366651, -1728.0, 1.0},
      {{"carbon_dioxide", "ethane"}, {0.67, 0.33}, {5.0, 20.0}, -3500.0, 500.0, 400.0},
      // A liquid whose heat capacity is below zero by its steep k_ij(T).
      {{"argon", "cyclopropane"}, {0.5, 0.5}, {4.463}, -4000.0, -1000.0, 500.0},
  };
  for (const Case& c : cases) {
    Mixture m = mixture_of(c.ids);
    m.use();
    for (const double P : c.P)
      for (double H = c.first; H <= c.last; H += c.step)
        for (const double start : {0.0, 5000.0}) expect_value(m, false, H, P, c.z, start);
  }
}

TEST(EnergyFlash, RefusesOnlyInAJump) {
  // Below three phases of a binary there are two liquids, above them a liquid and a vapour.
  Mixture m = mixture_of({"carbon_dioxide", "n_decane"});
  m.use();
  const std::vector<double> z{0.7, 0.3};
  struct Case {
    bool entropy;
    double P, wanted;
  };
  for (const Case& c : {Case{true, 1.4149522630205469, -32.566334872318016},
                        {false, 3.0, -7920.63},
                        {false, 0.089136407038798673, -9299.6674131928576}}) {
    const Energy e = energy_flash(m, c.entropy, c.wanted, c.P, z);
    EXPECT_EQ(e.status, KV_NOT_CONVERGED);
    for (const int side : {-1, 1}) {
      const double T = e.T * (1.0 + side * 1e-9);
      const FlashResult beside = flash(m, T, c.P, z);
      EXPECT_TRUE(beside.two_phases());
      EXPECT_GT(side * (total(m, c.entropy, T, c.P, beside) - c.wanted), 0.1);
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
  // A heteroazeotrope boils at one temperature.
  m.record.solubility_a = 11.2;
  m.record.solubility_b = 6290.0;
  for (const double H : {-6000.0, -3000.0}) {
    const Energy e = energy_flash(m, false, H, 1.0, {0.0, 0.5, 0.5});
    ASSERT_EQ(e.status, KV_OK) << H;
    EXPECT_NEAR((1.0 - e.phases.beta) * e.liquid + e.phases.beta * e.vapour, H, 1e-5);
    EXPECT_NEAR(e.T, 334.718, 1e-3);
  }
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
  // An azeotrope: no slopes here, and no flash that sees the two phases. And two liquids, of which the lighter
  // one is a liquid to the host's routines as well.
  Mixture azeotrope = mixture_of({"carbon_dioxide", "ethane"});
  azeotrope.use();
  const std::vector<double> z{0.67, 0.33};
  for (const auto& [P, H] : {std::pair{20.0, -3100.0}, {20.0, -1100.0}, {3.0, -3316.67}}) {
    const Energy own = energy_flash(azeotrope, false, H, P, z);
    const Energy by_host = energy_flash(azeotrope, false, H, P, z, 0.0, 1, {}, &routines);
    ASSERT_EQ(by_host.status, KV_OK) << H;
    EXPECT_NEAR(by_host.T, own.T, 1e-7);
    EXPECT_NEAR(by_host.phases.beta, own.phases.beta, 1e-6);
  }
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
