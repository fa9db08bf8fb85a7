// Three phases whose gas holds the water of the saturation balance.
#include <algorithm>
#include <cmath>

#include "equilibrium_parts.hpp"

namespace kestrune::host {

namespace {

const PhaseState* find(const Equilibrium& s, bool gas) {
  for (const PhaseState& p : s.phases)
    if (gas ? is_gas(p.kind) : p.aqueous) return &p;
  return nullptr;
}

double sum_of(const std::vector<double>& n) {
  double sum = 0.0;
  for (const double v : n) sum += v;
  return sum;
}

std::vector<double> over(std::vector<double> n, double total) {
  for (double& v : n) v /= total;
  return n;
}

// The moles of gas and aqueous liquid, parted anew: the gas takes water up to its saturation, what is dissolved in the
// liquid stays in proportion to its water. False without a limit.
bool part(const Exports& library, Mixture& mixture, const Equilibrium& s, std::vector<double>& gas,
          std::vector<double>& liquid) {
  const std::size_t w = water_of(mixture);
  std::vector<double> both(gas);
  for (std::size_t i = 0; i < both.size(); ++i) both[i] += liquid[i];
  const std::vector<double> dissolved =
      liquid[w] > 0.0 ? over(liquid, liquid[w]) : std::vector<double>(gas.size());
  for (int pass = 0; pass < 50; ++pass) {
    const double y = saturated_water(library, mixture, s.T, s.P, over(gas, sum_of(gas)));
    if (!std::isfinite(y)) return false;
    const double before = gas[w], capacity = (sum_of(gas) - gas[w]) * y / (1.0 - y);
    const double left = both[w] - std::min(capacity, both[w]);
    for (std::size_t i = 0; i < gas.size(); ++i) {
      liquid[i] = i == w ? left : std::min(dissolved[i] * left, both[i]);
      gas[i] = both[i] - liquid[i];
    }
    if (std::fabs(gas[w] - before) <= 1e-12 * gas[w]) return true;
  }
  return false;
}

std::vector<double> moles(const PhaseState* p, std::size_t count) {
  std::vector<double> n(count);
  for (std::size_t i = 0; p != nullptr && i < count; ++i) n[i] = p->mole_fraction * p->x[i];
  return n;
}

}  // namespace

Equilibrium flash_with_saturation(const Exports& library, Mixture& mixture, Given given, double T, double P) {
  Equilibrium s = flash_of_all(library, mixture, given, T, P);
  s.by_saturation = true;
  const std::size_t count = mixture.z.size(), w = water_of(mixture);
  const PhaseState *gas = find(s, true), *aqueous = find(s, false);
  if (!s.answered() || w == count || !(mixture.z[w] > 0.0)) return s;
  if (gas == nullptr) {
    s.remark = "no gas here: water by the group interactions";
    return s;
  }
  const bool water = aqueous == nullptr || aqueous->x[w] > kPureEnough;
  std::vector<double> of_gas = moles(gas, count), of_liquid = moles(aqueous, count);
  if (!water || !part(library, mixture, s, of_gas, of_liquid)) {
    s.remark = water ? "no saturation of the gas was found here: water by the group interactions"
                     : "the aqueous liquid is not water alone: water by the group interactions";
    return s;
  }
  const PhaseKind kind = gas->kind;
  std::vector<PhaseState> old;
  old.swap(s.phases);
  const double V = sum_of(of_gas), B = sum_of(of_liquid);
  add_phase(library, mixture, kind, V, over(of_gas, V), s);
  for (const PhaseState& p : old)
    if (!is_gas(p.kind) && !p.aqueous) s.phases.push_back(p);
  if (B > 0.0) add_phase(library, mixture, PhaseKind::aqueous_liquid, B, over(of_liquid, B), s);
  s.phases.front().saturation = saturated_water(library, mixture, T, P, s.phases.front().x);
  s.beta = kind == PhaseKind::vapour ? V : 0.0;
  const PhaseState& wet = s.phases.front();
  if (B > 0.0 && !(std::fabs(wet.x[w] - wet.saturation) <= 1e-6 * wet.saturation)) {
    s.stable = false;
    s.remark = "not stable: the water of the gas did not come to its saturation";
  }
  add_overall(library, mixture, s);
  return s;
}

}  // namespace kestrune::host
