// A single component at enthalpy or entropy: saturation by equal fugacities, the lever rule, or one phase.

#include <algorithm>
#include <cmath>

#include "flash/energy/energy_state.hpp"
#include "flash/pure/pure_saturation.hpp"

namespace kestrune::flash {
namespace {

constexpr double kReachedBy = 1e-12;  // relative change of T that is left

// Value of a phase of the feed at T, with its slope where there is one, else 0: into e.state.
StatusCode value_at(Energy& e, double T, Kind kind, double& slope) {
  EnergyState& s = e.state;
  slope = 0.0;
  if (e.model.analytic()) {
    e.status = prepare_caloric(e.model, T);
    if (e.status != KV_OK) return e.status;
    e.vapour.dn = nullptr;
    e.vapour.Z = 0.0;
    if (!phase_caloric(e.model, e.z, kind, e.vapour)) return KV_NOT_FINITE;
    s.value = e.vapour.value;
    slope = e.vapour.slope;
  } else {
    const int phase = kind == Kind::liquid ? KV_PHASE_LIQUID : KV_PHASE_GAS;
    e.status = phase_value(e.model, T, e.z, phase, s.value);
    if (e.status != KV_OK) return e.status;
  }
  s.T = T;
  (kind == Kind::liquid ? s.liquid : s.vapour) = s.value;
  return KV_OK;
}

// A phase of a single component: temperature within the bounds at which it has the value.
StatusCode solve_pure_phase(Energy& e, Kind kind, double low, double high) {
  EnergyState& s = e.state;
  EnergyBracket b;
  b.low = low;
  b.high = high;
  double T = std::clamp(e.start_T, low, high);
  for (int k = 0; k < 200; ++k) {
    double slope = 0.0;
    if (const StatusCode status = value_at(e, T, kind, slope); status != KV_OK) return status;
    const double f = e.f(s);
    b.add(T, f);
    if (f == 0.0 || (slope > 0.0 && std::fabs(f) <= kReachedBy * T * slope)) return KV_OK;
    if (b.closed() && b.high - b.low <= 1e-14 * b.high) return KV_OK;
    double next = slope > 0.0 ? T - f / slope : b.closed() ? b.secant() : f < 0.0 ? 1.2 * T : T / 1.2;
    next = std::clamp(next, std::max(T / 2.0, low), std::min(T * 2.0, high));
    if (b.closed() && b.should_halve(k, T, next)) next = 0.5 * (b.low + b.high);
    if (next == T) {
      e.limit = T > 0.5 * (kColdest + kHottest) || T == high ? kLimitReached : -kLimitReached;
      return slope > 0.0 && std::fabs(f) <= 1e-9 * T * slope ? KV_OK : KV_NOT_CONVERGED;
    }
    T = next;
  }
  return KV_NOT_CONVERGED;
}

// Phases of the feed as such: both have its composition.
void fill_pure(Energy& e, double beta) {
  EnergyState& s = e.state;
  s.beta = beta;
  std::copy_n(e.z, e.ld, s.x);
  std::copy_n(e.z, e.ld, s.y);
}

}  // namespace

StatusCode solve_single_component(Energy& e, int j, support::Arena& arena) {
  QualityLine line;
  line.context = e.silent;
  line.routines = e.call.routines;
  line.free_water = e.call.free_water;
  line.z = e.z;
  open_line(arena, line);
  LinePoint p;
  take_point(arena, line, p);
  seal_line(line);
  p.X[line.P_index()] = std::log(e.call.P);
  const StatusCode saturated = pure_saturation(line, p, j, line.T_index());
  if (saturated != KV_OK && saturated != KV_NO_SATURATION) return kNotApplicable;
  if (saturated == KV_NO_SATURATION && e.call.free_water) return kNotApplicable;  // liquid water above its Pc
  e.model.base = arena.mark();
  e.model.prepared = -1.0;
  EnergyState& s = e.state;
  if (saturated == KV_NO_SATURATION) {
    const StatusCode status = solve_pure_phase(e, Kind::stable, kColdest, kHottest);
    if (status != KV_OK) return status;
    IsothermalCall c = isothermal_call(e, s);  // only for its name
    const StatusCode named = isothermal_flash(c);
    if (named != KV_SINGLE_PHASE && named != KV_OK) return named;
    fill_pure(e, s.beta >= 0.5 ? 1.0 : 0.0);
    s.liquid = s.beta == 0.0 ? s.value : 0.0;
    s.vapour = s.beta == 1.0 ? s.value : 0.0;
    return KV_OK;
  }
  s.T = temperature(line, p);
  fill_pure(e, 0.5);
  if (!evaluate_state(e, s)) return e.status;
  const double range = s.vapour - s.liquid, over = e.call.wanted - s.liquid;
  if (over >= 0.0 && over <= range) {
    s.beta = over / range;
    s.value = e.call.wanted;
    if (s.beta == 0.0) s.vapour = 0.0;
    if (s.beta == 1.0) s.liquid = 0.0;
    return KV_OK;
  }
  const double Ts = s.T;
  const bool liquid = over < 0.0;
  s.liquid = s.vapour = 0.0;
  const StatusCode status =
      liquid ? solve_pure_phase(e, Kind::liquid, kColdest, Ts) : solve_pure_phase(e, Kind::gas, Ts, kHottest);
  fill_pure(e, liquid ? 0.0 : 1.0);
  return status;
}

}  // namespace kestrune::flash
