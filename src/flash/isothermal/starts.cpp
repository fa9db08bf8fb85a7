// Where the two-phase iteration may start, and one run of it.

#include <algorithm>
#include <cmath>

#include "flash/accept.hpp"
#include "flash/isothermal/flash_state.hpp"
#include "flash/isothermal/two_phase_steps.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

Outcome iterate(Flash& f, bool compare) {
  const IterationPlan plan{f.feed_gibbs, compare && !f.m.free_water};
  return iterate_two_phases(f.m, f.settings, plan, f.trace, f.two, f.it, f.status);
}

void usual_kinds(Flash& f) {
  f.it.kind_x = Kind::liquid;
  f.it.kind_y = f.liquids_only() ? Kind::liquid : Kind::gas;
}

/*
 * Whether a phase asked for by its kind is one that would rather be of the other kind, by the Gibbs energies of both: a
 * gas by the root that it was iterated on, say, of a composition that is a liquid. The trials do not see that of a phase
 * of almost one component alone. False also with f.status.
 */
bool of_the_other_kind(Flash& f, const double* x, Kind kind, const double* ln_phi) {
  if (kind == Kind::stable) return false;
  double Z = 0.0, lower = 0.0;
  f.status = plain_fugacity(f.m, x, kind == Kind::gas ? Kind::liquid : Kind::gas, f.m.compared, {}, Z);
  if (f.status != KV_OK) return false;
  for (int i = 0; i < f.m.n; ++i) lower += x[i] * (f.m.compared[i] - ln_phi[i]);
  return lower < -eos::kOtherRootMargin;
}

// The same of both phases of the iterate, by a routine of the host. Once is enough: what follows asks for no kind.
bool host_on_upper_root(Flash& f) {
  if (f.m.routine == nullptr || f.m.free_water || f.liquids_only()) return false;
  return of_the_other_kind(f, f.it.x, f.it.kind_x, f.it.ln_phi_x) ||
         (f.status == KV_OK && of_the_other_kind(f, f.it.y, f.it.kind_y, f.it.ln_phi_y));
}

// By the built-in equation, which takes no evaluation.
bool on_upper_root(const Flash& f) {
  if (!f.m.built_in() || f.liquids_only()) return false;
  const auto upper = [&](const double* x, double Z) {
    double b = 0.0, higher = 0.0;
    for (int i = 0; i < f.m.n; ++i) b += x[i] * f.m.t.b[i];
    return Z > 0.0 && eos::has_other_root(f.m.t, b, f.m.P, Z, higher) && higher < -eos::kOtherRootMargin;
  };
  return upper(f.it.x, f.it.Zx) || upper(f.it.y, f.it.Zy);
}

/*
 * The gate of two phases: a split of the feed, and equal fugacities at the very compositions that are returned
 * (by a host's routine, and where no more was to be had, as equal as CRIT asks). The tangent plane of the tests
 * that follow stands on these. False: it is none, or f.status.
 */
bool accept(Flash& f) {
  Iterate& it = f.it;
  f.m.counts.step = Step::gate;
  if (!it.evaluated) f.status = evaluate_phases(f.m, f.two, false, it);
  if (f.status != KV_OK || on_upper_root(f)) return false;
  const double amounts[] = {it.liquid, it.beta};
  const double* const phases[] = {it.x, it.y};
  const double owed = f.m.routine != nullptr || it.stalled ? std::max(kOwedFugacity, std::sqrt(f.settings.CRIT))
                                                           : kOwedFugacity;
  return is_split(f.m.n, it.z, 2, amounts, phases) &&
         fugacity_gap(f.m.n, it.z, {it.x, it.ln_phi_x}, {it.y, it.ln_phi_y}) <= owed;
}

}  // namespace

void start_from_wilson(Flash& f) {
  usual_kinds(f);
  for (int i = 0; i < f.m.ld; ++i) f.it.log_k[i] = support::fast_log(f.test.wilson_k[i]);
  f.it.beta = 0.5;
  f.it.source = static_cast<int>(Source::wilson);
}

void start_from_estimate(Flash& f) {
  const IsothermalCall& c = f.call;
  usual_kinds(f);
  // The estimate may be two liquids: each phase takes the root that suits it.
  if (!f.liquids_only()) f.it.kind_x = f.it.kind_y = Kind::stable;
  for (int i = 0; i < f.m.n; ++i) {
    double k = f.test.wilson_k[i];
    if (c.x[i] > 0.0 || c.y[i] > 0.0) k = c.x[i] > 0.0 ? c.y[i] / c.x[i] : kLargestK;
    f.it.log_k[i] = std::clamp(support::fast_log(k), -kLargestLogK, kLargestLogK);
  }
  f.it.beta = *c.beta;
  f.it.source = 0;
}

void start_from_trial(Flash& f, const PlanePhase& other, Source source) {
  const Trial& trial = f.test.lowest;
  const bool vapour = trial.Z > other.Z;
  const Kind kind = f.liquids_only() ? Kind::liquid : kind_of(f.m, trial.w, trial.Z);
  for (int i = 0; i < f.m.n; ++i) {
    const double k = std::clamp(other.ln_phi[i] - trial.ln_phi[i], -kLargestLogK, kLargestLogK);
    f.it.log_k[i] = vapour ? k : -k;
  }
  f.it.kind_y = vapour ? kind : other.kind;
  f.it.kind_x = vapour ? other.kind : kind;
  f.it.beta = vapour ? 0.05 : 0.95;
  f.it.source = static_cast<int>(source);
}

bool good_split(Flash& f, bool unstable, Outcome& outcome) {
  f.m.counts.step = Step::split;
  outcome = iterate(f, !unstable);
  // Of phases that were iterated on a root each: one may have gone over to the other root on the way.
  const bool kept = f.it.kind_x == Kind::stable && f.it.kind_y == Kind::stable;
  const bool lost = unstable && !kept && !f.liquids_only() && f.m.built_in() &&
                    (outcome == Outcome::exhausted || outcome == Outcome::broke_down);
  if (lost || (outcome == Outcome::converged && (on_upper_root(f) || host_on_upper_root(f)))) {
    f.it.kind_x = f.it.kind_y = Kind::stable;
    outcome = iterate(f, !unstable);
  }
  const double bound = f.feed_gibbs + (unstable ? kRounding : -kLowerGibbs);
  if (outcome != Outcome::converged || !(f.m.free_water || f.it.gibbs < bound)) return false;
  if (accept(f)) return true;
  outcome = f.status != KV_OK ? Outcome::routine : Outcome::broke_down;
  return false;
}

}  // namespace kestrune::flash
