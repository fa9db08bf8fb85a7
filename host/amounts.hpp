// Units of amounts in tables: what stands behind a name, in a heading or in a cell.
#ifndef KESTRUNE_HOST_AMOUNTS_HPP
#define KESTRUNE_HOST_AMOUNTS_HPP

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "composition.hpp"

namespace kestrune::host {

// "mol%", "ppm(v)", "wt%", "mole fraction". Of "kmol" or "mass" the scale is open.
struct AmountUnit {
  std::optional<Basis> basis;
  double whole = 1.0;   // this many of it are the whole: 100, 1e6
  bool scaled = false;  // whether it says that

  bool operator==(const AmountUnit&) const = default;
};

// Nothing for what is no unit of amounts, "mg/m3" for one. InputError for volumes of liquid, which need densities.
std::optional<AmountUnit> amount_unit(std::string_view text);

// A unit of amounts within the text, "Composition in mass%"; nothing where there is none.
std::optional<AmountUnit> unit_within(std::string_view text);

// "H2S [ppm]", "methane (mol %)", "C1 mol%", "n-butane (nC4)": the name, the unit behind it, and what is neither.
struct NameAndUnit {
  std::string name;
  std::optional<AmountUnit> unit;
  std::string odd;

  // InputError when something behind the name is not understood.
  void check() const;
};
NameAndUnit name_and_unit(std::string_view cell);

// An amount as it stands in a line; without a unit it counts in the scale of the others.
struct Amount {
  int line;
  std::string name;
  double value;
  std::optional<AmountUnit> unit;
};

// Adds the amounts to the composition in fractions of the whole; as they are where none has a unit with a scale. Amounts
// without a scale beside others that have one are fractions or percent, whichever they sum to. Returns how many of
// these are the whole.
// InputError names the line: moles beside masses, sums that are neither.
double add_amounts(const std::vector<Amount>& amounts, Composition& composition);

}  // namespace kestrune::host

#endif
