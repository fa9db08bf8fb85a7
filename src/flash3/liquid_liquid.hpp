// Flash of two liquids at temperature and pressure.
#ifndef KESTRUNE_FLASH3_LIQUID_LIQUID_HPP
#define KESTRUNE_FLASH3_LIQUID_LIQUID_HPP

#include "flash/isothermal/isothermal.hpp"

namespace kestrune::flash3 {

struct LiquidLiquidCall : flash::Feed {
  double T = 0.0, P = 0.0;                        // K, atm
  double* beta = nullptr;                         // share of liquid 2
  double *liquid1 = nullptr, *liquid2 = nullptr;  // the denser and the lighter one
  double* K = nullptr;                            // liquid2/liquid1
};

/*
 * KV_OK: one liquid or two. A feed of which one entry, as it is given, is above 1 less the tolerance of the
 * record is not split: beta 0, liquid 1 the feed, liquid 2 all zero, K 1e-15. One liquid: beta 0, liquid 2 and
 * K all zero. Two stand as denser_first orders them. Fractions below 1e-15 are 0, and K is 1e15 where liquid 1
 * lacks a component. Others: of the isothermal solver.
 */
StatusCode liquid_liquid_flash(const LiquidLiquidCall& call);

// Two liquids of n components; Z where it is known, else 0.
struct LiquidPair {
  double T, P;  // K, atm
  const double *first, *second;
  eos::Context context;
  const flash::HostRoutines* routines;
  double Z_first = 0.0, Z_second = 0.0;
};

/*
 * Whether the liquids stand in their order: the first output of the host's routine (entry 10) is no smaller for
 * the first one. Its status says nothing. Without a routine, and where it leaves no finite number for one of
 * them, the mass densities of the library decide; liquids that have none stay where they are.
 */
bool denser_first(const LiquidPair& pair);

}  // namespace kestrune::flash3

#endif
