// What a phase is called, and what the equation of state cannot do for it.
#include <algorithm>
#include <cmath>

#include "cas.hpp"
#include "equilibrium_parts.hpp"

namespace kestrune::host {

namespace {

constexpr std::int32_t kPolar[] = {cas::kWater, cas::kMethanol, cas::kMEG, cas::kDEG, cas::kTEG, cas::kAmmonia};
constexpr std::int32_t kAlcohols[] = {cas::kMethanol, cas::kMEG, cas::kDEG, cas::kTEG};
constexpr std::int32_t kLight[] = {cas::kHydrogen, cas::kHelium};
constexpr double kMuchLight =
    0.25;  // share of these from which the Joule-Thomson coefficient is not to be trusted

constexpr double kMuchCO2 = 0.5;          // share of CO2 from which a liquid is called one of CO2
constexpr double kTripleOfCO2 = 216.592;  // K [Span and Wagner, J. Phys. Chem. Ref. Data 25 (1996) 1509]

bool is_polar(const Component& c) {
  return std::find(std::begin(kPolar), std::end(kPolar), c.cas_number) != std::end(kPolar);
}

}  // namespace

double polar_share(const Mixture& mixture, const std::vector<double>& x) {
  return share_of(mixture, x, kPolar);
}

bool is_aqueous(const Mixture& mixture, const std::vector<double>& x) {
  const std::size_t w = water_of(mixture);
  return w < x.size() && x[w] >= kSomeWater && polar_share(mixture, x) > kAqueous;
}

bool is_dense(const Exports& library, const Mixture& mixture, const std::vector<double>& x, double T,
              LastCritical* last) {
  constexpr double trace = 1e-6;
  const double polar = polar_share(mixture, x);
  if (polar > kAqueous) {  // hotter than the critical temperature of everything in it, or a liquid
    for (std::size_t i = 0; i < x.size(); ++i)
      if (x[i] > trace && T <= mixture.components[i].Tc) return false;
    return true;
  }
  std::vector<double> dry(x);
  double lowest = 1e300, highest = 0.0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const Component& c = mixture.components[i];
    dry[i] = is_polar(c) ? 0.0 : x[i] / (1.0 - polar);
    if (dry[i] <= trace) continue;
    lowest = std::min(lowest, c.Tc);
    highest = std::max(highest, c.Tc);
  }
  if (T <= lowest || T >= highest) return T > lowest;
  MixtureRecord record = mixture.record;
  record.flags = 0;
  LastCritical this_one;
  LastCritical& critical = last != nullptr ? *last : this_one;
  double Tc = 0.0, Pc = 0.0, Vc = 0.0, Zc = 0.0;
  if (critical.x != dry) {
    const StatusCode status = library.CriticalPoint(dry.data(), &record, 0, &Tc, &Pc, &Vc, &Zc);
    critical = {dry, status == KV_OK ? Tc : kNone};
  }
  if (!std::isnan(critical.T)) return T > critical.T;
  std::vector<double> liquid(x), vapour(x), K(x);
  constexpr std::int32_t cold_start = 1;
  const StatusCode bubble = library.FlashLVatWT(0.0, T, dry.data(), &record, nullptr, cold_start, &Pc,
                                                liquid.data(), vapour.data(), K.data());
  return bubble != KV_OK && bubble != KV_PURE_RANGE && bubble != KV_UNSTABLE_POINT;
}

PhaseKind liquid_kind(const Exports& library, const Mixture& mixture, double T, const std::vector<double>& x,
                      bool alone, LastCritical* last) {
  const std::size_t w = water_of(mixture);
  const bool free_water = (mixture.record.flags & FreeWaterFlag) != 0 && w < x.size() && x[w] > kWaterRich;
  if (free_water) return PhaseKind::free_water;
  const bool polar = polar_share(mixture, x) > kAqueous;
  if (polar && alone && is_dense(library, mixture, x, T, last)) return PhaseKind::dense;
  if (is_aqueous(mixture, x)) return PhaseKind::aqueous_liquid;
  if (polar) return PhaseKind::liquid;
  if (alone && is_dense(library, mixture, x, T, last)) return PhaseKind::dense;
  return polar_share(mixture, mixture.z) > 0.0 ? PhaseKind::hydrocarbon_liquid : PhaseKind::liquid;
}

PhaseKind only_liquid_kind(const Exports& library, const Mixture& mixture, double T,
                           const std::vector<double>& x, bool alone, LastCritical* last) {
  if (alone && is_dense(library, mixture, x, T, last)) return PhaseKind::dense;
  return is_aqueous(mixture, x) ? PhaseKind::aqueous_liquid : PhaseKind::liquid;
}

bool is_packed(const Mixture& mixture, const std::vector<double>& x, double molar_volume, double part) {
  constexpr double kGas = 82.057e-6, kOmegaB = 0.0778;  // m3 atm/(mol K)
  constexpr double packed = 3.9514;                     // v/b of the critical point of the equation of state
  double b = 0.0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const Component& c = mixture.components[i];
    b += x[i] * kOmegaB * kGas * c.Tc / (c.Pc / kAtmInPa);
  }
  return molar_volume < part * packed * b;
}

bool is_third_liquid(const Mixture& mixture, const std::vector<double>& x, const PropertyValues& gas,
                     double G_liquid) {
  constexpr double kPackedLiquid = 0.5;  // a gas near its critical point is above
  return G_liquid < gas[Property::free_enthalpy] ||
         is_packed(mixture, x, gas[Property::molar_volume], kPackedLiquid);
}

void name_by_density(const std::vector<PhaseKind*>& kinds, const std::vector<double>& densities) {
  if (kinds.size() < 2) return;
  const auto ends = std::minmax_element(densities.begin(), densities.end());
  for (PhaseKind* kind : kinds) *kind = PhaseKind::liquid;
  *kinds[static_cast<std::size_t>(ends.first - densities.begin())] = PhaseKind::light_liquid;
  *kinds[static_cast<std::size_t>(ends.second - densities.begin())] = PhaseKind::heavy_liquid;
}

void rename_packed_gas(const Exports& library, const Mixture& mixture, Equilibrium& state) {
  const auto other = [](const PhaseState& p) { return p.kind != PhaseKind::vapour && !p.aqueous; };
  if (state.of_fraction() || state.phases.empty() || state.phases.front().kind != PhaseKind::vapour) return;
  if (std::any_of(state.phases.begin(), state.phases.end(), other)) return;
  PhaseState& gas = state.phases.front();
  if (!is_packed(mixture, gas.x, gas.properties[Property::molar_volume])) return;
  gas.kind = liquid_kind(library, mixture, state.T, gas.x, true);
  if (gas.kind == PhaseKind::free_water) gas.kind = PhaseKind::vapour;
  if (gas.kind == PhaseKind::vapour) return;
  if (gas.kind != PhaseKind::dense) {
    gas.properties = phase_properties(library, mixture, gas.kind, state.T, state.P, gas.x, gas.molar_mass);
    gas.aqueous = is_aqueous(mixture, gas.x);
  }
  state.beta = 0.0;
}

std::vector<std::string_view> model_limits(const Mixture& mixture, const PhaseState& phase, double T) {
  std::vector<std::string_view> limits;
  if (!is_gas(phase.kind) && phase.kind != PhaseKind::overall && T < kTripleOfCO2 &&
      share_of(mixture, phase.x, cas::kCO2) >= kMuchCO2)
    limits.push_back(
        "no solids: a liquid of carbon dioxide below its triple point (216.59 K, 5.18 bar) would freeze to dry "
        "ice, these numbers are those of a liquid that does not");
  const double light = share_of(mixture, phase.x, kLight), alcohols = share_of(mixture, phase.x, kAlcohols);
  if (light > kMuchLight && std::isfinite(phase.properties[Property::joule_thomson])) {
    limits.push_back(
        "cubic equation: the Joule-Thomson coefficient of hydrogen and helium is too high and near ambient "
        "temperature of the wrong sign");
  }
  if (phase.properties[Property::Cp] < 0.0 || phase.properties[Property::Cv] < 0.0)
    limits.push_back(kNegativeHeatText);
  if (phase.aqueous && std::isfinite(phase.properties[Property::Z])) {
    limits.push_back(
        "cubic equation: not for liquid water (its density and heat capacities and speed of sound are far "
        "off)");
  }
  if (!phase.aqueous && !is_gas(phase.kind) && alcohols > kAqueous &&
      std::isfinite(phase.properties[Property::Z])) {
    limits.push_back(
        "cubic equation: not for liquid methanol and glycols (their density and heat capacities and speed of "
        "sound are far off)");
  }
  return limits;
}

}  // namespace kestrune::host
