// Condensed water at a temperature: its fugacity as a liquid, with what carbon dioxide and hydrogen sulphide
// dissolve in it, or as ice.
#ifndef KESTRUNE_WATER_CONDENSED_HPP
#define KESTRUNE_WATER_CONDENSED_HPP

#include "eos/context.hpp"
#include "kestrune/status.h"

namespace kestrune::water {

// Temperatures, K, for which there are values: from the lowest one of the sublimation pressure to where the gas
// root of the equation of state at water's vapour pressure is still that of steam.
inline constexpr double kLowestTemperature = 150.0, kHighestTemperature = 640.0;
// Highest pressure, atm: towards 10 000 atm the co-volumes of the equation of state press all water out of the
// gas.
inline constexpr double kHighestPressure = 2000.0;
inline constexpr double kIcePoint = 273.16;  // triple point, K
inline constexpr double kMolarMass = 18.01528;

/*
 * Vapour pressure over liquid water, atm, from the pure-component library; below the triple point that of
 * supercooled water. KV_OK or the status of the library.
 *
 * Below: the form of [Mur05], scaled to meet the library's value at the triple point.
 *
 * [Mur05] D. M. Murphy, T. Koop, Q. J. R. Meteorol. Soc. 131 (2005) 1539, equation 10.
 */
StatusCode liquid_vapour_pressure(const eos::Tools& tools, double T, double& P) noexcept;

// One temperature. Pressures in atm, volumes in cm3/mol.
struct Condensed {
  double rt = 0.0;                     // R T, cm3 atm/mol
  double liquid_P = 0.0, ice_P = 0.0;  // vapour pressures; ice_P 0 where there is no ice
  double log_phi_liquid = 0.0;         // ln phi of saturated steam, set by the caller's equation of state
  double log_phi_ice = 0.0;
  double log_liquid_P = 0.0, log_ice_P = 0.0;
  double volume = 0.0;  // of the saturated liquid
  double log_henry_CO2 = 0.0,
         log_henry_H2S = 0.0;  // ln(fugacity in atm / mole ratio) at water's vapour pressure
  double saturation() const { return ice_P > 0.0 && ice_P < liquid_P ? ice_P : liquid_P; }
};

/* Fills all but the ln phi. Henry constants are read for the gases that are wanted. */
StatusCode condensed_water(const eos::Tools& tools, double T, bool CO2, bool H2S, Condensed& c) noexcept;

struct Fugacity {
  double log_value;  // ln of water's fugacity in atm
  bool ice;          // ice is the stabler of the two
};

/*
 * Water's fugacity at P, the lower one of liquid and ice; fugacities of the dissolving gases in atm, 0 for
 * none. (37) and (38) of docs/method.md:
 *   liquid: Psat phi_sat exp(integral of v dP/RT) x_w,  x_w = 1/(1 + n_CO2 + n_H2S),
 *           n = f/(H exp(v (P - Psat)/RT))
 *   ice:    Psub phi_sub exp(v (P - Psub)/RT)
 */
Fugacity water_fugacity(const Condensed& c, double P, double f_CO2, double f_H2S) noexcept;

}  // namespace kestrune::water

#endif
