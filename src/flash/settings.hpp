// Flash settings of a call, as the record gives them and as the solvers use them.
#ifndef KESTRUNE_FLASH_SETTINGS_HPP
#define KESTRUNE_FLASH_SETTINGS_HPP

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

struct Settings {
  double CRIT, CLIM, EPS;
  double loose;  // CRIT^0.33, the second, looser level
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
Settings copy_settings(const MixtureRecord& mixture) noexcept;

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

}  // namespace kestrune::flash

#endif
