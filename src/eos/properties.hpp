// Properties of one phase: ideal-gas part plus residual part, with the rules for liquid water and for water
// with ammonia. Units: T K, P atm, energies cal/mol, entropies and heat capacities cal/(mol K), volumes
// cm3/mol, densities g/cm3.
//
// Statuses of all routines: KV_OK; that of the root (1: the only root belongs to the other phase and serves;
// 201, 202: filled like it; 51: none, nothing is filled); 1000 + n of the pure-component library, of which 1003
// leaves good values; KV_COMPONENT_DATA, KV_GROUP_DATA, KV_NOT_FINITE, with nothing filled but where a routine
// says so.
#ifndef KESTRUNE_EOS_PROPERTIES_HPP
#define KESTRUNE_EOS_PROPERTIES_HPP

#include "eos/evaluation.hpp"
#include "eos/ideal_gas.hpp"
#include "eos/liquid_water.hpp"
#include "kestrune/records.h"

namespace kestrune::eos {

// A phase whose properties are asked for. x[count] is used as it is given.
struct Phase {
  double T, P;
  const double* x;
  int kind;  // KV_PHASE_GAS, KV_PHASE_LIQUID
  Context context;
};

using support::has_values;
// Of two statuses with values the one that a host has to see.
inline StatusCode graver(StatusCode one, StatusCode other) {
  return other > one ? other : one;
}

/*
 * A liquid as the free-water option sees it: any water in it, from kSmallestFraction upwards, is liquid water
 * beside the others, of composition y. Without the option, without water and in a gas the equation of state
 * sees all of it.
 */
struct Seen {
  const double* y = nullptr;  // [ld] padded: what the equation of state sees
  double share = 1.0;         // of it in the phase
  int water = -1;             // index of the liquid water, -1: none
  double x_water = 0.0;       // its fraction
};

/*
 * Fills y[ld], whose padding is zero. share is 1 - x_w, with the digits of traces beside water where the
 * composition sums to one.
 */
Seen as_seen(const Phase& p, double* y) noexcept;

/*
 * Evaluates the composition y[ld] at the state of the phase. Returns the status of the root, or why there is
 * none. work: as of evaluate.
 */
StatusCode residual(const Phase& p, const Temperature& t, const double* y, int level, double* work,
                    PhaseValues& out);

/* The same with the temperature prepared for the level. */
StatusCode residual_at(const Phase& p, const double* y, int level, support::Arena& arena, PhaseValues& out);

/* Entropy of liquid water over the ideal gas at P, cal/(mol K), and its slope in T. */
WithSlope liquid_water_entropy(double T, double P) noexcept;

/*
 * Residual enthalpies (cal/mol) and entropies (cal/(mol K)) of every component alone but the water, [count],
 * either may be null: what a trace has that lies beside liquid water with nothing else. Statuses as above.
 */
StatusCode pure_residuals(const Phase& p, int water, support::Arena& arena, double* H, double* S);

/* Whether x[count] holds both water and ammonia, and the option of free water does not keep them apart. */
bool water_ammonia_pair(const MixtureRecord& mixture, const double* x) noexcept;
/*
 * Enthalpy of mixing of water and ammonia, cal/mol: what the enthalpy is decreased by. 0 without both. Its
 * weights are the molar masses: KV_COMPONENT_DATA where one of the two is unusable.
 */
StatusCode water_ammonia_enthalpy(const Phase& p, double& H) noexcept;

/* Molar mass, g/mol. KV_COMPONENT_DATA when that of a component that is present is unusable. */
StatusCode molar_mass(const Phase& p, double& M) noexcept;

/*
 * Slopes of the equation of state at a root, dimensionless: K = -v^2 P_v/(RT), L = v P_T/R, and of the second
 * derivatives N = v^3 P_vv/(RT), K_T = -v^2 P_vT/R. shift = v - T (dv/dT)_P in cm3/mol, free of cancellation.
 */
struct Slopes {
  double K, L, N, K_T, shift;
};
Slopes slopes(double a_over_b, double da_dT_over_b, double b, double T, double eta) noexcept;

/* Z and v of the phase alone, no derivatives. */
StatusCode volume(const Phase& p, PhaseValues& out);

struct Density {
  double rho, d_dT, d_dP, d2_dTdP;
};
StatusCode density(const Phase& p, Density& out);

// Molar enthalpy and entropy; only what is wanted is computed.
struct Caloric {
  double H = 0.0, S = 0.0;
};
StatusCode enthalpy_and_entropy(const Phase& p, bool want_H, bool want_S, Caloric& out);

/*
 * A property with its derivatives as the mask (KvDerivative) asks. dn[count]: derivative of the molar value
 * with n_j at constant T, P and other mole numbers for one mole in total. Components that are absent: see
 * kvgasthermo.h.
 */
struct WithDerivatives {
  double value = 0.0, dT = 0.0, dP = 0.0;
  double* dn = nullptr;
};
StatusCode enthalpy_derivatives(const Phase& p, int mask, WithDerivatives& out);
/*
 * The slopes in T and P by differences of the entropy: temperature in relative steps of 5e-6, fourth order;
 * pressure in steps from 0.01 downwards, not below 1e-8, extrapolated to zero [Rid82]. Mole numbers in closed
 * form.
 */
StatusCode entropy_derivatives(const Phase& p, int mask, WithDerivatives& out);

// Heat capacities and what follows from them.
struct SpecificHeat {
  double Cp_res = 0.0;  // residual Cp
  double Cp = 0.0, Cv = 0.0;
  double speed_of_sound = 0.0;        // m/s
  double joule_thomson = 0.0;         // K/atm
  double compressibility = 0.0;       // isothermal, 1/atm
  double pressure_coefficient = 0.0;  // (dP/dT)_v / P, 1/K
};
/*
 * selector: -1 all; k = 0 .. 5 down to output k in the order of the record; 6 the last one only.
 * KV_COMPONENT_DATA without a molar mass and KV_NOT_FINITE where the speed of sound would be imaginary: it is 0
 * then, and the others are filled.
 */
StatusCode specific_heat(const Phase& p, int selector, SpecificHeat& out);

// A gas against the normal state, 0 C and 1 atm.
struct NormalState {
  double Z, Z_normal;
  double density_normal;  // kg/m3
  double normal_volume;   // normal m3 in one m3 at T and P
};
/* KV_COMPONENT_DATA without a molar mass: the density is 0 then, and the others are filled. */
StatusCode normal_state(const Phase& p, NormalState& out);

}  // namespace kestrune::eos

#endif
