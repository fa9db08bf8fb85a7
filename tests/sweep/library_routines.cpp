// The library's own routines in the record of a host: as they are exported, and behind a routine that forwards
// every argument, as a wrapper or an import thunk of a host does.
#include <dlfcn.h>

#include "library.hpp"

namespace kestrune::sweep {
namespace {

// What is forwarded to; a routine of a host has no other way to know.
void* target[KV_ROUTINE_COUNT + 1] = {};
void *phi_of_gas = nullptr, *phi_of_liquid = nullptr;

// The routine of entry number, called through another address.
template <int number, class Function>
struct Forward;
template <int number, class... Arguments>
struct Forward<number, StatusCode(Arguments...)> {
  static StatusCode KV_CALL call(Arguments... arguments) {
    return reinterpret_cast<StatusCode(KV_CALL*)(Arguments...)>(target[number])(arguments...);
  }
};

StatusCode KV_CALL forward_phi(double T, double P, const double* x, MixtureRecord* mixture, int32_t phase,
                               int32_t option, int32_t mask, double* ln_phi, double* dT, double* dP,
                               double* dn) {
  const auto routine =
      reinterpret_cast<decltype(&GasPhi_Derivatives_PPR78)>(phase == KV_PHASE_GAS ? phi_of_gas : phi_of_liquid);
  return routine(T, P, x, mixture, option, mask, ln_phi, dT, dP, dn);
}

struct Entry {
  int number;
  const char* name;
  void* forward;
};

#define KV_FORWARD(number, name) \
  { number, #name, reinterpret_cast<void*>(&Forward<number, decltype(name)>::call) }
const Entry entries[] = {KV_FORWARD(KV_ROUTINE_LL_FLASH, FlashLLatTP),
                         KV_FORWARD(KV_ROUTINE_LV_FLASH, FlashLVatTP),
                         KV_FORWARD(KV_ROUTINE_LIQUID_ORDER, LiquidDensity_PPR78),
                         KV_FORWARD(KV_ROUTINE_GAS_ENTHALPY, GasMolarEnthalpy_PPR78),
                         KV_FORWARD(KV_ROUTINE_GAS_ENTROPY, GasMolarEntropy_PPR78),
                         KV_FORWARD(KV_ROUTINE_LIQUID_ENTHALPY, LiquidMolarEnthalpy_PPR78),
                         KV_FORWARD(KV_ROUTINE_LIQUID_ENTROPY, LiquidMolarEntropy_PPR78)};
#undef KV_FORWARD

}  // namespace

void Library::find_own_routines(void* handle) {
  const auto record = [&](OwnRoutines which) -> ModelRoutines& { return own_[static_cast<int>(which)]; };
  for (const Entry& e : entries) {
    const int at = e.number - 1;
    target[e.number] = record(OwnRoutines::exports).entry[at] = dlsym(handle, e.name);
    const bool flash = e.number == KV_ROUTINE_LL_FLASH || e.number == KV_ROUTINE_LV_FLASH;
    record(flash ? OwnRoutines::flashes : OwnRoutines::properties).entry[at] = e.forward;
    record(OwnRoutines::all).entry[at] = e.forward;
  }
  phi_of_gas = dlsym(handle, "GasPhi_Derivatives_PPR78");
  phi_of_liquid = dlsym(handle, "LiquidPhi_Derivatives_PPR78");
  record(OwnRoutines::all).entry[KV_ROUTINE_FUGACITY - 1] = reinterpret_cast<void*>(&forward_phi);
}

void Library::use(OwnRoutines which) {
  routines_ = which == OwnRoutines::none ? nullptr : &own_[static_cast<int>(which)];
}

}  // namespace kestrune::sweep
