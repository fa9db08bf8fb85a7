// The three-phase iteration: substitutions, the change to Newton's method, phases that vanish, the last
// digits, and the solver's own starts.

#include "flash3/solver.hpp"

#include <algorithm>
#include <cmath>

#include "flash/feed.hpp"
#include "flash/isothermal/two_phase.hpp"
#include "flash/wilson.hpp"
#include "flash3/trace_phases.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash3 {
namespace {

constexpr int kSubstitutions = 3;             // before the first Newton step
constexpr int kVanished = 5;                  // passes in a row
constexpr double kSmall = 1e-4;               // part of the feed from which a phase may be taken for vanished
constexpr double kSmallestRelaxation = 1e-6;  // of a step, which is then none
constexpr double kNegligible = 1e-15;         // residuals below it count as 0
constexpr double kFinished = 1e-10, kOwed = 1e-8;  // ln fugacities: full precision; what has to be met
constexpr int kPolishSteps = 40, kFailures = 12;   // Newton steps after CRIT; that may fail before it
constexpr int kRecovery = 4;                       // substitutions after one that failed
constexpr double kSteepest = 1e-11;                // rise of the Gibbs energy that is rounding
constexpr double kNoAmount = 1e-13;                // of the most that there can be of a phase
constexpr double kNothing = 1e-10,
                 kNegligibleAmount = 1e-7;  // taken out on the way to full precision; where nothing converged
constexpr int kSlowSteps = 4;               // in a row that hardly help: rounding
constexpr double kIdentical = 1e-12;        // sum of (x - y)^2/(x + y) of two phases that are one
// Amounts in terms of which steps are bounded stay within these.
constexpr double kEdge = 0.9999, kBeyondEdge = 9.999999999998899e-05;

/*
 * Sum of the squared residuals of balances and summations, with the distribution coefficients that the fugacity
 * coefficients of the pass give: what a substitution would still change.
 */
double criterion(const double* z, int n, const Phases& p, const int* home) {
  double error = 0.0, liquids = 0.0, vapour = -1.0;
  const auto square = [](double r) { return std::fabs(r) < kNegligible ? 0.0 : r * r; };
  for (int i = 0; i < n; ++i) {
    if (!(z[i] > 0.0)) continue;
    const int h = home[i];
    double wanted[kMostPhases], sum = 0.0;  // what each phase would hold beside the one that holds most
    for (int j = 0; j < p.count; ++j) {
      wanted[j] = j == h ? p.x[h][i] : p.x[h][i] * support::fast_exp(p.ln_phi[h][i] - p.ln_phi[j][i]);
      sum += p.amount[j] * wanted[j];
    }
    error += square(sum - z[i]);
    liquids += wanted[kA] - wanted[kB];
    vapour += wanted[kV];
  }
  return error + square(liquids) + square(vapour);
}

// Counts passes in which a ratio stays at its end; true when a phase has vanished.
class Vanishing {
 public:
  explicit Vanishing(bool patient) : patient_(patient) {}
  bool count(const Phases& p, Ended& which) {
    const double low = patient_ ? 0.0 : kSmall, high = patient_ ? 1.0 : kEdge;
    const double V = p.amount[kV], beta = p.amount[kA];
    const bool b_low = patient_ ? p.amount[kB] <= 0.0 : beta > high;
    tally(V, V < low || V <= 0.0, high, vapour_);
    tally(beta, beta < low || beta <= 0.0, 2.0, a_);
    tally(p.amount[kB], b_low, 2.0, b_);
    which = vapour_ >= kVanished ? Ended::vapour_vanished
            : a_ >= kVanished    ? Ended::a_vanished
                                 : Ended::b_vanished;
    return vapour_ >= kVanished || a_ >= kVanished || b_ >= kVanished;
  }

 private:
  // A ratio above "high" keeps the counter where it is.
  static void tally(double ratio, bool at_end, double high, int& counter) {
    if (at_end)
      ++counter;
    else if (ratio <= high)
      counter = 0;
  }
  bool patient_;
  int vapour_ = 0, a_ = 0, b_ = 0;
};

/*
 * Part of a step that keeps a ratio r inside (0, 1): beyond the edge it moves along its logit instead. dr is
 * the change over the whole step.
 */
double within_logit(double r, double dr, double part) {
  if (r + part * dr < 0.0) {  // the same rule for the other end
    r = 1.0 - r;
    dr = -dr;
  }
  if (!(r + part * dr > 1.0) || !(r > 0.0 && r < 1.0)) return part;
  const double t = -part * dr / (r * (1.0 - r));
  const double L = std::log(kBeyondEdge * r / ((1.0 - r) * kEdge));
  if (t <= L) return part;
  const double next = 1.0 / (std::exp(t) * (1.0 - r) / r + 1.0);
  return (next - r) / dr;
}

struct Run {
  flash::Model& m;
  const double* z;
  const Iteration& how;
  Phases& p;
  const PhasesWork& w;
  StatusCode status = KV_OK;
  double factor = 1.0;
  bool newton = false, accepted = false;
  bool balanced = false;  // the phases hold the feed, which those of a start need not
  int failures = 0, recovery = 0;
};

// A drop of water out of a trace of it is small, but not negligible.
double most_of(const Run& r, int j) {
  return flash::most_of(r.m.n, r.z, r.p.x[j]);
}

bool has_all_amounts(const Run& r) {
  for (int j = 0; j < r.p.count; ++j)
    if (!(r.p.amount[j] > kNoAmount * most_of(r, j))) return false;
  return true;
}

// Newton step with a line search on the Gibbs energy. False: no step, or r.status.
bool newton_step(Run& r) {
  if (!newton_direction(r.m, r.z, r.p, r.w)) return false;
  const int n = r.m.n, ld = r.m.ld;
  const bool three = r.p.count == kMostPhases;
  const double V = r.p.amount[kV], beta = r.p.amount[kA], before = r.p.gibbs;
  const double dV = three ? change_of_amount(n, r.p, r.w, kV) : 0.0;
  const double dA = three ? change_of_amount(n, r.p, r.w, kA) : 0.0;
  double factor = r.accepted ? 1.0 : r.factor;
  for (; factor >= kSmallestRelaxation; factor *= 0.5) {
    const double part = three ? within_logit(beta, dA, within_logit(V, dV, factor)) : factor;
    take_step(n, ld, part, r.p, r.w);
    if (has_all_amounts(r)) {
      r.status = evaluate_phases(r.m, r.z, r.p, r.w, true);
      if (r.status != KV_OK) return false;
      if (r.p.gibbs <= before + kSteepest * (1.0 + std::fabs(before))) break;
    }
  }
  // The next pass begins with this factor.
  if (!r.accepted) r.factor = factor;
  return factor >= kSmallestRelaxation;
}

// What every phase has of every component, between the saved amounts and those of p.
void take_part(Run& r) {
  for (int j = 0; j < r.p.count; ++j) {
    double sum = 0.0;
    for (int i = 0; i < r.m.n; ++i) {
      const double before = r.w.saved[j][i], after = r.p.amount[j] * r.p.x[j][i];
      sum += r.w.moles[j][i] = std::max(before + r.factor * (after - before), 0.0);
    }
    r.p.amount[j] = sum;
    for (int i = 0; i < r.m.n && sum > 0.0; ++i) r.p.x[j][i] = r.w.moles[j][i] / sum;
  }
}

// Substitution: amounts by the convex split, of which a factor below 1 takes a part. False: r.status or nothing
// usable.
bool substitute(Run& r) {
  const bool whole = !r.balanced || r.accepted || r.factor == 1.0;
  for (int j = 0; j < r.p.count && !whole; ++j)
    for (int i = 0; i < r.m.n; ++i) r.w.saved[j][i] = r.p.amount[j] * r.p.x[j][i];
  int looks = 0;
  const bool usable = split_between(r.m.n, r.z, r.p, r.w, &looks);
  r.status = usable ? flash::spend(r.m.host, split_work(looks)) : StatusCode{KV_NOT_FINITE};
  if (r.status != KV_OK) return false;
  if (!whole) take_part(r);
  r.balanced = true;
  r.status = evaluate_phases(r.m, r.z, r.p, r.w, r.newton && has_all_amounts(r));
  return r.status == KV_OK;
}

bool move(Run& r) {
  if (r.newton && r.recovery == 0 && has_all_amounts(r)) {
    if (newton_step(r)) return true;
    if (r.status != KV_OK) return false;
    // Not from here: a few substitutions from where it began, and once more.
    ++r.failures;
    take_step(r.m.n, r.m.ld, 0.0, r.p, r.w);
    r.recovery = kRecovery;
    r.factor = 1.0;
    r.status = evaluate_phases(r.m, r.z, r.p, r.w, true);
    if (r.status != KV_OK) return false;
  }
  if (r.recovery > 0) --r.recovery;
  return substitute(r);
}

bool merge_identical(Run& r) {
  Phases& p = r.p;
  for (int j = 0; j < p.count; ++j)
    for (int k = j + 1; k < p.count; ++k)
      if (same_phase(r.m.n, r.z, p.x[j], p.x[k], kIdentical)) {
        p.amount[j] += p.amount[k];
        p.amount[k] = 0.0;
        drop_phase(p, k);
        return true;
      }
  return false;
}

// The least densely packed phase is the vapour, and of the others the more densely packed one is B.
void put_in_slots(const flash::Model& m, Phases& p) {
  const auto lighter = [&](int j, int k) {
    return flash::lighter(*m.context.record, p.x[j], p.Z[j], p.x[k], p.Z[k]);
  };
  for (const int j : {kA, kB})
    if (lighter(j, kV)) exchange_phases(p, j, kV);
  if (lighter(kB, kA)) exchange_phases(p, kA, kB);
}

// From substitutions to Newton's method, or back to whole steps. False: r.status.
bool choose_method(Run& r, int pass, double error, double previous) {
  const bool stagnant = std::fabs(1.0 - error / previous) < r.how.settings.EPS;
  if (stagnant && r.factor < 1.0) r.factor = 1.0;
  if (r.newton || !(pass >= std::max(kSubstitutions, r.how.settings.global_budget) || stagnant)) return true;
  r.newton = true;
  r.factor = 1.0;
  r.status = evaluate_phases(r.m, r.z, r.p, r.w, true);
  return r.status == KV_OK;
}

// Passes until the criterion is met.
Ended iterate(Run& r) {
  Vanishing vanishing(r.how.patient);
  const flash::Settings& s = r.how.settings;
  double previous = 1e300;
  for (int pass = 1; pass <= s.ITEMAX; ++pass) {
    ++r.m.counts.iterations;
    const double error = criterion(r.z, r.m.n, r.p, r.w.home);
    trace_pass(*r.how.trace, {pass, error, r.factor, r.newton && r.recovery == 0}, r.m.n, r.p,
               s.trace && r.m.context.trace != 1);
    const bool reached = error <= s.CRIT || (r.how.descend && r.p.worst <= kOwed);
    if (reached && pass > 1 && has_all_amounts(r)) return Ended::converged;
    if (merge_identical(r)) return Ended::identical;
    Ended which;
    if (vanishing.count(r.p, which)) {
      drop_phase(r.p, which == Ended::vapour_vanished ? kV : which == Ended::a_vanished ? kA : kB);
      return which;
    }
    if (r.failures >= kFailures) return Ended::damped;
    if (!choose_method(r, pass, error, previous)) return Ended::routine;
    previous = error;
    if (!move(r)) return Ended::routine;
  }
  return Ended::exhausted;
}

Ended vanished(int j) {
  return j == kV ? Ended::vapour_vanished : j == kA ? Ended::a_vanished : Ended::b_vanished;
}

// Takes out a phase whose amount is below the limit.
bool drop_negligible(Run& r, double limit, Ended& which) {
  for (int j = 0; j < r.p.count; ++j)
    if (r.p.amount[j] < limit * most_of(r, j)) {
      drop_phase(r.p, j);
      which = vanished(j);
      return true;
    }
  return false;
}

// From the criterion to the precision that is owed.
Ended finish(Run& r) {
  r.accepted = r.newton = true;
  int slow = 0;
  for (int k = 0; k < kPolishSteps && r.p.worst > kFinished; ++k) {
    // A phase that every step leaves less of is not there.
    Ended which;
    if (drop_negligible(r, kNothing, which)) return which;
    if (k == 0) r.status = evaluate_phases(r.m, r.z, r.p, r.w, true);
    if (r.status != KV_OK) return Ended::routine;
    const double before = r.p.worst;
    if (!newton_step(r)) {
      if (r.status != KV_OK) return Ended::routine;
      take_step(r.m.n, r.m.ld, 0.0, r.p, r.w);
      if (!substitute(r)) return Ended::routine;
    }
    if (merge_identical(r)) return Ended::identical;
    slow = r.p.worst <= kOwed && r.p.worst > 0.5 * before ? slow + 1 : 0;
    if (slow >= kSlowSteps) break;  // rounding
  }
  const double owed = std::max(kOwed, flash::host_slack(r.m, r.how.settings));
  return r.p.worst <= owed ? Ended::converged : Ended::damped;
}

// Trials of the starts: a liquid almost pure in the last component that is present, one in the first, the feed.
void almost_pure(int n, const double* z, Phases& p) {
  constexpr double kAlmostPure = 0.99, kOthers = 0.01;
  int first = -1, last = -1;
  for (int i = 0; i < n; ++i) {
    if (!(z[i] > 0.0)) continue;
    if (first < 0) first = i;
    last = i;
  }
  for (const int j : {kA, kB}) {
    const int most = j == kA ? last : first;
    double sum = 0.0;
    for (int i = 0; i < n; ++i)
      sum += p.x[j][i] = !(z[i] > 0.0) ? 0.0 : i == most ? kAlmostPure : kOthers / (n - 1);
    for (int i = 0; i < n; ++i) p.x[j][i] /= sum;
  }
  std::copy_n(z, n, p.x[kV]);
}

// ln of Wilson's coefficients.
void wilson_log_k(const flash::Model& m, double* log_k) {
  flash::wilson(m.T, m.P, *m.context.record, false, log_k, nullptr);
  for (int i = 0; i < m.n; ++i) log_k[i] = support::fast_log(log_k[i]);
}

// ln phi of the trials of a start in their places; where Wilson's coefficients stand for them, 0 and ln K.
StatusCode put_trials(flash::Model& m, const double* z, int index, Phases& p) {
  const int n = m.n;
  double *const A = p.ln_phi[kA], *const B = p.ln_phi[kB], *const V = p.ln_phi[kV];
  if (index == 2) {
    wilson_log_k(m, A);
    for (int i = 0; i < n; ++i) B[i] = 2.0 * A[i];
    std::fill_n(V, n, 0.0);
    return KV_OK;
  }
  almost_pure(n, z, p);
  for (const int j : {kA, kB, kV}) {
    if (j == kV && index != 1) continue;
    p.Z[j] = 0.0;
    const StatusCode status = flash::fugacity(m, p.x[j], flash::Kind::stable, p.ln_phi[j], nullptr, p.Z[j]);
    if (status != KV_OK) return status;
  }
  if (index == 3) wilson_log_k(m, V);
  for (int i = 0; i < n && index != 1; ++i) V[i] = index == 3 ? A[i] - V[i] : 0.0;
  return KV_OK;
}

}  // namespace

Ended iterate_phases(flash::Model& m, const double* z, const Iteration& how, Phases& p, const PhasesWork& w,
                     StatusCode& status) {
  Run r{m, z, how, p, w};
  r.factor = std::min(how.settings.relaxation, 1.0);
  for (int j = 0; j < p.count; ++j) p.Z[j] = 0.0;
  r.newton = how.descend;
  r.status = evaluate_phases(m, z, p, w, false);
  put_in_slots(m, p);
  trace_start(*how.trace, how, m.n, z, p);
  Ended ended = Ended::routine;
  if (how.descend && r.status == KV_OK) r.status = evaluate_phases(m, z, p, w, true);
  if (r.status == KV_OK && (how.descend || substitute(r))) ended = iterate(r);
  // Newton's method lets a trace grow by so much a step; one substitution puts it right.
  if (ended == Ended::converged && how.descend && !substitute(r)) ended = Ended::routine;
  // Short steps have used up the passes: on with whole ones.
  const bool tired = ended == Ended::exhausted && r.factor < 1.0;
  if (ended == Ended::converged || tired) ended = finish(r);
  // Stuck beside the end of a phase: without it.
  if (ended == Ended::damped || ended == Ended::exhausted) drop_negligible(r, kNegligibleAmount, ended);
  status = r.status;
  return ended;
}

Ended polish_phases(flash::Model& m, const double* z, const Iteration& how, Phases& p, const PhasesWork& w,
                    StatusCode& status) {
  Run r{m, z, how, p, w};
  const Ended ended = finish(r);
  status = r.status;
  return ended;
}

StatusCode phases_alike(int n, const double* z, const Phases& p, double CRIT) {
  if (p.count != kMostPhases || n == 1) return KV_OK;
  const double bound = std::exp(std::log(CRIT) / 3.0);
  const auto alike = [&](int j, int k) {
    for (int i = 0; i < n; ++i)
      if (z[i] > 0.0 && !(std::fabs(p.x[j][i] - p.x[k][i]) < bound * p.x[k][i])) return false;
    return true;
  };
  if (alike(kA, kB) || alike(kV, kA)) return KV_TRIVIAL;
  return alike(kV, kB) ? KV_TRIVIAL_LV : KV_OK;
}

StatusCode start_by_index(flash::Model& m, const double* z, int index, Phases& p) {
  const int n = m.n;
  p.count = kMostPhases;
  for (double& a : p.amount) a = 1.0 / kMostPhases;
  const StatusCode status = put_trials(m, z, index, p);
  if (status != KV_OK) return status;
  const auto coefficient = [](double above, double below) {
    return support::fast_exp(std::clamp(below - above, -flash::kLargestLogK, flash::kLargestLogK));
  };
  double sum[kMostPhases] = {};
  for (int i = 0; i < n; ++i) {
    const double KLL = coefficient(p.ln_phi[kA][i], p.ln_phi[kB][i]);
    const double KLV = coefficient(p.ln_phi[kV][i], p.ln_phi[kA][i]);
    p.x[kB][i] = z[i] / ((1.0 + KLL + KLV * KLL) / kMostPhases);
    p.x[kA][i] = KLL * p.x[kB][i];
    p.x[kV][i] = KLV * p.x[kA][i];
    for (int j = 0; j < kMostPhases; ++j) sum[j] += p.x[j][i];
  }
  for (int j = 0; j < kMostPhases; ++j)
    for (int i = 0; i < n; ++i) p.x[j][i] /= sum[j];
  return KV_OK;
}

}  // namespace kestrune::flash3
