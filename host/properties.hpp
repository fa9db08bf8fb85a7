// Properties of one phase at temperature and pressure, each with its status, from the property exports.
#ifndef KESTRUNE_HOST_PROPERTIES_HPP
#define KESTRUNE_HOST_PROPERTIES_HPP

#include <array>
#include <span>
#include <string_view>
#include <vector>

#include "mixture.hpp"
#include "units.hpp"

namespace kestrune::host {

// In the order in which phases are shown. A flash of two phases has a liquid, one of three names what it is. A dense
// fluid is packed like a liquid above its critical temperature.
enum class PhaseKind {
  vapour,
  dense,
  liquid,
  hydrocarbon_liquid,
  light_liquid,
  heavy_liquid,
  aqueous_liquid,
  free_water,
  overall,
};
inline constexpr std::size_t kPhaseKindCount = 9;

// What the exports for gases serve.
inline bool is_gas(PhaseKind kind) {
  return kind == PhaseKind::vapour || kind == PhaseKind::dense;
}

// "vapour", "dense", "hydrocarbon liquid", "free water", "overall"; short: "hydrocarbon", "water"
std::string_view phase_name(PhaseKind kind);
std::string_view short_phase_name(PhaseKind kind);

enum class Property {
  Z,
  density,
  molar_volume,
  enthalpy,
  entropy,
  free_enthalpy,
  Cp,
  Cv,
  speed_of_sound,
  joule_thomson,
  compressibility,
  viscosity,
  conductivity,
  normal_density,
  normal_volume,
  standard_density,
  standard_volume,
  standard_cubic_feet,
};
inline constexpr std::size_t kPropertyCount = 18;

struct PropertyInfo {
  Property property;
  Quantity quantity;
  std::string_view title;    // of a row
  std::string_view heading;  // of a narrow column, without unit
  std::string_view key;      // in JSON and CSV, with the base unit
};

// In the order of Property.
std::span<const PropertyInfo> all_properties();

// A status that comes with a value: success, or a correlation continued beyond its range.
inline bool has_value(StatusCode status) {
  return status == KV_OK || status == KV_PURE_RANGE;
}

// Values in the base units of Quantity. NaN with status 0: the phase has no such property.
struct PropertyValues {
  std::array<double, kPropertyCount> values;
  std::array<StatusCode, kPropertyCount> statuses;

  PropertyValues();
  double operator[](Property p) const { return values[static_cast<std::size_t>(p)]; }
  StatusCode status(Property p) const { return statuses[static_cast<std::size_t>(p)]; }
  void set(Property p, StatusCode status, double value);

  StatusCode first_failure() const;     // the first status without a value, else 0
  bool extrapolated(Property p) const;  // made with a heat capacity beyond its range
  bool extrapolated() const;            // some value is
};

// The status of a value made of two: the first without a value, else the remark that one of them carries.
StatusCode combined(StatusCode a, StatusCode b);

// Properties to be calculated, a bit for each in the order of Property.
inline constexpr unsigned kAllProperties = (1u << kPropertyCount) - 1u;

// T in K, P in Pa, x mole fractions, molar_mass in g/mol. Those that are not wanted are NaN, or come with another one
// of the same export. A vapour and a dense fluid
// have all properties, a liquid has no viscosity, conductivity, normal and standard state, free water has enthalpy, entropy and free enthalpy only, for it
// does not follow the equation of state. Those of a liquid, with v molar volume and rho density:
//   Cp = dH/dT, Joule-Thomson = -(dH/dP)/Cp, alpha = -(d rho/dT)/rho, compressibility kappa = (d rho/dP)/rho,
//   Cv = Cp - T v alpha^2/kappa, speed of sound^2 = (Cp/Cv)/(d rho/dP).
PropertyValues phase_properties(const Exports& library, const Mixture& mixture, PhaseKind kind, double T,
                                double P, const std::vector<double>& x, double molar_mass,
                                unsigned wanted = kAllProperties);

}  // namespace kestrune::host

#endif
