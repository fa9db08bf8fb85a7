// States for programs: JSON in base units, CSV in the units asked for.
#include <fmt/format.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "commands/states.hpp"
#include "table.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

using nlohmann::ordered_json;

ordered_json by_component(const Mixture& m, const std::vector<double>& values) {
  ordered_json result = ordered_json::object();
  for (std::size_t i = 0; i < values.size(); ++i) result[std::string(m.components[i].id)] = values[i];
  return result;
}

// The fractions lumped again; null when there are none.
ordered_json lumped(const Mixture& m, const std::vector<double>& values) {
  ordered_json result;
  for (const FractionPieces& fraction : fractions_in(m)) result[fraction.name] = fraction.sum(values);
  return result;
}

// Constants of the user's own components and of the pieces of fractions.
ordered_json own_components(const Mixture& m) {
  ordered_json all = ordered_json::array();
  for (const Component& c : m.components) {
    if (c.number > 0) continue;
    all.push_back({{"name", c.name},
                   {"molar_mass_g_mol", c.molar_mass},
                   {"Tc_K", c.Tc},
                   {"Pc_Pa", c.Pc},
                   {"acentric_factor", c.omega},
                   {"groups", groups_in_words(c)}});
    if (!c.fraction.empty()) all.back()["fraction"] = c.fraction;
  }
  return all;
}

ordered_json mixture_json(const Mixture& m) {
  ordered_json root;
  if (!m.title.empty()) root["name"] = m.title;
  root["set"] = m.set_name;
  root["basis_given"] = m.basis == Basis::mole ? "mole" : "mass";
  root["sum_given"] = m.given_sum;
  root["molar_mass_g_mol"] = m.molar_mass;
  root["mole_fractions"] = by_component(m, m.z);
  if (const ordered_json sums = lumped(m, m.z); !sums.is_null()) root["fractions"] = sums;
  if (const ordered_json own = own_components(m); !own.empty()) root["own_components"] = own;
  root["missing_group_interactions"] = missing_in_words(m);
  return root;
}

ordered_json settings_json(const MixtureRecord& r) {
  const double CRIT = r.CRIT, CLIM = r.CLIM, EPS = r.EPS, relaxation = r.relaxation;
  const double a = r.solubility_a, b = r.solubility_b;
  const std::int32_t ITEMAX = r.ITEMAX, NEW = r.NEW;
  ordered_json root{{"crit", CRIT},
                    {"clim", CLIM},
                    {"eps", EPS},
                    {"itemax", ITEMAX},
                    {"new", NEW},
                    {"relax", relaxation},
                    {"free_water", (r.flags & FreeWaterFlag) != 0}};
  if ((r.flags & FreeWaterFlag) != 0) root["solubility"] = {a, b};
  return root;
}

ordered_json phase_json(const Mixture& m, const PhaseState& p, double T) {
  const PropertyValues& values = p.properties;
  ordered_json root{{"phase", phase_name(p.kind)},
                    {"mole_fraction", p.mole_fraction},
                    {"mass_fraction", p.mass_fraction},
                    {"volume_fraction", p.volume_fraction},
                    {"molar_mass_g_mol", p.molar_mass},
                    {"property_status", values.first_failure()},
                    {"property_status_text", kv_status_text(values.first_failure())},
                    {"heat_capacity_extrapolated", values.extrapolated()}};
  const auto limits = model_limits(m, p, T);
  if (p.kind != PhaseKind::overall && !limits.empty()) root["model_limits"] = limits;
  if (std::isfinite(p.saturation)) root["water_at_saturation"] = p.saturation;
  ordered_json missing = ordered_json::object();
  for (const PropertyInfo& info : all_properties()) {
    root[std::string(info.key)] = values[info.property];
    const StatusCode status = values.status(info.property);
    if (!has_value(status)) missing[std::string(info.key)] = status;
  }
  if (!missing.empty()) root["missing_properties"] = missing;
  root["composition"] = by_component(m, p.x);
  if (const ordered_json sums = lumped(m, p.x); !sums.is_null()) root["fractions"] = sums;
  return root;
}

// The name of a condition with its base unit.
std::string_view key_of(Quantity condition) {
  switch (condition) {
    case Quantity::temperature:
      return "temperature_K";
    case Quantity::pressure:
      return "pressure_Pa";
    case Quantity::enthalpy:
      return "enthalpy_J_mol";
    case Quantity::entropy:
      return "entropy_J_mol_K";
    default:
      return "vapour_fraction";
  }
}

ordered_json given_json(const Equilibrium& s) {
  const auto quantities = quantities_of(s.given);
  return {{std::string(key_of(quantities[0])), s.values[0]}, {std::string(key_of(quantities[1])), s.values[1]}};
}

ordered_json last_iterate_json(const Mixture& m, const Equilibrium& s) {
  ordered_json root{{"temperature_K", s.last_T}, {"vapour_fraction", s.beta}};
  if (s.three) root["liquid_A_fraction"] = s.beta_A;
  root["vapour"] = by_component(m, s.y);
  if (s.three) root["liquid_A"] = by_component(m, s.xA);
  root[s.three ? "liquid_B" : "liquid"] = by_component(m, s.x);
  return root;
}

// The fractions of the liquids, and K = y/x and its like for every pair of phases: "vapour/aqueous liquid".
void add_three_phases(const Mixture& m, const Equilibrium& s, ordered_json& root) {
  root["hydrocarbon_liquid_fraction"] = s.liquid_fraction(false);
  root["aqueous_liquid_fraction"] = s.liquid_fraction(true);
  ordered_json K = ordered_json::object();
  for (std::size_t p = 0; p < s.phases.size(); ++p) {
    for (std::size_t q = p + 1; q < s.phases.size(); ++q) {
      std::vector<double> ratios(m.z.size());
      for (std::size_t i = 0; i < ratios.size(); ++i) ratios[i] = ratio(s.phases[p], s.phases[q], i);
      K[fmt::format("{}/{}", phase_name(s.phases[p].kind), phase_name(s.phases[q].kind))] =
          by_component(m, ratios);
    }
  }
  root["K"] = K;
}

ordered_json state_json(const Mixture& m, const Equilibrium& s) {
  static const UnitSystem base = unit_system("si");
  ordered_json root{{"given", given_json(s)}, {"temperature_K", s.T},  // NaN becomes null
                    {"pressure_Pa", s.P},     {"flashed", s.flashed},
                    {"status", s.status},     {"status_text", state_in_words(s, base, m.molar_mass)},
                    {"stable", nullptr},      {"remark", s.remark},
                    {"phases_found", 0},      {"phases", ordered_json::array()}};
  if (s.answered()) root["stable"] = s.stable;
  int found = 0;
  for (const PhaseState& p : s.phases) found += p.mole_fraction > 0.0 ? 1 : 0;
  root["phases_found"] = found;
  for (const PhaseState& p : s.phases) root["phases"].push_back(phase_json(m, p, s.T));
  if (s.iterate_left()) root["last_iterate"] = last_iterate_json(m, s);
  if (!s.flashed || !s.answered()) return root;
  root["overall"] = phase_json(m, s.overall, s.T);
  root["vapour_fraction"] = s.beta;
  root["liquid_volume_fraction"] = s.liquid_volume();
  if (s.three) {
    add_three_phases(m, s, root);
    return root;
  }
  if ((s.beta == 0.0 || s.beta == 1.0) && s.phase(PhaseKind::dense) == nullptr) {
    const bool gas = s.beta == 1.0;
    root["incipient_phase"] = {{"phase", gas ? "liquid" : "vapour"},
                               {"composition", by_component(m, gas ? s.x : s.y)}};
  }
  // The ratios of the library: with free water, x counts all liquid as one.
  if (s.phase(PhaseKind::free_water) != nullptr) root["all_liquid"] = by_component(m, s.x);
  root["K"] = by_component(m, s.K);
  return root;
}

// The columns of a phase, each with its comma.
std::string phase_csv(const StateReport& r, const Equilibrium& s, const PhaseState& p) {
  std::string line =
      fmt::format(",{},{},{},{}", phase_name(p.kind), p.mole_fraction, p.mass_fraction, p.molar_mass);
  for (const PropertyInfo& info : all_properties())
    line.append(1, ',').append(exact(p.properties[info.property], r.units[info.quantity], p.molar_mass));
  const StatusCode status = p.properties.first_failure();
  line +=
      fmt::format(",{},{},{}", status, csv_field(kv_status_text(status)), p.properties.extrapolated() ? 1 : 0);
  std::vector<std::string> limits;
  if (p.kind != PhaseKind::overall)
    for (const auto limit : model_limits(r.mixture, p, s.T)) limits.emplace_back(limit);
  line += fmt::format(",{},{},{}", csv_field(joined(limits, "; ")),
                      std::isfinite(p.saturation) ? fmt::format("{}", p.saturation) : "", s.stable ? 1 : 0);
  line += std::isfinite(p.volume_fraction) ? fmt::format(",{}", p.volume_fraction) : ",";
  for (const double x : p.x) line += fmt::format(",{}", x);
  return line;
}

constexpr std::size_t kColumnsBeforeX = 11 + kPropertyCount;

std::string phase_headings(const StateReport& r) {
  std::string line = ",phase,mole_fraction,mass_fraction,molar_mass_g_mol";
  for (const PropertyInfo& info : all_properties())
    line += "," + column_name(info.key, info.quantity, r.units[info.quantity]);
  line +=
      ",property_status,property_status_text,heat_capacity_extrapolated,model_limits,water_at_saturation,"
      "stable,volume_fraction";
  for (const Component& c : r.mixture.components) line += fmt::format(",x_{}", c.id);
  return line;
}

}  // namespace

void print_json(const StateReport& report, std::ostream& out) {
  ordered_json root{{"mixture", mixture_json(report.mixture)},
                    {"settings", settings_json(report.mixture.record)},
                    {"remarks", remarks(report.mixture)},
                    {"notes", notes_of(report)},
                    {"states", ordered_json::array()}};
  for (const Equilibrium& s : report.states) root["states"].push_back(state_json(report.mixture, s));
  out << root.dump(2) << '\n';
}

void print_csv(const StateReport& report, bool overall_rows, std::ostream& out) {
  // What was given beside temperature and pressure has a column of its own.
  const Given given = report.states.front().given;
  const bool with_given = given != Given::TP;
  const Quantity first = quantities_of(given).front();
  const Unit &T = report.units[Quantity::temperature], &P = report.units[Quantity::pressure];
  out << "state,";
  if (with_given) out << "given_" << column_name(key_of(first), first, report.units[first]) << ',';
  out << fmt::format("{},{},status,status_text{}\n", column_name("temperature_K", Quantity::temperature, T),
                     column_name("pressure_Pa", Quantity::pressure, P), phase_headings(report));
  const double M = report.mixture.molar_mass;
  for (std::size_t i = 0; i < report.states.size(); ++i) {
    const Equilibrium& s = report.states[i];
    const std::string of_given = with_given ? exact(s.values[0], report.units[first], M) + "," : "";
    const std::string head = fmt::format("{},{}{},{},{},{}", i + 1, of_given, exact(s.T, T), exact(s.P, P),
                                         s.status, csv_field(state_in_words(s, report.units, M)));
    if (s.phases.empty()) out << head << std::string(kColumnsBeforeX + report.mixture.z.size(), ',') << '\n';
    for (const PhaseState& p : s.phases) out << head << phase_csv(report, s, p) << '\n';
    if (overall_rows && !s.phases.empty()) out << head << phase_csv(report, s, s.overall) << '\n';
  }
}

}  // namespace kestrune::host
