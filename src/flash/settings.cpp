#include "flash/settings.hpp"

#include <cfloat>
#include <cmath>

namespace kestrune::flash {
namespace {
double usable(double value, double otherwise) {
  return value > 0.0 && value <= DBL_MAX ? value : otherwise;
}
}  // namespace

Settings copy_settings(const MixtureRecord& mixture) noexcept {
  Settings s{};
  s.CRIT = usable(mixture.CRIT, KV_DEFAULT_CRIT);
  s.CLIM = usable(mixture.CLIM, KV_DEFAULT_CLIM);
  s.EPS = usable(mixture.EPS, KV_DEFAULT_EPS);
  s.loose = std::pow(s.CRIT, 0.33);
  s.ITEMAX = mixture.ITEMAX > 0 ? mixture.ITEMAX : KV_DEFAULT_ITEMAX;
  s.NEW = mixture.NEW > 0 ? mixture.NEW : 0;
  const double budget = static_cast<double>(s.NEW) * (static_cast<double>(mixture.count) + 1.0);
  s.global_budget = budget < 1e9 ? static_cast<int>(budget) : 1000000000;
  s.relaxation = usable(mixture.relaxation, KV_DEFAULT_RELAXATION);
  s.robust = false;
  s.trace = mixture.trace_flag != 0;
  s.trace_unit = mixture.trace_unit;
  return s;
}

double pure_tolerance(const MixtureRecord& mixture) noexcept {
  return usable(mixture.pure_tolerance, KV_DEFAULT_PURE_TOLERANCE);
}

double sum_tolerance(const MixtureRecord& mixture) noexcept {
  return usable(mixture.sum_tolerance, KV_DEFAULT_SUM_TOLERANCE);
}

double lowest_temperature(const MixtureRecord& mixture) noexcept {
  const double* low = mixture.table + static_cast<std::size_t>(KV_COL_TMIN_PSAT - 1) * mixture.count;
  double least = 1000.0;
  for (int i = 0; i < mixture.count; ++i)
    if (low[i] > 0.0 && low[i] <= 1e20) least = std::fmin(least, low[i]);
  return std::fmin(least, 200.0);
}

void apply_robust_settings(const ModelOptions& model, Settings& s) noexcept {
  const bool wanted =
      model.first == 7 || model.first == 8 || (model.second != 0 && model_predicate(model.second));
  if (!wanted) return;
  s.relaxation = std::fmin(s.relaxation, kRobustRelaxation);
  if (s.ITEMAX < kRobustIterations) s.ITEMAX = kRobustIterations;
  s.robust = true;
}

}  // namespace kestrune::flash
