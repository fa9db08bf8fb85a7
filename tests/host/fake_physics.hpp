// The constants of the toy library, for the tests that expect its answers.
#pragma once

namespace fake {

constexpr double kR = 82.057;         // cm3 atm/(mol K)
constexpr double kGasSlope = -0.002;  // d ln phi/dP of every component in the gas, 1/atm
constexpr double liquid_volume(int component) {
  return 50.0 + 10.0 * component;
}  // cm3/mol

}  // namespace fake
