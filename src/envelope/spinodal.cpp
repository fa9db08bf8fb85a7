// Everything follows from the residual Helmholtz energy F = -n ln(1 - B/V) - D k(B/V)/(R T V), where
// D = n^2 a and k(eta) = ln[(1 + d1 eta)/(1 + d2 eta)]/((d1 - d2) eta): along a line of amounts D is a square
// polynomial and B a straight line, so that every derivative has a closed form.

#include "envelope/spinodal.hpp"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "flash/fugacity.hpp"
#include "support/ldl.hpp"
#include "support/lu.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::envelope {
namespace {

using eos::kR;

// Coefficients of the second and third derivatives of F at one T and V, and of their own derivatives.
struct Volume {
  double L[5];  // 1/(V - b)^m
  double H[5];  // k^(m)(eta)/(R T V^(m + 1)), m up to 3; dH/dV
  double dL[4], dH[4];
};

// k and its first four derivatives.
void attraction(double eta, double k[5]) {
  const double g = eos::kS * eta / (2.0 + eos::kU * eta);
  const double phi =
      g < 0.17 ? 2.0 / eos::kS * support::small_atanh(g) : support::fast_log((1.0 + g) / (1.0 - g)) / eos::kS;
  // chi = d phi/d eta = 1/(1 + u eta + w eta^2) and its derivatives
  const double chi = 1.0 / (1.0 + eta * (eos::kU + eos::kW * eta));
  const double p = eos::kU + 2.0 * eos::kW * eta;
  const double chi1 = -p * chi * chi;
  const double chi2 = (2.0 * p * p * chi - 2.0 * eos::kW) * chi * chi;
  const double chi3 = (12.0 * eos::kW - 6.0 * p * p * chi) * p * chi * chi * chi;
  const double inverse = 1.0 / eta;
  k[0] = phi * inverse;
  k[1] = (chi - k[0]) * inverse;
  k[2] = (chi1 - 2.0 * k[1]) * inverse;
  k[3] = (chi2 - 3.0 * k[2]) * inverse;
  k[4] = (chi3 - 4.0 * k[3]) * inverse;
}

Volume volume_terms(double T, double b, double eta) {
  Volume c;
  double k[5];
  attraction(eta, k);
  const double V = b / eta, inverse = 1.0 / V;
  c.L[0] = 1.0;
  for (int m = 1; m < 5; ++m) c.L[m] = c.L[m - 1] / (V - b);
  for (int m = 0; m < 4; ++m) c.dL[m] = -m * c.L[m + 1];
  double scale = inverse / (kR * T);
  for (int m = 0; m < 4; ++m) {
    c.H[m] = k[m] * scale;
    scale *= inverse;
    c.dH[m] = -(eta * k[m + 1] + (m + 1) * k[m]) * scale;
  }
  return c;
}

StatusCode prepare_at(Spinodal& sp, double T) {
  if (T == sp.prepared) return KV_OK;
  sp.arena->rewind(sp.base);
  sp.prepared = -1.0;
  const StatusCode status = eos::prepare(T, sp.context, 1, *sp.arena, sp.t);
  if (status == KV_OK) sp.prepared = T;
  return status;
}

// out = M x over a padded symmetric matrix.
void times(const Spinodal& sp, const double* M, const double* x, double* __restrict out) {
  for (int i = 0; i < sp.ld; ++i) out[i] = 0.0;
  for (int j = 0; j < sp.n; ++j) {
    const double* column = M + static_cast<std::size_t>(j) * sp.ld;
    for (int i = 0; i < sp.ld; ++i) out[i] += x[j] * column[i];
  }
}

double dot(int n, const double* x, const double* y) {
  double sum = 0.0;
  for (int i = 0; i < n; ++i) sum += x[i] * y[i];
  return sum;
}

// B in the leading block of a matrix with leading dimension size; a is that of the feed.
void fill_matrix(const Spinodal& sp, const Volume& c, double a, int size) {
  const double aa = -2.0 * c.H[0], bs = -2.0 * c.H[1], bb = c.L[2] - a * c.H[2];
  const double* b = sp.t.b;
  for (int j = 0; j < sp.n; ++j) {
    const double* column = sp.t.aij + static_cast<std::size_t>(j) * sp.ld;
    double* __restrict out = sp.matrix + static_cast<std::size_t>(j) * size;
    const double r = sp.root[j];
    const double of_1 = r * (c.L[1] * b[j]), of_b = r * (c.L[1] + bb * b[j] + bs * sp.s[j]),
                 of_s = r * bs * b[j], of_a = r * aa;
    for (int i = 0; i < sp.n; ++i)
      out[i] = sp.root[i] * (of_1 + of_b * b[i] + of_s * sp.s[i] + of_a * column[i]);
    out[j] += 1.0;
  }
}

// A change of the amounts, sqrt(z) times a vector, with its sums: total, of b, of s and of ds/dT.
struct Move {
  const double* by;
  double n, b, s, s_t;
};
Move move_along(const Spinodal& sp, const double* vector, double* __restrict by) {
  Move m{by, 0.0, 0.0, 0.0, 0.0};
  for (int i = 0; i < sp.n; ++i) {
    by[i] = sp.root[i] * vector[i];
    m.n += by[i];
    m.b += by[i] * sp.t.b[i];
    m.s += by[i] * sp.s[i];
    m.s_t += by[i] * sp.s_t[i];
  }
  return m;
}

struct Slopes {
  double T, V;
};

// Derivatives of the second derivative of F along two moves; A and A_t are x M y of the pair matrices.
Slopes second_order_slopes(const Volume& c, double T, double a, double a_t, const Move& x, const Move& y,
                           double A, double A_t) {
  const double bb = x.b * y.b, sb = x.s * y.b + x.b * y.s, sb_t = x.s_t * y.b + x.b * y.s_t;
  const double invT = 1.0 / T;
  Slopes d;
  d.T = -2.0 * c.H[0] * (A_t - A * invT) - 2.0 * c.H[1] * (sb_t - sb * invT) - c.H[2] * (a_t - a * invT) * bb;
  d.V =
      c.dL[1] * (x.b * y.n + x.n * y.b) + (c.dL[2] - a * c.dH[2]) * bb - 2.0 * c.dH[0] * A - 2.0 * c.dH[1] * sb;
  return d;
}

// The third derivative of the Helmholtz energy along a move and its own derivatives, the move held.
double third_order(const Spinodal& sp, const Volume& c, double T, double a, double a_t, const Move& m, double A,
                   double A_t, const double* v, Slopes& d) {
  double ideal = 0.0;
  for (int i = 0; i < sp.n; ++i)
    if (sp.root[i] > 0.0) ideal += v[i] * v[i] * v[i] / sp.root[i];
  const double b1 = m.b, b2 = b1 * b1, b3 = b2 * b1, invT = 1.0 / T;
  const double of_H[4] = {0.0, 6.0 * A * b1, 6.0 * m.s * b2, a * b3};
  const double of_H_t[4] = {0.0, 6.0 * A_t * b1, 6.0 * m.s_t * b2, a_t * b3};
  double form = -ideal + 2.0 * c.L[3] * b3 + 3.0 * m.n * c.L[2] * b2;
  d.T = 0.0;
  d.V = 2.0 * c.dL[3] * b3 + 3.0 * m.n * c.dL[2] * b2;
  for (int k = 1; k < 4; ++k) {
    form -= c.H[k] * of_H[k];
    d.T -= c.H[k] * (of_H_t[k] - of_H[k] * invT);
    d.V -= c.dH[k] * of_H[k];
  }
  return form;
}

// Derivative of the form with respect to v.
void gradient_of_form(const Spinodal& sp, const Volume& c, double a, const Move& m, double A,
                      const double* __restrict v, double* __restrict out) {
  const double b1 = m.b, b2 = b1 * b1;
  const double of_1 = 3.0 * c.L[2] * b2;
  const double of_b = 6.0 * c.L[3] * b2 + 6.0 * m.n * c.L[2] * b1 - 3.0 * a * c.H[3] * b2 -
                      12.0 * m.s * c.H[2] * b1 - 6.0 * A * c.H[1];
  const double of_s = -6.0 * c.H[2] * b2, of_A = -12.0 * c.H[1] * b1;
  for (int i = 0; i < sp.n; ++i) {
    const double r = sp.root[i];
    out[i] = r * (of_1 + of_b * sp.t.b[i] + of_s * sp.s[i] + of_A * sp.a_move[i]);
    if (r > 0.0) out[i] -= 3.0 * v[i] * v[i] / r;
  }
}

// a of the feed with s and s_t; returns a, and da/dT.
double mix_feed(Spinodal& sp, double& a_t) {
  times(sp, sp.t.aij, sp.z, sp.s);
  times(sp, sp.t.aij_t, sp.z, sp.s_t);
  a_t = dot(sp.n, sp.z, sp.s_t);
  return dot(sp.n, sp.z, sp.s);
}

// The bordered matrix, factored. False when that cannot be done.
bool factor_bordered(Spinodal& sp, const Volume& c, double a) {
  const int n = sp.n, size = n + 1;
  fill_matrix(sp, c, a, size);
  double* last = sp.matrix + static_cast<std::size_t>(n) * size;
  for (int i = 0; i < n; ++i) last[i] = sp.matrix[static_cast<std::size_t>(i) * size + n] = sp.w[i];
  last[n] = 0.0;
  return support::lu_factor(size, size, sp.matrix, sp.pivot);
}

void normalise(int n, const double* from, double* to) {
  const double scale = 1.0 / std::sqrt(std::max(dot(n, from, from), 1e-300));
  for (int i = 0; i < n; ++i) to[i] = scale * from[i];
}

}  // namespace

void open_spinodal(support::Arena& arena, const eos::Context& context, const double* z, Spinodal& sp) {
  const MixtureRecord& mixture = *context.record;
  sp.n = mixture.count;
  sp.ld = support::padded(sp.n);
  sp.context = context;
  sp.z = z;
  sp.arena = &arena;
  for (double** array :
       {&sp.root, &sp.w, &sp.s, &sp.s_t, &sp.move, &sp.a_move, &sp.a_move_t, &sp.move_y, &sp.kept})
    *array = arena.zeros(sp.ld);
  sp.v = arena.zeros(sp.n + 1);
  sp.y = arena.zeros(sp.n + 1);
  sp.matrix = arena.zeros(static_cast<std::size_t>(sp.n + 1) * support::padded(sp.n + 1));
  sp.pivot = arena.take_ints(sp.n + 1);
  sp.base = arena.mark();
  for (int i = 0; i < sp.n; ++i) sp.root[i] = std::sqrt(z[i]);
  sp.b = flash::covolume(mixture, z);
}

StatusCode curvature_beside(Spinodal& sp, double T, double eta, double rough, Curvature& out) {
  const int n = sp.n, size = n + 1;
  const StatusCode status = prepare_at(sp, T);
  if (status != KV_OK) return status;
  double a_t;
  const double a = mix_feed(sp, a_t);
  const Volume c = volume_terms(T, sp.b, eta);
  if (!factor_bordered(sp, c, a)) return KV_NOT_FINITE;
  std::fill_n(sp.v, n, 0.0);
  sp.v[n] = 1.0;
  support::lu_solve(size, size, sp.matrix, sp.pivot, sp.v);
  out = Curvature{};
  out.g = sp.v[n];

  const Move m = move_along(sp, sp.v, sp.move);
  times(sp, sp.t.aij, sp.move, sp.a_move);
  times(sp, sp.t.aij_t, sp.move, sp.a_move_t);
  const double A = dot(n, sp.move, sp.a_move), A_t = dot(n, sp.move, sp.a_move_t);
  const Slopes of_g = second_order_slopes(c, T, a, a_t, m, m, A, A_t);
  const double V_eta = -sp.b / (eta * eta);
  out.g_T = -of_g.T;
  out.g_eta = -of_g.V * V_eta;
  normalise(n, sp.v, sp.w);
  const double step = -out.g / (out.g_T * T);
  if (!(std::fabs(out.g) <= DBL_MAX)) return KV_NOT_FINITE;
  if (std::fabs(step) > rough) return KV_OK;

  Slopes held;
  out.form = third_order(sp, c, T, a, a_t, m, A, A_t, sp.v, held);
  // How v itself changes, by the adjoint: gradient dv = -y dB v.
  gradient_of_form(sp, c, a, m, A, sp.v, sp.y);
  sp.y[n] = 0.0;
  support::lu_solve(size, size, sp.matrix, sp.pivot, sp.y);
  const Move my = move_along(sp, sp.y, sp.move_y);
  const Slopes turned =
      second_order_slopes(c, T, a, a_t, m, my, dot(n, sp.move_y, sp.a_move), dot(n, sp.move_y, sp.a_move_t));
  out.form_T = held.T - turned.T;
  out.form_eta = (held.V - turned.V) * V_eta;
  const bool finite =
      std::fabs(out.form) <= DBL_MAX && std::fabs(out.form_T) <= DBL_MAX && std::fabs(out.form_eta) <= DBL_MAX;
  return finite ? KV_OK : KV_NOT_FINITE;
}

StatusCode curvature(Spinodal& sp, double T, double eta, Curvature& out) {
  return curvature_beside(sp, T, eta, HUGE_VAL, out);
}

bool locally_stable(Spinodal& sp, double T, double eta, double slack, StatusCode& status) {
  status = prepare_at(sp, T);
  if (status != KV_OK) return false;
  double a_t;
  const double a = mix_feed(sp, a_t);
  fill_matrix(sp, volume_terms(T, sp.b, eta), a, sp.ld);
  for (int i = 0; i < sp.n; ++i) sp.matrix[static_cast<std::size_t>(i) * sp.ld + i] += slack;
  return support::ldl_factor(sp.n, sp.ld, sp.matrix, 0.0);
}

StatusCode start_border(Spinodal& sp, double T, double eta) {
  constexpr int kIterations = 4;
  const int n = sp.n;
  StatusCode status = KV_OK;
  double slack = 0.0;
  for (int k = 0; k < 20 && !locally_stable(sp, T, eta, slack, status); ++k) {
    if (status != KV_OK) return status;
    slack = k == 0 ? 1e-3 : 4.0 * slack;
  }
  for (int i = 0; i < n; ++i) sp.v[i] = sp.root[i] > 0.0 ? ((i & 1) ? -1.0 : 1.0) + 0.3 * i / n : 0.0;
  for (int k = 0; k < kIterations; ++k) {
    support::ldl_solve(n, sp.ld, sp.matrix, sp.v);
    normalise(n, sp.v, sp.v);
  }
  std::copy_n(sp.v, n, sp.w);
  return KV_OK;
}

double pressure_at(const Spinodal& sp, double eta) {
  const double V = sp.b / eta, b = sp.b, a = dot(sp.n, sp.z, sp.s);
  return kR * sp.t.T / (V - b) - a / (V * V + eos::kU * b * V + eos::kW * b * b);
}

StatusCode conditions(Spinodal& sp, double T, double eta, double& eigenvalue, double& form) {
  StatusCode status = start_border(sp, T, eta);
  Curvature c;
  double length = 1.0;
  for (int k = 0; k < 3 && status == KV_OK; ++k) {
    status = curvature(sp, T, eta, c);
    length = dot(sp.n, sp.v, sp.v);
  }
  eigenvalue = -c.g / length;
  form = c.form / (length * std::sqrt(length));
  return status;
}

}  // namespace kestrune::envelope
