// Pseudo-critical constants and petroleum characterisation.
#ifndef KESTRUNE_SIBLINGS_TOOLS_PETROLEUM_HPP
#define KESTRUNE_SIBLINGS_TOOLS_PETROLEUM_HPP

#include <cstdint>

namespace kestrune::tools {

// Mixture constants of kay_mixture: K, atm, cm3/mol, -, mass unit of M per mol. 0: not known.
struct PseudoCritical {
  double Tc, Pc, Vc, Zc, M;
};

// Kay's sums over x[nc] of Tc (K), Pc (atm), Vc (cm3/mol), Zc and M. A constant that is not positive and
// finite is not known; where a component with x != 0 lacks one, the mixture lacks it too (0). Pc of the
// mixture is R Zc Tc / Vc where all of these are known, else Kay's sum.
PseudoCritical kay_mixture(std::int32_t nc, const double* x, const double* Tc, const double* Pc,
                           const double* Vc, const double* Zc, const double* M) noexcept;

// (1.8 Tb)^(1/3) / divisor, Tb in K: the Watson factor of a specific gravity, or the specific gravity of a
// Watson factor. False, and result left alone, unless both arguments are positive and finite.
bool watson(double Tb, double divisor, double* result) noexcept;

// Mean average boiling point, K: half of the molal average and the cubic average, the latter from degrees
// Fahrenheit, (sum v_i Tb_i^(1/3))^3, over the volume fractions v_i of w_i / SG_i. Fractions are normalised.
// False, and result left alone, for values that are out of range.
bool mean_average_boiling_point(std::int32_t n, const double* Tb, const double* x, const double* w,
                                const double* SG, double* result) noexcept;

}  // namespace kestrune::tools

#endif
