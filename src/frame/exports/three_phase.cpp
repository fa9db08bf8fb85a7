// Exports: flashes of three phases and of two liquids.

#include <utility>

#include "flash/settings.hpp"
#include "flash3/liquid_liquid.hpp"
#include "flash3/three_energy.hpp"
#include "flash3/three_quality.hpp"
#include "frame/exports/context.hpp"
#include "frame/exports/flash_wrapper.hpp"
#include "kestrune/kvgasthermo.h"

namespace {

using namespace kestrune;
using exports::feed_of;

// The first unusable argument of a flash, or KV_OK. A feed that does not sum to one, an empty one among them, is
// passed on: its status comes from the flash, before what is wrong with the rest.
template <class... Pointers>
StatusCode check_flash(StatusCode first, StatusCode second, const double* z, const MixtureRecord* mixture,
                       const Pointers*... outputs) {
  const StatusCode readable = exports::check_readable(z, mixture, outputs...);
  if (readable != KV_OK || flash::check_feed_sum(z, *mixture) != KV_OK) return readable;
  return frame::first_failure({first, second, frame::check_feed(z, mixture)});
}

// A phase that vanished is no failure.
StatusCode hide_vanished(StatusCode status) {
  return status == KV_LV_ANSWER || status == KV_LL_ANSWER ? StatusCode{KV_OK} : status;
}

/*
 * The wrapper of the three-phase flashes: flags byte, water, one retry without free water above water's
 * critical pressure, and, whatever the status, the liquid that is marked moved to B, with the values A and B of
 * the liquids where there are any. core() runs the flash with the record as it then stands.
 */
template <class Core>
StatusCode three_phase_wrapper(double P, const double* z, MixtureRecord& mixture, flash::HostRoutines& host,
                               const flash3::ThreePhaseResult& out, double* A, double* B, Core core) {
  const exports::FlagsKeeper keeper(mixture);
  const std::int32_t iw = exports::locate_water(mixture, z);
  StatusCode status = hide_vanished(exports::run_core(host, core));
  if (exports::free_water(mixture) && exports::worth_a_retry(host, status) &&
      P > exports::water_critical_pressure(mixture, iw)) {
    mixture.flags = 0;
    status = hide_vanished(exports::run_core(host, core));
  }
  if (flash3::move_marked_liquid(mixture.count, out) && A != nullptr) std::swap(*A, *B);
  return exports::told(host, status);
}

// Where a flash of three phases starts: the option says that the results hold an estimate.
flash::Start start_of(int32_t options) {
  return (options & 1) != 0 ? flash::Start::warm : flash::Start::cold;
}

// At enthalpy or entropy; routines and free water are filled in here.
struct Values {
  double *A, *B, *vapour;
};

StatusCode energy_flash(flash3::ThreeEnergyCall call, const flash3::ThreePhaseResult& out, const Values& values,
                        const ModelRoutines* routines, int32_t options) {
  const StatusCode bad = check_flash(frame::check_specified(call.wanted), frame::check_pressure(call.P), call.z,
                                     call.context.record, call.T, out.beta, out.V, out.xA, out.xB, out.y,
                                     out.KLL, out.KLV, values.A, values.B, values.vapour);
  if (bad != KV_OK) return bad;
  flash::HostRoutines host = exports::routines_of_call(routines, call.context.record->count);
  call.routines = &host;
  call.out = out;
  call.A = values.A;
  call.B = values.B;
  call.vapour = values.vapour;
  call.start = start_of(options);
  return three_phase_wrapper(call.P, call.z, *call.context.record, host, out, values.A, values.B, [&] {
    call.free_water = exports::free_water(*call.context.record);
    return flash3::three_energy_flash(call);
  });
}

// At vapour fraction: the core alone, which finds water by itself.
StatusCode quality_flash(flash3::ThreeQualityCall call, flash3::ThreePhaseResult out,
                         const ModelRoutines* routines, int32_t options) {
  double V = call.W;
  out.V = &V;
  const StatusCode bad =
      check_flash(frame::check_specified(call.W), exports::check_given(call), call.z, call.context.record,
                  call.unknown, out.beta, out.xA, out.xB, out.y, out.KLL, out.KLV);
  if (bad != KV_OK) return bad;
  flash::HostRoutines host = exports::routines_of_call(routines, call.context.record->count, 2);
  call.routines = &host;
  call.out = out;
  call.start = start_of(options);
  call.free_water = exports::wet_feed(*call.context.record, call.z);
  return exports::run_search(host, [&] { return flash3::three_quality_flash(call); });
}

// At temperature and pressure.
StatusCode isothermal_flash(flash3::ThreePhaseCall call, const flash3::ThreePhaseResult& out,
                            const ModelRoutines* routines, int32_t options) {
  const StatusCode bad =
      check_flash(frame::check_temperature(call.T), frame::check_pressure(call.P), call.z, call.context.record,
                  out.beta, out.V, out.xA, out.xB, out.y, out.KLL, out.KLV);
  if (bad != KV_OK) return bad;
  flash::HostRoutines host = exports::routines_of_call(routines, call.context.record->count);
  call.routines = &host;
  call.out = out;
  call.start = start_of(options);
  return three_phase_wrapper(call.P, call.z, *call.context.record, host, out, nullptr, nullptr, [&] {
    call.free_water = exports::free_water(*call.context.record);
    return flash3::three_phase_flash(call);
  });
}

// Two liquids.
StatusCode liquid_liquid_flash(flash3::LiquidLiquidCall call, const ModelRoutines* routines, int32_t options) {
  const StatusCode bad = frame::first_failure(
      {frame::check_temperature(call.T), frame::check_pressure(call.P),
       frame::check_pointers(call.z, call.context.record, call.beta, call.liquid1, call.liquid2, call.K),
       frame::check_feed(call.z, call.context.record)});
  if (bad != KV_OK) return bad;
  const exports::FlagsKeeper keeper(*call.context.record);
  exports::locate_water(*call.context.record, call.z);
  flash::HostRoutines host = exports::routines_of_call(routines, call.context.record->count);
  call.routines = &host;
  call.free_water = exports::free_water(*call.context.record);
  call.start = start_of(options);
  return exports::run_and_tell(host, [&] { return flash3::liquid_liquid_flash(call); });
}

}  // namespace

KV_ENTRY StatusCode KV_CALL FlashLLVatTP(double T, double P, const double* z, MixtureRecord* mixture,
                                         const ModelRoutines* routines, int32_t options, double* beta,
                                         double* V, double* xA, double* xB, double* y, double* KLL, double* KLV)
    KV_GUARDS(isothermal_flash({feed_of(z, mixture), T, P}, {beta, V, xA, xB, y, KLL, KLV}, routines, options));

KV_ENTRY StatusCode KV_CALL FlashLLVatHP(double H, double P, const double* z, MixtureRecord* mixture,
                                         const ModelRoutines* routines, int32_t options, double* T,
                                         double* beta, double* V, double* xA, double* xB, double* y,
                                         double* KLL, double* KLV, double* HA, double* HB, double* HV)
    KV_GUARDS(energy_flash({feed_of(z, mixture), flash::Property::enthalpy, H, P, T},
                           {beta, V, xA, xB, y, KLL, KLV}, {HA, HB, HV}, routines, options));

KV_ENTRY StatusCode KV_CALL FlashLLVatSP(double S, double P, const double* z, MixtureRecord* mixture,
                                         const ModelRoutines* routines, int32_t options, double* T,
                                         double* beta, double* V, double* xA, double* xB, double* y,
                                         double* KLL, double* KLV, double* SA, double* SB, double* SV)
    KV_GUARDS(energy_flash({feed_of(z, mixture), flash::Property::entropy, S, P, T},
                           {beta, V, xA, xB, y, KLL, KLV}, {SA, SB, SV}, routines, options));

KV_ENTRY StatusCode KV_CALL FlashLLVatWP(double W, double P, const double* z, MixtureRecord* mixture,
                                         const ModelRoutines* routines, int32_t options, double* T,
                                         double* beta, double* xA, double* xB, double* y, double* KLL,
                                         double* KLV)
    KV_GUARDS(quality_flash({feed_of(z, mixture), flash::Find::temperature, W, P, T},
                            {beta, nullptr, xA, xB, y, KLL, KLV}, routines, options));

KV_ENTRY StatusCode KV_CALL FlashLLVatWT(double W, double T, const double* z, MixtureRecord* mixture,
                                         const ModelRoutines* routines, int32_t options, double* P,
                                         double* beta, double* xA, double* xB, double* y, double* KLL,
                                         double* KLV)
    KV_GUARDS(quality_flash({feed_of(z, mixture), flash::Find::pressure, W, T, P},
                            {beta, nullptr, xA, xB, y, KLL, KLV}, routines, options));

KV_ENTRY StatusCode KV_CALL FlashLLatTP(double T, double P, const double* z, MixtureRecord* mixture,
                                        const ModelRoutines* routines, int32_t options, double* beta,
                                        double* liquid1, double* liquid2, double* K)
    KV_GUARDS(liquid_liquid_flash({feed_of(z, mixture), T, P, beta, liquid1, liquid2, K}, routines, options));
