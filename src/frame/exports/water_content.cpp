// Exports: water dew points, humidity and hydrates.

#include "flash/settings.hpp"
#include "frame/cas.hpp"
#include "frame/exports/context.hpp"
#include "frame/exports/flash_wrapper.hpp"
#include "kestrune/kvgasthermo.h"
#include "support/status.hpp"
#include "water/dew.hpp"
#include "water/hydrate.hpp"
#include "water/wet_gas.hpp"

namespace {

using namespace kestrune;
using exports::context_of;
using frame::first_failure;

// The first unusable argument, or KV_OK.
template <class... Pointers>
StatusCode check(StatusCode condition, const double* z, const MixtureRecord* mixture,
                 const Pointers*... outputs) {
  return first_failure({condition, frame::check_pointers(outputs...), frame::check_feed(z, mixture)});
}

/*
 * Of a dew point: what could not be read at all, then a feed that does not sum to one, as an empty one, then
 * one without water, then the rest.
 */
template <class... Pointers>
StatusCode check_dew(StatusCode condition, const double* z, const MixtureRecord* mixture,
                     const Pointers*... outputs) {
  const StatusCode readable = exports::check_readable(z, mixture, outputs...);
  if (readable != KV_OK) return readable;
  const StatusCode sum = flash::check_feed_sum(z, *mixture);
  if (sum != KV_OK) return sum;
  if (frame::find_cas(mixture->count, mixture->table, frame::WaterCas) == 0) return KV_NO_WATER;
  return check(condition, z, mixture);
}

StatusCode check_TP(double T, double P) {
  return first_failure({frame::check_temperature(T), frame::check_pressure(P)});
}

StatusCode dew_temperature(double P, const water::DewCall& call, double* T) {
  const StatusCode bad = check_dew(frame::check_pressure(P), call.z, call.context.record, T);
  return bad != KV_OK ? bad : water::dew_temperature(call, P, *T);
}

StatusCode dew_pressure(double T, const water::DewCall& call, double* P) {
  const StatusCode bad = check_dew(frame::check_temperature(T), call.z, call.context.record, P);
  return bad != KV_OK ? bad : water::dew_pressure(call, T, *P);
}

StatusCode dew_line(const water::DewCall& call, double min_P, double max_P, int points, double* T, double* P,
                    int32_t* status, int32_t* found) {
  const StatusCode bad = check_dew(KV_OK, call.z, call.context.record, T, P, status, found);
  return bad != KV_OK ? bad : water::dew_line(call, min_P, max_P, points, T, P, status, *found);
}

StatusCode humidity(double T, double P, int method, const double* z, MixtureRecord* mixture,
                    double* water_fraction, double* water_content) {
  for (double* value : {water_fraction, water_content})
    if (value != nullptr) *value = 0.0;
  const StatusCode bad = check(check_TP(T, P), z, mixture, water_fraction, water_content);
  return bad != KV_OK ? bad
                      : water::humidity(T, P, method, z, context_of(mixture), *water_fraction, *water_content);
}

// With the switch on, the equation of state is the first method and the chart the second.
StatusCode wet_gas(double T, double P, const double* z, bool both, int method, MixtureRecord* mixture,
                   double* wet) {
  const StatusCode bad = check(check_TP(T, P), z, mixture, wet);
  if (bad != KV_OK) return bad;
  const eos::Context context = context_of(mixture);
  const StatusCode first = water::wet_gas(T, P, both ? 1 : method, z, context, wet);
  const bool final_status =
      first == KV_OK || first == KV_NO_WATER || first == KV_NO_WATER_LIMIT || first == support::kOnlyOtherRoot;
  return both && !final_status ? water::wet_gas(T, P, 2, z, context, wet) : first;
}

StatusCode hydrate_line(const double* z, int kind, double M, double percent, int points, MixtureRecord* mixture,
                        double* T, double* P) {
  if (kind == 5 && !(M > 0.0)) return KV_INHIBITOR_MASS;
  if (points <= 0) return KV_OK;
  StatusCode bad = frame::check_pointers(mixture, T, P);
  if (bad == KV_OK && mixture->count > KV_MAX_COMPONENTS) bad = KV_COMPONENT_COUNT;
  if (bad == KV_OK && mixture->count > 0) bad = frame::check_pointers(z, mixture->table);
  if (bad == KV_OK) water::hydrate_line(z, kind, M, percent, points, *mixture, T, P);
  return bad;
}

}  // namespace

KV_ENTRY StatusCode KV_CALL WaterDewTemperature(double P, const double* z, int32_t method, int32_t, int32_t,
                                                MixtureRecord* mixture, int32_t, double* T)
    KV_GUARDS(dew_temperature(P, {z, method, context_of(mixture)}, T));

KV_ENTRY StatusCode KV_CALL WaterDewPressure(double T, const double* z, int32_t method, int32_t, int32_t,
                                             MixtureRecord* mixture, int32_t, double* P)
    KV_GUARDS(dew_pressure(T, {z, method, context_of(mixture)}, P));

KV_ENTRY StatusCode KV_CALL WaterDewLine(const double* z, int32_t method, int32_t, int32_t,
                                         MixtureRecord* mixture, int32_t, double min_P, double max_P,
                                         int32_t points, double* T, double* P, int32_t* status, int32_t* found)
    KV_GUARDS(dew_line({z, method, context_of(mixture)}, min_P, max_P, points, T, P, status, found));

KV_ENTRY StatusCode KV_CALL Humidity(double T, double P, int32_t method, const double* z,
                                     MixtureRecord* mixture, double* water_fraction, double* water_content)
    KV_GUARDS(humidity(T, P, method, z, mixture, water_fraction, water_content));

KV_ENTRY StatusCode KV_CALL WetGasComposition(double T, double P, const double* z, int32_t method_switch,
                                              int32_t method, int32_t, MixtureRecord* mixture, int32_t,
                                              double* wet)
    KV_GUARDS(wet_gas(T, P, z, method_switch == 1, method, mixture, wet));

KV_ENTRY StatusCode KV_CALL HydrateLine(const double* z, int32_t kind, double M, double percent, int32_t points,
                                        MixtureRecord* mixture, int32_t, double* T, double* P)
    KV_GUARDS(hydrate_line(z, kind, M, percent, points, mixture, T, P));
