// What the user writes down as a mixture: components with amounts, in a file or on the command line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "databank.hpp"

namespace kestrune::host {

enum class Basis { mole, mass };

Basis basis_by_name(std::string_view name);

struct Composition {
  std::string title;  // may be empty
  Basis basis = Basis::mole;
  bool basis_given = false;  // the source itself says what the amounts are
  std::vector<Component> components;
  std::vector<double> amounts;  // >= 0, any sum

  // Adds a component by name; a component that is there already gets the new amount.
  void set(std::string_view name, double amount);
  // The same, but a component that is there already is an error.
  void add(std::string_view name, double amount);
};

// "methane=0.7, ethane=9%, N2=0.1"; a percent sign divides by 100.
void read_inline(std::string_view text, Composition& composition, bool replace);

// One component per line: name, then its amount, separated by a comma, semicolon, tab or blanks. "#" starts a
// comment; a first line without a component and without a number is a heading, which may say that the amounts are masses.
void read_lines(std::string_view text, Composition& composition);

// {"name": "...", "basis": "mole", "components": {"methane": 0.7, ...}}, where components may also be a
// list of {"name": "methane", "amount": 0.7}; or just {"methane": 0.7, ...}.
void read_json(std::string_view text, Composition& composition);

// A file in either form; JSON when its first character is "{". "-" reads standard input.
Composition read_composition_file(const std::string& path);

}  // namespace kestrune::host
