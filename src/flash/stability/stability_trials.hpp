// The trials of a stability test: where each starts, and how it runs. Private to the test. Functions that return
// false have left a status of the fugacity routine in s.status.
#ifndef KESTRUNE_FLASH_STABILITY_STABILITY_TRIALS_HPP
#define KESTRUNE_FLASH_STABILITY_STABILITY_TRIALS_HPP

#include "flash/stability/stability.hpp"

namespace kestrune::flash {

// Starts by number: the two of Wilson's coefficients, the ideal-gas-like one, and component j almost pure as
// kNearPure + j.
enum TrialNumber { kWilsonLiquid, kWilsonVapour, kIdealGas, kNearPure };

// b/v of a gas that is one beyond doubt: half the critical packing.
inline constexpr double kCriticalPacking = 1.0 / eos::kCriticalVolumeRatio;
inline constexpr double kGasPacking = 0.5 * kCriticalPacking;

inline double packing(const Model& m, double b, double Z) {
  return b * m.P / (eos::kR * m.T * Z);
}

/* The same of a phase of composition w[ld]; 0 without a Z. */
double packing_of(const Model& m, const double* w, double Z);

/* The root that a trial is asked for. */
inline Kind trial_kind(const Stability& s) {
  return s.liquids_only ? Kind::liquid : Kind::stable;
}

/* What trials are compared with, without anything found before. */
Reference reference_of(const Plane& plane);

/* Whether a phase is a gas beyond doubt; and the one that is known to touch a feed's plane. */
bool gas_beyond_doubt(const Stability& s, const double* w, double Z);
bool beside_gas(const Stability& s, const Plane& plane);

/* Follows s.trial from its start to its end, and keeps it where it is the lowest. */
bool run_trial(Stability& s, const Plane& plane, Kind kind, double gas_packing = 0.0);

/* The start of a number, into s.trial. */
bool start_trial(Stability& s, const Plane& plane, int number);

/* Whether a trial of this test began close to where s.trial does; else the start is remembered. */
bool began_before(Stability& s, Kind kind);

/* The trial of a number. */
bool run_numbered(Stability& s, const Plane& plane, int number);

/* A trial from a composition [ld] on its other root, where it has one that is not far above. Z: of the root that
 * it has, 0 where that is not known. */
bool other_root_trial(Stability& s, const Plane& plane, const double* w, double Z = 0.0);

/* A trial from the composition s.between on this root. */
bool trial_from_between(Stability& s, const Plane& plane, Kind root);

/* Trials from mixtures of two phases of an answer, on both roots: what lies between them, or close to one. */
bool trials_between(Stability& s, const Plane& plane, const double* a, const double* b);

/*
 * Trials from a phase x[ld] along s.direction, both ways: where a critical point is close, what splits off differs
 * from it in this direction, by little: no start is the same as another.
 */
bool trials_along(Stability& s, const Plane& plane, const double* x);

/*
 * Near-pure trials: the component that Wilson's coefficients favour most, light gases, water, the heaviest beside
 * it; by effort all others. have_gas: a phase of the plane is a gas.
 */
bool near_pure_trials(Stability& s, const Plane& plane, bool have_gas);

}  // namespace kestrune::flash

#endif
