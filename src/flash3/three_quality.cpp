// The two-phase flash goes first. Where its answer is cut by a third phase, the equilibrium there tells which
// phases there are, Newton's method at these phases finds where the vapour has its part, and the stability test
// confirms it. Equilibria on both sides close a bracket when that does not lead at once to the end.

#include "flash3/three_quality.hpp"

#include <algorithm>
#include <cmath>

#include "flash/pure_saturation.hpp"
#include "flash3/specified.hpp"
#include "flash3/three_free_water.hpp"

namespace kestrune::flash3 {
namespace {

constexpr int kMostStates = 80, kMostDropped = 2;
constexpr int kMostWalks = 12, kMostDetours = 3, kMostHalvings = 45;
constexpr double kShortestWalk = 1e-4, kShorter = 0.3;
constexpr double kFirstStep = 0.02, kLonger = 1.6, kLongestStepT = 0.06,
                 kLongestStepP = 0.3;  // in ln of the unknown
constexpr double kClosed = 1e-12;      // width of a bracket that is an answer
constexpr double kDefaultT = 298.15, kDefaultP = 1.0;
constexpr double kLowestT = 40.0, kHighestT = 2000.0, kLowestP = 1e-6, kHighestP = 1e4;

struct Search {
  const ThreeQualityCall& call;
  Equilibrium e;
  Specified s;
  double W = 0.0;
  bool of_T = true;
  double u = 0.0;  // the unknown
  StatusCode status = KV_OK;
  Phases incipient;  // the phases of the answer with the one of no amount
  Phases reached;    // where a walk has got to
};

double T_of(const Search& q, double u) {
  return q.of_T ? u : q.call.given;
}
double P_of(const Search& q, double u) {
  return q.of_T ? q.call.given : u;
}

bool move_to(Search& q, double u) {
  q.u = u;
  q.status = set_conditions(T_of(q, u), P_of(q, u), q.e);
  return q.status == KV_OK;
}

// The equilibrium at u and its vapour less W; at the ends a whole phase that is not there counts as beyond.
bool state_at(Search& q, double u, double& f) {
  if (!move_to(q, u)) return false;
  q.status = find_equilibrium(q.e);
  if (q.status != KV_OK) return false;  // also beside a fourth phase: nothing is followed further there
  const int v = find_vapour(q.e);
  const double V = v < 0 ? 0.0 : q.e.p.amount[v];
  f = V - q.W;
  if (q.W == 0.0 && V == 0.0) f = -1.0;
  if (q.W == 1.0 && v >= 0 && q.e.p.count == 1) f = 1.0;
  return true;
}

// Newton at the phases of e.p from u for a part W of vapour, which is one of them; without those that end with
// less than nothing. True: e.p at q.u is a solution.
bool solve_at_phases(Search& q, double u, double W) {
  q.s.wanted = W;
  q.s.T = T_of(q, u);
  q.s.P = P_of(q, u);
  for (int dropped = 0; dropped <= kMostDropped && q.e.p.count > 1; ++dropped) {
    const int v = find_vapour(q.e);
    if (v < 0) return false;
    Phases& p = q.e.p;
    q.s.vapour = v;
    // The amounts as they are wanted.
    const double others = 1.0 - p.amount[v];
    for (int j = 0; j < p.count; ++j)
      p.amount[j] = j == v ? W : others > 0.0 ? p.amount[j] / others * (1.0 - W) : (1.0 - W) / (p.count - 1);
    StatusCode status = KV_OK;
    const Found found = solve_specified(q.s, status);
    q.u = q.of_T ? q.s.T : q.s.P;
    if (found == Found::yes) return true;
    if (found != Found::negative) return false;
    drop_least(p, q.e.z, q.e.m.ld);
  }
  return false;
}

// Whether the phase that has the part W is the least densely packed one: beyond a critical point it is not.
bool vapour_has_its_part(const Search& q) {
  return std::fabs(q.e.p.amount[lightest_phase(q.e)] - q.W) <= 1e-9;
}

// Whether nothing cuts the solution that was just found.
bool confirm(Search& q) {
  if (!move_to(q, q.u)) return false;
  q.status = evaluate_phases(q.e.m, q.e.z, q.e.p, q.e.w, false);
  if (q.status != KV_OK || !vapour_has_its_part(q)) return false;
  copy_phases(q.e.p, q.incipient, q.e.m.ld);
  q.status = test_equilibrium(q.e);
  return q.status == KV_OK && !q.e.third.found;
}

/*
 * From the equilibrium e.p at u, which has vapour and liquid, along the line of these phases to where the
 * vapour has its part: at once, or in shorter and shorter steps. True: e.p at q.u is that point.
 */
bool walk_to_fraction(Search& q, double u, int most) {
  const int v = find_vapour(q.e);
  if (v < 0 || q.e.p.count < 2) return false;
  double from = q.e.p.amount[v], goal = q.W;
  copy_phases(q.e.p, q.reached, q.e.m.ld);
  for (int k = 0; k < most && (k == 0 || std::fabs(goal - from) > kShortestWalk); ++k) {
    if (solve_at_phases(q, u, goal)) {
      if (goal == q.W) return true;
      from = goal;
      u = q.u;
      copy_phases(q.e.p, q.reached, q.e.m.ld);
      goal = q.W;
    } else {
      copy_phases(q.reached, q.e.p, q.e.m.ld);
      goal = from + kShorter * (goal - from);
    }
  }
  return false;
}

// Unknowns between which the part of the vapour is crossed.
struct Sides {
  double below = 0.0, above = 0.0;  // of states with too little and too much vapour
  bool have_below = false, have_above = false;
  Phases little, much;  // these states
  Phases joined;        // of both
  bool closed() const { return have_below && have_above; }
  double V_little = 0.0, V_much = 1.0;
  void add(const Search& q, double u, double f) {
    if (closed() && !((u - below) * (u - above) < 0.0)) return;  // outside of what is known
    (f < 0.0 ? V_little : V_much) = std::clamp(f + q.W, 0.0, 1.0);
    (f < 0.0 ? below : above) = u;
    (f < 0.0 ? have_below : have_above) = true;
    copy_phases(q.e.p, f < 0.0 ? little : much, q.e.m.ld);
  }
};

// All phases that are seen on the two sides, and of four all sets of three: those between them where the unknown
// stands still, and a phase that is about to appear.
bool solve_between_sides(Search& q, Sides& sides) {
  const double u = std::sqrt(sides.below * sides.above);
  const double range = sides.V_much - sides.V_little;
  const double part = range > 0.0 ? std::clamp((q.W - sides.V_little) / range, 0.0, 1.0) : 0.5;
  Phases& joined = sides.joined;
  if (!join_phases(q.e.m.n, q.e.m.ld, q.e.z, sides.little, sides.much, part, joined)) return false;
  for (int without = joined.count == kRoom ? 0 : kMostPhases; without < kRoom; ++without) {
    copy_phases(joined, q.e.p, q.e.m.ld);
    if (without < joined.count) drop_phase(q.e.p, without);
    if (move_to(q, u) && solve_at_phases(q, u, q.W) && confirm(q)) return true;
  }
  return false;
}

// Walks that may still fail, from states with two and three phases: they cost more than the state itself.
struct Walks {
  int two, three;
};

// A state at u: into the sides, and the place to walk from when it has both vapour and liquid.
enum class Step { solved, missed, failed };
Step look_at(Search& q, Sides& sides, double u, Walks& walks, double& f) {
  if (!state_at(q, u, f)) return Step::failed;
  const bool was_closed = sides.closed();
  sides.add(q, u, f);
  for (int detour = 0; detour < kMostDetours; ++detour) {
    int& left = q.e.p.count == kMostPhases ? walks.three : walks.two;
    if (q.e.p.count < 2 || left <= 0) return Step::missed;
    if (!walk_to_fraction(q, q.u, was_closed ? 1 : kMostWalks)) {
      --left;
      return Step::missed;
    }
    const double there = q.u;
    if (confirm(q)) return Step::solved;
    // What is there instead is the next state to walk from.
    if (!state_at(q, there, f)) return Step::missed;
    sides.add(q, there, f);
  }
  return Step::missed;
}

constexpr Walks kFailedWalks{1, 3};

// From the first guess of the unknown outwards to both sides, until its vapour is crossed.
StatusCode bracket(Search& q, Sides& sides, Walks& walks) {
  // The vapour's part rises with temperature and falls with pressure, as a rule; beside critical points it need
  // not.
  const double rising = q.of_T ? 1.0 : -1.0;
  const double least = q.of_T ? kLowestT : kLowestP, most = q.of_T ? kHighestT : kHighestP;
  const double longest = q.of_T ? kLongestStepT : kLongestStepP;
  double f = 0.0, first = q.u, step = kFirstStep;
  Step step_to = look_at(q, sides, first, walks, f);
  if (step_to == Step::solved) return KV_OK;
  if (step_to == Step::failed) return q.status > KV_STATUS_CALL_BLOCK ? q.status : StatusCode{KV_NO_START};
  const double towards = f < 0.0 ? rising : -rising;
  double ends[] = {first, first};
  bool open[] = {true, true};
  for (int k = 0; k < kMostStates && (open[0] || open[1]) && !sides.closed(); ++k) {
    const int side = k % 2;  // the likely one first
    if (k > 1 && (side == 0 || !open[0])) step = std::min(kLonger * step, longest);
    if (!open[side]) continue;
    const double u = ends[side] * std::exp((side == 0 ? towards : -towards) * step);
    open[side] = u > least && u < most;
    if (!open[side]) continue;
    ends[side] = u;
    step_to = look_at(q, sides, u, walks, f);
    if (step_to == Step::solved) return KV_OK;
    // All vapour on the way to more of it: there is nothing further on this side.
    const bool to_vapour = ((side == 0 ? towards : -towards) > 0.0) == (rising > 0.0);
    open[side] = step_to != Step::failed && !(to_vapour && q.e.p.count == 1 && q.e.gas);
  }
  return KV_NO_SATURATION;
}

// Between the sides, with a look from each state.
StatusCode close_in(Search& q, Sides& sides) {
  double f = 0.0;
  for (int k = 0; k < kMostHalvings; ++k) {
    if (std::fabs(sides.below - sides.above) <= kClosed * sides.above) return KV_NO_SATURATION;
    if (solve_between_sides(q, sides)) return KV_OK;
    Walks walks{1, 1};
    const Step step = look_at(q, sides, std::sqrt(sides.below * sides.above), walks, f);
    if (step == Step::solved) return KV_OK;
    if (step == Step::failed) return q.status;
  }
  return KV_NOT_CONVERGED;
}

StatusCode search(Search& q, Sides& sides) {
  // From the two-phase point; and where that ends at a fluid that changes its name, from an ordinary state.
  const double usual[] = {q.of_T ? kDefaultT : kDefaultP, q.of_T ? 200.0 : 10.0, q.of_T ? 450.0 : 100.0};
  const double starts[] = {q.u, usual[0], usual[1], usual[2]};
  StatusCode status = KV_NO_SATURATION;
  int tried = 0;
  for (const double start : starts) {
    // Two whole searches are enough; one that could not even begin was none.
    if (tried >= 2) break;
    sides.have_below = sides.have_above = false;
    q.u = start;
    Walks walks = kFailedWalks;
    status = bracket(q, sides, walks);
    if (status != KV_OK && sides.closed()) status = close_in(q, sides);
    if (status == KV_OK || status > KV_STATUS_CALL_BLOCK) return status;
    tried += status == KV_NO_START ? 0 : 1;
  }
  return status == KV_NOT_CONVERGED ? status : StatusCode{KV_NO_SATURATION};
}

// The answer of the two-phase flash into e.p. KV_OK, or why there is none.
StatusCode two_phase_point(Search& q) {
  const ThreeQualityCall& c = q.call;
  Equilibrium& e = q.e;
  double unknown = *c.unknown;
  const StatusCode status = flash::quality_flash(
      {c.find, q.W, c.given, e.z, c.mixture, c.routines, false, true, &unknown, e.x, e.y, e.K, nullptr});
  if (status != KV_OK && status != KV_UNSTABLE_POINT) return status;
  q.u = unknown;
  e.p.count = 2;
  std::copy_n(e.x, e.m.n, e.p.x[0]);
  std::copy_n(e.y, e.m.n, e.p.x[1]);
  e.p.amount[0] = 1.0 - q.W;
  e.p.amount[1] = q.W;
  e.p.Z[0] = e.p.Z[1] = 0.0;
  return KV_OK;
}

// The phases with the incipient one among them, in their places.
StatusCode write_answer(Search& q) {
  const ThreeQualityCall& c = q.call;
  copy_phases(q.incipient, q.e.p, q.e.m.ld);
  *c.unknown = q.u;
  return write_quality_phases(q.e, q.W, c.out);
}

// Solutions start from where the caller or the two-phase flash says.
StatusCode solve(Search& q, Sides& sides) {
  const ThreeQualityCall& c = q.call;
  const bool given = c.estimate && *c.unknown > 0.0 && take_estimate(c.out, q.e);
  if (given) {
    q.u = *c.unknown;
    if (move_to(q, q.u) && evaluate_phases(q.e.m, q.e.z, q.e.p, q.e.w, false) == KV_OK &&
        solve_at_phases(q, q.u, q.W) && confirm(q))
      return KV_OK;
  }
  const StatusCode status = two_phase_point(q);
  if (status == KV_OK) {
    if (confirm(q)) return KV_OK;
    if (q.status != KV_OK) return q.status;
  } else if (status > KV_STATUS_CALL_BLOCK) {
    return status;
  } else {
    q.u = *c.unknown > 0.0 ? *c.unknown : q.of_T ? kDefaultT : kDefaultP;
  }
  return search(q, sides);
}

// ---- a single component ----

StatusCode single_component(const ThreeQualityCall& c) {
  const int n = c.mixture->count;
  return support::with_arena<0, 6>(n, [&](support::Arena& arena) {
    double *const x = arena.zeros(n), *const y = arena.zeros(n), *const K = arena.zeros(n);
    double unknown = *c.unknown;
    const double W = std::clamp(c.W, 0.0, 1.0);
    const StatusCode status = flash::quality_flash(
        {c.find, W, c.given, c.z, c.mixture, c.routines, c.free_water, true, &unknown, x, y, K, nullptr});
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
  const int n = c.mixture->count, ld = support::padded(n);
  support::TraceWriter silent(false, 0);
  Search q{c, {}, {}, 0.0, true, 0.0, KV_OK, {}, {}};
  q.W = std::clamp(c.W, 0.0, 1.0);
  q.of_T = c.find == flash::Find::temperature;
  q.s.e = &q.e;
  q.s.what = Specify::vapour;
  q.s.wanted = q.W;
  q.s.find_pressure = !q.of_T;
  take_specified(arena, n, ld, q.s);
  Sides sides;
  for (Phases* p : {&q.reached, &q.incipient, &sides.little, &sides.much, &sides.joined}) take_phases(arena, ld, *p);
  const double start = *c.unknown > 0.0 ? *c.unknown : q.of_T ? kDefaultT : kDefaultP;
  const StatusCode opened = open_equilibrium({T_of(q, start), P_of(q, start), c.z, c.mixture, c.routines}, 1,
                                             model_arena, silent, q.e);
  if (opened != KV_OK) return opened;
  const StatusCode status = solve(q, sides);
  return status == KV_OK ? write_answer(q) : status;
}

}  // namespace

StatusCode three_quality_flash(const ThreeQualityCall& c) {
  const int n = c.mixture->count;
  if (const StatusCode bad = check_sum(c.z, *c.mixture); bad != KV_OK) return bad;
  if (flash::single_component(n, c.z, flash::pure_tolerance(*c.mixture)) >= 0) return single_component(c);
  if (c.free_water) return three_quality_free_water(c);
  return support::with_arena<6, 60>(n, [&](support::Arena& arena) {
    return support::with_arena<12, 80>(n, [&](support::Arena& model) { return with_search(c, arena, model); });
  });
}

}  // namespace kestrune::flash3
