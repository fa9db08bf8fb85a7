#include "three_given.hpp"

#include <algorithm>
#include <cmath>

namespace kestrune::sweep {
namespace {

void blame(ThreeVerdict& verdict, const std::string& group, const std::string& reason) {
  verdict.group = group;
  verdict.reason = reason;
}

bool values_agree(const ThreeCaloricAnswer& a, const ThreeValues& values, ThreeVerdict& verdict) {
  const double shares[] = {a.phases.beta, a.phases.rest(), a.phases.V};
  const char* const names[] = {"value of liquid A", "value of liquid B", "value of the vapour"};
  for (int k = 0; k < 3; ++k) {
    if (shares[k] == 0) continue;
    const double expected = values.value[k];
    if (values.known[k] && std::abs(a.values[k] - expected) <= 1e-8 * std::max(1.0, std::abs(expected)))
      continue;
    blame(verdict, names[k], text("the phase has %.12g, reported %.12g", expected, a.values[k]));
    return false;
  }
  return true;
}

// What is wrong with a phase that is about to appear beside those of the answer; empty when nothing is.
std::string incipient_fault(const Question& question, const Reduced& r, const std::vector<PresentPhase>& phases,
                            char name, const Composition& full) {
  double sum = 0;
  for (double w : full) {
    if (!(w >= 0)) return "incipient phase: fractions";
    sum += w;
  }
  if (!(std::abs(sum - 1) <= balance_tolerance)) return "incipient phase: sum";
  const PresentPhase incipient = phase_of(question, r, name, 0, full);
  if (fugacity_difference(common_plane(r, phases), {incipient}) > fugacity_tolerance)
    return "incipient phase: fugacities";
  for (const PresentPhase& p : phases) {
    const double off = static_cast<double>(p.state.Z - incipient.state.Z);
    if (largest_difference(p.w, incipient.w) < 1e-7 && std::abs(off) < 1e-7)
      return "incipient phase: no other one";
    const double looser =
        name == 'V' ? incipient.volume_ratio / p.volume_ratio : p.volume_ratio / incipient.volume_ratio;
    if (looser < 1 - 1e-9) return "incipient phase: order";
  }
  return {};
}

}  // namespace

GivenVerdict judge_three_caloric(const ThreeCaloricQuestion& q, const ThreeCaloricAnswer& a,
                                 const ThreeValues& values) {
  GivenVerdict verdict;
  Question state = q.state;
  state.T = a.T;
  if (a.phases.status == 0 && !(a.T > 0 && a.T < 1e5)) {
    blame(verdict, "not a temperature", text("T is %.17g", a.T));
    return verdict;
  }
  static_cast<ThreeVerdict&>(verdict) = judge_three(state, a.phases);
  if (!verdict.group.empty() || !values_agree(a, values, verdict)) return verdict;
  const double shares[] = {a.phases.beta, a.phases.rest(), a.phases.V};
  double total = 0;
  for (int k = 0; k < 3; ++k) total += shares[k] == 0 ? 0 : shares[k] * a.values[k];
  verdict.energy = std::abs(total - q.value) / std::max(1.0, std::abs(q.value));
  if (!(verdict.energy <= caloric_balance_tolerance)) {
    blame(verdict, "energy balance", text("the phases add up to %.12g of %.12g", total, q.value));
    return verdict;
  }
  verdict.apart = std::max({0.0, q.T_low - a.T, a.T - q.T_high});
  if (verdict.apart <= caloric_temperature_tolerance) return verdict;
  verdict.other = verdict.energy <= 1e-9 && verdict.apart < 1e-3;
  if (!verdict.other) blame(verdict, "temperature", text("T off by %.3g K, at %.17g", verdict.apart, a.T));
  return verdict;
}

ThreeVerdict judge_three_point(const Question& question, double W, const ThreePoint& point) {
  ThreeAnswer answer = point.phases;
  ThreeVerdict verdict;
  if (answer.status == 0 && !(point.found > 0 && point.found < 1e5)) {
    blame(verdict, "not a temperature or pressure", text("found %.17g", point.found));
    return verdict;
  }
  answer.V = W;
  verdict = judge_three(question, answer, false);  // what has the fraction asked for is called the vapour
  if (!verdict.group.empty() || (W > 0 && W < 1)) return verdict;
  const Reduced r(question);
  const auto phases = present_phases(question, r, answer);
  std::string fault = incipient_fault(question, r, phases, W == 0 ? 'V' : 'B', W == 0 ? answer.y : answer.b);
  if (!fault.empty() && W == 1 && incipient_fault(question, r, phases, 'A', answer.a).empty()) fault = "";
  if (!fault.empty()) blame(verdict, fault, fault);
  return verdict;
}

}  // namespace kestrune::sweep
