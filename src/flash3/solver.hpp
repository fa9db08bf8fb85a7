// The three-phase iteration at temperature and pressure: two liquids and a vapour from a start that has all
// three.
#ifndef KESTRUNE_FLASH3_SOLVER_HPP
#define KESTRUNE_FLASH3_SOLVER_HPP

#include "flash/settings.hpp"
#include "flash3/phases.hpp"
#include "support/trace.hpp"

namespace kestrune::flash3 {

// Places of the phases of a three-phase iterate.
enum Slot { kA = 0, kB = 1, kV = 2 };

enum class Ended {
  converged,        // ln fugacities equal to 1e-10; to 1e-8 where rounding ends it, a host's as CRIT asks
  vapour_vanished,  // five passes in a row below 1e-4, or next to nothing at the end: the phase is taken
  a_vanished,       // out, and the others stay in their order
  b_vanished,
  identical,  // two phases became one and are one now
  exhausted,  // ITEMAX passes
  damped,     // Newton's method found no way on a dozen times, or stopped short of the precision owed
  routine     // the fugacity routine returned a status
};

struct Iteration {
  int index = 0;         // initialisation index, for the trace
  bool descend = false;  // Newton's method from the start: for phases that substitution overshoots
  bool patient = false;  // a phase counts as vanished only when its amount is exactly 0
  flash::Settings settings;
  support::TraceWriter* trace = nullptr;
};

/*
 * Substitutions with the amounts of the convex split, then Newton's method on the Gibbs energy with a line
 * search. p holds three phases to start from, which are put in their slots. status: of the fugacity routine.
 */
Ended iterate_phases(flash::Model& m, const double* z, const Iteration& how, Phases& p, const PhasesWork& w,
                     StatusCode& status);

/* The last steps alone, for two or three phases that are close to equilibrium and have been evaluated. */
Ended polish_phases(flash::Model& m, const double* z, const Iteration& how, Phases& p, const PhasesWork& w,
                    StatusCode& status);

/*
 * KV_TRIVIAL or KV_TRIVIAL_LV when of three phases in their slots the two liquids or the vapour and A, or the
 * vapour and B, are one phase: every distribution coefficient between them within CRIT^(1/3) of 1. KV_OK else,
 * and for a single component.
 */
StatusCode phases_alike(int n, const double* z, const Phases& p, double CRIT);

/*
 * The solver's own starts for p (its slots, amounts 1/3 each) by initialisation index: 2 with Wilson's
 * coefficients from B to A and from A to the vapour; others: those between a liquid almost pure in the last
 * component that is present, A, and one almost pure in the first, B, and towards the vapour those of Wilson for
 * 3, else those of the fugacity routine with the feed as the vapour, for 5 with an ideal gas. Compositions
 * follow from the coefficients and the balance.
 */
StatusCode start_by_index(flash::Model& m, const double* z, int index, Phases& p);

}  // namespace kestrune::flash3

#endif
