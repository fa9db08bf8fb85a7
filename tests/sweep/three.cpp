#include "three.hpp"

#include <algorithm>
#include <cmath>
#include <random>

namespace kestrune::sweep {
namespace {

bool fail(ThreeVerdict& verdict, const std::string& group, const std::string& reason) {
  verdict.group = group;
  verdict.reason = reason;
  return false;
}

// Signs, sums and balance of the full arrays. A phase without a share is not looked at.
bool balanced(const Question& question, const ThreeAnswer& answer, ThreeVerdict& verdict) {
  const struct {
    double share;
    const Composition& w;
  } phases[] = {{answer.beta, answer.a}, {answer.rest(), answer.b}, {answer.V, answer.y}};
  double total = 0;
  for (double v : question.z) total += v;
  double sums[3] = {};
  for (int i = 0; i < question.components->n; ++i) {
    double left = question.z[i] / total;
    for (int k = 0; k < 3; ++k) {
      if (phases[k].share == 0) continue;
      const double w = phases[k].w[i];
      if (!(w >= 0)) return fail(verdict, "fractions", "a mole fraction is negative or not a number");
      if (question.z[i] == 0 && w > 0)
        return fail(verdict, "fractions", "a component that the feed lacks appears");
      sums[k] += w;
      left -= phases[k].share * w;
    }
    verdict.balance = std::max(verdict.balance, std::abs(left));
  }
  for (int k = 0; k < 3; ++k) {
    if (phases[k].share > 0 && !(std::abs(sums[k] - 1) <= balance_tolerance))
      return fail(verdict, "sum of a phase", text("the fractions of a phase add up to 1 %+.3g", sums[k] - 1));
  }
  if (verdict.balance <= balance_tolerance) return true;
  return fail(verdict, "material balance", text("material balance off by %.3g", verdict.balance));
}

bool distinct(const std::vector<PresentPhase>& phases, ThreeVerdict& verdict) {
  for (size_t k = 0; k < phases.size(); ++k) {
    for (size_t l = 0; l < k; ++l) {
      const double apart = largest_difference(phases[k].w, phases[l].w);
      if (apart < 1e-7 && std::abs(static_cast<double>(phases[k].state.Z - phases[l].state.Z)) < 1e-7)
        return fail(verdict, "identical phases", text("two identical phases (largest difference %.3g)", apart));
    }
  }
  return true;
}

// A no denser than B, and nothing packed less densely than the vapour.
bool ordered(const std::vector<PresentPhase>& phases, ThreeVerdict& verdict) {
  const double slack = 1 + 1e-9;
  for (const PresentPhase& p : phases) {
    for (const PresentPhase& q : phases) {
      if (p.name == 'V' && p.volume_ratio * slack < q.volume_ratio)
        return fail(verdict, "order",
                    text("the vapour has v/b %.8g, a liquid %.8g", p.volume_ratio, q.volume_ratio));
      if (p.name == 'A' && q.name == 'B' && p.mass_density > q.mass_density * slack)
        return fail(verdict, "order",
                    text("liquid A has %.8g g/cm3, liquid B %.8g", p.mass_density, q.mass_density));
    }
  }
  return true;
}

// The lighter of two phases is a vapour where it is packed less densely than at the critical point, or above its
// pseudo-critical temperature (Kay), by a quarter of it beside an aqueous liquid; else there are two liquids.
bool named(const Question& q, const Reduced& r, const std::vector<PresentPhase>& phases,
           ThreeVerdict& verdict) {
  if (phases.size() != 2) return true;
  const bool first = phases[0].volume_ratio > phases[1].volume_ratio;
  const PresentPhase &light = phases[first ? 0 : 1], &other = phases[first ? 1 : 0];
  double kay = 0;
  bool aqueous = false;
  for (int i = 0; i < r.components.n; ++i) {
    kay += light.w[i] * r.components.tc[i];
    aqueous = aqueous || (r.components.family[i] == 20.0 && other.w[i] > 0.5);
  }
  const double loose = light.volume_ratio / 3.9513730355914394, hot = q.T / (aqueous ? 1.25 * kay : kay);
  if (std::abs(loose - 1) < 1e-6 || std::abs(hot - 1) < 1e-6) return true;
  if ((light.name == 'V') == (loose > 1 || hot > 1)) return true;
  return fail(verdict, "name",
              text("v/b over the critical one %.6g, T over what makes a vapour %.6g", loose, hot));
}

// KLL = xA/xB and KLV = y/xA of three phases, held within 1e-15 .. 1e15.
bool ratios_agree(const Question& question, const ThreeAnswer& answer, ThreeVerdict& verdict) {
  const auto off = [](double K, double up, double down) {
    return !(std::abs(K / std::clamp(up / down, 1e-15, 1e15) - 1) <= 1e-9);
  };
  for (int i = 0; i < question.components->n; ++i) {
    if (!(answer.a[i] > least_fraction && answer.b[i] > least_fraction && answer.y[i] > least_fraction))
      continue;
    if (off(answer.kll[i], answer.a[i], answer.b[i]) || off(answer.klv[i], answer.y[i], answer.a[i]))
      return fail(verdict, "K values", text("KLL %.12g, KLV %.12g", answer.kll[i], answer.klv[i]));
  }
  return true;
}

}  // namespace

Layout layout_of(const ThreeAnswer& s) {
  const double rest = s.rest();
  if (!(s.status == 0 && s.beta >= 0 && s.beta <= 1 && s.V >= 0 && s.V <= 1 && rest >= 0)) return Layout::none;
  if (s.beta > 0 && s.V > 0) return rest > 0 ? Layout::three : Layout::none;
  if (s.V > 0) return rest > 0 ? Layout::liquid_vapour : Layout::one;
  return s.beta > 0 && rest > 0 ? Layout::two_liquids : Layout::one;
}

int phase_count(Layout layout) {
  switch (layout) {
    case Layout::none:
      return 0;
    case Layout::one:
      return 1;
    case Layout::three:
      return 3;
    default:
      return 2;
  }
}

PresentPhase phase_of(const Question& q, const Reduced& r, char name, double share, const Composition& full) {
  PresentPhase p;
  p.name = name;
  p.share = share;
  p.w = r.part(full);
  for (double& w : p.w) w = std::max(w, 1e-290);
  p.state = exact_phase(r, q.P, p.w, Root::stable);
  const double volume = static_cast<double>(p.state.Z) * 82.057 * q.T / q.P;
  p.volume_ratio = volume / static_cast<double>(p.state.b);
  for (int i = 0; i < r.components.n; ++i) p.mass_density += p.w[i] * r.components.mass[i] / volume;
  return p;
}

bool is_gas(const PresentPhase& phase) {
  return phase.state.roots > 1 && phase.state.spread > 1e-8L ? phase.state.gas_side : phase.name == 'V';
}

std::vector<PresentPhase> present_phases(const Question& q, const Reduced& r, const ThreeAnswer& answer) {
  std::vector<PresentPhase> phases;
  if (answer.beta != 0) phases.push_back(phase_of(q, r, 'A', answer.beta, answer.a));
  if (answer.rest() != 0) phases.push_back(phase_of(q, r, 'B', answer.rest(), answer.b));
  if (answer.V != 0) phases.push_back(phase_of(q, r, 'V', answer.V, answer.y));
  return phases;
}

Plane common_plane(const Reduced& r, const std::vector<PresentPhase>& phases) {
  Plane plane{Composition(r.components.n), {}};
  for (const PresentPhase& p : phases) plane.phases.push_back(p.w);
  for (int i = 0; i < r.components.n; ++i) {
    double most = -1;
    for (const PresentPhase& p : phases) {
      if (!(p.share * p.w[i] > most)) continue;
      most = p.share * p.w[i];
      plane.d[i] = static_cast<double>(std::log(static_cast<long double>(p.w[i])) + p.state.ln_phi[i]);
    }
  }
  return plane;
}

double lowest_distance(const Reduced& r, double P, const Plane& plane) {
  const int n = r.components.n;
  std::vector<Composition> starts = starting_points(r.components, r.par, P, r.z, plane);
  Composition w(n);
  for (int k = 0; k < n; ++k) {
    for (int i = 0; i < n; ++i) w[i] = 0.5 * (r.z[i] + (i == k));
    starts.push_back(w);
  }
  std::mt19937_64 random(192837465u);
  std::exponential_distribution<double> draw(1.0);
  for (int k = 0; k < 12; ++k) {
    double total = 0;
    for (double& v : w) total += v = std::pow(draw(random), 1.0 + 0.5 * k) + 1e-30;
    for (double& v : w) v /= total;
    starts.push_back(w);
  }
  return search(r.par, P, plane, starts, -tpd_tolerance, false).lowest;
}

double fugacity_difference(const Plane& plane, const std::vector<PresentPhase>& phases) {
  double largest = 0;
  for (const PresentPhase& p : phases) {
    for (size_t i = 0; i < plane.d.size(); ++i) {
      const double true_ln = plane.d[i] - static_cast<double>(p.state.ln_phi[i]);
      const double difference = std::abs(std::log(p.w[i]) - true_ln);
      if (p.w[i] > least_fraction || true_ln > std::log(10 * least_fraction))
        largest = std::max(largest, difference <= 1e300 ? difference : 1e300);
    }
  }
  return largest;
}

double shares_apart(const ThreeAnswer& p, const ThreeAnswer& q) {
  return std::max(std::abs(p.beta - q.beta), std::abs(p.V - q.V));
}

double closest_phases(const Question& question, const ThreeAnswer& answer) {
  const auto phases = present_phases(question, Reduced(question), answer);
  double least = 1;
  for (size_t k = 0; k < phases.size(); ++k) {
    for (size_t l = 0; l < k; ++l) least = std::min(least, largest_difference(phases[k].w, phases[l].w));
  }
  return least;
}

ThreeVerdict judge_three(const Question& question, const ThreeAnswer& answer, bool names) {
  ThreeVerdict verdict;
  if (answer.status != 0) {
    fail(verdict, text("status %.0f", answer.status), text("status %.0f", answer.status));
    return verdict;
  }
  const Layout layout = layout_of(answer);
  if (layout == Layout::none) {
    fail(verdict, "shares", text("beta is %.17g, V is %.17g", answer.beta, answer.V));
    return verdict;
  }
  if (!balanced(question, answer, verdict)) return verdict;
  const Reduced r(question);
  const auto phases = present_phases(question, r, answer);
  if (!distinct(phases, verdict)) return verdict;
  const Plane plane = common_plane(r, phases);
  verdict.fugacity = fugacity_difference(plane, phases);
  if (verdict.fugacity > fugacity_tolerance) {
    fail(verdict, "fugacities", text("fugacities differ by %.3g in ln f", verdict.fugacity));
    return verdict;
  }
  if (!ordered(phases, verdict) || (names && !named(question, r, phases, verdict))) return verdict;
  if (layout == Layout::three && !ratios_agree(question, answer, verdict)) return verdict;
  verdict.tpd = lowest_distance(r, question.P, plane);
  if (verdict.tpd < -tpd_tolerance) {
    fail(verdict, text("unstable, %.0f phases reported", phase_count(layout)),
         text("unstable, tangent-plane distance %.3g", verdict.tpd));
    return verdict;
  }
  verdict.layout = layout;
  return verdict;
}

}  // namespace kestrune::sweep
