// What the judgements share: the components that are there, and the phases compared.
#ifndef KESTRUNE_TESTS_SWEEP_REDUCED_HPP
#define KESTRUNE_TESTS_SWEEP_REDUCED_HPP
#include <string>

#include "judge.hpp"

namespace kestrune::sweep {

// The question without the components that the feed lacks.
struct Reduced {
  Components components;
  Composition z, x, y;
  Parameters<double> par;
  Parameters<long double> exact;
  std::vector<int> keep;

  explicit Reduced(const Question& question);
  Reduced(const Question& question, const Answer& answer);

  // The entries of the components that are there.
  Composition part(const Composition& full) const;
};

// A message with numbers.
std::string text(const char* format, double a, double b = 0);

double largest_difference(const Composition& x, const Composition& y);

// The phase w at P in long double.
Phase<long double> exact_phase(const Reduced& r, double P, const Composition& w, Root root);

// Equal fugacities, two different phases, the label. Returns false with a reason when one is off. Every phase
// at its root of lower Gibbs energy, or, with named_roots, at that of its name.
bool phases_agree(const Question& question, const Answer& answer, const Reduced& r, Verdict& verdict,
                  bool named_roots = false);

}  // namespace kestrune::sweep

#endif
