#include "flash3/liquid_liquid.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "eos/properties.hpp"
#include "flash/feed.hpp"
#include "flash/pure_saturation.hpp"
#include "flash/settings.hpp"

namespace kestrune::flash3 {
namespace {

// The denser liquid first.
StatusCode order_liquids(const LiquidLiquidCall& c) {
  double first = 0.0, second = 0.0;
  StatusCode status = density_of_liquid({c.T, c.P, c.liquid1, c.mixture, c.routines}, first);
  if (status == KV_OK) status = density_of_liquid({c.T, c.P, c.liquid2, c.mixture, c.routines}, second);
  if (status != KV_OK || !(first < second)) return status;
  const int n = c.mixture->count;
  std::swap_ranges(c.liquid1, c.liquid1 + n, c.liquid2);
  *c.beta = 1.0 - *c.beta;
  for (int i = 0; i < n; ++i) c.K[i] = 1.0 / c.K[i];
  return KV_OK;
}

// Free water: what the feed z[n], of sum 1, has beyond the solubility limit of its hydrocarbons is a liquid of
// its own. False: there is not that much, or no limit.
bool split_water(const LiquidLiquidCall& c, const double* z) {
  const MixtureRecord& r = *c.mixture;
  const int n = r.count, w = eos::find_water_family(r);
  const double s = eos::water_solubility(c.T, r.solubility_a, r.solubility_b).value;
  if (w < 0 || !(z[w] > s) || !(s < 1.0)) return false;
  const double oil = (1.0 - z[w]) / (1.0 - s);
  *c.beta = oil;
  for (int i = 0; i < n; ++i) {
    c.liquid1[i] = i == w ? 1.0 : 0.0;
    c.liquid2[i] = i == w ? s : z[i] / oil;
    c.K[i] = i == w ? std::max(s, flash::kSmallestK) : flash::kLargestK;
  }
  return true;
}

}  // namespace

DensityRoutine host_density(const flash::HostRoutines* routines) noexcept {
  return flash::host_routine<DensityRoutine>(routines, KV_ROUTINE_LIQUID_ORDER);
}

StatusCode density_of_liquid(const LiquidPhase& l, double& rho) {
  if (const DensityRoutine routine = host_density(l.routines)) {
    double d_dT = 0.0, d_dP = 0.0, d2_dTdP = 0.0;
    rho = std::numeric_limits<double>::quiet_NaN();
    const StatusCode status = flash::call_host(
        *l.routines, [&] { return routine(l.T, l.P, l.x, l.mixture, &rho, &d_dT, &d_dP, &d2_dTdP); });
    if (status != KV_OK || std::isfinite(rho)) return status;
    return flash::end_flash(*l.routines, KV_NOT_FINITE);
  }
  eos::Density d{};
  const StatusCode status = eos::density({l.T, l.P, l.x, KV_PHASE_LIQUID, l.mixture}, d);
  rho = d.rho;
  return eos::has_values(status) ? StatusCode{KV_OK} : status;
}

StatusCode liquid_liquid_flash(const LiquidLiquidCall& c) {
  const int n = c.mixture->count;
  enum class Short { none, pure, water };
  const Short way = support::with_arena<0, 4>(n, [&](support::Arena& arena) {
    double* z = arena.take(n);
    flash::normalise_feed(n, c.z, z);
    if (flash::single_component(n, z, flash::pure_tolerance(*c.mixture)) < 0)
      return c.free_water && split_water(c, z) ? Short::water : Short::none;
    *c.beta = 0.0;
    std::copy_n(z, n, c.liquid1);
    std::fill_n(c.liquid2, n, 0.0);
    std::fill_n(c.K, n, flash::kSmallestK);
    return Short::pure;
  });
  if (way == Short::pure) return KV_OK;
  if (way == Short::water) return order_liquids(c);

  flash::IsothermalCall call{c.T, c.P, c.z, c.mixture, c.routines, c.beta, c.liquid1, c.liquid2, c.K};
  call.free_water = c.free_water;
  call.mode = flash::Mode::liquid_liquid;
  call.start = c.estimate ? flash::Start::warm : flash::Start::cold;
  call.index = c.estimate ? 0 : 1;
  StatusCode status = flash::isothermal_flash(call);
  if (status == KV_TRIVIAL && c.free_water) {
    // By the rules the two hold the same water: the split by the equation of state alone is close.
    call.free_water = false;
    if (flash::isothermal_flash(call) == KV_OK) call.start = flash::Start::warm;
    call.free_water = true;
    status = flash::isothermal_flash(call);
  }
  if (status != KV_OK && status != KV_SINGLE_PHASE) return status;
  if (*c.beta == 0.0) {
    std::fill_n(c.liquid2, n, 0.0);
    std::fill_n(c.K, n, 0.0);
    return KV_OK;
  }
  if (*c.beta == 1.0) {
    std::fill_n(c.liquid1, n, 0.0);
    std::fill_n(c.K, n, flash::kLargestK);
    return KV_OK;
  }
  return order_liquids(c);
}

}  // namespace kestrune::flash3
