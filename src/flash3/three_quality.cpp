// The two-phase flash goes first. Where its answer is cut by a third phase, the equilibrium there tells which
// phases there are, Newton's method at these phases finds where the vapour has its part, and the stability test
// confirms it. A search over the range follows when that does not lead at once to the end.

#include "flash3/three_quality.hpp"

#include <algorithm>
#include <cmath>

#include "flash/pure/pure_saturation.hpp"
#include "flash3/quality_search.hpp"
#include "flash3/three_free_water.hpp"

namespace kestrune::flash3 {
namespace {

constexpr double kNearT = 0.02, kNearP = 0.3;  // ln u: an estimate leads no further than here

// The answer of the two-phase flash into e.p. KV_OK, or why there is none.
StatusCode two_phase_point(QualitySearch& q) {
  const ThreeQualityCall& c = q.call;
  Equilibrium& e = q.e;
  double unknown = *c.unknown;
  const StatusCode status =
      flash::quality_flash({{e.z, c.context, c.routines}, c.find, q.W, c.given, &unknown, e.x, e.y, e.K});
  if (status != KV_OK && status != KV_UNSTABLE_POINT) return status;
  q.u = unknown;
  put_two_phases(e, q.W);
  return KV_OK;
}

// The phases with the incipient one among them, in their places.
StatusCode write_answer(QualitySearch& q) {
  const ThreeQualityCall& c = q.call;
  copy_phases(q.incipient, q.e.p, q.e.m.ld);
  *c.unknown = q.u;
  return write_quality_phases(q.e, q.W, c.out);
}

// Solutions start from where the caller or the two-phase flash says.
StatusCode solve(QualitySearch& q) {
  const ThreeQualityCall& c = q.call;
  const bool given = c.start != flash::Start::cold && *c.unknown > 0.0 && take_estimate(c.out, q.e);
  if (given) {
    q.u = *c.unknown;
    if (move_to(q, q.u) && evaluate_phases(q.e.m, q.e.z, q.e.p, q.e.w, false) == KV_OK &&
        solve_at_phases(q, q.u, q.W) && std::fabs(std::log(q.u / *c.unknown)) < (q.of_T ? kNearT : kNearP) &&
        accept(q))
      return KV_OK;
  }
  const StatusCode status = two_phase_point(q);
  if (status == KV_OK) {
    if (accept(q)) return KV_OK;
    if (q.status != KV_OK) return q.status;
  } else if (status > KV_STATUS_CALL_BLOCK) {
    return status;
  } else {
    q.u = q.of_T ? kDefaultT : kDefaultP;  // whatever the caller gave: the answer is not to depend on it
  }
  return search(q);
}

// ---- a single component ----

StatusCode single_component(const ThreeQualityCall& c) {
  const int n = c.context.record->count;
  return support::with_arena<0, 6>(n, [&](support::Arena& arena) {
    double *const x = arena.zeros(n), *const y = arena.zeros(n), *const K = arena.zeros(n);
    double unknown = *c.unknown;
    const double W = std::clamp(c.W, 0.0, 1.0);
    const StatusCode status = flash::quality_flash({c.afresh(), c.find, W, c.given, &unknown, x, y, K});
    if (status != KV_OK) return status;
    *c.unknown = unknown;
    *c.out.V = W;
    *c.out.beta = 1.0;
    for (int i = 0; i < n; ++i) {
      c.out.xA[i] = x[i];
      c.out.y[i] = y[i];
      c.out.KLV[i] = K[i];
      c.out.xB[i] = c.out.KLL[i] = 0.0;
    }
    return StatusCode{KV_LV_ANSWER};
  });
}

StatusCode with_search(const ThreeQualityCall& c, support::Arena& arena, support::Arena& model_arena) {
  const int n = c.context.record->count, ld = support::padded(n);
  support::TraceWriter silent(false, 0);
  QualitySearch q{c, {}, {}, 0.0, true, 0.0, KV_OK, {}, {}, {}, {}, {}, {}};
  q.W = std::clamp(c.W, 0.0, 1.0);
  q.of_T = c.find == flash::Find::temperature;
  q.s.e = &q.e;
  q.s.what = Specify::vapour;
  q.s.wanted = q.W;
  q.s.find_pressure = !q.of_T;
  take_specified(arena, n, ld, q.s);
  for (Phases* p : {&q.reached, &q.incipient, &q.joined, &q.outer[0].p, &q.outer[1].p, &q.fresh.p})
    take_phases(arena, ld, *p);
  for (Node& node : q.between) take_phases(arena, ld, node.p);
  const double start = q.of_T ? kDefaultT : kDefaultP;
  const StatusCode opened = open_equilibrium(c, q.T_of(start), q.P_of(start), 1, model_arena, silent, q.e);
  if (opened != KV_OK) return opened;
  const StatusCode status = solve(q);
  return status == KV_OK ? write_answer(q) : status;
}

// The point with the marks of three_phase_flash.
StatusCode find_point(const ThreeQualityCall& c) {
  const int n = c.context.record->count;
  if (const StatusCode bad = flash::check_feed_sum(c.z, *c.context.record); bad != KV_OK) return bad;
  if (flash::single_component_of_feed(n, c.z, flash::pure_tolerance(*c.context.record)) >= 0)
    return single_component(c);
  if (c.free_water) return three_quality_free_water(c);
  return support::with_arena<6, 180>(n, [&](support::Arena& arena) {
    return support::with_arena<12, 80>(n, [&](support::Arena& model) { return with_search(c, arena, model); });
  });
}

}  // namespace

StatusCode three_quality_flash(const ThreeQualityCall& c) {
  const StatusCode status = find_point(c);
  const bool found = status == KV_OK || status == KV_LV_ANSWER;
  if (found || status == KV_UNSTABLE_POINT) move_marked_liquid(c.context.record->count, c.out);
  return found ? StatusCode{KV_OK} : status;
}

}  // namespace kestrune::flash3
