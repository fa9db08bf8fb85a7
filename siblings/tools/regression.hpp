// Straight line through points by least squares.
#ifndef KESTRUNE_SIBLINGS_TOOLS_REGRESSION_HPP
#define KESTRUNE_SIBLINGS_TOOLS_REGRESSION_HPP

#include <cstdint>

namespace kestrune::tools {

// y = intercept + slope x; correlation is the coefficient r, 0 where all y are equal.
struct Line {
  double slope, intercept, correlation;
};

// Least-squares line through x[n], y[n]. Sums of deviations from the means are carried in twice the working
// precision, so that the coefficients are good to rounding whatever the offset of the data.
// False, and line left alone, for fewer than two points, all x equal or values that are not finite.
bool fit_line(std::int32_t n, const double* x, const double* y, Line& line) noexcept;

}  // namespace kestrune::tools

#endif
