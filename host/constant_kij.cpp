#include "constant_kij.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>

#include "definition.hpp"
#include "error.hpp"
#include "kij.hpp"
#include "mixture.hpp"
#include "text.hpp"
#include "units.hpp"

namespace kestrune::host {

namespace {

constexpr double kReference = 298.15;  // K, of the group interactions
constexpr double kMPaInAtm = 1000000.0 / 101325.0;

// A term of E of a constant pair: amount * A (298.15 K/T)^(B/A - 1), in MPa.
struct Term {
  double A, B;
};

// The three powers of T first, 1 atm each; then every interaction of two groups that a pair of components needs.
std::vector<Term> terms_of(const Mixture& m) {
  constexpr double atm = 1.0 / kMPaInAtm;
  std::vector<Term> terms{{atm, atm}, {atm, 0.5 * atm}, {atm, 0.0}};
  const std::size_t nG = m.own_groups;
  for (std::size_t l = 1; l < nG; ++l)
    for (std::size_t k = 0; k < l; ++k)
      if (m.A[l * m.groups.size() + k] != 0.0)
        terms.push_back({m.A[l * m.groups.size() + k], m.B[l * m.groups.size() + k]});
  return terms;
}

// delta = p - q sqrt(T), sqrt(atm).
struct Delta {
  double p, q;
};
Delta delta_of(const Component& c) {
  const CubicConstants constants;
  const double Pc = c.Pc / kAtmInPa;
  const double slope = slope_1978(c.omega);
  const double scale = std::sqrt(constants.omega_a_r2 * Pc) / constants.omega_b_r;
  return {scale * (1.0 + slope), scale * slope / std::sqrt(c.Tc)};
}

// Amounts of the terms for a pair.
std::vector<double> amounts_of(const Mixture& m, const ConstantPair& pair) {
  const Delta i = delta_of(m.components[static_cast<std::size_t>(pair.i)]);
  const Delta j = delta_of(m.components[static_cast<std::size_t>(pair.j)]);
  const double r = 1.0 - pair.k;
  std::vector<double> amounts{
      i.p * i.p + j.p * j.p - 2.0 * r * i.p * j.p,
      std::sqrt(kReference) * (-2.0 * (i.p * i.q + j.p * j.q) + 2.0 * r * (i.p * j.q + i.q * j.p)),
      kReference * (i.q * i.q + j.q * j.q - 2.0 * r * i.q * j.q)};
  const std::size_t nC = m.components.size();
  const auto share = [&](int c, std::size_t g) { return m.fractions[g * nC + static_cast<std::size_t>(c)]; };
  for (std::size_t l = 1; l < m.own_groups; ++l)
    for (std::size_t k = 0; k < l; ++k)
      if (m.A[l * m.groups.size() + k] != 0.0)
        amounts.push_back((share(pair.i, k) - share(pair.j, k)) * (share(pair.i, l) - share(pair.j, l)));
  return amounts;
}

// Components that are the first of a constant pair: each carries groups of its own.
std::vector<int> owners_of(const Mixture& m) {
  std::vector<int> owners;
  for (const ConstantPair& pair : m.constants)
    if (std::find(owners.begin(), owners.end(), pair.i) == owners.end()) owners.push_back(pair.i);
  return owners;
}

// Whether a name as it is written stands for this component.
bool names_same(std::string_view name, const Component& component) {
  const std::string key = search_key(name);
  if (key == search_key(component.name) ||
      (!component.fraction.empty() && key == search_key(component.fraction)))
    return true;
  return component.number > 0 && names_component(name) && find_component(name).number == component.number;
}

using NamedKij = std::pair<std::string, double>;

// The entry of a definition for a component by its name, null without one.
const NamedKij* kij_named(const Definition& d, const Component& other) {
  for (const NamedKij& entry : d.kij)
    if (search_key(entry.first) != "other" && names_same(entry.first, other)) return &entry;
  return nullptr;
}

const NamedKij* kij_of_others(const Definition& d) {
  for (const NamedKij& entry : d.kij)
    if (search_key(entry.first) == "other") return &entry;
  return nullptr;
}

// Every name among the k_ij of a definition stands for one other component, in the mixture or not, and stands once.
void check_kij_names(const Composition& from, const Definition& d) {
  std::vector<std::string> seen;
  for (const auto& [name, value] : d.kij) {
    std::string stands_for = "other";
    if (search_key(name) != "other") {
      const auto own = [&name = name](const Definition& e) { return search_key(e.name) == search_key(name); };
      const auto found = std::find_if(from.definitions.begin(), from.definitions.end(), own);
      try {
        stands_for = found != from.definitions.end() ? found->name : std::string(find_component(name).name);
      } catch (const InputError& e) {
        refuse(d, fmt::format("kij = {}:{:g}: {}", name, value, e.what()));
      }
    }
    if (stands_for == d.name) refuse(d, fmt::format("kij = {}:{:g} is with itself", name, value));
    if (std::find(seen.begin(), seen.end(), stands_for) != seen.end())
      refuse(d, fmt::format("kij has {} twice (as \"{}\")", stands_for, name));
    seen.push_back(stands_for);
  }
}

// The constant k_ij of component i with j: of the name in either definition, else of "other"; 0 where nothing names the pair
// and i has no groups. Nothing where the groups say it.
std::optional<double> constant_of(const Component& ci, const Component& cj, const Definition& mine,
                                  const Definition* theirs, bool& is_zero) {
  const NamedKij* here = kij_named(mine, cj);
  const NamedKij* there = theirs == nullptr ? nullptr : kij_named(*theirs, ci);
  if (here != nullptr && there != nullptr && here->second != there->second)
    refuse(mine, fmt::format("its k_ij with {} is {:g}, and that of {} with it {:g}: write one of them",
                             theirs->name, here->second, theirs->name, there->second));
  if (here == nullptr) here = there;
  if (here == nullptr) here = kij_of_others(mine);
  if (here == nullptr && theirs != nullptr) here = kij_of_others(*theirs);
  if (here != nullptr) return here->second;
  is_zero = ci.group_count == 0 && !mine.kij.empty();
  return is_zero ? std::optional(0.0) : std::nullopt;
}

}  // namespace

bool is_constant(const Mixture& m, std::size_t i, std::size_t j) {
  const int low = static_cast<int>(std::min(i, j)), high = static_cast<int>(std::max(i, j));
  return std::any_of(m.constants.begin(), m.constants.end(),
                     [&](const ConstantPair& p) { return p.i == low && p.j == high; });
}

void fill_constants(const Composition& from, const std::vector<int>& definition_of, Mixture& m) {
  for (const Definition& d : from.definitions) check_kij_names(from, d);
  const auto definition = [&](std::size_t i) {
    return definition_of[i] < 0 ? nullptr : &from.definitions[static_cast<std::size_t>(definition_of[i])];
  };
  for (std::size_t i = 0; i < m.components.size(); ++i) {
    const Definition* mine = definition(i);
    if (mine == nullptr) continue;
    std::vector<std::string> zero;
    for (std::size_t j = 0; j < m.components.size(); ++j) {
      if (j == i || is_constant(m, i, j)) continue;
      const Component& other = m.components[j];
      bool is_zero = false;
      const auto k = constant_of(m.components[i], other, *mine, definition(j), is_zero);
      if (!k) continue;
      const std::string& shown = other.fraction.empty() ? other.name : other.fraction;
      if (is_zero && std::find(zero.begin(), zero.end(), shown) == zero.end()) zero.push_back(shown);
      m.constants.push_back({static_cast<int>(std::min(i, j)), static_cast<int>(std::max(i, j)), *k});
    }
    if (!zero.empty())
      m.notes.push_back(fmt::format("{}: k_ij with {} taken as 0", mine->name, joined(zero, ", ")));
  }
}

void add_constant_groups(Mixture& m) {
  m.own_groups = m.groups.size();
  if (m.constants.empty()) return;
  const std::vector<Term> terms = terms_of(m);
  const std::size_t old = m.own_groups, nC = m.components.size();
  const std::size_t all = old + 2 * terms.size() * owners_of(m).size();
  const std::vector<double> A = m.A, B = m.B;
  const std::vector<std::int32_t> counts = m.counts;
  m.A.assign(all * all, 0.0);
  m.B.assign(all * all, 0.0);
  m.counts.assign(all * nC, 0);
  for (std::size_t l = 0; l < old; ++l) {
    std::copy_n(A.begin() + static_cast<std::ptrdiff_t>(l * old), old,
                m.A.begin() + static_cast<std::ptrdiff_t>(l * all));
    std::copy_n(B.begin() + static_cast<std::ptrdiff_t>(l * old), old,
                m.B.begin() + static_cast<std::ptrdiff_t>(l * all));
  }
  for (std::size_t i = 0; i < nC; ++i)
    std::copy_n(counts.begin() + static_cast<std::ptrdiff_t>(i * old), old,
                m.counts.begin() + static_cast<std::ptrdiff_t>(i * all));
  for (std::size_t g = old; g < all; g += 2) {  // a group and its partner
    const Term& term = terms[(g - old) / 2 % terms.size()];
    m.A[(g + 1) * all + g] = term.A;
    m.B[(g + 1) * all + g] = term.B;
  }
  m.groups.resize(all, 0);
}

void set_constant_shares(Mixture& m) {
  if (m.constants.empty()) return;
  const std::size_t nC = m.components.size(), nG = m.groups.size();
  const std::vector<int> owners = owners_of(m);
  const std::size_t per_owner = (nG - m.own_groups) / owners.size();
  const auto set = [&](std::size_t group, int component, double share) {
    m.fractions[group * nC + static_cast<std::size_t>(component)] = share;
  };
  for (const ConstantPair& pair : m.constants) {
    const auto owner =
        static_cast<std::size_t>(std::find(owners.begin(), owners.end(), pair.i) - owners.begin());
    std::size_t group = m.own_groups + owner * per_owner;
    for (const double amount : amounts_of(m, pair)) {
      set(group, pair.i, 1.0);
      set(group + 1, pair.j, amount);
      group += 2;
    }
  }
  const auto set_differences = [&](std::size_t i, std::size_t j, std::size_t first) {
    for (std::size_t k = first; k < nG; ++k)
      m.differences[(j + i * nC) * nG + k] = m.fractions[k * nC + j] - m.fractions[k * nC + i];
  };
  for (std::size_t i = 0; i < nC; ++i)
    for (std::size_t j = 0; j < nC; ++j) set_differences(i, j, m.own_groups);
  for (const ConstantPair& pair : m.constants) {  // molecules without groups have no differences yet
    set_differences(static_cast<std::size_t>(pair.i), static_cast<std::size_t>(pair.j), 0);
    set_differences(static_cast<std::size_t>(pair.j), static_cast<std::size_t>(pair.i), 0);
  }
}

}  // namespace kestrune::host
