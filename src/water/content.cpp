// The balance (36) of docs/method.md at one temperature and pressure, solved in the logarithm of the water
// fraction.

#include "water/content.hpp"

#include <algorithm>
#include <cmath>

#include "eos/phase.hpp"
#include "frame/cas.hpp"
#include "water/interactions.hpp"

namespace kestrune::water {
namespace {

enum Place { kDry, kWater, kCO2, kH2S };

int last_of(const MixtureRecord& mixture, const char* cas) noexcept {
  return frame::find_cas(mixture.count, mixture.table, cas, frame::CasPick::last) - 1;
}

double dry_fraction(const Gas& gas, int index) noexcept {
  return index >= 0 ? gas.dry[index] : 0.0;
}

// ln phi of pure steam at P.
StatusCode steam(const Saturation& s, double P, double& log_phi) noexcept {
  const double rt = s.condensed.rt;
  const double* column = nullptr;
  const eos::Mixture m = eos::mix_pure(s.t, kWater, &column);
  double Z = 0.0;
  const int status = eos::solve_root(s.bracub, m.a * P / (rt * rt), m.b * P / rt, KV_PHASE_GAS, false, Z);
  if (!eos::has_root(status)) return status;
  eos::Root r;
  eos::reduce(s.t, m, P, Z, r);
  log_phi = eos::residual_gibbs(m, r);
  return KV_OK;
}

// Parameters of the parts from those of the components.
void reduce_to_parts(const Gas& gas, const eos::Temperature& all, double* work, Saturation& s) noexcept {
  const int index[kParts] = {-1, gas.water, gas.CO2, gas.H2S};
  const eos::Mixture dry = eos::mix(all, gas.dry, work);
  s.t.n = kParts;
  s.t.ld = kParts;
  s.t.T = all.T;
  s.t.b = s.b;
  s.t.aij = s.aij;
  s.b[kDry] = dry.b;
  s.aij[kDry] = dry.a;
  for (int i = kWater; i < kParts; ++i) {
    if (index[i] < 0) continue;
    s.b[i] = all.b[index[i]];
    s.aij[i * kParts + kDry] = s.aij[i] = work[index[i]];
    for (int j = kWater; j < kParts; ++j)
      if (index[j] >= 0)
        s.aij[i * kParts + j] = all.aij[static_cast<std::size_t>(index[i]) * all.ld + index[j]];
  }
}

// How far the gas with water fraction exp(u) is from balance, ln(f gas/f condensed), and the slope with u.
struct Balance {
  double value, slope;
};
StatusCode balance(const Saturation& s, double P, double u, Balance& out) noexcept {
  const double y = std::exp(u), rest = -std::expm1(u);
  const double x[kParts] = {rest, y, 0.0, 0.0};
  double sums[kParts], log_phi[kParts], dn[kParts * kParts];
  const eos::Mixture m = eos::mix(s.t, x, sums);
  const double rt = s.condensed.rt;
  double Z = 0.0;
  const int status = eos::solve_root(s.bracub, m.a * P / (rt * rt), m.b * P / rt, KV_PHASE_GAS, false, Z);
  if (!eos::has_root(status)) return status;
  eos::Root r;
  eos::reduce(s.t, m, P, Z, r);
  eos::ln_phi(s.t, m, r, sums, log_phi);
  eos::dln_phi_dn(s.t, m, r, eos::mechanics(s.t, m, r), sums, dn, kParts, kParts, true);
  const auto fugacity = [&](int part, double fraction) {
    return fraction > 0.0 ? fraction * rest * P * std::exp(log_phi[part]) : 0.0;
  };
  const Fugacity condensed = water_fugacity(s.condensed, P, fugacity(kCO2, s.CO2), fugacity(kH2S, s.H2S));
  out.value = u + log_phi[kWater] + std::log(P) - condensed.log_value;
  // Along a fixed dry gas d ln phi/dy = (d ln phi/d n_water)/(1 - y), by the Gibbs-Duhem relation.
  out.slope = rest > 0.0 ? 1.0 + y / rest * dn[kWater * kParts + kWater] : 1.0;
  return std::isfinite(out.value) ? KV_OK : KV_NOT_FINITE;
}

constexpr int kIterations = 60;  // of a balance of water
constexpr double kClose = 1e-9;  // of the balance: one more step of Newton is exact
constexpr double kFlat = 1e-12;  // width in ln y of an interval without a root

// Newton's method in ln y below 0, kept within the interval where the balance changes its sign.
StatusCode solve_balance(const Saturation& s, double P, double u, double& y) noexcept {
  double low = -HUGE_VAL, high = 0.0;
  for (int k = 0; k < kIterations; ++k) {
    Balance b;
    const StatusCode status = balance(s, P, u, b);
    if (status != KV_OK) return status;
    (b.value < 0.0 ? low : high) = u;
    double next = u - b.value / b.slope;
    if (std::fabs(b.value) < kClose && b.slope > 0.0 && next < 0.0) {
      y = std::exp(next);
      return KV_OK;
    }
    if (high - low < kFlat) return high == 0.0 ? KV_NO_WATER_LIMIT : KV_NOT_CONVERGED;
    if (!(b.slope > 0.0 && next > low && next < high)) next = std::isinf(low) ? u - 2.0 : 0.5 * (low + high);
    u = next;
  }
  return high == 0.0 ? KV_NO_WATER_LIMIT : KV_NOT_CONVERGED;
}

StatusCode prepare_parts(const Gas& gas, double T, support::Arena& arena, Saturation& s) {
  const support::Arena::Mark mark = arena.mark();
  eos::Temperature all;
  StatusCode status = eos::prepare(T, gas.context, 0, arena, all);
  if (status == KV_OK) {
    apply_vapour_interactions(*gas.context.record, gas.water, gas.k, all);
    reduce_to_parts(gas, all, arena.zeros(all.ld), s);
  }
  arena.rewind(mark);
  s.bracub = gas.context.tools->cubic_root();
  Condensed& c = s.condensed;
  if (status == KV_OK) status = condensed_water(*gas.context.tools, T, s.CO2 > 0.0, s.H2S > 0.0, c);
  if (status == KV_OK) status = steam(s, c.liquid_P, c.log_phi_liquid);
  if (status == KV_OK && c.ice_P > 0.0) status = steam(s, c.ice_P, c.log_phi_ice);
  return status;
}

}  // namespace

bool method_by_number(int number, Method& method) noexcept {
  method = number == 2 ? Method::chart : Method::equation_of_state;
  return number >= 0 && number <= 2;
}

StatusCode open_gas(const eos::Context& context, const double* z, Method method, support::Arena& arena,
                    Gas& gas) {
  const MixtureRecord& mixture = *context.record;
  gas.context = context;
  gas.method = method;
  gas.CO2 = last_of(mixture, frame::kCarbonDioxideCas);
  gas.water = last_of(mixture, frame::WaterCas);
  gas.H2S = last_of(mixture, frame::kHydrogenSulphideCas);
  if (gas.water < 0) return KV_NO_WATER;
  gas.dry = arena.zeros(support::padded(mixture.count));
  double sum = 0.0;
  for (int i = 0; i < mixture.count; ++i)
    if (i != gas.water) sum += z[i];
  if (!(sum > 0.0)) return KV_NO_WATER_LIMIT;
  gas.k = arena.take(mixture.count);
  vapour_interactions(mixture, gas.k);
  for (int i = 0; i < mixture.count; ++i) gas.dry[i] = i == gas.water ? 0.0 : z[i] / sum;
  return KV_OK;
}

bool temperature_range(const Gas& gas, double& lowest, double& highest) noexcept {
  ChartRange range;
  if (gas.method == Method::chart &&
      !chart_range(dry_fraction(gas, gas.CO2), dry_fraction(gas, gas.H2S), range))
    return false;
  const bool chart = gas.method == Method::chart;
  lowest = chart ? range.lowest_T : kLowestTemperature;
  highest = chart ? range.highest_T : kHighestTemperature;
  return true;
}

StatusCode prepare_saturation(const Gas& gas, double T, support::Arena& arena, Saturation& s) {
  s.method = gas.method;
  s.CO2 = dry_fraction(gas, gas.CO2);
  s.H2S = dry_fraction(gas, gas.H2S);
  if (gas.method == Method::chart) return prepare_chart(*gas.context.tools, T, s.CO2, s.H2S, s.chart);
  if (!(T >= kLowestTemperature && T <= kHighestTemperature)) return KV_WATER_RANGE;
  return prepare_parts(gas, T, arena, s);
}

StatusCode saturated_fraction(const Saturation& s, double P, double& y) noexcept {
  if (s.method == Method::chart) return chart_content(s.chart, P, y);
  if (!(P <= s.highest_pressure())) return KV_WATER_RANGE;
  if (!(P > s.lowest_pressure())) return KV_NO_WATER_LIMIT;
  double u = y > 0.0 && y < 1.0 ? std::log(y) : std::log(s.condensed.saturation() / P);
  if (!(u < 0.0)) u = -1e-9;
  return solve_balance(s, P, u, y);
}

}  // namespace kestrune::water
