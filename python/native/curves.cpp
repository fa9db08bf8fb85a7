// Envelopes, critical points, k_ij and hydrate curves.
#include <algorithm>

#include "envelope.hpp"
#include "kij.hpp"
#include "session.hpp"
#include "units.hpp"

using namespace kestrune;
using arrays::guarded;

extern "C" int32_t ka_envelope(KaMixture* mixture, double fraction, const double* limits, int32_t points,
                               int32_t capacity, double* T, double* P, double* kind, int32_t* found,
                               double* extremes, int32_t* status, char* text, int32_t size) {
  return guarded(text, size, [&] {
    const arrays::Turn turn(mixture->mixture, true);
    const host::CurveLimits range{limits[0], limits[1], limits[2]};
    const host::Curve curve = host::trace_curve(arrays::library(), mixture->mixture, fraction, range, points);
    *status = curve.status;
    *found = static_cast<std::int32_t>(curve.points.size());
    for (std::int32_t k = 0; k < std::min(*found, capacity); ++k) {
      const host::CurvePoint& point = curve.points[arrays::index(k)];
      T[k] = point.T;
      P[k] = point.P;
      kind[k] = point.kind;
    }
    const host::CurvePlace &therm = curve.cricondentherm, &bar = curve.cricondenbar;
    const double all[4] = {therm.T, therm.P, bar.T, bar.P};
    std::copy_n(all, 4, extremes);
    return 0;
  });
}

extern "C" int32_t ka_critical(KaMixture* mixture, double* values, int32_t* status, char* text, int32_t size) {
  return guarded(text, size, [&] {
    const arrays::Turn turn(mixture->mixture, true);
    const host::MixtureCritical c = host::critical_point(arrays::library(), mixture->mixture);
    *status = c.status;
    const double all[4] = {c.T, c.P, c.V, c.Z};
    for (int k = 0; k < 4; ++k) values[k] = c.status == KV_OK ? all[k] : host::kNone;
    return 0;
  });
}

extern "C" int32_t ka_kij(KaMixture* mixture, double T, double* kij, char* text, int32_t size) {
  return guarded(text, size, [&] {
    const arrays::Turn turn(mixture->mixture);
    const std::vector<double> all = host::binary_interactions(mixture->mixture, T);
    std::copy(all.begin(), all.end(), kij);
    return 0;
  });
}

extern "C" int32_t ka_hydrate(KaMixture* mixture, int32_t inhibitor, double molar_mass, double percent,
                              int32_t count, double* T, double* P, int32_t* status, char* text, int32_t size) {
  return guarded(text, size, [&] {
    host::Mixture& m = mixture->mixture;
    MixtureRecord record = m.record;
    *status =
        arrays::library().HydrateLine(m.z.data(), inhibitor, molar_mass, percent, count, &record, 0, T, P);
    for (std::int32_t k = 0; k < count; ++k) P[k] *= host::kAtmInPa;
    return 0;
  });
}
