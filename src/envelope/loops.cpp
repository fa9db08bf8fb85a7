// Loops of the outline: beside a critical end point the line of one phase can turn at two cusps and cross
// itself. What lies between is not stable; the boundary turns at the crossing, where both phases begin to form
// at once.

#include <algorithm>
#include <cmath>

#include "envelope/outline.hpp"

namespace kestrune::envelope {
namespace {

using flash::LinePoint;

constexpr int kChords = 24;     // of a step, in which crossings are looked for
constexpr int kNeighbours = 8;  // steps on either side of the part that is known not to be stable
constexpr int kNewtonLimit = 15;
constexpr double kMet = 1e-10;   // ln T and ln P of both points of the crossing
constexpr double kClose = 1e-5;  // of them, from where the crossing is solved for by the temperature
constexpr double kBeyond = 0.1;  // part of a step by which Newton's method may leave it

// A place on the outline: a part of the step to a node.
struct Place {
  int node;
  double part;
};

struct Plane {
  double T, P;
};

// A step of the outline as chords of its cubic, in 10 ln T and ln P.
void chords(const Tracer& t, int k, Plane* at) {
  const LinePoint a = point_of(t.node[k - 1]), b = point_of(t.node[k]);
  const flash::Cubic T = flash::between(a, b, t.line.T_index(), t.node[k].held);
  const flash::Cubic P = flash::between(a, b, t.line.P_index(), t.node[k].held);
  for (int i = 0; i <= kChords; ++i) {
    const double part = static_cast<double>(i) / kChords;
    at[i] = {10.0 * T.at(part), P.at(part)};
  }
}

// Where the chord a0 a1 crosses b0 b1, in parts of both.
bool chords_cross(const Plane& a0, const Plane& a1, const Plane& b0, const Plane& b1, double& of_a,
                  double& of_b) {
  const double aT = a1.T - a0.T, aP = a1.P - a0.P, bT = b1.T - b0.T, bP = b1.P - b0.P;
  const double dT = b0.T - a0.T, dP = b0.P - a0.P, det = bT * aP - aT * bP;
  if (det == 0.0) return false;
  of_a = (bT * dP - bP * dT) / det;
  of_b = (aT * dP - aP * dT) / det;
  return of_a >= 0.0 && of_a <= 1.0 && of_b >= 0.0 && of_b <= 1.0;
}

// The crossing of the steps to two nodes.
bool steps_cross(const Tracer& t, int j, int k, Place& a, Place& b) {
  Plane of_j[kChords + 1], of_k[kChords + 1];
  chords(t, j, of_j);
  chords(t, k, of_k);
  for (int i = 0; i < kChords; ++i)
    for (int l = kChords - 1; l >= 0; --l) {
      if (j + 1 == k && i + 1 == kChords && l == 0) continue;  // their common node
      double part_a, part_b;
      if (!chords_cross(of_j[i], of_j[i + 1], of_k[l], of_k[l + 1], part_a, part_b)) continue;
      a = {j, (i + part_a) / kChords};
      b = {k, (l + part_b) / kChords};
      return true;
    }
  return false;
}

// The point at a place, and how its ln T and ln P change with the part.
bool point_at(Tracer& t, const Place& at, LinePoint& p, Plane& change) {
  const Node &a = t.node[at.node - 1], &b = t.node[at.node];
  keep_roots(t, b);
  if (!solve_on_way(t, point_of(a), point_of(b), b.held, at.part, p)) return false;
  const double length = (b.X[b.held] - a.X[b.held]) / p.slope[b.held];
  change = {length * p.slope[t.line.T_index()], length * p.slope[t.line.P_index()]};
  return true;
}

// A place moved along its step, to the one beside it where it leaves it.
void move(const Tracer& t, Place& at, double step) {
  at.part += step;
  if (at.part > 1.0 + kBeyond && at.node + 1 < t.count && t.node[at.node + 1].held >= 0)
    at = {at.node + 1, 0.0};
  else if (at.part < -kBeyond && at.node > 1 && t.node[at.node - 1].held >= 0)
    at = {at.node - 1, 1.0};
  else
    at.part = std::clamp(at.part, -kBeyond, 1.0 + kBeyond);
}

/*
 * The crossing beside a critical point, where the part says little of T and P: t.corner follows the temperature
 * of the place b instead. Keeps the best that it comes to.
 */
bool meet_at_temperature(Tracer& t, const Place& a, Place& b) {
  constexpr int kSteps = 6;
  const int iT = t.line.T_index(), iP = t.line.P_index();
  for (int k = 0; k < kSteps; ++k) {
    Plane of_b;
    if (!point_at(t, b, t.branch, of_b)) return false;
    keep_roots(t, t.node[a.node]);
    if (flash::solve_point(t.line, t.corner, iT, t.branch.X[iT], flash::kWalkNewtonLimit, true, t.status) !=
        flash::Solved::yes)
      return false;
    const double gap = t.branch.X[iP] - t.corner.X[iP];
    if (std::fabs(gap) < kMet) return true;
    b.part -= gap / (of_b.P - t.corner.slope[iP] / t.corner.slope[iT] * of_b.T);
    if (!(std::fabs(b.part - 0.5) < 0.5 + kBeyond)) return false;
  }
  return true;
}

// Newton's method on both parts: the points of the two places, t.corner and t.branch, come to have T and P in
// common.
bool meet(Tracer& t, Place& a, Place& b) {
  const int iT = t.line.T_index(), iP = t.line.P_index();
  for (int k = 0; k < kNewtonLimit; ++k) {
    Plane of_a, of_b;
    if (!point_at(t, a, t.corner, of_a) || !point_at(t, b, t.branch, of_b)) return false;
    const double dT = t.branch.X[iT] - t.corner.X[iT], dP = t.branch.X[iP] - t.corner.X[iP];
    const double gap = std::max(std::fabs(dT), std::fabs(dP));
    if (gap < kMet) return true;
    if (gap < kClose && k > kNewtonLimit / 2) return meet_at_temperature(t, a, b);
    const double det = of_b.T * of_a.P - of_a.T * of_b.P;
    const double step_a = (of_b.T * dP - of_b.P * dT) / det, step_b = (of_a.T * dP - of_a.P * dT) / det;
    if (!(std::fabs(step_a) < 1e3 && std::fabs(step_b) < 1e3)) return false;
    move(t, a, step_a);
    move(t, b, step_b);
  }
  return false;
}

// Whether the crossing is a corner: two phases that differ, and nothing that splits off before them.
bool is_corner(Tracer& t) {
  constexpr double kApart = 1e-3;
  double apart = 0.0;
  for (int i = 0; i < t.line.n; ++i)
    if (t.line.z[i] > 0.0) apart = std::max(apart, std::fabs(t.corner.X[i] - t.branch.X[i]));
  if (apart < kApart) return false;
  keep_roots(t, t.corner);
  return stable_at(t, t.corner);
}

// Puts the corner and the start of what follows in place of the nodes between them.
bool cut(Tracer& t, const Place& a, const Place& b) {
  const int end = a.node + (a.part > 1.0 ? 1 : a.part < 0.0 ? -1 : 0);
  const int next = b.node + (b.part > 1.0 ? 1 : b.part < 0.0 ? -1 : 0);
  const int before = t.count;
  if (end < 1 || next <= end || next >= before || t.node[end].held < 0 || t.node[next].held < 0) return false;
  const auto kind = [&](int k) { return t.node[k].critical ? t.node[k - 1].kind : t.node[k].kind; };
  keep_roots(t, t.corner);
  if (!push(t, t.corner, t.node[end].held, kind(end))) return false;
  keep_roots(t, t.branch);
  if (!push(t, t.branch, -1, kind(next))) {
    t.count = before;
    return false;
  }
  t.node[before].corner = true;
  // The two new ones go before the node next, and what is between is dropped from the end.
  std::rotate(t.node + next, t.node + before, t.node + t.count);
  std::rotate(t.node + end, t.node + next, t.node + t.count);
  t.count -= next - end;
  return true;
}

// The loop whose nodes from bad to last are not stable.
bool cut_loop(Tracer& t, int bad, int last) {
  int first = bad, end = last + 1;
  while (first > bad - kNeighbours && first > 1 && t.node[first - 1].held >= 0) --first;
  while (end < last + 1 + kNeighbours && end + 1 < t.count && t.node[end + 1].held >= 0) ++end;
  for (int j = first; j <= last; ++j)
    for (int k = end; k > std::max(j, bad); --k) {
      Place a, b;
      if (!steps_cross(t, j, k, a, b) || !meet(t, a, b)) continue;
      if (is_corner(t)) return cut(t, a, b);
    }
  return false;
}

}  // namespace

void cut_loops(Tracer& t) {
  for (int k = 1; k < t.count; ++k) {
    if (t.node[k].stable || t.node[k].held < 0) continue;
    int last = k;
    while (last + 1 < t.count && t.node[last + 1].held >= 0 && !t.node[last + 1].stable) ++last;
    const bool ends = last + 1 < t.count && t.node[last + 1].held >= 0 && t.node[k - 1].stable;
    k = ends && cut_loop(t, k, last) ? std::max(0, k - kNeighbours) : last;
  }
}

}  // namespace kestrune::envelope
