// What the correlation of hydrates was made from.
#ifndef KESTRUNE_HOST_HYDRATE_RANGE_HPP
#define KESTRUNE_HOST_HYDRATE_RANGE_HPP

#include <cstdint>
#include <string>
#include <vector>

#include "mixture.hpp"

namespace kestrune::host {

// Sweet natural gas between these, without inhibitor (the range of the data that Bahadori and Vuthaluru, J. Natural Gas
// Chem. 18 (2009), state for the same chart).
inline constexpr double kHydrateLowestT = 265.0, kHydrateHighestT = 298.0;  // K
inline constexpr double kHydrateLowestP = 12e5, kHydrateHighestP = 400e5;   // Pa

// What a gas and its inhibitor (kind of HydrateLine, percent by mass of the solution) are that it was not made for.
std::vector<std::string> hydrate_warnings(const Mixture& mixture, std::int32_t inhibitor, double percent);

}  // namespace kestrune::host

#endif
