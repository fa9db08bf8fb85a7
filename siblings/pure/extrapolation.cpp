// The rule of each property outside the range of its correlation.

#include "pure/extrapolation.hpp"

#include <algorithm>
#include <cmath>

#include "pure/equations.hpp"
#include "pure/henry.hpp"
#include "pure/integrals.hpp"

namespace kestrune::pure {
namespace {

// What holds outside the range of a correlation.
enum class Rule {
  end_value,     // the value of the range end
  function,      // the equation itself
  clapeyron,     // ln Y linear in 1/T with the slope of the range end
  andrade,       // below: as clapeyron down to half the lowest temperature, never falling; above: end value
  power_law,     // Y proportional to T^n with n of the range end
  to_zero_at_tc  // below: end value; above: the equation, 0 from its critical temperature on
};

Rule rule_of(Property property, const Row& row) noexcept {
  switch (property) {
    case Property::VaporPressure:
    case Property::SublimationPressure:
    case Property::HenryConstant:
      return Rule::clapeyron;
    case Property::LiquidViscosity:
      return Rule::andrade;
    case Property::GasViscosity:
    case Property::GasThermalConductivity:
      return Rule::power_law;
    case Property::VaporizationEnthalpy:
    case Property::SurfaceTension:
      return row.equation == 106 ? Rule::to_zero_at_tc : Rule::end_value;
    case Property::IdealGasSpecificHeat:
      return is_unbounded(row) ? Rule::function : Rule::end_value;
    default:
      return Rule::end_value;
  }
}

double value_inside(const Row& row, double t) noexcept {
  return row.equation == equation_henry_iapws ? henry_iapws(row, t) : equation_value(row, t);
}

double log_slope(const Row& row, double t) noexcept {
  return row.equation == equation_henry_iapws ? henry_iapws_log_slope(row, t) : equation_log_slope(row, t);
}

// exp without overflow or underflow: a pressure stays positive and finite.
double bounded_exp(double x) noexcept {
  return std::exp(std::clamp(x, -700.0, 700.0));
}

// ln Y = ln Y_end + slope (1/t - 1/t_end), slope = d ln Y/d(1/T) at t_end.
double linear_in_inverse(double log_end, double slope, double t_end, double t) noexcept {
  return bounded_exp(log_end + slope * (1.0 / t - 1.0 / t_end));
}

double andrade(const Row& row, double t) noexcept {
  if (t > row.t_max) return value_inside(row, row.t_max);
  const double end = row.t_min;
  const double slope = std::max(0.0, -end * end * log_slope(row, end));
  return linear_in_inverse(std::log(value_inside(row, end)), slope, end, std::max(t, 0.5 * end));
}

// Exponents outside these limits come from the shape of a fit, not from the gas.
double power_law(Property property, const Row& row, double t) noexcept {
  const double end = t < row.t_min ? row.t_min : row.t_max;
  const double highest = property == Property::GasViscosity ? 1.1 : 2.0;
  const double exponent = std::clamp(end * log_slope(row, end), 0.5, highest);
  return value_inside(row, end) * std::pow(t / end, exponent);
}

}  // namespace

double continued_value(Property property, const Row& row, double t_asked) noexcept {
  const double t = std::clamp(t_asked, t_lowest, t_highest);
  if (t >= row.t_min && t <= row.t_max) return value_inside(row, t);
  const double end = t < row.t_min ? row.t_min : row.t_max;
  switch (rule_of(property, row)) {
    case Rule::function:
      return value_inside(row, t);
    case Rule::clapeyron:
      return linear_in_inverse(std::log(value_inside(row, end)), -end * end * log_slope(row, end), end, t);
    case Rule::andrade:
      return andrade(row, t);
    case Rule::power_law:
      return power_law(property, row, t);
    case Rule::to_zero_at_tc:
      return value_inside(row, std::max(t, row.t_min));
    case Rule::end_value:
      break;
  }
  return value_inside(row, end);
}

}  // namespace kestrune::pure
