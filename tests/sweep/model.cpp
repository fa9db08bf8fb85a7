#include "model.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kestrune::sweep {
namespace {

constexpr double gas_constant = 82.057;

template <class Real>
Real alpha_slope(Real w) {
  if (w <= Real(0.491)) return Real(0.37464) + Real(1.54226) * w - Real(0.26992) * w * w;
  return Real(0.379642) + Real(1.48503) * w - Real(0.164423) * w * w + Real(0.016666) * w * w * w;
}

template <class Real>
std::vector<Real> group_terms(const Components& c, Real T) {
  const Real to_atm = Real(1000000) / Real(101325);
  std::vector<Real> terms(static_cast<size_t>(c.groups) * c.groups, Real(0));
  for (int k = 0; k < c.groups; ++k) {
    for (int l = k + 1; l < c.groups; ++l) {
      const Real A = Real(c.A[k + l * c.groups]) * to_atm;
      const Real B = Real(c.B[k + l * c.groups]) * to_atm;
      const Real value = A == 0 ? Real(0) : A * std::pow(Real(298.15) / T, B / A - 1);
      terms[k + l * c.groups] = terms[l + k * c.groups] = value;
    }
  }
  return terms;
}

template <class Real>
std::vector<Real> group_fractions(const Components& c) {
  std::vector<Real> fractions(static_cast<size_t>(c.groups) * c.n, Real(0));
  for (int i = 0; i < c.n; ++i) {
    int total = 0;
    for (int k = 0; k < c.groups; ++k) total += c.counts[k + i * c.groups];
    for (int k = 0; k < c.groups && total > 0; ++k)
      fractions[k + i * c.groups] = Real(c.counts[k + i * c.groups]) / Real(total);
  }
  return fractions;
}

// -1/2 sum_k sum_l (f_jk - f_ik)(f_jl - f_il) A_kl(T)
template <class Real>
Real excess(const Real* fi, const Real* fj, const std::vector<Real>& terms, int groups) {
  Real sum = 0;
  for (int k = 0; k < groups; ++k) {
    const Real dk = fj[k] - fi[k];
    if (dk == 0) continue;
    for (int l = 0; l < groups; ++l) sum += dk * (fj[l] - fi[l]) * terms[k + l * groups];
  }
  return -sum / 2;
}

// One Newton correction after another until the value stops to improve.
template <class Real>
Real polish(Real z, Real c1, Real c2, Real c3) {
  for (int i = 0; i < 8; ++i) {
    const Real f = ((z + c1) * z + c2) * z + c3;
    const Real slope = (3 * z + 2 * c1) * z + c2;
    if (f == 0 || slope == 0) break;
    const Real next = z - f / slope;
    if (!(std::abs(((next + c1) * next + c2) * next + c3) < std::abs(f))) break;
    z = next;
  }
  return z;
}

// The real root that lies beyond the inflection point (the only one, or the outer one of three).
template <class Real>
Real outer_root(Real c1, Real c2, Real c3) {
  const Real p = c2 - c1 * c1 / 3;
  const Real q = 2 * c1 * c1 * c1 / 27 - c1 * c2 / 3 + c3;
  const Real discriminant = q * q / 4 + p * p * p / 27;
  Real t;
  if (discriminant > 0) {
    const Real root = std::sqrt(discriminant);
    const Real u = std::cbrt(q > 0 ? -q / 2 - root : -q / 2 + root);
    t = u == 0 ? Real(0) : u - p / (3 * u);
  } else {
    const Real radius = std::sqrt(-p / 3);
    const Real cosine = radius == 0 ? Real(1) : std::abs(q) / (2 * radius * radius * radius);
    t = 2 * radius * std::cos(std::acos(std::min(Real(1), cosine)) / 3);
    if (q > 0) t = -t;
  }
  return polish(t - c1 / 3, c1, c2, c3);
}

// Real roots above B in ascending order; returns their number.
template <class Real>
int roots_above(Real A, Real B, Real roots[3]) {
  const Real c1 = B - 1;
  const Real c2 = A - 3 * B * B - 2 * B;
  const Real c3 = -(A - B * (B + 1)) * B;
  const Real outer = outer_root(c1, c2, c3);
  Real found[3] = {outer, outer, outer};
  int count = 1;
  const Real product = -c3 / outer;
  const Real minus_sum = std::abs(outer) > Real(0.5) ? (product - c2) / outer : c1 + outer;
  const Real discriminant = minus_sum * minus_sum - 4 * product;
  if (discriminant >= 0) {
    const Real root = std::sqrt(discriminant);
    const Real far = (minus_sum >= 0 ? -minus_sum - root : -minus_sum + root) / 2;
    const Real near = far == 0 ? Real(0) : product / far;
    found[1] = polish(far, c1, c2, c3);
    found[2] = polish(near, c1, c2, c3);
    count = 3;
  }
  std::sort(found, found + count);
  int kept = 0;
  for (int i = 0; i < count; ++i) {
    if (found[i] > B) roots[kept++] = found[i];
  }
  return kept;
}

template <class Real>
Real logarithm(Real Z, Real B) {
  const Real s2 = std::sqrt(Real(2));
  return std::log1p(-2 * s2 * B / (Z + (1 + s2) * B));
}

// Residual Gibbs energy of the mixture over RT, up to what both roots share.
template <class Real>
Real gibbs(Real A, Real B, Real Z) {
  return Z - 1 - std::log(Z - B) + A / (B * std::sqrt(Real(8))) * logarithm(Z, B);
}

template <class Real>
void choose_root(Real A, Real B, Root root, Phase<Real>& out) {
  Real z[3] = {0, 0, 0};
  out.roots = roots_above(A, B, z);
  const Real low = z[0];
  const Real high = z[std::max(0, out.roots - 1)];
  const Real difference = out.roots > 1 ? gibbs(A, B, high) - gibbs(A, B, low) : Real(0);
  const bool take_high = root == Root::largest || (root == Root::stable && difference < 0);
  out.Z = take_high ? high : low;
  out.spread = take_high ? -difference : difference;
  out.gas_side = out.Z > (1 - B) / 3;
}

template <class Real>
void composition_derivatives(const Parameters<Real>& par, Real P, const std::vector<Real>& s,
                             Phase<Real>& out) {
  const int n = par.n;
  const Real RT = Real(gas_constant) * par.T;
  const Real A = out.a * P / (RT * RT), B = out.b * P / RT, Z = out.Z, a = out.a, b = out.b;
  const Real s2 = std::sqrt(Real(2)), d1 = 1 - s2, d2 = 1 + s2;
  const Real L = logarithm(Z, B), C = A / (B * std::sqrt(Real(8)));
  const Real D = 3 * Z * Z + 2 * Z * (B - 1) + A - 3 * B * B - 2 * B;
  const Real by_A = (B - Z) / D;
  const Real by_B = (A - 2 * B - 3 * B * B - Z * Z + (6 * B + 2) * Z) / D;
  out.dln_phi_dn.resize(static_cast<size_t>(n) * n);
  for (int j = 0; j < n; ++j) {
    const Real da = 2 * (s[j] - a), db = par.b[j] - b;
    const Real dB = P / RT * db, dZ = by_A * P / (RT * RT) * da + by_B * dB;
    const Real dC = C * (da / a - db / b);
    const Real dL = (dZ + d1 * dB) / (Z + d1 * B) - (dZ + d2 * dB) / (Z + d2 * B);
    for (int i = 0; i < n; ++i) {
      const Real G = 2 * s[i] / a - par.b[i] / b;
      const Real dG = 2 * (par.a[i + j * n] - s[i]) / a - 2 * s[i] * da / (a * a) + par.b[i] * db / (b * b);
      out.dln_phi_dn[i + j * n] =
          par.b[i] / b * (dZ - (Z - 1) * db / b) - (dZ - dB) / (Z - B) + dC * G * L + C * dG * L + C * G * dL;
    }
  }
}

}  // namespace

template <class Real>
Parameters<Real> parameters_at(const Components& c, Real T) {
  Parameters<Real> par;
  par.T = T;
  par.n = c.n;
  par.b.resize(c.n);
  par.a.resize(static_cast<size_t>(c.n) * c.n);
  std::vector<Real> pure(c.n), delta(c.n);
  for (int i = 0; i < c.n; ++i) {
    const Real tc = c.tc[i], pc = c.pc[i];
    const Real psi = 1 + alpha_slope(Real(c.omega[i])) * (1 - std::sqrt(T / tc));
    pure[i] = Real(3078.7575250928) * tc * tc / pc * psi * psi;
    par.b[i] = Real(6.3840346) * tc / pc;
    delta[i] = std::sqrt(pure[i]) / par.b[i];
  }
  const std::vector<Real> terms = group_terms(c, T);
  const std::vector<Real> fractions = group_fractions<Real>(c);
  for (int i = 0; i < c.n; ++i) {
    par.a[i + i * c.n] = pure[i];
    for (int j = 0; j < i; ++j) {
      const Real E = excess(&fractions[i * c.groups], &fractions[j * c.groups], terms, c.groups);
      const Real gap = delta[i] - delta[j];
      const Real kij = (E - gap * gap) / (2 * delta[i] * delta[j]);
      par.a[i + j * c.n] = par.a[j + i * c.n] = std::sqrt(pure[i] * pure[j]) * (1 - kij);
    }
  }
  return par;
}

template <class Real>
void evaluate(const Parameters<Real>& par, Real P, const Real* x, Root root, bool derivatives,
              Phase<Real>& out) {
  const int n = par.n;
  static thread_local std::vector<Real> s;
  s.assign(n, Real(0));
  out.a = out.b = 0;
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) s[i] += par.a[j + i * n] * x[j];
    out.a += x[i] * s[i];
    out.b += x[i] * par.b[i];
  }
  const Real RT = Real(gas_constant) * par.T;
  const Real A = out.a * P / (RT * RT), B = out.b * P / RT;
  choose_root(A, B, root, out);
  const Real L = logarithm(out.Z, B), C = A / (B * std::sqrt(Real(8)));
  const Real log_gap = std::log(out.Z - B);
  out.ln_phi.resize(n);
  for (int i = 0; i < n; ++i) {
    const Real ratio = par.b[i] / out.b;
    out.ln_phi[i] = ratio * (out.Z - 1) - log_gap + C * (2 * s[i] / out.a - ratio) * L;
  }
  if (derivatives) composition_derivatives(par, P, s, out);
}

template Parameters<double> parameters_at(const Components&, double);
template Parameters<long double> parameters_at(const Components&, long double);
template void evaluate(const Parameters<double>&, double, const double*, Root, bool, Phase<double>&);
template void evaluate(const Parameters<long double>&, long double, const long double*, Root, bool,
                       Phase<long double>&);

Components subset(const Components& all, const std::vector<int>& keep) {
  Components part;
  part.n = static_cast<int>(keep.size());
  part.groups = all.groups;
  part.A = all.A;
  part.B = all.B;
  for (int i : keep) {
    part.tc.push_back(all.tc[i]);
    part.pc.push_back(all.pc[i]);
    part.omega.push_back(all.omega[i]);
    part.mass.push_back(all.mass[i]);
    part.family.push_back(all.family[i]);
    part.cas.push_back(all.cas[i]);
    for (int k = 0; k < all.groups; ++k) part.counts.push_back(all.counts[k + i * all.groups]);
  }
  return part;
}

double wilson_exponent(const Components& c, int i, double T) {
  return 5.37 * (1 + c.omega[i]) * (1 - c.tc[i] / T);
}

double water_vapour_pressure(double T) {
  if (T > 647.096) return std::exp(12.778500904682147 - 4789.269321502071 / T);
  return std::exp(73.649 - 7258.2 / T - 7.3037 * std::log(T) + 4.1653e-6 * T * T) / 101325.0;
}

double water_solubility(double A, double B, double T) {
  return std::min(1.0, std::exp(A - B / T));
}

}  // namespace kestrune::sweep
