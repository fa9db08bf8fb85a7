// Flashes at enthalpy or entropy and pressure.
#ifndef KESTRUNE_FLASH_ENERGY_ENERGY_FLASH_HPP
#define KESTRUNE_FLASH_ENERGY_ENERGY_FLASH_HPP

#include "flash/energy/caloric.hpp"
#include "flash/feed.hpp"

namespace kestrune::flash {

struct EnergyCall : Feed {
  Property property = Property::enthalpy;
  double wanted = 0.0;     // cal/mol or cal/(mol K), of one mole of feed
  double P = 0.0;          // atm
  double* T = nullptr;     // in/out, K; exactly 0 starts at 298.15
  double* beta = nullptr;  // with x and y where the flash at *T may start
  double *x = nullptr, *y = nullptr, *K = nullptr;
  double *liquid = nullptr, *vapour = nullptr;  // value of each phase; 0 for one that is absent
  int index = 1;                                // initialisation index, for the trace
  int* flashes = nullptr;                       // may be null: isothermal flashes that were run
};

/*
 * KV_OK: found; KV_SINGLE_PHASE never leaves. 112, 113: the main solver and the search behind it failed; 112 at
 * once where no temperature between 3 and 10 000 K has the value. Others: of the model and of the
 * pure-component library.
 */
StatusCode energy_flash(const EnergyCall& call);

/* The search alone that stands behind the main solver: isothermal flashes and forward differences from *T. */
StatusCode energy_search(const EnergyCall& call);

}  // namespace kestrune::flash

#endif
