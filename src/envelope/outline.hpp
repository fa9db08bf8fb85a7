// The outline of the two-phase region under way: nodes that were traced, and what the steps of the tracer
// share.
//
// Every point is one of the line of vapour fraction 1 (or of a quality line): y is the feed and x what begins
// to form beside it, liquid on the dew side and vapour on the bubble side.
#ifndef KESTRUNE_ENVELOPE_OUTLINE_HPP
#define KESTRUNE_ENVELOPE_OUTLINE_HPP

#include "envelope/spinodal.hpp"
#include "flash/quality/line_walk.hpp"

namespace kestrune::envelope {

// Kinds of points, of a host's array too. kLiquids: the feed is a liquid, and another liquid begins to form.
// The kind of a point that is not stable is larger by kNotStable.
inline constexpr double kDew = 1.0, kBubble = 0.0, kCritical = 0.5, kLiquids = 4.0;
inline constexpr double kNotStable = 2.0;

struct Node {
  double *X = nullptr, *slope = nullptr;  // [n + 2] as those of a LinePoint
  int held = -1;                          // unknown of the step from the node before; -1: the line begins here
  double kind = kDew;
  flash::Kind root_x = flash::Kind::stable, root_y = flash::Kind::stable;
  bool stable = true;
  bool critical = false, corner = false, extreme = false;
  bool lowest = false;   // pressure along the line
  bool liquids = false;  // on a branch of two liquids
};

// Why a line ends.
enum class End {
  closed,    // back at the first pressure, or at the critical point for a quality line
  joined,    // on a line that was traced before
  pressure,  // highest pressure
  cold,      // lowest temperature
  broken,    // no further point converges
  full       // no room for nodes
};

struct Limits {
  double first_P, highest_P, lowest_T;  // logarithms
};

inline constexpr int kMostNodes = 400, kMostCorners = 12;

struct Tracer {
  explicit Tracer(flash::QualityLine& l) : line(l) {}

  flash::QualityLine& line;
  Spinodal* spinodal = nullptr;  // null with a host's fugacity routine
  Limits limits{};
  Node* node = nullptr;  // [kMostNodes], their arrays taken
  int count = 0;
  flash::LinePoint here, last, next, probe, branch, corner, spare;
  double *trial = nullptr, *trial_K = nullptr;  // [ld] what the last stability test found
  double* lengths = nullptr;                    // [kMostNodes] along the outline
  support::SplineFit fit = support::SplineFit::good;
  int corners = 0;
  bool liquids = false;  // some part of it is that of two liquids
  StatusCode status = KV_OK;

  bool boundary() const { return line.W == 1.0; }
};

/* The node as a point of the line: unknowns and slopes only. */
inline flash::LinePoint point_of(const Node& node) {
  flash::LinePoint p;
  p.X = node.X;
  p.slope = node.slope;
  return p;
}

/*
 * The roots of the cubic that the phases of p have, by their packing, become those of the line: a line is
 * followed smoothly also where the other root is the stable one.
 */
void keep_roots(Tracer& t, const flash::LinePoint& p);
inline void keep_roots(Tracer& t, const Node& node) {
  t.line.root_x = node.root_x;
  t.line.root_y = node.root_y;
}

/* Adds p at the end, with the roots of the line. False without room. */
bool push(Tracer& t, const flash::LinePoint& p, int held, double kind);

/*
 * Follows the line from the converged point t.here, sign 1 towards higher pressure, until it ends; phase is
 * kDew or kBubble for what the feed is there, and stable whether it is. Critical points on the way become
 * nodes. Where the feed loses its stability the walk goes on along the branch of the phase that splits off;
 * where none is found the nodes are marked. seen: nodes of an earlier line that this one may run into.
 */
End walk(Tracer& t, double phase, double sign, bool stable, int seen);

/* The point between a and b (converged, held apart) where the unknown index has the value, into out. */
bool solve_between(Tracer& t, const flash::LinePoint& a, const flash::LinePoint& b, int held, int index,
                   double value, flash::LinePoint& out);

/* The point at a part part of the way from a to b, solved with their unknown held, into out. */
bool solve_on_way(Tracer& t, const flash::LinePoint& a, const flash::LinePoint& b, int held, double part,
                  flash::LinePoint& out);

/*
 * Stability of the feed (of both phases on a quality line) at a point; compositions are filled in. On false
 * t.trial_K holds the ln K of the phase that splits off. A status of the model goes to t.status.
 */
bool stable_at(Tracer& t, flash::LinePoint& p);

/*
 * Changes over to the branch of the phase that splits off at node number bad, the first one that is not stable:
 * drops it and what follows, adds the corner, and leaves the start of the new branch in t.here. sign receives
 * its direction, phase the kind of its points. False: nothing was changed.
 */
bool change_over(Tracer& t, int bad, double& sign, double& phase);

/* Cuts off the parts that are not stable between two crossings of the line with itself. */
void cut_loops(Tracer& t);

/*
 * Names the kinds of all nodes by branches, and adds nodes at the lowest pressures between them. On a branch of
 * two liquids both phases are packed more densely than a critical phase (b/V above 1/3.95) at every node.
 */
void name_branches(Tracer& t);

/* The zero of the slope of T or P (index) on the step to a node, into t.probe. */
bool solve_extreme(Tracer& t, int segment, int index);

/* Adds p in front of node number at; nothing when there is no room. */
void insert_node(Tracer& t, int at, const flash::LinePoint& p, int held, double kind);

/* The highest extreme of T or P (index) inside the lines, their ends and those of two liquids left out; its
 * node is added. */
bool find_extreme(Tracer& t, int index, double& T, double& P);

/* The node as a host's point. */
void write_node(const Tracer& t, int k, double* T, double* P, double* kind);

/*
 * Points of the outline, evenly spaced in arc length, each converged; T, P, kind [wanted], their number
 * returned. Critical points, extremes, corners and ends are among them.
 */
int even_points(Tracer& t, int wanted, double* T, double* P, double* kind);

}  // namespace kestrune::envelope

#endif
