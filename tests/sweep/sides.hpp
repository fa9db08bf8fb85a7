// On which side of a phase boundary a state lies, and boundaries and critical points found with that.
#ifndef KESTRUNE_TESTS_SWEEP_SIDES_HPP
#define KESTRUNE_TESTS_SWEEP_SIDES_HPP
#include "feeds.hpp"
#include "search.hpp"

namespace kestrune::sweep {

struct Sides {
  const Feed& feed;
  Components components;  // those that are there
  Composition z;          // [components.n]
  int water = -1;

  Sides(const Feed& feed, const Components& all);

  // A pure or nearly pure feed splits, if at all, within a hair of where its vapour turns into liquid.
  bool nearly_pure() const;

  // One phase (false) or more (true); nearly pure: vapour or liquid. hint holds the last unstable trial.
  bool split(double T, double P, Composition& hint) const;

  // The boundary between two values of ln P or T that lie on different sides, by halving.
  double between(double fixed, double a, double b, bool vary_pressure, bool side_a, int steps) const;

  // The uppermost pressure up to P_top at which the feed splits, and whether the new phase is lighter than the
  // feed. False when there is none.
  bool top_of_envelope(double T, double P_top, double& P, bool& lighter) const;

  // Critical point: along the top of the envelope the new phase turns from lighter (bubble) to heavier (dew).
  // steps halvings of the temperature interval. False when there is none at pressures up to P_top.
  bool critical_point(double P_top, int steps, double& T, double& P) const;
};

}  // namespace kestrune::sweep

#endif
