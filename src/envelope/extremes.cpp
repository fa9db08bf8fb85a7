// Cricondentherm and cricondenbar: the extreme itself is solved for, as a zero of the slope along the line.

#include <algorithm>
#include <cmath>

#include "envelope/outline.hpp"

namespace kestrune::envelope {
namespace {

constexpr int kSteps = 20;
constexpr double kFlat = 1e-8;  // part of the step between two nodes

// Slope of the unknown at the way's part, per step; the point goes to t.probe.
bool slope_at(Tracer& t, int segment, int index, double part, double& slope) {
  const Node& b = t.node[segment];
  const flash::LinePoint from = point_of(t.node[segment - 1]), to = point_of(b);
  keep_roots(t, b);
  if (!solve_on_way(t, from, to, b.held, part, t.probe)) return false;
  // Once more: the slope belongs to where the last iteration began.
  if (flash::solve_point(t.line, t.probe, b.held, t.probe.X[b.held], flash::kWalkNewtonLimit, true, t.status) !=
      flash::Solved::yes)
    return false;
  slope = t.probe.slope[index] / t.probe.slope[b.held];
  return true;
}

}  // namespace

// The zero of the slope between two nodes: regula falsi on the slope, which is close to a straight line.
bool solve_extreme(Tracer& t, int segment, int index) {
  const Node &a = t.node[segment - 1], &b = t.node[segment];
  double low = 0.0, high = 1.0;
  double at_low = a.slope[index] / a.slope[b.held], at_high = b.slope[index] / b.slope[b.held];
  double part = 0.5, before = 2.0;
  if (!support::cubic_extreme(flash::between(point_of(a), point_of(b), index, b.held), part)) return false;
  int side = 0;
  for (int k = 0; k < kSteps; ++k) {
    double slope;
    if (!slope_at(t, segment, index, part, slope)) return false;
    if (slope == 0.0 || std::fabs(part - before) < kFlat) return true;
    before = part;
    if ((slope > 0.0) == (at_low > 0.0)) {
      low = part;
      at_low = slope;
      if (side == -1) at_high *= 0.5;
      side = -1;
    } else {
      high = part;
      at_high = slope;
      if (side == 1) at_low *= 0.5;
      side = 1;
    }
    part = low + (high - low) * at_low / (at_low - at_high);
  }
  return true;
}

void insert_node(Tracer& t, int at, const flash::LinePoint& p, int held, double kind) {
  if (!push(t, p, held, kind)) return;
  const Node added = t.node[t.count - 1];
  for (int k = t.count - 1; k > at; --k) t.node[k] = t.node[k - 1];
  t.node[at] = added;
}

bool find_extreme(Tracer& t, int index, double& T, double& P) {
  const int iT = t.line.T_index(), iP = t.line.P_index();
  int best = -1;
  bool inside = false;
  double most = -1e300;
  for (int k = 1; k < t.count; ++k) {
    const Node& b = t.node[k];
    if (b.held < 0 || b.liquids || !b.stable || !t.node[k - 1].stable) continue;
    const flash::Cubic c = flash::between(point_of(t.node[k - 1]), point_of(b), index, b.held);
    double part;
    if (b.held != index && c.slope(0.0) > 0.0 && support::cubic_extreme(c, part) && c.at(part) > most) {
      most = c.at(part);
      best = k;
      inside = true;
    } else if (b.corner && k + 2 < t.count && b.X[index] > most && c.slope(1.0) > 0.0 &&
               t.node[k + 2].X[index] < b.X[index]) {
      most = b.X[index];
      best = k;
      inside = false;
    }
  }
  if (best < 0) return false;
  if (inside) {
    if (!solve_extreme(t, best, index)) return false;
    const Node& b = t.node[best];
    insert_node(t, best, t.probe, b.held, b.critical ? t.node[best - 1].kind : b.kind);
  }
  t.node[best].extreme = true;
  T = std::exp(t.node[best].X[iT]);
  P = std::exp(t.node[best].X[iP]);
  return true;
}

}  // namespace kestrune::envelope
