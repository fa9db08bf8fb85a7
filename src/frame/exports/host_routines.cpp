// Which routines of a record are the library's own exports.

#include "frame/exports/flash_wrapper.hpp"
#include "kestrune/kvgasthermo.h"

namespace kestrune::exports {

flash::HostRoutines foreign_routines(const ModelRoutines* record) {
  struct Own {
    int number;
    void* address;
  };
  // The fugacity routine has no export of its argument list.
  const Own own[] = {
      {KV_ROUTINE_LL_FLASH, reinterpret_cast<void*>(&FlashLLatTP)},
      {KV_ROUTINE_LV_FLASH, reinterpret_cast<void*>(&FlashLVatTP)},
      {KV_ROUTINE_LIQUID_ORDER, reinterpret_cast<void*>(&LiquidDensity_PPR78)},
      {KV_ROUTINE_GAS_ENTHALPY, reinterpret_cast<void*>(&GasMolarEnthalpy_PPR78)},
      {KV_ROUTINE_GAS_ENTROPY, reinterpret_cast<void*>(&GasMolarEntropy_PPR78)},
      {KV_ROUTINE_LIQUID_ENTHALPY, reinterpret_cast<void*>(&LiquidMolarEnthalpy_PPR78)},
      {KV_ROUTINE_LIQUID_ENTROPY, reinterpret_cast<void*>(&LiquidMolarEntropy_PPR78)},
  };
  flash::HostRoutines host(record);
  for (const Own& o : own)
    if (host.entry[o.number - 1] == o.address) host.entry[o.number - 1] = nullptr;
  return host;
}

}  // namespace kestrune::exports
