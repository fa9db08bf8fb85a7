// The equilibrium of a feed at temperature and pressure among one, two and three fluid phases: the one of
// lowest Gibbs energy, as far as the stability test can tell.
#ifndef KESTRUNE_FLASH3_EQUILIBRIUM_HPP
#define KESTRUNE_FLASH3_EQUILIBRIUM_HPP

#include "flash/isothermal/isothermal.hpp"
#include "flash3/solver.hpp"

namespace kestrune::flash3 {

/* One problem under way: built by open_equilibrium on the caller's stack. Arrays [ld]. */
struct Equilibrium {
  double* z = nullptr;  // feed with sum 1; traces below 1e-15 are 0
  flash::Model m;
  flash::HostRoutines* routines = nullptr;
  Iteration how;
  PhasesWork w;
  Phases p;             // the answer, in no order; of one phase it is the feed
  Phases answer, best;  // the answer that is improved on, and the best that replaces it
  double *x = nullptr, *y = nullptr, *K = nullptr;  // results of the two-phase flash: the incipient phase too
  double beta = 0.0;
  bool gas = false;                              // of a single phase
  bool started = false;                          // the two-phase flash of the feed had an answer
  double* cut = nullptr;                         // composition of the phase that cuts e.p
  double *added = nullptr, *best_cut = nullptr;  // that of the answer that is improved on, and of the best
  flash::ThirdPhase third;
  support::Arena* arena = nullptr;  // of the model, which is made again for each temperature
  support::Arena::Mark base{};
  int order = 0;
};

/*
 * Prepares a problem at T (K) and P (atm), without free water. The arena must outlive it and is used by no one else afterwards; the
 * trace belongs to the caller. order 1: with the derivatives in temperature.
 */
StatusCode open_equilibrium(const flash::Feed& feed, double T, double P, int order, support::Arena& arena,
                            support::TraceWriter& trace, Equilibrium& e);

/* The same problem at another temperature and pressure. Another pressure alone costs nothing. */
StatusCode set_conditions(double T, double P, Equilibrium& e);

/* The phases e.x and e.y of a two-phase flash, beta of the feed in the latter, into e.p. */
void put_two_phases(Equilibrium& e, double beta);

/*
 * Solves from nothing. KV_OK: e.p. KV_FOURTH_PHASE: e.p is the lowest state of three phases, and a fourth would
 * split off. 112, 114: no answer that passes the test was found, e.p is the best one seen; 120, 121 when two of
 * its phases are alike. Others: of the model.
 */
StatusCode find_equilibrium(Equilibrium& e);

/* The same from the phases in e.p, be they two or three. */
StatusCode find_equilibrium_from(Equilibrium& e);

/* Tests the answer e.p of one to three phases: e.third.found when something cuts its tangent plane. */
StatusCode test_equilibrium(Equilibrium& e);

/*
 * The gate of every answer: the feed is split among e.p to the precision that is owed, the fugacities that were
 * last evaluated are equal between all phases, and nothing cuts their tangent plane, as the last test said.
 */
bool accept(const Equilibrium& e);

/* Index of the least densely packed phase of e.p. */
int lightest_phase(const Equilibrium& e);

/*
 * Index of the vapour in e.p, the least densely packed phase where that passes for one; -1 without. Of three it
 * does. Of two, above the critical volume of the equation, or where no liquid like it could be: above its
 * pseudo-critical temperature, by a quarter of it beside an aqueous liquid, with which a fluid has nothing in
 * common that could make it a gas. One phase is named by the two-phase flash.
 */
int find_vapour(const Equilibrium& e);

}  // namespace kestrune::flash3

#endif
