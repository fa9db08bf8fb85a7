#include "properties.hpp"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace kestrune::host {

namespace {

constexpr double kGasConstant = 82.057;  // cm3 atm/(mol K), the value of the calculation library

using Prop = Property;
using Q = Quantity;
constexpr PropertyInfo kProperties[kPropertyCount] = {
    {Prop::Z, Q::ratio, "compressibility factor Z", "Z", "Z"},
    {Prop::density, Q::density, "density", "density", "density_kg_m3"},
    {Prop::molar_volume, Q::molar_volume, "molar volume", "volume", "molar_volume_m3_mol"},
    {Prop::enthalpy, Q::enthalpy, "enthalpy H", "H", "enthalpy_J_mol"},
    {Prop::entropy, Q::entropy, "entropy S", "S", "entropy_J_mol_K"},
    {Prop::free_enthalpy, Q::enthalpy, "free enthalpy G", "G", "free_enthalpy_J_mol"},
    {Prop::Cp, Q::entropy, "heat capacity Cp", "Cp", "Cp_J_mol_K"},
    {Prop::Cv, Q::entropy, "heat capacity Cv", "Cv", "Cv_J_mol_K"},
    {Prop::speed_of_sound, Q::speed, "speed of sound", "sound", "speed_of_sound_m_s"},
    {Prop::joule_thomson, Q::joule_thomson, "Joule-Thomson coefficient", "J-T", "joule_thomson_K_Pa"},
    {Prop::compressibility, Q::compressibility, "compressibility", "compr.", "compressibility_1_Pa"},
    {Prop::viscosity, Q::viscosity, "viscosity", "visc.", "viscosity_Pa_s"},
    {Prop::conductivity, Q::conductivity, "thermal conductivity", "cond.", "thermal_conductivity_W_m_K"},
    {Prop::normal_density, Q::density, "normal density (0 C, 1 atm)", "normal", "normal_density_kg_m3"},
    {Prop::normal_volume, Q::ratio, "normal m3 in one m3", "Nm3/m3", "normal_m3_per_m3"},
    {Prop::standard_density, Q::density, "standard density (15 C, 1 atm)", "standard",
     "standard_density_kg_m3"},
    {Prop::standard_volume, Q::ratio, "standard m3 (15 C) in one m3", "Sm3/m3", "standard_m3_per_m3"},
    {Prop::standard_cubic_feet, Q::ratio, "scf (60 F) in one ft3", "scf/ft3", "scf_per_ft3"}};

// One phase whose properties are asked for. The record is a copy: the exports take it as one to write to.
struct Call {
  const Exports& library;
  MixtureRecord record;
  double T, atm;
  const double* x;
  double molar_mass;  // g/mol
  unsigned wanted;

  bool wants(std::initializer_list<Property> any) const {
    return std::any_of(any.begin(), any.end(),
                       [&](Property p) { return (wanted & 1u << static_cast<unsigned>(p)) != 0; });
  }
};

struct Volume {
  StatusCode status;
  double density, d_dT, d_dP;  // kg/m3, per K, per Pa
};

Volume add_volume(Call& c, decltype(Exports::GasDensity_PPR78) density_export, PropertyValues& result) {
  double density = kNone, d_dT = kNone, d_dP = kNone, d2 = kNone;
  const StatusCode status = density_export(c.T, c.atm, c.x, &c.record, &density, &d_dT, &d_dP, &d2);
  const double v = c.molar_mass / density;  // cm3/mol
  result.set(Prop::Z, status, v * c.atm / (kGasConstant * c.T));
  result.set(Prop::density, status, 1e3 * density);
  result.set(Prop::molar_volume, status, 1e-6 * v);
  result.set(Prop::compressibility, status, d_dP / density / kAtmInPa);
  return {status, 1e3 * density, 1e3 * d_dT, 1e3 * d_dP / kAtmInPa};
}

using MolarExport = decltype(Exports::GasMolarEnthalpy_PPR78);

void add_molar(Call& c, MolarExport molar_export, Prop property, PropertyValues& result) {
  if (!c.wants({property})) return;
  double value = kNone;
  const StatusCode status = molar_export(c.T, c.atm, c.x, &c.record, &value);
  result.set(property, status, kCalInJ * value);
}

void add_gas_only(Call& c, PropertyValues& result) {
  double Cp = kNone, Cv = kNone, sound = kNone, joule_thomson = kNone, value = kNone;
  if (c.wants({Prop::Cp, Prop::Cv, Prop::speed_of_sound, Prop::joule_thomson})) {
    const StatusCode status =
        c.library.GasSpecificHeat_PPR78(c.T, c.atm, c.x, &c.record, &Cp, &Cv, &sound, &joule_thomson);
    result.set(Prop::Cp, status, kCalInJ * Cp);
    result.set(Prop::Cv, status, kCalInJ * Cv);
    result.set(Prop::speed_of_sound, status, sound);
    result.set(Prop::joule_thomson, status, joule_thomson / kAtmInPa);
  }
  if (c.wants({Prop::viscosity})) {
    const StatusCode status = c.library.GasDynamicViscosity_PPR78(c.T, c.atm, c.x, &c.record, &value);
    result.set(Prop::viscosity, status, 1e-3 * value);
  }
  if (c.wants({Prop::conductivity})) {
    const StatusCode status = c.library.GasThermalConductivity_PPR78(c.T, c.atm, c.x, &c.record, &value);
    result.set(Prop::conductivity, status, value);
  }
  if (c.wants({Prop::normal_density, Prop::normal_volume})) {
    double Z = kNone, Z_normal = kNone, density = kNone, volume = kNone;
    const StatusCode status = c.library.GasN(c.T, c.atm, c.x, &c.record, &Z, &Z_normal, &density, &volume);
    result.set(Prop::normal_density, status, density);
    result.set(Prop::normal_volume, status, volume);
  }
}

// The same gas at the standard states of the metre (15 C, 1 atm) and of the foot (60 F, 14.696 psia), as a gas.
void add_standard_states(Call& c, PropertyValues& result) {
  const auto at = [&](double T, double atm, StatusCode& status) {
    double density = kNone, d_dT = kNone, d_dP = kNone, d2 = kNone;
    status = c.library.GasDensity_PPR78(T, atm, c.x, &c.record, &density, &d_dT, &d_dP, &d2);
    return 1e3 * density;
  };
  StatusCode status = KV_OK;
  const double density = result[Prop::density];
  const double metre = at(kStandardT, 1.0, status);
  result.set(Prop::standard_density, status, metre);
  result.set(Prop::standard_volume, combined(result.status(Prop::density), status), density / metre);
  const double foot = at(kStandardFootT, kStandardFootP / kAtmInPa, status);
  result.set(Prop::standard_cubic_feet, combined(result.status(Prop::density), status), density / foot);
}

void add_liquid_heat(Call& c, const Volume& volume, PropertyValues& result) {
  double H = kNone, d_dT = kNone, d_dP = kNone;
  const StatusCode status = c.library.LiquidMolarEnthalpy_Derivatives_PPR78(
      c.T, c.atm, c.x, &c.record, KV_DERIV_T | KV_DERIV_P, &H, &d_dT, &d_dP, nullptr);
  const double Cp = kCalInJ * d_dT;
  const double v = 1e-3 * c.molar_mass / volume.density;
  const double alpha = -volume.d_dT / volume.density, kappa = volume.d_dP / volume.density;
  const double Cv = Cp - c.T * v * alpha * alpha / kappa;
  const StatusCode both = combined(status, volume.status);
  result.set(Prop::Cp, status, Cp);
  result.set(Prop::joule_thomson, status, -d_dP / d_dT / kAtmInPa);
  result.set(Prop::Cv, both, Cv);
  result.set(Prop::speed_of_sound, both, std::sqrt(Cp / Cv / volume.d_dP));
}

}  // namespace

std::string_view phase_name(PhaseKind kind) {
  constexpr std::string_view names[kPhaseKindCount] = {
      "vapour",         "dense",      "liquid", "hydrocarbon liquid", "light liquid", "heavy liquid",
      "aqueous liquid", "free water", "overall"};
  return names[static_cast<std::size_t>(kind)];
}

std::string_view short_phase_name(PhaseKind kind) {
  constexpr std::string_view names[kPhaseKindCount] = {"vapour", "dense",   "liquid", "hydrocarbon", "light",
                                                       "heavy",  "aqueous", "water",  "overall"};
  return names[static_cast<std::size_t>(kind)];
}

std::span<const PropertyInfo> all_properties() {
  return kProperties;
}

PropertyValues::PropertyValues() {
  values.fill(kNone);
  statuses.fill(KV_OK);
}

void PropertyValues::set(Property p, StatusCode status, double value) {
  if (has_value(status) && !std::isfinite(value)) status = KV_NOT_FINITE;
  values[static_cast<std::size_t>(p)] = has_value(status) ? value : kNone;
  statuses[static_cast<std::size_t>(p)] = status;
}

StatusCode PropertyValues::first_failure() const {
  for (const StatusCode s : statuses) {
    if (!has_value(s)) return s;
  }
  return KV_OK;
}

bool PropertyValues::extrapolated(Property p) const {
  const bool transport = p == Prop::viscosity || p == Prop::conductivity;  // beyond a range of their own
  return !transport && status(p) == KV_PURE_RANGE;
}

bool PropertyValues::extrapolated() const {
  return std::any_of(std::begin(kProperties), std::end(kProperties),
                     [this](const PropertyInfo& p) { return extrapolated(p.property); });
}

StatusCode combined(StatusCode a, StatusCode b) {
  if (!has_value(a)) return a;
  return b == KV_OK ? a : b;
}

PropertyValues phase_properties(const Exports& library, const Mixture& mixture, PhaseKind kind, double T,
                                double P, const std::vector<double>& x, double molar_mass, unsigned wanted) {
  PropertyValues result;
  Call call{library, mixture.record, T, P / kAtmInPa, x.data(), molar_mass, wanted};
  const bool heat = call.wants({Prop::Cp, Prop::Cv, Prop::speed_of_sound, Prop::joule_thomson});
  const bool standard = call.wants({Prop::standard_density, Prop::standard_volume, Prop::standard_cubic_feet});
  const bool volume =
      standard || call.wants({Prop::Z, Prop::density, Prop::molar_volume, Prop::compressibility});
  if (is_gas(kind)) {
    if (volume) add_volume(call, library.GasDensity_PPR78, result);
    add_gas_only(call, result);
    if (standard) add_standard_states(call, result);
  } else if (kind != PhaseKind::free_water && (volume || heat)) {
    const Volume of_liquid = add_volume(call, library.LiquidDensity_PPR78, result);
    if (heat) add_liquid_heat(call, of_liquid, result);
  }
  // With free water the library counts water in whatever it takes for a liquid as liquid water.
  const bool gas =
      kind == PhaseKind::vapour || (kind == PhaseKind::dense && (mixture.record.flags & FreeWaterFlag) == 0);
  add_molar(call, gas ? library.GasMolarEnthalpy_PPR78 : library.LiquidMolarEnthalpy_PPR78, Property::enthalpy,
            result);
  add_molar(call, gas ? library.GasMolarEntropy_PPR78 : library.LiquidMolarEntropy_PPR78, Property::entropy,
            result);
  add_molar(call, gas ? library.GasMolarFreeEnthalpy_PPR78 : library.LiquidMolarFreeEnthalpy_PPR78,
            Property::free_enthalpy, result);
  return result;
}

}  // namespace kestrune::host
