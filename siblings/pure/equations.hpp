// The correlation equations of the databank; forms and numbers are listed in data/pure/README.md.
#ifndef KESTRUNE_SIBLINGS_PURE_EQUATIONS_HPP
#define KESTRUNE_SIBLINGS_PURE_EQUATIONS_HPP

#include "pure/row.hpp"

namespace kestrune::pure {

// Critical temperature of water in equations 119 and 294, K.
inline constexpr double water_tc = 647.096;

// Value at t (K, > 0) in the unit of the row. Meant for t_min <= t <= t_max; equations with a critical
// temperature give their limit there and above (106: 0). Equation 294 is in henry.hpp.
double equation_value(const Row& row, double t) noexcept;

// d ln Y/dT, 1/K, of the equations that are extrapolated on a logarithmic scale: 10, 101, 102.
double equation_log_slope(const Row& row, double t) noexcept;

// Melting pressure of one branch, Pa.
double melting_pressure(const Row& row, double t) noexcept;

}  // namespace kestrune::pure

#endif
