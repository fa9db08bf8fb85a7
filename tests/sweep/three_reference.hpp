// A slow flash of any number of phases, to try the judge with and to know states of four phases: substitution
// with the shares at the minimum of a convex function (Michelsen, Comput. Chem. Eng. 18, 1994, 545).
#ifndef KESTRUNE_TESTS_SWEEP_THREE_REFERENCE_HPP
#define KESTRUNE_TESTS_SWEEP_THREE_REFERENCE_HPP
#include "three.hpp"

namespace kestrune::sweep {

// Two or three phases w with their shares in the order and with the names that the flash promises.
ThreeAnswer named_phases(const std::vector<Composition>& w, const std::vector<double>& share,
                         const Question& question);

// The stable phases of the question's feed, reduced, and their shares; returns their number, 0 when
// substitution is too slow.
int stable_phases(const Question& question, const Reduced& r, std::vector<Composition>& w,
                  std::vector<double>& share);

// All components of the feed are there. Status 1 where there are more than three phases, or when substitution
// is too slow.
ThreeAnswer slow_flash(const Question& question);

}  // namespace kestrune::sweep

#endif
