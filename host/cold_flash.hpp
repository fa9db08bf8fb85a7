// Flashes of one mixture at many states: a record of its own for each thread, cold starts, so that a result depends on its
// state alone, to the last bit.
#ifndef KESTRUNE_HOST_COLD_FLASH_HPP
#define KESTRUNE_HOST_COLD_FLASH_HPP

#include <array>
#include <cstddef>
#include <vector>

#include "equilibrium.hpp"

namespace kestrune::host {

class ColdFlash {
 public:
  // phases: 2, liquid and vapour, or 3, up to two liquids and a vapour. The mixture has been handed over to the library.
  ColdFlash(const Exports& library, const Mixture& mixture, Given given, int phases);

  // What was given in base units (Given), z[components] the feed. x[0] vapour, x[1] liquid, x[2] second liquid receive
  // [components] mole fractions, NaN for a phase that is absent; x[2] is not read with two phases. Of one liquid the
  // second is absent, of two the first is the lighter; a phase about to form at vapour fraction 0 or 1 has its
  // composition and the fraction 0. Without an answer the fractions are NaN, as is the temperature or pressure that was
  // asked for.
  StatusCode operator()(double first, double second, const double* z, double* const x[3]);

  double T() const { return T_; }                                     // K
  double P() const { return P_; }                                     // Pa
  double fraction(std::size_t phase) const { return share_[phase]; }  // mole fractions of the whole

 private:
  bool at_fraction() const { return given_ == Given::WP || given_ == Given::WT; }
  bool has_entries(const double* x) const;
  StatusCode flash_two(double first, double second, const double* z, double* y, double* x);
  StatusCode flash_three(double first, double second, const double* z, double* y, double* xA, double* xB);
  void settle_liquids(double A, double V, double* xA, double* xB);

  const Exports& library_;
  MixtureRecord record_;
  Given given_;
  std::size_t phases_, nc_;
  double T_ = 0.0, P_ = 0.0, atm_ = 0.0;
  std::array<double, 3> share_{};
  std::vector<double> ratios_, spare_;
};

// Properties of one phase after another, of one thread.
class PhaseAsker {
 public:
  PhaseAsker(const Exports& library, const Mixture& mixture);

  // The phase as a gas or as a liquid. T in K, P in Pa, x[components]; bits of kAllProperties.
  PropertyValues properties(bool gas, double T, double P, const double* x, unsigned wanted);
  // The lighter phase of a flash is a gas, but where it is packed like a liquid and the liquid root has the lower free
  // enthalpy.
  bool lighter_is_gas(double T, double P, const double* x);

  double molar_mass() const { return molar_mass_; }  // g/mol, of the last phase

 private:
  void take(const double* x);
  PropertyValues at(PhaseKind kind, double T, double P, unsigned wanted) const;

  const Exports& library_;
  const Mixture& mixture_;
  std::vector<double> x_;
  double molar_mass_ = 0.0;
};

}  // namespace kestrune::host

#endif
