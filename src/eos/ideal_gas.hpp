// The ideal gas: heat capacities of the components and their integrals, from the pure-component library.
#ifndef KESTRUNE_EOS_IDEAL_GAS_HPP
#define KESTRUNE_EOS_IDEAL_GAS_HPP

#include <cstdint>

#include "eos/context.hpp"
#include "kestrune/records.h"
#include "kestrune/status.h"
#include "support/arena.hpp"

namespace kestrune::eos {

inline constexpr double kCalR = 1.9872;             // cal/(mol K), of the mixing terms
inline constexpr double kEnthalpyBase = 298.15;     // K, where the ideal-gas enthalpies are 0
inline constexpr double kSmallestFraction = 1e-15;  // below it a component counts as absent

/*
 * Of every component at one temperature, [n]: enthalpy (cal/mol, 0 at 298.15 K), entropy (cal/(mol K), 0 at
 * 298.15 K and 1 atm) and heat capacity (cal/(mol K)). What was not wanted is null; absent components have 0.
 */
struct IdealGas {
  double *h = nullptr, *s = nullptr, *cp = nullptr;
};

enum IdealPart : unsigned { kIdealH = 1, kIdealS = 2, kIdealCp = 4 };

/* CAS number of component i (from 0), 0 when the table holds none. */
std::int32_t cas_number(const MixtureRecord& mixture, int i) noexcept;

/*
 * The heat capacity that columns 12 to 18 of the component table hold: cp[0] + cp[1] T + ... + cp[4] T^4,
 * J/(mol K), from Tmin to Tmax (K), its end values beyond.
 */
struct OwnHeatCapacity {
  double cp[5], Tmin, Tmax;
};

/* True where component i (from 0) has no CAS number and such a heat capacity. */
bool own_heat_capacity(const MixtureRecord& mixture, int i, OwnHeatCapacity& out) noexcept;

/*
 * Asks for the parts of all components with x[i] of at least kSmallestFraction. KV_OK; 1003 when a temperature
 * was outside the range of a correlation (the values are there); or the status of the first component without a
 * value.
 */
StatusCode ideal_gas(double T, const Context& context, const double* x, unsigned parts, support::Arena& arena,
                     IdealGas& out);

/* The parts of component i alone, whatever its fraction, into arrays that are there. Statuses as above. */
StatusCode ideal_gas_of(double T, const Context& context, int i, const IdealGas& out) noexcept;

/* Sums over x[n]: enthalpy cal/mol; entropy at P (atm) with the mixing term cal/(mol K); heat capacity. */
double ideal_enthalpy(int n, const double* x, const IdealGas& g) noexcept;
double ideal_entropy(int n, const double* x, double P, const IdealGas& g) noexcept;
double ideal_heat_capacity(int n, const double* x, const IdealGas& g) noexcept;

}  // namespace kestrune::eos

#endif
