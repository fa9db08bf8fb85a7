// The trials of a stability test that start from components almost alone.

#include <algorithm>
#include <cmath>

#include "flash/stability/stability_trials.hpp"
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
// How much less than Wilson's coefficients say the logarithm of an activity may be and still be looked at.
// Far below the critical temperature they say nothing.
constexpr double kWilsonMargin = 1.0, kWilsonReach = 0.4;
constexpr double kNearCritical = 1.12;  // of a critical temperature: so far a liquid may stand beside a gas
constexpr double kMostOfLiquid = 0.85, kAlmostAllOfLiquid = 0.96;  // of the component in a liquid to start from

// What the trials of one test share.
struct Components {
  const double *Tc, *Pc;  // [n] K, atm
  int water = -1;         // number of the water family component
  int heaviest = -1;      // of highest Tc beside it
  int favoured = 0;       // the one that Wilson's coefficients favour most
  bool have_gas = false;  // a phase of the plane is a gas
};

Components look_at_components(const Stability& s, const Plane& plane, bool have_gas) {
  const MixtureRecord& r = *s.m.context.record;
  Components c{r.table + static_cast<std::size_t>(KV_COL_TC - 1) * r.count,
               r.table + static_cast<std::size_t>(KV_COL_PC - 1) * r.count};
  c.water = eos::find_water_family(r);
  c.have_gas = have_gas;
  double most = -1.0;
  for (int i = 0; i < s.m.n; ++i) {
    if (plane.z[i] > 0.0 && i != c.water && (c.heaviest < 0 || c.Tc[i] > c.Tc[c.heaviest])) c.heaviest = i;
    const double amount = plane.z[i] * s.wilson_k[i];
    if (amount > most) {
      most = amount;
      c.favoured = i;
    }
  }
  return c;
}

// Wilson's coefficient without its bounds.
double wilson_log_k(const Stability& s, int j) {
  const MixtureRecord& r = *s.m.context.record;
  const auto column = [&](int k) { return r.table[static_cast<std::size_t>(k - 1) * r.count + j]; };
  return 5.37 * (1.0 + column(KV_COL_OMEGA)) * (1.0 - column(KV_COL_TC) / s.m.T) +
         support::fast_log(column(KV_COL_PC) / s.m.P);
}

bool other_root_trial_of_pure(Stability& s, const Plane& plane, int j) {
  for (int i = 0; i < s.m.ld; ++i) s.between[i] = i == j ? 1.0 : 0.0;
  return other_root_trial(s, plane, s.between);
}

// Trials from liquids of almost this component alone and something of a phase; of what else there is in it
// where the phase is hardly anything but the component: mixed with that there would be nothing new. Beside a
// gas of almost this component alone the liquid holds little else.
bool mixed_trials(Stability& s, const Plane& plane, int j, const double* phase) {
  const bool alone = phase[j] > kMostOfLiquid;
  double others = 0.0;
  for (int i = 0; i < s.m.n; ++i) others += i == j && alone ? 0.0 : phase[i];
  for (const double most : {kMostOfLiquid, kAlmostAllOfLiquid}) {
    if (!(others > 0.0) || (most == kAlmostAllOfLiquid && plane.count == 1 && !alone)) break;
    for (int i = 0; i < s.m.ld; ++i) s.between[i] = i == j && alone ? 0.0 : (1.0 - most) / others * phase[i];
    s.between[j] += most;
    if (!trial_from_between(s, plane, Kind::liquid)) return false;
  }
  return true;
}

// Liquids of a component that is a gas alone: on its other root just below its vapour pressure; and near its
// critical temperature mixed with some of what is there, thoroughly with some of every phase.
bool liquid_of_gas_trials(Stability& s, const Plane& plane, int j, bool has_liquid, bool every_phase) {
  if (has_liquid && !other_root_trial_of_pure(s, plane, j)) return false;
  const double *const x = plane.phase[0].x, *const y = plane.phase[1].x;
  const double* const less = y != nullptr && y[j] < x[j] ? y : x;
  if (!every_phase) return mixed_trials(s, plane, j, s.effort == Effort::thorough ? x : less);
  for (int k = 0; k < plane.count; ++k) {
    const double* const phase = plane.phase[k].x;
    if ((phase == less || phase[j] <= kMostOfLiquid) && !mixed_trials(s, plane, j, phase)) return false;
  }
  return true;
}

// Whether a component that has one phase alone, being well above its critical temperature, is a gas there: the
// pressure is below the one at which it would be packed as densely as a gas may be.
bool is_gas_alone(const Model& m, int j) {
  const eos::Temperature& t = m.t;
  const double a = t.aij[static_cast<std::size_t>(j) * t.ld + j], rt = eos::kR * t.T, eta = kGasPacking;
  const double psi = eta / (1.0 + eta * (eos::kU + eos::kW * eta));
  return m.P * t.b[j] < rt * eta * (1.0 / (1.0 - eta) - a / (t.b[j] * rt) * psi);
}

// Every phase that the component alone could be.
bool all_trials_of(Stability& s, const Plane& plane, const Components& c, int j) {
  s.status = start_near_pure(s.m, reference_of(plane), j, s.trial);
  if (s.status != KV_OK) return false;
  const bool may_boil = s.m.built_in() && s.m.T < kNearCritical * c.Tc[j];
  const bool gas = may_boil && packing(s.m, s.m.t.b[j], s.trial.Z) < kCriticalPacking;
  if (!run_trial(s, plane, trial_kind(s))) return false;
  return may_boil ? liquid_of_gas_trials(s, plane, j, s.m.T < c.Tc[j], gas || plane.count == kMostInPlane)
                  : other_root_trial_of_pure(s, plane, j);
}

// Whether the component alone is looked at: Wilson's coefficient stands for the fugacity of the pure liquid where
// that need not be asked for.
bool worth_a_look(const Stability& s, const Plane& plane, const Components& c, int j) {
  const bool usual =
      j == c.heaviest || j == c.favoured || j == c.water || c.Tc[j] < kLightGas || c.Pc[j] > kCohesive;
  return usual || s.effort != Effort::usual || !(s.m.T > kWilsonReach * c.Tc[j]) ||
         !(plane.d[j] < wilson_log_k(s, j) - kWilsonMargin);
}

// Whether one of the first two phases consists of the component.
bool fills_a_phase(const Plane& plane, int j) {
  return plane.phase[0].x[j] > 0.5 || (plane.count > 1 && plane.phase[1].x[j] > 0.5);
}

// The trials of a component that may be worth their way.
bool usual_trials_of(Stability& s, const Plane& plane, const Components& c, int j) {
  if (!worth_a_look(s, plane, c, j)) return true;
  const double T = s.m.T;
  // Above its critical temperature a component that a phase consists of has no second phase of its own; near it
  // there may be a liquid beside a gas.
  const bool near = T < kNearCritical * c.Tc[j];
  if (T > c.Tc[j] && fills_a_phase(plane, j) && (plane.count > 1 || !near))
    return !near || s.liquids_only || liquid_of_gas_trials(s, plane, j, false, false);
  // A gas beside a gas: it would be the one that is there already.
  if (c.have_gas && s.m.built_in() && !near && is_gas_alone(s.m, j)) return true;
  Pure pure;
  s.status = look_at_pure(s.m, reference_of(plane), j, s.trial, pure);
  if (s.status != KV_OK) return false;
  const double least = j == c.heaviest || j == c.water ? kHeaviestWorthFollowing : kWorthFollowing;
  if (pure.log_activity < std::log(least)) return true;
  const double dense = s.m.built_in() ? packing(s.m, s.m.t.b[j], pure.Z) : 1.0;
  if (dense < kCriticalPacking && !s.liquids_only && near &&
      !liquid_of_gas_trials(s, plane, j, T < c.Tc[j], false))
    return false;
  if (c.have_gas && dense < kGasPacking) return true;
  start_from_pure(s.m, reference_of(plane), pure, s.trial);
  return run_trial(s, plane, trial_kind(s));
}

}  // namespace

bool near_pure_trials(Stability& s, const Plane& plane, bool have_gas) {
  const Components c = look_at_components(s, plane, have_gas);
  const auto run = s.effort == Effort::thorough ? all_trials_of : usual_trials_of;
  if (c.water >= 0 && plane.z[c.water] > 0.0 && !run(s, plane, c, c.water)) return false;
  for (int j = 0; j < s.m.n; ++j)
    if (j != c.water && plane.z[j] > 0.0 && !run(s, plane, c, j)) return false;
  return true;
}

}  // namespace kestrune::flash
