// Exports: phase envelope and critical point. Their cores come with later versions: the
// outputs that have to be zeroed are, and KV_NOT_AVAILABLE is returned.

#include <algorithm>

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

KV_ENTRY StatusCode KV_CALL PhaseEnvelope(const double* z, MixtureRecord* mixture, const ModelRoutines*,
                                          int32_t, double, double, double, int32_t, int32_t capacity, double,
                                          double, double* T, double* P, double* kind, int32_t* number_of_points,
                                          int32_t* number_of_critical_points, double* cricondentherm_T,
                                          double* cricondentherm_P, double* cricondenbar_T,
                                          double* cricondenbar_P) {
  for (double* array : {T, P, kind})
    if (array != nullptr && capacity > 0) std::fill_n(array, capacity, 0.0);
  for (double* value : {cricondentherm_T, cricondentherm_P, cricondenbar_T, cricondenbar_P}) zero(value);
  for (int32_t* count : {number_of_points, number_of_critical_points})
    if (count != nullptr) *count = 0;
  return not_available(z, mixture, KV_OK, T, P, kind, number_of_points, number_of_critical_points,
                       cricondentherm_T, cricondentherm_P, cricondenbar_T, cricondenbar_P);
}

KV_ENTRY StatusCode KV_CALL CriticalPoint(const double* z, MixtureRecord* mixture, int32_t, double* Tc,
                                          double* Pc, double* Vc, double* Zc) {
  return not_available(z, mixture, KV_OK, Tc, Pc, Vc, Zc);
}
