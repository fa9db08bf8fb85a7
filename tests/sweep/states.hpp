// Where the flash is asked: at random, close to phase boundaries and around critical points.
#ifndef KESTRUNE_TESTS_SWEEP_STATES_HPP
#define KESTRUNE_TESTS_SWEEP_STATES_HPP
#include <cstdint>
#include <vector>

#include "feeds.hpp"
#include "model.hpp"

namespace kestrune::sweep {

struct State {
  double T = 0, P = 0;          // K, atm
  const char* kind = "random";  // random, boundary, critical
};

struct StatePlan {
  int count = 200;          // states wanted, met within some 20
  int jobs = 1;             // threads
  int critical_steps = 14;  // halvings of the temperature interval of the critical point
  uint64_t seed = 1;
};

// The states of one feed; the same for the same plan, whatever the number of threads.
std::vector<State> make_states(const Feed& feed, const Components& components, const StatePlan& plan);

// Runs body(i) for i in [0, count) on some threads.
template <class Body>
void parallel_for(int count, int jobs, const Body& body);

}  // namespace kestrune::sweep

#include <atomic>
#include <thread>

template <class Body>
void kestrune::sweep::parallel_for(int count, int jobs, const Body& body) {
  std::atomic<int> next{0};
  const auto work = [&] {
    for (int i; (i = next++) < count;) body(i);
  };
  std::vector<std::thread> threads;
  for (int k = 1; k < jobs; ++k) threads.emplace_back(work);
  work();
  for (std::thread& thread : threads) thread.join();
}

#endif
