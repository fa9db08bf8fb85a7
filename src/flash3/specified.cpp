// Newton's method at a specified value: residuals, their derivatives row by row, bounded steps, and what the
// solution is worth.

#include "flash3/specified.hpp"

#include <algorithm>
#include <cmath>

#include "flash/energy/energy_state.hpp"
#include "support/lu.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash3 {
namespace {

constexpr int kMostSteps = 20;        // of Newton's method
constexpr double kFinished = 1e-11;   // residuals, and the last step in ln T or ln P
constexpr double kOwed = 1e-9;        // residuals where rounding ends the iteration
constexpr double kNegative = -1e-13;  // amount that is not there
constexpr double kMostLogK = 2.0, kMostLogT = 0.05, kMostLogP = 0.4;  // change in one step
constexpr double kMostAmount = 0.7;                                   // change of an amount in one step
constexpr double kTrace = 1e-8;                                       // fractions below it bound no step
constexpr double kFarT = 2.0, kFarP = 50.0;    // factors from the start beyond which a solution is another one
constexpr double kSame = 1e-10;                // sum of (x - y)^2/(x + y) of phases that are one
constexpr double kAlike = 1e-6, kApart = 0.1;  // compositions, and relative Z, of two roots
using eos::kResidualR;

int order_of(const Phases& p, int n) {
  return (p.count - 1) * (n + 1) + 1;
}

// The reference phase first: the one of the largest amount.
void put_largest_first(Specified& s) {
  Phases& p = s.e->p;
  int largest = 0;
  for (int j = 1; j < p.count; ++j)
    if (p.amount[j] > p.amount[largest]) largest = j;
  exchange_phases(p, 0, largest);
  if (s.vapour == largest)
    s.vapour = 0;
  else if (s.vapour == 0)
    s.vapour = largest;
}

bool roots_apart(const Phases& p, int j, int k) {
  return std::fabs(p.Z[j] - p.Z[k]) > kApart * std::max(p.Z[j], p.Z[k]);
}

// Phases of nearly one composition differ by their root alone, as where a component boils beside one that
// hardly mixes with it; by Gibbs energy both would take the same.
void name_roots(Specified& s) {
  const Phases& p = s.e->p;
  std::fill_n(s.kind, kMostPhases, flash::Kind::stable);
  for (int j = 0; j < p.count; ++j)
    for (int k = 0; k < p.count; ++k)
      if (p.Z[j] > p.Z[k] && roots_apart(p, j, k) && same_phase(s.e->m.n, s.e->z, p.x[j], p.x[k], kAlike)) {
        s.kind[j] = flash::Kind::gas;
        s.kind[k] = flash::Kind::liquid;
      }
}

// ln K from the compositions, for traces from the fugacity coefficients.
void start_coefficients(Specified& s) {
  const Phases& p = s.e->p;
  for (int k = 0; k < p.count - 1; ++k)
    for (int i = 0; i < s.e->m.n; ++i) {
      const double here = p.x[k + 1][i], there = p.x[0][i];
      s.log_k[k][i] = here >= kAbsent && there >= kAbsent ? support::fast_log(here / there)
                                                          : p.ln_phi[0][i] - p.ln_phi[k + 1][i];
    }
}

// Compositions from ln K and the amounts; raw as they come, p.x with sum 1. False: not usable.
bool split(Specified& s) {
  constexpr double kLarge =
      300.0;  // ln K of which those of other phases are taken, lest 1 underflows beside it
  Phases& p = s.e->p;
  const double* z = s.e->z;
  const int n = s.e->m.n;
  for (int i = 0; i < n; ++i) {
    double most = kLarge;
    for (int k = 0; k < p.count - 1; ++k) most = std::max(most, s.log_k[k][i]);
    const double shift = most > kLarge ? most : 0.0, one = shift > 0.0 ? support::fast_exp(-shift) : 1.0;
    double D = one;
    for (int k = 0; k < p.count - 1; ++k) {
      s.raw[k + 1][i] = support::fast_exp(s.log_k[k][i] - shift);
      D += p.amount[k + 1] * (s.raw[k + 1][i] - one);
    }
    if (!(D > 1e-12 * one) && z[i] > 0.0) return false;
    const double part = z[i] > 0.0 ? z[i] / D : 0.0;
    s.raw[0][i] = part * one;
    for (int k = 0; k < p.count - 1; ++k) s.raw[k + 1][i] *= part;
  }
  for (int j = 0; j < p.count; ++j) {
    double sum = 0.0;
    for (int i = 0; i < n; ++i) sum += s.raw[j][i];
    if (!(sum > 1e-3 && sum < 1e3)) return false;
    for (int i = 0; i < n; ++i) p.x[j][i] = s.raw[j][i] / sum;
  }
  return true;
}

struct Values {
  double total = 0.0, slope = 0.0;  // of the whole, at constant amounts
  double phase[kMostPhases] = {};
};

// Fugacity coefficients with their derivatives in amounts and in T or P; energies where they are specified.
StatusCode evaluate(Specified& s, Values& v) {
  Equilibrium& e = *s.e;
  Phases& p = e.p;
  v = {};
  if (s.what == Specify::vapour) {
    for (int j = 0; j < p.count; ++j) {
      flash::Derivatives d;
      (s.find_pressure ? d.dP : d.dT) = s.dtau[j];
      d.dn = e.w.dn[j];
      const StatusCode status = flash::water_aware_fugacity(e.m, p.x[j], s.kind[j], p.ln_phi[j], d, p.Z[j]);
      if (status != KV_OK) return status;
    }
    return KV_OK;
  }
  const StatusCode prepared = flash::prepare_caloric(*s.caloric, s.T);
  if (prepared != KV_OK) return prepared;
  for (int j = 0; j < p.count; ++j) {
    flash::PhaseCaloric c;
    c.ln_phi = p.ln_phi[j];
    c.dln_phi_dT = s.dtau[j];
    c.dn = e.w.dn[j];
    c.Z = p.Z[j];
    if (!flash::phase_caloric(*s.caloric, p.x[j], s.kind[j], c) || !(c.slope > 0.0)) return KV_NOT_FINITE;
    p.Z[j] = c.Z;
    v.phase[j] = c.value;
    v.total += p.amount[j] * c.value;
    v.slope += p.amount[j] * c.slope;
    const std::size_t ld = e.m.ld;
    for (int b = 0; b < e.m.n; ++b)  // the upper triangle, which is not filled
      for (int a = 0; a < b; ++a) c.dn[b * ld + a] = c.dn[a * ld + b];
  }
  return KV_OK;
}

// Partial molar value of component i in phase j, but for what is the same in all phases.
double partial(const Specified& s, int j, int i) {
  const Phases& p = s.e->p;
  if (s.what == Specify::enthalpy) return -kResidualR * s.T * s.T * s.dtau[j][i];
  return -kResidualR * (support::fast_log(p.x[j][i]) + p.ln_phi[j][i] + s.T * s.dtau[j][i]);
}

/*
 * Derivatives of the raw amounts of phase j, for component i: by ln K of phase q (1 ..) and by its amount.
 */
double by_log_k(const Specified& s, int j, int q, int i) {
  const double share = s.e->p.amount[q] * s.raw[q][i] / s.e->z[i];
  return s.raw[j][i] * ((j == q ? 1.0 : 0.0) - share);
}
double by_amount(const Specified& s, int j, int q, int i) {
  return -s.raw[j][i] * (s.raw[q][i] - s.raw[0][i]) / s.e->z[i];
}

double raw_sum(const Specified& s, int j) {
  double sum = 0.0;
  for (int i = 0; i < s.e->m.n; ++i) sum += s.raw[j][i];
  return sum;
}

// Rows of phase j = k + 1 against the reference: fugacities and the sum.
void equilibrium_rows(Specified& s, int k, double tau, double& worst) {
  const Equilibrium& e = *s.e;
  const Phases& p = e.p;
  const int n = e.m.n, ld = e.m.ld, j = k + 1, size = order_of(p, n), first = k * (n + 1);
  const double Sj = raw_sum(s, j), S0 = raw_sum(s, 0);
  const auto at = [&](int row, int column) -> double& {
    return s.system[static_cast<std::size_t>(column) * size + row];
  };
  for (int i = 0; i < n; ++i) {
    const int row = first + i;
    if (!(e.z[i] > 0.0)) {
      at(row, row) = 1.0;
      continue;
    }
    s.step[row] = -(s.log_k[k][i] + p.ln_phi[j][i] - p.ln_phi[0][i]);
    if (p.x[j][i] >= kAbsent) worst = std::max(worst, std::fabs(s.step[row]));
    at(row, row) += 1.0;
    at(row, size - 1) = tau * (s.dtau[j][i] - s.dtau[0][i]);
    for (int q = 1; q < p.count; ++q) {
      double over_amount = 0.0;
      for (int m = 0; m < n; ++m) {
        if (!(e.z[m] > 0.0)) continue;
        const double dj = e.w.dn[j][static_cast<std::size_t>(m) * ld + i] / Sj;
        const double d0 = e.w.dn[0][static_cast<std::size_t>(m) * ld + i] / S0;
        at(row, (q - 1) * (n + 1) + m) += dj * by_log_k(s, j, q, m) - d0 * by_log_k(s, 0, q, m);
        over_amount += dj * by_amount(s, j, q, m) - d0 * by_amount(s, 0, q, m);
      }
      at(row, (q - 1) * (n + 1) + n) += over_amount;
    }
  }
  const int row = first + n;
  s.step[row] = -(Sj - S0);
  worst = std::max(worst, std::fabs(Sj - S0));
  for (int q = 1; q < p.count; ++q)
    for (int m = 0; m < n; ++m) {
      if (!(e.z[m] > 0.0)) continue;
      at(row, (q - 1) * (n + 1) + m) += by_log_k(s, j, q, m) - by_log_k(s, 0, q, m);
      at(row, (q - 1) * (n + 1) + n) += by_amount(s, j, q, m) - by_amount(s, 0, q, m);
    }
}

// The row of the specified value.
void specified_row(Specified& s, const Values& v) {
  const Equilibrium& e = *s.e;
  const Phases& p = e.p;
  const int n = e.m.n, size = order_of(p, n), row = size - 1;
  const auto at = [&](int column) -> double& {
    return s.system[static_cast<std::size_t>(column) * size + row];
  };
  if (s.what == Specify::vapour) {
    s.step[row] = s.wanted - p.amount[s.vapour];
    for (int q = 1; q < p.count; ++q)
      at((q - 1) * (n + 1) + n) = s.vapour == 0 ? -1.0 : q == s.vapour ? 1.0 : 0.0;
    return;
  }
  const double unit = kResidualR * (s.what == Specify::enthalpy ? s.T : 1.0);
  s.step[row] = (s.wanted - v.total) / unit;
  at(row) = s.T * v.slope / unit;
  for (int m = 0; m < n; ++m) {
    if (!(e.z[m] > 0.0)) continue;
    double values[kMostPhases];
    for (int j = 0; j < p.count; ++j) values[j] = partial(s, j, m) / unit;
    for (int q = 1; q < p.count; ++q) {
      double over_k = 0.0, over_amount = s.raw[q][m] * values[q] - s.raw[0][m] * values[0];
      for (int j = 0; j < p.count; ++j) {
        over_k += p.amount[j] * values[j] * by_log_k(s, j, q, m);
        over_amount += p.amount[j] * values[j] * by_amount(s, j, q, m);
      }
      at((q - 1) * (n + 1) + m) += over_k;
      at((q - 1) * (n + 1) + n) += over_amount;
    }
  }
}

// Largest part of the step that keeps the changes in bounds.
double bounded(const Specified& s) {
  const Phases& p = s.e->p;
  const int n = s.e->m.n, size = order_of(p, n);
  double part = 1.0;
  const auto bound = [&](double change, double most) {
    if (std::fabs(change) * part > most) part = most / std::fabs(change);
  };
  bound(s.step[size - 1], s.find_pressure ? kMostLogP : kMostLogT);
  for (int k = 0; k < p.count - 1; ++k) {
    for (int i = 0; i < n; ++i)  // traces may jump: nothing depends on them
      if (std::min(p.x[0][i], p.x[k + 1][i]) > kTrace) bound(s.step[k * (n + 1) + i], kMostLogK);
    bound(s.step[k * (n + 1) + n], kMostAmount);
  }
  return part;
}

// Takes a part of the step; the part is cut until the compositions are usable. False: never.
bool take(Specified& s, double part) {
  Phases& p = s.e->p;
  const int n = s.e->m.n, size = order_of(p, n);
  double taken = 0.0;
  for (int cut = 0; cut < 12; ++cut) {
    const double change = part - taken;
    double rest = 1.0;
    for (int k = 0; k < p.count - 1; ++k) {
      for (int i = 0; i < n; ++i) s.log_k[k][i] += change * s.step[k * (n + 1) + i];
      p.amount[k + 1] += change * s.step[k * (n + 1) + n];
      rest -= p.amount[k + 1];
    }
    p.amount[0] = rest;
    (s.find_pressure ? s.P : s.T) *= std::exp(change * s.step[size - 1]);
    if (split(s)) return true;
    taken = part;
    part *= 0.4;
  }
  return false;
}

bool some_are_one(const Specified& s) {
  const Phases& p = s.e->p;
  for (int j = 0; j < p.count; ++j)
    for (int k = j + 1; k < p.count; ++k)
      if (same_phase(s.e->m.n, s.e->z, p.x[j], p.x[k], kSame) &&
          (s.kind[j] == s.kind[k] || !roots_apart(p, j, k)))
        return true;
  return false;
}

// Not too far from where it began: what runs away does not come back.
bool in_range(const Specified& s, double T, double P) {
  return s.T > std::max(T / kFarT, flash::kColdest) && s.T < std::min(T * kFarT, flash::kHottest) &&
         s.P > P / kFarP && s.P < P * kFarP;
}

// Work of one step in evaluations of ln phi, which grows faster than theirs; of a call always enough for a
// search.
int system_work(const flash::HostRoutines* host, int size) {
  constexpr double kCubes = 2000.0;  // cube of the order of a system that takes as long as an evaluation
  constexpr int kStepsOfCall = 100;
  const double work = static_cast<double>(size) * size * size / kCubes;
  const double most = host != nullptr ? static_cast<double>(host->allowed) / kStepsOfCall : 0.0;
  return static_cast<int>(std::min({work, most, 1e9}));
}

Found solve_single(Specified& s, StatusCode& status) {
  Values v;
  for (int k = 0; k < kMostSteps; ++k) {
    status = evaluate(s, v);
    if (status != KV_OK) return Found::model;
    const double step = (s.wanted - v.total) / v.slope;
    const double change = std::clamp(step, -0.2 * s.T, 0.2 * s.T);
    s.T += change;
    if (!(s.T > flash::kColdest && s.T < flash::kHottest)) return Found::no;
    if (std::fabs(change) <= 1e-9 * s.T) return Found::yes;
  }
  return Found::no;
}

// What a converged solution is worth.
Found judge(Specified& s) {
  Phases& p = s.e->p;
  if (some_are_one(s)) return Found::no;
  for (int j = 0; j < p.count; ++j)
    if (p.amount[j] < kNegative) return Found::negative;
  for (int j = 0; j < p.count; ++j) p.amount[j] = std::max(p.amount[j], 0.0);
  return Found::yes;
}

}  // namespace

void take_specified(support::Arena& arena, int n, int ld, Specified& s) {
  const std::size_t size = 2 * static_cast<std::size_t>(n) + 3;
  for (double*& a : s.log_k) a = arena.zeros(ld);
  for (double*& a : s.dtau) a = arena.zeros(ld);
  for (double*& a : s.raw) a = arena.zeros(ld);
  s.spare = arena.zeros(ld);
  s.system = arena.take(size * size);
  s.step = arena.zeros(size);
  s.pivot = arena.take_ints(size);
}

Found solve_specified(Specified& s, StatusCode& status) {
  Equilibrium& e = *s.e;
  status = KV_OK;
  if (e.p.count > 1) put_largest_first(s);
  name_roots(s);
  for (double& Z : e.p.Z) Z = 0.0;
  if (e.p.count == 1) return s.what == Specify::vapour ? Found::no : solve_single(s, status);
  start_coefficients(s);
  if (!split(s)) return Found::no;
  const int size = order_of(e.p, e.m.n);
  const double T = s.T, P = s.P;
  Values v;
  double before = 1e300;
  for (int k = 0; k < kMostSteps; ++k) {
    if (s.what == Specify::vapour && (status = set_conditions(s.T, s.P, e)) != KV_OK) return Found::model;
    status = evaluate(s, v);
    if (status != KV_OK) return Found::model;
    std::fill_n(s.system, static_cast<std::size_t>(size) * size, 0.0);
    std::fill_n(s.step, size, 0.0);
    double worst = 0.0;
    for (int j = 0; j < e.p.count - 1; ++j) equilibrium_rows(s, j, s.find_pressure ? s.P : s.T, worst);
    specified_row(s, v);
    const double off = std::fabs(s.step[size - 1]);
    ++s.steps;
    status = flash::spend(e.routines, system_work(e.routines, size));
    if (status != KV_OK) return Found::model;
    if (!support::lu_factor(size, size, s.system, s.pivot)) return Found::no;
    support::lu_solve(size, size, s.system, s.pivot, s.step);
    const double last = std::fabs(s.step[size - 1]);
    const bool finished = worst <= kFinished && last <= kFinished && off <= 1e-9;
    const bool rounding = worst <= kOwed && last <= kOwed && worst >= before;
    before = worst;
    if (!take(s, bounded(s)) || !in_range(s, T, P)) return Found::no;
    if (finished || rounding) return judge(s);
  }
  return Found::no;
}

}  // namespace kestrune::flash3
