// One call of FlashLVatTP with its arrays, and ln phi of a phase through the exports.
#ifndef KESTRUNE_TESTS_FLASH_CALL_HPP
#define KESTRUNE_TESTS_FLASH_CALL_HPP

#include <gtest/gtest.h>

#include <cmath>

#include "common/mixture.hpp"

namespace kestrune::tests {

struct FlashResult {
  StatusCode status = -1;
  double beta = 0.0;
  std::vector<double> x, y, K;
  bool two_phases() const { return beta > 0.0 && beta < 1.0; }
  bool operator==(const FlashResult&) const = default;
};

// options 0 starts from what start holds.
inline FlashResult flash(Mixture& m, double T, double P, const std::vector<double>& z, int options = 1,
                         const ModelRoutines* routines = nullptr, FlashResult start = {}) {
  FlashResult r = std::move(start);
  for (auto* array : {&r.x, &r.y, &r.K}) array->resize(z.size(), 0.0);
  r.status =
      FlashLVatTP(T, P, z.data(), &m.record, routines, options, &r.beta, r.x.data(), r.y.data(), r.K.data());
  return r;
}

inline void expect_same(const FlashResult& a, const FlashResult& b, double tolerance) {
  EXPECT_EQ(a.status, b.status);
  EXPECT_NEAR(a.beta, b.beta, tolerance);
  ASSERT_EQ(a.x.size(), b.x.size());
  for (std::size_t i = 0; i < a.x.size(); ++i) {
    EXPECT_NEAR(a.x[i], b.x[i], tolerance) << "x " << i;
    EXPECT_NEAR(a.y[i], b.y[i], tolerance) << "y " << i;
    EXPECT_NEAR(std::log(a.K[i]), std::log(b.K[i]), 10 * tolerance) << "K " << i;
  }
}

struct PhaseState {
  std::vector<double> ln_phi;
  double Z = 0.0, gibbs = 0.0;  // gibbs: sum of x ln phi
};

// The phase asked for (KV_PHASE_GAS, KV_PHASE_LIQUID), or with 0 the one of lower Gibbs energy.
inline PhaseState phase_state(Mixture& m, double T, double P, const std::vector<double>& x, int phase = 0) {
  if (phase == 0) {
    PhaseState gas = phase_state(m, T, P, x, KV_PHASE_GAS), liquid = phase_state(m, T, P, x, KV_PHASE_LIQUID);
    return gas.gibbs <= liquid.gibbs ? gas : liquid;
  }
  PhaseState s;
  s.ln_phi.resize(x.size());
  std::vector<double> dP(x.size());
  auto* const routine = phase == KV_PHASE_GAS ? GasPhi_Derivatives_PPR78 : LiquidPhi_Derivatives_PPR78;
  EXPECT_EQ(routine(T, P, x.data(), &m.record, 2, KV_DERIV_P, s.ln_phi.data(), nullptr, dP.data(), nullptr),
            KV_OK);
  s.Z = 1.0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    s.Z += P * x[i] * dP[i];
    s.gibbs += x[i] * s.ln_phi[i];
  }
  return s;
}

// Conditions of the rich gas: two phases of all kinds, and one.
struct Condition {
  double T, P;
};
inline constexpr Condition kTwoPhases[] = {{220, 20}, {250, 40}, {200, 5}, {280, 60},
                                           {255, 80}, {180, 30}, {300, 2}};

}  // namespace kestrune::tests

#endif
