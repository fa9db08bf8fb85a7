#include "saturation_points.hpp"

#include <algorithm>
#include <cmath>
#include <random>

namespace kestrune::sweep {
namespace {

constexpr double P_low = 0.01, P_high = 300, P_top = 3000;

// Where the envelope of one feed has its critical point and ends; 0 where not found.
struct Landmarks {
  double Tc = 0, Pc = 0, T_hottest = 0, P_highest = 0;
};

// Whether the feed splits anywhere on a line of constant T or P.
bool splits_on_line(const Sides& sides, bool constant_T, double value, double low, double high) {
  Composition hint;
  for (int k = 0; k <= 40; ++k) {
    const double u = low + (high - low) * k / 40;
    if (constant_T ? sides.split(value, std::exp(u), hint) : sides.split(u, value, hint)) return true;
  }
  return false;
}

Landmarks find_landmarks(const Sides& sides, int steps) {
  Landmarks marks;
  if (!sides.critical_point(500, steps, marks.Tc, marks.Pc)) return marks;
  double in = marks.Tc, out = std::min(900.0, 2 * marks.Tc);
  for (int k = 0; k < 14; ++k) {
    const double T = 0.5 * (in + out);
    (splits_on_line(sides, true, T, std::log(0.01), std::log(2 * marks.Pc)) ? in : out) = T;
  }
  marks.T_hottest = in;
  in = marks.Pc;
  out = 3 * marks.Pc;
  for (int k = 0; k < 14; ++k) {
    const double P = 0.5 * (in + out);
    (splits_on_line(sides, false, P, 0.8 * marks.Tc, marks.T_hottest) ? in : out) = P;
  }
  marks.P_highest = in;
  return marks;
}

double draw_quality(double u) {
  const double between[] = {0.5, 0.1, 0.9, 1e-3, 0.999, 0.25, 0.75, 1e-6};
  if (u < 0.35) return 0;
  if (u < 0.70) return 1;
  if (u < 0.85) return between[static_cast<int>((u - 0.70) / 0.15 * 8) % 8];
  return (u - 0.85) / 0.15;
}

// One boundary on a line of constant T or P drawn at random: bubble or dew as the new phase says. Falls back to
// the question as drawn when the line crosses none.
SaturationQuestion boundary_question(const Sides& sides, double T, double P, bool constant_T, double pick) {
  SaturationQuestion q{constant_T ? Given::temperature : Given::pressure, 1, constant_T ? T : P, false,
                       "boundary"};
  if (sides.nearly_pure()) return q;
  const double low = constant_T ? std::log(0.001) : 60, high = constant_T ? std::log(P_top) : 900;
  const int points = 30;
  std::vector<int> crossings;
  std::vector<bool> side;
  Composition hint;
  const auto at = [&](int k) { return low + (high - low) * (k + 0.5) / points; };
  for (int k = 0; k < points; ++k) {
    side.push_back(constant_T ? sides.split(T, std::exp(at(k)), hint) : sides.split(at(k), P, hint));
    if (k > 0 && side[k] != side[k - 1]) crossings.push_back(k);
  }
  if (crossings.empty()) return q;
  const int k = crossings[static_cast<size_t>(pick * static_cast<double>(crossings.size()))];
  double in = side[k] ? at(k) : at(k - 1), out = side[k] ? at(k - 1) : at(k);
  hint.clear();
  for (int step = 0; step < 40; ++step) {
    const double middle = 0.5 * (in + out);
    const bool splits = constant_T ? sides.split(T, std::exp(middle), hint) : sides.split(middle, P, hint);
    (splits ? in : out) = middle;
  }
  if (hint.empty()) return q;
  const double at_T = constant_T ? T : in, at_P = constant_T ? std::exp(in) : P;
  const double outer = packing(sides, at_T, at_P, sides.z), other = packing(sides, at_T, at_P, hint);
  q.W = other > outer ? 0 : 1;
  q.exists = !is_liquid(sides, at_T, at_P, other > outer ? hint : sides.z);
  return q;
}

}  // namespace

std::vector<SaturationQuestion> make_saturation_questions(const Sides& sides, const StatePlan& plan) {
  const Feed& feed = sides.feed;
  const Landmarks marks = find_landmarks(sides, plan.critical_steps);
  std::vector<SaturationQuestion> questions(plan.count);
  parallel_for(plan.count, plan.jobs, [&](int k) {
    std::mt19937_64 random(plan.seed * 1000003u + static_cast<uint64_t>(k));
    std::uniform_real_distribution<double> unit(0, 1);
    const double place = unit(random), u = unit(random), v = unit(random), pick = unit(random);
    const bool constant_T = unit(random) < 0.5;
    const double T = feed.T_low + (feed.T_high - feed.T_low) * u, P = P_low * std::pow(P_high / P_low, v);
    SaturationQuestion& q = questions[k];
    q = {constant_T ? Given::temperature : Given::pressure, draw_quality(pick), constant_T ? T : P, false,
         "random"};
    if (place < 0.2) {
      q = boundary_question(sides, T, P, constant_T, pick);
    } else if (place < 0.35 && marks.Tc > 0) {
      const double distance = (v < 0.5 ? 1 : -1) * std::pow(10, -2 - 2 * u);
      q.value = (constant_T ? marks.Tc : marks.Pc) * (1 + distance);
      q.kind = "critical";
    } else if (place < 0.35 && sides.nearly_pure()) {
      double Tc = 0, Pc = 0;
      one_fluid_critical(sides, Tc, Pc);
      q.value = (constant_T ? Tc : Pc) * (1 - std::pow(10, -2 - 2 * u));
      q.kind = "critical";
    } else if (place < 0.5 && marks.T_hottest > marks.Tc) {
      const double near = constant_T ? marks.Tc : marks.Pc,
                   far = constant_T ? marks.T_hottest : marks.P_highest;
      q.value = near + (far - near) * (pick < 0.3 ? 1 - 0.01 * u : u);
      q.W = v < 0.7 ? 1 : v < 0.8 ? 0 : v;
      q.exists = constant_T && q.W == 1;
      q.kind = "retrograde";
    }
  });
  return questions;
}

}  // namespace kestrune::sweep
