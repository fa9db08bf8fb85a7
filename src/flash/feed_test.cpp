// Which trials a stability analysis runs, and in which order.

#include <algorithm>
#include <cmath>

#include "flash/flash_state.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

// Activity of a component in the tested phase, with its pure state as unit, from which on a phase of almost nothing
// else could split off; of the heaviest component, whose phase may hold much of the others.
constexpr double kWorthFollowing = 0.3, kHeaviestWorthFollowing = 0.05;
// Light gases, whose near-pure trials always run: critical temperature below this, K.
constexpr double kLightGas = 310.0;
// b/v of a dilute gas: half the critical packing.
constexpr double kGasPacking = 0.5 / eos::kCriticalVolumeRatio;

// Packing b/v of the pure component j.
double packing(const Flash& f, int j, double Z) { return f.m.t.b[j] * f.m.P / (eos::kR * f.m.T * Z); }

// Keeps the trial when it is the lowest so far.
void remember(Flash& f) {
  if (f.trial.end != TrialEnd::stationary) return;
  if (f.have_lowest && f.trial.tm >= f.lowest.tm) return;
  std::swap(f.trial, f.lowest);
  f.have_lowest = true;
}

bool run_trial(Flash& f, const Reference& ref, Kind kind) {
  f.trial.Z = 0.0;
  Reference reference = ref;
  reference.known = f.have_lowest && f.lowest.tm > 0.0 ? f.lowest.w : nullptr;
  f.status = follow_trial(f.m, reference, kind, false, f.work, f.trial);
  if (f.status != KV_OK) return false;
  remember(f);
  return true;
}

// Near-pure trials: the component that Wilson's coefficients favour most, light gases, water, the heaviest.
bool near_pure_trials(Flash& f, const Reference& ref, bool have_gas) {
  const int n = f.m.n;
  const MixtureRecord& r = *f.call.mixture;
  const double* Tc = r.table + static_cast<std::size_t>(KV_COL_TC - 1) * r.count;
  const int water = find_water_family(r);
  int heaviest = 0, favoured = 0;
  double most = -1.0;
  for (int i = 0; i < n; ++i) {
    if (f.it.z[i] > 0.0 && Tc[i] > Tc[heaviest]) heaviest = i;
    const double amount = f.it.z[i] * f.wilson_k[i];
    if (amount > most) {
      most = amount;
      favoured = i;
    }
  }
  for (int j = 0; j < n; ++j) {
    if (!(f.it.z[j] > 0.0)) continue;
    if (!(j == heaviest || j == favoured || j == water || Tc[j] < kLightGas)) continue;
    f.status = start_near_pure(f.m, ref, j, f.trial);
    if (f.status != KV_OK) return false;
    const double least = j == heaviest ? kHeaviestWorthFollowing : kWorthFollowing;
    if (f.trial.log_w[j] < std::log(least)) continue;
    // A gas beside a gas: it would be the one that is there already.
    if (have_gas && f.m.built_in() && packing(f, j, f.trial.Z) < kGasPacking) continue;
    if (!run_trial(f, ref, liquid_kind(f))) return false;
  }
  return true;
}

// Trials from Wilson's coefficients: a liquid z/K and a vapour z K. Both run, the lower one wins.
bool wilson_trials(Flash& f, const Reference& ref) {
  const int n = f.m.n;
  for (int i = 0; i < n; ++i) f.trial.log_w[i] = support::fast_log(f.it.z[i] / f.wilson_k[i]);
  if (!run_trial(f, ref, liquid_kind(f))) return false;
  for (int i = 0; i < n; ++i) f.trial.log_w[i] = support::fast_log(f.it.z[i] * f.wilson_k[i]);
  return run_trial(f, ref, vapour_kind(f));
}

}  // namespace

Kind kind_of(const Flash& f, const double* composition, double Z) {
  if (!(Z > 0.0)) return Kind::liquid;
  const MixtureRecord& r = *f.call.mixture;
  const double* Tc = r.table + static_cast<std::size_t>(KV_COL_TC - 1) * r.count;
  const double* Pc = r.table + static_cast<std::size_t>(KV_COL_PC - 1) * r.count;
  double b = 0.0;
  for (int i = 0; i < f.m.n; ++i) b += composition[i] * eos::kOmegaB_R * Tc[i] / Pc[i];
  const double v = Z * eos::kR * f.call.T / f.call.P;
  return v > eos::kCriticalVolumeRatio * b ? Kind::gas : Kind::liquid;
}

Kind liquid_kind(const Flash& f) {
  return f.m.free_water || f.liquids_only() ? Kind::liquid : Kind::stable;
}

Kind vapour_kind(const Flash& f) {
  if (f.liquids_only()) return Kind::liquid;
  return f.m.free_water ? Kind::gas : Kind::stable;
}

bool evaluate_feed(Flash& f) {
  const int n = f.m.n;
  double Z = 0.0;
  if (f.m.free_water && !f.liquids_only()) {
    // Vapour by the equation of state, liquid by the water rules: the lower one is the reference.
    double z_liquid = 0.0, gas = 0.0, liquid = 0.0;
    f.status = fugacity(f.m, f.it.z, Kind::gas, f.feed_phi, nullptr, Z);
    if (f.status != KV_OK) return false;
    f.status = fugacity(f.m, f.it.z, Kind::liquid, f.trial.ln_phi, nullptr, z_liquid);
    if (f.status != KV_OK) return false;
    for (int i = 0; i < n; ++i) gas += f.it.z[i] * f.feed_phi[i];
    for (int i = 0; i < n; ++i) liquid += f.it.z[i] * f.trial.ln_phi[i];
    f.feed_kind = Kind::gas;
    if (liquid < gas) {
      std::copy_n(f.trial.ln_phi, f.m.ld, f.feed_phi);
      f.feed_kind = Kind::liquid;
      Z = z_liquid;
    }
  } else {
    f.status = fugacity(f.m, f.it.z, liquid_kind(f), f.feed_phi, nullptr, Z);
    if (f.status != KV_OK) return false;
    f.feed_kind = f.liquids_only() ? Kind::liquid : kind_of(f, f.it.z, Z);
  }
  f.feed_Z = Z;
  for (int i = 0; i < f.m.ld; ++i) f.d[i] = support::fast_log(f.it.z[i]) + f.feed_phi[i];
  f.feed_gibbs = 0.0;
  for (int i = 0; i < n; ++i) f.feed_gibbs += f.it.z[i] * f.d[i];
  return true;
}

bool test_feed(Flash& f) {
  const Reference ref{f.it.z, f.d};
  f.have_lowest = false;
  if (!wilson_trials(f, ref)) return false;
  if (f.have_lowest && f.lowest.tm < kUnstable) return true;
  if (f.feed_kind == Kind::liquid && f.trial.end == TrialEnd::trivial) {
    // What an ideal gas in equilibrium with the feed would be.
    for (int i = 0; i < f.m.n; ++i) f.trial.log_w[i] = f.d[i];
    if (!run_trial(f, ref, vapour_kind(f))) return false;
  }
  return near_pure_trials(f, ref, f.feed_kind == Kind::gas);
}

bool test_answer(Flash& f, bool& stable) {
  // The tangent plane of the whole answer; x is a phase of it.
  for (int i = 0; i < f.m.ld; ++i) f.answer_d[i] = support::fast_log(f.it.x[i]) + f.it.ln_phi_x[i];
  f.have_lowest = false;
  stable = true;
  if (!near_pure_trials(f, {f.it.x, f.answer_d, f.it.y}, true)) return false;
  stable = !(f.have_lowest && f.lowest.tm < kUnstable);
  return true;
}

bool finish_lowest(Flash& f) {
  const Kind kind = f.m.free_water && f.feed_kind == Kind::liquid ? vapour_kind(f) : liquid_kind(f);
  f.status = follow_trial(f.m, {f.it.z, f.d}, kind, true, f.work, f.lowest);
  return f.status == KV_OK;
}

}  // namespace kestrune::flash
