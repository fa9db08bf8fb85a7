#include "branches.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "envelope.hpp"
#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

constexpr double kSamePoint = 1e-5;  // of ln T or ln P: two answers closer than this are one
constexpr double kAtEdge =
    3e-4;  // of ln P, a fifth of it of ln T: an answer farther from the edge of the two phases belongs to another
constexpr double kLongestWalk =
    0.2;  // of ln P, a fifth of it of ln T: how far from the traced line an edge may be
constexpr double kShortestStep = 1e-5;
constexpr int kHalvings = 24;  // of a step: to 1e-8 of the longest

// Where a line is met, as ln of what is looked for, by interpolation between traced points, and how far from there
// the walk to the edge may go: half way to where the line is met again.
struct Crossing {
  double at, low, high;
  bool stable;
};

// What is asked of the flash: the fraction W at the value of T or P.
struct Question {
  const Exports& library;
  Mixture& mixture;
  Given given;
  double W, value;

  double scale() const { return given == Given::WT ? 1.0 : 0.2; }
  double unknown(double T, double P) const { return std::log(given == Given::WT ? P : T); }
  double unknown(const Equilibrium& s) const { return unknown(s.T, s.P); }
  double known(double T, double P) const { return std::log((given == Given::WT ? T : P) / value); }

  Equilibrium at(double u) const {
    const double other = std::exp(u);
    return given == Given::WT ? flash(library, mixture, Given::TP, value, other)
                              : flash(library, mixture, Given::TP, other, value);
  }
  bool two_phases(const Equilibrium& s) const { return s.answered() && s.beta > 0.0 && s.beta < 1.0; }
  // The side of the line that a state is on: at a dew or a bubble point that of two phases or of one, on a quality line
  // that of more or of less vapour.
  bool inside(const Equilibrium& s) const {
    if (W == 0.0 || W == 1.0) return two_phases(s);
    return two_phases(s) ? s.beta < W : W < 0.5;  // one phase is what is next to the line: liquid or vapour
  }
};

// Of bubble and dew curve the part that the fraction asks for; a part that is not stable may be either.
bool belongs(const Piece& piece, double W) {
  if (piece.kind == Piece::Kind::not_stable || piece.kind == Piece::Kind::quality) return true;
  if (piece.kind == Piece::Kind::liquids) return W == 0.0;
  return piece.kind == (W == 1.0 ? Piece::Kind::dew : Piece::Kind::bubble);
}

// The line with its hottest and its highest point, which lie between traced points, so that what is asked for close to
// them meets it.
void add_extreme(Curve& curve, const CurvePlace& extreme, bool hottest) {
  if (!extreme.found() || curve.points.empty()) return;
  const auto of = [hottest](const CurvePoint& p) { return hottest ? p.T : p.P; };
  const auto along = [hottest](double T, double P) { return hottest ? P : T; };
  const auto top = std::max_element(curve.points.begin(), curve.points.end(),
                                    [&](const CurvePoint& a, const CurvePoint& b) { return of(a) < of(b); });
  const double at = along(extreme.T, extreme.P);
  const bool after =
      top + 1 != curve.points.end() && (along(top->T, top->P) - at) * (along(top[1].T, top[1].P) - at) <= 0.0;
  const CurvePoint point{extreme.T, extreme.P, top->kind};
  curve.points.insert(after ? top + 1 : top, point);
}

std::vector<Crossing> crossings(const Question& q, const Curve& curve) {
  std::vector<Crossing> result;
  for (const Piece& piece : pieces_of(curve)) {
    if (!belongs(piece, q.W)) continue;
    for (std::size_t k = 1; k < piece.points.size(); ++k) {
      const CurvePoint &a = piece.points[k - 1], &b = piece.points[k];
      const double from = q.known(a.T, a.P), to = q.known(b.T, b.P);
      if ((from < 0.0) == (to < 0.0)) continue;
      const double share = from / (from - to), u = q.unknown(a.T, a.P), v = q.unknown(b.T, b.P);
      result.push_back({u + share * (v - u), kNone, kNone, piece.kind != Piece::Kind::not_stable});
    }
  }
  std::sort(result.begin(), result.end(), [](const Crossing& a, const Crossing& b) { return a.at < b.at; });
  for (std::size_t k = 0; k < result.size(); ++k) {
    Crossing& c = result[k];
    c.low = c.at - kLongestWalk * q.scale();
    c.high = c.at + kLongestWalk * q.scale();
    if (k > 0) c.low = std::max(c.low, 0.5 * (c.at + result[k - 1].at));
    if (k + 1 < result.size()) c.high = std::min(c.high, 0.5 * (c.at + result[k + 1].at));
  }
  return result;
}

// The edge of two phases, and the state with two phases that is closest to it.
struct Edge {
  double at = kNone;
  Equilibrium within;
  bool found() const { return at == at; }
};

// The last step of a walk went over the edge: it is halved until the edge is between neighbours.
Edge halved(const Question& q, double from, double to, Equilibrium start, Equilibrium end) {
  const bool side = q.inside(start);
  for (int k = 0; k < kHalvings; ++k) {
    const double middle = 0.5 * (from + to);
    Equilibrium s = q.at(middle);
    if (q.inside(s) == side) {
      from = middle;
      start = std::move(s);
    } else {
      to = middle;
      end = std::move(s);
    }
  }
  return {0.5 * (from + to), q.two_phases(start) ? start : end};
}

// From where the traced line is met in growing steps to both sides, as far as to where the states change sides.
Edge find_edge(const Question& q, const Crossing& c) {
  const Equilibrium middle = q.at(c.at);
  double low = c.at, high = c.at;
  Equilibrium below = middle, above = middle;
  for (double step = kShortestStep; low > c.low || high < c.high; step *= 3.0) {
    for (const double sign : {-1.0, 1.0}) {
      double& end = sign < 0.0 ? low : high;
      Equilibrium& last = sign < 0.0 ? below : above;
      const double next = std::clamp(c.at + sign * step * q.scale(), c.low, c.high);
      if (next == end) continue;
      Equilibrium s = q.at(next);
      if (q.inside(s) != q.inside(middle)) return halved(q, end, next, last, s);
      end = next;
      last = std::move(s);
    }
  }
  return {};
}

// A point, or a state without an answer for one that the traced line shows; at: ln of its temperature or pressure.
struct Point {
  double at;
  Equilibrium state;
};

bool is_known(const std::vector<Point>& points, double at, double most) {
  return std::any_of(points.begin(), points.end(), [&](const Point& p) { return std::fabs(p.at - at) < most; });
}

// The point of a crossing from a warm start beside the edge; without an edge from the traced line itself.
void add_point(const Question& q, const Crossing& c, std::vector<Point>& points) {
  const Edge edge = find_edge(q, c);
  const double wanted = edge.found() ? edge.at : c.at;
  const double most = (edge.found() ? kAtEdge : 0.25 * kLongestWalk) * q.scale();
  const Equilibrium start = edge.found() ? edge.within : q.at(c.at);
  Equilibrium s = flash_from(q.library, q.mixture, q.given, q.W, q.value, start);
  if (s.answered() && std::fabs(q.unknown(s) - wanted) < most) {
    if (!is_known(points, q.unknown(s), kSamePoint)) points.push_back({q.unknown(s), s});
    return;
  }
  if (!c.stable || is_known(points, wanted, most)) return;
  const StatusCode status = s.answered() ? KV_NOT_CONVERGED : s.status;
  const std::vector<double> none(q.mixture.z.size());
  const bool at_T = q.given == Given::WT;
  Equilibrium lost{q.given,
                   {q.W, q.value},
                   at_T ? q.value : kNone,
                   at_T ? kNone : q.value,
                   true,
                   status,
                   q.W,
                   none,
                   none,
                   none,
                   kNone,
                   {},
                   {}};
  lost.last_T = at_T ? q.value : wanted;
  lost.remark = "a further point is on the traced line (kestrune envelope), but the flash did not find it";
  points.push_back({wanted, lost});
}

// What is to be said of a point that was found alone.
std::string remark_on_one(const Question& q, const Curve& curve, std::size_t met, const Equilibrium& s) {
  if (q.mixture.count() == 1) return "the only point there is";
  if (curve.status == KV_ENVELOPE_OPEN)
    return "the traced line is open, it goes on above 2000 atm: an upper point may be beyond its end";
  if (!curve_is_good(curve.status))
    return fmt::format("there may be further points: the traced line has the status {}: {}", curve.status,
                       kv_status_text(curve.status));
  const CurvePoint& first = curve.points.front();
  const bool below = q.given == Given::WT && q.value < first.T && s.P > first.P;
  return met == 1 && !below ? "the only point on the traced line (kestrune envelope)" : "";
}

}  // namespace

Branch branch_by_name(std::string_view name) {
  const std::string wanted = lower(trimmed(name));
  if (wanted == "lower") return Branch::lower;
  if (wanted == "upper") return Branch::upper;
  if (wanted == "all") return Branch::all;
  throw InputError(fmt::format("--branch {}: use lower, upper or all", name));
}

std::vector<Equilibrium> points_of_fraction(const Exports& library, Mixture& mixture, Given given, double W,
                                            double value, Branch branch) {
  const Question q{library, mixture, given, W, value};
  const Equilibrium cold = flash_of_all(library, mixture, given, W, value);
  std::vector<Point> points;
  if (cold.answered()) points.push_back({q.unknown(cold), cold});
  const bool outline = W == 0.0 || W == 1.0;
  Curve curve = trace_curve(library, mixture, outline ? 1.0 : W, {}, 0);
  add_extreme(curve, curve.cricondentherm, true);
  add_extreme(curve, curve.cricondenbar, false);
  const std::vector<Crossing> met = crossings(q, curve);
  for (const Crossing& c : met) add_point(q, c, points);
  if (points.empty()) points.push_back({0.0, cold});
  std::sort(points.begin(), points.end(), [](const Point& a, const Point& b) { return a.at < b.at; });
  Equilibrium& last = points.back().state;
  if (points.size() == 1 && last.answered() && last.remark.empty())
    last.remark = remark_on_one(q, curve, met.size(), last);
  if (branch == Branch::lower) return {points.front().state};
  if (branch == Branch::upper) return {last};
  std::vector<Equilibrium> all;
  for (const Point& p : points) all.push_back(p.state);
  return all;
}

}  // namespace kestrune::host
