// A mixture as the calculation library wants it: component table, record, group data and their buffers.
#ifndef KESTRUNE_HOST_MIXTURE_HPP
#define KESTRUNE_HOST_MIXTURE_HPP

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "composition.hpp"
#include "constant_kij.hpp"
#include "databank.hpp"
#include "library.hpp"

namespace kestrune::host {

// Two groups without a published interaction that meet in a pair of components (indices from 0).
struct MissingPair {
  int group_k, group_l;  // index from 1
  int component_i, component_j;
};

struct Mixture {
  std::string title;
  std::string_view set_name;
  std::vector<Component> components;
  std::vector<double> z;  // mole fractions, sum 1
  double given_sum;       // of the amounts as they were given
  Basis basis;            // of the amounts as they were given
  double molar_mass;      // g/mol

  std::vector<double> table;  // [43 * count], see ComponentTable
  MixtureRecord record;

  std::vector<int> groups;           // groups that occur, index from 1, ascending; 0: of the constant k_ij
  std::size_t own_groups = 0;        // of the molecules, in front of those of the constant k_ij
  std::vector<std::int32_t> counts;  // [nG * nC], group fastest
  std::vector<double> A, B;          // [nG * nG], MPa, column-major
  std::vector<double> A_atm, B_atm, fractions, ratio, differences;
  std::array<double*, 6> storage;

  std::vector<MissingPair> missing;     // pairs whose interaction counts as zero
  std::vector<int> uncovered;           // components without any groups, indices from 0
  std::vector<ConstantPair> constants;  // pairs with a constant k_ij
  bool trace = false;  // the flash that is asked for writes its iterations; the record's own flag stays 0
  std::vector<std::string> notes;  // on components of the user's own and fractions, a sentence each

  Mixture() = default;
  Mixture(const Mixture&) = delete;  // record and storage hold addresses of the vectors
  Mixture& operator=(const Mixture&) = delete;
  Mixture(Mixture&&) = default;
  Mixture& operator=(Mixture&&) = default;

  int count() const { return static_cast<int>(components.size()); }
  int group_count() const { return static_cast<int>(groups.size()); }
  bool sum_was_off() const;  // the amounts did not sum to one within 1e-6

  // Fills the buffers and makes this mixture's group data the ones that the library reads.
  void hand_over(const Exports& library);
};

// Index of water, the number of components without any.
std::size_t water_of(const Mixture& mixture);

/*
 * A start of WaterDewPressure, atm, for a gas with this fraction of water: none; of a very dry gas one below every
 * solution, because the export takes a start for the answer where the content is right within 1e-8.
 */
inline double dew_start(double water) noexcept {
  return water < 1e-6 ? 1e-9 : 0.0;
}
// Mole fraction in x[count] of the components with one of these CAS numbers.
double share_of(const Mixture& mixture, const std::vector<double>& x,
                std::span<const std::int32_t> cas_numbers);
inline double share_of(const Mixture& mixture, const std::vector<double>& x, std::int32_t cas_number) {
  return share_of(mixture, x, {&cas_number, 1});
}

// The fractions of more than one piece and the indices of these, in the order of the components.
struct FractionPieces {
  std::string name;
  std::vector<std::size_t> pieces;

  double sum(const std::vector<double>& x) const;
};
std::vector<FractionPieces> fractions_in(const Mixture& mixture);

// Builds everything but the converted buffers. InputError without components or with all amounts zero.
Mixture build_mixture(const Composition& composition, const InteractionSet& set);

// What has no published parameters, one line per item: "CO2 / SH (carbon dioxide with methyl mercaptan)".
// Of pairs only those of which both components have at least this mole fraction.
std::vector<std::string> missing_in_words(const Mixture& mixture, double least = 0.0);

// Below this mole fraction of one of its components a missing pair is taken as zero without being asked to.
inline constexpr double kTracePair = 0.01;

}  // namespace kestrune::host

#endif
