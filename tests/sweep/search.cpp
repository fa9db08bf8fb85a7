#include "search.hpp"

#include <algorithm>
#include <cmath>
#include <random>

namespace kestrune::sweep {
namespace {

// One local minimisation of tm(W) = 1 + sum W_i (ln W_i + ln phi_i - d_i - 1).
struct Descent {
  const Parameters<double>& par;
  double P;
  const Plane& plane;
  double limit;
  bool stop_early;
  int n = par.n;
  Composition W = {}, w = {};
  Phase<double> phase = {};
  std::vector<double> h = {};  // ln W_i + ln phi_i - d_i
  double tm = 0, tpd = 0;

  // Values at W; a component that has vanished keeps a tiny amount.
  void value(bool derivatives) {
    double total = 0;
    for (double& v : W) total += v = std::clamp(v, 1e-290, 1e290);
    w.resize(n);
    for (int i = 0; i < n; ++i) w[i] = W[i] / total;
    evaluate(par, P, w.data(), Root::stable, derivatives, phase);
    h.resize(n);
    tm = 1;
    tpd = -std::log(total);
    for (int i = 0; i < n; ++i) {
      h[i] = std::log(W[i]) + phase.ln_phi[i] - plane.d[i];
      tm += W[i] * (h[i] - 1);
      tpd += w[i] * h[i];
    }
  }

  bool trivial() const {
    for (const Composition& base : plane.phases) {
      double distance = 0;
      for (int i = 0; i < n; ++i) {
        const double step = std::log(W[i] / base[i]);
        distance += (w[i] + base[i]) * step * step;
      }
      if (distance < 1e-9) return true;
    }
    return false;
  }

  bool finished() const { return (stop_early && tpd < limit) || !std::isfinite(tm) || trivial(); }

  // Successive substitution: W_i = exp(d_i - ln phi_i(W)).
  bool substitute(int count) {
    for (int k = 0; k < count; ++k) {
      value(false);
      if (finished()) return true;
      double change = 0;
      for (int i = 0; i < n; ++i) {
        const double next = std::exp(std::clamp(plane.d[i] - phase.ln_phi[i], -650.0, 650.0));
        change = std::max(change, std::abs(next - W[i]));
        W[i] = next;
      }
      if (change < 1e-13) return true;
    }
    return false;
  }

  void hessian(std::vector<double>& H, std::vector<double>& g) const {
    double total = 0;
    for (double v : W) total += v;
    H.resize(static_cast<size_t>(n) * n);
    g.resize(n);
    for (int j = 0; j < n; ++j) {
      for (int i = 0; i < n; ++i) H[i + j * n] = std::sqrt(W[i] * W[j]) * phase.dln_phi_dn[i + j * n] / total;
      H[j + j * n] += 1 + 0.5 * h[j];
      g[j] = std::sqrt(W[j]) * h[j];
    }
  }

  // Trust-region Newton in the variables 2 sqrt(W_i).
  void newton(int count) {
    std::vector<double> H, g, s;
    double shift = 0;
    value(true);
    for (int k = 0; k < count && !finished(); ++k) {
      hessian(H, g);
      double size = 0;
      for (double v : g) size = std::max(size, std::abs(v));
      if (size < 1e-11) return;
      if (!accept_step(H, g, s, shift)) return;
    }
  }

  bool accept_step(const std::vector<double>& H, const std::vector<double>& g, std::vector<double>& s,
                   double& shift) {
    const Composition start = W;
    const double before = tm;
    for (int attempt = 0; attempt < 40; ++attempt) {
      if (solve_shifted(n, H, shift, g, s)) {
        for (int i = 0; i < n; ++i) {
          const double alpha = 2 * std::sqrt(start[i]);
          const double next = std::max(alpha + s[i], 0.2 * alpha);
          W[i] = next * next / 4;
        }
        value(true);
        if (tm <= before + 1e-15 * std::abs(before)) {
          shift = shift < 1e-3 ? 0 : shift / 8;
          return true;
        }
      }
      shift = std::max(4 * shift, 1e-2);
    }
    W = start;
    value(true);
    return false;
  }
};

void add_wilson(const Components& c, double T, double P, const Composition& z,
                std::vector<Composition>& starts) {
  Composition light(c.n), heavy(c.n);
  for (int i = 0; i < c.n; ++i) {
    const double e = std::clamp(wilson_exponent(c, i, T), -200.0, 200.0);
    const double K = c.pc[i] / P * std::exp(e);
    light[i] = z[i] * K;
    heavy[i] = z[i] / K;
  }
  starts.push_back(light);
  starts.push_back(heavy);
}

void normalise(Composition& w) {
  double total = 0;
  for (double v : w) total += v;
  for (double& v : w) v = std::max(v / total, 1e-280);
}

void add_soft_directions(const Parameters<double>& par, double P, const Composition& x,
                         std::vector<Composition>& starts) {
  Composition u(par.n);
  softest_direction(par, P, x, u);
  double reach = 1e300;  // largest step before a fraction vanishes
  for (int i = 0; i < par.n; ++i) {
    if (u[i] != 0) reach = std::min(reach, 2 * std::sqrt(x[i]) / std::abs(u[i]));
  }
  reach = std::min(reach, 0.5);
  for (double part : {0.7, -0.7, 0.05, -0.05}) {
    Composition w(par.n);
    for (int i = 0; i < par.n; ++i) {
      const double alpha = 2 * std::sqrt(x[i]) + part * reach * u[i];
      w[i] = alpha * alpha / 4;
    }
    starts.push_back(w);
  }
}

}  // namespace

bool solve_shifted(int n, const std::vector<double>& H, double shift, const std::vector<double>& g,
                   std::vector<double>& s) {
  static thread_local std::vector<double> L;
  L.assign(static_cast<size_t>(n) * n, 0.0);
  for (int j = 0; j < n; ++j) {
    double diagonal = H[j + j * n] + shift;
    for (int k = 0; k < j; ++k) diagonal -= L[j + k * n] * L[j + k * n];
    if (!(diagonal > 1e-12)) return false;
    L[j + j * n] = std::sqrt(diagonal);
    for (int i = j + 1; i < n; ++i) {
      double sum = 0.5 * (H[i + j * n] + H[j + i * n]);
      for (int k = 0; k < j; ++k) sum -= L[i + k * n] * L[j + k * n];
      L[i + j * n] = sum / L[j + j * n];
    }
  }
  s.assign(g.begin(), g.end());
  for (int i = 0; i < n; ++i) {
    for (int k = 0; k < i; ++k) s[i] -= L[i + k * n] * s[k];
    s[i] /= L[i + i * n];
  }
  for (int i = n - 1; i >= 0; --i) {
    for (int k = i + 1; k < n; ++k) s[i] -= L[k + i * n] * s[k];
    s[i] /= L[i + i * n];
  }
  for (double& v : s) v = -v;
  return true;
}

double softest_direction(const Parameters<double>& par, double P, const Composition& x,
                         Composition& direction) {
  const int n = par.n;
  Phase<double> phase;
  evaluate(par, P, x.data(), Root::stable, true, phase);
  std::vector<double> H(static_cast<size_t>(n) * n);
  double bound = 0;
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < n; ++i) H[i + j * n] = std::sqrt(x[i] * x[j]) * phase.dln_phi_dn[i + j * n];
    H[j + j * n] += 1;
    double row = 0;
    for (int i = 0; i < n; ++i) row += std::abs(H[i + j * n]);
    bound = std::max(bound, row);
  }
  // The shift that just makes the matrix positive definite, by bisection, then inverse iteration.
  double low = -bound, high = 2 * bound + 1;
  Composition seed(n), s;
  for (int i = 0; i < n; ++i) seed[i] = 1.0 + 0.37 * ((i * 7) % 5);
  for (int k = 0; k < 50; ++k) {
    const double middle = 0.5 * (low + high);
    (solve_shifted(n, H, middle, seed, s) ? high : low) = middle;
  }
  direction = seed;
  for (int k = 0; k < 6; ++k) {
    solve_shifted(n, H, high + 1e-9 * (1 + std::abs(high)), direction, s);
    double norm = 0;
    for (double v : s) norm += v * v;
    for (int i = 0; i < n; ++i) direction[i] = s[i] / std::sqrt(norm);
  }
  return -high;
}

Plane plane_of(const Parameters<double>& par, double P, const Composition& x) {
  Phase<double> phase;
  evaluate(par, P, x.data(), Root::stable, false, phase);
  Plane plane{Composition(par.n), {x}};
  for (int i = 0; i < par.n; ++i) plane.d[i] = std::log(x[i]) + phase.ln_phi[i];
  return plane;
}

std::vector<Composition> starting_points(const Components& c, const Parameters<double>& par, double P,
                                         const Composition& z, const Plane& plane) {
  const int n = par.n;
  std::vector<Composition> starts;
  add_wilson(c, par.T, P, z, starts);
  for (const Composition& x : plane.phases) add_soft_directions(par, P, x, starts);
  Composition w(n);
  for (int i = 0; i < n; ++i) w[i] = std::exp(std::clamp(plane.d[i], -600.0, 600.0));
  starts.push_back(w);  // ideal gas
  for (int k = 0; k < n; ++k) {
    for (int i = 0; i < n; ++i) w[i] = i == k ? 0.999 : 0.001 * z[i];
    starts.push_back(w);
  }
  for (size_t k = 0; k < 2; ++k) {  // midpoints of the Wilson trials and the feed
    normalise(starts[k]);
    for (int i = 0; i < n; ++i) w[i] = 0.5 * (starts[k][i] + z[i]);
    starts.push_back(w);
  }
  for (size_t k = 0; k < plane.phases.size(); ++k) {  // midpoints of the phases
    for (size_t l = 0; l < k; ++l) {
      for (int i = 0; i < n; ++i) w[i] = 0.5 * (plane.phases[k][i] + plane.phases[l][i]);
      starts.push_back(w);
    }
  }
  std::mt19937_64 random(987654321u);
  std::exponential_distribution<double> draw(1.0);
  for (int k = 0; k < 4; ++k) {
    for (int i = 0; i < n; ++i) w[i] = std::pow(draw(random), k < 2 ? 1.0 : 4.0);
    starts.push_back(w);
  }
  for (Composition& start : starts) normalise(start);
  return starts;
}

SearchResult search(const Parameters<double>& par, double P, const Plane& plane,
                    const std::vector<Composition>& starts, double limit, bool all) {
  SearchResult result;
  if (par.n < 2) return result;
  for (const Composition& start : starts) {
    Descent descent{par, P, plane, limit, !all};
    descent.W = start;
    const bool ended = descent.substitute(12);
    if (!ended) descent.newton(80);
    if (!std::isfinite(descent.tpd)) continue;
    result.lowest = std::min(result.lowest, descent.tpd);
    if (!(descent.tpd < limit)) continue;
    bool seen = false;
    for (const Trial& trial : result.unstable) {
      double distance = 0;
      for (int i = 0; i < par.n; ++i) distance = std::max(distance, std::abs(trial.w[i] - descent.w[i]));
      seen = seen || distance < 1e-6;
    }
    if (!seen) result.unstable.push_back({descent.w, descent.tpd});
    if (!all) return result;
  }
  std::sort(result.unstable.begin(), result.unstable.end(),
            [](const Trial& p, const Trial& q) { return p.tpd < q.tpd; });
  return result;
}

}  // namespace kestrune::sweep
