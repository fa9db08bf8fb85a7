// The compiled-in tables; their source is made by tools/embed_host_data.py.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace kestrune::host {

inline constexpr int kMaxGroupsPerComponent = 8;

// Group of the table of 40 (index from 1) and how often a molecule contains it.
struct GroupCount {
  int group;
  int count;
};

// Constants of a pure component. 0 stands for a constant that is not known.
struct Component {
  int number;  // running number in the databank, from 1
  std::string_view id, name, formula, cas;
  std::int32_t cas_number;  // without hyphens
  double molar_mass;        // g/mol
  double Tc;                // K
  double Pc;                // Pa
  double omega;             // acentric factor
  double Vc;                // cm3/mol
  double Zc;
  double Tb;                    // normal boiling point, K
  double Tmelt;                 // triple or melting point, K
  double dipole;                // debye
  double Tmin_vapour_pressure;  // lowest temperature of the vapour-pressure correlation, K
  double family;                // 20 = water
  int group_count;              // 0: the molecule has no PPR78 groups
  std::array<GroupCount, kMaxGroupsPerComponent> groups;
};

struct Alias {
  int component;  // index from 0
  std::string_view alias;
};

// Interaction of the groups k < l (from 1), A and B in MPa.
struct Interaction {
  int k, l;
  bool published;  // false: no value is printed for this pair, A and B are 0
  double A, B;
};

namespace tables {
std::span<const Component> components();
std::span<const Alias> aliases();
std::span<const std::string_view> group_names();
std::span<const Interaction> interactions_2022();
std::span<const Interaction> interactions_original();
}  // namespace tables

}  // namespace kestrune::host
