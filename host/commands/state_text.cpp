// The text of states that several commands share.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "commands/states.hpp"
#include "table.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

// "25.000 C (298.150 K)", "-" for a value that there is not.
std::string shown_twice(const Unit& unit, double base, int decimals, double other,
                        std::string_view other_unit) {
  if (!std::isfinite(base)) return "-";
  return fmt::format("{} {} ({:.{}f} {})", shown_condition(unit, base, decimals), unit.name, other, decimals,
                     other_unit);
}

}  // namespace

std::string status_in_words(StatusCode status) {
  return status == KV_OK ? kv_status_text(status) : fmt::format("{}: {}", status, kv_status_text(status));
}

std::string state_in_words(const Equilibrium& s, const UnitSystem& units, double molar_mass) {
  if (s.bound.found()) {
    const Quantity quantity = quantities_of(s.given).front();
    const Unit& unit = units[quantity];
    const bool enthalpy = quantity == Quantity::enthalpy;
    return fmt::format("{}: no state has this {}: {} is {} {} at {:.6g} K", s.status, quantity_name(quantity),
                       enthalpy ? "H" : "S", shown_significant(unit.from_base(s.bound.value, molar_mass)),
                       unit.name, s.bound.T);
  }
  return s.stable ? kv_status_text(s.status) : s.remark;
}

std::string short_status(const StateReport& report, const Equilibrium& state) {
  if (state.bound.found()) return state_in_words(state, report.units, report.mixture.molar_mass);
  if (state.status != KV_OK) return status_in_words(state.status);
  if (!state.stable) return "not stable";
  const bool complete = state.first_failure() == KV_OK;
  return fmt::format("{}{}", complete ? kv_status_text(KV_OK) : "incomplete", state.extrapolated() ? "*" : "");
}

std::string shown_condition(const Unit& unit, double base, int decimals) {
  return shown_fixed(unit.from_base(base), unit.name == "Pa" ? 0 : decimals);
}

std::string shown_given(const StateReport& report, const Equilibrium& s) {
  const Unit& unit = report.units[quantities_of(s.given).front()];
  const double value = unit.from_base(s.values[0], report.mixture.molar_mass);
  return s.of_fraction() ? shown_digits(value, 6) : shown_significant(value);
}

std::string shown_property(const StateReport& report, const PhaseState& phase, const PropertyInfo& info) {
  return shown_significant(
      report.units[info.quantity].from_base(phase.properties[info.property], phase.molar_mass));
}

std::string with_unit(std::string_view title, const Unit& unit, std::string_view separator) {
  return unit.name.empty() ? std::string(title) : fmt::format("{}{}{}", title, separator, unit.name);
}

void print_mixture(const StateReport& report, std::ostream& out) {
  const Mixture& mixture = report.mixture;
  out << fmt::format("Mixture      {}{}{} component{}, PPR78 with the group interactions of set {}\n",
                     mixture.title, mixture.title.empty() ? "" : ", ", mixture.count(),
                     mixture.count() == 1 ? "" : "s", mixture.set_name);
  if ((mixture.record.flags & FreeWaterFlag) != 0) {
    const double a = mixture.record.solubility_a, b = mixture.record.solubility_b;
    out << fmt::format("Free water   solubility in the liquid exp({:.6g} - {:.6g} K / T)\n", a, b);
  }
  for (const std::string& line : remarks(mixture)) out << "Note         " << line << '\n';
}

void print_state(const StateReport& report, const Equilibrium& s, std::ostream& out) {
  const Unit &T = report.units[Quantity::temperature], &P = report.units[Quantity::pressure];
  if (s.given != Given::TP) {
    const Quantity quantity = quantities_of(s.given).front();
    out << fmt::format("Given        {}\n",
                       with_unit(fmt::format("{} {}", quantity_name(quantity), shown_given(report, s)),
                                 report.units[quantity], " "));
  }
  out << "Temperature  " << shown_twice(T, s.T, 3, s.T, "K") << '\n'
      << "Pressure     " << shown_twice(P, s.P, 4, s.P / kAtmInPa, "atm") << '\n'
      << fmt::format("Status       {}\n", short_status(report, s))
      << fmt::format("Phases       {}\n", phases_in_words(s));
}

void print_properties(const StateReport& report, const Equilibrium& s, std::span<const Property> rows,
                      std::ostream& out) {
  std::vector<const PhaseState*> columns;
  if (s.phases.size() > 1) columns.push_back(&s.overall);
  for (const PhaseState& p : s.phases) columns.push_back(&p);
  std::vector<std::string> headings{""};
  for (const PhaseState* p : columns) headings.emplace_back(phase_name(p->kind));
  Table table(headings, "l");
  const auto add = [&](const std::string& title, const auto& shown) {
    std::vector<std::string> row{title};
    for (const PhaseState* p : columns) row.push_back(shown(*p));
    table.add(row);
  };
  add("mole fraction of phase", [](const PhaseState& p) { return shown_fraction(p.mole_fraction); });
  add("mass fraction of phase", [](const PhaseState& p) { return shown_fraction(p.mass_fraction); });
  add("volume fraction of phase", [](const PhaseState& p) { return shown_fraction(p.volume_fraction); });
  add("molar mass, g/mol", [](const PhaseState& p) { return shown_fixed(p.molar_mass, 4); });
  for (const Property property : rows) {
    const PropertyInfo& info = all_properties()[static_cast<std::size_t>(property)];
    add(with_unit(info.title, report.units[info.quantity], ", "),
        [&](const PhaseState& p) { return shown_property(report, p, info); });
  }
  table.print(out);
}

void print_notes(const StateReport& report, std::ostream& out) {
  const std::vector<Equilibrium>& states = report.states;
  const std::vector<std::string> notes = notes_of(report);
  // Titles of the missing properties of a phase, by phase and status; one bit per property.
  std::map<std::pair<PhaseKind, StatusCode>, unsigned> missing;
  bool extrapolated = false;
  for (const Equilibrium& s : states) {
    extrapolated = extrapolated || s.extrapolated();
    for (const PhaseState& p : s.phases) {
      for (const PropertyInfo& info : all_properties()) {
        const StatusCode status = p.properties.status(info.property);
        if (!has_value(status)) missing[{p.kind, status}] |= 1u << static_cast<unsigned>(info.property);
      }
    }
  }
  if (extrapolated || !missing.empty() || !notes.empty()) out << '\n';
  for (const std::string& note : notes) out << "Note: " << note << '\n';
  if (extrapolated) out << "* " << kExtrapolatedText << '\n';
  for (const auto& [where, properties] : missing) {
    std::vector<std::string> titles;
    for (const PropertyInfo& info : all_properties()) {
      if ((properties >> static_cast<unsigned>(info.property) & 1u) != 0) titles.emplace_back(info.title);
    }
    out << fmt::format("Not available for the {}: {}\n  status {}\n", phase_name(where.first),
                       joined(titles, ", "), status_in_words(where.second));
  }
}

}  // namespace kestrune::host
