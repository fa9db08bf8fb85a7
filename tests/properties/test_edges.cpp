// Limits and corners of the property exports. (Refused arguments of every export:
// tests/exports/test_refused.cpp.)
#include <cfloat>
#include <tuple>

#include "phase_calls.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

constexpr double kNearlyZero = 1e-9;  // atm

TEST(PropertyEdges, IdealGasAtZeroPressure) {
  const Phase p = Phase({"methane", "nitrogen", "hydrogen"}, {0.5, 0.25, 0.25}).at(298.15, kNearlyZero, 1);
  const double mixing = -kCalR * (0.5 * std::log(0.5) + 0.5 * std::log(0.25));
  EXPECT_NEAR(p.H(), 0.0, 1e-6);
  EXPECT_NEAR(p.S(), mixing - kCalR * std::log(kNearlyZero), 1e-9);
  for (const double T : {150.0, 900.0}) {
    const Phase low = p.at(T, kNearlyZero, KV_PHASE_GAS), lower = p.at(T, kNearlyZero / 1000, KV_PHASE_GAS);
    EXPECT_NEAR(low.H(), lower.H(), 1e-6);
    EXPECT_NEAR(low.S() + kCalR * std::log(1e-3), lower.S() + 2 * kCalR * std::log(1e-3), 1e-8);
    const Heat c = lower.heat();
    EXPECT_NEAR(c.Cp - c.Cv, kCalR, 1e-7);
    EXPECT_NEAR(lower.normal().Z, 1.0, 1e-12);
    EXPECT_NEAR(lower.viscosity() / low.viscosity(), 1.0, 1e-9);
    EXPECT_NEAR(lower.conductivity() / low.conductivity(), 1.0, 1e-9);
  }
}

// Every caloric output of a phase and its statuses.
std::vector<double> caloric(const Phase& p, StatusCode expected, bool with_n = true) {
  StatusCode status[3];
  const Derivatives h = p.derivatives('H', with_n ? 7 : 3), s = p.derivatives('S', with_n ? 7 : 3);
  const Heat c = p.heat();
  std::vector<double> all{p.H(&status[0]),
                          p.S(&status[1]),
                          p.G(&status[2]),
                          h.value,
                          h.dT,
                          h.dP,
                          s.value,
                          s.dT,
                          s.dP,
                          c.Cp,
                          c.Cv,
                          c.w,
                          c.JT};
  for (const StatusCode got : {status[0], status[1], status[2], h.status, s.status, c.status})
    EXPECT_EQ(got, expected);
  all.insert(all.end(), h.dn.begin(), h.dn.end());
  all.insert(all.end(), s.dn.begin(), s.dn.end());
  return all;
}

TEST(PropertyEdges, ComponentThatIsNotKnown) {
  const Phase pair = Phase({"methane", "propane"}, {0.7, 0.3}).at(320, 30, KV_PHASE_GAS);
  const std::vector<double> expected = caloric(pair, KV_OK, false);
  const double viscosity = pair.viscosity(), conductivity = pair.conductivity();
  for (const double cas : {0.0, 99999999.0, static_cast<double>(NAN), -5.0, 1e300}) {
    SCOPED_TRACE(cas);
    for (const double absent : {0.0, 1e-16}) {
      Phase p = Phase({"methane", "n_hexane", "propane"}, {0.7, absent, 0.3}).at(320, 30, KV_PHASE_GAS);
      p.m->at(1, KV_COL_CAS) = cas;
      const std::vector<double> got = caloric(p, KV_OK, false);
      for (std::size_t i = 0; i < 13; ++i) EXPECT_NEAR(got[i] / expected[i], 1.0, 1e-8) << i;
      EXPECT_EQ(p.viscosity(), viscosity);
      EXPECT_EQ(p.conductivity(), conductivity);
      for (const double value : caloric(p, KV_OK)) EXPECT_TRUE(std::isfinite(value));
      p.x = {0.7, 1e-3, 0.299};
      for (const double value : caloric(p, KV_PURE_UNKNOWN)) EXPECT_EQ(value, 0.0);
      EXPECT_EQ(p.density().status, KV_OK);
      StatusCode status[2];
      EXPECT_EQ(p.viscosity(&status[0]), 0.0);
      EXPECT_EQ(p.conductivity(&status[1]), 0.0);
      EXPECT_EQ(status[0] + status[1], 2 * KV_PURE_UNKNOWN);
    }
  }
}

TEST(PropertyEdges, OutsideTheRangeOfAHeatCapacity) {
  const Phase methane({"methane"}, {1.0}), own({"n_octane"}, {1.0});
  own.m->at(0, KV_COL_CAS) = 0.0;  // with a heat capacity of the host's, J/(mol K)
  const double cp[] = {21.6, 0.624, -1.9e-4, -1e-8, 1e-12, 100.0, 1500.0};
  for (int k = 0; k < 7; ++k) own.m->at(0, KV_COL_CP_A + k) = cp[k];
  for (const Phase& p : {methane, own}) {  // both 100 to 1500 K
    p.m->use();
    for (const double end : {100.0, 1500.0}) {
      const double outside = end * (end < 300 ? 1 - 1e-9 : 1 + 1e-9), inside = end;
      const std::vector<double> values = caloric(p.at(outside, 0.1, KV_PHASE_GAS), KV_PURE_RANGE),
                                edge = caloric(p.at(inside, 0.1, KV_PHASE_GAS), KV_OK);
      for (std::size_t i = 0; i < 13; ++i) EXPECT_NEAR(values[i] / edge[i], 1.0, 1e-6) << i;
    }
    for (const double T : {40.0, 2500.0})
      for (const double value : caloric(p.at(T, 0.01, KV_PHASE_GAS), KV_PURE_RANGE))
        EXPECT_TRUE(std::isfinite(value));
  }
}

// A critical volume or compressibility that a host leaves out follows from the other, both from the acentric factor.
TEST(PropertyEdges, TransportWithoutCriticalVolume) {
  const Phase p = Phase({"propane"}, {1.0}).at(400, 120, KV_PHASE_GAS);
  const auto with = [&](double Zc, double Vc) {
    p.m->at(0, KV_COL_ZC) = Zc;
    p.m->at(0, KV_COL_VC) = Vc;
    return std::pair{p.viscosity(), p.conductivity()};
  };
  const double scale = kR * p.m->at(0, KV_COL_TC) / p.m->at(0, KV_COL_PC);
  const double own = 0.2905 - 0.085 * p.m->at(0, KV_COL_OMEGA);
  for (const auto& [Zc, Vc, Zc_full, Vc_full] : {std::tuple{0.0, 0.0, own, own * scale},
                                                 {0.28, 0.0, 0.28, 0.28 * scale},
                                                 {0.0, 190.0, 190.0 / scale, 190.0}}) {
    const auto some = with(Zc, Vc), full = with(Zc_full, Vc_full);
    EXPECT_NEAR(some.first / full.first, 1.0, 1e-13) << Zc << ' ' << Vc;
    EXPECT_NEAR(some.second / full.second, 1.0, 1e-13) << Zc << ' ' << Vc;
  }
}

TEST(PropertyEdges, MaskedDerivatives) {
  const Phase p = Phase({"methane", "propane"}, {0.7, 0.3}).at(300, 20, KV_PHASE_GAS);
  const Derivatives all[2] = {p.derivatives('H'), p.derivatives('S')};
  const decltype(&GasMolarEnthalpy_Derivatives_PPR78) entries[2] = {GasMolarEnthalpy_Derivatives_PPR78,
                                                                    GasMolarEntropy_Derivatives_PPR78};
  for (int mask = 0; mask < 8; ++mask)
    for (int k = 0; k < 2; ++k) {
      double value = -7, dT = -7, dP = -7, dn[2] = {-7, -7};
      EXPECT_EQ(entries[k](p.T, p.P, p.x.data(), &p.m->record, mask, &value, &dT, &dP,
                           mask & KV_DERIV_N ? dn : nullptr),
                KV_OK);
      EXPECT_DOUBLE_EQ(value, all[k].value);
      EXPECT_DOUBLE_EQ(dT, mask & KV_DERIV_T ? all[k].dT : -7);
      EXPECT_DOUBLE_EQ(dP, mask & KV_DERIV_P ? all[k].dP : -7);
      EXPECT_DOUBLE_EQ(dn[1], mask & KV_DERIV_N ? all[k].dn[1] : -7);
    }
}

TEST(PropertyEdges, PhaseWithoutARootOfItsOwn) {
  const Phase p(kLeanGas, kLeanGasFeed);
  for (const auto& [T, P] : {std::pair{400.0, 1.0}, {170.0, 300.0}}) {
    const Phase gas = p.at(T, P, KV_PHASE_GAS), liquid = p.at(T, P, KV_PHASE_LIQUID);
    EXPECT_DOUBLE_EQ(gas.H(), liquid.H());
    EXPECT_DOUBLE_EQ(gas.S(), liquid.S());
    EXPECT_EQ(gas.density().status + liquid.density().status, 2 * KV_OK);
    EXPECT_DOUBLE_EQ(gas.density().value, liquid.density().value);
  }
}

// Beside the end of its root a liquid's heat capacity has no bound; a difference of fixed width steps over
// that.
TEST(PropertyEdges, SlopesBesideTheEndOfARoot) {
  const Phase methane = Phase({"methane"}, {1.0}).at(0, 1e-5, KV_PHASE_LIQUID);
  double liquid = 160, none = 180;
  for (int k = 0; k < 60; ++k) {
    const double T = 0.5 * (liquid + none);
    (methane.at(T, methane.P, methane.kind).density().value > 0.01 ? liquid : none) = T;
  }
  for (const double distance : {1e-2, 1e-4, 1e-5, 1e-6, 1e-7}) {
    const Phase p = methane.at(liquid * (1 - distance), methane.P, methane.kind);
    const Derivatives h = p.derivatives('H'), s = p.derivatives('S');
    EXPECT_EQ(s.status, KV_OK);
    EXPECT_NEAR(s.dT / (h.dT / p.T), 1.0, 1e-6) << distance;
    EXPECT_NEAR(s.dn[0], 0.0, 1e-10) << distance;
  }
}

Phase flagged(Phase p) {
  p.m->record.flags = 0x81;
  p.m->record.solubility_a = 11.2;  // 5.4e-5 at 300 K
  p.m->record.solubility_b = 6290;
  return p;
}

const std::vector<std::string> kWetOil{"methane", "n_hexane", "water"};

// With the flag the solubility limit plays no part: whatever the fraction of water, a liquid is a sum of its
// parts. Below 1e-15 it is no water at all.
TEST(PropertyEdges, AnyWaterInALiquidIsLiquidWater) {
  const double T = 300, P = 30, limit = std::exp(11.2 - 6290 / T);
  const Phase wet = flagged(Phase(kWetOil, {})), plain(kWetOil, {});
  const auto of = [&](const Phase& p, double w) {
    Phase q = p.at(T, P, KV_PHASE_LIQUID);
    q.x = {0.6 * (1 - w), 0.4 * (1 - w), w};
    return q;
  };
  const Phase oil = of(plain, 0), water = of(wet, 1);
  for (const double w : {1e-15, 1e-9, limit * (1 - 1e-6), limit * (1 + 1e-6), 0.3, 1 - 1e-9}) {
    SCOPED_TRACE(w);
    const Phase p = of(wet, w);
    const double H = (1 - w) * oil.H() + w * water.H();
    const double S = (1 - w) * (oil.S() - kCalR * std::log(1 - w)) + w * (water.S() - kCalR * std::log(w));
    EXPECT_NEAR(p.H(), H, 1e-13 * std::fabs(H));
    EXPECT_NEAR(p.S(), S, 1e-13 * std::fabs(S));
    EXPECT_NEAR(p.G(), H - T * S, 1e-13 * (std::fabs(H) + T * std::fabs(S)));
  }
  const std::vector<std::string> ids{"methane", "ammonia", "water"};
  const Phase brine(ids, {}), option = flagged(Phase(ids, {}));
  for (const double w : {0.0, 5e-324, 1e-300, 9.9e-16}) {
    wet.m->use();
    EXPECT_EQ(caloric(of(wet, w), KV_OK), caloric(of(plain, w), KV_OK)) << w;
    brine.m->use();
    EXPECT_EQ(caloric(of(option, w), KV_OK), caloric(of(brine, w), KV_OK)) << w;
  }
}

// Traces beside water are the same phase as without it: their partial values are those of the dry liquid but
// for the mixing term. Sums that are 1 but for rounding, fractions below the threshold, and none at all.
TEST(PropertyEdges, TracesBesideLiquidWater) {
  const Phase wet = flagged(Phase(kWetOil, {})), plain(kWetOil, {});
  const double just_below = 1 - DBL_EPSILON / 2, just_above = 1 + DBL_EPSILON;
  const auto log_of = [](double fraction) { return std::log(std::max(fraction, 1e-15)); };
  for (const std::vector<double>& x : std::vector<std::vector<double>>{{0.0015, 0.0015, 0.997},
                                                                       {1e-9, 3e-9, 1 - 4e-9},
                                                                       {0, 1e-12, 1 - 1e-12},
                                                                       {2e-16, 3e-16, 1},
                                                                       {1e-17, 1e-17, just_below},
                                                                       {1e-300, 3e-300, 1},
                                                                       {5e-324, 0, 1},
                                                                       {0, 0, just_below},
                                                                       {0, 0, just_above},
                                                                       {0, 0, 1}})
    for (const double T : {280.0, 400.0}) {
      SCOPED_TRACE(testing::PrintToString(x) + " " + std::to_string(T));
      Phase p = wet.at(T, 30, KV_PHASE_LIQUID);
      p.x = x;
      const Derivatives h = p.derivatives('H'), s = p.derivatives('S');
      ASSERT_EQ(h.status + s.status, 2 * KV_OK);
      EXPECT_EQ(h.value, p.H());
      EXPECT_EQ(s.value, p.S());
      const double others = x[0] + x[1];
      for (const std::size_t j : {0u, 1u}) {
        Phase dry = plain.at(T, 30, KV_PHASE_LIQUID);
        dry.x = {j == 0 ? 1.0 : 0.0, j == 1 ? 1.0 : 0.0, 0};
        if (others > 0) dry.x = {x[0] / others, x[1] / others, 0};
        const Derivatives hd = dry.derivatives('H'), sd = dry.derivatives('S');
        EXPECT_NEAR(h.value + h.dn[j], hd.value + hd.dn[j], 1e-9);
        EXPECT_NEAR(s.value + s.dn[j] + kCalR * log_of(x[j]), sd.value + sd.dn[j] + kCalR * log_of(dry.x[j]),
                    1e-11);
      }
      EXPECT_NEAR(x[0] * h.dn[0] + x[1] * h.dn[1] + x[2] * h.dn[2], 0.0, 1e-9);
      EXPECT_NEAR(x[0] * s.dn[0] + x[1] * s.dn[1] + x[2] * s.dn[2], 0.0, 1e-11);
    }
}

// Steam tables: heat of vaporisation (kJ/kg) at 25, 100, 200 and 300 C.
TEST(PropertyEdges, LiquidWaterBesideAnIdealVapour) {
  const Phase water = flagged(Phase({"methane", "water"}, {0.0, 1.0}));
  for (const auto& [celsius, heat] :
       {std::pair{25.0, 2441.7}, {100.0, 2256.5}, {200.0, 1939.7}, {300.0, 1404.8}}) {
    const double T = celsius + 273.15;
    const double difference =
        water.at(T, kNearlyZero, KV_PHASE_GAS).H() - water.at(T, 100, KV_PHASE_LIQUID).H();
    EXPECT_NEAR(difference * kJoule / water.molar_mass(), heat, 0.005 * heat) << celsius;
  }
  // At its boiling point water has the Gibbs energy of the ideal gas at 1 atm.
  const double ideal = water.at(373.124, kNearlyZero, 1).G() - kCalR * 373.124 * std::log(kNearlyZero);
  EXPECT_NEAR(water.at(373.124, 1, KV_PHASE_LIQUID).G(), ideal, 0.003 * kCalR * 373.124);
}

TEST(PropertyEdges, LiquidWaterAboveItsCriticalPoint) {
  const Phase water = flagged(Phase({"water"}, {1.0}));
  const auto at = [&](double T) { return water.at(T, 250, KV_PHASE_LIQUID); };
  // H ends with a root of T: 1e-9 K below is 0.6 cal/mol below
  EXPECT_NEAR(at(647.13 + 1e-9).H(), at(647.13 - 1e-9).H(), 2.0);
  EXPECT_NEAR(at(647.13 + 1e-9).S(), at(647.13 - 1e-9).S(), 0.003);
  EXPECT_NEAR(at(647.096 + 1e-9).S(), at(647.096 - 1e-9).S(), 1e-4);
  EXPECT_NEAR(at(700).H(), water.at(700, kNearlyZero, KV_PHASE_GAS).H(), 1e-6);
}

TEST(PropertyEdges, FreeWaterFlagStaysAndActsOnLiquidsOnly) {
  const Phase wet = flagged(Phase(kWetOil, {0.5, 0.2, 0.3})), plain(kWetOil, {0.5, 0.2, 0.3});
  for (const int kind : {KV_PHASE_GAS, KV_PHASE_LIQUID}) {
    const Phase p = wet.at(400, 40, kind), q = plain.at(400, 40, kind);
    EXPECT_EQ(p.H() == q.H(), kind == KV_PHASE_GAS);
    EXPECT_EQ(p.S() == q.S(), kind == KV_PHASE_GAS);
    EXPECT_EQ(p.density().value, q.density().value);
    EXPECT_EQ(p.heat().Cp, q.heat().Cp);
    EXPECT_EQ(p.normal().Z, q.normal().Z);
    EXPECT_EQ(p.viscosity() + p.conductivity(), q.viscosity() + q.conductivity());
    for (const char property : {'H', 'S'}) EXPECT_EQ(p.derivatives(property).status, KV_OK);
    EXPECT_EQ(p.m->record.flags, 0x81);
  }
}

TEST(PropertyEdges, WaterWithAmmonia) {
  const std::vector<std::string> ids{"water", "ammonia"};
  const auto H = [](const Phase& p) { return p.at(300, 20, KV_PHASE_LIQUID).H(); };
  const double water = H(Phase({"water"}, {1.0})), ammonia = H(Phase({"ammonia"}, {1.0}));
  EXPECT_NEAR(H(Phase(ids, {1.0, 0.0})), water, 1e-6);  // no mixing at the ends
  EXPECT_NEAR(H(Phase(ids, {0.0, 1.0})), ammonia, 1e-6);
  // with the flag no mixing enthalpy: without it the phase is 47.4 cal/g poorer at equal fractions
  Phase half(ids, {0.5, 0.5}), option(ids, {0.5, 0.5});
  option.m->record.flags = FreeWaterFlag;
  const auto gas = [](const Phase& p) { return p.at(300, 1, KV_PHASE_GAS).H(); };
  EXPECT_NEAR(gas(option) - gas(half), 47.3943643 * half.molar_mass(), 1e-6);
  for (const double M : {0.0, -18.0, static_cast<double>(NAN)}) {  // its weights are the molar masses
    half.m->at(0, KV_COL_MOLAR_MASS) = M;
    StatusCode status[2];
    EXPECT_EQ(half.H(&status[0]) + half.G(&status[1]) + half.derivatives('H').dn[1], 0.0);
    EXPECT_EQ(status[0] + status[1], 2 * KV_COMPONENT_DATA);
  }
}

}  // namespace
