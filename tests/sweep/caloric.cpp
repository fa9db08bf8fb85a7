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
  verdict.energy = std::abs(total - q.value) / std::max(1.0, std::abs(q.value));
  if (verdict.energy <= caloric_balance_tolerance) return true;
  fail(verdict, "energy balance", text("the phases add up to %.12g of %.12g", total, q.value));
  return false;
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
