#include "equilibrium.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "text.hpp"
#include "units.hpp"

namespace kestrune::host {

namespace {

constexpr double kGasConstant = 82.057;  // cm3 atm/(mol K), the value of the calculation library

double molar_mass_of(const Mixture& mixture, const std::vector<double>& x) {
  double mass = 0.0;
  for (std::size_t i = 0; i < x.size(); ++i) mass += x[i] * mixture.components[i].molar_mass;
  return mass;
}

void add_phase(const Exports& library, const Mixture& mixture, PhaseKind kind, double fraction,
               const std::vector<double>& x, Equilibrium& state) {
  PhaseState phase{};
  phase.kind = kind;
  phase.mole_fraction = fraction;
  phase.x = x;
  phase.molar_mass = molar_mass_of(mixture, x);
  phase.mass_fraction = fraction * phase.molar_mass / mixture.molar_mass;
  evaluate_phase(library, mixture, state.T, state.P, phase);
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

}  // namespace

const PhaseState* Equilibrium::phase(PhaseKind kind) const {
  for (const PhaseState& p : phases) {
    if (p.kind == kind) return &p;
  }
  return nullptr;
}

bool Equilibrium::good() const {
  for (const PhaseState& p : phases) {
    if (p.status != KV_OK) return false;
  }
  return status == KV_OK;
}

std::string_view phase_name(PhaseKind kind) {
  constexpr std::string_view names[] = {"vapour", "liquid", "free water"};
  return names[static_cast<std::size_t>(kind)];
}

std::string phases_in_words(const Equilibrium& state) {
  if (state.phases.empty()) return "-";
  if (state.phases.size() == 2 && state.phases.back().kind == PhaseKind::liquid) return "two-phase";
  std::vector<std::string> names;
  for (const PhaseState& p : state.phases) names.emplace_back(phase_name(p.kind));
  return joined(names, " + ");
}

void evaluate_phase(const Exports& library, const Mixture& mixture, double T, double P, PhaseState& phase) {
  const std::size_t n = phase.x.size();
  phase.status = KV_OK;
  phase.Z = phase.density = std::numeric_limits<double>::quiet_NaN();
  if (phase.kind == PhaseKind::free_water) return;
  std::vector<double> ln_phi(n), slope(n);
  // The equation of state alone: free water changes fugacities, not volumes.
  MixtureRecord record = mixture.record;
  record.flags = 0;
  record.trace_flag = 0;
  const double atm = P / kAtmInPa;
  const auto call =
      phase.kind == PhaseKind::vapour ? library.GasPhi_Derivatives_PPR78 : library.LiquidPhi_Derivatives_PPR78;
  phase.status =
      call(T, atm, phase.x.data(), &record, 2, KV_DERIV_P, ln_phi.data(), nullptr, slope.data(), nullptr);
  double sum = 0.0;
  for (std::size_t i = 0; i < n; ++i) sum += phase.x[i] * slope[i];
  const double Z = 1.0 + atm * sum;
  if (phase.status == KV_OK && !(Z > 0.0)) phase.status = KV_NOT_FINITE;
  if (phase.status != KV_OK) return;
  phase.Z = Z;
  phase.density = 1000.0 * phase.molar_mass * atm / (phase.Z * kGasConstant * T);
}

Equilibrium flash_at_TP(const Exports& library, Mixture& mixture, double T, double P) {
  const std::size_t n = mixture.z.size();
  Equilibrium state{T, P, KV_OK, 0.0, std::vector<double>(n), std::vector<double>(n), std::vector<double>(n),
                    {}};
  constexpr std::int32_t cold_start = 1;
  state.status = library.FlashLVatTP(T, P / kAtmInPa, mixture.z.data(), &mixture.record, nullptr, cold_start,
                                     &state.beta, state.x.data(), state.y.data(), state.K.data());
  if (state.status != KV_OK) return state;
  if (state.beta > 0.0) add_phase(library, mixture, PhaseKind::vapour, state.beta, state.y, state);
  if (state.beta < 1.0) add_liquids(library, mixture, state);
  return state;
}

}  // namespace kestrune::host
