// Properties of a pure component from the correlations of the library of pure components, with their ranges.
#ifndef KESTRUNE_HOST_PURE_HPP
#define KESTRUNE_HOST_PURE_HPP

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "databank.hpp"
#include "kestrune/kvcmpdpurelite.h"
#include "units.hpp"

namespace kestrune::host {

enum class PureProperty {
  vapour_pressure,
  vaporisation,
  liquid_density,
  liquid_heat_capacity,
  liquid_viscosity,
  liquid_conductivity,
  surface_tension,
  ideal_gas_heat_capacity,
  gas_viscosity,
  gas_conductivity,
  second_virial,
};
inline constexpr std::size_t kPurePropertyCount = 11;

struct PurePropertyInfo {
  PureProperty property;
  int index;          // in KV_PURE_PROPERTIES, from 1
  const char* entry;  // of the library, without _EX
  double factor;      // from the library's unit to the base unit; densities also take the molar mass
  Quantity quantity;  // of its base unit; ratio: surface tension, in N/m
  bool of_liquid;     // there is none above the critical temperature
  std::string_view title, heading, key;
};
std::span<const PurePropertyInfo> all_pure_properties();

// The exports of the library of pure components that the host calls, in the order of PureProperty.
struct PureExports {
  std::array<KvPureProperty, kPurePropertyCount> properties;
  decltype(&::CorrelationInfo) info;
};

// Opens the library of pure components beside the calculation library; InputError where it is missing or another one.
PureExports load_pure_library(const std::string& library_path);

// A correlation of a component: found is false where the library has none.
struct PureRange {
  bool found;
  double T_min, T_max;  // K
  std::string source;
};
PureRange range_of(const PureExports& library, const Component& component, PureProperty property);

// A value in the base unit; NaN with why not empty: there is none. outside: continued beyond its range.
struct PureValue {
  double value;
  bool outside;
  std::string why;
};
PureValue pure_value(const PureExports& library, const Component& component, PureProperty property, double T);

// The temperature, K, at which the component boils under P, Pa; NaN outside the range of its vapour pressure.
double boiling_temperature(const PureExports& library, const Component& component, double P);

}  // namespace kestrune::host

#endif
