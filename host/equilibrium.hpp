// One state of a mixture: phases at temperature and pressure with the properties that a report shows.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "mixture.hpp"

namespace kestrune::host {

enum class PhaseKind { vapour, liquid, free_water };

struct PhaseState {
  PhaseKind kind;
  double mole_fraction, mass_fraction;  // of the whole
  std::vector<double> x;                // mole fractions
  double molar_mass;                    // g/mol
  StatusCode status;  // of the property call; Z and density are NaN unless 0, and for free water
  double Z;
  double density;  // kg/m3
};

struct Equilibrium {
  double T;  // K
  double P;  // Pa
  StatusCode status;
  double beta;                     // vapour fraction, mole
  std::vector<double> x, y, K;     // as the library left them; x is all liquid, free water included
  std::vector<PhaseState> phases;  // phases present, in the order of PhaseKind; none unless status is 0

  const PhaseState* phase(PhaseKind kind) const;  // null when absent
  bool good() const;                              // this call and all property calls ended with 0
};

// "vapour", "liquid", "free water"
std::string_view phase_name(PhaseKind kind);
// "two-phase" for vapour and liquid, else the names, "vapour + free water"; "-" without an answer
std::string phases_in_words(const Equilibrium& state);

// FlashLVatTP from a cold start and the properties of every phase present. T in K, P in Pa. The mixture has
// been handed over to the library.
Equilibrium flash_at_TP(const Exports& library, Mixture& mixture, double T, double P);

// Compressibility factor and density of a phase of composition x, from the pressure derivatives of ln phi:
// sum_i x_i d ln phi_i/dP = v/(RT) - 1/P. Fills status, Z and density of the phase. Free water has neither: its
// fugacity is that of its vapour pressure, not of the equation of state.
void evaluate_phase(const Exports& library, const Mixture& mixture, double T, double P, PhaseState& phase);

}  // namespace kestrune::host
