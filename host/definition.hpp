// Components of the user's own and petroleum fractions: what is written about them, and the components they become.
#ifndef KESTRUNE_HOST_DEFINITION_HPP
#define KESTRUNE_HOST_DEFINITION_HPP

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "databank.hpp"
#include "library.hpp"
#include "petroleum.hpp"

namespace kestrune::host {

// Where the k_ij of a component with the others come from.
enum class Structure { none, groups, classes, paraffin, naphthene, aromatic };

// A component or a fraction as it is described; numbers that are not given are empty.
struct Definition {
  std::string name;
  bool fraction = false;                               // split into pieces
  std::optional<double> M, Tc, Pc, omega, Vc, Tb, SG;  // g/mol, K, Pa, -, cm3/mol, K, 60/60 F
  std::string cas;
  std::optional<Correlation> correlation;
  std::vector<double> cp;                    // A to E, J/(mol K)
  double cp_Tmin = 200.0, cp_Tmax = 1500.0;  // K
  Structure structure = Structure::none;
  std::vector<std::pair<int, double>> groups;       // number in the table of 40, count
  std::vector<std::pair<std::string, double>> kij;  // constant, by the name of the other component; "other"
  std::optional<ClassShares> shares;
  // Of a fraction.
  std::optional<int> pieces;
  std::string distribution;                      // "gamma", "exponential", empty where it is not said
  std::optional<double> alpha, eta;              // gamma distribution
  std::vector<std::pair<double, double>> curve;  // part distilled (by volume, 0 to 1), boiling point K

  // Takes "key = value": M = 142 g/mol, groups = CH3:2 CH2:8. InputError for what is not understood.
  void set(std::string_view key, std::string_view value);
  // InputError when what is needed is not there or contradicts itself.
  void check() const;
};

// InputError: "fraction C7+: reason".
[[noreturn]] void refuse(const Definition& definition, const std::string& reason);

// InputError for constants of a component that no substance has, as of a wrong unit.
void check_plausible(const Definition& definition);

// "name=cut, M=142, Tc=617.7 K, Pc=21.1 bar, omega=0.49, groups=CH3:2 CH2:8"; a comma or semicolon parts the entries.
Definition parse_definition(std::string_view text, bool fraction);

// A part of a definition: a component, its share of the moles and of the mass, and constant k_ij.
struct Part {
  Component component;
  double moles, mass;
};

// One part for a component, the pieces for a fraction, and sentences on what was estimated and how.
struct Realised {
  std::vector<Part> parts;
  std::vector<std::string> notes;
};

// The components that a definition stands for. The shares sum to 1, and the pieces of a fraction have its molar mass, both
// to 1e-12. tools is called when the library's petroleum entries are needed.
Realised realise(const Definition& definition, const std::string& library_path);

}  // namespace kestrune::host

#endif
