#include "three_states.hpp"

#include <algorithm>
#include <cmath>
#include <random>

#include "states.hpp"

namespace kestrune::sweep {
namespace {

constexpr int draws_per_state = 15;
constexpr int batch = 128;  // calls between two looks at the quota

struct Generator {
  const System& system;
  std::mt19937_64 random;
  std::uniform_real_distribution<double> unit{0, 1};

  Generator(const System& s, uint64_t seed) : system(s), random(seed) {}

  double temperature() { return system.feed.T_low + (system.feed.T_high - system.feed.T_low) * unit(random); }

  // Half evenly in the logarithm.
  double pressure() {
    const double low = system.P_low, high = system.P_high, u = unit(random);
    return unit(random) < 0.5 ? low + (high - low) * u : low * std::pow(high / low, u);
  }

  // The typical feed, feeds around it, feeds of any composition, and those with a trace or without a component.
  Composition feed() {
    Composition z = system.feed.z;
    const double sort = unit(random);
    if (sort < 0.3) return z;
    std::exponential_distribution<double> draw(1.0);
    for (double& v : z) v = (sort < 0.6 ? v : sort < 0.85 ? std::sqrt(v) : 1.0) * (draw(random) + 1e-3);
    if (unit(random) < 0.15) {
      const size_t k = random() % z.size();
      z[k] = z.size() > 2 && unit(random) < 0.3 ? 0 : std::pow(10.0, -12 + 9 * unit(random));
    }
    double total = 0;
    for (double v : z) total += v;
    for (double& v : z) v /= total;
    return z;
  }

  // A state close to another.
  ThreeState close_to(const ThreeState& known) {
    ThreeState drawn;
    const double reach = std::pow(10.0, -1 - 2 * unit(random));
    const auto factor = [&] { return 1 + reach * (2 * unit(random) - 1); };
    drawn.kind = "close";
    drawn.T = known.T * (1 + 0.2 * (factor() - 1));
    drawn.P = known.P * factor();
    drawn.z = known.z;
    double total = 0;
    for (double& v : drawn.z) total += v *= factor();
    for (double& v : drawn.z) v /= total;
    return drawn;
  }

  ThreeState state() {
    ThreeState drawn;
    drawn.T = temperature();
    drawn.P = pressure();
    drawn.z = feed();
    return drawn;
  }
};

// Two states across a change of layout between a random state and another T or P with the same feed; none when
// there is no change.
std::vector<ThreeState> across_boundary(const System& system, uint64_t seed, const Ask& ask) {
  Generator generator(system, seed);
  const ThreeState near = generator.state();
  ThreeState far = near;
  const bool by_pressure = generator.unit(generator.random) < 0.5;
  (by_pressure ? far.P : far.T) = by_pressure ? generator.pressure() : generator.temperature();
  const Layout side = layout_of(ask(near.T, near.P, near.z));
  if (layout_of(ask(far.T, far.P, far.z)) == side) return {};
  double a = by_pressure ? near.P : near.T, b = by_pressure ? far.P : far.T;
  for (int k = 0; k < 40; ++k) {
    const double middle = 0.5 * (a + b);
    const ThreeAnswer answer = by_pressure ? ask(near.T, middle, near.z) : ask(middle, near.P, near.z);
    (layout_of(answer) == side ? a : b) = middle;
  }
  std::vector<ThreeState> found;
  for (double sign : {1.0, -1.0}) {
    const double offset = sign * std::pow(10.0, -2 - 8 * generator.unit(generator.random));
    ThreeState& state = found.emplace_back(near);
    state.kind = "boundary";
    (by_pressure ? state.P : state.T) = a * (1 + offset);
    state.answer = ask(state.T, state.P, state.z);
  }
  return found;
}

// Keeps a third each as long as there is choice; what was left over fills up at the end.
struct Quota {
  size_t wanted, each;
  Sample& sample;
  size_t kept[4] = {};
  std::vector<ThreeState> spare = {};

  void offer(ThreeState&& state) {
    const int phases = phase_count(layout_of(state.answer)), number = state.answer.status == 0 ? phases : 0;
    sample.seconds[number].push_back(state.answer.seconds);
    if (full()) return;
    if (kept[number] < each) {
      ++kept[number];
      sample.states.push_back(std::move(state));
    } else if (spare.size() < wanted) {
      spare.push_back(std::move(state));
    }
  }

  bool full() const { return sample.states.size() >= wanted; }

  void fill_up() {
    for (ThreeState& state : spare) {
      if (full()) return;
      sample.states.push_back(std::move(state));
    }
  }
};

}  // namespace

std::vector<ThreeState> draw_states(const System& system, int count, uint64_t seed) {
  Generator generator(system, seed);
  std::vector<ThreeState> drawn;
  for (int k = 0; k < count; ++k) drawn.push_back(generator.state());
  return drawn;
}

Sample sample_states(const System& system, const SamplePlan& plan, const Ask& ask) {
  Sample sample;
  const size_t count = plan.count, at_boundaries = count / 4;
  Quota random{count - at_boundaries, (count - at_boundaries) / 3 + 1, sample};
  Generator generator(system, plan.seed);
  const auto draw = [&](const auto& make) {
    std::vector<ThreeState> drawn;
    for (int k = 0; k < batch; ++k) drawn.push_back(make(k));
    parallel_for(batch, plan.jobs, [&](int k) { drawn[k].answer = ask(drawn[k].T, drawn[k].P, drawn[k].z); });
    for (ThreeState& state : drawn) random.offer(std::move(state));
    sample.tries += batch;
  };
  const int most = draws_per_state * plan.count;
  while (!random.full() && sample.tries < most) draw([&](int) { return generator.state(); });
  std::vector<ThreeState> known;
  for (const ThreeState& state : sample.states) {
    if (layout_of(state.answer) == Layout::three) known.push_back(state);
  }
  while (!known.empty() && !random.full() && sample.tries < 2 * most)
    draw([&](int k) { return generator.close_to(known[k % known.size()]); });
  random.fill_up();
  for (int round = 0; round < 40 && sample.states.size() < count; ++round) {
    std::vector<std::vector<ThreeState>> found(batch);
    parallel_for(batch, plan.jobs, [&](int k) {
      found[k] = across_boundary(system, plan.seed * 1000003u + round * 4096u + k, ask);
    });
    for (auto& part : found) {
      for (ThreeState& state : part) {
        if (sample.states.size() < count) sample.states.push_back(std::move(state));
      }
    }
  }
  return sample;
}

}  // namespace kestrune::sweep
