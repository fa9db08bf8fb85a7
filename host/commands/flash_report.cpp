#include "commands/flash_report.hpp"

#include <fmt/format.h>

#include <utility>

#include "commands/session.hpp"
#include "table.hpp"

namespace kestrune::host {

namespace {

std::string value_with_unit(const Unit& unit, double base, int decimals) {
  return fmt::format("{:.{}f} {}", unit.from_base(base), decimals, unit.name);
}

// Decimals of a pressure; a pascal has none.
int pressure_decimals(const FlashReport& r, int decimals) {
  return r.units.pressure->name == "Pa" ? 0 : decimals;
}

std::string status_in_words(StatusCode status) {
  return status == KV_OK ? kv_status_text(status) : fmt::format("{}: {}", status, kv_status_text(status));
}

// The first thing that went wrong with a state.
std::string status_in_words(const Equilibrium& state) {
  if (state.status != KV_OK) return status_in_words(state.status);
  for (const PhaseState& p : state.phases) {
    if (p.status != KV_OK)
      return fmt::format("properties of the {}: {}", phase_name(p.kind), status_in_words(p.status));
  }
  return status_in_words(KV_OK);
}

void print_summary(const FlashReport& r, std::ostream& out) {
  const bool water = (r.mixture.record.flags & FreeWaterFlag) != 0;
  std::vector<std::string> headings{fmt::format("T {}", r.units.temperature->name),
                                    fmt::format("P {}", r.units.pressure->name), "phases", "vapour mol"};
  if (water) headings.emplace_back("free water mol");
  headings.insert(headings.end(), {"Z vapour", "Z liquid", "kg/m3 vap", "kg/m3 liq", "status"});
  Table table(headings, water ? "rrlrrrrrrl" : "rrlrrrrrl");
  for (const Equilibrium& s : r.states) {
    const auto of = [&](PhaseKind kind, double PhaseState::*value, int decimals) -> std::string {
      const PhaseState* p = s.phase(kind);
      return p == nullptr ? "-" : shown_fixed(p->*value, decimals);
    };
    std::vector<std::string> row{shown_fixed(r.units.temperature->from_base(s.T), 2),
                                 shown_fixed(r.units.pressure->from_base(s.P), pressure_decimals(r, 3)),
                                 phases_in_words(s), s.phases.empty() ? "-" : shown_fixed(s.beta, 6)};
    if (water) row.push_back(of(PhaseKind::free_water, &PhaseState::mole_fraction, 6));
    for (const auto& [value, decimals] : {std::pair{&PhaseState::Z, 5}, {&PhaseState::density, 3}}) {
      row.push_back(of(PhaseKind::vapour, value, decimals));
      row.push_back(of(PhaseKind::liquid, value, decimals));
    }
    row.push_back(status_in_words(s));
    table.add(row);
  }
  table.print(out);
}

void print_phase_properties(const FlashReport& r, const Equilibrium& s, std::ostream& out) {
  std::vector<std::string> headings{"", "feed"}, mole{"mole fraction of phase", "1.000000"},
      mass{"mass fraction of phase", "1.000000"},
      molar{"molar mass, g/mol", shown_fixed(r.mixture.molar_mass, 4)}, z{"compressibility factor Z", ""},
      density{"density, kg/m3", ""};
  for (const PhaseState& p : s.phases) {
    headings.emplace_back(phase_name(p.kind));
    mole.push_back(shown_fraction(p.mole_fraction));
    mass.push_back(shown_fraction(p.mass_fraction));
    molar.push_back(shown_fixed(p.molar_mass, 4));
    z.push_back(shown_fixed(p.Z, 5));
    density.push_back(shown_fixed(p.density, 3));
  }
  Table table(headings, "l");
  for (const auto& row : {mole, mass, molar, z, density}) table.add(row);
  table.print(out);
}

// Mole fractions by component, with K = y/x where there is a vapour and a liquid.
void print_composition(const FlashReport& r, const Equilibrium& s, std::ostream& out) {
  const PhaseState* vapour = s.phase(PhaseKind::vapour);
  const PhaseState* liquid = s.phase(PhaseKind::liquid);
  const bool ratios = vapour != nullptr && liquid != nullptr;
  std::vector<std::string> headings{"mole fractions", "feed"};
  const std::size_t columns = s.phases.size() > 1 ? s.phases.size() : 0;  // a single phase is the feed
  for (std::size_t p = 0; p < columns; ++p) headings.emplace_back(phase_name(s.phases[p].kind));
  if (ratios) headings.emplace_back("K = y/x");
  Table table(headings, "l");
  for (std::size_t i = 0; i < s.x.size(); ++i) {
    std::vector<std::string> row{std::string(r.mixture.components[i].name), shown_fraction(r.mixture.z[i])};
    for (std::size_t p = 0; p < columns; ++p) row.push_back(shown_fraction(s.phases[p].x[i]));
    if (ratios) row.push_back(shown_digits(liquid->x[i] > 0.0 ? vapour->x[i] / liquid->x[i] : s.K[i], 5));
    table.add(row);
  }
  table.print(out);
}

// What the flash held when it gave up.
void print_last_iterate(const FlashReport& r, const Equilibrium& s, std::ostream& out) {
  out << fmt::format("The last iterate, not an equilibrium: vapour fraction {}\n\n", shown_fraction(s.beta));
  Table table({"mole fractions", "feed", "vapour", "liquid", "K"}, "l");
  for (std::size_t i = 0; i < s.x.size(); ++i) {
    table.add({std::string(r.mixture.components[i].name), shown_fraction(r.mixture.z[i]),
               shown_fraction(s.y[i]), shown_fraction(s.x[i]), shown_digits(s.K[i], 5)});
  }
  table.print(out);
}

void print_details(const FlashReport& r, const Equilibrium& s, std::ostream& out) {
  out << fmt::format("Temperature  {} ({:.3f} K)\n", value_with_unit(*r.units.temperature, s.T, 3), s.T)
      << fmt::format("Pressure     {} ({:.4f} atm)\n",
                     value_with_unit(*r.units.pressure, s.P, pressure_decimals(r, 4)), s.P / kAtmInPa)
      << fmt::format("Status       {}\n", status_in_words(s))
      << fmt::format("Phases       {}\n", phases_in_words(s));
  if (s.status >= KV_STATUS_CALL_BLOCK) return;
  out << '\n';
  if (s.status != KV_OK) return print_last_iterate(r, s, out);
  print_phase_properties(r, s, out);
  out << '\n';
  print_composition(r, s, out);
}

}  // namespace

void FlashReport::print_table(bool details, std::ostream& out) const {
  out << fmt::format("Mixture      {}{}{} components, PPR78 with the group interactions of set {}\n",
                     mixture.title, mixture.title.empty() ? "" : ", ", mixture.count(), mixture.set_name);
  if ((mixture.record.flags & FreeWaterFlag) != 0) {
    const double a = mixture.record.solubility_a, b = mixture.record.solubility_b;
    out << fmt::format("Free water   solubility in the liquid exp({:.6g} - {:.6g} K / T)\n", a, b);
  }
  for (const std::string& line : remarks(mixture)) out << "Note         " << line << '\n';
  const bool summary = states.size() > 1;
  if (summary) {
    out << '\n';
    print_summary(*this, out);
  }
  if (summary && !details) return;
  for (const Equilibrium& s : states) {
    if (summary) out << '\n' << std::string(72, '-') << '\n';
    print_details(*this, s, out);
  }
}

}  // namespace kestrune::host
