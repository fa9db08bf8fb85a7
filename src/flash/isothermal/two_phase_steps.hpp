// The steps of the two-phase iteration, section 4 of docs/method.md. Private to it.
#ifndef KESTRUNE_FLASH_ISOTHERMAL_TWO_PHASE_STEPS_HPP
#define KESTRUNE_FLASH_ISOTHERMAL_TWO_PHASE_STEPS_HPP

#include "flash/isothermal/two_phase.hpp"

namespace kestrune::flash {

/* Compositions from the coefficients and the fractions, from the side of the smaller one: no difference of
 * near-equal numbers. */
void compose_phases(const Model& m, Iterate& it);

/* Phase fraction and compositions from it.k; false when only one phase is left. */
bool split_feed(const Model& m, Iterate& it);

/* Fugacities of both phases, residuals and error of (18), Gibbs energy (19) of docs/method.md. derivatives: with
 * those in composition, into the work. */
StatusCode evaluate_phases(Model& m, const TwoPhaseWork& work, bool derivatives, Iterate& it);

/* The derivatives afterwards, of phases that have just been evaluated; where work.derivatives_later. */
StatusCode add_derivatives(Model& m, const TwoPhaseWork& work, Iterate& it);

/* Gives the coefficients a common factor with which there are two phases: sum z K and sum z/K become equal, and
 * their product is above 1. False: all K are one. */
bool centre_coefficients(const Model& m, Iterate& it);

/*
 * A substitution with a relaxation factor, and the split that follows. cut: of a feed that is known to be unstable
 * the step is cut until both phases are there: where unlike molecules attract each other strongly, a whole one
 * overshoots. False: one phase.
 */
bool substitute(const Model& m, bool cut, double relaxation, const TwoPhaseWork& work, Iterate& it);

/* Direction of Newton's method in ln K, into work.step; work.old_log_k is where it begins. False: none. */
bool newton_direction(Model& m, const TwoPhaseWork& work, Iterate& it);

/* The same by the matrix of the last direction, without another. */
void same_direction(Model& m, const TwoPhaseWork& work, Iterate& it);

/* ln K = old + factor * step and the split that follows; the factor is cut until both phases are there. */
bool take_newton_step(const Model& m, double factor, const TwoPhaseWork& work, Iterate& it);

}  // namespace kestrune::flash

#endif
