// Given values on a grid. They start from no known state, so that nothing that the flash misses is missed here.
#include <algorithm>
#include <cmath>
#include <random>

#include "three_ask.hpp"
#include "three_reference.hpp"

namespace kestrune::sweep {
namespace {

constexpr int values_per_line = 12;
constexpr double same_point = 1e-6;  // relative, of T or P from different starts

enum Export { HP, SP, WP, WT };
const char* const names[4][5] = {
    {"HP grid cold", "HP grid warm", "HP grid absurd", "HP grid swapped", "HP grid garbage"},
    {"SP grid cold", "SP grid warm", "SP grid absurd", "SP grid swapped", "SP grid garbage"},
    {"WP grid cold", "WP grid warm", "WP grid absurd", "WP grid swapped", "WP grid garbage"},
    {"WT grid cold", "WT grid warm", "WT grid absurd", "WT grid swapped", "WT grid garbage"}};

// A start of kind 1 .. 4: the last answer and where it was; none, from an absurd point; the last answer with
// its phases exchanged; numbers drawn at random.
struct Start {
  double at = 0;
  ThreeAnswer phases;
  bool estimate = true;
};
Start make_start(int kind, int number, const Start& last, bool of_T) {
  if (kind == 2) return {number % 2 ? (of_T ? 5.0 : 1e-5) : (of_T ? 5000.0 : 1e4), {}, false};
  Start start = last;
  if (kind == 3) {
    std::swap(start.phases.a, start.phases.y);
    std::swap(start.phases.beta, start.phases.V);
  }
  if (kind < 4) return start;
  std::mt19937_64 random(number);
  std::exponential_distribution<double> draw(1.0);
  for (Composition* w : {&start.phases.a, &start.phases.b, &start.phases.y}) {
    double sum = 0;
    for (double& v : *w) sum += v = draw(random);
    for (double& v : *w) v /= sum;
  }
  start.phases.beta = 0.3;
  start.phases.V = number % 3 ? 0.3 : NAN;
  return start;
}

// Whether the phases on the two sides of a jump are the same but for their names, and for one without a share.
bool renamed(const Question& q, const ThreeAnswer& a, const ThreeAnswer& b) {
  const Reduced r(q);
  const auto left = present_phases(q, r, a), right = present_phases(q, r, b);
  const auto among = [](const std::vector<PresentPhase>& some, const std::vector<PresentPhase>& others) {
    return std::all_of(some.begin(), some.end(), [&](const PresentPhase& p) {
      return p.share < 1e-5 || std::any_of(others.begin(), others.end(), [&](const PresentPhase& o) {
               return largest_difference(p.w, o.w) < 1e-4;
             });
    });
  };
  return among(left, right) && among(right, left);
}

}  // namespace

// Where the flash at T and P crosses the value: without a jump, or where two components have three phases and
// the amounts can meet it; 0 when nowhere.
double Asker::crossing(const ThreeState& s, bool of_T, const Along& along, double slack) const {
  const double low = of_T ? system.feed.T_low * 0.9 : system.P_low / 4;
  const double high = of_T ? system.feed.T_high * 1.2 : system.P_high * 2;
  const auto present = std::count_if(s.z.begin(), s.z.end(), [](double z) { return z > 0; });
  double a = 0, fa = 0;
  ThreeAnswer left;
  bool have = false;
  for (int k = 0; k <= 24; ++k) {
    double b = low * std::pow(high / low, k / 24.0), fb = 0;
    ThreeAnswer right;
    const bool good = along(b, fb, right);
    const double next = b, f_next = fb;
    const ThreeAnswer next_answer = right;
    bool closing = good && have && fa * fb <= 0;
    for (int half = 0; half < 50 && closing; ++half) {
      const double middle = 0.5 * (a + b);
      double f = 0;
      ThreeAnswer answer;
      closing = along(middle, f, answer);
      const bool to_left = f * fa > 0;
      (to_left ? a : b) = middle;
      (to_left ? fa : fb) = f;
      (to_left ? left : right) = answer;
    }
    if (closing) {
      const bool jump = std::min(std::abs(fa), std::abs(fb)) > slack;
      const Question q = of_T ? question(s, a, s.P) : question(s, s.T, a);
      if (!jump || (present == 2 && !renamed(q, left, right))) return b;
    }
    a = next;
    fa = f_next;
    left = next_answer;
    have = good;
  }
  return 0;
}

// A status is a fault where the value is met at a known point.
void Asker::excuse(Trip& trip, const ThreeState& s, bool of_T, double known) const {
  trip.expected = known;
  const Question q = of_T ? question(s, trip.found, s.P) : question(s, s.T, trip.found);
  std::vector<Composition> w;
  std::vector<double> share;
  trip.none = trip.phases.status == KV_FOURTH_PHASE ? stable_phases(q, Reduced(q), w, share) == 4 : known == 0;
  if (trip.none) trip.verdict = GivenVerdict{};
  if (known > 0) trip.verdict.reason += text(", but there is a point at %.10g", known);
}

void Asker::energy_line(int line, const ThreeState& s, std::vector<Trip>& trips) const {
  const Quantity quantity = line % 2 ? Quantity::entropy : Quantity::enthalpy;
  const Export kind = line % 2 ? SP : HP;
  ThreeState ends[2] = {s, s};
  double value[2];
  for (int k : {0, 1}) {
    ends[k].T = k ? system.feed.T_high * 1.1 : system.feed.T_low * 0.95;
    ends[k].answer = library.three(ends[k].T, s.P, s.z);
    if (ends[k].answer.status != 0) return;
    value[k] = total(quantity, ends[k]);
  }
  Start last{ends[0].T, ends[0].answer, true};
  for (int k = 0; k < values_per_line; ++k) {
    const double wanted = value[0] + (k + 0.01 * (line % 97)) / values_per_line * (value[1] - value[0]);
    const auto along = [&](double T, double& f, ThreeAnswer& answer) {
      ThreeState there = s;
      there.T = T;
      there.answer = answer = library.three(T, s.P, s.z);
      if (answer.status == 0) f = total(quantity, there) - wanted;
      return answer.status == 0;
    };
    const auto judged = [&](const char* name, double start, const ThreeAnswer* estimate) {
      Trip trip = caloric(name, quantity, wanted, 0, 1e9, s, start, estimate);
      if (trip.phases.status != 0)
        excuse(trip, s, true, crossing(s, true, along, 1e-6 * std::max(1.0, std::abs(wanted))));
      else if (trip.verdict.group.empty() && trip.verdict.energy > 1e-9)
        trip.verdict.group = trip.verdict.reason = "energy balance beyond 1e-9";
      return trip;
    };
    const Trip cold = judged(names[kind][0], 0, nullptr);
    const int other = 1 + (line + k) % 4;
    const Start start = make_start(other, line + k, last, true);
    Trip again = judged(names[kind][other], start.at, start.estimate ? &start.phases : nullptr);
    if (cold.phases.status == 0 && again.phases.status == 0) {
      again.verdict.apart = std::abs(again.found - cold.found);
      if (again.verdict.group.empty() && again.verdict.apart > same_point)
        again.verdict.group = again.verdict.reason = "another answer than cold";
    }
    if (cold.phases.status == 0) last = {cold.found, cold.phases, true};
    trips.push_back(cold);
    trips.push_back(again);
  }
}

void Asker::fraction_line(int line, const ThreeState& s, std::vector<Trip>& trips) const {
  const bool of_T = line % 2 == 0;
  const Export kind = of_T ? WP : WT;
  Start last{of_T ? s.T : s.P, library.three(s.T, s.P, s.z), true};
  for (int k = 0; k <= 10; ++k) {
    const double W = k / 10.0;
    const auto along = [&](double at, double& f, ThreeAnswer& answer) {
      answer = of_T ? library.three(at, s.P, s.z) : library.three(s.T, at, s.z);
      f = answer.V - W;
      if (f == 0) f = W == 0 ? -1 : 1;  // at an end all of a phase is gone
      return answer.status == 0;
    };
    const auto judged = [&](const char* name, double start, const ThreeAnswer* estimate) {
      Trip trip = point(name, W, of_T, s, start, estimate);
      trip.verdict.apart = 0;
      trip.verdict.other = false;
      if (trip.phases.status != 0) excuse(trip, s, of_T, crossing(s, of_T, along, 1e-5));
      return trip;
    };
    const Trip cold = judged(names[kind][0], 0, nullptr);
    const int other = 1 + (line + k) % 4;
    const Start start = make_start(other, line + k, last, of_T);
    Trip again = judged(names[kind][other], start.at, start.estimate ? &start.phases : nullptr);
    if (cold.phases.status == 0 && again.phases.status == 0)
      again.verdict.other = std::abs(again.found / cold.found - 1) > same_point;
    if (cold.phases.status == 0) last = {cold.found, cold.phases, true};
    trips.push_back(cold);
    trips.push_back(again);
  }
}

std::vector<Trip> Asker::grid(int line, const ThreeState& s) const {
  std::vector<Trip> trips;
  energy_line(line, s, trips);
  fraction_line(line, s, trips);
  return trips;
}

}  // namespace kestrune::sweep
