// Exports: phase envelope and critical point.

#include "envelope/envelope.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "envelope/critical.hpp"
#include "frame/exports/context.hpp"
#include "frame/exports/flash_wrapper.hpp"
#include "frame/messages.hpp"
#include "frame/platform.hpp"
#include "kestrune/kvgasthermo.h"

namespace {

using namespace kestrune;
using exports::context_of;

// The outputs are empty whatever comes of the call.
void clear(const envelope::EnvelopeCall& c) {
  for (double* array : {c.T, c.P, c.kind})
    if (array != nullptr && c.capacity > 0) std::fill_n(array, c.capacity, 0.0);
  for (double* value : {c.therm_T, c.therm_P, c.bar_T, c.bar_P})
    if (value != nullptr) *value = 0.0;
  for (int32_t* count : {c.number, c.criticals})
    if (count != nullptr) *count = 0;
}

// Tells the user why points are as traced: knots that no spline goes through.
void show_fit(support::SplineFit fit) {
  const char* text = fit == support::SplineFit::too_few ? "Phase envelope: too few points for a spline."
                     : fit == support::SplineFit::not_increasing
                         ? "Phase envelope: two points of the curve coincide; points as traced are returned."
                         : "Phase envelope: a point of the curve is not finite; points as traced are returned.";
  constexpr char kCaption[] = "Kestrune";
  const std::int32_t style = frame::kMessageStyleError, further = 1;
  frame::ShowLibraryMessage(platform::active_window(), text, std::strlen(text), kCaption, sizeof kCaption - 1,
                            style, further);
}

StatusCode phase_envelope(envelope::EnvelopeCall call, const ModelRoutines* routines) {
  clear(call);
  const StatusCode bad =
      frame::first_failure({frame::check_pointers(call.T, call.P, call.kind, call.number, call.criticals,
                                                  call.therm_T, call.therm_P, call.bar_T, call.bar_P),
                            frame::check_feed(call.z, call.context.record)});
  if (bad != KV_OK) return bad;
  flash::HostRoutines host = exports::routines_of_call(routines, call.context.record->count, 4);
  host.final = false;
  call.routines = &host;
  support::SplineFit fit;
  const StatusCode status = envelope::phase_envelope(call, fit);
  if (fit != support::SplineFit::good) show_fit(fit);
  return exports::told(host, status);
}

StatusCode critical_point(const double* z, MixtureRecord* mixture, double* Tc, double* Pc, double* Vc,
                          double* Zc) {
  const StatusCode bad =
      frame::first_failure({frame::check_pointers(Tc, Pc, Vc, Zc), frame::check_feed(z, mixture)});
  if (bad != KV_OK) return bad;
  envelope::Critical point;
  const StatusCode status = envelope::critical_point(context_of(mixture), z, point);
  if (status != KV_OK) return status;
  for (const double value : {point.T, point.P, point.V, point.Z})
    if (!std::isfinite(value)) return KV_NOT_FINITE;
  *Tc = point.T;
  *Pc = point.P;
  *Vc = point.V;
  *Zc = point.Z;
  return KV_OK;
}

}  // namespace

KV_ENTRY StatusCode KV_CALL PhaseEnvelope(const double* z, MixtureRecord* mixture,
                                          const ModelRoutines* routines, int32_t, double first_P, double max_P,
                                          double min_T, int32_t points, int32_t capacity, double fraction,
                                          double accuracy, double* T, double* P, double* kind,
                                          int32_t* number_of_points, int32_t* number_of_critical_points,
                                          double* cricondentherm_T, double* cricondentherm_P,
                                          double* cricondenbar_T, double* cricondenbar_P)
    KV_GUARDS(phase_envelope({z, context_of(mixture), nullptr, first_P, max_P, min_T, points, capacity,
                              fraction, accuracy, T, P, kind, number_of_points, number_of_critical_points,
                              cricondentherm_T, cricondentherm_P, cricondenbar_T, cricondenbar_P},
                             routines));

KV_ENTRY StatusCode KV_CALL CriticalPoint(const double* z, MixtureRecord* mixture, int32_t, double* Tc,
                                          double* Pc, double* Vc, double* Zc)
    KV_GUARDS(critical_point(z, mixture, Tc, Pc, Vc, Zc));
