// The entropy differentiated by differences of its own routine.
//
// [Rid82] C. J. F. Ridders, Advances in Engineering Software 4 (1982) 75-76: central differences with falling
// steps,
//         extrapolated, and ended when the error begins to grow.

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "eos/properties.hpp"
#include "eos/water.hpp"
#include "frame/tools_bridge.hpp"

namespace kestrune::eos {
namespace {

constexpr double kTemperatureStep = 5e-6;
// Relative error at which the extrapolation ends early.
constexpr double kGoodEnough = 1e-12;
constexpr double kLargestStep = 0.01, kSmallestStep = 1e-8;

// The entropy without its ideal-gas part, and what it needs.
struct Probe {
  const Phase& p;
  int water;        // found once: the treatment does not change between the points of a difference
  StatusCode root;  // of the middle point; a point on another root is none
  double *x, *y, *work;
};

Probe make_probe(const Phase& p, int water, support::Arena& arena) {
  const int ld = support::padded(p.mixture->count);
  return {p, water, KV_OK, arena.zeros(ld), arena.zeros(ld), arena.take(3 * ld)};
}

/* share * S_res of what the equation of state sees, plus liquid water. Returns the status of the root. */
StatusCode residual_entropy(const Probe& probe, const Temperature& t, double P, const double* x, double& S,
                            bool with_water = true) {
  Phase p = probe.p;
  p.x = x;
  const Seen seen = as_seen(p, probe.water, probe.y);
  S = 0.0;
  StatusCode status = KV_OK;
  if (seen.share > 0.0) {
    PhaseValues v;
    if (!evaluate(t, frame::tools::bracub(), P, seen.y, p.kind, 7, nullptr, probe.work, v))
      return v.status == KV_NO_ROOT ? KV_NO_ROOT : KV_NOT_FINITE;
    status = v.status;
    S = seen.share * v.S_res;
  }
  if (probe.water >= 0 && with_water) S += x[probe.water] * liquid_water_entropy(t.T, P).value;
  return status;
}

// The same with n_j changed by a part of the one mole.
StatusCode residual_entropy_beside(const Probe& probe, const Temperature& t, int j, double step, double& S) {
  const int n = probe.p.mixture->count;
  const double scale = 1.0 / (1.0 + step);
  for (int i = 0; i < n; ++i) probe.x[i] = probe.p.x[i] * scale;
  probe.x[j] += step * scale;
  return residual_entropy(probe, t, probe.p.P, probe.x, S);
}

// S at another temperature, all but liquid water. Returns the status of the root or of the heat capacities.
StatusCode entropy_at(const Probe& probe, double T, double& S) {
  const Phase& p = probe.p;
  return support::with_arena<3, 60>(p.mixture->count, [&](support::Arena& arena) -> StatusCode {
    IdealGas ideal;
    const StatusCode status = ideal_gas(T, *p.mixture, p.x, kIdealS, arena, ideal);
    if (!has_values(status)) return status;
    Temperature t;
    const StatusCode prepared = prepare(T, *p.mixture, frame::state().group_data, 1, arena, t);
    if (prepared != KV_OK) return prepared;
    const StatusCode root = residual_entropy(probe, t, p.P, p.x, S, false);
    S += ideal_entropy(p.mixture->count, p.x, p.P, ideal);
    return root;
  });
}

// dS/dT by four points, nearer ones where a root ends in between. Liquid water, whose slope has no bound at its
// critical temperature, has it in closed form.
StatusCode temperature_slope(const Probe& probe, double& slope) {
  for (double step = kTemperatureStep; step > 1e-10; step /= 16.0) {
    const double h = step * probe.p.T;
    double S[4];
    bool good = true;
    constexpr double at[4] = {-2.0, -1.0, 1.0, 2.0};
    for (int k = 0; k < 4 && good; ++k) good = entropy_at(probe, probe.p.T + at[k] * h, S[k]) == probe.root;
    if (!good) continue;
    slope = (8.0 * (S[2] - S[1]) - (S[3] - S[0])) / (12.0 * h);
    if (probe.water >= 0) slope += probe.p.x[probe.water] * liquid_water_entropy(probe.p.T, probe.p.P).d_dT;
    return KV_OK;
  }
  return KV_NOT_FINITE;
}

// Slope of f(step, value) at 0; f returns false where it has no value. False without any estimate.
template <class Function>
bool slope_at_zero(Function&& f, double& slope) {
  constexpr int kLevels = 12;
  constexpr double kShrink = 2.0, kSquare = kShrink * kShrink;
  double row[kLevels] = {}, error = DBL_MAX;
  slope = 0.0;
  int level = 0;
  for (double h = kLargestStep; h >= kSmallestStep && level < kLevels; h /= kShrink) {
    double up, down;
    if (!f(h, up) || !f(-h, down)) {
      if (level > 0) break;
      h /= 8.0;  // beyond the end of a root: much nearer
      continue;
    }
    double before = row[0], factor = kSquare;
    row[0] = (up - down) / (2.0 * h);
    if (level == 0) slope = row[0];
    for (int k = 1; k <= level; ++k, factor *= kSquare) {
      const double here = row[k];
      row[k] = (factor * row[k - 1] - before) / (factor - 1.0);
      const double bound = std::max(std::fabs(row[k] - row[k - 1]), std::fabs(row[k] - before));
      if (bound <= error) {
        error = bound;
        slope = row[k];
      }
      before = here;
    }
    if (error <= kGoodEnough * std::fabs(slope)) return true;
    ++level;
  }
  return level > 0;
}

// dS/dn_j of the ideal gas: s_j - R ln P - R ln x_j less the mean. The mixing term has no difference quotient
// at small fractions.
void ideal_dn(const Phase& p, IdealGas ideal, double* dn) {
  const int n = p.mixture->count;
  const double mean = ideal_entropy(n, p.x, p.P, ideal);
  const double pressure = kCalR * std::log(p.P);
  ideal.h = ideal.cp = nullptr;
  for (int i = 0; i < n; ++i) {
    const bool absent = !(p.x[i] >= kSmallestFraction);
    if (absent && !has_values(ideal_gas_of(p.T, *p.mixture, i, ideal))) ideal.s[i] = 0.0;
    dn[i] = ideal.s[i] - pressure - kCalR * std::log(absent ? kSmallestFraction : p.x[i]) - mean;
  }
}

StatusCode mole_number_slopes(const Probe& probe, const Temperature& t, support::Arena& arena, double* dn) {
  if (probe.water >= 0 && !(probe.p.x[probe.water] < 1.0)) {  // water alone: a trace of j is j alone beside it
    double* S = arena.take(t.n);
    const StatusCode status = pure_residuals(probe.p, arena, nullptr, S);
    if (!has_values(status)) return status;
    const double water = probe.p.x[probe.water] * liquid_water_entropy(t.T, probe.p.P).value;
    for (int j = 0; j < t.n; ++j) dn[j] += j == probe.water ? 0.0 : S[j] - water;
    return KV_OK;
  }
  for (int j = 0; j < t.n; ++j) {
    double slope = 0.0;
    const auto S = [&](double step, double& value) {
      return residual_entropy_beside(probe, t, j, step, value) == probe.root;
    };
    if (!slope_at_zero(S, slope)) return KV_NOT_FINITE;
    dn[j] += slope;
  }
  return KV_OK;
}

StatusCode pressure_slope(const Probe& probe, const Temperature& t, double& dP) {
  const double P = probe.p.P;
  double slope = 0.0, total = 0.0;
  const auto S = [&](double step, double& value) {
    return residual_entropy(probe, t, P * (1.0 + step), probe.p.x, value) == probe.root;
  };
  if (!slope_at_zero(S, slope)) return KV_NOT_FINITE;
  for (int i = 0; i < t.n; ++i) total += probe.p.x[i] >= kSmallestFraction ? probe.p.x[i] : 0.0;
  dP = (slope - kCalR * total) / P;
  return KV_OK;
}

}  // namespace

StatusCode entropy_derivatives(const Phase& p, int mask, WithDerivatives& out) {
  const int n = p.mixture->count;
  return support::with_arena<5, 110>(n, [&](support::Arena& arena) -> StatusCode {
    IdealGas ideal;
    const StatusCode status = ideal_gas(p.T, *p.mixture, p.x, kIdealS, arena, ideal);
    if (!has_values(status)) return status;
    Probe probe = make_probe(p, liquid_water(p), arena);
    Temperature t;
    const StatusCode prepared = prepare(p.T, *p.mixture, frame::state().group_data, 1, arena, t);
    if (prepared != KV_OK) return prepared;
    double S = 0.0;
    probe.root = residual_entropy(probe, t, p.P, p.x, S);
    if (!has_values(probe.root)) return probe.root;
    WithDerivatives d;
    d.value = S + ideal_entropy(n, p.x, p.P, ideal);
    d.dn = out.dn;
    StatusCode slope = KV_OK;
    if ((mask & KV_DERIV_T) != 0) slope = temperature_slope(probe, d.dT);
    if (slope == KV_OK && (mask & KV_DERIV_P) != 0) slope = pressure_slope(probe, t, d.dP);
    if (slope == KV_OK && (mask & KV_DERIV_N) != 0) {
      ideal_dn(p, ideal, d.dn);
      slope = mole_number_slopes(probe, t, arena, d.dn);
    }
    if (slope != KV_OK) return slope;
    for (const double value : {d.value, d.dT, d.dP})
      if (!(std::fabs(value) <= DBL_MAX)) return KV_NOT_FINITE;
    out = d;
    return graver(status, probe.root);
  });
}

}  // namespace kestrune::eos
