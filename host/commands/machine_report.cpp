#include "commands/machine_report.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "commands/states.hpp"
#include "table.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

using nlohmann::ordered_json;

constexpr const char* kMachineNames[] = {"Valve", "Expander", "Compressor"};

double liquid_of(const Equilibrium& s) {
  return s.liquid_fraction(false) + s.liquid_fraction(true);
}

}  // namespace

std::vector<std::string> machine_notes(const MachineReport& r) {
  std::vector<Equilibrium> states;
  std::vector<std::string> notes;
  for (const MachineResult& result : r.results) {
    for (std::size_t k = 0; k < result.stations.size(); ++k) {
      const Station& station = result.stations[k];
      states.push_back(station.state);
      if (station.heat > 0.0) {
        const Unit& T = r.units[Quantity::temperature];
        const std::string note = fmt::format("{} heats: the gas comes to it colder than the {} {} of --cool",
                                             station.name, shown_condition(T, r.machine.cooling_T, 2), T.name);
        if (std::find(notes.begin(), notes.end(), note) == notes.end()) notes.push_back(note);
      }
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

namespace {

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
  const bool flows = !std::isnan(r.flow);
  const bool cooled = std::any_of(r.results.begin(), r.results.end(),
                                  [](const MachineResult& result) { return result.heat != 0.0; });
  if (works) headings.insert(headings.end(), {with_unit("work", H, " "), "isentropic"});
  if (flows) headings.emplace_back("power kW");
  if (cooled) headings.push_back(flows ? "heat kW" : with_unit("heat", H, " "));
  const std::string alignment = "rrl" + std::string(headings.size() - 3, 'r') + "l";
  headings.emplace_back("status");
  Table table(headings, alignment);
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
    if (flows) row.push_back(good ? kilowatts(r, result.work) : "-");
    if (cooled) row.push_back(!good ? "-" : flows ? kilowatts(r, result.heat) : shown_energy(r, result.heat));
    row.push_back(status_in_words(result.status));
    table.add(row);
  }
  table.print(out);
}

}  // namespace

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

namespace {

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

}  // namespace

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
                       {"heat_W", result.heat * r.flow},
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
      "power_W,heat_W,status\n",
      column_name("temperature_K", Quantity::temperature, T), column_name("pressure_Pa", Quantity::pressure, P),
      column_name("enthalpy_J_mol", Quantity::enthalpy, H),
      column_name("entropy_J_mol_K", Quantity::entropy, S), column_name("work_J_mol", Quantity::enthalpy, H),
      column_name("heat_J_mol", Quantity::enthalpy, H));
  const auto watts = [&r](double value) {
    return std::isnan(r.flow) ? std::string() : fmt::format("{}", value * r.flow);
  };
  for (const MachineResult& result : r.results) {
    for (const Station& station : result.stations) {
      const Equilibrium& s = station.state;
      const PropertyValues& whole = s.overall.properties;
      out << fmt::format("{},{},{},{},{},{},{},{},{},{},{},{},{},{},{}\n", exact(result.P, P), station.name,
                         exact(s.T, T), exact(s.P, P), csv_field(phases_in_words(s)), s.beta, liquid_of(s),
                         s.liquid_volume(), exact(whole[Property::enthalpy], H, M),
                         exact(whole[Property::entropy], S, M), exact(station.work, H, M),
                         exact(station.heat, H, M), watts(station.work), watts(station.heat), s.status);
    }
  }
}

}  // namespace kestrune::host
