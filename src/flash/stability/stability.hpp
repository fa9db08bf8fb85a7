// Michelsen's tangent-plane test: does anything cut the plane that touches the Gibbs energy at a feed, or at two
// or three phases in equilibrium? Which trials look for it; each is followed by flash/stability/trial.cpp. Section 3 of
// docs/method.md.
#ifndef KESTRUNE_FLASH_STABILITY_STABILITY_HPP
#define KESTRUNE_FLASH_STABILITY_STABILITY_HPP

#include "flash/feed.hpp"
#include "flash/stability/trial.hpp"

namespace kestrune::flash {

// How far the search for a phase goes.
enum class Effort {
  usual,
  every_component,  // near-pure trials also of components that Wilson's coefficients leave out
  thorough  // every component alone on each of its roots, and what lies between phases: for three phases
};

/*
 * A test by itself: of the feed at T and P, or of phases in equilibrium there. Arrays [n] of the caller, only read.
 */
struct StabilityCall : Feed {
  double T = 0.0, P = 0.0;  // K, atm
  Model* model = nullptr;   // prepared for this T and P; null: the test makes its own
  Effort effort = Effort::usual;
  int count = 0;  // phases whose plane is tested, 2 or 3; 0: that of the feed
  const double* phase[kMostInPlane] = {};
  // Of a feed: a phase that is known to touch its plane, null without one, and its Z, 0 where it is not known.
  // Trials that come to it stop.
  const double* incipient = nullptr;
  double incipient_Z = 0.0;
};

struct StabilityResult {
  // The lowest tangent-plane distance of the stationary points that were found, 0 without any.
  double distance = 0.0;
  bool cut = false;         // it is below 0 by more than rounding
  double* w = nullptr;      // [n] receives the composition of what cuts; may be null
  double* log_k = nullptr;  // [n] of a feed: ln phi(feed) - ln phi(lowest trial), 0 without one; may be null
};

/* KV_OK, or the status of the model. */
StatusCode test_stability(const StabilityCall& call, StabilityResult& result);

// ---- the test as a part of a flash ----

/* A phase that lies in a plane. Arrays [ld]. */
struct PlanePhase {
  const double *x = nullptr, *ln_phi = nullptr;
  double Z = 0.0;                 // 0: not known
  Kind kind = Kind::stable;       // the root that it stands on; of a feed gas or liquid, by its packing
  const double* dn = nullptr;     // [ld * n] composition derivatives of ln phi, null where there are none
  const Evaluated* at = nullptr;  // by the built-in equation, null where it is not known
};

/* A tangent plane, and the phases in it. */
struct Plane {
  const double* z = nullptr;  // [ld] feed, sum 1
  const double* d = nullptr;  // [ld]
  int count = 0;              // 1: of the feed
  PlanePhase phase[kMostInPlane];
  PlanePhase incipient;  // see StabilityCall; x and Z alone
};

/* Starts of trials that one test has tried: a trial that begins close to another ends where that one did. */
struct TriedStarts {
  static constexpr int kMost = 32;
  int count = 0;
  Kind kind[kMost] = {};
  double* log_w = nullptr;  // [ld * kMost]
};

/* Work of a test, and what it has found. */
struct Stability {
  Stability(Model& model, Effort e, bool liquids) : m(model), effort(e), liquids_only(liquids) {}

  Model& m;
  Effort effort;
  bool liquids_only;

  Trial lowest;  // of the last test, where there is one that is no phase of the plane
  bool have_lowest = false;
  bool cut() const { return have_lowest && lowest.tm < kUnstable; }

  double* wilson_k = nullptr;  // [ld]
  TrialWork work{};
  Trial trial;                      // the one that runs
  Follow how = Follow::quick;       // how far trials are followed
  const double* watched = nullptr;  // see Reference
  bool passed = false;              // a trial came by there
  bool came_back = false;           // some trial ran into a phase of the plane
  TriedStarts tried;
  double* began = nullptr;      // [ld] ln W that the trial which runs began with
  double* between = nullptr;    // [ld] composition that a trial starts from
  double* direction = nullptr;  // [ld] of lowest curvature at a phase
  double* found = nullptr;      // [ld * found_count] what next_cut has found
  int found_count = 0;
  double *feed_phi = nullptr, *feed_d = nullptr;  // [ld]
  double* answer_d = nullptr;                     // [ld]
  Evaluated feed_at;
  StatusCode status = KV_OK;  // of the fugacity routine
};

/* Room for a test; dn and hessian [ld * n] may be shared with who tests, and hold nothing between the calls. */
void open_stability(support::Arena& arena, double* dn, double* hessian, Stability& s);

/* The plane of the feed z[ld]: one phase, evaluated here. The status of the fugacity routine. */
StatusCode feed_plane(Stability& s, const double* z, Plane& plane);

/* The plane that plane.phase share, of every component as the phase shows it that holds most of it. */
void answer_plane(Stability& s, Plane& plane);

/* Full test: s.lowest, where there is one. The status of the fugacity routine. */
StatusCode test_plane(Stability& s, const Plane& plane);

/*
 * For who wants all that cuts a plane, not the lowest alone: every trial there is, each followed strictly. number
 * is 0 at first and counted on. found: s.lowest is the next one that cuts.
 */
StatusCode next_cut(Stability& s, const Plane& plane, int& number, bool& found);

/* Takes s.lowest to its stationary point, for a phase that is reported. */
StatusCode finish_lowest(Stability& s, const Plane& plane);

/* Gas or liquid by packing: a gas is packed less densely than the critical volume of the equation. */
inline Kind kind_of(const Model& m, const double* composition, double Z) {
  return loosely_packed(*m.context.record, m.T, m.P, composition, Z) ? Kind::gas : Kind::liquid;
}

}  // namespace kestrune::flash

#endif
