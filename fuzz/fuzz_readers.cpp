// Runs over what the command line reads: mixtures, conditions, units, names, whole command lines. Texts are samples
// with a few bytes changed. A reader returns, or throws the host's own error with a text; what it understood, written
// down again, is read the same.
#include <cctype>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include "choices.hpp"
#include "commands/session.hpp"
#include "composition.hpp"
#include "error.hpp"
#include "kestrune/status.h"
#include "mixture.hpp"
#include "report.hpp"
#include "text.hpp"
#include "units.hpp"

namespace kestrune::fuzz {
namespace {

using host::Composition;
using Texts = std::vector<std::string>;

const Texts kInline{"methane=0.7, ethane=9%, N2=0.1", "2,2-dimethylbutane=1e-3,water=.2,\"CO2\"=5%", "C1=1"};
const Texts kLines{"# gas\nname, amount\nmethane, 0.9\nethane; 0.05\n\"n-butane\"\t5%\n",
                   "methane 0.943\r\nethane 0.027\r\npropane 0.0074,,\r\n", "7732-18-5 1\n74-82-8;2;;\n"};
const Texts kJson{R"({"name": "gas", "basis": "mass", "components": {"methane": 0.7, "ethane": "30%"}})",
                  R"({"components": [{"name": "methane", "amount": 0.7}, {"name": "N2", "fraction": 1e-3}]})",
                  R"({"methane": 0.7, "water": 0.3})"};
const Texts kConditions{"25",       "25 C", "200,220,250 K",    "0:100:10 C", "1:10:1 bar, 20 barg, 1 atm",
                        "-5 kJ/kg", "0.5",  "1e5 Pa, 14.7 psia"};
const Texts kUnits{"engineering", "si", "field", "K,atm", "C, bar", "kJ/(kg K)", "BTU/lb", "psig", "mPa s"};
const Texts kNames{"n-butane", "2,2-dimethylbutane", "7732-18-5", "Normal Butane", "o-xylene", "metahne",
                   "H2O"};
const Texts kNumbers{"1e308", "-1",    "nan", "inf", "1e-320", "0x10",
                     "",      "1e999", "0",   "-0",  "1e-400", "123456789012345678901234567890",
                     "%"};
const Texts kCommands{
    "flash --z methane=0.95,n-butane=0.05 -T 25C -P 1bar",
    "flash --z methane=0.6,n-butane=0.3,water=0.1 -P 40bar --beta 0.5 --free-water --phases 3",
    "flash --z methane=0.6,n-butane=0.4 -H -10kJ/kg -P 40bar --format json",
    "props --z methane=1 -T 300K -P 1atm --units si --format csv",
    "envelope --z methane=0.9,n-butane=0.1 --units K,atm --format csv",
    "kij methane ethane -T 0C",
    "components butane --format json",
    "water --z methane=.9,CO2=.1 --line -P 1,200bar --points 3",
    "hydrate --z methane=0.9,ethane=0.1 --inhibitor methanol --percent 10",
    "flash -m fuzz_mixture.txt -T 25,30 -P 1,2 --settings ITEMAX=50,CRIT=1e-9 --print T,P,beta",
    "--help"};

const std::string& any_of(Choices& choices, const Texts& texts) {
  return texts[static_cast<std::size_t>(choices.below(static_cast<int>(texts.size())))];
}

void mutate(Choices& choices, std::string& text, const Texts& samples) {
  const auto at = [&] { return static_cast<std::size_t>(choices.below(static_cast<int>(text.size()) + 1)); };
  static const std::string special = ",;=:%\"{}[]#\n\t .eE+-0\\/()_\xEF\xBB\xBF\xFF";
  const std::size_t here = at();
  switch (choices.below(7)) {
    case 0:
      text.erase(here, static_cast<std::size_t>(1 + choices.below(4)));
      break;
    case 1:
      text.insert(here, 1, special[static_cast<std::size_t>(choices.below(static_cast<int>(special.size())))]);
      break;
    case 2:
      text.insert(here, 1, static_cast<char>(choices.below(256)));
      break;
    case 3:
      text.insert(here, any_of(choices, kNumbers));
      break;
    case 4:
      text.insert(here, text.substr(at(), 40));
      break;
    case 5:
      text = text.substr(0, here) + any_of(choices, samples);
      break;
    default:
      text.insert(here, static_cast<std::size_t>(choices.below(2000)),
                  choices.pick({'[', '{', '9', ' ', '"', ',', 'a'}));
  }
}

std::string draw_text(Choices& choices, const Texts& samples) {
  std::string text = any_of(choices, samples);
  for (int k = choices.below(5); k > 0; --k) mutate(choices, text, samples);
  return text;
}

std::string exactly(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", value);
  return text;
}

// ---- The rules: each returns what is wrong, or nothing ----

bool same(const Composition& a, const Composition& b) {
  if (a.components.size() != b.components.size() || a.amounts != b.amounts) return false;
  for (std::size_t i = 0; i < a.components.size(); ++i)
    if (a.components[i].number != b.components[i].number) return false;
  return true;
}

std::string read_again(const Composition& c) {
  std::string lines, json, one_line;
  for (std::size_t i = 0; i < c.components.size(); ++i) {
    const std::string id(c.components[i].id), amount = exactly(c.amounts[i]);
    lines += id + ", " + amount + "\n";
    json += (i > 0 ? ", \"" : "\"") + id + "\": " + amount;
    one_line += (i > 0 ? "," : "") + id + "=" + amount;
  }
  Composition from_lines, from_json, from_line;
  host::read_lines("name, amount\n" + lines, from_lines);
  host::read_json("{\"components\": {" + json + "}}", from_json);
  host::read_inline(one_line, from_line, false);
  if (!same(c, from_lines) || !same(c, from_json) || !same(c, from_line))
    return "a mixture is not read again as it was";
  const host::Mixture m = host::build_mixture(c, host::interaction_set("2022"));
  double sum = 0.0;
  for (const double v : m.z) sum += v >= 0.0 ? v : NAN;
  return std::abs(sum - 1.0) < 1e-9 && m.molar_mass > 0.0 && std::isfinite(m.molar_mass)
             ? ""
             : "a mixture has no fractions";
}

std::string mixture(const std::string& text, int form) {
  Composition c;
  if (form == 0) host::read_inline(text, c, false);
  if (form == 1) host::read_lines(text, c);
  if (form == 2) host::read_json(text, c);
  return c.components.empty() ? "" : read_again(c);
}

std::string conditions(const std::string& text, int which) {
  const auto quantity = static_cast<host::Quantity>(which % static_cast<int>(host::kQuantityCount));
  const host::UnitSystem si = host::unit_system("si");
  const std::vector<double> values =
      host::parse_conditions(quantity, text, host::unit_system("engineering")[quantity], 20.0);
  std::string again;
  for (const double v : values) {
    if (!std::isfinite(v)) return "a condition that is not finite";
    again += (again.empty() ? "" : ",") + exactly(si[quantity].from_base(v, 20.0));
  }
  const std::vector<double> second = host::parse_conditions(quantity, again, si[quantity], 20.0);
  for (std::size_t k = 0; k < values.size(); ++k)
    if (second.size() != values.size() || std::abs(second[k] - values[k]) > 1e-12 * std::abs(values[k]))
      return "conditions are not read again as they were";
  return values.empty() ? "no condition" : "";
}

// "nan" as a word of its own.
bool shows_nan(const std::string& text) {
  const auto letter = [&](std::size_t k) {
    return k < text.size() && std::isalpha(static_cast<unsigned char>(text[k])) != 0;
  };
  for (std::size_t at = text.find("nan"); at != std::string::npos; at = text.find("nan", at + 1))
    if (!letter(at - 1) && !letter(at + 3)) return true;
  return false;
}

std::string command_line(const std::string& text) {
  std::ostringstream out, err;
  const int code = host::run(host::split(text, ' '), out, err);
  if (code < host::exit_good || code > host::exit_input) return "exit code";
  if (code == host::exit_input) throw host::InputError(err.str());
  const bool may_show_nan = text.find("nan") != std::string::npos || text.find("--print") != std::string::npos;
  return shows_nan(out.str()) && !may_show_nan ? "a report with nan" : "";
}

struct Reader {
  const char* name;
  const Texts& samples;
  std::string (*read)(const std::string&, int);
};
const Reader kReaders[] = {
    {"mixture on one line", kInline, [](const std::string& t, int) { return mixture(t, 0); }},
    {"mixture, lines", kLines, [](const std::string& t, int) { return mixture(t, 1); }},
    {"mixture, JSON", kJson, [](const std::string& t, int) { return mixture(t, 2); }},
    {"conditions", kConditions, conditions},
    {"unit system", kUnits,
     [](const std::string& t, int) {
       return host::unit_system(t).units[0] != nullptr ? std::string() : "no unit";
     }},
    {"component name", kNames,
     [](const std::string& t, int) { return host::find_component(t).id.empty() ? "no id" : std::string(); }},
    {"command line", kCommands, [](const std::string& t, int) { return command_line(t); }}};

const Reader& draw_reader(Choices& choices) {
  for (;;) {
    const Reader& r = kReaders[choices.below(static_cast<int>(std::size(kReaders)))];
    if (progress->only != nullptr ? r.name == std::string(progress->only)
                                  : &r.samples != &kCommands || choices.chance(10))
      return r;
  }
}

}  // namespace

void one_run(const std::uint8_t* data, std::size_t size) {
  Choices choices(data, size);
  const Reader& reader = draw_reader(choices);
  const int which = choices.below(20);
  const std::string text = draw_text(choices, reader.samples);
  if (&reader.samples == &kCommands)
    std::ofstream("fuzz_mixture.txt", std::ios::binary)
        << draw_text(choices, choices.chance(50) ? kJson : kLines);
  if (progress->narrate) std::printf("%s %d: \"%s\"\n", reader.name, which, text.c_str());
  std::fflush(stdout);
  const double begin = processor_ms();
  std::string wrong;
  bool understood = true;
  try {
    wrong = reader.read(text, which);
  } catch (const host::InputError& e) {
    understood = false;
    if (std::string(e.what()).empty()) wrong = "an error without a text";
  } catch (const std::exception& e) {
    wrong = std::string("an error that is not the host's own: ") + e.what();
  }
  const double ms = processor_ms() - begin;
  Tally& tally = progress->tally(reader.name);
  tally.count(ms, static_cast<int>(text.size()), understood, true);
  if (wrong.empty()) return;
  ++tally.faults;
  count_fault(reader.name, wrong, " " + std::to_string(which) + " \"" + text + "\"");
}

std::size_t known_cases() {
  return 0;
}

void known_case(std::size_t) {}

}  // namespace kestrune::fuzz
