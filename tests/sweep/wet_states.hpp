// The judge's own search for a state by the rules of free water.
#ifndef KESTRUNE_TESTS_SWEEP_WET_STATES_HPP
#define KESTRUNE_TESTS_SWEEP_WET_STATES_HPP
#include "judge.hpp"

namespace kestrune::sweep {

// Whether the question has a state that judge_free_water passes: one fluid, a gas beside water, or two fluids
// from several hundred starts, those that substitution runs away from included. A liquid that is lighter than
// the vapour beside it and packed like a vapour is none. found, may be null: the state.
bool wet_state_exists(const Question& question, Answer* found = nullptr);

}  // namespace kestrune::sweep

#endif
