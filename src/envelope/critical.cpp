// Critical points: the spinodal is followed by packing, and where the form of (35) changes its sign both
// conditions are solved. Section 10 of docs/method.md.

#include "envelope/critical.hpp"

#include <algorithm>
#include <cmath>

#include "flash/feed.hpp"
#include "flash/fugacity.hpp"
#include "flash/pure/pure_saturation.hpp"
#include "flash/settings.hpp"
#include "flash/stability/stability.hpp"
#include "support/spline.hpp"

namespace kestrune::envelope {
namespace {

constexpr double kThinnest = 0.16, kStep = 0.1;  // packing
constexpr int kPackings = 7;
constexpr int kParts = 8;  // in which a step is looked at for roots
constexpr int kNewtonLimit = 30, kSpinodalLimit = 12;
constexpr double kMostLogT = 0.1, kMostEta = 0.05;
constexpr double kLastStep = 1e-6, kRough = 1e-3;  // of ln T and eta
constexpr double kLowestT = 5.0, kHighestT = 5000.0;
constexpr double kSlack = 1e-7;  // below zero, where an eigenvalue counts as negative
constexpr double kStable = -1e-8;
constexpr double kColdPart = 0.4;  // of the highest temperature of the spinodal
constexpr int kMostCritical = 8;

// A state of the spinodal, with the slopes along it.
struct Node {
  double eta = 0.0, T = 0.0, T_slope = 0.0;
  double form = 0.0, form_slope = 0.0;
};

// The temperature at which B becomes singular at node.eta, from node.T.
bool settle(Spinodal& sp, Node& node, StatusCode& status) {
  for (int k = 0; k < kSpinodalLimit; ++k) {
    Curvature c;
    status = curvature_beside(sp, node.T, node.eta, kRough, c);
    if (status != KV_OK) return false;
    // In 1/T, of which the matrix is almost a linear function.
    const double step = -c.g / (c.g_T * node.T);
    if (!(std::fabs(step) < 1e300)) return false;
    if (std::fabs(step) < kRough) {
      const double dT = step * node.T;
      node.T_slope = -c.g_eta / c.g_T;
      node.form = c.form + c.form_T * dT;
      node.form_slope = c.form_eta + c.form_T * node.T_slope;
      node.T += dT;
      return true;
    }
    node.T /= std::clamp(1.0 - step, 1.0 / 1.3, 1.3);
    if (!(node.T > kLowestT && node.T < kHighestT)) return false;
  }
  return false;
}

// A node of the spinodal at a packing: the highest temperature there, from just below it.
bool first_node(Spinodal& sp, double eta, Node& node, StatusCode& status) {
  double T = flash::pseudo_critical_temperature(*sp.context.record, sp.z);
  const bool down = locally_stable(sp, T, eta, 0.0, status);
  bool stable = down;
  while (stable == down && status == KV_OK) {
    T *= down ? 0.85 : 1.0 / 0.85;
    if (!(T > kLowestT && T < kHighestT)) return false;
    stable = locally_stable(sp, T, eta, 0.0, status);
  }
  if (status != KV_OK) return false;
  // Newton's method may leave for another eigenvalue: from a closer bracket then.
  constexpr int kBrackets = 5;
  constexpr double kRoom = 0.02;
  double low = stable ? 0.85 * T : T, high = stable ? T : T / 0.85;
  for (int k = 0; k < kBrackets; ++k) {
    node.eta = eta;
    node.T = low;
    status = start_border(sp, low, eta);
    if (status != KV_OK) return false;
    if (settle(sp, node, status) && node.T > (1.0 - kRoom) * low && node.T < (1.0 + kRoom) * high) return true;
    if (status != KV_OK) return false;
    const double middle = std::sqrt(low * high);
    (locally_stable(sp, middle, eta, 0.0, status) ? high : low) = middle;
    if (status != KV_OK) return false;
  }
  return false;
}

// The form and the temperature between two nodes.
support::Cubic form_between(const Node& a, const Node& b) {
  return support::cubic(a.form, a.form_slope, b.form, b.form_slope, b.eta - a.eta);
}
support::Cubic T_between(const Node& a, const Node& b) {
  return support::cubic(a.T, a.T_slope, b.T, b.T_slope, b.eta - a.eta);
}

// The critical point in the part low .. high of the way from a to b, where the cubic of the form changes sign.
bool solve_between(Spinodal& sp, const Node& a, const Node& b, double low, double high, double& T, double& eta,
                   StatusCode& status) {
  constexpr int kHalvings = 12;  // Newton's method does the rest
  const double h = b.eta - a.eta, part = support::cubic_root(form_between(a, b), 0.0, low, high, kHalvings);
  T = T_between(a, b).at(part);
  eta = a.eta + part * h;
  return solve_critical(sp, T, eta, status) && eta > a.eta - 0.1 * h && eta < b.eta + 0.1 * h;
}

void keep(const Spinodal& sp, double T, double eta, int capacity, Critical* found, int& count) {
  const double P = pressure_at(sp, eta);
  if (!(P > 0.0) || count >= capacity) return;
  for (int k = 0; k < count; ++k)
    if (std::fabs(found[k].T / T - 1.0) < 1e-7 && std::fabs(found[k].P / P - 1.0) < 1e-6) return;
  const double V = sp.b / eta;
  int at = count++;
  for (; at > 0 && found[at - 1].T < T; --at) found[at] = found[at - 1];
  found[at] = {T, P, V, P * V / (eos::kR * T)};
}

// Where between two nodes the form comes close to zero and turns: it may have two zeros there that the cubic
// misses.
bool comes_close(const Node& a, const Node& b, double& where) {
  constexpr double kClose = 0.5;  // of the smaller one at the ends
  double least = kClose * std::min(std::fabs(a.form), std::fabs(b.form));
  bool close = false;
  const support::Cubic form = form_between(a, b);
  for (int k = 1; k < kParts; ++k) {
    const double t = static_cast<double>(k) / kParts, value = form.at(t);
    if ((value > 0.0) != (a.form > 0.0)) return false;
    if (std::fabs(value) > least) continue;
    least = std::fabs(value);
    where = t;
    close = true;
  }
  return close && (a.form > 0.0) == (b.form > 0.0);
}

// All critical points between two neighbours of the spinodal that the cubic of the form shows.
void add_roots(Spinodal& sp, const Node& a, const Node& b, int capacity, Critical* found, int& count,
               StatusCode& status) {
  double before = a.form;
  const support::Cubic form = form_between(a, b);
  for (int k = 1; k <= kParts; ++k) {
    const double t = static_cast<double>(k) / kParts, value = form.at(t);
    if ((before > 0.0) != (value > 0.0)) {
      double T, eta;
      std::copy_n(sp.w, sp.n, sp.kept);
      if (solve_between(sp, a, b, t - 1.0 / kParts, t, T, eta, status))
        keep(sp, T, eta, capacity, found, count);
      std::copy_n(sp.kept, sp.n, sp.w);
      if (status != KV_OK) return;
    }
    before = value;
  }
}

// All critical points between two neighbours of the spinodal. The border is that of b, before and after.
void add_between(Spinodal& sp, const Node& a, const Node& b, int capacity, Critical* found, int& count,
                 StatusCode& status) {
  constexpr int kMostSplits = 3;
  Node from = a, middle;
  double where = 0.0;
  for (int k = 0; k < kMostSplits && comes_close(from, b, where); ++k) {
    middle.eta = from.eta + where * (b.eta - from.eta);
    middle.T = T_between(from, b).at(where);
    if (!settle(sp, middle, status)) break;
    add_roots(sp, from, middle, capacity, found, count, status);
    from = middle;
  }
  Curvature c;
  if (from.eta != a.eta && status == KV_OK) status = curvature(sp, b.T, b.eta, c);
  if (status == KV_OK) add_roots(sp, from, b, capacity, found, count, status);
}

// Whether nothing splits off the feed at its critical state.
bool stable_feed(const eos::Context& context, const double* z, const Critical& c, StatusCode& status) {
  flash::StabilityCall call{{z, context.silent()}, c.T, c.P};
  call.incipient = z;
  flash::StabilityResult found;
  status = flash::test_stability(call, found);
  return status == KV_OK && found.distance >= kStable;
}

StatusCode own_constants(const MixtureRecord& r, int j, Critical& c) {
  const auto value = [&](int column) { return r.table[static_cast<std::size_t>(column - 1) * r.count + j]; };
  c.T = value(KV_COL_TC);
  c.P = value(KV_COL_PC);
  if (!(c.T > 0.0 && c.T < 1e300 && c.P > 0.0 && c.P < 1e300)) return KV_COMPONENT_DATA;
  c.V = value(KV_COL_VC);
  if (!(c.V > 0.0 && c.V < 1e300)) c.V = eos::kCriticalVolumeRatio * eos::kOmegaB_R * c.T / c.P;
  c.Z = c.P * c.V / (eos::kR * c.T);
  return KV_OK;
}

StatusCode search(const eos::Context& context, const double* feed, support::Arena& arena, Critical& result) {
  const int n = context.record->count;
  double* z = arena.zeros(support::padded(n));
  if (!flash::normalise_feed(n, feed, z)) return KV_COMPOSITION;
  Spinodal sp;
  open_spinodal(arena, context, z, sp);
  const int pure = flash::single_component(n, z, flash::pure_tolerance(*context.record));
  if (pure >= 0) {
    // Data that no calculation could work with are refused as well.
    StatusCode status = KV_OK;
    locally_stable(sp, 300.0, 0.1, 0.0, status);
    return status == KV_OK ? own_constants(*context.record, pure, result) : status;
  }
  Critical found[kMostCritical];
  int count = 0;
  StatusCode status = critical_points(sp, kMostCritical, found, count);
  if (status != KV_OK && status != KV_NOT_FINITE) return status;
  for (int k = 0; k < count; ++k) {
    if (!stable_feed(context, z, found[k], status)) continue;
    result = found[k];
    return KV_OK;
  }
  return KV_NO_CRITICAL;
}

}  // namespace

bool solve_critical(Spinodal& sp, double& T, double& eta, StatusCode& status) {
  for (int k = 0; k < kNewtonLimit; ++k) {
    Curvature c;
    status = curvature(sp, T, eta, c);
    if (status != KV_OK) return false;
    const double determinant = c.g_T * c.form_eta - c.g_eta * c.form_T;
    double dT = -(c.g * c.form_eta - c.g_eta * c.form) / determinant / T;
    double d_eta = -(c.g_T * c.form - c.form_T * c.g) / determinant;
    const double size = std::max(std::fabs(dT) / kMostLogT, std::fabs(d_eta) / kMostEta);
    if (!(size < 1e300)) return false;
    const double factor = size > 1.0 ? 1.0 / size : 1.0;
    T *= std::exp(factor * dT);
    eta += factor * d_eta;
    if (!(T > kLowestT && T < kHighestT && eta > 0.01 && eta < 0.98)) return false;
    if (std::fabs(dT) < kLastStep && std::fabs(d_eta) < kLastStep)
      return locally_stable(sp, T, eta, kSlack, status);
  }
  return false;
}

StatusCode critical_points(Spinodal& sp, int capacity, Critical* found, int& count) {
  count = 0;
  Node here, next;
  StatusCode status = KV_OK;
  bool have = false;
  double hottest = 0.0, most = 0.0, eta = kThinnest;
  for (int k = 0; k < kPackings; ++k, eta += kStep) {
    bool followed = false;
    next.eta = eta;
    if (have) {
      next.T = here.T * std::exp(std::clamp(here.T_slope / here.T * kStep, -0.3, 0.3));
      followed = settle(sp, next, status);
      if (status != KV_OK) return status;
    }
    // Without a neighbour it may be another part of the spinodal, whose vector has a sign of its own.
    if (!followed && !first_node(sp, eta, next, status)) {
      if (status != KV_OK) return status;
      have = false;
      continue;
    }
    if (have && followed) add_between(sp, here, next, capacity, found, count, status);
    if (status != KV_OK) return status;
    here = next;
    have = true;
    const double P = pressure_at(sp, eta);
    hottest = std::max(hottest, here.T);
    most = std::max(most, P);
    // The inside of a liquid, far below zero pressure.
    if (here.T < kColdPart * hottest || P < -0.5 * most) break;
  }
  return KV_OK;
}

StatusCode critical_point(const eos::Context& context, const double* z, Critical& result) {
  return support::with_arena<8, 60>(context.record->count,
                                    [&](support::Arena& arena) { return search(context, z, arena, result); });
}

}  // namespace kestrune::envelope
