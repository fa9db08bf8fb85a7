// Exports: flashes of three phases and of two liquids. The cores of the three-phase flashes come with later
// versions: after the checks of their arguments they return KV_NOT_AVAILABLE and leave the results alone.

#include "flash3/liquid_liquid.hpp"
#include "flash3/three_phase.hpp"
#include "frame/exports/flash_wrapper.hpp"
#include "kestrune/kvgasthermo.h"

namespace {

using namespace kestrune;

// The first unusable argument of a flash, or KV_OK.
template <class... Pointers>
StatusCode check_flash(StatusCode first, StatusCode second, const double* z, const MixtureRecord* mixture,
                       const Pointers*... outputs) {
  const StatusCode bad = frame::first_failure({first, second, frame::check_pointers(z, mixture, outputs...)});
  return bad != KV_OK ? bad : frame::check_feed(z, mixture);
}

template <class... Pointers>
StatusCode not_available(StatusCode first, StatusCode second, const double* z, const MixtureRecord* mixture,
                         const Pointers*... outputs) {
  return frame::guarded([&]() -> StatusCode {
    const StatusCode bad = check_flash(first, second, z, mixture, outputs...);
    return bad != KV_OK ? bad : KV_NOT_AVAILABLE;
  });
}

// A phase that vanished is no failure.
StatusCode hide_vanished(StatusCode status) {
  return status == KV_LV_ANSWER || status == KV_LL_ANSWER ? StatusCode{KV_OK} : status;
}

/*
 * The wrapper of the three-phase flashes: flags byte, water, one retry without free water above water's critical
 * pressure, and the liquid that is marked moved to B. core() runs the flash with the record as it then stands.
 */
template <class Core>
StatusCode three_phase_wrapper(double P, MixtureRecord& mixture, const flash3::ThreePhaseResult& out,
                               Core core) {
  const exports::FlagsKeeper keeper(mixture);
  const std::int32_t iw = exports::locate_water(mixture);
  StatusCode status = hide_vanished(core());
  if (status != KV_OK && exports::free_water(mixture) && P > exports::water_critical_pressure(mixture, iw)) {
    mixture.flags = 0;
    status = hide_vanished(core());
  }
  if (status == KV_OK || status == KV_LV_ANSWER_DOUBTFUL) flash3::move_marked_liquid(mixture.count, out);
  return status;
}

}  // namespace

KV_ENTRY StatusCode KV_CALL FlashLLVatTP(double T, double P, const double* z, MixtureRecord* mixture,
                                         const ModelRoutines* routines, int32_t options, double* beta,
                                         double* V, double* xA, double* xB, double* y, double* KLL,
                                         double* KLV) {
  return frame::guarded([&]() -> StatusCode {
    const StatusCode bad = check_flash(frame::check_temperature(T), frame::check_pressure(P), z, mixture, beta,
                                       V, xA, xB, y, KLL, KLV);
    if (bad != KV_OK) return bad;
    const flash3::ThreePhaseResult out{beta, V, xA, xB, y, KLL, KLV};
    return three_phase_wrapper(P, *mixture, out, [&] {
      return flash3::three_phase_flash(
          {T, P, z, mixture, routines, exports::free_water(*mixture), (options & 1) != 0, out});
    });
  });
}

KV_ENTRY StatusCode KV_CALL FlashLLVatHP(double H, double P, const double* z, MixtureRecord* mixture,
                                         const ModelRoutines*, int32_t, double* T, double* beta, double* V,
                                         double* xA, double* xB, double* y, double* KLL, double* KLV,
                                         double* HA, double* HB, double* HV) {
  return not_available(frame::check_specified(H), frame::check_pressure(P), z, mixture, T, beta, V, xA, xB, y,
                       KLL, KLV, HA, HB, HV);
}

KV_ENTRY StatusCode KV_CALL FlashLLVatSP(double S, double P, const double* z, MixtureRecord* mixture,
                                         const ModelRoutines*, int32_t, double* T, double* beta, double* V,
                                         double* xA, double* xB, double* y, double* KLL, double* KLV,
                                         double* SA, double* SB, double* SV) {
  return not_available(frame::check_specified(S), frame::check_pressure(P), z, mixture, T, beta, V, xA, xB, y,
                       KLL, KLV, SA, SB, SV);
}

KV_ENTRY StatusCode KV_CALL FlashLLVatWP(double W, double P, const double* z, MixtureRecord* mixture,
                                         const ModelRoutines*, int32_t, double* T, double* beta, double* xA,
                                         double* xB, double* y, double* KLL, double* KLV) {
  return not_available(frame::check_specified(W), frame::check_pressure(P), z, mixture, T, beta, xA, xB, y, KLL,
                       KLV);
}

KV_ENTRY StatusCode KV_CALL FlashLLVatWT(double W, double T, const double* z, MixtureRecord* mixture,
                                         const ModelRoutines*, int32_t, double* P, double* beta, double* xA,
                                         double* xB, double* y, double* KLL, double* KLV) {
  return not_available(frame::check_specified(W), frame::check_temperature(T), z, mixture, P, beta, xA, xB, y,
                       KLL, KLV);
}

KV_ENTRY StatusCode KV_CALL FlashLLatTP(double T, double P, const double* z, MixtureRecord* mixture,
                                        const ModelRoutines* routines, int32_t options, double* beta,
                                        double* liquid1, double* liquid2, double* K) {
  return frame::guarded([&]() -> StatusCode {
    const StatusCode bad = frame::first_failure({frame::check_temperature(T), frame::check_pressure(P),
                                                 frame::check_pointers(z, mixture, beta, liquid1, liquid2, K),
                                                 frame::check_feed(z, mixture)});
    if (bad != KV_OK) return bad;
    return flash3::liquid_liquid_flash({T, P, z, mixture, routines, exports::free_water(*mixture),
                                        (options & 1) != 0, beta, liquid1, liquid2, K});
  });
}
