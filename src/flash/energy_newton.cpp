// Newton steps on the temperature, and on the amounts of two phases beside it, at a value of enthalpy or
// entropy. With g = ln f(vapour) - ln f(liquid), w = dg/dT and J = dg/dv, the amounts change by dv = -J^-1 (g +
// w dT), and the value by C dT + (h(vapour) - h(liquid)) dv, where h(vapour) - h(liquid) = -R T^2 w. [Mic99]
//
// [Mic99] M. L. Michelsen, Fluid Phase Equilib. 158-160 (1999) 617-626: state-function based flashes.

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "flash/energy_state.hpp"
#include "support/ldl.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

constexpr int kMostSteps = 25;
constexpr double kLargestStep = 0.2;  // of T, relative
constexpr double kFinished = 1e-7;    // relative step in T whose square is below rounding
constexpr double kAmounts = 1e-6;     // relative step in the amounts of a phase, likewise
constexpr double kSmallestPivot = 1e-15;
constexpr double kEdge = 0.9;  // part of the way to a vanishing amount

double bounded(double T, double step) {
  return std::clamp(step, -kLargestStep * T, kLargestStep * T);
}

// g and w of the components that are present.
void differences(const Energy& e, const EnergyState& s, double* g, double* w) {
  for (int i = 0; i < e.n; ++i) {
    const bool there = e.z[i] > 0.0 && e.l[i] > 0.0 && e.v[i] > 0.0;
    g[i] = there ? support::fast_log(s.y[i] / s.x[i]) + e.b.ln_phi[i] - e.a.ln_phi[i] : 0.0;
    w[i] = there ? e.b.dln_phi_dT[i] - e.a.dln_phi_dT[i] : 0.0;
  }
}

// Factors V L J in symmetric scaling; as in the isothermal flash.
bool factor(Energy& e, const EnergyState& s) {
  const double V = s.beta, L = 1.0 - s.beta;
  for (int i = 0; i < e.ld; ++i)
    e.scale[i] = i < e.n && e.z[i] > 0.0 ? std::sqrt(s.x[i] * s.y[i] / e.z[i]) : 0.0;
  double shift = 0.0;
  for (;;) {
    for (int j = 0; j < e.n; ++j) {
      const std::size_t at = static_cast<std::size_t>(j) * e.ld;
      for (int i = j & ~1; i < e.ld; ++i)
        e.system[at + i] = e.scale[j] * e.scale[i] * (L * e.b.dn[at + i] + V * e.a.dn[at + i] - 1.0);
      e.system[at + j] += 1.0 + shift;
    }
    if (support::ldl_factor(e.n, e.ld, e.system, kSmallestPivot)) return true;
    shift = shift > 0.0 ? 10.0 * shift : 1e-12;
    if (shift > 1.0) return false;
  }
}

// r becomes J^-1 r.
void solve(const Energy& e, const EnergyState& s, double* r) {
  const double VL = s.beta * (1.0 - s.beta);
  for (int i = 0; i < e.ld; ++i) r[i] *= VL * e.scale[i];
  support::ldl_solve(e.n, e.ld, e.system, r);
  for (int i = 0; i < e.ld; ++i) r[i] *= e.scale[i];
}

// The trivial solution: both phases are the feed.
bool are_one(const Energy& e, const EnergyState& s) {
  constexpr double kTrivial = 2e-5;
  for (int i = 0; i < e.n; ++i)
    if (e.z[i] > 0.0 && std::fabs(s.y[i] - s.x[i]) > kTrivial * s.x[i]) return false;
  return true;
}

void amounts(const Energy& e, const EnergyState& s) {
  for (int i = 0; i < e.n; ++i) {
    e.v[i] = s.beta * s.y[i];
    e.l[i] = (1.0 - s.beta) * s.x[i];
  }
}

// Amounts after a step; false when a phase is used up.
bool apply(Energy& e, const double* dv, double part, EnergyState& s) {
  double V = 0.0, L = 0.0;
  for (int i = 0; i < e.n; ++i) {
    const double d = std::clamp(part * dv[i], -kEdge * e.v[i], kEdge * e.l[i]);
    e.v[i] += d;
    e.l[i] -= d;
    V += e.v[i];
    L += e.l[i];
  }
  if (!(V > 1e-14 && L > 1e-14)) return false;
  s.beta = V / (V + L);
  for (int i = 0; i < e.n; ++i) {
    s.y[i] = e.v[i] / V;
    s.x[i] = e.l[i] / L;
  }
  return true;
}

}  // namespace

Local solve_one_phase(Energy& e, EnergyState& s) {
  EnergyBracket seen;
  int outside = 0;
  e.b.dn = nullptr;
  double T = s.T;
  for (int k = 0; k < kMostSteps; ++k) {
    e.status = prepare_caloric(e.model, T);
    if (e.status != KV_OK) return Local::failed;
    e.b.Z = 0.0;
    if (!phase_caloric(e.model, e.z, Kind::stable, e.b)) return Local::failed;
    const double f = e.b.value - e.call.wanted;
    seen.add(T, f);
    const double step = bounded(T, -f / e.b.slope);
    s.T = T;
    s.value = e.b.value;
    s.slope = e.b.slope;
    if (std::fabs(step) <= kFinished * T) {
      s.T = T + step;
      return Local::converged;
    }
    // The stable root may change between two steps: then halve.
    double next = T + step;
    if (seen.closed() && seen.should_halve(k, T, next)) {
      // From both sides the value lies beyond the other one: it is in the jump from one root to the other.
      outside += seen.inside(next) ? 0 : 1;
      next = 0.5 * (seen.low + seen.high);
      if (outside >= 2) {
        s.T = next;
        return Local::failed;
      }
    }
    if (seen.closed() && seen.high - seen.low < 1e-9 * T) return Local::failed;
    if (!(next > kColdest && next < kHottest)) return Local::failed;
    T = next;
  }
  return Local::failed;
}

Local solve_two_phases(Energy& e, EnergyState& s) {
  const double R = eos::kR * eos::kCalPerCm3Atm;
  const bool H = e.call.property == Property::enthalpy;
  double* const g = e.g;
  double* const w = e.w;
  e.a.dn = e.a_dn;
  e.b.dn = e.b_dn;
  amounts(e, s);
  e.a.Z = e.b.Z = 0.0;
  int beyond = 0;
  for (int k = 0; k < kMostSteps; ++k) {
    e.status = prepare_caloric(e.model, s.T);
    if (e.status != KV_OK) return Local::failed;
    if (!phase_caloric(e.model, s.x, Kind::liquid, e.a) || !phase_caloric(e.model, s.y, Kind::gas, e.b))
      return Local::failed;
    const double V = s.beta, L = 1.0 - V, T = s.T;
    s.liquid = e.a.value;
    s.vapour = e.b.value;
    s.value = L * s.liquid + V * s.vapour;
    differences(e, s, g, w);
    if (!factor(e, s)) return Local::failed;
    double* const jg = e.jg;
    double* const jw = e.jw;
    std::copy_n(g, e.ld, jg);
    std::copy_n(w, e.ld, jw);
    solve(e, s, jg);
    solve(e, s, jw);
    double hg = 0.0, hw = 0.0;
    for (int i = 0; i < e.n; ++i) {
      const double h = H ? R * T * T * w[i] : R * (T * w[i] + g[i]);  // liquid less vapour
      hg += h * jg[i];
      hw += h * jw[i];
    }
    const double C = L * e.a.slope + V * e.b.slope;
    s.slope = C + hw;
    const double dT_full = (e.call.wanted - s.value - hg) / s.slope;
    const double dT = bounded(T, dT_full);
    const double part = dT == dT_full ? 1.0 : dT / dT_full;
    double dV = 0.0, change = 0.0;  // of an amount, in parts of the smaller of its two
    for (int i = 0; i < e.n; ++i) {
      jg[i] = -(jg[i] + jw[i] * dT_full);
      dV += jg[i];
      if (e.scale[i] > 0.0) change = std::max(change, std::fabs(jg[i]) / std::min(e.v[i], e.l[i]));
    }
    const bool last = part == 1.0 && std::fabs(dT) <= kFinished * T && change <= kAmounts;
    if (!apply(e, jg, part, s)) return Local::vanished;
    s.T = T + dT;
    if (!(s.T > kColdest && s.T < kHottest)) return Local::failed;
    if (last) return are_one(e, s) ? Local::vanished : Local::converged;
    // Twice beyond the end of a phase: it is not coming back.
    beyond = V + dV < 0.0 || V + dV > 1.0 ? beyond + 1 : 0;
    if (beyond >= 2) return Local::vanished;
  }
  return Local::failed;
}

}  // namespace kestrune::flash
