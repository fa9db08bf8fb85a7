// One call of FlashLLVatTP with its arrays, and everything that an answer has to be whatever the state: judged
// by ln phi of the exports alone.
#ifndef KESTRUNE_TESTS_THREE_PHASE_CALL_HPP
#define KESTRUNE_TESTS_THREE_PHASE_CALL_HPP

#include <algorithm>
#include <numeric>

#include "common/flash_call.hpp"

namespace kestrune::tests {

using Vector = std::vector<double>;

struct Phase {
  double amount;
  const Vector* x;
};

struct Answer {
  StatusCode status = -1;
  double beta = 0.0, V = 0.0;
  Vector xA, xB, y, KLL, KLV;
  std::vector<Phase> phases() const {
    std::vector<Phase> present;
    for (const Phase& p : {Phase{beta, &xA}, Phase{1.0 - beta - V, &xB}, Phase{V, &y}})
      if (p.amount != 0.0) present.push_back(p);
    return present;
  }
  bool operator==(const Answer&) const = default;
};

// options 1 hands over what start holds as an estimate.
inline Answer flash3(Mixture& m, double T, double P, const Vector& z, int options = 0,
                     const ModelRoutines* routines = nullptr, Answer start = {}) {
  Answer a = std::move(start);
  for (Vector* array : {&a.xA, &a.xB, &a.y, &a.KLL, &a.KLV}) array->resize(z.size(), -7.0);
  a.status = FlashLLVatTP(T, P, z.data(), &m.record, routines, options, &a.beta, &a.V, a.xA.data(), a.xB.data(),
                          a.y.data(), a.KLL.data(), a.KLV.data());
  return a;
}

inline void expect_same(const Answer& a, const Answer& b, double tolerance) {
  EXPECT_EQ(a.status, b.status);
  EXPECT_NEAR(a.beta, b.beta, tolerance);
  EXPECT_NEAR(a.V, b.V, tolerance);
  for (std::size_t i = 0; i < b.y.size(); ++i) {
    EXPECT_NEAR(a.y[i], b.y[i], tolerance) << i;
    if (a.V == 1.0) continue;  // the incipient liquid is free to be any
    EXPECT_NEAR(a.xA[i], b.xA[i], tolerance) << i;
    EXPECT_NEAR(a.xB[i], b.xB[i], tolerance) << i;
  }
}

inline double gibbs(Mixture& m, double T, double P, const std::vector<Phase>& phases) {
  double g = 0.0;
  for (const Phase& p : phases) {
    g += p.amount * phase_state(m, T, P, *p.x).gibbs;
    for (const double x : *p.x) g += x > 0.0 ? p.amount * x * std::log(x) : 0.0;
  }
  return g;
}

// Lowest tangent-plane distance that plain substitutions find from almost pure phases, above ln fugacities h.
inline double lowest_distance(Mixture& m, double T, double P, const Vector& z, const Vector& h) {
  double lowest = 0.0;
  for (std::size_t pure = 0; pure < z.size(); ++pure) {
    Vector W(z.size());
    if (!(z[pure] > 1e-15)) continue;
    for (std::size_t i = 0; i < z.size(); ++i) W[i] = z[i] > 1e-15 ? (i == pure ? 0.999 : 1e-3 * z[i]) : 0.0;
    for (int pass = 0; pass < 40; ++pass) {
      const double sum = std::accumulate(W.begin(), W.end(), 0.0);
      for (double& w : W) w /= sum;
      const PhaseState s = phase_state(m, T, P, W);
      double tm = 0.0;
      for (std::size_t i = 0; i < z.size(); ++i) {
        if (!(W[i] > 0.0)) continue;
        tm += W[i] * (std::log(W[i]) + s.ln_phi[i] - h[i]);
        W[i] = std::exp(h[i] - s.ln_phi[i]);
      }
      lowest = std::min(lowest, tm);
    }
  }
  return lowest;
}

// Part of the volume that molecules fill, but for a factor: by Peng and Robinson's co-volumes.
inline double packing(Mixture& m, double T, double P, const Vector& x) {
  double b = 0.0;
  for (int i = 0; i < m.n; ++i) b += x[static_cast<std::size_t>(i)] * m.at(i, KV_COL_TC) / m.at(i, KV_COL_PC);
  return b / phase_state(m, T, P, x).Z;
}

inline double density(Mixture& m, double T, double P, const Vector& x) {
  double rho = 0.0, d[3];
  EXPECT_EQ(LiquidDensity_PPR78(T, P, x.data(), &m.record, &rho, d, d + 1, d + 2), KV_OK);
  return rho;
}

// K = above/below within its bounds; of components that a phase does not hold, only the bounds.
inline void expect_ratios(const Vector& K, const Vector& above, const Vector& below) {
  for (std::size_t i = 0; i < K.size(); ++i) {
    const double ratio = above[i] == 0.0 || below[i] == 0.0 ? K[i] : above[i] / below[i];
    EXPECT_NEAR(K[i] / std::clamp(ratio, 1e-15, 1e15), 1.0, 1e-9) << i;
  }
}

// Marks of phases that are absent, order and ratios of those that are present.
inline void expect_conventions(Mixture& m, double T, double P, const Answer& a) {
  const Vector none(a.y.size(), 0.0), largest(a.y.size(), 1e15);
  const Vector& first = a.beta > 0.0 ? a.xA : a.xB;
  if (a.beta > 0.0) {
    expect_ratios(a.KLL, a.xA, a.xB);
    EXPECT_LE(density(m, T, P, a.xA), density(m, T, P, a.xB));
  } else {
    EXPECT_EQ(a.beta, 0.0);
    EXPECT_EQ(a.xA, none);
    EXPECT_EQ(a.KLL, a.V > 0.0 ? none : largest);
  }
  if (a.V == 0.0) {
    EXPECT_EQ(a.y, none);
    EXPECT_EQ(a.KLV, none);
  } else if (a.V == 1.0) {
    EXPECT_EQ(a.KLV, largest);
  } else {
    expect_ratios(a.KLV, a.y, first);
    EXPECT_LT(packing(m, T, P, a.y), packing(m, T, P, a.xB));
    EXPECT_LT(packing(m, T, P, a.y), packing(m, T, P, first));
  }
}

inline void expect_equilibrium(Mixture& m, double T, double P, Vector z, const Answer& a) {
  SCOPED_TRACE(testing::Message() << T << " K " << P << " atm z " << testing::PrintToString(z));
  ASSERT_EQ(a.status, KV_OK);
  const double total = std::accumulate(z.begin(), z.end(), 0.0);
  for (double& v : z) v /= total;
  const std::vector<Phase> phases = a.phases();
  std::vector<PhaseState> states;
  for (const Phase& p : phases) {
    EXPECT_GT(p.amount, 0.0);
    EXPECT_NEAR(std::accumulate(p.x->begin(), p.x->end(), 0.0), 1.0, 1e-12);
    states.push_back(phase_state(m, T, P, *p.x));
  }
  Vector h(z.size()), distance(3, phases.size() > 1 ? 0.0 : 1.0);  // between the phases
  for (std::size_t i = 0; i < z.size(); ++i) {
    double found = 0.0, most = -1.0;
    for (std::size_t j = 0; j < phases.size(); ++j) {
      const double x = (*phases[j].x)[i], amount = phases[j].amount * x;
      EXPECT_TRUE(x >= 0.0 && x <= 1.0) << x;
      found += amount;
      if (amount > most) h[i] = std::log(x) + states[j].ln_phi[i];
      most = std::max(most, amount);
      distance[j] += std::fabs(x - (*phases[(j + 1) % phases.size()].x)[i]);
    }
    EXPECT_NEAR(found, z[i], 1e-10 * z[i] + 2e-15) << "balance of component " << i;
    for (std::size_t j = 0; z[i] > 1e-15 && j < phases.size(); ++j) {
      // A fraction below 1e-15 is written as 0.
      const double x = (*phases[j].x)[i], expected = h[i] - states[j].ln_phi[i];
      EXPECT_NEAR(x > 0.0 ? std::log(x) : std::min(expected, std::log(1e-15)), expected, 1e-8)
          << "fugacity of component " << i << " in phase " << j;
    }
  }
  for (std::size_t j = 0; j < phases.size(); ++j) EXPECT_GT(distance[j], 1e-5) << "phases alike";
  expect_conventions(m, T, P, a);
  EXPECT_GT(lowest_distance(m, T, P, z, h), -1e-8);
}

}  // namespace kestrune::tests

#endif
