#include "equilibrium.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "text.hpp"

namespace kestrune::host {

namespace {

double molar_mass_of(const Mixture& mixture, const std::vector<double>& x) {
  double mass = 0.0;
  for (std::size_t i = 0; i < x.size(); ++i) mass += x[i] * mixture.components[i].molar_mass;
  return mass;
}

void add_phase(const Exports& library, const Mixture& mixture, PhaseKind kind, double fraction,
               const std::vector<double>& x, Equilibrium& state) {
  PhaseState phase{kind, fraction, 0.0, x, molar_mass_of(mixture, x), {}};
  phase.mass_fraction = fraction * phase.molar_mass / mixture.molar_mass;
  phase.properties = phase_properties(library, mixture, kind, state.T, state.P, x, phase.molar_mass);
  state.phases.push_back(phase);
}

// The liquid, parted into what holds water up to its solubility s and free water:
// x_w = (1 - share) s + share, the other components stay in proportion.
void add_liquids(const Exports& library, const Mixture& mixture, Equilibrium& state) {
  constexpr double water_rich = 0.9999;  // from here on the library takes the liquid for water
  const double fraction = 1.0 - state.beta;
  const MixtureRecord& record = mixture.record;
  std::size_t w = 0;
  while (w < state.x.size() && mixture.components[w].family != KV_FAMILY_WATER) ++w;
  const bool parted = (record.flags & FreeWaterFlag) != 0 && w < state.x.size();
  const double s = std::min(1.0, std::exp(record.solubility_a - record.solubility_b / state.T));
  if (!parted || state.x[w] <= s)
    return add_phase(library, mixture, PhaseKind::liquid, fraction, state.x, state);
  if (state.x[w] > water_rich)
    return add_phase(library, mixture, PhaseKind::free_water, fraction, state.x, state);
  const double share = (state.x[w] - s) / (1.0 - s);
  std::vector<double> liquid(state.x), water(state.x.size(), 0.0);
  for (double& x : liquid) x /= 1.0 - share;
  liquid[w] = s;
  water[w] = 1.0;
  add_phase(library, mixture, PhaseKind::liquid, fraction * (1.0 - share), liquid, state);
  add_phase(library, mixture, PhaseKind::free_water, fraction * share, water, state);
}

// A sum over the phases, each with its mole fraction as the weight; none where a phase has no such property.
void add_sum(Property property, Equilibrium& state) {
  double sum = 0.0;
  StatusCode status = KV_OK;
  for (const PhaseState& p : state.phases) {
    status = combined(status, p.properties.status(property));
    sum += p.mole_fraction * p.properties[property];
  }
  if (std::isfinite(sum) || !has_value(status)) state.overall.properties.set(property, status, sum);
}

void add_overall(const Mixture& mixture, Equilibrium& state) {
  state.overall = {PhaseKind::overall, 1.0, 1.0, mixture.z, mixture.molar_mass, {}};
  if (state.phases.size() == 1) {
    state.overall.properties = state.phases.front().properties;
    return;
  }
  for (const Property p :
       {Property::molar_volume, Property::enthalpy, Property::entropy, Property::free_enthalpy}) {
    add_sum(p, state);
  }
  PropertyValues& sums = state.overall.properties;
  const double v = sums[Property::molar_volume];
  if (std::isfinite(v)) {
    sums.set(Property::density, sums.status(Property::molar_volume), 1e-3 * mixture.molar_mass / v);
  }
}

}  // namespace

const PhaseState* Equilibrium::phase(PhaseKind kind) const {
  for (const PhaseState& p : phases) {
    if (p.kind == kind) return &p;
  }
  return nullptr;
}

StatusCode Equilibrium::first_failure() const {
  StatusCode result = status;
  for (const PhaseState& p : phases) result = combined(result, p.properties.first_failure());
  return result;
}

bool Equilibrium::extrapolated() const {
  return std::any_of(phases.begin(), phases.end(),
                     [](const PhaseState& p) { return p.properties.extrapolated(); });
}

std::string phases_in_words(const Equilibrium& state) {
  if (state.phases.empty()) return "-";
  if (!state.flashed) return fmt::format("{}, taken as given", phase_name(state.phases.front().kind));
  if (state.phases.size() == 2 && state.phases.back().kind == PhaseKind::liquid) return "two-phase";
  std::vector<std::string> names;
  for (const PhaseState& p : state.phases) names.emplace_back(phase_name(p.kind));
  return joined(names, " + ");
}

Equilibrium flash_at_TP(const Exports& library, Mixture& mixture, double T, double P) {
  const std::vector<double> none(mixture.z.size());
  Equilibrium state{T, P, true, KV_OK, 0.0, none, none, none, {}, {}};
  constexpr std::int32_t cold_start = 1;
  state.status = library.FlashLVatTP(T, P / kAtmInPa, mixture.z.data(), &mixture.record, nullptr, cold_start,
                                     &state.beta, state.x.data(), state.y.data(), state.K.data());
  if (state.status != KV_OK) return state;
  if (state.beta > 0.0) add_phase(library, mixture, PhaseKind::vapour, state.beta, state.y, state);
  if (state.beta < 1.0) add_liquids(library, mixture, state);
  add_overall(mixture, state);
  return state;
}

Equilibrium single_phase_at_TP(const Exports& library, const Mixture& mixture, PhaseKind kind, double T,
                               double P) {
  Equilibrium state{T, P, false, KV_OK, kind == PhaseKind::vapour ? 1.0 : 0.0, {}, {}, {}, {}, {}};
  add_phase(library, mixture, kind, 1.0, mixture.z, state);
  return state;
}

}  // namespace kestrune::host
