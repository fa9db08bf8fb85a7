// The envelope of a single component: its vapour-pressure curve, bubble and dew points in one, up to its own
// critical point.

#include <algorithm>
#include <cmath>

#include "envelope/critical.hpp"
#include "envelope/envelope.hpp"
#include "envelope/outline.hpp"
#include "flash/feed.hpp"
#include "flash/pure/pure_saturation.hpp"

namespace kestrune::envelope {
namespace {

constexpr int kTraced = 60;  // points of the curve by itself

struct Curve {
  flash::QualityLine line;
  flash::LinePoint p;
  int j;
  double from, to;  // ln P of its ends
};

// ln T at ln P; false: the model has no two roots there.
bool temperature_at(Curve& c, double ln_P, double& ln_T, StatusCode& status) {
  c.p.X[c.line.P_index()] = ln_P;
  status = flash::pure_saturation(c.line, c.p, c.j, c.line.T_index());
  ln_T = c.p.X[c.line.T_index()];
  return status == KV_OK;
}

// ln P of count points evenly spaced in length, by the chords of the curve; the axes are scaled to its ends.
StatusCode even_pressures(Curve& c, double T_to, int count, double* ln_P) {
  double P[kTraced + 1], s[kTraced + 1], T_from = 0.0, before = 0.0;
  StatusCode status = KV_OK;
  if (!temperature_at(c, c.from, T_from, status)) return status;
  s[0] = 0.0;
  P[0] = c.from;
  before = T_from;
  for (int k = 1; k <= kTraced; ++k) {
    P[k] = c.from + (c.to - c.from) * k / kTraced;
    double T = T_to;
    if (k < kTraced && !temperature_at(c, P[k], T, status)) T = before;
    s[k] = s[k - 1] + std::hypot((T - before) / (T_to - T_from), 1.0 / kTraced);
    before = T;
  }
  for (int k = 0; k < count; ++k) {
    const double at = s[kTraced] * k / std::max(count - 1, 1);
    const int i = support::piece_of(kTraced + 1, s, at);
    ln_P[k] = P[i - 1] + (P[i] - P[i - 1]) * (at - s[i - 1]) / (s[i] - s[i - 1]);
  }
  return KV_OK;
}

StatusCode write_curve(Curve& c, const EnvelopeCall& call, const Critical& critical, bool whole,
                       support::Arena& arena) {
  const int wanted = call.points > 0 ? call.points : kTraced;
  const int count = std::min(wanted, call.capacity);
  double* ln_P = arena.take(static_cast<std::size_t>(count) + 1);
  flash::seal_line(c.line);
  StatusCode status = KV_OK;
  double T_to = std::log(critical.T);
  if (!whole && !temperature_at(c, c.to, T_to, status)) return status;
  status = even_pressures(c, T_to, count, ln_P);
  if (status != KV_OK) return status;
  *call.criticals = whole ? 1 : 0;
  if (whole) {
    *call.therm_T = *call.bar_T = critical.T;
    *call.therm_P = *call.bar_P = critical.P;
  }
  // By the numbers of a host a point may be colder than the limit all the same.
  const double coldest = std::log(call.lowest_T) - 1e-9;
  for (int k = 0; k < count; ++k) {
    int& at = *call.number;
    double ln_T;
    if (whole && k + 1 == count) {
      call.T[at] = critical.T;
      call.P[at] = critical.P;
      call.kind[at] = kCritical;
    } else if (temperature_at(c, ln_P[k], ln_T, status) && ln_T >= coldest) {
      call.T[at] = std::exp(ln_T);
      call.P[at] = std::exp(ln_P[k]);
      call.kind[at] = call.fraction;
    } else {
      continue;
    }
    ++at;
  }
  return wanted > call.capacity ? StatusCode{KV_ENVELOPE_FULL} : StatusCode{KV_OK};
}

}  // namespace

StatusCode vapour_pressure_curve(const EnvelopeCall& call, int j) {
  return support::with_arena<6, 160>(call.context.record->count, [&](support::Arena& arena) -> StatusCode {
    Curve c;
    c.j = j;
    c.line.W = 1.0;
    c.line.context = call.context;
    c.line.routines = call.routines;
    flash::open_line(arena, c.line);
    double* z = arena.zeros(c.line.ld);
    z[j] = 1.0;
    c.line.z = z;
    flash::take_point(arena, c.line, c.p);
    Critical critical;
    StatusCode status = critical_point(call.context, z, critical);
    if (status != KV_OK) return status;
    c.from = std::log(call.first_P);
    c.to = std::log(std::min(call.highest_P, critical.P));
    // The lowest temperature may cut it before the first pressure does.
    const auto mark = c.line.base = arena.mark();
    c.p.X[c.line.T_index()] = std::log(call.lowest_T);
    if (call.lowest_T >= critical.T) return KV_NO_SATURATION;
    if (flash::pure_saturation(c.line, c.p, j, c.line.P_index()) == KV_OK)
      c.from = std::max(c.from, c.p.X[c.line.P_index()]);
    arena.rewind(mark);
    if (c.from >= c.to) return KV_NO_SATURATION;
    return write_curve(c, call, critical, critical.P <= call.highest_P, arena);
  });
}

}  // namespace kestrune::envelope
