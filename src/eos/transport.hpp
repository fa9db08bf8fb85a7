// Viscosity and thermal conductivity of a gas: low-pressure values of the components, mixed, and a correction
// for the density that the equation of state gives.
//
// [Yoo70] P. Yoon, G. Thodos, AIChE J. 16 (1970) 300-304: reduced viscosity curves.
// [Wil50] C. R. Wilke, J. Chem. Phys. 18 (1950) 517-519: viscosity of a mixture.
// [Jos62] J. A. Jossi, L. I. Stiel, G. Thodos, AIChE J. 8 (1962) 59-63: dense-gas viscosity.
// [Roy68] D. Roy, G. Thodos, Ind. Eng. Chem. Fundam. 7 (1968) 529-534: reduced conductivity.
// [Mas58] E. A. Mason, S. C. Saxena, Phys. Fluids 1 (1958) 361-369: conductivity of a mixture.
// [Sti64] L. I. Stiel, G. Thodos, AIChE J. 10 (1964) 26-30: dense-gas conductivity.
#ifndef KESTRUNE_EOS_TRANSPORT_HPP
#define KESTRUNE_EOS_TRANSPORT_HPP

#include "eos/properties.hpp"

namespace kestrune::eos {

// Critical constants of a component or pseudo-critical ones of a mixture.
struct Critical {
  double Tc, Pc, Vc, Zc, M;  // K, atm, cm3/mol, -, g/mol
};

/*
 * Reduced viscosity at Tr = T/Tc: the general curve, blended by mole fraction with the curves of hydrogen and
 * helium for their shares (0 where absent). 1 at Tr = 0 up to the rounding of the constants. [Yoo70]
 */
double reduced_viscosity(double Tr, double x_hydrogen, double x_helium) noexcept;
/*
 * The curve of a composition x[count], hydrogen and helium found by CAS number (of several the last that is
 * present), with the scale sqrt(M) V^(2/3)/Tc^(1/6) 1e-5/1000, V = (R Zc Tc/Pc + Vc)/2. It is used as a shape
 * in T: as an absolute viscosity in Pa s it is too large, about 1.7 times for methane and 3 times for propane.
 */
double corresponding_viscosity(double T, const MixtureRecord& mixture, const double* x,
                               const Critical& c) noexcept;

/*
 * Low-pressure viscosity of component i (from 0), cP: the correlation, continued along the curve beyond its
 * range with KV_PURE_RANGE. Other statuses of the pure-component library have no value. alone[count]: all 0.
 * A component with a heat capacity of its own (ideal_gas.hpp) has the general curve with Tc^(1/6)/(sqrt(M)
 * Pc^(2/3)) as its scale [Yoo70], and the curve of the conductivity itself.
 */
StatusCode dilute_viscosity(double T, const Context& context, int i, const Critical& c, double* alone,
                            double& mu) noexcept;

/*
 * Low-pressure conductivity of component i, W/(m K), in the same way; the curve is the one of the reduced
 * inverse conductivity 210 (Tc M^3/Pc^4)^(1/6) with Pc in bar. [Roy68] Water, by its family code, has no term of
 * the inner degrees of freedom of hydrocarbons.
 */
StatusCode dilute_conductivity(double T, const Context& context, int i, const Critical& c,
                               double& lambda) noexcept;
double corresponding_conductivity(double T, const Critical& c, bool water) noexcept;

/* What the density adds, as a function of the reduced density: viscosity times Tc^(1/6)/(sqrt(M) Pc^(2/3)) in
 * cP [Jos62]; conductivity times 210 (Tc M^3/Pc^4)^(1/6) Zc^5 [Sti64]. 0 at 0, continuous. */
double dense_viscosity(double rho_r) noexcept;
double dense_conductivity(double rho_r) noexcept;

/* Viscosity in cP, conductivity in W/(m K). Statuses: eos/properties.hpp. */
StatusCode gas_viscosity(const Phase& p, double& viscosity);
StatusCode gas_conductivity(const Phase& p, double& conductivity);

}  // namespace kestrune::eos

#endif
