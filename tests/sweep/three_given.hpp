// Judges the three-phase flashes at enthalpy or entropy and at vapour fraction.
#ifndef KESTRUNE_TESTS_SWEEP_THREE_GIVEN_HPP
#define KESTRUNE_TESTS_SWEEP_THREE_GIVEN_HPP
#include "caloric.hpp"
#include "three.hpp"

namespace kestrune::sweep {

// At enthalpy (cal/mol) or entropy (cal/(mol K)): the temperature and the values of A, B and vapour.
struct ThreeCaloricAnswer {
  double T = 0;
  ThreeAnswer phases;
  double values[3] = {};
};

// The question, and between which temperatures its only answer lies: at constant pressure the enthalpy and the
// entropy of a stable state rise with temperature.
struct ThreeCaloricQuestion {
  Question state;
  double value = 0;
  double T_low = 0, T_high = 0;
};

// Values of the property exports for A, B and vapour.
struct ThreeValues {
  bool known[3] = {};
  double value[3] = {};
};

struct GivenVerdict : ThreeVerdict {
  double apart = 0;    // of T, K, or of P, relative, from the value it should have
  double energy = 0;   // error of the energy balance over max(1, |value|)
  bool other = false;  // a right answer elsewhere
};

// Status, stability and names of the phases, the values reported, the energy balance, the temperature. A
// temperature that is further off than 1e-6 K is right where the energy balance holds to 1e-9: the value is
// known no better.
GivenVerdict judge_three_caloric(const ThreeCaloricQuestion& question, const ThreeCaloricAnswer& answer,
                                 const ThreeValues& values);

// At vapour fraction W: the temperature or pressure found and its phases.
struct ThreePoint {
  double found = 0;
  ThreeAnswer phases;
};

// The state of the question is that of the point found. 0 < W < 1: the judgement of the flash at T and P. W = 0
// (1): the same of the liquids (the vapour), and the phase that is about to appear lies on their plane, differs
// from them and is the least (more) densely packed one.
ThreeVerdict judge_three_point(const Question& question, double W, const ThreePoint& point);

}  // namespace kestrune::sweep

#endif
