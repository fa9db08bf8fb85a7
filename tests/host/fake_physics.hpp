// The constants of the toy library, for the tests that expect its answers.
#pragma once

namespace fake {

constexpr double kR = 82.057;          // cm3 atm/(mol K)
constexpr double kCal = 41.2929;       // cm3 atm in a calorie
constexpr double kT0 = 298.15;         // K
constexpr double kGasSlope = -0.002;   // Z = 1 + slope P, 1/atm
constexpr double kGasCp = 8.0;         // cal/(mol K)
constexpr double kGasCv = 6.0;         // cal/(mol K)
constexpr double kLiquidCp = 30.0;     // cal/(mol K)
constexpr double kExpansion = 1e-3;    // of the liquid, 1/K
constexpr double kCompression = 1e-4;  // of the liquid, 1/atm
constexpr double kColdest = 200.0;     // K, below it heat capacities have status 1003
constexpr double kHighest = 500.0;     // atm, above it there is no viscosity and no enthalpy of a liquid

// Bubble and dew points: none above these, another phase splits off first above the last.
constexpr double kHighestSaturation_T = 400.0;  // K
constexpr double kHighestSaturation_P = 90.0;   // atm
constexpr double kUnstable = 60.0;              // atm

// Three phases: mole fraction of water in the aqueous liquid, and below what other liquids part in two.
constexpr double kPurity = 0.95;
constexpr double kTwoLiquids = 160.0;  // K

// cm3/mol, at 298.15 K and 1 atm; elsewhere (1 + expansion (T - T0) - compression (P - 1)) times it.
constexpr double liquid_volume(int component) {
  return 50.0 + 10.0 * component;
}

}  // namespace fake
