// Plain numbers of states for scripts: --print.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "commands/states.hpp"
#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

// The state as a whole: the phases together, or the mixture taken as one phase.
const PhaseState* whole(const Equilibrium& s) {
  if (s.phases.empty()) return nullptr;
  return s.flashed ? &s.overall : &s.phases.front();
}

// Numbers of a state that are no properties of its phases.
struct StateNumber {
  std::string_view name, key;
  double (*value)(const Equilibrium&);
};
constexpr StateNumber kStateNumbers[] = {
    {"T", "temperature_K", [](const Equilibrium& s) { return s.T; }},
    {"P", "pressure_Pa", [](const Equilibrium& s) { return s.P; }},
    {"beta", "vapour_fraction", [](const Equilibrium& s) { return s.phases.empty() ? kNone : s.beta; }},
    {"dense", "dense_fraction",
     [](const Equilibrium& s) {
       const PhaseState* dense = s.phase(PhaseKind::dense);
       return s.phases.empty() ? kNone : dense != nullptr ? dense->mole_fraction : 0.0;
     }},
    {"liquid", "liquid_fraction",
     [](const Equilibrium& s) {
       return s.phases.empty() ? kNone : s.liquid_fraction(false) + s.liquid_fraction(true);
     }},
    {"hydrocarbon", "hydrocarbon_liquid_fraction",
     [](const Equilibrium& s) { return s.phases.empty() ? kNone : s.liquid_fraction(false); }},
    {"aqueous", "aqueous_liquid_fraction",
     [](const Equilibrium& s) { return s.phases.empty() ? kNone : s.liquid_fraction(true); }},
    {"liquid_volume", "liquid_volume_fraction",
     [](const Equilibrium& s) { return s.phases.empty() ? kNone : s.liquid_volume(); }},
    {"M", "molar_mass_g_mol", [](const Equilibrium& s) { return whole(s) ? whole(s)->molar_mass : kNone; }}};

// What a negative heat capacity says something of.
constexpr Property kOfHeat[] = {Property::Cp, Property::Cv, Property::speed_of_sound, Property::joule_thomson};

const StateNumber* find_state_number(const std::string& name) {
  const auto* found = std::find_if(std::begin(kStateNumbers), std::end(kStateNumbers),
                                   [&](const StateNumber& n) { return name == n.name || name == n.key; });
  return found == std::end(kStateNumbers) ? nullptr : found;
}

const PropertyInfo* find_property(const std::string& name) {
  for (const PropertyInfo& info : all_properties()) {
    if (name == info.heading || name == info.key) return &info;
  }
  return nullptr;
}

double number(const Equilibrium& s, const std::string& name) {
  if (const StateNumber* n = find_state_number(name)) return n->value(s);
  const PhaseState* all = whole(s);
  return all == nullptr ? kNone : all->properties[find_property(name)->property];
}

// Whether one of these numbers is made with a heat capacity beyond its range.
bool is_extrapolated(const StateReport& report, const std::vector<std::string>& names) {
  return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
    const PropertyInfo* info = find_property(name);
    return info != nullptr &&
           std::any_of(report.states.begin(), report.states.end(), [&](const Equilibrium& s) {
             const PhaseState* all = whole(s);
             return all != nullptr && all->properties.extrapolated(info->property);
           });
  });
}

}  // namespace

void check_number_names(const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    if (find_state_number(name) != nullptr || find_property(name) != nullptr) continue;
    throw InputError(
        fmt::format("unknown number \"{}\": print T, P, beta, dense, liquid, liquid_volume, hydrocarbon, "
                    "aqueous, M, H, S, G, Z, density "
                    "or a key of the JSON output such as molar_volume_m3_mol",
                    name));
  }
}

std::vector<std::string> notes_on(const StateReport& report, const std::vector<std::string>& names) {
  bool of_phases = false, joule_thomson = false, heat = false;
  for (const std::string& name : names) {
    const PropertyInfo* info = find_property(name);
    if (info == nullptr) continue;
    of_phases = true;
    joule_thomson = joule_thomson || info->property == Property::joule_thomson;
    heat = heat || std::find(std::begin(kOfHeat), std::end(kOfHeat), info->property) != std::end(kOfHeat);
  }
  std::vector<std::string> result;
  for (const std::string& note : notes_of(report)) {
    const bool limit = note.rfind("cubic equation", 0) == 0;
    const bool of_state = std::any_of(report.states.begin(), report.states.end(),
                                      [&](const Equilibrium& s) { return !s.stable && s.remark == note; });
    const bool silent = note == kNegativeHeatText                         ? !heat
                        : note.find("Joule-Thomson") != std::string::npos ? !joule_thomson
                                                                          : limit && !of_phases;
    if (!silent && !of_state) result.push_back(note);
  }
  if (is_extrapolated(report, names)) result.emplace_back(kExtrapolatedText);
  return result;
}

void print_numbers(const StateReport& report, const std::vector<std::string>& names, std::ostream& out,
                   std::ostream& err) {
  for (std::size_t i = 0; i < report.states.size(); ++i) {
    const Equilibrium& s = report.states[i];
    std::vector<std::string> numbers;
    for (const std::string& name : names) {
      const double value = number(s, name);
      numbers.push_back(std::isfinite(value) ? fmt::format("{}", value) : "nan");
    }
    out << joined(numbers, " ") << '\n';
    const StatusCode status = s.first_failure();
    if (s.bound.found() || !s.stable)
      err << fmt::format("kestrune: state {}: {}\n", i + 1,
                         state_in_words(s, report.units, report.mixture.molar_mass));
    else if (status != KV_OK)
      err << fmt::format("kestrune: state {}: status {}\n", i + 1, status_in_words(status));
  }
}

}  // namespace kestrune::host
