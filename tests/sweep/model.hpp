// The judge's own PPR78 model, written from the published formulas and sharing nothing with the library.
// Units: K, atm, cm3/mol; R = 82.057 cm3 atm/(mol K).
#ifndef KESTRUNE_TESTS_SWEEP_MODEL_HPP
#define KESTRUNE_TESTS_SWEEP_MODEL_HPP
#include <vector>

namespace kestrune::sweep {

// Constants of the components of one mixture and of their groups.
struct Components {
  int n = 0;
  int groups = 0;
  std::vector<double> tc, pc, omega, mass;  // [n] K, atm, -, g/mol
  std::vector<int> counts;                  // [groups * n], one column of groups entries per component
  std::vector<double> A, B;                 // [groups * groups] MPa, column-major, upper triangle in use
  std::vector<double> family, cas;          // [n] family code (20 = water), CAS number as a whole number
};

// Pair and pure parameters at one temperature.
template <class Real>
struct Parameters {
  Real T = 0;
  int n = 0;
  std::vector<Real> a;  // [n * n] a_ij = sqrt(a_i a_j) (1 - k_ij), cm6 atm/mol2
  std::vector<Real> b;  // [n] cm3/mol
};

// Which real root above B: the outermost ones, or the one of lower Gibbs energy.
enum class Root { largest, smallest, stable };

template <class Real>
struct Phase {
  Real Z = 0;
  Real a = 0, b = 0;             // of the mixture
  Real spread = 0;               // Gibbs energy of the other outer root minus the one taken, RT; 0 for one root
  int roots = 0;                 // real roots above B: 1 or 3
  bool gas_side = false;         // Z above the inflection point (1 - B) / 3
  std::vector<Real> ln_phi;      // [n]
  std::vector<Real> dln_phi_dn;  // [n * n] d ln phi_i / d n_j, one mole in total, i fastest; on request
};

// k_ij by the plain double sum over groups. T in K.
template <class Real>
Parameters<Real> parameters_at(const Components& components, Real T);

// One phase at P (atm) and mole fractions x[n]; derivatives: fill dln_phi_dn as well.
template <class Real>
void evaluate(const Parameters<Real>& parameters, Real P, const Real* x, Root root, bool derivatives,
              Phase<Real>& out);

// The components listed in keep, in that order.
Components subset(const Components& all, const std::vector<int>& keep);

// ln of Wilson's coefficient of component i, without ln(Pc/P).
double wilson_exponent(const Components& c, int i, double T);

// Vapour pressure of water, atm, and the solubility limit of water in a liquid.
double water_vapour_pressure(double T);
double water_solubility(double A, double B, double T);

}  // namespace kestrune::sweep

#endif
