// The gate of the flashes at enthalpy and entropy, see accept.

#include <algorithm>
#include <cmath>

#include "flash/energy/energy_state.hpp"
#include "flash/settings.hpp"
#include "flash/stability/stability.hpp"

namespace kestrune::flash {
namespace {

constexpr double kStable = -1e-9;  // tangent-plane distance

/*
 * ln fugacities of both phases equal. Those of the equation of state stand in e.liquid and e.vapour after the evaluation;
 * a host's routine is asked again, and is as good as its CRIT.
 */
bool equal_fugacities(Energy& e, const EnergyState& s, int component) {
  double* const z = e.gap;
  std::copy_n(e.z, e.ld, z);
  for (int i = 0; i < e.n; ++i)
    if (component >= 0 && i != component) z[i] = 0.0;
  double owed = 0.5 * kOwedFugacity;  // room for the rounding of whoever looks again
  if (!e.model.analytic()) {
    if (!fugacities_of(e, s.T, s.x, s.y)) return false;
    const bool host = e.call.routines != nullptr && e.call.routines->entry[KV_ROUTINE_FUGACITY - 1] != nullptr;
    if (host) owed = std::max(owed, std::sqrt(copy_settings(e.silent).CRIT));
  }
  return fugacity_gap(e.n, z, {s.x, e.liquid.ln_phi}, {s.y, e.vapour.ln_phi}) <= owed;
}

}  // namespace

bool fugacities_of(Energy& e, double T, const double* x, const double* y) {
  support::Arena& arena = *e.model.arena;
  const support::Arena::Mark mark = arena.mark();
  Model m;
  double Zx = 0.0, Zy = 0.0;
  e.status = make_model(T, e.call.P, e.silent, e.call.routines, e.call.free_water, 0, arena, m);
  m.branch = WaterBranch::by_content;
  if (e.status == KV_OK) e.status = fugacity(m, x, Kind::liquid, e.liquid.ln_phi, nullptr, Zx);
  if (e.status == KV_OK) e.status = fugacity(m, y, Kind::gas, e.vapour.ln_phi, nullptr, Zy);
  arena.rewind(mark);
  return e.status == KV_OK;
}

bool accept(Energy& e, EnergyState& s, Found found, int component) {
  const double amounts[] = {1.0 - s.beta, s.beta};
  const double* const phases[] = {s.x, s.y};
  if (!(s.T >= kColdest && s.T <= kHottest) || !is_split(e.n, e.z, 2, amounts, phases)) return false;
  if (!evaluate_state(e, s) || !(std::fabs(e.f(s)) <= kOwedValue * e.value_scale(s.T))) return false;
  if (!s.two_phases()) return found == Found::flash || found == Found::component;
  if ((found != Found::flash || e.model.analytic()) && !equal_fugacities(e, s, component)) return false;
  if (found != Found::newton) return true;
  const IsothermalCall at = isothermal_call(e, s);
  StabilityResult test;
  e.status = test_stability({at, at.T, at.P, at.model, Effort::usual, 2, {s.x, s.y}}, test);
  return e.status == KV_OK && test.distance >= kStable;
}

}  // namespace kestrune::flash
