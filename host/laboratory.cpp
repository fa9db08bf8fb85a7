#include "laboratory.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>

#include "error.hpp"
#include "sheet.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

enum class Column { none, mole, mass };

// What a heading says that its column holds.
Column column_of(std::string_view cell) {
  const std::string key = search_key(cell);
  const auto has = [&](std::string_view word) { return key.find(word) != std::string::npos; };
  if (amount_unit(cell))  // refuses volumes of liquid
    return amount_unit(cell)->basis == Basis::mass ? Column::mass : Column::mole;
  constexpr std::string_view masses[] = {"w", "g", "kg", "t", "lb", "lbs", "ppmw", "kgh", "kgs"};
  constexpr std::string_view moles[] = {"x",        "y",       "z",       "amount",        "amounts",
                                        "fraction", "percent", "content", "concentration", "result",
                                        "value",    "ppm",     "ppmv",    "kmol",          "n"};
  if (has("molarmass") || has("molecularweight") || has("molweight") || has("uncertainty") ||
      has("detection") || has("limit") || has("method") || has("repeat"))
    return Column::none;
  if (has("mass") || has("weight") || key.rfind("wt", 0) == 0 ||
      std::find(std::begin(masses), std::end(masses), key) != std::end(masses))
    return has("mol") ? Column::none : Column::mass;
  if (has("mol") || has("vol") || std::find(std::begin(moles), std::end(moles), key) != std::end(moles) ||
      (key.empty() && cell.find('%') != std::string_view::npos))
    return Column::mole;
  return Column::none;
}

// The heading of one analysis: where the names are and where the amounts.
struct Heading {
  std::size_t row, name, amount;
};

std::size_t chosen_column(const Row& row, std::size_t name, const ReadOptions& options, Column& kind) {
  std::vector<std::size_t> moles, masses;
  for (std::size_t c = 0; c < row.cells.size(); ++c) {
    if (c == name) continue;
    if (!options.column.empty() && lower(row.cells[c]) == lower(trimmed(options.column))) {
      kind = column_of(row.cells[c]);
      return c;
    }
    const Column column = column_of(row.cells[c]);
    if (column != Column::none) (column == Column::mole ? moles : masses).push_back(c);
  }
  if (!options.column.empty())
    throw InputError(fmt::format("line {}: no column is called \"{}\"; there are {}", row.line, options.column,
                                 joined(row.cells, ", ")));
  const bool mass = options.basis == Basis::mass ? !masses.empty() : moles.empty();
  const std::vector<std::size_t>& found = mass ? masses : moles;
  kind = mass ? Column::mass : Column::mole;
  if (found.size() > 1)
    throw InputError(
        fmt::format("line {}: the columns \"{}\" and \"{}\" both hold amounts: choose one with --column",
                    row.line, row.cells[found[0]], row.cells[found[1]]));
  return found.empty() ? row.cells.size() : found[0];
}

std::optional<Heading> heading_of(const Sheet& sheet, const ReadOptions& options, Column& kind) {
  for (std::size_t r = 0; r < sheet.rows.size(); ++r) {
    const Row& row = sheet.rows[r];
    const auto name = std::find_if(row.cells.begin(), row.cells.end(),
                                   [](const std::string& c) { return is_name_heading(c); });
    if (name == row.cells.end() || row.cells.size() < 2) continue;
    const auto at = static_cast<std::size_t>(name - row.cells.begin());
    const std::size_t amount = chosen_column(row, at, options, kind);
    if (amount < row.cells.size()) return Heading{r, at, amount};
  }
  return {};
}

// A name with commas that no quotes hold together takes several cells of a table with commas.
void join_name(const Heading& h, const Sheet& sheet, const Composition& composition,
               std::vector<std::string>& cells) {
  const std::size_t columns = sheet.rows[h.row].cells.size();
  if (sheet.separator != ',' || cells.size() <= columns || h.name >= cells.size()) return;
  const std::size_t extra = cells.size() - columns;
  std::string name = cells[h.name];
  for (std::size_t k = 1; k <= extra && h.name + k < cells.size(); ++k) name += "," + cells[h.name + k];
  if (!is_named(name, composition)) return;
  cells[h.name] = name;
  const auto first = cells.begin() + static_cast<std::ptrdiff_t>(h.name) + 1;
  cells.erase(first, first + static_cast<std::ptrdiff_t>(extra));
}

// Column with the unit of every row; the number of columns where there is none.
std::size_t unit_column(const Row& heading) {
  constexpr std::string_view words[] = {"unit", "units", "uom", "einheit", "unite", "unidad"};
  const auto found = std::find_if(heading.cells.begin(), heading.cells.end(), [&](const std::string& c) {
    return std::find(std::begin(words), std::end(words), search_key(c)) != std::end(words);
  });
  return static_cast<std::size_t>(found - heading.cells.begin());
}

// A row of a table of one analysis: what its cells say.
struct Entry {
  std::string name, cell;
  std::optional<AmountUnit> unit;  // of the name or of the column with units
};
Entry entry_of(const Heading& h, std::size_t units, const std::vector<std::string>& cells,
               const Composition& composition) {
  const auto at = [&](std::size_t c) { return c < cells.size() ? cells[c] : std::string(); };
  const NameAndUnit named = named_cell(at(h.name), composition);
  Entry e{named.name, at(h.amount), named.unit};
  if (!is_named(at(h.name), composition)) return e;
  named.check();
  if (at(units).empty()) return e;
  e.unit = amount_unit(at(units));
  if (!e.unit)
    throw InputError(
        fmt::format("\"{}\" of {} is no unit of amounts: use mol%, ppm or wt%", at(units), e.name));
  return e;
}

// A table of one analysis, row by row.
struct Reading {
  const Sheet& sheet;
  const Heading& h;
  Composition& composition;
  std::size_t units;
  std::optional<AmountUnit> column;  // of amounts without a unit of their own
  std::vector<Amount> amounts;
  std::vector<std::string> empty;                   // components without an amount
  std::optional<std::pair<int, CellAmount>> total;  // its line; below 0: the row has no amount

  const Row& heading() const { return sheet.rows[h.row]; }
};

// The last total that can be read.
void take_total(Reading& r, int line, const std::vector<std::string>& cells) {
  if (const auto sum = amount_of(r.h.amount < cells.size() ? cells[r.h.amount] : "", r.sheet))
    r.total = {line, *sum};
  if (!r.total) r.total = {line, CellAmount{-1.0, {}}};
}

// Whether a row below the heading has the unit of the column in place of an amount, or nothing.
bool has_units(Reading& r, const std::string& cell) {
  const auto unit = amount_unit(cell);
  if (unit) r.column = unit;
  return unit || cell.empty();
}

// A row with a component; first: it stands below the heading.
void take_amount(Reading& r, int line, const std::vector<std::string>& cells, const std::string& written,
                 bool first) {
  const bool known = is_named(written, r.composition);
  const Entry e = entry_of(r.h, r.units, cells, r.composition);
  if (written.empty() && e.cell.empty()) return;
  if (known && e.cell.empty()) r.empty.push_back(e.name);
  if (known && is_below_detection(e.cell)) {
    if (!e.cell.empty() && e.cell != "-")
      r.composition.notes.push_back(fmt::format("{} \"{}\" taken as 0", e.name, e.cell));
    return;
  }
  const auto amount = amount_of(e.cell, r.sheet);
  if (!amount && first && !known && has_units(r, e.cell)) return;
  if (!amount)
    throw InputError(fmt::format("\"{}\" of {} is not an amount: write a number{}", e.cell,
                                 written.empty() ? "a row without a name" : e.name,
                                 r.sheet.separator == ',' ? " with a decimal point" : ""));
  const auto& unit = amount->unit ? amount->unit : e.unit ? e.unit : r.column;
  r.amounts.push_back({line, e.name, amount->value, unit});
}

void take_row(Reading& r, const Row& row, bool first) {
  std::vector<std::string> cells = row.cells;
  join_name(r.h, r.sheet, r.composition, cells);
  const std::string written = r.h.name < cells.size() ? cells[r.h.name] : "";
  if (is_total(written)) return take_total(r, row.line, cells);
  if (r.total && is_named(written, r.composition))
    throw InputError(
        fmt::format("line {}: {} stands below the total; its row belongs above it", row.line, written));
  if (r.total) return;
  check_width(r.sheet, r.heading(), cells.size(), row.line);
  try {
    take_amount(r, row.line, cells, written, first);
  } catch (const InputError& e) {
    throw InputError(fmt::format("line {}: {}", row.line, e.what()));
  }
}

void read_rows(const Sheet& sheet, const Heading& h, std::optional<AmountUnit> column,
               Composition& composition) {
  Reading r{sheet, h, composition, unit_column(sheet.rows[h.row]), column, {}, {}, {}};
  for (std::size_t k = h.row + 1; k < sheet.rows.size(); ++k) take_row(r, sheet.rows[k], k == h.row + 1);
  if (!r.empty.empty())
    composition.notes.push_back(fmt::format("no amount of {}: taken as 0", joined(r.empty, ", ")));
  double whole = add_amounts(r.amounts, composition);
  if (!r.total || r.total->second.value < 0.0) return;
  if (const auto& unit = r.total->second.unit ? r.total->second.unit : r.column; unit && unit->scaled)
    whole = unit->whole;
  double sum = 0.0;
  for (const double a : composition.amounts) sum += a;
  check_total(r.total->first, r.total->second.value, sum * whole);
}

}  // namespace

bool is_name_heading(std::string_view cell) {
  constexpr std::string_view headings[] = {"component",  "components", "name",      "names",      "substance",
                                           "species",    "compound",   "compounds", "gas",        "formula",
                                           "cas",        "casnumber",  "parameter", "komponente", "composant",
                                           "componente", "analyte"};
  const std::string key = search_key(cell);
  return std::find(std::begin(headings), std::end(headings), key) != std::end(headings);
}

bool is_total(std::string_view name) {
  constexpr std::string_view totals[] = {"total",  "totals", "sum",  "summe",
                                         "gesamt", "somme",  "suma", "totale"};
  const std::string key = search_key(name.substr(0, name.find_first_of("[(%,")));
  return std::find(std::begin(totals), std::end(totals), key) != std::end(totals);
}

bool read_table(std::string_view text, const ReadOptions& options, Composition& composition) {
  const auto sheet = sheet_of(text);
  if (!sheet) return false;
  if (read_chosen_analysis(*sheet, options.analysis, composition)) return true;
  if (!options.analysis.empty())
    throw InputError("--analysis needs a table with one composition a row, and components in its heading");
  Column kind = Column::none;
  const auto heading = heading_of(*sheet, options, kind);
  if (!heading) return false;
  // Two columns of which some rows have another separator are read line by line.
  const auto alone = [](const Row& row) { return row.cells.size() == 1; };
  if (heading->row == 0 && sheet->rows[0].cells.size() == 2 &&
      std::any_of(sheet->rows.begin(), sheet->rows.end(), alone))
    return false;
  composition.basis = kind == Column::mass ? Basis::mass : Basis::mole;
  composition.basis_given = kind == Column::mass;
  const std::string& title = sheet->rows[heading->row].cells[heading->amount];
  auto unit = unit_within(title);
  if (unit && unit->basis == Basis::mole) composition.basis_given = true;
  if (const auto above = unit_of_titles(*sheet, heading->row); above && (!unit || !unit->basis)) {
    if (!unit || !unit->scaled) unit = above;
    unit->basis = above->basis;
  }
  if (!unit) unit = AmountUnit{};
  if (kind == Column::mass) unit->basis = Basis::mass;
  read_rows(*sheet, *heading, unit, composition);
  return true;
}

}  // namespace kestrune::host
