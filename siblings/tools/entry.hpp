// What an entry of this library begins with.
#ifndef KESTRUNE_SIBLINGS_TOOLS_ENTRY_HPP
#define KESTRUNE_SIBLINGS_TOOLS_ENTRY_HPP

#include "edge/guard.hpp"
#include "kestrune/kvtoolslite.h"

namespace kestrune::tools {

// Code of this library computes on the x87 unit in 32 bits only.
using FpGuard = edge::FpGuard<sizeof(void*) == 4>;

}  // namespace kestrune::tools

#endif
