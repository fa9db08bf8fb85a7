// Compositions in lines of text, and the files that hold them.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "amounts.hpp"
#include "composition.hpp"
#include "composition_parts.hpp"
#include "error.hpp"
#include "laboratory.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

// Without the empty fields that a spreadsheet leaves at the end of a line.
std::string_view without_separators(std::string_view text) {
  text = trimmed(text);
  while (!text.empty() && (text.back() == ',' || text.back() == ';')) {
    text = trimmed(text.substr(0, text.size() - 1));
  }
  return text;
}

// A first line without an amount is a heading, or a component that would be dropped in silence.
bool is_heading(std::string_view name, std::string_view amount) {
  const auto digit = [](char c) { return c >= '0' && c <= '9'; };
  if (std::any_of(amount.begin(), amount.end(), digit)) return false;
  if (is_name_heading(name)) return true;
  if (std::any_of(name.begin(), name.end(), digit)) return false;
  return !names_component(name) && similar_names(name).empty();
}

// "component,mass%" says what the amounts are; the heading of an amount in moles may say it or not.
void read_heading(std::string_view amount, Composition& composition) {
  const std::string key = search_key(amount);
  constexpr std::string_view units[] = {"w", "g", "kg", "t", "lb", "lbs", "ppmw", "kgh", "kgs"};
  const bool mass = key.find("mass") != std::string::npos || key.rfind("wt", 0) == 0 ||
                    key.find("weight") != std::string::npos ||
                    std::find(std::begin(units), std::end(units), key) != std::end(units);
  if (!mass) return;
  if (key.find("mol") != std::string::npos)
    throw InputError(
        fmt::format("the heading \"{}\" names moles and masses: write one of them, mole or mass", amount));
  composition.basis = Basis::mass;
  composition.basis_given = true;
}

// The line without its comment; blank lines keep the numbers of the others.
std::string_view without_comment(std::string_view raw) {
  return trimmed(raw.substr(0, raw.find('#')));
}

// Takes the sections [component NAME] and [fraction NAME] out of a text; what is left is the mixture.
std::string read_sections(std::string_view text, Composition& composition) {
  std::string rest;
  std::optional<Definition> open;
  int number = 0, began = 0;
  const auto at_line = [&](int line, auto&& body) {
    try {
      body();
    } catch (const InputError& e) {
      throw InputError(fmt::format("line {}: {}", line, e.what()));
    }
  };
  const auto close = [&] {
    if (open) at_line(began, [&] { composition.define(std::move(*open)); });
    open.reset();
  };
  for (const std::string& raw : split(text, '\n')) {
    ++number;
    const std::string_view line = without_comment(raw);
    if (line.size() > 2 && line.front() == '[' && line.back() == ']') {
      close();
      const std::string_view inner = trimmed(line.substr(1, line.size() - 2));
      const std::size_t blank = std::min(inner.find(' '), inner.size());
      const std::string kind = lower(inner.substr(0, blank));
      if (kind != "mixture" && kind != "component" && kind != "fraction")
        throw InputError(fmt::format(
            "line {}: {} is not understood: use [component NAME], [fraction NAME] or [mixture]", number, line));
      if (kind != "mixture") {
        open.emplace();
        open->fraction = kind == "fraction";
        open->name = trimmed(inner.substr(blank));
        began = number;
      }
    } else if (open && !line.empty()) {
      const std::size_t equals = line.find('=');
      at_line(number, [&] {
        if (equals == std::string_view::npos)
          throw InputError(
              fmt::format("\"{}\" is not of the form key = value; [mixture] begins the amounts", line));
        open->set(line.substr(0, equals), line.substr(equals + 1));
      });
    } else if (!open) {
      rest += raw;
    }
    rest += '\n';
  }
  close();
  return rest;
}

// "methane 0,85": a decimal comma behind a blank, where a comma cannot part a name from its amount.
std::optional<double> decimal_comma(std::string_view line, std::size_t comma, std::size_t& cut) {
  const std::size_t blank = line.find_last_of(" \t");
  if (line[comma] != ',' || blank == std::string_view::npos || blank > comma) return {};
  std::string number(line.substr(blank + 1));
  number[comma - blank - 1] = '.';
  if (names_component(without_quotes(line.substr(0, comma)))) return {};
  const auto value = parse_number(number);
  if (value) cut = blank;
  return value;
}

}  // namespace

void read_lines(std::string_view all, Composition& composition, const ReadOptions& options) {
  const std::string text = read_sections(all, composition);
  if (read_table(text, options, composition)) return;
  if (!options.analysis.empty())
    throw InputError("--analysis needs a table with one composition a row and components in its heading");
  if (!options.column.empty())
    throw InputError("--column needs a table with a heading row, such as component;mol%");
  bool first = true;
  int number = 0;
  double sum = 0.0;
  std::vector<Amount> amounts;
  for (const std::string& raw : split(text, '\n')) {
    ++number;
    const std::string_view line = without_separators(without_comment(raw));
    if (line.empty()) continue;
    const bool heading_allowed = first;
    first = false;
    const bool percent = line.back() == '%';
    const std::string_view before = percent ? trimmed(line.substr(0, line.size() - 1)) : line;
    std::size_t cut = before.find_last_of(",;\t ");
    auto amount = cut == std::string_view::npos ? std::nullopt : parse_number(before.substr(cut + 1));
    if (amount)
      if (const auto value = decimal_comma(before, cut, cut)) amount = value;
    if (!amount) {
      std::size_t end = line.find_first_of(",;\t");
      if (end == std::string_view::npos) end = line.find_first_of(' ');
      const std::string_view name = without_quotes(line.substr(0, end));
      const std::string_view rest =
          end == std::string_view::npos ? std::string_view{} : without_quotes(line.substr(end + 1));
      if (heading_allowed && is_heading(name, rest)) {
        amount_unit(rest);  // refuses volumes of liquid
        read_heading(rest, composition);
        continue;
      }
      throw InputError(fmt::format(
          "line {}: \"{}\" is not a name followed by an amount{}: write for instance methane, 0.9", number,
          line,
          heading_allowed ? ", nor a heading such as component,amount (title rows stand above a heading)"
                          : ""));
    }
    const std::string_view name = without_quotes(without_separators(before.substr(0, cut)));
    const double value = percent ? *amount / 100.0 : *amount;
    if (is_total(name)) {
      if (std::abs(value - sum) > 2e-3 * std::abs(value))
        throw InputError(fmt::format("line {}: the total says {:.10g}, and the amounts above it sum to {:.10g}",
                                     number, value, sum));
      continue;
    }
    amounts.push_back({number, std::string(name), *amount,
                       percent ? std::optional(AmountUnit{{}, 100.0, true}) : std::nullopt});
    sum += value;
  }
  add_amounts(amounts, composition);
}

void read_text(std::string_view text, Composition& composition, const ReadOptions& options) {
  const std::string_view begin = trimmed(text).substr(0, 1);
  if (begin == "{")
    read_json(text, composition);
  else if (begin == "[" && trimmed(text).find_first_of("{\"") == trimmed(text).find_first_not_of("[ \t\r\n"))
    throw InputError("a mixture in JSON must be an object: {\"components\": [ ... ]}");
  else
    read_lines(text, composition, options);
}

namespace {

// UTF-16 with its byte order mark, as spreadsheets write "Unicode text", in UTF-8.
std::string from_utf16(std::string_view text) {
  const bool big = text[0] == '\xFE';
  std::string result;
  for (std::size_t i = 2; i + 1 < text.size(); i += 2) {
    const auto high = static_cast<unsigned char>(text[i + (big ? 0 : 1)]);
    const auto low = static_cast<unsigned char>(text[i + (big ? 1 : 0)]);
    const unsigned code = high * 256u + low;
    if (code < 0x80) {
      result += static_cast<char>(code);
    } else if (code < 0x800) {
      result += static_cast<char>(0xC0 | (code >> 6));
      result += static_cast<char>(0x80 | (code & 0x3F));
    } else {
      result += static_cast<char>(0xE0 | (code >> 12));
      result += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
      result += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  return result;
}

}  // namespace

std::string text_of_file(const std::string& path) {
  std::string text;
  if (path == "-") {
    text.assign(std::istreambuf_iterator<char>(std::cin), {});
  } else {
    if (std::error_code ignored; std::filesystem::is_directory(path, ignored))
      throw InputError(fmt::format("{} is a folder, not a mixture file", path));
    std::ifstream file(path, std::ios::binary);
    if (!file) throw InputError(fmt::format("cannot open the mixture file {}", path));
    text.assign(std::istreambuf_iterator<char>(file), {});
  }
  const std::string_view mark = std::string_view(text).substr(0, 2);
  if (mark == "\xFF\xFE" || mark == "\xFE\xFF") text = from_utf16(text);
  if (text.compare(0, 3, "\xEF\xBB\xBF") == 0) text.erase(0, 3);
  // Excel's own line that names the separator says nothing that is not seen.
  if (lower(text.substr(0, 4)) == "sep=") text.replace(0, text.find('\n'), "");
  if (const std::size_t zero = text.find('\0'); zero != std::string::npos)
    throw InputError(
        fmt::format("{}: line {} holds a byte 0: not a text file, or UTF-16 without its mark", path,
                    1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(zero), '\n')));
  std::replace(text.begin(), text.end(), '\r', text.find('\n') == std::string::npos ? '\n' : ' ');
  return text;
}

std::vector<std::string> analyses_of_file(const std::string& path) {
  Composition definitions;
  const std::string text = text_of_file(path);
  return analyses_in(read_sections(text, definitions), definitions);
}

void read_composition_file(const std::string& path, Composition& composition, const ReadOptions& options) {
  try {
    read_text(text_of_file(path), composition, options);
  } catch (const InputError& e) {
    if (std::string_view(e.what()).find(path) != std::string_view::npos) throw;
    throw InputError(fmt::format("{}: {}", path, e.what()));
  }
  if (composition.components.empty()) throw InputError(fmt::format("{}: no component in it", path));
}

}  // namespace kestrune::host
