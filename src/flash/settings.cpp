// Settings of the record with their defaults, and the rules by which models and kinds of flashes change them.

#include "flash/settings.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace kestrune::flash {
namespace {

// A block of settings in which every byte is zero: a host that has filled none.
bool none_given(const MixtureRecord& mixture) {
  constexpr std::size_t first = offsetof(MixtureRecord, CRIT);
  const auto* bytes = reinterpret_cast<const unsigned char*>(&mixture);
  return std::all_of(bytes + first, bytes + sizeof mixture, [](unsigned char byte) { return byte == 0; });
}

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

Settings copy_settings(const eos::Context& context) noexcept {
  const MixtureRecord& mixture = *context.record;
  Settings s{};
  if (none_given(mixture)) {
    s.CRIT = KV_DEFAULT_CRIT;
    s.CLIM = KV_DEFAULT_CLIM;
    s.EPS = KV_DEFAULT_EPS;
    s.ITEMAX = KV_DEFAULT_ITEMAX;
    s.NEW = KV_DEFAULT_NEW;
    s.relaxation = KV_DEFAULT_RELAXATION;
  } else {
    s.CRIT = mixture.CRIT;
    s.CLIM = mixture.CLIM;
    s.EPS = mixture.EPS;
    const int iterations = mixture.ITEMAX;  // a copy: the record is packed
    s.ITEMAX = std::clamp(iterations, 0, KV_MOST_ITERATIONS);
    s.NEW = mixture.NEW;
    s.relaxation = std::isfinite(mixture.relaxation) ? mixture.relaxation : KV_DEFAULT_RELAXATION;
  }
  const double budget = static_cast<double>(s.NEW) * (static_cast<double>(mixture.count) + 1.0);
  s.global_budget = static_cast<int>(std::clamp(budget, 0.0, 1e9));
  s.robust = false;
  s.trace = context.trace != 0;
  s.trace_unit = mixture.trace_unit;
  return s;
}

double pure_tolerance(const MixtureRecord& mixture) noexcept {
  return none_given(mixture) ? KV_DEFAULT_PURE_TOLERANCE : mixture.pure_tolerance;
}

double sum_tolerance(const MixtureRecord& mixture) noexcept {
  if (none_given(mixture) || !std::isfinite(mixture.sum_tolerance)) return KV_DEFAULT_SUM_TOLERANCE;
  return mixture.sum_tolerance;
}

StatusCode check_feed_sum(const double* z, const MixtureRecord& mixture) noexcept {
  double sum = 0.0;
  for (int i = 0; i < mixture.count; ++i) sum += z[i];
  return std::fabs(sum - 1.0) > sum_tolerance(mixture) ? KV_FEED_SUM : KV_OK;
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
