// Tables with one composition a row.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>

#include "error.hpp"
#include "laboratory.hpp"
#include "sheet.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

// Columns of a heading that are components, at least two different ones.
std::vector<std::size_t> component_columns(const Row& row, const Composition& composition) {
  std::vector<std::size_t> columns;
  std::vector<std::string> names;
  for (std::size_t c = 0; c < row.cells.size(); ++c) {
    if (!is_named(row.cells[c], composition)) continue;
    columns.push_back(c);
    try {
      const std::string name = composition.named(without_unit(row.cells[c])).name;
      if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
    } catch (const InputError&) {
      names.push_back(row.cells[c]);  // ambiguous: said when it is read
    }
  }
  return names.size() >= 2 ? columns : std::vector<std::size_t>{};
}

struct Analysis {
  std::string name;
  std::size_t row;
};

struct Analyses {
  std::size_t heading = 0;
  std::vector<std::size_t> columns;
  std::vector<Analysis> list;
};

std::optional<Analyses> find_analyses(const Sheet& sheet, const Composition& composition) {
  Analyses all;
  for (; all.heading < sheet.rows.size(); ++all.heading) {
    all.columns = component_columns(sheet.rows[all.heading], composition);
    if (!all.columns.empty()) break;
  }
  for (std::size_t r = all.heading + 1; r < sheet.rows.size(); ++r) {
    const std::vector<std::string>& cells = sheet.rows[r].cells;
    const bool numbers = std::any_of(all.columns.begin(), all.columns.end(), [&](std::size_t c) {
      return c < cells.size() && amount_of(cells[c], sheet, 1.0).has_value();
    });
    if (!numbers) continue;  // units, or an empty row
    const auto is_column = [&](std::size_t c) {
      return std::find(all.columns.begin(), all.columns.end(), c) != all.columns.end();
    };
    std::string name = std::to_string(all.list.size() + 1);
    for (std::size_t c = 0; c < cells.size(); ++c) {
      if (is_column(c) || cells[c].empty()) continue;
      name = cells[c];
      break;
    }
    all.list.push_back({name, r});
  }
  return all.list.empty() ? std::nullopt : std::optional(all);
}

const Analysis& chosen(const Analyses& all, const std::string& wanted) {
  if (all.list.size() == 1 && wanted.empty()) return all.list.front();
  std::vector<const Analysis*> found;
  for (const Analysis& a : all.list)
    if (!wanted.empty() && lower(a.name) == lower(trimmed(wanted))) found.push_back(&a);
  if (found.size() > 1)
    throw InputError(fmt::format("{} analyses are called \"{}\": take them by number, 1 to {}", found.size(),
                                 wanted, all.list.size()));
  if (found.size() == 1) return *found.front();
  const auto number =
      parse_number(wanted.substr(wanted.rfind('#', 0) == 0 ? 1 : 0));  // "#2" is always a number
  if (number && *number >= 1.0 && *number <= static_cast<double>(all.list.size()) &&
      *number == std::floor(*number))
    return all.list[static_cast<std::size_t>(*number) - 1];
  std::vector<std::string> names;
  for (std::size_t k = 0; k < all.list.size() && k < 12; ++k) names.push_back(all.list[k].name);
  if (all.list.size() > 12) names.emplace_back("...");
  throw InputError(fmt::format(
      "{}: the table holds {} analyses, {}; choose one with --analysis NAME or its number, or --analysis all",
      wanted.empty() ? "which analysis" : fmt::format("no analysis \"{}\"", wanted), all.list.size(),
      joined(names, ", ")));
}

void read_analysis(const Sheet& sheet, const Analyses& all, const std::string& wanted,
                   Composition& composition) {
  const Analysis& analysis = chosen(all, wanted);
  const Row &heading = sheet.rows[all.heading], &row = sheet.rows[analysis.row];
  if (composition.title.empty()) composition.title = analysis.name;
  // One heading in percent is enough: laboratories name the unit where the first component stands.
  const bool percent = std::any_of(all.columns.begin(), all.columns.end(),
                                   [&](std::size_t c) { return in_percent(heading.cells[c]); });
  const double whole = percent ? 100.0 : 1.0;
  for (const std::size_t c : all.columns) {
    const std::string cell = c < row.cells.size() ? row.cells[c] : "";
    const std::string name = without_unit(heading.cells[c]);
    try {
      if (is_below_detection(cell)) {
        if (!cell.empty() && cell != "-")
          composition.notes.push_back(fmt::format("{} \"{}\" taken as 0", name, cell));
        composition.add(name, 0.0);
        continue;
      }
      const auto amount = amount_of(cell, sheet, whole);
      if (!amount) throw InputError(fmt::format("\"{}\" of {} is not an amount", cell, name));
      composition.add(name, *amount / whole);
    } catch (const InputError& e) {
      throw InputError(fmt::format("line {}: {}", row.line, e.what()));
    }
  }
  for (std::size_t c = 0; c < heading.cells.size() && c < row.cells.size(); ++c) {
    if (!is_total(heading.cells[c])) continue;
    double sum = 0.0;
    for (const double a : composition.amounts) sum += a;
    if (const auto total = amount_of(row.cells[c], sheet, whole)) check_total(row, *total, sum * whole);
  }
}

}  // namespace

bool read_chosen_analysis(const Sheet& sheet, const std::string& wanted, Composition& composition) {
  const auto all = find_analyses(sheet, composition);
  if (all) read_analysis(sheet, *all, wanted, composition);
  return all.has_value();
}

std::vector<std::string> analyses_in(std::string_view text, const Composition& definitions) {
  std::vector<std::string> names;
  const auto sheet = sheet_of(text);
  const auto all = sheet ? find_analyses(*sheet, definitions) : std::nullopt;
  if (all)
    for (const Analysis& a : all->list) names.push_back(a.name);
  return names;
}

}  // namespace kestrune::host
