// Exports: flashes of two phases.

#include "flash/isothermal.hpp"
#include "frame/exports/flash_wrapper.hpp"
#include "kestrune/kvgasthermo.h"

namespace {

using namespace kestrune;
using frame::first_failure;
using frame::guarded;

// The first unusable argument of a flash, or KV_OK.
template <class... Pointers>
StatusCode check_flash(const double* z, const MixtureRecord* mixture, const Pointers*... outputs) {
  const StatusCode status = frame::check_pointers(z, mixture, outputs...);
  return status != KV_OK ? status : frame::check_feed(z, mixture);
}

StatusCode not_available(bool) {
  return KV_NOT_AVAILABLE;
}

}  // namespace

KV_ENTRY StatusCode KV_CALL FlashLVatTP(double T, double P, const double* z, MixtureRecord* mixture,
                                        const ModelRoutines* routines, int32_t options, double* beta, double* x,
                                        double* y, double* K) {
  return guarded([&]() -> StatusCode {
    const StatusCode bad = first_failure(
        {frame::check_temperature(T), frame::check_pressure(P), check_flash(z, mixture, beta, x, y, K)});
    if (bad != KV_OK) return bad;
    const auto core = [&](bool hint) {
      flash::IsothermalCall call;
      call.T = T;
      call.P = P;
      call.z = z;
      call.mixture = mixture;
      call.routines = routines;
      call.free_water = exports::free_water(*mixture);
      call.index = options & 1;
      call.start = hint ? flash::Start::cold_with_hint : (call.index ? flash::Start::cold : flash::Start::warm);
      call.beta = beta;
      call.x = x;
      call.y = y;
      call.K = K;
      return flash::isothermal_flash(call);
    };
    return exports::two_phase_wrapper(P, z, *mixture, options, {beta, x, y}, core);
  });
}

// The cores of the flashes below come with later versions; their frames are complete.

KV_ENTRY StatusCode KV_CALL FlashLVatHP(double H, double P, const double* z, MixtureRecord* mixture,
                                        const ModelRoutines*, int32_t options, double* T, double* beta,
                                        double* x, double* y, double* K, double* HL, double* HV) {
  return guarded([&]() -> StatusCode {
    const StatusCode bad = first_failure({frame::check_specified(H), frame::check_pressure(P),
                                          check_flash(z, mixture, T, beta, x, y, K, HL, HV)});
    if (bad != KV_OK) return bad;
    return exports::two_phase_wrapper(P, z, *mixture, options, {beta, x, y}, not_available);
  });
}

KV_ENTRY StatusCode KV_CALL FlashLVatSP(double S, double P, const double* z, MixtureRecord* mixture,
                                        const ModelRoutines*, int32_t options, double* T, double* beta,
                                        double* x, double* y, double* K, double* SL, double* SV) {
  return guarded([&]() -> StatusCode {
    const StatusCode bad = first_failure({frame::check_specified(S), frame::check_pressure(P),
                                          check_flash(z, mixture, T, beta, x, y, K, SL, SV)});
    if (bad != KV_OK) return bad;
    return exports::two_phase_wrapper(P, z, *mixture, options, {beta, x, y}, not_available);
  });
}

KV_ENTRY StatusCode KV_CALL FlashLVatWP(double W, double P, const double* z, MixtureRecord* mixture,
                                        const ModelRoutines*, int32_t, double* T, double* x, double* y,
                                        double* K) {
  return guarded([&]() -> StatusCode {
    const StatusCode bad = first_failure(
        {frame::check_specified(W), frame::check_pressure(P), check_flash(z, mixture, T, x, y, K)});
    return bad != KV_OK ? bad : KV_NOT_AVAILABLE;
  });
}

KV_ENTRY StatusCode KV_CALL FlashLVatWT(double W, double T, const double* z, MixtureRecord* mixture,
                                        const ModelRoutines*, int32_t, double* P, double* x, double* y,
                                        double* K) {
  return guarded([&]() -> StatusCode {
    const StatusCode bad = first_failure(
        {frame::check_specified(W), frame::check_temperature(T), check_flash(z, mixture, P, x, y, K)});
    return bad != KV_OK ? bad : KV_NOT_AVAILABLE;
  });
}
