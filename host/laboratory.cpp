#include "laboratory.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>

#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

struct Row {
  int line;
  std::vector<std::string> cells;
};

struct Sheet {
  char separator;
  bool decimal_comma;
  std::vector<Row> rows;
};

// Cells between separators; a separator between double quotes is part of its cell.
std::vector<std::string> cells_of(std::string_view line, char separator) {
  std::vector<std::string> cells(1);
  bool quoted = false;
  for (const char c : line) {
    if (c == '"')
      quoted = !quoted;
    else if (c == separator && !quoted)
      cells.emplace_back();
    else
      cells.back() += c;
  }
  for (std::string& cell : cells) cell = std::string(trimmed(cell));
  while (!cells.empty() && cells.back().empty()) cells.pop_back();
  return cells;
}

bool is_decimal_comma(std::string_view cell) {
  const std::size_t comma = cell.find(',');
  if (comma == std::string_view::npos || comma == 0 || comma + 1 == cell.size()) return false;
  std::string plain(cell);
  plain[comma] = '.';
  while (!plain.empty() && (plain.back() == '%' || plain.back() == ' ')) plain.pop_back();
  return number_length(plain) == plain.size() && cell.find('.') == std::string_view::npos;
}

std::optional<Sheet> sheet_of(std::string_view text) {
  Sheet sheet{',', false, {}};
  for (const char separator : {'\t', ';'})
    if (text.find(separator) != std::string_view::npos) sheet.separator = separator;
  if (text.find(sheet.separator) == std::string_view::npos) return {};
  int number = 0;
  for (const std::string& raw : split(text, '\n')) {
    ++number;
    const std::string_view line = trimmed(std::string_view(raw).substr(0, raw.find('#')));
    if (line.empty()) continue;
    // Leading separators hold a place, and trimming takes tabs away.
    Row row{number, cells_of(sheet.separator == '\t' ? std::string_view(raw) : line, sheet.separator)};
    if (row.cells.empty()) continue;
    sheet.decimal_comma = sheet.decimal_comma || (sheet.separator != ',' && std::any_of(row.cells.begin(), row.cells.end(), is_decimal_comma));
    sheet.rows.push_back(std::move(row));
  }
  return sheet;
}

// "CH4 [mol%]", "methane (mol %)", "C1 mol%": the name, without the unit behind it.
std::string without_unit(std::string_view cell) {
  std::string name(trimmed(cell.substr(0, std::min(cell.find('['), cell.find(" (")))));
  for (const std::string_view unit : {"mol%", "mole%", "mol %", "mole %", "mol.%", "vol%", "vol.%", "vol %", "%", "mol-%"}) {
    const std::string small = lower(name);
    if (small.size() > unit.size() && small.substr(small.size() - unit.size()) == unit)
      return std::string(trimmed(std::string_view(name).substr(0, name.size() - unit.size())));
  }
  return name;
}

bool is_named(std::string_view cell, const Composition& composition) {
  const std::string name = without_unit(cell);
  if (search_key(name).empty() || parse_number(name)) return false;
  for (const Definition& d : composition.definitions)
    if (lower(d.name) == lower(name)) return true;
  return names_component(name);
}

// A cell without an amount: nothing, a dash, "n.d.", "< 0.01".
bool is_below_detection(std::string_view cell) {
  const std::string key = search_key(cell);
  return key.empty() || key == "nd" || key == "na" || key == "nil" || key == "bdl" || key == "trace" || key == "tr" ||
         trimmed(cell).front() == '<';
}

// The amount of a cell: percent sign and ppm count in fractions of 1, or of 100 in a column of percent.
std::optional<double> amount_of(std::string_view cell, const Sheet& sheet, double whole) {
  std::string text(trimmed(cell));
  if (sheet.decimal_comma) std::replace(text.begin(), text.end(), ',', '.');
  const std::size_t length = number_length(text);
  const auto value = parse_number(std::string_view(text).substr(0, length));
  const std::string unit = lower(trimmed(std::string_view(text).substr(length)));
  if (!value) return {};
  if (unit.empty()) return value;
  if (unit == "%" || unit == "mol%" || unit == "mol %") return *value * whole / 100.0;
  if (unit == "ppm" || unit == "ppmv") return *value * whole / 1e6;
  return {};
}

enum class Column { none, mole, mass };

// What a heading says that its column holds.
Column column_of(std::string_view cell) {
  const std::string key = search_key(cell);
  const auto has = [&](std::string_view word) { return key.find(word) != std::string::npos; };
  constexpr std::string_view masses[] = {"w", "g", "kg", "t", "lb", "lbs", "ppmw", "kgh", "kgs"};
  constexpr std::string_view moles[] = {"x", "y", "z", "amount", "amounts", "fraction", "percent", "content",
                                        "concentration", "result", "value", "ppm", "ppmv", "kmol", "n"};
  if (has("molarmass") || has("molecularweight") || has("molweight") || has("uncertainty") || has("detection") ||
      has("limit") || has("method") || has("repeat"))
    return Column::none;
  if (has("mass") || has("weight") || key.rfind("wt", 0) == 0 ||
      std::find(std::begin(masses), std::end(masses), key) != std::end(masses))
    return has("mol") ? Column::none : Column::mass;
  if (has("mol") || has("vol") || std::find(std::begin(moles), std::end(moles), key) != std::end(moles) ||
      (key.empty() && cell.find('%') != std::string_view::npos))
    return Column::mole;
  return Column::none;
}

bool in_percent(std::string_view heading) {
  return heading.find('%') != std::string_view::npos || search_key(heading).find("percent") != std::string::npos;
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
    throw InputError(fmt::format("line {}: no column is called \"{}\"; there are {}", row.line, options.column, joined(row.cells, ", ")));
  const bool mass = options.basis == Basis::mass ? !masses.empty() : moles.empty();
  const std::vector<std::size_t>& found = mass ? masses : moles;
  kind = mass ? Column::mass : Column::mole;
  if (found.size() > 1)
    throw InputError(fmt::format("line {}: the columns \"{}\" and \"{}\" both hold amounts: choose one with --column", row.line,
                                 row.cells[found[0]], row.cells[found[1]]));
  return found.empty() ? row.cells.size() : found[0];
}

std::optional<Heading> heading_of(const Sheet& sheet, const ReadOptions& options, Column& kind) {
  for (std::size_t r = 0; r < sheet.rows.size(); ++r) {
    const Row& row = sheet.rows[r];
    const auto name = std::find_if(row.cells.begin(), row.cells.end(), [](const std::string& c) { return is_name_heading(c); });
    if (name == row.cells.end() || row.cells.size() < 2) continue;
    const auto at = static_cast<std::size_t>(name - row.cells.begin());
    const std::size_t amount = chosen_column(row, at, options, kind);
    if (amount < row.cells.size()) return Heading{r, at, amount};
  }
  return {};
}

// A name with commas that no quotes hold together takes several cells of a table with commas.
void join_name(const Heading& h, const Sheet& sheet, const Composition& composition, std::vector<std::string>& cells) {
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

void check_total(const Row& row, double total, double sum) {
  constexpr double kRounding = 2e-3;  // of the total: amounts are rounded to one or two decimals of percent
  if (std::abs(total - sum) <= kRounding * std::abs(total)) return;
  throw InputError(fmt::format("line {}: the total says {:.10g}, and the amounts above it sum to {:.10g}: a row is missing, or wrong",
                               row.line, total, sum));
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
      throw InputError(fmt::format("line {}: {} stands below the total; its row belongs above it", row.line, name));
    if (below) continue;
    if (name.empty() && cell.empty()) continue;
    try {
      if (known && is_below_detection(cell)) {
        if (!cell.empty() && cell != "-") composition.notes.push_back(fmt::format("{} \"{}\" taken as 0", name, cell));
        continue;
      }
      const auto amount = amount_of(cell, sheet, whole);
      if (!amount && r == h.row + 1 && !known) continue;  // units below the heading
      if (!amount)
        throw InputError(fmt::format("\"{}\" of {} is not an amount: write a number{}", cell, name.empty() ? "a row without a name" : name,
                                     sheet.separator == ',' ? " with a decimal point" : ""));
      composition.add(without_unit(name), *amount / whole);
      sum += *amount;
    } catch (const InputError& e) {
      throw InputError(fmt::format("line {}: {}", row.line, e.what()));
    }
  }
}

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
    const auto is_column = [&](std::size_t c) { return std::find(all.columns.begin(), all.columns.end(), c) != all.columns.end(); };
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
    throw InputError(fmt::format("{} analyses are called \"{}\": take them by number, 1 to {}", found.size(), wanted, all.list.size()));
  if (found.size() == 1) return *found.front();
  const auto number = parse_number(wanted.substr(wanted.rfind('#', 0) == 0 ? 1 : 0));  // "#2" is always a number
  if (number && *number >= 1.0 && *number <= static_cast<double>(all.list.size()) && *number == std::floor(*number))
    return all.list[static_cast<std::size_t>(*number) - 1];
  std::vector<std::string> names;
  for (std::size_t k = 0; k < all.list.size() && k < 12; ++k) names.push_back(all.list[k].name);
  if (all.list.size() > 12) names.emplace_back("...");
  throw InputError(fmt::format("{}: the table holds {} analyses, {}; choose one with --analysis NAME or its number, or --analysis all",
                               wanted.empty() ? "which analysis" : fmt::format("no analysis \"{}\"", wanted), all.list.size(),
                               joined(names, ", ")));
}

void read_analysis(const Sheet& sheet, const Analyses& all, const std::string& wanted, Composition& composition) {
  const Analysis& analysis = chosen(all, wanted);
  const Row &heading = sheet.rows[all.heading], &row = sheet.rows[analysis.row];
  if (composition.title.empty()) composition.title = analysis.name;
  // One heading in percent is enough: laboratories name the unit where the first component stands.
  const bool percent = std::any_of(all.columns.begin(), all.columns.end(), [&](std::size_t c) { return in_percent(heading.cells[c]); });
  const double whole = percent ? 100.0 : 1.0;
  for (const std::size_t c : all.columns) {
    const std::string cell = c < row.cells.size() ? row.cells[c] : "";
    const std::string name = without_unit(heading.cells[c]);
    try {
      if (is_below_detection(cell)) {
        if (!cell.empty() && cell != "-") composition.notes.push_back(fmt::format("{} \"{}\" taken as 0", name, cell));
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

bool is_name_heading(std::string_view cell) {
  constexpr std::string_view headings[] = {"component", "components", "name",  "names",     "substance", "species", "compound",
                                           "compounds", "gas",        "formula", "cas",     "casnumber", "parameter", "komponente",
                                           "composant", "componente", "analyte"};
  const std::string key = search_key(cell);
  return std::find(std::begin(headings), std::end(headings), key) != std::end(headings);
}

bool is_total(std::string_view name) {
  constexpr std::string_view totals[] = {"total", "totals", "sum", "summe", "gesamt", "somme", "suma", "totale"};
  const std::string key = search_key(without_unit(name));
  return std::find(std::begin(totals), std::end(totals), key) != std::end(totals);
}

bool read_table(std::string_view text, const ReadOptions& options, Composition& composition) {
  const auto sheet = sheet_of(text);
  if (!sheet) return false;
  if (const auto all = find_analyses(*sheet, composition)) {
    read_analysis(*sheet, *all, options.analysis, composition);
    return true;
  }
  Column kind = Column::none;
  const auto heading = heading_of(*sheet, options, kind);
  if (!heading) return false;
  // Two columns of which some rows have another separator are read line by line.
  const auto alone = [](const Row& row) { return row.cells.size() == 1; };
  if (heading->row == 0 && sheet->rows[0].cells.size() == 2 && std::any_of(sheet->rows.begin(), sheet->rows.end(), alone))
    return false;
  composition.basis = kind == Column::mass ? Basis::mass : Basis::mole;
  composition.basis_given = kind == Column::mass;
  const std::string& title = sheet->rows[heading->row].cells[heading->amount];
  read_rows(*sheet, *heading, in_percent(title) ? 100.0 : 1.0, composition);
  return true;
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
