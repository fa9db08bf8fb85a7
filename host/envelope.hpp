// Phase envelopes, quality lines and critical points of a mixture, from the library's exports.
#ifndef KESTRUNE_HOST_ENVELOPE_HPP
#define KESTRUNE_HOST_ENVELOPE_HPP

#include <string>
#include <vector>

#include "mixture.hpp"

namespace kestrune::host {

// One point of a curve; kind as PhaseEnvelope returns it.
struct CurvePoint {
  double T, P;  // K, Pa
  double kind;
};

// A place on a curve, absent where T is 0.
struct CurvePlace {
  double T = 0.0, P = 0.0;  // K, Pa
  bool found() const { return T > 0.0; }
};

struct Curve {
  double fraction;  // 1: bubble and dew, else the vapour fraction of the line
  StatusCode status;
  std::vector<CurvePoint> points;
  CurvePlace cricondentherm, cricondenbar;
};

struct MixtureCritical {
  StatusCode status;
  double T, P, V, Z;  // K, Pa, m3/mol
};

// Limits of the curves, 0 for the library's defaults. K, Pa.
struct CurveLimits {
  double first_P = 0.0, highest_P = 0.0, lowest_T = 0.0;
};

// A curve of the mixture, which has been handed over to the library; points 0: as traced.
Curve trace_curve(const Exports& library, Mixture& mixture, double fraction, const CurveLimits& limits,
                  int points);

MixtureCritical critical_point(const Exports& library, Mixture& mixture);

// The critical points on a curve, hottest first.
std::vector<CurvePlace> critical_places(const Curve& curve);

// Whether a status comes with a curve that is good for what it shows.
bool curve_is_good(StatusCode status);

// "dew", "bubble", "critical", "two liquids", "quality"; " (not stable)" is added where it is not.
std::string kind_in_words(const Curve& curve, const CurvePoint& point);

// Pieces of a curve that are drawn as one line, of one kind each; neighbours share their end point.
struct Piece {
  enum class Kind { dew, bubble, liquids, quality, not_stable } kind;
  std::vector<CurvePoint> points;
};
std::vector<Piece> pieces_of(const Curve& curve);

}  // namespace kestrune::host

#endif
