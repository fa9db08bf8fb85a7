// Following a line of constant vapour fraction [Mic80]: each point starts from the cubic through the last two,
// and the unknown that changes most is the one specified. Extremes of the target are looked for between points,
// so that the first time that it takes the value is not missed.

#include <algorithm>
#include <cmath>

#include "flash/quality_line.hpp"

namespace kestrune::flash {
namespace {

constexpr int kMostPoints = 250, kNewtonLimit = 12;
constexpr int kSecants = 12;
constexpr double kOnTarget = 1e-11;  // ln T or ln P
constexpr double kFirstStep = 0.1, kSmallestStep = 1e-6;
constexpr double kMostLogK = 0.8, kMostLogT = 0.05, kMostLogP = 0.6;  // change in one step
constexpr double kBesideCritical = 0.02;  // no point within this of ln K = 0 of the specified component
constexpr double kOfLargest = 0.6;        // change of an ln K in parts of the largest
constexpr double kBelowStart = 1.0;       // in ln P, where a walk that comes down again ends
constexpr double kTop = 9.0;              // ln P: 8000 atm
constexpr double kColdest = 3.0;          // ln T: 20 K

// Cubic through two points with their slopes, at a part t of the way from a to b (t > 1: beyond).
struct Cubic {
  double c0, c1, c2, c3;
  double at(double t) const { return c0 + t * (c1 + t * (c2 + t * c3)); }
  double slope(double t) const { return c1 + t * (2.0 * c2 + t * 3.0 * c3); }
};
Cubic cubic(double a, double slope_a, double b, double slope_b) {
  return {a, slope_a, 3.0 * (b - a) - 2.0 * slope_a - slope_b, 2.0 * (a - b) + slope_a + slope_b};
}

// Unknown i between the points, in parts of the step of the unknown held.
Cubic between(const LinePoint& a, const LinePoint& b, int i, int held) {
  const double h = b.X[held] - a.X[held];
  return cubic(a.X[i], h * a.slope[i] / a.slope[held], b.X[i], h * b.slope[i] / b.slope[held]);
}

int most_sensitive(const QualityLine& line, const LinePoint& p) {
  int best = line.T_index();
  double most = 4.0 * std::fabs(p.slope[best]);
  for (int i = 0; i < line.n + 2; ++i) {
    if (i < line.n && !(line.z[i] > 0.0 && std::fabs(p.X[i]) < kLargestLogK)) continue;
    const double change = std::fabs(p.slope[i]);
    if (change > most) {
      most = change;
      best = i;
    }
  }
  return best;
}

// Largest part of a step that keeps the changes in bounds.
double bounded(const QualityLine& line, const LinePoint& p, int held, double step) {
  // Towards a critical point, where all ln K vanish, in shorter and shorter steps.
  double largest = 0.0;
  for (int i = 0; i < line.n; ++i)
    if (line.z[i] > 0.0) largest = std::max(largest, std::fabs(p.X[i]));
  const double near = std::clamp(kOfLargest * largest, 2.0 * kBesideCritical, kMostLogK);
  double part = 1.0;
  for (int i = 0; i < line.n + 2; ++i) {
    if (i < line.n && !(line.z[i] > 0.0)) continue;
    const double most = i < line.n ? near : i == line.T_index() ? kMostLogT : kMostLogP;
    const double change = std::fabs(step * p.slope[i] / p.slope[held]);
    if (change * part > most) part = most / change;
  }
  return step * part;
}

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
  const int size = w.line.n + 2;
  const Cubic c = between(a, b, w.target, held);
  double low = 0.0, high = 1.0;
  const bool rising = b.X[w.target] > a.X[w.target];
  for (int k = 0; k < 60; ++k) {
    const double middle = 0.5 * (low + high);
    ((c.at(middle) < w.value) == rising ? low : high) = middle;
  }
  for (int i = 0; i < size; ++i) w.next.X[i] = between(a, b, i, held).at(low);
  if (solve_point(w.line, w.next, w.target, w.value, kNewtonLimit, true, w.status) == Solved::yes &&
      w.wanted(w.next))
    return true;
  // Beside a critical point, where the target hardly changes: by the unknown that does, with the slope of the
  // cubic.
  double t = low;
  for (int k = 0; k < kSecants; ++k) {
    for (int i = 0; i < size; ++i) w.next.X[i] = between(a, b, i, held).at(t);
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
    for (int i = 0; i < size; ++i) w.next.X[i] = between(a, b, i, held).at(middle);
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
  const int size = w.line.n + 2;
  for (int i = 0; i < size; ++i) extreme.X[i] = between(w.here, w.next, i, held).at(low);
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
  const int size = line.n + 2;
  line.stable_roots = true;
  const double lowest = p.X[line.P_index()] - kBelowStart;
  double step = kFirstStep;
  bool have_last = false;
  for (int count = 0; count < kMostPoints; ++count) {
    const int held = most_sensitive(line, p);
    // Direction: on from the last point; at first to higher pressure.
    double sign = 1.0;
    if (have_last)
      sign = p.X[held] >= last.X[held] ? 1.0 : -1.0;
    else
      sign = (p.slope[line.P_index()] / p.slope[held] > 0.0) ? 1.0 : -1.0;
    double h = bounded(line, p, held, sign * step);
    if (held < line.n && p.X[held] * (p.X[held] + h) < kBesideCritical * kBesideCritical &&
        std::fabs(p.X[held] + h) < kBesideCritical && std::fabs(p.X[held]) > 0.0)
      h = (p.X[held] > 0.0 ? -1.0 : 1.0) * kBesideCritical - p.X[held];  // over the critical point
    Solved solved = Solved::no;
    while (std::fabs(h) > kSmallestStep) {
      for (int i = 0; i < size; ++i) {
        next.X[i] = p.X[i] + h * p.slope[i] / p.slope[held];
        if (have_last && std::fabs(p.X[held] - last.X[held]) > 1e-3 * std::fabs(h)) {
          const double part = 1.0 + h / (p.X[held] - last.X[held]);
          if (part > 1.0 && part < 4.0 && last.slope[held] != 0.0)
            next.X[i] = between(last, p, i, held).at(part);
        }
      }
      solved = solve_point(line, next, held, p.X[held] + h, kNewtonLimit, true, status);
      if (solved == Solved::yes) break;
      h *= 0.4;
    }
    if (solved != Solved::yes) return solved == Solved::model ? solved : Solved::no;
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
    step = std::fabs(h) * (next.passes <= 3 ? 1.8 : next.passes <= 4 ? 1.2 : 0.6);
    copy_point(line, p, last);
    copy_point(line, next, p);
    have_last = true;
  }
  return Solved::no;
}

}  // namespace kestrune::flash
