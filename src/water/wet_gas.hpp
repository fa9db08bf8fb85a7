// A gas that is saturated with water: its water content and its composition.
#ifndef KESTRUNE_WATER_WET_GAS_HPP
#define KESTRUNE_WATER_WET_GAS_HPP

#include "eos/context.hpp"
#include "kestrune/status.h"

namespace kestrune::water {

/*
 * Water mole fraction of the saturated gas at T (K), P (atm), and its mass in one normal m3 of that gas, mg
 * (ideal gas, 0 C, 1 atm). z[count]: the gas with or without water. method: see method_by_number;
 * KV_SPECIFICATION for others. KV_NO_WATER without a component that is water; statuses of prepare_saturation
 * and saturated_fraction. Both outputs are left alone on failure.
 */
StatusCode humidity(double T, double P, int method, const double* z, const eos::Context& context,
                    double& fraction, double& content);

/*
 * Composition wet[count] of the gas saturated at T and P: the dry gas of z in its proportions, sum one. Water
 * beyond saturation in z is dropped. wet may be z; it is left alone on failure. Statuses as above.
 */
StatusCode wet_gas(double T, double P, int method, const double* z, const eos::Context& context, double* wet);

}  // namespace kestrune::water

#endif
