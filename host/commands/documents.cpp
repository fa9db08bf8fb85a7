// kestrune man, kestrune completion: the manual page and the completion of a shell, from the definitions of the commands.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <sstream>

#include "commands/session.hpp"
#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

// Text for roff: no line begins with a control character, hyphens and backslashes are what they are.
std::string roff(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '\\')
      out += "\\e";
    else if (c == '-')
      out += "\\-";
    else
      out += c;
    if (c == '\n') out += "\\&";
  }
  return out;
}

std::vector<const CLI::Option*> options_of(const CLI::App& app) {
  return app.get_options([](const CLI::Option* option) { return option->nonpositional(); });
}

void print_options(const CLI::App& app, std::ostream& out) {
  for (const CLI::Option* option : options_of(app)) {
    const bool flag = option->get_items_expected_max() == 0;
    out << fmt::format(".TP\n.B {}{}\n{}\n", roff(option->get_name(false, true)), flag ? "" : " \\fIVALUE\\fR",
                       roff(option->get_description()));
  }
}

void print_man(const CLI::App& app, std::ostream& out) {
  out << fmt::format(
             ".TH KESTRUNE 1 \"\" \"kestrune {}\"\n.SH NAME\nkestrune \\- phase behaviour of natural gas\n",
             KESTRUNE_VERSION)
      << ".SH SYNOPSIS\n.B kestrune\n.I COMMAND\n[\\fIOPTION\\fR ...]\n.SH DESCRIPTION\n"
      << roff(app.get_description()) << "\n.SH OPTIONS\n";
  print_options(app, out);
  for (const CLI::App* command : app.get_subcommands({})) {
    out << fmt::format(".SH KESTRUNE {}\n{}\n", roff(command->get_name()), roff(command->get_description()));
    print_options(*command, out);
    if (!command->get_footer().empty()) out << ".PP\n.nf\n" << roff(command->get_footer()) << "\n.fi\n";
  }
}

// Values of options that take more than these or write them in more ways.
constexpr struct {
  const char *name, *values;
} kValues[] = {{"phases", "auto 2 3"},
               {"water-model", "groups saturation"},
               {"set", "2022 original"},
               {"basis", "mole mass"},
               {"units", "engineering si field"},
               {"phase", "flash gas liquid"},
               {"energy", "kJ/kg J/kg J/mol kJ/mol kJ/kmol cal/mol Btu/lb Btu/lbmol"},
               {"branch", "lower upper all"},
               {"calorific", "MJ/m3 kJ/m3 J/m3 kWh/m3 Btu/ft3"},
               {"inhibitor", "methanol MEG DEG TEG NaCl KCl CaCl2"}};

// Values between the braces that the parser shows for an option with a set of them.
std::string values_of(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  const std::size_t open = type.find('{'), close = type.find('}');
  for (const auto& [name, values] : kValues)
    if (option.check_lname(name)) return values;
  if (open == std::string::npos || close == std::string::npos) return "";
  return joined(split(type.substr(open + 1, close - open - 1), ','), " ");
}

void print_bash(const CLI::App& app, std::ostream& out) {
  std::vector<std::string> commands;
  for (const CLI::App* command : app.get_subcommands({})) commands.push_back(command->get_name());
  out << "_kestrune() {\n  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} words=\n"
      << "  case ${COMP_WORDS[1]} in\n";
  for (const CLI::App* command : app.get_subcommands({})) {
    std::vector<std::string> names;
    std::string sets;
    for (const CLI::Option* option : options_of(*command)) {
      for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
      for (const std::string& name : option->get_snames()) names.push_back("-" + name);
      if (const std::string values = values_of(*option); !values.empty())
        sets += fmt::format("      case $before in --{}) words=\"{}\" ;; esac\n", option->get_lnames().front(),
                            values);
    }
    out << fmt::format("    {})\n      words=\"{}\"\n{}      ;;\n", command->get_name(), joined(names, " "),
                       sets);
  }
  out << fmt::format("    *) words=\"{} --help --version --library\" ;;\n  esac\n", joined(commands, " "))
      << "  if [[ $before == -m || $before == --mixture || $before == --svg || $before == --png ]]; then "
         "words=; fi\n"
      << "  COMPREPLY=($(compgen -W \"$words\" -- \"$word\"))\n}\n"
      << "complete -o default -F _kestrune kestrune\n";
}

}  // namespace

void add_document_commands(CLI::App& app, Session& session) {
  auto* man = app.add_subcommand("man", "The manual page: kestrune man > kestrune.1");
  man->footer("Example:\n  kestrune man | man -l -");
  man->callback([&app, &session] { print_man(app, session.out); });
  auto* completion =
      app.add_subcommand("completion", "Completion of commands and options for a shell: bash or zsh");
  const auto shell = std::make_shared<std::string>("bash");
  completion->add_option("shell", *shell, "bash (default) or zsh")->check(CLI::IsMember({"bash", "zsh"}));
  completion->footer("Example:\n  source <(kestrune completion bash)");
  completion->callback([&app, &session, shell] {
    if (*shell == "zsh") session.out << "autoload -U +X bashcompinit && bashcompinit\n";
    print_bash(app, session.out);
  });
}

}  // namespace kestrune::host
