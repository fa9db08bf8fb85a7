// Integrals of heat-capacity correlations.
#ifndef KESTRUNE_SIBLINGS_PURE_INTEGRALS_HPP
#define KESTRUNE_SIBLINGS_PURE_INTEGRALS_HPP

#include "pure/einstein.hpp"
#include "pure/row.hpp"

namespace kestrune::pure {

// Integral from a to t (K, both > 0, any order) of the heat capacity of the row as heat_capacity() gives it,
// that is with its extrapolation: Over::t in J/kmol, Over::ln_t (of Cp/T over T) in J/kmol/K.
// Closed forms for equations 100, 107, 114, 127; quadrature for 16. Differences are formed so that t close
// to a loses no digits.
double heat_capacity_integral(Over over, const Row& row, double a, double t) noexcept;

// True for the equations that hold at every temperature (vibration terms): nothing to extrapolate.
inline bool is_unbounded(const Row& row) noexcept {
  return row.equation == 107 || row.equation == 127;
}

}  // namespace kestrune::pure

#endif
