// kestrune flash: liquid and vapour at two conditions.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <utility>

#include "commands/states.hpp"
#include "table.hpp"

namespace kestrune::host {

namespace {

struct FlashOptions {
  StateOptions states;
  bool details = false;
};

void print_summary(const StateReport& r, std::ostream& out) {
  const bool water = (r.mixture.record.flags & FreeWaterFlag) != 0;
  const Unit &T = r.units[Quantity::temperature], &P = r.units[Quantity::pressure];
  const std::string_view density = r.units[Quantity::density].name;
  // The vapour fraction has a column in any case.
  const Quantity given = quantities_of(r.states.front().given).front();
  const bool energy = given == Quantity::enthalpy || given == Quantity::entropy;
  std::vector<std::string> headings;
  if (energy)
    headings.push_back(fmt::format("{} {}", given == Quantity::enthalpy ? "H" : "S", r.units[given].name));
  headings.insert(headings.end(),
                  {fmt::format("T {}", T.name), fmt::format("P {}", P.name), "phases", "vapour mol"});
  if (water) headings.emplace_back("free water mol");
  headings.insert(headings.end(), {"Z vapour", "Z liquid", fmt::format("{} vap", density),
                                   fmt::format("{} liq", density), "status"});
  Table table(headings, std::string(energy ? "r" : "") + (water ? "rrlrrrrrrl" : "rrlrrrrrl"));
  for (const Equilibrium& s : r.states) {
    const auto of = [&](PhaseKind kind, Property property, const Unit& unit, int decimals) -> std::string {
      const PhaseState* p = s.phase(kind);
      return p == nullptr ? "-" : shown_fixed(unit.from_base(p->properties[property]), decimals);
    };
    std::vector<std::string> row;
    if (energy) row.push_back(shown_given(r, s));
    row.insert(row.end(), {shown_condition(T, s.T, 2), shown_condition(P, s.P, 3), phases_in_words(s),
                           s.phases.empty() && !s.of_fraction() ? "-" : shown_fixed(s.beta, 6)});
    const PhaseState* free_water = s.phase(PhaseKind::free_water);
    if (water) row.push_back(free_water == nullptr ? "-" : shown_fixed(free_water->mole_fraction, 6));
    for (const auto& [property, decimals] : {std::pair{Property::Z, 5}, {Property::density, 3}}) {
      const Unit& unit = r.units[property == Property::Z ? Quantity::ratio : Quantity::density];
      row.push_back(of(PhaseKind::vapour, property, unit, decimals));
      row.push_back(of(PhaseKind::liquid, property, unit, decimals));
    }
    row.push_back(short_status(s));
    table.add(row);
  }
  table.print(out);
}

// Mole fractions by component, with K = y/x where there is a vapour and a liquid.
void print_composition(const StateReport& r, const Equilibrium& s, std::ostream& out) {
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
void print_last_iterate(const StateReport& r, const Equilibrium& s, std::ostream& out) {
  const Unit& T = r.units[Quantity::temperature];
  out << fmt::format("The last iterate, not an equilibrium: {} {}, vapour fraction {}\n\n",
                     shown_condition(T, s.last_T, 3), T.name, shown_fraction(s.beta));
  Table table({"mole fractions", "feed", "vapour", "liquid", "K"}, "l");
  for (std::size_t i = 0; i < s.x.size(); ++i) {
    table.add({std::string(r.mixture.components[i].name), shown_fraction(r.mixture.z[i]),
               shown_fraction(s.y[i]), shown_fraction(s.x[i]), shown_digits(s.K[i], 5)});
  }
  table.print(out);
}

void print_details(const StateReport& r, const Equilibrium& s, std::ostream& out) {
  constexpr Property rows[] = {Property::Z,         Property::density,     Property::enthalpy,
                               Property::entropy,   Property::Cp,          Property::speed_of_sound,
                               Property::viscosity, Property::conductivity};
  print_state(r, s, out);
  if (!s.answered() && !s.iterate_left()) return;
  out << '\n';
  if (s.iterate_left()) return print_last_iterate(r, s, out);
  print_properties(r, s, rows, out);
  out << '\n';
  print_composition(r, s, out);
}

void print_flash(const StateReport& r, bool details, std::ostream& out) {
  print_mixture(r, out);
  const bool summary = r.states.size() > 1;
  if (summary) {
    out << '\n';
    print_summary(r, out);
  }
  for (const Equilibrium& s : r.states) {
    if (summary && !details) break;
    if (summary) out << '\n' << std::string(72, '-') << '\n';
    print_details(r, s, out);
  }
  print_notes(r.states, out);
}

}  // namespace

void add_flash_command(CLI::App& app, Session& session) {
  auto* command = app.add_subcommand(
      "flash",
      "Phases at two conditions: temperature and pressure; enthalpy or entropy and pressure; vapour fraction "
      "(bubble and dew points) and pressure or temperature");
  const auto options = std::make_shared<FlashOptions>();
  options->states.mixture.add_to(*command);
  options->states.conditions.add_TP_to(*command, false);
  options->states.conditions.add_energy_and_fraction_to(*command);
  options->states.add_to(*command);
  command->add_flag("--details", options->details, "Composition of every state, not of a single one only");
  command->callback([options, &session] {
    const auto print = [&](const StateReport& report, std::ostream& out) {
      print_flash(report, options->details, out);
    };
    report_states(options->states, session, flash, print, false);
  });
}

}  // namespace kestrune::host
