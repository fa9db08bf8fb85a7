// Calorific values, density and Wobbe index of a gas from its composition, by the method and the table of ISO 6976:2016.
#ifndef KESTRUNE_HOST_SALES_GAS_HPP
#define KESTRUNE_HOST_SALES_GAS_HPP

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "mixture.hpp"

namespace kestrune::host {

// Reference temperatures, C: 60 F is printed as 15.55 C and is 15.5556. A gas is metered at one of the first four; it
// burns at any of them.
inline constexpr std::array<double, 5> kReferenceTemperatures{0.0, 15.0, 140.0 / 9.0, 20.0, 25.0};
inline constexpr std::size_t kMeteringCount = 4;

// One row of data/calorific_values.csv.
struct CalorificEntry {
  std::int32_t cas_number;
  int hydrogen_atoms;
  double molar_mass;                     // g/mol
  std::array<double, kMeteringCount> s;  // summation factors, at the metering temperatures
  std::array<double, 5> gross;           // of combustion at the reference temperatures, kJ/mol
};

namespace tables {
std::span<const CalorificEntry> calorific_values();
}

// Where a gas burns and where it is metered, as indices of kReferenceTemperatures; at 1 atm.
struct Reference {
  std::size_t combustion, metering;

  std::string name() const;  // "25/0 C"
};

// "25/0", "15", "60F/60F", "15.55 C/15.55 C": of combustion over metering; one temperature is both. InputError for others.
Reference reference_by_name(std::string_view text);

// What the table counts of a mixture: mole fractions of its entries, sum 1.
struct TabulatedGas {
  std::vector<const CalorificEntry*> entries;
  std::vector<double> x;
  std::vector<std::string> notes;  // what was left out or taken for another component
};

// Components outside the table are taken, mass for mass, for the component with the name stand_in. Where that is empty
// they are left out if they are below kNegligible together; else an InputError names them.
inline constexpr double kNegligible = 5e-5;  // mole fraction from which ISO 6976 wants a component counted
TabulatedGas tabulated(const Mixture& mixture, const std::string& stand_in);

// J/mol, J/kg and J/m3; kg/m3; g/mol. Volumes are those at the metering temperature and 1 atm.
struct CalorificNumbers {
  double gross, net, gross_by_volume, net_by_volume, wobbe, wobbe_net, density, relative_density;
};
struct CalorificResult {
  Reference reference;
  double molar_mass, Z, gross_by_mass, net_by_mass;
  CalorificNumbers real, ideal;
};

CalorificResult calorific_result(const TabulatedGas& gas, const Reference& reference);

}  // namespace kestrune::host

#endif
