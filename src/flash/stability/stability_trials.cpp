// Where trials start, and how they run.

#include "flash/stability/stability_trials.hpp"

#include <algorithm>
#include <cmath>

#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

// Parts of the second of two phases in the mixtures of them that trials start from.
constexpr double kBetween[] = {0.1, 0.25, 0.5, 0.75};
// Difference of the Gibbs energies of two roots, over RT, up to which the upper one may begin a phase of
// another composition.
constexpr double kRootReach = 0.3;
// Length of a first step along the direction of lowest curvature, in sqrt(W).
constexpr double kAlong = 0.2;
// Starts that differ by less, in ln W, are one; amounts below e^-14 of the largest do not count.
constexpr double kSameStart = 0.3, kMatters = 14.0;

// Trials are followed strictly while this lives.
class StrictTrials {
 public:
  explicit StrictTrials(Stability& s) : s_(s), before_(s.how) { s.how = Follow::strict; }
  ~StrictTrials() { s_.how = before_; }
  StrictTrials(const StrictTrials&) = delete;
  StrictTrials& operator=(const StrictTrials&) = delete;

 private:
  Stability& s_;
  Follow before_;
};

// Keeps the trial when it is the lowest so far.
void remember(Stability& s) {
  if (s.trial.end != TrialEnd::stationary) return;
  if (s.have_lowest && s.trial.tm >= s.lowest.tm) return;
  std::swap(s.trial, s.lowest);
  s.have_lowest = true;
}

// Follows s.trial, carefully or not.
bool follow(Stability& s, const Plane& plane, Kind kind, double gas_packing, bool carefully) {
  s.trial.Z = 0.0;
  Reference ref = reference_of(plane);
  ref.gas_packing = gas_packing;
  for (int j = 0; j < plane.count && s.m.built_in(); ++j) {
    const PlanePhase& phase = plane.phase[j];
    ref.packing[j] = phase.at != nullptr ? phase.at->root.eta : packing_of(s.m, phase.x, phase.Z);
  }
  ref.watched = s.watched;
  ref.known = plane.incipient.x != nullptr ? plane.incipient.x : s.lowest.w;
  ref.known_count =
      plane.incipient.x != nullptr || (s.have_lowest && s.lowest.tm > 0.0 && s.how == Follow::quick) ? 1 : 0;
  s.status = follow_trial(s.m, ref, kind, s.how, s.work, s.trial, carefully);
  s.came_back |= s.trial.end == TrialEnd::trivial;
  s.passed |= s.trial.passed;
  return s.status == KV_OK;
}

// Where a substitution has led upwards, and past whatever lies there, the trial runs again with care.
bool run_to_end(Stability& s, const Plane& plane, Kind kind, double gas_packing) {
  std::copy_n(s.trial.log_w, s.m.ld, s.began);
  if (!follow(s, plane, kind, gas_packing, false)) return false;
  const bool again = s.trial.overshot && !s.m.free_water && !(s.trial.tm < kUnstable);
  remember(s);
  if (!again) return true;
  std::copy_n(s.began, s.m.ld, s.trial.log_w);
  s.trial.current = false;
  if (!follow(s, plane, kind, gas_packing, true)) return false;
  remember(s);
  return true;
}

}  // namespace

Reference reference_of(const Plane& plane) {
  Reference ref;
  ref.d = plane.d;
  for (int j = 0; j < plane.count; ++j) ref.phase[j] = plane.phase[j].x;
  return ref;
}

double packing_of(const Model& m, const double* w, double Z) {
  return Z > 0.0 ? packing(m, covolume(*m.context.record, w), Z) : 0.0;
}

bool gas_beyond_doubt(const Stability& s, const double* w, double Z) {
  return s.m.built_in() && Z > 0.0 && packing_of(s.m, w, Z) < kGasPacking;
}

bool beside_gas(const Stability& s, const Plane& plane) {
  return plane.incipient.x != nullptr && gas_beyond_doubt(s, plane.incipient.x, plane.incipient.Z);
}

bool run_trial(Stability& s, const Plane& plane, Kind kind, double gas_packing) {
  return (s.effort == Effort::thorough && began_before(s, kind)) || run_to_end(s, plane, kind, gas_packing);
}

bool start_trial(Stability& s, const Plane& plane, int number) {
  const int n = s.m.n;
  switch (number) {
    case kWilsonLiquid:
      for (int i = 0; i < n; ++i) s.trial.log_w[i] = support::fast_log(plane.z[i] / s.wilson_k[i]);
      return true;
    case kWilsonVapour:
      for (int i = 0; i < n; ++i) s.trial.log_w[i] = support::fast_log(plane.z[i] * s.wilson_k[i]);
      return true;
    case kIdealGas:  // what an ideal gas in equilibrium with the plane would be
      for (int i = 0; i < n; ++i) s.trial.log_w[i] = plane.d[i];
      return true;
    default:
      s.status = start_near_pure(s.m, reference_of(plane), number - kNearPure, s.trial);
      return s.status == KV_OK;
  }
}

bool began_before(Stability& s, Kind kind) {
  const int n = s.m.n, ld = s.m.ld;
  TriedStarts& tried = s.tried;
  const double* const log_w = s.trial.log_w;
  const double least = *std::max_element(log_w, log_w + n) - kMatters;
  for (int k = 0; k < tried.count; ++k) {
    const double* const start = tried.log_w + static_cast<std::size_t>(k) * ld;
    bool same = tried.kind[k] == kind;
    for (int i = 0; same && i < n; ++i)
      same = !(std::fabs(log_w[i] - start[i]) > kSameStart && std::max(log_w[i], start[i]) > least);
    if (same) return true;
  }
  if (tried.count == TriedStarts::kMost) return false;
  tried.kind[tried.count] = kind;
  std::copy_n(log_w, ld, tried.log_w + static_cast<std::size_t>(tried.count++) * ld);
  return false;
}

bool run_numbered(Stability& s, const Plane& plane, int number) {
  return start_trial(s, plane, number) && run_trial(s, plane, trial_kind(s));
}

bool other_root_trial(Stability& s, const Plane& plane, const double* w, double Z) {
  const double reach = s.effort == Effort::thorough ? 1e300 : kRootReach;
  Kind kind = Kind::liquid;
  bool found = false;
  s.status = start_other_root(s.m, reference_of(plane), w, Z, reach, s.trial, kind, found);
  if (s.status != KV_OK || !found) return s.status == KV_OK;
  const StrictTrials strict(s);
  return run_trial(s, plane, kind);
}

bool trial_from_between(Stability& s, const Plane& plane, Kind root) {
  s.trial.Z = 0.0;
  s.status = fugacity(s.m, s.between, root, s.trial.ln_phi, nullptr, s.trial.Z);
  if (s.status != KV_OK) return false;
  for (int i = 0; i < s.m.n; ++i) s.trial.log_w[i] = plane.d[i] - s.trial.ln_phi[i];
  return run_trial(s, plane, trial_kind(s));
}

bool trials_between(Stability& s, const Plane& plane, const double* a, const double* b) {
  const StrictTrials strict(s);
  for (const double part : kBetween) {
    double sum = 0.0;
    for (int i = 0; i < s.m.ld; ++i) {
      s.between[i] =
          a[i] > 0.0 && b[i] > 0.0
              ? support::fast_exp((1.0 - part) * support::fast_log(a[i]) + part * support::fast_log(b[i]))
              : 0.0;
      sum += s.between[i];
    }
    for (int i = 0; i < s.m.ld; ++i) s.between[i] /= sum;
    if (!trial_from_between(s, plane, Kind::stable) || !other_root_trial(s, plane, s.between)) return false;
  }
  return true;
}

bool trials_along(Stability& s, const Plane& plane, const double* x) {
  for (const double sign : {1.0, -1.0}) {
    for (int i = 0; i < s.m.n; ++i) {
      const double root = std::sqrt(x[i]);
      const double next = std::max(root + sign * kAlong * s.direction[i], 0.1 * root);
      s.trial.log_w[i] = 2.0 * support::fast_log(next);
    }
    if (!run_to_end(s, plane, trial_kind(s), 0.0)) return false;
  }
  return true;
}

}  // namespace kestrune::flash
