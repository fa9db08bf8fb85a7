// Equilibria outwards from a first guess to both sides, each with a walk from it along the line of its phases;
// and between two of them wherever the vapour's part is crossed or the phases are others.

#include "flash3/quality_search.hpp"

#include <cmath>

#include "flash/accept.hpp"
#include "flash/wilson.hpp"

namespace kestrune::flash3 {
namespace {

constexpr int kMostStates = 80, kMostDropped = 2;  // on the way outwards; phases dropped from one solution
constexpr int kMostWalks = 12, kFewWalks = 4;      // steps along the line of a state; beside a change of phases
constexpr int kMostDetours = 3, kMostHalvings = 45;  // walks on from where one ended; of a bracket
constexpr int kMostWalkSteps = 45;   // of Newton's method; of those that take more few lead to an answer
constexpr int kMostFailedWalks = 6;  // of a call
constexpr double kShortestWalk = 1e-4, kShorter = 0.3;  // in the vapour's part; of a step that failed
constexpr double kFirstStep = 0.02, kLonger = 1.6, kLongestStepT = 0.06,
                 kLongestStepP = 0.3;  // in ln of the unknown
constexpr double kClosed = 1e-8;       // ln u: a bracket of this width holds nothing
constexpr double kLongerCut = 2.5;     // of steps where a fourth phase cuts all states
constexpr double kSameState = 1e-8;    // sum of (x - y)^2/(x + y)
constexpr double kSameZ = 0.25;        // ln Z of a vapour that is the same on both sides of a step
constexpr double kLargeChange = 0.1;   // of the vapour's part where a liquid appears
constexpr double kMuchLess = 0.8;      // of the vapour's part: where there cannot be more, it is too cold
constexpr int kMostFailed = 3;         // states without an answer, to each side
constexpr double kNarrow = 3e-4;       // ln u: a change of phases is resolved to here
constexpr double kShortT = 0.01, kShortP = 0.05;  // ln u: phases that lead on over it are the same
constexpr double kFourPhases = 200.0;  // K: below it a side ends where a fourth phase cuts two states on end
constexpr double kLowestT = 40.0, kHighestT = 2000.0, kLowestP = 1e-6, kHighestP = 1e4;  // K, atm: the range

}  // namespace

bool move_to(QualitySearch& q, double u) {
  q.u = u;
  q.status = set_conditions(q.T_of(u), q.P_of(u), q.e);
  return q.status == KV_OK;
}

bool solve_at_phases(QualitySearch& q, double u, double W) {
  q.s.wanted = W;
  q.s.T = q.T_of(u);
  q.s.P = q.P_of(u);
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

bool accept(QualitySearch& q) {
  Equilibrium& e = q.e;
  if (!(q.u > 0.0 && q.u < 1e300) || !move_to(q, q.u)) return false;
  q.status = evaluate_phases(e.m, e.z, e.p, e.w, false);
  if (q.status != KV_OK || std::fabs(e.p.amount[lightest_phase(e)] - q.W) > flash::kOwedBalance) return false;
  copy_phases(e.p, q.incipient, e.m.ld);
  q.status = test_equilibrium(e);
  return q.status == KV_OK && accept(e) && !e.third.found;
}

namespace {

// The equilibrium at u, from the phases of one near it where those are given, and its vapour less W; at the ends a
// whole phase that is not there counts as beyond.
bool state_at(QualitySearch& q, double u, double& f, const Phases* near, bool& cut) {
  if (!move_to(q, u)) return false;
  if (near != nullptr && near->count > 1) {
    copy_phases(*near, q.e.p, q.e.m.ld);
    q.status = find_equilibrium_from(q.e);
  } else {
    q.status = find_equilibrium(q.e);
  }
  // Where there are four phases the three that were found lead on.
  cut = q.status == KV_FOURTH_PHASE;
  if (cut) q.status = KV_OK;
  if (q.status != KV_OK) return false;
  const int v = find_vapour(q.e);
  const double V = v < 0 ? 0.0 : q.e.p.amount[v];
  if (v < 0 && q.e.p.count == 2) q.two_liquids = true;
  f = V - q.W;
  if (q.W == 0.0 && V == 0.0) f = -1.0;
  if (q.W == 1.0 && v >= 0 && q.e.p.count == 1) f = 1.0;
  return true;
}

/*
 * From the equilibrium e.p at u, which has vapour and liquid, along the line of these phases to where the
 * vapour has its part: at once, or in shorter and shorter steps. True: e.p at q.u is that point.
 */
bool walk_to_fraction(QualitySearch& q, double u, int most) {
  const int v = find_vapour(q.e);
  if (v < 0 || q.e.p.count < 2) return false;
  double from = q.e.p.amount[v], goal = q.W;
  copy_phases(q.e.p, q.reached, q.e.m.ld);
  const int last = q.s.steps + kMostWalkSteps;
  for (int k = 0; k < most && q.s.steps < last && (k == 0 || std::fabs(goal - from) > kShortestWalk); ++k) {
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

double width(const Node& a, const Node& b) {
  return std::fabs(std::log(a.u / b.u));
}

void keep_node(const QualitySearch& q, double u, double f, bool cut, Node& node) {
  node.u = u;
  node.f = f;
  node.cut = cut;
  copy_phases(q.e.p, node.p, q.e.m.ld);
}

// Walks that may still fail, from states with two and three phases, and their steps: they cost more than the
// state itself.
struct Walks {
  int two, three, steps_two, steps_three;
};

// A state at u, into the node, and a walk from there when it has both vapour and liquid.
enum class Step { solved, missed, failed };
Step look_at(QualitySearch& q, double u, Walks& walks, const Phases* near, Node& node) {
  double f = 0.0;
  bool cut = false;
  if (!state_at(q, u, f, near, cut)) return Step::failed;
  keep_node(q, u, f, cut, node);
  for (int detour = 0; detour < kMostDetours; ++detour) {
    const bool three = q.e.p.count == kMostPhases;
    int& left = three ? walks.three : walks.two;
    if (q.e.p.count < 2 || left <= 0 || q.failed_walks >= kMostFailedWalks) return Step::missed;
    if (!walk_to_fraction(q, q.u, three ? walks.steps_three : walks.steps_two)) {
      --left;
      ++q.failed_walks;
      return Step::missed;
    }
    const double there = q.u;
    if (accept(q)) return Step::solved;
    // What is there instead is the next state to walk from.
    if (!state_at(q, there, f, nullptr, cut) || cut) return Step::missed;
  }
  return Step::missed;
}

// The phases in q.joined, which two nodes have together, and of four of them all sets of three, where the
// vapour has its part: between the nodes, where the unknown stands still, or where a phase is about to appear.
bool solve_joined(QualitySearch& q, double u) {
  for (int without = q.joined.count == kRoom ? 0 : kMostPhases; without < kRoom; ++without) {
    copy_phases(q.joined, q.e.p, q.e.m.ld);
    if (without < q.joined.count) drop_phase(q.e.p, without);
    if (move_to(q, u) && solve_at_phases(q, u, q.W) && accept(q)) return true;
  }
  return false;
}

// Whether the phases of a node, led on to where another node is, are those of the other node.
bool lead_on(QualitySearch& q, const Node& from, const Node& to) {
  Equilibrium& e = q.e;
  if (!move_to(q, to.u)) return false;
  copy_phases(from.p, e.p, e.m.ld);
  StatusCode status = evaluate_phases(e.m, e.z, e.p, e.w, false);
  if (status != KV_OK || polish_phases(e.m, e.z, e.how, e.p, e.w, status) != Ended::converged) return false;
  for (int j = 0; j < e.p.count; ++j)
    if (!same_phase(e.m.n, e.z, e.p.x[j], to.p.x[j], kSameState)) return false;
  return true;
}

// The least densely packed phase of a node, whatever it is called.
int lightest_of(const QualitySearch& q, const Phases& p) {
  int v = 0;
  for (int j = 1; j < p.count; ++j)
    if (flash::lighter(*q.e.m.context.record, p.x[j], p.Z[j], p.x[v], p.Z[v])) v = j;
  return v;
}

// Whether something happens between two nodes: the vapour's part is crossed, or the phases that end from one
// side are others than those that end from the other. A vapour that only changes its name crosses nothing.
struct Between {
  bool crossed = false, changed = false;
};
Between look_between(QualitySearch& q, const Node& a, const Node& b) {
  Between there;
  there.crossed = (a.f < 0.0) != (b.f < 0.0);
  if (a.p.count < 2 || b.p.count < 2) return there;
  const bool close = width(a, b) < (q.of_T ? kShortT : kShortP), same_number = a.p.count == b.p.count;
  // Three phases that a fourth cuts on both sides have the vapour's part where it cuts them too.
  if ((close || !there.crossed) && a.cut && b.cut) return {};
  const int va = lightest_of(q, a.p), vb = lightest_of(q, b.p);
  // A dense fluid may end in a gas without another phase in between, or with one, from which each of them leads
  // on to the other.
  const bool alike = std::fabs(std::log(a.p.Z[va] / b.p.Z[vb])) < kSameZ;
  const double change = std::fabs(a.p.amount[va] - b.p.amount[vb]);
  if (there.crossed && close && alike && (same_number || change < kLargeChange)) {
    const bool crossed = (a.p.amount[va] < q.W) != (b.p.amount[vb] < q.W);
    there.crossed = crossed || (same_number && (!lead_on(q, a, b) || !lead_on(q, b, a)));
  } else if (!there.crossed && a.f + q.W > 0.0) {
    there.changed =
        !alike || (same_number ? !lead_on(q, a, b) || !lead_on(q, b, a) : std::fabs(a.f - b.f) > kLargeChange);
  }
  return there;
}

// The phases of both nodes, into q.joined.
bool join_nodes(QualitySearch& q, const Node& a, const Node& b) {
  const double range = b.V(q.W) - a.V(q.W);
  const double part = range != 0.0 ? std::clamp((q.W - a.V(q.W)) / range, 0.0, 1.0) : 0.5;
  return join_phases(q.e.m.n, q.e.m.ld, q.e.z, a.p, b.p, part, q.joined);
}

// Halves a bracket of the vapour's part until it has no width.
bool close_in(QualitySearch& q, const Node& first, const Node& second) {
  Node &a = q.between[kDeepest], &b = q.between[kDeepest + 1];
  const auto copy = [&](const Node& from, Node& to) {
    to.u = from.u;
    to.f = from.f;
    to.cut = from.cut;
    copy_phases(from.p, to.p, q.e.m.ld);
  };
  copy(first, a);
  copy(second, b);
  for (int k = 0; k < kMostHalvings && width(a, b) > kClosed; ++k) {
    Walks walks{1, 1, 1, 1};
    const Step step = look_at(q, std::sqrt(a.u * b.u), walks, &a.p, q.fresh);
    if (step == Step::solved) return true;
    if (step == Step::failed) return false;
    copy(q.fresh, (q.fresh.f < 0.0) == (a.f < 0.0) ? a : b);
    if (join_nodes(q, a, b) && solve_joined(q, std::sqrt(a.u * b.u))) return true;
    if (a.p.count == 1 && b.p.count == 1) return false;  // a fluid that changes its name
  }
  return false;
}

/*
 * Looks for the point between two nodes: with the phases of both, and on both sides of the middle as long as
 * something happens there. True: it is in e.p at q.u.
 */
bool search_between(QualitySearch& q, const Node& a, const Node& b, int depth) {
  const Between there = look_between(q, a, b);
  if (!there.crossed && !(there.changed && q.changes-- > 0)) return false;
  const double middle = std::sqrt(a.u * b.u);
  const bool close = width(a, b) < (q.of_T ? kShortT : kShortP);
  if (join_nodes(q, a, b) && (close || q.joined.count < kRoom) && solve_joined(q, middle)) return true;
  if (depth >= kDeepest || width(a, b) < kNarrow) return there.crossed && close_in(q, a, b);
  Walks walks{1, 1, 1, kFewWalks};
  Node& node = q.between[depth];
  const Step step = look_at(q, middle, walks, &a.p, node);
  if (step != Step::missed) return step == Step::solved;
  return search_between(q, a, node, depth + 1) || search_between(q, node, b, depth + 1);
}

/*
 * The most vapour that there can be at a temperature and below it, at the pressure given: no more than the components
 * have that are volatile there. Where fugacities leave the vapour far less of the others than their part of the feed,
 * they cannot be much of it however the liquids mix, since in a stable liquid none has more than when it is pure.
 */
double most_vapour(QualitySearch& q, double T) {
  constexpr double kVolatile = 1e-7;  // Wilson's coefficient; dense phases hold up to 1e4 times as much

  double* const K = q.joined.x[0];
  flash::wilson(T, q.call.given, *q.e.m.context.record, false, K, nullptr);
  double most = 0.0;
  for (int i = 0; i < q.e.m.n; ++i)
    if (K[i] > kVolatile) most += q.e.z[i];
  return most;
}

// Whether there is nothing to look for at u, on the way there: beyond the range, or too cold for that much vapour.
bool beyond_search(QualitySearch& q, double u, double way) {
  const double least = q.of_T ? kLowestT : kLowestP, most = q.of_T ? kHighestT : kHighestP;
  if (!(u > least && u < most)) return true;
  return q.of_T && way < 0.0 && !(most_vapour(q, u) > kMuchLess * q.W);
}

// Whether the state at u, q.fresh, is the last on its side: all vapour on the way to more of it, rising; or on the way to
// the cold the second on end that a fourth phase cuts.
bool last_on_side(const QualitySearch& q, double u, double way, double rising, bool cut) {
  if (way * rising > 0.0 && q.fresh.p.count == 1 && q.e.gas) return true;
  return cut && q.of_T && way < 0.0 && u < kFourPhases;
}

// From the first guess of the unknown outwards to both sides.
StatusCode search_from(QualitySearch& q, double first) {
  // The vapour's part rises with temperature and falls with pressure, as a rule; beside critical points it need
  // not.
  const double rising = q.of_T ? 1.0 : -1.0;
  const double longest = q.of_T ? kLongestStepT : kLongestStepP;
  Walks walks{1, 3, kMostWalks, kMostWalks};
  Step step_to = look_at(q, first, walks, nullptr, q.outer[0]);
  if (step_to == Step::solved) return KV_OK;
  if (step_to == Step::failed) return q.status > KV_STATUS_CALL_BLOCK ? q.status : StatusCode{KV_NO_START};
  Node& start = q.outer[1];
  start.u = first;
  start.f = q.outer[0].f;
  start.cut = q.outer[0].cut;
  copy_phases(q.outer[0].p, start.p, q.e.m.ld);
  const double towards = start.f < 0.0 ? rising : -rising;
  double ends[] = {first, first}, step = kFirstStep;
  bool cut[] = {false, false};              // the last two states of a side
  int open[] = {kMostFailed, kMostFailed};  // failures that a side may still have
  for (int k = 0; k < kMostStates && (open[0] > 0 || open[1] > 0); ++k) {
    const int side = k % 2;  // the likely one first
    if (k > 1 && (side == 0 || open[0] == 0)) step = std::min(kLonger * step, longest);
    if (open[side] == 0) continue;
    const double way = side == 0 ? towards : -towards;
    const double u = ends[side] * std::exp(way * step * (cut[side] ? kLongerCut : 1.0));
    if (beyond_search(q, u, way)) {
      open[side] = 0;
      continue;
    }
    ends[side] = u;
    Node& outer = q.outer[side];
    step_to = look_at(q, u, walks, &outer.p, q.fresh);
    if (step_to == Step::solved) return KV_OK;
    if (step_to == Step::failed) {
      if (q.status > KV_STATUS_CALL_BLOCK) return q.status;
      --open[side];
      continue;
    }
    cut[side] = outer.cut && q.fresh.cut;
    if (last_on_side(q, u, way, rising, cut[side])) open[side] = 0;
    Node& next = q.between[0];
    std::swap(next, q.fresh);
    if (search_between(q, outer, next, 1)) return KV_OK;
    std::swap(outer, next);
  }
  return KV_NO_SATURATION;
}

/*
 * In short steps, where the others pass over a vapour: beside water it may be there over some kelvin only, between
 * two liquids below and above, next to the critical point of what is not water.
 */
StatusCode search_closely(QualitySearch& q) {
  constexpr double kStep = 0.008, kFrom = 0.95, kTo = 1.3;  // of the pseudo-critical temperature
  const int n = q.e.m.n, water = eos::find_water_family(*q.e.m.context.record);
  double dry = 0.0;
  for (int i = 0; i < n; ++i) dry += q.joined.x[0][i] = i == water ? 0.0 : q.e.z[i];
  const double Tc = flash::pseudo_critical_temperature(*q.e.m.context.record, q.joined.x[0]) / dry;
  bool have = false;
  q.changes = 0;
  for (double u = kFrom * Tc; u < kTo * Tc; u *= 1.0 + kStep) {
    Walks walks{1, 1, 1, kMostWalks};
    const Step step = look_at(q, u, walks, have ? &q.outer[0].p : nullptr, q.fresh);
    if (step == Step::solved) return KV_OK;
    if (step == Step::failed && q.status > KV_STATUS_CALL_BLOCK) return q.status;
    if (step == Step::missed) {
      Node& next = q.between[0];
      std::swap(next, q.fresh);
      if (have && search_between(q, q.outer[0], next, 1)) return KV_OK;
      std::swap(q.outer[0], next);
    }
    have = step == Step::missed;
  }
  return KV_NO_SATURATION;
}

}  // namespace

StatusCode search(QualitySearch& q) {
  // From the two-phase point; where a search cannot even begin, from an ordinary state. One covers the range.
  const double usual[] = {q.of_T ? kDefaultT : kDefaultP, q.of_T ? 200.0 : 10.0, q.of_T ? 450.0 : 100.0};
  StatusCode status = search_from(q, q.u);
  for (int k = 0; k < 3 && status == KV_NO_START; ++k) status = search_from(q, usual[k]);
  if (status == KV_NO_SATURATION && q.of_T && q.two_liquids) status = search_closely(q);
  return status == KV_NO_START ? StatusCode{KV_NO_SATURATION} : status;
}

}  // namespace kestrune::flash3
