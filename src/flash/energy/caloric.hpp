// Enthalpy or entropy of phases inside a flash: one temperature prepared once for both phases, with the slopes
// that the outer iteration needs; or the routines of a host and the rules of free water, without slopes.
#ifndef KESTRUNE_FLASH_ENERGY_CALORIC_HPP
#define KESTRUNE_FLASH_ENERGY_CALORIC_HPP

#include "eos/properties.hpp"
#include "flash/feed.hpp"
#include "flash/fugacity.hpp"

namespace kestrune::flash {

enum class Property { enthalpy, entropy };

// Of one phase. Units: cal/mol, cal/(mol K); the slope is that at constant pressure and composition.
struct PhaseCaloric {
  double value = 0.0, slope = 0.0;
  double Cp = 0.0;  // cal/(mol K)
  double Z = 0.0;
  double* ln_phi = nullptr;      // [ld]
  double* dln_phi_dT = nullptr;  // [ld] 1/K
  double* dn = nullptr;          // [ld * n], may be null: not wanted
};

/* Gibbs energy over RT of phases together, above that of the pure ideal gases, and its slope in T. */
struct Gibbs {
  double value = 0.0, slope = 0.0;
  // An amount of a phase x[n] whose ln phi and slopes are known.
  void add(int n, double amount, const double* x, const PhaseCaloric& phase) noexcept;
};

/* K: where those of two states, at temperatures of their own, are the same by their slopes in 1/T. */
double crossing_of(const Gibbs& a, double T_a, const Gibbs& b, double T_b) noexcept;

/* What the phases of one flash share at a temperature; the feed z[ld] says which components are present. */
struct CaloricModel : Feed {
  Property property = Property::enthalpy;
  double P = 0.0;
  support::Arena* arena = nullptr;
  support::Arena::Mark base{};
  double prepared = -1.0;  // temperature of t and ideal; none is below 0
  eos::Temperature t;      // with second derivatives
  eos::IdealGas ideal;
  double *s, *s_t, *row;  // [ld] work

  /* Slopes are there: the built-in equation, no free water, no routine of the host. */
  bool analytic() const;
};

void open_caloric(support::Arena& arena, CaloricModel& c);

/* Prepares T. KV_OK, also where a heat capacity is continued beyond its range; or why there are no values. */
StatusCode prepare_caloric(CaloricModel& c, double T);

/*
 * Value and slopes of a phase of composition x[ld] at the prepared temperature. A gas or liquid takes the root
 * of its name unless the other one has a clearly lower Gibbs energy. The slope is not positive where the model's heat
 * capacity is not. False: no usable root.
 */
bool phase_caloric(CaloricModel& c, const double* x, Kind kind, PhaseCaloric& out);

/* The value alone at any temperature, by the host's routine where there is one, with free water where it is on.
 */
StatusCode phase_value(const CaloricModel& c, double T, const double* x, int phase, double& value);

}  // namespace kestrune::flash

#endif
