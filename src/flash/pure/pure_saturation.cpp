// Saturation of a single component: Newton's method on the difference of ln phi of both roots, in a bracket
// that is closed by which root there is.

#include "flash/pure/pure_saturation.hpp"

#include <algorithm>
#include <cmath>

#include "eos/constants.hpp"

namespace kestrune::flash {
namespace {

constexpr int kMostPasses = 200;      // a few, but where bisection takes over
constexpr double kConverged = 1e-13;  // change of the logarithm of the unknown
constexpr double kSameRoot = 1e-9;    // relative difference of Z

struct Both {
  double g = 0.0;      // ln phi of the liquid less that of the vapour
  double slope = 0.0;  // d g/d ln unknown
  bool two = false;    // both roots are there
  bool gas = false;    // the only root is the gas's
};

StatusCode both_phases(QualityLine& line, LinePoint& p, int j, int unknown, Both& b) {
  const double T = temperature(line, p), P = pressure(line, p);
  const StatusCode prepared = line_model(line, T, P);
  if (prepared != KV_OK) return prepared;
  ++line.passes;
  p.Zx = p.Zy = 0.0;
  StatusCode status =
      water_aware_fugacity(line.m, p.x, Kind::liquid, line.phi_x, {line.t_x, line.p_x, nullptr}, p.Zx);
  if (status != KV_OK) return status;
  status = water_aware_fugacity(line.m, p.y, Kind::gas, line.phi_y, {line.t_y, line.p_y, nullptr}, p.Zy);
  if (status != KV_OK) return status;
  b.g = line.phi_x[j] - line.phi_y[j];
  b.slope = unknown == line.T_index() ? T * (line.t_x[j] - line.t_y[j]) : P * (line.p_x[j] - line.p_y[j]);
  b.two = line.m.free_water || std::fabs(p.Zx - p.Zy) > kSameRoot * p.Zy;
  // One root only: by its packing it is a gas or a liquid.
  const MixtureRecord& r = *line.context.record;
  const double Tc = r.table[static_cast<std::size_t>(KV_COL_TC - 1) * r.count + j];
  const double Pc = r.table[static_cast<std::size_t>(KV_COL_PC - 1) * r.count + j];
  b.gas = eos::loosely_packed(eos::kOmegaB_R * Tc / Pc, T, P, p.Zy);
  return KV_OK;
}

}  // namespace

int single_component(int n, const double* z, double tolerance) noexcept {
  if (n == 1) return 0;
  for (int i = 0; i < n; ++i)
    if (z[i] > 1.0 - tolerance) return i;
  return -1;
}

int single_component_of_feed(int n, const double* z, double tolerance) noexcept {
  double sum = 0.0;
  for (int i = 0; i < n; ++i) sum += z[i];
  const int j = single_component(n, z, tolerance);
  if (j >= 0 && (n == 1 || z[j] > (1.0 - tolerance) * sum)) return j;
  for (int i = 0; i < n; ++i)
    if (z[i] == sum && sum > 0.0) return i;
  return -1;
}

StatusCode pure_saturation(QualityLine& line, LinePoint& p, int j, int unknown) {
  const MixtureRecord& r = *line.context.record;
  const double Tc = r.table[static_cast<std::size_t>(KV_COL_TC - 1) * r.count + j];
  const double Pc = r.table[static_cast<std::size_t>(KV_COL_PC - 1) * r.count + j];
  const double w = r.table[static_cast<std::size_t>(KV_COL_OMEGA - 1) * r.count + j];
  const bool of_T = unknown == line.T_index();
  const int given = of_T ? line.P_index() : line.T_index();
  if (p.X[given] >= std::log(of_T ? Pc : Tc)) return KV_NO_SATURATION;
  for (double* x : {p.x, p.y}) {
    std::fill_n(x, line.ld, 0.0);
    x[j] = 1.0;
  }
  // Wilson's line is the start; the bracket closes in on what the roots say.
  const double e = 5.37 * (1.0 + w);
  p.X[unknown] = of_T ? std::log(Tc / (1.0 - (p.X[given] - std::log(Pc)) / e))
                      : std::log(Pc) + e * (1.0 - Tc / std::exp(p.X[given]));
  double low = of_T ? std::log(0.02 * Tc) : std::log(Pc) - 300.0;
  double high = std::log(of_T ? Tc : Pc) + 1e-3;
  for (int pass = 0; pass < kMostPasses; ++pass) {
    p.X[unknown] = std::clamp(p.X[unknown], low, high);
    Both b;
    const StatusCode status = both_phases(line, p, j, unknown, b);
    if (status != KV_OK) return status;
    // Too low a temperature, or too high a pressure, where the liquid is the stable one.
    const bool liquid = b.two ? b.g < 0.0 : !b.gas;
    (liquid == of_T ? low : high) = p.X[unknown];
    double next = 0.5 * (low + high);
    if (b.two && b.slope != 0.0) {
      const double newton = p.X[unknown] - b.g / b.slope;
      const bool last = std::fabs(b.g / b.slope) < 1e-8;
      if (last || (newton > low && newton < high)) next = newton;
      if (last) {
        p.X[unknown] = next;
        for (int i = 0; i < line.n; ++i)
          p.X[i] = i == j ? 0.0 : std::clamp(line.phi_x[i] - line.phi_y[i], -kLargestLogK, kLargestLogK);
        p.error = std::fabs(b.g);
        return KV_OK;
      }
    } else if (high - low < kConverged) {
      return KV_NO_SATURATION;
    }
    p.X[unknown] = next;
  }
  return KV_NO_SATURATION;
}

}  // namespace kestrune::flash
