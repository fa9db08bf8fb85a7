// One trial of Michelsen's tangent-plane test, from its start to its end. Which trials run is decided in
// flash/stability/stability.cpp. Section 3 of docs/method.md.
#ifndef KESTRUNE_FLASH_STABILITY_TRIAL_HPP
#define KESTRUNE_FLASH_STABILITY_TRIAL_HPP

#include "flash/fugacity.hpp"

namespace kestrune::flash {

// Phases that can lie in one plane.
inline constexpr int kMostInPlane = 3;

/*
 * What a trial is compared with: a tangent plane, d_i = ln x_i + ln phi_i of the phases in it; a component that is
 * absent counts as a trace of 1e-308. A trial that runs into one of these phases is trivial. known are compositions
 * of stationary points that were found before: a trial that comes close to one would only find it again.
 */
struct Reference {
  const double* d = nullptr;               // [ld]
  const double* phase[kMostInPlane] = {};  // [ld], null where there are fewer
  double packing[kMostInPlane] = {};       // covolume over volume of these, 0 where it is not known
  const double* known = nullptr;           // [ld * known_count]
  int known_count = 0;
  // A trial that begins as a gas packed less densely than this is a phase of the plane; 0 where none is.
  double gas_packing = 0.0;
  // [ld] composition that another trial would start from, null without one: see Trial::passed.
  const double* watched = nullptr;
};

// How a trial ended.
enum class TrialEnd {
  stationary,  // at a stationary point away from the plane's phases (or on a sure way to one)
  trivial,     // on the way back to one of them
  failed       // fugacity routine, or no convergence
};

/*
 * A trial phase: the unnormalised amounts W of the modified distance tm = 1 + sum W (ln W + ln phi(W) - d -
 * 1), (12) of docs/method.md, whose stationary value 1 - sum W is negative exactly when the plane is cut.
 */
struct Trial {
  double* log_w = nullptr;   // [ld] ln W
  double* w = nullptr;       // [ld] composition W/sum W
  double* ln_phi = nullptr;  // [ld] of w
  double tm = 0.0;           // modified tangent-plane distance
  double sum = 0.0;          // sum of W
  double gradient2 = 0.0;    // sum of W r^2
  double Z = 0.0;
  Evaluated at;           // by the built-in equation
  bool current = false;   // all of this belongs to log_w
  bool overshot = false;  // a substitution has led upwards
  bool passed = false;    // it began where the watched start is, or came there by its first substitution
  TrialEnd end = TrialEnd::failed;
};

// Distances below this are instability, not rounding.
inline constexpr double kUnstable = -1e-10;

// Work of a trial: vectors and one matrix.
struct TrialWork {
  double *r, *root, *step, *old_root;  // [ld]
  double *dn, *hessian;                // [ld * n]
};

// How far a trial is followed.
enum class Follow {
  quick,   // stops where its end is certain, given that the plane's phases are clearly convex
  strict,  // one of them is close to a critical point: minima may lie close to it
  report   // to the stationary point, for a phase that is reported
};

/*
 * Follows a trial from trial.log_w: successive substitution, then second-order steps in 2 sqrt(W). kind as
 * for fugacity(). careful: second-order steps already from where a substitution leads upwards. Returns the
 * status of the fugacity routine.
 */
StatusCode follow_trial(Model& m, const Reference& ref, Kind kind, Follow how, const TrialWork& work,
                        Trial& trial, bool careful = false);

/* The composition w[n] of amounts e^log_w. */
void composition_of(const Model& m, const double* log_w, double* w);

// Lowest eigenvalue of the curvature of a phase that quick trials are good enough for.
inline constexpr double kConvex = 0.1;

/*
 * Whether the curvature of the distance at a phase x[ld], the matrix 1 + sqrt(x_i x_j) d ln phi_i/d n_j, has
 * no eigenvalue below margin: (16) of docs/method.md. dn[ld * n]: its derivatives, lower triangle. With a
 * margin that is not positive the factors of the matrix less the margin stay in work.hessian where the result
 * is true.
 */
bool convex_with(Model& m, const double* x, const double* dn, double margin, const TrialWork& work);

/* Divides a vector v[n] by its length; zeros stay. */
void make_unit(int n, double* v) noexcept;

/*
 * The same of a phase x[ld] by its own derivatives, with the margin kConvex: true when no other minimum can be
 * close. Else lowest[ld] is a unit vector near the lowest eigenvector. at: what is known of the phase, null where
 * nothing is. status: of the fugacity routine, which makes the result true.
 */
bool clearly_convex(Model& m, const double* x, Kind kind, const Evaluated* at, const TrialWork& work,
                    Trial& trial, double* lowest, StatusCode& status);

// A component alone at the T and P of the model.
struct Pure {
  int j = 0;
  double Z = 0.0;
  double log_activity = 0.0;  // of it in the plane, its pure state as unit
  eos::Mixture mixed;         // by the built-in equation
  eos::Root root;
};

/*
 * The pure component j, and its activity in the plane, which says whether a trial is worth its way: by
 * the built-in equation without a look at the other components. A host's routine tells all at once: log_w of
 * the trial is filled then.
 */
StatusCode look_at_pure(Model& m, const Reference& ref, int j, Trial& trial, Pure& pure);

/* First substitution from the pure component: fills trial.log_w and Z. */
void start_from_pure(Model& m, const Reference& ref, const Pure& pure, Trial& trial);

/* Both. */
StatusCode start_near_pure(Model& m, const Reference& ref, int j, Trial& trial);

/*
 * First substitution from the composition w[ld] on the root that is not its stable one, which a liquid beside a
 * vapour of nearly its composition needs: the way from the stable root leads back to the vapour. Z: of the root
 * it has, which spares most of the work, or 0. kind is the root to follow then. found false: there is no such
 * root, or its Gibbs energy over RT is higher by more than reach; with a host's routine, its two phases have
 * one Z.
 */
StatusCode start_other_root(Model& m, const Reference& ref, const double* w, double Z, double reach,
                            Trial& trial, Kind& kind, bool& found);

}  // namespace kestrune::flash

#endif
