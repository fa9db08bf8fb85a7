// Flash results for programs: JSON and CSV.
#include <fmt/format.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "commands/flash_report.hpp"
#include "commands/session.hpp"
#include "table.hpp"

namespace kestrune::host {

namespace {

using nlohmann::ordered_json;

ordered_json by_component(const Mixture& m, const std::vector<double>& values) {
  ordered_json result = ordered_json::object();
  for (std::size_t i = 0; i < values.size(); ++i) result[std::string(m.components[i].id)] = values[i];
  return result;
}

ordered_json mixture_json(const Mixture& m) {
  ordered_json root;
  if (!m.title.empty()) root["name"] = m.title;
  root["set"] = m.set_name;
  root["basis_given"] = m.basis == Basis::mole ? "mole" : "mass";
  root["sum_given"] = m.given_sum;
  root["molar_mass_g_mol"] = m.molar_mass;
  root["mole_fractions"] = by_component(m, m.z);
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

ordered_json phase_json(const Mixture& m, const PhaseState& p) {
  return {{"phase", phase_name(p.kind)},      {"mole_fraction", p.mole_fraction},
          {"mass_fraction", p.mass_fraction}, {"molar_mass_g_mol", p.molar_mass},
          {"property_status", p.status},      {"Z", p.Z},
          {"density_kg_m3", p.density},       {"composition", by_component(m, p.x)}};
}

ordered_json state_json(const Mixture& m, const Equilibrium& s) {
  ordered_json root{{"temperature_K", s.T},
                    {"pressure_Pa", s.P},
                    {"status", s.status},
                    {"status_text", kv_status_text(s.status)},
                    {"phases", ordered_json::array()}};
  for (const PhaseState& p : s.phases) root["phases"].push_back(phase_json(m, p));
  if (s.status >= KV_STATUS_CALL_BLOCK) return root;
  if (s.status != KV_OK) {
    root["last_iterate"] = {
        {"vapour_fraction", s.beta}, {"vapour", by_component(m, s.y)}, {"liquid", by_component(m, s.x)}};
    return root;
  }
  root["vapour_fraction"] = s.beta;
  if (s.beta == 0.0 || s.beta == 1.0) {
    const bool gas = s.beta == 1.0;
    root["incipient_phase"] = {{"phase", gas ? "liquid" : "vapour"},
                               {"composition", by_component(m, gas ? s.x : s.y)}};
  }
  // The ratios of the library: with free water, x counts all liquid as one.
  if (s.phase(PhaseKind::free_water) != nullptr) root["all_liquid"] = by_component(m, s.x);
  root["K"] = by_component(m, s.K);
  return root;
}

// The shortest digits that read back as the same number; an empty field for no number.
std::string exact(double value) {
  return std::isfinite(value) ? fmt::format("{}", value) : "";
}

}  // namespace

void FlashReport::print_json(std::ostream& out) const {
  ordered_json root{{"mixture", mixture_json(mixture)},
                    {"settings", settings_json(mixture.record)},
                    {"remarks", remarks(mixture)},
                    {"states", ordered_json::array()}};
  for (const Equilibrium& s : states) root["states"].push_back(state_json(mixture, s));
  out << root.dump(2) << '\n';
}

void FlashReport::print_csv(std::ostream& out) const {
  out << "state,temperature_K,pressure_Pa,status,status_text,phase,mole_fraction,mass_fraction,molar_mass_g_"
         "mol,Z,"
         "density_kg_m3";
  for (const Component& c : mixture.components) out << ",x_" << c.id;
  out << '\n';
  for (std::size_t i = 0; i < states.size(); ++i) {
    const Equilibrium& s = states[i];
    const std::string head =
        fmt::format("{},{},{},{},{}", i + 1, s.T, s.P, s.status, csv_field(kv_status_text(s.status)));
    if (s.phases.empty()) out << head << std::string(6 + s.x.size(), ',') << '\n';
    for (const PhaseState& p : s.phases) {
      out << fmt::format("{},{},{},{},{},{},{}", head, phase_name(p.kind), p.mole_fraction, p.mass_fraction,
                         p.molar_mass, exact(p.Z), exact(p.density));
      for (const double x : p.x) out << fmt::format(",{}", x);
      out << '\n';
    }
  }
}

}  // namespace kestrune::host
