// Judges envelopes and critical points against the model of the sweep, which shares nothing with the library.
#ifndef KESTRUNE_TESTS_ENVELOPE_JUDGE_HPP
#define KESTRUNE_TESTS_ENVELOPE_JUDGE_HPP
#include <string>
#include <vector>

#include "model.hpp"

namespace kestrune::envelopes {

struct Curve {
  int status = 0, criticals = 0;
  std::vector<double> T, P, kind;
  double extremes[4] = {};  // cricondentherm T, P, cricondenbar T, P
};

struct CurveVerdict {
  int stable = 0, wrong = 0;  // points that are said to be stable, and those of them that are not the boundary
  double lowest = 0;          // tangent-plane distance met on stable points
  std::string reason;         // of the first wrong one
};

// Every point marked as stable: nothing splits off on it (distance above -1e-8), and something does just
// inside.
CurveVerdict judge_curve(const sweep::Components& components, const std::vector<double>& z, const Curve& curve);

struct CriticalConditions {
  double eigenvalue = 0,
         form = 0;  // of d ln f_i/d n_j at constant T and V, scaled with sqrt(z), and along its vector
  double tpd = 0;
};

// Both conditions at T and V (cm3/mol), from fugacities and differences in long double; the lowest distance at
// P.
CriticalConditions judge_critical(const sweep::Components& components, const std::vector<double>& z, double T,
                                  double P, double V);

}  // namespace kestrune::envelopes

#endif
