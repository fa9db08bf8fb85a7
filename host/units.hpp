// Units of temperature and pressure, unit systems, and the parsing of conditions.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrune::host {

// Exact by definition of the units.
inline constexpr double kAtmInPa = 101325.0;
inline constexpr double kPsiInPa = 0.45359237 * 9.80665 / (0.0254 * 0.0254);
inline constexpr double kZeroCelsius = 273.15;     // K
inline constexpr double kZeroFahrenheit = 459.67;  // R

// value in K = (value + offset) * factor; in Pa likewise.
struct Unit {
  std::string_view name;
  double factor;
  double offset;

  double to_base(double value) const { return (value + offset) * factor; }
  double from_base(double value) const { return value / factor - offset; }
};

enum class Quantity { temperature, pressure };

// K, C, F, R; atm, bar, bara, barg, kPa, MPa, Pa, psi, psia, psig. Gauge pressures count from 1 atm. Case
// does not matter. InputError for another name.
const Unit& unit(Quantity quantity, std::string_view name);
bool is_unit(Quantity quantity, std::string_view name);

// Units in which plain numbers are read and results are shown.
struct UnitSystem {
  const Unit* temperature;
  const Unit* pressure;
};

// "engineering" (C, bar), "si" (K, Pa), "field" (F, psia), or a pair such as "K,atm".
UnitSystem unit_system(std::string_view name);

// A list of conditions: "25", "25 C", "200,220,250 K", "0:100:10 C" (first:last:step, the last value
// included where a step meets it), and mixtures of both. A unit at the end holds for the values before it
// that have none; without any the given unit holds. Values in K or Pa; InputError unless all are positive.
std::vector<double> parse_conditions(Quantity quantity, std::string_view text, const Unit& plain);

}  // namespace kestrune::host
