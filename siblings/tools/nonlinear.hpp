// Solvers of F(x) = 0: damped Newton with a Jacobian by differences, and its variant with Broyden updates.
#ifndef KESTRUNE_SIBLINGS_TOOLS_NONLINEAR_HPP
#define KESTRUNE_SIBLINGS_TOOLS_NONLINEAR_HPP

#include <cstdint>
#include <vector>

#include "kestrune/kvtoolslite.h"

namespace kestrune::tools {

// Outcome of a solver; the values are the status words of the entries.
enum class SolverStatus : std::int32_t {
  converged = 0,
  iteration_limit = 1,
  singular_jacobian = 2,
  no_descent = 3,
  not_evaluable = 4,
  bad_argument = 5
};

// Output units of a solver, 0 = none.
struct TraceUnits {
  std::int32_t errors = 0, diagnostics = 0, first = 0, functions = 0, jacobian = 0, solution = 0, unknowns = 0;
};

// What is to be solved: converged when max |f| <= tolerance, within itemax steps.
struct Problem {
  std::int32_t n;
  KvResidual residual;
  void* user;
  double tolerance;
  std::int32_t itemax;
  TraceUnits units;
};

// Current point of an iteration and its working storage.
struct Iterate {
  explicit Iterate(std::int32_t n);
  std::vector<double> x, f;              // [n] point and residuals there
  std::vector<double> jacobian;          // [n * n] column-major
  std::vector<double> step;              // [n] full step from x
  std::vector<double> next_x, next_f;    // [n] trial point
  std::vector<double> work, right_side;  // [n * n], [n]
  double lambda = 0.0;                   // part of the step that was taken
  bool singular = false;                 // the step came from a regularised Jacobian
};

// Residuals at x; false where the user routine refuses or a value is not finite.
bool evaluate(const Problem& problem, const std::vector<double>& x, std::vector<double>& f);

// Jacobian at s.x by forward differences, backward where forward cannot be evaluated. False where neither can.
bool difference_jacobian(const Problem& problem, Iterate& s);

// Newton step from s.jacobian and s.f. Where the Jacobian is singular the step minimises
// |J s + f|^2 + mu |s|^2 with a small mu instead, and s.singular is set. False where even that has no
// solution.
bool newton_step(Iterate& s);

// Outcome of line_search.
enum class Search { accepted, no_descent, not_evaluable };

// Goes along s.step until 0.5 |f|^2 has decreased enough: s.next_x, s.next_f, s.lambda.
Search line_search(const Problem& problem, Iterate& s);

// Damped Newton. x[n] in/out, f[n] out (both the last accepted point), iterations out.
SolverStatus solve_newton(const Problem& problem, double* x, double* f, std::int32_t& iterations);

// The same with rank-one updates of the Jacobian [Bro65], made anew when progress is poor.
SolverStatus solve_broyden(const Problem& problem, double* x, double* f, std::int32_t& iterations);

}  // namespace kestrune::tools

#endif
