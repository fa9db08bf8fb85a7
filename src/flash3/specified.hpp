// Newton's method on two or three phases of which the temperature or the pressure is not known, but the
// enthalpy, the entropy, or the part of the feed that is vapour. Unknowns are ln K_ji = ln(x_ji/x_0i) beside
// a reference phase 0, the amounts a_j, and ln T or ln P; equations the equal fugacities, the sums, and the
// specified value; section 9 of docs/method.md. A line where temperature and pressure stand still while
// amounts change is no obstacle: the value determines the amounts.
//
// [Mic87] M. L. Michelsen, Fluid Phase Equilib. 33 (1987) 13-27: multiphase flashes at specified enthalpy or
//         entropy.
#ifndef KESTRUNE_FLASH3_SPECIFIED_HPP
#define KESTRUNE_FLASH3_SPECIFIED_HPP

#include "flash/energy/caloric.hpp"
#include "flash3/equilibrium.hpp"

namespace kestrune::flash3 {

enum class Specify { enthalpy, entropy, vapour };

/* One such problem; e.p holds the phases. Arrays from the arena of take_specified. */
struct Specified {
  Equilibrium* e = nullptr;
  flash::CaloricModel* caloric = nullptr;  // for enthalpy and entropy
  Specify what = Specify::vapour;
  double wanted = 0.0;         // cal/mol, cal/(mol K), or the part that is vapour
  bool find_pressure = false;  // else the temperature; of a vapour part only
  double T = 0.0, P = 0.0;     // K, atm: in and out
  int vapour = 0;              // index in e.p of the phase of the specified amount
  // Work.
  flash::Kind kind[kMostPhases] = {};                               // the root that a phase takes
  double *log_k[2], *dtau[kMostPhases], *raw[kMostPhases], *spare;  // [ld]
  double *system, *step;                                            // [(2 n + 3)^2], [2 n + 3]
  int* pivot;
  int steps = 0;  // of Newton's method so far
};

void take_specified(support::Arena& arena, int n, int ld, Specified& s);

enum class Found {
  yes,       // e.p, s.T, s.P; ln fugacities equal to 1e-11, to 1e-9 where rounding ends it
  negative,  // the equations are met with a negative amount: e.p.amount says of which phase
  no,        // no convergence, or the phases became one
  model      // status
};

/*
 * Solves from e.p, s.T and s.P. A single phase is solved for T at its enthalpy or entropy. status: of the
 * model.
 */
Found solve_specified(Specified& s, StatusCode& status);

}  // namespace kestrune::flash3

#endif
