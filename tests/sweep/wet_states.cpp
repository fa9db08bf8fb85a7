// Free water has no Gibbs energy: between states, and near critical points, its rules may describe none at all.
// Whether that is so is searched for here by Newton's method with differences, from many starts and with phase
// fractions allowed beyond 0 and 1 on the way.
#include "wet_states.hpp"

#include <algorithm>
#include <cmath>
#include <random>

namespace kestrune::sweep {
namespace {

constexpr int starts = 240, substitutions = 15, corrections = 50;

struct Pair {
  const Question& question;
  const Parameters<double> par;
  const int n, w;
  const double psat, s;
  bool saturated = true;  // beside free water; else all water is dissolved
  double rest = 0;        // all but water in the feed
  Composition dry, x, y;  // x: the hydrocarbons with their water
  double beta = 0, b_over_Z[2] = {};

  explicit Pair(const Question& q)
      : question(q),
        par(parameters_at<double>(*q.components, q.T)),
        n(q.components->n),
        w(static_cast<int>(std::find(q.components->family.begin(), q.components->family.end(), 20.0) -
                           q.components->family.begin())),
        psat(water_vapour_pressure(q.T)),
        s(water_solubility(q.solubility_a, q.solubility_b, q.T)),
        dry(q.z),
        x(q.z),
        y(q.z) {
    dry[w] = 0;
    for (double v : dry) rest += v;
    for (double& v : dry) v /= rest;
  }

  // Root of the phase fraction between its poles, by halves.
  bool share(const Composition& z, const Composition& k) {
    double most = 0, least = 1e300;
    for (int i = 0; i < n; ++i) {
      if (z[i] > 0) most = std::max(most, k[i]), least = std::min(least, k[i]);
    }
    if (!(most > 1 && least < 1)) return false;
    double low = 1 / (1 - most), high = 1 / (1 - least);
    for (int halving = 0; halving < 100; ++halving) {
      beta = 0.5 * (low + high);
      double f = 0;
      for (int i = 0; i < n; ++i) f += z[i] > 0 ? z[i] * (k[i] - 1) / (1 + beta * (k[i] - 1)) : 0;
      (f > 0 ? low : high) = beta;
    }
    return true;
  }

  // Differences r of ln fugacities at u, the logarithms of y/x; with free water of the dry ones, and of y_w.
  bool differences(const Composition& u, Composition& r) {
    Composition k(n, 1.0);
    for (int i = 0; i < n; ++i) {
      if (!(std::abs(u[i]) < 200)) return false;
      k[i] = std::exp(u[i]);
    }
    const double yw = saturated ? k[w] : 0;
    if (saturated) k[w] = 1;
    if (!(yw < 0.999999) || !share(saturated ? dry : question.z, k)) return false;
    double sums[2] = {};
    for (int i = 0; i < n; ++i) {
      const double part = (saturated ? dry[i] : question.z[i]) / (1 + beta * (k[i] - 1));
      x[i] = saturated ? (i == w ? s : (1 - s) * part) : part;
      y[i] = saturated ? (i == w ? yw : (1 - yw) * k[i] * part) : k[i] * part;
      sums[0] += x[i];
      sums[1] += y[i];
    }
    for (int i = 0; i < n; ++i) x[i] /= sums[0], y[i] /= sums[1];
    Phase<double> liquid, vapour;
    evaluate(par, question.P, x.data(), Root::smallest, false, liquid);
    evaluate(par, question.P, y.data(), Root::largest, false, vapour);
    b_over_Z[0] = liquid.b / liquid.Z;
    b_over_Z[1] = vapour.b / vapour.Z;
    r.assign(n, 0);
    for (int i = 0; i < n; ++i) {
      if (!(question.z[i] > 0)) continue;
      const double in_liquid = i == w ? std::log(psat / question.P) + (saturated ? 0 : std::log(x[w] / s))
                                      : std::log(x[i]) + liquid.ln_phi[i];
      r[i] = in_liquid - std::log(y[i]) - vapour.ln_phi[i];
      if (!std::isfinite(r[i])) return false;
    }
    return true;
  }

  bool solve(Composition u, int first) {
    Composition r, up, down, system(n * n);
    for (int k = 0; k < first; ++k) {
      if (!differences(u, r)) return false;
      for (int i = 0; i < n; ++i) u[i] += 0.7 * r[i];
    }
    for (int k = 0; k < corrections; ++k) {
      if (!differences(u, r)) return false;
      double error = 0;
      for (double v : r) error = std::max(error, std::abs(v));
      if (error < 1e-11) return true;
      for (int j = 0; j < n; ++j) {
        constexpr double step = 1e-6;
        Composition v = u;
        v[j] = u[j] + step;
        if (!differences(v, up)) return false;
        v[j] = u[j] - step;
        if (!differences(v, down)) return false;
        for (int i = 0; i < n; ++i) system[j * n + i] = (up[i] - down[i]) / (2 * step);
      }
      if (!eliminate(system, r)) return false;
      double largest = 0;
      for (double v : r) largest = std::max(largest, std::abs(v));
      const double factor = std::min(1.0, 0.7 / largest);
      for (int i = 0; i < n; ++i) u[i] -= factor * r[i];
    }
    return false;
  }

  // r becomes the solution; by columns, with pivots.
  bool eliminate(Composition a, Composition& r) const {
    for (int c = 0; c < n; ++c) {
      int p = c;
      for (int i = c; i < n; ++i) p = std::abs(a[c * n + i]) > std::abs(a[c * n + p]) ? i : p;
      if (a[c * n + p] == 0) return question.z[c] == 0;
      for (int j = 0; j < n && p != c; ++j) std::swap(a[j * n + p], a[j * n + c]);
      std::swap(r[p], r[c]);
      for (int i = c + 1; i < n; ++i) {
        const double f = a[c * n + i] / a[c * n + c];
        for (int j = c; j < n; ++j) a[j * n + i] -= f * a[j * n + c];
        r[i] -= f * r[c];
      }
    }
    for (int c = n - 1; c >= 0; --c) {
      for (int j = c + 1; j < n; ++j) r[c] -= a[j * n + c] * r[j];
      r[c] /= a[c * n + c];
    }
    return true;
  }

  // The state of the feed that has these phases; false when it has none.
  bool state(Answer& a) const {
    double apart = std::abs(b_over_Z[0] / b_over_Z[1] - 1);
    for (int i = 0; i < n; ++i) apart = std::max(apart, i == w ? 0 : std::abs(x[i] - y[i]));
    const double packing = 82.057 * question.T / (question.P * vapour_volume_ratio);  // of b/Z
    if (apart < 1e-4 || (b_over_Z[0] < b_over_Z[1] && b_over_Z[0] < packing)) return false;
    if (y[w] > 0.5 && b_over_Z[1] > packing) return false;  // liquid water, which has rules of its own
    if (!(beta >= 0 && beta <= 1)) return false;
    a.x = x;
    a.y = y;
    a.beta = beta;
    if (!saturated) return x[w] <= s;
    a.beta = rest * beta / (1 - y[w]);
    const double oil = rest * (1 - beta) / (1 - s), free = question.z[w] - a.beta * y[w] - oil * s;
    for (int i = 0; i < n; ++i) a.x[i] = ((i == w ? free : 0) + oil * x[i]) / (1 - a.beta);
    return free >= 0;
  }

  // ln of the water in a gas of the dry feed over what it can hold.
  double excess(double ln_yw) {
    for (int i = 0; i < n; ++i) y[i] = i == w ? std::exp(ln_yw) : dry[i] * (1 - std::exp(ln_yw));
    Phase<double> vapour;
    evaluate(par, question.P, y.data(), Root::largest, false, vapour);
    return ln_yw + vapour.ln_phi[w] - std::log(psat / question.P);
  }
};

}  // namespace

bool wet_state_exists(const Question& question, Answer* found) {
  const auto right = [&](const Answer& a) {
    if (!judge_free_water(question, a).reason.empty()) return false;
    if (found != nullptr) *found = a;
    return true;
  };
  Pair pair(question);
  const int n = pair.n, w = pair.w;
  Answer a;
  a.x = a.y = question.z;
  for (double beta : {0.0, 1.0}) {
    a.beta = beta;
    if (right(a)) return true;
  }
  // A gas beside water: every amount of water that saturates it.
  const double low = -60, high = std::log(question.z[w]);
  constexpr int points = 600;
  double before = pair.excess(low);
  for (int k = 1; k <= points; ++k) {
    double from = low + (high - low) * (k - 1) / points, to = low + (high - low) * k / points;
    const double here = pair.excess(to), sign = before;
    before = here;
    if ((here > 0) == (sign > 0)) continue;
    for (int halving = 0; halving < 80; ++halving) {
      const double middle = 0.5 * (from + to);
      ((pair.excess(middle) > 0) == (sign > 0) ? from : to) = middle;
    }
    if (std::abs(pair.excess(from)) > 1e-9) continue;
    a.beta = pair.rest / (1 - pair.y[w]);
    a.y = pair.y;
    a.x.assign(n, 0.0);
    a.x[w] = 1;
    if (right(a)) return true;
  }
  // Two fluids.
  const Components& c = *question.components;
  std::mt19937_64 random(7);
  std::normal_distribution<double> normal;
  for (const bool saturated : {true, false}) {
    pair.saturated = saturated;
    for (int k = 0; k < starts; ++k) {
      Composition u(n);
      const double scale = k < 8 ? (k % 2 ? -0.25 : 0.25) * (1 + k / 2) : 1.2 * normal(random);
      for (int i = 0; i < n; ++i) {
        const double wilson = std::log(c.pc[i] / question.P) + wilson_exponent(c, i, question.T);
        u[i] = scale * wilson + (k < 8 ? 0 : 0.6 * normal(random));
      }
      const double ln_k = std::log(pair.psat / question.P) - (saturated ? 0 : std::log(pair.s));
      u[w] = (saturated ? std::min(ln_k, std::log(0.9)) : ln_k) - k % 3;
      if (pair.solve(u, k % 4 * substitutions / 3) && pair.state(a) && right(a)) return true;
    }
  }
  return false;
}

}  // namespace kestrune::sweep
