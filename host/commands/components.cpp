// kestrune components: the databank.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <nlohmann/json.hpp>

#include "commands/session.hpp"
#include "error.hpp"
#include "table.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

using nlohmann::ordered_json;
using Selection = std::vector<const Component*>;

struct ComponentsOptions {
  std::string filter, format = "table", file;
  std::vector<std::string> own, fractions;
};

// A constant of the databank as text; "-" where it is not known.
std::string constant(double value, int decimals) {
  return value == 0.0 ? "-" : shown_fixed(value, decimals);
}

void print_table(const Selection& list, std::ostream& out) {
  Table table({"name", "formula", "CAS", "M g/mol", "Tc K", "Pc bar", "omega", "Vc cm3/mol", "Tb K", "groups"},
              "lllrrrrrrl");
  for (const Component* c : list) {
    table.add({std::string(c->name), std::string(c->formula), std::string(c->cas),
               shown_fixed(c->molar_mass, 3), shown_fixed(c->Tc, 2), shown_fixed(c->Pc / 1e5, 3),
               shown_fixed(c->omega, 4), constant(c->Vc, 2), constant(c->Tb, 2), groups_in_words(*c)});
  }
  table.print(out);
}

ordered_json known(double value) {
  return value == 0.0 || std::isnan(value) ? ordered_json() : ordered_json(value);
}

ordered_json as_json(const Component& c) {
  ordered_json groups = ordered_json::object();
  for (int k = 0; k < c.group_count; ++k) {
    const GroupCount& g = c.groups[static_cast<std::size_t>(k)];
    groups[std::string(group_name(g.group))] = g.count;
  }
  // A dipole moment may be zero by symmetry as well as unknown.
  return {{"id", c.id},
          {"name", c.name},
          {"formula", c.formula},
          {"cas", c.cas},
          {"aliases", aliases_of(c)},
          {"molar_mass_g_mol", c.molar_mass},
          {"Tc_K", c.Tc},
          {"Pc_Pa", c.Pc},
          {"acentric_factor", std::isnan(c.omega) ? ordered_json() : ordered_json(c.omega)},
          {"Vc_cm3_mol", known(c.Vc)},
          {"Zc", known(c.Zc)},
          {"Tb_K", known(c.Tb)},
          {"Tmelt_K", known(c.Tmelt)},
          {"dipole_D", c.dipole},
          {"Tmin_vapour_pressure_K", known(c.Tmin_vapour_pressure)},
          {"groups", groups}};
}

void print_csv(const Selection& list, std::ostream& out) {
  out << "id,name,formula,cas,molar_mass_g_mol,Tc_K,Pc_Pa,acentric_factor,Vc_cm3_mol,Zc,Tb_K,Tmelt_K,dipole_D,"
         "groups\n";
  for (const Component* c : list) {
    out << fmt::format("{},{},{},{},{},{},{},{},{},{},{},{},{},{}\n", c->id, csv_field(std::string(c->name)),
                       c->formula, c->cas, c->molar_mass, c->Tc, c->Pc,
                       std::isnan(c->omega) ? "" : fmt::format("{}", c->omega), c->Vc, c->Zc, c->Tb, c->Tmelt,
                       c->dipole, groups_in_words(*c));
  }
}

// The components of a mixture file, those of the user's own and the pieces of fractions.
std::vector<Component> described(const ComponentsOptions& options, std::vector<std::string>& notes) {
  Composition composition;
  for (const std::string& text : options.own) composition.define(parse_definition(text, false));
  for (const std::string& text : options.fractions) composition.define(parse_definition(text, true));
  if (!options.file.empty()) read_composition_file(options.file, composition);
  std::vector<Component> all;
  for (const Component& c : composition.components)
    if (c.number > 0) all.push_back(c);
  for (const Definition& d : composition.definitions) {
    const Realised realised = realise(d, composition.library);
    for (const Part& part : realised.parts) all.push_back(part.component);
    notes.insert(notes.end(), realised.notes.begin(), realised.notes.end());
  }
  return all;
}

void list_components(const ComponentsOptions& options, Session& session) {
  Selection list;
  std::vector<std::string> notes;
  const bool own = !options.file.empty() || !options.own.empty() || !options.fractions.empty();
  const std::vector<Component> of_mixture = own ? described(options, notes) : std::vector<Component>{};
  if (own && !options.filter.empty()) throw InputError("give a text to look for or a mixture, not both");
  if (own)
    for (const Component& c : of_mixture) list.push_back(&c);
  else
    list = search_components(options.filter);
  if (list.empty()) {
    const auto near = similar_names(options.filter);
    throw InputError(fmt::format("no component matches \"{}\"{}", options.filter,
                                 near.empty() ? "" : ", did you mean " + joined(near, ", ") + "?"));
  }
  if (options.format == "json") {
    ordered_json all = ordered_json::array();
    for (const Component* c : list) all.push_back(as_json(*c));
    session.out << all.dump(2) << '\n';
  } else if (options.format == "csv") {
    print_csv(list, session.out);
  } else {
    print_table(list, session.out);
    for (const std::string& note : notes)
      session.out << (&note == notes.data() ? "\n" : "") << "Note: " << note << '\n';
    return;
  }
  tell(session, notes);
}

}  // namespace

void add_components_command(CLI::App& app, Session& session) {
  auto* command = app.add_subcommand("components", "List the components with their constants and groups");
  const auto options = std::make_shared<ComponentsOptions>();
  command->footer(
      "Examples:\n"
      "  kestrune components butane\n"
      "  kestrune components 74-82-8 --format json\n"
      "  kestrune components --fraction \"name=C7+, M=143, SG=0.795\"");
  command->add_option("filter", options->filter, "Text in a name, alias, formula or CAS number");
  command->add_option("-m,--mixture", options->file, "List the components of this mixture file");
  add_definition_options(*command, options->own, options->fractions);
  command->add_option("--format", options->format, "table (default), json or csv")
      ->check(CLI::IsMember({"table", "json", "csv"}));
  command->callback([options, &session] { list_components(*options, session); });
}

}  // namespace kestrune::host
