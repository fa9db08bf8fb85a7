#include "commands/points.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "commands/states.hpp"
#include "table.hpp"

namespace kestrune::host {

namespace {

using nlohmann::ordered_json;

double in_unit(const PointColumn& c, std::size_t row) {
  return c.unit != nullptr ? c.unit->from_base(c.values[row]) : c.values[row];
}

void print_text(const Points& p, const Mixture& mixture, std::ostream& out) {
  out << fmt::format("Mixture      {}{}{} components, PPR78 with the group interactions of set {}\n",
                     mixture.title, mixture.title.empty() ? "" : ", ", mixture.count(), mixture.set_name);
  for (const std::string& line : remarks(mixture)) out << "Note         " << line << '\n';
  for (const std::string& line : p.notes) out << line << '\n';
  out << '\n';
  std::vector<std::string> headings;
  for (const PointColumn& c : p.columns)
    headings.push_back(c.unit != nullptr ? fmt::format("{} {}", c.heading, c.unit->name) : c.heading);
  headings.emplace_back("status");
  const auto is_said = [](const std::string& text) { return !text.empty(); };
  const bool warned = std::any_of(p.warnings.begin(), p.warnings.end(), is_said);
  if (warned) headings.emplace_back("warning");
  Table table(headings, std::string(p.columns.size(), 'r') + "ll");
  for (std::size_t row = 0; row < p.statuses.size(); ++row) {
    std::vector<std::string> cells;
    for (const PointColumn& c : p.columns) {
      const double value = in_unit(c, row);
      cells.push_back(c.decimals < 0 ? shown_significant(value) : shown_fixed(value, c.decimals));
    }
    cells.push_back(status_in_words(p.statuses[row]));
    if (warned) cells.push_back(p.warnings[row]);
    table.add(cells);
  }
  table.print(out);
  if (!p.remarks.empty()) out << '\n';
  for (const std::string& line : p.remarks) out << "Note: " << line << '\n';
}

void print_csv(const Points& p, std::ostream& out) {
  for (const PointColumn& c : p.columns)
    out << (c.unit != nullptr ? column_name(c.csv, c.quantity, *c.unit) : c.csv) << ',';
  out << (p.with_warnings ? "status,status_text,warning\n" : "status,status_text\n");
  for (std::size_t row = 0; row < p.statuses.size(); ++row) {
    for (const PointColumn& c : p.columns) {
      static const Unit none{"", 1.0};
      out << exact(c.values[row], c.unit != nullptr ? *c.unit : none) << ',';
    }
    out << p.statuses[row] << ',' << csv_field(kv_status_text(p.statuses[row]));
    out << (p.with_warnings ? "," + csv_field(p.warnings[row]) : "") << '\n';
  }
}

void print_json(const Points& p, const Mixture& mixture, std::ostream& out) {
  ordered_json fractions = ordered_json::object();
  for (std::size_t i = 0; i < mixture.z.size(); ++i)
    fractions[std::string(mixture.components[i].id)] = mixture.z[i];
  ordered_json root{{"mixture", {{"set", mixture.set_name}, {"mole_fractions", fractions}}},
                    {"remarks", remarks(mixture)},
                    {"notes", p.notes},
                    {"further_notes", p.remarks},
                    {"points", ordered_json::array()}};
  for (std::size_t row = 0; row < p.statuses.size(); ++row) {
    ordered_json point = ordered_json::object();
    for (const PointColumn& c : p.columns) point[c.json] = c.values[row];  // NaN becomes null
    point["status"] = p.statuses[row];
    point["status_text"] = kv_status_text(p.statuses[row]);
    if (p.with_warnings) point["warning"] = p.warnings[row];
    root["points"].push_back(point);
  }
  out << root.dump(2) << '\n';
}

}  // namespace

PointColumn temperature_column(const UnitSystem& units) {
  return {"T", "temperature_K", "temperature_K", &units[Quantity::temperature], 3, {}, Quantity::temperature};
}

PointColumn pressure_column(const UnitSystem& units) {
  return {"P", "pressure_Pa", "pressure_Pa", &units[Quantity::pressure], 4, {}, Quantity::pressure};
}

void print_points(const Points& points, const Mixture& mixture, const OutputOptions& options,
                  Session& session) {
  if (options.format == "json")
    print_json(points, mixture, session.out);
  else if (options.format == "csv")
    print_csv(points, session.out);
  else
    print_text(points, mixture, session.out);
  if (options.format == "csv") {
    tell(session, remarks(mixture));
    tell(session, points.remarks);
  }
  for (const StatusCode status : points.statuses)
    if (status != KV_OK) session.exit_code = exit_status;
}

}  // namespace kestrune::host
