// Hydrate formation curve of a gas by its gravity, shifted by an inhibitor. No equation of state takes part.
#ifndef KESTRUNE_WATER_HYDRATE_HPP
#define KESTRUNE_WATER_HYDRATE_HPP

#include "kestrune/records.h"

namespace kestrune::water {

/*
 * T[points] (K) and P[points] (atm) from 253.15 K without inhibitor to 200 atm, at even steps of the
 * temperature; all temperatures are lower by the depression of the inhibitor. z[count]; percent: mass of
 * inhibitor in 100 of its aqueous solution. kind: 1 methanol, 2 sodium chloride, 3 potassium chloride, 4
 * calcium chloride, 5 of molar mass M (g/mol), any other none. points <= 0 writes nothing; one point lies at
 * 253.15 K.
 *
 * KV_INHIBITOR_MASS: kind 5 and M not positive, nothing is written. Nothing else is checked: at 100 percent T
 * is -infinity.
 *
 * (40) of docs/method.md: T/F = 13.47 ln(P/psia) + 34.27 ln g - 1.675 ln(P/psia) ln g - 20.35, g the gravity
 * to air
 * [Tow05]; depression K W/(M (100 - W)) [Ham34], K 2335 F for kind 5 and fitted for the others.
 *
 * [Tow05] B. F. Towler, S. Mokhatab, Hydrocarbon Processing 84 (2005) 61.
 * [Ham34] E. G. Hammerschmidt, Ind. Eng. Chem. 26 (1934) 851.
 */
void hydrate_line(const double* z, int kind, double M, double percent, int points, const MixtureRecord& mixture,
                  double* T, double* P) noexcept;

}  // namespace kestrune::water

#endif
