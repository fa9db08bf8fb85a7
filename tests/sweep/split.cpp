#include "split.hpp"

#include <algorithm>
#include <cmath>

namespace kestrune::sweep {
namespace {

// Minimisation over the amounts v[i] of the first phase, the second holding z[i] - v[i].
struct Minimiser {
  const Parameters<double>& par;
  double P;
  const Composition& z;
  int n = par.n;
  Composition v = {}, l = {}, y = {}, x = {}, scale = {}, g = {};
  double beta = 0, value = 0;
  Phase<double> first = {}, second = {};

  void set(double fraction, const Composition& ln_k) {
    v.resize(n);
    l.resize(n);
    for (int i = 0; i < n; ++i) {
      const double K = std::exp(ln_k[i]);
      const double share = fraction * K / (1 - fraction + fraction * K);
      v[i] = std::isfinite(share) ? z[i] * share : z[i];
      l[i] = z[i] * (1 - fraction) / (1 - fraction + fraction * K);
      if (!std::isfinite(l[i])) l[i] = 0;
      v[i] = std::max(v[i], 1e-290);
      l[i] = std::max(l[i], 1e-290);
    }
  }

  void evaluate_all(bool derivatives) {
    beta = 0;
    double rest = 0;
    for (int i = 0; i < n; ++i) beta += v[i];
    for (int i = 0; i < n; ++i) rest += l[i];
    x.resize(n);
    y.resize(n);
    g.resize(n);
    scale.resize(n);
    for (int i = 0; i < n; ++i) {
      y[i] = v[i] / beta;
      x[i] = l[i] / rest;
    }
    evaluate(par, P, y.data(), Root::stable, derivatives, first);
    evaluate(par, P, x.data(), Root::stable, derivatives, second);
    value = 0;
    for (int i = 0; i < n; ++i) {
      const double fy = std::log(y[i]) + first.ln_phi[i], fx = std::log(x[i]) + second.ln_phi[i];
      value += v[i] * fy + l[i] * fx;
      scale[i] = std::sqrt(v[i] * l[i] / z[i]);
      g[i] = (fy - fx) * scale[i];
    }
  }

  // Largest fugacity difference of the components that are worth a gradient.
  double error() const {
    double size = 0;
    for (int i = 0; i < n; ++i) {
      if (scale[i] > 0) size = std::max(size, std::abs(g[i] / scale[i]));
    }
    return size;
  }

  bool distinct() const {
    double apart = std::abs(first.Z - second.Z);
    for (int i = 0; i < n; ++i) apart = std::max(apart, std::abs(x[i] - y[i]));
    return apart > 1e-6;
  }

  // Substitution steps; false when the phases fall together or one disappears.
  bool substitute(int count) {
    Composition ln_k(n);
    for (int k = 0; k < count; ++k) {
      evaluate_all(false);
      for (int i = 0; i < n; ++i) ln_k[i] = second.ln_phi[i] - first.ln_phi[i];
      const double fraction = rachford_rice(z, ln_k);
      if (fraction <= 0 || fraction >= 1) return k < 2;
      set(fraction, ln_k);
    }
    return true;
  }

  void hessian(std::vector<double>& H) const {
    H.resize(static_cast<size_t>(n) * n);
    const double rest = 1 - beta;
    for (int j = 0; j < n; ++j) {
      for (int i = 0; i < n; ++i) {
        const double curve =
            (first.dln_phi_dn[i + j * n] - 1) / beta + (second.dln_phi_dn[i + j * n] - 1) / rest;
        H[i + j * n] = scale[i] * scale[j] * curve;
      }
      H[j + j * n] += 1;
    }
  }

  bool newton(int count) {
    std::vector<double> H, s;
    double shift = 0;
    evaluate_all(true);
    for (int k = 0; k < count && error() > 1e-12; ++k) {
      hessian(H);
      if (!step(H, s, shift)) break;
    }
    return std::isfinite(value) && error() < 1e-9;
  }

  bool step(const std::vector<double>& H, std::vector<double>& s, double& shift) {
    const Composition v0 = v, l0 = l, scale0 = scale, g0 = g;
    const double before = value, error0 = error();
    for (int attempt = 0; attempt < 40; ++attempt) {
      if (solve_shifted(n, H, shift, g0, s)) {
        double part = 1;
        for (int i = 0; i < n; ++i) {
          const double move = s[i] * scale0[i];
          if (move < -0.8 * v0[i]) part = std::min(part, -0.8 * v0[i] / move);
          if (move > 0.8 * l0[i]) part = std::min(part, 0.8 * l0[i] / move);
        }
        for (int i = 0; i < n; ++i) {
          const double move = part * s[i] * scale0[i];
          v[i] = v0[i] + move;
          l[i] = l0[i] - move;
        }
        evaluate_all(true);
        if (value < before || (error() < error0 && value <= before + 1e-14 * std::abs(before))) {
          shift = shift < 1e-4 ? 0 : shift / 8;
          return true;
        }
      }
      shift = std::max(4 * shift, 1e-3);
    }
    v = v0;
    l = l0;
    evaluate_all(true);
    return false;
  }
};

}  // namespace

double gibbs_of(const Parameters<double>& par, double P, double beta, const Composition& x,
                const Composition& y) {
  double sum = 0;
  Phase<double> phase;
  for (int side = 0; side < 2; ++side) {
    const Composition& w = side == 0 ? x : y;
    const double amount = side == 0 ? 1 - beta : beta;
    if (amount <= 0) continue;
    evaluate(par, P, w.data(), Root::stable, false, phase);
    for (int i = 0; i < par.n; ++i) {
      if (w[i] > 0) sum += amount * w[i] * (std::log(w[i]) + phase.ln_phi[i]);
    }
  }
  return sum;
}

double rachford_rice(const Composition& z, const Composition& ln_k) {
  const auto residual = [&](double beta) {
    double sum = 0;
    for (size_t i = 0; i < z.size(); ++i) {
      const double k1 = std::expm1(std::clamp(ln_k[i], -600.0, 600.0));
      sum += z[i] * (k1 / (1 + beta * k1));
    }
    return sum;
  };
  if (residual(0) <= 0) return 0;
  if (residual(1) >= 0) return 1;
  double low = 0, high = 1;
  for (int k = 0; k < 60; ++k) {
    const double middle = 0.5 * (low + high);
    (residual(middle) > 0 ? low : high) = middle;
  }
  return 0.5 * (low + high);
}

Split split_from(const Parameters<double>& par, double P, const Composition& z, const Composition& trial) {
  Split best;
  best.x = best.y = z;
  best.gibbs = gibbs_of(par, P, 0, z, z);
  const int n = par.n;
  for (double amount : {1e-9, 0.5, 0.05, 1e-3, 1e-5}) {  // share of the new phase at the start
    double limit = amount;
    for (int i = 0; i < n; ++i) limit = std::min(limit, 0.9 * z[i] / trial[i]);
    Minimiser m{par, P, z};
    m.v.resize(n);
    m.l.resize(n);
    for (int i = 0; i < n; ++i) {
      m.v[i] = limit * trial[i];
      m.l[i] = z[i] - m.v[i];
    }
    if (!m.substitute(8)) continue;
    if (!m.newton(120)) continue;
    if (!m.distinct() || !(m.value < best.gibbs + 1e-13)) continue;
    best.two_phase = true;
    best.gibbs = m.value;
    const bool swap = m.first.Z * m.second.b < m.second.Z * m.first.b;
    best.beta = swap ? 1 - m.beta : m.beta;
    best.x = swap ? m.y : m.x;
    best.y = swap ? m.x : m.y;
    break;
  }
  return best;
}

Split flash(const Components& components, const Parameters<double>& par, double P, const Composition& z) {
  const Plane plane = plane_of(par, P, z);
  const SearchResult found = search(par, P, plane, starting_points(components, par, P, z, plane), -1e-12, true);
  Split best;
  best.x = best.y = z;
  best.gibbs = gibbs_of(par, P, 0, z, z);
  for (const Trial& trial : found.unstable) {
    const Split split = split_from(par, P, z, trial.w);
    if (split.two_phase && (!best.two_phase || split.gibbs < best.gibbs)) best = split;
  }
  return best;
}

}  // namespace kestrune::sweep
