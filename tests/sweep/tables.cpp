#include "tables.hpp"

#include <algorithm>
#include <stdexcept>

#include "common/csv.hpp"

namespace kestrune::sweep {

Components read_components(const std::string& folder, const std::vector<std::string>& ids) {
  std::map<std::string, tests::Row> known;
  for (auto& row : tests::rows("components.csv", folder)) known[row["id"]] = row;
  std::map<std::string, std::map<int, int>> groups;
  for (auto& row : tests::rows("component_groups.csv", folder)) {
    if (row["covered"] == "1") groups[row["id"]][std::stoi(row["group_index"])] = std::stoi(row["count"]);
  }
  std::map<int, int> used;  // group number of the data to position
  for (const std::string& id : ids) {
    if (!known.count(id) || !groups.count(id)) throw std::runtime_error("no component with groups: " + id);
    for (auto [group, count] : groups[id]) used[group] = 0;
  }
  Components c;
  for (auto& [group, position] : used) position = c.groups++;
  c.n = static_cast<int>(ids.size());
  c.counts.assign(static_cast<size_t>(c.groups) * c.n, 0);
  for (int i = 0; i < c.n; ++i) {
    auto& row = known[ids[i]];
    c.tc.push_back(std::stod(row["Tc_K"]));
    c.pc.push_back(std::stod(row["Pc_atm"]));
    c.omega.push_back(std::stod(row["acentric_factor"]));
    c.mass.push_back(std::stod(row["molar_mass_g_mol"]));
    c.family.push_back(std::stod(row["family"]));
    c.cas.push_back(std::stod(row["cas_number"]));
    for (auto [group, count] : groups[ids[i]]) c.counts[used[group] + i * c.groups] = count;
  }
  c.A.assign(static_cast<size_t>(c.groups) * c.groups, 0.0);
  c.B = c.A;
  for (auto& row : tests::rows("ppr78_interactions.csv", folder)) {
    const auto k = used.find(std::stoi(row["k"])), l = used.find(std::stoi(row["l"]));
    if (row["status"] != "published" || k == used.end() || l == used.end()) continue;
    const int place = std::min(k->second, l->second) + std::max(k->second, l->second) * c.groups;
    c.A[place] = std::stod(row["A_MPa"]);
    c.B[place] = std::stod(row["B_MPa"]);
  }
  return c;
}

}  // namespace kestrune::sweep
