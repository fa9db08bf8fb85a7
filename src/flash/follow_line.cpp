// Following a line of constant vapour fraction. Extremes of the target are looked for between points, so that
// the first time that it takes the value is not missed.

#include <algorithm>
#include <cmath>

#include "flash/line_walk.hpp"

namespace kestrune::flash {
namespace {

constexpr int kMostPoints = 250, kNewtonLimit = kWalkNewtonLimit;
constexpr int kSecants = 12;
constexpr double kOnTarget = 1e-11;  // ln T or ln P
constexpr double kBelowStart = 1.0;  // in ln P, where a walk that comes down again ends
constexpr double kTop = 9.0;         // ln P: 8000 atm
constexpr double kColdest = 3.0;     // ln T: 20 K

struct Walk {
  QualityLine& line;
  LinePoint &last, &here, &next;
  int target;
  double value;
  bool exchanged;  // wanted is a point whose phases have the other names
  StatusCode status = KV_OK;

  // By its packing y is the vapour on one side of a critical point and the liquid on the other.
  bool wanted(const LinePoint& p) const {
    return !one_phase(line, p) && lighter(*line.mixture, p.x, p.Zx, p.y, p.Zy) == exchanged;
  }
};

// The point between a and b where the target has the value, into w.next.
bool solve_between(Walk& w, const LinePoint& a, const LinePoint& b, int held) {
  const Cubic c = between(a, b, w.target, held);
  double low = 0.0, high = 1.0;
  const bool rising = b.X[w.target] > a.X[w.target];
  for (int k = 0; k < 60; ++k) {
    const double middle = 0.5 * (low + high);
    ((c.at(middle) < w.value) == rising ? low : high) = middle;
  }
  point_between(w.line, a, b, held, low, w.next.X);
  if (solve_point(w.line, w.next, w.target, w.value, kNewtonLimit, true, w.status) == Solved::yes &&
      w.wanted(w.next))
    return true;
  // Beside a critical point, where the target hardly changes: by the unknown that does, with the slope of the
  // cubic.
  double t = low;
  for (int k = 0; k < kSecants; ++k) {
    point_between(w.line, a, b, held, t, w.next.X);
    if (solve_point(w.line, w.next, held, w.next.X[held], kNewtonLimit, true, w.status) != Solved::yes) break;
    const double off = w.value - w.next.X[w.target];
    if (std::fabs(off) < kOnTarget) {
      if (w.wanted(w.next)) return true;
      break;
    }
    t += off / c.slope(t);
    if (!(t >= 0.0 && t <= 1.0)) break;
  }
  // Close to an extreme of the target: by the same unknown, halving.
  low = 0.0;
  high = 1.0;
  for (int k = 0; k < 50; ++k) {
    const double middle = 0.5 * (low + high);
    point_between(w.line, a, b, held, middle, w.next.X);
    if (solve_point(w.line, w.next, held, w.next.X[held], kNewtonLimit, true, w.status) != Solved::yes)
      return false;
    if (std::fabs(w.next.X[w.target] - w.value) < 1e-10) break;
    ((w.next.X[w.target] < w.value) == rising ? low : high) = middle;
  }
  return std::fabs(w.next.X[w.target] - w.value) < 1e-8 && w.wanted(w.next);
}

bool crossed(const Walk& w, const LinePoint& a, const LinePoint& b) {
  return (a.X[w.target] - w.value) * (b.X[w.target] - w.value) <= 0.0;
}

// An extreme of the target between w.here and w.next that reaches the value: solves on its near side.
bool solve_before_extreme(Walk& w, int held, LinePoint& extreme, bool& found) {
  found = false;
  const Cubic c = between(w.here, w.next, w.target, held);
  if (c.slope(0.0) * c.slope(1.0) >= 0.0) return false;
  double low = 0.0, high = 1.0;
  for (int k = 0; k < 40; ++k) {
    const double middle = 0.5 * (low + high);
    (c.slope(middle) * c.slope(0.0) > 0.0 ? low : high) = middle;
  }
  const double reach = c.at(low), side = w.value - w.here.X[w.target];
  if ((reach - w.here.X[w.target]) * side <= 0.0 ||
      std::fabs(reach - w.here.X[w.target]) < 0.9 * std::fabs(side))
    return false;
  point_between(w.line, w.here, w.next, held, low, extreme.X);
  if (solve_point(w.line, extreme, held, extreme.X[held], kNewtonLimit, true, w.status) != Solved::yes)
    return false;
  if (!crossed(w, w.here, extreme)) return true;
  LinePoint& store = w.last;  // not needed any more when this succeeds
  copy_point(w.line, w.next, store);
  found = solve_between(w, w.here, extreme, held);
  if (!found) copy_point(w.line, store, w.next);
  return true;
}

}  // namespace

Solved follow_line(QualityLine& line, LinePoint& p, int target, double value, bool exchanged,
                   StatusCode& status) {
  LinePoint last, next, extreme;
  for (LinePoint* q : {&last, &next, &extreme}) take_point(*line.arena, line, *q);
  seal_line(line);
  Walk w{line, last, p, next, target, value, exchanged};
  line.stable_roots = true;
  const double lowest = p.X[line.P_index()] - kBelowStart;
  double step = kFirstStep;
  bool have_last = false;
  for (int count = 0; count < kMostPoints; ++count) {
    LineStep made;
    const Solved solved = walk_on(line, have_last ? &last : nullptr, p, 1.0, step, {}, next, made, status);
    if (solved != Solved::yes) return solved;
    const int held = made.held;
    bool found = false;
    if (crossed(w, p, next)) {
      copy_point(line, next, extreme);
      if (solve_between(w, p, extreme, held)) {
        copy_point(line, next, p);
        return Solved::yes;
      }
      copy_point(line, extreme, next);
    } else if (solve_before_extreme(w, held, extreme, found) && found) {
      copy_point(line, next, p);
      return Solved::yes;
    }
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
