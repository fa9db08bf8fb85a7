// kestrune valve, expander, compressor: outlet and work of a machine.
#include "commands/machine_report.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cmath>

#include "commands/states.hpp"
#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

struct MachineOptions {
  MachineKind kind;
  MixtureOptions mixture;
  MissingPairOptions missing;
  OutputOptions output;
  std::string temperature, pressure, outlet, energy, isentropic, polytropic, cooling, flow;
  int stages = 1;
};

double single(Quantity quantity, const std::string& text, const UnitSystem& units) {
  const auto values = parse_conditions(quantity, text, units[quantity]);
  if (values.size() != 1)
    throw InputError(fmt::format("one {} of the inlet is wanted, not \"{}\"", quantity_name(quantity), text));
  return values.front();
}

double efficiency_of(const std::string& text) {
  const bool percent = !text.empty() && text.back() == '%';
  const auto number = parse_number(percent ? text.substr(0, text.size() - 1) : text);
  const double value = number.value_or(kNone) * (percent ? 0.01 : 1.0);
  if (!(value > 0.0 && value <= 1.0))
    throw InputError(fmt::format("the efficiency {} is not above 0 and at most 1: 0.8 or 80%", text));
  return value;
}

// mol/s from "10 kg/s", "5 t/h", "100 kmol/h", "50000 Sm3/h" ...
double flow_of(const std::string& text, double molar_mass) {
  if (text.empty()) return kNone;
  constexpr double hour = 3600.0, day = 24.0 * hour;
  const double gas = 8.314462618, pound = 0.45359237, cubic_foot = 0.3048 * 0.3048 * 0.3048;
  const double of_kg = 1e3 / molar_mass, of_Nm3 = kAtmInPa / (gas * kZeroCelsius),
               of_Sm3 = kAtmInPa / (gas * kStandardT),
               of_scf = kStandardFootP * cubic_foot / (gas * kStandardFootT);
  const std::pair<const char*, double> units[] = {{"kg/s", of_kg},
                                                  {"kg/h", of_kg / hour},
                                                  {"t/h", 1e3 * of_kg / hour},
                                                  {"kmol/h", 1e3 / hour},
                                                  {"mol/s", 1.0},
                                                  {"nm3/h", of_Nm3 / hour},
                                                  {"sm3/h", of_Sm3 / hour},
                                                  {"mmscfd", 1e6 * of_scf / day},
                                                  {"lb/h", pound * of_kg / hour}};
  const std::size_t length = number_length(text);
  const auto number = parse_number(text.substr(0, length));
  const std::string name = lower(trimmed(std::string_view(text).substr(length)));
  for (const auto& [unit, factor] : units)
    if (number && *number > 0.0 && name == unit) return *number * factor;
  throw InputError(
      fmt::format("the flow \"{}\" is not understood: a number above 0 with kg/s, kg/h, t/h, lb/h, mol/s, "
                  "kmol/h, Nm3/h, Sm3/h or MMscfd",
                  text));
}

Machine machine_of(const MachineOptions& o, const UnitSystem& units) {
  Machine machine{o.kind};
  if (o.kind == MachineKind::valve) return machine;
  if (o.isentropic.empty() == o.polytropic.empty())
    throw InputError("give the efficiency: --isentropic 0.8 or --polytropic 0.8");
  machine.path = o.polytropic.empty() ? Path::isentropic : Path::polytropic;
  machine.efficiency = efficiency_of(o.polytropic.empty() ? o.isentropic : o.polytropic);
  machine.stages = o.stages;
  if (!o.cooling.empty()) {
    if (o.stages < 2) throw InputError("--cool is between stages: --stages 2 or more");
    machine.cooling_T = single(Quantity::temperature, o.cooling, units);
  }
  return machine;
}

// Pressures of the outlet, on the right side of that of the inlet.
std::vector<double> outlets(const MachineOptions& o, const UnitSystem& units, double P) {
  const bool up = o.kind == MachineKind::compressor;
  auto values = parse_conditions(Quantity::pressure, o.outlet, units[Quantity::pressure]);
  for (const double to : values) {
    if (up ? to > P : to < P) continue;
    const Unit& unit = units[Quantity::pressure];
    throw InputError(
        fmt::format("the outlet of {} is at a {} pressure than its inlet: {:.6g} {} is not {} {:.6g} {}",
                    up                             ? "a compressor"
                    : o.kind == MachineKind::valve ? "a valve"
                                                   : "an expander",
                    up ? "higher" : "lower", unit.from_base(to), unit.name, up ? "above" : "below",
                    unit.from_base(P), unit.name));
  }
  return values;
}

void run_machine_command(const MachineOptions& o, Session& session) {
  UnitSystem units = o.output.system();
  if (!o.energy.empty()) units.choose_energy(o.energy);
  const Machine machine = machine_of(o, units);
  const double T = single(Quantity::temperature, o.temperature, units),
               P = single(Quantity::pressure, o.pressure, units);
  const std::vector<double> to = outlets(o, units, P);
  Mixture mixture = o.mixture.build();
  MachineReport report{mixture, units, machine, flow_of(o.flow, mixture.molar_mass), {}, {}};
  o.missing.check(mixture);
  const Exports library = session.library();
  mixture.hand_over(library);
  const Equilibrium inlet = flash_of_all(library, mixture, Given::TP, T, P);
  if (!inlet.answered())
    throw InputError(fmt::format("there is no answer for the inlet: {}", status_in_words(inlet.status)));
  for (const double outlet : to) {
    report.results.push_back(run_machine(library, mixture, machine, inlet, outlet));
    if (report.results.back().status != KV_OK) session.exit_code = exit_status;
  }
  report.notes = machine_notes(report);
  if (o.output.format == "json")
    print_machine_json(report, session.out);
  else if (o.output.format == "csv")
    print_machine_csv(report, session.out);
  else
    print_machine_text(report, session.out);
  if (o.output.format == "csv") {
    tell(session, remarks(mixture));
    tell(session, report.notes);
  }
}

CLI::App& add_machine(CLI::App& app, Session& session, MachineKind kind, const char* name, const char* text,
                      const char* examples) {
  auto* command = app.add_subcommand(name, text);
  const auto o = std::make_shared<MachineOptions>();
  o->kind = kind;
  o->mixture.add_to(*command);
  command->footer(examples);
  command->add_option("-T,--temperature", o->temperature, "Temperature of the inlet (25 C)")->required();
  command->add_option("-P,--pressure", o->pressure, "Pressure of the inlet (60 barg)")->required();
  command->add_option("--to", o->outlet, "Pressures of the outlet: value, list or range (20 bar)")->required();
  if (kind != MachineKind::valve) {
    command->add_option("--isentropic", o->isentropic, "Isentropic efficiency of each stage: 0.8 or 80%");
    command->add_option("--polytropic", o->polytropic, "Polytropic efficiency of each stage, instead");
    command->add_option("--flow", o->flow,
                        "Flow, for the power: with kg/s, kg/h, t/h, lb/h, mol/s, kmol/h, Nm3/h, "
                        "Sm3/h or MMscfd");
  }
  if (kind == MachineKind::compressor) {
    command->add_option("--stages", o->stages, "Stages of equal pressure ratio (1)")->check(CLI::Range(1, 20));
    command->add_option("--cool", o->cooling,
                        "Temperature of the gas behind the coolers between the stages (35 C)");
  }
  command->add_option("--energy", o->energy,
                      "Unit of enthalpies and work, entropies follow: kJ/kg, J/mol, Btu/lb ...");
  o->missing.add_to(*command);
  o->output.add_to(*command);
  command->callback([o, &session] { run_machine_command(*o, session); });
  return *command;
}

}  // namespace

void add_machine_commands(CLI::App& app, Session& session) {
  add_machine(app, session, MachineKind::valve, "valve",
              "A valve: temperature and phases behind it, at constant enthalpy",
              "Examples:\n"
              "  kestrune valve --z methane=0.9,propane=0.1 -T 40 C -P 60 bar --to 20 bar\n"
              "  kestrune valve --z methane=0.9,propane=0.1 -T 40 C -P 60 bar --to 10:50:20 bar");
  add_machine(
      app, session, MachineKind::expander, "expander", "An expander: outlet and work by its efficiency",
      "Example:\n"
      "  kestrune expander --z methane=0.9,propane=0.1 -T 40 C -P 60 bar --to 20 bar --isentropic 0.8 --flow "
      "\"5 kg/s\"");
  add_machine(app, session, MachineKind::compressor, "compressor",
              "A compressor: outlet, work and coolers by its efficiency and stages",
              "Example:\n"
              "  kestrune compressor --z methane=0.95,ethane=0.05 -T 20 C -P 10 bar --to 90 bar --polytropic "
              "0.78 --stages "
              "2 --cool 35 C");
}

}  // namespace kestrune::host
