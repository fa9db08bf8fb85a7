// A table of text: rows of cells, and what a cell can be.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "composition.hpp"

namespace kestrune::host {

struct Row {
  int line;
  std::vector<std::string> cells;
};

struct Sheet {
  char separator;
  bool decimal_comma;
  std::vector<Row> rows;
};

// The text in cells, by tabs, semicolons or commas, whichever of these comes first in this list and occurs; nothing
// where none does. Empty rows and comments are left out.
std::optional<Sheet> sheet_of(std::string_view text);

// "CH4 [mol%]", "methane (mol %)", "C1 mol%": the name, without the unit behind it.
std::string without_unit(std::string_view cell);

// Whether a cell names a component of the databank or one that is defined.
bool is_named(std::string_view cell, const Composition& composition);

// A cell without an amount: nothing, a dash, "n.d.", "< 0.01".
bool is_below_detection(std::string_view cell);

// The amount of a cell: a percent sign and ppm count in fractions of whole, 1 or, in a column of percent, 100.
std::optional<double> amount_of(std::string_view cell, const Sheet& sheet, double whole);

bool in_percent(std::string_view heading);

// InputError when a row with the total says something else than the sum of the amounts.
void check_total(const Row& row, double total, double sum);

}  // namespace kestrune::host
