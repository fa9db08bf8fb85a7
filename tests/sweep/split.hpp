// Two-phase splits by minimisation of the Gibbs energy, and a simple robust flash made of them.
#ifndef KESTRUNE_TESTS_SWEEP_SPLIT_HPP
#define KESTRUNE_TESTS_SWEEP_SPLIT_HPP
#include "search.hpp"

namespace kestrune::sweep {

// A state of one or two phases. beta counts the phase y, the one of larger v/b.
struct Split {
  bool two_phase = false;
  double beta = 0;
  Composition x, y;
  double gibbs = 0;  // molar Gibbs energy over RT, up to a term linear in the feed
};

// Gibbs energy over RT of beta moles of y and 1 - beta moles of x, each at its lower root.
double gibbs_of(const Parameters<double>& parameters, double P, double beta, const Composition& x,
                const Composition& y);

// Root of the Rachford-Rice equation for ln K; beta is held in [0, 1].
double rachford_rice(const Composition& z, const Composition& ln_k);

// Minimises the Gibbs energy of two phases from ln K = ln(trial / feed); one phase when it collapses.
Split split_from(const Parameters<double>& parameters, double P, const Composition& z,
                 const Composition& trial);

// Lowest split over all unstable trials of the feed; the feed itself when there is none.
Split flash(const Components& components, const Parameters<double>& parameters, double P, const Composition& z);

}  // namespace kestrune::sweep

#endif
