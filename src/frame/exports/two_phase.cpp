// Exports: flashes of two phases.

#include "flash/energy/energy_flash.hpp"
#include "flash/isothermal/isothermal.hpp"
#include "flash/quality/quality_flash.hpp"
#include "frame/exports/context.hpp"
#include "frame/exports/flash_wrapper.hpp"
#include "kestrune/kvgasthermo.h"

namespace {

using namespace kestrune;
using exports::feed_of;
using frame::first_failure;

// The first unusable argument of a flash, or KV_OK.
template <class... Pointers>
StatusCode check_flash(const double* z, const MixtureRecord* mixture, const Pointers*... outputs) {
  const StatusCode status = frame::check_pointers(z, mixture, outputs...);
  return status != KV_OK ? status : frame::check_feed(z, mixture);
}

// Where a flash of two phases starts: the option says cold. A hint is started from, which makes no warm start of it.
flash::Start start_of(int32_t options, bool hint) {
  return hint ? flash::Start::cold_with_hint : (options & 1) != 0 ? flash::Start::cold : flash::Start::warm;
}

// At enthalpy or entropy; free water and the start are filled in here.
StatusCode energy_flash(flash::EnergyCall call, const ModelRoutines* routines, int32_t options) {
  const StatusCode bad = first_failure({frame::check_specified(call.wanted), frame::check_pressure(call.P),
                                        check_flash(call.z, call.context.record, call.T, call.beta, call.x,
                                                    call.y, call.K, call.liquid, call.vapour)});
  if (bad != KV_OK) return bad;
  flash::HostRoutines host = exports::routines_of_call(routines, call.context.record->count);
  call.routines = &host;
  call.index = options & 1;
  const auto core = [&](bool hint) {
    call.free_water = exports::free_water(*call.context.record);
    call.start = start_of(options, hint);
    return flash::energy_flash(call);
  };
  return exports::two_phase_wrapper(call.P, call.z, *call.context.record, host, options,
                                    {call.beta, call.x, call.y}, core);
}

// At vapour fraction: the core alone, which finds water by itself.
StatusCode quality_flash(flash::QualityCall call, const ModelRoutines* routines, int32_t options) {
  const StatusCode bad =
      first_failure({frame::check_specified(call.W), exports::check_given(call),
                     check_flash(call.z, call.context.record, call.unknown, call.x, call.y, call.K)});
  if (bad != KV_OK) return bad;
  flash::HostRoutines host = exports::routines_of_call(routines, call.context.record->count);
  call.routines = &host;
  call.start = start_of(options, false);
  call.free_water = exports::wet_feed(*call.context.record, call.z);
  return exports::run_search(host, [&] { return flash::quality_flash(call); });
}

// At temperature and pressure.
StatusCode isothermal_flash(flash::IsothermalCall call, const ModelRoutines* routines, int32_t options) {
  const StatusCode bad =
      first_failure({frame::check_temperature(call.T), frame::check_pressure(call.P),
                     check_flash(call.z, call.context.record, call.beta, call.x, call.y, call.K)});
  if (bad != KV_OK) return bad;
  flash::HostRoutines host = exports::routines_of_call(routines, call.context.record->count);
  call.routines = &host;
  call.index = options & 1;
  const auto core = [&](bool hint) {
    call.free_water = exports::free_water(*call.context.record);
    call.start = start_of(options, hint);
    return flash::isothermal_flash(call);
  };
  return exports::two_phase_wrapper(call.P, call.z, *call.context.record, host, options,
                                    {call.beta, call.x, call.y}, core);
}

}  // namespace

KV_ENTRY StatusCode KV_CALL FlashLVatTP(double T, double P, const double* z, MixtureRecord* mixture,
                                        const ModelRoutines* routines, int32_t options, double* beta, double* x,
                                        double* y, double* K)
    KV_GUARDS(isothermal_flash({feed_of(z, mixture), T, P, beta, x, y, K}, routines, options));

KV_ENTRY StatusCode KV_CALL FlashLVatHP(double H, double P, const double* z, MixtureRecord* mixture,
                                        const ModelRoutines* routines, int32_t options, double* T, double* beta,
                                        double* x, double* y, double* K, double* HL, double* HV)
    KV_GUARDS(energy_flash({feed_of(z, mixture), flash::Property::enthalpy, H, P, T, beta, x, y, K, HL, HV},
                           routines, options));

KV_ENTRY StatusCode KV_CALL FlashLVatSP(double S, double P, const double* z, MixtureRecord* mixture,
                                        const ModelRoutines* routines, int32_t options, double* T, double* beta,
                                        double* x, double* y, double* K, double* SL, double* SV)
    KV_GUARDS(energy_flash({feed_of(z, mixture), flash::Property::entropy, S, P, T, beta, x, y, K, SL, SV},
                           routines, options));

KV_ENTRY StatusCode KV_CALL FlashLVatWP(double W, double P, const double* z, MixtureRecord* mixture,
                                        const ModelRoutines* routines, int32_t options, double* T, double* x,
                                        double* y, double* K)
    KV_GUARDS(quality_flash({feed_of(z, mixture), flash::Find::temperature, W, P, T, x, y, K}, routines,
                            options));

KV_ENTRY StatusCode KV_CALL FlashLVatWT(double W, double T, const double* z, MixtureRecord* mixture,
                                        const ModelRoutines* routines, int32_t options, double* P, double* x,
                                        double* y, double* K)
    KV_GUARDS(quality_flash({feed_of(z, mixture), flash::Find::pressure, W, T, P, x, y, K}, routines, options));
