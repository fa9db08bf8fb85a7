// Free water at enthalpy, entropy and vapour fraction: two-phase flash first, liquid taken apart afterwards.

#include "flash3/three_free_water.hpp"

#include <algorithm>
#include <cmath>

#include "flash/accept.hpp"
#include "flash/energy/energy_state.hpp"
#include "flash/pure/pure_saturation.hpp"

namespace kestrune::flash3 {
namespace {

constexpr int kMostStates = 100;            // flashes of a search
constexpr double kReached = 1e-11;          // of the value's size
constexpr double kSameTemperature = 1e-13;  // relative width of a bracket that is an answer
constexpr double kFirstStep = 0.1;          // of T, relative

// Values of the phases that c.out holds at *c.T, and their sum.
StatusCode evaluate(const ThreeEnergyCall& c, const flash::CaloricModel& model, double& total) {
  const ThreePhaseResult& r = c.out;
  // The mark: all of the liquid is A.
  const bool mark = *r.beta == 1.0;
  const double amounts[] = {mark ? 1.0 - *r.V : *r.beta, mark ? 0.0 : 1.0 - *r.beta - *r.V, *r.V};
  const double* const compositions[] = {r.xA, r.xB, r.y};
  double* const values[] = {c.A, c.B, c.vapour};
  total = 0.0;
  for (int j = 0; j < kMostPhases; ++j) {
    *values[j] = 0.0;
    if (!(amounts[j] > 0.0)) continue;
    const StatusCode status =
        flash::phase_value(model, *c.T, compositions[j], j == kV ? KV_PHASE_GAS : KV_PHASE_LIQUID, *values[j]);
    if (status != KV_OK) return status;
    total += amounts[j] * *values[j];
  }
  return std::isfinite(total) ? KV_OK : KV_NOT_FINITE;
}

// The flash at T, its phases and the value.
StatusCode state_at(const ThreeEnergyCall& c, const flash::CaloricModel& model, double T, double& total,
                    StatusCode& kind) {
  *c.T = T;
  kind = three_phase_flash({c.afresh(), T, c.P, c.out});
  if (kind != KV_OK && kind != KV_LV_ANSWER && kind != KV_LL_ANSWER) return kind;
  return evaluate(c, model, total);
}

StatusCode search(const ThreeEnergyCall& c, const flash::CaloricModel& model) {
  flash::EnergyBracket bracket;
  double T = *c.T, step = kFirstStep, total = 0.0;
  StatusCode kind = KV_OK;
  for (int k = 0; k < kMostStates; ++k) {
    const StatusCode status = state_at(c, model, T, total, kind);
    if (status != KV_OK) return status;
    const double f = total - c.wanted;
    if (std::fabs(f) <= kReached * std::max(std::fabs(c.wanted), 1.0)) return kind;
    bracket.add(T, f);
    if (!bracket.closed()) {
      T = std::clamp(f < 0.0 ? T + step : T - step, flash::kColdest, flash::kHottest);
      step *= 2.0;
      continue;
    }
    if (bracket.high - bracket.low <= kSameTemperature * T) {
      return bracket.f_high - bracket.f_low <= owed(c, T) ? kind : StatusCode{KV_NOT_CONVERGED};
    }
    T = k % 5 == 4 || !bracket.inside(bracket.secant()) ? 0.5 * (bracket.low + bracket.high) : bracket.secant();
  }
  return KV_NOT_CONVERGED;
}

}  // namespace

double owed(const ThreeEnergyCall& c, double T) {
  const double unit = eos::kCalR * (c.property == flash::Property::enthalpy ? T : 1.0);
  return flash::kOwedValue * std::max(std::fabs(c.wanted), unit);
}

StatusCode three_energy_free_water(const ThreeEnergyCall& c) {
  const int n = c.context.record->count;
  return support::with_arena<0, 6>(n, [&](support::Arena& arena) -> StatusCode {
    const int ld = support::padded(n);
    double *const x = arena.zeros(ld), *const y = arena.zeros(ld), *const K = arena.zeros(ld);
    double beta = 0.0, liquid = 0.0, vapour = 0.0;
    const StatusCode status =
        flash::energy_flash({c.afresh(), c.property, c.wanted, c.P, c.T, &beta, x, y, K, &liquid, &vapour});
    if (status != KV_OK) return status;
    const bool split = split_free_water({*c.T, c.P, c.context, beta, x, y}, c.out);
    flash::CaloricModel model;
    model.property = c.property;
    model.P = c.P;
    model.context = c.context;
    model.routines = c.routines;
    model.free_water = true;
    double total = 0.0;
    const StatusCode evaluated = evaluate(c, model, total);
    if (evaluated != KV_OK) return evaluated;
    // Water on its own has another entropy than in the liquid; and where traces are dropped, what they add.
    if (std::fabs(total - c.wanted) > owed(c, *c.T)) return search(c, model);
    return !split ? KV_LV_ANSWER : *c.out.V > 0.0 ? KV_OK : KV_LL_ANSWER;
  });
}

StatusCode three_quality_free_water(const ThreeQualityCall& c) {
  const int n = c.context.record->count;
  return support::with_arena<0, 6>(n, [&](support::Arena& arena) -> StatusCode {
    const int ld = support::padded(n);
    double *const x = arena.zeros(ld), *const y = arena.zeros(ld), *const K = arena.zeros(ld);
    const double W = std::clamp(c.W, 0.0, 1.0);
    double unknown = *c.unknown;
    const StatusCode status = flash::quality_flash({c.afresh(), c.find, W, c.given, &unknown, x, y, K});
    if (status != KV_OK && status != KV_UNSTABLE_POINT) return status;
    *c.unknown = unknown;
    const bool of_T = c.find == flash::Find::temperature;
    const bool split = split_free_water({.T = of_T ? unknown : c.given,
                                         .P = of_T ? c.given : unknown,
                                         .context = c.context,
                                         .V = W,
                                         .x = x,
                                         .y = y,
                                         .incipient = true},
                                        c.out);
    if (W == 0.0) keep_incipient_vapour(n, y, c.out);
    if (status != KV_OK) return status;
    return split ? StatusCode{KV_OK} : StatusCode{KV_LV_ANSWER};
  });
}

}  // namespace kestrune::flash3
