// Judges an answer of the three-phase flash against the model, from the answer alone.
#ifndef KESTRUNE_TESTS_SWEEP_THREE_HPP
#define KESTRUNE_TESTS_SWEEP_THREE_HPP
#include <string>

#include "reduced.hpp"

namespace kestrune::sweep {

// What the flash returned: a the lighter liquid with the share beta, y the vapour with the share V, b the
// denser liquid with the rest; [n] of the full mixture.
struct ThreeAnswer {
  int status = 0;
  double beta = 0, V = 0;
  Composition a, b, y, kll, klv;
  double seconds = 0;  // that the call took

  double rest() const { return 1 - beta - V; }
};

// Which phases have a share. Of three phases that an answer may leave empty, liquid A never stands alone beside
// a vapour: the liquid of a liquid-vapour answer is B. A status is no layout.
enum class Layout { none, one, liquid_vapour, two_liquids, three };

Layout layout_of(const ThreeAnswer& answer);

// 0 for none.
int phase_count(Layout layout);

// A phase of an answer, reduced to the components of the feed.
struct PresentPhase {
  char name = 'B';  // A, B or V
  double share = 0;
  Composition w;
  Phase<long double> state;  // at its root of lower Gibbs energy
  double volume_ratio = 0;   // v/b
  double mass_density = 0;   // g/cm3
};

struct ThreeVerdict {
  std::string group;   // what is wrong, without numbers; empty when right
  std::string reason;  // the same with numbers
  Layout layout = Layout::none;
  double balance = 0;   // largest residual of a material balance
  double fugacity = 0;  // largest ln fugacity difference
  double tpd = 0;       // lowest tangent-plane distance met
};

// Below this mole fraction a component may be given any fraction, as long as the true one is no larger than ten
// times this.
inline constexpr double least_fraction = 1e-14;

// The full judgement. The question's FreeWaterFlag is not looked at; names: whether a vapour is one has to hold too.
ThreeVerdict judge_three(const Question& question, const ThreeAnswer& answer, bool names = true);

// The composition full[n] of the feed's mixture as a phase of the state asked.
PresentPhase phase_of(const Question& question, const Reduced& r, char name, double share,
                      const Composition& full);

// Whether the phase is a gas to the property exports: where it has two roots, the one of lower Gibbs energy
// says so, else its name.
bool is_gas(const PresentPhase& phase);

// The phases that have a share, A before B before V.
std::vector<PresentPhase> present_phases(const Question& question, const Reduced& r, const ThreeAnswer& answer);

// The tangent plane of the phases: that of a component comes from the phase that holds most of it.
Plane common_plane(const Reduced& r, const std::vector<PresentPhase>& phases);

// Lowest tangent-plane distance from many starts: those of starting_points, every component half and half with
// the feed, and further random compositions.
double lowest_distance(const Reduced& r, double P, const Plane& plane);

// Largest difference of ln fugacities between the phases and their plane; reports a component that is all but
// missing in a phase where it should not be as 1e300.
double fugacity_difference(const Plane& plane, const std::vector<PresentPhase>& phases);

// Largest difference of the shares of two answers.
double shares_apart(const ThreeAnswer& p, const ThreeAnswer& q);

// How far the two phases that are most alike are apart: largest difference of a mole fraction; 1 for one phase.
double closest_phases(const Question& question, const ThreeAnswer& answer);

}  // namespace kestrune::sweep

#endif
