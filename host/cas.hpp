// CAS numbers, without hyphens, of the components that are treated by what they are.
#ifndef KESTRUNE_HOST_CAS_HPP
#define KESTRUNE_HOST_CAS_HPP

#include <cstdint>

namespace kestrune::host::cas {

inline constexpr std::int32_t kWater = 7732185, kAmmonia = 7664417, kMethanol = 67561, kMEG = 107211,
                              kDEG = 111466, kTEG = 112276;
inline constexpr std::int32_t kHydrogen = 1333740, kHelium = 7440597, kNitrogen = 7727379, kOxygen = 7782447,
                              kArgon = 7440371, kCO = 630080, kCO2 = 124389, kH2S = 7783064, kMethane = 74828;

}  // namespace kestrune::host::cas

#endif
