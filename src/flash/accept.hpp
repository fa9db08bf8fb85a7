// What an answer has to be before it leaves with status 0, whatever path has found it: the checks that the
// gates of all flashes share. Each kind of flash has a gate of its own (accept) that adds what it was asked
// for.
#ifndef KESTRUNE_FLASH_ACCEPT_HPP
#define KESTRUNE_FLASH_ACCEPT_HPP

namespace kestrune::flash {

// Owed, (22) of docs/method.md: balance of every component and sums of amounts and of compositions; equal ln
// fugacities; a specified enthalpy or entropy, relative to its scale.
inline constexpr double kOwedBalance = 1e-12;  // of a component, in parts of the feed
inline constexpr double kOwedFugacity = 1e-8;  // difference of ln fugacities
inline constexpr double kOwedValue = 1e-9;     // of the scale of an enthalpy or entropy

// Largest |ln phi| of which rounding leaves the digits that are owed. Only interactions that are continued far from
// the temperatures of their data exceed it, for a component that is there.
inline constexpr double kLargestLnPhi = 1e7;

/*
 * Whether amounts[count] (parts of the feed) and compositions x[count][n] are a split of the feed z[n], whose
 * sum is 1: all finite, amounts within 0 .. 1 with sum 1, no fraction below 0, compositions of sum 1 in phases
 * of any amount, and the balance of every component. A phase without amount is an incipient one, or absent (all
 * zero).
 */
bool is_split(int n, const double* z, int count, const double* amount, const double* const* x) noexcept;

// A phase as a gate compares it with another one.
struct Compared {
  const double* x;       // [n] composition
  const double* ln_phi;  // [n]
};

/*
 * Largest difference of ln(x_i phi_i) between two phases, over the components of the feed z[n] that both hold:
 * below 1e-15 a fraction is a trace at the bound of its distribution coefficient, which follows no fugacity.
 * 1e300 where one of them has no digits.
 */
double fugacity_gap(int n, const double* z, const Compared& a, const Compared& b) noexcept;

/*
 * Whether there can be several phases at T, K: outside it the interactions of the groups are continued so far that
 * their digits cancel, whatever fugacities say.
 */
inline bool may_split(double T) noexcept {
  return T >= 1.0 && T <= 1e6;
}

/* Whether the ln phi of all components x[n] have digits, but for those of which there is less than 1e-10. */
bool has_digits(int n, const double* x, const double* ln_phi) noexcept;

}  // namespace kestrune::flash

#endif
