// Gas and hydrocarbons, beside free water or without: the amounts and compositions.
//
// Beside free water the water in both is known at given hydrocarbons, x_w = s and y_w phi_w P = Psat, so that
// the split is one of the dry feed. Substitution goes first, speeded up along its slowest direction; Newton's
// method on the whole liquid finishes.

#include <algorithm>
#include <cmath>

#include "flash/isothermal/rachford_rice.hpp"
#include "flash/wet/wet_state.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

// Substitutions; steps to the water that is over; substitutions before Newton's method.
constexpr int kMostSteps = 400, kMostRoots = 60, kFirstSteps = 12;
constexpr double kSettled = 1e-13;       // largest change of a logarithm that is left
constexpr double kNewtonFrom = 1e-2;     // error from which on Newton's method is tried
constexpr double kMostInGas = 0.999999;  // of water: the ratios of the others to each other stay
constexpr double kSame = 1e-9;           // relative difference of water from its limit that is none

// ln y_w + ln phi_w of a gas of the dry feed with this much water, less ln(Psat/P).
bool excess_water(Wet& f, double ln_yw, double& excess) {
  WetAnswer& a = f.answer;
  const double yw = support::fast_exp(ln_yw);
  for (int i = 0; i < f.m.n; ++i) a.y[i] = i == f.m.water ? yw : (1.0 - yw) * f.dry[i];
  a.Zy = 0.0;
  if (!gas_fugacity(f, a.y, a.phi_y, a.Zy)) return false;
  excess = ln_yw + a.phi_y[f.m.water] - std::log(f.m.psat.value / f.m.P);
  return true;
}

// Water alone beside the gas f.answer.y.
void beside_water(Wet& f) {
  WetAnswer& a = f.answer;
  const int w = f.m.water;
  a.beta = f.rest / (1.0 - a.y[w]);
  std::fill_n(a.x, f.m.ld, 0.0);
  a.x[w] = 1.0;
  for (int i = 0; i < f.m.n; ++i)
    if (i != w) a.y[i] = f.z[i] / a.beta;
}

/* One substitution of the split beside free water: compose, then evaluate. False: one fluid only; f.status. */
struct Saturated {
  Wet& f;
  double gas = 0.0, oil = 0.0;  // parts of the feed, with their water
  double beta = 0.5;            // of the dry feed
  double error = 1e300;         // largest difference of ln fugacities
  double Zx = 0.0, Zy = 0.0;

  bool compose() {
    const int n = f.m.n, w = f.m.water;
    const double s = f.m.solubility.value, yw = std::min(support::fast_exp(f.log_k[w]), kMostInGas);
    const double scale = (1.0 - s) / (1.0 - yw);  // from ratios of mole fractions to dry ones
    for (int i = 0; i < n; ++i)
      f.it.k[i] = i == w ? 1.0 : scale * support::fast_exp(std::clamp(f.log_k[i], -kLargestLogK, kLargestLogK));
    const PhaseFraction p = rachford_rice(n, f.dry, f.it.k, beta);
    if (p.kind != Split::two_phase) return false;
    beta = p.beta;
    WetAnswer& a = f.answer;
    for (int i = 0; i < n; ++i) {
      if (i == w) continue;
      const double k = f.it.k[i];
      const double x =
          beta <= 0.5 ? f.dry[i] / (1.0 + beta * (k - 1.0)) : f.dry[i] / (k + p.liquid * (1.0 - k));
      a.x[i] = (1.0 - s) * x;
      a.y[i] = (1.0 - yw) * k * x;
    }
    a.x[w] = s;
    a.y[w] = yw;
    gas = f.rest * beta / (1.0 - yw);
    oil = f.rest * p.liquid / (1.0 - s);
    return true;
  }

  // New logarithms from the fugacities; the old change stays for the speed-up.
  bool evaluate() {
    WetAnswer& a = f.answer;
    const int n = f.m.n, w = f.m.water;
    if (!oil_fugacity(f, a.x, a.phi_x, Zx) || !gas_fugacity(f, a.y, a.phi_y, Zy)) return false;
    error = 0.0;
    for (int i = 0; i < n; ++i) {
      const double wanted = i == w ? std::log(f.m.psat.value / f.m.P) - a.phi_y[w]
                                   : std::clamp(a.phi_x[i] - a.phi_y[i], -kLargestLogK, kLargestLogK);
      f.g[i] = f.z[i] > 0.0 ? wanted - f.log_k[i] : 0.0;
      error = std::max(error, std::fabs(f.g[i]));
    }
    return true;
  }
};

// The split beside free water from f.log_k, as far as substitution takes it.
bool substitute_saturated(Wet& f, Saturated& s, int most) {
  double before = 0.0;
  for (int k = 0; k < most; ++k) {
    ++f.m.counts.iterations;
    if (!s.compose() || !s.evaluate()) return false;
    if (s.error <= kSettled) return true;
    double now = 0.0, along = 0.0;
    for (int i = 0; i < f.m.n; ++i) {
      now += f.z[i] * f.g[i] * f.g[i];
      along += f.z[i] * f.g[i] * f.before[i];
    }
    const double factor = speed_up(k, along, before);
    for (int i = 0; i < f.m.n; ++i) {
      f.log_k[i] += std::clamp(factor * f.g[i], -5.0, 5.0);
      f.before[i] = f.g[i];
    }
    before = now;
  }
  return true;
}

// Newton's method on the whole liquid, on one side of the limit. True: f.it has converged.
bool finish(Wet& f, WaterBranch branch) {
  f.m.branch = branch;
  f.it.kind_x = Kind::liquid;
  f.it.kind_y = Kind::gas;
  const Outcome outcome = iterate_two_phases(f.m, f.settings, {}, f.trace, f.two, f.it, f.status);
  f.m.branch = WaterBranch::by_content;
  return outcome == Outcome::converged;
}

void take_iterate(Wet& f) {
  WetAnswer& a = f.answer;
  a.beta = f.it.beta;
  std::copy_n(f.it.x, f.m.ld, a.x);
  std::copy_n(f.it.y, f.m.ld, a.y);
}

// Beside free water. short_of_water: there is none left for that.
bool split_saturated(Wet& f, bool& short_of_water) {
  const int n = f.m.n, w = f.m.water;
  short_of_water = false;
  Saturated s{f};
  if (!substitute_saturated(f, s, kFirstSteps)) return false;
  if (s.error > kNewtonFrom && !substitute_saturated(f, s, kMostSteps)) return false;
  const auto left = [&] { return f.water - s.gas * f.answer.y[w] - s.oil * f.m.solubility.value; };
  if (left() <= 0.0 && s.error > kSettled && !substitute_saturated(f, s, kMostSteps)) return false;
  short_of_water = left() <= 0.0;
  if (short_of_water) return false;
  const double whole = 1.0 - s.gas;  // of the liquid
  if (s.oil * (1.0 - f.m.solubility.value) < kLeastOil * whole) return false;

  for (int i = 0; i < n; ++i) {
    const double x = i == w ? (f.water - s.gas * f.answer.y[w]) / whole : s.oil * f.answer.x[i] / whole;
    f.it.log_k[i] = f.z[i] > 0.0 ? std::clamp(std::log(f.answer.y[i] / x), -kLargestLogK, kLargestLogK) : 0.0;
  }
  f.it.beta = s.gas;
  if (finish(f, WaterBranch::at_limit)) {
    short_of_water = f.it.x[w] < f.m.solubility.value * (1.0 - kSame);
    take_iterate(f);
    return !short_of_water;
  }
  if (f.status != KV_OK || !substitute_saturated(f, s, kMostSteps) || s.error > 1e-10) return false;
  short_of_water = left() <= 0.0;
  if (short_of_water) return false;
  WetAnswer& a = f.answer;
  const double liquid = 1.0 - s.gas;
  for (int i = 0; i < n; ++i) a.x[i] = i == w ? (f.water - s.gas * a.y[w]) / liquid : s.oil * a.x[i] / liquid;
  a.beta = s.gas;
  return true;
}

// Without free water: water is a component whose fugacity in the liquid is given.
bool split_unsaturated(Wet& f) {
  const int n = f.m.n, w = f.m.water;
  const double s = f.m.solubility.value;
  for (int i = 0; i < n; ++i) f.it.log_k[i] = std::clamp(f.log_k[i], -kLargestLogK, kLargestLogK);
  // log_k holds ln y_w of a gas beside free water: the same activity in the liquid at its limit.
  f.it.log_k[w] = std::clamp(f.log_k[w] - std::log(s), -kLargestLogK, kLargestLogK);
  f.it.beta = 0.5;
  if (!finish(f, WaterBranch::below)) return false;
  take_iterate(f);
  return f.it.x[w] <= s * (1.0 + kSame);
}

}  // namespace

bool feed_as_gas(Wet& f) {
  WetAnswer& a = f.answer;
  const int w = f.m.water;
  const double whole = std::log(f.water);
  double excess = 0.0;
  a.beta = 1.0;
  std::copy_n(f.z, f.m.ld, a.x);
  if (!excess_water(f, whole, excess)) return false;
  std::copy_n(f.z, f.m.ld, a.y);
  if (excess <= 0.0 && !is_liquid_water(f, a.y, a.Zy)) return true;
  // The water that it can hold: the excess rises with it, as long as it is a gas.
  double high = whole, f_high = excess, low = -1e3, f_low = 0.0;
  // From what the equation takes for liquid water no step leads to the gas.
  bool have_low = false, have_high = excess > 0.0 && !is_liquid_water(f, a.y, a.Zy);
  double u = have_high ? whole - excess : std::min(std::log(f.m.psat.value / f.m.P), whole);
  for (int k = 0; k < kMostRoots; ++k) {
    if (!excess_water(f, u, excess)) return false;
    if (std::fabs(excess) <= kSettled) break;
    if (excess > 0.0) {
      high = u;
      f_high = excess;
      have_high = true;
    } else {
      low = u;
      f_low = excess;
      have_low = true;
    }
    if (!have_low || !have_high) {
      u -= excess;
      if (!(u < whole)) return false;
      continue;
    }
    if (high - low <= 1e-15 * std::fabs(high)) break;
    const double secant = low - f_low * (high - low) / (f_high - f_low);
    // A secant that stays on one side is helped by a bisection now and then.
    u = k % 4 == 3 || !(secant > low && secant < high) ? 0.5 * (low + high) : secant;
  }
  if (!(std::fabs(excess) <= 1e-9) || !(a.y[w] < 1.0)) return false;
  beside_water(f);
  return true;
}

bool split_two(Wet& f) {
  const int n = f.m.n;
  std::copy_n(f.log_k, n, f.spare);
  bool short_of_water = false;
  if (f.m.solubility.value < 1.0 && split_saturated(f, short_of_water)) return true;
  if (f.status != KV_OK) return false;
  // From where the split beside water ended; and, where that leads nowhere, from where it began.
  if (short_of_water && split_unsaturated(f)) return true;
  if (f.status != KV_OK) return false;
  std::copy_n(f.spare, n, f.log_k);
  return split_unsaturated(f);
}

}  // namespace kestrune::flash
