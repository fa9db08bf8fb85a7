// Values and logarithmic slopes of the equations, by number.

#include "pure/equations.hpp"

#include <algorithm>
#include <cmath>

#include "pure/einstein.hpp"

namespace kestrune::pure {
namespace {

double polynomial(const double* c, double t) noexcept {
  double y = c[6];
  for (int k = 5; k >= 0; --k) y = y * t + c[k];
  return y;
}

double exponent_101(const double* c, double t) noexcept {
  const double power = c[3] == 0.0 ? 0.0 : c[3] * std::pow(t, c[4]);
  return c[0] + c[1] / t + c[2] * std::log(t) + power;
}

double virial_104(const double* c, double t) noexcept {
  const double x = 1.0 / t;
  const double x3 = x * x * x;
  const double x8 = x3 * x3 * x * x;
  return c[0] + c[1] * x + c[2] * x3 + c[3] * x8 + c[4] * x8 * x;
}

double saturated_105(const double* c, double t) noexcept {
  const double tau = std::max(0.0, 1.0 - t / c[2]);
  return c[0] / std::pow(c[1], 1.0 + std::pow(tau, c[3]));
}

double vanishing_106(const double* c, double t) noexcept {
  const double tr = t / c[5];
  if (tr >= 1.0) return 0.0;
  return c[0] * std::pow(1.0 - tr, c[1] + tr * (c[2] + tr * (c[3] + tr * c[4])));
}

double near_critical_114(const double* c, double t) noexcept {
  const double x = 1.0 - t / c[5];
  const double p = c[2] * c[3] / 2.0 + x * c[3] * c[3] / 5.0;
  return c[0] * c[0] / x + c[1] - x * (2.0 * c[0] * c[2] + x * (c[0] * c[3] + x * (c[2] * c[2] / 3.0 + x * p)));
}

double water_density_119(const double* c, double t) noexcept {
  const double x = std::cbrt(std::max(0.0, 1.0 - t / water_tc));
  const double x2 = x * x;
  const double x5 = x2 * x2 * x;
  const double x16 = x5 * x5 * x5 * x;
  const double x43 = x16 * x16 * x5 * x5 * x;
  const double x110 = x43 * x43 * x16 * x5 * x2 * x;
  return c[0] + c[1] * x + c[2] * x2 + c[3] * x5 + c[4] * x16 + c[5] * x43 + c[6] * x110;
}

}  // namespace

double equation_value(const Row& row, double t) noexcept {
  const double* c = row.c;
  switch (row.equation) {
    case 10:
      return std::exp(c[0] - c[1] / (t + c[2]));
    case 16:
      return c[0] + std::exp(c[1] / t + c[2] + t * (c[3] + t * c[4]));
    case 100:
      return polynomial(c, t);
    case 101:
      return std::exp(exponent_101(c, t));
    case 102:
      return c[0] * std::pow(t, c[1]) / (1.0 + c[2] / t + c[3] / (t * t));
    case 104:
      return virial_104(c, t);
    case 105:
      return saturated_105(c, t);
    case 106:
      return vanishing_106(c, t);
    case 107:
    case 127:
      return vibration_value(vibration_sum(row), t);
    case 114:
      return near_critical_114(c, t);
    case 119:
      return water_density_119(c, t);
    default:
      return 0.0;
  }
}

double equation_log_slope(const Row& row, double t) noexcept {
  const double* c = row.c;
  if (row.equation == 10) return c[1] / ((t + c[2]) * (t + c[2]));
  if (row.equation == 101) {
    const double power = c[3] == 0.0 ? 0.0 : c[3] * c[4] * std::pow(t, c[4]);
    return (-c[1] / t + c[2] + power) / t;
  }
  if (row.equation == 102) {
    const double x = c[2] / t;
    const double y = c[3] / (t * t);
    return (c[1] + (x + 2.0 * y) / (1.0 + x + y)) / t;
  }
  return 0.0;
}

double melting_pressure(const Row& row, double t) noexcept {
  const double* c = row.c;
  const double ratio = t / c[1];
  double p = c[0];
  for (int k = 2; k < max_coefficients; k += 2) {
    if (c[k] == 0.0) continue;
    p += row.equation == equation_melting_ratio ? c[k] * (std::pow(ratio, c[k + 1]) - 1.0)
                                                : c[k] * std::pow(ratio - 1.0, c[k + 1]);
  }
  return p;
}

}  // namespace kestrune::pure
