// The options that say at which conditions states are calculated, and what they amount to.
#ifndef KESTRUNE_HOST_COMMANDS_CONDITIONS_HPP
#define KESTRUNE_HOST_COMMANDS_CONDITIONS_HPP

#include <array>
#include <string>
#include <vector>

#include "equilibrium.hpp"

namespace CLI {
class App;
}

namespace kestrune::host {

// Two lists of values in base units, in the order of quantities_of; every combination is a state.
struct Conditions {
  Given given;
  std::array<std::vector<double>, 2> values;

  double count() const { return static_cast<double>(values[0].size()) * static_cast<double>(values[1].size()); }
};

// -T, -P and, for flashes, -H, -S, --beta, --bubble, --dew. An empty text is a condition that is not given.
struct ConditionOptions {
  std::string temperature, pressure, enthalpy, entropy, vapour_fraction;
  bool bubble = false, dew = false;

  void add_TP_to(CLI::App& command, bool required);
  void add_energy_and_fraction_to(CLI::App& command);

  // molar_mass in g/mol, for units per mass. InputError for what cannot be read and for anything but two
  // conditions that a flash can be given.
  Conditions read(const UnitSystem& units, double molar_mass) const;

 private:
  std::string text_of(Quantity quantity) const;
};

}  // namespace kestrune::host

#endif
