// kestrune valve, expander, compressor: outlet and work of a machine.
#include "machine.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "commands/states.hpp"
#include "error.hpp"
#include "table.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

using nlohmann::ordered_json;

constexpr const char* kMachineNames[] = {"Valve", "Expander", "Compressor"};

struct MachineOptions {
  MachineKind kind;
  MixtureOptions mixture;
  MissingPairOptions missing;
  OutputOptions output;
  std::string temperature, pressure, outlet, energy, isentropic, polytropic, cooling, flow;
  int stages = 1;
};

struct MachineReport {
  const Mixture& mixture;
  UnitSystem units;
  Machine machine;
  double flow;  // mol/s, NaN where none was given
  std::vector<MachineResult> results;
  std::vector<std::string> notes;
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
  const auto values = parse_conditions(Quantity::pressure, o.outlet, units[Quantity::pressure]);
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

double liquid_of(const Equilibrium& s) {
  return s.liquid_fraction(false) + s.liquid_fraction(true);
}

// What the model cannot do, and liquid where none belongs.
std::vector<std::string> machine_notes(const MachineReport& r) {
  std::vector<Equilibrium> states;
  std::vector<std::string> notes;
  for (const MachineResult& result : r.results) {
    for (std::size_t k = 0; k < result.stations.size(); ++k) {
      const Station& station = result.stations[k];
      states.push_back(station.state);
      const bool enters = k + 1 < result.stations.size() && result.stations[k + 1].heat == 0.0;
      if (r.machine.kind == MachineKind::valve || !enters || !(liquid_of(station.state) > 0.0)) continue;
      const std::string note = fmt::format(
          "{} mol-% liquid enters behind {}: the numbers hold for the whole stream; "
          "machines want it separated before",
          shown_digits(100.0 * liquid_of(station.state), 3),
          station.name == "inlet" ? "the inlet" : station.name);
      if (std::find(notes.begin(), notes.end(), note) == notes.end()) notes.push_back(note);
    }
  }
  const StateReport report{r.mixture, states, r.units};
  for (const std::string& note : notes_of(report)) notes.push_back(note);
  return notes;
}

std::string shown_energy(const MachineReport& r, double value) {
  return shown_significant(r.units[Quantity::enthalpy].from_base(value, r.mixture.molar_mass));
}

std::string kilowatts(const MachineReport& r, double value) {
  return shown_significant(1e-3 * value * r.flow);
}

// What happened on the way of one outlet, a line for each place.
void print_stations(const MachineReport& r, const MachineResult& result, std::ostream& out) {
  const Unit &T = r.units[Quantity::temperature], &P = r.units[Quantity::pressure],
             &H = r.units[Quantity::enthalpy], &S = r.units[Quantity::entropy];
  const double M = r.mixture.molar_mass;
  std::vector<std::string> headings{"",
                                    with_unit("T", T, " "),
                                    with_unit("P", P, " "),
                                    "phases",
                                    "vapour mol",
                                    "liquid volume",
                                    with_unit("H", H, " "),
                                    with_unit("S", S, " "),
                                    with_unit("work", H, " ")};
  const bool cooled = result.heat != 0.0;
  if (cooled) headings.push_back(with_unit("heat", H, " "));
  Table table(headings, "lrrlrrrrrr");
  for (const Station& station : result.stations) {
    const Equilibrium& s = station.state;
    std::vector<std::string> row{station.name,
                                 shown_condition(T, s.T, 2),
                                 shown_condition(P, s.P, 3),
                                 phases_in_words(s),
                                 shown_fraction(s.beta),
                                 shown_fraction(s.liquid_volume()),
                                 shown_energy(r, s.overall.properties[Property::enthalpy]),
                                 shown_significant(S.from_base(s.overall.properties[Property::entropy], M)),
                                 station.work == 0.0 ? "-" : shown_energy(r, station.work)};
    if (cooled) row.push_back(station.heat == 0.0 ? "-" : shown_energy(r, station.heat));
    table.add(row);
  }
  table.print(out);
}

// A line for each outlet.
void print_outlets(const MachineReport& r, std::ostream& out) {
  const Unit &T = r.units[Quantity::temperature], &P = r.units[Quantity::pressure],
             &H = r.units[Quantity::enthalpy];
  const bool works = r.machine.kind != MachineKind::valve;
  std::vector<std::string> headings{with_unit("P", P, " "), with_unit("T", T, " "), "phases", "vapour mol",
                                    "liquid volume"};
  if (works) headings.insert(headings.end(), {with_unit("work", H, " "), "isentropic"});
  headings.emplace_back("status");
  Table table(headings, works ? "rrlrrrrl" : "rrlrrl");
  for (const MachineResult& result : r.results) {
    const bool good = result.status == KV_OK;
    const Equilibrium& s = result.outlet();
    std::vector<std::string> row{shown_condition(P, result.P, 3), "-", "-", "-", "-"};
    if (good)
      row = {row[0], shown_condition(T, s.T, 2), phases_in_words(s), shown_fraction(s.beta),
             shown_fraction(s.liquid_volume())};
    if (works)
      row.insert(row.end(),
                 {good ? shown_energy(r, result.work) : "-", shown_digits(result.isentropic_efficiency, 4)});
    row.push_back(status_in_words(result.status));
    table.add(row);
  }
  table.print(out);
}

void print_machine_text(const MachineReport& r, std::ostream& out) {
  const Mixture& m = r.mixture;
  const Machine& machine = r.machine;
  out << fmt::format("Mixture      {}{}{} component{}, PPR78 with the group interactions of set {}\n", m.title,
                     m.title.empty() ? "" : ", ", m.count(), m.count() == 1 ? "" : "s", m.set_name)
      << fmt::format("{:<13}", kMachineNames[static_cast<std::size_t>(machine.kind)]);
  if (machine.kind == MachineKind::valve)
    out << "constant enthalpy";
  else
    out << fmt::format("{} efficiency {:g}", machine.path == Path::polytropic ? "polytropic" : "isentropic",
                       machine.efficiency);
  if (machine.stages > 1) out << fmt::format(", {} stages of equal pressure ratio", machine.stages);
  const Unit& T = r.units[Quantity::temperature];
  if (!std::isnan(machine.cooling_T))
    out << fmt::format(", cooled to {} {} between them", shown_condition(T, machine.cooling_T, 2), T.name);
  out << '\n';
  for (const std::string& line : remarks(m)) out << "Note         " << line << '\n';
  out << '\n';
  if (r.results.size() > 1) {
    print_outlets(r, out);
  } else {
    const MachineResult& result = r.results.front();
    print_stations(r, result, out);
    out << '\n';
    if (result.status != KV_OK) out << "Status       " << status_in_words(result.status) << '\n';
    if (machine.kind != MachineKind::valve && result.status == KV_OK) {
      out << fmt::format("Work         {} {}{}\n", shown_energy(r, result.work),
                         r.units[Quantity::enthalpy].name,
                         std::isnan(r.flow) ? "" : ", " + kilowatts(r, result.work) + " kW");
      if (result.heat != 0.0)
        out << fmt::format("Heat         {} {}{}\n", shown_energy(r, result.heat),
                           r.units[Quantity::enthalpy].name,
                           std::isnan(r.flow) ? "" : ", " + kilowatts(r, result.heat) + " kW");
      if (machine.path == Path::polytropic && machine.stages == 1)
        out << fmt::format("Isentropic   efficiency {}\n", shown_digits(result.isentropic_efficiency, 4));
    }
  }
  for (const std::string& note : r.notes) out << "Note: " << note << '\n';
}

ordered_json station_json(const Station& station) {
  const Equilibrium& s = station.state;
  std::vector<std::string_view> names;
  for (const PhaseState& p : s.phases)
    if (p.mole_fraction > 0.0) names.push_back(phase_name(p.kind));
  return {{"name", station.name},
          {"temperature_K", s.T},
          {"pressure_Pa", s.P},
          {"phases", names},
          {"vapour_fraction", s.beta},
          {"liquid_fraction", liquid_of(s)},
          {"liquid_volume_fraction", s.liquid_volume()},
          {"enthalpy_J_mol", s.overall.properties[Property::enthalpy]},
          {"entropy_J_mol_K", s.overall.properties[Property::entropy]},
          {"density_kg_m3", s.overall.properties[Property::density]},
          {"work_J_mol", station.work},
          {"heat_J_mol", station.heat}};
}

void print_machine_json(const MachineReport& r, std::ostream& out) {
  ordered_json root{{"mixture", {{"set", r.mixture.set_name}, {"molar_mass_g_mol", r.mixture.molar_mass}}},
                    {"remarks", remarks(r.mixture)},
                    {"notes", r.notes},
                    {"flow_mol_s", r.flow},
                    {"outlets", ordered_json::array()}};
  for (const MachineResult& result : r.results) {
    ordered_json entry{{"pressure_Pa", result.P},
                       {"status", result.status},
                       {"status_text", kv_status_text(result.status)},
                       {"work_J_mol", result.work},
                       {"heat_J_mol", result.heat},
                       {"power_W", result.work * r.flow},
                       {"isentropic_efficiency", result.isentropic_efficiency},
                       {"stations", ordered_json::array()}};
    for (const Station& station : result.stations) entry["stations"].push_back(station_json(station));
    root["outlets"].push_back(entry);
  }
  out << root.dump(2) << '\n';
}

void print_machine_csv(const MachineReport& r, std::ostream& out) {
  const Unit &T = r.units[Quantity::temperature], &P = r.units[Quantity::pressure],
             &H = r.units[Quantity::enthalpy], &S = r.units[Quantity::entropy];
  const double M = r.mixture.molar_mass;
  out << fmt::format(
      "to_{1},place,{0},{1},phases,vapour_fraction,liquid_fraction,liquid_volume_fraction,{2},{3},{4},{5},"
      "status\n",
      column_name("temperature_K", Quantity::temperature, T), column_name("pressure_Pa", Quantity::pressure, P),
      column_name("enthalpy_J_mol", Quantity::enthalpy, H),
      column_name("entropy_J_mol_K", Quantity::entropy, S), column_name("work_J_mol", Quantity::enthalpy, H),
      column_name("heat_J_mol", Quantity::enthalpy, H));
  for (const MachineResult& result : r.results) {
    for (const Station& station : result.stations) {
      const Equilibrium& s = station.state;
      const PropertyValues& whole = s.overall.properties;
      out << fmt::format("{},{},{},{},{},{},{},{},{},{},{},{},{}\n", exact(result.P, P), station.name,
                         exact(s.T, T), exact(s.P, P), csv_field(phases_in_words(s)), s.beta, liquid_of(s),
                         s.liquid_volume(), exact(whole[Property::enthalpy], H, M),
                         exact(whole[Property::entropy], S, M), exact(station.work, H, M),
                         exact(station.heat, H, M), s.status);
    }
  }
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
