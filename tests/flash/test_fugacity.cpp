// The water-aware fugacity rules and the K-value evaluation, rule by rule.
#include <gtest/gtest.h>

#include <cmath>

#include "eos/eos_case.hpp"
#include "flash/fugacity.hpp"

using namespace kestrune;
using namespace kestrune::tests;
using flash::Kind;

namespace {

constexpr double kA = 6.0, kB = 3000.0;  // s(320 K) = 0.0342
constexpr int kN = 4, kWater = 2;

// A prepared model, with its temperature to first order so that every derivative may be asked for.
struct Prepared {
  Mixture m = mixture_of({"methane", "propane", "water", "n_hexane"});
  std::vector<double> block = std::vector<double>(20000);
  support::Arena arena{block.data(), 8 * 20000};
  flash::Model model;
  eos::GroupData data;

  Prepared(double T, double P, bool free_water, double A = kA) {
    data = converted(m);
    m.record.solubility_a = A;
    m.record.solubility_b = kB;
    EXPECT_EQ(flash::make_model(T, P, context_with(m, data), nullptr, free_water, 1, arena, model), KV_OK);
    EXPECT_EQ(eos::prepare(T, context_with(m, data), 1, arena, model.t), KV_OK);
  }
};

struct Values {
  double ln_phi[kN], dT[kN], dP[kN], dn[kN * kN];
};

Values evaluate(double T, double P, const double* x, Kind kind, bool free_water, double A = kA) {
  Prepared p(T, P, free_water, A);
  Values v;
  double Z = 0.0;
  EXPECT_EQ(flash::water_aware_fugacity(p.model, x, kind, v.ln_phi, {v.dT, v.dP, v.dn}, Z), KV_OK);
  return v;
}

// Psat of water, written out.
double psat(double T) {
  return std::exp(73.649 - 7258.2 / T - 7.3037 * std::log(T) + 4.1653e-6 * T * T) / 101325.0;
}

constexpr double kT = 320.0, kP = 40.0;
const double kLimit = std::exp(kA - kB / kT);

TEST(WaterRules, FlagClearAndVapourFollowTheEquation) {
  const double x[kN] = {0.3, 0.3, 0.1, 0.3};
  std::vector<double> composition(x, x + kN);
  Mixture m = mixture_of({"methane", "propane", "water", "n_hexane"});
  for (const int phase : {KV_PHASE_GAS, KV_PHASE_LIQUID}) {
    const tests::Evaluated e = evaluate_state(m, kT, kP, phase, composition, 6);
    const Kind kind = phase == KV_PHASE_GAS ? Kind::gas : Kind::liquid;
    const Values v = evaluate(kT, kP, x, kind, phase == KV_PHASE_GAS);
    for (std::size_t i = 0; i < kN; ++i) {
      EXPECT_NEAR(v.ln_phi[i], e.ln_phi[i], 1e-12);
      EXPECT_NEAR(v.dT[i], e.dT[i], 1e-12);
      EXPECT_NEAR(v.dP[i], e.dP[i], 1e-12);
      for (std::size_t j = 0; j < kN; ++j) EXPECT_NEAR(v.dn[i + j * kN], e.dn[i + j * kN], 1e-11);
    }
  }
}

TEST(WaterRules, LiquidBelowTheLimit) {
  const double xw = 0.5 * kLimit, x[kN] = {0.3, 0.3, xw, 0.4 - xw};
  const Values v = evaluate(kT, kP, x, Kind::liquid, true), plain = evaluate(kT, kP, x, Kind::liquid, false);
  for (int i = 0; i < kN; ++i) {
    if (i == kWater) continue;
    EXPECT_EQ(v.ln_phi[i], plain.ln_phi[i]);
    EXPECT_EQ(v.dT[i], plain.dT[i]);
  }
  EXPECT_NEAR(v.ln_phi[kWater], std::log(psat(kT) / (kP * kLimit)), 1e-13);
}

TEST(WaterRules, LiquidAtAndAboveTheLimit) {
  for (const double xw : {1.0000001 * kLimit, 0.3, 0.9, 0.9998}) {
    const double rest = 1 - xw, x[kN] = {0.3 * rest, 0.3 * rest, xw, 0.4 * rest};
    const double modified[kN] = {0.3 * (1 - kLimit), 0.3 * (1 - kLimit), kLimit, 0.4 * (1 - kLimit)};
    const Values v = evaluate(kT, kP, x, Kind::liquid, true),
                 plain = evaluate(kT, kP, modified, Kind::liquid, false);
    for (int i = 0; i < kN; ++i) {
      if (i == kWater) continue;
      EXPECT_NEAR(v.ln_phi[i], plain.ln_phi[i] + std::log(modified[i]) - std::log(x[i]), 1e-11) << xw;
    }
    EXPECT_NEAR(v.ln_phi[kWater], std::log(psat(kT) / (kP * xw)), 1e-13);
  }
}

TEST(WaterRules, SolubilityOfOneAndAWaterRichPhase) {
  // Capped limit: below it always, the composition goes in as it is.
  const double x[kN] = {0.2, 0.1, 0.6, 0.1};
  const Values v = evaluate(kT, kP, x, Kind::liquid, true, 50.0),
               plain = evaluate(kT, kP, x, Kind::liquid, false);
  EXPECT_EQ(v.ln_phi[0], plain.ln_phi[0]);
  EXPECT_NEAR(v.ln_phi[kWater], std::log(psat(kT) / kP), 1e-13);
  // Above 0.9999 the fugacity routine is not called at all.
  const auto refuse =
      +[](double, double, const double*, MixtureRecord*, std::int32_t, std::int32_t, std::int32_t, double*,
          double*, double*, double*) KV_CALL -> StatusCode { return 77; };
  ModelRoutines routines{};
  routines.entry[KV_ROUTINE_FUGACITY - 1] = reinterpret_cast<void*>(static_cast<KvFugacityRoutine>(refuse));
  flash::HostRoutines host(&routines);
  Prepared p(kT, kP, false);
  flash::Model model;
  ASSERT_EQ(flash::make_model(kT, kP, context_with(p.m, p.data), &host, true, 0, p.arena, model), KV_OK);
  for (const double xw : {0.9999, 0.99991, 1.0}) {
    const double rich[kN] = {1 - xw, 0.0, xw, 0.0};
    double ln_phi[kN] = {}, Z = 0.0;
    const StatusCode status = flash::water_aware_fugacity(model, rich, Kind::liquid, ln_phi, {}, Z);
    EXPECT_EQ(status, xw > 0.9999 ? StatusCode{KV_OK} : flash::kHostStatus) << xw;
    EXPECT_EQ(std::exchange(host.status, KV_OK), xw > 0.9999 ? KV_OK : 77);
    if (status == KV_OK) {
      EXPECT_NEAR(ln_phi[kWater], std::log(psat(kT) / (kP * xw)), 1e-13);
    }
  }
}

TEST(WaterRules, DerivativesAgainstDifferences) {
  for (const double xw : {0.5 * kLimit, 2 * kLimit, 0.5, 0.99995}) {
    SCOPED_TRACE(xw);
    const double rest = 1 - xw, x[kN] = {0.3 * rest, 0.3 * rest, xw, 0.4 * rest};
    const Values v = evaluate(kT, kP, x, Kind::liquid, true);
    const double hT = 1e-3, hP = 1e-3;
    const Values T0 = evaluate(kT - hT, kP, x, Kind::liquid, true),
                 T1 = evaluate(kT + hT, kP, x, Kind::liquid, true);
    const Values P0 = evaluate(kT, kP - hP, x, Kind::liquid, true),
                 P1 = evaluate(kT, kP + hP, x, Kind::liquid, true);
    for (int i = 0; i < kN; ++i) {
      EXPECT_NEAR(v.dT[i], (T1.ln_phi[i] - T0.ln_phi[i]) / (2 * hT), 1e-7) << i;
      EXPECT_NEAR(v.dP[i], (P1.ln_phi[i] - P0.ln_phi[i]) / (2 * hP), 1e-7) << i;
    }
    for (int j = 0; j < kN; ++j) {
      const double h = 1e-4 * x[j];
      double low[kN], high[kN];
      for (int i = 0; i < kN; ++i) {
        low[i] = (x[i] - (i == j ? h : 0)) / (1 - h);
        high[i] = (x[i] + (i == j ? h : 0)) / (1 + h);
      }
      const Values a = evaluate(kT, kP, low, Kind::liquid, true),
                   b = evaluate(kT, kP, high, Kind::liquid, true);
      for (int i = 0; i < kN; ++i) {
        const double slope = (b.ln_phi[i] - a.ln_phi[i]) / (2 * h);
        EXPECT_NEAR(v.dn[i + j * kN], slope, 1e-6 * std::fmax(1.0, std::fabs(slope))) << i << ' ' << j;
      }
    }
  }
}

TEST(KValues, ClampsAndDerivatives) {
  const double x[kN] = {0.2, 0.3, 0.02, 0.48}, y[kN] = {0.8, 0.15, 0.01, 0.04};
  const auto at = [&](double T, double P, flash::KDerivatives d) {
    Prepared p(T, P, true);
    std::vector<double> K(kN), work(6 * kN);
    EXPECT_EQ(flash::k_values(p.model, x, y, K.data(), d, work.data()), KV_OK);
    return K;
  };
  double dT[kN], dP[kN], dx[kN * kN], dy[kN * kN];
  const auto K = at(kT, kP, {dT, dP, dx, dy});
  const Values lx = evaluate(kT, kP, x, Kind::liquid, true), ly = evaluate(kT, kP, y, Kind::gas, true);
  const double h = 1e-3;
  const auto T0 = at(kT - h, kP, {}), T1 = at(kT + h, kP, {}), P0 = at(kT, kP - h, {}), P1 = at(kT, kP + h, {});
  for (std::size_t i = 0; i < kN; ++i) {
    EXPECT_NEAR(K[i] / std::exp(lx.ln_phi[i] - ly.ln_phi[i]), 1.0, 1e-14);
    EXPECT_NEAR(dT[i], (T1[i] - T0[i]) / (2 * h), 1e-7);
    EXPECT_NEAR(dP[i], (P1[i] - P0[i]) / (2 * h), 1e-7);
    for (std::size_t j = 0; j < kN; ++j) {
      EXPECT_NEAR(dx[i + j * kN], K[i] * lx.dn[i + j * kN], 1e-12);
      EXPECT_NEAR(dy[i + j * kN], -K[i] * ly.dn[i + j * kN], 1e-12);
    }
  }
  // Pure water against a gas: the others are at the upper bound.
  const double water[kN] = {0, 0, 1, 0};
  Prepared p(kT, kP, true);
  double bounded[kN], work[6 * kN];
  ASSERT_EQ(flash::k_values(p.model, water, y, bounded, {}, work), KV_OK);
  EXPECT_NEAR(bounded[0] / 1e15, 1.0, 1e-14);
}

int root_status = 0;
void KV_CALL with_status(const double* c0, const double* c1, const double* c2, const double* c3, double* Z,
                         std::int32_t* status, const std::int32_t* phase, const double* u, const double* w,
                         const double* A, const double* B, const double* settings) {
  exports::kTools.cubic_root()(c0, c1, c2, c3, Z, status, phase, u, w, A, B, settings);
  *status = root_status;
}

// What the root solver says beside a root goes on with it: up to 50, and 201 and 202.
TEST(Fugacity, StatusesOfTheRootSolver) {
  const double x[kN] = {0.3, 0.3, 0.1, 0.3};
  for (const Kind kind : {Kind::gas, Kind::liquid, Kind::stable}) {
    Prepared p(kT, kP, false);
    double plain[kN], other[kN], Z = 0.0;
    ASSERT_EQ(flash::water_aware_fugacity(p.model, x, kind, plain, {}, Z), KV_OK);
    p.model.bracub = with_status;
    for (root_status = 0; root_status < 300; ++root_status) {
      const bool good = root_status <= 50 || root_status == 201 || root_status == 202;
      Z = 0.0;
      EXPECT_EQ(flash::water_aware_fugacity(p.model, x, kind, other, {}, Z), good ? KV_OK : root_status);
      if (root_status == 0 || root_status > 200) {
        for (int i = 0; i < kN && good; ++i) EXPECT_EQ(other[i], plain[i]) << root_status;
      }
    }
  }
}

}  // namespace
