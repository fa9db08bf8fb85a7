// kestrune pure: properties of a component by the correlations of the library of pure components.
#include "pure.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <nlohmann/json.hpp>

#include "commands/session.hpp"
#include "commands/states.hpp"
#include "error.hpp"
#include "table.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

using nlohmann::ordered_json;

constexpr const char* kDiluteText =
    "viscosity and conductivity of the gas are those of the dilute gas, those of the liquid at saturation; at "
    "other "
    "pressures kestrune props has the gas";

struct PureOptions {
  OutputOptions output;
  std::string name, temperature, pressure, energy;
};

struct PurePoint {
  double T, P;  // K, Pa; P NaN where the temperature was given
  std::string why;
  std::vector<PureValue> values;
};

struct PureReport {
  const Component& component;
  UnitSystem units;
  std::vector<PureRange> ranges;  // in the order of PureProperty
  std::vector<PurePoint> points;
};

// Surface tension is in N/m, in tables mN/m.
const Unit& unit_of(const PureReport& r, const PurePropertyInfo& info) {
  static const Unit tension{"mN/m", 1e-3};
  return info.quantity == Quantity::ratio ? tension : r.units[info.quantity];
}

std::string shown_value(const PureReport& r, const PurePropertyInfo& info, const PureValue& value) {
  const std::string text = shown_significant(unit_of(r, info).from_base(value.value, r.component.molar_mass));
  return value.outside ? text + "*" : text;
}

std::string range_in_words(const PureReport& r, const PureRange& range) {
  const Unit& T = r.units[Quantity::temperature];
  if (!range.found) return "-";
  return fmt::format("{:.2f} to {:.2f} {}", T.from_base(range.T_min), T.from_base(range.T_max), T.name);
}

PurePoint point_at(const PureExports& library, const Component& component, double T, double P) {
  PurePoint point{T, P, {}, {}};
  for (const PurePropertyInfo& info : all_pure_properties()) {
    const PureValue none{kNone, false, "no boiling point"};
    point.values.push_back(std::isnan(T) ? none : pure_value(library, component, info.property, T));
  }
  return point;
}

PurePoint boiling_point(const PureReport& r, const PureExports& library, double P) {
  PurePoint point = point_at(library, r.component, boiling_temperature(library, r.component, P), P);
  const PureRange& range = r.ranges.front();
  if (!std::isnan(point.T)) return point;
  const Unit& of_P = r.units[Quantity::pressure];
  const auto end = [&](double T) {
    return shown_significant(
        of_P.from_base(pure_value(library, r.component, PureProperty::vapour_pressure, T).value));
  };
  point.why = !range.found ? "no boiling point: no correlation of the vapour pressure"
                           : fmt::format("no boiling point: the vapour pressure goes from {} to {} {}",
                                         end(range.T_min), end(range.T_max), of_P.name);
  return point;
}

void print_ranges(const PureReport& r, std::ostream& out) {
  Table table({"property", "range", "source"}, "lll");
  for (const PurePropertyInfo& info : all_pure_properties()) {
    const PureRange& range = r.ranges[static_cast<std::size_t>(info.property)];
    table.add({std::string(info.title), range_in_words(r, range), range.found ? range.source : "-"});
  }
  table.print(out);
}

// All of one point, with ranges; several points have a line each.
void print_one(const PureReport& r, const PurePoint& point, std::ostream& out) {
  Table table({"", "value", "range"}, "lrl");
  for (const PurePropertyInfo& info : all_pure_properties()) {
    const auto k = static_cast<std::size_t>(info.property);
    const PureValue& value = point.values[k];
    table.add({with_unit(info.title, unit_of(r, info), ", "), shown_value(r, info, value),
               value.why.empty() ? range_in_words(r, r.ranges[k]) : value.why});
  }
  table.print(out);
}

// A line for each point with these properties.
void print_columns(const PureReport& r, std::span<const PurePropertyInfo> columns, std::ostream& out) {
  const Unit& T = r.units[Quantity::temperature];
  std::vector<std::string> headings{fmt::format("T {}", T.name)};
  for (const PurePropertyInfo& info : columns)
    headings.push_back(with_unit(info.heading, unit_of(r, info), " "));
  Table table(headings, "");
  for (const PurePoint& point : r.points) {
    std::vector<std::string> row{shown_condition(T, point.T, 2)};
    for (const PurePropertyInfo& info : columns)
      row.push_back(shown_value(r, info, point.values[static_cast<std::size_t>(info.property)]));
    table.add(row);
  }
  table.print(out);
}

void print_several(const PureReport& r, std::ostream& out) {
  constexpr std::size_t of_liquid = 7;
  print_columns(r, all_pure_properties().first(of_liquid), out);
  out << '\n';
  print_columns(r, all_pure_properties().subspan(of_liquid), out);
}

void print_pure_text(const PureReport& r, std::ostream& out) {
  const Unit &T = r.units[Quantity::temperature], &P = r.units[Quantity::pressure];
  out << fmt::format("Component    {}, {}, CAS {}\n", r.component.name, r.component.formula, r.component.cas);
  if (r.points.size() == 1) {
    const PurePoint& point = r.points.front();
    if (!std::isnan(point.T))
      out << fmt::format("Temperature  {} {}\n", shown_condition(T, point.T, 3), T.name);
    if (!std::isnan(point.P))
      out << fmt::format("Pressure     {} {}\n", shown_condition(P, point.P, 4), P.name);
  }
  out << '\n';
  if (r.points.empty())
    print_ranges(r, out);
  else if (r.points.size() == 1)
    print_one(r, r.points.front(), out);
  else
    print_several(r, out);
  bool outside = false;
  for (const PurePoint& point : r.points)
    for (const PureValue& value : point.values) outside = outside || value.outside;
  out << '\n';
  if (outside) out << "* outside the range of its correlation, continued beyond it\n";
  for (const PurePoint& point : r.points)
    if (!point.why.empty())
      out << fmt::format("Note: {} {}: {}\n", shown_condition(P, point.P, 4), P.name, point.why);
  out << "Note: " << kDiluteText << '\n';
}

std::vector<std::string> keys_outside(const PurePoint& point) {
  std::vector<std::string> keys;
  for (const PurePropertyInfo& info : all_pure_properties())
    if (point.values[static_cast<std::size_t>(info.property)].outside) keys.emplace_back(info.key);
  return keys;
}

void print_pure_json(const PureReport& r, std::ostream& out) {
  ordered_json root{{"component", r.component.id}, {"correlations", ordered_json::array()}};
  for (const PurePropertyInfo& info : all_pure_properties()) {
    const PureRange& range = r.ranges[static_cast<std::size_t>(info.property)];
    if (range.found)
      root["correlations"].push_back({{"property", info.key},
                                      {"T_min_K", range.T_min},
                                      {"T_max_K", range.T_max},
                                      {"source", range.source}});
  }
  root["points"] = ordered_json::array();
  for (const PurePoint& point : r.points) {
    ordered_json entry{{"temperature_K", point.T}, {"pressure_Pa", point.P}, {"note", point.why}};
    for (const PurePropertyInfo& info : all_pure_properties())
      entry[std::string(info.key)] = point.values[static_cast<std::size_t>(info.property)].value;
    entry["outside_range"] = keys_outside(point);
    root["points"].push_back(entry);
  }
  root["notes"] = {kDiluteText};
  out << root.dump(2) << '\n';
}

void print_pure_csv(const PureReport& r, std::ostream& out) {
  static const Unit base{"", 1.0};
  const auto unit = [&](const PurePropertyInfo& info) -> const Unit& {
    return info.quantity == Quantity::ratio ? base : r.units[info.quantity];
  };
  out << column_name("temperature_K", Quantity::temperature, r.units[Quantity::temperature]);
  for (const PurePropertyInfo& info : all_pure_properties())
    out << ','
        << (info.quantity == Quantity::ratio ? std::string(info.key)
                                             : column_name(info.key, info.quantity, unit(info)));
  out << ",outside_range,note\n";
  for (const PurePoint& point : r.points) {
    out << exact(point.T, r.units[Quantity::temperature]);
    for (const PurePropertyInfo& info : all_pure_properties())
      out << ','
          << exact(point.values[static_cast<std::size_t>(info.property)].value, unit(info),
                   r.component.molar_mass);
    out << ',' << joined(keys_outside(point), " ") << ',' << csv_field(point.why) << '\n';
  }
}

void pure(const PureOptions& o, Session& session) {
  UnitSystem units = o.output.system();
  if (!o.energy.empty()) units.choose_energy(o.energy);
  if (!o.temperature.empty() && !o.pressure.empty())
    throw InputError("give -T (properties there) or -P (boiling points), not both");
  const Component& component = find_component(o.name);
  session.library();  // says so where the libraries are not what they should be
  const PureExports library = load_pure_library(session.library_path);
  PureReport report{component, units, {}, {}};
  bool some = false;
  for (const PurePropertyInfo& info : all_pure_properties()) {
    report.ranges.push_back(range_of(library, component, info.property));
    some = some || report.ranges.back().found;
  }
  if (!some) throw InputError(fmt::format("there are no correlations of {}", component.name));
  if (!o.temperature.empty())
    for (const double T : parse_conditions(Quantity::temperature, o.temperature, units[Quantity::temperature]))
      report.points.push_back(point_at(library, component, T, kNone));
  if (!o.pressure.empty())
    for (const double P : parse_conditions(Quantity::pressure, o.pressure, units[Quantity::pressure]))
      report.points.push_back(boiling_point(report, library, P));
  for (const PurePoint& point : report.points)
    if (!point.why.empty()) session.exit_code = exit_status;
  if (o.output.format == "json")
    print_pure_json(report, session.out);
  else if (o.output.format == "csv")
    print_pure_csv(report, session.out);
  else
    print_pure_text(report, session.out);
}

}  // namespace

void add_pure_command(CLI::App& app, Session& session) {
  auto* command = app.add_subcommand(
      "pure", "A pure component: vapour pressure, enthalpy of vaporisation, liquid density, viscosities ...");
  const auto o = std::make_shared<PureOptions>();
  command->footer(
      "Examples:\n"
      "  kestrune pure propane\n"
      "  kestrune pure propane -T 25 C\n"
      "  kestrune pure propane -P 1,5,10 bar\n"
      "  kestrune pure water -T 0:100:25 C --format csv");
  command->add_option("name", o->name, "Component")->required();
  command->add_option("-T,--temperature", o->temperature, "Value, list or range (25 C): the properties there");
  command->add_option("-P,--pressure", o->pressure,
                      "Value, list or range (5 bar): boiling points and the properties "
                      "there");
  command->add_option("--energy", o->energy,
                      "Unit of enthalpies in tables and CSV, heat capacities follow: kJ/kg, "
                      "J/mol, cal/mol, Btu/lb ...");
  o->output.add_to(*command);
  command->callback([o, &session] { pure(*o, session); });
}

}  // namespace kestrune::host
