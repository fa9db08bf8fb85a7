// The two gases of the benchmarks and the grid of flashes.
#ifndef KESTRUNE_BENCH_GASES_HPP
#define KESTRUNE_BENCH_GASES_HPP

#include <memory>
#include <string>
#include <vector>

#include "common/mixture.hpp"

namespace kestrune::bench {

struct Gas {
  std::string name;
  tests::Mixture mixture;
  std::vector<double> feed;  // sums to one
};

/* "lean" (seven components), "rich" (ten) or "wet" (six, with water). Throws when the data files are missing.
 */
inline std::shared_ptr<Gas> gas(const std::string& name) {
  auto g = std::make_shared<Gas>();
  g->name = name;
  if (name == "wet") {
    g->mixture = tests::mixture_of({"nitrogen", "methane", "ethane", "propane", "n_butane", "water"});
    g->feed = {0.04, 0.60, 0.10, 0.08, 0.08, 0.10};
  } else {
    g->mixture = tests::mixture_of(name == "lean" ? tests::kLeanGas : tests::kRichGas);
    g->feed = name == "lean" ? tests::kLeanGasFeed : tests::kRichGasFeed;
  }
  double sum = 0.0;
  for (const double v : g->feed) sum += v;
  for (double& v : g->feed) v /= sum;
  return g;
}

// The grid: 101 temperatures in K times 150 pressures in bar.
inline constexpr int kTemperatures = 101, kPressures = 150;
inline constexpr double kAtmPerBar = 1.0 / 1.01325;
inline constexpr double kGridSize = double{kTemperatures} * kPressures;

/* visit(T in K, P in atm) for each of the 15 150 states. */
template <class Visit>
void for_each_state(Visit visit) {
  for (int i = 0; i < kTemperatures; ++i)
    for (int j = 1; j <= kPressures; ++j) visit(150.0 + 2.0 * i, j * kAtmPerBar);
}

}  // namespace kestrune::bench

#endif
