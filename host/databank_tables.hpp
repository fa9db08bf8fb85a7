// The compiled-in tables; their source is made by tools/embed_host_data.py.
#ifndef KESTRUNE_HOST_DATABANK_TABLES_HPP
#define KESTRUNE_HOST_DATABANK_TABLES_HPP

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kestrune::host {

inline constexpr int kMaxGroupsPerComponent = 8;

// Group of the table of 40 (index from 1) and how often a molecule contains it.
struct GroupCount {
  int group;
  int count;
};

// An ideal-gas heat capacity c[0] + c[1] T + ... + c[4] T^4, J/(mol K), T in K from Tmin to Tmax; Tmax 0: none.
struct HeatCapacity {
  std::array<double, 5> c{};
  double Tmin = 0.0, Tmax = 0.0;
};

// Constants of a pure component. 0 stands for a constant that is not known.
struct Component {
  int number = 0;  // running number in the databank, from 1; 0: a component of the user's own
  std::string id, name, formula, cas;
  std::int32_t cas_number = 0;        // without hyphens
  double molar_mass = 0.0;            // g/mol
  double Tc = 0.0;                    // K
  double Pc = 0.0;                    // Pa
  double omega = 0.0;                 // acentric factor; NaN: not known
  double Vc = 0.0;                    // cm3/mol
  double Zc = 0.0;                    //
  double Tb = 0.0;                    // normal boiling point, K
  double Tmelt = 0.0;                 // triple or melting point, K
  double dipole = 0.0;                // debye
  double Tmin_vapour_pressure = 0.0;  // lowest temperature of the vapour-pressure correlation, K
  double family = 0.0;                // 20 = water
  int group_count = 0;                // 0: the molecule has no PPR78 groups
  std::array<GroupCount, kMaxGroupsPerComponent> groups{};
  HeatCapacity
      own_cp{};  // handed over with the mixture: the pure-component library lacks the gas viscosity, or all
  std::string fraction{};  // name of the fraction that this is a piece of
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

#endif
