// Interaction of water with the molecules of a gas.
#ifndef KESTRUNE_WATER_INTERACTIONS_HPP
#define KESTRUNE_WATER_INTERACTIONS_HPP

#include "eos/temperature.hpp"

namespace kestrune::water {

/*
 * Fills k[n] with the k_ij of water with each component in the gas; NaN for those that keep the one of their
 * groups.
 *
 * With one k_ij for a gas and for what water dissolves of it, the group contributions follow the solubility:
 * they make the water content of carbon dioxide several times too large and that of cold methane 10 to 30 % too
 * small. The non-aqueous k_ij of the same equation of state describe the gas.
 *
 * [Sor92] I. Soreide, C. H. Whitson, Fluid Phase Equilib. 77 (1992) 217: methane, ethane, propane, n-butane
 * (here isobutane too), n-pentane and heavier (here to decane), nitrogen, carbon dioxide, hydrogen sulphide.
 */
void vapour_interactions(const MixtureRecord& mixture, double* k) noexcept;

/* Puts them into the pair parameters of a prepared temperature: a_wi = sqrt(a_w a_i)(1 - k_wi). */
void apply_vapour_interactions(const MixtureRecord& mixture, int water, const double* k,
                               eos::Temperature& t) noexcept;

}  // namespace kestrune::water

#endif
