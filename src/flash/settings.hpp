// Flash settings of a call, as the record gives them and as the solvers use them.
#ifndef KESTRUNE_FLASH_SETTINGS_HPP
#define KESTRUNE_FLASH_SETTINGS_HPP

#include "eos/context.hpp"
#include "kestrune/records.h"

namespace kestrune::flash {

// Option codes of the thermodynamic model, consulted by the robust settings. PPR78 has 0 and 0.
struct ModelOptions {
  int first = 0;
  int second = 0;
};
inline constexpr ModelOptions kModelOptions{};

// Whether the second option code names a model that calls for the robust settings: none of PPR78's does.
inline constexpr bool model_predicate(int code) {
  return code < 0;
}

// Whether two liquids of a model are begun carefully when the host gives the initialisation index 1: those of a
// model without difficulties of its own, as PPR78, for which that index means an estimate that is to be kept
// to.
inline constexpr bool careful_liquids(const ModelOptions& model) {
  return model.first == 0 && model.second == 0;
}

struct Settings {
  double CRIT, CLIM, EPS;
  int ITEMAX, NEW;
  int global_budget;  // NEW (n + 1) iterations for the global method
  double relaxation;
  bool robust;
  bool trace;
  int trace_unit;
};

// Relaxation factor and iteration limit of a difficult model, and of the solver's own restart.
inline constexpr double kRobustRelaxation = 0.1;
inline constexpr int kRobustIterations = 1000;

/*
 * Copies the settings of the record: the defaults (records.h) for a block that is zero throughout, else what
 * stands there, ITEMAX up to KV_MOST_ITERATIONS and a relaxation factor that is not finite as 1.
 */
Settings copy_settings(const eos::Context& context) noexcept;

/* Distance from 1 within which one fraction makes a feed a single component. */
double pure_tolerance(const MixtureRecord& mixture) noexcept;

/*
 * Largest |sum of the feed - 1| where a calculation tests it: as it stands, 0 being exact; not finite counts as
 * the default.
 */
double sum_tolerance(const MixtureRecord& mixture) noexcept;

/* KV_FEED_SUM where z does not sum to one within that, as of an empty feed; else KV_OK, also when it is no
 * number. */
StatusCode check_feed_sum(const double* z, const MixtureRecord& mixture) noexcept;

/* TMIN: the smallest of the lower temperatures of the components, from 1000 and never above 200 K. */
double lowest_temperature(const MixtureRecord& mixture) noexcept;

/* Applies the robust settings where the model asks for them. */
void apply_robust_settings(const ModelOptions& model, Settings& s) noexcept;

/* Two liquids: exactly the robust factor and limit with the initialisation index 1, where the model asks for
 * it. */
void apply_liquid_settings(const ModelOptions& model, int index, Settings& s) noexcept;

/*
 * A flash at vapour fraction W. Where the factor is exactly 1 and the model asks for it: robust, 1 - 0.9 W, and
 * 200 iterations at least. A cold start takes a tenth of the factor and ten times the iterations of the record.
 */
void apply_quality_settings(const ModelOptions& model, double W, bool cold, Settings& s) noexcept;

// Where a search for a temperature starts without an estimate, K; and the first option code 4.
inline constexpr double kDefaultTemperature = 298.15, kColdStartTemperature = 25.0;

/*
 * The temperature (K) at which a flash at a vapour fraction starts: the estimate; for the first option code 4
 * always the same one; without an estimate (0), for the first code 7 and the second 40, the mean of the boiling
 * points of the feed z (0.7 of the critical temperature where there is none); 298.15 K instead of one below
 * TMIN.
 */
double starting_temperature(const ModelOptions& model, const MixtureRecord& mixture, const double* z,
                            double estimate) noexcept;

}  // namespace kestrune::flash

#endif
