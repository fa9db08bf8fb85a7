// kestrune props: properties of a mixture at one state or along a line of states.
#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "commands/states.hpp"
#include "error.hpp"
#include "table.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

using Rows = std::span<const Property>;

constexpr Property kState[] = {Property::Z,        Property::density, Property::molar_volume,
                               Property::enthalpy, Property::entropy, Property::free_enthalpy};
constexpr Property kDerived[] = {Property::Cp,
                                 Property::Cv,
                                 Property::speed_of_sound,
                                 Property::joule_thomson,
                                 Property::compressibility,
                                 Property::viscosity,
                                 Property::conductivity,
                                 Property::normal_density,
                                 Property::normal_volume,
                                 Property::standard_density,
                                 Property::standard_volume,
                                 Property::standard_cubic_feet};

struct PropsOptions {
  StateOptions states;
  std::string phase = "flash";
};

// One row per state and phase, and one for the phases together where there are several and overall is set.
void print_lines(const StateReport& r, Rows columns, bool overall, std::ostream& out) {
  const Unit &T = r.units[Quantity::temperature], &P = r.units[Quantity::pressure];
  std::vector<std::string> headings{fmt::format("T {}", T.name), fmt::format("P {}", P.name), "phase", "mol"};
  for (const Property property : columns) {
    const PropertyInfo& info = all_properties()[static_cast<std::size_t>(property)];
    headings.push_back(with_unit(info.heading, r.units[info.quantity], " "));
  }
  headings.emplace_back("status");
  Table table(headings, "rrl" + std::string(columns.size() + 1, 'r') + "l");
  for (const Equilibrium& s : r.states) {
    const std::vector<std::string> state{shown_condition(T, s.T, 2), shown_condition(P, s.P, 3)};
    const auto add = [&](const PhaseState& p) {
      std::vector<std::string> row(state);
      row.insert(row.end(), {std::string(phase_name(p.kind)), shown_fraction(p.mole_fraction)});
      for (const Property property : columns) {
        row.push_back(shown_property(r, p, all_properties()[static_cast<std::size_t>(property)]));
      }
      row.push_back(short_status(r, s));
      table.add(row);
    };
    for (const PhaseState& p : s.phases) add(p);
    if (overall && s.phases.size() > 1) add(s.overall);
    if (!s.phases.empty()) continue;
    std::vector<std::string> row(state);
    row.resize(headings.size() - 1, "-");
    row.push_back(short_status(r, s));
    table.add(row);
  }
  table.print(out);
}

void print_props(const StateReport& r, std::ostream& out) {
  print_mixture(r, out);
  if (r.states.size() == 1) {
    const Equilibrium& s = r.states.front();
    std::vector<Property> rows(std::begin(kState), std::end(kState));
    rows.insert(rows.end(), std::begin(kDerived), std::end(kDerived));
    print_state(r, s, out);
    if (!s.phases.empty()) {
      out << '\n';
      print_properties(r, s, rows, out);
    }
  } else {
    out << '\n';
    print_lines(r, kState, true, out);
    out << '\n';
    print_lines(r, kDerived, false, out);
  }
  print_notes(r, out);
}

void props(const PropsOptions& options, Session& session) {
  const std::string phase = lower(trimmed(options.phase));
  Evaluate evaluate = options.states.flash();
  if (phase == "gas" || phase == "liquid") {
    if (!options.states.phases.empty() || !options.states.water_model.empty())
      throw InputError(
          "--phase gas and --phase liquid take the mixture as one phase: no --phases, no --water-model");
    const PhaseKind kind = phase == "gas" ? PhaseKind::vapour : PhaseKind::liquid;
    evaluate = [kind](const Exports& library, const Mixture& mixture, Given, double T, double P) {
      return single_phase_at_TP(library, mixture, kind, T, P);
    };
  } else if (phase != "flash") {
    throw InputError(fmt::format("unknown phase \"{}\": use flash, gas or liquid", options.phase));
  }
  report_states(options.states, session, each(evaluate), print_props, phase == "flash");
}

}  // namespace

void add_props_command(CLI::App& app, Session& session) {
  auto* command = app.add_subcommand(
      "props", "Properties of the phases: density, enthalpy, heat capacity, speed of sound, viscosity ...");
  const auto options = std::make_shared<PropsOptions>();
  options->states.mixture.add_to(*command);
  options->states.conditions.add_TP_to(*command, true);
  options->states.add_to(*command);
  command->footer(
      "Examples:\n"
      "  kestrune props --z methane=0.9,ethane=0.1 -T 20 C -P 60 barg\n"
      "  kestrune props --z methane=0.9,ethane=0.1 -T 0:40:20 -P 60,80 --energy kJ/kmol --phase gas");
  command->add_option("--phase", options->phase,
                      "flash (default): the phases that are present; gas or liquid: the mixture as this phase, "
                      "without asking whether it is");
  command->callback([options, &session] { props(*options, session); });
}

}  // namespace kestrune::host
