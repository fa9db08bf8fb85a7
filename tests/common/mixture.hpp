// A mixture as a host describes it, for the tests: table, record, group data and their buffers.
#ifndef KESTRUNE_TESTS_MIXTURE_HPP
#define KESTRUNE_TESTS_MIXTURE_HPP

#include <cstdint>
#include <string>
#include <vector>

#include "common/csv.hpp"
#include "kestrune/kvgasthermo.h"

namespace kestrune::tests {

struct Mixture {
  int n = 0, groups = 0;
  std::vector<double> table;         // ComponentTable
  std::vector<std::int32_t> counts;  // [groups * n]
  std::vector<double> A, B;          // [groups * groups] MPa
  std::vector<double> buffers[6];
  double* storage[6] = {};
  MixtureRecord record{};

  void resize(int components, int group_count) {
    n = components;
    groups = group_count;
    const auto nc = static_cast<std::size_t>(n), ng = static_cast<std::size_t>(groups);
    table.assign(KV_TABLE_COLUMNS * nc, 0.0);
    counts.assign(ng * nc, 0);
    A.assign(ng * ng, 0.0);
    B.assign(ng * ng, 0.0);
    const std::size_t sizes[6] = {0, ng * ng, ng * ng, nc * ng, ng * ng, ng * nc * nc};
    for (int k = 0; k < 6; ++k) {
      buffers[k].assign(sizes[k] + 1, 0.0);
      storage[k] = buffers[k].data();
    }
    record = MixtureRecord{};
    record.count = n;
    record.table = table.data();
    record.CRIT = KV_DEFAULT_CRIT;
    record.CLIM = KV_DEFAULT_CLIM;
    record.EPS = KV_DEFAULT_EPS;
    record.ITEMAX = KV_DEFAULT_ITEMAX;
    record.NEW = KV_DEFAULT_NEW;
    record.relaxation = KV_DEFAULT_RELAXATION;
    record.pure_tolerance = KV_DEFAULT_PURE_TOLERANCE;
    record.sum_tolerance = KV_DEFAULT_SUM_TOLERANCE;
  }
  double& at(int component, int column) {  // component from 0, column from 1
    return table[static_cast<std::size_t>(column - 1) * static_cast<std::size_t>(n) +
                 static_cast<std::size_t>(component)];
  }
  // Hands the group data over; call before any calculation with this mixture.
  void use() { ConvertPPR78GroupData(n, groups, counts.data(), A.data(), B.data(), storage); }
};

/*
 * A mixture by the ids of data/components.csv with the groups that occur and the interactions of
 * data/ppr78_interactions.csv (KESTRUNE_DATA). Throws when an id is unknown.
 */
inline Mixture mixture_of(const std::vector<std::string>& ids) {
  Mixture m;
  const std::vector<Row> components = rows("components.csv", KESTRUNE_DATA);
  const std::vector<Row> memberships = rows("component_groups.csv", KESTRUNE_DATA);
  std::vector<int> index(41, -1), occurring;
  std::vector<std::vector<std::pair<int, int>>> groups_of(ids.size());
  for (std::size_t i = 0; i < ids.size(); ++i) {
    for (const Row& row : memberships) {
      if (row.at("id") != ids[i] || row.at("covered") != "1") continue;
      const int g = std::stoi(row.at("group_index"));
      if (index[g] < 0) {
        index[g] = static_cast<int>(occurring.size());
        occurring.push_back(g);
      }
      groups_of[i].emplace_back(index[g], std::stoi(row.at("count")));
    }
  }
  m.resize(static_cast<int>(ids.size()), static_cast<int>(occurring.size()));
  for (std::size_t i = 0; i < ids.size(); ++i) {
    for (const auto& [g, count] : groups_of[i]) m.counts[i * occurring.size() + g] = count;
    bool found = false;
    for (Row row : components) {
      if (row.at("id") != ids[i]) continue;
      found = true;
      const int k = static_cast<int>(i);
      m.at(k, KV_COL_MOLAR_MASS) = number(row, "molar_mass_g_mol");
      m.at(k, KV_COL_TC) = number(row, "Tc_K");
      m.at(k, KV_COL_PC) = number(row, "Pc_atm");
      m.at(k, KV_COL_OMEGA) = number(row, "acentric_factor");
      m.at(k, KV_COL_VC) = number(row, "Vc_cm3_mol");
      m.at(k, KV_COL_ZC) = number(row, "Zc");
      m.at(k, KV_COL_FAMILY) = number(row, "family");
      m.at(k, KV_COL_CAS) = number(row, "cas_number");
    }
    if (!found) throw std::runtime_error("no component " + ids[i]);
  }
  for (const Row& row : rows("ppr78_interactions.csv", KESTRUNE_DATA)) {
    int k = index[std::stoi(row.at("k"))], l = index[std::stoi(row.at("l"))];
    if (k < 0 || l < 0) continue;
    if (k > l) std::swap(k, l);
    const std::size_t at = static_cast<std::size_t>(k) + static_cast<std::size_t>(l) * occurring.size();
    m.A[at] = number(row, "A_MPa");
    m.B[at] = number(row, "B_MPa");
  }
  return m;
}

// The ten-component rich gas of the examples and benchmarks, and the seven-component lean gas.
inline const std::vector<std::string> kRichGas{"methane",  "ethane",        "propane",   "isobutane",
                                               "n_butane", "isopentane",    "n_pentane", "n_hexane",
                                               "nitrogen", "carbon_dioxide"};
inline const std::vector<double> kRichGasFeed{0.70, 0.09, 0.06, 0.015, 0.025, 0.01, 0.01, 0.01, 0.03, 0.05};
inline const std::vector<std::string> kLeanGas{"methane",   "ethane",   "propane", "n_butane",
                                               "n_pentane", "n_hexane", "nitrogen"};
inline const std::vector<double> kLeanGasFeed{0.9430, 0.0270, 0.0074, 0.0049, 0.0027, 0.0010, 0.0140};

}  // namespace kestrune::tests

#endif
