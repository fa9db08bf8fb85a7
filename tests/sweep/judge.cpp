#include "judge.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace kestrune::sweep {
namespace {

std::string text(const char* format, double a, double b = 0) {
  char buffer[200];
  std::snprintf(buffer, sizeof buffer, format, a, b);
  return buffer;
}

// The question without the components that the feed lacks.
struct Reduced {
  Components components;
  Composition z, x, y;
  Parameters<double> par;
  Parameters<long double> exact;
  std::vector<int> keep;

  Reduced(const Question& question, const Answer& answer) {
    for (int i = 0; i < question.components->n; ++i) {
      if (question.z[i] > 0) keep.push_back(i);
    }
    components = subset(*question.components, keep);
    double total = 0;
    for (double v : question.z) total += v;
    for (int i : keep) {
      z.push_back(question.z[i] / total);
      x.push_back(answer.x[i]);
      y.push_back(answer.y[i]);
    }
    exact = parameters_at<long double>(components, question.T);
    par.T = question.T;
    par.n = components.n;
    par.a.assign(exact.a.begin(), exact.a.end());
    par.b.assign(exact.b.begin(), exact.b.end());
  }
};

double largest_difference(const Composition& x, const Composition& y) {
  double size = 0;
  for (size_t i = 0; i < x.size(); ++i) size = std::max(size, std::abs(x[i] - y[i]));
  return size;
}

Phase<long double> exact_phase(const Reduced& r, double P, const Composition& w, Root root) {
  const std::vector<long double> fractions(w.begin(), w.end());
  Phase<long double> phase;
  evaluate(r.exact, static_cast<long double>(P), fractions.data(), root, false, phase);
  return phase;
}

// Whether a fugacity difference is owed to the bound on K: K stands at the bound, the true one beyond it.
bool at_bound(double K, double true_ln_k) {
  const double bound = 34.538776394910684;
  return (K <= 1.000001e-15 && true_ln_k < -bound + 1e-6) || (K >= 0.999999e15 && true_ln_k > bound - 1e-6);
}

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

// Equal fugacities, two different phases, the label. Returns false with a reason when one is off.
bool phases_agree(const Question& question, const Answer& answer, const Reduced& r, Verdict& verdict) {
  const double apart = largest_difference(r.x, r.y);
  const bool same = apart < 1e-7;
  const Phase<long double> liquid = exact_phase(r, question.P, r.x, same ? Root::smallest : Root::stable);
  const Phase<long double> vapour = exact_phase(r, question.P, r.y, same ? Root::largest : Root::stable);
  if (same && std::abs(static_cast<double>(liquid.Z - vapour.Z)) < 1e-7) {
    verdict.reason = text("two identical phases (max |x - y| %.3g)", apart);
    return false;
  }
  for (int i = 0; i < r.components.n; ++i) {
    const double true_ln_k = static_cast<double>(liquid.ln_phi[i] - vapour.ln_phi[i]);
    const double difference = std::abs(std::log(r.y[i]) - std::log(r.x[i]) - true_ln_k);
    if (difference > fugacity_tolerance && at_bound(r.y[i] / r.x[i], true_ln_k)) {
      ++verdict.clamped;
      continue;
    }
    verdict.fugacity = std::max(verdict.fugacity, std::isfinite(difference) ? difference : 1e300);
  }
  if (verdict.fugacity > fugacity_tolerance) {
    verdict.reason = text("fugacities differ by %.3g in ln f", verdict.fugacity);
    return false;
  }
  if (vapour.Z < liquid.Z - 1e-9L) {
    verdict.reason = text("beta %.6g counts the phase of smaller Z", answer.beta);
    return false;
  }
  return true;
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
