#include "commands/states.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

void StateOptions::add_to(CLI::App& command) {
  command.add_option(
      "--phases", phases,
      "auto (default): as many phases as there are, up to three; 2: vapour and liquid; 3: two liquids "
      "and vapour");
  command.add_option(
      "--water-model", water_model,
      "Water of a gas: groups (default), by the flash; saturation, by the balance of the command water");
  missing.add_to(command);
  record.add_to(command);
  output.add_to(command);
  command.add_option("--energy", energy,
                     "Unit of enthalpies in the tables, entropies follow: kJ/kg, J/kg, J/mol, kJ/mol, kJ/kmol, "
                     "cal/mol, Btu/lb or Btu/lbmol");
  command
      .add_option(
          "--print", print,
          "Only these numbers, one line per state, in the units of JSON: T, P, beta, dense, "
          "liquid, liquid_volume, hydrocarbon, aqueous, M, H, S, G, Z, density or a key of JSON, by commas")
      ->excludes(command.get_option("--format"));
}

UnitSystem StateOptions::system() const {
  UnitSystem units = output.system();
  if (!energy.empty()) units.choose_energy(energy);
  return units;
}

Evaluate StateOptions::flash() const {
  const std::string number = lower(trimmed(phases)), model = lower(trimmed(water_model));
  if (!number.empty() && number != "auto" && number != "2" && number != "3")
    throw InputError(fmt::format("--phases {}: a flash looks for auto, 2 or 3 phases", phases));
  if (!model.empty() && model != "groups" && model != "saturation")
    throw InputError(fmt::format("--water-model {}: use groups or saturation", water_model));
  if (model == "saturation") {
    if (record.free_water)
      throw InputError("--water-model saturation has a liquid water of its own: no --free-water");
    if (number == "2") throw InputError("--water-model saturation looks for all phases: no --phases 2");
    return flash_with_saturation;
  }
  return number == "2" ? flash_of_two : number == "3" ? flash_of_up_to_three : flash_of_all;
}

EvaluateAll each(const Evaluate& evaluate) {
  return [evaluate](const Exports& library, Mixture& mixture, Given given, double first, double second) {
    return std::vector<Equilibrium>{evaluate(library, mixture, given, first, second)};
  };
}

void report_states(const StateOptions& options, Session& session, const EvaluateAll& evaluate,
                   const PrintText& print_text, bool overall_rows) {
  const UnitSystem units = options.system();
  const std::vector<std::string> numbers = split(options.print, ',');
  check_number_names(numbers);
  Mixture mixture = options.mixture.build();
  const Conditions conditions = options.conditions.read(units, mixture.molar_mass);
  if (lower(trimmed(options.water_model)) == "saturation" && conditions.given != Given::TP)
    throw InputError("--water-model saturation needs temperature and pressure");
  options.missing.check(mixture);
  options.record.apply(mixture);
  const Exports library = session.library();
  mixture.hand_over(library);
  std::vector<Equilibrium> states;
  for (const double first : conditions.values[0]) {
    for (const double second : conditions.values[1]) {
      for (Equilibrium& s : evaluate(library, mixture, conditions.given, first, second)) {
        if (s.first_failure() != KV_OK || !s.stable) session.exit_code = exit_status;
        states.push_back(std::move(s));
      }
    }
  }
  const StateReport report{mixture, states, units};
  if (!numbers.empty())
    print_numbers(report, numbers, session.out, session.err);
  else if (options.output.format == "json")
    print_json(report, session.out);
  else if (options.output.format == "csv")
    print_csv(report, overall_rows, session.out);
  else
    print_text(report, session.out);
  const bool csv = numbers.empty() && options.output.format == "csv";
  if (csv || !numbers.empty()) {
    tell(session, remarks(mixture));
    tell(session, csv ? notes_of(report) : notes_on(report, numbers));
    const auto extrapolated = [](const Equilibrium& s) { return s.extrapolated(); };
    if (csv && std::any_of(states.begin(), states.end(), extrapolated)) tell(session, {kExtrapolatedText});
  }
}

}  // namespace kestrune::host
