// One phase at a prepared temperature: mixture parameters, root of the cubic, fugacity coefficients and their
// derivatives. The pieces that the flashes call millions of times; eos/evaluation.hpp puts them together.
#ifndef KESTRUNE_EOS_PHASE_HPP
#define KESTRUNE_EOS_PHASE_HPP

#include "eos/constants.hpp"
#include "eos/temperature.hpp"
#include "support/status.hpp"

namespace kestrune::eos {

// Mixture parameters of one composition. s[i] = sum_j x_j a_ij lives in an array of the caller's, [ld].
struct Mixture {
  double a = 0.0;  // cm6 atm/mol2
  double b = 0.0;  // cm3/mol
  double q = 0.0;  // a/(b R T)
};

/*
 * The root in reduced form, (6) of docs/method.md. eta = b/v is the packing; with q = a/(b R T)
 *   Z - 1 = eta/(1 - eta) - q psi,   psi = eta/(1 + u eta + w eta^2)
 *   phi   = ln[(1 + delta1 eta)/(1 + delta2 eta)]/(delta1 - delta2)
 * Z - 1 from this form keeps its digits in a dilute gas, where the root itself has lost them.
 */
struct Root {
  double Z = 0.0;
  double eta = 0.0;
  double z_minus_1 = 0.0;
  double phi = 0.0;
  double psi = 0.0;
  double log_z_minus_B = 0.0;
};

/* Mixture parameters of x[n] (padded to ld with zeros); fills s[ld]. */
Mixture mix(const Temperature& t, const double* x, double* s) noexcept;
/* The same for the pure component j: s is the column of a_ij. */
inline Mixture mix_pure(const Temperature& t, int j, const double** s) noexcept {
  const std::size_t at = static_cast<std::size_t>(j) * t.ld;
  *s = t.aij + at;
  return {t.aij[at + j], t.b[j], t.aij[at + j] / (t.b[j] * t.rt())};
}

/* Sum of x_i x_j M_ij over a padded matrix of the prepared temperature. */
double quadratic(const Temperature& t, const double* matrix, const double* x) noexcept;

// Settings blocks of BRACUB: from scratch, and from the value that Z holds.
inline constexpr double kColdRoot[8] = {};
inline constexpr double kWarmRoot[8] = {0.0, 1.0};

/*
 * Z of the phase (KV_PHASE_GAS, KV_PHASE_LIQUID), a root of (7) of docs/method.md, through BRACUB; Z holds a
 * start when warm is set. Returns its status; when a coefficient is not finite the solver is not called and
 * KV_NOT_FINITE is returned.
 */
int solve_root(CubicRoot bracub, double A, double B, int phase, bool warm, double& Z) noexcept;

using support::has_root;

/* True when the cubic may have three real roots, by its coefficients alone (false is certain). */
inline bool may_have_three_roots(double A, double B) noexcept {
  const double c1 = (kU - 1.0) * B - 1.0;
  const double c2 = A + (kW - kU) * B * B - kU * B;
  return c1 * c1 > 3.0 * c2;
}

/* Fills the reduced form from Z and the mixture. */
void reduce(const Temperature& t, const Mixture& m, double P, double Z, Root& r) noexcept;

/* Residual Gibbs energy over RT: sum of x_i ln phi_i, (9) of docs/method.md. */
inline double residual_gibbs(const Mixture& m, const Root& r) noexcept {
  return r.z_minus_1 - r.log_z_minus_B - m.q * r.phi;
}

/* Whether a phase of covolume b is packed less densely than a critical one, b/v; false without a Z. */
inline bool loosely_packed(double b, double T, double P, double Z) noexcept {
  return Z > 0.0 && b * P / (kR * T * Z) * kCriticalVolumeRatio < 1.0;
}

/*
 * Residual enthalpy (cal/mol) and entropy (cal/(mol K)), (11) of docs/method.md, of a root with a mixture a, b and its
 * da/dT. The logarithm of [2Z + (u - s)B]/[2Z + (u + s)B] is -s phi.
 */
inline double residual_enthalpy(double T, double a, double da_dT, double b, const Root& r) noexcept {
  return (-(a - T * da_dT) / b * r.phi + kR * T * r.z_minus_1) * kCalPerCm3Atm;
}
inline double residual_entropy(double da_dT, double b, const Root& r) noexcept {
  return (da_dT / b * r.phi + kR * r.log_z_minus_B) * kCalPerCm3Atm;
}

/*
 * Whether a phase of covolume b whose root is Z has another one, and how much higher its Gibbs energy over RT
 * is. From the root alone, without the sums over the components: exact but for rounding, in Z and in the
 * energies.
 */
bool has_other_root(const Temperature& t, double b, double P, double Z, double& higher) noexcept;
inline constexpr double kOtherRootMargin = 1e-6;  // more than that rounding

/*
 * The root of lower Gibbs energy in reduced form. start: a value to begin from where it is positive; of two
 * that are equally good, as where a component boils, the one that is nearer to it. Returns the status of
 * solve_root; without a root r is left alone.
 */
int stable_root(const Temperature& t, CubicRoot bracub, const Mixture& m, double P, double start,
                Root& r) noexcept;

/* ln phi_i = (b_i/b)(Z - 1 + q phi) - ln(Z - B) - 2 s_i phi/(b R T), (8) of docs/method.md, out[ld]. */
void ln_phi(const Temperature& t, const Mixture& m, const Root& r, const double* s, double* out) noexcept;

/* Mechanical terms that the derivatives share: 1 + h_i = (V/RT) dP/dn_i, 1 + k = -(V^2/RT) dP/dV, see (10) of
 * docs/method.md. */
struct Mechanics {
  double h_0, h_b, h_s;  // h_i = h_0 + h_b b_i + h_s s_i
  double one_plus_k;
  double eta_slope;  // eta dZ/d eta at constant T and composition
};
Mechanics mechanics(const Temperature& t, const Mixture& m, const Root& r) noexcept;

/* P d ln phi_i/dP (dimensionless), out[ld]. */
void p_dln_phi_dP(const Temperature& t, const Mechanics& k, const Root& r, const double* s,
                  double* out) noexcept;

/* d ln phi_i/dT in 1/K, out[n]; needs order 1 and x. s_t[ld] receives sum_j x_j da_ij/dT; returns da/dT. */
double dln_phi_dT(const Temperature& t, const Mixture& m, const Root& r, const Mechanics& k, const double* x,
                  const double* s, double* s_t, double* out) noexcept;

/*
 * d ln phi_i/d n_j at constant T, P for one mole in total, (10) of docs/method.md, symmetric, column j at j *
 * ld_out; only the first rows elements of each column are written (n, or ld when ld_out allows the padding).
 * lower: only the lower triangle is wanted; up to three elements above the diagonal are written then.
 */
void dln_phi_dn(const Temperature& t, const Mixture& m, const Root& r, const Mechanics& k, const double* s,
                double* out, int ld_out, int rows, bool lower) noexcept;

}  // namespace kestrune::eos

#endif
