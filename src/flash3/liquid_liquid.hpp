// Flash of two liquids at temperature and pressure.
#ifndef KESTRUNE_FLASH3_LIQUID_LIQUID_HPP
#define KESTRUNE_FLASH3_LIQUID_LIQUID_HPP

#include "flash/isothermal.hpp"

namespace kestrune::flash3 {

struct LiquidLiquidCall {
  double T = 0.0, P = 0.0;    // K, atm
  const double* z = nullptr;  // feed, need not sum to one
  MixtureRecord* mixture = nullptr;
  flash::HostRoutines* routines = nullptr;
  bool free_water = false;
  bool estimate = false;                          // the results hold one; an unusable one is ignored
  double* beta = nullptr;                         // share of liquid 2
  double *liquid1 = nullptr, *liquid2 = nullptr;  // the denser and the lighter one
  double* K = nullptr;                            // liquid2/liquid1
};

/*
 * KV_OK: one liquid or two. A feed of a single component is not split: beta 0, liquid 2 all zero, K 1e-15. One
 * liquid: beta 0, liquid 2 and K all zero. Two are ordered by the density routine of the host (entry 10), or by
 * the library's. Others: of the isothermal solver and of the density routine.
 */
StatusCode liquid_liquid_flash(const LiquidLiquidCall& call);

using DensityRoutine = StatusCode(KV_CALL*)(double, double, const double*, MixtureRecord*, double*, double*,
                                            double*, double*);

/* The routine of a host that orders liquids (entry 10), null without one. */
DensityRoutine host_density(const flash::HostRoutines* routines) noexcept;

struct LiquidPhase {
  double T, P;  // K, atm
  const double* x;
  MixtureRecord* mixture;
  flash::HostRoutines* routines;
};
/* Mass density of a liquid, g/cm3, by the host's routine or by the library's. */
StatusCode density_of_liquid(const LiquidPhase& liquid, double& rho);

}  // namespace kestrune::flash3

#endif
