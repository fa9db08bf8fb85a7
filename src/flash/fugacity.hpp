// The context of one flash and the fugacity evaluation that every flash goes through: the host's routine, the
// water-aware rules, or the built-in equation of state without a detour.
#ifndef KESTRUNE_FLASH_FUGACITY_HPP
#define KESTRUNE_FLASH_FUGACITY_HPP

#include <algorithm>
#include <cmath>

#include "eos/phase.hpp"
#include "flash/host.hpp"
#include "flash/wilson.hpp"
#include "kestrune/records.h"
#include "support/arena.hpp"

namespace kestrune::flash {

// Which root of the cubic: that of a phase, or the one of lower Gibbs energy.
enum class Kind { gas, liquid, stable };

// Steps of a flash at T and P, by which its evaluations are counted.
enum class Step {
  feed,
  split,
  gate,
  curvature,
  feed_trials,
  near_pure,
  answer_trials,
  answer_near_pure,
  report
};
inline constexpr int kSteps = 9;

// Work done, for benchmarks: counts do not depend on the machine.
struct Counts {
  int fugacities = 0;  // evaluations of ln phi of one phase; of them by step:
  int by_step[kSteps] = {};
  Step step = Step::feed;
  int pure_roots = 0;  // looks at a component alone, without the others' ln phi
  int matrices = 0;    // evaluations of composition derivatives
  int factorisations = 0;
  int iterations = 0;  // of the two-phase iteration
  int trials = 0;      // of the stability test

  void evaluated() {
    ++fugacities;
    ++by_step[static_cast<int>(step)];
  }
};

// Work in evaluations of ln phi: one with composition derivatives and what is done with them, which grows
// with one power more of the components; one at a new temperature. Measured with 10 and with 40 components.
inline int matrix_work(int n) noexcept {
  return 3 + n / 64;
}
inline constexpr int kTemperatureWork = 6;

// Which side of its solubility limit free water is on: as there is more or less than the limit, or as an
// iteration has decided, so that what it follows is smooth. A liquid of almost nothing but water is water, or,
// by content, what hydrocarbons there are beside the water (free_water.hpp).
enum class WaterBranch { by_amount, by_content, below, at_limit };

/*
 * Everything a flash at one T and P remembers about its model. Built by make_model, on the caller's stack;
 * nothing of it is shared between calls.
 */
struct Model {
  double T = 0.0, P = 0.0;
  int n = 0, ld = 0;
  eos::Context context;
  HostRoutines* host = nullptr;
  KvFugacityRoutine routine = nullptr;  // of the host; null: the built-in equation of state
  eos::CubicRoot bracub = nullptr;
  eos::Temperature t;       // prepared when routine is null
  bool free_water = false;  // the flag is set and there is water
  int water = -1;           // index of the water family component
  WaterBranch branch = WaterBranch::by_amount;
  WithSlope psat{}, solubility{};  // of water at T
  double* s = nullptr;             // [ld] work
  double* modified = nullptr;      // [ld] work of the free-water rules
  double* square = nullptr;        // [n * n] work for a host's composition derivatives
  double* compared = nullptr;      // [ld] ln phi of a liquid while a host's two phases are compared
  double* limit_dn = nullptr;      // [ld * n] work of the free-water rules, order 1
  double* row = nullptr;           // [ld] work
  Counts counts;

  bool built_in() const { return routine == nullptr && !free_water; }
};

/*
 * KV_OK, or why there is no model at this temperature. order 1 prepares temperature derivatives, which then may
 * be asked for.
 */
StatusCode make_model(double T, double P, const eos::Context& context, HostRoutines* routines, bool free_water,
                      int order, support::Arena& arena, Model& m);

/* Co-volume of a composition from the table, cm3/mol: a host's fugacity routine brings no prepared temperature.
 */
double covolume(const MixtureRecord& mixture, const double* x) noexcept;

/*
 * Whether of two phases x and y the first is packed less densely, b/v: then it is the vapour. Molar volumes
 * alone would take an oil of large molecules for the vapour of a compressed gas.
 */
bool lighter(const MixtureRecord& mixture, const double* x, double Zx, const double* y, double Zy) noexcept;

/*
 * Whether a phase x[count] of compressibility factor Z at T (K) and P (atm) is packed less densely than the
 * critical volume of the equation, 3.9514 b. False without a Z.
 */
bool loosely_packed(const MixtureRecord& mixture, double T, double P, const double* x, double Z) noexcept;

/* Kay's pseudo-critical temperature of x[count], K. */
double pseudo_critical_temperature(const MixtureRecord& mixture, const double* x) noexcept;

/* Whether a liquid x[count] is water more than anything else; water: its index, -1 where there is none. */
inline bool is_aqueous(int water, const double* x) noexcept {
  constexpr double kAqueous = 0.5;
  return water >= 0 && x[water] > kAqueous;
}

/*
 * Whether the less densely packed one of two phases, x[count], passes for a vapour: above the critical volume of the
 * equation, or where no liquid like it could be: above its pseudo-critical temperature, by a quarter of it beside an
 * aqueous liquid, with which a fluid has nothing in common that could make it a gas.
 */
bool passes_for_vapour(const MixtureRecord& mixture, double T, double P, const double* x, double Z,
                       bool beside_water) noexcept;

// Derivatives beside ln phi; null = not wanted. dn has column j at j * ld and n rows.
struct Derivatives {
  double* dT = nullptr;  // [n] 1/K
  double* dP = nullptr;  // [n] 1/atm
  double* dn = nullptr;  // [ld * n]
};

/*
 * ln phi[ld] of a phase of composition x[ld] (padded with zeros), with the water rules where they apply. Z is
 * the compressibility factor: in, when positive, a start for the root; out 0 when a host's routine did not
 * tell. Returns the status of the fugacity routine that stops a flash, 0 otherwise.
 */
StatusCode water_aware_fugacity(Model& m, const double* x, Kind kind, double* ln_phi, const Derivatives& d,
                                double& Z) noexcept;

/* The same without the water rules: the host's routine, or the built-in equation under the same arguments. */
StatusCode plain_fugacity(Model& m, const double* x, Kind kind, double* ln_phi, const Derivatives& d,
                          double& Z);

// What an evaluation of the built-in equation leaves for the derivatives of the same phase.
struct Evaluated {
  double* s = nullptr;  // [ld] sum_j x_j a_ij
  eos::Mixture mixed;
  eos::Root root;
};

/*
 * The built-in equation of state, no detour: what the above does when m.built_in(). lower: only the lower
 * triangle of dn is wanted. keep (may be null) takes what composition_derivatives needs.
 */
StatusCode built_in_fugacity(Model& m, const double* x, Kind kind, double* ln_phi, const Derivatives& d,
                             bool lower, double& Z, Evaluated* keep = nullptr) noexcept;

/* d ln phi_i/d n_j, dn[ld * n], lower triangle, of a phase that built_in_fugacity has evaluated. */
StatusCode composition_derivatives(Model& m, const Evaluated& at, double* dn) noexcept;

/* As the solvers need it: dn (may be null) at least in its lower triangle, which is all where it is symmetric.
 */
inline StatusCode fugacity(Model& m, const double* x, Kind kind, double* ln_phi, double* dn, double& Z,
                           Evaluated* keep = nullptr) noexcept {
  if (m.built_in()) return built_in_fugacity(m, x, kind, ln_phi, {nullptr, nullptr, dn}, true, Z, keep);
  return water_aware_fugacity(m, x, kind, ln_phi, {nullptr, nullptr, dn}, Z);
}

/* Bounds of distribution coefficients and of their logarithms. */
inline constexpr double kLargestK = 1e15, kSmallestK = 1e-15;
inline constexpr double kLargestLogK = 34.538776394910684;

/* That of a component of which the denominator phase has x and the other y; the largest where it has none. */
inline double ratio_of(double y, double x) noexcept {
  return x > 0.0 ? std::fmin(std::fmax(y / x, kSmallestK), kLargestK) : kLargestK;
}

/* Those of all, K[n]. */
inline void ratios_of(int n, const double* y, const double* x, double* K) noexcept {
  for (int i = 0; i < n; ++i) K[i] = ratio_of(y[i], x[i]);
}

/* A split as it is returned: x[n], y[n], and K[n] as their ratio. */
inline void write_split(int n, const double* x, const double* y, double* to_x, double* to_y,
                        double* K) noexcept {
  ratios_of(n, y, x, K);
  std::copy_n(x, n, to_x);
  std::copy_n(y, n, to_y);
}

/*
 * K-value evaluation: K_i = phi_i(liquid x)/phi_i(vapour y) within 1e-15 .. 1e15, K[n]; on request (not null)
 * dT and dP [n], and the composition derivatives scaled by K_i, dx (positive) and dy (negative) [ld * n].
 * work: room for 6 * ld doubles, without derivatives for 2 * ld.
 */
struct KDerivatives {
  double *dT = nullptr, *dP = nullptr, *dx = nullptr, *dy = nullptr;
};
StatusCode k_values(Model& m, const double* x, const double* y, double* K, const KDerivatives& d, double* work);

}  // namespace kestrune::flash

#endif
