#include "amounts.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

// Letters and digits of a unit: "%" is percent, "/" per, the micro sign u. Empty where other signs beyond ASCII stand.
std::string amount_key(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::string_view two = text.substr(i, 2);
    if (text[i] == '%') {
      plain += "percent";
    } else if (text[i] == '/') {
      plain += "per";
    } else if (two == "\xC2\xB5" || two == "\xCE\xBC") {
      plain += 'u';
      ++i;
    } else if (static_cast<unsigned char>(text[i]) >= 0x80) {
      return "";
    } else {
      plain += text[i];
    }
  }
  return search_key(plain);
}

void refuse_liquid_volumes(std::string_view text, const std::string& key) {
  const auto has = [&](std::string_view word) { return key.find(word) != std::string::npos; };
  if (!(has("liq") || key.rfind("lv", 0) == 0) || !(has("percent") || has("pct") || has("fraction"))) return;
  throw InputError(fmt::format("\"{}\": volumes of liquid are not read, they need densities: write mol% or wt%",
                               trimmed(text)));
}

constexpr std::string_view kUnitsInWords =
    "mol%, mole fraction, vol% (of gas), ppm, ppmv, wt%, mass fraction or ppmw";

}  // namespace

std::optional<AmountUnit> amount_unit(std::string_view text) {
  const std::string key = amount_key(text);
  if (key.empty()) return {};
  refuse_liquid_volumes(text, key);
  struct Scale {
    std::string_view word;
    double whole;
  };
  constexpr Scale scales[] = {{"percent", 1e2}, {"pct", 1e2}, {"ppm", 1e6}, {"ppb", 1e9}};
  constexpr std::array<std::string_view, 10> moles{"mol", "mole",   "moles", "molar",        "v",
                                                   "vol", "volume", "vperv", "molefraction", "molarfraction"};
  constexpr std::array<std::string_view, 7> masses{"w", "wt", "weight", "mass", "m", "wperw", "byweight"};
  const auto is = [](const auto& words, std::string_view k) {
    return std::find(words.begin(), words.end(), k) != words.end();
  };
  for (const Scale& scale : scales) {  // a scale, and in front of or behind it what is counted
    const std::size_t at = key.find(scale.word);
    if (at == std::string::npos) continue;
    const std::string rest = key.substr(0, at) + key.substr(at + scale.word.size());
    if (rest.empty()) return AmountUnit{{}, scale.whole, true};
    if (is(moles, rest)) return AmountUnit{Basis::mole, scale.whole, true};
    if (is(masses, rest)) return AmountUnit{Basis::mass, scale.whole, true};
    return {};
  }
  constexpr Scale ratios[] = {{"molpermol", 1.0},  {"cmolpermol", 1e2}, {"mmolpermol", 1e3},
                              {"umolpermol", 1e6}, {"nmolpermol", 1e9}, {"m3perm3", 1.0}};
  for (const Scale& r : ratios)
    if (key == r.word) return AmountUnit{Basis::mole, r.whole, true};
  if (key == "kgperkg") return AmountUnit{Basis::mass, 1.0, true};
  if (key == "mgperkg") return AmountUnit{Basis::mass, 1e6, true};
  constexpr std::array<std::string_view, 16> open_moles{
      "mol",      "mole",     "moles",   "molefraction", "molarfraction",  "molfraction",
      "molfrac",  "molefrac", "vol",     "volfraction",  "volumefraction", "kmol",
      "kmolperh", "molperh",  "molpers", "kmolpers"};
  constexpr std::array<std::string_view, 12> open_masses{
      "wt", "mass", "weight", "massfraction", "weightfraction", "kg", "kgperh", "kgpers",
      "g",  "lb",   "t",      "wtfraction"};
  if (is(open_moles, key)) return AmountUnit{Basis::mole, 1.0, false};
  if (is(open_masses, key)) return AmountUnit{Basis::mass, 1.0, false};
  return {};
}

std::optional<AmountUnit> unit_within(std::string_view text) {
  if (const auto whole = amount_unit(text)) return whole;
  const std::string key = amount_key(text);
  for (const std::string_view word : {"mass", "weight", "wt", "mol", "mole", "vol", "volume"})
    for (const std::string_view scale : {"percent", "fraction"})
      if (key.find(std::string(word) + std::string(scale)) != std::string::npos) {
        refuse_liquid_volumes(text, key);
        return amount_unit(std::string(word) + std::string(scale));
      }
  for (const std::string_view word : {"ppmw", "ppmv"})
    if (key.find(word) != std::string::npos) return amount_unit(word);
  return {};
}

void NameAndUnit::check() const {
  if (odd.empty()) return;
  throw InputError(fmt::format("\"{}\" behind {} is no unit of amounts: use {}", odd, name, kUnitsInWords));
}

NameAndUnit name_and_unit(std::string_view cell) {
  constexpr std::string_view closed[] = {"mole %", "mole%",    "mol.%",   "mol-%", "mol %", "mol%", "vol.%",
                                         "vol %",  "vol%",     "wt.%",    "wt-%",  "wt %",  "wt%",  "mass %",
                                         "mass%",  "weight %", "weight%", " ppmv", " ppmw", " ppm", "%"};
  const std::size_t cut = std::min({cell.find('['), cell.find(" ("), cell.size()});
  NameAndUnit result;
  const auto strip = [](std::string_view text) {
    text = trimmed(text);
    while (!text.empty() && (text.back() == ',' || text.back() == ':'))
      text = trimmed(text.substr(0, text.size() - 1));
    return text;
  };
  std::string_view head = strip(cell.substr(0, cut));
  const auto component = [](std::string_view text) -> std::string {
    try {
      return std::string(find_component(text).name);
    } catch (const InputError&) {
      return "";  // none, or one of several
    }
  };
  const auto take = [&](std::string_view text) {
    auto unit = amount_unit(text);
    if (unit && text.size() == 1 && text != "%") unit.reset();  // "CO2 (g)" is a gas
    if (unit && result.unit && !(*unit == *result.unit))
      result.odd = text;
    else if (unit)
      result.unit = unit;
    else if (!names_component(text) ||
             (!component(text).empty() && !component(head).empty() && component(text) != component(head)))
      result.odd = text;
  };
  const std::string small = lower(head);
  for (const std::string_view unit : closed) {
    if (small.size() <= unit.size() || small.substr(small.size() - unit.size()) != unit) continue;
    take(unit);
    head = strip(head.substr(0, head.size() - unit.size()));
    break;
  }
  for (std::string_view rest = trimmed(cell.substr(cut)); !rest.empty();) {
    const bool bracket = rest.front() == '[' || rest.front() == '(';
    const std::size_t end =
        bracket ? std::min(rest.find(rest.front() == '[' ? ']' : ')'), rest.size()) : rest.find_first_of("[(");
    const std::string_view piece = strip(rest.substr(bracket ? 1 : 0, bracket ? end - 1 : end));
    if (!search_key(piece).empty() || piece.find('%') != std::string_view::npos) take(piece);
    rest = end >= rest.size() ? std::string_view{} : trimmed(rest.substr(end + (bracket ? 1 : 0)));
  }
  result.name = head;
  return result;
}

double add_amounts(const std::vector<Amount>& amounts, Composition& composition) {
  const auto scaled = [](const Amount& a) { return a.unit && a.unit->scaled; };
  const Amount *mole = nullptr, *mass = nullptr;
  double plain_sum = 0.0, scaled_sum = 0.0;
  bool any_plain = false;
  for (const Amount& a : amounts) {
    if (a.unit && a.unit->basis) (*a.unit->basis == Basis::mass ? mass : mole) = &a;
    if (scaled(a)) scaled_sum += a.value / a.unit->whole;
    if (scaled(a)) continue;
    any_plain = any_plain || a.value != 0.0;
    plain_sum += a.value;
  }
  if (mole != nullptr && mass != nullptr)
    throw InputError(fmt::format("line {}: {} is an amount by {}, and {} by {}: write all in one of them",
                                 std::max(mole->line, mass->line), mole->name, "mole", mass->name, "mass"));
  double whole = 1.0;
  const auto first = std::find_if(amounts.begin(), amounts.end(), scaled);
  if (first != amounts.end() && any_plain) {
    constexpr double kNear = 0.05;  // an analysis sums to the whole within a few percent
    const auto near = [&](double all) { return std::abs(plain_sum / all + scaled_sum - 1.0) <= kNear; };
    if (!near(1.0) && !near(100.0))
      throw InputError(
          fmt::format("line {}: the amount of {} has a unit, and others that have none sum to {:.6g}, neither "
                      "1 nor 100: say "
                      "what they are, for instance mol% in the heading",
                      first->line, first->name, plain_sum));
    whole = near(1.0) ? 1.0 : 100.0;
  }
  for (const Amount& a : amounts) {
    try {
      composition.add(a.name, a.value / (scaled(a) ? a.unit->whole : whole));
    } catch (const InputError& e) {
      throw InputError(fmt::format("line {}: {}", a.line, e.what()));
    }
  }
  composition.percent = first != amounts.end();
  if (mass != nullptr) composition.basis = Basis::mass;
  if (mass != nullptr) composition.basis_given = true;
  return whole;
}

}  // namespace kestrune::host
