// Free water in the three-phase flashes at enthalpy, entropy and vapour fraction: the liquid-vapour flash,
// whose liquid is hydrocarbons and water in one, with its liquid taken apart afterwards.
#ifndef KESTRUNE_FLASH3_THREE_FREE_WATER_HPP
#define KESTRUNE_FLASH3_THREE_FREE_WATER_HPP

#include "flash3/three_energy.hpp"
#include "flash3/three_quality.hpp"

namespace kestrune::flash3 {

/* What the value of an answer at T (K) may miss of the one that was given. */
double owed(const ThreeEnergyCall& call, double T);

/*
 * The value is the sum over the phases. Of enthalpies that is the liquid-vapour flash's; entropies of the two
 * liquids hold no mixing with each other, so that the temperature is searched from there. Statuses as in
 * three_energy_flash and three_quality_flash, and of the liquid-vapour flashes.
 */
StatusCode three_energy_free_water(const ThreeEnergyCall& call);
StatusCode three_quality_free_water(const ThreeQualityCall& call);

}  // namespace kestrune::flash3

#endif
