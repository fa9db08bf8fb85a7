// Constant k_ij beside those of the groups, handed over exactly: with delta = sqrt(a)/b = p - q sqrt(T) a constant k_ij is
//   E_ij = delta_i^2 + delta_j^2 - 2 (1 - k_ij) delta_i delta_j,
// a sum of a constant, a term in sqrt(T) and one in T, and each has the form A (298.15 K/T)^(B/A - 1) of a group
// interaction. Pairs of groups that nothing else has carry these terms, and others take away what the molecules' own groups
// give. So the pair has its k_ij at every temperature at which sqrt(alpha) is positive (below 12 Tc for methane, 2.2 Tc for
// an acentric factor of 1.5).
#ifndef KESTRUNE_HOST_CONSTANT_KIJ_HPP
#define KESTRUNE_HOST_CONSTANT_KIJ_HPP

#include <cstddef>
#include <vector>

namespace kestrune::host {

struct Composition;
struct Mixture;

// Components i < j (from 0) and their k_ij.
struct ConstantPair {
  int i, j;
  double k;
};

bool is_constant(const Mixture& mixture, std::size_t i, std::size_t j);

// The constant k_ij that definitions ask for; a component without groups takes 0, with a note, for those that are not named.
// definition_of: of every component, -1 for those of the databank. InputError for a name that is no component, one named
// twice, and two definitions that contradict each other.
void fill_constants(const Composition& from, const std::vector<int>& definition_of, Mixture& mixture);

// Adds the groups that the constant pairs need to the group data of the mixture, without molecules that contain them.
void add_constant_groups(Mixture& mixture);

// Writes the shares of these groups into the converted buffers.
void set_constant_shares(Mixture& mixture);

}  // namespace kestrune::host

#endif
