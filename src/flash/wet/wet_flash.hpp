// The isothermal flash with free water.
#ifndef KESTRUNE_FLASH_WET_WET_FLASH_HPP
#define KESTRUNE_FLASH_WET_WET_FLASH_HPP

#include "flash/isothermal/isothermal.hpp"

namespace kestrune::flash {

/*
 * As isothermal_flash in liquid-vapour mode, of a feed that has free water. x is the whole liquid: hydrocarbons
 * with water up to their limit, and all free water. A single fluid is called as in called_gas (wet_state.hpp).
 * K: y/x of the arrays. 120: no state was found that passes the gate.
 */
StatusCode wet_flash(const IsothermalCall& call);

/*
 * Whether beta, x and y of the call, a gas and a liquid, are in equilibrium at T and P with nothing missing; at
 * beta 0 and 1 one of them is incipient. third: all is well but for a further phase. The results are read only.
 */
StatusCode check_wet(const IsothermalCall& call, bool& good, bool& third);

}  // namespace kestrune::flash

#endif
