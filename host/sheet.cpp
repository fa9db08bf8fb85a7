#include "sheet.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

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

}  // namespace

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
    sheet.decimal_comma =
        sheet.decimal_comma ||
        (sheet.separator != ',' && std::any_of(row.cells.begin(), row.cells.end(), is_decimal_comma));
    sheet.rows.push_back(std::move(row));
  }
  return sheet;
}

NameAndUnit named_cell(std::string_view cell, const Composition& composition) {
  for (const Definition& d : composition.definitions)
    if (lower(d.name) == lower(trimmed(cell))) return {d.name, {}, ""};
  return name_and_unit(cell);
}

bool is_named(std::string_view cell, const Composition& composition) {
  const std::string name = named_cell(cell, composition).name;
  if (search_key(name).empty() || parse_number(name)) return false;
  for (const Definition& d : composition.definitions)
    if (lower(d.name) == lower(name)) return true;
  return names_component(name);
}

bool is_below_detection(std::string_view cell) {
  const std::string key = search_key(cell);
  return key.empty() || key == "nd" || key == "na" || key == "nil" || key == "bdl" || key == "trace" ||
         key == "tr" || trimmed(cell).front() == '<';
}

std::optional<CellAmount> amount_of(std::string_view cell, const Sheet& sheet) {
  std::string text(trimmed(cell));
  if (sheet.decimal_comma) std::replace(text.begin(), text.end(), ',', '.');
  const std::size_t length = number_length(text);
  const auto value = parse_number(std::string_view(text).substr(0, length));
  const std::string_view unit = trimmed(std::string_view(text).substr(length));
  if (!value) return {};
  if (unit.empty()) return CellAmount{*value, {}};
  const auto found = amount_unit(unit);
  return found && found->scaled ? std::optional(CellAmount{*value, found}) : std::nullopt;
}

std::optional<AmountUnit> unit_of_titles(const Sheet& sheet, std::size_t heading) {
  std::optional<AmountUnit> found;
  for (std::size_t r = 0; r < heading; ++r)
    for (const std::string& cell : sheet.rows[r].cells)
      if (const auto unit = unit_within(cell)) found = unit;
  return found;
}

void check_width(const Sheet& sheet, const Row& heading, std::size_t cells, int line) {
  if (cells <= heading.cells.size()) return;
  throw InputError(fmt::format("line {}: {} cells under a heading of {}{}", line, cells, heading.cells.size(),
                               sheet.separator == ','
                                   ? ": beside commas between the cells a decimal comma cannot be read, part "
                                     "them by semicolons or put names with commas in quotes"
                                   : ": a separator too many, or a heading that is missing"));
}

void check_total(int line, double total, double sum) {
  constexpr double kRounding = 2e-3;  // of the total: amounts are rounded to one or two decimals of percent
  if (std::abs(total - sum) <= kRounding * std::abs(total)) return;
  throw InputError(fmt::format(
      "line {}: the total says {:.10g}, and the amounts above it sum to {:.10g}: a row is missing, or wrong",
      line, total, sum));
}

}  // namespace kestrune::host
