// Units of the quantities that users write and read, unit systems, and the parsing of conditions.
#ifndef KESTRUNE_HOST_UNITS_HPP
#define KESTRUNE_HOST_UNITS_HPP

#include <array>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::host {

// Exact by definition of the units.
inline constexpr double kAtmInPa = 101325.0;
inline constexpr double kPsiInPa = 0.45359237 * 9.80665 / (0.0254 * 0.0254);
inline constexpr double kZeroCelsius = 273.15;     // K
inline constexpr double kZeroFahrenheit = 459.67;  // R
inline constexpr double kCalInJ = 4.184;

// Standard states of a gas: ISO 13443 for the cubic metre, at 1 atm, and that of the standard cubic foot.
inline constexpr double kStandardT = kZeroCelsius + 15.0;                   // K
inline constexpr double kStandardFootT = (kZeroFahrenheit + 60.0) * 5 / 9;  // K
inline constexpr double kStandardFootP = 14.696 * kPsiInPa;                 // Pa

// The value of what does not exist; shown as "-".
inline constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

// What a unit measures, with the base unit that all calculations of the host and its data formats use.
enum class Quantity {
  temperature,      // K
  pressure,         // Pa
  enthalpy,         // J/mol
  entropy,          // J/(mol K), heat capacities too
  density,          // kg/m3
  molar_volume,     // m3/mol
  speed,            // m/s
  viscosity,        // Pa s
  conductivity,     // W/(m K)
  joule_thomson,    // K/Pa
  compressibility,  // 1/Pa
  ratio,            // no unit
  vapour_fraction,  // moles of vapour in one mole
  water_content,    // moles of water in one mole of wet gas
  calorific_value,  // J/m3, by volume; Wobbe indices too
  calorific_mass,   // J/kg
};
inline constexpr std::size_t kQuantityCount = 16;

inline constexpr double kWaterMass = 18.01528;  // g/mol

// value in the base unit = (value + offset) * factor, for a unit per mass times the molar mass in kg/mol.
// The molar mass is given in g/mol and read by the units per mass only.
struct Unit {
  std::string_view name;
  double factor;
  double offset = 0.0;
  bool per_mass = false;

  double to_base(double value, double molar_mass = 0.0) const { return (value + offset) * scale(molar_mass); }
  double from_base(double value, double molar_mass = 0.0) const { return value / scale(molar_mass) - offset; }

 private:
  double scale(double molar_mass) const { return per_mass ? factor * molar_mass / 1000.0 : factor; }
};

// A unit by name, see docs/host.md for the list. Case, blanks and brackets do not matter: kJ/(kg K) is kJ/kgK.
// Gauge pressures count from 1 atm. InputError for another name.
const Unit& unit(Quantity quantity, std::string_view name);
bool is_unit(Quantity quantity, std::string_view name);

// "temperature", "vapour fraction"
std::string_view quantity_name(Quantity quantity);

// Units in which plain numbers are read and results are shown.
struct UnitSystem {
  std::array<const Unit*, kQuantityCount> units;

  const Unit& operator[](Quantity quantity) const { return *units[static_cast<std::size_t>(quantity)]; }
  // Another unit of enthalpy; entropies and heat capacities follow it. InputError for an unknown name.
  void choose_energy(std::string_view name);
};

// "engineering" (C, bar, kJ/kg), "si" (K, Pa, J/mol), "field" (F, psia, Btu/lb), or a pair of temperature and
// pressure such as "K,atm", with the other units of "engineering".
UnitSystem unit_system(std::string_view name);

// A value in a unit, in the shortest digits that are read back as this value in the base unit; an empty text for no
// number. The heading of a column: its key with the base unit, in another unit:
// "temperature_K" in C is "temperature_C".
std::string exact(double base, const Unit& unit, double molar_mass = 0.0);
std::string column_name(std::string_view key, Quantity quantity, const Unit& unit);

// A list of conditions: "25", "25 C", "200,220,250 K", "0:100:10 C" (first:last:step, the last value
// included where a step meets it), and mixtures of both. A unit at the end holds for the values before it
// that have none; without any the given unit holds. Values in the base unit; units per mass read the molar
// mass, g/mol. InputError for what cannot be read, for temperatures and pressures that are not positive, and
// for vapour fractions outside 0 .. 1.
std::vector<double> parse_conditions(Quantity quantity, std::string_view text, const Unit& plain,
                                     double molar_mass = 0.0);

}  // namespace kestrune::host

#endif
