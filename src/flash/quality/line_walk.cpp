// One step along a line of constant vapour fraction: which unknown is held, how far, from where, and whether
// what was found is a point of the same line.

#include "flash/quality/line_walk.hpp"

#include <algorithm>
#include <cmath>

namespace kestrune::flash {
namespace {

constexpr double kSmallestStep = 1e-6;    // of the unknown that is held: a shorter one leads nowhere
constexpr double kBesideCritical = 0.02;  // no point within this of ln K = 0 of the specified component
constexpr double kBelowBound = 1.0;       // an ln K that is closer to its bound leads nowhere
constexpr double kOfLargest = 0.6;        // change of an ln K in parts of the largest

// Largest part of a step that keeps the changes in bounds.
double bounded(const QualityLine& line, const LinePoint& p, int held, double step, const StepBounds& bounds) {
  // Towards a critical point, where all ln K vanish, in shorter and shorter steps.
  double largest = 0.0;
  for (int i = 0; i < line.n; ++i)
    if (line.z[i] > 0.0) largest = std::max(largest, std::fabs(p.X[i]));
  const double near = std::clamp(kOfLargest * largest, 2.0 * kBesideCritical, bounds.log_K);
  double part = 1.0;
  for (int i = 0; i < line.n + 2; ++i) {
    if (i < line.n && !(line.z[i] > 0.0)) continue;
    const double most = i < line.n ? near : i == line.T_index() ? bounds.log_T : bounds.log_P;
    const double change = std::fabs(step * p.slope[i] / p.slope[held]);
    if (change * part > most) part = most / change;
  }
  return step * part;
}

// Start of unknown i of the next point: the cubic through the last two, or the tangent.
double extrapolated(const LinePoint* last, const LinePoint& here, int held, double h, int i) {
  if (last != nullptr && std::fabs(here.X[held] - last->X[held]) > 1e-3 * std::fabs(h)) {
    const double part = 1.0 + h / (here.X[held] - last->X[held]);
    if (part > 1.0 && part < 4.0 && last->slope[held] != 0.0) return between(*last, here, i, held).at(part);
  }
  return here.X[i] + h * here.slope[i] / here.slope[held];
}

// Whether the cubic through the last two points is one to go by: where the unknown held has turned between them
// it is not, and leads far away from the tangent.
bool trusted(const QualityLine& line, const LinePoint* last, const LinePoint& here, int held, double h) {
  // Room for the cubic beside the tangent: in parts of its step, and beyond in ln T and ln P.
  constexpr double kFromTangent = 1.0, kFreeT = 0.002, kFreeP = 0.02;
  for (const int i : {line.T_index(), line.P_index()}) {
    const double tangent = h * here.slope[i] / here.slope[held];
    const double off = extrapolated(last, here, held, h, i) - here.X[i] - tangent;
    if (std::fabs(off) > kFromTangent * std::fabs(tangent) + (i == line.T_index() ? kFreeT : kFreeP))
      return false;
  }
  return true;
}

// Whether a step came to the line that it began on: T and P close to where they were expected, the ln K not all
// but vanished at once, and the way on not turned back, as it is on the other side of a fold.
bool same_line(const QualityLine& line, const LinePoint* last, const LinePoint& here, const LinePoint& next,
               int held, double h) {
  // Room for a point beside where it was expected, in parts of its step and beyond in ln T and ln P; what is left of
  // the largest ln K.
  constexpr double kAside = 0.5, kVanished = 0.25, kFreeT = 0.01, kFreeP = 0.1;
  double before = 0.0, after = 0.0;
  for (int i = 0; i < line.n; ++i) {
    if (!(line.z[i] > 0.0)) continue;
    before = std::max(before, std::fabs(here.X[i]));
    after = std::max(after, std::fabs(next.X[i]));
  }
  if (held >= line.n && after < kVanished * before) return false;
  for (const int i : {line.T_index(), line.P_index()}) {
    const double expected = extrapolated(last, here, held, h, i);
    const double room = kAside * std::fabs(expected - here.X[i]) + (i == line.T_index() ? kFreeT : kFreeP);
    if (std::fabs(next.X[i] - expected) > room) return false;
  }
  double along = 0.0;
  for (int i = 0; i < line.n + 2; ++i)
    if (i >= line.n || line.z[i] > 0.0) along += here.slope[i] * next.slope[i];
  return along * here.slope[held] * next.slope[held] > 0.0;
}

}  // namespace

Cubic between(const LinePoint& a, const LinePoint& b, int i, int held) {
  const double h = b.X[held] - a.X[held];
  return support::cubic(a.X[i], h * a.slope[i] / a.slope[held], b.X[i], h * b.slope[i] / b.slope[held]);
}

void point_between(const QualityLine& line, const LinePoint& a, const LinePoint& b, int held, double t,
                   double* X) {
  for (int i = 0; i < line.n + 2; ++i) X[i] = between(a, b, i, held).at(t);
}

int most_sensitive(const QualityLine& line, const LinePoint& p) {
  int best = line.T_index();
  double most = 4.0 * std::fabs(p.slope[best]);
  for (int i = 0; i < line.n + 2; ++i) {
    if (i < line.n && !(line.z[i] > 0.0 && std::fabs(p.X[i]) < kLargestLogK - kBelowBound)) continue;
    const double change = std::fabs(p.slope[i]);
    if (change > most) {
      most = change;
      best = i;
    }
  }
  return best;
}

Solved walk_on(QualityLine& line, const LinePoint* last, const LinePoint& here, double sign, double step,
               const StepBounds& bounds, LinePoint& next, LineStep& made, StatusCode& status) {
  const int held = most_sensitive(line, here);
  // Direction: on from the last point; at first as the pressure is asked to change.
  if (last != nullptr)
    sign = here.X[held] >= last->X[held] ? 1.0 : -1.0;
  else if (!(here.slope[line.P_index()] / here.slope[held] > 0.0))
    sign = -sign;
  double h = bounded(line, here, held, sign * step, bounds);
  if (held < line.n && here.X[held] * h < 0.0 &&
      here.X[held] * (here.X[held] + h) < kBesideCritical * kBesideCritical &&
      std::fabs(here.X[held] + h) < kBesideCritical && std::fabs(here.X[held]) > 0.0)
    h = (here.X[held] > 0.0 ? -1.0 : 1.0) * kBesideCritical - here.X[held];  // over the critical point
  Solved solved = Solved::no;
  while (std::fabs(h) > kSmallestStep) {
    const LinePoint* const by = bounds.same_line && !trusted(line, last, here, held, h) ? nullptr : last;
    for (int i = 0; i < line.n + 2; ++i) next.X[i] = extrapolated(by, here, held, h, i);
    solved = solve_point(line, next, held, here.X[held] + h, kWalkNewtonLimit, true, status);
    if (solved == Solved::yes && (!bounds.same_line || same_line(line, by, here, next, held, h))) break;
    if (solved == Solved::yes) solved = Solved::no;
    h *= 0.4;
  }
  made = {held, h};
  return solved == Solved::yes || solved == Solved::model ? solved : Solved::no;
}

}  // namespace kestrune::flash
