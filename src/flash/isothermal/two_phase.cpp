// The two-phase iteration as a whole: substitution, Newton's method, the polish of what met CRIT, and what leads
// from one to the other. [Mic82b] M. L. Michelsen, Fluid Phase Equilib. 9 (1982) 21-40.

#include "flash/isothermal/two_phase.hpp"

#include <algorithm>
#include <cmath>
#include <optional>

#include "flash/isothermal/two_phase_steps.hpp"
#include "flash/trace_flash.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

constexpr double kLog10e = 0.43429448190325182;
constexpr int kPassesAfterSwitch = 50;
constexpr int kDecreasesBeforeSwitch = 3;
constexpr double kSlowest = 0.999, kFastest = 0.001;  // reduction factors that a line fit is believed for
constexpr double kSmallestRelaxation = 0.1;
// The answer owed: ln fugacities equal to this. A Newton step squares what is left.
constexpr double kFinished = 1e-10, kOneStepAway = 3e-6;
// Error below which Newton's method begins where it is decided on, not after one more substitution.
constexpr double kNear = 0.1;
// A second step by one matrix is taken without looking when it is to leave no more than this.
constexpr double kForeseen = 1e-11;
// Of ln K: phases that are so close have the same derivatives, where the curvature of an answer is asked for.
constexpr double kSamePhases = 0.01;
constexpr double kOwed = 1e-8;
constexpr int kPolishSteps = 60;
constexpr int kStalledSteps = 6;  // in a row that leave more than half: a host's coefficients end there
constexpr int kPlainSteps = 6, kMaxTakenBack = 200;
constexpr double kRisen = 1e-11;         // of a Gibbs energy, by more than rounding
constexpr double kShortestPart = 1e-4;   // of a Newton step that is still cut
constexpr double kTrivialLogK2 = 1e-11;  // sum of z (ln K)^2 of two phases that are one

// Where the iteration stands.
enum class State {
  substitution,  // the global method, which changes over by its rules
  newton,        // quasi-linearisation, until CRIT is met
  polish         // CRIT is met: to full precision
};

// What the rules of the global method remember.
struct Rules {
  double errors[3] = {1e300, 1e300, 1e300};  // the last three, latest last
  int decreases = 0;
  double relaxation = 1.0;
  bool damped = false;  // the error rose: the next step is one of Newton's method
  int limit = 0;        // ITEMAX in force
};

// Steps after the answer met CRIT.
struct Polish {
  int steps = 0, stalled = 0;
  double mark = 1e300;                            // the largest residual when it last halved
  double best = 1e300, beta = 0.0, liquid = 1.0;  // the smallest one so far, and the phase fractions there
};

// The last step, where it was one of Newton's method.
struct NewtonStep {
  bool taken = false;
  double before = 0.0, error = 0.0;  // what was to fall, and the error, where it began
  double factor = 1.0;               // the part of it that was taken
  double worst = 0.0;                // the largest residual where it began
};

struct Run {
  Model& m;
  const Settings& settings;
  const IterationPlan& plan;
  FlashTrace& trace;
  const TwoPhaseWork& work;
  Iterate& it;
  StatusCode& status;
  Rules rules{};
  State state = State::substitution;
  Polish polish{};
  NewtonStep newton{};
  int failures = 0;  // Newton steps that could not be taken, or were taken back
  int plain = 0;     // substitutions that go first
};

// How a pass ends the iteration; nothing where the next one follows.
using Ended = std::optional<Outcome>;

// The base-10 logarithms of the last three errors against their numbers: is the way to CRIT too long, by (20)
// of docs/method.md?
bool wants_to_switch(const Model& m, const Settings& s, const Rules& p) {
  const double number[3] = {1.0, 2.0, 3.0};
  double logs[3];
  for (int k = 0; k < 3; ++k) logs[k] = kLog10e * support::fast_log(std::max(p.errors[k], 1e-300));
  double slope = 0.0, intercept = 0.0, correlation = 0.0;
  const std::int32_t three = 3;
  std::int32_t status = 0;
  m.context.tools->regression_line()(&three, number, logs, &slope, &intercept, &correlation, &status);
  const double factor = support::fast_exp(slope / kLog10e);
  if (!(factor >= kFastest && factor <= kSlowest)) return true;
  return (kLog10e * support::fast_log(s.CRIT) - logs[2]) / slope > s.global_budget;
}

void switch_method(Run& r) {
  r.state = State::newton;
  r.rules.relaxation = 1.0;
  r.rules.limit = r.it.count + kPassesAfterSwitch;
}

// Rules of the global method for the working relaxation factor and the change of method, section 4 of
// docs/method.md. False: stop here.
bool follow_rules(Run& r) {
  Rules& p = r.rules;
  const Settings& s = r.settings;
  const double error = r.it.error, previous = p.errors[2];
  p.errors[0] = p.errors[1];
  p.errors[1] = previous;
  p.errors[2] = error;
  if (r.state == State::newton) return true;
  if (std::fabs(1.0 - error / previous) < s.EPS && p.relaxation < 1.0) {
    if (s.relaxation == 1.0) return false;
    if (s.robust && error < s.CLIM) {
      switch_method(r);
      return true;
    }
  }
  p.damped = error >= previous;
  if (p.damped) {
    p.relaxation = std::max(0.5 * p.relaxation, std::min(kSmallestRelaxation, s.relaxation));
    return true;
  }
  p.relaxation = std::min(1.5 * p.relaxation, s.relaxation);
  ++p.decreases;
  if (p.decreases >= kDecreasesBeforeSwitch && error <= s.CLIM && p.errors[0] < 1e299 &&
      wants_to_switch(r.m, s, p))
    switch_method(r);
  return true;
}

// By the numbers of a host that are good for CRIT, phases that differ by less are one as well.
bool phases_are_one(const Model& m, const Settings& s, const Iterate& it) {
  double sum = 0.0;
  for (int i = 0; i < m.n; ++i) sum += it.z[i] * it.log_k[i] * it.log_k[i];
  return sum < (m.routine != nullptr ? std::max(kTrivialLogK2, s.CRIT) : kTrivialLogK2);
}

// Back to the best iterate that met CRIT, to the last bit.
Outcome take_accepted(Run& r) {
  Iterate& it = r.it;
  std::copy_n(it.accepted_log_k, r.m.n, it.log_k);
  for (int i = 0; i < r.m.ld; ++i) it.k[i] = support::fast_exp(it.log_k[i]);
  it.beta = r.polish.beta;
  it.liquid = r.polish.liquid;
  it.stalled = true;
  it.derivatives = false;
  compose_phases(r.m, it);
  r.status = evaluate_phases(r.m, r.work, false, it);
  return r.status == KV_OK ? Outcome::converged : Outcome::routine;
}

// No way on: where CRIT was met that is the answer.
Outcome stop(Run& r, Outcome outcome) {
  return r.state == State::polish ? take_accepted(r) : outcome;
}

// Whether an accepted answer has come to its end: with the full precision, or stalled. The coefficients of a host
// may be rounded, and then there is no more to be had soon.
Ended polish(Run& r) {
  Polish& p = r.polish;
  const Iterate& it = r.it;
  ++p.steps;
  const bool halved = it.worst <= 0.5 * p.mark;
  p.stalled = halved ? 0 : p.stalled + 1;
  if (halved) p.mark = it.worst;
  if (it.worst <= kFinished || (p.steps > kPolishSteps && it.worst <= kOwed)) return Outcome::converged;
  if (it.worst < p.best && it.error <= r.settings.CRIT) {
    p.best = it.worst;
    p.beta = it.beta;
    p.liquid = it.liquid;
    std::copy_n(it.log_k, r.m.n, it.accepted_log_k);
  }
  const bool at_end = p.steps > kPolishSteps || (r.m.routine != nullptr && p.stalled >= kStalledSteps);
  if (at_end) return stop(r, Outcome::broke_down);
  return {};
}

// Whether the last step went uphill in Gibbs energy and may be cut. One from the coefficients of a host may be
// rounded too: where the residuals fell, the step was good.
bool went_uphill(const Run& r) {
  const NewtonStep& s = r.newton;
  if (!s.taken || r.m.free_water || s.factor <= kShortestPart) return false;
  const bool closer = r.m.routine != nullptr && r.it.error < 0.25 * s.error;
  return r.it.gibbs > s.before + kRisen * (1.0 + std::fabs(s.before)) && !closer;
}

// It is cut from where it began.
Ended cut_step(Run& r) {
  r.newton.factor *= 0.25;
  if (!take_newton_step(r.m, r.newton.factor, r.work, r.it)) return stop(r, Outcome::one_phase);
  return {};
}

// With free water there is no Gibbs energy: a step after which the error rose is taken back, and a few
// substitutions go first.
Ended take_back(Run& r) {
  r.newton.taken = false;
  r.plain = kPlainSteps;
  if (++r.failures > kMaxTakenBack || !take_newton_step(r.m, 0.0, r.work, r.it))
    return stop(r, Outcome::broke_down);
  return {};
}

Ended step_by_substitution(Run& r, double relaxation) {
  if (!substitute(r.m, !r.plan.compare_with_feed, relaxation, r.work, r.it)) return stop(r, Outcome::one_phase);
  return {};
}

// Whether a second step by the matrix of the last one is enough: of the residuals it leaves a part that is at most
// twice the part that the first one left.
bool foreseen_by_same_matrix(const Run& r) {
  const NewtonStep& s = r.newton;
  return s.taken && s.factor == 1.0 && r.it.worst * (2.0 * r.it.worst / s.worst) < kForeseen;
}

// derivatives: they came with the evaluation. A whole substitution where there is no direction.
Ended step_by_newton(Run& r, bool derivatives) {
  Iterate& it = r.it;
  const bool polishing = r.state == State::polish && r.m.routine == nullptr;
  const bool same = polishing && !derivatives && foreseen_by_same_matrix(r);
  bool last = same;
  if (same) {
    same_direction(r.m, r.work, it);
  } else {
    if (!derivatives && (r.status = add_derivatives(r.m, r.work, it)) != KV_OK) return Outcome::routine;
    if (!newton_direction(r.m, r.work, it)) {
      r.newton.taken = false;
      if (++r.failures > kMaxTakenBack) return stop(r, Outcome::broke_down);
      return step_by_substitution(r, 1.0);
    }
    last = polishing && it.worst < kOneStepAway * std::min(it.smallest_pivot, 1.0);
  }
  it.derivatives = (!same || it.derivatives) && it.largest_step < kSamePhases;
  r.newton = {true, r.m.free_water ? it.error : it.gibbs, it.error, 1.0, it.worst};
  if (!take_newton_step(r.m, 1.0, r.work, it)) return stop(r, Outcome::one_phase);
  // One Newton step from here is beyond the precision owed: no evaluation is spent on seeing it.
  if (last) return Outcome::converged;
  return {};
}

// What an iterate that has been evaluated ends, before it has met CRIT.
Ended give_up(Run& r) {
  if (r.plan.compare_with_feed && r.it.count == kDecreasesBeforeSwitch &&
      !(r.it.gibbs < r.plan.feed_gibbs - 1e-10))
    return Outcome::not_better;
  if (!follow_rules(r)) return Outcome::broke_down;
  return {};
}

// The iterate is looked at, and the next one made.
Ended pass(Run& r) {
  Iterate& it = r.it;
  ++it.count;
  ++r.m.counts.iterations;
  if (it.count > r.rules.limit && r.state != State::polish) return Outcome::exhausted;
  const bool later = r.work.derivatives_later(r.m);
  const bool newton = r.plain == 0 && (r.state != State::substitution || r.rules.damped);
  const bool derivatives = newton && !later;
  r.status = evaluate_phases(r.m, r.work, derivatives, it);
  if (r.status != KV_OK) return Outcome::routine;
  if (r.state != State::polish) {
    trace_pass(r.trace, r.state == State::newton, r.rules.relaxation, it);
    if (it.error <= r.settings.CRIT && it.count >= 2) r.state = State::polish;
  }
  if (r.state == State::polish) {
    it.derivatives = later ? it.derivatives : derivatives;
    if (const Ended end = polish(r)) return end;
  }
  if (went_uphill(r)) return cut_step(r);
  if (r.newton.taken && r.m.free_water && it.error > r.newton.before) return take_back(r);
  if (r.plain > 0) --r.plain;
  if (it.count >= 2 && phases_are_one(r.m, r.settings, it)) return Outcome::trivial;
  if (r.state != State::polish)
    if (const Ended end = give_up(r)) return end;
  // Where the method has just changed: Newton's first step from far off may lead to other phases than substitution.
  const bool at_once = later && r.plain == 0 && r.state != State::substitution && it.error < kNear;
  if (newton || at_once) return step_by_newton(r, derivatives);
  r.newton.taken = false;
  return step_by_substitution(r, r.rules.relaxation);
}

}  // namespace

Outcome iterate_two_phases(Model& m, const Settings& settings, const IterationPlan& plan, FlashTrace& trace,
                           const TwoPhaseWork& work, Iterate& it, StatusCode& status) {
  Run r{m, settings, plan, trace, work, it, status};
  r.rules.relaxation = settings.relaxation;
  r.rules.limit = settings.ITEMAX;
  for (int i = 0; i < m.ld; ++i) it.k[i] = support::fast_exp(it.log_k[i]);
  for (int i = m.n; i < m.ld; ++i) it.x[i] = it.y[i] = it.log_k[i] = it.r[i] = 0.0;
  it.Zx = it.Zy = 0.0;
  it.count = 0;
  it.stalled = it.derivatives = it.evaluated = false;
  if (!split_feed(m, it) && (plan.compare_with_feed || !centre_coefficients(m, it))) return Outcome::one_phase;
  trace_initial(trace, m.n, it);
  for (;;)
    if (const Ended end = pass(r)) return *end;
}

}  // namespace kestrune::flash
