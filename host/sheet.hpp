// A table of text: rows of cells, and what a cell can be.
#ifndef KESTRUNE_HOST_SHEET_HPP
#define KESTRUNE_HOST_SHEET_HPP

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "amounts.hpp"
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

// The name and the unit of a cell; a name that is defined is taken whole.
NameAndUnit named_cell(std::string_view cell, const Composition& composition);

// Whether a cell names a component of the databank or one that is defined, with a unit behind it or none.
bool is_named(std::string_view cell, const Composition& composition);

// A cell without an amount: nothing, a dash, "n.d.", "< 0.01".
bool is_below_detection(std::string_view cell);

// The amount of a cell, with the unit that stands behind it; nothing where there is no number, or none alone.
struct CellAmount {
  double value;
  std::optional<AmountUnit> unit;
};
std::optional<CellAmount> amount_of(std::string_view cell, const Sheet& sheet);

// What the rows above this one say of amounts in general, "Composition in mass%".
std::optional<AmountUnit> unit_of_titles(const Sheet& sheet, std::size_t heading);

// InputError for a row with more cells than the heading has.
void check_width(const Sheet& sheet, const Row& heading, std::size_t cells, int line);

// InputError when a row with the total says something else than the sum of the amounts.
void check_total(int line, double total, double sum);

}  // namespace kestrune::host

#endif
