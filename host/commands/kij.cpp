// kestrune kij: binary interaction parameters at one or several temperatures.
#include <fmt/format.h>

#include "kij.hpp"

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

struct KijOptions {
  MixtureOptions mixture;
  OutputOptions output;
  std::vector<std::string> names;
  std::string temperature = "25 C";
};

using Matrix = std::vector<double>;

Composition chosen_components(const KijOptions& options) {
  if (options.names.empty()) return options.mixture.composition();
  if (!options.mixture.file.empty() || !options.mixture.inline_text.empty()) {
    throw InputError("give component names or a mixture, not both");
  }
  Composition result;
  for (const std::string& name : options.names) result.add(name, 1.0);
  return result;
}

std::string pair_title(const Mixture& m, std::size_t i, std::size_t j) {
  return fmt::format("{} / {}", m.components[i].name, m.components[j].name);
}

std::string cell(const Mixture& m, const Matrix& k, std::size_t i, std::size_t j) {
  const double value = k[i * m.z.size() + j];
  return fmt::format("{:.5f}{}", std::abs(value) < 5e-6 ? 0.0 : value,  // no -0.00000 of rounding
                     is_incomplete(m, static_cast<int>(i), static_cast<int>(j)) ? "*" : " ");
}

// One temperature: the matrix.
void print_matrix(const Mixture& m, const Matrix& k, std::ostream& out) {
  // Many components: numbers head the columns, and the rows say what they stand for.
  const bool numbered = m.count() > 6;
  const auto numbers = [&](std::size_t i) { return numbered ? fmt::format("{} ", i + 1) : std::string(); };
  std::vector<std::string> headings{"k_ij"};
  for (std::size_t i = 0; i < m.z.size(); ++i) {
    headings.push_back(numbered ? numbers(i) : fmt::format("{} ", m.components[i].id));
  }
  Table table(headings, "l");
  for (std::size_t i = 0; i < m.z.size(); ++i) {
    std::vector<std::string> row{numbers(i) + std::string(m.components[i].name)};
    for (std::size_t j = 0; j < m.z.size(); ++j) row.push_back(cell(m, k, i, j));
    table.add(row);
  }
  table.print(out);
}

// Several temperatures: one column per pair.
void print_columns(const Mixture& m, const std::vector<double>& T, const std::vector<Matrix>& k,
                   const Unit& unit, std::ostream& out) {
  std::vector<std::string> headings{fmt::format("T {}", unit.name)};
  for (std::size_t i = 0; i < m.z.size(); ++i) {
    for (std::size_t j = i + 1; j < m.z.size(); ++j) headings.push_back(pair_title(m, i, j) + " ");
  }
  Table table(headings, "r");
  for (std::size_t t = 0; t < T.size(); ++t) {
    std::vector<std::string> row{shown_fixed(unit.from_base(T[t]), 2)};
    for (std::size_t i = 0; i < m.z.size(); ++i) {
      for (std::size_t j = i + 1; j < m.z.size(); ++j) row.push_back(cell(m, k[t], i, j));
    }
    table.add(row);
  }
  table.print(out);
}

void print_table(const Mixture& m, const std::vector<double>& T, const std::vector<Matrix>& k, const Unit& unit,
                 std::ostream& out) {
  if (T.size() == 1) {
    out << fmt::format("Set {}, {:.2f} {} ({:.2f} K)\n\n", m.set_name, unit.from_base(T[0]), unit.name, T[0]);
    print_matrix(m, k[0], out);
  } else {
    out << fmt::format("Set {}\n\n", m.set_name);
    print_columns(m, T, k, unit, out);
  }
  const auto lines = missing_in_words(m);
  if (lines.empty()) return;
  out << "\n* without the group interactions that have no published value (taken as zero):\n";
  for (const std::string& line : lines) out << "  " << line << '\n';
}

void print_json(const Mixture& m, const std::vector<double>& T, const std::vector<Matrix>& k,
                std::ostream& out) {
  ordered_json root{{"set", m.set_name},
                    {"components", ordered_json::array()},
                    {"missing_group_interactions", missing_in_words(m)},
                    {"temperatures", ordered_json::array()}};
  for (const Component& c : m.components) root["components"].push_back(c.id);
  for (std::size_t t = 0; t < T.size(); ++t) {
    ordered_json matrix = ordered_json::array();
    for (std::size_t i = 0; i < m.z.size(); ++i) {
      const auto row = k[t].begin() + static_cast<std::ptrdiff_t>(i * m.z.size());
      matrix.push_back(Matrix(row, row + m.count()));
    }
    root["temperatures"].push_back({{"temperature_K", T[t]}, {"kij", matrix}});
  }
  out << root.dump(2) << '\n';
}

void print_csv(const Mixture& m, const std::vector<double>& T, const std::vector<Matrix>& k, const Unit& unit,
               std::ostream& out) {
  out << fmt::format("component_i,component_j,{},kij,complete\n",
                     column_name("temperature_K", Quantity::temperature, unit));
  for (std::size_t i = 0; i < m.z.size(); ++i) {
    for (std::size_t j = i + 1; j < m.z.size(); ++j) {
      for (std::size_t t = 0; t < T.size(); ++t) {
        out << fmt::format("{},{},{},{},{}\n", m.components[i].id, m.components[j].id, exact(T[t], unit),
                           k[t][i * m.z.size() + j],
                           is_incomplete(m, static_cast<int>(i), static_cast<int>(j)) ? 0 : 1);
      }
    }
  }
}

void show_kij(const KijOptions& options, Session& session) {
  const UnitSystem units = options.output.system();
  const auto T = parse_conditions(Quantity::temperature, options.temperature, units[Quantity::temperature]);
  Mixture mixture = build_mixture(chosen_components(options), interaction_set(options.mixture.set));
  if (mixture.count() < 2) throw InputError("k_ij needs at least two components");
  mixture.hand_over(session.library());
  std::vector<Matrix> k;
  for (const double t : T) k.push_back(binary_interactions(mixture, t));
  if (options.output.format == "json")
    print_json(mixture, T, k, session.out);
  else if (options.output.format == "csv")
    print_csv(mixture, T, k, units[Quantity::temperature], session.out);
  else
    print_table(mixture, T, k, units[Quantity::temperature], session.out);
}

}  // namespace

void add_kij_command(CLI::App& app, Session& session) {
  auto* command = app.add_subcommand("kij", "Binary interaction parameters predicted from the groups");
  const auto options = std::make_shared<KijOptions>();
  command->footer(
      "Examples:\n"
      "  kestrune kij methane CO2 H2S -T 25 C\n"
      "  kestrune kij methane CO2 -T 0:100:50 --format csv");
  command->add_option("names", options->names, "Components; or a mixture with -m or --z");
  command->add_option("-T,--temperature", options->temperature,
                      "Temperatures: value, list or first:last:step (25 C)");
  options->mixture.add_to(*command);
  options->output.add_to(*command);
  command->callback([options, &session] { show_kij(*options, session); });
}

}  // namespace kestrune::host
