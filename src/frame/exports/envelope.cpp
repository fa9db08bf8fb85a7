// Exports: phase envelope and critical point.

#include "envelope/envelope.hpp"

#include <algorithm>

#include "envelope/critical.hpp"
#include "frame/exports/flash_wrapper.hpp"
#include "kestrune/kvgasthermo.h"

namespace {

using namespace kestrune;
using frame::guarded;

void zero(double* value) {
  if (value != nullptr) *value = 0.0;
}

}  // namespace

KV_ENTRY StatusCode KV_CALL PhaseEnvelope(const double* z, MixtureRecord* mixture,
                                          const ModelRoutines* routines, int32_t, double first_P, double max_P,
                                          double min_T, int32_t points, int32_t capacity, double fraction,
                                          double accuracy, double* T, double* P, double* kind,
                                          int32_t* number_of_points, int32_t* number_of_critical_points,
                                          double* cricondentherm_T, double* cricondentherm_P,
                                          double* cricondenbar_T, double* cricondenbar_P) {
  for (double* array : {T, P, kind})
    if (array != nullptr && capacity > 0) std::fill_n(array, capacity, 0.0);
  for (double* value : {cricondentherm_T, cricondentherm_P, cricondenbar_T, cricondenbar_P}) zero(value);
  for (int32_t* count : {number_of_points, number_of_critical_points})
    if (count != nullptr) *count = 0;
  return guarded([&]() -> StatusCode {
    const StatusCode bad = frame::first_failure(
        {frame::check_pointers(T, P, kind, number_of_points, number_of_critical_points, cricondentherm_T,
                               cricondentherm_P, cricondenbar_T, cricondenbar_P),
         frame::check_feed(z, mixture)});
    if (bad != KV_OK) return bad;
    flash::HostRoutines host = exports::foreign_routines(routines);
    host.final = false;
    return exports::told(
        host, envelope::phase_envelope({z, mixture, &host, first_P, max_P, min_T, points, capacity, fraction,
                                        accuracy, T, P, kind, number_of_points, number_of_critical_points,
                                        cricondentherm_T, cricondentherm_P, cricondenbar_T, cricondenbar_P}));
  });
}

KV_ENTRY StatusCode KV_CALL CriticalPoint(const double* z, MixtureRecord* mixture, int32_t, double* Tc,
                                          double* Pc, double* Vc, double* Zc) {
  return guarded([&]() -> StatusCode {
    const StatusCode bad =
        frame::first_failure({frame::check_pointers(Tc, Pc, Vc, Zc), frame::check_feed(z, mixture)});
    if (bad != KV_OK) return bad;
    envelope::Critical point;
    const StatusCode status = envelope::critical_point(*mixture, z, point);
    if (status != KV_OK) return status;
    *Tc = point.T;
    *Pc = point.P;
    *Vc = point.V;
    *Zc = point.Z;
    return KV_OK;
  });
}
