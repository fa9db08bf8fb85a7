// Tables with one composition a row.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>
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
      const std::string name = composition.named(named_cell(row.cells[c], composition).name).name;
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
  std::vector<std::optional<AmountUnit>> units;  // of the columns
  std::vector<Analysis> list;
  std::vector<std::string> left_out;  // rows that are no composition
};

// What stands beside the components in a heading. A heading that is none of these and holds numbers is a component that
// is not understood.
bool is_beside(const std::string& heading) {
  constexpr std::string_view words[] = {"sample",
                                        "analysis",
                                        "run",
                                        "probe",
                                        "id",
                                        "no",
                                        "nr",
                                        "number",
                                        "name",
                                        "well",
                                        "stream",
                                        "tag",
                                        "point",
                                        "case",
                                        "bottle",
                                        "cylinder",
                                        "date",
                                        "time",
                                        "datetime",
                                        "timestamp",
                                        "location",
                                        "operator",
                                        "comment",
                                        "remark",
                                        "remarks",
                                        "t",
                                        "p",
                                        "pressure",
                                        "temperature",
                                        "mw",
                                        "m",
                                        "gor",
                                        "flow",
                                        "flowrate",
                                        "rate",
                                        "depth",
                                        "sg",
                                        "density",
                                        "wobbe",
                                        "gcv",
                                        "ghv",
                                        "hhv",
                                        "lhv",
                                        "ncv",
                                        "cv",
                                        "z",
                                        "viscosity",
                                        "unit",
                                        "units",
                                        "molarmass",
                                        "molweight",
                                        "molecularweight",
                                        "relativedensity",
                                        "specificgravity",
                                        "wobbeindex",
                                        "heatingvalue",
                                        "calorificvalue",
                                        "compressibility",
                                        "compressibilityfactor",
                                        "dewpoint",
                                        "waterdewpoint",
                                        "hydrocarbondewpoint",
                                        "sampleid",
                                        "sampleno",
                                        "samplenumber",
                                        "samplename",
                                        "samplepoint"};
  const std::string key = search_key(heading.substr(0, heading.find_first_of("[(,")));
  const auto stands = [&](std::string_view word) {  // a longer one with its unit behind it, "pressure bar"
    return key == word || (word.size() >= 4 && key.rfind(word, 0) == 0);
  };
  return is_total(heading) || std::any_of(std::begin(words), std::end(words), stands);
}

// A row of figures on the others, by its name.
bool is_no_composition(const std::string& name) {
  constexpr std::string_view words[] = {"uncertainty",
                                        "limit",
                                        "lod",
                                        "loq",
                                        "detectionlimit",
                                        "std",
                                        "stdev",
                                        "stddev",
                                        "standarddeviation",
                                        "rsd",
                                        "repeatability",
                                        "reproducibility",
                                        "min",
                                        "minimum",
                                        "max",
                                        "maximum",
                                        "range",
                                        "difference",
                                        "molarmass",
                                        "mw",
                                        "method",
                                        "limits"};
  const std::string key = search_key(name.substr(0, name.find_first_of("[(,")));
  return std::find(std::begin(words), std::end(words), key) != std::end(words);
}

bool holds_amounts(const Sheet& sheet, const std::vector<std::size_t>& columns, const Row& row) {
  return std::any_of(columns.begin(), columns.end(), [&](std::size_t c) {
    return c < row.cells.size() && amount_of(row.cells[c], sheet).has_value();
  });
}

bool holds(const std::vector<std::size_t>& columns, std::size_t c) {
  return std::find(columns.begin(), columns.end(), c) != columns.end();
}

// Refuses a column with numbers whose heading is neither a component nor known beside them.
void check_others(const Sheet& sheet, const Analyses& all, const Row& row) {
  const Row& heading = sheet.rows[all.heading];
  check_width(sheet, heading, row.cells.size(), row.line);
  for (std::size_t c = 0; c < row.cells.size(); ++c) {
    const std::string& title = heading.cells[c];
    if (holds(all.columns, c) || is_beside(title) || !amount_of(row.cells[c], sheet)) continue;
    if (c == 0 && (search_key(title).empty() || unit_within(title))) continue;  // numbers the rows
    throw InputError(fmt::format(
        "line {}: the column {} holds numbers (line {}) and is no component{}: correct its name, describe it "
        "as [fraction "
        "...] or [component ...], or leave it out",
        heading.line, title.empty() ? fmt::format("{} without a heading", c + 1) : '"' + title + '"', row.line,
        title.empty() || similar_names(title).empty()
            ? ""
            : fmt::format(" (did you mean {}?)", joined(similar_names(title), ", "))));
  }
}

// The units of the columns: of the heading, of a row below it, of all in the heading's other cells or above.
void read_units(const Sheet& sheet, const Composition& composition, Analyses& all) {
  const Row& heading = sheet.rows[all.heading];
  std::optional<AmountUnit> common = unit_of_titles(sheet, all.heading);
  for (std::size_t c = 0; c < heading.cells.size(); ++c)
    if (!holds(all.columns, c) && !is_beside(heading.cells[c]))
      if (const auto unit = unit_within(heading.cells[c])) common = unit;
  for (const std::size_t c : all.columns) {
    const NameAndUnit named = named_cell(heading.cells[c], composition);
    try {
      named.check();
    } catch (const InputError& e) {
      throw InputError(fmt::format("line {}: {}", heading.line, e.what()));
    }
    all.units.push_back(named.unit);
  }
  // One heading in percent is enough: laboratories name the unit where the first component stands.
  if (!common)
    for (const auto& unit : all.units)
      if (unit && unit->scaled && unit->whole == 100.0) common = unit;
  for (auto& unit : all.units)
    if (!unit) unit = common;
}

// A row below the heading without a number: nothing, or units of the columns.
void read_unit_row(const Row& row, Analyses& all) {
  for (std::size_t k = 0; k < all.columns.size(); ++k) {
    const std::string cell = all.columns[k] < row.cells.size() ? row.cells[all.columns[k]] : "";
    if (is_below_detection(cell) && cell.find('%') == std::string::npos) continue;
    const auto unit = amount_unit(cell);
    if (!unit || !all.list.empty())
      throw InputError(fmt::format("line {}: \"{}\" is neither an amount nor a unit of amounts such as mol%",
                                   row.line, cell));
    all.units[k] = unit;
  }
}

std::optional<Analyses> find_analyses(const Sheet& sheet, const Composition& composition) {
  Analyses all;
  for (; all.heading < sheet.rows.size(); ++all.heading) {
    all.columns = component_columns(sheet.rows[all.heading], composition);
    if (!all.columns.empty()) break;
  }
  const bool any = std::any_of(
      sheet.rows.begin() + static_cast<std::ptrdiff_t>(std::min(all.heading + 1, sheet.rows.size())),
      sheet.rows.end(), [&](const Row& row) { return holds_amounts(sheet, all.columns, row); });
  if (all.columns.empty() || !any) return {};
  read_units(sheet, composition, all);
  for (std::size_t r = all.heading + 1; r < sheet.rows.size(); ++r) {
    const std::vector<std::string>& cells = sheet.rows[r].cells;
    if (!holds_amounts(sheet, all.columns, sheet.rows[r])) {
      read_unit_row(sheet.rows[r], all);
      continue;
    }
    std::string name = std::to_string(all.list.size() + 1);
    for (std::size_t c = 0; c < cells.size(); ++c) {
      if (holds(all.columns, c) || cells[c].empty()) continue;
      name = cells[c];
      break;
    }
    check_others(sheet, all, sheet.rows[r]);
    if (is_no_composition(name))
      all.left_out.push_back(fmt::format("line {}, {}", sheet.rows[r].line, name));
    else
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
  std::vector<Amount> amounts;
  std::vector<std::string> empty;
  for (std::size_t k = 0; k < all.columns.size(); ++k) {
    const std::size_t c = all.columns[k];
    const std::string cell = c < row.cells.size() ? row.cells[c] : "";
    const std::string name = named_cell(heading.cells[c], composition).name;
    if (is_below_detection(cell)) {
      if (cell.empty()) empty.push_back(name);
      if (!cell.empty() && cell != "-")
        composition.notes.push_back(fmt::format("{} \"{}\" taken as 0", name, cell));
      amounts.push_back({heading.line, name, 0.0, all.units[k]});
      continue;
    }
    const auto amount = amount_of(cell, sheet);
    if (!amount) throw InputError(fmt::format("line {}: \"{}\" of {} is not an amount", row.line, cell, name));
    if (amount->value < 0.0)
      throw InputError(fmt::format("line {}: the amount of {} is negative: {}", row.line, name, cell));
    amounts.push_back({heading.line, name, amount->value, amount->unit ? amount->unit : all.units[k]});
  }
  if (!empty.empty())
    composition.notes.push_back(fmt::format("empty cells taken as 0: {}", joined(empty, ", ")));
  if (!all.left_out.empty())
    composition.notes.push_back(
        fmt::format("rows that are no composition were left out: {}", joined(all.left_out, "; ")));
  const double whole = add_amounts(amounts, composition);
  const double sum = std::accumulate(composition.amounts.begin(), composition.amounts.end(), 0.0);
  for (std::size_t c = 0; c < heading.cells.size() && c < row.cells.size(); ++c) {
    if (!is_total(heading.cells[c])) continue;
    const auto total = amount_of(row.cells[c], sheet);
    if (!total) continue;
    // A total without a unit is in the scale of the amounts, percent beside columns of percent.
    const bool percent =
        std::any_of(all.units.begin(), all.units.end(), [](const auto& u) { return u && u->whole == 100.0; });
    const double scale = total->unit ? total->unit->whole : percent ? 100.0 : whole;
    check_total(row.line, total->value, sum * scale);
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
