// The steps that both solvers share [Den96].
//
// [Den96] Dennis, J. E.; Schnabel, R. B.: Numerical methods for unconstrained optimization and nonlinear
//         equations. SIAM, Philadelphia 1996.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "dense.hpp"
#include "nonlinear.hpp"

namespace kestrune::tools {
namespace {

using Doubles = std::vector<double>;

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
constexpr double kSmallUnknown = 1e-3;       // unknowns below this size get its increment
constexpr double kDecrease = 1e-4;           // part of the predicted decrease that is asked for
constexpr double kLeast = 0.1, kMost = 0.5;  // bounds of one reduction of the step

std::size_t count(const Iterate& s) {
  return s.x.size();
}

double largest(const Doubles& v) {
  double result = 0.0;
  for (const double value : v) result = std::max(result, std::fabs(value));
  return result;
}

// 0.5 |f / scale|^2
double merit(const Doubles& f, double scale) {
  double sum = 0.0;
  for (const double value : f) sum += (value / scale) * (value / scale);
  return 0.5 * sum;
}

// Derivative of the merit along the step.
double merit_slope(const Iterate& s, double scale) {
  const std::size_t n = count(s);
  double sum = 0.0;
  for (std::size_t j = 0; j < n; ++j) {
    double column = 0.0;
    for (std::size_t i = 0; i < n; ++i) column += (s.f[i] / scale) * (s.jacobian[i + n * j] / scale);
    sum += column * s.step[j];
  }
  return sum;
}

// Minimiser of the cubic through merit and slope at 0 and the merits at two trials; of the parabola when
// there is one trial only (previous == 0).
double shorter(double lambda, double value, double previous, double previous_value, double start,
               double slope) {
  const double rise = value - start - lambda * slope;
  if (previous == 0.0) return -0.5 * slope * lambda * lambda / rise;
  const double previous_rise = previous_value - start - previous * slope;
  const double r1 = rise / (lambda * lambda), r2 = previous_rise / (previous * previous);
  const double a = (r1 - r2) / (lambda - previous);
  const double b = (lambda * r2 - previous * r1) / (lambda - previous);
  if (a == 0.0) return -slope / (2.0 * b);
  const double discriminant = b * b - 3.0 * a * slope;
  if (discriminant < 0.0) return kMost * lambda;
  return b <= 0.0 ? (-b + std::sqrt(discriminant)) / (3.0 * a) : -slope / (b + std::sqrt(discriminant));
}

// Least part of the step that still changes an unknown.
double least_lambda(const Iterate& s) {
  double relative = 0.0;
  for (std::size_t i = 0; i < count(s); ++i) {
    relative = std::max(relative, std::fabs(s.step[i]) / std::max(std::fabs(s.x[i]), kEpsilon));
  }
  return relative > 0.0 ? kEpsilon / relative : 1.0;
}

bool regularised_step(Iterate& s) {
  const std::size_t n = count(s);
  const double scale = largest(s.jacobian);
  if (!(scale > 0.0) || !std::isfinite(scale)) return false;
  const double unit = 1.0 / scale, mu = std::sqrt(static_cast<double>(n) * kEpsilon);
  for (std::size_t j = 0; j < n; ++j) {
    const double* cj = s.jacobian.data() + n * j;
    s.step[j] = 0.0;
    for (std::size_t i = 0; i < n; ++i) s.step[j] -= (cj[i] * unit) * (s.f[i] * unit);
    for (std::size_t k = 0; k < n; ++k) {
      const double* ck = s.jacobian.data() + n * k;
      double sum = j == k ? mu : 0.0;
      for (std::size_t i = 0; i < n; ++i) sum += (cj[i] * unit) * (ck[i] * unit);
      s.work[j + n * k] = sum;
    }
  }
  const auto order = static_cast<std::int32_t>(n);
  return solve_system(order, order, s.work.data(), 1, order, s.step.data()) == DenseStatus::ok;
}

}  // namespace

Iterate::Iterate(std::int32_t n_in) {
  const auto n = static_cast<std::size_t>(n_in);
  for (Doubles* v : {&x, &f, &step, &next_x, &next_f, &right_side}) v->assign(n, 0.0);
  jacobian.assign(n * n, 0.0);
  work.assign(n * n, 0.0);
}

bool evaluate(const Problem& problem, const Doubles& x, Doubles& f) {
  std::int32_t flag = 0;
  problem.residual(&problem.n, x.data(), f.data(), &flag, problem.user);
  return flag == 0 && std::all_of(f.begin(), f.end(), [](double value) { return std::isfinite(value); });
}

bool difference_jacobian(const Problem& problem, Iterate& s) {
  const std::size_t n = count(s);
  s.next_x = s.x;
  for (std::size_t j = 0; j < n; ++j) {
    const double size = std::sqrt(kEpsilon) * std::max(std::fabs(s.x[j]), kSmallUnknown);
    bool done = false;
    for (const double increment : {std::copysign(size, s.x[j]), -std::copysign(size, s.x[j])}) {
      s.next_x[j] = s.x[j] + increment;
      const double taken = s.next_x[j] - s.x[j];
      done = evaluate(problem, s.next_x, s.next_f);
      if (!done) continue;
      for (std::size_t i = 0; i < n; ++i) s.jacobian[i + n * j] = (s.next_f[i] - s.f[i]) / taken;
      break;
    }
    s.next_x[j] = s.x[j];
    if (!done) return false;
  }
  return std::all_of(s.jacobian.begin(), s.jacobian.end(), [](double value) { return std::isfinite(value); });
}

bool newton_step(Iterate& s) {
  const auto n = static_cast<std::int32_t>(count(s));
  s.work = s.jacobian;
  for (std::size_t i = 0; i < count(s); ++i) s.step[i] = -s.f[i];
  s.singular = solve_system(n, n, s.work.data(), 1, n, s.step.data()) != DenseStatus::ok;
  return !s.singular || regularised_step(s);
}

Search line_search(const Problem& problem, Iterate& s) {
  const double scale = largest(s.f);
  const double start = merit(s.f, scale), slope = merit_slope(s, scale);
  if (!(slope < 0.0)) return Search::no_descent;
  const double least = least_lambda(s);
  double lambda = 1.0, previous = 0.0, previous_value = 0.0;
  bool evaluated = false;
  while (lambda >= least) {
    for (std::size_t i = 0; i < count(s); ++i) s.next_x[i] = s.x[i] + lambda * s.step[i];
    double next = 0.25 * lambda;
    if (evaluate(problem, s.next_x, s.next_f)) {
      evaluated = true;
      const double value = merit(s.next_f, scale);
      if (value < start && value <= start + kDecrease * lambda * slope) {
        s.lambda = lambda;
        return Search::accepted;
      }
      next = shorter(lambda, value, previous, previous_value, start, slope);
      if (!std::isfinite(next)) next = kLeast * lambda;
      previous = std::isfinite(value) ? lambda : 0.0;
      previous_value = value;
    }
    lambda = std::clamp(next, kLeast * lambda, kMost * lambda);
  }
  return evaluated ? Search::no_descent : Search::not_evaluable;
}

}  // namespace kestrune::tools
