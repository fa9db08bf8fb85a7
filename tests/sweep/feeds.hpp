// The mixtures of the sweep.
#ifndef KESTRUNE_TESTS_SWEEP_FEEDS_HPP
#define KESTRUNE_TESTS_SWEEP_FEEDS_HPP
#include <string>
#include <vector>

namespace kestrune::sweep {

struct Feed {
  std::string name;
  std::vector<std::string> ids;  // of components.csv
  std::vector<double> z;         // mole fractions, sum 1
  double T_low, T_high;          // K, where the phase boundaries are
  bool free_water = false;
  double solubility_a = 0, solubility_b = 0;
};

std::vector<Feed> all_feeds();

// Feeds that are hard at given values beside those: nearly pure, azeotropes, wide gaps in volatility, several
// liquids.
std::vector<Feed> value_feeds();

}  // namespace kestrune::sweep

#endif
