// Random natural gases: lean and rich, dry and sour, with and without heavy ends.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace kestrune::envelopes {

struct Gas {
  std::vector<std::string> ids;  // of components.csv
  std::vector<double> z;         // mole fractions, sum 1
  bool sour = false, heavy = false;
};

// The same gas for the same seed and number.
Gas random_gas(uint64_t seed, int number);

}  // namespace kestrune::envelopes
