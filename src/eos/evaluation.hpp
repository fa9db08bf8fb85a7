// The phase evaluation: everything the equation of state says of one phase, as far as a level asks for it.
#ifndef KESTRUNE_EOS_EVALUATION_HPP
#define KESTRUNE_EOS_EVALUATION_HPP

#include "eos/phase.hpp"
#include "eos/temperature.hpp"

namespace kestrune::eos {

// Stages of the evaluation by level, 0 .. 12; every other level runs nothing.
namespace stage {
inline constexpr unsigned bits(std::initializer_list<int> levels) {
  unsigned mask = 0;
  for (const int level : levels) mask |= 1u << level;
  return mask;
}
inline constexpr unsigned kAlphaT = bits({3, 5, 6, 7, 8, 9, 11, 12});
inline constexpr unsigned kAlphaTT = bits({9});
inline constexpr unsigned kRoot = bits({0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
inline constexpr unsigned kRootDerivatives = bits({2, 3, 5, 6, 8, 9, 11, 12});
inline constexpr unsigned kLnPhi = bits({4, 5, 6, 7, 8, 9, 10, 11, 12});
inline constexpr unsigned kEnthalpy = bits({7, 8, 9});
inline constexpr unsigned kPartialEnthalpy = bits({8, 9});
inline constexpr unsigned kHeatCapacity = bits({9});
// ln phi with its temperature and pressure derivatives: where both the root's and d alpha/dT are there.
inline constexpr unsigned kLnPhiDerivatives = kLnPhi & kRootDerivatives & kAlphaT;
inline constexpr bool runs(unsigned mask, int level) {
  return level >= 0 && level <= 12 && ((mask >> level) & 1u) != 0;
}
}  // namespace stage

// Order of the prepared temperature that a level needs.
inline constexpr int order_of_level(int level) {
  return stage::runs(stage::kAlphaTT, level) ? 2 : stage::runs(stage::kAlphaT, level) ? 1 : 0;
}

/*
 * Results of an evaluation. Pointers may be null: the array is then not written. What a level does not ask for
 * keeps the value that it had; dZ_dT needs d alpha/dT and is left alone at level 2.
 */
struct PhaseValues {
  int status = 0;                // of the root solver
  double Z = 0.0;                // in at levels 10, 11, 12
  double v = 0.0;                // cm3/mol
  double rho = 0.0;              // g/cm3
  double* ln_phi = nullptr;      // [n]
  double* dln_phi_dT = nullptr;  // [n] 1/K
  double* dln_phi_dP = nullptr;  // [n] 1/atm
  double* h_partial = nullptr;   // [n] partial molar residual enthalpies, cal/mol
  double dZ_dT = 0.0, dZ_dP = 0.0;
  double H_res = 0.0;   // cal/mol
  double S_res = 0.0;   // cal/(mol K)
  double Cp_res = 0.0;  // cal/(mol K), d H_res/dT at constant P
  double Cv_res = 0.0;  // cal/(mol K), d U_res/dT at constant v
  double a = 0.0, b = 0.0, da_dT = 0.0, A = 0.0, B = 0.0, d2a_dT2 = 0.0;  // of the mixture
};

/*
 * Evaluates a phase (KV_PHASE_GAS, KV_PHASE_LIQUID) at pressure P (atm). x[ld] is padded with zeros;
 * molar_mass[n] in g/mol may be null (rho stays). work: room for 3 * ld doubles. When a coefficient of the
 * cubic is not finite or it has no root, Z and v keep their values and nothing further is computed; then,
 * and when the derivatives are not finite, false is returned.
 */
bool evaluate(const Temperature& t, CubicRoot bracub, double P, const double* x, int phase, int level,
              const double* molar_mass, double* work, PhaseValues& out) noexcept;

}  // namespace kestrune::eos

#endif
