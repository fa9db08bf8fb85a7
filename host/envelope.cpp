#include "envelope.hpp"

#include <algorithm>
#include <cmath>

#include "units.hpp"

namespace kestrune::host {

namespace {

constexpr int kTracedCapacity = 2000;

CurvePlace place(double T, double P) {
  return {T, P * kAtmInPa};
}

Piece::Kind kind_of(const Curve& curve, double kind) {
  if (curve.fraction < 1.0) return kind >= 2.0 ? Piece::Kind::not_stable : Piece::Kind::quality;
  if (kind == 4.0) return Piece::Kind::liquids;
  if (kind >= 2.0) return Piece::Kind::not_stable;
  return kind == 0.0 ? Piece::Kind::bubble : Piece::Kind::dew;
}

bool is_critical(const Curve& curve, std::size_t k) {
  const double kind = curve.points[k].kind;
  if (kind != 0.5) return false;
  return curve.fraction != 0.5 || k + 1 == curve.points.size();
}

}  // namespace

Curve trace_curve(const Exports& library, Mixture& mixture, double fraction, const CurveLimits& limits,
                  int points) {
  const int capacity = std::max(points, kTracedCapacity);
  std::vector<double> T(static_cast<std::size_t>(capacity)), P(T.size()), kind(T.size());
  std::int32_t count = 0, criticals = 0;
  double e[4] = {};
  Curve curve{fraction, KV_OK, {}, {}, {}};
  curve.status =
      library.PhaseEnvelope(mixture.z.data(), &mixture.record, nullptr, 0, limits.first_P / kAtmInPa,
                            limits.highest_P / kAtmInPa, limits.lowest_T, points, capacity, fraction, 0.0,
                            T.data(), P.data(), kind.data(), &count, &criticals, e, e + 1, e + 2, e + 3);
  for (std::size_t k = 0; k < static_cast<std::size_t>(std::clamp(count, 0, capacity)); ++k) {
    curve.points.push_back({T[k], P[k] * kAtmInPa, kind[k]});
  }
  curve.cricondentherm = place(e[0], e[1]);
  curve.cricondenbar = place(e[2], e[3]);
  return curve;
}

MixtureCritical critical_point(const Exports& library, Mixture& mixture) {
  MixtureCritical c{KV_OK, 0.0, 0.0, 0.0, 0.0};
  c.status = library.CriticalPoint(mixture.z.data(), &mixture.record, 0, &c.T, &c.P, &c.V, &c.Z);
  c.P *= kAtmInPa;
  c.V *= 1e-6;
  return c;
}

std::vector<CurvePlace> critical_places(const Curve& curve) {
  std::vector<CurvePlace> places;
  for (std::size_t k = 0; k < curve.points.size(); ++k)
    if (is_critical(curve, k)) places.push_back({curve.points[k].T, curve.points[k].P});
  std::sort(places.begin(), places.end(), [](const CurvePlace& a, const CurvePlace& b) { return a.T > b.T; });
  return places;
}

bool curve_is_good(StatusCode status) {
  return status == KV_OK || status == KV_ENVELOPE_OPEN || status == KV_ENVELOPE_COLD ||
         status == KV_ENVELOPE_LIQUIDS;
}

std::string kind_in_words(const Curve& curve, const CurvePoint& point) {
  const auto k = static_cast<std::size_t>(&point - curve.points.data());
  if (is_critical(curve, k)) return "critical";
  const bool stable = point.kind < 2.0 || point.kind == 4.0;
  const double kind = stable ? point.kind : point.kind - 2.0;
  const std::string word = curve.fraction < 1.0 ? "quality"
                           : kind == 4.0        ? "two liquids"
                           : kind == 1.0        ? "dew"
                                                : "bubble";
  return stable ? word : word + " (not stable)";
}

std::vector<Piece> pieces_of(const Curve& curve) {
  constexpr double kJump = 1.5;  // of ln P, 10 times as much of ln T: another part of the outline begins
  std::vector<Piece> pieces;
  for (std::size_t k = 0; k < curve.points.size(); ++k) {
    const CurvePoint& point = curve.points[k];
    const CurvePoint* before = k > 0 ? &curve.points[k - 1] : nullptr;
    const bool apart = before != nullptr &&
                       std::hypot(10.0 * std::log(point.T / before->T), std::log(point.P / before->P)) > kJump;
    // A critical point belongs to what comes before it.
    const Piece::Kind kind =
        is_critical(curve, k) && !pieces.empty() ? pieces.back().kind : kind_of(curve, point.kind);
    if (pieces.empty() || apart || kind != pieces.back().kind) {
      Piece next{kind, {}};
      if (!apart && before != nullptr) next.points.push_back(*before);
      pieces.push_back(next);
    }
    pieces.back().points.push_back(point);
  }
  return pieces;
}

}  // namespace kestrune::host
