// Look-up and evaluation on the databank: everything behind the exported entries. No state, no heap, nothing
// thrown; arguments are values that the entries have checked.
#ifndef KESTRUNE_SIBLINGS_PURE_DATABANK_HPP
#define KESTRUNE_SIBLINGS_PURE_DATABANK_HPP

#include "pure/integrals.hpp"
#include "pure/row.hpp"

namespace kestrune::pure {

// Status words of the sibling's contract.
inline constexpr std::int32_t status_good = 0;
inline constexpr std::int32_t status_unknown = 1;
inline constexpr std::int32_t status_no_correlation = 2;
inline constexpr std::int32_t status_range = 3;
inline constexpr std::int32_t status_argument = 4;

struct Result {
  std::int32_t status;
  double value;  // 0 unless status is 0 or 3
};

// Neighbouring rows of one component in a table; n = 0 where it has none.
struct Rows {
  const Row* row;
  std::int32_t n;
};

Rows find_rows(Property property, std::int32_t cas) noexcept;

// The row asked for: the first for equation 1, else the first of that equation; null where there is none.
const Row* choose_row(const Rows& rows, std::int32_t equation) noexcept;

// status_unknown or status_no_correlation, for a component that has no row.
std::int32_t missing_status(std::int32_t cas) noexcept;

// Value of a property at t, K, > 0, in the unit of the property.
Result evaluate(Property property, std::int32_t cas, double t, std::int32_t equation) noexcept;

// b + integral from a to t (K, both > 0) of a heat capacity; status_range when t is outside.
Result integrate(Over over, Property property, std::int32_t cas, double t, double a, double b,
                 std::int32_t equation) noexcept;

// Standard chemical exergy, J/kmol. It has no equations: any choice but 1 has no correlation.
Result chemical_exergy(Phase phase, std::int32_t cas, std::int32_t equation) noexcept;

}  // namespace kestrune::pure

#endif
