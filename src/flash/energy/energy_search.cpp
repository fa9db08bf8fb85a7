// The fallback of the flashes at enthalpy and entropy: a damped Newton search on the temperature, each value
// and each slope by an isothermal flash of its own. Its constants are settled: do not tidy them.

#include <algorithm>
#include <cmath>

#include "flash/energy/energy_state.hpp"
#include "flash/settings.hpp"
#include "flash/trace_flash.hpp"

namespace kestrune::flash {
namespace {

constexpr int kPassLimit = 50;  // iterations of a pass
// Relative step of the forward difference, in the second pass, and the least; K: the longest.
constexpr double kFirstStep = 1e-4, kSecondPassStep = 0.1, kSmallestStep = 1e-8, kLargestShift = 40.0;
// K: of T in one step; part of a step, and relative change of T, below which it has come to its end.
constexpr double kLargestChange = 50.0, kSmallestFactor = 1e-5, kSameTemperature = 1e-6;

struct Search {
  Energy& e;
  double scale, tolerance;
  bool warm;              // the next flash starts from the last answer
  bool answered = false;  // the last flash had one

  // Residual at T; the answer stays in e.state.
  double residual(double T) {
    const bool had_answer = equilibrium_at(e, T, warm, e.state);
    answered = had_answer;
    // What a flash without an answer left still shows the way, but is no end; the next one starts cold.
    if (!had_answer && e.state.status != KV_OK) evaluate_state(e, e.state);
    warm = had_answer && e.state.two_phases();
    return (e.call.wanted - e.state.value) / scale;
  }
};

enum class Pass { converged, failed, damping };

Pass run_pass(Search& s, double e, double& T) {
  double before = 0.0;
  for (int iteration = 1; iteration <= kPassLimit + 1; ++iteration) {
    if (iteration > 1 && std::fabs(T - before) < kSameTemperature && e >= kSmallestStep) e /= 10.0;
    before = T;
    const double r = s.residual(T);
    trace_energy_pass(s.e.trace, s.e.call, T, s.e.state.beta, s.e.state.liquid, s.e.state.vapour);
    if (r * r <= s.tolerance) return iteration < kPassLimit && s.answered ? Pass::converged : Pass::failed;
    if (!std::isfinite(r) || iteration > kPassLimit) return Pass::failed;
    const double beta = s.e.state.beta;
    const double size = std::min(e * T, kLargestShift);
    const double shift = s.e.state.two_phases() && beta > 0.5 ? -size : size;
    const double slope = (s.residual(T + shift) - r) / shift;
    double f = 1.0, change = r / slope;
    while (std::fabs(f * change) > kLargestChange && f > kSmallestFactor) f *= 0.5;
    if (!(f > kSmallestFactor) || !std::isfinite(change))
      return iteration < kPassLimit ? Pass::damping : Pass::failed;
    const double next = T - f * change;
    if (!(next > kColdest && next < kHottest)) return Pass::failed;  // T is the last one within the range
    T = next;
  }
  return Pass::failed;
}

}  // namespace

double residual_scale(double wanted) {
  const double size = std::fabs(wanted);
  if (size < 1.0) return wanted < 0.0 ? -1.0 : 1.0;
  return size <= 10000.0 ? wanted : 10000.0;
}

StatusCode search_temperature(Energy& e, bool warm) {
  Search s{e, residual_scale(e.call.wanted), copy_settings(e.call.context).CRIT, warm};
  double& T = *e.call.T;
  Pass pass = run_pass(s, kFirstStep, T);
  if (pass == Pass::failed) pass = run_pass(s, kSecondPassStep, T);
  if (pass == Pass::damping) return KV_DAMPING;
  return pass == Pass::converged ? KV_OK : KV_NOT_CONVERGED;
}

}  // namespace kestrune::flash
