// Constants of the equation of state, in K, atm, cm3/mol: (2) of docs/method.md with R and the Omegas as the
// model has them. They are part of the model: not to be "improved".
#ifndef KESTRUNE_EOS_CONSTANTS_HPP
#define KESTRUNE_EOS_CONSTANTS_HPP

namespace kestrune::eos {

inline constexpr double kR = 82.057;                      // cm3 atm/(mol K)
inline constexpr double kOmegaA_R2 = 3078.7575250928;     // 0.45724 R^2
inline constexpr double kOmegaB_R = 6.3840346;            // 0.0778 R
inline constexpr double kCalPerCm3Atm = 0.0242173124;     // cm3 atm -> cal, 1.9872 / 82.057
inline constexpr double kResidualR = kR * kCalPerCm3Atm;  // cal/(mol K), that of the residual parts
inline constexpr double kReferenceTemperature = 298.15;   // K, of the group interactions
inline constexpr double kAtmPerMPa = 1000000.0 / 101325.0;

// The Peng-Robinson pair of the generalised cubic, and what follows from it: V^2 + u b V + w b^2 in (1) of
// docs/method.md.
inline constexpr double kU = 2.0;
inline constexpr double kW = -1.0;
inline constexpr double kS = 2.8284271247461903;  // sqrt(u^2 - 4 w)
inline constexpr double kDelta1 = 0.5 * (kU + kS);
inline constexpr double kDelta2 = 0.5 * (kU - kS);

// Volume over co-volume at the critical point of a pure component of this equation: above it a single
// phase is called gas, below it liquid.
inline constexpr double kCriticalVolumeRatio = 3.9513730355914394;

}  // namespace kestrune::eos

#endif
