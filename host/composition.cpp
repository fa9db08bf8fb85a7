#include "composition.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "error.hpp"
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

// What the first column of a heading is called.
constexpr std::string_view kHeadings[] = {"component", "components", "name",     "names",
                                          "substance", "species",    "compound", "compounds",
                                          "gas",       "formula",    "cas",      "casnumber"};

// A first line without an amount is a heading, or a component that would be dropped in silence.
bool is_heading(std::string_view name, std::string_view amount) {
  const auto digit = [](char c) { return c >= '0' && c <= '9'; };
  const std::string key = search_key(name);
  if (std::any_of(amount.begin(), amount.end(), digit)) return false;
  if (std::find(std::begin(kHeadings), std::end(kHeadings), key) != std::end(kHeadings)) return true;
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

void Composition::set(std::string_view name, double amount) {
  check_amount(name, amount);
  const Component& component = find_component(name);
  for (std::size_t i = 0; i < components.size(); ++i) {
    if (components[i].number == component.number) {
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
    throw InputError(fmt::format("{} is given twice (as \"{}\")", find_component(name).name, trimmed(name)));
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

void read_lines(std::string_view text, Composition& composition) {
  bool first = true;
  int number = 0;
  for (const std::string& raw : split(text, '\n')) {
    ++number;
    std::string_view line = trimmed(std::string_view(raw).substr(0, raw.find('#')));
    line = without_separators(line);
    if (line.empty()) continue;
    const bool heading_allowed = first;
    first = false;
    const bool percent = line.back() == '%';
    const std::string_view before = percent ? trimmed(line.substr(0, line.size() - 1)) : line;
    const std::size_t cut = before.find_last_of(",;\t ");
    const auto amount = cut == std::string_view::npos ? std::nullopt : parse_number(before.substr(cut + 1));
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
          fmt::format("line {}: \"{}\" is not a name followed by an amount{}: write for instance methane, 0.9",
                      number, line, heading_allowed ? ", nor a heading such as component,amount" : ""));
    }
    composition.add(without_quotes(without_separators(before.substr(0, cut))),
                    percent ? *amount / 100.0 : *amount);
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
  for (const auto& [key, value] : root.items()) {
    if (key == "components") {
      read_json_components(value, composition);
    } else if (key == "name" && value.is_string()) {
      composition.title = value;
    } else if (key == "basis" && value.is_string()) {
      composition.basis = basis_by_name(value.get<std::string>());
      composition.basis_given = true;
    } else {
      throw InputError(fmt::format("\"{}\" is not understood: a mixture has name, basis and components", key));
    }
  }
}

Composition read_composition_file(const std::string& path) {
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
  std::string_view content = text;
  if (content.substr(0, 3) == "\xEF\xBB\xBF") content.remove_prefix(3);  // byte order mark of some editors
  Composition composition;
  try {
    const std::string_view begin = trimmed(content).substr(0, 1);
    if (begin == "{" || begin == "[") {
      read_json(content, composition);
    } else {
      read_lines(content, composition);
    }
  } catch (const InputError& e) {
    throw InputError(fmt::format("{}: {}", path, e.what()));
  }
  if (composition.components.empty()) throw InputError(fmt::format("{}: no component in it", path));
  return composition;
}

}  // namespace kestrune::host
