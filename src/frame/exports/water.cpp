// Exports: water dew points, humidity and hydrates. Their cores come with later versions: the
// outputs that have to be zeroed are, and KV_NOT_AVAILABLE is returned.

#include "frame/boundary.hpp"
#include "kestrune/kvgasthermo.h"

namespace {

using namespace kestrune;
using frame::guarded;

template <class... Pointers>
StatusCode not_available(const double* z, const MixtureRecord* mixture, StatusCode condition,
                         const Pointers*... outputs) {
  return guarded([&]() -> StatusCode {
    return frame::first_failure(
        {condition, frame::check_pointers(outputs...), frame::check_feed(z, mixture), KV_NOT_AVAILABLE});
  });
}

void zero(double* value) {
  if (value != nullptr) *value = 0.0;
}

}  // namespace

KV_ENTRY StatusCode KV_CALL WaterDewTemperature(double P, const double* z, int32_t, int32_t, int32_t,
                                                MixtureRecord* mixture, int32_t, double* T) {
  return not_available(z, mixture, frame::check_pressure(P), T);
}

KV_ENTRY StatusCode KV_CALL WaterDewPressure(double T, const double* z, int32_t, int32_t, int32_t,
                                             MixtureRecord* mixture, int32_t, double* P) {
  return not_available(z, mixture, frame::check_temperature(T), P);
}

KV_ENTRY StatusCode KV_CALL WaterDewLine(const double* z, int32_t, int32_t, int32_t, MixtureRecord* mixture,
                                         int32_t, double, double, int32_t, double* T, double* P,
                                         int32_t* status, int32_t* found) {
  return not_available(z, mixture, KV_OK, T, P, status, found);
}

KV_ENTRY StatusCode KV_CALL Humidity(double T, double P, int32_t, const double* z, MixtureRecord* mixture,
                                     double* water_fraction, double* water_content) {
  zero(water_fraction);
  zero(water_content);
  return not_available(z, mixture,
                       frame::first_failure({frame::check_temperature(T), frame::check_pressure(P)}),
                       water_fraction, water_content);
}

KV_ENTRY StatusCode KV_CALL WetGasComposition(double T, double P, const double* z, int32_t method_switch,
                                              int32_t, int32_t, MixtureRecord* mixture, int32_t, double* wet) {
  const StatusCode condition = frame::first_failure({frame::check_temperature(T), frame::check_pressure(P)});
  const auto method = [&] { return not_available(z, mixture, condition, wet); };
  const StatusCode first = method();
  const bool final_status = first == -1 || first == 0 || first == 1 || first == 4;
  return !final_status && method_switch == 1 ? method() : first;
}

KV_ENTRY StatusCode KV_CALL HydrateLine(const double* z, int32_t, double, double, int32_t,
                                        MixtureRecord* mixture, int32_t, double* T, double* P) {
  return not_available(z, mixture, KV_OK, T, P);
}
