// Which trials a stability analysis runs, and in which order: of a feed (test_feed) and of an answer
// (test_answer). Section 3 of docs/method.md. Each trial is followed by flash/stability.cpp.

#include <algorithm>
#include <cmath>
#include <utility>

#include "flash/flash_state.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

// Activity of a component in the tested phase, with its pure state as unit, from which on a phase of almost
// nothing else could split off; of the heaviest component, whose phase may hold much of the others.
constexpr double kWorthFollowing = 0.15, kHeaviestWorthFollowing = 0.1;
// Light gases, whose near-pure trials always run: critical temperature below this, K.
constexpr double kLightGas = 310.0;
// Small strongly cohesive molecules (hydrogen sulphide, sulphur dioxide, ammonia, water, methanol), which like
// to keep to themselves: critical pressure above this, atm. No hydrocarbon comes near it.
constexpr double kCohesive = 60.0;
// ln of the fugacity of a component that is absent: no coefficient brings it back.
constexpr double kNone = -1e5;
// b/v of a dilute gas; and of a gas that is one beyond doubt, half the critical packing.
constexpr double kDilutePacking = 0.04, kCriticalPacking = 1.0 / eos::kCriticalVolumeRatio;
constexpr double kGasPacking = 0.5 * kCriticalPacking;
// Parts of the second of two phases in the mixtures of them that trials start from.
constexpr double kBetween[] = {0.1, 0.25, 0.5, 0.75};
// How much less than Wilson's coefficients say the logarithm of an activity may be and still be looked at.
// Far below the critical temperature they say nothing.
constexpr double kWilsonMargin = 1.0, kWilsonReach = 0.4;
constexpr double kNearCritical = 1.12, kMostOfLiquid = 0.85, kAlmostAllOfLiquid = 0.96;
// Difference of the Gibbs energies of two roots, over RT, up to which the upper one may begin a phase of
// another composition.
constexpr double kRootReach = 0.3;
// Length of a first step along the direction of lowest curvature, in sqrt(W).
constexpr double kAlong = 0.2;
// Starts that differ by less, in ln W, are one; amounts below e^-14 of the largest do not count.
constexpr double kSameStart = 0.3, kMatters = 14.0;

double packing(const Flash& f, double b, double Z) {
  return b * f.m.P / (eos::kR * f.m.T * Z);
}

bool gas_beyond_doubt(const Flash& f, const double* w, double Z) {
  return f.m.built_in() && Z > 0.0 && packing(f, covolume(*f.call.context.record, w), Z) < kGasPacking;
}

// Whether the phase that is known to touch the feed's plane is a gas.
bool beside_gas(const Flash& f) {
  return f.incipient != nullptr && gas_beyond_doubt(f, f.incipient, f.incipient_Z);
}

// Keeps the trial when it is the lowest so far.
void remember(Flash& f) {
  if (f.trial.end != TrialEnd::stationary) return;
  if (f.have_lowest && f.trial.tm >= f.lowest.tm) return;
  std::swap(f.trial, f.lowest);
  f.have_lowest = true;
}

// Follows f.trial, carefully or not.
bool follow(Flash& f, const Reference& ref, Kind kind, bool carefully) {
  f.trial.Z = 0.0;
  Reference reference = ref;
  reference.known = f.incipient != nullptr ? f.incipient : f.lowest.w;
  reference.known_count =
      f.incipient != nullptr || (f.have_lowest && f.lowest.tm > 0.0 && f.how == Follow::quick) ? 1 : 0;
  f.status = follow_trial(f.m, reference, kind, f.how, f.work, f.trial, carefully);
  f.came_back |= f.trial.end == TrialEnd::trivial;
  return f.status == KV_OK;
}

// Where a substitution has led upwards, and past whatever lies there, the trial runs again with care.
bool run_to_end(Flash& f, const Reference& ref, Kind kind) {
  std::copy_n(f.trial.log_w, f.m.ld, f.start);
  if (!follow(f, ref, kind, false)) return false;
  const bool again = f.trial.overshot && !f.m.free_water && !(f.trial.tm < kUnstable);
  remember(f);
  if (!again) return true;
  std::copy_n(f.start, f.m.ld, f.trial.log_w);
  f.trial.current = false;
  if (!follow(f, ref, kind, true)) return false;
  remember(f);
  return true;
}

bool run_trial(Flash& f, const Reference& ref, Kind kind) {
  return (f.thorough() && began_before(f, kind)) || run_to_end(f, ref, kind);
}

// The trial of a number (TrialNumber), from its start to its end.
bool run_numbered(Flash& f, const Reference& ref, int number) {
  return start_trial(f, ref, number) && run_trial(f, ref, trial_kind(f));
}

// What a test remembers, from nothing.
void begin_test(Flash& f) {
  f.have_lowest = f.came_back = false;
  f.start_count = 0;
  f.how = Follow::quick;
}

// Trials are followed strictly while this lives.
class StrictTrials {
 public:
  explicit StrictTrials(Flash& f) : f_(f), before_(f.how) { f.how = Follow::strict; }
  ~StrictTrials() { f_.how = before_; }
  StrictTrials(const StrictTrials&) = delete;
  StrictTrials& operator=(const StrictTrials&) = delete;

 private:
  Flash& f_;
  Follow before_;
};

// A trial from a composition [ld] on its other root, where it has one that is not far above. Z: that of the
// root it has, 0 where that is not known.
bool other_root_trial(Flash& f, const Reference& ref, const double* w, double Z = 0.0) {
  const double reach = f.thorough() ? 1e300 : kRootReach;
  Kind kind = Kind::liquid;
  bool found = false;
  f.status = start_other_root(f.m, ref, w, Z, reach, f.trial, kind, found);
  if (f.status != KV_OK || !found) return f.status == KV_OK;
  const StrictTrials strict(f);
  return run_trial(f, ref, kind);
}

// A trial from the composition f.between on this root.
bool trial_from_between(Flash& f, const Reference& ref, Kind root) {
  f.trial.Z = 0.0;
  f.status = fugacity(f.m, f.between, root, f.trial.ln_phi, nullptr, f.trial.Z);
  if (f.status != KV_OK) return false;
  for (int i = 0; i < f.m.n; ++i) f.trial.log_w[i] = ref.d[i] - f.trial.ln_phi[i];
  return run_trial(f, ref, trial_kind(f));
}

// Trials from mixtures of two phases of an answer, on both roots: what lies between them, or close to one.
bool trials_between(Flash& f, const Reference& ref, const double* a, const double* b) {
  const StrictTrials strict(f);
  for (const double part : kBetween) {
    double sum = 0.0;
    for (int i = 0; i < f.m.ld; ++i) {
      f.between[i] =
          a[i] > 0.0 && b[i] > 0.0
              ? support::fast_exp((1.0 - part) * support::fast_log(a[i]) + part * support::fast_log(b[i]))
              : 0.0;
      sum += f.between[i];
    }
    for (int i = 0; i < f.m.ld; ++i) f.between[i] /= sum;
    if (!trial_from_between(f, ref, Kind::stable) || !other_root_trial(f, ref, f.between)) return false;
  }
  return true;
}

// Wilson's coefficient without its bounds.
double wilson_log_k(const Flash& f, int j) {
  const MixtureRecord& r = *f.call.context.record;
  const auto column = [&](int k) { return r.table[static_cast<std::size_t>(k - 1) * r.count + j]; };
  return 5.37 * (1.0 + column(KV_COL_OMEGA)) * (1.0 - column(KV_COL_TC) / f.call.T) +
         support::fast_log(column(KV_COL_PC) / f.call.P);
}

bool other_root_trial_of_pure(Flash& f, const Reference& ref, int j) {
  for (int i = 0; i < f.m.ld; ++i) f.between[i] = i == j ? 1.0 : 0.0;
  return other_root_trial(f, ref, f.between);
}

// Trials from liquids of almost this component alone and something of a phase; of what else there is in it
// where the phase is hardly anything but the component: mixed with that there would be nothing new. Beside a
// gas of almost this component alone the liquid holds little else.
bool mixed_trials(Flash& f, const Reference& ref, int j, const double* phase) {
  const bool alone = phase[j] > kMostOfLiquid;
  double others = 0.0;
  for (int i = 0; i < f.m.n; ++i) others += i == j && alone ? 0.0 : phase[i];
  for (const double most : {kMostOfLiquid, kAlmostAllOfLiquid}) {
    if (!(others > 0.0) || (most == kAlmostAllOfLiquid && ref.other == nullptr && !alone)) break;
    for (int i = 0; i < f.m.ld; ++i) f.between[i] = i == j && alone ? 0.0 : (1.0 - most) / others * phase[i];
    f.between[j] += most;
    if (!trial_from_between(f, ref, Kind::liquid)) return false;
  }
  return true;
}

// Liquids of a component that is a gas alone: on its other root just below its vapour pressure; and near its
// critical temperature mixed with some of what is there. thoroughly: with every phase.
bool liquid_of_gas_trials(Flash& f, const Reference& ref, int j, bool has_liquid, bool thoroughly) {
  if (has_liquid && !other_root_trial_of_pure(f, ref, j)) return false;
  const double* const less = ref.other != nullptr && ref.other[j] < ref.z[j] ? ref.other : ref.z;
  if (!thoroughly) return mixed_trials(f, ref, j, f.thorough() ? ref.z : less);
  for (const double* phase : {ref.z, ref.other, ref.third})
    if (phase != nullptr && (phase == less || phase[j] <= kMostOfLiquid) && !mixed_trials(f, ref, j, phase))
      return false;
  return true;
}

// Whether a component that has one phase alone, being well above its critical temperature, is a gas there: the
// pressure is below the one at which it would be packed as densely as a gas may be.
bool is_gas_alone(const Flash& f, int j) {
  const eos::Temperature& t = f.m.t;
  const double a = t.aij[static_cast<std::size_t>(j) * t.ld + j], rt = eos::kR * t.T, eta = kGasPacking;
  const double psi = eta / (1.0 + eta * (eos::kU + eos::kW * eta));
  return f.m.P * t.b[j] < rt * eta * (1.0 / (1.0 - eta) - a / (t.b[j] * rt) * psi);
}

// Near-pure trials: the component that Wilson's coefficients favour most, light gases, water, the heaviest
// beside it.
bool near_pure_trials(Flash& f, const Reference& ref, bool have_gas) {
  const int n = f.m.n;
  const MixtureRecord& r = *f.call.context.record;
  const double* Tc = r.table + static_cast<std::size_t>(KV_COL_TC - 1) * r.count;
  const double* Pc = r.table + static_cast<std::size_t>(KV_COL_PC - 1) * r.count;
  const int water = eos::find_water_family(r);
  int heaviest = -1, favoured = 0;
  double most = -1.0;
  for (int i = 0; i < n; ++i) {
    if (f.it.z[i] > 0.0 && i != water && (heaviest < 0 || Tc[i] > Tc[heaviest])) heaviest = i;
    const double amount = f.it.z[i] * f.wilson_k[i];
    if (amount > most) {
      most = amount;
      favoured = i;
    }
  }
  for (int k = water >= 0 ? -1 : 0; k < n; ++k) {
    const int j = k < 0 ? water : k;  // water first
    if (!(f.it.z[j] > 0.0) || (j == water && k >= 0)) continue;
    if (f.thorough()) {
      f.status = start_near_pure(f.m, ref, j, f.trial);
      if (f.status != KV_OK) return false;
      const bool may_boil = f.m.built_in() && f.call.T < kNearCritical * Tc[j];
      const bool gas = may_boil && packing(f, f.m.t.b[j], f.trial.Z) < kCriticalPacking;
      if (!run_trial(f, ref, trial_kind(f))) return false;
      if (may_boil ? !liquid_of_gas_trials(f, ref, j, f.call.T < Tc[j], gas || f.third.x != nullptr)
                   : !other_root_trial_of_pure(f, ref, j))
        return false;
      continue;
    }
    // Wilson's coefficient stands for the fugacity of the pure liquid where that need not be asked for.
    const bool usual = j == heaviest || j == favoured || j == water || Tc[j] < kLightGas || Pc[j] > kCohesive;
    if (!usual && !f.call.every_component && f.call.T > kWilsonReach * Tc[j] &&
        ref.d[j] < wilson_log_k(f, j) - kWilsonMargin)
      continue;
    // Above its critical temperature a component that a phase consists of has no second phase of its own; near
    // it there may be a liquid beside a gas.
    const bool near = f.call.T < kNearCritical * Tc[j], answer = ref.other != nullptr;
    if (f.call.T > Tc[j] && (ref.z[j] > 0.5 || (answer && ref.other[j] > 0.5)) && (answer || !near)) {
      if (near && !f.liquids_only() && !liquid_of_gas_trials(f, ref, j, false, false)) return false;
      continue;
    }
    // A gas beside a gas: it would be the one that is there already.
    if (have_gas && f.m.built_in() && f.call.T >= kNearCritical * Tc[j] && is_gas_alone(f, j)) continue;
    Pure pure;
    f.status = look_at_pure(f.m, ref, j, f.trial, pure);
    if (f.status != KV_OK) return false;
    const double least = j == heaviest || j == water ? kHeaviestWorthFollowing : kWorthFollowing;
    if (pure.log_activity < std::log(least)) continue;
    const double dense = f.m.built_in() ? packing(f, f.m.t.b[j], pure.Z) : 1.0;
    const bool gas = dense < kGasPacking;
    if (dense < kCriticalPacking && !f.liquids_only() && f.call.T < kNearCritical * Tc[j] &&
        !liquid_of_gas_trials(f, ref, j, f.call.T < Tc[j], false))
      return false;
    if (have_gas && gas) continue;
    start_from_pure(f.m, ref, pure, f.trial);
    if (!run_trial(f, ref, trial_kind(f))) return false;
  }
  return true;
}

// Trials from Wilson's coefficients: a liquid z/K and a vapour z K. Both run, the lower one wins.
bool wilson_trials(Flash& f, const Reference& ref) {
  if (!run_numbered(f, ref, kWilsonLiquid)) return false;
  Reference lighter = ref;
  if (f.how == Follow::quick && (gas_beyond_doubt(f, f.it.z, f.feed_Z) || beside_gas(f)))
    lighter.gas_packing = kGasPacking;
  return start_trial(f, ref, kWilsonVapour) && run_trial(f, lighter, trial_kind(f));
}

// Trials from the reference along the direction of lowest curvature, both ways: where a critical point is
// close, what splits off differs from it in this direction, by little: no start is the same as another.
bool trials_along(Flash& f, const Reference& ref) {
  const int n = f.m.n;
  for (const double sign : {1.0, -1.0}) {
    for (int i = 0; i < n; ++i) {
      const double root = std::sqrt(ref.z[i]);
      const double next = std::max(root + sign * kAlong * f.direction[i], 0.1 * root);
      f.trial.log_w[i] = 2.0 * support::fast_log(next);
    }
    if (!run_to_end(f, ref, trial_kind(f))) return false;
  }
  return true;
}

// Trials out of a phase that is not clearly convex.
bool test_curvature(Flash& f, const Reference& ref) {
  if (clearly_convex(f.m, ref, trial_kind(f), nullptr, f.work, f.trial, f.direction, f.status))
    return f.status == KV_OK;
  f.how = Follow::strict;
  return trials_along(f, ref);
}

// A gas too thin to be close to a critical point.
bool dilute(const Flash& f) {
  return !(f.feed_Z > 0.0) || packing(f, covolume(*f.call.context.record, f.it.z), f.feed_Z) < kDilutePacking;
}

}  // namespace

Kind kind_of(const Flash& f, const double* composition, double Z) {
  return loosely_packed(*f.call.context.record, f.m.T, f.m.P, composition, Z) ? Kind::gas : Kind::liquid;
}

Kind trial_kind(const Flash& f) {
  return f.liquids_only() ? Kind::liquid : Kind::stable;
}

bool began_before(Flash& f, Kind kind) {
  const double* const log_w = f.trial.log_w;
  const double least = *std::max_element(log_w, log_w + f.m.n) - kMatters;
  for (int k = 0; k < f.start_count; ++k) {
    const double* const start = f.starts + static_cast<std::size_t>(k) * f.m.ld;
    bool same = f.start_kinds[k] == kind;
    for (int i = 0; same && i < f.m.n; ++i)
      same = !(std::fabs(log_w[i] - start[i]) > kSameStart && std::max(log_w[i], start[i]) > least);
    if (same) return true;
  }
  if (f.start_count == kStarts) return false;
  f.start_kinds[f.start_count] = kind;
  std::copy_n(log_w, f.m.ld, f.starts + static_cast<std::size_t>(f.start_count++) * f.m.ld);
  return false;
}

bool start_trial(Flash& f, const Reference& ref, int number) {
  const int n = f.m.n;
  switch (number) {
    case kWilsonLiquid:
      for (int i = 0; i < n; ++i) f.trial.log_w[i] = support::fast_log(f.it.z[i] / f.wilson_k[i]);
      return true;
    case kWilsonVapour:
      for (int i = 0; i < n; ++i) f.trial.log_w[i] = support::fast_log(f.it.z[i] * f.wilson_k[i]);
      return true;
    case kIdealGas:  // what an ideal gas in equilibrium with the reference would be
      for (int i = 0; i < n; ++i) f.trial.log_w[i] = ref.d[i];
      return true;
    default:
      f.status = start_near_pure(f.m, ref, number - kNearPure, f.trial);
      return f.status == KV_OK;
  }
}

bool evaluate_feed(Flash& f) {
  const int n = f.m.n;
  double Z = 0.0;
  f.m.counts.step = Step::feed;
  f.status = fugacity(f.m, f.it.z, trial_kind(f), f.feed_phi, nullptr, Z, &f.feed);
  if (f.status != KV_OK) return false;
  f.feed_kind = f.liquids_only() ? Kind::liquid : kind_of(f, f.it.z, Z);
  f.feed_Z = Z;
  for (int i = 0; i < f.m.ld; ++i)
    f.d[i] = f.it.z[i] > 0.0 ? support::fast_log(f.it.z[i]) + f.feed_phi[i] : kNone;
  f.feed_gibbs = 0.0;
  for (int i = 0; i < n; ++i) f.feed_gibbs += f.it.z[i] * f.d[i];
  return true;
}

bool test_feed(Flash& f) {
  const Reference ref{f.it.z, f.d};
  begin_test(f);
  bool near_critical = false;
  if (!f.m.free_water && !dilute(f)) {
    f.m.counts.step = Step::curvature;
    const Evaluated* at = f.m.built_in() ? &f.feed : nullptr;
    near_critical = !clearly_convex(f.m, ref, trial_kind(f), at, f.work, f.trial, f.direction, f.status);
    if (f.status != KV_OK) return false;
    if (near_critical) f.how = Follow::strict;
  }
  f.m.counts.step = Step::feed_trials;
  if (!wilson_trials(f, ref)) return false;
  if (near_critical && !trials_along(f, ref)) return false;
  if (f.have_lowest && f.lowest.tm < kUnstable) return true;
  if (f.feed_kind == Kind::liquid && f.trial.end == TrialEnd::trivial) {
    if (!run_numbered(f, ref, kIdealGas)) return false;
  }
  if (!f.liquids_only() && !other_root_trial(f, ref, f.it.z, f.feed_Z)) return false;
  f.m.counts.step = Step::near_pure;
  return near_pure_trials(f, ref, f.feed_kind == Kind::gas || beside_gas(f));
}

bool test_answer(Flash& f, bool& stable) {
  // The tangent plane of the whole answer, of every component as the phase shows it that holds more of it: a K
  // at its bound makes the other one wrong.
  for (int i = 0; i < f.m.ld; ++i) {
    const bool of_y = f.it.y[i] > f.it.x[i];
    f.answer_d[i] = of_y ? support::fast_log(f.it.y[i]) + f.it.ln_phi_y[i]
                         : support::fast_log(f.it.x[i]) + f.it.ln_phi_x[i];
    if (!(f.it.z[i] > 0.0)) f.answer_d[i] = kNone;
    if (f.third.x != nullptr && f.third.x[i] > std::max(f.it.x[i], f.it.y[i]))
      f.answer_d[i] = support::fast_log(f.third.x[i]) + f.third.ln_phi[i];
  }
  begin_test(f);
  stable = true;
  // The trials take the place of what the iteration has left.
  f.m.counts.step = Step::curvature;
  const bool convex = f.it.derivatives && f.m.built_in() &&
                      convex_with(f.m, f.it.x, f.two.dx, kConvex, f.work) &&
                      convex_with(f.m, f.it.y, f.two.dy, kConvex, f.work);
  f.it.derivatives = false;
  f.m.counts.step = Step::answer_trials;
  const Reference plane{f.it.x, f.answer_d, f.it.y, nullptr, 0, f.third.x};
  const bool have_gas = kind_of(f, f.it.y, f.it.Zy) == Kind::gas || kind_of(f, f.it.x, f.it.Zx) == Kind::gas ||
                        (f.third.x != nullptr && kind_of(f, f.third.x, f.third.Z) == Kind::gas);
  if (!run_numbered(f, plane, kWilsonLiquid)) return false;
  if ((!have_gas || f.thorough()) && !f.liquids_only() && !run_numbered(f, plane, kWilsonVapour)) return false;
  // Wilson's vapour of a feed of two liquids may begin as a liquid itself.
  if (!have_gas && !f.liquids_only() && !run_numbered(f, plane, kIdealGas)) return false;
  f.m.counts.step = Step::answer_near_pure;
  if (!near_pure_trials(f, plane, have_gas)) return false;
  f.m.counts.step = Step::answer_trials;
  if (f.thorough() && f.third.x == nullptr && !trials_between(f, plane, f.it.y, f.it.x)) return false;
  if (!f.liquids_only())
    for (const auto& [phase, Z] :
         {std::pair<const double*, double>{f.it.x, f.it.Zx}, {f.it.y, f.it.Zy}, {f.third.x, f.third.Z}})
      if (phase != nullptr && !other_root_trial(f, plane, phase, Z)) return false;
  // A trial came back to a phase of the answer: that settles it only where the phase is clearly convex.
  f.m.counts.step = Step::curvature;
  if (f.came_back && !convex && !(f.have_lowest && f.lowest.tm < kUnstable) &&
      !(test_curvature(f, plane) && test_curvature(f, {f.it.y, f.answer_d, f.it.x, nullptr, 0, f.third.x}) &&
        (f.third.x == nullptr || test_curvature(f, {f.third.x, f.answer_d, f.it.x, nullptr, 0, f.it.y}))))
    return false;
  stable = !(f.have_lowest && f.lowest.tm < kUnstable);
  return true;
}

bool finish_lowest(Flash& f) {
  f.status = follow_trial(f.m, {f.it.z, f.d}, trial_kind(f), Follow::report, f.work, f.lowest);
  return f.status == KV_OK;
}

}  // namespace kestrune::flash
