// What an answer at a vapour fraction has to be before it leaves with status 0, or as one that is not stable:
// sections 5 and 8 of docs/method.md.

#include <algorithm>
#include <cmath>

#include "flash/accept.hpp"
#include "flash/isothermal/two_phase.hpp"
#include "flash/quality/quality_state.hpp"
#include "flash/stability/stability.hpp"
#include "support/ldl.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

constexpr double kStable = -1e-8;
// Volume over co-volume of the densest fluid that is still called a vapour beside a liquid: liquids have 1.2
// to 1.7, gases at hundreds of atmospheres 2 to 4.
constexpr double kDensestVapour = 1.5;
constexpr double kDensestBesideWater = 0.5 * eos::kCriticalVolumeRatio;  // half as packed as a critical fluid
constexpr double kCloseDensity = 0.05;  // relative, of their compressibility factors
// What an eigenvalue may be below zero for a point next to a critical one that was found on the way over it: T
// and P follow from that way, and are not exact to the last digit.
constexpr double kNoCurvature = 1e-6;
// Beside a critical point equal fugacities alone leave T, P and ln K open: what Newton's method still asks for,
// in parts of the largest ln K.
constexpr double kSettled = 0.05;

// Both phases on the roots asked for, at line.m: ln phi into line.phi_x and line.phi_y, Z into the point.
StatusCode phases_at(Quality& q, Kind of_x, Kind of_y) {
  QualityLine& line = q.line;
  LinePoint& p = q.point;
  p.Zx = p.Zy = 0.0;
  const StatusCode status = fugacity(line.m, p.x, of_x, line.phi_x, nullptr, p.Zx);
  if (status != KV_OK) return status;
  return fugacity(line.m, p.y, of_y, line.phi_y, nullptr, p.Zy);
}

double gap(const Quality& q) {
  const QualityLine& line = q.line;
  return fugacity_gap(line.n, line.z, {q.point.x, line.phi_x}, {q.point.y, line.phi_y});
}

// What is owed, by the rules of a host where its routine rules.
double owed(const Quality& q) {
  return std::max(kOwedFugacity, host_slack(q.line.m, q.settings));
}

double largest_log_K(const Quality& q) {
  double largest = 0.0;
  for (int i = 0; i < q.line.n; ++i)
    if (q.line.z[i] > 0.0) largest = std::max(largest, std::fabs(q.point.X[i]));
  return largest;
}

bool close_in_density(const LinePoint& p) {
  return std::fabs(p.Zx - p.Zy) <= kCloseDensity * p.Zy;
}

bool close_in_composition(const Quality& q) {
  return largest_log_K(q) <= kCloseLogK;
}

// Whether the two are in equilibrium on their roots of lower Gibbs energy, or (stable_roots false) on those of
// their names only, which comes first where their compositions hardly differ (azeotropes). q.status: of the
// model, which makes it false.
bool equal_fugacities(Quality& q, bool& stable_roots) {
  const auto equal_on = [&](Kind of_x, Kind of_y) {
    q.status = phases_at(q, of_x, of_y);
    return q.status == KV_OK && gap(q) <= owed(q);
  };
  stable_roots = false;
  const bool named_first = close_in_composition(q);
  if (named_first && equal_on(Kind::liquid, Kind::gas) && !close_in_density(q.point)) return true;
  if (q.status != KV_OK) return false;
  stable_roots = equal_on(Kind::stable, Kind::stable);
  if (stable_roots || q.status != KV_OK) return stable_roots;
  return !named_first && equal_on(Kind::liquid, Kind::gas);
}

// Whether on its root of lower Gibbs energy a phase w has the Gibbs energy of the ln phi given, within what is
// owed: where both roots are as good, equilibrium needs the one of its name.
bool as_good(Quality& q, const double* w, const double* ln_phi) {
  double Z = 0.0, excess = 0.0;
  q.status = water_aware_fugacity(q.line.m, w, Kind::stable, q.spare, {}, Z);
  if (q.status != KV_OK) return false;
  for (int i = 0; i < q.line.n; ++i) excess += w[i] * (ln_phi[i] - q.spare[i]);
  return excess <= owed(q);
}

/*
 * A vapour y beside a liquid x: y is the less densely packed one (else the vapour fraction is 1 - W), and no
 * liquid itself (else the two are liquids that do not mix). Beside water one that does not pass for a vapour in the
 * flashes of three phases either is noted, q.dense: there may be a vapour at a higher temperature. And no K is at its
 * bound, where it follows no fugacity.
 */
bool vapour_and_liquid(Quality& q) {
  const LinePoint& p = q.point;
  const double side = q.line.W == 0.0 ? 1.0 : q.line.W == 1.0 ? -1.0 : 0.0;
  for (int i = 0; i < q.line.n; ++i)
    if (q.line.z[i] > 0.0 && side * p.X[i] >= kLargestLogK) return false;
  const MixtureRecord& m = *q.call.context.record;
  if (lighter(m, p.x, p.Zx, p.y, p.Zy)) return false;
  const double T = q.T();
  q.dense = is_aqueous(eos::find_water_family(m), p.x) && !passes_for_vapour(m, T, q.P(), p.y, p.Zy, true);
  // However dense it is, above its own pseudo-critical temperature (Kay) a fluid is no liquid.
  return T > pseudo_critical_temperature(m, p.y) ||
         p.Zy * eos::kR * T / q.P() > (q.dense ? kDensestBesideWater : kDensestVapour) * covolume(m, p.y);
}

// Whether a fluid w is stable against small changes of its composition: the matrix 1 + slack + sqrt(w_i w_j) d
// ln phi_i/d n_j, built in place of the derivatives, has no eigenvalue below zero.
bool convex(Quality& q, const double* w, double slack) {
  const int n = q.line.n, ld = q.line.ld;
  double* const d = q.line.d_x;
  double Z = 0.0;
  q.status = water_aware_fugacity(q.line.m, w, Kind::stable, q.line.phi_x, {nullptr, nullptr, d}, Z);
  if (q.status != KV_OK) return false;
  for (int j = 0; j < n; ++j) {
    double* column = d + static_cast<std::size_t>(j) * ld;
    for (int i = 0; i < n; ++i) column[i] *= std::sqrt(w[i] * w[j]);
    column[j] += 1.0 + slack;
  }
  return support::ldl_factor(n, ld, d, 0.0);
}

// Whether the phases are the two roots of what lies halfway between them (q.spare): of an almost pure feed,
// whose compositions tell nothing.
bool two_roots(Quality& q) {
  constexpr double kNear = 0.25;  // of a root to its phase, in parts of their distance
  double Zx = 0.0, Zy = 0.0;
  q.status = water_aware_fugacity(q.line.m, q.spare, Kind::liquid, q.line.phi_x, {}, Zx);
  if (q.status == KV_OK) q.status = water_aware_fugacity(q.line.m, q.spare, Kind::gas, q.line.phi_x, {}, Zy);
  const double apart = q.point.Zy - q.point.Zx;
  return q.status == KV_OK && apart > 0.0 && std::fabs(Zx - q.point.Zx) < kNear * apart &&
         std::fabs(Zy - q.point.Zy) < kNear * apart;
}

// Two phases that are close to each other are two where both are stable against small changes, and what lies
// halfway between is not: the spinodal passes between them twice. Between a pair that only looks like one it
// passes once, or not at all.
bool truly_two(Quality& q) {
  if (!close_phases(q)) return true;
  if (one_phase(q.line, q.point)) return false;
  if (!q.walked && q.point.left_over > kSettled * largest_log_K(q)) return false;
  const double slack = q.walked ? kNoCurvature : 0.0;
  if (!convex(q, q.point.x, slack) || !convex(q, q.point.y, slack)) return false;
  for (int i = 0; i < q.line.n; ++i) q.spare[i] = 0.5 * (q.point.x[i] + q.point.y[i]);
  if (two_roots(q)) return true;
  return !convex(q, q.spare, -slack) && q.status == KV_OK;
}

// A boundary point has a stable feed, a point between two stable phases.
Verdict stability(Quality& q) {
  StabilityCall c{{q.line.z, q.call.context.silent(), q.call.routines}, q.T(), q.P(), &q.line.m};
  StabilityResult found;
  if (q.boundary()) {
    const bool bubble = q.line.W == 0.0;
    c.incipient = bubble ? q.point.y : q.point.x;
    c.incipient_Z = bubble ? q.point.Zy : q.point.Zx;
    found.log_k = q.trial;
  } else {
    c.count = 2;
    c.phase[0] = q.point.x;
    c.phase[1] = q.point.y;
  }
  q.status = test_stability(c, found);
  if (q.status != KV_OK) return Verdict::model;
  return found.distance >= std::min(kStable, -host_slack(q.line.m, q.settings)) ? Verdict::good
                                                                                : Verdict::unstable;
}

Verdict refused(const Quality& q) {
  return q.status == KV_OK ? Verdict::refused : Verdict::model;
}

bool is_answer(const Quality& q) {
  const double amount[] = {1.0 - q.line.W, q.line.W};
  const double* const phase[] = {q.point.x, q.point.y};
  return is_split(q.line.n, q.line.z, 2, amount, phase);
}

}  // namespace

bool close_phases(const Quality& q) {
  return close_in_composition(q) && close_in_density(q.point);
}

Verdict accept(Quality& q) {
  QualityLine& line = q.line;
  q.status = KV_OK;
  if (!share_out(line, q.point) || !is_answer(q)) return Verdict::refused;
  q.status = line_model(line, q.T(), q.P(), 0);
  if (q.status != KV_OK) return Verdict::model;
  bool stable_roots = true;
  if (!equal_fugacities(q, stable_roots) || !vapour_and_liquid(q)) return refused(q);
  bool good_roots = stable_roots;
  if (!stable_roots) {
    good_roots = as_good(q, q.point.x, line.phi_x) && as_good(q, q.point.y, line.phi_y);
    if (q.status != KV_OK) return Verdict::model;
  }
  if (!truly_two(q)) return refused(q);
  const Verdict verdict = stability(q);
  return verdict == Verdict::good && !good_roots ? Verdict::refused : verdict;
}

Verdict accept_pure(Quality& q, int j) {
  QualityLine& line = q.line;
  if (!is_answer(q)) return Verdict::refused;
  q.status = line_model(line, q.T(), q.P(), 0);
  if (q.status == KV_OK) q.status = phases_at(q, Kind::liquid, Kind::gas);
  if (q.status != KV_OK) return Verdict::model;
  const bool equal = std::fabs(line.phi_x[j] - line.phi_y[j]) <= kOwedFugacity;
  return equal && (line.free_water || q.point.Zx <= q.point.Zy) ? Verdict::good : Verdict::refused;
}

}  // namespace kestrune::flash
