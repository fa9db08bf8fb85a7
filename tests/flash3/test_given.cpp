// Three-phase flashes at enthalpy, entropy and vapour fraction where a host would notice a fault at once:
// amounts along a line where temperature stands still, ends of the vapour fraction, values of phases that have
// to add up.
#include <gtest/gtest.h>

#include "three_phase_call.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

struct Given : Answer {
  double T = 0.0, A = 0.0, B = 0.0, vapour = 0.0;
  double sum() const { return beta * A + (1.0 - beta - V) * B + V * vapour; }
};

// options 1 hands over what start holds as an estimate.
Given at_energy(Mixture& m, bool entropy, double value, double P, const Vector& z, int options = 0,
                Given start = {}, const ModelRoutines* routines = nullptr) {
  Given g = std::move(start);
  for (Vector* array : {&g.xA, &g.xB, &g.y, &g.KLL, &g.KLV}) array->resize(z.size(), -7.0);
  g.status = (entropy ? FlashLLVatSP : FlashLLVatHP)(value, P, z.data(), &m.record, routines, options, &g.T,
                                                     &g.beta, &g.V, g.xA.data(), g.xB.data(), g.y.data(),
                                                     g.KLL.data(), g.KLV.data(), &g.A, &g.B, &g.vapour);
  return g;
}

Given at_fraction(Mixture& m, double W, double P, const Vector& z, double start = 0.0) {
  Given g;
  g.T = start;
  g.V = W;
  for (Vector* array : {&g.xA, &g.xB, &g.y, &g.KLL, &g.KLV}) array->resize(z.size(), -7.0);
  g.status = FlashLLVatWP(W, P, z.data(), &m.record, nullptr, 0, &g.T, &g.beta, g.xA.data(), g.xB.data(),
                          g.y.data(), g.KLL.data(), g.KLV.data());
  return g;
}

void expect_balance(const Given& g, const Vector& z) {
  for (std::size_t i = 0; i < z.size(); ++i)
    EXPECT_NEAR(g.beta * g.xA[i] + (1.0 - g.beta - g.V) * g.xB[i] + g.V * g.y[i], z[i], 1e-10) << i;
}

// Property routines of a host's own, which have no slopes.
template <auto routine>
StatusCode KV_CALL forwarded(double T, double P, const double* x, MixtureRecord* m, double* value) {
  return routine(T, P, x, m, value);
}
ModelRoutines forwarded_properties() {
  ModelRoutines r{};
  r.entry[KV_ROUTINE_GAS_ENTHALPY - 1] = reinterpret_cast<void*>(forwarded<GasMolarEnthalpy_PPR78>);
  r.entry[KV_ROUTINE_GAS_ENTROPY - 1] = reinterpret_cast<void*>(forwarded<GasMolarEntropy_PPR78>);
  r.entry[KV_ROUTINE_LIQUID_ENTHALPY - 1] = reinterpret_cast<void*>(forwarded<LiquidMolarEnthalpy_PPR78>);
  r.entry[KV_ROUTINE_LIQUID_ENTROPY - 1] = reinterpret_cast<void*>(forwarded<LiquidMolarEntropy_PPR78>);
  return r;
}

// Two components: three phases at one temperature, and a range of enthalpies that only the amounts can meet.
TEST(ThreePhaseLine, AmountsMeetTheValueWhereTemperatureStandsStill) {
  Mixture m = mixture_of({"methane", "hydrogen_sulfide"});
  m.use();
  const Vector z{0.6, 0.4};
  const double P = 20.0;
  const ModelRoutines routines = forwarded_properties();
  const Given bubble = at_fraction(m, 0.0, P, z), some = at_fraction(m, 0.3, P, z);
  ASSERT_EQ(bubble.status, KV_OK);
  ASSERT_EQ(some.status, KV_OK);
  EXPECT_NEAR(some.T, bubble.T, 1e-6);  // W moves along the line
  EXPECT_GT(some.beta, 0.0);
  EXPECT_LT(some.beta + some.V, 1.0);
  expect_balance(some, z);
  double below = 0.0, above = 0.0;
  for (const double V : {0.1, 0.3, 0.5}) {
    const Given known = at_fraction(m, V, P, z);
    double hA = 0.0, hB = 0.0, hV = 0.0, sA = 0.0, sB = 0.0, sV = 0.0;
    LiquidMolarEnthalpy_PPR78(known.T, P, known.xA.data(), &m.record, &hA);
    LiquidMolarEnthalpy_PPR78(known.T, P, known.xB.data(), &m.record, &hB);
    GasMolarEnthalpy_PPR78(known.T, P, known.y.data(), &m.record, &hV);
    LiquidMolarEntropy_PPR78(known.T, P, known.xA.data(), &m.record, &sA);
    LiquidMolarEntropy_PPR78(known.T, P, known.xB.data(), &m.record, &sB);
    GasMolarEntropy_PPR78(known.T, P, known.y.data(), &m.record, &sV);
    const double rest = 1.0 - known.beta - V;
    const double H = known.beta * hA + rest * hB + V * hV, S = known.beta * sA + rest * sB + V * sV;
    for (const bool entropy : {false, true}) {
      const double value = entropy ? S : H;
      const Given g = at_energy(m, entropy, value, P, z);
      ASSERT_EQ(g.status, KV_OK);
      EXPECT_NEAR(g.T, known.T, 1e-6);
      EXPECT_NEAR(g.V, V, 1e-6);
      EXPECT_NEAR(g.beta, known.beta, 1e-6);
      EXPECT_NEAR(g.sum(), value, 1e-9 * std::fabs(value));
      expect_balance(g, z);
      // From another place on the line, whose temperature is known to some digits only, and by a host's
      // routines.
      for (const double off : {-1e-7, 0.0, 1e-7}) {
        Given start = some;
        start.T += off;
        for (const ModelRoutines* by : {static_cast<const ModelRoutines*>(nullptr), &routines}) {
          const Given warm = at_energy(m, entropy, value, P, z, 1, start, by);
          ASSERT_EQ(warm.status, KV_OK);
          EXPECT_NEAR(warm.V, V, 1e-9);
        }
      }
    }
    above = H;
    if (V == 0.1) below = H;
  }
  EXPECT_GT(above - below, 100.0);  // cal/mol at one temperature
}

// A vapour and a liquid of nearly one composition: a component that boils almost pure, or beside another one
// that hardly mixes with it.
TEST(ThreePhaseLine, AlmostPureComponentsBoil) {
  const std::vector<std::string> wet{"methane", "water"}, oil{"carbon_dioxide", "n_decane"},
      heavy{"carbon_dioxide", "methane", "n_hexadecane"};
  const double trace = 8.43679557554251e-09;
  const struct {
    const std::vector<std::string>& ids;
    Vector z;
    double P;
    bool entropy;
    double value;
  } cases[] = {{oil, {1.0 - 3.623e-11, 3.623e-11}, 0.4514102737, false, -2632.8186},
               {oil, {1.0 - 5.975e-11, 5.975e-11}, 17.96361812, true, -17.9096974875},
               {heavy, {1.0 - trace, 3e-11, trace}, 0.1089892766, true, -15.4462805338},
               {wet, {0.9, 0.1}, 20.0, true, -15.8782815689},
               {wet, {0.9, 0.1}, 1.0, false, -4500.0},
               {wet, {0.99854286, 0.00145714}, 0.9043848026, true, -11.8782815689}};
  const ModelRoutines routines = forwarded_properties();
  for (const auto& c : cases)
    for (const ModelRoutines* by : {static_cast<const ModelRoutines*>(nullptr), &routines}) {
      SCOPED_TRACE(testing::Message() << c.P << " atm, " << c.value << (by != nullptr ? ", by a host" : ""));
      Mixture m = mixture_of(c.ids);
      m.use();
      const Given g = at_energy(m, c.entropy, c.value, c.P, c.z, 0, {}, by);
      ASSERT_EQ(g.status, KV_OK);
      EXPECT_NEAR(g.sum(), c.value, 1e-9 * std::fabs(c.value));
      expect_balance(g, c.z);
      EXPECT_LT(flash3(m, g.T * (1.0 - 1e-7), c.P, c.z).V, g.V);
      EXPECT_GT(flash3(m, g.T * (1.0 + 1e-7), c.P, c.z).V, g.V);
    }
}

// So far below freezing that a vapour holds e^-800 of an oil: what one liquid has of the other still follows it.
TEST(ThreePhaseValues, PhasesOfOilsFarBelowFreezing) {
  Mixture m = mixture_of({"methane", "toluene", "n_decane"});
  m.use();
  const double P = 23.815992356316755;
  const Vector z{1.0 - 7.33e-10, 7e-10, 3.3e-11};
  for (const double S : {-47.0, -49.02148568071425, -50.0})
    expect_equilibrium(m, at_energy(m, true, S, P, z).T, P, z, at_energy(m, true, S, P, z));
}

// Water and ammonia together have an enthalpy of mixing that does not vanish with a trace of one of them: what
// counts are the phases as they are written, in which a fraction below 1e-15 is 0.
TEST(ThreePhaseValues, AreThoseOfThePhasesAsWritten) {
  Mixture m = mixture_of({"carbon_dioxide", "methane", "n_butane", "water", "ammonia"});
  m.use();
  const struct {
    double P, H;
    Vector z;
  } cases[] = {
      {8.475417872, -2745.73733097, {0.217511283, 0.2185097704, 0.4201437754, 3.79835967e-12, 0.1438351712}},
      {1.084790143, -3100.528946, {0.0412874638, 0.2586323897, 0.6180143348, 1.76252e-09, 0.0820658099}},
      {12.15438529, -2666.923103, {0.6300136293, 0.0847604121, 0.2283715418, 1.9356758e-12, 0.0568544168}}};
  for (const auto& c : cases) {
    const Given g = at_energy(m, false, c.H, c.P, c.z);
    ASSERT_EQ(g.status, KV_OK);
    double B = 0.0, V = 0.0;
    LiquidMolarEnthalpy_PPR78(g.T, c.P, g.xB.data(), &m.record, &B);
    GasMolarEnthalpy_PPR78(g.T, c.P, g.y.data(), &m.record, &V);
    EXPECT_EQ(g.beta, 0.0);
    EXPECT_NEAR((1.0 - g.V) * B + g.V * V, c.H, 1e-9 * std::fabs(c.H));
  }
}

// The ends of the vapour fraction: an incipient vapour over two liquids, an incipient liquid below a gas.
TEST(ThreePhaseFraction, EndsHaveTheIncipientPhase) {
  Mixture m = mixture_of({"methane", "propane", "n_heptane", "water"});
  m.use();
  const Vector z{0.1, 0.2, 0.4, 0.3};
  const double P = 20.0;
  const Given bubble = at_fraction(m, 0.0, P, z), dew = at_fraction(m, 1.0, P, z);
  ASSERT_EQ(bubble.status, KV_OK);
  EXPECT_GT(bubble.beta, 0.5);
  EXPECT_LT(bubble.beta, 0.8);
  EXPECT_GT(bubble.xB[3], 0.999);
  EXPECT_NEAR(bubble.y[0] + bubble.y[1] + bubble.y[2] + bubble.y[3], 1.0, 1e-10);
  expect_balance(bubble, z);
  EXPECT_LT(flash3(m, bubble.T - 1e-3, P, z).V, 1e-300);
  EXPECT_GT(flash3(m, bubble.T + 1e-3, P, z).V, 0.0);
  ASSERT_EQ(dew.status, KV_OK);
  EXPECT_EQ(dew.beta, 0.0);
  EXPECT_NEAR(dew.xB[0] + dew.xB[1] + dew.xB[2] + dew.xB[3], 1.0, 1e-10);
  EXPECT_EQ(flash3(m, dew.T + 1e-3, P, z).V, 1.0);
  EXPECT_LT(flash3(m, dew.T - 1e-3, P, z).V, 1.0);
}

// Points in a narrow range of three phases between two pairs, behind a vapour that changes its name, beside four
// phases, of a vapour between two liquids on both sides, and where a phase lacks a component altogether; whatever
// start is given.
TEST(ThreePhaseFraction, PointsBetweenOtherPhases) {
  const std::vector<std::string> oil{"carbon_dioxide", "methane", "n_hexadecane"};
  const std::vector<std::string> sour{"methane", "ethane", "propane", "carbon_dioxide", "hydrogen_sulfide"};
  const std::vector<std::string> wet{"methane",  "ethane",  "propane",          "n_hexane",
                                     "n_decane", "toluene", "hydrogen_sulfide", "water"};
  const struct {
    std::vector<std::string> ids;
    Vector z;
    double P, W;
  } cases[] = {{oil, {0.8, 0.08, 0.12}, 85.231048, 0.1},
               {oil, {0.8, 0.08, 0.12}, 85.231048, 0.3},
               {sour, {0.0023765, 0.0218018, 0.0661847, 0.4976186, 0.4120184}, 86.8482, 0.5428},
               {sour, {0.0404410, 0.1065616, 0.3974899, 0.1442312, 0.3112763}, 114.3854, 0.0998},
               {wet, {0.2161, 0.2281, 0.1269, 0.15, 0.0429, 0.0556, 0.0777, 0.1027}, 120.755, 0.005},
               {{"methane", "n_butane", "water"}, {0.1568, 0.4591, 0.3841}, 69.647, 0.01}};
  for (const auto& c : cases)
    for (const double start : {0.0, 5.0, 5000.0}) {
      SCOPED_TRACE(testing::Message() << c.P << " atm, W " << c.W << " from " << start);
      Mixture m = mixture_of(c.ids);
      m.use();
      const Given g = at_fraction(m, c.W, c.P, c.z, start);
      ASSERT_EQ(g.status, KV_OK);
      expect_balance(g, c.z);
      EXPECT_GT(g.beta, 0.0);
      EXPECT_NEAR(flash3(m, g.T, c.P, c.z).V, c.W, 1e-6);
    }
}

// Free water: what the two-phase flash says of vapour and water, and phases whose values add up to the feed's.
TEST(ThreePhaseFreeWater, ValuesAddUpAndAgreeWithTwoPhases) {
  Mixture m = mixture_of({"methane", "n_decane", "water"});
  m.use();
  m.record.flags = FreeWaterFlag;
  m.record.solubility_a = 11.2;
  m.record.solubility_b = 6290.0;
  const Vector z{0.5, 0.2, 0.3};
  const double P = 20.0;
  for (const double H : {-4000.0, -2000.0, 0.0}) {
    const Given g = at_energy(m, false, H, P, z);
    double T = 0.0, beta = 0.0, HL = 0.0, HV = 0.0;
    Vector x(3), y(3), K(3);
    ASSERT_EQ(
        FlashLVatHP(H, P, z.data(), &m.record, nullptr, 1, &T, &beta, x.data(), y.data(), K.data(), &HL, &HV),
        KV_OK);
    ASSERT_EQ(g.status, KV_OK);
    EXPECT_NEAR(g.T, T, 1e-6);
    EXPECT_NEAR(g.V, beta, 1e-8);
    EXPECT_NEAR(g.sum(), H, 1e-7 * std::fabs(H) + 1e-6);
    expect_balance(g, z);
    double SA = 0.0, SB = 0.0, SV = 0.0;
    if (g.beta > 0.0) LiquidMolarEntropy_PPR78(g.T, P, g.xA.data(), &m.record, &SA);
    LiquidMolarEntropy_PPR78(g.T, P, g.xB.data(), &m.record, &SB);
    GasMolarEntropy_PPR78(g.T, P, g.y.data(), &m.record, &SV);
    const double S = g.beta * SA + (1.0 - g.beta - g.V) * SB + g.V * SV;
    const Given again = at_energy(m, true, S, P, z);
    ASSERT_EQ(again.status, KV_OK);
    EXPECT_NEAR(again.T, g.T, 1e-6);
    EXPECT_NEAR(again.sum(), S, 1e-9);
  }
  EXPECT_EQ(m.record.flags, FreeWaterFlag);
}

}  // namespace
