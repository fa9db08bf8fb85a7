// Points of a given vapour fraction with free water.
#ifndef KESTRUNE_FLASH_WET_WET_QUALITY_HPP
#define KESTRUNE_FLASH_WET_WET_QUALITY_HPP

#include "flash/quality/quality_flash.hpp"

namespace kestrune::flash {

/*
 * As quality_flash, of a feed that has free water and is no single component: x is the whole liquid, W the part
 * of the feed that is gas. At W = 1 the incipient liquid may be water alone.
 */
StatusCode wet_quality(const QualityCall& call);

}  // namespace kestrune::flash

#endif
