// Flashes of two liquids and a vapour at a given vapour fraction: the temperature at a pressure, or the
// reverse.
#ifndef KESTRUNE_FLASH3_THREE_QUALITY_HPP
#define KESTRUNE_FLASH3_THREE_QUALITY_HPP

#include "flash/quality/quality_flash.hpp"
#include "flash3/three_phase.hpp"

namespace kestrune::flash3 {

struct ThreeQualityCall : flash::Feed {
  flash::Find find = flash::Find::temperature;
  double W = 0.0;             // below 0 counts as 0, above 1 as 1
  double given = 0.0;         // P (atm) or T (K)
  double* unknown = nullptr;  // in/out, K or atm; not greater than 0: a start of the flash's own
  ThreePhaseResult out = {};  // V receives W
};

/*
 * The equilibrium of a vapour of fraction W with one or two liquids: KV_OK, without marks. W = 0: a bubble
 * point, with the incipient vapour over one liquid or two; W = 1: a dew point, with the incipient liquid.
 * Where several exist, the one that is nearest to the first two-phase point from low pressure.
 * KV_NO_SATURATION: none was met among states of up to three phases. Others: of the model and of the
 * two-phase flash. On failure the results keep what they held, but for KV_UNSTABLE_POINT with free water,
 * which comes with its point.
 */
StatusCode three_quality_flash(const ThreeQualityCall& call);

}  // namespace kestrune::flash3

#endif
