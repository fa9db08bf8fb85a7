// What the commands that evaluate a mixture at many states share: options, the loop over the states, reports.
#ifndef KESTRUNE_HOST_COMMANDS_STATES_HPP
#define KESTRUNE_HOST_COMMANDS_STATES_HPP

#include <functional>
#include <ostream>
#include <span>
#include <string>
#include <vector>

#include "commands/conditions.hpp"
#include "commands/session.hpp"
#include "equilibrium.hpp"
#include "notes.hpp"

namespace kestrune::host {

struct StateReport {
  const Mixture& mixture;
  const std::vector<Equilibrium>& states;
  const UnitSystem& units;  // of the text; JSON and CSV are in the base units
};

using Evaluate = std::function<Equilibrium(const Exports&, Mixture&, Given, double first, double second)>;

// The same for several states of one pair of conditions, and what makes one of the other.
using EvaluateAll =
    std::function<std::vector<Equilibrium>(const Exports&, Mixture&, Given, double first, double second)>;
EvaluateAll each(const Evaluate& evaluate);

// Options of a command on a mixture at many states. The command adds those of the mixture and the conditions
// that it takes; add_to adds the others.
struct StateOptions {
  MixtureOptions mixture;
  ConditionOptions conditions;
  MissingPairOptions missing;
  RecordOptions record;
  OutputOptions output;
  std::string energy, print, phases, water_model;

  void add_to(CLI::App& command);
  UnitSystem system() const;
  Evaluate flash() const;  // by --phases and --water-model
};

using PrintText = std::function<void(const StateReport&, std::ostream&)>;

// Evaluates every combination of the conditions and prints the report in the format asked for. A
// status without a value in any state makes the exit code of the session. overall_rows: the CSV gets a row for
// the phases together after the rows of the phases.
void report_states(const StateOptions& options, Session& session, const EvaluateAll& evaluate,
                   const PrintText& print_text, bool overall_rows);

// ---- state_data.cpp: for programs ---------------------------------------------------------------

void print_json(const StateReport& report, std::ostream& out);
// One row per state and phase; a state without phases has one row with the columns of phases empty.
void print_csv(const StateReport& report, bool overall_rows, std::ostream& out);

// ---- state_numbers.cpp: for scripts ---------------------------------------------------------------

// InputError for a name that --print does not know.
void check_number_names(const std::vector<std::string>& names);
// The notes of a report that concern these numbers; a remark on a state is told with its numbers.
std::vector<std::string> notes_on(const StateReport& report, const std::vector<std::string>& names);
// One line per state on out, the numbers of the state as a whole apart by blanks, "nan" for one that it does
// not have; base units. What went wrong goes to err.
void print_numbers(const StateReport& report, const std::vector<std::string>& names, std::ostream& out,
                   std::ostream& err);

// ---- state_text.cpp: for the reader -------------------------------------------------------------

// "success", or number and text
std::string status_in_words(StatusCode status);
// What a state ended with: the text of the status, that it is not stable, or what is known of an enthalpy or entropy
// that no state has.
std::string state_in_words(const Equilibrium& state, const UnitSystem& units, double molar_mass);
// The same for a column: "incomplete" where a property is missing, and with an asterisk where a heat capacity was
// continued beyond its range. print_notes says what these mean.
std::string short_status(const StateReport& report, const Equilibrium& state);

// Mixture, free water and remarks.
void print_mixture(const StateReport& report, std::ostream& out);
// What was given beside temperature and pressure, temperature, pressure, status and phases of a state.
void print_state(const StateReport& report, const Equilibrium& state, std::ostream& out);
// One row per property, one column per phase and, of several, one for all of them.
void print_properties(const StateReport& report, const Equilibrium& state, std::span<const Property> rows,
                      std::ostream& out);
inline std::vector<std::string> notes_of(const StateReport& report) {
  return notes_of(report.mixture, report.states);
}
// Which properties are missing and why, whether heat capacities were continued, what the model cannot do, what was
// remarked on the states; once, nothing if all is well.
void print_notes(const StateReport& report, std::ostream& out);

// A property in the units of the report; "-" where there is none. With the unit: "density kg/m3".
std::string shown_property(const StateReport& report, const PhaseState& phase, const PropertyInfo& info);
std::string with_unit(std::string_view title, const Unit& unit, std::string_view separator);
// The enthalpy, entropy or vapour fraction that was given, in the units of the report.
std::string shown_given(const StateReport& report, const Equilibrium& state);
// A temperature or pressure with so many decimals; pascals have none.
std::string shown_condition(const Unit& unit, double base, int decimals);

}  // namespace kestrune::host

#endif
