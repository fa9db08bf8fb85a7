// Kernels of the phase evaluation. The derivatives are those of the residual Helmholtz energy
//   F/n = -ln(1 - eta) - q phi(eta)
// written so that nothing cancels in a dilute gas.
//
// [Mic07] M. L. Michelsen, J. M. Mollerup, Thermodynamic Models: Fundamentals and Computational Aspects (2007),
//         chapters 2 and 3: F and its derivatives, and their relation to ln phi at constant T and P.

#include "eos/phase.hpp"

#include <cfloat>
#include <cmath>

#include "support/lanes.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::eos {

Mixture mix(const Temperature& t, const double* x, double* s) noexcept {
  const support::Sums sums = support::lanes->combine(t.n, t.ld, t.aij, x, t.b, s);
  return {sums.first, sums.second, sums.first / (sums.second * t.rt())};
}

double quadratic(const Temperature& t, const double* matrix, const double* x) noexcept {
  double sum = 0.0;
  for (int j = 0; j < t.n; ++j) {
    const double* column = matrix + static_cast<std::size_t>(j) * t.ld;
    double s = 0.0;
    for (int i = 0; i < t.n; ++i) s += x[i] * column[i];
    sum += x[j] * s;
  }
  return sum;
}

int solve_root(CubicRoot bracub, double A, double B, int phase, bool warm, double& Z) noexcept {
  const double c0 = 1.0;
  const double c1 = (kU - 1.0) * B - 1.0;
  const double c2 = A + (kW - kU) * B * B - kU * B;
  const double c3 = -(A + kW * B * (B + 1.0)) * B;
  if (!(std::fabs(c1) <= DBL_MAX && std::fabs(c2) <= DBL_MAX && std::fabs(c3) <= DBL_MAX &&
        std::fabs(B) <= DBL_MAX))
    return KV_NOT_FINITE;
  const double u = kU, w = kW;
  const std::int32_t selector = phase;
  std::int32_t status = 0;
  bracub(&c0, &c1, &c2, &c3, &Z, &status, &selector, &u, &w, &A, &B, warm ? kWarmRoot : kColdRoot);
  return status;
}

void reduce(const Temperature& t, const Mixture& m, double P, double Z, Root& r) noexcept {
  const double B = m.b * (P / t.rt());
  r.Z = Z;
  r.eta = B / Z;
  const double eta = r.eta;
  r.psi = eta / (1.0 + eta * (kU + kW * eta));
  r.z_minus_1 = eta / (1.0 - eta) - m.q * r.psi;
  // The argument of phi's logarithm is 1 + (delta1 - delta2) B/(Z + delta2 B).
  const support::TwoLogs logs = support::two_logs(Z - B, kS * B, Z + kDelta2 * B);
  r.log_z_minus_B = logs.of_x;
  r.phi = logs.of_ratio * (1.0 / kS);
}

namespace {

// What is left of the cubic without its root Z: (z - middle)^2 = discriminant.
struct Quadratic {
  double middle, discriminant;
};
inline Quadratic without_root(double A, double B, double Z) {
  const double p = (kU - 1.0) * B - 1.0 + Z;
  return {-0.5 * p, 0.25 * p * p - (A + (kW - kU) * B * B - kU * B + p * Z)};
}

}  // namespace

bool has_other_root(const Temperature& t, double b, double P, double Z, double& higher) noexcept {
  const double B = b * (P / t.rt()), eta = B / Z;
  // The cohesion that gives this root; then the cubic divided by its factor.
  const double psi = eta / (1.0 + eta * (kU + kW * eta));
  const double q = (eta / (1.0 - eta) - (Z - 1.0)) / psi, A = q * B;
  if (!may_have_three_roots(A, B)) return false;
  const Quadratic rest = without_root(A, B, Z);
  if (rest.discriminant < -kOtherRootMargin) return false;
  const double half = std::sqrt(rest.discriminant > 0.0 ? rest.discriminant : 0.0);
  const double other = Z < rest.middle ? rest.middle + half : rest.middle - half;
  if (!(other > B)) return false;
  const Mixture m{q * b * t.rt(), b, q};
  Root here, there;
  reduce(t, m, P, Z, here);
  reduce(t, m, P, other, there);
  higher = residual_gibbs(m, there) - residual_gibbs(m, here);
  return true;
}

int stable_root(const Temperature& t, CubicRoot bracub, const Mixture& m, double P, double start,
                Root& r) noexcept {
  constexpr double kAsGood = 3e-10;  // difference of Gibbs energies over RT
  const double p = P / t.rt(), A = m.a * (p / t.rt()), B = m.b * p;
  const bool warm = start > 0.0;
  double gas = start;
  const int status = solve_root(bracub, A, B, KV_PHASE_GAS, warm, gas);
  if (!has_root(status)) return status;
  reduce(t, m, P, gas, r);
  // The only root is then the liquid's.
  if (status == support::kOnlyOtherRoot || !may_have_three_roots(A, B)) return status;
  const Quadratic rest = without_root(A, B, gas);
  if (rest.discriminant < -kOtherRootMargin) return status;
  double liquid = rest.discriminant > 0.0 ? rest.middle - std::sqrt(rest.discriminant) : 0.0;
  const int second = solve_root(bracub, A, B, KV_PHASE_LIQUID, liquid > 0.0, liquid);
  if (second == support::kOnlyOtherRoot || !has_root(second)) return status;
  Root other;
  reduce(t, m, P, liquid, other);
  const double gain = residual_gibbs(m, r) - residual_gibbs(m, other);
  const bool as_good = warm && std::fabs(gain) < kAsGood;
  if (as_good ? std::fabs(other.Z - start) < std::fabs(r.Z - start) : gain > 0.0) r = other;
  return status;
}

void ln_phi(const Temperature& t, const Mixture& m, const Root& r, const double* s, double* out) noexcept {
  const double c0 = -r.log_z_minus_B;
  const double cb = (r.z_minus_1 + m.q * r.phi) / m.b;
  const double cs = -2.0 * r.phi / (m.b * t.rt());
  support::lanes->linear(t.ld, c0, cb, t.b, cs, s, out);
}

Mechanics mechanics(const Temperature& t, const Mixture& m, const Root& r) noexcept {
  const double eta = r.eta;
  const double c = 1.0 / (1.0 - eta);
  const double chi = 1.0 / (1.0 + eta * (kU + kW * eta));  // psi/eta = d phi/d eta
  const double psi1 = (1.0 - kW * eta * eta) * chi * chi;  // d psi/d eta
  Mechanics k;
  k.eta_slope = eta * (c * c - m.q * psi1);
  k.one_plus_k = r.Z + k.eta_slope;
  k.h_0 = eta * c;
  k.h_b = eta * (c * c + m.q * (chi - psi1)) / m.b;
  k.h_s = -2.0 * r.psi / (m.b * t.rt());
  return k;
}

void p_dln_phi_dP(const Temperature& t, const Mechanics& k, const Root& r, const double* __restrict s,
                  double* __restrict out) noexcept {
  // Z (1 + h_i)/(1 + k) - 1; with 1 + k = Z + eta_slope the units drop out.
  const double scale = 1.0 / k.one_plus_k;
  const double d0 = scale * (r.Z * k.h_0 - k.eta_slope);
  const double db = scale * r.Z * k.h_b;
  const double ds = scale * r.Z * k.h_s;
  for (int i = 0; i < t.ld; ++i) out[i] = d0 + db * t.b[i] + ds * s[i];
}

double dln_phi_dT(const Temperature& t, const Mixture& m, const Root& r, const Mechanics& k, const double* x,
                  const double* __restrict s, double* __restrict s_t, double* __restrict out) noexcept {
  const int n = t.n, ld = t.ld;
  for (int i = 0; i < ld; ++i) s_t[i] = 0.0;
  for (int j = 0; j < n; ++j) {
    const double* __restrict column = t.aij_t + static_cast<std::size_t>(j) * ld;
    for (int i = 0; i < ld; ++i) s_t[i] += x[j] * column[i];
  }
  double a_t = 0.0;
  for (int i = 0; i < n; ++i) a_t += x[i] * s_t[i];
  const double scale = 1.0 / (m.b * t.rt()), invT = 1.0 / t.T;
  const double q_t = scale * (a_t - m.a * invT);
  // F_iT at constant volume, then the change of volume at constant pressure.
  const double cs = -2.0 * r.phi * scale;
  const double cb = (r.phi - r.psi) * q_t / m.b;
  const double p = -invT / k.one_plus_k;
  const double v = r.psi * q_t / k.one_plus_k;
  const double d0 = p * (r.Z * k.h_0 - k.eta_slope) + v * (1.0 + k.h_0);
  const double db = cb + (p * r.Z + v) * k.h_b;
  const double ds = (p * r.Z + v) * k.h_s;
  for (int i = 0; i < n; ++i) out[i] = d0 + db * t.b[i] + ds * s[i] + cs * (s_t[i] - s[i] * invT);
  return a_t;
}

void dln_phi_dn(const Temperature& t, const Mixture& m, const Root& r, const Mechanics& k, const double* s,
                double* out, int ld_out, int rows, bool lower) noexcept {
  const double eta = r.eta, c = eta / (1.0 - eta);
  const double invb = 1.0 / m.b;
  const double rt = invb / t.rt();
  const double pq = r.phi - r.psi;
  // (10) of docs/method.md: F_ij = g_a a_ij + g_b (b_i + b_j) + g_bb b_i b_j + g_bs (b_i s_j + s_i b_j), less
  // (1 + h_i)(1 + h_j)/(1 + k) - 1 with h_i = h_0 + l_i, where the unit is taken out of the difference.
  const double inv_k = 1.0 / k.one_plus_k;
  support::PairTerms p;
  p.g_a = -2.0 * r.phi * rt;
  p.g_b = c * invb;
  p.g_bb = (c * c - 2.0 * m.q * (pq - (0.5 * kU + kW * eta) * r.psi * r.psi)) * invb * invb;
  p.g_bs = 2.0 * pq * rt * invb;
  p.unit = ((r.z_minus_1 + k.eta_slope) - 2.0 * k.h_0 - k.h_0 * k.h_0) * inv_k;
  p.e = -(1.0 + k.h_0) * inv_k;
  p.inv_k = inv_k;
  p.h_b = k.h_b;
  p.h_s = k.h_s;
  support::lanes->pairs(p, t.n, t.ld, t.aij, t.b, s, out, ld_out, rows, lower);
}

}  // namespace kestrune::eos
