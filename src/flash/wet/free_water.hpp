// The rules of free water: a liquid is hydrocarbons that hold water up to the solubility limit s, and what
// there is beyond that is a phase of its own, liquid water of vapour pressure Psat. Water's fugacity in a
// liquid is Psat x_w/s below the limit and Psat from there on; the other components see the hydrocarbons at
// their limit. In a vapour the equation of state rules. (23) and (24) of docs/method.md.
#ifndef KESTRUNE_FLASH_WET_FREE_WATER_HPP
#define KESTRUNE_FLASH_WET_FREE_WATER_HPP

#include "flash/fugacity.hpp"

namespace kestrune::flash {

/*
 * A liquid with more water than this is water: nothing else is looked at in it. The flashes, whose liquid is
 * all liquid there is, take it by its content: with this much of hydrocarbons it is oil beside water, however
 * few.
 */
inline constexpr double kWaterRich = 0.9999;
inline constexpr double kLeastOil = 1e-12;

/* Hydrocarbons of a liquid x[n], all but component water: also where they are next to nothing. */
double oil_of(int n, int water, const double* x) noexcept;

/*
 * A liquid x[n] of sum 1 at T (K) that holds more water than its limit, as the two that it is: returns the
 * part that is hydrocarbons at their limit, oil[n], the rest being water alone. 1 where there is not that
 * much, and oil is left alone.
 */
double oil_at_limit(const MixtureRecord& mixture, double T, const double* x, double* oil) noexcept;

/* Less water in a feed of sum 1 than this is none: the feed is treated as without the option, to the last bit.
 */
inline constexpr double kLeastWater = 1e-15;

/* Whether the feed z[n], need not sum to one, has water (family 20) that the option of free water acts on. */
bool has_free_water(const MixtureRecord& mixture, const double* z) noexcept;

/*
 * ln phi of a liquid of composition x[ld] by the rules above, with derivatives as in water_aware_fugacity.
 * Which side of the limit rules follows the amount of water, or m.branch.
 */
StatusCode wet_liquid_fugacity(Model& m, const double* x, double* ln_phi, const Derivatives& d,
                               double& Z) noexcept;

}  // namespace kestrune::flash

#endif
