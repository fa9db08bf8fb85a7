// Following a line of constant vapour fraction. Extremes of the target are looked for between points, so that
// the first time that it takes the value is not missed, and points next to a critical one are found from there.

#include <algorithm>
#include <cmath>

#include "flash/quality/line_walk.hpp"

namespace kestrune::flash {
namespace {

constexpr int kMostPoints = 250, kNewtonLimit = kWalkNewtonLimit;
constexpr int kCuts = 12;  // of a step over a critical point, towards the target
constexpr StepBounds kBounds{0.8, 0.05, 0.6, true};
constexpr double kOnTarget = 1e-11;  // ln T or ln P
constexpr double kBelowStart = 1.0;  // in ln P, where a walk that comes down again ends
constexpr double kTop = 9.0;         // ln P: 8000 atm
constexpr double kColdest = 3.0;     // ln T: 20 K
// Beside a critical point, with all ln K below the first number, T and P follow from ln K with an error of
// rounding over its square. At the second the points are still good, and near enough to each other for a cubic.
constexpr double kBeside = 0.1, kBridge = 0.02;
constexpr double kNearTarget = 1e-7;
constexpr double kSolvable = 5e-3, kSame = 0.2;
constexpr double kAside = 0.3, kFree = 0.02;  // room for a point beside its step, in parts of it and beyond

struct Walk {
  QualityLine& line;
  LinePoint &last, &here, &next;
  int target;
  double value;
  bool exchanged;  // looked for is a point whose phases have the other names
  const Wanted& wanted;
  StatusCode status = KV_OK;
  LinePoint extreme{}, found{}, from{}, to{};  // what is found on a step, and ends of a part of it
  double* square = nullptr;                    // [(n + 2) * padded(n + 2)]

  // By its packing y is the vapour on one side of a critical point and the liquid on the other.
  bool is_wanted(const LinePoint& p) const {
    return !one_phase(line, p) && lighter(*line.context.record, p.x, p.Zx, p.y, p.Zy) == exchanged &&
           wanted.is(wanted.who, p);
  }
};

// Part of the way from a to b where the cubic of the target has the value.
double part_at_target(const Walk& w, const LinePoint& a, const LinePoint& b, int held) {
  return support::cubic_root(between(a, b, w.target, held), w.value, 0.0, 1.0);
}

// The point a part t of the way from a to b, solved, into out.
bool solve_on_way(Walk& w, const LinePoint& a, const LinePoint& b, int held, double t, LinePoint& out) {
  point_between(w.line, a, b, held, t, out.X);
  return solve_point(w.line, out, held, out.X[held], kNewtonLimit, true, w.status) == Solved::yes;
}

bool crossed(const Walk& w, const LinePoint& a, const LinePoint& b) {
  return (a.X[w.target] - w.value) * (b.X[w.target] - w.value) <= 0.0;
}

double largest_log_K(const Walk& w, const LinePoint& p) {
  double largest = 0.0;
  for (int i = 0; i < w.line.n; ++i)
    if (w.line.z[i] > 0.0) largest = std::max(largest, std::fabs(p.X[i]));
  return largest;
}

// The ln K that changes most from a to b.
int largest_change(const Walk& w, const LinePoint& a, const LinePoint& b) {
  int best = 0;
  double most = 0.0;
  for (int i = 0; i < w.line.n; ++i) {
    const double change = w.line.z[i] > 0.0 ? std::fabs(a.X[i] - b.X[i]) : 0.0;
    if (change > most) {
      most = change;
      best = i;
    }
  }
  return best;
}

/*
 * Where the step from w.from to w.to crosses a critical point: it is cut to what the target crosses of it, the
 * bridge over the critical point or what lies before or behind. Held is ln K number by.
 */
void cut_at_bridge(Walk& w, int by) {
  for (const double end : {w.from.X[by] > 0.0 ? kBridge : -kBridge, w.from.X[by] > 0.0 ? -kBridge : kBridge}) {
    const double t = (end - w.from.X[by]) / (w.to.X[by] - w.from.X[by]);
    if (!(t > 0.0 && t < 1.0) || !solve_on_way(w, w.from, w.to, by, t, w.found)) continue;
    copy_point(w.line, w.found, crossed(w, w.from, w.found) ? w.to : w.from);
  }
}

// Takes off what w.found, interpolated, is wrong by, with the target held: by Newton's method where it is far
// enough from the critical point to come to the same point, but for its last digits.
bool finish_beside_critical(Walk& w) {
  w.found.X[w.target] = w.value;
  if (!polish_point(w.line, w.found, w.target, w.square, w.status)) return false;
  const double apart = largest_log_K(w, w.found);
  if (apart > kSolvable) {
    copy_point(w.line, w.found, w.to);
    if (solve_point(w.line, w.to, w.target, w.value, kNewtonLimit, true, w.status) == Solved::yes) {
      double moved = 0.0;
      for (int i = 0; i < w.line.n; ++i)
        if (w.line.z[i] > 0.0) moved = std::max(moved, std::fabs(w.to.X[i] - w.found.X[i]));
      if (moved < kSame * apart) copy_point(w.line, w.to, w.found);
    }
  }
  return w.is_wanted(w.found);
}

/*
 * The point between a and b, next to a critical point, where the target has the value. Held is the ln K that
 * changes most: along it the target runs smoothly through the critical point. On the bridge the cubic is better
 * than what can be solved for; what is left is taken off with the target held.
 */
bool solve_beside_critical(Walk& w, const LinePoint& a, const LinePoint& b) {
  const int by = largest_change(w, a, b);
  copy_point(w.line, a, w.from);
  copy_point(w.line, b, w.to);
  cut_at_bridge(w, by);
  double t = part_at_target(w, w.from, w.to, by);
  for (int k = 0; k < kCuts && std::max(std::fabs(w.from.X[by]), std::fabs(w.to.X[by])) > 1.01 * kBridge; ++k) {
    if (!solve_on_way(w, w.from, w.to, by, t, w.found)) return false;
    const double off = std::fabs(w.found.X[w.target] - w.value);
    copy_point(w.line, w.found, crossed(w, w.from, w.found) ? w.to : w.from);
    t = part_at_target(w, w.from, w.to, by);
    if (off < kNearTarget) break;
  }
  point_between(w.line, w.from, w.to, by, t, w.found.X);
  return finish_beside_critical(w);
}

// Close to an extreme of the target: halving, by the same unknown.
bool solve_by_halving(Walk& w, const LinePoint& a, const LinePoint& b, int held) {
  const bool rising = b.X[w.target] > a.X[w.target];
  double low = 0.0, high = 1.0;
  for (int k = 0; k < 50; ++k) {
    const double middle = 0.5 * (low + high);
    if (!solve_on_way(w, a, b, held, middle, w.found)) return false;
    if (std::fabs(w.found.X[w.target] - w.value) < kOnTarget) break;
    ((w.found.X[w.target] < w.value) == rising ? low : high) = middle;
  }
  if (!(std::fabs(w.found.X[w.target] - w.value) < kNearTarget)) return false;
  w.found.X[w.target] = w.value;
  return polish_point(w.line, w.found, w.target, w.square, w.status) && w.is_wanted(w.found);
}

// Whether p lies on the step from a to b: a solve at the target may end on another line.
bool on_step(const Walk& w, const LinePoint& a, const LinePoint& b, const LinePoint& p) {
  for (int i = 0; i < w.line.n + 2; ++i) {
    if (i < w.line.n && !(w.line.z[i] > 0.0)) continue;
    const double room = kAside * std::fabs(b.X[i] - a.X[i]) + kFree;
    if (p.X[i] < std::min(a.X[i], b.X[i]) - room || p.X[i] > std::max(a.X[i], b.X[i]) + room) return false;
  }
  return true;
}

// The wanted point between a and b where the target has the value, into w.found.
bool solve_between(Walk& w, const LinePoint& a, const LinePoint& b, int held) {
  if (std::min(largest_log_K(w, a), largest_log_K(w, b)) < kBeside) return solve_beside_critical(w, a, b);
  point_between(w.line, a, b, held, part_at_target(w, a, b, held), w.found.X);
  if (solve_point(w.line, w.found, w.target, w.value, kNewtonLimit, true, w.status) == Solved::yes &&
      on_step(w, a, b, w.found))
    return w.is_wanted(w.found);
  return solve_by_halving(w, a, b, held);
}

// The two points about an extreme of the target at the part top of a step over a critical point: there lines of
// 0 < W < 1 turn back.
bool solve_on_bridge(Walk& w, int held, double top) {
  const Cubic c = between(w.here, w.next, w.target, held);
  for (const double end : {0.0, 1.0}) {
    const double t = support::cubic_root(c, w.value, std::min(end, top), std::max(end, top));
    point_between(w.line, w.here, w.next, held, t, w.found.X);
    if (finish_beside_critical(w)) return true;
  }
  return false;
}

// An extreme of the target between w.here and w.next that reaches the value: solves before it, then behind.
bool solve_about_extreme(Walk& w, int held) {
  const Cubic c = between(w.here, w.next, w.target, held);
  double top = 0.0;
  if (!support::cubic_extreme(c, top)) return false;
  const double reach = c.at(top) - w.here.X[w.target], side = w.value - w.here.X[w.target];
  if (reach * side <= 0.0) return false;
  if (held < w.line.n && w.here.X[held] * w.next.X[held] < 0.0)
    return std::fabs(reach) > std::fabs(side) && solve_on_bridge(w, held, top);
  if (std::fabs(reach) < 0.9 * std::fabs(side)) return false;
  if (!solve_on_way(w, w.here, w.next, held, top, w.extreme) || !crossed(w, w.here, w.extreme)) return false;
  return solve_between(w, w.here, w.extreme, held) || solve_between(w, w.extreme, w.next, held);
}

}  // namespace

Solved follow_line(QualityLine& line, LinePoint& p, int target, double value, bool exchanged,
                   const Wanted& wanted, StatusCode& status) {
  LinePoint last, next;
  Walk w{line, last, p, next, target, value, exchanged, wanted};
  for (LinePoint* q : {&last, &next, &w.extreme, &w.found, &w.from, &w.to}) take_point(*line.arena, line, *q);
  w.square = line.arena->zeros(static_cast<std::size_t>(line.n + 2) * support::padded(line.n + 2));
  seal_line(line);
  line.stable_roots = true;
  const double lowest = p.X[line.P_index()] - kBelowStart;
  double step = kFirstStep;
  bool have_last = false;
  for (int count = 0; count < kMostPoints; ++count) {
    LineStep made;
    const Solved solved = walk_on(line, have_last ? &last : nullptr, p, 1.0, step, kBounds, next, made, status);
    if (solved != Solved::yes) return solved;
    if (crossed(w, p, next) ? solve_between(w, p, next, made.held) : solve_about_extreme(w, made.held))
      return Solved::yes;
    const double ln_P = next.X[line.P_index()];
    if (ln_P > kTop || next.X[line.T_index()] < kColdest || (ln_P < lowest && ln_P < p.X[line.P_index()]))
      return Solved::no;
    step = next_length(made, next.passes);
    copy_point(line, p, last);
    copy_point(line, next, p);
    have_last = true;
  }
  return Solved::no;
}

}  // namespace kestrune::flash
