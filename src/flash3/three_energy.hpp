// Flashes of two liquids and a vapour at enthalpy or entropy and pressure.
#ifndef KESTRUNE_FLASH3_THREE_ENERGY_HPP
#define KESTRUNE_FLASH3_THREE_ENERGY_HPP

#include "flash/energy/caloric.hpp"
#include "flash3/three_phase.hpp"

namespace kestrune::flash3 {

struct ThreeEnergyCall : flash::Feed {
  flash::Property property = flash::Property::enthalpy;
  double wanted = 0.0;  // cal/mol or cal/(mol K), of one mole of feed
  double P = 0.0;       // atm
  double* T = nullptr;  // in/out, K, with the results where it may start; exactly 0: 298.15
  ThreePhaseResult out = {};
  double *A = nullptr, *B = nullptr, *vapour = nullptr;  // value of each phase; 0 for one that is absent
};

/*
 * The temperature at which the equilibrium of one, two or three phases has the value: KV_OK, 130, 131 with the
 * marks of three_phase_flash. Where the temperature stands still while the value changes (three phases of two
 * components) the amounts are solved for. 112: no temperature between 3 and 10 000 K has it, or the iteration
 * failed. 118: as in three_phase_flash. Others: of the model and of the pure-component library.
 */
StatusCode three_energy_flash(const ThreeEnergyCall& call);

}  // namespace kestrune::flash3

#endif
