// Values of a correlation at any temperature: the equation inside its range, a safe continuation outside.
// README.md has the table of the rules.
#ifndef KESTRUNE_SIBLINGS_PURE_EXTRAPOLATION_HPP
#define KESTRUNE_SIBLINGS_PURE_EXTRAPOLATION_HPP

#include "pure/row.hpp"

namespace kestrune::pure {

// Temperatures are cut to this window before anything is evaluated, K: no rule can overflow within it.
inline constexpr double t_lowest = 1e-3;
inline constexpr double t_highest = 1e6;

// Value of the row at t, K, > 0: finite, continuous at both range ends.
double continued_value(Property property, const Row& row, double t) noexcept;

}  // namespace kestrune::pure

#endif
