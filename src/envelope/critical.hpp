// Critical points of a mixture with the built-in equation of state.
#ifndef KESTRUNE_ENVELOPE_CRITICAL_HPP
#define KESTRUNE_ENVELOPE_CRITICAL_HPP

#include "envelope/spinodal.hpp"

namespace kestrune::envelope {

struct Critical {
  double T = 0.0, P = 0.0;  // K, atm
  double V = 0.0;           // cm3/mol
  double Z = 0.0;
};

/*
 * Newton's method on both conditions of [Hei80], (34) and (35) of docs/method.md, from T and eta, the packing
 * b/V. Bounds the changes of one step. False: it does not come to a critical state, or one at which another
 * direction is unstable already. On true the last step was below 1e-6 in ln T and eta, and has left its
 * square.
 */
bool solve_critical(Spinodal& sp, double& T, double& eta, StatusCode& status);

/*
 * Every critical point of positive pressure on the spinodal between packings of 0.16 and 0.76 (V/b 6.3 to
 * 1.3), highest temperature first, stable or not; at most capacity of them. Follows the spinodal from the
 * thin end in steps of 0.1, looking for changes of sign of the form, and ends early inside a liquid: far
 * below zero pressure, or at 0.4 of its highest temperature. count receives their number. Status: of the
 * model.
 */
StatusCode critical_points(Spinodal& sp, int capacity, Critical* found, int& count);

/*
 * The critical point of a feed z (need not sum to one): the stable one of highest temperature, by the test of
 * the feed against every phase that could split off. A single component returns its own Tc and Pc, with its Vc
 * where that is known and that of the equation of state where it is not.
 *
 * KV_OK; KV_NO_CRITICAL without a stable one; others of the model. Results are written on KV_OK only.
 */
StatusCode critical_point(const eos::Context& context, const double* z, Critical& result);

}  // namespace kestrune::envelope

#endif
