// The steps of the two-phase iteration. [Mic82b] M. L. Michelsen, Fluid Phase Equilib. 9 (1982) 21-40: successive
// substitution and second-order minimisation of the Gibbs energy in the split.

#include "flash/isothermal/two_phase_steps.hpp"

#include <algorithm>
#include <cmath>

#include "flash/isothermal/rachford_rice.hpp"
#include "support/ldl.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

constexpr double kSmallestPivot = 1e-14;
constexpr double kFirstShift =
    1e-10;  // beside a critical point the lowest eigenvalue is tiny, and so must the shift be
constexpr double kLargestNewtonStep = 5.0;  // in ln K
constexpr int kStepCuts = 12;               // until both phases are there

// Successive substitution with the working relaxation factor.
void substitute_whole(const Model& m, double relaxation, Iterate& it) {
  for (int i = 0; i < m.n; ++i)
    it.log_k[i] = std::clamp(it.log_k[i] + relaxation * it.r[i], -kLargestLogK, kLargestLogK);
  for (int i = 0; i < m.ld; ++i) it.k[i] = support::fast_exp(it.log_k[i]);
}

// The Newton system on (ln K, beta), (21) of docs/method.md, reduced to the vapour amounts v_i = beta y_i:
// with beta liquid = VL
//   S = D [diag(z/(x y)) - 1 + L M_y + V M_x] D,  D_i = sqrt(x_i y_i/z_i),  S u = VL D r,  dv = D u.
// S is symmetric positive definite next to a minimum of the Gibbs energy.
void newton_matrix(const Model& m, const TwoPhaseWork& work, double shift, const Iterate& it) {
  const int n = m.n, ld = m.ld;
  const double L = it.liquid, V = it.beta;
  for (int j = 0; j < n; ++j) {
    const double* __restrict dx = work.dx + static_cast<std::size_t>(j) * ld;
    const double* __restrict dy = work.dy + static_cast<std::size_t>(j) * ld;
    double* __restrict a = work.system + static_cast<std::size_t>(j) * ld;
    const double sj = work.scale[j];
    for (int i = m.free_water ? 0 : support::block_start(j); i < ld; ++i)
      a[i] = sj * work.scale[i] * (L * dy[i] + V * dx[i] - 1.0);
    a[j] += 1.0 + shift;
  }
}

// The free-water rules are no derivatives of one Gibbs energy: a general matrix.
bool solve_general(Model& m, const TwoPhaseWork& work, const Iterate& it) {
  newton_matrix(m, work, 0.0, it);
  ++m.counts.factorisations;
  const std::int32_t order = m.n, lead = m.ld;
  std::int32_t status = 0;
  m.context.tools->linear_system()(&order, &lead, work.system, work.step, &status);
  return status == 0;
}

// S where it is positive definite; elsewhere it is shifted until it is, which still goes downhill.
bool solve_symmetric(Model& m, const TwoPhaseWork& work, Iterate& it) {
  const int n = m.n, ld = m.ld;
  double shift = 0.0;
  for (;;) {
    newton_matrix(m, work, shift, it);
    ++m.counts.factorisations;
    if (support::ldl_factor(n, ld, work.system, kSmallestPivot)) break;
    shift = shift > 0.0 ? 4.0 * shift : kFirstShift;
    if (shift > 100.0) return false;
  }
  support::ldl_solve(n, ld, work.system, work.step);
  double largest = 0.0;  // inverse pivots stand on the diagonal
  for (int i = 0; i < n; ++i) largest = std::max(largest, work.system[static_cast<std::size_t>(i) * ld + i]);
  it.smallest_pivot = 1.0 / largest;
  return true;
}

void right_side(const Model& m, const TwoPhaseWork& work, const Iterate& it) {
  for (int i = 0; i < m.ld; ++i) work.step[i] = it.both * work.scale[i] * it.r[i];
}

// From the amounts to ln K = ln v_i - ln l_i - ln V + ln L.
void to_log_k(const Model& m, const TwoPhaseWork& work, Iterate& it) {
  it.largest_step = 0.0;
  double dV = 0.0;
  for (int i = 0; i < m.n; ++i) dV += work.scale[i] * work.step[i];
  const double common = dV / it.both;
  for (int i = 0; i < m.n; ++i) {
    const double dv = work.step[i] / work.scale[i];  // dv_i z_i/(x_i y_i)
    work.step[i] = work.scale[i] > 0.0 ? dv / it.both - common : it.r[i];
    work.old_log_k[i] = it.log_k[i];
    if (it.z[i] > 0.0) it.largest_step = std::max(it.largest_step, std::fabs(work.step[i]));
  }
}

}  // namespace

void compose_phases(const Model& m, Iterate& it) {
  it.evaluated = false;
  const double V = it.beta, L = it.liquid;
  if (V <= 0.5) {
    for (int i = 0; i < m.n; ++i) it.x[i] = it.z[i] / (1.0 + V * (it.k[i] - 1.0));
    for (int i = 0; i < m.n; ++i) it.y[i] = it.k[i] * it.x[i];
  } else {
    for (int i = 0; i < m.n; ++i) it.x[i] = it.z[i] / (it.k[i] + L * (1.0 - it.k[i]));
    for (int i = 0; i < m.n; ++i) it.y[i] = it.k[i] * it.x[i];
  }
}

bool split_feed(const Model& m, Iterate& it) {
  const PhaseFraction f = rachford_rice(m.n, it.z, it.k, it.beta);
  it.beta = f.beta;
  it.liquid = f.liquid;
  if (f.kind != Split::two_phase) return false;
  compose_phases(m, it);
  return true;
}

StatusCode evaluate_phases(Model& m, const TwoPhaseWork& work, bool derivatives, Iterate& it) {
  const bool keep = work.derivatives_later(m);
  it.at_x.s = work.sx;
  it.at_y.s = work.sy;
  StatusCode status = fugacity(m, it.x, it.kind_x, it.ln_phi_x, derivatives ? work.dx : nullptr, it.Zx,
                               keep ? &it.at_x : nullptr);
  if (status != KV_OK) return status;
  status = fugacity(m, it.y, it.kind_y, it.ln_phi_y, derivatives ? work.dy : nullptr, it.Zy,
                    keep ? &it.at_y : nullptr);
  if (status != KV_OK) return status;
  it.evaluated = keep;
  double error = 0.0, worst = 0.0, gx = 0.0, gy = 0.0;
  for (int i = 0; i < m.ld; ++i) it.log_x[i] = support::fast_log(it.x[i]);
  for (int i = 0; i < m.n; ++i) {
    const double d = std::clamp(it.ln_phi_x[i] - it.ln_phi_y[i], -kLargestLogK, kLargestLogK);
    it.r[i] = d - it.log_k[i];
    const double r = it.z[i] > 0.0 ? it.r[i] : 0.0;
    error += r * r;
    worst = std::max(worst, std::fabs(r));
    gx += it.x[i] * (it.log_x[i] + it.ln_phi_x[i]);
    gy += it.y[i] * (it.log_x[i] + it.log_k[i] + it.ln_phi_y[i]);
  }
  it.error = error;
  it.worst = worst;
  it.gibbs = it.liquid * gx + it.beta * gy;
  return KV_OK;
}

StatusCode add_derivatives(Model& m, const TwoPhaseWork& work, Iterate& it) {
  const StatusCode status = composition_derivatives(m, it.at_x, work.dx);
  return status != KV_OK ? status : composition_derivatives(m, it.at_y, work.dy);
}

bool centre_coefficients(const Model& m, Iterate& it) {
  double up = 0.0, down = 0.0;
  for (int i = 0; i < m.n; ++i) {
    up += it.z[i] * it.k[i];
    down += it.z[i] / it.k[i];
  }
  const double shift = 0.5 * support::fast_log(down / up);
  for (int i = 0; i < m.n; ++i) it.log_k[i] = std::clamp(it.log_k[i] + shift, -kLargestLogK, kLargestLogK);
  for (int i = 0; i < m.ld; ++i) it.k[i] = support::fast_exp(it.log_k[i]);
  return split_feed(m, it);
}

bool substitute(const Model& m, bool cut, double relaxation, const TwoPhaseWork& work, Iterate& it) {
  std::copy_n(it.log_k, m.n, work.old_log_k);
  substitute_whole(m, relaxation, it);
  if (split_feed(m, it)) return true;
  if (!cut) return false;
  for (int k = 0; k < kStepCuts; ++k) {
    relaxation *= 0.5;
    std::copy_n(work.old_log_k, m.n, it.log_k);
    substitute_whole(m, relaxation, it);
    if (split_feed(m, it)) return true;
  }
  return false;
}

bool newton_direction(Model& m, const TwoPhaseWork& work, Iterate& it) {
  const int ld = m.ld;
  // Absent components and those whose K is at its bound take no part; they follow by substitution.
  for (int i = 0; i < ld; ++i) {
    const bool free = i < m.n && it.z[i] > 0.0 && std::fabs(it.r[i] + it.log_k[i]) < kLargestLogK;
    work.scale[i] = free ? std::sqrt(it.x[i] * it.y[i] / it.z[i]) : 0.0;
  }
  it.both = it.beta * it.liquid;
  right_side(m, work, it);
  if (!(m.free_water ? solve_general(m, work, it) : solve_symmetric(m, work, it))) return false;
  to_log_k(m, work, it);
  return true;
}

void same_direction(Model& m, const TwoPhaseWork& work, Iterate& it) {
  right_side(m, work, it);
  support::ldl_solve(m.n, m.ld, work.system, work.step);
  to_log_k(m, work, it);
}

bool take_newton_step(const Model& m, double factor, const TwoPhaseWork& work, Iterate& it) {
  if (it.largest_step > kLargestNewtonStep) factor *= kLargestNewtonStep / it.largest_step;
  for (int k = 0; k < kStepCuts; ++k, factor *= 0.3) {
    for (int i = 0; i < m.n; ++i)
      it.log_k[i] = std::clamp(work.old_log_k[i] + factor * work.step[i], -kLargestLogK, kLargestLogK);
    for (int i = 0; i < m.ld; ++i) it.k[i] = support::fast_exp(it.log_k[i]);
    if (split_feed(m, it)) return true;
  }
  return false;
}

}  // namespace kestrune::flash
