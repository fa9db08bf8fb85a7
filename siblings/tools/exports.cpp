// Exported entries: check the arguments, guard the floating-point environment, call, copy out.
#include <cmath>

#include "collocation.hpp"
#include "dense.hpp"
#include "entry.hpp"
#include "nonlinear.hpp"
#include "petroleum.hpp"
#include "regression.hpp"
#include "trace_files.hpp"

namespace {

using namespace kestrune::tools;

template <class... Pointers>
bool any_null(Pointers... pointers) noexcept {
  return ((pointers == nullptr) || ...);
}

// Runs body under the guard; fallback is the result when it throws, which only a lack of memory does.
template <class Body>
std::int32_t guarded(std::int32_t fallback, Body&& body) noexcept {
  const FpGuard guard;
  try {
    return body();
  } catch (...) {
    return fallback;
  }
}

using Solver = SolverStatus (*)(const Problem&, double*, double*, std::int32_t&);

void run_solver(Solver solver, const std::int32_t* n, double* x, double* f, KvResidual residual, void* user,
                const double* tolerance, const std::int32_t* itemax, const TraceUnits& units,
                std::int32_t* iterations, std::int32_t* status) noexcept {
  constexpr auto bad = static_cast<std::int32_t>(SolverStatus::bad_argument);
  if (iterations != nullptr) *iterations = 0;
  if (any_null(n, x, f, residual, tolerance, itemax, iterations)) {
    *status = bad;
    return;
  }
  *status = guarded(bad, [&] {
    if (*n < 1 || *n > 0x4000 || *itemax < 0 || !(*tolerance >= 0.0)) return bad;
    for (std::int32_t i = 0; i < *n; ++i) {
      if (!std::isfinite(x[i])) return bad;
    }
    const Problem problem{*n, residual, user, *tolerance, *itemax, units};
    return static_cast<std::int32_t>(solver(problem, x, f, *iterations));
  });
}

}  // namespace

KV_ENTRY void KV_CALL CalcKayMR(const int32_t* nc, const double* x, const double* Tc, const double* Pc,
                                const double* Vc, const double* Zc, const double* M, double* Tcm, double* Pcm,
                                double* Vcm, double* Zcm, double* Mm) {
  if (any_null(nc, x, Tc, Pc, Vc, Zc, M) || any_null(Tcm, Pcm, Vcm, Zcm, Mm)) return;
  guarded(0, [&] {
    const PseudoCritical mix = kay_mixture(*nc, x, Tc, Pc, Vc, Zc, M);
    *Tcm = mix.Tc;
    *Pcm = mix.Pc;
    *Vcm = mix.Vc;
    *Zcm = mix.Zc;
    *Mm = mix.M;
    return 0;
  });
}

KV_ENTRY void KV_CALL CalcKUOP(const double* Tb, const double* SG, double* K, int32_t* status) {
  if (status == nullptr) return;
  *status = any_null(Tb, SG, K) ? 1 : guarded(1, [&] { return watson(*Tb, *SG, K) ? 0 : 1; });
}

KV_ENTRY void KV_CALL CalcSG(const double* Tb, const double* K, double* SG, int32_t* status) {
  if (status == nullptr) return;
  *status = any_null(Tb, K, SG) ? 1 : guarded(1, [&] { return watson(*Tb, *K, SG) ? 0 : 1; });
}

KV_ENTRY void KV_CALL MeABP(const int32_t* n, const double* Tb, const double* x, const double* w,
                            const double* SG, double* result, int32_t* status) {
  if (status == nullptr) return;
  *status = any_null(n, Tb, x, w, SG, result)
                ? 1
                : guarded(1, [&] { return mean_average_boiling_point(*n, Tb, x, w, SG, result) ? 0 : 1; });
}

KV_ENTRY void KV_CALL DGEFA(double* a, const int32_t* lda, const int32_t* n, int32_t* ipvt, int32_t* info) {
  if (any_null(a, lda, n, ipvt, info)) return;
  guarded(0, [&] {
    *info = factor_classic(a, *lda, *n, ipvt);
    return 0;
  });
}

KV_ENTRY void KV_CALL DGESL(const double* a, const int32_t* lda, const int32_t* n, const int32_t* ipvt,
                            double* b, const int32_t* job) {
  if (any_null(a, lda, n, ipvt, b, job)) return;
  guarded(0, [&] {
    solve_classic(a, *lda, *n, ipvt, b, *job != 0);
    return 0;
  });
}

KV_ENTRY void KV_CALL MRINV(const int32_t* n, const int32_t* lda, double* a, int32_t* status) {
  if (status == nullptr) return;
  *status = any_null(n, lda, a) ? 2 : guarded(2, [&] { return static_cast<int32_t>(invert(*n, *lda, a)); });
}

KV_ENTRY void KV_CALL MRSL01(const int32_t* n, const int32_t* lda, double* a, double* b, int32_t* status) {
  if (status == nullptr) return;
  *status = any_null(n, lda, a, b)
                ? 2
                : guarded(2, [&] { return static_cast<int32_t>(solve_system(*n, *lda, a, 1, *n, b)); });
}

KV_ENTRY void KV_CALL MRSL02(const int32_t* n, const int32_t* lda, double* a, const int32_t* m,
                             const int32_t* ldb, double* b, int32_t* status) {
  if (status == nullptr) return;
  *status = any_null(n, lda, a, m, ldb, b)
                ? 2
                : guarded(2, [&] { return static_cast<int32_t>(solve_system(*n, *lda, a, *m, *ldb, b)); });
}

KV_ENTRY void KV_CALL REGLIN(const int32_t* n, const double* x, const double* y, double* slope,
                             double* intercept, double* correlation, int32_t* status) {
  if (status == nullptr) return;
  if (any_null(n, x, y, slope, intercept, correlation)) {
    *status = 1;
    return;
  }
  *status = guarded(1, [&] {
    Line line{};
    if (!fit_line(*n, x, y, line)) return 1;
    *slope = line.slope;
    *intercept = line.intercept;
    *correlation = line.correlation;
    return 0;
  });
}

KV_ENTRY void KV_CALL CNEWTON(const int32_t* n, double* x, double* f, KvResidual residual, void* user,
                              const double* tolerance, const int32_t* itemax, const int32_t* units,
                              int32_t* iterations, int32_t* status) {
  if (status == nullptr) return;
  TraceUnits trace_units;
  if (units != nullptr) {
    trace_units = {units[0], units[1], units[2], units[3], units[4], units[5], units[6]};
  }
  run_solver(solve_newton, n, x, f, residual, user, tolerance, itemax, trace_units, iterations, status);
}

KV_ENTRY void KV_CALL GANEW(const int32_t* n, double* x, double* f, KvResidual residual, void* user,
                            const double* tolerance, const int32_t* itemax, const int32_t* trace_switch,
                            const int32_t* unit, int32_t* iterations, int32_t* status) {
  if (status == nullptr) return;
  TraceUnits trace_units;
  if (trace_switch != nullptr && unit != nullptr && *trace_switch != 0) {
    trace_units = {*unit, *unit, *unit, *unit, 0, *unit, *unit};
  }
  run_solver(solve_broyden, n, x, f, residual, user, tolerance, itemax, trace_units, iterations, status);
}

KV_ENTRY void KV_CALL MCOLT7(const int32_t* n, const int32_t* n0, const int32_t* n1, const double* alpha,
                             const double* beta, double* x, double* a, double* b, double* w, int32_t* status) {
  if (status == nullptr) return;
  *status = any_null(n, n0, n1, alpha, beta, x, a, b, w)
                ? 1
                : guarded(1, [&] { return collocation(*n, *n0, *n1, *alpha, *beta, x, a, b, w) ? 0 : 1; });
}

KV_ENTRY void KV_CALL SetOutputFiles(const int32_t* count, const char* names, const int32_t* units,
                                     int32_t* status) {
  if (status == nullptr) return;
  *status =
      any_null(count, names, units) ? 2 : guarded(1, [&] { return open_trace_files(*count, names, units); });
}

KV_ENTRY void KV_CALL CloseOutputFiles(int32_t* status) {
  const int32_t result = guarded(1, [] { return close_trace_files(); });
  if (status != nullptr) *status = result;
}
