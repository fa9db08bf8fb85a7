// Cubic splines by values and slopes at their knots: one piece between two knots, its extremes, and which piece
// holds an abscissa.
#ifndef KESTRUNE_SUPPORT_SPLINE_HPP
#define KESTRUNE_SUPPORT_SPLINE_HPP

#include <cmath>

namespace kestrune::support {

// One piece in the part t of its way from a (t = 0) to b (t = 1); beyond them it extrapolates.
struct Cubic {
  double c0, c1, c2, c3;
  double at(double t) const { return c0 + t * (c1 + t * (c2 + t * c3)); }
  double slope(double t) const { return c1 + t * (2.0 * c2 + t * 3.0 * c3); }
};

/* The piece with the values a and b and the slopes, with respect to t, at its ends: (32) of docs/method.md. */
inline Cubic cubic(double a, double slope_a, double b, double slope_b) {
  return {a, slope_a, 3.0 * (b - a) - 2.0 * slope_a - slope_b, 2.0 * (a - b) + slope_a + slope_b};
}
/* The same with slopes per unit of an abscissa whose ends are h apart. */
inline Cubic cubic(double a, double slope_a, double b, double slope_b, double h) {
  return {a, h * slope_a, 3.0 * (b - a) - h * (2.0 * slope_a + slope_b),
          2.0 * (a - b) + h * (slope_a + slope_b)};
}

/* Where between low and high the piece, rising or falling there, has a value; by halving. */
inline double cubic_root(const Cubic& c, double value, double low, double high, int halvings = 50) {
  const bool rising = c.at(low) < c.at(high);
  for (int k = 0; k < halvings; ++k) {
    const double middle = 0.5 * (low + high);
    ((c.at(middle) < value) == rising ? low : high) = middle;
  }
  return low;
}

/* Where inside the piece its slope changes sign once; false when it has one sign at both ends. */
inline bool cubic_extreme(const Cubic& c, double& t) {
  const double first = c.slope(0.0);
  if (first * c.slope(1.0) >= 0.0) return false;
  double low = 0.0, high = 1.0;
  for (int k = 0; k < 50; ++k) {
    const double middle = 0.5 * (low + high);
    (c.slope(middle) * first > 0.0 ? low : high) = middle;
  }
  t = low;
  return true;
}

// What is wrong with the knots of a spline.
enum class SplineFit { good = 0, too_few = 1, not_increasing = 2, not_finite = 3 };

/* Checks the abscissae x[n] of the knots. */
inline SplineFit check_knots(int n, const double* x) {
  if (n < 2) return SplineFit::too_few;
  for (int k = 0; k < n; ++k) {
    if (!std::isfinite(x[k])) return SplineFit::not_finite;
    if (k > 0 && !(x[k] > x[k - 1])) return SplineFit::not_increasing;
  }
  return SplineFit::good;
}

/* Number of the knot at the upper end of the piece that holds x, 1 .. n - 1; the outer ones extrapolate. */
inline int piece_of(int n, const double* knots, double x) {
  int low = 0, high = n - 1;
  while (high - low > 1) {
    const int middle = (low + high) / 2;
    (knots[middle] <= x ? low : high) = middle;
  }
  return high;
}

}  // namespace kestrune::support

#endif
