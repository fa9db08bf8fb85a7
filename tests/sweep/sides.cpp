#include "sides.hpp"

#include <algorithm>
#include <cmath>

namespace kestrune::sweep {

Sides::Sides(const Feed& f, const Components& all) : feed(f) {
  std::vector<int> keep;
  for (int i = 0; i < all.n; ++i) {
    if (f.z[i] > 0) keep.push_back(i);
  }
  components = subset(all, keep);
  for (int i : keep) z.push_back(f.z[i]);
  for (int i = 0; i < components.n; ++i) {
    if (components.family[i] == 20.0) water = i;
  }
}

bool Sides::nearly_pure() const {
  return *std::max_element(z.begin(), z.end()) > 0.9999;
}

bool Sides::split(double T, double P, Composition& hint) const {
  const auto par = parameters_at<double>(components, T);
  Phase<double> phase;
  if (nearly_pure()) {
    evaluate(par, P, z.data(), Root::stable, false, phase);
    return phase.Z * 82.057 * T / (P * phase.b) < 3.9514;
  }
  if (feed.free_water) {
    evaluate(par, P, z.data(), Root::largest, false, phase);
    if (z[water] * std::exp(phase.ln_phi[water]) * P > water_vapour_pressure(T)) return true;
  }
  const Plane plane = plane_of(par, P, z);
  auto starts = starting_points(components, par, P, z, plane);
  if (!hint.empty()) starts.insert(starts.begin(), hint);
  const SearchResult found = search(par, P, plane, starts, -1e-12, false);
  if (!found.unstable.empty()) hint = found.unstable.front().w;
  return !found.unstable.empty();
}

double Sides::between(double fixed, double a, double b, bool vary_pressure, bool side_a, int steps) const {
  Composition hint;
  for (int k = 0; k < steps; ++k) {
    const double middle = 0.5 * (a + b);
    const bool side = vary_pressure ? split(fixed, std::exp(middle), hint) : split(middle, fixed, hint);
    (side == side_a ? a : b) = middle;
  }
  return 0.5 * (a + b);
}

bool Sides::top_of_envelope(double T, double P_top, double& P, bool& lighter) const {
  const int points = 40;
  const auto at = [&](int k) { return std::log(P_top) + (std::log(1.0) - std::log(P_top)) * k / points; };
  Composition hint;
  if (split(T, P_top, hint)) return false;
  for (int k = 1; k <= points; ++k) {
    if (!split(T, std::exp(at(k)), hint)) continue;
    double inside = at(k), outside = at(k - 1);
    for (int i = 0; i < 34; ++i) {
      const double middle = 0.5 * (inside + outside);
      (split(T, std::exp(middle), hint) ? inside : outside) = middle;
    }
    P = std::exp(inside);
    const auto par = parameters_at<double>(components, T);
    Phase<double> outer, trial;
    evaluate(par, P, z.data(), Root::stable, false, outer);
    evaluate(par, P, hint.data(), Root::stable, false, trial);
    lighter = trial.Z * outer.b > outer.Z * trial.b;
    return true;
  }
  return false;
}

bool Sides::critical_point(double P_top, int steps, double& T_critical, double& P_critical) const {
  if (nearly_pure() || feed.free_water) return false;
  double cold = 0, hot = 0, P = 0;
  bool lighter = false;
  for (int k = 0; k < 30 && hot == 0; ++k) {
    const double T = feed.T_low + (feed.T_high - feed.T_low) * k / 29;
    if (!top_of_envelope(T, P_top, P, lighter)) continue;
    if (lighter) {
      cold = T;
    } else if (cold > 0) {
      hot = T;
    }
  }
  if (hot == 0) return false;
  P_critical = 0;
  for (int k = 0; k < steps; ++k) {
    const double T = 0.5 * (cold + hot);
    if (!top_of_envelope(T, P_top, P, lighter)) break;
    (lighter ? cold : hot) = T;
    P_critical = P;
  }
  T_critical = 0.5 * (cold + hot);
  return true;
}

}  // namespace kestrune::sweep
