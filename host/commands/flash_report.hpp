// Reports of flash results: text for the reader, JSON and CSV for programs.
#pragma once

#include <ostream>
#include <vector>

#include "equilibrium.hpp"
#include "units.hpp"

namespace kestrune::host {

struct FlashReport {
  const Mixture& mixture;
  const std::vector<Equilibrium>& states;
  UnitSystem units;  // of the text; JSON and CSV are in K and Pa

  // A single state in full; several as one line each, followed by all in full with details.
  void print_table(bool details, std::ostream& out) const;
  void print_json(std::ostream& out) const;
  // One row per state and phase; a state without phases has one row with these columns empty.
  void print_csv(std::ostream& out) const;
};

}  // namespace kestrune::host
