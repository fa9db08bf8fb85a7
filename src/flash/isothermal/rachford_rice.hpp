// Phase fraction from the distribution coefficients.
#ifndef KESTRUNE_FLASH_ISOTHERMAL_RACHFORD_RICE_HPP
#define KESTRUNE_FLASH_ISOTHERMAL_RACHFORD_RICE_HPP

namespace kestrune::flash {

enum class Split { liquid, two_phase, vapour };

struct PhaseFraction {
  Split kind = Split::liquid;
  double beta = 0.0;    // vapour fraction, 0 and 1 for one phase
  double liquid = 1.0;  // 1 - beta, with its own digits where it is tiny
  int passes = 0;
};

/*
 * Root of g(beta) = sum z_i (K_i - 1)/(1 + beta (K_i - 1)) in [0, 1], (17) of docs/method.md. z[n] >= 0 with
 * sum 1, K[n] > 0 and finite. Cannot fail: g falls monotonically, the root is enclosed from the start, and
 * the smaller of the two phase fractions is the unknown, so that it has its last bits also near 0 and 1.
 * guess is a starting value in (0, 1), anything else is ignored. [Mic07, ch. 10]
 */
PhaseFraction rachford_rice(int n, const double* z, const double* K, double guess) noexcept;

}  // namespace kestrune::flash

#endif
