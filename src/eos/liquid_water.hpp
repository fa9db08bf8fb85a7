// Liquid water as the free-water option sees it: vapour pressure, solubility limit, heat of vaporisation. Family code
// 20 marks water.
#ifndef KESTRUNE_EOS_LIQUID_WATER_HPP
#define KESTRUNE_EOS_LIQUID_WATER_HPP

#include <cstddef>

#include "kestrune/records.h"

namespace kestrune::eos {

struct WithSlope {
  double value, d_dT;
};

// ln(Psat/Pa) = c0 - c1/T - c2 ln T + c3 T^2, DIPPR equation 101.
namespace psat {
inline constexpr double c0 = 73.649, c1 = 7258.2, c2 = 7.3037, c3 = 4.1653e-6;
inline constexpr double kTwiceC3 = 8.3306e-6;
}  // namespace psat

/*
 * Vapour pressure of water, atm, and its slope, atm/K. DIPPR equation 101 up to 647.096 K, above it a straight
 * line of ln P in 1/T.
 */
WithSlope water_vapour_pressure(double T) noexcept;

/* Largest water fraction of a hydrocarbon liquid, s(T) = exp(A - B/T), capped at 1 (slope 0 there), 1/K. */
WithSlope water_solubility(double T, double A, double B) noexcept;

/*
 * Heat of vaporisation of water, cal/mol, and its slope, cal/(mol K): DIPPR equation 106 with a critical
 * temperature of 647.13 K; 0 above.
 */
WithSlope water_vaporisation_enthalpy(double T) noexcept;

/* Index from 0 of the first component of the water family, -1 when there is none. */
int find_water_family(const MixtureRecord& mixture) noexcept;

/* Whether component i (from 0) has the family code of water. */
inline bool is_water_family(const MixtureRecord& mixture, int i) noexcept {
  return mixture.table[static_cast<std::size_t>(KV_COL_FAMILY - 1) * mixture.count + i] == KV_FAMILY_WATER;
}

}  // namespace kestrune::eos

#endif
