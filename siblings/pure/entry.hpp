// What an entry of this library begins with.
#ifndef KESTRUNE_SIBLINGS_PURE_ENTRY_HPP
#define KESTRUNE_SIBLINGS_PURE_ENTRY_HPP

#include "edge/guard.hpp"
#include "kestrune/kvcmpdpurelite.h"

namespace kestrune::pure {

// Code of this library computes on the x87 unit in 32 bits only.
using FpGuard = edge::FpGuard<sizeof(void*) == 4>;

}  // namespace kestrune::pure

#endif
