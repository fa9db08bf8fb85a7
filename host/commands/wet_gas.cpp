#include "commands/wet_gas.hpp"

#include <algorithm>

#include "error.hpp"
#include "units.hpp"

namespace kestrune::host {

Composition composition_with_water(const MixtureOptions& options) {
  Composition composition = options.composition();
  if (std::none_of(composition.components.begin(), composition.components.end(), is_water))
    composition.set("water", 0.0);
  return composition;
}

Mixture build_with_water(const MixtureOptions& options) {
  return build_mixture(composition_with_water(options), interaction_set(options.set));
}

double dry_mass(const Mixture& mixture) {
  double mass = 0.0, moles = 0.0;
  for (std::size_t i = 0; i < mixture.z.size(); ++i) {
    if (is_water(mixture.components[i])) continue;
    mass += mixture.z[i] * mixture.components[i].molar_mass;
    moles += mixture.z[i];
  }
  if (!(moles > 0.0)) throw InputError("there is nothing but water in the mixture");
  return mass / moles;
}

double wet_mass(double dry, double y) {
  return dry + y * (kWaterMass - dry);
}

std::vector<double> water_contents(const std::string& text, double dry) {
  static const Unit& plain = unit(Quantity::water_content, "mol/mol");
  std::vector<double> values = parse_conditions(Quantity::water_content, text, plain, dry);
  for (std::size_t i = 0; i < values.size(); ++i)
    for (int pass = 0; pass < 40; ++pass)
      values[i] = parse_conditions(Quantity::water_content, text, plain, wet_mass(dry, values[i]))[i];
  return values;
}

void set_water(Mixture& mixture, double y) {
  double dry = 0.0;
  for (std::size_t i = 0; i < mixture.z.size(); ++i)
    dry += is_water(mixture.components[i]) ? 0.0 : mixture.z[i];
  for (std::size_t i = 0; i < mixture.z.size(); ++i)
    mixture.z[i] = is_water(mixture.components[i]) ? y : mixture.z[i] * (1.0 - y) / dry;
  mixture.molar_mass = wet_mass(dry_mass(mixture), y);
}

double water_fraction(const Mixture& mixture) {
  const std::size_t w = water_of(mixture);
  return w < mixture.z.size() ? mixture.z[w] : 0.0;
}

}  // namespace kestrune::host
