// Wilson's distribution coefficients [Wil69], with water's own where the free-water option is on.
//
// [Wil69] G. M. Wilson, A modified Redlich-Kwong equation of state, 65th national meeting of the AIChE,
// Cleveland (1969).
#ifndef KESTRUNE_FLASH_WILSON_HPP
#define KESTRUNE_FLASH_WILSON_HPP

#include "eos/liquid_water.hpp"
#include "kestrune/records.h"

namespace kestrune::flash {

using eos::WithSlope;

/*
 * Wilson's distribution coefficients K[n] with d/dT[n] (1/K; may be null): (Pc/P) exp(5.37 (1 + omega)(1 -
 * Tc/T)), exponent within +-34.5, K within 1e-15 .. 1e15. With free_water, water has Psat/P and the slope
 * (7258.2/T^2 - 7.3037/T + 8.3306e-6 T) Psat/P.
 */
void wilson(double T, double P, const MixtureRecord& mixture, bool free_water, double* K,
            double* dK_dT) noexcept;

}  // namespace kestrune::flash

#endif
