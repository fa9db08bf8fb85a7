#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>

#include "commands/session.hpp"
#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

// Options whose value may be followed by a unit.
constexpr struct {
  std::string_view short_name, long_name;
  Quantity quantity;
} kConditions[] = {{"-T", "--temperature", Quantity::temperature},
                   {"-P", "--pressure", Quantity::pressure},
                   {"-H", "--enthalpy", Quantity::enthalpy},
                   {"-S", "--entropy", Quantity::entropy},
                   {"--water", "--water", Quantity::water_content},
                   {"--to", "--to", Quantity::pressure},
                   {"--cool", "--cool", Quantity::temperature},
                   {"--from-P", "--from-P", Quantity::pressure},
                   {"--max-P", "--max-P", Quantity::pressure},
                   {"--min-T", "--min-T", Quantity::temperature},
                   {"--T-limits", "--T-limits", Quantity::temperature},
                   {"--P-limits", "--P-limits", Quantity::pressure}};

// "-T 25 C" is one condition: a unit that stands alone after a value is joined to it.
std::vector<std::string> with_units_joined(const std::vector<std::string>& arguments) {
  std::vector<std::string> result;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    result.push_back(arguments[i]);
    const std::string& option = arguments[i];
    const auto found = std::find_if(std::begin(kConditions), std::end(kConditions), [&](const auto& c) {
      return option == c.short_name || option == c.long_name;
    });
    if (found == std::end(kConditions) || i + 1 >= arguments.size()) continue;
    result.push_back(arguments[++i]);
    if (i + 1 < arguments.size() && is_unit(found->quantity, arguments[i + 1])) {
      result.back() += " " + arguments[++i];
    }
  }
  return result;
}

// The first argument that is no option must be a command.
void check_command(const CLI::App& app, const std::vector<std::string>& arguments) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i] == "--library")
      ++i;
    else if (!arguments[i].empty() && arguments[i].front() != '-') {
      std::vector<std::string> names;
      for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
      if (std::find(names.begin(), names.end(), arguments[i]) != names.end()) return;
      throw InputError(fmt::format("unknown command \"{}\": use {}", arguments[i], joined(names, ", ")));
    }
  }
}

// An unset variable of a shell leaves an empty value; it must not count as an option that was not given.
void check_values(const std::vector<std::string>& arguments) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& text = arguments[i];
    const bool after_equals = text.rfind("--", 0) == 0 && text.find('=') == text.size() - 1;
    if (!trimmed(text).empty() && !after_equals) continue;
    throw InputError(fmt::format("an empty value{}: leave the option out, or give it one",
                                 after_equals ? " of " + text.substr(0, text.size() - 1)
                                 : i > 0      ? " after " + arguments[i - 1]
                                              : ""));
  }
}

std::string version_text() {
  return fmt::format("kestrune {} ({}-bit)", KESTRUNE_VERSION, 8 * sizeof(void*));
}

int parse(CLI::App& app, Session& session, std::vector<std::string> arguments) {
  try {
    std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back
    app.parse(std::move(arguments));
    return session.exit_code;
  } catch (const CLI::ParseError& e) {
    return app.exit(e, session.out, session.err) == 0 ? exit_good : exit_input;
  }
}

// The exit code, unless what was to be said did not arrive: on a full disk, in a closed pipe.
int written(Session& session, int code) {
  errno = 0;
  session.out.flush();
  if (session.out) return code;
  session.err << fmt::format("kestrune: the output could not be written{}{}\n", errno != 0 ? ": " : "",
                             errno != 0 ? std::strerror(errno) : "");
  return exit_input;
}

}  // namespace

int run(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err, const Exports* exports,
        batch::Team* team) {
  Session session{out, err};
  session.exports = exports;
  session.team = team;
  try {
    CLI::App app{
        "Phase behaviour of natural gas with PPR78.\n"
        "Exit codes: 0 good, 1 a calculation ended with a status, 2 wrong input.",
        "kestrune"};
    app.set_version_flag("--version", version_text());
    app.add_option("--library", session.library_path,
                   "Calculation library to use (default: the one beside the program)");
    app.footer(
        "Examples:\n"
        "  kestrune flash --z methane=0.85,ethane=0.09,propane=0.04,nC4=0.02 -T -60 C -P 40 bar\n"
        "  kestrune props --z methane=0.9,ethane=0.1 -T 20 C -P 60 barg\n"
        "kestrune COMMAND --help has more, kestrune man all of it.");
    app.require_subcommand(1);
    app.fallthrough();
    add_flash_command(app, session);
    add_props_command(app, session);
    add_components_command(app, session);
    add_kij_command(app, session);
    add_water_command(app, session);
    add_hydrate_command(app, session);
    add_envelope_command(app, session);
    add_sales_command(app, session);
    add_pure_command(app, session);
    add_machine_commands(app, session);
    add_batch_command(app, session);
    add_table_command(app, session);
    add_document_commands(app, session);
    check_values(arguments);
    check_command(app, arguments);
    if (asks_for_all(arguments)) return written(session, run_all(arguments, out, err, exports));
    return written(session, parse(app, session, with_units_joined(arguments)));
  } catch (const InputError& e) {
    err << "kestrune: " << e.what() << '\n';
  } catch (const std::exception& e) {
    err << "kestrune: unexpected failure: " << e.what() << '\n';
  }
  return exit_input;
}

}  // namespace kestrune::host
