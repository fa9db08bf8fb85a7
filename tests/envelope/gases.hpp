// Random natural gases: lean and rich, dry and sour, with and without heavy ends.
#ifndef KESTRUNE_TESTS_ENVELOPE_GASES_HPP
#define KESTRUNE_TESTS_ENVELOPE_GASES_HPP
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

#endif
