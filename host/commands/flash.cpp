// kestrune flash: liquid and vapour at temperature and pressure.
#include <CLI/CLI.hpp>

#include "commands/flash_report.hpp"
#include "commands/session.hpp"
#include "error.hpp"

namespace kestrune::host {

namespace {

struct FlashOptions {
  MixtureOptions mixture;
  MissingPairOptions missing;
  RecordOptions record;
  OutputOptions output;
  std::string temperature, pressure;
  bool details = false;
};

void flash(const FlashOptions& options, Session& session) {
  const UnitSystem units = options.output.system();
  const auto temperatures = parse_conditions(Quantity::temperature, options.temperature, *units.temperature);
  const auto pressures = parse_conditions(Quantity::pressure, options.pressure, *units.pressure);
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
      states.push_back(flash_at_TP(library, mixture, T, P));
      if (!states.back().good()) session.exit_code = exit_status;
    }
  }
  const FlashReport report{mixture, states, units};
  if (options.output.format == "json")
    report.print_json(session.out);
  else if (options.output.format == "csv")
    report.print_csv(session.out);
  else
    report.print_table(options.details, session.out);
}

}  // namespace

void add_flash_command(CLI::App& app, Session& session) {
  auto* command = app.add_subcommand("flash", "Phases at temperature and pressure");
  const auto options = std::make_shared<FlashOptions>();
  options->mixture.add_to(*command);
  command
      ->add_option("-T,--temperature", options->temperature,
                   "Value, list 200,220,250 or range 150:350:10 (25 C)")
      ->required();
  command->add_option("-P,--pressure", options->pressure, "Value, list or range (60 barg)")->required();
  options->missing.add_to(*command);
  options->record.add_to(*command);
  options->output.add_to(*command);
  command->add_flag("--details", options->details, "Composition of every state, not of a single one only");
  command->callback([options, &session] { flash(*options, session); });
}

}  // namespace kestrune::host
