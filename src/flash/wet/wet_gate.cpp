// What an answer with free water is held against: equal fugacities, the water that a gas can hold, and trials
// of the phases that it lacks.

#include <algorithm>
#include <cmath>

#include "flash/accept.hpp"
#include "flash/wet/wet_state.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

constexpr int kMostSteps = 600;           // beside critical points a trial comes to a known phase late
constexpr int kTurns = 8;                 // of a trial that goes to and fro, from which its steps are cut
constexpr double kSettled = 1e-24;        // sum of w g^2 of a trial that has settled
constexpr double kGoingThere = 1e-7;      // the same of a trial that is on its way to a phase that is near
constexpr double kSameFluid = 1e-3;       // difference of two phases, without their water, that are one
constexpr double kWorthFollowing = 0.02;  // activity of a pure component from which on its trial is followed
constexpr double kHardlyBoils = 1e-3;     // Wilson's coefficient
constexpr double kGrows = 1e-8;           // ln of what a trial adds up to
constexpr double kUsualLimit = 0.01;      // of solubility, where the record's leaves no hydrocarbon liquid
constexpr double kMostWater = 0.9999;     // in a trial liquid, where the limit is no limit
constexpr double kLargestLogW = 300.0;    // exp of it is a number still
constexpr double kNone = -1e5;            // ln of the fugacity of a component that is absent
constexpr double kThin = 0.5;    // of a gas of more than twice the critical volume: it does not come apart
constexpr double kReach = 1.25;  // hydrocarbon liquids end somewhere above their pseudo-critical temperature

double limit(const Wet& f) {
  return f.m.solubility.value;
}

// Water of a trial liquid at the activity of the answer.
double trial_water(const Wet& f) {
  return std::min(limit(f) * f.answer.activity, kMostWater);
}

bool lighter_than_gas(const Wet& f, const Known& gas) {
  return gas.x != nullptr && lighter(*f.call.context.record, f.trial.w, f.trial.Z, gas.x, gas.Z);
}

// Whether a fluid parts from a liquid of mostly water within its limit, as where that is no limit: one of less
// water is no liquid of the rules at this activity, however dense.
bool parts_from_water(const Wet& f, const Known& liquid) {
  constexpr double kMostly = 0.5;  // of a fluid that is more water than not
  const int w = f.m.water;
  return liquid.x != nullptr && liquid.x[w] > kMostly && liquid.x[w] <= limit(f) && f.trial.w[w] < kMostly;
}

// What a trial ended on counts as what it was tried for only; and a gas beside a gas when it is the lighter
// one, since the denser one would be the liquid, by other rules.
bool is_of_kind(const Wet& f, Kind kind, const Known (&known)[2]) {
  const WetTrial& t = f.trial;
  if (kind == Kind::liquid) return !loosely_packed(f, t.w, t.Z);
  if (known[0].x != nullptr) return lighter_than_gas(f, known[0]);
  return like_a_gas(f, t.w, t.Z) || parts_from_water(f, known[1]);
}

// One fluid: the same hydrocarbons, as loosely packed. Single hydrocarbons differ in the latter alone.
bool same_fluid(const Wet& f, const double* a, double Za, const double* b, double Zb) {
  constexpr double kSameZ = 0.1;  // relative
  return dry_distance(f, a, b) < kSameFluid && std::fabs(Za - Zb) < kSameZ * std::max(Za, Zb);
}

bool near_known(const Wet& f, const Known (&known)[2]) {
  for (const Known& k : known)
    if (k.x != nullptr && same_fluid(f, f.trial.w, f.trial.Z, k.x, k.Z)) return true;
  return false;
}

// Composition of the trial from f.trial.log_w and, of a liquid, the water that it holds at the activity of the answer; and
// what it adds up to.
void compose(Wet& f, bool liquid, double water) {
  WetTrial& t = f.trial;
  double sum = 0.0;
  for (int i = 0; i < f.m.n; ++i) {
    t.log_w[i] = std::clamp(t.log_w[i], -kLargestLogW, kLargestLogW);
    t.w[i] = liquid && i == f.m.water ? water : f.z[i] > 0.0 ? support::fast_exp(t.log_w[i]) : 0.0;
    sum += t.w[i];
  }
  for (int i = 0; i < f.m.n; ++i) t.w[i] /= sum;
  t.ln_sum = std::log(sum);
}

/*
 * Follows f.trial by substitution, speeded up along its slowest direction, in shorter steps where it goes to and
 * fro. What comes to the strongest one found before is not found again.
 */
bool follow(Wet& f, Kind kind, const Known (&known)[2]) {
  const bool liquid = kind == Kind::liquid;
  const double water = liquid ? trial_water(f) : 0.0;
  WetTrial& t = f.trial;
  const WetTrial& strongest = liquid ? f.liquid : f.vapour;
  t.Z = 0.0;
  t.found = false;
  ++f.m.counts.trials;
  double before = 0.0;
  int turns = 0;
  for (int k = 0; k < kMostSteps; ++k) {
    compose(f, liquid, water);
    if (!(std::fabs(t.ln_sum) < 1e3)) return true;
    if (!(liquid ? oil_fugacity(f, t.w, t.ln_phi, t.Z) : gas_fugacity(f, t.w, t.ln_phi, t.Z))) return false;
    double norm = 0.0, along = 0.0;
    for (int i = 0; i < f.m.n; ++i) {
      if (!(f.z[i] > 0.0) || (liquid && i == f.m.water)) continue;
      f.g[i] = f.answer.d[i] - t.ln_phi[i] - t.log_w[i];
      norm += t.w[i] * f.g[i] * f.g[i];
      along += t.w[i] * f.g[i] * f.before[i];
    }
    if (norm <= kGoingThere && k > 2 &&
        (near_known(f, known) || (strongest.found && same_fluid(f, t.w, t.Z, strongest.w, strongest.Z))))
      return true;
    if (norm <= kSettled) {
      t.found = !near_known(f, known) && is_of_kind(f, kind, known);
      return true;
    }
    turns += along < 0.0 ? 1 : 0;
    const double shorter = std::min(0.5, static_cast<double>(kTurns) / std::max(turns, 1));
    const double factor = turns > kTurns ? shorter : speed_up(k, along, before);
    for (int i = 0; i < f.m.n; ++i) {
      t.log_w[i] += std::clamp(factor * f.g[i], -8.0, 8.0);
      f.before[i] = f.g[i];
    }
    before = norm;
  }
  // Slow, beside a critical point: it counts where it clearly grows.
  t.found = t.ln_sum > 1e-6 && !near_known(f, known) && is_of_kind(f, kind, known);
  return true;
}

// A liquid lighter than the gas beside it may be that gas with the water that a liquid would hold: by the rules
// of a gas it comes to it then, and is not missing. False: f.status.
bool tell_from_gas(Wet& f, const Known (&known)[2]) {
  if (!f.trial.found || f.exchanged || !lighter_than_gas(f, known[0])) return true;
  std::swap(f.trial, f.vapour);
  std::copy_n(f.vapour.log_w, f.m.ld, f.trial.log_w);
  if (!follow(f, Kind::gas, known)) return false;
  std::swap(f.trial, f.vapour);
  f.vapour.found = false;
  f.trial.found = !same_fluid(f, f.vapour.w, f.vapour.Z, known[0].x, known[0].Z);
  return true;
}

void remember(Wet& f, Kind kind) {
  WetTrial& strongest = kind == Kind::liquid ? f.liquid : f.vapour;
  if (f.trial.found && (!strongest.found || f.trial.ln_sum > strongest.ln_sum)) std::swap(f.trial, strongest);
}

// First substitution from component j alone. worth: whether it could be a phase of its own.
bool start_pure(Wet& f, Kind kind, int j, bool& worth) {
  const bool liquid = kind == Kind::liquid;
  const double water = liquid ? trial_water(f) : 0.0;
  std::fill_n(f.trial.w, f.m.ld, 0.0);
  f.trial.w[j] = 1.0 - water;
  if (liquid) f.trial.w[f.m.water] = water;
  f.trial.Z = 0.0;
  if (!(liquid ? oil_fugacity(f, f.trial.w, f.trial.ln_phi, f.trial.Z)
               : gas_fugacity(f, f.trial.w, f.trial.ln_phi, f.trial.Z)))
    return false;
  for (int i = 0; i < f.m.n; ++i) f.trial.log_w[i] = f.answer.d[i] - f.trial.ln_phi[i];
  worth = f.trial.log_w[j] > std::log(kWorthFollowing);
  return true;
}

// ln(f_i/P) that the phases of the answer share.
void set_plane(Wet& f, bool water_rich) {
  WetAnswer& a = f.answer;
  const int n = f.m.n, w = f.m.water;
  const bool by_gas = a.has_gas() && (water_rich || a.beta > 0.5);
  const double* const c = by_gas ? a.y : a.x;
  const double* const phi = by_gas ? a.phi_y : a.phi_x;
  for (int i = 0; i < n; ++i) a.d[i] = c[i] > 0.0 ? support::fast_log(c[i]) + phi[i] : kNone;
  // A trace at the bound of its coefficient follows no fugacity: the other phase has it.
  if (by_gas && a.has_liquid() && c[w] <= kSmallestK && a.x[w] > kSmallestK)
    a.d[w] = support::fast_log(a.x[w]) + a.phi_x[w];
  a.activity = support::fast_exp(a.d[w]) * f.m.P / f.m.psat.value;
}

}  // namespace

bool gas_fugacity(Wet& f, const double* x, double* ln_phi, double& Z) {
  f.status = plain_fugacity(f.m, x, Kind::gas, ln_phi, {}, Z);
  return f.status == KV_OK;
}

bool oil_fugacity(Wet& f, const double* x, double* ln_phi, double& Z) {
  f.m.branch = WaterBranch::below;
  f.status = wet_liquid_fugacity(f.m, x, ln_phi, {}, Z);
  f.m.branch = WaterBranch::by_content;
  return f.status == KV_OK;
}

bool loosely_packed(const Wet& f, const double* x, double Z) {
  return loosely_packed(*f.call.context.record, f.m.T, f.m.P, x, Z);
}

bool called_gas(const Wet& f, const double* x, double Z) {
  return f.m.T > kReach * f.pseudo_critical || loosely_packed(f, x, Z);
}

bool like_a_gas(const Wet& f, const double* y, double Z) {
  return passes_for_vapour(*f.call.context.record, f.m.T, f.m.P, y, Z, false);
}

bool is_liquid_water(const Wet& f, const double* y, double Z) {
  return is_aqueous(f.m.water, y) && !like_a_gas(f, y, Z);
}

double speed_up(int k, double along, double before) noexcept {
  constexpr double kLeast = 0.3, kMost = 0.98;  // eigenvalues: hardly worth it; too uncertain
  const double eigenvalue = k % 4 == 3 && before > 0.0 ? along / before : 0.0;
  return eigenvalue > kLeast && eigenvalue < kMost ? 1.0 / (1.0 - eigenvalue) : 1.0;
}

double dry_distance(const Wet& f, const double* a, const double* b) {
  const int w = f.m.water;
  const double ra = 1.0 / oil_of(f.m.n, w, a), rb = 1.0 / oil_of(f.m.n, w, b);
  double most = 0.0;
  for (int i = 0; i < f.m.n; ++i)
    if (i != w) most = std::max(most, std::fabs(a[i] * ra - b[i] * rb));
  return most;
}

bool look_for_missing(Wet& f, Kind kind, const Known (&known)[2]) {
  const bool liquid = kind == Kind::liquid;
  const int n = f.m.n, w = f.m.water;
  (liquid ? f.liquid : f.vapour).found = false;
  const auto run = [&] {
    if (!follow(f, kind, known) || (liquid && !tell_from_gas(f, known))) return false;
    remember(f, kind);
    return true;
  };
  for (int i = 0; i < n; ++i) {
    const double k = support::fast_log(f.wilson_k[i]);
    f.trial.log_w[i] = support::fast_log(f.z[i]) + (liquid ? -k : k);
  }
  if (!run()) return false;
  if (!liquid) {
    std::copy_n(f.answer.d, n, f.trial.log_w);
    if (!run()) return false;
  } else if (known[0].x != nullptr && !loosely_packed(f, known[0].x, kThin * known[0].Z)) {
    // A dense gas, with the water of a liquid.
    for (int i = 0; i < n; ++i) f.trial.log_w[i] = support::fast_log(known[0].x[i]);
    if (!run()) return false;
  }
  const double* Tc = f.call.context.record->table + static_cast<std::size_t>(KV_COL_TC - 1) * n;
  for (int j = 0; j < n; ++j) {
    if (!(f.z[j] > 0.0) || j == w) continue;
    // No liquid of a gas far above its critical temperature, no gas of what hardly boils.
    if (liquid ? f.m.T > kReach * Tc[j] : f.wilson_k[j] < kHardlyBoils) continue;
    bool worth = false;
    if (!start_pure(f, kind, j, worth)) return false;
    if (worth && !run()) return false;
  }
  return true;
}

namespace {

/*
 * Whether the hydrocarbons of the answer, as the rules see them, are another fluid than its gas, and the denser one: of
 * two liquids either may be. Notes what the search goes on with: f.liquid_by_name, f.exchanged, f.two_liquids.
 */
bool good_oil(Wet& f, bool gas) {
  const WetAnswer& a = f.answer;
  const bool free = a.x[f.m.water] > limit(f);
  for (int i = 0; i < f.m.n; ++i) f.spare[i] = free ? f.m.modified[i] : a.x[i];
  f.liquid_by_name = !called_gas(f, f.spare, a.Zx);
  if (gas && same_fluid(f, f.spare, a.Zx, a.y, a.Zy)) return false;
  f.exchanged = gas && lighter(*f.call.context.record, f.spare, a.Zx, a.y, a.Zy);
  const bool liquids = f.exchanged && !loosely_packed(f, f.spare, a.Zx);
  if (liquids) f.two_liquids = true;
  return !f.exchanged || (liquids && f.either_way);
}

bool missing(const WetTrial& t, double owed) {
  return t.found && t.ln_sum > std::max(kGrows, owed);
}

/*
 * A limit of 1 leaves no hydrocarbon liquid that the rules could name: what a usual limit has of one must not be missing
 * beside a gas. False also with f.status.
 */
bool no_liquid_at_usual_limit(Wet& f, const Known (&known)[2], double owed) {
  const WithSlope given = f.m.solubility;
  f.m.solubility = {kUsualLimit, 0.0};
  const bool looked = look_for_missing(f, Kind::liquid, known);
  f.m.solubility = given;
  return looked && !missing(f.liquid, owed);
}

}  // namespace

bool accept(Wet& f, bool& third) {
  WetAnswer& a = f.answer;
  const int w = f.m.water;
  third = f.exchanged = false;

  f.liquid.found = f.vapour.found = false;
  const double amounts[] = {1.0 - a.beta, a.beta};
  const double* const phases[] = {a.x, a.y};
  if (!is_split(f.m.n, f.z, 2, amounts, phases)) return false;
  const bool gas = a.has_gas(), liquid = a.has_liquid();
  const bool water_rich = liquid && a.x[w] > kWaterRich && oil_of(f.m.n, w, a.x) < kLeastOil;
  const double owed = std::max(kOwedFugacity, host_slack(f.m, f.settings));
  a.Zx = a.Zy = 0.0;
  if (gas && !gas_fugacity(f, a.y, a.phi_y, a.Zy)) return false;
  if (liquid) {
    f.status = wet_liquid_fugacity(f.m, a.x, a.phi_x, {}, a.Zx);
    if (f.status != KV_OK) return false;
  }
  if (gas && liquid && !(fugacity_gap(f.m.n, f.z, {a.x, a.phi_x}, {a.y, a.phi_y}) <= owed)) return false;
  set_plane(f, water_rich);
  if (gas && a.y[w] > kSmallestK &&
      support::fast_log(a.y[w]) + a.phi_y[w] + std::log(f.m.P / f.m.psat.value) > owed)
    return false;
  const bool oil = liquid && !water_rich;
  if (gas && is_liquid_water(f, a.y, a.Zy)) return false;

  if (!gas && water_rich) return true;
  if (oil && !good_oil(f, gas)) return false;
  const Known known[2] = {{gas ? a.y : nullptr, a.Zy}, {oil ? a.x : nullptr, a.Zx}};
  if (!look_for_missing(f, Kind::liquid, known)) return false;
  // Beside a thin gas there is no lighter one.
  if (!(gas && loosely_packed(f, a.y, kThin * a.Zy)) && !look_for_missing(f, Kind::gas, known)) return false;
  const bool cut = missing(f.liquid, owed) || missing(f.vapour, owed);
  third = cut && gas && oil;
  if (cut) return false;
  return !(gas && !oil && limit(f) >= 1.0) || no_liquid_at_usual_limit(f, known, owed);
}

}  // namespace kestrune::flash
