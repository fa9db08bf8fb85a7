#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cmath>

#include "commands/session.hpp"
#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

// Used when free water is asked for without a solubility pair: a mole fraction of 5e-4 at 25 C, typical of
// paraffins, and a heat of solution of 36 kJ/mol. An order of magnitude, not a fit to measurements.
constexpr double kSolubilityA = 6.92;
constexpr double kSolubilityB = 4330.0;  // K

void apply_setting(const std::string& text, MixtureRecord& record) {
  const std::size_t equals = text.find('=');
  const std::string name = lower(trimmed(text.substr(0, equals)));
  const auto value = equals == std::string::npos ? std::nullopt : parse_number(text.substr(equals + 1));
  if (!value) throw InputError(fmt::format("the setting \"{}\" is not of the form name=number", text));
  const auto whole = [&] {
    if (*value != std::floor(*value) || *value < 0.0 || *value > 1e9) {
      throw InputError(fmt::format("the setting {} must be a whole number, not {}", name, *value));
    }
    return static_cast<std::int32_t>(*value);
  };
  if (name == "crit")
    record.CRIT = *value;
  else if (name == "clim")
    record.CLIM = *value;
  else if (name == "eps")
    record.EPS = *value;
  else if (name == "itemax")
    record.ITEMAX = whole();
  else if (name == "new")
    record.NEW = whole();
  else if (name == "relax")
    record.relaxation = *value;
  else
    throw InputError(fmt::format("unknown setting \"{}\": use crit, clim, eps, itemax, new or relax", name));
}

}  // namespace

void add_definition_options(CLI::App& command, std::vector<std::string>& own,
                            std::vector<std::string>& fractions) {
  const auto repeated = [&](const char* name, std::vector<std::string>& texts, const char* help) {
    command.add_option(name, texts, help)->allow_extra_args(false)->type_size(1)->expected(1, 1000)->take_all();
  };
  repeated(
      "--component", own,
      "A component of your own: \"name=cut, M=142, Tc=617.7 K, Pc=21.1 bar, omega=0.49, groups=CH3:2 CH2:8\"");
  repeated("--fraction", fractions, "A fraction to be split: \"name=C7+, M=218, SG=0.8515\"");
}

void MixtureOptions::add_to(CLI::App& command) {
  command.add_option("-m,--mixture", file,
                     "Mixture file: JSON, text, or a laboratory's table (- for standard input)");
  command.add_option("--z", inline_text,
                     "Components and amounts: methane=0.9,ethane=0.1; replaces those of the file");
  add_definition_options(command, own, fractions);
  command.add_option("--analysis", analysis,
                     "Of a file with one composition a row: its name, its number, or all");
  command.add_option("--column", column, "Heading of the column with the amounts, where there are several");
  command.add_option("--basis", basis, "What the amounts are: mole (default) or mass");
  command.add_option("--set", set, "Group interactions: 2022 (default) or original");
}

Composition MixtureOptions::composition() const {
  if (file.empty() && inline_text.empty()) {
    throw InputError(
        "no mixture: give a file with -m or components with --z, for instance --z methane=0.9,ethane=0.1");
  }
  Composition result;
  for (const std::string& text : own) result.define(parse_definition(text, false));
  for (const std::string& text : fractions) result.define(parse_definition(text, true));
  ReadOptions read{analysis, column, {}};
  if (!basis.empty()) read.basis = basis_by_name(basis);
  if (!file.empty()) read_composition_file(file, result, read);
  if (file.empty() && !(analysis + column).empty())
    throw InputError("--analysis and --column belong to a mixture file, -m FILE");
  if (!inline_text.empty()) read_inline(inline_text, result, !file.empty());
  if (!basis.empty()) {
    const Basis wanted = basis_by_name(basis);
    if (result.basis_given && result.basis != wanted) {
      throw InputError(fmt::format("{} says that its amounts are by {}, --basis says the opposite", file,
                                   result.basis == Basis::mole ? "mole" : "mass"));
    }
    result.basis = wanted;
  }
  return result;
}

Mixture MixtureOptions::build() const {
  return build_mixture(composition(), interaction_set(set));
}

void MissingPairOptions::add_to(CLI::App& command) {
  command.add_flag("--allow-missing-pairs", allowed,
                   "Take group interactions without a published value as zero");
}

void MissingPairOptions::check(const Mixture& mixture) const {
  const auto lines = missing_in_words(mixture, kTracePair);
  if (allowed || lines.empty()) return;
  throw InputError(fmt::format(
      "no published group interaction (set {}) for\n  {}\n--allow-missing-pairs takes them as "
      "zero, and the result can be far off; pairs of which one is below {:g} % of the mixture are taken as "
      "zero in any case",
      mixture.set_name, joined(lines, "\n  "), 100.0 * kTracePair));
}

void RecordOptions::add_to(CLI::App& command) {
  command.add_flag("--free-water", free_water, "Water may form a liquid of its own");
  command.add_option("--solubility", solubility,
                     fmt::format("A,B of the water solubility exp(A - B/T), T in K (default {},{})",
                                 kSolubilityA, kSolubilityB));
  command.add_option("--settings", settings,
                     "Flash settings: crit=, clim=, eps=, itemax=, new=, relax=, by commas");
  command.add_flag("--trace", trace, "Write the iterations to standard error");
}

void RecordOptions::apply(Mixture& mixture) const {
  MixtureRecord& record = mixture.record;
  if (!solubility.empty() && !free_water) throw InputError("--solubility has no effect without --free-water");
  if (free_water) {
    record.flags = FreeWaterFlag;
    record.solubility_a = kSolubilityA;
    record.solubility_b = kSolubilityB;
  }
  if (!solubility.empty()) {
    const auto pieces = split(solubility, ',');
    const auto a = parse_number(pieces[0]);
    const auto b = parse_number(pieces.back());
    if (pieces.size() != 2 || !a || !b) {
      throw InputError(fmt::format("the solubility \"{}\" is not of the form A,B, for instance {},{}",
                                   solubility, kSolubilityA, kSolubilityB));
    }
    record.solubility_a = *a;
    record.solubility_b = *b;
  }
  for (const std::string& piece : split(settings, ',')) apply_setting(piece, record);
  mixture.trace = trace;
}

void OutputOptions::add_to(CLI::App& command) {
  command.add_option("--format", format, "table (default), json or csv")
      ->check(CLI::IsMember({"table", "json", "csv"}));
  command.add_option(
      "--units", units,
      "engineering (C, bar, kJ/kg; default), si (K, Pa, J/mol), field (F, psia, Btu/lb) or a pair "
      "of temperature and pressure: K,atm");
}

void tell(Session& session, const std::vector<std::string>& sentences) {
  for (const std::string& sentence : sentences) session.err << "kestrune: note: " << sentence << '\n';
}

std::vector<std::string> remarks(const Mixture& mixture) {
  std::vector<std::string> lines;
  if (mixture.sum_was_off()) {
    lines.push_back(fmt::format("the amounts sum to {:.10g} and were normalised to 1", mixture.given_sum));
  }
  lines.insert(lines.end(), mixture.notes.begin(), mixture.notes.end());
  if (mixture.basis == Basis::mass) lines.push_back("mass fractions were converted to mole fractions");
  if (!missing_in_words(mixture).empty()) {
    lines.push_back("no published group interaction, taken as zero: " +
                    joined(missing_in_words(mixture), "; "));
  }
  return lines;
}

}  // namespace kestrune::host
