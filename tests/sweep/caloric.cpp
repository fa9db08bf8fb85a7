#include "caloric.hpp"

#include <algorithm>
#include <cmath>

#include "reduced.hpp"

namespace kestrune::sweep {
namespace {

void fail(CaloricVerdict& verdict, const std::string& group, const std::string& reason) {
  verdict.outcome = Outcome::wrong;
  verdict.group = group;
  verdict.reason = reason;
}

bool close(double value, double expected) {
  return std::abs(value - expected) <= 1e-8 * std::max(1.0, std::abs(expected));
}

// The energy balance and the two values reported.
bool energies_agree(const CaloricQuestion& q, const CaloricAnswer& a, const PhaseValues& values,
                    CaloricVerdict& verdict) {
  const double beta = a.phases.beta;
  // A phase that is absent has no value (0), or that of the incipient phase.
  if (values.liquid_known && !close(a.liquid, values.liquid) && (beta < 1 || a.liquid != 0)) {
    fail(verdict, beta < 1 ? "value of the liquid" : "value of the absent liquid",
         text("the liquid has %.12g, reported %.12g", values.liquid, a.liquid));
    return false;
  }
  if (values.vapour_known && !close(a.vapour, values.vapour) && (beta > 0 || a.vapour != 0)) {
    fail(verdict, beta > 0 ? "value of the vapour" : "value of the absent vapour",
         text("the vapour has %.12g, reported %.12g", values.vapour, a.vapour));
    return false;
  }
  const double total = (beta < 1 ? (1 - beta) * a.liquid : 0) + (beta > 0 ? beta * a.vapour : 0);
  const double unit = 1.9872 * (q.quantity == Quantity::enthalpy ? a.T : 1);
  verdict.energy = std::abs(total - q.value) / std::max(unit, std::abs(q.value));
  if (verdict.energy <= caloric_balance_tolerance) return true;
  fail(verdict, "energy balance", text("the phases add up to %.12g of %.12g", total, q.value));
  return false;
}

// Whether two phases, the one at T and the other at its own, differ in composition or volume.
bool phases_apart(const Reduced& r, double P, double T, const Composition& a, double T_b,
                  const Composition& b) {
  if (largest_difference(a, b) > 1e-3) return true;
  Phase<double> first, second;
  evaluate(parameters_at<double>(r.components, T), P, r.part(a).data(), Root::stable, false, first);
  evaluate(parameters_at<double>(r.components, T_b), P, r.part(b).data(), Root::stable, false, second);
  return std::abs(first.Z / second.Z - 1) > 1e-3;
}

// The split of lowest Gibbs energy: the flash, and from what cuts the tangent plane of its liquid.
Split lowest_split(const Reduced& r, double T, double P) {
  const auto par = parameters_at<double>(r.components, T);
  Split best = flash(r.components, par, P, r.z);
  for (bool better = best.two_phase; better;) {
    better = false;
    const Plane plane = plane_of(par, P, best.x);
    for (const Trial& trial :
         search(par, P, plane, starting_points(r.components, par, P, r.z, plane), -1e-12, true).unstable) {
      const Split other = split_from(par, P, r.z, trial.w);
      if (!other.two_phase || !(other.gibbs < best.gibbs - 1e-13)) continue;
      best = other;
      better = true;
    }
  }
  return best;
}

}  // namespace

bool asks_gas(const Question& state, double T, const Answer& phases, bool vapour) {
  const bool pair = phases.beta > 0 && phases.beta < 1;
  if (state.free_water || (pair && largest_difference(phases.x, phases.y) < 1e-7)) return vapour;
  const Composition& w = vapour ? phases.y : phases.x;
  Phase<double> phase;
  evaluate(parameters_at<double>(*state.components, T), state.P, w.data(), Root::stable, false, phase);
  return phase.roots == 3 && phase.spread > 1e-8 ? phase.gas_side : vapour;
}

bool lies_in_jump(const CaloricQuestion& q, const std::function<double(double, const Answer&)>& value_at) {
  const Reduced reduced(q.state);
  const auto state_at = [&](double T) {
    const Split s = lowest_split(reduced, T, q.state.P);
    Answer a{0, s.two_phase ? s.beta : 0, Composition(q.state.z.size()), Composition(q.state.z.size()), {}};
    for (size_t i = 0; i < reduced.keep.size(); ++i) {
      a.x[reduced.keep[i]] = s.two_phase ? s.x[i] : reduced.z[i];
      a.y[reduced.keep[i]] = s.two_phase ? s.y[i] : reduced.z[i];
    }
    return a;
  };
  double low = 10, high = 3000;
  for (int k = 0; k < 60 && high - low > 1e-7 * high; ++k) {
    const double T = 0.5 * (low + high);
    (value_at(T, state_at(T)) < q.value ? low : high) = T;
  }
  const Answer below = state_at(low), above = state_at(high);
  const double jump = value_at(high, above) - value_at(low, below);
  const double unit = 1.9872 * (q.quantity == Quantity::enthalpy ? high : 1);
  const bool pairs = below.beta > 0 && below.beta < 1 && above.beta > 0 && above.beta < 1;
  return pairs && jump > 1e-3 * unit &&
         (phases_apart(reduced, q.state.P, low, below.x, high, above.x) ||
          phases_apart(reduced, q.state.P, low, below.y, high, above.y));
}

CaloricVerdict judge_caloric(const CaloricQuestion& q, const CaloricAnswer& a, const PhaseValues& values) {
  CaloricVerdict verdict;
  if (a.phases.status != 0 && a.phases.status != 1003) {
    fail(verdict, text("status %.0f", a.phases.status, 0), text("status %.0f, T %.10g", a.phases.status, a.T));
    return verdict;
  }
  if (!(a.T > 0) || !std::isfinite(a.T)) {
    fail(verdict, "not a number", text("T is %.17g", a.T, 0));
    return verdict;
  }
  Question state = q.state;
  state.T = a.T;
  Answer phases = a.phases;
  phases.status = 0;
  static_cast<Verdict&>(verdict) = judge(state, phases);
  if (!verdict.reason.empty()) {
    verdict.group = "phases at the temperature returned";
    return verdict;
  }
  if (!energies_agree(q, a, values, verdict)) return verdict;
  if (q.given) return verdict;
  verdict.apart = std::abs(a.T - q.state.T);
  if (!(verdict.apart <= caloric_temperature_tolerance)) {
    verdict.other_state = q.state.free_water;
    if (!verdict.other_state)
      fail(verdict, "temperature", text("T off by %.3g K, at %.17g", verdict.apart, a.T));
    verdict.apart = 0;
    return verdict;
  }
  if (!q.sharp && !(std::abs(phases.beta - q.beta) <= 1e-6))
    fail(verdict, "vapour fraction", text("beta %.12g instead of %.12g", phases.beta, q.beta));
  return verdict;
}

}  // namespace kestrune::sweep
