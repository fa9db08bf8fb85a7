// Water dew points of a gas: the pressure or the temperature at which its water is what it can just hold.
#ifndef KESTRUNE_WATER_DEW_HPP
#define KESTRUNE_WATER_DEW_HPP

#include "eos/context.hpp"
#include "kestrune/status.h"

namespace kestrune::water {

/*
 * What all three share. method: see method_by_number. The feed must sum to one within the sum_tolerance of the
 * record.
 */
struct DewCall {
  const double* z = nullptr;  // [count] with water
  int method = 1;
  eos::Context context;
};

/*
 * Pressure (atm) of the dew point at T (K); P holds a start. Newton's method on F = y_saturated(T, P) - y_water
 * with a slope over P/10000, converged where F^2 < 1e-16: a start that is converged is not changed, any other
 * point is refined to the digits of the model. A start that is not in 0 .. 1e10 counts as 1. y_saturated is 1
 * at and below the vapour pressure of water, where a gas takes up any amount, and beyond the pressures of the
 * method.
 *
 * KV_FEED_SUM, KV_NO_WATER, KV_SPECIFICATION for an unknown method: P is not touched. A status of the model
 * ends the iteration as it stands, KV_ZERO_SLOPE where F does not change, KV_NOT_CONVERGED after ITEMAX + 1
 * updates: P holds the last pressure. Behind the two, the second from an ITEMAX of 60 on, the pressures from
 * saturation upwards are searched for the first change of sign, within ITEMAX steps; what that finds is
 * returned with KV_OK.
 */
StatusCode dew_pressure(const DewCall& call, double T, double& P);

/*
 * Temperature (K) of the dew point at P (atm); T holds a start, which counts where the method has a value.
 * Secants of ln y over 1/T, to 1e-12 of y, and behind KV_ZERO_SLOPE and KV_NOT_CONVERGED the same kept within
 * the interval where the sign changes. Statuses as above.
 */
StatusCode dew_temperature(const DewCall& call, double P, double& T);

/*
 * Dew points at pressures evenly spaced in ln P between lowest and highest (0: 1 and 200 atm): T[points],
 * P[points], status[points]; T is 0 where there is none. found: the number of points with status 0. Returns
 * KV_OK when there is one, else the status of the first point; KV_SPECIFICATION for pressures that are not
 * finite, negative or in the wrong order. points <= 0: nothing is written but found.
 */
StatusCode dew_line(const DewCall& call, double lowest, double highest, int points, double* T, double* P,
                    StatusCode* status, int& found);

}  // namespace kestrune::water

#endif
