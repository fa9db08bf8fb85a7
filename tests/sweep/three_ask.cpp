#include "three_ask.hpp"

#include <algorithm>
#include <cmath>

namespace kestrune::sweep {

ThreeValues Asker::values(Quantity quantity, const Question& q, const ThreeAnswer& answer) const {
  ThreeValues result;
  for (const PresentPhase& phase : present_phases(q, Reduced(q), answer)) {
    const int k = phase.name == 'A' ? 0 : phase.name == 'B' ? 1 : 2;
    const Composition& w = k == 0 ? answer.a : k == 1 ? answer.b : answer.y;
    result.known[k] = library.property(quantity, is_gas(phase), q.T, q.P, w, result.value[k]);
  }
  return result;
}

double Asker::total(Quantity quantity, const ThreeState& s) const {
  const ThreeValues parts = values(quantity, question(s, s.T, s.P), s.answer);
  return s.answer.beta * parts.value[0] + s.answer.rest() * parts.value[1] + s.answer.V * parts.value[2];
}

Trip Asker::caloric(const char* name, Quantity quantity, double value, double T_low, double T_high,
                    const ThreeState& s, double start, const ThreeAnswer* estimate) const {
  Trip trip{name, value, T_low, 0, {}, {}};
  const ThreeCaloricAnswer answer = library.three_caloric(quantity, value, s.P, s.z, start, estimate);
  trip.found = answer.T;
  trip.phases = answer.phases;
  ThreeValues parts;
  const bool usable = layout_of(answer.phases) != Layout::none && answer.T > 0 && answer.T < 1e5;
  if (usable) parts = values(quantity, question(s, answer.T, s.P), answer.phases);
  trip.verdict = judge_three_caloric({question(s, 0, s.P), value, T_low, T_high}, answer, parts);
  return trip;
}

Trip Asker::point(const char* name, double W, bool at_pressure, const ThreeState& s, double start,
                  const ThreeAnswer* estimate) const {
  Trip trip{name, W, at_pressure ? s.T : s.P, 0, {}, {}};
  const SaturationQuestion q{at_pressure ? Given::pressure : Given::temperature, W, at_pressure ? s.P : s.T};
  const ThreePoint answer = library.three_point(q, s.z, start, estimate);
  trip.found = answer.found;
  trip.phases = answer.phases;
  const Question state = at_pressure ? question(s, answer.found, s.P) : question(s, s.T, answer.found);
  static_cast<ThreeVerdict&>(trip.verdict) = judge_three_point(state, W, answer);
  trip.verdict.apart = std::abs(answer.found - trip.expected) / (at_pressure ? 1 : trip.expected);
  trip.verdict.other = trip.verdict.apart > 1e-6;
  return trip;
}

std::vector<Trip> Asker::ask(int k, const ThreeState& s, const ThreeState* before) const {
  std::vector<Trip> trips;
  const bool entropy = k / 2 % 2 == 1;
  const Quantity quantity = entropy ? Quantity::entropy : Quantity::enthalpy;
  const double value = total(quantity, s);
  trips.push_back(caloric(entropy ? "SP cold" : "HP cold", quantity, value, s.T, s.T, s, 0, nullptr));
  if (before)
    trips.push_back(
        caloric(entropy ? "SP warm" : "HP warm", quantity, value, s.T, s.T, s, s.T + 3, &before->answer));
  const double V = s.answer.V;
  if (V > 0 && V < 1) {
    trips.push_back(point("WP cold", V, true, s, 0, nullptr));
    trips.push_back(point("WT cold", V, false, s, 0, nullptr));
    trips.push_back(point("WP warm", V, true, s, s.T * 1.005, &s.answer));
    trips.push_back(point("WT warm", V, false, s, s.P * 1.02, &s.answer));
  }
  return trips;
}

}  // namespace kestrune::sweep
