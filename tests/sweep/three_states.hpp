// The systems of the three-phase sweep and the states that are asked of them.
#ifndef KESTRUNE_TESTS_SWEEP_THREE_STATES_HPP
#define KESTRUNE_TESTS_SWEEP_THREE_STATES_HPP
#include <functional>

#include "feeds.hpp"
#include "search.hpp"
#include "three.hpp"

namespace kestrune::sweep {

struct System {
  Feed feed;                       // its name, components, typical composition and temperatures
  double P_low = 1, P_high = 300;  // atm
};

std::vector<System> three_phase_systems();

struct ThreeState {
  double T = 0, P = 0;  // K, atm
  Composition z;
  const char* kind = "random";  // random, close, boundary
  ThreeAnswer answer;           // from a cold start
};

// What the sampling met.
struct Sample {
  std::vector<ThreeState> states;
  int tries = 0;                   // calls that drew a state
  std::vector<double> seconds[4];  // of every call, by the number of phases; [0] no answer
};

struct SamplePlan {
  int count = 0, jobs = 1;
  uint64_t seed = 1;
};

// Asks the flash from a cold start. Callable from several threads.
using Ask = std::function<ThreeAnswer(double T, double P, const Composition& z)>;

// The first states drawn at random, unanswered.
std::vector<ThreeState> draw_states(const System& system, int count, uint64_t seed);

// States with one, two and three phases (and no answer), a third each: 15 draws a state over the whole range,
// and where three phases are rare as many again close to those that were met. What is still short is made up
// from the others. A quarter lies within 1e-2 .. 1e-10 of where the answer changes its layout.
Sample sample_states(const System& system, const SamplePlan& plan, const Ask& ask);

}  // namespace kestrune::sweep

#endif
