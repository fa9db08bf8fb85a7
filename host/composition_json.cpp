// Compositions in JSON.
#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "composition.hpp"
#include "composition_parts.hpp"
#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

using nlohmann::ordered_json;

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
    if (!entry.is_object())
      throw InputError(fmt::format("{} in \"{}\" must be an object such as {{\"M\": 142}}", name, what));
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
      throw InputError(fmt::format(
          "\"{}\" is not understood: a mixture has name, basis, own_components, fractions and components",
          key));
    }
  }
}

}  // namespace kestrune::host
