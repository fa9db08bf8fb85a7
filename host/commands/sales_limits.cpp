// The limits of a sales contract: how they are written and whether a gas keeps them.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "commands/sales.hpp"
#include "commands/wet_gas.hpp"
#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

using Figure = std::optional<double> (*)(const SalesReport&);

double none_where_absent(const CurvePlace& place) {
  return place.found() ? place.T : kNone;
}

constexpr struct {
  const char *name, *title;
  Quantity quantity;
  Figure value;
} kLimits[] = {{"wobbe", "gross Wobbe index", Quantity::calorific_value,
                [](const SalesReport& r) { return std::optional(r.results[0].real.wobbe); }},
               {"wobbe_net", "net Wobbe index", Quantity::calorific_value,
                [](const SalesReport& r) { return std::optional(r.results[0].real.wobbe_net); }},
               {"gross", "gross calorific value", Quantity::calorific_value,
                [](const SalesReport& r) { return std::optional(r.results[0].real.gross_by_volume); }},
               {"net", "net calorific value", Quantity::calorific_value,
                [](const SalesReport& r) { return std::optional(r.results[0].real.net_by_volume); }},
               {"density", "density", Quantity::density,
                [](const SalesReport& r) { return std::optional(r.results[0].real.density); }},
               {"relative_density", "relative density", Quantity::ratio,
                [](const SalesReport& r) { return std::optional(r.results[0].real.relative_density); }},
               {"Z", "compression factor Z", Quantity::ratio,
                [](const SalesReport& r) { return std::optional(r.results[0].Z); }},
               {"M", "molar mass, g/mol", Quantity::ratio,
                [](const SalesReport& r) { return std::optional(r.results[0].molar_mass); }},
               {"cricondentherm", "cricondentherm", Quantity::temperature,
                [](const SalesReport& r) -> std::optional<double> {
                  if (!r.dew.hottest_known) return std::nullopt;
                  return none_where_absent(r.dew.cricondentherm);
                }},
               {"hydrocarbon_dew", "hydrocarbon dew point", Quantity::temperature,
                [](const SalesReport& r) { return DewPoints::hottest(r.dew.hydrocarbon); }},
               {"water_dew", "water dew point", Quantity::temperature,
                [](const SalesReport& r) { return DewPoints::hottest(r.dew.water); }}};

std::string limit_names() {
  std::vector<std::string> names;
  for (const auto& l : kLimits) names.emplace_back(l.name);
  return joined(names, ", ");
}

[[noreturn]] void not_a_limit(const std::string& text) {
  throw InputError(
      fmt::format("the limit \"{}\" is not understood: write NAME=low..high with a unit at the end, one of the "
                  "two may be missing: "
                  "wobbe=46..52 MJ/m3, cricondentherm=..-2 C, CO2=..2.5 %. Names are {} and components",
                  text, limit_names()));
}

// A bound, NaN for an empty text; what follows the number goes to unit.
double bound(std::string_view piece, const std::string& whole, std::string& unit) {
  piece = trimmed(piece);
  if (piece.empty()) return kNone;
  const std::size_t length = number_length(piece);
  const auto number = parse_number(piece.substr(0, length));
  if (!number) not_a_limit(whole);
  const std::string rest(trimmed(piece.substr(length)));
  if (!rest.empty()) unit = rest;
  return *number;
}

// Shares of a component in mol/mol, or, with factor 0, by mass in a cubic metre.
Unit content_unit(const std::string& name, const std::string& whole) {
  const std::string key = lower(name);
  if (key.empty() || key == "mol/mol") return {"mol/mol", 1.0};
  if (key == "%" || key == "mol%" || key == "mol-%") return {"%", 0.01};
  if (key == "ppm" || key == "ppmv") return {"ppm", 1e-6};
  if (key == "mg/m3") return {"mg/m3", 0.0};
  throw InputError(fmt::format("the limit \"{}\": a component has limits in mol/mol, %, ppm or mg/m3", whole));
}

// The components that go by a name: one of the mixture, the pieces of a fraction, or none of them.
std::vector<std::size_t> components_of(const std::string& name, const std::string& whole,
                                       const Mixture& mixture) {
  const std::string wanted = lower(trimmed(name));
  for (const FractionPieces& fraction : fractions_in(mixture))
    if (lower(fraction.name) == wanted) return fraction.pieces;
  for (std::size_t i = 0; i < mixture.components.size(); ++i)
    if (lower(mixture.components[i].name) == wanted) return {i};
  if (!names_component(name)) not_a_limit(whole);
  const Component& known = find_component(name);
  for (std::size_t i = 0; i < mixture.components.size(); ++i)
    if (mixture.components[i].id == known.id) return {i};
  return {};
}

// A fraction above 1 is one whose unit was forgotten.
void check_fraction(const Limit& limit, const std::string& unit_name, const std::string& whole) {
  if (!unit_name.empty() || !(limit.low > 1.0 || limit.high > 1.0)) return;
  throw InputError(
      fmt::format("the limit \"{0}\": a share without a unit is in mol/mol and at most 1: write {1}=..{2:g} "
                  "%, ppm or mg/m3",
                  whole, limit.name, std::isnan(limit.high) ? limit.low : limit.high));
}

Limit read_limit(const std::string& text, const UnitSystem& units, const Mixture& mixture) {
  const std::size_t equals = text.find('='), dots = text.find("..", equals == std::string::npos ? 0 : equals);
  if (equals == std::string::npos || dots == std::string::npos) not_a_limit(text);
  const std::string name(trimmed(text.substr(0, equals)));
  std::string unit_name;
  Limit limit{name, name, kNone, kNone, nullptr, {}, false, {}, {}};
  limit.low = bound(std::string_view(text).substr(equals + 1, dots - equals - 1), text, unit_name);
  limit.high = bound(std::string_view(text).substr(dots + 2), text, unit_name);
  if (std::isnan(limit.low) && std::isnan(limit.high)) not_a_limit(text);
  if (limit.low > limit.high)
    throw InputError(fmt::format("the limit \"{}\": its lower bound is above its upper one", text));
  for (const auto& l : kLimits) {
    if (lower(name) != lower(l.name)) continue;
    limit.name = l.name;
    limit.title = l.title;
    limit.unit = unit_name.empty() ? &units[l.quantity] : &unit(l.quantity, unit_name);
    limit.low = limit.unit->to_base(limit.low);
    limit.high = limit.unit->to_base(limit.high);
    return limit;
  }
  limit.of_share = true;
  limit.parts = components_of(name, text, mixture);
  check_fraction(limit, unit_name, text);
  if (limit.parts.empty()) limit.title += " (not in the analysis)";
  limit.of_content = content_unit(unit_name, text);
  return limit;  // its bounds stay in their unit
}

bool is(const Limit& limit, std::string_view name) {
  return !limit.of_share && limit.name == name;
}

// Moles of a component in one mole of gas, in the unit of its limit; of water those of the wet gas.
double share(const SalesReport& r, const Limit& limit) {
  double moles = 0.0, mass = 0.0;  // g
  for (const std::size_t i : limit.parts) {
    const Component& c = r.mixture.components[i];
    const double x = is_water(c) && !std::isnan(r.water) ? r.water : r.mixture.z[i];
    moles += x;
    mass += x * c.molar_mass;
  }
  if (limit.of_content.factor != 0.0) return moles / limit.of_content.factor;
  return mass * 1e6 * r.results[0].real.density / r.results[0].molar_mass;
}

}  // namespace

bool Limit::kept() const {
  if (!value) return false;
  if (std::isnan(*value)) return std::isnan(low);
  return !(*value < low) && !(*value > high);
}

std::optional<double> DewPoints::hottest(const std::vector<DewPoint>& points) {
  double T = kNone;
  for (const DewPoint& p : points) {
    if (p.status != KV_OK && p.status != KV_NO_SATURATION) return std::nullopt;
    if (p.status == KV_OK && !(p.T <= T)) T = p.T;
  }
  if (points.empty()) return std::nullopt;
  return T;
}

std::vector<Limit> read_limits(const std::vector<std::string>& texts, const UnitSystem& units,
                               const Mixture& mixture) {
  std::vector<Limit> limits;
  for (const std::string& text : texts) {
    for (const std::string& piece : split(text, ',')) limits.push_back(read_limit(piece, units, mixture));
  }
  return limits;
}

bool needs_dew(const std::vector<Limit>& limits) {
  return needs_dew_pressure(limits) ||
         std::any_of(limits.begin(), limits.end(), [](const Limit& l) { return is(l, "cricondentherm"); });
}

bool needs_dew_pressure(const std::vector<Limit>& limits) {
  return std::any_of(limits.begin(), limits.end(),
                     [](const Limit& l) { return is(l, "hydrocarbon_dew") || is(l, "water_dew"); });
}

void judge(SalesReport& report) {
  for (Limit& limit : report.limits) {
    if (limit.of_share) {
      limit.value = share(report, limit);
      continue;
    }
    for (const auto& l : kLimits)
      if (limit.name == l.name) limit.value = l.value(report);
  }
}

}  // namespace kestrune::host
