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
 * Newton's method on both conditions of [Hei80] from T and eta, the packing b/V. Bounds the changes of one
 * step. False: it does not come to a critical state, or one at which another direction is unstable already. On
 * true both conditions hold to 1e-9 with a vector of unit length.
 */
bool solve_critical(Spinodal& sp, double& T, double& eta, StatusCode& status);

/*
 * Every critical point of positive pressure on the spinodal between packings of 0.06 and 0.72 (V/b 16 to 1.4),
 * highest temperature first, stable or not; at most capacity of them. Follows the spinodal from the thin end,
 * looking for changes of sign of the form. count receives their number. Status: of the model.
 */
StatusCode critical_points(Spinodal& sp, int capacity, Critical* found, int& count);

/*
 * The critical point of a feed z (need not sum to one): the stable one of highest temperature, by the test of
 * the feed against every phase that could split off. A single component returns its own Tc and Pc, with its Vc
 * where that is known and that of the equation of state where it is not.
 *
 * KV_OK; KV_NO_CRITICAL without a stable one; others of the model. Results are written on KV_OK only.
 */
StatusCode critical_point(MixtureRecord& mixture, const double* z, Critical& result);

}  // namespace kestrune::envelope

#endif
