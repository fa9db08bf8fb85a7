// Does a bubble, dew or quality point exist? A dense scan with the judge's own stability test and flash.
#include <algorithm>
#include <cmath>

#include "saturation.hpp"
#include "split.hpp"

namespace kestrune::sweep {
namespace {

struct Line {
  const Sides& sides;
  const SaturationQuestion& q;

  double at(double u) const { return q.given == Given::temperature ? std::exp(u) : u; }
  double T(double u) const { return q.given == Given::temperature ? q.value : u; }
  double P(double u) const { return q.given == Given::temperature ? std::exp(u) : q.value; }

  // Where to look: over the whole range, and closer where the envelope of the feed is.
  std::vector<double> places(int points) const {
    const bool of_P = q.given == Given::temperature;
    const double low = of_P ? std::log(0.001) : std::max(40.0, 0.4 * sides.feed.T_low),
                 high = of_P ? std::log(3000.0) : 900;
    const double from = of_P ? 0 : sides.feed.T_low, to = of_P ? std::log(500.0) : sides.feed.T_high;
    std::vector<double> all;
    for (int k = 0; k <= points; ++k) {
      all.push_back(low + (high - low) * k / points);
      all.push_back(from + (to - from) * k / points);
    }
    std::sort(all.begin(), all.end());
    return all;
  }

  // A boundary between a split state (inside) and a stable one is a bubble point when the new phase is
  // lighter, else a dew point. found is its place when it is the one asked for.
  Existence boundary(double inside, double outside, double& found) const {
    Composition hint;
    for (int k = 0; k < 40; ++k) {
      const double middle = 0.5 * (inside + outside);
      (sides.split(T(middle), P(middle), hint) ? inside : outside) = middle;
    }
    if (hint.empty()) sides.split(T(inside), P(inside), hint);
    if (hint.empty()) return Existence::no;
    const double feed = packing(sides, T(inside), P(inside), sides.z);
    const double trial = packing(sides, T(inside), P(inside), hint);
    if ((trial > feed) != (q.W == 0)) return Existence::no;
    found = at(inside);
    return is_liquid(sides, T(inside), P(inside), trial > feed ? hint : sides.z) ? Existence::liquids
                                                                                 : Existence::yes;
  }

  // The state where the vapour fraction is W; what differs by less than a thousandth is one phase.
  Existence state(double u, double& found) const {
    const auto par = parameters_at<double>(sides.components, T(u));
    const Split split = flash(sides.components, par, P(u), sides.z);
    double apart = 0;
    for (size_t i = 0; i < sides.z.size(); ++i)
      apart = std::max(apart, std::abs(std::log(split.y[i] / split.x[i])));
    if (!(apart > 1e-3)) return Existence::no;
    found = at(u);
    return is_liquid(sides, T(u), P(u), split.y) ? Existence::liquids : Existence::yes;
  }

  // Vapour fraction; a single phase is NaN.
  double fraction(double u) const {
    const Split split = flash(sides.components, parameters_at<double>(sides.components, T(u)), P(u), sides.z);
    return split.two_phase ? split.beta : std::nan("");
  }

  // A vapour fraction that passes W between a two-phase state and its neighbour; jumps do not count.
  Existence crosses(double inside, double beta, double other, double beta_other, double& found) const {
    for (int k = 0; k < 40; ++k) {
      if (std::abs(beta - q.W) < 1e-7) return state(inside, found);
      if (std::abs(beta_other - q.W) < 1e-7) return state(other, found);
      const double middle = 0.5 * (inside + other), value = fraction(middle);
      if (std::isnan(beta_other) && std::isnan(value)) {
        other = middle;
      } else if (std::isnan(value)) {
        return Existence::no;
      } else if (std::isnan(beta_other)) {
        if ((value - q.W) * (beta - q.W) < 0) {
          other = middle;
          beta_other = value;
        } else {
          inside = middle;
          beta = value;
        }
      } else {
        const bool near = (value - q.W) * (beta - q.W) > 0;
        (near ? inside : other) = middle;
        (near ? beta : beta_other) = value;
      }
    }
    return Existence::no;
  }
};

}  // namespace

double packing(const Sides& sides, double T, double P, const Composition& w) {
  Phase<double> phase;
  evaluate(parameters_at<double>(sides.components, T), P, w.data(), Root::stable, false, phase);
  return phase.Z * 82.057 * T / (P * phase.b);
}

bool is_liquid(const Sides& sides, double T, double P, const Composition& w) {
  Phase<double> phase;
  evaluate(parameters_at<double>(sides.components, T), P, w.data(), Root::stable, false, phase);
  return phase.Z * 82.057 * T < 2.0 * P * phase.b && phase.a > critical_attraction * phase.b * 82.057 * T;
}

Existence point_exists(const Sides& sides, const SaturationQuestion& q, double& found, int points) {
  const Line line{sides, q};
  const std::vector<double> places = line.places(points);
  const bool boundary = q.W == 0 || q.W == 1;
  Composition hint;
  bool before = false;
  double beta_before = std::nan("");
  Existence best = Existence::no;
  for (int k = 0; k < static_cast<int>(places.size()) && best != Existence::yes; ++k) {
    const double u = places[k], last = places[std::max(0, k - 1)];
    const bool split = sides.split(line.T(u), line.P(u), hint);
    if (boundary) {
      if (k > 0 && split != before)
        best = std::max(best, line.boundary(split ? u : last, split ? last : u, found));
      before = split;
      continue;
    }
    const double beta = split ? line.fraction(u) : std::nan("");
    const bool here = !std::isnan(beta), there = !std::isnan(beta_before);
    const bool same_side = here && there && (beta - q.W) * (beta_before - q.W) > 0;
    if (k > 0 && (here || there) && !same_side)
      best = std::max(best, line.crosses(here ? u : last, here ? beta : beta_before, here ? last : u,
                                         here ? beta_before : beta, found));
    beta_before = beta;
  }
  return best;
}

}  // namespace kestrune::sweep
