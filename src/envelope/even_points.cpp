// Points of the outline evenly spaced in arc length: from the spline through the nodes, and then each brought
// onto the line itself by Newton's method.

#include <algorithm>
#include <cmath>

#include "envelope/outline.hpp"

namespace kestrune::envelope {
namespace {

constexpr int kMostFixed = 64;
constexpr int kNewtonLimit = 12;

// Scaled plane in which lengths are measured: the outline is as high as it is wide.
struct Scale {
  double T, P;
};

Scale scale_of(const Tracer& t) {
  double low[2] = {1e300, 1e300}, high[2] = {-1e300, -1e300};
  for (int k = 0; k < t.count; ++k)
    for (const int i : {0, 1}) {
      const double v = t.node[k].X[t.line.T_index() + i];
      low[i] = std::min(low[i], v);
      high[i] = std::max(high[i], v);
    }
  return {1.0 / std::max(high[0] - low[0], 1e-6), 1.0 / std::max(high[1] - low[1], 1e-6)};
}

// d s/d(held) at a node, s the length.
double speed(const Tracer& t, const Scale& scale, const Node& node, int held) {
  const double of_T = scale.T * node.slope[t.line.T_index()], of_P = scale.P * node.slope[t.line.P_index()];
  return std::hypot(of_T, of_P) / std::fabs(node.slope[held]);
}

// Length of the step to node k, by Gauss' rule of three points on its cubics.
double length_of(const Tracer& t, const Scale& scale, int k) {
  constexpr double kAt[3] = {0.1127016653792583, 0.5, 0.8872983346207417};
  constexpr double kWeight[3] = {5.0 / 18.0, 8.0 / 18.0, 5.0 / 18.0};
  const flash::LinePoint a = point_of(t.node[k - 1]), b = point_of(t.node[k]);
  const flash::Cubic T = flash::between(a, b, t.line.T_index(), t.node[k].held);
  const flash::Cubic P = flash::between(a, b, t.line.P_index(), t.node[k].held);
  double sum = 0.0;
  for (int i = 0; i < 3; ++i)
    sum += kWeight[i] * std::hypot(scale.T * T.slope(kAt[i]), scale.P * P.slope(kAt[i]));
  return sum;
}

// A point that has to be among those returned: its place and how much it matters.
struct Fixed {
  double s;
  int node, weight;
};

// Ends, critical points, extremes and corners, as many as there is room for.
int fixed_points(const Tracer& t, const double* s, int wanted, Fixed* fixed) {
  int count = 0;
  for (int k = 0; k < t.count && count < kMostFixed; ++k) {
    const Node& b = t.node[k];
    const bool after_corner = b.held < 0 && k > 0 && t.node[k - 1].corner;
    const bool end = (b.held < 0 && !after_corner) || k + 1 == t.count || (t.node[k + 1].held < 0 && !b.corner);
    const int weight = b.critical ? 4 : b.extreme ? 3 : end ? 2 : b.corner ? 1 : 0;
    if (weight > 0) fixed[count++] = {s[k], k, weight};
  }
  while (count > wanted) {
    int least = 0;
    for (int k = 1; k < count; ++k)
      if (fixed[k].weight < fixed[least].weight) least = k;
    std::copy(fixed + least + 1, fixed + count, fixed + least);
    --count;
  }
  return count;
}

// The point at the length s on the line; false when it does not converge.
bool point_at(Tracer& t, const Scale& scale, const double* s, double at, double& kind) {
  const int k = support::piece_of(t.count, s, at);
  const Node &a = t.node[k - 1], &b = t.node[k];
  if (b.held < 0) return false;  // between two lines
  const double length = s[k] - s[k - 1], part = (at - s[k - 1]) / length;
  const int held = b.held;
  const double sign = b.X[held] > a.X[held] ? 1.0 : -1.0;
  const double of_a = sign * length / (a.slope[held] * speed(t, scale, a, held)),
               of_b = sign * length / (b.slope[held] * speed(t, scale, b, held));
  for (int i = 0; i < t.line.n + 2; ++i)
    t.probe.X[i] = support::cubic(a.X[i], of_a * a.slope[i], b.X[i], of_b * b.slope[i]).at(part);
  kind = (b.critical ? a.kind : b.kind) + (a.stable && b.stable ? 0.0 : kNotStable);
  keep_roots(t, b);
  const int iT = t.line.T_index(), iP = t.line.P_index();
  const double T = t.probe.X[iT], P = t.probe.X[iP];
  if (flash::solve_point(t.line, t.probe, held, t.probe.X[held], kNewtonLimit, true, t.status) ==
          flash::Solved::yes &&
      std::fabs(t.probe.X[iT] - T) < 5e-3 && std::fabs(t.probe.X[iP] - P) < 5e-2)
    return true;
  // Beside a critical point, by the part of the step in the unknown itself.
  return solve_on_way(t, point_of(a), point_of(b), held, part, t.probe);
}

}  // namespace

int even_points(Tracer& t, int wanted, double* T, double* P, double* kind) {
  const Scale scale = scale_of(t);
  double* const s = t.lengths;
  s[0] = 0.0;
  for (int k = 1; k < t.count; ++k)
    s[k] = s[k - 1] + (t.node[k].held < 0 ? 1e-9 : std::max(length_of(t, scale, k), 1e-12));
  t.fit = support::check_knots(t.count, s);
  if (t.fit != support::SplineFit::good) return 0;
  Fixed fixed[kMostFixed];
  const int fixes = fixed_points(t, s, wanted, fixed);
  if (fixes < 2) {
    if (fixes == 1) write_node(t, fixed[0].node, T, P, kind);
    return fixes;
  }
  // Steps between the fixed points, in proportion to their distance; none where a line ends.
  double total = 0.0;
  const auto gap = [&](int k) {
    return t.node[fixed[k + 1].node].held < 0 ? 0.0 : fixed[k + 1].s - fixed[k].s;
  };
  for (int k = 0; k + 1 < fixes; ++k) total += gap(k);
  int written = 0, spare = wanted - fixes;
  write_node(t, fixed[0].node, T, P, kind);
  ++written;
  for (int k = 0; k + 1 < fixes; ++k) {
    const double length = gap(k);
    const int inner =
        total > 0.0 ? std::clamp(static_cast<int>(std::lround(spare * length / total)), 0, spare) : 0;
    total -= length;
    spare -= inner;
    for (int i = 1; i <= inner; ++i) {
      double its_kind;
      if (!point_at(t, scale, s, fixed[k].s + length * i / (inner + 1), its_kind)) continue;
      T[written] = flash::temperature(t.line, t.probe);
      P[written] = flash::pressure(t.line, t.probe);
      kind[written++] = its_kind;
    }
    write_node(t, fixed[k + 1].node, T + written, P + written, kind + written);
    ++written;
  }
  return written;
}

}  // namespace kestrune::envelope
