// Newton's method on (17) of docs/method.md, enclosed, with the smaller of the two fractions as its unknown.

#include "flash/isothermal/rachford_rice.hpp"

#include <cmath>

namespace kestrune::flash {
namespace {

constexpr int kMaxPasses = 100;  // halvings to the last digit take 53

// g and -dg/d beta for the unknown t, the fraction of the phase whose coefficients are k.
struct Value {
  double g, slope;
};
Value value_at(int n, const double* z, const double* k, double t) {
  double g0 = 0.0, g1 = 0.0, s0 = 0.0, s1 = 0.0;
  int i = 0;
  for (; i + 1 < n; i += 2) {
    const double m0 = k[i] - 1.0, m1 = k[i + 1] - 1.0;
    const double q0 = m0 / (1.0 + t * m0), q1 = m1 / (1.0 + t * m1);
    g0 += z[i] * q0;
    g1 += z[i + 1] * q1;
    s0 += z[i] * q0 * q0;
    s1 += z[i + 1] * q1 * q1;
  }
  if (i < n) {
    const double m0 = k[i] - 1.0, q0 = m0 / (1.0 + t * m0);
    g0 += z[i] * q0;
    s0 += z[i] * q0 * q0;
  }
  return {g0 + g1, s0 + s1};
}

// The same with every coefficient inverted: the unknown is the fraction of the other phase.
Value value_at_other(int n, const double* z, const double* K, double t) {
  double g0 = 0.0, g1 = 0.0, s0 = 0.0, s1 = 0.0;
  int i = 0;
  for (; i + 1 < n; i += 2) {
    const double m0 = 1.0 - K[i], m1 = 1.0 - K[i + 1];
    const double q0 = m0 / (K[i] + t * m0), q1 = m1 / (K[i + 1] + t * m1);
    g0 += z[i] * q0;
    g1 += z[i + 1] * q1;
    s0 += z[i] * q0 * q0;
    s1 += z[i + 1] * q1 * q1;
  }
  if (i < n) {
    const double m0 = 1.0 - K[i], q0 = m0 / (K[i] + t * m0);
    g0 += z[i] * q0;
    s0 += z[i] * q0 * q0;
  }
  return {g0 + g1, s0 + s1};
}

// Newton inside (0, half]; a step that leaves the enclosure is a bisection.
template <class Function>
double enclosed_newton(Function value, double t, int& passes) {
  double lo = 0.0, hi = 0.5;
  for (; passes < kMaxPasses; ++passes) {
    const Value v = value(t);
    if (v.g > 0.0) {
      lo = t;
    } else {
      hi = t;
    }
    const double step = v.g / v.slope;
    const double next = t + step;
    if (next > lo && next < hi) {
      t = next;
      if (std::fabs(step) <= 1e-12 * t) return t;  // Newton's next change is far beyond the last bit
      continue;
    }
    if (std::fabs(step) <= 1e-15 * t) return t;
    t = 0.5 * (lo + hi);
    if (t <= lo || t >= hi) return t;
  }
  return t;
}

}  // namespace

PhaseFraction rachford_rice(int n, const double* z, const double* K, double guess) noexcept {
  double at_0 = 0.0, at_1 = 0.0;
  for (int i = 0; i < n; ++i) {
    at_0 += z[i] * (K[i] - 1.0);
    at_1 += z[i] * (K[i] - 1.0) / K[i];
  }
  PhaseFraction f;
  if (!(at_0 > 0.0)) return f;
  if (!(at_1 < 0.0)) {
    f.kind = Split::vapour;
    f.beta = 1.0;
    f.liquid = 0.0;
    return f;
  }
  f.kind = Split::two_phase;
  f.passes = 1;
  const bool guessed = guess > 0.0 && guess < 1.0;
  const Value middle = value_at(n, z, K, 0.5);
  if (middle.g <= 0.0) {
    // Start from the guess or from the chord, whichever side it is on.
    double start = guessed && guess < 0.5 ? guess : 0.5 * at_0 / (at_0 - middle.g);
    if (!(start > 0.0 && start < 0.5)) start = 0.25;
    f.beta = enclosed_newton([&](double t) { return value_at(n, z, K, t); }, start, f.passes);
    f.liquid = 1.0 - f.beta;
  } else {
    double start = guessed && guess > 0.5 ? 1.0 - guess : 0.5 * at_1 / (at_1 - middle.g);
    if (!(start > 0.0 && start < 0.5)) start = 0.25;
    f.liquid = enclosed_newton([&](double t) { return value_at_other(n, z, K, t); }, start, f.passes);
    f.beta = 1.0 - f.liquid;
  }
  return f;
}

}  // namespace kestrune::flash
