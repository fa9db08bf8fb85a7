// What the model needs of one temperature: prepared once, then evaluated many times.
#ifndef KESTRUNE_EOS_TEMPERATURE_HPP
#define KESTRUNE_EOS_TEMPERATURE_HPP

#include "eos/constants.hpp"
#include "eos/context.hpp"
#include "kestrune/records.h"
#include "support/arena.hpp"

namespace kestrune::eos {

/*
 * Parameters of the components and of all pairs at one temperature. Arrays are padded with zeros to ld
 * (support::padded); matrices are [ld * n], column j at j * ld, symmetric.
 *
 * a in cm6 atm/mol2, b in cm3/mol. order: 0 = no derivatives, 1 = also d/dT, 2 = also d2/dT2.
 */
struct Temperature {
  int n = 0, ld = 0, order = 0;
  double T = 0.0;
  double* b = nullptr;                  // [ld] co-volumes
  double* a = nullptr;                  // [ld] a_i(T)
  double* aij = nullptr;                // [ld * n] sqrt(a_i a_j) (1 - k_ij)
  double* aij_t = nullptr;              // [ld * n] d/dT, order 1
  double* aij_tt = nullptr;             // [ld * n] d2/dT2, order 2
  double rt() const { return kR * T; }  // cm3 atm/mol
};

/*
 * Alpha function of the 1978 form with m(omega) switching at 0.491: returns alpha; writes d alpha/dT (1/K) when
 * either flag is set and d2 alpha/dT2 (1/K2) when its own is.                                        [Rob78]
 */
double alpha_function(double T, double Tc, double omega, bool want_first, bool want_second, double* first,
                      double* second) noexcept;

/*
 * Prepares a temperature from the component table of the record and the group data.
 * KV_COMPONENT_DATA when a Tc, Pc or omega is unusable, KV_GROUP_DATA without group data for this count.
 */
StatusCode prepare(double T, const Context& context, int order, support::Arena& arena, Temperature& out);

/*
 * k_ij(T) and, where the pointers are not null, its first two derivatives, [n * n] with component i fastest,
 * from a prepared temperature of sufficient order and the a_i(T) of the components. k_ii = 0.
 */
void interaction_parameters(const Temperature& t, double* kij, double* kij_t, double* kij_tt) noexcept;

}  // namespace kestrune::eos

#endif
