#include "units.hpp"

#include <fmt/format.h>

#include <cmath>

#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

constexpr Unit kTemperatures[] = {
    {"K", 1.0, 0.0}, {"C", 1.0, kZeroCelsius}, {"F", 5.0 / 9.0, kZeroFahrenheit}, {"R", 5.0 / 9.0, 0.0}};
constexpr Unit kPressures[] = {{"atm", kAtmInPa, 0.0},  {"bar", 1e5, 0.0},
                               {"bara", 1e5, 0.0},      {"barg", 1e5, kAtmInPa / 1e5},
                               {"kPa", 1e3, 0.0},       {"MPa", 1e6, 0.0},
                               {"Pa", 1.0, 0.0},        {"psi", kPsiInPa, 0.0},
                               {"psia", kPsiInPa, 0.0}, {"psig", kPsiInPa, kAtmInPa / kPsiInPa}};
constexpr std::size_t kMaxConditions = 100000;

const char* quantity_name(Quantity quantity) {
  return quantity == Quantity::temperature ? "temperature" : "pressure";
}

const Unit* find_unit(Quantity quantity, std::string_view name) {
  const std::string wanted = lower(trimmed(name));
  const auto search = [&](const auto& list) -> const Unit* {
    for (const Unit& u : list) {
      if (lower(u.name) == wanted) return &u;
    }
    return nullptr;
  };
  return quantity == Quantity::temperature ? search(kTemperatures) : search(kPressures);
}

[[noreturn]] void not_understood(Quantity quantity, std::string_view text) {
  throw InputError(fmt::format(
      "the {} \"{}\" is not understood: give a value, a list 200,220,250 or a range first:last:step, with or "
      "without a unit, for instance {}",
      quantity_name(quantity), text, quantity == Quantity::temperature ? "\"25 C\"" : "\"60 barg\""));
}

// One item of the list: numbers between colons and a unit, which may be missing.
struct Item {
  std::vector<double> numbers;  // one, or first, last, step
  const Unit* unit;
};

Item parse_item(Quantity quantity, std::string_view whole, std::string_view text) {
  Item item{{}, nullptr};
  std::string_view rest = trimmed(text);
  for (;;) {
    const std::size_t length = number_length(rest);
    const auto number = parse_number(rest.substr(0, length));
    if (!number) not_understood(quantity, whole);
    item.numbers.push_back(*number);
    rest = trimmed(rest.substr(length));
    if (rest.empty() || rest.front() != ':') break;
    rest = trimmed(rest.substr(1));
  }
  if (!rest.empty()) item.unit = &unit(quantity, rest);
  if (item.numbers.size() != 1 && item.numbers.size() != 3) not_understood(quantity, whole);
  return item;
}

// Values of an item in its own unit. The last value is met in spite of rounding of the steps.
std::vector<double> expand(const Item& item, std::string_view whole) {
  if (item.numbers.size() == 1) return item.numbers;
  const double first = item.numbers[0], last = item.numbers[1], step = item.numbers[2];
  const double steps = (last - first) / step;
  if (!(step != 0.0 && steps >= 0.0)) {
    throw InputError(
        fmt::format("the range \"{}\" is empty: write first:last:step, with a step that leads "
                    "from the first value to the last",
                    whole));
  }
  if (steps > static_cast<double>(kMaxConditions)) {
    throw InputError(fmt::format("the range \"{}\" has more than {} values", whole, kMaxConditions));
  }
  std::vector<double> values;
  const int count = static_cast<int>(std::floor(steps + 1e-9)) + 1;
  for (int i = 0; i < count; ++i) values.push_back(first + i * step);
  return values;
}

}  // namespace

bool is_unit(Quantity quantity, std::string_view name) {
  return find_unit(quantity, name) != nullptr;
}

const Unit& unit(Quantity quantity, std::string_view name) {
  if (const Unit* found = find_unit(quantity, name)) return *found;
  throw InputError(fmt::format("unknown unit of {} \"{}\": use {}", quantity_name(quantity), trimmed(name),
                               quantity == Quantity::temperature
                                   ? "K, C, F or R"
                                   : "atm, bar, bara, barg, kPa, MPa, Pa, psi, psia or psig"));
}

UnitSystem unit_system(std::string_view name) {
  const auto pair = [](std::string_view t, std::string_view p) {
    return UnitSystem{&unit(Quantity::temperature, t), &unit(Quantity::pressure, p)};
  };
  const std::string wanted = lower(trimmed(name));
  if (wanted == "engineering") return pair("C", "bar");
  if (wanted == "si") return pair("K", "Pa");
  if (wanted == "field") return pair("F", "psia");
  const auto names = split(name, ',');
  if (names.size() == 2) return pair(names[0], names[1]);
  throw InputError(
      fmt::format("unknown units \"{}\": use engineering (C, bar), si (K, Pa), field (F, psia) or a "
                  "pair such as K,atm",
                  name));
}

std::vector<double> parse_conditions(Quantity quantity, std::string_view text, const Unit& plain) {
  std::vector<Item> items;
  for (const std::string& piece : split(text, ',')) items.push_back(parse_item(quantity, text, piece));
  if (items.empty()) not_understood(quantity, text);
  const Unit* current = items.back().unit != nullptr ? items.back().unit : &plain;
  for (auto item = items.rbegin(); item != items.rend(); ++item) {
    if (item->unit != nullptr) current = item->unit;
    item->unit = current;
  }
  std::vector<double> values;
  for (const Item& item : items) {
    for (const double value : expand(item, text)) {
      values.push_back(item.unit->to_base(value));
      if (values.back() > 0.0) continue;
      throw InputError(fmt::format("the {} {} {} is not above {}", quantity_name(quantity), value,
                                   item.unit->name,
                                   quantity == Quantity::temperature ? "absolute zero" : "vacuum"));
    }
  }
  return values;
}

}  // namespace kestrune::host
