// The program: one run, its streams, its options in common, and the list of commands.
#ifndef KESTRUNE_HOST_COMMANDS_SESSION_HPP
#define KESTRUNE_HOST_COMMANDS_SESSION_HPP

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "library.hpp"
#include "mixture.hpp"
#include "units.hpp"

namespace CLI {
class App;
}
namespace kestrune::host::batch {
class Team;
}

namespace kestrune::host {

enum ExitCode { exit_good = 0, exit_status = 1, exit_input = 2 };

struct Session {
  std::ostream& out;
  std::ostream& err;
  std::string library_path = default_library_path();
  int exit_code = exit_good;         // a command sets exit_status when a calculation ended with a status
  const Exports* exports = nullptr;  // of a library that is there already
  batch::Team* team = nullptr;       // of a batch in several processes

  Exports library() const { return exports != nullptr ? *exports : load_library(library_path); }
};

// Runs the program on its arguments (without the program name); returns its exit code. Nothing is thrown. With
// exports the calculation library is not loaded; with a team a batch is shared among its processes.
int run(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err,
        const Exports* exports = nullptr, batch::Team* team = nullptr);

// Whether the arguments hold --analysis all; runs the program on every analysis of the mixture file, and returns the
// gravest exit code. InputError when there is none.
bool asks_for_all(const std::vector<std::string>& arguments);
int run_all(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err,
            const Exports* exports);

// Each command adds itself to the program; its work is done while the arguments are parsed.
void add_flash_command(CLI::App& app, Session& session);
void add_props_command(CLI::App& app, Session& session);
void add_components_command(CLI::App& app, Session& session);
void add_kij_command(CLI::App& app, Session& session);
void add_water_command(CLI::App& app, Session& session);
void add_hydrate_command(CLI::App& app, Session& session);
void add_envelope_command(CLI::App& app, Session& session);
void add_sales_command(CLI::App& app, Session& session);
void add_pure_command(CLI::App& app, Session& session);
void add_batch_command(CLI::App& app, Session& session);
void add_table_command(CLI::App& app, Session& session);
void add_machine_commands(CLI::App& app, Session& session);
void add_document_commands(CLI::App& app, Session& session);

// ---- Options that several commands share ---------------------------------------------------------

// --component, --fraction: texts of parse_definition.
void add_definition_options(CLI::App& command, std::vector<std::string>& own,
                            std::vector<std::string>& fractions);

// -m, --z, --component, --fraction, --analysis, --column, --basis, --set: which mixture.
struct MixtureOptions {
  std::string file, inline_text, basis, set = "2022", analysis, column;
  std::vector<std::string> own, fractions;

  void add_to(CLI::App& command);
  Composition composition() const;
  Mixture build() const;
};

// --allow-missing-pairs: refuses or accepts what has no published parameters.
struct MissingPairOptions {
  bool allowed = false;

  void add_to(CLI::App& command);
  void check(const Mixture& mixture) const;
};

// --free-water, --solubility, --settings, --trace: what goes into the MixtureRecord.
struct RecordOptions {
  bool free_water = false;
  std::string solubility, settings;
  bool trace = false;

  void add_to(CLI::App& command);
  void apply(Mixture& mixture) const;
};

// --format, --units.
struct OutputOptions {
  std::string format = "table", units = "engineering";

  void add_to(CLI::App& command);
  UnitSystem system() const { return unit_system(units); }
};

// Remarks on a mixture that a reader of its results must know, one sentence each.
std::vector<std::string> remarks(const Mixture& mixture);

// The same on standard error, for forms that have no place for sentences.
void tell(Session& session, const std::vector<std::string>& sentences);

}  // namespace kestrune::host

#endif
