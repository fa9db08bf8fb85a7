// [Bro65] Broyden, C. G.: A class of methods for solving nonlinear simultaneous equations.
//         Math. Comp. 19 (1965) 577-593.
#include "nonlinear.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "trace_files.hpp"

namespace kestrune::tools {
namespace {

constexpr double kPoorProgress = 0.5;  // a step that leaves more of max |f| than this asks for a new Jacobian

double largest(const std::vector<double>& v) {
  double result = 0.0;
  for (const double value : v) result = std::max(result, std::fabs(value));
  return result;
}

const char* text_of(SolverStatus status) {
  switch (status) {
    case SolverStatus::converged:
      return "converged";
    case SolverStatus::iteration_limit:
      return "iteration limit reached";
    case SolverStatus::singular_jacobian:
      return "the Jacobian is singular";
    case SolverStatus::no_descent:
      return "no descent along the step";
    case SolverStatus::not_evaluable:
      return "the functions cannot be evaluated";
    case SolverStatus::bad_argument:
      break;
  }
  return "bad argument";
}

void trace_start(const Problem& problem, const Iterate& s, const char* method) {
  trace(problem.units.first, "%s: %d unknowns, tolerance %.6g, at most %d iterations\n", method,
        static_cast<int>(problem.n), problem.tolerance, static_cast<int>(problem.itemax));
  trace_vector(problem.units.first, "start", problem.n, s.x.data());
}

void trace_point(const Problem& problem, const Iterate& s, std::int32_t iteration) {
  trace(problem.units.diagnostics, "iteration %d: max |f| %.6g, part of the step %.6g%s\n",
        static_cast<int>(iteration), largest(s.f), s.lambda, s.singular ? ", Jacobian regularised" : "");
  trace_vector(problem.units.unknowns, "x", problem.n, s.x.data());
  trace_vector(problem.units.functions, "f", problem.n, s.f.data());
}

SolverStatus finish(const Problem& problem, const Iterate& s, SolverStatus status, std::int32_t iterations,
                    double* x, double* f) {
  std::copy(s.x.begin(), s.x.end(), x);
  std::copy(s.f.begin(), s.f.end(), f);
  if (status != SolverStatus::converged) {
    trace(problem.units.errors, "%s after %d iterations\n", text_of(status), static_cast<int>(iterations));
  }
  trace(problem.units.solution, "%s after %d iterations, max |f| %.6g\n", text_of(status),
        static_cast<int>(iterations), largest(s.f));
  trace_vector(problem.units.solution, "solution", problem.n, s.x.data());
  return status;
}

SolverStatus failure(const Iterate& s, Search search) {
  if (s.singular) return SolverStatus::singular_jacobian;
  return search == Search::not_evaluable ? SolverStatus::not_evaluable : SolverStatus::no_descent;
}

// Rank-one change that makes the Jacobian exact along the last step: J += (y - J d) d' / (d' d). Steps are
// measured in units of the unknowns' sizes, so that a small unknown counts as much as a large one.
void update_jacobian(Iterate& s) {
  const std::size_t n = s.x.size();
  std::vector<double>& weighted = s.right_side;
  double square = 0.0;
  for (std::size_t j = 0; j < n; ++j) {
    const double d = s.next_x[j] - s.x[j], size = std::max(std::fabs(s.x[j]), std::fabs(s.next_x[j]));
    weighted[j] = size > 0.0 ? (d / size) / size : 0.0;
    square += weighted[j] * d;
  }
  if (!(square > 0.0) || !std::isfinite(square)) return;
  std::vector<double>& error = s.work;
  for (std::size_t i = 0; i < n; ++i) error[i] = s.next_f[i] - s.f[i];
  for (std::size_t j = 0; j < n; ++j) {
    const double d = s.next_x[j] - s.x[j];
    for (std::size_t i = 0; i < n; ++i) error[i] -= s.jacobian[i + n * j] * d;
  }
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t i = 0; i < n; ++i) s.jacobian[i + n * j] += error[i] * (weighted[j] / square);
  }
}

// Takes over the start and evaluates it; false where that is not possible.
bool start(const Problem& problem, const double* x, const char* method, Iterate& s) {
  std::copy_n(x, problem.n, s.x.begin());
  trace_start(problem, s, method);
  return evaluate(problem, s.x, s.f);
}

}  // namespace

SolverStatus solve_newton(const Problem& problem, double* x, double* f, std::int32_t& iterations) {
  Iterate s(problem.n);
  iterations = 0;
  const auto stop = [&](SolverStatus status) { return finish(problem, s, status, iterations, x, f); };
  if (!start(problem, x, "damped Newton", s)) return stop(SolverStatus::not_evaluable);
  for (;;) {
    trace_point(problem, s, iterations);
    if (largest(s.f) <= problem.tolerance) return stop(SolverStatus::converged);
    if (iterations >= problem.itemax) return stop(SolverStatus::iteration_limit);
    if (!difference_jacobian(problem, s)) return stop(SolverStatus::not_evaluable);
    trace_matrix(problem.units.jacobian, "Jacobian", problem.n, s.jacobian.data());
    if (!newton_step(s)) return stop(SolverStatus::singular_jacobian);
    const Search search = line_search(problem, s);
    if (search != Search::accepted) return stop(failure(s, search));
    s.x.swap(s.next_x);
    s.f.swap(s.next_f);
    ++iterations;
  }
}

SolverStatus solve_broyden(const Problem& problem, double* x, double* f, std::int32_t& iterations) {
  Iterate s(problem.n);
  iterations = 0;
  const auto stop = [&](SolverStatus status) { return finish(problem, s, status, iterations, x, f); };
  if (!start(problem, x, "Broyden", s)) return stop(SolverStatus::not_evaluable);
  bool renew = true;
  trace_point(problem, s, iterations);
  for (;;) {
    if (largest(s.f) <= problem.tolerance) return stop(SolverStatus::converged);
    if (iterations >= problem.itemax) return stop(SolverStatus::iteration_limit);
    const bool fresh = renew;
    if (fresh) {
      if (!difference_jacobian(problem, s)) return stop(SolverStatus::not_evaluable);
      trace_matrix(problem.units.jacobian, "Jacobian", problem.n, s.jacobian.data());
    }
    const bool solved = newton_step(s);
    const Search search = solved ? line_search(problem, s) : Search::no_descent;
    if (search != Search::accepted) {
      if (fresh) return stop(solved ? failure(s, search) : SolverStatus::singular_jacobian);
      renew = true;
      continue;
    }
    renew = s.lambda < 1.0 || largest(s.next_f) > kPoorProgress * largest(s.f);
    if (!renew) update_jacobian(s);
    s.x.swap(s.next_x);
    s.f.swap(s.next_f);
    trace_point(problem, s, ++iterations);
  }
}

}  // namespace kestrune::tools
