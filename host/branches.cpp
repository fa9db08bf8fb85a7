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
constexpr double kNearGuess =
    0.05;  // of ln P, a fifth of it of ln T: an answer farther from its guess belongs to another
constexpr double kInside[] = {1e-3, 1e-2, 3e-2};  // steps of ln P from a guess into the two phases

// Where a line is met: both coordinates, the unknown one by interpolation between traced points.
struct Crossing {
  double T, P;
};

double ln_unknown(Given given, double T, double P) {
  return std::log(given == Given::WT ? P : T);
}

// Of bubble and dew curve the part that the fraction asks for; a part that is not stable may be either.
bool belongs(const Piece& piece, double W) {
  if (piece.kind == Piece::Kind::not_stable || piece.kind == Piece::Kind::quality) return true;
  if (piece.kind == Piece::Kind::liquids) return W == 0.0;
  return piece.kind == (W == 1.0 ? Piece::Kind::dew : Piece::Kind::bubble);
}

std::vector<Crossing> crossings(const Curve& curve, Given given, double W, double value) {
  std::vector<Crossing> result;
  for (const Piece& piece : pieces_of(curve)) {
    if (!belongs(piece, W)) continue;
    for (std::size_t k = 1; k < piece.points.size(); ++k) {
      const CurvePoint &a = piece.points[k - 1], &b = piece.points[k];
      const bool at_T = given == Given::WT;
      const double from = std::log((at_T ? a.T : a.P) / value), to = std::log((at_T ? b.T : b.P) / value);
      if (from * to > 0.0 || from == to) continue;
      const double share = from / (from - to);
      result.push_back(
          {at_T ? value : a.T * std::pow(b.T / a.T, share), at_T ? a.P * std::pow(b.P / a.P, share) : value});
    }
  }
  return result;
}

// Two phases close to a crossing, for the compositions of a warm start; the one whose fraction is nearest to W.
Equilibrium start_near(const Exports& library, Mixture& mixture, const Crossing& at, double W) {
  Equilibrium best = flash(library, mixture, Given::TP, at.T, at.P);
  const auto two = [](const Equilibrium& s) { return s.answered() && s.beta > 0.0 && s.beta < 1.0; };
  for (const double step : kInside) {
    for (const double sign : {-1.0, 1.0}) {
      const Equilibrium s = flash(library, mixture, Given::TP, at.T, at.P * std::exp(sign * step));
      if (two(s) && (!two(best) || std::fabs(s.beta - W) < std::fabs(best.beta - W))) best = s;
    }
    if (two(best)) break;
  }
  return best;
}

bool is_near(Given given, const Crossing& guess, const Equilibrium& s) {
  const double gap = ln_unknown(given, s.T, s.P) - ln_unknown(given, guess.T, guess.P);
  return std::fabs(gap) < (given == Given::WT ? kNearGuess : 0.2 * kNearGuess);
}

void add_point(std::vector<Equilibrium>& points, Given given, const Equilibrium& s) {
  for (const Equilibrium& p : points)
    if (std::fabs(ln_unknown(given, p.T, p.P) - ln_unknown(given, s.T, s.P)) < kSamePoint) return;
  points.push_back(s);
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
  std::vector<Equilibrium> points;
  const Equilibrium cold = flash_of_all(library, mixture, given, W, value);
  if (cold.answered()) points.push_back(cold);
  const bool outline = W == 0.0 || W == 1.0;
  const Curve curve = trace_curve(library, mixture, outline ? 1.0 : W, {}, 0);
  int lost = 0;
  for (const Crossing& at : crossings(curve, given, W, value)) {
    const auto is_known = [&](const Equilibrium& s) { return is_near(given, at, s); };
    if (std::any_of(points.begin(), points.end(), is_known)) continue;
    const Equilibrium s = flash_from(library, mixture, given, W, value, start_near(library, mixture, at, W));
    if (s.answered() && is_near(given, at, s))
      add_point(points, given, s);
    else
      ++lost;
  }
  if (points.empty()) points.push_back(cold);
  std::sort(points.begin(), points.end(), [&](const Equilibrium& a, const Equilibrium& b) {
    return ln_unknown(given, a.T, a.P) < ln_unknown(given, b.T, b.P);
  });
  if (lost > 0)
    points.back().remark =
        "a further point is on the traced line (kestrune envelope), but the flash did not find it";
  else if (points.size() == 1 && points.front().answered() && branch != Branch::all)
    points.front().remark = "the only point that was found here";
  if (branch == Branch::lower) return {points.front()};
  if (branch == Branch::upper) return {points.back()};
  return points;
}

}  // namespace kestrune::host
