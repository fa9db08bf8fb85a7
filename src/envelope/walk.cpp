// Following one line of the outline from its first pressure to where it ends.

#include <algorithm>
#include <cmath>

#include "envelope/critical.hpp"
#include "envelope/outline.hpp"

namespace kestrune::envelope {
namespace {

using flash::LinePoint;
using flash::Solved;

// Nodes from test to test; beside a critical point, with all ln K below kBesideCritical, tests cost ten times
// as much.
constexpr int kTestEvery = 1, kTestEveryCritical = 5;
constexpr double kBesideCritical = 1.0;
constexpr double kTooCloseToTest = 0.05;  // |ln K| beside a critical point, in parts of the walk's largest
// A point that is none, both phases of which are the feed: largest |ln K|, and what Newton's method leaves
// between the densities.
constexpr double kOnePhase = 2e-3, kSameDensity = 1e-5;
constexpr double kNoDifference = 1e-12;          // rounding of either
constexpr int kHardPoint = 7, kMostShorter = 4;  // Newton iterations of a point; steps that are cut for it
constexpr double kShorter = 0.3;
constexpr double kJoined = 1e-3;  // of ln T and ln P
constexpr flash::StepBounds kBounds{0.8, 0.05, 0.4, true};
constexpr flash::StepBounds kBoundsOfLiquids{0.8, 0.05, 0.8, true};  // steep lines, all but straight

double largest_log_K(const Tracer& t, const double* X) {
  double largest = 0.0;
  for (int i = 0; i < t.line.n; ++i)
    if (t.line.z[i] > 0.0) largest = std::max(largest, std::fabs(X[i]));
  return largest;
}

// How far the densities of both phases are apart. Small ln K alone do not say that phases are close to each
// other: those of components that boil close together are small everywhere, and those of an azeotrope vanish.
double between_densities(const LinePoint& p) {
  return std::fabs(p.Zx - p.Zy) / p.Zy;
}

// Whether both phases of a point are the feed.
bool all_feed(const Tracer& t, const LinePoint& p) {
  return largest_log_K(t, p.X) < kOnePhase && between_densities(p) < kSameDensity;
}

// All ln K change their sign between two points, and so do the densities; at an azeotrope these stay apart.
bool passes_critical(const Tracer& t, const LinePoint& a, const LinePoint& b) {
  const auto apart = [&](const LinePoint& p) { return between_densities(p) > largest_log_K(t, p.X); };
  if ((a.Zx > a.Zy) == (b.Zx > b.Zy) && apart(a) && apart(b)) return false;
  double sum = 0.0;
  for (int i = 0; i < t.line.n; ++i)
    if (t.line.z[i] > 0.0) sum += a.X[i] * b.X[i];
  return sum < 0.0;
}

// The exact critical state from the interpolated one, within the room in ln T; ten times as much in ln P.
// False: no such state close by.
bool exact_critical(Tracer& t, const LinePoint& a, const LinePoint& b, double part, double room, double& ln_T,
                    double& ln_P) {
  Spinodal& sp = *t.spinodal;
  const int n = t.line.n;
  double length = 0.0;
  for (int i = 0; i < n; ++i) {
    sp.w[i] = sp.root[i] * (a.X[i] - b.X[i]);
    length += sp.w[i] * sp.w[i];
  }
  if (!(length > 0.0)) return false;
  for (int i = 0; i < n; ++i) sp.w[i] /= std::sqrt(length);
  const double Z = (1.0 - part) * a.Zy + part * b.Zy;
  double T = std::exp(ln_T), eta = sp.b * std::exp(ln_P) / (Z * eos::kR * T);
  if (!(eta > 0.0 && eta < 1.0) || !solve_critical(sp, T, eta, t.status)) return false;
  const double P = pressure_at(sp, eta);
  if (!(P > 0.0) || std::fabs(std::log(T) - ln_T) > room || std::fabs(std::log(P) - ln_P) > 10.0 * room)
    return false;
  ln_T = std::log(T);
  ln_P = std::log(P);
  return true;
}

// The critical point between t.here and t.next, added as a node. With the built-in equation one that does not
// meet its conditions is none. False: no room.
bool push_critical(Tracer& t, int held) {
  constexpr double kRoom = 1e-3;
  const int n = t.line.n, iT = t.line.T_index(), iP = t.line.P_index();
  // The ln K that is largest tells where: the one held may be another one.
  int by = 0;
  double most = 0.0;
  for (int i = 0; i < n; ++i) {
    const double change = t.line.z[i] > 0.0 ? std::fabs(t.here.X[i] - t.next.X[i]) : 0.0;
    if (change > most) {
      most = change;
      by = i;
    }
  }
  const double part = support::cubic_root(flash::between(t.here, t.next, by, held), 0.0, 0.0, 1.0);
  for (int i = 0; i < n + 2; ++i) {
    const flash::Cubic along = flash::between(t.here, t.next, i, held);
    t.probe.X[i] = i < n ? 0.0 : along.at(part);
    t.probe.slope[i] = along.slope(part) / (t.next.X[held] - t.here.X[held]);
  }
  if (t.spinodal != nullptr && !exact_critical(t, t.here, t.next, part, kRoom, t.probe.X[iT], t.probe.X[iP])) {
    // Slopes as close to the point as that may be noise: from the straight line.
    const double share = t.here.X[by] / (t.here.X[by] - t.next.X[by]), h = t.next.X[held] - t.here.X[held];
    for (const int i : {iT, iP}) {
      t.probe.X[i] = t.here.X[i] + share * (t.next.X[i] - t.here.X[i]);
      t.probe.slope[i] = (t.next.X[i] - t.here.X[i]) / h;
    }
    const double room = std::max(kRoom, std::fabs(t.next.X[iT] - t.here.X[iT]));
    if (!exact_critical(t, t.here, t.next, share, room, t.probe.X[iT], t.probe.X[iP])) return true;
  }
  if (!push(t, t.probe, held, kCritical)) return false;
  t.node[t.count - 1].critical = true;
  return true;
}

// Where a line ends: the value of an unknown, and what that is called.
struct Limit {
  int index = 0;
  double value = 0.0;
  End end = End::closed;
};

// Whether ln T or ln P (index), falling there or rising, is beyond its limit at v, which then is noted.
bool beyond(const Tracer& t, int index, bool falling, double v, Limit& limit) {
  if (index == t.line.T_index())
    limit = {index, t.limits.lowest_T, End::cold};
  else if (falling)
    limit = {index, t.limits.first_P, End::closed};
  else
    limit = {index, t.limits.highest_P, End::pressure};
  return limit.end == End::pressure ? v >= limit.value : falling && v <= limit.value;
}

/*
 * The limit that is passed first between t.here and t.next: at an extreme in between, which t.next becomes
 * then, or at t.next. False for none.
 */
bool limit_passed(Tracer& t, bool first, int held, Limit& limit) {
  const int iT = t.line.T_index(), iP = t.line.P_index();
  for (const int index : {iT, iP}) {
    double part;
    if (index == held || first) continue;
    const flash::Cubic c = flash::between(t.here, t.next, index, held);
    const bool falling = c.slope(0.0) < 0.0;
    if (!support::cubic_extreme(c, part) || !beyond(t, index, falling, c.at(part), limit)) continue;
    if (!solve_on_way(t, t.here, t.next, held, part, t.spare)) continue;
    if (!beyond(t, index, falling, t.spare.X[index], limit)) continue;
    flash::copy_point(t.line, t.spare, t.next);
    return true;
  }
  return beyond(t, iP, !first && t.next.X[iP] < t.here.X[iP], t.next.X[iP], limit) ||
         beyond(t, iT, true, t.next.X[iT], limit);
}

// Whether the point lies on a line between two of the first nodes.
bool on_earlier_line(const Tracer& t, const LinePoint& p, int seen) {
  const int iT = t.line.T_index(), iP = t.line.P_index();
  for (int k = 1; k < seen; ++k) {
    if (t.node[k].held < 0) continue;
    const double *a = t.node[k - 1].X, *b = t.node[k].X;
    const double dT = b[iT] - a[iT], dP = b[iP] - a[iP], length = dT * dT + dP * dP;
    if (!(length > 0.0)) continue;
    const double eT = p.X[iT] - a[iT], eP = p.X[iP] - a[iP];
    const double part = (eT * dT + eP * dP) / length;
    if (part < -0.01 || part > 1.01) continue;
    if (std::fabs(eT - part * dT) < kJoined && std::fabs(eP - part * dP) < kJoined) return true;
  }
  return false;
}

// Tests the nodes after number tested, if not as close as that to a critical point. Returns the first one that
// differs from what the walk believes.
int first_change(Tracer& t, int tested, bool believed, double too_close) {
  const int last = t.count - 1;
  const auto test = [&](int k) {
    keep_roots(t, t.node[k]);
    std::copy_n(t.node[k].X, t.line.n + 2, t.probe.X);
    return stable_at(t, t.probe);
  };
  if (test(last) == believed) return -1;
  for (int k = tested + 1; k < last; ++k)
    if (!t.node[k].critical && largest_log_K(t, t.node[k].X) > too_close && test(k) != believed) return k;
  test(last);
  return last;
}

// What the walk knows of its stability.
struct Stability {
  int tested;            // last node that was tested
  bool good = true;      // its result
  bool renewed = false;  // the walk goes on from another branch
  double largest = 0.0;  // |ln K| so far, at most 1
};

// Tests when it is time to and acts on a change.
void look_at_stability(Tracer& t, Stability& s, bool now, double& phase, double& sign) {
  const int last = t.count - 1;
  s.renewed = false;
  const double largest = largest_log_K(t, t.node[last].X);
  s.largest = std::clamp(largest, s.largest, 1.0);
  const double too_close = kTooCloseToTest * s.largest;
  const int every = largest < kBesideCritical ? kTestEveryCritical : kTestEvery;
  if (!now && (last - s.tested < every || largest < too_close)) return;
  const int change = first_change(t, s.tested, s.good, too_close);
  if (change >= 0 && s.good && t.boundary()) {
    if (change_over(t, change, sign, phase)) {
      s.tested = t.count - 1;
      s.renewed = true;
      return;
    }
  }
  if (change >= 0) s.good = !s.good;
  const int from = change >= 0 ? change : s.tested + 1;
  for (int k = from; k < t.count; ++k) t.node[k].stable = s.good;
  s.tested = t.count - 1;
}

/*
 * Whether the unknown that the next step holds still changes as it did in the last one: behind an extreme of it
 * the difference of two points says nothing of the way on. Else sign receives the direction in pressure in
 * which the tangent goes on.
 */
bool goes_on(const Tracer& t, double& sign) {
  const flash::QualityLine& line = t.line;
  const int held = flash::most_sensitive(line, t.here);
  // Beside a critical point T and P may turn back as at a cusp; the ln K go on however small they are.
  const double largest = std::max({largest_log_K(t, t.here.X), largest_log_K(t, t.last.X),
                                   between_densities(t.here), between_densities(t.last), kNoDifference});
  const double of_log_K = 1.0 / std::min(largest * largest, 1.0);
  double along = 0.0;
  for (int i = 0; i < line.n + 2; ++i)
    if (i >= line.n || line.z[i] > 0.0)
      along += (i < line.n ? of_log_K : 1.0) * t.here.slope[i] * (t.here.X[i] - t.last.X[i]);
  if ((along * t.here.slope[held] > 0.0) == (t.here.X[held] >= t.last.X[held])) return true;
  sign = along * t.here.slope[line.P_index()] > 0.0 ? 1.0 : -1.0;
  return false;
}

// A walk under way.
struct Walk {
  double phase, sign;  // of its points; direction in pressure
  int seen;            // nodes of earlier lines
  Stability stability;
  double step = flash::kFirstStep;
  bool have_last = false;  // t.last is the point before t.here
};

bool push_point(Tracer& t, const Walk& w, const LinePoint& p, int held) {
  return push(t, p, held, t.boundary() ? w.phase : t.line.W);
}

// The next point, t.next, with shorter steps where it is hard to find: it is far from where it was expected then, and
// the line turns in between. Behind a critical point T and P turn back, and with one of them held the line before it is
// as close.
Solved next_point(Tracer& t, Walk& w, flash::LineStep& made) {
  const bool by_last = w.have_last && goes_on(t, w.sign);
  const flash::StepBounds& bounds = w.phase == kLiquids ? kBoundsOfLiquids : kBounds;
  for (int shorter = 0;; ++shorter) {
    const Solved solved = flash::walk_on(t.line, by_last ? &t.last : nullptr, t.here, w.sign, w.step, bounds,
                                         t.next, made, t.status);
    if (solved != Solved::yes || shorter == kMostShorter) return solved;
    const bool back = w.have_last && passes_critical(t, t.last, t.here) && passes_critical(t, t.here, t.next);
    if (t.next.passes <= kHardPoint && !back) return solved;
    w.step = kShorter * std::fabs(made.change);
  }
}

// A critical point on the way to t.next becomes a node. True where the walk ends there, and why.
bool ends_at_critical(Tracer& t, Walk& w, int held, End& end) {
  if (!passes_critical(t, t.here, t.next)) return false;
  end = End::full;
  if (!push_critical(t, held)) return true;
  end = End::closed;
  if (!t.boundary()) return true;
  if (w.phase != kLiquids) w.phase = w.phase == kDew ? kBubble : kDew;
  return false;
}

// t.next cut back to a limit. A critical point may have come in between: the step is that from t.here all the same.
bool cut_at(Tracer& t, int held, const Limit& limit) {
  if (!solve_between(t, t.here, t.next, held, limit.index, limit.value, t.branch)) return false;
  flash::copy_point(t.line, t.branch, t.next);
  return true;
}

// From t.here on another branch. True where that ends at once, and why.
bool ends_anew(Tracer& t, Walk& w, End& end) {
  w.have_last = false;
  w.step = flash::kFirstStep;
  end = End::full;
  if (!push(t, t.here, -1, w.phase)) return true;
  end = End::joined;
  if (on_earlier_line(t, t.here, w.seen)) return true;
  w.stability.tested = t.count - 1;
  return false;
}

End follow(Tracer& t, Walk& w) {
  End end = End::full;
  for (bool first = true;; first = false) {
    flash::LineStep made;
    if (next_point(t, w, made) != Solved::yes || all_feed(t, t.next)) {
      // Beyond a corner that is found only now the line does not count: what does is the branch from there on.
      look_at_stability(t, w.stability, true, w.phase, w.sign);
      if (!w.stability.renewed) return End::broken;
      if (ends_anew(t, w, end)) return end;
      continue;
    }
    keep_roots(t, t.next);
    if (ends_at_critical(t, w, made.held, end)) return end;
    Limit limit;
    const bool at_limit = limit_passed(t, first, made.held, limit);
    if (at_limit && !cut_at(t, made.held, limit)) return End::broken;
    if (!push_point(t, w, t.next, made.held)) return End::full;
    const bool joined = on_earlier_line(t, t.next, w.seen) && !first;
    w.step = flash::next_length(made, t.next.passes);
    const flash::Kind root_x = t.line.root_x, root_y = t.line.root_y;
    look_at_stability(t, w.stability, at_limit || joined, w.phase, w.sign);
    if (w.stability.renewed) {
      if (ends_anew(t, w, end)) return end;
      continue;
    }
    t.line.root_x = root_x;
    t.line.root_y = root_y;
    if (at_limit) return limit.end;
    if (joined) return End::joined;
    flash::copy_point(t.line, t.here, t.last);
    flash::copy_point(t.line, t.next, t.here);
    w.have_last = true;
  }
}

// Follows the line from its first node, t.here.
End begin_walk(Tracer& t, double phase, double sign, bool stable, int seen) {
  Walk w{phase, sign, seen, {t.count, stable}};
  keep_roots(t, t.here);
  if (!push_point(t, w, t.here, -1)) return End::full;
  t.node[t.count - 1].stable = stable;
  return follow(t, w);
}

}  // namespace

void keep_roots(Tracer& t, const LinePoint& p) {
  const MixtureRecord& m = *t.line.context.record;
  const double T = flash::temperature(t.line, p), P = flash::pressure(t.line, p);
  const auto kind = [&](const double* x, double Z) {
    if (!(Z > 0.0)) return flash::Kind::stable;
    return flash::loosely_packed(m, T, P, x, Z) ? flash::Kind::gas : flash::Kind::liquid;
  };
  t.line.root_x = kind(p.x, p.Zx);
  t.line.root_y = kind(p.y, p.Zy);
}

bool push(Tracer& t, const LinePoint& p, int held, double kind) {
  if (t.count >= kMostNodes) return false;
  Node& node = t.node[t.count++];
  std::copy_n(p.X, t.line.n + 2, node.X);
  std::copy_n(p.slope, t.line.n + 2, node.slope);
  node.held = held;
  node.kind = kind;
  node.root_x = t.line.root_x;
  node.root_y = t.line.root_y;
  node.stable = true;
  node.critical = node.corner = node.extreme = node.lowest = node.liquids = false;
  return true;
}

bool solve_on_way(Tracer& t, const LinePoint& a, const LinePoint& b, int held, double part, LinePoint& out) {
  flash::point_between(t.line, a, b, held, part, out.X);
  const double value = a.X[held] + part * (b.X[held] - a.X[held]);
  return flash::solve_point(t.line, out, held, value, flash::kWalkNewtonLimit, true, t.status) == Solved::yes;
}

bool solve_between(Tracer& t, const LinePoint& a, const LinePoint& b, int held, int index, double value,
                   LinePoint& out) {
  constexpr double kOnTarget = 1e-11;
  const flash::Cubic c = flash::between(a, b, index, held);
  double part = support::cubic_root(c, value, 0.0, 1.0);
  flash::point_between(t.line, a, b, held, part, out.X);
  if (flash::solve_point(t.line, out, index, value, flash::kWalkNewtonLimit, true, t.status) == Solved::yes)
    return true;
  for (int k = 0; k < 12; ++k) {
    if (!solve_on_way(t, a, b, held, part, out)) return false;
    const double off = value - out.X[index];
    if (std::fabs(off) < kOnTarget) return true;
    part = std::clamp(part + off / c.slope(part), 0.0, 1.0);
  }
  return false;
}

End walk(Tracer& t, double phase, double sign, bool stable, int seen) {
  const int begin = t.count;
  const End end = begin_walk(t, phase, sign, stable, seen);
  if (end != End::closed || t.count - begin < 3 || t.node[begin].kind != t.node[t.count - 1].kind) return end;
  // Back at its own beginning: it has turned round where it was not stable, and what follows is nothing new.
  const int iT = t.line.T_index();
  if (std::fabs(t.node[begin].X[iT] - t.node[t.count - 1].X[iT]) > 1e-9) return end;
  for (int k = begin; k < t.count; ++k)
    if (!t.node[k].stable) t.count = k;
  return End::broken;
}

}  // namespace kestrune::envelope
