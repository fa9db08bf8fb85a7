// One state of a mixture: its phases at temperature and pressure with their properties.
#pragma once

#include <string>
#include <vector>

#include "properties.hpp"

namespace kestrune::host {

struct PhaseState {
  PhaseKind kind;
  double mole_fraction, mass_fraction;  // of the whole
  std::vector<double> x;                // mole fractions
  double molar_mass;                    // g/mol
  PropertyValues properties;
};

struct Equilibrium {
  double T;      // K
  double P;      // Pa
  bool flashed;  // false: the mixture was taken as one phase, without asking whether it is
  StatusCode status;
  double beta;                     // vapour fraction, mole
  std::vector<double> x, y, K;     // as the library left them; x is all liquid, free water included
  std::vector<PhaseState> phases;  // phases present, in the order of PhaseKind; none unless status is 0
  PhaseState overall;              // of a flash with status 0: the phases together

  const PhaseState* phase(PhaseKind kind) const;  // null when absent
  StatusCode first_failure() const;               // of this call, then of the properties; else 0
  bool extrapolated() const;                      // see PropertyValues
};

// "two-phase" for vapour and liquid, else the names, "vapour + free water"; "-" without an answer
std::string phases_in_words(const Equilibrium& state);

// FlashLVatTP from a cold start and the properties of every phase present. T in K, P in Pa. The mixture has
// been handed over to the library.
Equilibrium flash_at_TP(const Exports& library, Mixture& mixture, double T, double P);

// The mixture as one phase, vapour or liquid.
Equilibrium single_phase_at_TP(const Exports& library, const Mixture& mixture, PhaseKind kind, double T,
                               double P);

}  // namespace kestrune::host
