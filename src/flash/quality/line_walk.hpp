// Steps along a line of constant vapour fraction [Mic80]: each point starts from the cubic through the last
// two, and the unknown that changes most is the one specified.
#ifndef KESTRUNE_FLASH_QUALITY_LINE_WALK_HPP
#define KESTRUNE_FLASH_QUALITY_LINE_WALK_HPP

#include "flash/quality/quality_line.hpp"
#include "support/spline.hpp"

namespace kestrune::flash {

using support::Cubic;

/* Cubic of unknown i through two points with their slopes, in parts of the step of the unknown held: (32) of
 * docs/method.md. */
Cubic between(const LinePoint& a, const LinePoint& b, int i, int held);

/* All unknowns at a part t of the way from a to b into X[n + 2]. */
void point_between(const QualityLine& line, const LinePoint& a, const LinePoint& b, int held, double t,
                   double* X);

/* The unknown whose slope is the largest; temperature counts four times. Absent components are left out. */
int most_sensitive(const QualityLine& line, const LinePoint& p);

/* Largest changes of one step. */
struct StepBounds {
  double log_K = 0.8, log_T = 0.05, log_P = 0.6;
  // A point is refused that lies far from where it was expected, or whose ln K have all but vanished at once:
  // it is one of another line.
  bool same_line = false;
};

// Newton iterations that a point may take before the step is cut.
inline constexpr int kWalkNewtonLimit = 12;

// How far one step went: the unknown that was held and its change.
struct LineStep {
  int held = 0;
  double change = 0.0;
};

/*
 * One step from the converged point here to the converged point next, wanted length step in the unknown held,
 * cut by the bounds and until it converges. last: the point before here, null at the start, where sign says
 * whether the pressure rises (1) or falls (-1). A critical point is stepped over with the specified ln K from
 * 0.02 to -0.02. no: not even the shortest step converges; model: status.
 */
Solved walk_on(QualityLine& line, const LinePoint* last, const LinePoint& here, double sign, double step,
               const StepBounds& bounds, LinePoint& next, LineStep& made, StatusCode& status);

/* Of a walk, in the unknown that is held: ln K, ln T or ln P. */
inline constexpr double kFirstStep = 0.1;
/* Length of the next step after one that took so many iterations. */
inline double next_length(const LineStep& made, int passes) {
  return (made.change < 0.0 ? -made.change : made.change) * (passes <= 3 ? 1.8 : passes <= 4 ? 1.2 : 0.6);
}

}  // namespace kestrune::flash

#endif
