// Flashes at a given vapour fraction: the temperature at a pressure, or the pressure at a temperature.
#ifndef KESTRUNE_FLASH_QUALITY_QUALITY_FLASH_HPP
#define KESTRUNE_FLASH_QUALITY_QUALITY_FLASH_HPP

#include "flash/feed.hpp"
#include "flash/fugacity.hpp"

namespace kestrune::flash {

enum class Find { temperature, pressure };

struct QualityCall : Feed {
  Find find = Find::temperature;
  double W = 0.0;             // below 0 counts as 0, above 1 as 1
  double given = 0.0;         // P (atm) or T (K)
  double* unknown = nullptr;  // in/out, with x and y where it may start; not greater than 0: 298.15 K, 1 atm
  double *x = nullptr, *y = nullptr, *K = nullptr;
  bool walks = true;         // the line is followed from low pressure where nothing else leads to a point
  Counts* counts = nullptr;  // may be null
};

/*
 * KV_OK: the point, which has passed the gate (quality_state.hpp): balance and sums to 1e-12, ln fugacities
 * equal to 1e-8 at the point itself and mostly to 1e-10, two phases in truth; a bubble or dew point lies on the
 * boundary of stability. Where several exist, a cold start returns the one that is reached first along the line
 * from low pressure: the lower pressure at a temperature, for dew points the higher temperature at a pressure.
 * A warm start stays on the branch of its estimate; an estimate that leads far away counts as none.
 * KV_NO_SATURATION: there is none; KV_UNSTABLE_POINT: a point where the feed is not stable, because another
 * phase splits off before it. Others: of the model. On all but KV_OK and KV_UNSTABLE_POINT the results keep
 * what they held.
 */
StatusCode quality_flash(const QualityCall& call);

}  // namespace kestrune::flash

#endif
