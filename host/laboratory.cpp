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

void read_rows(const Sheet& sheet, const Heading& h, double whole, Composition& composition) {
  bool below = false;
  double sum = 0.0;
  for (std::size_t r = h.row + 1; r < sheet.rows.size(); ++r) {
    const Row& row = sheet.rows[r];
    std::vector<std::string> cells = row.cells;
    join_name(h, sheet, composition, cells);
    const std::string name = h.name < cells.size() ? cells[h.name] : "";
    const std::string cell = h.amount < cells.size() ? cells[h.amount] : "";
    if (is_total(name)) {
      if (const auto total = amount_of(cell, sheet, whole)) check_total(row, *total, sum);
      below = true;
      continue;
    }
    const bool known = is_named(name, composition);
    if (below && known)
      throw InputError(
          fmt::format("line {}: {} stands below the total; its row belongs above it", row.line, name));
    if (below) continue;
    if (name.empty() && cell.empty()) continue;
    try {
      if (known && is_below_detection(cell)) {
        if (!cell.empty() && cell != "-")
          composition.notes.push_back(fmt::format("{} \"{}\" taken as 0", name, cell));
        continue;
      }
      const auto amount = amount_of(cell, sheet, whole);
      if (!amount && r == h.row + 1 && !known) continue;  // units below the heading
      if (!amount)
        throw InputError(fmt::format("\"{}\" of {} is not an amount: write a number{}", cell,
                                     name.empty() ? "a row without a name" : name,
                                     sheet.separator == ',' ? " with a decimal point" : ""));
      composition.add(without_unit(name), *amount / whole);
      sum += *amount;
    } catch (const InputError& e) {
      throw InputError(fmt::format("line {}: {}", row.line, e.what()));
    }
  }
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
  const std::string key = search_key(without_unit(name));
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
  read_rows(*sheet, *heading, in_percent(title) ? 100.0 : 1.0, composition);
  return true;
}

}  // namespace kestrune::host
