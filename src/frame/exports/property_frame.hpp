// What the property exports share: checks of a state and the statuses that a host sees.
#ifndef KESTRUNE_FRAME_EXPORTS_PROPERTY_FRAME_HPP
#define KESTRUNE_FRAME_EXPORTS_PROPERTY_FRAME_HPP

#include "frame/boundary.hpp"
#include "support/status.hpp"

namespace kestrune::exports {

inline StatusCode check_state(double T, double P, const double* x, const MixtureRecord* mixture) {
  return frame::first_failure(
      {frame::check_temperature(T), frame::check_pressure(P), frame::check_feed(x, mixture)});
}

// Statuses of the cores that a host sees: those that come with a root are none.
inline StatusCode mapped(StatusCode status) {
  return support::has_root(status) ? StatusCode{KV_OK} : status;
}

}  // namespace kestrune::exports

#endif
