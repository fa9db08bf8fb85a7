#include "judge.hpp"

#include <algorithm>
#include <cmath>

#include "reduced.hpp"

namespace kestrune::sweep {
namespace {

void judge_single(const Question& question, const Answer& answer, const Reduced& r, Verdict& verdict) {
  const Composition& reported = answer.beta == 0 ? r.x : r.y;
  if (largest_difference(reported, r.z) > balance_tolerance) {
    verdict.reason = "the only phase is not the feed";
    return;
  }
  const Plane plane = plane_of(r.par, question.P, r.z);
  const auto starts = starting_points(r.components, r.par, question.P, r.z, plane);
  const SearchResult found = search(r.par, question.P, plane, starts, -tpd_tolerance, false);
  verdict.tpd = found.lowest;
  if (!found.unstable.empty()) {
    verdict.reason = text("one phase reported, the feed is unstable (tpd %.3g)", found.lowest);
    return;
  }
  const Phase<long double> phase = exact_phase(r, question.P, r.z, Root::stable);
  const double ratio = static_cast<double>(phase.Z * 82.057L * question.T / (question.P * phase.b));
  const bool undecided =
      (phase.roots == 3 && phase.spread < 1e-8L) || std::abs(ratio / vapour_volume_ratio - 1) < 1e-5;
  if (!undecided && (ratio > vapour_volume_ratio) != (answer.beta == 1)) {
    verdict.reason = text("a single phase of v/b %.6g has beta %g", ratio, answer.beta);
    return;
  }
  verdict.outcome = Outcome::single_phase;
}

// A two-phase answer of a state with more phases: no other split may have a lower Gibbs energy.
void compare_splits(const Question& question, const Answer& answer, const Reduced& r, const Plane& plane,
                    const std::vector<Composition>& starts, Verdict& verdict) {
  const double P = question.P;
  const double reported = gibbs_of(r.par, P, answer.beta, r.x, r.y);
  double lowest = gibbs_of(r.par, P, 0, r.z, r.z);
  const Plane feed = plane_of(r.par, P, r.z);
  SearchResult trials =
      search(r.par, P, feed, starting_points(r.components, r.par, P, r.z, feed), -1e-10, true);
  for (const Trial& trial : search(r.par, P, plane, starts, -tpd_tolerance, true).unstable)
    trials.unstable.push_back(trial);
  for (const Trial& trial : trials.unstable) {
    const Split split = split_from(r.par, P, r.z, trial.w);
    if (split.two_phase) lowest = std::min(lowest, split.gibbs);
  }
  if (reported > lowest + gibbs_tolerance) {
    verdict.reason =
        text("unstable (tpd %.3g) and another split is lower by %.3g RT", verdict.tpd, reported - lowest);
    return;
  }
  verdict.outcome = Outcome::three_phase_state;
}

void judge_pair(const Question& question, const Answer& answer, const Reduced& r, Verdict& verdict) {
  if (!phases_agree(question, answer, r, verdict)) return;
  // The tangent plane of every component comes from the phases in proportion to where it is.
  const Plane liquid = plane_of(r.par, question.P, r.x), vapour = plane_of(r.par, question.P, r.y);
  Plane plane{Composition(r.components.n), {r.x, r.y}};
  for (int i = 0; i < r.components.n; ++i) {
    const double share = std::clamp(answer.beta * r.y[i] / r.z[i], 0.0, 1.0);
    plane.d[i] = (1 - share) * liquid.d[i] + share * vapour.d[i];
  }
  const auto starts = starting_points(r.components, r.par, question.P, r.z, plane);
  const SearchResult found = search(r.par, question.P, plane, starts, -tpd_tolerance, false);
  verdict.tpd = found.lowest;
  if (found.unstable.empty()) {
    verdict.outcome = Outcome::two_phase;
  } else {
    compare_splits(question, answer, r, plane, starts, verdict);
  }
}

}  // namespace

std::string check_balance(const Question& question, const Answer& answer, double& residual) {
  if (!(answer.beta >= 0 && answer.beta <= 1)) return text("beta is %.17g", answer.beta);
  double sum_x = 0, sum_y = 0, sum_z = 0;
  for (double v : question.z) sum_z += v;
  for (int i = 0; i < question.components->n; ++i) {
    if (!(answer.x[i] >= 0) || !(answer.y[i] >= 0)) return "a mole fraction is negative or not a number";
    sum_x += answer.x[i];
    sum_y += answer.y[i];
    const double left = question.z[i] / sum_z - (1 - answer.beta) * answer.x[i] - answer.beta * answer.y[i];
    residual = std::max(residual, std::abs(left));
    const bool present = (answer.beta < 1 && answer.x[i] > 0) || (answer.beta > 0 && answer.y[i] > 0);
    if (question.z[i] == 0 && present) return "a component that the feed lacks appears";
    if (!question.free_water && question.z[i] > 0 &&
        ((answer.beta < 1 && answer.x[i] == 0) || (answer.beta > 0 && answer.y[i] == 0)))
      return "a component of the feed is missing in a phase";
  }
  if (residual > balance_tolerance) return text("material balance off by %.3g", residual);
  if (answer.beta < 1 && std::abs(sum_x - 1) > balance_tolerance) return text("sum of x is 1 %+.3g", sum_x - 1);
  if (answer.beta > 0 && std::abs(sum_y - 1) > balance_tolerance) return text("sum of y is 1 %+.3g", sum_y - 1);
  return {};
}

Verdict judge_equation_of_state(const Question& question, const Answer& answer) {
  Verdict verdict;
  verdict.reason = check_balance(question, answer, verdict.balance);
  if (!verdict.reason.empty()) return verdict;
  const Reduced reduced(question, answer);
  if (answer.beta == 0 || answer.beta == 1) {
    judge_single(question, answer, reduced, verdict);
  } else {
    judge_pair(question, answer, reduced, verdict);
  }
  return verdict;
}

Verdict judge(const Question& question, const Answer& answer) {
  if (answer.status != 0) {
    Verdict verdict;
    verdict.outcome = Outcome::failed;
    verdict.reason = text("status %g", answer.status);
    return verdict;
  }
  return question.free_water ? judge_free_water(question, answer) : judge_equation_of_state(question, answer);
}

}  // namespace kestrune::sweep
