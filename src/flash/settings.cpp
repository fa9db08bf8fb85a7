#include "flash/settings.hpp"

#include <cfloat>
#include <cmath>
#include <cstdint>

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

namespace {

// Mean of a temperature of each component that has one, weighted with the feed; 0 without any.
double mean_temperature(const MixtureRecord& mixture, const double* z) {
  const auto usable_T = [](double T) { return T > 0.0 && T < 1e20; };
  const double* boiling = mixture.table + static_cast<std::size_t>(KV_COL_BOILING_POINT - 1) * mixture.count;
  const double* critical = mixture.table + static_cast<std::size_t>(KV_COL_TC - 1) * mixture.count;
  double sum = 0.0, weights = 0.0;
  for (int i = 0; i < mixture.count; ++i) {
    const double T = usable_T(boiling[i]) ? boiling[i] : usable_T(critical[i]) ? 0.7 * critical[i] : 0.0;
    if (T == 0.0) continue;
    sum += z[i] * T;
    weights += z[i];
  }
  return weights > 0.0 ? sum / weights : 0.0;
}

}  // namespace

void apply_robust_settings(const ModelOptions& model, Settings& s) noexcept {
  const bool wanted =
      model.first == 7 || model.first == 8 || (model.second != 0 && model_predicate(model.second));
  if (!wanted) return;
  s.relaxation = std::fmin(s.relaxation, kRobustRelaxation);
  if (s.ITEMAX < kRobustIterations) s.ITEMAX = kRobustIterations;
  s.robust = true;
}

void apply_liquid_settings(const ModelOptions& model, int index, Settings& s) noexcept {
  if (index != 1 || !careful_liquids(model)) return;
  s.relaxation = kRobustRelaxation;
  s.ITEMAX = kRobustIterations;
}

void apply_quality_settings(const ModelOptions& model, double W, bool cold, Settings& s) noexcept {
  constexpr int kLeastIterations = 200, kTimes = 10;
  const int given = s.ITEMAX;
  const bool wanted = model.first == 7 || model.first == 8 || model.first == 11 || model.first == 12 ||
                      model.second == 40 || (model.second != 0 && model_predicate(model.second));
  if (s.relaxation == 1.0 && wanted) {
    s.robust = true;
    if (s.ITEMAX < kLeastIterations) s.ITEMAX = kLeastIterations;
    s.relaxation = 1.0 - 0.9 * W;
  }
  if (!cold) return;
  s.relaxation /= kTimes;
  s.ITEMAX = given > INT32_MAX / kTimes ? INT32_MAX : kTimes * given;
}

double starting_temperature(const ModelOptions& model, const MixtureRecord& mixture, const double* z,
                            double estimate) noexcept {
  double T = model.first == 4 ? kColdStartTemperature : estimate;
  if (estimate == 0.0 && (model.first == 7 || model.second == 40)) T = mean_temperature(mixture, z);
  return T < lowest_temperature(mixture) ? kDefaultTemperature : T;
}

}  // namespace kestrune::flash
