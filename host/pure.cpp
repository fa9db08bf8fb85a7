#include "pure.hpp"

#include <fmt/format.h>

#include <cmath>

#include "text.hpp"

namespace kestrune::host {

namespace {

using PP = PureProperty;
using PQ = Quantity;
constexpr PurePropertyInfo kPureInfos[kPurePropertyCount] = {
    {PP::vapour_pressure, 19, "VaporPressure", 1.0, PQ::pressure, true, "vapour pressure", "p sat",
     "vapour_pressure_Pa"},
    {PP::vaporisation, 18, "VaporizationEnthalpy", 1e-3, PQ::enthalpy, true, "enthalpy of vaporisation",
     "H vap", "vaporisation_J_mol"},
    {PP::liquid_density, 5, "LiquidDensity", 1.0, PQ::density, true, "density of the liquid", "liquid",
     "liquid_density_kg_m3"},
    {PP::liquid_heat_capacity, 7, "LiquidSpecificHeat", 1e-3, PQ::entropy, true, "heat capacity of the liquid",
     "Cp liquid", "liquid_Cp_J_mol_K"},
    {PP::liquid_viscosity, 9, "LiquidViscosity", 1.0, PQ::viscosity, true, "viscosity of the liquid",
     "visc. liquid", "liquid_viscosity_Pa_s"},
    {PP::liquid_conductivity, 8, "LiquidThermalConductivity", 1.0, PQ::conductivity, true,
     "thermal conductivity of the liquid", "cond. liquid", "liquid_conductivity_W_m_K"},
    {PP::surface_tension, 17, "SurfaceTension", 1.0, PQ::ratio, true, "surface tension", "tension",
     "surface_tension_N_m"},
    {PP::ideal_gas_heat_capacity, 4, "IdealGasSpecificHeat", 1e-3, PQ::entropy, false,
     "heat capacity of the ideal gas", "Cp ideal", "ideal_gas_Cp_J_mol_K"},
    {PP::gas_viscosity, 2, "GasViscosity", 1.0, PQ::viscosity, false, "viscosity of the dilute gas",
     "visc. gas", "gas_viscosity_Pa_s"},
    {PP::gas_conductivity, 1, "GasThermalConductivity", 1.0, PQ::conductivity, false,
     "thermal conductivity of the dilute gas", "cond. gas", "gas_conductivity_W_m_K"},
    {PP::second_virial, 11, "SecondVirialCoefficient", 1e-3, PQ::molar_volume, false,
     "second virial coefficient", "B", "second_virial_m3_mol"}};

const PurePropertyInfo& info_of(PureProperty property) {
  return kPureInfos[static_cast<std::size_t>(property)];
}

}  // namespace

std::span<const PurePropertyInfo> all_pure_properties() {
  return kPureInfos;
}

PureRange range_of(const PureExports& library, const Component& component, PureProperty property) {
  const std::int32_t cas = component.cas_number, index = info_of(property).index, own_choice = 1;
  PureRange range{false, kNone, kNone, {}};
  char unit[16] = {}, source[61] = {};
  range.found = library.info(&cas, &index, &own_choice, &range.T_min, &range.T_max, unit, source) == 0;
  range.source = trimmed(std::string_view(source));
  if (info_of(property).of_liquid) range.T_max = std::fmin(range.T_max, component.Tc);
  return range;
}

PureValue pure_value(const PureExports& library, const Component& component, PureProperty property, double T) {
  const PurePropertyInfo& info = info_of(property);
  if (info.of_liquid && T > component.Tc) return {kNone, false, "no liquid above the critical temperature"};
  const std::int32_t cas = component.cas_number, own_choice = 1;
  std::int32_t status = 0;
  double value = 0.0;
  char unit[16] = {};
  const std::int32_t result = library.properties[static_cast<std::size_t>(property)](
      &cas, &T, nullptr, nullptr, &own_choice, &status, &value, unit);
  if (result != 0 && result != 3)
    return {kNone, false, result == 4 ? "the temperature is unusable" : "no correlation for this component"};
  const double of_mass = info.quantity == Quantity::density ? component.molar_mass : 1.0;
  return {value * info.factor * of_mass, result == 3, {}};
}

double boiling_temperature(const PureExports& library, const Component& component, double P) {
  const PureRange range = range_of(library, component, PureProperty::vapour_pressure);
  const auto excess = [&](double T) {
    return std::log(pure_value(library, component, PureProperty::vapour_pressure, T).value / P);
  };
  double low = range.T_min, high = range.T_max;
  if (!range.found || !(excess(low) <= 0.0) || !(excess(high) >= 0.0)) return kNone;
  while (high - low > 1e-10 * high) {
    const double middle = 0.5 * (low + high);
    (excess(middle) < 0.0 ? low : high) = middle;
  }
  return 0.5 * (low + high);
}

}  // namespace kestrune::host
