#include "mixture.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

#include "definition.hpp"
#include "error.hpp"
#include "text.hpp"
#include "units.hpp"

namespace kestrune::host {

namespace {

// A description that nothing takes may be a name that is spelled differently in the mixture.
void note_unused(const Composition& from, std::vector<std::string>& notes) {
  for (const Definition& d : from.definitions) {
    const auto same = [&](const Component& c) { return c.number <= 0 && c.name == d.name; };
    if (std::none_of(from.components.begin(), from.components.end(), same))
      notes.push_back(fmt::format("{} is described, and is not in the mixture", d.name));
  }
}

// The components of a composition, with those of the user's own and the pieces of fractions in their places.
std::vector<int> expand(const Composition& from, Composition& to, std::vector<std::string>& notes) {
  std::vector<int> definition_of;
  std::vector<double> amounts;
  for (std::size_t i = 0; i < from.components.size(); ++i) {
    const int index = from.definition_of(from.components[i]);
    if (index < 0) {
      to.components.push_back(from.components[i]);
      amounts.push_back(from.amounts[i]);
      definition_of.push_back(-1);
      continue;
    }
    const Realised realised = realise(from.definitions[static_cast<std::size_t>(index)], from.library);
    for (const Part& part : realised.parts) {
      to.components.push_back(part.component);
      amounts.push_back(from.amounts[i] * (from.basis == Basis::mass ? part.mass : part.moles));
      definition_of.push_back(index);
    }
    notes.insert(notes.end(), realised.notes.begin(), realised.notes.end());
  }
  to.amounts = amounts;
  return definition_of;
}

// Mole fractions and molar mass from the amounts.
void fill_fractions(const Composition& from, Mixture& m) {
  m.z = from.amounts;
  m.given_sum = std::accumulate(m.z.begin(), m.z.end(), 0.0);
  if (!(m.given_sum > 0.0)) throw InputError("all amounts of the mixture are zero");
  if (from.basis == Basis::mass) {
    for (std::size_t i = 0; i < m.z.size(); ++i) m.z[i] /= m.components[i].molar_mass;
  }
  const double sum = std::accumulate(m.z.begin(), m.z.end(), 0.0);
  m.molar_mass = 0.0;
  for (std::size_t i = 0; i < m.z.size(); ++i) {
    m.z[i] /= sum;
    m.molar_mass += m.z[i] * m.components[i].molar_mass;
  }
}

void fill_table(Mixture& m) {
  const std::size_t n = m.components.size();
  m.table.assign(n * KV_TABLE_COLUMNS, 0.0);
  for (std::size_t i = 0; i < n; ++i) {
    const Component& c = m.components[i];
    const auto set = [&](int column, double value) {
      m.table[static_cast<std::size_t>(column - 1) * n + i] = value;
    };
    set(KV_COL_DATABANK_NUMBER, c.number);
    set(KV_COL_MOLAR_MASS, c.molar_mass);
    set(KV_COL_MELTING_POINT, c.Tmelt);
    set(KV_COL_BOILING_POINT, c.Tb);
    set(KV_COL_TC, c.Tc);
    set(KV_COL_PC, c.Pc / kAtmInPa);
    set(KV_COL_VC, c.Vc);
    set(KV_COL_ZC, c.Zc);
    set(KV_COL_OMEGA, c.omega);
    set(KV_COL_DIPOLE, c.dipole);
    set(KV_COL_TMIN_PSAT, c.Tmin_vapour_pressure);
    set(KV_COL_FAMILY, c.family);
    set(KV_COL_CAS, c.own_cp.Tmax > 0.0 ? 0.0 : c.cas_number);
    for (std::size_t k = 0; k < c.own_cp.c.size(); ++k) set(KV_COL_CP_A + static_cast<int>(k), c.own_cp.c[k]);
    set(KV_COL_CP_TMIN, c.own_cp.Tmin);
    set(KV_COL_CP_TMAX, c.own_cp.Tmax);
  }
}

void fill_record(Mixture& m) {
  m.record = MixtureRecord{};
  m.record.count = m.count();
  m.record.table = m.table.data();
  m.record.CRIT = KV_DEFAULT_CRIT;
  m.record.CLIM = KV_DEFAULT_CLIM;
  m.record.EPS = KV_DEFAULT_EPS;
  m.record.ITEMAX = KV_DEFAULT_ITEMAX;
  m.record.NEW = KV_DEFAULT_NEW;
  m.record.trace_unit = 0;
  m.record.relaxation = KV_DEFAULT_RELAXATION;
  m.record.pure_tolerance = KV_DEFAULT_PURE_TOLERANCE;
  m.record.sum_tolerance = KV_DEFAULT_SUM_TOLERANCE;
}

// Whether every pair of component i has a constant k_ij.
bool all_constant(const Mixture& m, int i) {
  for (std::size_t j = 0; j < m.components.size(); ++j)
    if (j != static_cast<std::size_t>(i) && !is_constant(m, static_cast<std::size_t>(i), j)) return false;
  return true;
}

// Groups that occur and how often; one group of counts zero when no component has any.
void fill_counts(Mixture& m) {
  for (const Component& c : m.components) {
    for (int k = 0; k < c.group_count; ++k) m.groups.push_back(c.groups[static_cast<std::size_t>(k)].group);
  }
  if (m.groups.empty()) m.groups.push_back(1);
  std::sort(m.groups.begin(), m.groups.end());
  m.groups.erase(std::unique(m.groups.begin(), m.groups.end()), m.groups.end());
  const std::size_t nG = m.groups.size();
  m.counts.assign(nG * m.components.size(), 0);
  for (std::size_t i = 0; i < m.components.size(); ++i) {
    const Component& c = m.components[i];
    if (c.group_count == 0 && !all_constant(m, static_cast<int>(i))) m.uncovered.push_back(static_cast<int>(i));
    for (int k = 0; k < c.group_count; ++k) {
      const GroupCount& g = c.groups[static_cast<std::size_t>(k)];
      const auto row = std::lower_bound(m.groups.begin(), m.groups.end(), g.group) - m.groups.begin();
      m.counts[i * nG + static_cast<std::size_t>(row)] += g.count;
    }
  }
}

// Whether group k takes different shares of the molecules i and j. Exact: fractions compared crosswise.
bool differs(const Mixture& m, std::size_t k, std::size_t i, std::size_t j) {
  const auto begin = m.counts.begin();
  const auto nG = static_cast<std::ptrdiff_t>(m.groups.size());
  const auto total = [&](std::size_t c) {
    const auto column = begin + static_cast<std::ptrdiff_t>(c) * nG;
    return std::accumulate(column, column + nG, std::int64_t{0});
  };
  const auto count = [&](std::size_t c) { return std::int64_t{m.counts[c * m.groups.size() + k]}; };
  return count(i) * total(j) != count(j) * total(i);
}

// Every pair of components that needs the interaction of groups k and l (rows), which has no value.
void note_missing(Mixture& m, std::size_t k, std::size_t l) {
  const auto covered = [&](std::size_t i) { return m.components[i].group_count > 0; };
  for (std::size_t i = 0; i < m.components.size(); ++i) {
    for (std::size_t j = i + 1; j < m.components.size(); ++j) {
      if (covered(i) && covered(j) && !is_constant(m, i, j) && differs(m, k, i, j) && differs(m, l, i, j)) {
        m.missing.push_back({m.groups[k], m.groups[l], static_cast<int>(i), static_cast<int>(j)});
      }
    }
  }
}

void fill_interactions(const InteractionSet& set, Mixture& m) {
  const std::size_t nG = m.groups.size();
  m.A.assign(nG * nG, 0.0);
  m.B.assign(nG * nG, 0.0);
  for (std::size_t k = 0; k < nG; ++k) {
    for (std::size_t l = k + 1; l < nG; ++l) {
      const Interaction* pair = set.published(m.groups[k], m.groups[l]);
      if (pair == nullptr) {
        note_missing(m, k, l);
        continue;
      }
      m.A[l * nG + k] = pair->A;
      m.B[l * nG + k] = pair->B;
    }
  }
}

}  // namespace

bool Mixture::sum_was_off() const {
  return std::abs(given_sum - 1.0) > 1e-6;
}

Mixture build_mixture(const Composition& composition, const InteractionSet& set) {
  if (composition.components.empty()) throw InputError("the mixture has no component");
  Mixture m;
  m.title = composition.title;
  m.set_name = set.name;
  m.notes = composition.notes;
  Composition whole;
  whole.basis = composition.basis;
  const std::vector<int> definition_of = expand(composition, whole, m.notes);
  m.components = whole.components;
  for (const Component& c : m.components)
    if (!std::isfinite(c.omega))
      throw InputError(
          fmt::format("{} has no acentric factor in the databank: it stands there for its data alone", c.name));
  m.basis = whole.basis;
  fill_fractions(whole, m);
  fill_constants(composition, definition_of, m);
  note_unused(composition, m.notes);
  fill_table(m);
  fill_record(m);
  fill_counts(m);
  fill_interactions(set, m);
  add_constant_groups(m);
  return m;
}

std::size_t water_of(const Mixture& mixture) {
  const auto found = std::find_if(mixture.components.begin(), mixture.components.end(), is_water);
  return static_cast<std::size_t>(found - mixture.components.begin());
}

double share_of(const Mixture& mixture, const std::vector<double>& x,
                std::span<const std::int32_t> cas_numbers) {
  double share = 0.0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const std::int32_t cas = mixture.components[i].cas_number;
    if (std::find(cas_numbers.begin(), cas_numbers.end(), cas) != cas_numbers.end()) share += x[i];
  }
  return share;
}

double FractionPieces::sum(const std::vector<double>& x) const {
  double total = 0.0;
  for (const std::size_t i : pieces) total += x[i];
  return total;
}

std::vector<FractionPieces> fractions_in(const Mixture& mixture) {
  std::vector<FractionPieces> found;
  for (std::size_t i = 0; i < mixture.components.size(); ++i) {
    const std::string& name = mixture.components[i].fraction;
    if (name.empty() || mixture.components[i].name == name) continue;
    if (found.empty() || found.back().name != name) found.push_back({name, {}});
    found.back().pieces.push_back(i);
  }
  return found;
}

void Mixture::hand_over(const Exports& library) {
  const std::size_t nC = components.size(), nG = groups.size();
  A_atm.assign(nG * nG, 0.0);
  B_atm.assign(nG * nG, 0.0);
  fractions.assign(nC * nG, 0.0);
  ratio.assign(nG * nG, 0.0);
  differences.assign(nG * nC * nC, 0.0);
  storage = {nullptr, A_atm.data(), B_atm.data(), fractions.data(), ratio.data(), differences.data()};
  library.ConvertPPR78GroupData(count(), group_count(), counts.data(), A.data(), B.data(), storage.data());
  set_constant_shares(*this);
}

std::vector<std::string> missing_in_words(const Mixture& m, double least) {
  const auto at = [&m](int i) { return m.z[static_cast<std::size_t>(i)]; };
  std::vector<MissingPair> pairs;
  for (const MissingPair& p : m.missing)
    if (std::min(at(p.component_i), at(p.component_j)) >= least) pairs.push_back(p);
  std::vector<std::string> lines;
  if (m.count() > 1) {
    for (const int i : m.uncovered) {
      lines.push_back(
          fmt::format("{} has no PPR78 groups at all", m.components[static_cast<std::size_t>(i)].name));
    }
  }
  for (std::size_t p = 0; p < pairs.size();) {
    const MissingPair& first = pairs[p];
    std::string line = fmt::format("{} / {} (", group_name(first.group_k), group_name(first.group_l));
    for (std::size_t shown = 0;
         p < pairs.size() && pairs[p].group_k == first.group_k && pairs[p].group_l == first.group_l;
         ++p, ++shown) {
      if (shown == 3) line += ", ...";
      if (shown >= 3) continue;
      line += fmt::format("{}{} with {}", shown == 0 ? "" : ", ",
                          m.components[static_cast<std::size_t>(pairs[p].component_i)].name,
                          m.components[static_cast<std::size_t>(pairs[p].component_j)].name);
    }
    lines.push_back(line + ")");
  }
  return lines;
}

}  // namespace kestrune::host
