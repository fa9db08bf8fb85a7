// The search for the temperature or pressure at which the vapour of an equilibrium of up to three phases has a
// given part. Private to the flashes at vapour fraction.
#ifndef KESTRUNE_FLASH3_QUALITY_SEARCH_HPP
#define KESTRUNE_FLASH3_QUALITY_SEARCH_HPP

#include <algorithm>

#include "flash3/specified.hpp"
#include "flash3/three_quality.hpp"

namespace kestrune::flash3 {

inline constexpr double kDefaultT = 298.15, kDefaultP = 1.0;
inline constexpr int kDeepest = 10;      // halvings between two states where something happens
inline constexpr int kMostChanges = 60;  // states that are looked at for no more than other phases

// A state on the way: the unknown, the vapour less W, and the phases.
struct Node {
  double u = 0.0, f = 0.0;
  bool cut = false;  // by a fourth phase
  Phases p;
  double V(double W) const { return std::clamp(f + W, 0.0, 1.0); }
};

struct QualitySearch {
  const ThreeQualityCall& call;
  Equilibrium e;
  Specified s;
  double W = 0.0;
  bool of_T = true;
  double u = 0.0;  // the unknown
  StatusCode status = KV_OK;
  Phases incipient;  // the phases of the answer with the one of no amount
  Phases reached;    // where a walk has got to
  Phases joined;     // of two nodes
  // The outermost nodes to both sides, the next one, and those between two of them, by depth; the last two are
  // the ends of a bracket that closes.
  Node outer[2], fresh, between[kDeepest + 2];
  int changes = kMostChanges;
  bool two_liquids = false;  // were seen without a vapour
  int failed_walks = 0;

  double T_of(double at) const { return of_T ? at : call.given; }
  double P_of(double at) const { return of_T ? call.given : at; }
};

/* Makes the conditions those of the unknown u. False: q.status. */
bool move_to(QualitySearch& q, double u);

/*
 * Newton at the phases of e.p from u for a part W of vapour, which is one of them; without those that end with
 * less than nothing. True: e.p at q.u is a solution.
 */
bool solve_at_phases(QualitySearch& q, double u, double W);

/*
 * The gate: e.p at u is an equilibrium that nothing cuts, of which the least densely packed phase, the vapour,
 * has the part W. Beyond a critical point it is another one that has it. The answer with its incipient phase is
 * then in q.incipient.
 */
bool accept(QualitySearch& q);

/* Outwards from q.u. KV_OK: the answer; KV_NO_SATURATION: none was met. Others: of the model. */
StatusCode search(QualitySearch& q);

}  // namespace kestrune::flash3

#endif
