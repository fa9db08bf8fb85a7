// Steps towards equilibrium among two to four phases: the convex split (30) and Newton's method (31) of
// docs/method.md.

#include "flash3/phases.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "support/ldl.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash3 {
namespace {

constexpr int kMostSplitSteps = 200, kMostCuts = 30;  // of the convex split, and of one of its steps
constexpr double kShort = 1e-3, kRounding = 2e-15;    // a step so short may rise by that much
constexpr double kSplit = 1e-13;                      // gradient of the split that is left
constexpr double kSmallestPivot = 1e-14, kFirstShift = 1e-10, kLargestShift = 1e6;  // of the factors of (31)
constexpr double kTaken = 0.9;             // part of an amount that one step may take away
constexpr double kUnknownAmount = 1e-200;  // amounts below it follow no Newton step

// The convex function of the split, its gradient and Hessian at amounts a.
struct SplitFunction {
  int n, count;
  const double* z;
  double* const* e;  // 1/phi of the phases, each component scaled by its largest

  double sum(const double* a, int i) const {
    double E = 0.0;
    for (int j = 0; j < count; ++j) E += a[j] * e[j][i];
    return E;
  }
  double value(const double* a) const {
    double f = 0.0;
    for (int j = 0; j < count; ++j) f += a[j];
    for (int i = 0; i < n; ++i)
      if (z[i] > 0.0) f -= z[i] * support::fast_log(sum(a, i));
    return f;
  }
  void derivatives(const double* a, double* g, double (*H)[kRoom]) const {
    for (int j = 0; j < count; ++j) {
      g[j] = 1.0;
      for (int k = 0; k <= j; ++k) H[j][k] = 0.0;
    }
    for (int i = 0; i < n; ++i) {
      if (!(z[i] > 0.0)) continue;
      const double E = sum(a, i), over = z[i] / E;
      for (int j = 0; j < count; ++j) {
        const double gj = over * e[j][i];
        g[j] -= gj;
        for (int k = 0; k <= j; ++k) H[j][k] += gj * e[k][i] / E;
      }
    }
    for (int j = 0; j < count; ++j)
      for (int k = 0; k < j; ++k) H[k][j] = H[j][k];
  }
};

// Newton step d of the phases that are free; the others stay. Gaussian elimination with a little on the
// diagonal.
void free_step(int count, const bool* is_free, const double* g, const double (*H)[kRoom], double* d) {
  double A[kRoom][kRoom + 1];
  int index[kRoom], size = 0;
  for (int j = 0; j < count; ++j) {
    d[j] = 0.0;
    if (is_free[j]) index[size++] = j;
  }
  double trace = 0.0;
  for (int j = 0; j < size; ++j) trace += H[index[j]][index[j]];
  for (int j = 0; j < size; ++j) {
    for (int k = 0; k < size; ++k) A[j][k] = H[index[j]][index[k]];
    A[j][j] += 1e-13 * trace;
    A[j][size] = -g[index[j]];
  }
  for (int c = 0; c < size; ++c)
    for (int r = c + 1; r < size; ++r) {
      const double factor = A[r][c] / A[c][c];
      for (int k = c; k <= size; ++k) A[r][k] -= factor * A[c][k];
    }
  for (int r = size - 1; r >= 0; --r) {
    double value = A[r][size];
    for (int k = r + 1; k < size; ++k) value -= A[r][k] * d[index[k]];
    d[index[r]] = value / A[r][r];
  }
}

// Fixed-point step a_j <- a_j sum z_i e_ij/E_i, which never raises the function and ends with a sum of 1: what
// is left to do where Newton's method ends in rounding, as for phases of which one is a mixture of the others.
void fixed_point_step(int count, const double* g, double* a) {
  for (int j = 0; j < count; ++j) a[j] *= 1.0 - g[j];
}

// One step of the split: true when it is done. looks: how often the function was looked at, counted on.
bool split_step(const SplitFunction& f, double* a, int& looks) {
  double g[kRoom], H[kRoom][kRoom], d[kRoom], next[kRoom];
  bool is_free[kRoom];
  f.derivatives(a, g, H);
  looks += 2;
  double left = 0.0;
  for (int j = 0; j < f.count; ++j) {
    is_free[j] = a[j] > 0.0 || g[j] < -kSplit;
    if (is_free[j]) left = std::max(left, g[j] > 0.0 ? std::min(g[j], a[j]) : -g[j]);
  }
  if (left <= kSplit) return true;
  free_step(f.count, is_free, g, H, d);
  double descent = 0.0, part = 1.0, size = 0.0;
  int hit = -1;
  for (int j = 0; j < f.count; ++j) {
    // A phase that just became free may not be driven below 0.
    if (a[j] == 0.0 && d[j] < 0.0) d[j] = 0.0;
    descent += g[j] * d[j];
    size = std::max(size, std::fabs(d[j]));
    if (a[j] + part * d[j] < 0.0) {
      part = -a[j] / d[j];
      hit = j;
    }
  }
  const double value = f.value(a);
  for (int cut = 0; cut < kMostCuts && descent < 0.0; ++cut, part *= 0.4, hit = -1) {
    for (int j = 0; j < f.count; ++j) next[j] = j == hit ? 0.0 : std::max(a[j] + part * d[j], 0.0);
    // A step too short for the function to tell is a good one next to the minimum.
    ++looks;
    const double there = f.value(next), rounding = size < kShort ? kRounding * (1.0 + std::fabs(value)) : 0.0;
    if (!(there < value + 1e-4 * part * descent + rounding)) continue;
    std::copy_n(next, f.count, a);
    return false;
  }
  fixed_point_step(f.count, g, a);
  return false;
}

// Hessian of the Gibbs energy in amounts, entry for phase j between components a and b: d ln f_a/d n_b,
// (31) of docs/method.md.
struct PhaseMatrix {
  const Phases& p;
  const PhasesWork& w;
  int ld;
  double operator()(int j, int a, int b) const {
    const double N = p.amount[j];
    const double own = a == b ? 1.0 / (N * p.x[j][a]) : 0.0;
    const std::size_t at = a >= b ? static_cast<std::size_t>(b) * ld + a : static_cast<std::size_t>(a) * ld + b;
    return own + (w.dn[j][at] - 1.0) / N;
  }
};

// The phase of the k-th unknown of a component whose home is h.
int phase_of(int h, int k) {
  return k < h ? k : k + 1;
}

// An amount of a component that goes from its home to another phase.
struct Move {
  int component, home, to;
};

// How the move of b changes what drives that of a: the difference of ln fugacities of a between its two phases.
double coupling(const PhaseMatrix& H, const Move& a, const Move& b) {
  const int i = a.component, k = b.component;
  double value = 0.0;
  if (a.to == b.to) value += H(a.to, i, k);
  if (a.to == b.home) value -= H(a.to, i, k);
  if (a.home == b.to) value -= H(a.home, i, k);
  if (a.home == b.home) value += H(a.home, i, k);
  return value;
}

// Scaled lower triangle of the Newton system without its shift, one column; unknown k * n + i, columns lead apart.
void newton_column(const PhaseMatrix& H, int n, int lead, int kb, int b) {
  const PhasesWork& w = H.w;
  const int ub = kb * n + b;
  double* const column = w.system + static_cast<std::size_t>(ub) * lead;
  std::fill(column + support::block_start(ub), column + lead, 0.0);
  column[ub] = 1.0;
  if (!(w.scale[ub] > 0.0)) return;
  const Move of_b{b, w.home[b], phase_of(w.home[b], kb)};
  for (int ka = kb; ka < H.p.count - 1; ++ka)
    for (int a = ka == kb ? b : 0; a < n; ++a) {
      const int ua = ka * n + a;
      if (!(w.scale[ua] > 0.0)) continue;
      const Move of_a{a, w.home[a], phase_of(w.home[a], ka)};
      column[ua] = coupling(H, of_a, of_b) * w.scale[ua] * w.scale[ub];
    }
}

void newton_matrix(int n, int ld, int lead, const Phases& p, const PhasesWork& w) {
  const PhaseMatrix H{p, w, ld};
  for (int k = 0; k < p.count - 1; ++k)
    for (int i = 0; i < n; ++i) newton_column(H, n, lead, k, i);
}

// What a component adds to the Gibbs energy and to the differences of fugacities; home: the phase with most of it.
void add_component(int i, Phases& p, int& home) {
  for (int j = 1; j < p.count; ++j)
    if (p.amount[j] * p.x[j][i] > p.amount[home] * p.x[home][i]) home = j;
  double log_f[kRoom];  // ln of the fugacity over the pressure
  for (int j = 0; j < p.count; ++j) log_f[j] = support::fast_log(p.x[j][i]) + p.ln_phi[j][i];
  for (int j = 0; j < p.count; ++j) {
    if (!(p.x[j][i] > 0.0)) continue;
    p.gibbs += p.amount[j] * p.x[j][i] * log_f[j];
    const double apart = std::fabs(log_f[j] - log_f[home]);
    if (p.x[j][i] >= kAbsent) p.worst = std::max(p.worst, apart <= 1e300 ? apart : 1e300);
  }
}

}  // namespace

void take_phases(support::Arena& arena, int ld, Phases& p) {
  for (int j = 0; j < kRoom; ++j) {
    p.x[j] = arena.zeros(ld);
    p.ln_phi[j] = arena.zeros(ld);
  }
}

void take_work(support::Arena& arena, int n, int ld, int most, PhasesWork& w) {
  for (double*& e : w.e) e = arena.zeros(ld);
  for (int j = 0; j < most; ++j) {
    w.dn[j] = arena.take(static_cast<std::size_t>(ld) * n);
    w.moles[j] = arena.zeros(ld);
    w.saved[j] = arena.zeros(ld);
  }
  const int unknowns = (most - 1) * n, lead = support::padded(unknowns);
  w.step = arena.zeros(lead);
  w.scale = arena.zeros(lead);
  w.system = arena.take(static_cast<std::size_t>(unknowns) * lead);
  w.home = arena.take_ints(ld);
}

void copy_phases(const Phases& from, Phases& to, int ld) {
  to.count = from.count;
  to.gibbs = from.gibbs;
  to.worst = from.worst;
  for (int j = 0; j < kRoom; ++j) {
    to.amount[j] = from.amount[j];
    to.Z[j] = from.Z[j];
    std::copy_n(from.x[j], ld, to.x[j]);
    std::copy_n(from.ln_phi[j], ld, to.ln_phi[j]);
  }
}

void exchange_phases(Phases& p, int j, int k) {
  std::swap(p.x[j], p.x[k]);
  std::swap(p.ln_phi[j], p.ln_phi[k]);
  std::swap(p.amount[j], p.amount[k]);
  std::swap(p.Z[j], p.Z[k]);
}

void drop_phase(Phases& p, int j) {
  for (int k = j; k + 1 < p.count; ++k) exchange_phases(p, k, k + 1);
  --p.count;
  double sum = 0.0;
  for (int k = 0; k < p.count; ++k) sum += p.amount[k];
  for (int k = 0; k < p.count; ++k) p.amount[k] = sum > 0.0 ? p.amount[k] / sum : 1.0 / p.count;
}

void drop_least(Phases& p, const double* z, int ld) {
  constexpr double kSomething = 1e-3;
  int least = 0;
  for (int j = 1; j < p.count; ++j)
    if (p.amount[j] < p.amount[least]) least = j;
  p.amount[least] = 0.0;
  for (int j = 0; j < p.count; ++j) p.amount[j] = std::max(p.amount[j], kSomething);
  drop_phase(p, least);
  if (p.count == 1) std::copy_n(z, ld, p.x[0]);
}

StatusCode evaluate_phases(flash::Model& m, const double* z, Phases& p, const PhasesWork& w, bool derivatives) {
  for (int j = 0; j < p.count; ++j) {
    const StatusCode status =
        flash::fugacity(m, p.x[j], flash::Kind::stable, p.ln_phi[j], derivatives ? w.dn[j] : nullptr, p.Z[j]);
    if (status != KV_OK) return status;
  }
  p.gibbs = p.worst = 0.0;
  for (int i = 0; i < m.n; ++i) {
    w.home[i] = 0;
    if (z[i] > 0.0) add_component(i, p, w.home[i]);
  }
  return KV_OK;
}

bool split_between(int n, const double* z, Phases& p, const PhasesWork& w, int* looks) {
  for (int i = 0; i < n; ++i) {
    double least = p.ln_phi[0][i];
    for (int j = 1; j < p.count; ++j) least = std::min(least, p.ln_phi[j][i]);
    for (int j = 0; j < p.count; ++j) w.e[j][i] = least - p.ln_phi[j][i];
  }
  for (int j = 0; j < p.count; ++j)
    for (int i = 0; i < n; ++i) w.e[j][i] = support::fast_exp(w.e[j][i]);
  const SplitFunction f{n, p.count, z, w.e};
  double a[kRoom];
  for (int j = 0; j < p.count; ++j) a[j] = std::max(p.amount[j], 0.02);
  int looked = 0;
  for (int k = 0; k < kMostSplitSteps && !split_step(f, a, looked); ++k) {
  }
  if (looks != nullptr) *looks = looked;
  // What a phase has of every component is a_j z_i e_ij/E_i: the balance holds whatever is left of the
  // gradient.
  for (int j = 0; j < p.count; ++j) {
    double sum = 0.0;
    for (int i = 0; i < n; ++i) {
      p.x[j][i] = z[i] > 0.0 ? z[i] * w.e[j][i] / f.sum(a, i) : 0.0;
      sum += p.x[j][i];
    }
    if (!(sum > 0.0 && sum < 1e300)) return false;
    for (int i = 0; i < n; ++i) p.x[j][i] /= sum;
    p.amount[j] = a[j] * sum;
  }
  return true;
}

bool newton_direction(flash::Model& m, const double* z, const Phases& p, const PhasesWork& w) {
  const int n = m.n, ld = m.ld, free = p.count - 1, size = free * n, lead = support::padded(size);
  for (int j = 0; j < p.count; ++j)
    for (int i = 0; i < ld; ++i) w.saved[j][i] = p.amount[j] * p.x[j][i];
  for (int k = 0; k < free; ++k)
    for (int i = 0; i < n; ++i) {
      const int u = k * n + i;
      w.scale[u] = w.step[u] = 0.0;
      if (!(z[i] > 0.0)) continue;
      const int h = w.home[i], j = phase_of(h, k);
      if (!(w.saved[j][i] > kUnknownAmount)) continue;
      w.scale[u] = std::sqrt(w.saved[j][i]);
      w.step[u] = -w.scale[u] * (support::fast_log(p.x[j][i] / p.x[h][i]) + p.ln_phi[j][i] - p.ln_phi[h][i]);
    }
  double shift = 0.0;
  for (;;) {
    newton_matrix(n, ld, lead, p, w);
    for (int u = 0; u < size; ++u) w.system[static_cast<std::size_t>(u) * lead + u] += shift;
    ++m.counts.factorisations;
    if (support::ldl_factor(size, lead, w.system, kSmallestPivot)) break;
    shift = shift > 0.0 ? 8.0 * shift : kFirstShift;
    if (!(shift < kLargestShift)) return false;
  }
  support::ldl_solve(size, lead, w.system, w.step);
  for (int u = 0; u < size; ++u) w.step[u] *= w.scale[u];
  return true;
}

double change_of_amount(int n, const Phases& p, const PhasesWork& w, int j) {
  double change = 0.0;
  for (int i = 0; i < n; ++i)
    for (int k = 0; k < p.count - 1; ++k) {
      if (phase_of(w.home[i], k) == j) change += w.step[k * n + i];
      if (w.home[i] == j) change -= w.step[k * n + i];
    }
  return change;
}

void take_step(int n, int ld, double part, Phases& p, const PhasesWork& w) {
  for (int j = 0; j < p.count; ++j) std::copy_n(w.saved[j], ld, w.moles[j]);
  for (int i = 0; i < n; ++i) {
    const int h = w.home[i];
    for (int k = 0; k < p.count - 1; ++k) {
      const int j = phase_of(h, k);
      const double d =
          std::clamp(part * w.step[k * n + i], -kTaken * w.saved[j][i], kTaken / (p.count - 1) * w.saved[h][i]);
      w.moles[j][i] += d;
      w.moles[h][i] -= d;
    }
  }
  for (int j = 0; j < p.count; ++j) {
    double sum = 0.0;
    for (int i = 0; i < n; ++i) sum += w.moles[j][i];
    p.amount[j] = sum;
    if (!(sum > 0.0)) continue;
    for (int i = 0; i < n; ++i) p.x[j][i] = w.moles[j][i] / sum;
  }
}

bool join_phases(int n, int ld, const double* z, const Phases& a, const Phases& b, double part,
                 Phases& joined) {
  constexpr double kAlike = 1e-3;  // sum of (x - y)^2/(x + y) of one phase seen from two sides
  constexpr double kAlikeZ = 0.2;  // relative difference of its Z
  copy_phases(a, joined, ld);
  for (int k = 0; k < joined.count; ++k) joined.amount[k] *= 1.0 - part;
  for (int j = 0; j < b.count; ++j) {
    int known = -1;
    for (int k = 0; k < a.count; ++k)
      if (same_phase(n, z, b.x[j], joined.x[k], kAlike) &&
          std::fabs(b.Z[j] - joined.Z[k]) < kAlikeZ * std::max(b.Z[j], joined.Z[k]))
        known = k;
    if (known >= 0) {
      joined.amount[known] += part * b.amount[j];
      continue;
    }
    if (joined.count == kRoom) return false;
    joined.amount[joined.count] = part * b.amount[j];
    std::copy_n(b.x[j], ld, joined.x[joined.count]);
    std::copy_n(b.ln_phi[j], ld, joined.ln_phi[joined.count]);
    joined.Z[joined.count] = b.Z[j];
    ++joined.count;
  }
  return joined.count >= 2;
}

void drop_traces(int n, double* x) {
  for (int i = 0; i < n; ++i)
    if (x[i] < kAbsent) x[i] = 0.0;
}

bool same_phase(int n, const double* z, const double* a, const double* b, double tolerance) {
  double sum = 0.0;
  for (int i = 0; i < n; ++i) {
    const double gap = a[i] - b[i];
    if (z[i] > 0.0 && gap != 0.0) sum += gap * gap / (a[i] + b[i]);
  }
  return sum < tolerance;
}

}  // namespace kestrune::flash3
