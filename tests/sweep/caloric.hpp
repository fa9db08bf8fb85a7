// Judges flashes at given enthalpy or entropy by the round trip from temperature and back.
#ifndef KESTRUNE_TESTS_SWEEP_CALORIC_HPP
#define KESTRUNE_TESTS_SWEEP_CALORIC_HPP
#include <functional>
#include <string>

#include "judge.hpp"

namespace kestrune::sweep {

enum class Quantity { enthalpy, entropy };

// What the library returned. phases.status holds the status.
struct CaloricAnswer {
  double T = 0;  // K
  Answer phases;
  double liquid = 0, vapour = 0;  // enthalpy (cal/mol) or entropy (cal/(mol K)) of the phases
  double seconds = 0;             // that the call took
};

// The question and what its right answer is known to be.
struct CaloricQuestion {
  Quantity quantity = Quantity::enthalpy;
  Question state;      // with the temperature that the value was made from
  double value = 0;    // cal/mol or cal/(mol K)
  double beta = 0;     // vapour fraction that the value was made from
  bool sharp = true;   // the temperature determines beta; else both have to come back
  bool given = false;  // a value that was not made from a state: any state that has it is right
};

// Whether the property exports are asked for a gas: where the phase w has two roots, the one of lower Gibbs
// energy says so, else its name. With free water, and for phases of the same composition, always its name.
bool asks_gas(const Question& state, double T, const Answer& phases, bool vapour);

// Values of the property exports at the temperature and the compositions of the answer.
struct PhaseValues {
  bool liquid_known = false, vapour_known = false;
  double liquid = 0, vapour = 0;
};

struct CaloricVerdict : Verdict {
  std::string group;         // what is wrong, without numbers; empty when right
  double apart = 0;          // |T - T0|, K
  double energy = 0;         // error of the balance over max(|value|, R T or R)
  bool other_state = false;  // another temperature with the same value, which only free water allows
};

inline constexpr double caloric_temperature_tolerance = 1e-6;  // K
inline constexpr double caloric_balance_tolerance = 1.1e-9;    // of the value or of R T or R

CaloricVerdict judge_caloric(const CaloricQuestion& question, const CaloricAnswer& answer,
                             const PhaseValues& values);

// Whether no temperature has the value: the two sides of it are states of different pairs of phases. value_at
// is that of a state at T by the property exports.
bool lies_in_jump(const CaloricQuestion& question,
                  const std::function<double(double, const Answer&)>& value_at);

}  // namespace kestrune::sweep

#endif
