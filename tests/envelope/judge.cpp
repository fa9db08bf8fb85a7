#include "judge.hpp"

#include <algorithm>
#include <cmath>

#include "search.hpp"

namespace kestrune::envelopes {
namespace {

using namespace kestrune::sweep;
using Real = long double;

constexpr double kTolerance = -1e-8;

bool splits(const Components& c, const std::vector<double>& z, double T, double P, double limit,
            double& lowest) {
  const auto par = parameters_at<double>(c, T);
  const Plane plane = plane_of(par, P, z);
  const SearchResult result = search(par, P, plane, starting_points(c, par, P, z, plane), limit, false);
  lowest = result.lowest;
  return !result.unstable.empty();
}

// Just inside is on one of both sides of the curve, seen in the logarithms.
bool boundary_at(const Components& c, const std::vector<double>& z, const Curve& curve, size_t k) {
  const size_t a = k > 0 ? k - 1 : k, b = k + 1 < curve.T.size() ? k + 1 : k;
  double dT = std::log(curve.T[b] / curve.T[a]), dP = std::log(curve.P[b] / curve.P[a]);
  const double length = std::hypot(10 * dT, dP);
  if (!(length > 0)) return true;
  dT /= length;
  dP /= length;
  for (const double step : {1e-3, 1e-2})
    for (const double side : {1.0, -1.0}) {
      double lowest;
      const double T = curve.T[k] * std::exp(side * step * dP / 10),
                   P = curve.P[k] * std::exp(-side * step * dT * 10);
      if (splits(c, z, T, P, -1e-13, lowest)) return true;
    }
  return false;
}

// ln f_i (f in units of RT/V) of amounts n in a volume V.
std::vector<Real> log_fugacities(const Parameters<Real>& par, Real V, const std::vector<Real>& n) {
  const Real RT = Real(82.057) * par.T, root2 = std::sqrt(Real(2));
  Real total = 0, B = 0, D = 0;
  std::vector<Real> s(par.n, Real(0)), out(par.n);
  for (int i = 0; i < par.n; ++i) {
    for (int j = 0; j < par.n; ++j) s[i] += par.a[i + j * par.n] * n[j];
    total += n[i];
    B += n[i] * par.b[i];
    D += n[i] * s[i];
  }
  const Real L = std::log((V + (1 + root2) * B) / (V + (1 - root2) * B)), Q = V * V + 2 * B * V - B * B;
  for (int i = 0; i < par.n; ++i)
    out[i] = std::log(n[i] / (V - B)) + total * par.b[i] / (V - B) -
             (2 * s[i] / B - D * par.b[i] / (B * B)) * L / (2 * root2 * RT) - D / B * par.b[i] * V / (RT * Q);
  return out;
}

// Fourth-order differences of ln f along a change of the amounts: first or second derivative.
std::vector<Real> along(const Parameters<Real>& par, Real V, const std::vector<Real>& z,
                        const std::vector<Real>& move, int order) {
  Real largest = 0;
  for (int i = 0; i < par.n; ++i) largest = std::max(largest, std::abs(move[i] / z[i]));
  const Real h = Real(2e-4) / largest;
  const Real first[5] = {1, -8, 0, 8, -1}, second[5] = {-1, 16, -30, 16, -1};
  std::vector<Real> sum(par.n, Real(0)), n(par.n);
  for (int k = -2; k <= 2; ++k) {
    for (int i = 0; i < par.n; ++i) n[i] = z[i] + k * h * move[i];
    const std::vector<Real> f = log_fugacities(par, V, n);
    for (int i = 0; i < par.n; ++i) sum[i] += (order == 1 ? first : second)[k + 2] * f[i];
  }
  for (Real& v : sum) v /= 12 * (order == 1 ? h : h * h);
  return sum;
}

// Lowest eigenvalue of a symmetric matrix and its vector, by Jacobi's rotations.
Real lowest_eigenvalue(int n, std::vector<Real> A, std::vector<Real>& vector) {
  std::vector<Real> Q(A.size(), Real(0));
  for (int i = 0; i < n; ++i) Q[i + i * n] = 1;
  for (int sweep = 0; sweep < 60; ++sweep)
    for (int p = 0; p < n; ++p)
      for (int q = p + 1; q < n; ++q) {
        if (A[p + q * n] == 0) continue;
        const Real theta = (A[q + q * n] - A[p + p * n]) / (2 * A[p + q * n]);
        const Real t = (theta < 0 ? -1 : 1) / (std::abs(theta) + std::sqrt(theta * theta + 1));
        const Real c = 1 / std::sqrt(t * t + 1), s = t * c;
        for (int k = 0; k < n; ++k) {
          const Real x = A[k + p * n], y = A[k + q * n];
          A[k + p * n] = c * x - s * y;
          A[k + q * n] = s * x + c * y;
        }
        for (int k = 0; k < n; ++k) {
          const Real x = A[p + k * n], y = A[q + k * n];
          A[p + k * n] = c * x - s * y;
          A[q + k * n] = s * x + c * y;
          const Real u = Q[k + p * n], v = Q[k + q * n];
          Q[k + p * n] = c * u - s * v;
          Q[k + q * n] = s * u + c * v;
        }
      }
  int best = 0;
  for (int i = 1; i < n; ++i)
    if (A[i + i * n] < A[best + best * n]) best = i;
  vector.assign(Q.begin() + best * n, Q.begin() + (best + 1) * n);
  return A[best + best * n];
}

}  // namespace

CurveVerdict judge_curve(const Components& c, const std::vector<double>& z, const Curve& curve) {
  CurveVerdict verdict;
  for (size_t k = 0; k < curve.T.size(); ++k) {
    if (curve.kind[k] == 2.0 || curve.kind[k] == 3.0 || curve.kind[k] > 5.0) continue;
    ++verdict.stable;
    double lowest;
    const bool cut = splits(c, z, curve.T[k], curve.P[k], kTolerance, lowest);
    verdict.lowest = std::min(verdict.lowest, lowest);
    const bool edge = cut || curve.kind[k] == 0.5 || boundary_at(c, z, curve, k);
    if (!cut && edge) continue;
    if (verdict.wrong++ > 0) continue;
    char text[160];
    std::snprintf(text, sizeof text, "point %d, T %.6f P %.6f kind %g: %s (%.3g)", static_cast<int>(k),
                  curve.T[k], curve.P[k], curve.kind[k], cut ? "something splits off" : "no boundary", lowest);
    verdict.reason = text;
  }
  return verdict;
}

CriticalConditions judge_critical(const Components& c, const std::vector<double>& feed, double T, double P,
                                  double V) {
  const int n = c.n;
  const auto par = parameters_at<Real>(c, T);
  const std::vector<Real> z(feed.begin(), feed.end());
  std::vector<Real> B(static_cast<size_t>(n) * n), vector, move(n);
  for (int j = 0; j < n; ++j) {
    std::fill(move.begin(), move.end(), Real(0));
    move[j] = std::sqrt(z[j]);
    const std::vector<Real> column = along(par, V, z, move, 1);
    for (int i = 0; i < n; ++i) B[i + j * n] = std::sqrt(z[i]) * column[i];
  }
  CriticalConditions result;
  result.eigenvalue = static_cast<double>(lowest_eigenvalue(n, B, vector));
  for (int i = 0; i < n; ++i) move[i] = std::sqrt(z[i]) * vector[i];
  const std::vector<Real> second = along(par, V, z, move, 2);
  Real form = 0;
  for (int i = 0; i < n; ++i) form += move[i] * second[i];
  result.form = static_cast<double>(form);
  splits(c, feed, T, P, kTolerance, result.tpd);
  return result;
}

}  // namespace kestrune::envelopes
