// The pieces of a petroleum fraction: molar masses, specific gravities, boiling points and shares.
//
// [Whi83] C. H. Whitson, SPE J. 23 (1983) 683-694: gamma distribution of the molar mass, boundary of the lightest.
#ifndef KESTRUNE_HOST_SPLIT_HPP
#define KESTRUNE_HOST_SPLIT_HPP

#include <string>
#include <vector>

#include "definition.hpp"

namespace kestrune::host {

// A piece: molar mass g/mol, specific gravity 60/60 F, boiling point K, shares of the fraction.
struct Cut {
  double M, SG, Tb, moles, mass;
};

// Shares sum to 1; mean molar mass and specific gravity (by volume) are those of the fraction.
struct SplitFraction {
  std::vector<Cut> cuts;
  double M, Tb;             // of the fraction; mean boiling point, K
  double M_of_curve = 0.0;  // by the boiling curve alone, 0 without one
  std::string how;          // in words
};

// By the gamma distribution p(M) ~ (M - eta)^(alpha - 1) exp(-(M - eta)/beta), beta = (mean - eta)/alpha (alpha 1 is the
// exponential one), into pieces of equal mass; specific gravities by [Sor89] with the factor that meets the fraction's.
// InputError when eta is not below the mean.
SplitFraction split_by_distribution(const Definition& fraction);

// Along a boiling curve into pieces of equal volume: specific gravities of one Watson factor, which meets the fraction's;
// molar masses by [Ria87], scaled to that of the fraction where it is given.
SplitFraction split_by_curve(const Definition& fraction, const PetroleumTools& tools);

// Regularised incomplete gamma function: share of the distribution x^(a - 1) exp(-x) below x. a > 0, x >= 0.
double gamma_share(double a, double x);

}  // namespace kestrune::host

#endif
