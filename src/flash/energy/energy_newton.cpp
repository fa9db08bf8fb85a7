// Newton steps on the temperature, and on the amounts of two phases beside it, at a value of enthalpy or
// entropy, (26) and (27) of docs/method.md. With g = ln f(vapour) - ln f(liquid), w = dg/dT and J = dg/dv,
// equal fugacities need J dv + w dT = -g, and the value changes by C dT - h dv, where h, liquid less vapour,
// is R T^2 w (of the entropy R (T w + g)). The temperature is eliminated, not the amounts: J + w h/C is
// positive definite also where the vapour fraction grows at one temperature and J is singular, as for single
// components and azeotropes. [Mic99]
//
// [Mic99] M. L. Michelsen, Fluid Phase Equilib. 158-160 (1999) 617-626: state-function based flashes.

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "flash/energy/energy_state.hpp"
#include "support/ldl.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

constexpr int kMostSteps = 25;            // on one phase, or two
constexpr double kLargestStep = 0.2;      // of T, relative
constexpr double kFinished = 1e-7;        // relative step in T whose square is below rounding
constexpr double kLeft = 1e-12;           // relative change of T that is left after a step of third order
constexpr double kAmounts = 1e-6;         // relative step in the amounts of a phase, likewise
constexpr double kSmallestPivot = 1e-15;  // of the system scaled to a diagonal of ones
constexpr double kEdge = 0.9;             // part of the way to a vanishing amount

double bounded(double T, double step) {
  return std::clamp(step, -kLargestStep * T, kLargestStep * T);
}

// e.gap and e.gap_dT of the components that are present; one at the bound of its distribution coefficient takes no part.
void differences(const Energy& e, const EnergyState& s) {
  for (int i = 0; i < e.n; ++i) {
    const double d = e.vapour.ln_phi[i] - e.liquid.ln_phi[i];
    const bool there =
        e.z[i] > 0.0 && e.in_liquid[i] > 0.0 && e.in_vapour[i] > 0.0 && std::fabs(d) < kLargestLogK;
    e.gap[i] = there ? support::fast_log(s.y[i] / s.x[i]) + d : 0.0;
    e.gap_dT[i] = there ? e.vapour.dln_phi_dT[i] - e.liquid.dln_phi_dT[i] : 0.0;
    e.scale[i] = there ? std::sqrt(s.x[i] * s.y[i] / e.z[i]) : 0.0;
  }
}

// Factors V L (J + c w w) in symmetric scaling, c = R T^2/Cp; as in the isothermal flash.
bool factor(Energy& e, const EnergyState& s, const double* w, double c) {
  const double V = s.beta, L = 1.0 - s.beta;
  double shift = 0.0;
  for (;;) {
    for (int j = 0; j < e.n; ++j) {
      const std::size_t at = static_cast<std::size_t>(j) * e.ld;
      const double wj = V * L * c * w[j];
      for (int i = support::block_start(j); i < e.ld; ++i)
        e.system[at + i] =
            e.scale[j] * e.scale[i] * (L * e.vapour.dn[at + i] + V * e.liquid.dn[at + i] - 1.0 + wj * w[i]);
      e.system[at + j] += 1.0 + shift;
    }
    if (support::ldl_factor(e.n, e.ld, e.system, kSmallestPivot)) return true;
    shift = shift > 0.0 ? 10.0 * shift : 1e-12;
    if (shift > 1.0) return false;
  }
}

// r becomes (J + c w w)^-1 r.
void solve(const Energy& e, const EnergyState& s, double* r) {
  const double VL = s.beta * (1.0 - s.beta);
  for (int i = 0; i < e.ld; ++i) r[i] *= VL * e.scale[i];
  support::ldl_solve(e.n, e.ld, e.system, r);
  for (int i = 0; i < e.ld; ++i) r[i] *= e.scale[i];
}

// The trivial solution: both phases are the feed.
bool are_one(const Energy& e, const EnergyState& s) {
  constexpr double kTrivial = 2e-5;  // relative difference of Z and of every fraction of phases that are one
  if (std::fabs(e.liquid.Z - e.vapour.Z) > kTrivial * e.vapour.Z) return false;
  for (int i = 0; i < e.n; ++i)
    if (e.z[i] > 0.0 && std::fabs(s.y[i] - s.x[i]) > kTrivial * s.x[i]) return false;
  return true;
}

void amounts(const Energy& e, const EnergyState& s) {
  for (int i = 0; i < e.n; ++i) {
    e.in_vapour[i] = s.beta * s.y[i];
    e.in_liquid[i] = (1.0 - s.beta) * s.x[i];
  }
}

// Largest change of an amount by a step dv, in parts of the smaller of its two.
double largest_change(const Energy& e, const double* dv) {
  double change = 0.0;
  for (int i = 0; i < e.n; ++i)
    if (e.scale[i] > 0.0)
      change = std::max(change, std::fabs(dv[i]) / std::min(e.in_vapour[i], e.in_liquid[i]));
  return change;
}

// Amounts after a step; false when a phase is used up.
bool apply(Energy& e, const double* dv, double part, EnergyState& s) {
  double V = 0.0, L = 0.0;
  for (int i = 0; i < e.n; ++i) {
    const double d = std::clamp(part * dv[i], -kEdge * e.in_vapour[i], kEdge * e.in_liquid[i]);
    e.in_vapour[i] += d;
    e.in_liquid[i] -= d;
    V += e.in_vapour[i];
    L += e.in_liquid[i];
  }
  if (!(V > 1e-14 && L > 1e-14)) return false;
  // Those at the bound of their coefficient follow it.
  for (int i = 0; i < e.n; ++i) {
    const double d = e.liquid.ln_phi[i] - e.vapour.ln_phi[i];
    if (std::fabs(d) < kLargestLogK || !(e.z[i] > 0.0)) continue;
    double& less = d > 0.0 ? e.in_liquid[i] : e.in_vapour[i];
    less = e.z[i] * kSmallestK * (d > 0.0 ? L / V : V / L);
    (d > 0.0 ? e.in_vapour[i] : e.in_liquid[i]) = e.z[i] - less;
  }
  s.beta = V / (V + L);
  for (int i = 0; i < e.n; ++i) {
    s.y[i] = e.in_vapour[i] / V;
    s.x[i] = e.in_liquid[i] / L;
  }
  return true;
}

}  // namespace

Local solve_one_phase(Energy& e, EnergyState& s) {
  EnergyBracket seen;
  int outside = 0;
  e.vapour.dn = nullptr;
  double T = s.T;
  for (int k = 0; k < kMostSteps; ++k) {
    e.status = prepare_caloric(e.model, T);
    if (e.status != KV_OK) return Local::failed;
    e.vapour.Z = 0.0;
    if (!phase_caloric(e.model, e.z, Kind::stable, e.vapour) || !(e.vapour.slope > 0.0)) return Local::failed;
    const double f = e.vapour.value - e.call.wanted;
    seen.add(T, f);
    // The change of the slope since the last step makes the step one of third order.
    const double change = k > 0 ? (e.vapour.slope - s.slope) / (T - s.T) : 0.0;
    const double root = e.vapour.slope * e.vapour.slope - 2.0 * change * f;
    const bool curved = k > 0 && std::fabs(e.vapour.slope - s.slope) < 0.3 * e.vapour.slope && root > 0.0;
    const double step =
        bounded(T, curved ? -2.0 * f / (e.vapour.slope + std::sqrt(root)) : -f / e.vapour.slope);
    const double left = curved ? step * step * (T - s.T) / (T * T * T) : 1.0;  // of the relative step after it
    s.T = T;
    s.value = e.vapour.value;
    s.slope = e.vapour.slope;
    if (std::fabs(step) <= kFinished * T || std::fabs(left) <= kLeft) {
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

bool equalise(Energy& e, EnergyState& s) {
  e.liquid.dn = e.liquid_dn;
  e.vapour.dn = e.vapour_dn;
  amounts(e, s);
  e.liquid.Z = e.vapour.Z = 0.0;
  e.status = prepare_caloric(e.model, s.T);
  for (int k = 0; k < kMostSteps && e.status == KV_OK; ++k) {
    if (!phase_caloric(e.model, s.x, Kind::liquid, e.liquid) ||
        !phase_caloric(e.model, s.y, Kind::gas, e.vapour))
      return false;
    differences(e, s);
    if (!factor(e, s, e.gap_dT, 0.0)) return false;
    double* const dv = e.step;
    for (int i = 0; i < e.ld; ++i) dv[i] = -e.gap[i];
    solve(e, s, dv);
    const double change = largest_change(e, dv);
    if (!apply(e, dv, 1.0, s)) return false;
    if (change <= kAmounts) return !are_one(e, s);
  }
  return false;
}

namespace {

// Both phases of s at its temperature, and the value of the whole. False: no usable root, or heat capacities that are
// not positive.
bool evaluate_both(Energy& e, EnergyState& s) {
  e.status = prepare_caloric(e.model, s.T);
  if (e.status != KV_OK) return false;
  if (!phase_caloric(e.model, s.x, Kind::liquid, e.liquid) ||
      !phase_caloric(e.model, s.y, Kind::gas, e.vapour) || !(e.liquid.slope > 0.0 && e.vapour.slope > 0.0))
    return false;
  s.liquid = e.liquid.value;
  s.vapour = e.vapour.value;
  s.value = (1.0 - s.beta) * s.liquid + s.beta * s.vapour;
  return true;
}

/*
 * Newton's step from the phases of s, which have been evaluated, (26) of docs/method.md: the change of the amounts of
 * the vapour in e.step, their sum dV, that of the temperature dT; and the slope of the value along the equilibrium, s.slope.
 * False: no factors.
 */
bool newton_step(Energy& e, EnergyState& s, double& dT, double& dV) {
  const double R = eos::kResidualR, T = s.T;
  const bool H = e.call.property == Property::enthalpy;
  const double *const g = e.gap, *const w = e.gap_dT;
  double* const dv = e.step;  // the negative of the change, until the end
  double* const along = e.along_T;
  const double C = (1.0 - s.beta) * e.liquid.slope + s.beta * e.vapour.slope, rest = e.call.wanted - s.value;
  const double from_w = H ? R * T * T : R * T, from_g = H ? 0.0 : R;  // h = from_w w + from_g g
  differences(e, s);
  if (!factor(e, s, w, from_w / C)) return false;
  for (int i = 0; i < e.ld; ++i) dv[i] = g[i] + w[i] * rest / C;
  std::copy_n(w, e.ld, along);
  solve(e, s, dv);
  solve(e, s, along);
  double ww = 0.0, gw = 0.0, gv = 0.0;
  for (int i = 0; i < e.n; ++i) {
    ww += w[i] * along[i];
    gw += g[i] * along[i];
    gv += g[i] * dv[i];
  }
  // The part of h with g is of rank one and not symmetric.
  const double correction = from_g / C * gv / (1.0 + from_g / C * gw);
  const double share = 1.0 - from_w / C * ww;  // of the heat that changes the temperature
  s.slope = share > 1e-12 ? C / share : 1e12 * C;
  dT = rest / C;
  for (int i = 0; i < e.n; ++i) {
    dv[i] -= correction * along[i];
    dT -= (from_w * w[i] + from_g * g[i]) / C * dv[i];
  }
  dV = 0.0;
  for (int i = 0; i < e.n; ++i) {
    dv[i] = -dv[i];
    dV += dv[i];
  }
  return true;
}

}  // namespace

Local solve_two_phases(Energy& e, EnergyState& s) {
  e.liquid.dn = e.liquid_dn;
  e.vapour.dn = e.vapour_dn;
  amounts(e, s);
  e.liquid.Z = e.vapour.Z = 0.0;
  int beyond = 0;
  for (int k = 0; k < kMostSteps; ++k) {
    double dT_full = 0.0, dV = 0.0;
    if (!evaluate_both(e, s) || !newton_step(e, s, dT_full, dV)) return Local::failed;
    const double V = s.beta, T = s.T, dT = bounded(T, dT_full);
    const double part = dT == dT_full ? 1.0 : dT / dT_full;
    const bool last = part == 1.0 && std::fabs(dT) <= kFinished * T && largest_change(e, e.step) <= kAmounts;
    if (!apply(e, e.step, part, s)) return Local::vanished;
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
