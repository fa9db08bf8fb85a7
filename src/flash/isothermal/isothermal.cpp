// The method [Mic82a, Mic82b], section 4 of docs/method.md: a split by Wilson's coefficients is tried first,
// since a split of lower Gibbs energy than the feed's is proof of two phases and its own best start. Where it
// fails, the tangent-plane test decides, and its lowest trial phase starts the iteration. A two-phase answer
// is tested again with trials that it cannot have come from; when one cuts its tangent plane, other splits
// are tried and the one of lowest Gibbs energy stands.

#include "flash/isothermal/isothermal.hpp"

#include <algorithm>
#include <cmath>

#include "flash/accept.hpp"
#include "flash/feed.hpp"
#include "flash/isothermal/flash_state.hpp"
#include "flash/trace_flash.hpp"
#include "flash/wet/free_water.hpp"
#include "flash/wet/wet_flash.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

constexpr double kNoAmount = 1e-13;

// A usable estimate: fraction inside (0, 1), compositions that are compositions.
bool usable_estimate(const IsothermalCall& c, int n) {
  return *c.beta > 0.0 && *c.beta < 1.0 && usable_compositions(n, c.x, c.y);
}

// The phase counted by beta is the vapour, the less densely packed one.
void order_phases(Flash& f) {
  if (f.liquids_only()) return;
  if (!lighter(*f.call.context.record, f.it.x, f.it.Zx, f.it.y, f.it.Zy)) return;
  std::swap(f.it.x, f.it.y);
  std::swap(f.it.beta, f.it.liquid);
}

StatusCode write_answer(Flash& f, StatusCode status) {
  const IsothermalCall& c = f.call;
  *c.beta = f.it.beta;
  write_split(f.m.n, f.it.x, f.it.y, c.x, c.y, c.K);
  trace_result(f.trace, c, f.it);
  return status;
}

StatusCode finish_two_phases(Flash& f) {
  if (!may_split(f.call.T)) return write_answer(f, KV_NOT_FINITE);
  if (!settle_answer(f)) return write_answer(f, f.status);
  order_phases(f);
  return write_answer(f, KV_OK);
}

// One phase: the feed, with the incipient phase beside it where there is one.
StatusCode finish_single_phase(Flash& f) {
  f.m.counts.step = Step::report;
  const PlanePhase& feed = f.feed.phase[0];
  const Trial& lowest = f.test.lowest;
  const bool vapour = feed.kind == Kind::gas;
  const int n = f.m.n;
  if (!has_digits(n, f.it.z, feed.ln_phi)) return write_answer(f, KV_NOT_FINITE);
  if (f.test.have_lowest && (f.status = finish_lowest(f.test, f.feed)) != KV_OK)
    return write_answer(f, f.status);
  const bool incipient = f.test.have_lowest && lowest.end == TrialEnd::stationary;
  const double* other = incipient ? lowest.w : f.it.z;
  double *const whole = vapour ? f.it.y : f.it.x, *const beside = vapour ? f.it.x : f.it.y;
  std::copy_n(f.it.z, n, whole);
  // Not below the bound of K, so that K is the ratio of what is returned; and a composition.
  double sum = 0.0;
  for (int i = 0; i < n; ++i)
    sum += beside[i] = f.it.z[i] > 0.0 ? std::max(other[i], kSmallestK * f.it.z[i]) : 0.0;
  for (int i = 0; i < n; ++i) beside[i] /= sum;
  f.it.beta = vapour ? 1.0 : 0.0;
  f.it.liquid = 1.0 - f.it.beta;
  return write_answer(f, KV_SINGLE_PHASE);
}

// The feed is unstable: the split from its lowest trial, restarted once with the robust settings.
StatusCode split_from_trial(Flash& f) {
  Outcome outcome = Outcome::broke_down;
  for (int attempt = 0; attempt < 2; ++attempt) {
    start_from_trial(f, f.feed.phase[0], Source::trial);
    if (good_split(f, true, outcome)) return finish_two_phases(f);
    if (outcome == Outcome::routine) return write_answer(f, f.status);
    f.settings.relaxation = kRobustRelaxation;
    f.settings.ITEMAX = kRobustIterations;
    f.settings.robust = true;
  }
  report_third(f);
  // On the boundary itself, or of traces alone: what splits off has no amount that could be told from rounding.
  const double boundary = std::max(1e-8, host_slack(f.m, f.settings));
  const Trial& lowest = f.test.lowest;
  if (lowest.tm > -boundary || most_of(f.m.n, f.it.z, lowest.w) < kNoAmount) return finish_single_phase(f);
  bool found = false;
  if (!split_from_all(f, found)) return write_answer(f, f.status);
  if (found) return finish_two_phases(f);
  return write_answer(f, outcome == Outcome::exhausted ? KV_NOT_CONVERGED : KV_TRIVIAL);
}

StatusCode solve(Flash& f) {
  trace_header(f.trace, f.call, f.settings);
  f.status = feed_plane(f.test, f.it.z, f.feed);
  if (f.status != KV_OK) return f.status;
  f.feed_gibbs = 0.0;
  for (int i = 0; i < f.m.n; ++i) f.feed_gibbs += f.it.z[i] * f.feed.d[i];
  const bool given = f.call.start != Start::cold && usable_estimate(f.call, f.m.n);

  Outcome outcome = Outcome::one_phase;
  if (given) {
    start_from_estimate(f);
    if (good_split(f, false, outcome)) return finish_two_phases(f);
  }
  if (!f.liquids_only() && outcome != Outcome::routine) {
    start_from_wilson(f);
    if (good_split(f, false, outcome)) return finish_two_phases(f);
  }
  if (outcome == Outcome::routine) return write_answer(f, f.status);

  f.status = test_plane(f.test, f.feed);
  if (f.status != KV_OK) return write_answer(f, f.status);
  return f.test.cut() ? split_from_trial(f) : finish_single_phase(f);
}

void take_iterate(support::Arena& arena, int ld, Iterate& it) {
  for (const auto array : kIterateArrays) it.*array = arena.zeros(ld);
}

// Everything that a flash works with, then the flash.
StatusCode with_flash(const IsothermalCall& call, support::Arena& arena) {
  Model own;
  if (call.model == nullptr) {
    const StatusCode status =
        make_model(call.T, call.P, call.context, call.routines, call.free_water, 0, arena, own);
    if (status != KV_OK) return status;
  }
  Model& m = call.model != nullptr ? *call.model : own;
  Settings settings = copy_settings(call.context);
  apply_robust_settings(kModelOptions, settings);
  if (call.mode == Mode::liquid_liquid) apply_liquid_settings(kModelOptions, call.index, settings);
  support::TraceWriter writer(settings.trace, settings.trace_unit);
  FlashTrace trace{call.trace != nullptr ? *call.trace : writer, call.mode};
  Flash f(call, m, settings, trace);
  const std::size_t ld = m.ld, square = ld * m.n;
  double* z = arena.zeros(ld);
  if (!normalise_feed(m.n, call.z, z)) return KV_COMPOSITION;
  for (Iterate* it : {&f.it, &f.best, &f.answer}) take_iterate(arena, m.ld, *it);
  f.it.z = f.best.z = f.answer.z = z;
  f.two = {arena.zeros(ld),    arena.zeros(ld),    arena.zeros(ld), arena.take(square),
           arena.take(square), arena.take(square), arena.take(ld),  arena.take(ld)};
  open_stability(arena, f.two.dx, f.two.system, f.test);
  const StatusCode result = solve(f);
  if (call.counts != nullptr) *call.counts = m.counts;
  return result;
}

}  // namespace

StatusCode isothermal_flash(const IsothermalCall& call) {
  if (call.free_water && call.mode == Mode::liquid_vapour && has_free_water(*call.context.record, call.z))
    return wet_flash(call);
  return support::with_arena<6, 134>(call.context.record->count,
                                     [&](support::Arena& arena) { return with_flash(call, arena); });
}

}  // namespace kestrune::flash
