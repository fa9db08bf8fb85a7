#include "composition.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "composition_parts.hpp"
#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

double parse_amount(std::string_view text, std::string_view where) {
  std::string_view digits = trimmed(text);
  const bool percent = !digits.empty() && digits.back() == '%';
  if (percent) digits.remove_suffix(1);
  const auto value = parse_number(digits);
  if (!value) throw InputError(fmt::format("\"{}\" is not an amount ({})", trimmed(text), where));
  return percent ? *value / 100.0 : *value;
}

std::string_view without_quotes(std::string_view text) {
  text = trimmed(text);
  if (text.size() >= 2 && text.front() == '"' && text.back() == '"') text = text.substr(1, text.size() - 2);
  return text;
}

namespace {

void check_amount(std::string_view name, double amount) {
  if (amount >= 0.0) return;
  throw InputError(fmt::format("the amount of {} is negative: {}", name, amount));
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
  // "C7+ 1" is the first piece of C7+.
  const auto is_piece = [](const Definition& of, const std::string& name) {
    return of.fraction && name.rfind(of.name + " ", 0) == 0 && parse_number(name.substr(of.name.size() + 1));
  };
  for (const Definition& d : definitions)
    if (is_piece(d, definition.name) || is_piece(definition, d.name))
      throw InputError(fmt::format("{} is the name of a piece of the fraction {}: choose another",
                                   is_piece(d, definition.name) ? definition.name : d.name,
                                   is_piece(d, definition.name) ? d.name : definition.name));
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
  double sum = 0.0;
  for (const double a : composition.amounts) sum += a;
  const bool hundred = replace && !composition.percent && std::abs(sum - 100.0) < 2.0;  // percent by its sum
  std::string entry;
  for (const std::string& piece : split(text, ',')) {
    entry += entry.empty() ? piece : "," + piece;  // names may contain commas
    const std::size_t equals = entry.rfind('=');
    if (equals == std::string::npos) continue;
    const std::string_view name = without_quotes(std::string_view(entry).substr(0, equals));
    const std::string_view written = trimmed(std::string_view(entry).substr(equals + 1));
    double amount = parse_amount(written, where);
    const bool plain = written.back() != '%';
    if (replace && plain && amount != 0.0 && (composition.percent || hundred))
      throw InputError(fmt::format("--z {}={}: the file is in percent; write {}={}%, or what it is in percent",
                                   name, written, name, written));
    if (hundred) amount *= 100.0;
    replace ? composition.set(name, amount) : composition.add(name, amount);
    entry.clear();
  }
  if (!entry.empty()) throw InputError(fmt::format("\"{}\" has no amount: {}", entry, where));
}

}  // namespace kestrune::host
