// Where the two-phase iteration may start, and one run of it.

#include <algorithm>
#include <cmath>

#include "flash/flash_state.hpp"
#include "flash/trace_flash.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

constexpr double kWaterStaysLiquid = 1e-6;  // ln K of water at a start from free water is below minus this
constexpr double kRounding = 1e-10;         // of Gibbs energies over RT

Outcome iterate(Flash& f, bool compare) {
  const IterationPlan plan{f.feed_gibbs, compare && !f.m.free_water};
  return iterate_two_phases(f.m, f.settings, plan, f.trace, f.two, f.it, f.status);
}

void usual_kinds(Flash& f) {
  f.it.kind_x = Kind::liquid;
  f.it.kind_y = f.liquids_only() ? Kind::liquid : Kind::gas;
}

enum class Dry { failed, liquid, vapour, two_phases };

// Flash of the feed without its water, by the equation of state alone; f.best.beta, x and y hold its answer.
Dry flash_dry_feed(Flash& f) {
  const int n = f.m.n, w = f.m.water;
  for (int i = 0; i < n; ++i) f.dry[i] = i == w ? 0.0 : f.it.z[i];
  if (!(f.it.z[w] < 1.0)) return Dry::failed;
  MixtureRecord silent = *f.call.mixture;
  silent.trace_flag = 0;
  IsothermalCall dry;
  dry.T = f.call.T;
  dry.P = f.call.P;
  dry.z = f.dry;
  dry.mixture = &silent;
  dry.routines = f.call.routines;
  dry.beta = &f.best.beta;
  dry.x = f.best.x;
  dry.y = f.best.y;
  dry.K = f.best.k;
  const StatusCode status = isothermal_flash(dry);
  // Far above the pseudo-critical temperature what is dense is a gas under pressure, whatever its label.
  if (status == KV_SINGLE_PHASE) return f.best.beta == 0.0 && may_be_liquid(f) ? Dry::liquid : Dry::vapour;
  return status == KV_OK ? Dry::two_phases : Dry::failed;
}

}  // namespace

void start_from_wilson(Flash& f) {
  usual_kinds(f);
  for (int i = 0; i < f.m.ld; ++i) f.it.log_k[i] = support::fast_log(f.wilson_k[i]);
  f.it.beta = 0.5;
  trace_internal_index(f.trace, static_cast<int>(Source::wilson));
}

void start_from_water(Flash& f) {
  usual_kinds(f);
  for (int i = 0; i < f.m.ld; ++i) f.it.log_k[i] = kLargestLogK;
  const int w = f.m.water;
  const double k = f.m.psat.value / f.m.P;
  f.it.log_k[w] = std::clamp(support::fast_log(k), -kLargestLogK, -kWaterStaysLiquid);
  f.it.beta = 1.0 - f.it.z[w];
  trace_internal_index(f.trace, static_cast<int>(Source::water));
}

void start_from_estimate(Flash& f) {
  const IsothermalCall& c = f.call;
  usual_kinds(f);
  // The estimate may be two liquids: each phase takes the root that suits it.
  if (!f.m.free_water && !f.liquids_only()) f.it.kind_x = f.it.kind_y = Kind::stable;
  for (int i = 0; i < f.m.n; ++i) {
    double k = f.wilson_k[i];
    if (c.x[i] > 0.0 || c.y[i] > 0.0) k = c.x[i] > 0.0 ? c.y[i] / c.x[i] : kLargestK;
    f.it.log_k[i] = std::clamp(support::fast_log(k), -kLargestLogK, kLargestLogK);
  }
  f.it.beta = *c.beta;
  trace_internal_index(f.trace, static_cast<int>(Source::estimate));
}

void start_from_trial(Flash& f, const Beside& other, Source source) {
  const bool vapour = f.m.free_water ? other.kind == Kind::liquid : f.lowest.Z > other.Z;
  const Kind kind = f.liquids_only() ? Kind::liquid : kind_of(f, f.lowest.w, f.lowest.Z);
  for (int i = 0; i < f.m.n; ++i) {
    const double k = std::clamp(other.ln_phi[i] - f.lowest.ln_phi[i], -kLargestLogK, kLargestLogK);
    f.it.log_k[i] = vapour ? k : -k;
  }
  f.it.kind_y = vapour ? kind : other.kind;
  f.it.kind_x = vapour ? other.kind : kind;
  if (f.m.free_water) usual_kinds(f);
  f.it.beta = vapour ? 0.05 : 0.95;
  trace_internal_index(f.trace, static_cast<int>(source));
}

bool start_from_dry_flash(Flash& f) {
  const int n = f.m.n, w = f.m.water;
  const double water = f.it.z[w];
  const Dry dry = flash_dry_feed(f);
  if (dry == Dry::vapour) {
    start_from_water(f);
    return true;
  }
  if (dry != Dry::two_phases) return false;
  usual_kinds(f);
  const double oil = (1.0 - water) * (1.0 - f.best.beta);
  const double share = oil / (oil + water);  // of oil in the liquid
  for (int i = 0; i < n; ++i) f.it.log_k[i] = support::fast_log(f.best.k[i]) - std::log(share);
  const double k = f.m.psat.value / f.m.P / (1.0 - share);
  f.it.log_k[w] = std::clamp(std::log(k), -kLargestLogK, kLargestLogK);
  f.it.beta = (1.0 - water) * f.best.beta;
  trace_internal_index(f.trace, static_cast<int>(Source::water));
  return true;
}

bool good_split(Flash& f, bool unstable, Outcome& outcome) {
  outcome = iterate(f, !unstable);
  const double bound = f.feed_gibbs + (unstable ? kRounding : -kLowerGibbs);
  return outcome == Outcome::converged && (f.m.free_water || f.it.gibbs < bound);
}

}  // namespace kestrune::flash
