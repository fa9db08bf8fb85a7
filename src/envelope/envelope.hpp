// Phase envelopes and quality lines.
#ifndef KESTRUNE_ENVELOPE_ENVELOPE_HPP
#define KESTRUNE_ENVELOPE_ENVELOPE_HPP

#include "eos/context.hpp"
#include "flash/host.hpp"
#include "support/spline.hpp"

namespace kestrune::envelope {

struct EnvelopeCall {
  const double* z = nullptr;  // feed, need not sum to one
  eos::Context context;
  flash::HostRoutines* routines = nullptr;
  double first_P = 0.0, highest_P = 0.0, lowest_T = 0.0;  // atm, atm, K; 0: 1, 2000, 50
  int points = 0;                                         // wanted; 0: as traced
  int capacity = 0;                                       // of the three arrays
  double fraction = 1.0;                                  // 1: bubble and dew; between 0 and 1: that line
  double accuracy = 0.0;  // checked only, 0 or from 1e-10: every point is converged to 1e-10 in ln fugacities
  double *T = nullptr, *P = nullptr, *kind = nullptr;  // [capacity]
  int *number = nullptr, *criticals = nullptr;
  double *therm_T = nullptr, *therm_P = nullptr, *bar_T = nullptr, *bar_P = nullptr;
};

/*
 * Traces the line. All outputs are zero at entry. What it returns is written at PhaseEnvelope in kvgasthermo.h.
 * fit: why the points are as traced where evenly spaced ones were wanted; good otherwise.
 */
StatusCode phase_envelope(const EnvelopeCall& call, support::SplineFit& fit);

/* The vapour-pressure curve of component j, which makes up the feed: the envelope of a single component. */
StatusCode vapour_pressure_curve(const EnvelopeCall& call, int j);

}  // namespace kestrune::envelope

#endif
