// Judges an answer of the liquid-vapour flash against the model, from the answer alone.
#ifndef KESTRUNE_TESTS_SWEEP_JUDGE_HPP
#define KESTRUNE_TESTS_SWEEP_JUDGE_HPP
#include <string>

#include "split.hpp"

namespace kestrune::sweep {

// What the flash returned. x liquid, y vapour, [n] of the full mixture.
struct Answer {
  int status = 0;
  double beta = 0;
  Composition x, y, K;
};

// One question: the feed z[n] (zeros allowed) of the components at T (K) and P (atm).
struct Question {
  const Components* components = nullptr;
  Composition z;
  double T = 0, P = 0;
  bool free_water = false;
  double solubility_a = 0, solubility_b = 0;
};

enum class Outcome { single_phase, two_phase, three_phase_state, wrong, failed };

struct Verdict {
  Outcome outcome = Outcome::wrong;
  std::string reason;   // empty unless wrong or failed
  double balance = 0;   // largest residual of a material balance
  double fugacity = 0;  // largest ln fugacity difference judged
  double tpd = 0;       // lowest tangent-plane distance met
  int clamped = 0;  // components whose K stands at its bound of 1e-15 or 1e15, beyond which the true one lies
};

// Tolerances of the judge.
inline constexpr double balance_tolerance = 1e-10;
inline constexpr double fugacity_tolerance = 1e-8;
inline constexpr double tpd_tolerance = 1e-8;
inline constexpr double gibbs_tolerance = 1e-9;
inline constexpr double vapour_volume_ratio = 3.9514;  // v/b above which a single phase is called vapour

inline constexpr double critical_pressure_of_water =
    217.754750;  // atm; above it a retry goes without free water

// The full judgement. A question with free_water goes by the rules of liquid water, see free_water.cpp.
Verdict judge(const Question& question, const Answer& answer);

// Parts of it.
Verdict judge_equation_of_state(const Question& question, const Answer& answer);
Verdict judge_free_water(const Question& question, const Answer& answer);
// The same of a point at a given vapour fraction: at 0 and 1 the incipient phase is one that is there.
Verdict judge_free_water_point(const Question& question, const Answer& answer);

// Sums, signs, range of beta and material balance; a non-empty reason when one is off.
std::string check_balance(const Question& question, const Answer& answer, double& residual);

}  // namespace kestrune::sweep

#endif
