#include "composition.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "error.hpp"
#include "laboratory.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

using nlohmann::ordered_json;

double parse_amount(std::string_view text, std::string_view where) {
  std::string_view digits = trimmed(text);
  const bool percent = !digits.empty() && digits.back() == '%';
  if (percent) digits.remove_suffix(1);
  const auto value = parse_number(digits);
  if (!value) throw InputError(fmt::format("\"{}\" is not an amount ({})", trimmed(text), where));
  return percent ? *value / 100.0 : *value;
}

void check_amount(std::string_view name, double amount) {
  if (amount >= 0.0) return;
  throw InputError(fmt::format("the amount of {} is negative: {}", name, amount));
}

std::string_view without_quotes(std::string_view text) {
  text = trimmed(text);
  if (text.size() >= 2 && text.front() == '"' && text.back() == '"') text = text.substr(1, text.size() - 2);
  return text;
}

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

double json_amount(const std::string& name, const ordered_json& value) {
  if (value.is_number()) return value.get<double>();
  if (value.is_string()) return parse_amount(value.get<std::string>(), "amount of " + name);
  for (const std::string_view key : {"components", "name", "basis"})
    if (lower(name) == key && name != key)
      throw InputError(fmt::format("\"{}\" is not understood: write \"{}\"", name, key));
  throw InputError(fmt::format("the amount of {} must be a number", name));
}

// The amount of an entry of a component list, whatever of the usual words it goes by. Nothing else is in it.
double list_amount(const std::string& name, const ordered_json& entry) {
  std::string found;
  double amount = 0.0;
  for (const auto& [key, value] : entry.items()) {
    if (key == "name") continue;
    if (key != "amount" && key != "fraction" && key != "z" && key != "percent")
      throw InputError(fmt::format("\"{}\" of {} is not understood: an entry has name and amount", key, name));
    if (!found.empty())
      throw InputError(fmt::format("{} has two amounts, \"{}\" and \"{}\"", name, found, key));
    found = key;
    amount = json_amount(name, value) * (key == "percent" ? 0.01 : 1.0);
  }
  if (found.empty()) throw InputError(fmt::format("the list entry of {} has no \"amount\"", name));
  return amount;
}

// Objects of JSON whose keys are all different. A parser keeps one of two, and the other goes unread.
ordered_json parse_json(std::string_view text) {
  std::vector<std::vector<std::string>> open;
  return ordered_json::parse(text, [&open](int, ordered_json::parse_event_t event, ordered_json& value) {
    if (event == ordered_json::parse_event_t::object_start) open.emplace_back();
    if (event == ordered_json::parse_event_t::object_end) open.pop_back();
    if (event == ordered_json::parse_event_t::key) {
      const std::string key = value;
      std::vector<std::string>& keys = open.back();
      if (std::find(keys.begin(), keys.end(), key) != keys.end())
        throw InputError(fmt::format("\"{}\" is given twice", key));
      keys.push_back(key);
    }
    return true;
  });
}

// {"cut": {"M": 142, "Tc": "617.7 K", "groups": {"CH3": 2, "CH2": 8}}}
std::string json_text(const ordered_json& value) {
  if (value.is_string()) return value.get<std::string>();
  if (value.is_number()) return fmt::format("{}", value.get<double>());
  std::vector<std::string> pieces;
  if (value.is_array())
    for (const ordered_json& entry : value) pieces.push_back(json_text(entry));
  else if (value.is_object())
    for (const auto& [key, entry] : value.items()) pieces.push_back(key + ":" + json_text(entry));
  return joined(pieces, ", ");
}

void read_json_definitions(const ordered_json& all, bool fraction, Composition& composition) {
  const std::string_view what = fraction ? "fractions" : "own_components";
  if (!all.is_object()) throw InputError(fmt::format("\"{}\" must be an object of names", what));
  for (const auto& [name, entry] : all.items()) {
    Definition d;
    d.fraction = fraction;
    d.name = name;
    if (!entry.is_object()) throw InputError(fmt::format("{} in \"{}\" must be an object such as {{\"M\": 142}}", name, what));
    for (const auto& [key, value] : entry.items()) {
      try {
        d.set(key, json_text(value));
      } catch (const InputError& e) {
        throw InputError(fmt::format("{}: {}", name, e.what()));
      }
    }
    composition.define(std::move(d));
  }
}

void read_json_components(const ordered_json& components, Composition& composition) {
  if (components.is_object()) {
    for (const auto& [name, value] : components.items()) composition.add(name, json_amount(name, value));
    return;
  }
  if (!components.is_array()) throw InputError("\"components\" must be an object or a list");
  for (const ordered_json& entry : components) {
    if (!entry.is_object() || !entry.contains("name") || !entry["name"].is_string()) {
      throw InputError("every entry of \"components\" must have a \"name\" and an \"amount\"");
    }
    const std::string name = entry["name"];
    composition.add(name, list_amount(name, entry));
  }
}

}  // namespace

Basis basis_by_name(std::string_view name) {
  const std::string wanted = lower(trimmed(name));
  if (wanted == "mole" || wanted == "molar") return Basis::mole;
  if (wanted == "mass" || wanted == "weight") return Basis::mass;
  throw InputError(fmt::format("unknown basis \"{}\": use mole or mass", name));
}

void Composition::define(Definition definition) {
  definition.check();
  for (const Definition& d : definitions)
    if (search_key(d.name) == search_key(definition.name))
      throw InputError(fmt::format("{} is defined twice", definition.name));
  definitions.push_back(std::move(definition));
}

int Composition::definition_of(const Component& component) const {
  if (component.number > 0) return -1;
  for (std::size_t k = 0; k < definitions.size(); ++k)
    if (definitions[k].name == component.name) return static_cast<int>(k);
  return -1;
}

Component Composition::named(std::string_view name) const {
  const auto same = [&](const Definition& d) { return lower(trimmed(d.name)) == lower(trimmed(name)); };
  const auto found = std::find_if(definitions.begin(), definitions.end(), same);
  if (found == definitions.end()) return find_component(name);
  Component component;
  component.id = component.name = found->name;
  return component;
}

void Composition::set(std::string_view name, double amount) {
  check_amount(name, amount);
  const Component component = named(name);
  for (std::size_t i = 0; i < components.size(); ++i) {
    if (components[i].number == component.number && components[i].name == component.name) {
      amounts[i] = amount;
      return;
    }
  }
  components.push_back(component);
  amounts.push_back(amount);
}

void Composition::add(std::string_view name, double amount) {
  const std::size_t before = components.size();
  set(name, amount);
  if (components.size() == before) {
    throw InputError(fmt::format("{} is given twice (as \"{}\")", named(name).name, trimmed(name)));
  }
}

void read_inline(std::string_view text, Composition& composition, bool replace) {
  const std::string where = "write name=amount, name=amount, for instance methane=0.9,ethane=0.1";
  std::string entry;
  for (const std::string& piece : split(text, ',')) {
    entry += entry.empty() ? piece : "," + piece;  // names may contain commas
    const std::size_t equals = entry.rfind('=');
    if (equals == std::string::npos) continue;
    const std::string_view name = without_quotes(std::string_view(entry).substr(0, equals));
    const double amount = parse_amount(std::string_view(entry).substr(equals + 1), where);
    replace ? composition.set(name, amount) : composition.add(name, amount);
    entry.clear();
  }
  if (!entry.empty()) throw InputError(fmt::format("\"{}\" has no amount: {}", entry, where));
}

namespace {

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
        throw InputError(fmt::format("line {}: {} is not understood: use [component NAME], [fraction NAME] or [mixture]", number, line));
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
          throw InputError(fmt::format("\"{}\" is not of the form key = value; [mixture] begins the amounts", line));
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
  if (!options.analysis.empty()) throw InputError("--analysis needs a table with one composition a row and components in its heading");
  if (!options.column.empty()) throw InputError("--column needs a table with a heading row, such as component;mol%");
  bool first = true;
  int number = 0;
  double sum = 0.0;
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
        read_heading(rest, composition);
        continue;
      }
      throw InputError(
          fmt::format("line {}: \"{}\" is not a name followed by an amount{}: write for instance methane, 0.9", number, line,
                      heading_allowed ? ", nor a heading such as component,amount (title rows stand above a heading)" : ""));
    }
    const std::string_view name = without_quotes(without_separators(before.substr(0, cut)));
    const double value = percent ? *amount / 100.0 : *amount;
    if (is_total(name)) {
      if (std::abs(value - sum) > 2e-3 * std::abs(value))
        throw InputError(fmt::format("line {}: the total says {:.10g}, and the amounts above it sum to {:.10g}", number, value, sum));
      continue;
    }
    try {
      composition.add(name, value);
    } catch (const InputError& e) {
      throw InputError(fmt::format("line {}: {}", number, e.what()));
    }
    sum += value;
  }
}

void read_json(std::string_view text, Composition& composition) {
  ordered_json root;
  try {
    root = parse_json(text);
  } catch (const ordered_json::exception& e) {
    throw InputError(fmt::format("not valid JSON: {}", e.what()));
  }
  if (!root.is_object()) throw InputError("a mixture in JSON must be an object: {\"components\": [ ... ]}");
  if (!root.contains("components")) return read_json_components(root, composition);
  for (const bool fraction : {false, true})  // before the components, which name them
    if (const char* key = fraction ? "fractions" : "own_components"; root.contains(key))
      read_json_definitions(root[key], fraction, composition);
  for (const auto& [key, value] : root.items()) {
    if (key == "own_components" || key == "fractions") continue;
    if (key == "components") {
      read_json_components(value, composition);
    } else if (key == "name" && value.is_string()) {
      composition.title = value;
    } else if (key == "basis" && value.is_string()) {
      composition.basis = basis_by_name(value.get<std::string>());
      composition.basis_given = true;
    } else {
      throw InputError(fmt::format("\"{}\" is not understood: a mixture has name, basis, own_components, fractions and components", key));
    }
  }
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
