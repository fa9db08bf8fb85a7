// Newton's method on a point of constant vapour fraction, (28) of docs/method.md, and what surrounds it:
// compositions, one substitution, the last digits beside a critical point.

#include "flash/quality/quality_line.hpp"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <utility>

#include "support/ldl.hpp"
#include "support/lu.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

constexpr double kConverged = 1e-10;  // largest difference of ln fugacities
// One that is above rounding and falls by this factor from step to step is followed further.
constexpr double kRounding = 1e-13, kStillFalling = 0.25;
// A Newton step that is smaller than this leaves errors of its square; where the K are close to 1, of its
// square over that of ln K.
constexpr double kLastStep = 1e-5, kLastOfSquare = 1e-3;
constexpr double kSameSums = 2e-10;  // of x and y; missed where a K is at its bound
// Of a Newton step.
constexpr double kLargestLogKStep = 2.5, kLargestLogTStep = 0.12, kLargestLogPStep = 1.2;
// K and atm: a step beyond is no way to a point.
constexpr double kLowestT = 1.0, kHighestT = 2e4, kLowestP = 1e-30, kHighestP = 1e6;

// Amounts x_i = z_i/(1 + W (K_i - 1)) and y_i = K_i x_i with their sums.
void amounts(const QualityLine& line, LinePoint& p, double& sum_x, double& sum_y) {
  sum_x = sum_y = 0.0;
  for (int i = 0; i < line.n; ++i) {
    const double K = support::fast_exp(p.X[i]);
    p.x[i] = line.z[i] / (1.0 - line.W + line.W * K);
    p.y[i] = K * p.x[i];
    sum_x += p.x[i];
    sum_y += p.y[i];
  }
}

struct Sums {
  double x, y;
};

// Amounts to compositions. False when a sum is not usable, or the two differ by more than the tolerance.
bool normalise(const QualityLine& line, LinePoint& p, const Sums& sums, double tolerance) {
  if (!(sums.x > 0.0 && sums.x <= DBL_MAX && sums.y > 0.0 && sums.y <= DBL_MAX)) return false;
  if (!(std::fabs(sums.x - sums.y) <= tolerance * sums.x)) return false;
  for (int i = 0; i < line.n; ++i) {
    p.x[i] /= sums.x;
    p.y[i] /= sums.y;
  }
  return true;
}

// Both phases at the point, normalised, with the derivatives asked for.
StatusCode evaluate(QualityLine& line, LinePoint& p, bool matrices, Sums& sums) {
  const double T = temperature(line, p), P = pressure(line, p);
  StatusCode status = line_model(line, T, P);
  if (status != KV_OK) return status;
  amounts(line, p, sums.x, sums.y);
  if (!(sums.x > 0.0 && sums.x <= DBL_MAX && sums.y > 0.0 && sums.y <= DBL_MAX)) return KV_NOT_FINITE;
  for (int i = 0; i < line.n; ++i) {
    p.x[i] /= sums.x;
    p.y[i] /= sums.y;
  }
  ++line.passes;
  const bool own_root = line.stable_roots && !line.free_water;
  const bool want_x = matrices && line.W > 0.0, want_y = matrices && line.W < 1.0;
  p.Zx = p.Zy = 0.0;
  status = water_aware_fugacity(line.m, p.x, own_root ? line.root_x : Kind::liquid, line.phi_x,
                                {line.t_x, line.p_x, want_x ? line.d_x : nullptr}, p.Zx);
  if (status != KV_OK) return status;
  return water_aware_fugacity(line.m, p.y, own_root ? line.root_y : Kind::gas, line.phi_y,
                              {line.t_y, line.p_y, want_y ? line.d_y : nullptr}, p.Zy);
}

// Fills the system and its right-hand side -F; returns the largest |F| of components that are present.
double fill_system(QualityLine& line, const LinePoint& p, const Sums& sums, int held, double value) {
  const int n = line.n, size = n + 2;
  const double T = line.m.T, P = line.m.P, W = line.W;
  double error = 0.0;
  std::fill_n(line.system, static_cast<std::size_t>(size) * size, 0.0);
  for (int j = 0; j < n; ++j) {
    double* column = line.system + static_cast<std::size_t>(j) * size;
    const double amount = line.z[j] > 0.0 ? p.x[j] * sums.x * p.y[j] * sums.y / line.z[j] : 0.0;
    const double gy = (1.0 - W) * amount / sums.y, gx = W * amount / sums.x;
    if (gy > 0.0) {
      const double* d = line.d_y + static_cast<std::size_t>(j) * line.ld;
      for (int i = 0; i < n; ++i) column[i] += gy * d[i];
    }
    if (gx > 0.0) {
      const double* d = line.d_x + static_cast<std::size_t>(j) * line.ld;
      for (int i = 0; i < n; ++i) column[i] += gx * d[i];
    }
    column[j] += 1.0;
    column[n] = amount;
  }
  double* with_T = line.system + static_cast<std::size_t>(n) * size;
  double* with_P = with_T + size;
  for (int i = 0; i < n; ++i) {
    with_T[i] = T * (line.t_y[i] - line.t_x[i]);
    with_P[i] = P * (line.p_y[i] - line.p_x[i]);
    const double d = line.phi_x[i] - line.phi_y[i];
    const double wanted = std::clamp(d, -kLargestLogK, kLargestLogK);
    if (wanted != d) {  // at its bound: it follows nothing
      for (int j = 0; j < size; ++j) line.system[static_cast<std::size_t>(j) * size + i] = j == i ? 1.0 : 0.0;
    }
    line.step[i] = wanted - p.X[i];
    if (line.z[i] > 0.0) error = std::max(error, std::fabs(line.step[i]));
  }
  line.step[n] = sums.x - sums.y;
  error = std::max(error, std::fabs(line.step[n]) / sums.x);
  line.system[static_cast<std::size_t>(held) * size + n + 1] += 1.0;
  line.step[n + 1] = value - p.X[held];
  return error;
}

// Part of the step that keeps every unknown within reach.
double damping(const QualityLine& line) {
  double factor = 1.0;
  for (int i = 0; i < line.n; ++i)
    if (line.z[i] > 0.0) factor = std::min(factor, kLargestLogKStep / std::max(std::fabs(line.step[i]), 1e-30));
  factor = std::min(factor, kLargestLogTStep / std::max(std::fabs(line.step[line.n]), 1e-30));
  return std::min(factor, kLargestLogPStep / std::max(std::fabs(line.step[line.n + 1]), 1e-30));
}

double last_step(const QualityLine& line, const LinePoint& p) {
  double largest = 0.0;
  for (int i = 0; i < line.n; ++i)
    if (line.z[i] > 0.0) largest = std::max(largest, std::fabs(p.X[i]));
  return std::min(kLastStep, kLastOfSquare * largest * largest);
}

void trace_pass(const QualityLine& line, const LinePoint& p, int pass, double factor) {
  if (line.trace == nullptr || !*line.trace) return;
  const bool of_T = line.unknown == line.T_index();
  line.trace->real(of_T ? "TEMPERATURE :" : "PRESSION :", of_T ? line.m.T : line.m.P);
  line.trace->integer("ITERATION :", pass);
  line.trace->real("CRITERE :", p.error * p.error);
  line.trace->real("FACTEUR DE RELAXATION :", factor);
}

// The pass that shows what the last step has left. False: status of the fugacity routine.
bool trace_last(QualityLine& line, LinePoint& p, StatusCode& status) {
  if (line.trace == nullptr || !*line.trace) return true;
  Sums sums;
  status = evaluate(line, p, false, sums);
  if (status != KV_OK) return false;
  p.error = std::fabs(sums.x - sums.y) / sums.x;
  for (int i = 0; i < line.n; ++i) {
    const double d = std::clamp(line.phi_x[i] - line.phi_y[i], -kLargestLogK, kLargestLogK);
    if (line.z[i] > 0.0) p.error = std::max(p.error, std::fabs(d - p.X[i]));
  }
  trace_pass(line, p, p.passes + 1, 1.0);
  return true;
}

bool in_range(const QualityLine& line, const LinePoint& p) {
  const double T = temperature(line, p), P = pressure(line, p);
  return T > kLowestT && T < kHighestT && P > kLowestP && P < kHighestP;
}

}  // namespace

StatusCode line_model(QualityLine& line, double T, double P, int order) {
  if (T == line.prepared && order <= line.prepared_order) {
    line.m.P = P;
    return KV_OK;
  }
  line.arena->rewind(line.base);
  line.prepared = -1.0;
  const StatusCode status =
      make_model(T, P, line.context, line.routines, line.free_water, order, *line.arena, line.m);
  if (status != KV_OK) return status;
  line.m.branch = WaterBranch::by_content;
  line.prepared = T;
  line.prepared_order = order;
  return KV_OK;
}

double temperature(const QualityLine& line, const LinePoint& p) {
  return std::exp(p.X[line.T_index()]);
}
double pressure(const QualityLine& line, const LinePoint& p) {
  return std::exp(p.X[line.P_index()]);
}

void open_line(support::Arena& arena, QualityLine& line) {
  const int n = line.context.record->count, ld = support::padded(n), size = n + 2;
  line.n = n;
  line.ld = ld;
  line.arena = &arena;
  for (double** a : {&line.phi_x, &line.phi_y, &line.t_x, &line.t_y, &line.p_x, &line.p_y})
    *a = arena.zeros(ld);
  line.d_x = arena.take(static_cast<std::size_t>(ld) * n);
  line.d_y = arena.take(static_cast<std::size_t>(ld) * n);
  line.system = arena.take(static_cast<std::size_t>(size) * size);
  line.step = arena.take(size);
  line.pivot = arena.take_ints(size);
}

void take_point(support::Arena& arena, const QualityLine& line, LinePoint& p) {
  p.X = arena.zeros(line.n + 2);
  p.slope = arena.zeros(line.n + 2);
  p.x = arena.zeros(line.ld);
  p.y = arena.zeros(line.ld);
}

void seal_line(QualityLine& line) {
  line.base = line.arena->mark();
  line.prepared = -1.0;
}

void copy_point(const QualityLine& line, const LinePoint& from, LinePoint& to) {
  std::copy_n(from.X, line.n + 2, to.X);
  std::copy_n(from.slope, line.n + 2, to.slope);
  std::copy_n(from.x, line.ld, to.x);
  std::copy_n(from.y, line.ld, to.y);
  to.Zx = from.Zx;
  to.Zy = from.Zy;
  to.error = from.error;
  to.left_over = from.left_over;
  to.passes = from.passes;
}

bool one_phase(const QualityLine& line, const LinePoint& p) {
  constexpr double kTrivial = 2e-5, kSameDensity = 1e-3;           // largest |ln K|; relative difference of Z
  if (std::fabs(p.Zx - p.Zy) > kSameDensity * p.Zy) return false;  // an azeotrope
  for (int i = 0; i < line.n; ++i)
    if (line.z[i] > 0.0 && std::fabs(p.X[i]) > kTrivial) return false;
  return true;
}

void exchange_phases(QualityLine& line, LinePoint& p) {
  line.W = 1.0 - line.W;
  std::swap(p.x, p.y);
  std::swap(p.Zx, p.Zy);
  for (int i = 0; i < line.n; ++i) {
    p.X[i] = -p.X[i];
    p.slope[i] = -p.slope[i];
  }
}

bool compositions(const QualityLine& line, LinePoint& p, double tolerance) {
  Sums sums;
  amounts(line, p, sums.x, sums.y);
  return normalise(line, p, sums, tolerance);
}

bool share_out(const QualityLine& line, LinePoint& p) {
  constexpr int kCorrections = 3;
  constexpr double kEqual = 1e-14, kLargest = 1e-9;  // difference of the sums that is left; correction of ln K
  Sums sums{};
  amounts(line, p, sums.x, sums.y);
  for (int k = 0; k < kCorrections && std::fabs(sums.y - sums.x) > kEqual; ++k) {
    double slope = 0.0;  // of sum y - sum x with a common factor of the K
    for (int i = 0; i < line.n; ++i)
      if (line.z[i] > 0.0) slope += p.x[i] * p.y[i] / line.z[i];
    const double factor = (sums.x - sums.y) / slope;
    if (!(std::fabs(factor) <= kLargest)) return false;
    for (int i = 0; i < line.n; ++i) p.X[i] += factor;
    amounts(line, p, sums.x, sums.y);
  }
  return normalise(line, p, sums, 10.0 * kEqual);
}

bool polish_point(QualityLine& line, LinePoint& p, int held, double* work, StatusCode& status) {
  constexpr int kCorrections = 4;
  constexpr double kHardly = 1e-3;   // change of an equation with a unit vector of unknowns
  constexpr double kLargest = 1e-3;  // correction of something that is known
  const int size = line.n + 2, ld = support::padded(size);
  for (int k = 0; k < kCorrections; ++k) {
    Sums sums;
    status = evaluate(line, p, true, sums);
    if (status != KV_OK) return false;
    p.error = fill_system(line, p, sums, held, p.X[held]);
    std::fill_n(line.system + static_cast<std::size_t>(held) * size, size, 0.0);
    // Least squares of the equations and of the step, in the lower triangle.
    double* const right = p.slope;
    for (int j = 0; j < size; ++j) {
      const double* a = line.system + static_cast<std::size_t>(j) * size;
      right[j] = 0.0;
      for (int r = 0; r < size; ++r) right[j] += a[r] * line.step[r];
      for (int i = j; i < size; ++i) {
        const double* b = line.system + static_cast<std::size_t>(i) * size;
        double sum = i == j ? kHardly * kHardly : 0.0;
        for (int r = 0; r < size; ++r) sum += a[r] * b[r];
        work[static_cast<std::size_t>(j) * ld + i] = sum;
      }
    }
    if (!support::ldl_factor(size, ld, work, 0.0)) return false;
    support::ldl_solve(size, ld, work, right);
    for (int i = 0; i < size; ++i) {
      if ((i >= line.n || line.z[i] > 0.0) && !(std::fabs(right[i]) <= kLargest)) return false;
      p.X[i] = i < line.n ? std::clamp(p.X[i] + right[i], -kLargestLogK, kLargestLogK) : p.X[i] + right[i];
    }
  }
  return compositions(line, p, kSameSums);
}

namespace {

// Largest unknown of the step that stands, of components that are there; not finite where one is not.
double largest_step(const QualityLine& line) {
  double largest = 0.0;
  for (int i = 0; i < line.n + 2; ++i)
    if (i >= line.n || line.z[i] > 0.0) largest = std::max(largest, std::fabs(line.step[i]));
  return largest;
}

// Error of the equations at p and the step that solves them; largest: of its unknowns.
Solved newton_step(QualityLine& line, LinePoint& p, int held, double value, StatusCode& status,
                   double& largest) {
  const int size = line.n + 2;
  Sums sums;
  status = evaluate(line, p, true, sums);
  if (status != KV_OK) return Solved::model;
  p.error = fill_system(line, p, sums, held, value);
  if (!support::lu_factor(size, size, line.system, line.pivot)) return Solved::no;
  support::lu_solve(size, size, line.system, line.pivot, line.step);
  largest = largest_step(line);
  return largest <= DBL_MAX ? Solved::yes : Solved::no;
}

void take_step(const QualityLine& line, LinePoint& p, double factor, int held, double value) {
  for (int i = 0; i < line.n + 2; ++i) p.X[i] += factor * line.step[i];
  p.X[held] = value;
  for (int i = 0; i < line.n; ++i) p.X[i] = std::clamp(p.X[i], -kLargestLogK, kLargestLogK);
}

// The point is as good as it gets: slopes of the line by the factors that stand, and its compositions.
Solved finish_point(QualityLine& line, LinePoint& p, double left_over) {
  const int size = line.n + 2;
  p.left_over = left_over;
  std::fill_n(p.slope, size, 0.0);
  p.slope[size - 1] = 1.0;
  support::lu_solve(size, size, line.system, line.pivot, p.slope);
  return compositions(line, p, kSameSums) ? Solved::yes : Solved::no;
}

}  // namespace

Solved solve_point(QualityLine& line, LinePoint& p, int held, double value, int limit, bool through_critical,
                   StatusCode& status, double criterion) {
  double before = DBL_MAX;
  const bool main = criterion >= 0.0;
  bool accepted = false;
  p.X[held] = value;
  for (p.passes = 1; p.passes <= limit; ++p.passes) {
    double largest = 0.0;
    if (const Solved step = newton_step(line, p, held, value, status, largest); step != Solved::yes)
      return step;
    const double factor = damping(line);
    if (main && !accepted) trace_pass(line, p, p.passes, factor);
    if (p.error * p.error <= criterion) {
      accepted = true;
      limit = std::max(limit, kNewtonLimit);
    }
    // Beside a critical point small errors are long steps: they are taken as long as they are not noise, but
    // for T or P held on the way over it, and where the last one of a point that has converged is long, it is
    // noise.
    const bool exactly = held < line.n || !through_critical;
    const bool short_step = largest <= (exactly ? last_step(line, p) : kLastStep);
    const bool falling =
        exactly && p.error > kRounding && p.error <= kStillFalling * before && p.passes < limit;
    const bool converged = p.error <= kConverged && (short_step || !falling);
    before = p.error;
    if (!converged || short_step) take_step(line, p, factor, held, value);
    if (!in_range(line, p)) return Solved::no;
    if (!through_critical && one_phase(line, p)) return Solved::trivial;
    // A step as short as that leaves its square: no evaluation is spent on seeing it, but for the trace.
    const bool seen = largest * largest * largest * largest <= criterion && short_step && p.passes < limit;
    const bool enough = seen || accepted || !main;
    if (((converged || short_step) && enough) || (accepted && p.passes == limit)) {
      if (main && !accepted && !trace_last(line, p, status)) return Solved::model;
      return finish_point(line, p, short_step ? 0.0 : largest);
    }
  }
  return Solved::no;
}

double slope_with_fraction(QualityLine& line, const LinePoint& p, int unknown) {
  const int n = line.n, size = n + 2;
  double* const r = line.step;
  std::fill_n(r, size, 0.0);
  for (int j = 0; j < n; ++j) {
    if (!(line.z[j] > 0.0)) continue;
    const double apart = (p.y[j] - p.x[j]) / line.z[j];
    const double* dx = line.d_x + static_cast<std::size_t>(j) * line.ld;
    const double* dy = line.d_y + static_cast<std::size_t>(j) * line.ld;
    for (int i = 0; i < n; ++i) r[i] += apart * (p.y[j] * dy[i] - p.x[j] * dx[i]);
    r[n] += apart * (p.y[j] - p.x[j]);
  }
  support::lu_solve(size, size, line.system, line.pivot, r);
  return r[unknown];
}

bool substitute(QualityLine& line, LinePoint& p, int unknown, StatusCode& status) {
  Sums sums;
  status = evaluate(line, p, false, sums);
  if (status != KV_OK) return false;
  const bool of_T = unknown == line.T_index();
  const double scale = of_T ? line.m.T : line.m.P;
  const double* up_x = of_T ? line.t_x : line.p_x;
  const double* up_y = of_T ? line.t_y : line.p_y;
  for (int i = 0; i < line.n; ++i)
    p.X[i] = std::clamp(line.phi_x[i] - line.phi_y[i], -kLargestLogK, kLargestLogK);
  amounts(line, p, sums.x, sums.y);
  double slope = 0.0;
  for (int i = 0; i < line.n; ++i)
    if (line.z[i] > 0.0) slope += p.x[i] * p.y[i] / line.z[i] * scale * (up_x[i] - up_y[i]);
  // On the logarithm of sum y/sum x, which is close to linear for bubble and dew points.
  if (!(std::fabs(slope) > 0.0) || !(sums.x + sums.y <= DBL_MAX)) return false;
  double step = line.W == 0.0   ? -std::log(sums.y) * sums.y / slope
                : line.W == 1.0 ? std::log(sums.x) * sums.x / slope
                                : (sums.x - sums.y) / slope;
  step = std::clamp(step, of_T ? -kLargestLogTStep : -kLargestLogPStep,
                    of_T ? kLargestLogTStep : kLargestLogPStep);
  p.X[unknown] += step;
  for (int i = 0; i < line.n; ++i)
    p.X[i] = std::clamp(p.X[i] + step * scale * (up_x[i] - up_y[i]), -kLargestLogK, kLargestLogK);
  return in_range(line, p);
}

}  // namespace kestrune::flash
