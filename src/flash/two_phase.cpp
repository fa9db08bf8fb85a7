// [Mic82b] M. L. Michelsen, Fluid Phase Equilib. 9 (1982) 21-40: successive substitution and second-order
// minimisation of the Gibbs energy in the split.

#include "flash/two_phase.hpp"

#include <algorithm>
#include <cmath>

#include "flash/rachford_rice.hpp"
#include "flash/trace_flash.hpp"
#include "support/ldl.hpp"
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
constexpr double kOwed = 1e-8;
constexpr int kPolishSteps = 60;
constexpr int kStalledSteps = 6;  // in a row that leave more than half: a host's coefficients end there
constexpr int kPlainSteps = 6, kMaxTakenBack = 200;
constexpr double kSmallestPivot = 1e-14;
constexpr double kFirstShift =
    1e-10;  // beside a critical point the lowest eigenvalue is tiny, and so must the shift be
constexpr double kLargestNewtonStep = 5.0;  // in ln K
constexpr int kStepCuts = 12;               // until both phases are there
constexpr double kTrivialLogK2 = 1e-11;     // sum of z (ln K)^2 of two phases that are one

// Compositions from the coefficients and the fractions, from the side of the smaller one: no difference of
// near-equal numbers.
void compose_phases(const Model& m, Iterate& it) {
  const double V = it.beta, L = it.liquid;
  if (V <= 0.5) {
    for (int i = 0; i < m.n; ++i) it.x[i] = it.z[i] / (1.0 + V * (it.k[i] - 1.0));
    for (int i = 0; i < m.n; ++i) it.y[i] = it.k[i] * it.x[i];
  } else {
    for (int i = 0; i < m.n; ++i) it.x[i] = it.z[i] / (it.k[i] + L * (1.0 - it.k[i]));
    for (int i = 0; i < m.n; ++i) it.y[i] = it.k[i] * it.x[i];
  }
}

// What the rules of the global method remember.
struct Progress {
  double errors[3] = {1e300, 1e300, 1e300};  // the last three, latest last
  int decreases = 0;
  double relaxation;
  bool linearised = false;  // quasi-linearisation
  bool damped = false;      // the error rose: the next step is one of Newton's method
  int limit;                // ITEMAX in force
};

// Steps after the answer met CRIT.
struct Polish {
  int steps = 0, stalled = 0;
  double mark = 1e300;                            // the largest residual when it last halved
  double best = 1e300, beta = 0.0, liquid = 1.0;  // the smallest one so far, and the phase fractions there
};

// Fugacities of both phases, residuals and error of (18), Gibbs energy (19) of docs/method.md.
StatusCode evaluate_phases(Model& m, const TwoPhaseWork& work, bool derivatives, Iterate& it) {
  StatusCode status = fugacity(m, it.x, it.kind_x, it.ln_phi_x, derivatives ? work.dx : nullptr, it.Zx);
  if (status != KV_OK) return status;
  status = fugacity(m, it.y, it.kind_y, it.ln_phi_y, derivatives ? work.dy : nullptr, it.Zy);
  if (status != KV_OK) return status;
  double error = 0.0, worst = 0.0, gx = 0.0, gy = 0.0;
  for (int i = 0; i < m.ld; ++i) it.log_x[i] = support::fast_log(it.x[i]);
  for (int i = 0; i < m.n; ++i) {
    const double d = std::clamp(it.ln_phi_x[i] - it.ln_phi_y[i], -kLargestLogK, kLargestLogK);
    it.r[i] = d - it.log_k[i];
    const double r = it.z[i] > 0.0 ? it.r[i] : 0.0;
    error += r * r;
    worst = std::max(worst, std::fabs(r));
    gx += it.x[i] * (it.log_x[i] + it.ln_phi_x[i]);
    gy += it.y[i] * (it.log_x[i] + it.log_k[i] + it.ln_phi_y[i]);
  }
  it.error = error;
  it.worst = worst;
  it.gibbs = it.liquid * gx + it.beta * gy;
  return KV_OK;
}

// The base-10 logarithms of the last three errors against their numbers: is the way to CRIT too long, by (20)
// of docs/method.md?
bool wants_to_switch(const Model& m, const Settings& s, const Progress& p) {
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

void switch_method(Progress& p, int pass) {
  p.linearised = true;
  p.relaxation = 1.0;
  p.limit = pass + kPassesAfterSwitch;
}

// Rules of the global method for the working relaxation factor and the change of method, section 4 of
// docs/method.md. False: stop here.
bool follow_rules(const Model& m, const Settings& s, Progress& p, double error, int pass) {
  const double previous = p.errors[2];
  p.errors[0] = p.errors[1];
  p.errors[1] = previous;
  p.errors[2] = error;
  if (p.linearised) return true;
  if (std::fabs(1.0 - error / previous) < s.EPS && p.relaxation < 1.0) {
    if (s.relaxation == 1.0) return false;
    if (s.robust && error < s.CLIM) {
      switch_method(p, pass);
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
      wants_to_switch(m, s, p))
    switch_method(p, pass);
  return true;
}

// Successive substitution with the working relaxation factor.
void substitute(const Model& m, double relaxation, Iterate& it) {
  for (int i = 0; i < m.n; ++i)
    it.log_k[i] = std::clamp(it.log_k[i] + relaxation * it.r[i], -kLargestLogK, kLargestLogK);
  for (int i = 0; i < m.ld; ++i) it.k[i] = support::fast_exp(it.log_k[i]);
}

// Gives the coefficients a common factor with which there are two phases: sum z K and sum z/K become equal, and
// their product is above 1. False: all K are one.
bool centre_coefficients(const Model& m, Iterate& it) {
  double up = 0.0, down = 0.0;
  for (int i = 0; i < m.n; ++i) {
    up += it.z[i] * it.k[i];
    down += it.z[i] / it.k[i];
  }
  const double shift = 0.5 * support::fast_log(down / up);
  for (int i = 0; i < m.n; ++i) it.log_k[i] = std::clamp(it.log_k[i] + shift, -kLargestLogK, kLargestLogK);
  for (int i = 0; i < m.ld; ++i) it.k[i] = support::fast_exp(it.log_k[i]);
  return split_feed(m, it);
}

// The same with the split that follows. Of a feed that is known to be unstable the step is cut until both
// phases are there: where unlike molecules attract each other strongly, a whole one overshoots. False: one
// phase.
bool substitute_within(const Model& m, const IterationPlan& plan, double relaxation, const TwoPhaseWork& work,
                       Iterate& it) {
  std::copy_n(it.log_k, m.n, work.old_log_k);
  substitute(m, relaxation, it);
  if (split_feed(m, it)) return true;
  if (plan.compare_with_feed) return false;
  for (int k = 0; k < kStepCuts; ++k) {
    relaxation *= 0.5;
    std::copy_n(work.old_log_k, m.n, it.log_k);
    substitute(m, relaxation, it);
    if (split_feed(m, it)) return true;
  }
  return false;
}

// The Newton system on (ln K, beta), (21) of docs/method.md, reduced to the vapour amounts v_i = beta y_i:
// with beta liquid = VL
//   S = D [diag(z/(x y)) - 1 + L M_y + V M_x] D,  D_i = sqrt(x_i y_i/z_i),  S u = VL D r,  dv = D u.
// S is symmetric positive definite next to a minimum of the Gibbs energy.
void newton_matrix(const Model& m, const TwoPhaseWork& work, double shift, Iterate& it) {
  const int n = m.n, ld = m.ld;
  const double L = it.liquid, V = it.beta;
  for (int j = 0; j < n; ++j) {
    const double* __restrict dx = work.dx + static_cast<std::size_t>(j) * ld;
    const double* __restrict dy = work.dy + static_cast<std::size_t>(j) * ld;
    double* __restrict a = work.system + static_cast<std::size_t>(j) * ld;
    const double sj = work.scale[j];
    for (int i = m.free_water ? 0 : support::block_start(j); i < ld; ++i)
      a[i] = sj * work.scale[i] * (L * dy[i] + V * dx[i] - 1.0);
    a[j] += 1.0 + shift;
  }
}

// Newton direction; where S is not positive definite it is shifted until it is, which still goes downhill.
bool newton_direction(Model& m, const TwoPhaseWork& work, Iterate& it) {
  const int n = m.n, ld = m.ld;
  // Absent components and those whose K is at its bound take no part; they follow by substitution.
  for (int i = 0; i < ld; ++i) {
    const bool free = i < n && it.z[i] > 0.0 && std::fabs(it.r[i] + it.log_k[i]) < kLargestLogK;
    work.scale[i] = free ? std::sqrt(it.x[i] * it.y[i] / it.z[i]) : 0.0;
  }
  for (int i = 0; i < ld; ++i) work.step[i] = it.beta * it.liquid * work.scale[i] * it.r[i];
  if (m.free_water) {
    // The free-water rules are no derivatives of one Gibbs energy: a general matrix.
    newton_matrix(m, work, 0.0, it);
    ++m.counts.factorisations;
    const std::int32_t order = n, lead = ld;
    std::int32_t status = 0;
    m.context.tools->linear_system()(&order, &lead, work.system, work.step, &status);
    if (status != 0) return false;
  } else {
    double shift = 0.0;
    for (;;) {
      newton_matrix(m, work, shift, it);
      ++m.counts.factorisations;
      if (support::ldl_factor(n, ld, work.system, kSmallestPivot)) break;
      shift = shift > 0.0 ? 4.0 * shift : kFirstShift;
      if (shift > 100.0) return false;
    }
    support::ldl_solve(n, ld, work.system, work.step);
    double largest = 0.0;  // inverse pivots stand on the diagonal
    for (int i = 0; i < n; ++i) largest = std::max(largest, work.system[static_cast<std::size_t>(i) * ld + i]);
    it.smallest_pivot = 1.0 / largest;
  }
  // From the amounts to ln K = ln v_i - ln l_i - ln V + ln L.
  double dV = 0.0;
  for (int i = 0; i < n; ++i) dV += work.scale[i] * work.step[i];
  const double common = dV / (it.beta * it.liquid);
  for (int i = 0; i < n; ++i) {
    const double dv = work.step[i] / work.scale[i];  // dv_i z_i/(x_i y_i)
    work.step[i] = work.scale[i] > 0.0 ? dv / (it.beta * it.liquid) - common : it.r[i];
    work.old_log_k[i] = it.log_k[i];
  }
  return true;
}

// ln K = old + factor * step and the split that follows; the factor is cut until both phases are there.
bool take_newton_step(const Model& m, double factor, const TwoPhaseWork& work, Iterate& it) {
  double largest = 0.0;
  for (int i = 0; i < m.n; ++i)
    if (it.z[i] > 0.0) largest = std::max(largest, std::fabs(work.step[i]));
  if (largest > kLargestNewtonStep) factor *= kLargestNewtonStep / largest;
  for (int k = 0; k < kStepCuts; ++k, factor *= 0.3) {
    for (int i = 0; i < m.n; ++i)
      it.log_k[i] = std::clamp(work.old_log_k[i] + factor * work.step[i], -kLargestLogK, kLargestLogK);
    for (int i = 0; i < m.ld; ++i) it.k[i] = support::fast_exp(it.log_k[i]);
    if (split_feed(m, it)) return true;
  }
  return false;
}

// By the numbers of a host that are good for CRIT, phases that differ by less are one as well.
bool phases_are_one(const Model& m, const Settings& s, const Iterate& it) {
  double sum = 0.0;
  for (int i = 0; i < m.n; ++i) sum += it.z[i] * it.log_k[i] * it.log_k[i];
  return sum < (m.routine != nullptr ? std::max(kTrivialLogK2, s.CRIT) : kTrivialLogK2);
}

// A Gibbs energy from the coefficients of a host may be rounded too: where the residuals fell, the step was
// good.
bool closer(const Model& m, const Iterate& it, double error_before) {
  return m.routine != nullptr && it.error < 0.25 * error_before;
}

// Whether the polish of an accepted answer has come to its end: with the full precision, or stalled. The
// coefficients of a host may be rounded, and then there is no more to be had soon.
enum class Polished { no, yes, stalled };
Polished polish(const Model& m, const Settings& s, Iterate& it, Polish& p) {
  ++p.steps;
  const bool halved = it.worst <= 0.5 * p.mark;
  p.stalled = halved ? 0 : p.stalled + 1;
  if (halved) p.mark = it.worst;
  if (it.worst <= kFinished || (p.steps > kPolishSteps && it.worst <= kOwed)) return Polished::yes;
  if (it.worst < p.best && it.error <= s.CRIT) {
    p.best = it.worst;
    p.beta = it.beta;
    p.liquid = it.liquid;
    std::copy_n(it.log_k, m.n, it.accepted_log_k);
  }
  const bool at_end = p.steps > kPolishSteps || (m.routine != nullptr && p.stalled >= kStalledSteps);
  return at_end ? Polished::stalled : Polished::no;
}

// Back to the best iterate that met CRIT, to the last bit.
Outcome take_accepted(Model& m, const TwoPhaseWork& work, const Polish& p, Iterate& it, StatusCode& status) {
  std::copy_n(it.accepted_log_k, m.n, it.log_k);
  for (int i = 0; i < m.ld; ++i) it.k[i] = support::fast_exp(it.log_k[i]);
  it.beta = p.beta;
  it.liquid = p.liquid;
  it.stalled = true;
  it.derivatives = false;
  compose_phases(m, it);
  status = evaluate_phases(m, work, false, it);
  return status == KV_OK ? Outcome::converged : Outcome::routine;
}

}  // namespace

bool split_feed(const Model& m, Iterate& it) {
  const PhaseFraction f = rachford_rice(m.n, it.z, it.k, it.beta);
  if (f.kind != Split::two_phase) {
    it.beta = f.beta;
    it.liquid = f.liquid;
    return false;
  }
  it.beta = f.beta;
  it.liquid = f.liquid;
  compose_phases(m, it);
  return true;
}

Outcome iterate_two_phases(Model& m, const Settings& settings, const IterationPlan& plan, FlashTrace& trace,
                           const TwoPhaseWork& work, Iterate& it, StatusCode& status) {
  Progress p;
  p.relaxation = settings.relaxation;
  p.limit = settings.ITEMAX;
  for (int i = 0; i < m.ld; ++i) it.k[i] = support::fast_exp(it.log_k[i]);
  for (int i = m.n; i < m.ld; ++i) it.x[i] = it.y[i] = it.log_k[i] = it.r[i] = 0.0;
  it.Zx = it.Zy = 0.0;
  it.count = 0;
  it.stalled = it.derivatives = false;
  if (!split_feed(m, it) && (plan.compare_with_feed || !centre_coefficients(m, it))) return Outcome::one_phase;
  trace_initial(trace, m.n, it);
  bool newton_taken = false, accepted = false;
  double before = 0.0, error_before = 0.0, factor = 1.0;
  Polish progress;
  int failures = 0, plain = 0;
  // No way on: where CRIT was met that is the answer.
  const auto stop = [&](Outcome outcome) {
    return accepted ? take_accepted(m, work, progress, it, status) : outcome;
  };
  for (;;) {
    ++it.count;
    ++m.counts.iterations;
    if (it.count > p.limit && !accepted) return Outcome::exhausted;
    const bool derivatives = (p.linearised || p.damped || accepted) && plain == 0;
    status = evaluate_phases(m, work, derivatives, it);
    if (status != KV_OK) return Outcome::routine;
    if (!accepted) {
      trace_pass(trace, p.linearised, p.relaxation, it);
      accepted = it.error <= settings.CRIT && it.count >= 2;
    }
    if (accepted) {
      const Polished end = polish(m, settings, it, progress);
      it.derivatives = derivatives;
      if (end == Polished::yes) return Outcome::converged;
      if (end == Polished::stalled) return stop(Outcome::broke_down);
    }
    // A Newton step that went uphill: in Gibbs energy it is cut from where it began; without one (free water)
    // it is taken back and a few substitutions go first.
    if (newton_taken && !m.free_water && it.gibbs > before + 1e-11 * (1.0 + std::fabs(before)) &&
        factor > 1e-4 && !closer(m, it, error_before)) {
      factor *= 0.25;
      if (!take_newton_step(m, factor, work, it)) return stop(Outcome::one_phase);
      continue;
    }
    if (newton_taken && m.free_water && it.error > before) {
      newton_taken = false;
      plain = kPlainSteps;
      if (++failures > kMaxTakenBack || !take_newton_step(m, 0.0, work, it)) return stop(Outcome::broke_down);
      continue;
    }
    if (plain > 0) --plain;
    if (it.count >= 2 && phases_are_one(m, settings, it)) return Outcome::trivial;
    if (plan.compare_with_feed && !accepted && it.count == kDecreasesBeforeSwitch &&
        !(it.gibbs < plan.feed_gibbs - 1e-10))
      return Outcome::not_better;
    if (!accepted && !follow_rules(m, settings, p, it.error, it.count)) return Outcome::broke_down;
    newton_taken = false;
    if (derivatives && newton_direction(m, work, it)) {
      const bool last =
          accepted && m.routine == nullptr && it.worst < kOneStepAway * std::min(it.smallest_pivot, 1.0);
      error_before = it.error;
      before = m.free_water ? it.error : it.gibbs;
      factor = 1.0;
      if (!take_newton_step(m, 1.0, work, it)) return stop(Outcome::one_phase);
      // One Newton step from here is beyond the precision owed: no evaluation is spent on seeing it.
      if (last) return Outcome::converged;
      newton_taken = true;
      continue;
    }
    if (derivatives && ++failures > kMaxTakenBack) return stop(Outcome::broke_down);
    if (!substitute_within(m, plan, derivatives ? 1.0 : p.relaxation, work, it))
      return stop(Outcome::one_phase);
  }
}

}  // namespace kestrune::flash
