// The method [Mic82, Mic82b]: a split by Wilson's coefficients is tried first, since a split of lower Gibbs
// energy than the feed's is proof of two phases and its own best start. Where it fails, the tangent-plane test
// decides, and its lowest trial phase starts the iteration. A two-phase answer is tested again with trials that
// it cannot have come from; when one cuts its tangent plane, other splits are tried and the one of lowest Gibbs
// energy stands.

#include "flash/isothermal.hpp"

#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "flash/flash_state.hpp"
#include "flash/trace_flash.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

// How the solver chose its own starting point; shown in the trace.
enum class Source { wilson = 1, estimate = 2, trial = 3, other_answer = 4, water = 5 };

// Phase-situation codes of a solve that ends with one phase.
enum class Situation { liquid = 3, vapour = 4 };

constexpr int kMaxOtherAnswers = 8;
constexpr double kLower = 1e-12;            // a Gibbs energy over RT counts as lower from here
constexpr double kWaterStaysLiquid = 1e-6;  // ln K of water at a start from free water is below minus this
constexpr double kRounding = 1e-10;         // of Gibbs energies over RT

// False when the sum is beyond the range of a double.
bool normalise_feed(const IsothermalCall& c, int n, double* z) {
  double sum = 0.0;
  for (int i = 0; i < n; ++i) sum += c.z[i];
  for (int i = 0; i < n; ++i) z[i] = c.z[i] / sum;
  return std::isfinite(sum);
}

// A usable estimate: fraction inside (0, 1), compositions that are compositions.
bool usable_estimate(const IsothermalCall& c, int n) {
  if (!(*c.beta > 0.0 && *c.beta < 1.0)) return false;
  double sx = 0.0, sy = 0.0;
  for (int i = 0; i < n; ++i) {
    if (!(c.x[i] >= 0.0 && c.x[i] <= 1.0 + 1e-6 && c.y[i] >= 0.0 && c.y[i] <= 1.0 + 1e-6)) return false;
    sx += c.x[i];
    sy += c.y[i];
  }
  return std::fabs(sx - 1.0) <= 1e-6 && std::fabs(sy - 1.0) <= 1e-6;
}

void usual_kinds(Flash& f) {
  f.it.kind_x = Kind::liquid;
  f.it.kind_y = f.liquids_only() ? Kind::liquid : Kind::gas;
}

void start_from_wilson(Flash& f) {
  usual_kinds(f);
  for (int i = 0; i < f.m.ld; ++i) f.it.log_k[i] = support::fast_log(f.wilson_k[i]);
  f.it.beta = 0.5;
  trace_internal_index(f.trace, static_cast<int>(Source::wilson));
}

// Free water: all the water in the liquid, everything else in the vapour.
void start_from_water(Flash& f) {
  usual_kinds(f);
  for (int i = 0; i < f.m.ld; ++i) f.it.log_k[i] = kLargestLogK;
  const int w = f.m.water;
  const double k = f.m.psat.value / f.m.P;
  f.it.log_k[w] = std::clamp(support::fast_log(k), -kLargestLogK, -kWaterStaysLiquid);
  f.it.beta = 1.0 - f.it.z[w];
  trace_internal_index(f.trace, static_cast<int>(Source::water));
}

void start_from_estimate(Flash& f) {
  const IsothermalCall& c = f.call;
  usual_kinds(f);
  // The estimate may be two liquids: each phase takes the root that suits it.
  if (!f.m.free_water && !f.liquids_only()) f.it.kind_x = f.it.kind_y = Kind::stable;
  for (int i = 0; i < f.m.n; ++i) {
    double k = f.wilson_k[i];
    if (c.x[i] > 0.0 || c.y[i] > 0.0) k = c.x[i] > 0.0 ? c.y[i] / c.x[i] : kLargestK;
    f.it.log_k[i] = std::clamp(support::fast_log(k), -kLargestLogK, kLargestLogK);
  }
  f.it.beta = *c.beta;
  trace_internal_index(f.trace, static_cast<int>(Source::estimate));
}

// The lowest trial beside a phase with ln phi = other and Z = other_Z: the lighter of the two is the vapour.
void start_from_trial(Flash& f, const double* other, double other_Z, Kind other_kind, Source source) {
  const bool vapour = f.m.free_water ? other_kind == Kind::liquid : f.lowest.Z > other_Z;
  const Kind kind = f.liquids_only() ? Kind::liquid : kind_of(f, f.lowest.w, f.lowest.Z);
  for (int i = 0; i < f.m.n; ++i) {
    const double k = std::clamp(other[i] - f.lowest.ln_phi[i], -kLargestLogK, kLargestLogK);
    f.it.log_k[i] = vapour ? k : -k;
  }
  f.it.kind_y = vapour ? kind : other_kind;
  f.it.kind_x = vapour ? other_kind : kind;
  if (f.m.free_water) usual_kinds(f);
  f.it.beta = vapour ? 0.05 : 0.95;
  trace_internal_index(f.trace, static_cast<int>(source));
}

Outcome iterate(Flash& f, bool compare) {
  const IterationPlan plan{f.feed_gibbs, compare && !f.m.free_water};
  return iterate_two_phases(f.m, f.settings, plan, f.trace, f.two, f.it, f.status);
}

// A split from one start, good when it converged on something better than the feed. Of a feed that is known to
// be unstable any split is better, though close to a phase boundary by less than the rounding of Gibbs
// energies.
bool good_split(Flash& f, bool unstable, Outcome& outcome) {
  outcome = iterate(f, !unstable);
  const double bound = f.feed_gibbs + (unstable ? kRounding : -kLower);
  return outcome == Outcome::converged && (f.m.free_water || f.it.gibbs < bound);
}

void copy_answer(const Iterate& from, Iterate& to, int ld) {
  double* const arrays[] = {to.x, to.y, to.log_k, to.k, to.ln_phi_x, to.ln_phi_y, to.r, to.log_x};
  const double* const values[] = {from.x,        from.y,        from.log_k, from.k,
                                  from.ln_phi_x, from.ln_phi_y, from.r,     from.log_x};
  for (int k = 0; k < 8; ++k) std::copy_n(values[k], ld, arrays[k]);
  const double* z = to.z;
  double* const kept[] = {to.x, to.y, to.log_k, to.k, to.ln_phi_x, to.ln_phi_y, to.r, to.log_x};
  to = from;
  to.z = z;
  to.x = kept[0];
  to.y = kept[1];
  to.log_k = kept[2];
  to.k = kept[3];
  to.ln_phi_x = kept[4];
  to.ln_phi_y = kept[5];
  to.r = kept[6];
  to.log_x = kept[7];
}

// A phase beside which a split is tried.
struct Beside {
  const double* ln_phi;
  double Z;
  Kind kind;
};

// Tries a split from f.lowest beside the given phase; keeps it in f.best when it is lower. False: f.status.
bool try_other(Flash& f, const Beside& phase, bool& improved) {
  start_from_trial(f, phase.ln_phi, phase.Z, phase.kind, Source::other_answer);
  Outcome outcome;
  if (good_split(f, true, outcome) && f.it.gibbs < f.best.gibbs - kLower) {
    copy_answer(f.it, f.best, f.m.ld);
    improved = true;
  }
  return outcome != Outcome::routine;
}

// Every trial against a tangent plane, and a split from each that cuts it beside each phase of the plane.
bool try_all_trials(Flash& f, Reference ref, std::initializer_list<Beside> phases, bool& improved) {
  ref.known = f.tried;
  ref.known_count = 0;
  for (int number = 0; number < kNearPure + f.m.n; ++number) {
    if (number >= kNearPure && !(f.it.z[number - kNearPure] > 0.0)) continue;
    if (!start_trial(f, ref, number)) return false;
    f.trial.Z = 0.0;
    f.status = follow_trial(f.m, ref, kind_of_trial(f, number), Follow::strict, f.work, f.trial);
    if (f.status != KV_OK) return false;
    if (f.trial.end != TrialEnd::stationary || !(f.trial.tm < kUnstable)) continue;
    if (ref.known_count < kTried) std::copy_n(f.trial.w, f.m.ld, f.tried + ref.known_count++ * f.m.ld);
    std::swap(f.trial, f.lowest);
    f.have_lowest = true;
    for (const Beside& phase : phases)
      if (!try_other(f, phase, improved)) return false;
  }
  return true;
}

// An answer that is cut by its tangent plane: other splits, from all that cuts the planes of the answer and of
// the feed, until none is lower. What then is still cut is a state with three phases.
bool look_for_better(Flash& f) {
  Iterate& answer = f.answer;
  for (int k = 0; k < kMaxOtherAnswers; ++k) {
    bool stable = true, improved = false;
    if (!test_answer(f, stable)) return false;
    if (stable) return true;
    copy_answer(f.it, f.best, f.m.ld);
    copy_answer(f.it, answer, f.m.ld);
    const Reference plane{answer.x, f.answer_d, answer.y};
    const Reference feed{f.it.z, f.d};
    const Beside feed_phase{f.feed_phi, f.feed_Z, f.feed_kind};
    if (!try_all_trials(
            f, plane,
            {{answer.ln_phi_x, answer.Zx, answer.kind_x}, {answer.ln_phi_y, answer.Zy, answer.kind_y}},
            improved) ||
        !try_all_trials(f, feed, {feed_phase}, improved))
      return false;
    copy_answer(f.best, f.it, f.m.ld);
    if (!improved) return true;
  }
  return true;
}

enum class Dry { failed, liquid, vapour, two_phases };

// Flash of the feed without its water, by the equation of state alone; f.best.beta, x and y hold its answer.
Dry flash_dry_feed(Flash& f) {
  const int n = f.m.n, w = f.m.water;
  for (int i = 0; i < n; ++i) f.dry[i] = i == w ? 0.0 : f.it.z[i];
  if (!(f.it.z[w] < 1.0)) return Dry::failed;
  MixtureRecord silent = *f.call.mixture;
  silent.trace_flag = 0;
  IsothermalCall dry;
  dry.T = f.call.T;
  dry.P = f.call.P;
  dry.z = f.dry;
  dry.mixture = &silent;
  dry.routines = f.call.routines;
  dry.beta = &f.best.beta;
  dry.x = f.best.x;
  dry.y = f.best.y;
  dry.K = f.best.k;
  const StatusCode status = isothermal_flash(dry);
  // Far above the pseudo-critical temperature what is dense is a gas under pressure, whatever its label.
  if (status == KV_SINGLE_PHASE) return f.best.beta == 0.0 && may_be_liquid(f) ? Dry::liquid : Dry::vapour;
  return status == KV_OK ? Dry::two_phases : Dry::failed;
}

// ln K from the dry flash with all the water added to its liquid. False when there is no vapour to start with.
bool start_from_dry_flash(Flash& f) {
  const int n = f.m.n, w = f.m.water;
  const double water = f.it.z[w];
  const Dry dry = flash_dry_feed(f);
  if (dry == Dry::vapour) {
    start_from_water(f);
    return true;
  }
  if (dry != Dry::two_phases) return false;
  usual_kinds(f);
  const double oil = (1.0 - water) * (1.0 - f.best.beta);
  const double share = oil / (oil + water);  // of oil in the liquid
  for (int i = 0; i < n; ++i) f.it.log_k[i] = support::fast_log(f.best.k[i]) - std::log(share);
  const double k = f.m.psat.value / f.m.P / (1.0 - share);
  f.it.log_k[w] = std::clamp(std::log(k), -kLargestLogK, kLargestLogK);
  f.it.beta = (1.0 - water) * f.best.beta;
  trace_internal_index(f.trace, static_cast<int>(Source::water));
  return true;
}

// Hydrocarbons beside water in one phase where two are due: once more from their own split. The answer stays
// where that start leads nowhere.
bool add_missing_phase(Flash& f) {
  bool stable = true;
  if (!test_answer(f, stable)) return false;
  if (stable) return true;
  copy_answer(f.it, f.answer, f.m.ld);
  const Outcome outcome = start_from_dry_flash(f) ? iterate(f, false) : Outcome::one_phase;
  if (outcome != Outcome::converged) copy_answer(f.answer, f.it, f.m.ld);
  return outcome != Outcome::routine;
}

// The phase counted by beta is the one with the larger Z.
void order_phases(Flash& f) {
  if (f.liquids_only() || f.m.free_water || !(f.it.Zx > f.it.Zy)) return;
  std::swap(f.it.x, f.it.y);
  std::swap(f.it.beta, f.it.liquid);
  for (int i = 0; i < f.m.n; ++i) f.it.k[i] = 1.0 / f.it.k[i];
}

StatusCode write_answer(Flash& f, StatusCode status) {
  const IsothermalCall& c = f.call;
  *c.beta = f.it.beta;
  for (int i = 0; i < f.m.n; ++i) {
    c.x[i] = f.it.x[i];
    c.y[i] = f.it.y[i];
    c.K[i] = std::clamp(f.it.k[i], kSmallestK, kLargestK);
  }
  trace_result(f.trace, c);
  return status;
}

StatusCode finish_two_phases(Flash& f) {
  if (!(f.m.free_water ? add_missing_phase(f) : look_for_better(f))) return write_answer(f, f.status);
  order_phases(f);
  return write_answer(f, KV_OK);
}

// One phase: the feed, with the incipient phase beside it where there is one.
StatusCode finish_single_phase(Flash& f) {
  const Situation s = f.feed_kind == Kind::gas ? Situation::vapour : Situation::liquid;
  const bool vapour = s == Situation::vapour;
  const int n = f.m.n;
  if (f.have_lowest && !finish_lowest(f)) return write_answer(f, f.status);
  const bool incipient = f.have_lowest && f.lowest.end == TrialEnd::stationary;
  const double* other = incipient ? f.lowest.w : f.it.z;
  std::copy_n(vapour ? other : f.it.z, n, f.it.x);
  std::copy_n(vapour ? f.it.z : other, n, f.it.y);
  for (int i = 0; i < n; ++i) {
    const double e = incipient ? f.feed_phi[i] - f.lowest.ln_phi[i] : 0.0;
    f.it.k[i] = support::fast_exp(std::clamp(vapour ? -e : e, -kLargestLogK, kLargestLogK));
  }
  f.it.beta = vapour ? 1.0 : 0.0;
  f.it.liquid = 1.0 - f.it.beta;
  return write_answer(f, KV_SINGLE_PHASE);
}

// The feed is unstable: the split from its lowest trial, restarted once with the robust settings.
StatusCode split_from_trial(Flash& f) {
  Outcome outcome = Outcome::broke_down;
  for (int attempt = 0; attempt < 2; ++attempt) {
    start_from_trial(f, f.feed_phi, f.feed_Z, f.feed_kind, Source::trial);
    if (good_split(f, true, outcome)) return finish_two_phases(f);
    if (outcome == Outcome::routine) return write_answer(f, f.status);
    f.settings.relaxation = kRobustRelaxation;
    f.settings.ITEMAX = kRobustIterations;
    f.settings.robust = true;
  }
  if (f.m.free_water) {
    start_from_water(f);
    if (good_split(f, true, outcome)) return finish_two_phases(f);
    if (outcome == Outcome::routine) return write_answer(f, f.status);
  }
  // On the boundary itself: what splits off has no amount that could be told from rounding.
  if (f.lowest.tm > -1e-8) return finish_single_phase(f);
  return write_answer(f, outcome == Outcome::exhausted ? KV_NOT_CONVERGED : KV_TRIVIAL);
}

StatusCode solve(Flash& f) {
  trace_header(f.trace, f.call, f.settings);
  if (!evaluate_feed(f)) return f.status;
  wilson(f.call.T, f.call.P, *f.call.mixture, f.m.free_water, f.wilson_k, nullptr);
  const bool given = f.call.start != Start::cold && usable_estimate(f.call, f.m.n);
  if (given)
    trace_initial(f.trace, f.call, *f.call.beta, f.call.x, f.call.y, f.it.z);
  else
    trace_initial(f.trace, f.call, 0.0, f.it.z, f.it.z, f.it.z);

  Outcome outcome = Outcome::one_phase;
  if (given) {
    start_from_estimate(f);
    if (good_split(f, false, outcome)) return finish_two_phases(f);
  }
  if (f.m.free_water && !f.liquids_only() && f.it.z[f.m.water] > 0.0 && outcome != Outcome::routine) {
    if (start_from_dry_flash(f) && good_split(f, false, outcome)) return finish_two_phases(f);
  }
  if (!f.liquids_only() && outcome != Outcome::routine) {
    start_from_wilson(f);
    if (good_split(f, false, outcome)) return finish_two_phases(f);
  }
  if (outcome == Outcome::routine) return write_answer(f, f.status);

  if (!test_feed(f)) return write_answer(f, f.status);
  if (f.have_lowest && f.lowest.tm < kUnstable) return split_from_trial(f);
  return finish_single_phase(f);
}

void take_iterate(support::Arena& arena, int ld, Iterate& it) {
  double** const arrays[] = {&it.x, &it.y, &it.log_k, &it.k, &it.ln_phi_x, &it.ln_phi_y, &it.r, &it.log_x};
  for (double** array : arrays) *array = arena.zeros(ld);
}

StatusCode set_up(const IsothermalCall& call, support::Arena& arena) {
  Model m;
  const StatusCode status =
      make_model(call.T, call.P, call.mixture, call.routines, call.free_water, 0, arena, m);
  if (status != KV_OK) return status;
  Settings settings = copy_settings(*call.mixture);
  apply_robust_settings(kModelOptions, settings);
  support::TraceWriter trace(settings.trace, settings.trace_unit);
  Flash f(call, m, settings, trace);
  const std::size_t ld = m.ld, square = ld * m.n;
  double* z = arena.zeros(ld);
  if (!normalise_feed(call, m.n, z)) return KV_COMPOSITION;
  take_iterate(arena, m.ld, f.it);
  take_iterate(arena, m.ld, f.best);
  take_iterate(arena, m.ld, f.answer);
  f.it.z = f.best.z = f.answer.z = z;
  f.two = {arena.zeros(ld),    arena.zeros(ld),    arena.zeros(ld),
           arena.take(square), arena.take(square), arena.take(square)};
  f.work = {arena.zeros(ld), arena.zeros(ld), arena.zeros(ld), arena.zeros(ld), f.two.dx, f.two.system};
  f.trial.log_w = arena.zeros(ld);
  f.trial.w = arena.zeros(ld);
  f.trial.ln_phi = arena.zeros(ld);
  f.lowest.log_w = arena.zeros(ld);
  f.lowest.w = arena.zeros(ld);
  f.lowest.ln_phi = arena.zeros(ld);
  f.wilson_k = arena.zeros(ld);
  f.feed_phi = arena.zeros(ld);
  f.d = arena.zeros(ld);
  f.answer_d = arena.zeros(ld);
  f.direction = arena.zeros(ld);
  f.dry = arena.zeros(ld);
  f.tried = arena.zeros(ld * kTried);
  const StatusCode result = solve(f);
  if (call.counts != nullptr) *call.counts = m.counts;
  return result;
}

}  // namespace

StatusCode isothermal_flash(const IsothermalCall& call) {
  return support::with_arena<6, 100>(call.mixture->count,
                                     [&](support::Arena& arena) { return set_up(call, arena); });
}

}  // namespace kestrune::flash
