// Judges bubble, dew and quality points against the model, from the answer alone.
#ifndef KESTRUNE_TESTS_SWEEP_SATURATION_HPP
#define KESTRUNE_TESTS_SWEEP_SATURATION_HPP
#include <string>

#include "reduced.hpp"
#include "sides.hpp"

namespace kestrune::sweep {

enum class Given { temperature, pressure };

// One question: the pressure (or temperature) at which the feed has the vapour fraction W at a given
// temperature (or pressure).
struct SaturationQuestion {
  Given given = Given::temperature;
  double W = 0;           // 0 bubble, 1 dew, or between
  double value = 0;       // K or atm
  bool exists = false;    // the judge has found such a point itself
  const char* kind = "";  // random, boundary, critical, retrograde
};

// What the library returned.
struct SaturationAnswer {
  int status = 0;
  double found = 0;     // atm or K
  Composition x, y, K;  // of the full mixture
  double seconds = 0;   // that the call took
};

struct SaturationVerdict : Verdict {
  enum Result { point, quality_unstable, none, none_but_liquids, split_before, wrong } result = wrong;
  std::string group;    // what is wrong, without numbers; empty when right
  double other = 0;     // where the judge found a point, when the library found none or another one
  bool missed = false;  // status 117, although a stable point exists at other
  double trip = 0;      // relative deviation of the round trip
};

// Everything but the round trip. components of the full feed; sides made from them.
SaturationVerdict judge_saturation(const Sides& sides, const Components& components,
                                   const SaturationQuestion& question, const SaturationAnswer& answer);

// The way back: the answer of the library at the value found, warm from the answer, must return to the value
// given. Writes to the verdict of the first answer when it does not.
void judge_return(const Sides& sides, const Components& components, const SaturationQuestion& question,
                  const SaturationAnswer& answer, const SaturationAnswer& back, SaturationVerdict& verdict);

// Critical point of the cubic equation of the feed taken as one substance: that of a (nearly) pure feed.
void one_fluid_critical(const Sides& sides, double& T, double& P);

// Derivatives of sum w_i (ln f_i(w) - ln f_i(other phase)) with ln T and ln P at fixed compositions, w the
// incipient phase: how sharply T and P are determined, and the slope of the curve.
struct Sharpness {
  double by_T = 0, by_P = 0;
};
Sharpness sharpness_at(const Question& point, const Answer& phases);

// Whether a point exists at 0.001 .. 3000 atm (given T) or from 40 K, or two fifths of
// where the phase boundaries are, to 900 K (given P), by a dense scan of the
// judge's own stability test (W 0 or 1) or flash (between); found: one of them. liquids: only points of two
// liquids.
enum class Existence { no, liquids, yes };
Existence point_exists(const Sides& sides, const SaturationQuestion& question, double& found, int points = 80);

// v/b of the phase w at its root of lower Gibbs energy.
double packing(const Sides& sides, double T, double P, const Composition& w);

// Whether the phase w is a liquid, also where it is the lighter one of two: v/b below 2, and colder than the
// critical point that it would have as one substance, where a / (b R T) is the number below.
inline constexpr double critical_attraction = 5.877359948604;
bool is_liquid(const Sides& sides, double T, double P, const Composition& w);

}  // namespace kestrune::sweep

#endif
