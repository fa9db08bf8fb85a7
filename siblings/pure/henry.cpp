// Equation 294 and its slope.

#include "pure/henry.hpp"

#include <cmath>

#include "pure/databank.hpp"
#include "pure/equations.hpp"
#include "pure/extrapolation.hpp"

namespace kestrune::pure {
namespace {

constexpr std::int32_t cas_water = 7732185;

const Row* water_vapour_pressure() noexcept {
  return choose_row(find_rows(Property::VaporPressure, cas_water), own_choice);
}

}  // namespace

double henry_iapws(const Row& row, double t) noexcept {
  const Row* water = water_vapour_pressure();
  if (water == nullptr) return 0.0;
  const double tr = t / water_tc;
  const double x = 1.0 - tr;
  const double log_ratio =
      (row.c[0] + row.c[1] * std::pow(x, 0.355)) / tr + row.c[2] * std::pow(tr, -0.41) * std::exp(x);
  return continued_value(Property::VaporPressure, *water, t) * std::exp(log_ratio);
}

double henry_iapws_log_slope(const Row& row, double t) noexcept {
  const Row* water = water_vapour_pressure();
  if (water == nullptr) return 0.0;
  const double tr = t / water_tc;
  const double x = 1.0 - tr;
  const double root = row.c[1] * std::pow(x, 0.355);
  const double first = -(row.c[0] + root) / (tr * tr) - 0.355 * root / (x * tr);
  const double last = -row.c[2] * std::pow(tr, -0.41) * std::exp(x) * (0.41 / tr + 1.0);
  return (first + last) / water_tc + equation_log_slope(*water, t);
}

}  // namespace kestrune::pure
