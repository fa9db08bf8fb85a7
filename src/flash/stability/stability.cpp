// Which trials a test runs, and in which order: of a feed (test_feed) and of an answer (test_answer). Section 3 of
// docs/method.md. Where they start and how they run is in flash/stability/stability_trials.cpp and flash/stability/near_pure.cpp.

#include "flash/stability/stability.hpp"

#include <algorithm>
#include <utility>

#include "flash/feed.hpp"
#include "flash/stability/stability_trials.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

// ln of the fugacity of a component that is absent: no coefficient brings it back.
constexpr double kNone = -1e5;
// b/v of a dilute gas, too thin to be close to a critical point.
constexpr double kDilutePacking = 0.04;
// Stationary points that next_cut remembers.
constexpr int kFound = 6;

// What a test remembers, from nothing.
void begin_test(Stability& s) {
  s.have_lowest = s.came_back = false;
  s.tried.count = 0;
  s.how = Follow::quick;
  s.status = KV_OK;
}

bool dilute(const Stability& s, const PlanePhase& feed) {
  return packing_of(s.m, feed.x, feed.Z) < kDilutePacking;
}

// Wilson's vapour. ideal_gas: a trial from an ideal gas is to follow; s.passed then tells whether this one came by
// where that would begin, so that both have one end.
bool vapour_trial(Stability& s, const Plane& plane, bool ideal_gas, double gas_packing) {
  if (ideal_gas) {
    composition_of(s.m, plane.d, s.between);
    s.watched = s.between;
  }
  s.passed = false;
  const bool done = start_trial(s, plane, kWilsonVapour) && run_trial(s, plane, trial_kind(s), gas_packing);
  s.watched = nullptr;
  return done;
}

// Trials from Wilson's coefficients: a liquid z/K and a vapour z K. Both run, the lower one wins.
bool wilson_trials(Stability& s, const Plane& plane) {
  if (!run_numbered(s, plane, kWilsonLiquid)) return false;
  const PlanePhase& feed = plane.phase[0];
  const bool gas = s.how == Follow::quick && (gas_beyond_doubt(s, feed.x, feed.Z) || beside_gas(s, plane));
  return vapour_trial(s, plane, feed.kind == Kind::liquid, gas ? kGasPacking : 0.0);
}

/*
 * Whether a phase gives way to pressure as near a critical point: of almost one component alone it does so there while
 * its composition is as stable as anywhere. s.direction is then the one in which it becomes denser.
 */
bool soft(Stability& s, const PlanePhase& phase) {
  constexpr double kSoft = 0.2;  // -(dP/dv) v^2/(R T), 1 of an ideal gas
  if (phase.at == nullptr) return false;
  const eos::Mechanics k = eos::mechanics(s.m.t, phase.at->mixed, phase.at->root);
  if (!(k.one_plus_k < kSoft)) return false;
  double* const d = s.direction;
  eos::p_dln_phi_dP(s.m.t, k, phase.at->root, phase.at->s, d);
  double mean = 0.0;
  for (int i = 0; i < s.m.n; ++i) mean += phase.x[i] * d[i];
  for (int i = 0; i < s.m.n; ++i) d[i] = std::sqrt(phase.x[i]) * (mean - d[i]);
  make_unit(s.m.n, d);
  return true;
}

// Whether a critical point may be close to the feed; s.direction is then the way to it. False with s.status where
// that cannot be told.
bool near_critical(Stability& s, const PlanePhase& feed) {
  if (s.m.free_water || dilute(s, feed)) return false;
  s.m.counts.step = Step::curvature;
  return !clearly_convex(s.m, feed.x, trial_kind(s), feed.at, s.work, s.trial, s.direction, s.status) ||
         (s.status == KV_OK && soft(s, feed));
}

bool test_feed(Stability& s, const Plane& plane) {
  const PlanePhase& feed = plane.phase[0];
  const bool critical = near_critical(s, feed);
  if (s.status != KV_OK) return false;
  if (critical) s.how = Follow::strict;
  s.m.counts.step = Step::feed_trials;
  if (!wilson_trials(s, plane)) return false;
  const bool ideal_gas = feed.kind == Kind::liquid && !s.passed;
  if (critical && !trials_along(s, plane, feed.x)) return false;
  if (s.cut()) return true;
  if (ideal_gas && s.trial.end == TrialEnd::trivial && !run_numbered(s, plane, kIdealGas)) return false;
  if (!s.liquids_only && !other_root_trial(s, plane, feed.x, feed.Z)) return false;
  s.m.counts.step = Step::near_pure;
  return near_pure_trials(s, plane, feed.kind == Kind::gas || beside_gas(s, plane));
}

// Whether all phases are clearly convex by the derivatives that are at hand.
bool known_convex(Stability& s, const Plane& plane) {
  if (!s.m.built_in()) return false;
  for (int j = 0; j < plane.count; ++j) {
    const PlanePhase& phase = plane.phase[j];
    const double* dn = phase.dn;
    if (dn == nullptr && phase.at != nullptr) {
      if (composition_derivatives(s.m, *phase.at, s.work.dn) != KV_OK) return false;
      dn = s.work.dn;
    }
    if (dn == nullptr || !convex_with(s.m, phase.x, dn, kConvex, s.work)) return false;
  }
  return true;
}

bool has_gas(const Stability& s, const Plane& plane) {
  for (int j = plane.count - 1; j >= 0; --j)
    if (kind_of(s.m, plane.phase[j].x, plane.phase[j].Z) == Kind::gas) return true;
  return false;
}

// Trials out of the phases that are not clearly convex.
bool test_curvature(Stability& s, const Plane& plane) {
  for (int j = 0; j < plane.count; ++j) {
    const double* const x = plane.phase[j].x;
    if (!clearly_convex(s.m, x, trial_kind(s), nullptr, s.work, s.trial, s.direction, s.status)) {
      s.how = Follow::strict;
      if (!trials_along(s, plane, x)) return false;
    } else if (s.status != KV_OK) {
      return false;
    }
  }
  return true;
}

bool test_answer(Stability& s, const Plane& plane) {
  const bool thorough = s.effort == Effort::thorough;
  s.m.counts.step = Step::curvature;
  const bool convex = known_convex(s, plane);
  s.m.counts.step = Step::answer_trials;
  const bool gas = has_gas(s, plane);
  if (!run_numbered(s, plane, kWilsonLiquid)) return false;
  if ((!gas || thorough) && !s.liquids_only && !vapour_trial(s, plane, !gas, 0.0)) return false;
  // Wilson's vapour of a feed of two liquids may begin as a liquid itself.
  if (!gas && !s.liquids_only && !s.passed && !run_numbered(s, plane, kIdealGas)) return false;
  s.m.counts.step = Step::answer_near_pure;
  if (!near_pure_trials(s, plane, gas)) return false;
  s.m.counts.step = Step::answer_trials;
  if (thorough && plane.count == 2 && !trials_between(s, plane, plane.phase[1].x, plane.phase[0].x))
    return false;
  for (int j = 0; j < plane.count && !s.liquids_only; ++j)
    if (!other_root_trial(s, plane, plane.phase[j].x, plane.phase[j].Z)) return false;
  // A trial came back to a phase of the answer: that settles it only where the phase is clearly convex.
  s.m.counts.step = Step::curvature;
  return !s.came_back || convex || s.cut() || test_curvature(s, plane);
}

// The plane of the phases [n] that a caller gives, evaluated here.
StatusCode given_plane(support::Arena& arena, const StabilityCall& call, Stability& s, Plane& plane) {
  plane.count = call.count;
  for (int j = 0; j < call.count; ++j) {
    double *const x = arena.zeros(s.m.ld), *const ln_phi = arena.zeros(s.m.ld);
    PlanePhase& phase = plane.phase[j];
    std::copy_n(call.phase[j], s.m.n, x);
    s.status = fugacity(s.m, x, Kind::stable, ln_phi, nullptr, phase.Z);
    if (s.status != KV_OK) return s.status;
    phase.x = x;
    phase.ln_phi = ln_phi;
  }
  answer_plane(s, plane);
  return KV_OK;
}

void write_result(const Stability& s, const Plane& plane, StabilityResult& result) {
  const bool of_feed = plane.count == 1;
  result.distance = s.have_lowest ? s.lowest.tm : 0.0;
  result.cut = s.cut();
  if (result.cut && result.w != nullptr) std::copy_n(s.lowest.w, s.m.n, result.w);
  for (int i = 0; i < s.m.n && of_feed && result.log_k != nullptr; ++i)
    result.log_k[i] = s.have_lowest ? s.feed_phi[i] - s.lowest.ln_phi[i] : 0.0;
}

StatusCode test_given(const StabilityCall& call, support::Arena& arena, StabilityResult& result) {
  Model own;
  if (call.model == nullptr) {
    const StatusCode status =
        make_model(call.T, call.P, call.context, call.routines, call.free_water, 0, arena, own);
    if (status != KV_OK) return status;
  }
  Stability s(call.model != nullptr ? *call.model : own, call.effort, false);
  const std::size_t square = static_cast<std::size_t>(s.m.ld) * s.m.n;
  double* const z = arena.zeros(s.m.ld);
  if (!normalise_feed(s.m.n, call.z, z)) return KV_COMPOSITION;
  open_stability(arena, arena.take(square), arena.take(square), s);
  Plane plane;
  plane.z = z;
  StatusCode status = call.count == 0 ? feed_plane(s, z, plane) : given_plane(arena, call, s, plane);
  plane.incipient = {call.incipient, nullptr, call.incipient_Z};
  if (status == KV_OK) status = test_plane(s, plane);
  if (status == KV_OK) write_result(s, plane, result);
  return status;
}

}  // namespace

StatusCode test_stability(const StabilityCall& call, StabilityResult& result) {
  return support::with_arena<5, 108>(call.context.record->count,
                                     [&](support::Arena& arena) { return test_given(call, arena, result); });
}

void open_stability(support::Arena& arena, double* dn, double* hessian, Stability& s) {
  constexpr std::size_t kVectors = 19;
  const std::size_t ld = s.m.ld;
  double* next = arena.zeros(kVectors * ld);
  const auto take = [&] { return std::exchange(next, next + ld); };
  s.trial.log_w = take();
  s.trial.w = take();
  s.trial.ln_phi = take();
  s.trial.at.s = take();
  s.lowest.log_w = take();
  s.lowest.w = take();
  s.lowest.ln_phi = take();
  s.lowest.at.s = take();
  s.work = {take(), take(), take(), take(), dn, hessian};
  s.wilson_k = take();
  s.between = take();
  s.direction = take();
  s.feed_phi = take();
  s.feed_d = take();
  s.feed_at.s = take();
  s.answer_d = take();
  s.found = arena.take(ld * kFound);
  s.tried.log_w = arena.take(ld * TriedStarts::kMost);
  s.began = arena.take(ld);
  wilson(s.m.T, s.m.P, *s.m.context.record, s.m.free_water, s.wilson_k, nullptr);
}

StatusCode feed_plane(Stability& s, const double* z, Plane& plane) {
  PlanePhase feed{z, s.feed_phi};
  s.m.counts.step = Step::feed;
  s.status = fugacity(s.m, z, trial_kind(s), s.feed_phi, nullptr, feed.Z, &s.feed_at);
  if (s.status != KV_OK) return s.status;
  feed.kind = s.liquids_only ? Kind::liquid : kind_of(s.m, z, feed.Z);
  if (s.m.built_in()) feed.at = &s.feed_at;
  for (int i = 0; i < s.m.ld; ++i) s.feed_d[i] = z[i] > 0.0 ? support::fast_log(z[i]) + s.feed_phi[i] : kNone;
  plane.z = z;
  plane.d = s.feed_d;
  plane.count = 1;
  plane.phase[0] = feed;
  return KV_OK;
}

void answer_plane(Stability& s, Plane& plane) {
  plane.d = s.answer_d;
  for (int i = 0; i < s.m.ld; ++i) {
    // A K at its bound makes what the other phase shows wrong.
    const PlanePhase* most = plane.phase;
    for (int j = 1; j < plane.count; ++j)
      if (plane.phase[j].x[i] > most->x[i]) most = plane.phase + j;
    s.answer_d[i] = plane.z[i] > 0.0 ? support::fast_log(most->x[i]) + most->ln_phi[i] : kNone;
  }
}

StatusCode test_plane(Stability& s, const Plane& plane) {
  begin_test(s);
  const bool done = plane.count == 1 ? test_feed(s, plane) : test_answer(s, plane);
  return done ? StatusCode{KV_OK} : s.status;
}

StatusCode next_cut(Stability& s, const Plane& plane, int& number, bool& found) {
  if (number == 0) s.tried.count = s.found_count = 0;
  found = false;
  Reference ref = reference_of(plane);
  ref.known = s.found;
  ref.known_count = s.found_count;
  while (number < kNearPure + s.m.n) {
    const int k = number++;
    if (k >= kNearPure && !(plane.z[k - kNearPure] > 0.0)) continue;
    if (!start_trial(s, plane, k)) return s.status;
    if (began_before(s, trial_kind(s))) continue;
    s.trial.Z = 0.0;
    s.m.counts.step = Step::answer_trials;
    s.status = follow_trial(s.m, ref, trial_kind(s), Follow::strict, s.work, s.trial);
    if (s.status != KV_OK) return s.status;
    if (s.trial.end != TrialEnd::stationary || !(s.trial.tm < kUnstable)) continue;
    if (s.found_count < kFound) std::copy_n(s.trial.w, s.m.ld, s.found + s.found_count++ * s.m.ld);
    std::swap(s.trial, s.lowest);
    s.have_lowest = found = true;
    return KV_OK;
  }
  return KV_OK;
}

StatusCode finish_lowest(Stability& s, const Plane& plane) {
  s.status = follow_trial(s.m, reference_of(plane), trial_kind(s), Follow::report, s.work, s.lowest);
  return s.status;
}

}  // namespace kestrune::flash
