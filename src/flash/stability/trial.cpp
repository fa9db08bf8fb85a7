// One trial from its start to its end: substitutions (13), steps of second order (14) of docs/method.md, and
// the rules by which it ends early. Calls flash/fugacity.hpp and eos for what is evaluated, nothing else.
//
// [Mic82a] M. L. Michelsen, Fluid Phase Equilib. 9 (1982) 1-19: the test, the modified distance, the test for
// the trivial solution. [Mic07] the same with second-order minimisation in 2 sqrt(W).

#include "flash/stability/trial.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "support/lanes.hpp"
#include "support/ldl.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

constexpr int kSubstitutions = 3;  // before the first second-order step
constexpr int kMaxSteps = 60;
constexpr double kShortestStep = 1e-2;  // part of a second-order step that is still tried
constexpr double kConverged = 1e-18;    // gradient^2: tm is then exact to 1e-18
constexpr double kFinished = 1e-14;     // of a phase that is only reported
// From here a step ends there: what it leaves, which goes with its square, need not be looked at.
constexpr double kNearlyFinished = 1e-10, kShortChange = 1e-4;
// Positive distances are final once they exceed what the rest of the way can take off them.
constexpr double kSafePositive = 1e-4, kSafeFactor = 400.0;
// From this distance a substitution goes half its way: the whole of it leads past a minimum where unlike
// molecules attract each other strongly.
constexpr double kFar = 1e5, kFarPart = 0.5;
constexpr double kLargestLogW = 600.0;
// A negative distance beyond this needs no more digits to start a split from.
constexpr double kClearlyNegative = -1e-2, kClearGradient = 1e-3;
constexpr double kTrivialDistance = 1e-1, kTrivialRatio = 0.2;
constexpr double kSamePacking = 1.3;  // ratio of packings of what may be one phase
constexpr double kKnownComposition = 0.01, kKnownExactly = 1e-4;
// Part of every amount: a trial that close to a phase has come to it. No distance in between is below what counts.
constexpr double kThere = 1e-4;
// Spread, as below, of compositions from which substitutions lead to one end.
constexpr double kSameWay = 0.03;
constexpr double kSameRoot = 1e-9;  // relative difference of the Z of a host's two phases
// sum of (w - z)^2/(w + z); from a start, before any step, only what is nearer still counts as on its way back
constexpr double kSameComposition = 1e-16, kNearComposition = 0.4, kNearFromStart = 0.12;

// Residuals r of (13), tm of (12) and its gradient from ln phi; numbers of docs/method.md.
void compare(const Model& m, const Reference& ref, const TrialWork& work, Trial& t) {
  double wr = 0.0, g = 0.0;
  for (int i = 0; i < m.n; ++i) {
    const double r = t.log_w[i] + t.ln_phi[i] - ref.d[i];
    work.r[i] = r;
    wr += t.w[i] * r;
    g += t.w[i] * r * r;
  }
  t.tm = 1.0 - t.sum + t.sum * wr;
  t.gradient2 = t.sum * g;
}

// The composition of the amounts.
void compose(const Model& m, Trial& t) {
  t.sum = support::lanes->shares(m.n, m.ld, kLargestLogW, t.log_w, t.w);
}

// ln phi of the trial, and what follows from it.
StatusCode measure(Model& m, const Reference& ref, Kind kind, double* dn, const TrialWork& work, Trial& t) {
  compose(m, t);
  const StatusCode status = fugacity(m, t.w, kind, t.ln_phi, dn, t.Z, &t.at);
  if (status != KV_OK) return status;
  compare(m, ref, work, t);
  t.current = true;
  return KV_OK;
}

double spread(const double* w, const double* z, int n) {
  double sum = 0.0;
  for (int i = 0; i < n; ++i) {
    const double gap = w[i] - z[i];
    sum += gap * gap / (w[i] + z[i] + 1e-300);
  }
  return sum;
}

// Is the trial on its way back to a phase of composition z on the same plane? Then the distance behaves as
// the quadratic that has its minimum there: 2 tm equals the derivative along the way from it, (15) of
// docs/method.md.
// It may do so by chance while the trial is a gas yet and the phase a liquid, or the other way round.
bool returns_to(const double* z, double packing, int n, bool quick, double near, const TrialWork& work,
                const Trial& t) {
  if (z == nullptr) return false;
  double towards = 0.0;
  for (int i = 0; i < n; ++i) towards += (t.sum * t.w[i] - z[i]) * work.r[i];
  const double distance = spread(t.w, z, n);
  if (distance < kSameComposition) return true;
  const double eta = t.at.root.eta;
  if (packing > 0.0 && (eta > kSamePacking * packing || packing > kSamePacking * eta)) return false;
  return quick && t.tm > 0.0 && distance < near && std::fabs(2.0 * t.tm - towards) < kTrivialRatio * towards;
}

// Newton step in alpha = 2 sqrt(W), (14) of docs/method.md. False when the matrix is not positive definite.
bool second_order(Model& m, const TrialWork& work, Trial& t) {
  const int n = m.n, ld = m.ld;
  const double sum = t.sum;
  for (int i = 0; i < ld; ++i) work.root[i] = std::sqrt(t.w[i]);
  // sqrt(w_i w_j) d ln phi_i/d n_j, lower triangle
  support::lanes->scale(n, ld, work.root, work.dn, work.hessian);
  for (int j = 0; j < n; ++j) work.hessian[static_cast<std::size_t>(j) * ld + j] += 1.0 + 0.5 * work.r[j];
  ++m.counts.factorisations;
  if (!support::ldl_factor(n, ld, work.hessian, 1e-8)) return false;
  const double scale = std::sqrt(sum);
  for (int i = 0; i < n; ++i) work.step[i] = -scale * work.root[i] * work.r[i];
  support::ldl_solve(n, ld, work.hessian, work.step);
  for (int i = 0; i < n; ++i) work.root[i] *= scale;  // sqrt(W)
  return true;
}

// W from sqrt(W) + step/2, each amount kept within a factor of 100 of what it was. Returns the largest change of
// ln W.
double take_step(int n, const TrialWork& work, Trial& t) {
  // The factors on sqrt(W), then their logarithms.
  for (int i = 0; i < n; ++i) {
    const double old = work.root[i];
    const double next = std::clamp(old + 0.5 * work.step[i], 0.1 * old, 10.0 * old);
    work.step[i] = old > 1e-100 ? next / old : 1.0;
    work.old_root[i] = t.log_w[i];
  }
  for (int i = 0; i < n; ++i) work.step[i] = 2.0 * support::fast_log(work.step[i]);
  double largest = 0.0;
  for (int i = 0; i < n; ++i) {
    // A component with no amount to speak of follows by substitution.
    const double change = work.root[i] > 1e-100 ? work.step[i] : -work.r[i];
    t.log_w[i] += change;
    largest = std::max(largest, std::fabs(change));
  }
  return largest;
}

// Whether the amounts of the trial are those of a phase of composition z.
bool has_reached(const double* z, int n, const Trial& t) {
  if (z == nullptr) return false;
  for (int i = 0; i < n; ++i)
    if (!(std::fabs(t.sum * t.w[i] - z[i]) <= kThere * z[i])) return false;
  return true;
}

bool is_known(const Reference& ref, const Model& m, double limit, const Trial& t) {
  for (int k = 0; k < ref.known_count; ++k)
    if (spread(t.w, ref.known + static_cast<std::size_t>(k) * m.ld, m.n) < limit) return true;
  return false;
}

// A trial on its way, and what its steps remember.
struct Way {
  Model& m;
  const Reference& ref;
  Kind kind;
  Follow how;
  const TrialWork& work;
  Trial& t;
  int second_from;           // number of the first step of second order
  bool stepped = false;      // the last step may have to be cut
  bool substituted = false;  // it was a substitution
  double before = 0.0;       // the distance before it
  double factor = 1.0;       // what is left of it

  bool quick() const { return how == Follow::quick; }
};

// What the trial is at its amounts, with derivatives for a step of second order.
StatusCode look(Way& y, int k, bool second) {
  if (!(k == 0 && second && y.t.current && y.m.built_in()))
    return measure(y.m, y.ref, y.kind, second ? y.work.dn : nullptr, y.work, y.t);
  const StatusCode status = composition_derivatives(y.m, y.t.at, y.work.dn);
  compare(y.m, y.ref, y.work, y.t);
  return status;
}

// The distance rose: the step is halved from where it began, and at last the trial goes on from there by
// substitution.
void halve_step(Way& y, int k) {
  y.factor *= 0.5;
  const bool halve = y.factor > kShortestStep && k + 1 < kMaxSteps;
  for (int i = 0; i < y.m.n; ++i)
    y.t.log_w[i] = halve ? 0.5 * (y.t.log_w[i] + y.work.old_root[i]) : y.work.old_root[i];
  y.stepped = halve;
  if (!halve) y.second_from = k + 1 + kSubstitutions;
}

// Whether the trial is on its way to what is known: a phase of the plane, or a stationary point found before.
bool came_back(const Way& y, int k) {
  const Trial& t = y.t;
  if (k == 0 && y.ref.gas_packing > 0.0 && t.at.root.eta < y.ref.gas_packing) return true;
  if ((k >= 1 || y.quick()) && std::fabs(t.tm) < kTrivialDistance) {
    const double near = k >= 1 ? kNearComposition : kNearFromStart;
    for (int j = 0; j < kMostInPlane; ++j)
      if (returns_to(y.ref.phase[j], y.ref.packing[j], y.m.n, y.quick(), near, y.work, t)) return true;
  }
  return k >= 1 && is_known(y.ref, y.m, y.quick() ? kKnownComposition : kKnownExactly, t);
}

// Whether it has come to its stationary point, or is certain to come to one whose distance no longer matters.
bool settled(const Way& y, int k) {
  const Trial& t = y.t;
  const bool certain = k >= 1 && ((t.tm > kSafePositive && t.tm > kSafeFactor * t.gradient2) ||
                                  (t.tm < kClearlyNegative && t.gradient2 < kClearGradient));
  return t.gradient2 <= (y.how == Follow::report ? kFinished : kConverged) || (certain && y.quick());
}

// How a step ends the trial, where its end need not be looked at.
enum class Last { no, stationary, trivial };

// Whether a step of second order has led to a phase of the plane: that need not be looked at.
bool ends_at_phase(const Way& y) {
  if (y.how != Follow::strict || !(std::fabs(y.before) < kTrivialDistance)) return false;
  compose(y.m, y.t);
  return std::any_of(std::begin(y.ref.phase), std::end(y.ref.phase),
                     [&](const double* phase) { return has_reached(phase, y.m.n, y.t); });
}

// The next step from here.
Last step_on(Way& y, int k, bool second) {
  Trial& t = y.t;
  y.factor = 1.0;
  y.before = t.tm;
  const bool newton = second && second_order(y.m, y.work, t);
  t.current = false;
  // A substitution overshoots where unlike molecules attract each other strongly. The first one has far to
  // go, unless it begins below the plane.
  y.stepped = newton || k > 0 || t.tm < kUnstable;
  y.substituted = !second;
  if (newton) {
    const double change = take_step(y.m.n, y.work, t);
    if (y.how == Follow::report && t.gradient2 < kNearlyFinished && change < kShortChange)
      return Last::stationary;
    return ends_at_phase(y) ? Last::trivial : Last::no;
  }
  std::copy_n(t.log_w, y.m.n, y.work.old_root);
  const double part = t.tm > kFar ? kFarPart : 1.0;
  for (int i = 0; i < y.m.n; ++i) t.log_w[i] -= part * y.work.r[i];
  return Last::no;
}

}  // namespace

StatusCode follow_trial(Model& m, const Reference& ref, Kind kind, Follow how, const TrialWork& work, Trial& t,
                        bool careful) {
  Way y{m, ref, kind, how, work, t, how == Follow::report ? 0 : kSubstitutions};
  ++m.counts.trials;
  t.end = TrialEnd::failed;
  t.overshot = t.passed = false;
  for (int k = 0; k < kMaxSteps; ++k) {
    const bool second = k >= y.second_from && !m.free_water;
    const StatusCode status = look(y, k, second);
    if (status != KV_OK) return status;
    const bool rose = k > 0 && t.tm > y.before + 1e-10 * (1.0 + std::fabs(y.before));
    // Of a substitution the composition alone says where it leads.
    if (k <= 1 && ref.watched != nullptr) t.passed |= spread(t.w, ref.watched, m.n) < kSameWay;
    t.overshot |= rose && y.substituted;
    if (rose && y.substituted && careful) {
      std::copy_n(work.old_root, m.n, t.log_w);
      y.second_from = k + 1;
      y.stepped = y.substituted = false;
    } else if (rose && y.stepped) {
      halve_step(y, k);
      if (k + 1 < kMaxSteps) continue;
      t.end = TrialEnd::stationary;  // as far as it came
      return measure(m, ref, kind, nullptr, work, t);
    } else if (came_back(y, k)) {
      t.end = TrialEnd::trivial;
      return KV_OK;
    } else if (settled(y, k)) {
      t.end = TrialEnd::stationary;
      return KV_OK;
    } else if (const Last last = step_on(y, k, second); last != Last::no) {
      if (last == Last::stationary) compose(m, t);
      t.end = last == Last::trivial ? TrialEnd::trivial : TrialEnd::stationary;
      return KV_OK;
    }
  }
  t.end = TrialEnd::stationary;  // slow, but the last distance is a bound from above
  return KV_OK;
}

void composition_of(const Model& m, const double* log_w, double* w) {
  const double most = *std::max_element(log_w, log_w + m.n);
  double sum = 0.0;
  for (int i = 0; i < m.n; ++i) sum += w[i] = support::fast_exp(log_w[i] - most);
  for (int i = 0; i < m.n; ++i) w[i] /= sum;
}

bool convex_with(Model& m, const double* x, const double* dn, double margin, const TrialWork& work) {
  const int n = m.n, ld = m.ld;
  for (int i = 0; i < ld; ++i) work.root[i] = i < n ? std::sqrt(x[i]) : 0.0;
  support::lanes->scale(n, ld, work.root, dn, work.hessian);
  // No eigenvalue is larger than the root of the sum of all squares: of a gas that is enough as a rule.
  const double room = 1.0 - margin;
  if (margin > 0.0 && support::lanes->squares(n, ld, work.hessian) < room * room) return true;
  for (int j = 0; j < n; ++j) work.hessian[static_cast<std::size_t>(j) * ld + j] += room;
  ++m.counts.factorisations;
  return support::ldl_factor(n, ld, work.hessian, 1e-10);
}

void make_unit(int n, double* v) noexcept {
  double norm = 0.0;
  for (int i = 0; i < n; ++i) norm += v[i] * v[i];
  const double scale = norm > 0.0 ? 1.0 / std::sqrt(norm) : 0.0;
  for (int i = 0; i < n; ++i) v[i] *= scale;
}

bool clearly_convex(Model& m, const double* x, Kind kind, const Evaluated* at, const TrialWork& work, Trial& t,
                    double* lowest, StatusCode& status) {
  const int n = m.n, ld = m.ld;
  t.Z = 0.0;
  status =
      at != nullptr ? composition_derivatives(m, *at, work.dn) : fugacity(m, x, kind, t.ln_phi, work.dn, t.Z);
  if (status != KV_OK || convex_with(m, x, work.dn, kConvex, work)) return true;
  // With a shift that makes the factorisation succeed, for inverse iteration.
  for (double shift = 1e-6; shift < 1e5 && !convex_with(m, x, work.dn, -shift, work);) shift *= 10.0;
  // Two inverse iterations from a vector without symmetries, orthogonal to sqrt(x) (the amount of the phase).
  for (int i = 0; i < n; ++i) lowest[i] = (i % 2 == 0 ? 1.0 : -1.0) + 0.3 * i / n;
  for (int k = 0; k < 3; ++k) {
    double along = 0.0;
    for (int i = 0; i < n; ++i) along += lowest[i] * work.root[i];
    for (int i = 0; i < n; ++i) lowest[i] -= along * work.root[i];
    make_unit(n, lowest);
    if (k < 2) support::ldl_solve(n, ld, work.hessian, lowest);
  }
  return false;
}

StatusCode look_at_pure(Model& m, const Reference& ref, int j, Trial& t, Pure& pure) {
  pure.j = j;
  pure.Z = 0.0;
  if (!m.built_in()) {
    for (int i = 0; i < m.ld; ++i) t.w[i] = i == j ? 1.0 : 0.0;
    const StatusCode status = fugacity(m, t.w, Kind::stable, t.ln_phi, nullptr, pure.Z);
    if (status != KV_OK) return status;
    pure.log_activity = ref.d[j] - t.ln_phi[j];
    return KV_OK;
  }
  ++m.counts.pure_roots;
  const StatusCode spent = spend(m.host, 1);
  if (spent != KV_OK) return spent;
  const double* s = nullptr;
  pure.mixed = eos::mix_pure(m.t, j, &s);
  const int status = eos::stable_root(m.t, m.bracub, pure.mixed, m.P, 0.0, pure.root);
  if (!eos::has_root(status)) return status;
  pure.Z = pure.root.Z;
  pure.log_activity = ref.d[j] - eos::residual_gibbs(pure.mixed, pure.root);
  return KV_OK;
}

void start_from_pure(Model& m, const Reference& ref, const Pure& pure, Trial& t) {
  t.Z = pure.Z;
  if (m.built_in()) {
    m.counts.evaluated();
    const double* s = nullptr;
    eos::mix_pure(m.t, pure.j, &s);
    eos::ln_phi(m.t, pure.mixed, pure.root, s, t.ln_phi);
  }
  for (int i = 0; i < m.n; ++i) t.log_w[i] = ref.d[i] - t.ln_phi[i];
}

StatusCode start_near_pure(Model& m, const Reference& ref, int j, Trial& t) {
  Pure pure;
  const StatusCode status = look_at_pure(m, ref, j, t, pure);
  if (status == KV_OK) start_from_pure(m, ref, pure, t);
  return status;
}

namespace {

// By the built-in equation: ln phi of w on the root that is not its stable one.
StatusCode other_root(Model& m, const double* w, double reach, double* ln_phi, Kind& kind, bool& found) {
  const eos::Mixture mixed = eos::mix(m.t, w, m.s);
  const double rt = eos::kR * m.T, A = mixed.a * m.P / (rt * rt), B = mixed.b * m.P / rt;
  found = eos::may_have_three_roots(A, B);
  double both[2] = {};
  for (const int phase : {KV_PHASE_GAS, KV_PHASE_LIQUID})
    found = found && eos::solve_root(m.bracub, A, B, phase, false, both[phase - 1]) == 0;
  if (!found) return KV_OK;
  m.counts.evaluated();
  const StatusCode spent = spend(m.host, 1);
  if (spent != KV_OK) return spent;
  eos::Root gas, liquid;
  eos::reduce(m.t, mixed, m.P, both[KV_PHASE_GAS - 1], gas);
  eos::reduce(m.t, mixed, m.P, both[KV_PHASE_LIQUID - 1], liquid);
  const double higher = eos::residual_gibbs(mixed, liquid) - eos::residual_gibbs(mixed, gas);
  const bool gas_stable = higher >= 0.0;
  found = std::fabs(higher) <= reach;
  if (!found) return KV_OK;
  kind = gas_stable ? Kind::liquid : Kind::gas;
  eos::ln_phi(m.t, mixed, gas_stable ? liquid : gas, m.s, ln_phi);
  return KV_OK;
}

// The same by a host's routine.
StatusCode host_other_root(Model& m, const double* w, double reach, Trial& t, Kind& kind, bool& found) {
  double gas_Z = 0.0, gas = 0.0, liquid = 0.0;
  StatusCode status = fugacity(m, w, Kind::gas, t.ln_phi, nullptr, gas_Z);
  for (int i = 0; i < m.n; ++i) gas += w[i] * t.ln_phi[i];
  if (status == KV_OK) status = fugacity(m, w, Kind::liquid, t.ln_phi, nullptr, t.Z);
  for (int i = 0; i < m.n; ++i) liquid += w[i] * t.ln_phi[i];
  found = status == KV_OK && std::fabs(gas_Z - t.Z) > kSameRoot * gas_Z && std::fabs(gas - liquid) <= reach;
  if (!found || !(liquid < gas)) return status;
  kind = Kind::gas;
  return fugacity(m, w, kind, t.ln_phi, nullptr, t.Z);
}

// Whether a composition that has the root Z has none besides, or one that is higher by more than reach.
bool no_other_root(const Model& m, const double* w, double Z, double reach) {
  double b = 0.0, higher = 0.0;
  for (int i = 0; i < m.n; ++i) b += w[i] * m.t.b[i];
  return !eos::has_other_root(m.t, b, m.P, Z, higher) || std::fabs(higher) > reach + eos::kOtherRootMargin;
}

}  // namespace

StatusCode start_other_root(Model& m, const Reference& ref, const double* w, double Z, double reach, Trial& t,
                            Kind& kind, bool& found) {
  found = false;
  if (m.built_in() && Z > 0.0 && no_other_root(m, w, Z, reach)) return KV_OK;
  kind = Kind::liquid;
  t.Z = 0.0;
  const StatusCode status = m.built_in() ? other_root(m, w, reach, t.ln_phi, kind, found)
                                         : host_other_root(m, w, reach, t, kind, found);
  if (status != KV_OK || !found) return status;
  for (int i = 0; i < m.n; ++i) t.log_w[i] = ref.d[i] - t.ln_phi[i];
  return KV_OK;
}

}  // namespace kestrune::flash
