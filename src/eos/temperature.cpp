// Pure-component and pair parameters of PPR78 at a temperature: (2) to (5) of docs/method.md.
//
// With delta_i = sqrt(a_i)/b_i the mixing rule a_ij = sqrt(a_i a_j)(1 - k_ij) and
// k_ij = (E_ij - (delta_i - delta_j)^2)/(2 delta_i delta_j)                                          [Jau04]
// give a_ij = b_i b_j (delta_i^2 + delta_j^2 - E_ij)/2: no root is needed, and nothing is singular where a_i
// vanishes (heavy alpha functions do at high temperature). The group sum
// E_ij = -1/2 sum_kl (f_ik - f_jk)(f_il - f_jl) A_kl(T) factors into E_ij = G_ij - (G_ii + G_jj)/2 with
// G = f A f^T, so that a pair costs one scalar product over the groups that occur.
//
// [Rob78] D. B. Robinson, D.-Y. Peng, GPA Research Report 28 (1978).
// [Jau04] J.-N. Jaubert, F. Mutelet, Fluid Phase Equilib. 224 (2004) 285-304.

#include "eos/temperature.hpp"

#include <cfloat>
#include <cmath>

#include "eos/constants.hpp"
#include "support/lanes.hpp"

namespace kestrune::eos {
namespace {

// m(omega) of (2): one fit up to 0.491, that value included, another above.                            [Rob78]
inline double slope_of_alpha(double w) {
  const double low = 0.37464 + w * (1.54226 - w * 0.26992);
  const double high = 0.379642 + w * (1.48503 + w * (-0.164423 + w * 0.016666));
  return w <= 0.491 ? low : high;
}

struct Components {
  double *a, *a_t, *a_tt, *b;  // [ld]
  double *e, *e_t, *e_tt;      // [ld] delta_i^2 = a_i/b_i^2 and its derivatives
};

// a_i, b_i and delta_i^2 with as many derivatives as wanted. False when a constant is unusable.
bool components(double T, int n, const double* Tc, const double* Pc, const double* w, int order,
                const Components& c) {
  bool good = true;
  const double invT = 1.0 / T;
  for (int i = 0; i < n; ++i) {
    good &= Tc[i] > 0.0 && Tc[i] <= DBL_MAX && Pc[i] > 0.0 && Pc[i] <= DBL_MAX && std::fabs(w[i]) <= 1e3;
    const double tp = Tc[i] / Pc[i];
    const double s = std::sqrt(T / Tc[i]);
    const double m = slope_of_alpha(w[i]);
    const double psi = 1.0 + m * (1.0 - s);
    c.b[i] = kOmegaB_R * tp;
    const double ac = kOmegaA_R2 * Tc[i] * tp;
    // delta_i^2 = (ac/b^2) psi^2, and ac/b^2 = (OmegaA R^2/(OmegaB R)^2) Pc.
    const double ec = kOmegaA_R2 / (kOmegaB_R * kOmegaB_R) * Pc[i];
    const double psi2 = psi * psi;
    c.a[i] = ac * psi2;
    c.e[i] = ec * psi2;
    if (order > 0) {
      const double h = 0.5 * m * s * invT;  // -d psi/dT
      c.a_t[i] = ac * (-2.0 * psi * h);
      c.e_t[i] = ec * (-2.0 * psi * h);
      c.a_tt[i] = ac * (psi * h * invT + 2.0 * h * h);
      c.e_tt[i] = ec * (psi * h * invT + 2.0 * h * h);
    }
  }
  return good;
}

// The groups that occur in the mixture, packed: fractions f[i + ld * g], interactions at T.
struct Groups {
  int count;
  double* f;               // [ld * count]
  double *A, *A_t, *A_tt;  // [count * count] atm, atm/K, atm/K2
  bool unassigned;         // some component has no group at all
};

void find_groups(const GroupData& data, int n, int ld, support::Arena& arena, int* index, Groups& g) {
  g.count = 0;
  double* total = arena.zeros(ld);
  for (int k = 0; k < data.groups; ++k) {
    const double* column = data.fractions + static_cast<std::size_t>(k) * n;
    bool occurs = false;
    for (int i = 0; i < n; ++i) occurs |= column[i] != 0.0;
    if (!occurs) continue;
    index[g.count] = k;
    double* f = g.f + static_cast<std::size_t>(g.count) * ld;
    for (int i = 0; i < n; ++i) {
      f[i] = column[i];
      total[i] += column[i];
    }
    for (int i = n; i < ld; ++i) f[i] = 0.0;
    ++g.count;
  }
  g.unassigned = false;
  for (int i = 0; i < n; ++i) g.unassigned |= total[i] == 0.0;
}

// A_kl(T) = A'_kl (298.15/T)^(ratio - 1) of (4), one exponential for each pair of groups.
void group_interactions(double T, const GroupData& data, const int* index, int order, support::Arena& arena,
                        Groups& g) {
  const int m = g.count;
  const double log_ratio = std::log(kReferenceTemperature / T);
  const double invT = 1.0 / T;
  const int pairs = m * (m - 1) / 2;
  double* a = arena.take(pairs + 1);
  double* r = arena.take(pairs + 1);
  double* power = arena.take(pairs + 1);
  int p = 0;
  for (int l = 1; l < m; ++l) {
    const std::size_t column = static_cast<std::size_t>(index[l]) * data.groups;
    for (int k = 0; k < l; ++k, ++p) {
      a[p] = data.A[column + index[k]];
      r[p] = data.ratio[column + index[k]] - 1.0;
    }
  }
  support::lanes->powers(pairs, a, r, log_ratio, power);
  p = 0;
  for (int l = 0; l < m; ++l) {
    for (int k = 0; k < l; ++k, ++p) {
      g.A[k + l * m] = g.A[l + k * m] = power[p];
      if (order > 0) {
        const double first = -r[p] * invT * power[p];
        g.A_t[k + l * m] = g.A_t[l + k * m] = first;
        g.A_tt[k + l * m] = g.A_tt[l + k * m] = -(r[p] + 1.0) * invT * first;
      }
    }
    g.A[l + l * m] = 0.0;
    if (order > 0) g.A_t[l + l * m] = g.A_tt[l + l * m] = 0.0;
  }
}

// Components without any group take no part in the group sum: E_ij = 0 with every other.
void correct_unassigned(int n, int ld, const Groups& g, const double* e, const double* b, double* out) {
  for (int i = 0; i < n; ++i) {
    double total = 0.0;
    for (int k = 0; k < g.count; ++k) total += g.f[i + k * ld];
    if (total != 0.0) continue;
    for (int j = 0; j < n; ++j) {
      if (j == i) continue;
      out[i + static_cast<std::size_t>(j) * ld] = out[j + static_cast<std::size_t>(i) * ld] =
          0.5 * b[i] * b[j] * (e[i] + e[j]);
    }
  }
}

}  // namespace

double alpha_function(double T, double Tc, double omega, bool want_first, bool want_second, double* first,
                      double* second) noexcept {
  const double m = slope_of_alpha(omega);
  const double s = std::sqrt(T / Tc);
  const double psi = 1.0 + m * (1.0 - s);
  const double h = 0.5 * m * s / T;  // -d psi/dT
  if (want_first || want_second) *first = -2.0 * psi * h;
  // 2 [psi h/(2T) + (d alpha/dT)^2/(4 alpha)], whose last term is h^2 also where psi vanishes
  if (want_second) *second = 2.0 * (psi * 0.5 * h / T + h * h);
  return psi * psi;
}

StatusCode prepare(double T, const Context& context, int order, support::Arena& arena, Temperature& t) {
  if (context.groups == nullptr) return KV_GROUP_DATA;
  const GroupData& data = *context.groups;
  const int n = context.record->count, ld = support::padded(n);
  if (data.fractions == nullptr || data.components != n || data.groups < 1) return KV_GROUP_DATA;
  const double* table = context.record->table;
  const auto column = [table, n](int k) { return table + static_cast<std::size_t>(k - 1) * n; };
  const std::size_t size = static_cast<std::size_t>(ld) * n;
  t.n = n;
  t.ld = ld;
  t.order = order;
  t.T = T;
  t.b = arena.zeros(ld);
  t.a = arena.zeros(ld);
  t.aij = arena.take(size);
  t.aij_t = order > 0 ? arena.take(size) : nullptr;
  t.aij_tt = order > 1 ? arena.take(size) : nullptr;

  Components c{t.a, nullptr, nullptr, t.b, arena.zeros(ld), nullptr, nullptr};
  if (order > 0) {
    c.a_t = arena.zeros(ld);
    c.a_tt = arena.zeros(ld);
    c.e_t = arena.zeros(ld);
    c.e_tt = arena.zeros(ld);
  }
  if (!components(T, n, column(KV_COL_TC), column(KV_COL_PC), column(KV_COL_OMEGA), order, c))
    return KV_COMPONENT_DATA;

  Groups g{};
  int* index = arena.take_ints(data.groups);
  g.f = arena.take(static_cast<std::size_t>(ld) * data.groups);
  find_groups(data, n, ld, arena, index, g);
  const std::size_t square = static_cast<std::size_t>(g.count) * g.count + 1;
  g.A = arena.take(square);
  g.A_t = order > 0 ? arena.take(square) : nullptr;
  g.A_tt = order > 0 ? arena.take(square) : nullptr;
  group_interactions(T, data, index, order, arena, g);

  double* half = arena.take(static_cast<std::size_t>(ld) * (g.count + 1));
  double* d = arena.take(ld);
  const double* const A[] = {g.A, g.A_t, g.A_tt};
  const double* const e[] = {c.e, c.e_t, c.e_tt};
  const double* const diagonal[] = {c.a, c.a_t, c.a_tt};
  double* const out[] = {t.aij, t.aij_t, t.aij_tt};
  for (int k = 0; k <= order; ++k) {
    support::lanes->group_sums(n, ld, g.count, g.f, A[k], e[k], c.b, half, d, out[k]);
    for (int j = 0; j < n; ++j) out[k][static_cast<std::size_t>(j) * ld + j] = diagonal[k][j];
    if (g.unassigned) correct_unassigned(n, ld, g, e[k], c.b, out[k]);
  }
  return KV_OK;
}

void interaction_parameters(const Temperature& t, double* kij, double* kij_t, double* kij_tt) noexcept {
  // 1 - k = a_ij/r with r = sqrt(a_i a_j); derivatives of the quotient.
  for (int j = 0; j < t.n; ++j) {
    for (int i = 0; i < t.n; ++i) {
      const std::size_t at = static_cast<std::size_t>(j) * t.ld + i;
      const std::size_t to = static_cast<std::size_t>(j) * t.n + i;
      const double r = std::sqrt(t.a[i] * t.a[j]);
      const double q = t.aij[at] / r;
      kij[to] = i == j ? 0.0 : 1.0 - q;
      if (kij_t == nullptr && kij_tt == nullptr) continue;
      // logarithmic derivative of r from the diagonal: r'/r = (a_i'/a_i + a_j'/a_j)/2
      const std::size_t ii = static_cast<std::size_t>(i) * t.ld + i,
                        jj = static_cast<std::size_t>(j) * t.ld + j;
      const double li = t.aij_t[ii] / t.a[i], lj = t.aij_t[jj] / t.a[j];
      const double l = 0.5 * (li + lj);
      const double q1 = t.aij_t[at] / r - q * l;
      if (kij_t != nullptr) kij_t[to] = i == j ? 0.0 : -q1;
      if (kij_tt == nullptr) continue;
      const double l1 = 0.5 * (t.aij_tt[ii] / t.a[i] - li * li + t.aij_tt[jj] / t.a[j] - lj * lj);
      const double q2 = t.aij_tt[at] / r - t.aij_t[at] / r * l - q1 * l - q * l1;
      kij_tt[to] = i == j ? 0.0 : -q2;
    }
  }
}

}  // namespace kestrune::eos
