// Water as the free-water option sees it: vapour pressure and solubility limit. Family code 20 marks water.
#ifndef KESTRUNE_FLASH_WATER_HPP
#define KESTRUNE_FLASH_WATER_HPP

#include "kestrune/records.h"

namespace kestrune::flash {

struct WithSlope {
  double value, d_dT;
};

/*
 * Vapour pressure of water, atm, and its slope, atm/K. DIPPR equation 101 up to 647.096 K, above it a straight
 * line of ln P in 1/T.
 */
WithSlope water_vapour_pressure(double T) noexcept;

/* Largest water fraction of a hydrocarbon liquid, s(T) = exp(A - B/T), capped at 1 (slope 0 there), 1/K. */
WithSlope water_solubility(double T, double A, double B) noexcept;

/* Index from 0 of the first component of the water family, -1 when there is none. */
int find_water_family(const MixtureRecord& mixture) noexcept;

/*
 * Wilson's distribution coefficients K[n] with d/dT[n] (1/K; may be null): (Pc/P) exp(5.37 (1 + omega)(1 -
 * Tc/T)), exponent within +-34.5, K within 1e-15 .. 1e15. With free_water, water has Psat/P and the slope
 * (7258.2/T^2 - 7.3037/T + 8.3306e-6 T) Psat/P.
 */
void wilson(double T, double P, const MixtureRecord& mixture, bool free_water, double* K,
            double* dK_dT) noexcept;

}  // namespace kestrune::flash

#endif
