#include "units.hpp"

#include <fmt/format.h>

#include <cctype>
#include <charconv>
#include <cmath>
#include <span>

#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

constexpr double kPoundInKg = 0.45359237;
constexpr double kFootInM = 0.3048;
constexpr double kCubicFoot = kFootInM * kFootInM * kFootInM;
constexpr double kFahrenheit = 5.0 / 9.0;           // K
constexpr double kBtuPerPound = 2326.0;             // J/kg, by definition of the Btu
constexpr double kBtu = kBtuPerPound * kPoundInKg;  // J

// The first unit of a list is the one of the system "engineering", the second "si", the third "field"; units of
// entropy stand in the order of the units of enthalpy.
constexpr Unit kTemperatures[] = {
    {"C", 1.0, kZeroCelsius}, {"K", 1.0}, {"F", kFahrenheit, kZeroFahrenheit}, {"R", kFahrenheit}};
constexpr Unit kPressures[] = {{"bar", 1e5},       {"Pa", 1.0},
                               {"psia", kPsiInPa}, {"atm", kAtmInPa},
                               {"bara", 1e5},      {"barg", 1e5, kAtmInPa / 1e5},
                               {"kPa", 1e3},       {"MPa", 1e6},
                               {"psi", kPsiInPa},  {"psig", kPsiInPa, kAtmInPa / kPsiInPa},
                               {"kg/cm2", 98066.5}};
constexpr Unit kEnthalpies[] = {{"kJ/kg", 1e3, 0.0, true},
                                {"J/mol", 1.0},
                                {"Btu/lb", kBtuPerPound, 0.0, true},
                                {"cal/mol", kCalInJ},
                                {"kJ/mol", 1e3},
                                {"kJ/kmol", 1.0},
                                {"J/kg", 1.0, 0.0, true},
                                {"Btu/lbmol", kBtuPerPound / 1e3}};
constexpr Unit kEntropies[] = {{"kJ/(kg K)", 1e3, 0.0, true},
                               {"J/(mol K)", 1.0},
                               {"Btu/(lb F)", kBtuPerPound / kFahrenheit, 0.0, true},
                               {"cal/(mol K)", kCalInJ},
                               {"kJ/(mol K)", 1e3},
                               {"kJ/(kmol K)", 1.0},
                               {"J/(kg K)", 1.0, 0.0, true},
                               {"Btu/(lbmol F)", kBtuPerPound / 1e3 / kFahrenheit}};
constexpr Unit kDensities[] = {{"kg/m3", 1.0}, {"kg/m3", 1.0}, {"lb/ft3", kPoundInKg / kCubicFoot}};
constexpr Unit kMolarVolumes[] = {
    {"cm3/mol", 1e-6}, {"m3/mol", 1.0}, {"ft3/lbmol", kCubicFoot / (1000.0 * kPoundInKg)}};
constexpr Unit kSpeeds[] = {{"m/s", 1.0}, {"m/s", 1.0}, {"ft/s", kFootInM}};
constexpr Unit kViscosities[] = {{"cP", 1e-3}, {"Pa s", 1.0}, {"cP", 1e-3}};
constexpr Unit kConductivities[] = {
    {"W/(m K)", 1.0}, {"W/(m K)", 1.0}, {"Btu/(h ft F)", kBtu / (3600.0 * kFootInM * kFahrenheit)}};
constexpr Unit kJouleThomsons[] = {{"K/bar", 1e-5}, {"K/Pa", 1.0}, {"F/psi", kFahrenheit / kPsiInPa}};
constexpr Unit kCompressibilities[] = {{"1/bar", 1e-5}, {"1/Pa", 1.0}, {"1/psi", 1.0 / kPsiInPa}};
// Moles in a volume of ideal gas: 1 m3 at 0 C (normal) and at 15 C (standard, ISO 13443) and 1 atm, 10^6 ft3 at 60 F
// and 14.696 psia. Of a mass of water as a mole fraction: that of the wet gas, whose molar mass the unit reads.
constexpr double kGas = 8.314462618;  // J/(mol K)
constexpr double kMolPerNm3 = kAtmInPa / (kGas * kZeroCelsius);
constexpr double kMolPerSm3 = kAtmInPa / (kGas * kStandardT);
constexpr double kMolPerMMscf = kStandardFootP * 1e6 * kCubicFoot / (kGas * kStandardFootT);
constexpr Unit kWaterContents[] = {{"mol/mol", 1.0},
                                   {"mol/mol", 1.0},
                                   {"mol/mol", 1.0},
                                   {"%", 0.01},
                                   {"ppm", 1e-6},
                                   {"ppmv", 1e-6},
                                   {"ppmw", 1e-3 / kWaterMass, 0.0, true},
                                   {"mg/Nm3", 1e-3 / (kWaterMass * kMolPerNm3)},
                                   {"g/Nm3", 1.0 / (kWaterMass * kMolPerNm3)},
                                   {"mg/Sm3", 1e-3 / (kWaterMass * kMolPerSm3)},
                                   {"lb/MMscf", 1e3 * kPoundInKg / (kWaterMass * kMolPerMMscf)}};
constexpr Unit kCalorificValues[] = {
    {"MJ/m3", 1e6}, {"J/m3", 1.0}, {"Btu/ft3", kBtu / kCubicFoot}, {"kJ/m3", 1e3}, {"kWh/m3", 3.6e6}};
constexpr Unit kCalorificMasses[] = {
    {"MJ/kg", 1e6}, {"J/kg", 1.0}, {"Btu/lb", kBtuPerPound}, {"kJ/kg", 1e3}, {"kWh/kg", 3.6e6}};
constexpr Unit kRatios[] = {{"", 1.0}, {"", 1.0}, {"", 1.0}};

struct QuantityInfo {
  const char* name;
  const char* example;  // of a value with its unit
  std::span<const Unit> units;
};
constexpr QuantityInfo kQuantities[kQuantityCount] = {
    {"temperature", "25 C", kTemperatures},
    {"pressure", "60 barg", kPressures},
    {"enthalpy", "-2500 cal/mol", kEnthalpies},
    {"entropy", "-12.5 J/(mol K)", kEntropies},
    {"density", "50 kg/m3", kDensities},
    {"molar volume", "400 cm3/mol", kMolarVolumes},
    {"speed", "400 m/s", kSpeeds},
    {"viscosity", "0.012 cP", kViscosities},
    {"thermal conductivity", "0.03 W/(m K)", kConductivities},
    {"Joule-Thomson coefficient", "0.4 K/bar", kJouleThomsons},
    {"compressibility", "0.02 1/bar", kCompressibilities},
    {"ratio", "0.5", kRatios},
    {"vapour fraction", "0.5", kRatios},
    {"water content", "50 mg/Nm3", kWaterContents},
    {"calorific value", "38.5 MJ/m3", kCalorificValues},
    {"calorific value by mass", "50 MJ/kg", kCalorificMasses}};
constexpr std::size_t kMaxConditions = 100000;

const QuantityInfo& info(Quantity quantity) {
  return kQuantities[static_cast<std::size_t>(quantity)];
}

// Letters, digits, percent signs and the first slash, in lower case.
std::string unit_key(std::string_view name) {
  std::string key;
  for (const char c : lower(name)) {
    const bool slash = c == '/' && key.find('/') == std::string::npos;
    if (slash || c == '%' || std::isalnum(static_cast<unsigned char>(c)) != 0) key += c;
  }
  return key;
}

// Units are read in any case, but mPa, written as one writes millipascals, is not taken for MPa.
bool is_milli(std::string_view written, std::string_view name) {
  return !name.empty() && name.front() == 'M' && written.substr(0, 1) == "m" &&
         written.substr(1) == name.substr(1);
}

const Unit* find_unit(Quantity quantity, std::string_view name) {
  std::string wanted = unit_key(name);
  if (quantity == Quantity::temperature && wanted.rfind("deg", 0) == 0) wanted.erase(0, 3);
  for (const Unit& u : info(quantity).units) {
    if (unit_key(u.name) == wanted) return is_milli(trimmed(name), u.name) ? nullptr : &u;
  }
  return nullptr;
}

std::string unit_names(Quantity quantity) {
  std::vector<std::string> names;
  for (const Unit& u : info(quantity).units)
    if (names.empty() || names.back() != u.name) names.emplace_back(u.name);
  const std::string last = names.back();
  names.pop_back();
  return joined(names, ", ") + " or " + last;
}

[[noreturn]] void not_understood(Quantity quantity, std::string_view text) {
  throw InputError(fmt::format(
      "the {} \"{}\" is not understood: give a value, a list 200,220,250 or a range first:last:step, with or "
      "without a unit, for instance \"{}\"",
      info(quantity).name, text, info(quantity).example));
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
  if (std::abs(values.back() - last) < 1e-9 * std::abs(step)) values.back() = last;
  return values;
}

void check_range(Quantity quantity, double base, double value, const Unit& unit) {
  if (quantity == Quantity::vapour_fraction && !(base >= 0.0 && base <= 1.0)) {
    throw InputError(
        fmt::format("the vapour fraction {} is not between 0 (bubble point) and 1 (dew point)", value));
  }
  if (quantity == Quantity::water_content && !(base >= 0.0 && base < 1.0))
    throw InputError(
        fmt::format("the water content {} {} is not between nothing and all of the gas", value, unit.name));
  if (!std::isfinite(base))
    throw InputError(fmt::format("the {} {} {} is too large", info(quantity).name, value, unit.name));
  if (base > 0.0 || (quantity != Quantity::temperature && quantity != Quantity::pressure)) return;
  throw InputError(fmt::format("the {} {} {} is not above {}", info(quantity).name, value, unit.name,
                               quantity == Quantity::temperature ? "absolute zero" : "vacuum"));
}

UnitSystem system_at(std::size_t place) {
  UnitSystem system;
  for (std::size_t q = 0; q < kQuantityCount; ++q) system.units[q] = &kQuantities[q].units[place];
  return system;
}

}  // namespace

std::string_view quantity_name(Quantity quantity) {
  return info(quantity).name;
}

bool is_unit(Quantity quantity, std::string_view name) {
  return find_unit(quantity, name) != nullptr;
}

const Unit& unit(Quantity quantity, std::string_view name) {
  if (const Unit* found = find_unit(quantity, name)) return *found;
  if (info(quantity).units.front().name.empty()) {
    throw InputError(fmt::format("a {} has no unit, not \"{}\"", info(quantity).name, trimmed(name)));
  }
  throw InputError(fmt::format("unknown unit of {} \"{}\": use {}", info(quantity).name, trimmed(name),
                               unit_names(quantity)));
}

void UnitSystem::choose_energy(std::string_view name) {
  const Unit* chosen = &unit(Quantity::enthalpy, name);
  units[static_cast<std::size_t>(Quantity::enthalpy)] = chosen;
  units[static_cast<std::size_t>(Quantity::entropy)] = kEntropies + (chosen - kEnthalpies);
}

UnitSystem unit_system(std::string_view name) {
  const std::string wanted = lower(trimmed(name));
  if (wanted == "engineering") return system_at(0);
  if (wanted == "si") return system_at(1);
  if (wanted == "field") return system_at(2);
  const auto names = split(name, ',');
  if (names.size() == 2) {
    UnitSystem system = system_at(0);
    system.units[static_cast<std::size_t>(Quantity::temperature)] = &unit(Quantity::temperature, names[0]);
    system.units[static_cast<std::size_t>(Quantity::pressure)] = &unit(Quantity::pressure, names[1]);
    return system;
  }
  throw InputError(
      fmt::format("unknown units \"{}\": use engineering (C, bar), si (K, Pa), field (F, psia) or a "
                  "pair such as K,atm",
                  name));
}

std::string exact(double base, const Unit& unit, double molar_mass) {
  if (!std::isfinite(base)) return "";
  const double value = unit.from_base(base, molar_mass);
  for (const int digits : {12, 15, 16}) {  // what was typed; what rounding of the conversion leaves
    char text[40];
#ifdef __cpp_lib_to_chars
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, digits).ptr;
    double read = value;
    std::from_chars(text, end, read);
#else  // emscripten's library has them for integers alone
    const auto end = fmt::format_to_n(text, sizeof text, "{:.{}g}", value, digits).out;
    const double read = parse_number({text, static_cast<std::size_t>(end - text)}).value_or(value);
#endif
    if (unit.to_base(read, molar_mass) == base) return fmt::format("{}", read);
  }
  return fmt::format("{}", value);
}

std::string column_name(std::string_view key, Quantity quantity, const Unit& unit) {
  const auto in_words = [](std::string_view name) {
    std::string word;
    for (const char c : name) {
      if (std::isalnum(static_cast<unsigned char>(c)) != 0)
        word += c;
      else if (!word.empty() && word.back() != '_')
        word += '_';
    }
    while (!word.empty() && word.back() == '_') word.pop_back();
    return word;
  };
  constexpr std::size_t si = 1;
  const std::string base = in_words(info(quantity).units[si].name), wanted = in_words(unit.name);
  const bool ends = !base.empty() && key.size() > base.size() && key.substr(key.size() - base.size()) == base;
  return ends ? std::string(key.substr(0, key.size() - base.size())) + wanted : std::string(key);
}

std::vector<double> parse_conditions(Quantity quantity, std::string_view text, const Unit& plain,
                                     double molar_mass) {
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
      values.push_back(item.unit->to_base(value, molar_mass));
      check_range(quantity, values.back(), value, *item.unit);
    }
  }
  return values;
}

}  // namespace kestrune::host
