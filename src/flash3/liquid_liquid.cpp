// Two liquids: a feed that is one component, free water, or the two-phase flash on liquid roots alone; then
// their order.

#include "flash3/liquid_liquid.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "eos/properties.hpp"
#include "flash/feed.hpp"
#include "flash/pure/pure_saturation.hpp"
#include "flash/settings.hpp"
#include "flash/wet/free_water.hpp"
#include "flash3/phases.hpp"

namespace kestrune::flash3 {
namespace {

using DensityRoutine = StatusCode(KV_CALL*)(double, double, const double*, MixtureRecord*, double*, double*,
                                            double*, double*);

// First output of the host's routine, not finite where it has written none.
double host_value(DensityRoutine routine, const LiquidPair& p, const double* x) {
  double value = std::numeric_limits<double>::quiet_NaN(), d_dT = 0.0, d_dP = 0.0, d2_dTdP = 0.0;
  routine(p.T, p.P, x, p.context.record, &value, &d_dT, &d_dP, &d2_dTdP);
  return value;
}

// Mass density, g/cm3, from Z where there is one; NaN where the library has none.
double own_density(const LiquidPair& p, const double* x, double Z) {
  const MixtureRecord& r = *p.context.record;
  if (Z > 0.0) {
    const double* M = r.table + static_cast<std::size_t>(KV_COL_MOLAR_MASS - 1) * r.count;
    double mass = 0.0;
    for (int i = 0; i < r.count; ++i) mass += x[i] * M[i];
    return mass * p.P / (Z * eos::kR * p.T);
  }
  eos::Density d{};
  const StatusCode status = eos::density({p.T, p.P, x, KV_PHASE_LIQUID, p.context}, d);
  return eos::has_values(status) ? d.rho : std::numeric_limits<double>::quiet_NaN();
}

// The denser liquid first, no traces of what is absent, and the K of that.
StatusCode write_two(const LiquidLiquidCall& c) {
  const int n = c.context.record->count;
  if (!denser_first({c.T, c.P, c.liquid1, c.liquid2, c.context, c.routines})) {
    std::swap_ranges(c.liquid1, c.liquid1 + n, c.liquid2);
    *c.beta = 1.0 - *c.beta;
  }
  drop_traces(n, c.liquid1);
  drop_traces(n, c.liquid2);
  flash::ratios_of(n, c.liquid2, c.liquid1, c.K);
  return KV_OK;
}

// Free water: what the feed z[n], of sum 1, has beyond the solubility limit of its hydrocarbons is a liquid
// of its own. False: there is not that much, or no limit; the estimate in beta, liquid1 and liquid2 is left
// as it is then.
bool split_water(const LiquidLiquidCall& c, const double* z, double* oil) {
  const int n = c.context.record->count, w = eos::find_water_family(*c.context.record);
  if (w < 0 || flash::oil_of(n, w, z) < kAbsent) return false;
  const double beta = flash::oil_at_limit(*c.context.record, c.T, z, oil);
  if (!(beta < 1.0)) return false;
  *c.beta = beta;
  std::copy_n(oil, n, c.liquid2);
  for (int i = 0; i < n; ++i) c.liquid1[i] = i == w ? 1.0 : 0.0;
  return true;
}

// Free water below its limit: what the liquids hold of it is the same in all, so that the dry feed says
// whether there is one. It becomes the answer then.
bool one_dry_liquid(const LiquidLiquidCall& c) {
  const int n = c.context.record->count;
  return support::with_arena<0, 6>(n, [&](support::Arena& arena) {
    double *const dry = arena.take(n), *const x = arena.zeros(n), *const y = arena.zeros(n);
    double* const K = arena.take(n);
    double beta = 0.0;
    std::copy_n(c.z, n, dry);
    dry[eos::find_water_family(*c.context.record)] = 0.0;
    if (!flash::normalise_feed(n, dry, dry)) return false;
    flash::IsothermalCall call{{dry, c.context, c.routines}, c.T, c.P, &beta, x, y, K};
    call.mode = flash::Mode::liquid_liquid;
    if (flash::isothermal_flash(call) != KV_SINGLE_PHASE) return false;
    *c.beta = 0.0;
    return flash::normalise_feed(n, c.z, c.liquid1);
  });
}

}  // namespace

bool denser_first(const LiquidPair& p) {
  const auto routine = flash::host_routine<DensityRoutine>(p.routines, KV_ROUTINE_LIQUID_ORDER);
  if (routine != nullptr) {
    const double first = host_value(routine, p, p.first), second = host_value(routine, p, p.second);
    if (std::isfinite(first) && std::isfinite(second)) return !(first < second);
  }
  return !(own_density(p, p.first, p.Z_first) < own_density(p, p.second, p.Z_second));
}

StatusCode liquid_liquid_flash(const LiquidLiquidCall& c) {
  const int n = c.context.record->count;
  enum class Short { none, pure, water };
  const Short way = support::with_arena<0, 4>(n, [&](support::Arena& arena) {
    double *const z = arena.take(n), *const oil = arena.take(n);
    flash::normalise_feed(n, c.z, z);
    if (flash::single_component(n, c.z, flash::pure_tolerance(*c.context.record)) < 0)
      return c.free_water && split_water(c, z, oil) ? Short::water : Short::none;
    *c.beta = 0.0;
    std::copy_n(z, n, c.liquid1);
    std::fill_n(c.liquid2, n, 0.0);
    std::fill_n(c.K, n, flash::kSmallestK);
    return Short::pure;
  });
  if (way == Short::pure) return KV_OK;
  if (way == Short::water) return write_two(c);

  flash::IsothermalCall call{c, c.T, c.P, c.beta, c.liquid1, c.liquid2, c.K};
  call.mode = flash::Mode::liquid_liquid;
  call.index = c.start == flash::Start::warm ? 1 : 0;  // the option of this flash, which has the other sense
  StatusCode status = flash::isothermal_flash(call);
  if (status == KV_TRIVIAL && c.free_water) {
    // By the rules the two hold the same water: the split by the equation of state alone is close.
    call.free_water = false;
    if (flash::isothermal_flash(call) == KV_OK) call.start = flash::Start::warm;
    call.free_water = true;
    status = flash::isothermal_flash(call);
    if (status == KV_TRIVIAL && one_dry_liquid(c)) status = KV_SINGLE_PHASE;
  }
  if (status != KV_OK && status != KV_SINGLE_PHASE) return status;
  if (*c.beta == 0.0) {
    drop_traces(n, c.liquid1);
    std::fill_n(c.liquid2, n, 0.0);
    std::fill_n(c.K, n, 0.0);
    return KV_OK;
  }
  if (*c.beta == 1.0) {
    drop_traces(n, c.liquid2);
    std::fill_n(c.liquid1, n, 0.0);
    std::fill_n(c.K, n, flash::kLargestK);
    return KV_OK;
  }
  return write_two(c);
}

}  // namespace kestrune::flash3
