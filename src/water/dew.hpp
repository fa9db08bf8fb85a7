// Water dew points of a gas: the pressure or the temperature at which its water is what it can just hold.
#ifndef KESTRUNE_WATER_DEW_HPP
#define KESTRUNE_WATER_DEW_HPP

#include "kestrune/records.h"

namespace kestrune::water {

/*
 * What all three share. method: see method_by_number. The feed must sum to one within the sum_tolerance of the
 * record.
 */
struct DewCall {
  const double* z = nullptr;  // [count] with water
  int method = 1;
  const MixtureRecord* mixture = nullptr;
};

/*
 * Pressure (atm) of the dew point at T (K); P holds a start. Newton's method on F = y_saturated(T, P) - y_water
 * with a slope over P/10000, converged where F^2 < 1e-16: a start that is converged is not changed, any other
 * point is refined to the digits of the model. A start that is not in 0 .. 1e10 counts as 1.
 *
 * Where Newton's method leaves the range of the model, finds a slope of 0 or turns in circles, the pressures
 * from saturation upwards are searched for the first change of sign, within the same iteration limit.
 *
 * KV_FEED_SUM, KV_NO_WATER, KV_SPECIFICATION for an unknown method: P is not touched. KV_ZERO_SLOPE,
 * KV_NOT_CONVERGED after ITEMAX + 1 updates or where there is no dew point, and the statuses of the model: P
 * holds the last pressure.
 */
StatusCode dew_pressure(const DewCall& call, double T, double& P);

/*
 * Temperature (K) of the dew point at P (atm); T holds a start, which counts where the method has a value.
 * Secants of ln y over 1/T, kept within the interval where the sign changes, to 1e-12 of y. Statuses as above.
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
