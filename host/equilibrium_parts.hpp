// What the flashes of two and of three phases build a state from.
#pragma once

#include <algorithm>
#include <vector>

#include "equilibrium.hpp"

namespace kestrune::host {

inline constexpr double kAqueous = 0.5;       // mole fraction of water above which a liquid is aqueous
inline constexpr double kWaterRich = 0.9999;  // from here on the library takes a liquid for free water

// Index of water, the number of components without any.
std::size_t water_of(const Mixture& mixture);

// False for the composition of a phase that is absent.
inline bool has_entries(const std::vector<double>& x) {
  return std::any_of(x.begin(), x.end(), [](double value) { return value > 0.0; });
}

// Adds a phase with its properties at T and P of the state; fraction by mole of the whole.
void add_phase(const Exports& library, const Mixture& mixture, PhaseKind kind, double fraction,
               const std::vector<double>& x, Equilibrium& state);
// The phases together.
void add_overall(const Exports& library, const Mixture& mixture, Equilibrium& state);

}  // namespace kestrune::host
