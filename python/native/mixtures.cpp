// Mixtures from texts, and what they, the databank and the units are in words.
#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <nlohmann/json.hpp>

#include "commands/session.hpp"
#include "composition.hpp"
#include "databank.hpp"
#include "session.hpp"
#include "text.hpp"
#include "units.hpp"

using namespace kestrune;
using arrays::guarded;
using nlohmann::ordered_json;

namespace {

// A constant, null where it is not known.
ordered_json known(double value) {
  return value != 0.0 ? ordered_json(value) : ordered_json(nullptr);
}

ordered_json json_of(const host::Component& c) {
  return {{"name", c.name},    {"formula", c.formula},
          {"cas", c.cas},      {"molar_mass", c.molar_mass},
          {"Tc", c.Tc},        {"Pc", c.Pc},
          {"omega", c.omega},  {"Vc", known(1e-6 * c.Vc)},
          {"Tb", known(c.Tb)}, {"groups", host::groups_in_words(c)}};
}

void check_missing(const host::Mixture& mixture) {
  const auto lines = host::missing_in_words(mixture, host::kTracePair);
  if (lines.empty()) return;
  throw host::InputError(fmt::format(
      "no published group interaction (set {}) for {}; allow_missing_pairs=True takes them as zero, "
      "and results can be far off",
      mixture.set_name, host::joined(lines, ", ")));
}

host::Composition composition_of(std::string_view source, std::string_view basis) {
  host::Composition composition;
  composition.library = arrays::library_path();
  // A section of a text begins with [ and a name, a JSON array with anything else.
  const std::string_view text = host::trimmed(source);
  const bool section = text.size() > 1 && std::isalpha(static_cast<unsigned char>(text[1])) != 0;
  if (text.substr(0, 1) == "{" || (text.substr(0, 1) == "[" && !section))
    host::read_json(source, composition);
  else if (source.find('\n') != std::string_view::npos)
    host::read_lines(source, composition);
  else
    host::read_inline(source, composition, false);
  if (basis.empty()) return composition;
  const host::Basis wanted = host::basis_by_name(basis);
  if (composition.basis_given && composition.basis != wanted)
    throw host::InputError(fmt::format("the mixture itself says that its amounts are not by {}", basis));
  composition.basis = wanted;
  return composition;
}

ordered_json notes_of(const host::Mixture& m) {
  ordered_json notes = ordered_json::array();
  if (m.sum_was_off())
    notes.push_back(fmt::format("amounts summed to {:.6g} and were normalised", m.given_sum));
  for (const std::string& note : m.notes) notes.push_back(note);
  for (const std::string& line : host::missing_in_words(m))
    notes.push_back("without a published group interaction, taken as zero: " + line);
  return notes;
}

}  // namespace

extern "C" KaMixture* ka_mixture(const char* source, const char* basis, const char* set, int32_t allow_missing,
                                 int32_t with_water, int32_t free_water, const char* solubility,
                                 const char* settings, char* text, int32_t size) {
  KaMixture* made = nullptr;
  guarded(text, size, [&] {
    host::Composition composition = composition_of(source, basis);
    const std::vector<host::Component>& all = composition.components;
    if (with_water != 0 && std::none_of(all.begin(), all.end(), host::is_water)) composition.set("water", 0.0);
    host::Mixture mixture = host::build_mixture(composition, host::interaction_set(set));
    if (allow_missing == 0) check_missing(mixture);
    host::RecordOptions record;
    record.free_water = free_water != 0;
    record.solubility = solubility;
    record.settings = settings;
    record.apply(mixture);
    made = new KaMixture{std::move(mixture)};
    made->mixture.record.table = made->mixture.table.data();
    return 0;
  });
  return made;
}

extern "C" void ka_free(KaMixture* mixture) {
  delete mixture;
}

extern "C" int32_t ka_describe(const KaMixture* mixture, char* text, int32_t size) {
  return guarded(text, size, [&] {
    const host::Mixture& m = mixture->mixture;
    ordered_json components = ordered_json::array();
    for (const host::Component& c : m.components) components.push_back(json_of(c));
    const ordered_json all = {{"title", m.title},           {"set", m.set_name},        {"z", m.z},
                              {"molar_mass", m.molar_mass}, {"given_sum", m.given_sum}, {"notes", notes_of(m)},
                              {"components", components}};
    return arrays::copied(all.dump(), text, size);
  });
}

extern "C" int32_t ka_components(const char* filter, char* text, int32_t size) {
  return guarded(text, size, [&] {
    ordered_json all = ordered_json::array();
    for (const host::Component* c : host::search_components(filter)) all.push_back(json_of(*c));
    return arrays::copied(all.dump(), text, size);
  });
}

extern "C" int32_t ka_units(const char* system, char* text, int32_t size) {
  return guarded(text, size, [&] {
    const std::vector<std::string> names = host::split(system, ',');
    const bool with_energy = names.size() == 3;
    host::UnitSystem units = host::unit_system(with_energy ? names[0] + "," + names[1] : std::string(system));
    if (with_energy) units.choose_energy(names[2]);
    ordered_json all;
    for (std::size_t q = 0; q < host::kQuantityCount; ++q) {
      const auto quantity = static_cast<host::Quantity>(q);
      const host::Unit& unit = units[quantity];
      all[std::string(host::quantity_name(quantity))] = {
          {"name", unit.name}, {"factor", unit.factor}, {"offset", unit.offset}, {"per_mass", unit.per_mass}};
    }
    return arrays::copied(all.dump(), text, size);
  });
}
