// What the columns of a table of states or of compositions are, by its heading.
#ifndef KESTRUNE_HOST_BATCH_HEADING_HPP
#define KESTRUNE_HOST_BATCH_HEADING_HPP

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "composition.hpp"
#include "equilibrium.hpp"

namespace kestrune::host::batch {

// One cell of a row and what it gives: a condition with its unit, or an amount.
struct ConditionColumn {
  std::size_t column;
  const Unit* unit;
};
struct AmountColumn {
  std::size_t column;
  std::string name;    // of the component, or of a fraction
  double whole = 1.0;  // this many of its unit are the whole: 100 of percent
};

struct Heading {
  char separator = ',';
  std::vector<std::string> titles;
  std::optional<Given> given;                   // of a table with conditions
  std::array<ConditionColumn, 2> conditions{};  // in the order of quantities_of
  std::vector<AmountColumn> amounts;
  Basis basis = Basis::mole;
};

// What a table may have.
struct Wanted {
  std::string name;  // of the table, for messages
  bool conditions = false, amounts = false;
  std::vector<std::string> ignored = {};  // titles of columns that are left alone
  std::vector<std::string> kept = {};     // of those that are copied, whether they are understood or not
};

// Reads a heading: T, P, H, S and beta with their units ("T[C]", "P bar", "enthalpy_kJ_kg"; plain names are in units), and
// names of components or of the composition's definitions, which may have a unit of amounts ("CO2 ppm"). basis: what
// the user says of the amounts. InputError names the column and what would be right.
// separator: what the table says of it, 0 to look.
Heading read_heading(std::string_view line, char separator, const Wanted& wanted, const UnitSystem& units,
                     const Composition& definitions, std::optional<Basis> basis);

// Cells of a row without blanks and quotes around them. Returns how many there are; those beyond capacity are not
// written, and empty ones at the end do not count.
std::size_t cut_cells(std::string_view line, char separator, std::string_view* cells, std::size_t capacity);
// What a cell of a line says: within quotes two of them are one.
std::string cell_text(std::string_view line, std::string_view cell);
// The cells of a line as texts.
std::vector<std::string> cell_texts(std::string_view line, char separator);

}  // namespace kestrune::host::batch

#endif
