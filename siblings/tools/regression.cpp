// A straight line by least squares, with sums in twice the precision.

#include "regression.hpp"

#include <algorithm>
#include <cmath>

#include "double_double.hpp"

namespace kestrune::tools {
namespace {

// Binary exponent of the largest value: data divided by that power of two neither overflow nor underflow when
// squared. False where a value is not finite.
bool exponent_of(std::int32_t n, const double* v, int& exponent) noexcept {
  double size = 0.0;
  for (std::int32_t i = 0; i < n; ++i) {
    if (!std::isfinite(v[i])) return false;
    size = std::max(size, std::fabs(v[i]));
  }
  exponent = size > 0.0 ? std::ilogb(size) : 0;
  return true;
}

DoubleDouble mean(std::int32_t n, const double* v, int exponent) noexcept {
  DoubleDouble sum;
  for (std::int32_t i = 0; i < n; ++i) sum = sum + DoubleDouble{std::ldexp(v[i], -exponent)};
  return sum / DoubleDouble{static_cast<double>(n)};
}

}  // namespace

bool fit_line(std::int32_t n, const double* x, const double* y, Line& line) noexcept {
  int ex = 0, ey = 0;
  if (n < 2 || !exponent_of(n, x, ex) || !exponent_of(n, y, ey)) return false;
  if (std::all_of(x, x + n, [x](double value) { return value == x[0]; })) return false;

  const DoubleDouble x_mean = mean(n, x, ex), y_mean = mean(n, y, ey);
  DoubleDouble sxx, sxy, syy;
  for (std::int32_t i = 0; i < n; ++i) {
    const DoubleDouble dx = DoubleDouble{std::ldexp(x[i], -ex)} - x_mean;
    const DoubleDouble dy = DoubleDouble{std::ldexp(y[i], -ey)} - y_mean;
    sxx = sxx + dx * dx;
    sxy = sxy + dx * dy;
    syy = syy + dy * dy;
  }
  if (!(sxx.hi > 0.0)) return false;
  const DoubleDouble slope = sxy / sxx;
  const DoubleDouble intercept = y_mean - slope * x_mean;
  const bool level = std::all_of(y, y + n, [y](double value) { return value == y[0]; });
  const double r = level || !(syy.hi > 0.0) ? 0.0 : sxy.hi / (std::sqrt(sxx.hi) * std::sqrt(syy.hi));
  line.slope = level ? 0.0 : std::ldexp(slope.hi, ey - ex);
  line.intercept = level ? y[0] : std::ldexp(intercept.hi, ey);
  line.correlation = std::clamp(r, -1.0, 1.0);
  return true;
}

}  // namespace kestrune::tools
