#include "commands/states.hpp"

#include <CLI/CLI.hpp>

#include "error.hpp"

namespace kestrune::host {

void StateOptions::add_to(CLI::App& command) {
  mixture.add_to(command);
  command.add_option("-T,--temperature", temperature, "Value, list 200,220,250 or range 150:350:10 (25 C)")
      ->required();
  command.add_option("-P,--pressure", pressure, "Value, list or range (60 barg)")->required();
  missing.add_to(command);
  record.add_to(command);
  output.add_to(command);
  command.add_option("--energy", energy,
                     "Unit of enthalpies in the tables, entropies follow: kJ/kg, J/kg, J/mol, kJ/mol, kJ/kmol, "
                     "cal/mol, Btu/lb or Btu/lbmol");
}

UnitSystem StateOptions::system() const {
  UnitSystem units = output.system();
  if (!energy.empty()) units.choose_energy(energy);
  return units;
}

void report_states(const StateOptions& options, Session& session, const Evaluate& evaluate,
                   const PrintText& print_text, bool overall_rows) {
  const UnitSystem units = options.system();
  const auto conditions = [&](Quantity quantity, const std::string& text) {
    return parse_conditions(quantity, text, units[quantity]);
  };
  const auto temperatures = conditions(Quantity::temperature, options.temperature);
  const auto pressures = conditions(Quantity::pressure, options.pressure);
  if (static_cast<double>(temperatures.size()) * static_cast<double>(pressures.size()) > 1e6) {
    throw InputError("more than a million states: ask for fewer temperatures or pressures");
  }
  Mixture mixture = options.mixture.build();
  options.missing.check(mixture);
  options.record.apply(mixture);
  const Exports library = session.library();
  mixture.hand_over(library);
  std::vector<Equilibrium> states;
  for (const double T : temperatures) {
    for (const double P : pressures) {
      states.push_back(evaluate(library, mixture, T, P));
      if (states.back().first_failure() != KV_OK) session.exit_code = exit_status;
    }
  }
  const StateReport report{mixture, states, units};
  if (options.output.format == "json")
    print_json(report, session.out);
  else if (options.output.format == "csv")
    print_csv(report, overall_rows, session.out);
  else
    print_text(report, session.out);
}

}  // namespace kestrune::host
