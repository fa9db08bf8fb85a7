#include "states.hpp"

#include <algorithm>
#include <cmath>
#include <random>

#include "sides.hpp"

namespace kestrune::sweep {
namespace {

constexpr double T_min = 100, T_max = 700, P_min = 0.01, P_max = 500;
constexpr double band[] = {1e-2, 1e-3, 1e-4, 1e-5, 1e-6, 1e-7, 1e-8};

void around(double T, double P, const char* kind, std::vector<State>& out) {
  for (double d : band) {
    out.push_back({T, P * (1 + d), kind});
    out.push_back({T, P * (1 - d), kind});
  }
}

// One boundary found on a line of constant T (or P) drawn at random; nothing where the line crosses none.
std::vector<State> boundary_states(const Sides& sides, uint64_t seed) {
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> unit(0, 1);
  const bool vary_pressure = unit(random) < 0.6;
  const double T = sides.feed.T_low + (sides.feed.T_high - sides.feed.T_low) * unit(random);
  const double P = std::exp(std::log(0.1) + std::log(2000.0) * unit(random));
  const int points = 25;
  const bool wet = sides.feed.free_water;
  const double low = vary_pressure ? std::log(P_min) : (wet ? sides.feed.T_low : T_min);
  const double high = vary_pressure ? std::log(P_max) : (wet ? sides.feed.T_high : T_max);
  std::vector<int> crossings;
  std::vector<bool> side(points);
  Composition hint;
  const auto at = [&](int k) { return low + (high - low) * (k + 0.5) / points; };
  for (int k = 0; k < points; ++k) {
    side[k] = vary_pressure ? sides.split(T, std::exp(at(k)), hint) : sides.split(at(k), P, hint);
    if (k > 0 && side[k] != side[k - 1]) crossings.push_back(k);
  }
  std::vector<State> states;
  if (crossings.empty()) return states;
  const int k = crossings[random() % crossings.size()];
  const double found = sides.between(vary_pressure ? T : P, at(k - 1), at(k), vary_pressure, side[k - 1], 42);
  around(vary_pressure ? T : found, vary_pressure ? std::exp(found) : P, "boundary", states);
  return states;
}

std::vector<State> critical_states(const Sides& sides, int steps) {
  std::vector<State> states;
  double T = 0, P = 0;
  if (!sides.critical_point(P_max, steps, T, P)) return states;
  for (double d : {0.0, 1e-8, -1e-8, 1e-6, -1e-6, 1e-4, -1e-4, 1e-3, -1e-3, 1e-2, -1e-2})
    around(T * (1 + d), P, "critical", states);
  return states;
}

// Half over the whole range, half where the boundaries are; a Latin square in T and ln P.
std::vector<State> random_states(const Sides& sides, int count, uint64_t seed) {
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> unit(0, 1);
  std::vector<State> states;
  for (int half = 0; half < 2; ++half) {
    const int m = half == 0 ? count / 2 : count - count / 2;
    std::vector<int> place(m);
    for (int k = 0; k < m; ++k) place[k] = k;
    std::shuffle(place.begin(), place.end(), random);
    const double low = half == 0 ? T_min : sides.feed.T_low, high = half == 0 ? T_max : sides.feed.T_high;
    // Liquid water, not ice, and cold enough for the solubility limit to agree with the equation of state.
    const double from = sides.feed.free_water ? std::max(low, 230.0) : low;
    const double to = sides.feed.free_water ? std::min(high, 450.0) : high;
    for (int k = 0; k < m; ++k) {
      const double T = from + (to - from) * (k + unit(random)) / m;
      const double P = P_min * std::pow(P_max / P_min, (place[k] + unit(random)) / m);
      states.push_back({T, P, "random"});
    }
  }
  return states;
}

}  // namespace

std::vector<State> make_states(const Feed& feed, const Components& components, const StatePlan& plan) {
  const Sides sides(feed, components);
  std::vector<State> states = critical_states(sides, plan.critical_steps);
  if (static_cast<int>(states.size()) > plan.count / 3) {  // evenly thinned
    std::vector<State> kept;
    for (size_t k = 0; k < states.size(); k += 3 * states.size() / plan.count + 1) kept.push_back(states[k]);
    states = kept;
  }
  const int tries = std::max(1, plan.count / 28);
  std::vector<std::vector<State>> found(tries);
  parallel_for(tries, plan.jobs, [&](int k) { found[k] = boundary_states(sides, plan.seed * 1000003u + k); });
  for (const auto& part : found) states.insert(states.end(), part.begin(), part.end());
  const int rest = std::max(0, plan.count - static_cast<int>(states.size()));
  const auto more = random_states(sides, rest, plan.seed * 7919u + 17);
  states.insert(states.end(), more.begin(), more.end());
  return states;
}

}  // namespace kestrune::sweep
