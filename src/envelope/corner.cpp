// Where the feed loses its stability along a line: another phase begins to form there, and from there on the
// boundary of the one-phase region is the line of that phase. "The branch" is that line, "the corner" where
// both have T and P in common. change_over tries three ways to it: halving towards it (close_in), by the ln K
// of a branch that is all but critical (close_in_by_K), and on the steps before (look_back). Section 10 of
// docs/method.md.

#include <algorithm>
#include <cmath>

#include "envelope/outline.hpp"
#include "flash/stability/stability.hpp"

namespace kestrune::envelope {
namespace {

using flash::LinePoint;
using flash::Solved;

constexpr double kStable = -1e-9;
constexpr int kSteps = 30;
constexpr double kMet = 1e-10;  // ln T or ln P between the two lines at the corner
constexpr int kNewtonLimit = 25;

// Whether t.branch is the line of p again, which would be no corner.
bool same_phase(const Tracer& t, const LinePoint& p) {
  constexpr double kApart = 0.02;
  for (int i = 0; i < t.line.n; ++i)
    if (t.line.z[i] > 0.0 && std::fabs(t.branch.X[i] - p.X[i]) > kApart) return false;
  return true;
}

// The branch of the phase that splits off at the point p: t.branch with T or P of p. False: none close by.
bool solve_branch(Tracer& t, const LinePoint& p, int held) {
  const flash::Kind root_x = t.line.root_x, root_y = t.line.root_y;
  t.line.root_x = t.line.root_y = flash::Kind::stable;
  t.branch.X[t.line.T_index()] = p.X[t.line.T_index()];
  t.branch.X[t.line.P_index()] = p.X[t.line.P_index()];
  const Solved solved = flash::solve_point(t.line, t.branch, held, p.X[held], kNewtonLimit, false, t.status);
  t.line.root_x = root_x;
  t.line.root_y = root_y;
  if (solved != Solved::yes) return false;
  // Nor is the feed itself a phase that splits off.
  double own = 0.0;
  for (int i = 0; i < t.line.n; ++i)
    if (t.line.z[i] > 0.0) own = std::max(own, std::fabs(t.branch.X[i]));
  return own > 5e-3 && !same_phase(t, p);
}

void start_from_trial(Tracer& t) {
  for (int i = 0; i < t.line.n; ++i)
    t.branch.X[i] = std::clamp(t.trial_K[i], -flash::kLargestLogK, flash::kLargestLogK);
}

/*
 * The direction in which the branch bounds the one-phase region, 1 or -1 in pressure: the one in which the
 * feed's distance to the phase of the old line rises. t.corner is the old line's point, the last one that was
 * solved.
 */
double direction_of_branch(const Tracer& t) {
  const flash::QualityLine& line = t.line;
  double by_T = 0.0, by_P = 0.0;
  for (int i = 0; i < line.n; ++i) {
    by_T += t.corner.x[i] * (line.t_x[i] - line.t_y[i]);
    by_P += t.corner.x[i] * (line.p_x[i] - line.p_y[i]);
  }
  const double *slope = t.branch.slope, along_P = slope[line.P_index()];
  const double rise = by_T * line.m.T * slope[line.T_index()] + by_P * line.m.P * along_P;
  return (rise > 0.0) == (along_P > 0.0) ? 1.0 : -1.0;
}

/*
 * The corner between the stable node a and the node b that is not: where the old line (t.corner) and the
 * branch (t.branch) have T and P in common. Newton's method on the gap in the unknown other than the common
 * one, (33) of docs/method.md, from b backwards, for the branch need not reach as far as a. at: where it is;
 * direction: of the branch from there on.
 */
bool find_corner(Tracer& t, const LinePoint& a, const LinePoint& b, int held, double from, int common,
                 double& at, double& direction) {
  const int other = common == t.line.T_index() ? t.line.P_index() : t.line.T_index();
  start_from_trial(t);
  const int size = t.line.n + 2;
  double part = from, good = from;
  bool have_good = false;
  for (int k = 0; k < kSteps; ++k) {
    if (!solve_on_way(t, a, b, held, part, t.corner)) return false;
    if (!solve_branch(t, t.corner, common)) {
      // Back towards where it converged.
      if (!have_good || std::fabs(part - good) < 1e-6) return false;
      part = 0.5 * (part + good);
      std::copy_n(t.spare.X, size, t.branch.X);
      continue;
    }
    std::copy_n(t.branch.X, size, t.spare.X);
    good = part;
    have_good = true;
    const double gap = t.branch.X[other] - t.corner.X[other];
    if (std::fabs(gap) < kMet) {
      if (!solve_on_way(t, a, b, held, part, t.corner)) return false;
      direction = direction_of_branch(t);
      at = part;
      return true;
    }
    const double apart =
        t.branch.slope[other] / t.branch.slope[common] - t.corner.slope[other] / t.corner.slope[common];
    const double step = -gap / (apart * flash::between(a, b, common, held).slope(part));
    if (!(std::fabs(step) < 1e3)) return false;
    const double next = std::clamp(part + std::clamp(step, -0.5, 0.5), -0.2, 1.0);
    if (next == part) return false;
    part = next;
  }
  return false;
}

/*
 * Whether the corner that was found is one of the boundary: nothing splits off there, and nothing on the branch
 * just behind it. At the corner itself both of its phases lie on the plane, and the test may come to rest at
 * them.
 */
bool corner_stable(Tracer& t, const Node& bad, double direction) {
  constexpr double kBehind = 1e-4;
  flash::copy_point(t.line, t.corner, t.probe);
  if (!stable_at(t, t.probe)) return false;
  flash::copy_point(t.line, t.branch, t.probe);
  keep_roots(t, t.probe);
  const int iT = t.line.T_index(), iP = t.line.P_index();
  const double steep = t.branch.slope[iP] / t.branch.slope[iT];
  const int held = std::fabs(steep) > 1.0 ? iP : iT;
  const double step = held == iP || steep > 0.0 ? direction * kBehind : -direction * kBehind;
  const bool stable = flash::solve_point(t.line, t.probe, held, t.branch.X[held] + step, kNewtonLimit, true,
                                         t.status) != Solved::yes ||
                      stable_at(t, t.probe);
  keep_roots(t, bad);
  return stable;
}

/*
 * Whether the line turns round at a cusp on the way to the corner from node number before, or on the last steps
 * before it: what was found is its own way back. T and P go on in the direction opposite to that of a node
 * close by.
 */
bool behind_cusp(const Tracer& t, int before, const LinePoint& a, const LinePoint& b) {
  constexpr int kBefore = 3;
  constexpr double kCloseT = 0.01, kCloseP = 0.1;
  const int n = t.line.n, iT = t.line.T_index(), iP = t.line.P_index();
  const auto forward = [&](const double* slope, const double* from, const double* to) {
    double along = 0.0;
    for (int i = 0; i < n + 2; ++i)
      if (i >= n || t.line.z[i] > 0.0) along += slope[i] * (to[i] - from[i]);
    return along > 0.0 ? 1.0 : -1.0;
  };
  const double here = forward(t.corner.slope, a.X, b.X);
  for (int k = before; k > 0 && k > before - kBefore; --k) {
    const Node& node = t.node[k];
    if (node.critical || node.held < 0 || std::fabs(node.X[iT] - t.corner.X[iT]) > kCloseT ||
        std::fabs(node.X[iP] - t.corner.X[iP]) > kCloseP)
      break;
    const double same = here * forward(node.slope, t.node[k - 1].X, node.X);
    if (same * t.corner.slope[iT] * node.slope[iT] < 0.0 && same * t.corner.slope[iP] * node.slope[iP] < 0.0)
      return true;
  }
  return false;
}

// The corner from the node that is not stable, or from points closer and closer to it by halving.
bool close_in(Tracer& t, int before, const Node& bad, double& direction) {
  constexpr int kHalvings = 14;
  const Node& stable = t.node[before];
  const LinePoint a = point_of(stable), b = point_of(bad);
  keep_roots(t, bad);
  double low = 0.0, high = 1.0;
  std::copy_n(b.X, t.line.n + 2, t.probe.X);
  if (stable_at(t, t.probe)) return false;
  for (int k = 0; k < kHalvings; ++k) {
    // From the trial of the last point that was not stable, which stays in t.trial_K. Of several phases that
    // split off the one counts that does so first.
    double at = high;
    for (const int common : {t.line.T_index(), t.line.P_index()}) {
      if (!find_corner(t, a, b, bad.held, high, common, at, direction)) continue;
      if (behind_cusp(t, before, a, b)) return false;
      if (corner_stable(t, bad, direction)) return true;
      break;
    }
    if (at > low && at < high) {
      high = at;
      continue;
    }
    double middle = 0.5 * (low + high);
    while (high - low > 1e-6) {
      if (!solve_on_way(t, a, b, bad.held, middle, t.probe)) return false;
      if (!stable_at(t, t.probe)) break;
      low = middle;
      middle = 0.5 * (low + high);
    }
    if (high - low <= 1e-6) return false;
    high = middle;
  }
  return false;
}

/*
 * The corner on steps before the node that is not stable: beside a critical point the tests are few. From the
 * phase that splits off at the node, which t.trial_K holds. before receives the node in front of the corner.
 */
bool look_back(Tracer& t, int bad, double& direction, int& before) {
  constexpr int kBack = 6;
  std::copy_n(t.node[bad].X, t.line.n + 2, t.probe.X);
  keep_roots(t, t.node[bad]);
  if (stable_at(t, t.probe)) return false;
  for (int k = bad - 1; k > std::max(bad - 1 - kBack, 0) && t.node[k].held >= 0; --k) {
    before = t.node[k - 1].critical ? k - 2 : k - 1;
    if (t.node[k].critical || before < 0) continue;
    const LinePoint a = point_of(t.node[before]), b = point_of(t.node[k]);
    keep_roots(t, t.node[k]);
    double at = 1.0;
    for (const int common : {t.line.T_index(), t.line.P_index()})
      if (find_corner(t, a, b, t.node[k].held, 1.0, common, at, direction) && at >= 0.0)
        return !behind_cusp(t, before, a, b) && corner_stable(t, t.node[k], direction);
  }
  return false;
}

/*
 * The corner with a branch that is all but critical there: with T or P held its two phases would become one.
 * Newton's method on the largest ln K of the branch and the part of the step to the node that is not stable,
 * from the phase that splits off there.
 */
bool close_in_by_K(Tracer& t, int before, const Node& bad, double& direction) {
  const Node& stable = t.node[before];
  constexpr double kMostLogK = 0.3, kMostPart = 0.3, kLeastLogK = 1e-3;
  const int n = t.line.n, iT = t.line.T_index(), iP = t.line.P_index();
  const LinePoint a = point_of(stable), b = point_of(bad);
  keep_roots(t, bad);
  std::copy_n(b.X, n + 2, t.probe.X);
  if (stable_at(t, t.probe)) return false;
  start_from_trial(t);
  t.branch.X[iT] = b.X[iT];
  t.branch.X[iP] = b.X[iP];
  int by = 0;
  for (int i = 1; i < n; ++i)
    if (t.line.z[i] > 0.0 && std::fabs(t.branch.X[i]) > std::fabs(t.branch.X[by])) by = i;
  double part = 1.0, value = t.branch.X[by];
  for (int k = 0; k < kSteps; ++k) {
    keep_roots(t, bad);
    if (!solve_on_way(t, a, b, bad.held, part, t.corner)) return false;
    t.line.root_x = t.line.root_y = flash::Kind::stable;
    if (flash::solve_point(t.line, t.branch, by, value, kNewtonLimit, true, t.status) != Solved::yes)
      return false;
    const double dT = t.branch.X[iT] - t.corner.X[iT], dP = t.branch.X[iP] - t.corner.X[iP];
    if (std::fabs(dT) < kMet && std::fabs(dP) < kMet) {
      if (std::fabs(value) < kLeastLogK || same_phase(t, t.corner)) return false;
      keep_roots(t, bad);
      if (!solve_on_way(t, a, b, bad.held, part, t.corner)) return false;
      direction = direction_of_branch(t);
      return part > 0.0 && part < 1.0 && !behind_cusp(t, before, a, b) && corner_stable(t, bad, direction);
    }
    const double length = (b.X[bad.held] - a.X[bad.held]) / t.corner.slope[bad.held];
    const double aT = length * t.corner.slope[iT], aP = length * t.corner.slope[iP];
    const double bT = t.branch.slope[iT] / t.branch.slope[by], bP = t.branch.slope[iP] / t.branch.slope[by];
    const double determinant = aT * bP - bT * aP;
    const double of_part = (dT * bP - dP * bT) / determinant, of_value = (dT * aP - dP * aT) / determinant;
    const double size = std::max(std::fabs(of_part) / kMostPart, std::fabs(of_value) / kMostLogK);
    if (!(size < 1e6)) return false;
    const double factor = size > 1.0 ? 1.0 / size : 1.0;
    part = std::clamp(part + factor * of_part, -0.2, 1.0);
    value += factor * of_value;
  }
  return false;
}

// Whether a critical point lies between the point and the node: all ln K have changed their sign.
bool other_side(const Tracer& t, const LinePoint& p, const Node& node) {
  double sum = 0.0;
  for (int i = 0; i < t.line.n; ++i)
    if (t.line.z[i] > 0.0) sum += p.X[i] * node.X[i];
  return sum < 0.0;
}

// Whether what begins to form is a liquid, packed like the feed, which is one.
bool liquid_forms(const Tracer& t, const LinePoint& p) {
  constexpr double kLike = 0.5;
  const MixtureRecord& m = *t.line.context.record;
  return flash::covolume(m, p.x) * p.Zy > kLike * flash::covolume(m, p.y) * p.Zx;
}

/*
 * Whether both phases have their root of lower Gibbs energy. Where that which begins to form has not, its other
 * root is what splits off before it.
 */
bool own_roots_stable(Tracer& t, const LinePoint& p) {
  constexpr double kSame = 1e-6, kLower = 1e-9, kSameT = 1e-5;
  flash::QualityLine& line = t.line;
  if (line.root_x == flash::Kind::stable) return true;
  // The model of a point that was solved just before is as good.
  const double T = flash::temperature(line, p), P = flash::pressure(line, p);
  t.status = flash::line_model(line, std::fabs(line.prepared - T) < kSameT * T ? line.prepared : T, P);
  if (t.status != KV_OK) return true;
  // ln phi of the stable root in phi, and how much lower its Gibbs energy is.
  const auto gain = [&](const double* x, flash::Kind own, double* phi) {
    double Z = 0.0, Z_own = 0.0, sum = 0.0;
    t.status = flash::water_aware_fugacity(line.m, x, own, t.trial, {}, Z_own);
    if (t.status == KV_OK) t.status = flash::water_aware_fugacity(line.m, x, flash::Kind::stable, phi, {}, Z);
    if (t.status != KV_OK || std::fabs(Z - Z_own) < kSame * Z) return 0.0;
    for (int i = 0; i < line.n; ++i) sum += x[i] * (t.trial[i] - phi[i]);
    return sum;
  };
  const double of_y = gain(p.y, line.root_y, line.phi_y), of_x = gain(p.x, line.root_x, line.phi_x);
  if (t.status != KV_OK || (of_y < kLower && of_x < kLower)) return true;
  for (int i = 0; i < line.n; ++i) t.trial_K[i] = line.phi_x[i] - line.phi_y[i];
  return false;
}

}  // namespace

bool stable_at(Tracer& t, LinePoint& p) {
  flash::QualityLine& line = t.line;
  if (!flash::compositions(line, p, 1e-3)) return false;
  if (!own_roots_stable(t, p)) return false;
  flash::StabilityCall call{
      {line.z, line.context.silent(), line.routines}, flash::temperature(line, p), flash::pressure(line, p)};
  call.effort = flash::Effort::every_component;
  flash::StabilityResult found;
  if (t.boundary()) {
    call.incipient = p.x;
    call.incipient_Z = p.Zx;
    found.log_k = t.trial_K;
  } else {
    call.count = 2;
    call.phase[0] = p.x;
    call.phase[1] = p.y;
  }
  t.status = flash::test_stability(call, found);
  for (int i = 0; i < line.n && t.boundary(); ++i) t.trial_K[i] = -t.trial_K[i];
  return t.status == KV_OK && found.distance >= kStable;
}

bool change_over(Tracer& t, int bad, double& sign, double& phase) {
  if (bad < 1 || t.node[bad].held < 0 || t.corners >= kMostCorners) return false;
  int before = bad - 1;
  // A critical point is no place to interpolate from.
  if (t.node[before].critical && before > 0 && t.node[before].held >= 0) --before;
  double direction = 0.0;
  if (!close_in(t, before, t.node[bad], direction) && !close_in_by_K(t, before, t.node[bad], direction) &&
      !look_back(t, bad, direction, before))
    return false;
  // A critical point in between stays where the corner is behind it.
  int last = before;
  if (t.node[last + 1].critical && other_side(t, t.corner, t.node[last])) ++last;
  const double kind = t.node[last].critical ? t.node[last + 1].kind : t.node[last].kind;
  const int held = t.node[last + 1].held;
  t.count = last + 1;
  if (!push(t, t.corner, held, kind)) return false;
  t.node[t.count - 1].corner = true;
  flash::copy_point(t.line, t.branch, t.here);
  keep_roots(t, t.here);
  sign = direction;
  phase = kind == kDew ? kDew : liquid_forms(t, t.branch) ? kLiquids : kBubble;
  ++t.corners;
  return true;
}

}  // namespace kestrune::envelope
