// Binary interaction parameters as the model predicts them from the converted group data.
#ifndef KESTRUNE_HOST_KIJ_HPP
#define KESTRUNE_HOST_KIJ_HPP

#include <vector>

#include "mixture.hpp"

namespace kestrune::host {

// Constants of the Peng-Robinson equation: a = omega_a_r2 Tc^2/Pc alpha, b = omega_b_r Tc/Pc (Pc in atm).
struct CubicConstants {
  double omega_a_r2 = 3078.7575250928;  // cm6 atm/(mol2 K2): 0.45724 * 82.057^2
  double omega_b_r = 6.3840346;         // cm3 atm/(mol K): 0.0778 * 82.057
};

// m(omega) of the 1978 form.
double slope_1978(double omega);

// alpha(T) of the 1978 form, (1 + m (1 - sqrt(T/Tc)))^2.
double alpha_1978(double T, double Tc, double omega);

// k_ij(T) of every pair, [nC * nC], T in K:
//   k_ij = (E_ij - (d_i - d_j)^2) / (2 d_i d_j),  d_i = sqrt(a_i) / b_i,
//   E_ij = -1/2 sum_k sum_l D_k D_l A_kl (298.15 K/T)^(B_kl/A_kl - 1),  D_k = f_jk - f_ik,
// where f_ik is the share of group k in molecule i. The mixture has been handed over to the library.
std::vector<double> binary_interactions(const Mixture& mixture, double T, const CubicConstants& constants = {});

// Whether the pair was computed with a missing group interaction taken as zero.
bool is_incomplete(const Mixture& mixture, int i, int j);

}  // namespace kestrune::host

#endif
