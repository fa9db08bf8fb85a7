// Tangent-plane search: is there a phase that would lower the Gibbs energy of a given equilibrium?
#ifndef KESTRUNE_TESTS_SWEEP_SEARCH_HPP
#define KESTRUNE_TESTS_SWEEP_SEARCH_HPP
#include <vector>

#include "model.hpp"

namespace kestrune::sweep {

using Composition = std::vector<double>;

// What is tested: the tangent plane ln f_i = d[i] + ln P, and the phases that lie on it by construction.
struct Plane {
  Composition d;                    // [n] ln x_i + ln phi_i(x)
  std::vector<Composition> phases;  // one to three
};

struct Trial {
  Composition w;   // [n] mole fractions
  double tpd = 0;  // sum w_i (ln w_i + ln phi_i(w) - d_i), RT
};

struct SearchResult {
  double lowest = 0;            // lowest tangent-plane distance met, <= 0
  std::vector<Trial> unstable;  // distinct trials below the limit, lowest first
};

// The plane of one phase, evaluated at its root of lower Gibbs energy. All x[i] > 0.
Plane plane_of(const Parameters<double>& parameters, double P, const Composition& x);

// Starts: Wilson both ways, ideal gas, every near-pure component, midpoints, random compositions and the
// softest direction of every phase of the plane both ways. z the feed, components for the Wilson formula.
std::vector<Composition> starting_points(const Components& components, const Parameters<double>& parameters,
                                         double P, const Composition& z, const Plane& plane);

// Minimises the tangent-plane distance from every start. all false: returns at the first trial below limit
// (a negative number) without converging it; true: converges every start and keeps the distinct ones.
SearchResult search(const Parameters<double>& parameters, double P, const Plane& plane,
                    const std::vector<Composition>& starts, double limit, bool all);

// The softest direction of the ideal-plus-excess Hessian at x: lowest eigenvalue, and its vector in the
// variables 2 sqrt(x_i) written to direction[n].
double softest_direction(const Parameters<double>& parameters, double P, const Composition& x,
                         Composition& direction);

// Solves (H + shift I) s = -g for a symmetric H[n * n]; false when not positive definite.
bool solve_shifted(int n, const std::vector<double>& H, double shift, const std::vector<double>& g,
                   std::vector<double>& s);

}  // namespace kestrune::sweep

#endif
