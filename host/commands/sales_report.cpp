// The answer of kestrune sales as text, JSON and CSV.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "commands/sales.hpp"
#include "commands/states.hpp"
#include "table.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

using nlohmann::ordered_json;
using Number = double (*)(const CalorificResult&);

// What there is for each reference; key with the base unit.
struct SalesRow {
  const char *title, *key;
  Quantity quantity;
  Number value;
};
constexpr SalesRow kReal[] = {
    {"molar mass, g/mol", "molar_mass_g_mol", Quantity::ratio,
     [](const CalorificResult& r) { return r.molar_mass; }},
    {"compression factor Z", "Z", Quantity::ratio, [](const CalorificResult& r) { return r.Z; }},
    {"density", "density_kg_m3", Quantity::density, [](const CalorificResult& r) { return r.real.density; }},
    {"relative density", "relative_density", Quantity::ratio,
     [](const CalorificResult& r) { return r.real.relative_density; }},
    {"gross calorific value", "gross_J_m3", Quantity::calorific_value,
     [](const CalorificResult& r) { return r.real.gross_by_volume; }},
    {"net calorific value", "net_J_m3", Quantity::calorific_value,
     [](const CalorificResult& r) { return r.real.net_by_volume; }},
    {"gross Wobbe index", "wobbe_J_m3", Quantity::calorific_value,
     [](const CalorificResult& r) { return r.real.wobbe; }},
    {"net Wobbe index", "wobbe_net_J_m3", Quantity::calorific_value,
     [](const CalorificResult& r) { return r.real.wobbe_net; }},
    {"gross calorific value", "gross_J_kg", Quantity::calorific_mass,
     [](const CalorificResult& r) { return r.gross_by_mass; }},
    {"net calorific value", "net_J_kg", Quantity::calorific_mass,
     [](const CalorificResult& r) { return r.net_by_mass; }},
    {"gross calorific value, kJ/mol", "gross_kJ_mol", Quantity::ratio,
     [](const CalorificResult& r) { return 1e-3 * r.real.gross; }},
    {"net calorific value, kJ/mol", "net_kJ_mol", Quantity::ratio,
     [](const CalorificResult& r) { return 1e-3 * r.real.net; }}};
constexpr SalesRow kIdeal[] = {{"density", "ideal_density_kg_m3", Quantity::density,
                                [](const CalorificResult& r) { return r.ideal.density; }},
                               {"relative density", "ideal_relative_density", Quantity::ratio,
                                [](const CalorificResult& r) { return r.ideal.relative_density; }},
                               {"gross calorific value", "ideal_gross_J_m3", Quantity::calorific_value,
                                [](const CalorificResult& r) { return r.ideal.gross_by_volume; }},
                               {"net calorific value", "ideal_net_J_m3", Quantity::calorific_value,
                                [](const CalorificResult& r) { return r.ideal.net_by_volume; }},
                               {"gross Wobbe index", "ideal_wobbe_J_m3", Quantity::calorific_value,
                                [](const CalorificResult& r) { return r.ideal.wobbe; }},
                               {"net Wobbe index", "ideal_wobbe_net_J_m3", Quantity::calorific_value,
                                [](const CalorificResult& r) { return r.ideal.wobbe_net; }}};

void print_values(const SalesReport& r, std::ostream& out) {
  std::vector<std::string> headings{"combustion/metering, 1 atm"};
  for (const CalorificResult& result : r.results) headings.push_back(result.reference.name());
  Table table(headings, "l");
  const auto add = [&](const SalesRow& row, const char* ending) {
    std::vector<std::string> cells{with_unit(row.title, r.units[row.quantity], ", ") + ending};
    for (const CalorificResult& result : r.results)
      cells.push_back(shown_significant(r.units[row.quantity].from_base(row.value(result))));
    table.add(cells);
  };
  for (const SalesRow& row : kReal) add(row, "");
  for (const SalesRow& row : kIdeal) add(row, ", ideal gas");
  table.print(out);
}

std::string shown_dew(const SalesReport& r, const DewPoint& p) {
  const Unit &T = r.units[Quantity::temperature], &P = r.units[Quantity::pressure];
  const std::string at = fmt::format(" at {} {}", shown_condition(P, p.P, 3), P.name);
  if (p.status == KV_NO_SATURATION) return "none" + at;
  if (p.status != KV_OK) return status_in_words(p.status) + at;
  return fmt::format("{} {}{}", shown_condition(T, p.T, 2), T.name, at);
}

void print_dew(const SalesReport& r, std::ostream& out) {
  const DewPoints& dew = r.dew;
  if (!dew.reason.empty()) return;
  const CurvePlace& c = dew.cricondentherm;
  out << "\nCricondentherm         "
      << (!dew.hottest_known && dew.curve != KV_NO_SATURATION ? status_in_words(dew.curve)
          : c.found()                                         ? shown_dew(r, {c.P, c.T, KV_OK})
                                                              : "none")
      << '\n';
  for (const DewPoint& p : dew.hydrocarbon) out << "Hydrocarbon dew point  " << shown_dew(r, p) << '\n';
  for (const DewPoint& p : dew.water) out << "Water dew point        " << shown_dew(r, p) << '\n';
}

const Unit& unit_of(const Limit& l) {
  return l.of_share ? l.of_content : *l.unit;
}

// A value or a bound of a limit in its unit. Bounds of components stand in it already.
double in_unit(const Limit& l, double value) {
  return l.of_share ? value : l.unit->from_base(value);
}

std::string shown_value(const Limit& l) {
  if (!l.value) return "not known";
  return std::isnan(*l.value) ? "none" : shown_significant(in_unit(l, *l.value));
}

void print_limits(const SalesReport& r, std::ostream& out) {
  if (r.limits.empty()) return;
  Table table(
      {fmt::format("limits at {}", r.results[0].reference.name()), "value", "from", "to", "unit", "verdict"},
      "lrrrll");
  for (const Limit& l : r.limits)
    table.add({l.title, shown_value(l), shown_digits(in_unit(l, l.low), 6), shown_digits(in_unit(l, l.high), 6),
               std::string(unit_of(l).name), l.kept() ? "pass" : "FAIL"});
  out << '\n';
  table.print(out);
}

std::string failed_limits(const SalesReport& r) {
  std::vector<std::string> names;
  for (const Limit& l : r.limits)
    if (!l.kept()) names.push_back(l.name);
  return joined(names, " ");
}

ordered_json dew_json(const std::vector<DewPoint>& points) {
  ordered_json list = ordered_json::array();
  for (const DewPoint& p : points)
    list.push_back({{"pressure_Pa", p.P},
                    {"temperature_K", p.T},
                    {"status", p.status},
                    {"status_text", kv_status_text(p.status)}});
  return list;
}

ordered_json limit_json(const Limit& l) {
  ordered_json root{{"name", l.name},
                    {"unit", unit_of(l).name},
                    {"value", l.value ? in_unit(l, *l.value) : kNone},
                    {"low", in_unit(l, l.low)},
                    {"high", in_unit(l, l.high)},
                    {"known", l.value.has_value()},
                    {"in_analysis", !l.of_share || !l.parts.empty()},
                    {"pass", l.kept()}};
  return root;
}

}  // namespace

void print_sales_text(const SalesReport& r, std::ostream& out) {
  const Mixture& m = r.mixture;
  out << fmt::format("Mixture      {}{}{} component{}\n", m.title, m.title.empty() ? "" : ", ", m.count(),
                     m.count() == 1 ? "" : "s")
      << "Method       ISO 6976:2016, calorific values and summation factors of its tables\n";
  for (const std::string& line : remarks(m)) out << "Note         " << line << '\n';
  out << '\n';
  print_values(r, out);
  print_dew(r, out);
  print_limits(r, out);
  if (!r.notes.empty() || !r.dew.reason.empty()) out << '\n';
  for (const std::string& note : r.notes) out << "Note: " << note << '\n';
  if (!r.dew.reason.empty()) out << "Note: " << r.dew.reason << '\n';
}

void print_sales_json(const SalesReport& r, std::ostream& out) {
  ordered_json fractions = ordered_json::object();
  for (std::size_t i = 0; i < r.mixture.z.size(); ++i)
    fractions[std::string(r.mixture.components[i].id)] = r.mixture.z[i];
  ordered_json root{{"mixture", {{"name", r.mixture.title}, {"mole_fractions", fractions}}},
                    {"remarks", remarks(r.mixture)},
                    {"notes", r.notes},
                    {"references", ordered_json::array()}};
  for (const CalorificResult& result : r.results) {
    ordered_json entry{{"combustion_C", kReferenceTemperatures[result.reference.combustion]},
                       {"metering_C", kReferenceTemperatures[result.reference.metering]}};
    for (const SalesRow& row : kReal) entry[row.key] = row.value(result);
    for (const SalesRow& row : kIdeal) entry[row.key] = row.value(result);
    root["references"].push_back(entry);
  }
  root["dew_points"] = nullptr;
  if (r.dew.reason.empty()) {
    const CurvePlace& c = r.dew.cricondentherm;
    root["dew_points"] = {{"cricondentherm", nullptr},
                          {"cricondentherm_status", r.dew.curve},
                          {"hydrocarbon", dew_json(r.dew.hydrocarbon)},
                          {"water", dew_json(r.dew.water)}};
    if (c.found()) root["dew_points"]["cricondentherm"] = {{"temperature_K", c.T}, {"pressure_Pa", c.P}};
  } else {
    root["notes"].push_back(r.dew.reason);
  }
  root["limits"] = ordered_json::array();
  for (const Limit& l : r.limits) root["limits"].push_back(limit_json(l));
  root["pass"] = nullptr;
  if (!r.limits.empty()) root["pass"] = failed_limits(r).empty();
  out << root.dump(2) << '\n';
}

void print_sales_csv(const SalesReport& r, std::ostream& out) {
  const Unit& T = r.units[Quantity::temperature];
  const std::string in_T = column_name("temperature_K", Quantity::temperature, T).substr(11);  // "_C"
  out << "combustion_C,metering_C";
  for (const auto rows : {std::span<const SalesRow>(kReal), std::span<const SalesRow>(kIdeal)})
    for (const SalesRow& row : rows) out << ',' << column_name(row.key, row.quantity, r.units[row.quantity]);
  out << fmt::format(",cricondentherm{0},hydrocarbon_dew{0},water_dew{0},verdict,failed_limits\n", in_T);
  const auto dew = [&](const std::vector<DewPoint>& points) {
    return exact(DewPoints::hottest(points).value_or(kNone), T);
  };
  for (const CalorificResult& result : r.results) {
    out << fmt::format("{},{}", kReferenceTemperatures[result.reference.combustion],
                       kReferenceTemperatures[result.reference.metering]);
    for (const auto rows : {std::span<const SalesRow>(kReal), std::span<const SalesRow>(kIdeal)})
      for (const SalesRow& row : rows) out << ',' << exact(row.value(result), r.units[row.quantity]);
    out << fmt::format(",{},{},{},{},{}\n",
                       exact(r.dew.cricondentherm.found() ? r.dew.cricondentherm.T : kNone, T),
                       dew(r.dew.hydrocarbon), dew(r.dew.water),
                       r.limits.empty()           ? ""
                       : failed_limits(r).empty() ? "pass"
                                                  : "fail",
                       failed_limits(r));
  }
}

}  // namespace kestrune::host
