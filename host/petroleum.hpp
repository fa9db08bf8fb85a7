// Petroleum fractions: constants from boiling point, specific gravity and molar mass by published correlations.
//
// Tb normal boiling point, K; SG specific gravity 60/60 F; M molar mass, g/mol; Kw Watson factor (1.8 Tb)^(1/3)/SG.
//
// [Kes76] M. G. Kesler, B. I. Lee, Hydrocarbon Processing 55(3) (1976) 153-158.
// [Lee75] B. I. Lee, M. G. Kesler, AIChE J. 21 (1975) 510-527.
// [Ria80] M. R. Riazi, T. E. Daubert, Hydrocarbon Processing 59(3) (1980) 115-116.
// [Ria87] M. R. Riazi, T. E. Daubert, Ind. Eng. Chem. Res. 26 (1987) 755-759.
// [Ria05] M. R. Riazi, Characterization and Properties of Petroleum Fractions, ASTM MNL50 (2005).
// [Sor89] I. Soreide, doctoral thesis, Norwegian Institute of Technology, Trondheim (1989).
// [Twu84] C. H. Twu, Fluid Phase Equilib. 16 (1984) 137-150.
#ifndef KESTRUNE_HOST_PETROLEUM_HPP
#define KESTRUNE_HOST_PETROLEUM_HPP

#include <string_view>

#include "databank_tables.hpp"

namespace kestrune::host {

// Critical constants and acentric factor.
enum class Correlation { lee_kesler, twu, riazi_daubert };

// "lee-kesler", "twu", "riazi-daubert"; InputError for another name.
Correlation correlation_by_name(std::string_view name);
std::string_view correlation_name(Correlation correlation);

struct CriticalConstants {
  double Tc;  // K
  double Pc;  // Pa
  double Vc;  // cm3/mol, 0: the correlation has none
  double omega;
};

// Tc and Pc by [Kes76], [Twu84] (with Vc) or [Ria80]; the acentric factor by acentric_factor.
CriticalConstants critical_constants(Correlation correlation, double Tb, double SG, double Kw);

// [Lee75] up to Tb/Tc = 0.8, [Kes76] above. Pc in Pa.
double acentric_factor(double Tb, double Tc, double Pc, double Kw);

// Boiling point of a fraction of M 70 to 1000. [Sor89]
double boiling_point(double M, double SG);

// Molar mass of a fraction of Tb 300 to 850 K. [Ria87]
double molar_mass_of_cut(double Tb, double SG);

// Specific gravity of a hydrocarbon from its boiling point and critical temperature: Tc of [Ria80] solved for it. 0 where
// it is not between 0.55 and 1.2, as of what is no hydrocarbon.
double gravity_of(double Tb, double Tc);

// Specific gravity of a cut of a fraction with the factor Cf (0.27 to 0.31 for most). [Sor89]
double gravity_of_cut(double M, double Cf);

// Ideal-gas heat capacity of a hydrocarbon from C6 on, its main term. [Kes76], as given in [Ria05] for 255 to 922 K.
HeatCapacity petroleum_heat_capacity(double M, double Kw);

// Shares of paraffins, naphthenes and aromatics, sum 1. [Ria05] from specific gravity and refractive index up to M 200,
// from refractivity intercept and carbon-to-hydrogen ratio above, blended from 180 to 220 so that shares do not jump; the
// refractive index by [Ria80].
struct ClassShares {
  double paraffins, naphthenes, aromatics;
};
ClassShares class_shares(double M, double Tb, double SG);

// Groups of a mixture of normal alkanes, alkylcyclohexanes and alkylbenzenes of molar mass M with these shares by mole.
// The counts are in proportion to those of the mixture, 10 000 in all. Returns their number.
int groups_of_classes(double M, const ClassShares& shares,
                      std::array<GroupCount, kMaxGroupsPerComponent>& groups);

}  // namespace kestrune::host

#endif
