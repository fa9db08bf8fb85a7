// The water of a gas: contents as they are written, and the gas with so much of it.
#ifndef KESTRUNE_HOST_COMMANDS_WET_GAS_HPP
#define KESTRUNE_HOST_COMMANDS_WET_GAS_HPP

#include <string>
#include <vector>

#include "commands/session.hpp"

namespace kestrune::host {

// The mixture with water among its components, and what it is built of.
Composition composition_with_water(const MixtureOptions& options);
Mixture build_with_water(const MixtureOptions& options);

// g/mol of the mixture without its water; InputError where there is nothing else. The same gas with water y.
double dry_mass(const Mixture& mixture);
double wet_mass(double dry, double y);

// Contents as mole fractions of the wet gas. A content by mass goes by the molar mass of that gas, dry in g/mol.
std::vector<double> water_contents(const std::string& text, double dry);

// Puts so much water into the gas; it is one of its components.
void set_water(Mixture& mixture, double y);

// Mole fraction of water, 0 for a mixture without it.
double water_fraction(const Mixture& mixture);

}  // namespace kestrune::host

#endif
