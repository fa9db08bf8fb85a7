// Where bubble, dew and quality points are asked.
#ifndef KESTRUNE_TESTS_SWEEP_SATURATION_POINTS_HPP
#define KESTRUNE_TESTS_SWEEP_SATURATION_POINTS_HPP
#include <vector>

#include "saturation.hpp"
#include "states.hpp"

namespace kestrune::sweep {

// The questions of one feed; the same for the same plan, whatever the number of threads.
std::vector<SaturationQuestion> make_saturation_questions(const Sides& sides, const StatePlan& plan);

}  // namespace kestrune::sweep

#endif
