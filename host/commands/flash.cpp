// kestrune flash: the phases at two conditions.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>

#include "branches.hpp"
#include "commands/states.hpp"
#include "error.hpp"
#include "table.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

struct FlashOptions {
  StateOptions states;
  std::string branch;
  bool details = false;
};

// The enthalpy or entropy that was given has a column of its own; the vapour fraction has one in any case.
bool of_energy(const StateReport& r) {
  const Quantity given = quantities_of(r.states.front().given).front();
  return given == Quantity::enthalpy || given == Quantity::entropy;
}

// Headings and fields that all summaries begin with: conditions, names and vapour fraction.
std::vector<std::string> first_headings(const StateReport& r) {
  const Quantity given = quantities_of(r.states.front().given).front();
  std::vector<std::string> headings;
  if (of_energy(r))
    headings.push_back(fmt::format("{} {}", given == Quantity::enthalpy ? "H" : "S", r.units[given].name));
  headings.insert(headings.end(),
                  {fmt::format("T {}", r.units[Quantity::temperature].name),
                   fmt::format("P {}", r.units[Quantity::pressure].name), "phases", "vapour mol"});
  return headings;
}

std::vector<std::string> first_fields(const StateReport& r, const Equilibrium& s) {
  const Unit &T = r.units[Quantity::temperature], &P = r.units[Quantity::pressure];
  std::vector<std::string> row;
  if (of_energy(r)) row.push_back(shown_given(r, s));
  row.insert(row.end(), {shown_condition(T, s.T, 2), shown_condition(P, s.P, 3), phases_in_words(s),
                         s.phases.empty() && !s.of_fraction() ? "-" : shown_fixed(s.beta, 6)});
  return row;
}

// A column for the fraction and one for the density of every phase that some state has.
void print_summary(const StateReport& r, std::ostream& out) {
  const Unit& density = r.units[Quantity::density];
  std::vector<PhaseKind> kinds;
  for (std::size_t k = 0; k < kPhaseKindCount; ++k) {
    const auto kind = static_cast<PhaseKind>(k);
    const auto has = [kind](const Equilibrium& s) { return s.phase(kind) != nullptr; };
    if (std::any_of(r.states.begin(), r.states.end(), has)) kinds.push_back(kind);
  }
  std::vector<std::string> headings = first_headings(r);
  std::string alignment = std::string(headings.size() - 2, 'r') + "lr";
  for (const PhaseKind kind : kinds) {
    if (kind != PhaseKind::vapour) headings.push_back(fmt::format("{} mol", short_phase_name(kind)));
  }
  for (const PhaseKind kind : kinds)
    headings.push_back(fmt::format("{} {}", density.name, short_phase_name(kind)));
  alignment += std::string(headings.size() - alignment.size(), 'r') + "l";
  headings.emplace_back("status");
  Table table(headings, alignment);
  for (const Equilibrium& s : r.states) {
    std::vector<std::string> row = first_fields(r, s);
    for (const PhaseKind kind : kinds) {
      const PhaseState* p = s.phase(kind);
      if (kind != PhaseKind::vapour) row.push_back(p == nullptr ? "-" : shown_fixed(p->mole_fraction, 6));
    }
    for (const PhaseKind kind : kinds) {
      const PhaseState* p = s.phase(kind);
      row.push_back(p == nullptr ? "-" : shown_fixed(density.from_base(p->properties[Property::density]), 3));
    }
    row.push_back(short_status(r, s));
    table.add(row);
  }
  table.print(out);
}

// Mole fractions by component, with K = y/x where there is a vapour and a liquid. Of two liquids, each has its
// K, and without a vapour there is the ratio of one to the other.
void print_composition(const StateReport& r, const Equilibrium& s, std::ostream& out) {
  std::vector<std::string> headings{"mole fractions", "feed"};
  const std::size_t columns = s.phases.size() > 1 ? s.phases.size() : 0;  // a single phase is the feed
  for (std::size_t p = 0; p < columns; ++p) headings.emplace_back(phase_name(s.phases[p].kind));
  std::vector<const PhaseState*> divisors;
  for (std::size_t p = 1; p < columns; ++p) {
    const PhaseState& phase = s.phases[p];
    if (!s.three && phase.kind == PhaseKind::free_water) continue;
    divisors.push_back(&phase);
    const bool plain = columns == 2 && s.phases[0].kind == PhaseKind::vapour && phase.kind == PhaseKind::liquid;
    headings.push_back(s.three && !plain ? fmt::format("{}/{}", short_phase_name(s.phases[0].kind),
                                                       short_phase_name(phase.kind))
                                         : "K = y/x");
  }
  Table table(headings, "l");
  for (std::size_t i = 0; i < r.mixture.z.size(); ++i) {
    std::vector<std::string> row{std::string(r.mixture.components[i].name), shown_fraction(r.mixture.z[i])};
    for (std::size_t p = 0; p < columns; ++p) row.push_back(shown_fraction(s.phases[p].x[i]));
    for (const PhaseState* divisor : divisors) {
      const bool absent = !s.three && divisor->x[i] == 0.0;
      row.push_back(shown_digits(absent ? s.K[i] : ratio(s.phases[0], *divisor, i), 5));
    }
    table.add(row);
  }
  for (const FractionPieces& fraction : fractions_in(r.mixture)) {  // lumped again
    std::vector<std::string> row{fraction.name + ", all pieces", shown_fraction(fraction.sum(r.mixture.z))};
    for (std::size_t p = 0; p < columns; ++p) row.push_back(shown_fraction(fraction.sum(s.phases[p].x)));
    for (const PhaseState* divisor : divisors)
      row.push_back(shown_digits(fraction.sum(s.phases[0].x) / fraction.sum(divisor->x), 5));
    table.add(row);
  }
  table.print(out);
}

// What the flash held when it gave up.
void print_last_iterate(const StateReport& r, const Equilibrium& s, std::ostream& out) {
  const Unit& T = r.units[Quantity::temperature];
  out << fmt::format("The last iterate, not an equilibrium: {} {}, vapour fraction {}",
                     shown_condition(T, s.last_T, 3), T.name, shown_fraction(s.beta));
  if (s.three) out << fmt::format(", fraction of liquid A {}", shown_fraction(s.beta_A));
  out << "\n\n";
  std::vector<std::string> headings{"mole fractions", "feed", "vapour", "liquid", "K"};
  if (s.three) headings = {"mole fractions", "feed", "vapour", "liquid A", "liquid B"};
  Table table(headings, "l");
  for (std::size_t i = 0; i < r.mixture.z.size(); ++i) {
    table.add({std::string(r.mixture.components[i].name), shown_fraction(r.mixture.z[i]),
               shown_fraction(s.y[i]), shown_fraction(s.three ? s.xA[i] : s.x[i]),
               s.three ? shown_fraction(s.x[i]) : shown_digits(s.K[i], 5)});
  }
  table.print(out);
}

void print_details(const StateReport& r, const Equilibrium& s, std::ostream& out) {
  constexpr Property rows[] = {Property::Z,         Property::density,     Property::enthalpy,
                               Property::entropy,   Property::Cp,          Property::speed_of_sound,
                               Property::viscosity, Property::conductivity};
  print_state(r, s, out);
  if (!s.answered() && !s.iterate_left()) return;
  out << '\n';
  if (s.iterate_left()) return print_last_iterate(r, s, out);
  print_properties(r, s, rows, out);
  out << '\n';
  print_composition(r, s, out);
}

void print_flash(const StateReport& r, bool details, std::ostream& out) {
  print_mixture(r, out);
  const bool summary = r.states.size() > 1;
  if (summary) {
    out << '\n';
    print_summary(r, out);
  }
  for (const Equilibrium& s : r.states) {
    if (summary && !details) break;
    if (summary) out << '\n' << std::string(72, '-') << '\n';
    print_details(r, s, out);
  }
  print_notes(r, out);
}

// Where a vapour fraction is met more than once, the branch asked for.
EvaluateAll evaluation(const FlashOptions& o) {
  if (o.branch.empty()) return each(o.states.flash());
  const Branch branch = branch_by_name(o.branch);
  const std::string phases = lower(trimmed(o.states.phases));
  if (!phases.empty() && phases != "auto" && phases != "2")
    throw InputError("--branch follows a vapour and a liquid: no --phases 3");
  return [branch](const Exports& library, Mixture& mixture, Given given, double first, double second) {
    if (given != Given::WT && given != Given::WP)
      throw InputError("--branch belongs to bubble and dew points: --dew, --bubble or --beta");
    return points_of_fraction(library, mixture, given, first, second, branch);
  };
}

}  // namespace

void add_flash_command(CLI::App& app, Session& session) {
  auto* command = app.add_subcommand(
      "flash",
      "Phases at two conditions: temperature and pressure; enthalpy or entropy and pressure; vapour fraction "
      "(bubble and dew points) and pressure or temperature");
  const auto options = std::make_shared<FlashOptions>();
  options->states.mixture.add_to(*command);
  options->states.conditions.add_TP_to(*command, false);
  options->states.conditions.add_energy_and_fraction_to(*command);
  options->states.add_to(*command);
  command->footer(
      "Examples:\n"
      "  kestrune flash --z methane=0.85,ethane=0.09,propane=0.04,nC4=0.02 -T -60 C -P 40 bar\n"
      "  kestrune flash --z methane=0.9,nC5=0.1 -T \"-80:40:40 C\" -P 10,40 --format csv\n"
      "  kestrune flash --z methane=0.9,nC5=0.1 --dew -P 1:61:20 bar\n"
      "  kestrune flash --z methane=0.9,nC5=0.1 --dew -T 40 C --branch all\n"
      "  kestrune flash --z methane=0.9,nC5=0.1 -H \"-50 kJ/kg\" -P 20 bar\n"
      "  kestrune flash --z methane=0.8,nC8=0.1,water=0.1 -T 40 C -P 40 bar --water-model saturation");
  command->add_option(
      "--branch", options->branch,
      "Of the points of a vapour fraction: lower, upper or all, in pressure at a temperature, in "
      "temperature at a pressure (default: the one that a cold start finds)");
  command->add_flag("--details", options->details, "Composition of every state, not of a single one only");
  command->callback([options, &session] {
    const auto print = [&](const StateReport& report, std::ostream& out) {
      print_flash(report, options->details, out);
    };
    report_states(options->states, session, evaluation(*options), print, false);
  });
}

}  // namespace kestrune::host
