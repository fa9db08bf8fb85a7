#include "definition.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>

#include "error.hpp"
#include "text.hpp"
#include "units.hpp"

namespace kestrune::host {

namespace {

constexpr std::string_view kComponentKeys =
    "M, Tc, Pc, omega, Vc, Tb, SG, API, CAS, Cp, Cp range, groups, structure, kij, correlation";
constexpr std::string_view kFractionKeys =
    "M, SG, API, curve, pieces, distribution, alpha, eta, correlation, PNA, structure";

// A positive number in a unit, each with its factor to the first.
double with_factor(std::string_view key, std::string_view text,
                   std::initializer_list<std::pair<std::string_view, double>> units) {
  const std::string_view all = trimmed(text);
  const std::size_t length = number_length(all);
  const auto value = parse_number(all.substr(0, length));
  const std::string unit_key = search_key(all.substr(length));
  for (const auto& [name, factor] : units) {
    if (value && *value > 0.0 && (unit_key.empty() || unit_key == search_key(name))) return *value * factor;
  }
  throw InputError(fmt::format(
      "{} = {}: not a positive number{}", key, all,
      units.begin()->first.empty() ? ", and it has no unit" : fmt::format(" in {}", units.begin()->first)));
}

double condition(std::string_view key, Quantity quantity, std::string_view written, std::string_view plain) {
  const std::string_view text = trimmed(written);
  try {
    const auto values = parse_conditions(quantity, text, unit(quantity, plain));
    if (values.size() == 1) return values[0];
  } catch (const InputError& e) {
    throw InputError(fmt::format("{} = {}: {}", key, text, e.what()));
  }
  throw InputError(fmt::format("{} = {}: one value is needed", key, text));
}

double plain_number(std::string_view key, std::string_view text) {
  const auto value = parse_number(text);
  if (!value) throw InputError(fmt::format("{} = {}: not a number", key, trimmed(text)));
  return *value;
}

// Pieces apart by commas, semicolons or blanks.
std::vector<std::string> listed(std::string_view text) {
  std::string plain(text);
  std::replace_if(
      plain.begin(), plain.end(), [](char c) { return c == ',' || c == ';' || c == '\t'; }, ' ');
  std::vector<std::string> pieces;
  for (const std::string& piece : split(plain, ' '))
    if (!piece.empty()) pieces.push_back(piece);
  return pieces;
}

int group_by_name(std::string_view name) {
  const std::string key = search_key(name);
  const auto names = tables::group_names();
  for (std::size_t k = 0; k < names.size(); ++k) {
    const std::string_view full = names[k];
    if (search_key(full) == key || search_key(full.substr(0, full.find('_'))) == key)
      return static_cast<int>(k) + 1;
  }
  std::vector<std::string> all(names.begin(), names.end());
  throw InputError(fmt::format("unknown PPR78 group \"{}\": use {}", trimmed(name), joined(all, ", ")));
}

// "CH3:2, CH2:8"
std::vector<std::pair<int, double>> parse_groups(std::string_view text) {
  std::vector<std::pair<int, double>> groups;
  for (const std::string& piece : listed(text)) {
    const std::size_t colon = piece.rfind(':');
    const auto count = colon == std::string::npos ? std::nullopt : parse_number(piece.substr(colon + 1));
    if (!count || !(*count > 0.0))
      throw InputError(fmt::format("groups = {}: \"{}\" is not of the form CH3:2", trimmed(text), piece));
    groups.emplace_back(group_by_name(std::string_view(piece).substr(0, colon)), *count);
  }
  if (groups.empty() || groups.size() > static_cast<std::size_t>(kMaxGroupsPerComponent))
    throw InputError(
        fmt::format("groups = {}: 1 to {} groups are needed", trimmed(text), kMaxGroupsPerComponent));
  return groups;
}

// "methane:0.04, CO2:0.1, other:0"; names may hold commas and blanks.
std::vector<std::pair<std::string, double>> parse_kij(std::string_view text) {
  std::vector<std::pair<std::string, double>> result;
  std::string entry;
  for (const std::string& piece : split(text, ',')) {
    entry += entry.empty() ? piece : "," + piece;
    const std::size_t colon = entry.rfind(':');
    if (colon == std::string::npos) continue;
    const auto value = parse_number(std::string_view(entry).substr(colon + 1));
    if (!value || std::abs(*value) > 1.0)
      throw InputError(
          fmt::format("kij = {}: \"{}\" is not a name and a value from -1 to 1", trimmed(text), entry));
    result.emplace_back(trimmed(std::string_view(entry).substr(0, colon)), *value);
    entry.clear();
  }
  if (!entry.empty() || result.empty())
    throw InputError(fmt::format("kij = {}: write for instance methane:0.04, CO2:0.1, other:0", trimmed(text)));
  return result;
}

// "10:120, 50:190, 90:280 C": percent distilled and boiling point.
std::vector<std::pair<double, double>> parse_curve(std::string_view text) {
  std::vector<std::pair<double, double>> curve;
  const auto pieces = split(text, ',');
  std::string_view last_unit = "C";
  if (!pieces.empty()) {
    std::string_view tail = pieces.back();
    tail.remove_prefix(std::min(tail.size(), tail.find(':') + 1));
    tail = trimmed(tail);
    if (const std::string_view found = trimmed(tail.substr(number_length(tail))); !found.empty())
      last_unit = found;
  }
  for (const std::string& piece : pieces) {
    const std::size_t colon = piece.find(':');
    const auto part = colon == std::string::npos ? std::nullopt : parse_number(piece.substr(0, colon));
    if (!part || *part < 0.0 || *part > 100.0 || (!curve.empty() && *part / 100.0 <= curve.back().first))
      throw InputError(
          fmt::format("curve: \"{}\" is not percent:temperature with rising percent, such as 50:190", piece));
    const double T = condition("curve", Quantity::temperature, piece.substr(colon + 1), last_unit);
    if (!curve.empty() && T <= curve.back().second)
      throw InputError(fmt::format("curve: the boiling points must rise, {} does not", piece));
    curve.emplace_back(*part / 100.0, T);
  }
  if (curve.size() < 3)
    throw InputError("curve: at least three points are needed, for instance 10:120, 50:190, 90:280 C");
  return curve;
}

ClassShares parse_shares(std::string_view text) {
  const auto pieces = listed(text);
  std::vector<double> values;
  for (const std::string& piece : pieces) values.push_back(plain_number("PNA", piece));
  double sum = 0.0;
  for (const double v : values) sum += v;
  if (values.size() != 3 || !(sum > 0.0) || *std::min_element(values.begin(), values.end()) < 0.0)
    throw InputError(
        fmt::format("PNA = {}: three shares are needed, paraffins, naphthenes, aromatics", trimmed(text)));
  return {values[0] / sum, values[1] / sum, values[2] / sum};
}

Structure structure_by_name(std::string_view text) {
  constexpr std::pair<std::string_view, Structure> names[] = {{"paraffin", Structure::paraffin},
                                                              {"naphthene", Structure::naphthene},
                                                              {"aromatic", Structure::aromatic},
                                                              {"pna", Structure::classes}};
  for (const auto& [name, structure] : names)
    if (search_key(text) == name) return structure;
  throw InputError(fmt::format("structure = {}: use paraffin, naphthene, aromatic or PNA", trimmed(text)));
}

std::string checked_cas(std::string_view text) {
  const std::string_view cas = trimmed(text);
  int sum = 0, weight = 0;
  std::string digits;
  for (const char c : cas)
    if (c != '-') digits += c;
  const bool form = digits.size() >= 5 && digits.size() <= 10 &&
                    std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; });
  for (std::size_t i = form ? digits.size() - 1 : 0; i-- > 0;) sum += ++weight * (digits[i] - '0');
  if (!form || sum % 10 != digits.back() - '0' || digits.size() > 9)
    throw InputError(fmt::format("CAS = {}: not a CAS number (its last digit checks the others)", cas));
  return digits.substr(0, digits.size() - 3) + "-" + digits.substr(digits.size() - 3, 2) + "-" + digits.back();
}

void set_fraction(Definition& d, const std::string& key, std::string_view value, std::string_view shown) {
  if (key == "pieces") {
    const double n = plain_number(shown, value);
    if (n != std::floor(n) || n < 1.0 || n > 40.0)
      throw InputError(fmt::format("pieces = {}: a whole number from 1 to 40", trimmed(value)));
    d.pieces = static_cast<int>(n);
  } else if (key == "distribution") {
    const std::string name = search_key(value);
    if (name != "exponential" && name != "gamma")
      throw InputError(fmt::format("distribution = {}: use gamma or exponential", trimmed(value)));
    d.distribution = name;
  } else if (key == "alpha") {
    d.alpha = plain_number(shown, value);
    if (!(*d.alpha >= 0.3 && *d.alpha <= 10.0))
      throw InputError(fmt::format("alpha = {}: 0.3 to 10", trimmed(value)));
  } else if (key == "eta") {
    d.eta = with_factor(shown, value, {{"g/mol", 1.0}, {"kg/kmol", 1.0}, {"lb/lbmol", 1.0}});
  } else if (key == "curve" || key == "tbp") {
    d.curve = parse_curve(value);
  } else {
    throw InputError(fmt::format("\"{}\" is not understood: a fraction has {}", shown, kFractionKeys));
  }
}

double gravity_of_api(std::string_view shown, std::string_view value) {
  const double api = plain_number(shown, value);
  if (!(api >= 1.0 && api <= 150.0))
    throw InputError(
        fmt::format("API = {}: 1 to 150 degrees (a specific gravity is written SG = 0.8)", trimmed(value)));
  return 141.5 / (131.5 + api);
}

void add_heat_capacity(Definition& d, std::string_view shown, std::string_view value) {
  std::string_view numbers = value;
  if (const std::size_t at = numbers.find_first_of("JjCc"); at != std::string_view::npos) {
    if (search_key(numbers.substr(at)) != "jmolk")
      throw InputError(fmt::format("Cp = {}: A, B, ... in J/(mol K) are needed", trimmed(value)));
    numbers = numbers.substr(0, at);
  }
  for (const std::string& piece : listed(numbers)) d.cp.push_back(plain_number(shown, piece));
  if (d.cp.empty() || d.cp.size() > 5)
    throw InputError("Cp: one to five numbers A, B, C, D, E of A + B T + C T2 + ... in J/(mol K), T in K");
}

void set_heat_capacity_range(Definition& d, std::string_view shown, std::string_view value) {
  const auto ends = split(value, ',');
  if (ends.size() != 2)
    throw InputError(
        fmt::format("Cp range = {}: two temperatures, for instance 200 K, 1000 K", trimmed(value)));
  d.cp_Tmin = condition(shown, Quantity::temperature, ends[0], "K");
  d.cp_Tmax = condition(shown, Quantity::temperature, ends[1], "K");
  if (!(d.cp_Tmin < d.cp_Tmax))
    throw InputError(fmt::format("Cp range = {}: the lower temperature comes first", trimmed(value)));
}

}  // namespace

void refuse(const Definition& d, const std::string& reason) {
  throw InputError(fmt::format("{} {}: {}", d.fraction ? "fraction" : "component", d.name, reason));
}

void Definition::set(std::string_view written, std::string_view value) {
  const std::string_view shown = trimmed(written);
  const std::string key = search_key(shown);
  if (trimmed(value).empty()) throw InputError(fmt::format("{} has no value", trimmed(shown)));
  const auto once = [&](std::optional<double>& number, double v) {
    if (number) throw InputError(fmt::format("{} is given twice", trimmed(shown)));
    number = v;
  };
  if (key == "name") {
    name = trimmed(value);
  } else if (key == "m" || key == "mw" || key == "molarmass") {
    once(M, with_factor(shown, value, {{"g/mol", 1.0}, {"kg/kmol", 1.0}, {"lb/lbmol", 1.0}}));
  } else if (key == "sg" || key == "specificgravity") {
    once(SG, with_factor(shown, value, {{"", 1.0}}));
    if (*SG < 0.5 || *SG > 1.3)
      throw InputError(
          fmt::format("{} = {}: a specific gravity 60/60 F lies between 0.5 and 1.3 (a density in kg/m3 is "
                      "about 999 times that)",
                      shown, trimmed(value)));
  } else if (key == "api") {
    once(SG, gravity_of_api(shown, value));
  } else if (key == "correlation") {
    correlation = correlation_by_name(value);
  } else if (key == "pna") {
    shares = parse_shares(value);
    structure = Structure::classes;
  } else if (key == "structure") {
    structure = structure_by_name(value);
  } else if (fraction) {
    set_fraction(*this, key, value, trimmed(shown));
  } else if (key == "tc") {
    once(Tc, condition(shown, Quantity::temperature, value, "K"));
  } else if (key == "pc") {
    once(Pc, condition(shown, Quantity::pressure, value, "bar"));
  } else if (key == "tb") {
    once(Tb, condition(shown, Quantity::temperature, value, "K"));
  } else if (key == "omega" || key == "acentricfactor" || key == "w") {
    once(omega, plain_number(shown, value));
    if (std::abs(*omega) > 3.0)
      throw InputError(
          fmt::format("{} = {}: an acentric factor lies between -0.4 and 3", shown, trimmed(value)));
  } else if (key == "vc") {
    once(Vc, with_factor(shown, value, {{"cm3/mol", 1.0}, {"m3/kmol", 1000.0}, {"l/mol", 1000.0}}));
  } else if (key == "cas") {
    cas = checked_cas(value);
    if (cas == "7732-18-5") throw InputError("CAS = 7732-18-5: water is in the databank");
  } else if (key == "cp") {
    add_heat_capacity(*this, shown, value);
  } else if (key == "cprange") {
    set_heat_capacity_range(*this, shown, value);
  } else if (key == "groups") {
    groups = parse_groups(value);
    structure = Structure::groups;
  } else if (key == "kij") {
    kij = parse_kij(value);
  } else {
    throw InputError(
        fmt::format("\"{}\" is not understood: a component has {}", trimmed(shown), kComponentKeys));
  }
}

void Definition::check() const {
  const std::string what = fraction ? "fraction" : "component";
  if (name.empty()) throw InputError(fmt::format("a {} of your own has no name", what));
  const auto wrong = [&](const std::string& reason) { refuse(*this, reason); };
  const bool plus = fraction && (name.back() == '+' || name.find('*') != std::string::npos);
  if (!plus && names_component(name)) wrong("the databank has a component of this name; choose another");
  if (search_key(name).empty() || name.find('=') != std::string::npos)
    wrong("a name has a letter or digit, and no \"=\"");
  if (fraction) {
    if (!SG) wrong("SG is missing: the specific gravity 60/60 F, or API");
    if (!M && curve.empty()) wrong("M is missing: the molar mass, or a boiling curve");
    if (!curve.empty() && (alpha || eta || !distribution.empty()))
      wrong("a boiling curve leaves no distribution to choose: leave out alpha, eta and distribution");
    if (distribution == "gamma" && !alpha)
      wrong("distribution = gamma needs alpha, its shape, 0.3 to 10 (1 is the exponential one)");
    if (distribution == "exponential" && alpha && *alpha != 1.0)
      wrong("the exponential distribution has alpha = 1: leave alpha out, or write distribution = gamma");
    return;
  }
  if (!M) wrong("M is missing, the molar mass in g/mol");
  check_plausible(*this);
  const bool known = Tc && Pc, estimated = SG.has_value();
  if ((Tc && !Pc) || (Pc && !Tc)) wrong("Tc and Pc belong together");
  if (!known && !estimated)
    wrong("Tc and Pc are missing (or SG, from which correlations for petroleum have them)");
  if (!omega && !Tb && !SG)
    wrong("omega is missing, the acentric factor (or Tb or SG, from which it is estimated)");
  if (structure == Structure::none && kij.empty())
    wrong(
        "nothing says how it interacts: groups = CH3:2 CH2:8, structure = paraffin, naphthene, aromatic or "
        "PNA, or "
        "kij = methane:0.04, other:0");
}

Definition parse_definition(std::string_view text, bool fraction) {
  Definition d;
  d.fraction = fraction;
  std::vector<std::pair<std::string, std::string>> entries;
  std::string plain(text);
  std::replace(plain.begin(), plain.end(), ';', ',');
  for (const std::string& piece : split(plain, ',')) {
    const std::size_t equals = piece.find('=');
    if (equals != std::string::npos)
      entries.emplace_back(trimmed(piece.substr(0, equals)), trimmed(piece.substr(equals + 1)));
    else if (!entries.empty())
      entries.back().second += ", " + piece;
    else
      throw InputError(fmt::format("\"{}\" is not of the form key=value, for instance name=cut, M=142", piece));
  }
  for (const auto& [key, value] : entries) {
    try {
      d.set(key, value);
    } catch (const InputError& e) {
      throw InputError(fmt::format("{} {}: {}", fraction ? "fraction" : "component", d.name, e.what()));
    }
  }
  d.check();
  return d;
}

}  // namespace kestrune::host
