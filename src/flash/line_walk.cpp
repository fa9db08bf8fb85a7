#include "flash/line_walk.hpp"

#include <algorithm>
#include <cmath>

namespace kestrune::flash {
namespace {

constexpr double kSmallestStep = 1e-6;
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

// Start of the next point: the cubic through the last two, or the tangent.
void extrapolate(const QualityLine& line, const LinePoint* last, const LinePoint& here, int held, double h,
                 double* X) {
  for (int i = 0; i < line.n + 2; ++i) {
    X[i] = here.X[i] + h * here.slope[i] / here.slope[held];
    if (last != nullptr && std::fabs(here.X[held] - last->X[held]) > 1e-3 * std::fabs(h)) {
      const double part = 1.0 + h / (here.X[held] - last->X[held]);
      if (part > 1.0 && part < 4.0 && last->slope[held] != 0.0) X[i] = between(*last, here, i, held).at(part);
    }
  }
}

// Whether a step came to the line that it began on.
bool same_line(const QualityLine& line, const LinePoint& here, const LinePoint& next, int held,
               const StepBounds& bounds) {
  constexpr double kFurther = 2.5, kVanished = 0.25;
  const int iT = line.T_index(), iP = line.P_index();
  double before = 0.0, after = 0.0, change = 0.0;
  for (int i = 0; i < line.n; ++i) {
    if (!(line.z[i] > 0.0)) continue;
    before = std::max(before, std::fabs(here.X[i]));
    after = std::max(after, std::fabs(next.X[i]));
    change = std::max(change, std::fabs(next.X[i] - here.X[i]));
  }
  if (change > kFurther * bounds.log_K || std::fabs(next.X[iT] - here.X[iT]) > kFurther * bounds.log_T ||
      std::fabs(next.X[iP] - here.X[iP]) > kFurther * bounds.log_P)
    return false;
  return held < line.n || after > kVanished * before;
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
  if (held < line.n && here.X[held] * (here.X[held] + h) < kBesideCritical * kBesideCritical &&
      std::fabs(here.X[held] + h) < kBesideCritical && std::fabs(here.X[held]) > 0.0)
    h = (here.X[held] > 0.0 ? -1.0 : 1.0) * kBesideCritical - here.X[held];  // over the critical point
  Solved solved = Solved::no;
  while (std::fabs(h) > kSmallestStep) {
    extrapolate(line, last, here, held, h, next.X);
    solved = solve_point(line, next, held, here.X[held] + h, kWalkNewtonLimit, true, status);
    if (solved == Solved::yes && (!bounds.same_line || same_line(line, here, next, held, bounds))) break;
    if (solved == Solved::yes) solved = Solved::no;
    h *= 0.4;
  }
  made = {held, h};
  return solved == Solved::yes || solved == Solved::model ? solved : Solved::no;
}

}  // namespace kestrune::flash
