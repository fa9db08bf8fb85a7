// The entropy and its slopes: temperature and pressure by differences of its own routine, mole numbers in
// closed form.
//
// [Rid82] C. J. F. Ridders, Advances in Engineering Software 4 (1982) 75-76: central differences with falling
//         steps, extrapolated, and ended when the error begins to grow.

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "eos/liquid_water.hpp"
#include "eos/properties.hpp"

namespace kestrune::eos {
namespace {

constexpr double kTemperatureStep = 5e-6;
// Relative difference of two pairs of points whose combination is good to about its square.
constexpr double kPairsAgree = 3e-5;
// Relative error at which the extrapolation ends early.
constexpr double kGoodEnough = 1e-12;
constexpr double kLargestStep = 0.01, kSmallestStep = 1e-8;

// The state itself: what the equation of state sees of it and says about it.
struct Middle {
  const Phase& p;
  Seen seen;
  StatusCode root = KV_OK;  // a point on another root is no neighbour
  Temperature t{};          // prepared where the equation of state sees anything
  double* work = nullptr;
  PhaseValues v{};
};

// The slopes in T and P leave liquid water out, which has them in closed form (in T without bound at its
// critical temperature).

// S at another temperature. Returns the status of the root or of the heat capacities.
StatusCode entropy_at(const Middle& m, double T, double& S) {
  Phase p = m.p;
  p.T = T;
  return support::with_arena<3, 60>(p.context.record->count, [&](support::Arena& arena) -> StatusCode {
    IdealGas ideal;
    const StatusCode status = ideal_gas(T, p.context, p.x, kIdealS, arena, ideal);
    if (!has_values(status)) return status;
    S = ideal_entropy(p.context.record->count, p.x, p.P, ideal);
    if (!(m.seen.share > 0.0)) return KV_OK;
    PhaseValues v;
    const StatusCode root = residual_at(p, m.seen.y, 7, arena, v);
    S += m.seen.share * v.S_res;
    return root;
  });
}

// dS/dT by four points; nearer ones where a root ends in between, and where the inner and the outer pair
// differ: beside the end of a root the slope has no bound.
StatusCode temperature_slope(const Middle& m, double& slope) {
  constexpr int kSteps = 4;
  double error = DBL_MAX, step = kTemperatureStep;
  for (int nearer = 0; nearer < kSteps; ++nearer, step /= 16.0) {
    const double h = step * m.p.T;
    double S[4];
    bool good = true;
    constexpr double at[4] = {-2.0, -1.0, 1.0, 2.0};
    for (int k = 0; k < 4 && good; ++k) good = entropy_at(m, m.p.T + at[k] * h, S[k]) == m.root;
    if (!good) continue;
    const double inner = (S[2] - S[1]) / (2.0 * h), outer = (S[3] - S[0]) / (4.0 * h);
    const double difference = std::fabs(inner - outer);
    if (difference < error) {
      error = difference;
      slope = (4.0 * inner - outer) / 3.0;
    }
    if (difference <= kPairsAgree * std::fabs(slope)) break;
  }
  if (!(error < DBL_MAX)) return KV_NOT_FINITE;
  if (m.seen.water >= 0) slope += m.seen.x_water * liquid_water_entropy(m.p.T, m.p.P).d_dT;
  return KV_OK;
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

// dS/dP: the residual part by differences, -R/P of the ideal gas, which liquid water has not.
StatusCode pressure_slope(const Middle& m, double& dP) {
  const Phase& p = m.p;
  const int n = p.context.record->count;
  double slope = 0.0, total = -m.seen.x_water;
  const auto S = [&](double step, double& value) {
    Phase q = p;
    q.P = p.P * (1.0 + step);
    PhaseValues v;
    const StatusCode root = residual(q, m.t, m.seen.y, 7, m.work, v);
    value = m.seen.share * v.S_res;
    return root == m.root;
  };
  if (m.seen.share > 0.0 && !slope_at_zero(S, slope)) return KV_NOT_FINITE;
  for (int i = 0; i < n; ++i) total += p.x[i] >= kSmallestFraction ? p.x[i] : 0.0;
  dP = (slope - kCalR * total) / p.P;
  return KV_OK;
}

/*
 * dS/dn_j = s_j - S. Partial values: of the ideal gas s_j - R ln P - R ln x_j; over it that of liquid water,
 * and of the others -d(RT ln phi_j)/dT = h_j/T - R ln phi_j in what the equation of state sees, where those
 * that lie beside water with nothing else are each alone.
 */
StatusCode mole_number_slopes(const Middle& m, IdealGas ideal, double S, support::Arena& arena, double* dn) {
  const Phase& p = m.p;
  const int n = p.context.record->count;
  if (m.seen.share > 0.0) {
    for (int i = 0; i < n; ++i) dn[i] = m.v.h_partial[i] / p.T - kResidualR * m.v.ln_phi[i];
  } else {
    const StatusCode status = pure_residuals(p, m.seen.water, arena, nullptr, dn);
    if (!has_values(status)) return status;
  }
  if (m.seen.water >= 0) dn[m.seen.water] = liquid_water_entropy(p.T, p.P).value;
  const double pressure = kCalR * std::log(p.P);
  ideal.h = ideal.cp = nullptr;
  bool good = true;
  for (int i = 0; i < n; ++i) {
    const bool absent = !(p.x[i] >= kSmallestFraction);
    if (absent && !has_values(ideal_gas_of(p.T, p.context, i, ideal))) ideal.s[i] = 0.0;
    dn[i] += ideal.s[i] - pressure - kCalR * std::log(absent ? kSmallestFraction : p.x[i]) - S;
    good &= std::fabs(dn[i]) <= DBL_MAX;
  }
  return good ? StatusCode{KV_OK} : StatusCode{KV_NOT_FINITE};
}

// What the equation of state says of the state itself.
void look_at_middle(Middle& m, bool with_n, support::Arena& arena) {
  const Phase& p = m.p;
  const int ld = support::padded(p.context.record->count);
  m.root = prepare(p.T, p.context, 1, arena, m.t);
  if (m.root != KV_OK) return;
  m.work = arena.take(3 * ld);
  if (with_n) {
    m.v.h_partial = arena.take(ld);
    m.v.ln_phi = arena.take(ld);
  }
  m.root = residual(p, m.t, m.seen.y, with_n ? 8 : 7, m.work, m.v);
}

}  // namespace

StatusCode entropy_derivatives(const Phase& p, int mask, WithDerivatives& out) {
  const int n = p.context.record->count;
  const bool with_n = (mask & KV_DERIV_N) != 0;
  return support::with_arena<5, 110>(n, [&](support::Arena& arena) -> StatusCode {
    IdealGas ideal;
    const StatusCode status = ideal_gas(p.T, p.context, p.x, kIdealS, arena, ideal);
    if (!has_values(status)) return status;
    Middle m{p, as_seen(p, arena.zeros(support::padded(n)))};
    if (m.seen.share > 0.0) look_at_middle(m, with_n, arena);
    if (!has_values(m.root)) return m.root;
    WithDerivatives d;
    d.value = ideal_entropy(n, p.x, p.P, ideal) + m.seen.share * m.v.S_res;
    if (m.seen.water >= 0) d.value += m.seen.x_water * liquid_water_entropy(p.T, p.P).value;
    d.dn = out.dn;
    StatusCode slope = KV_OK;
    if ((mask & KV_DERIV_T) != 0) slope = temperature_slope(m, d.dT);
    if (slope == KV_OK && (mask & KV_DERIV_P) != 0) slope = pressure_slope(m, d.dP);
    if (slope == KV_OK && with_n) slope = mole_number_slopes(m, ideal, d.value, arena, d.dn);
    if (slope != KV_OK) return slope;
    for (const double value : {d.value, d.dT, d.dP})
      if (!(std::fabs(value) <= DBL_MAX)) return KV_NOT_FINITE;
    out = d;
    return graver(status, m.root);
  });
}

}  // namespace kestrune::eos
