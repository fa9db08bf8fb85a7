// Dew pressures by Newton's method with a search behind it, dew temperatures by secants.

#include "water/dew.hpp"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "flash/settings.hpp"
#include "water/content.hpp"

namespace kestrune::water {
namespace {

constexpr double kLargestStart = 1e10;  // atm
constexpr double kConverged = 1e-16;    // of F^2
constexpr double kSlopeStep = 1e-4;     // relative step of the slope in P
constexpr double kSearchFactor = 1.3;   // from one pressure of the search to the next
constexpr int kEnough = 60;             // updates that Newton's method needs nowhere: it turns in circles
constexpr int kRefinements = 12;        // secants after Newton's method
constexpr double kClosed = 1e-4;        // relative width at which an interval of pressures is refined
constexpr double kGood = 1e-10;         // of ln y: a solution
constexpr double kExact = 1e-14;        // of ln y

constexpr double kAlmost = 1e-7;         // of ln y: the next secant is the last
constexpr double kSlopeOfLnY = -5300.0;  // d ln y/d(1/T), K: the heat of vaporisation over R
constexpr double kLineLowestPressure = 1.0, kLineHighestPressure = 200.0;  // atm
constexpr double kNarrow = 1e-14;  // relative width of an interval of temperatures

int iteration_limit(const eos::Context& context) noexcept {
  return flash::copy_settings(context).ITEMAX;
}

StatusCode check(const DewCall& call, Method& method) noexcept {
  const StatusCode sum = flash::check_feed_sum(call.z, *call.context.record);
  if (sum != KV_OK) return sum;
  return method_by_number(call.method, method) ? KV_OK : KV_SPECIFICATION;
}

// ---- Pressure at a temperature --------------------------------------------------------------------

struct PressureSearch {
  const Saturation& s;
  double water;     // mole fraction in the feed
  double y = 0.0;   // the last content, the start of the next
  int updates = 0;  // of the pressure
  int limit = 0;
};

// At and below the vapour pressure the gas takes up any amount of water: it is saturated when it is all water.
// The same stands for pressures beyond the method, so that no step ends there, nor leads on from there.
StatusCode residual(PressureSearch& p, double P, double& F) noexcept {
  const bool inside = P > p.s.lowest_pressure() && P <= p.s.highest_pressure();
  StatusCode status = inside ? saturated_fraction(p.s, P, p.y) : StatusCode{KV_NO_WATER_LIMIT};
  if (status == KV_NO_WATER_LIMIT) {
    p.y = 1.0;
    status = KV_OK;
  }
  F = p.y - p.water;
  return status;
}

// Newton's method from P. 115: the content does not change with pressure; 112: out of updates; others of the
// model. P holds the last pressure. at_start: it converged where it began.
StatusCode newton(PressureSearch& p, double& P, bool& at_start) noexcept {
  for (at_start = true;; at_start = false) {
    double F = 0.0, ahead = 0.0;
    StatusCode status = residual(p, P, F);
    if (status != KV_OK || F * F < kConverged) return status;
    const double step = P / 10000.0;
    status = residual(p, P + step, ahead);
    if (status != KV_OK) return status;
    const double slope = (ahead - F) / step;
    if (slope == 0.0) return KV_ZERO_SLOPE;
    P -= F / slope;
    if (++p.updates > p.limit) return KV_NOT_CONVERGED;
  }
}

// Secants of ln y over ln P from a point close to the solution, as long as they come closer. True when they end
// on it.
bool refine(PressureSearch& p, double& P) noexcept {
  double y = p.water, ahead = p.water;
  if (saturated_fraction(p.s, P, y) != KV_OK) return false;
  double G = std::log(y / p.water);
  if (saturated_fraction(p.s, P * (1.0 + kSlopeStep), ahead) != KV_OK) return std::fabs(G) < kGood;
  double slope = std::log(ahead / y) / std::log1p(kSlopeStep);
  for (int k = 0; k < kRefinements && std::fabs(G) > kExact && slope != 0.0; ++k) {
    const double step = std::clamp(-G / slope, -1.0, 1.0), next = P * std::exp(step);
    if (saturated_fraction(p.s, next, y) != KV_OK) break;
    const double now = std::log(y / p.water);
    if (!(std::fabs(now) < std::fabs(G))) break;
    slope = (now - G) / step;
    P = next;
    G = now;
  }
  return std::fabs(G) < kGood;
}

// Halves the interval between a pressure with too much and one with too little water; P: the middle of what is
// left.
void close_interval(PressureSearch& p, double low, double high, double& P) noexcept {
  P = std::sqrt(low * high);
  while (high > low * (1.0 + kClosed) && p.updates++ <= p.limit) {
    double F = 0.0;
    if (residual(p, P, F) != KV_OK) return;
    (F > 0.0 ? low : high) = P;
    P = std::sqrt(low * high);
  }
}

// Whether the content dips below what is there between two pressures where it is higher: golden section, as
// long as it may. P: a pressure where it is lower.
bool dips(PressureSearch& p, double low, double high, double& P) noexcept {
  constexpr double kGolden = 0.6180339887498949;
  constexpr int kMostCuts = 40;
  double a = std::log(low), c = std::log(high), Fl = 0.0, Fr = 0.0;
  double left = c - kGolden * (c - a), right = a + kGolden * (c - a);
  bool have_left = false, have_right = false;
  for (int k = 0; k < kMostCuts && p.updates++ <= p.limit; ++k) {
    if (!have_left && residual(p, std::exp(left), Fl) != KV_OK) return false;
    if (!have_right && residual(p, std::exp(right), Fr) != KV_OK) return false;
    P = std::exp(Fl < Fr ? left : right);
    if (std::min(Fl, Fr) < 0.0) return true;
    have_right = Fl < Fr;
    have_left = !have_right;
    (have_right ? c : a) = have_right ? right : left;
    (have_right ? right : left) = have_right ? left : right;
    (have_right ? Fr : Fl) = have_right ? Fl : Fr;
    (have_right ? left : right) = have_right ? c - kGolden * (c - a) : a + kGolden * (c - a);
  }
  return false;
}

// The first change of sign from saturation upwards. P holds the last pressure; true when it is a solution.
bool search(PressureSearch& p, double& P) noexcept {
  if (!(p.water > 0.0)) return false;
  const double highest = p.s.highest_pressure();
  double low = p.s.lowest_pressure();
  // The content is not far below that of an ideal gas: up to there nothing has to be looked at.
  double high = std::fmax(low, 0.5 * low / p.water) * kSearchFactor;
  double lower = low, F_low = 1e300, F_lower = 1e300;  // the two pressures before
  while (low < highest && p.updates++ <= p.limit) {
    high = std::fmin(high, highest);
    double F = 0.0;
    if (residual(p, high, F) == KV_OK) {
      P = high;
      const bool turns = F >= F_low && F_lower >= F_low && F_low < 1e300;
      if (F < 0.0 || (turns && dips(p, lower, high, P))) {
        close_interval(p, F < 0.0 ? low : lower, P, P);
        return refine(p, P);
      }
      F_lower = F_low;
      F_low = F;
      P = high;
    }
    lower = low;
    low = high;
    high *= kSearchFactor;
  }
  return false;
}

// What Newton's method found, more exactly. Behind its failure, which is no host's wish to end early, the
// search with a limit of its own.
StatusCode find_pressure(PressureSearch& p, double& P) noexcept {
  bool at_start = false;
  const StatusCode status = newton(p, P, at_start);
  const bool exact = status == KV_OK && (at_start || !(p.water > 0.0) || refine(p, P));
  if (exact || p.limit <= 0) return status;
  // Converged without being a solution, where the content hardly changes with pressure: one may lie elsewhere.
  const bool in_circles = status == KV_NOT_CONVERGED && p.limit >= kEnough;
  if (status != KV_OK && !in_circles && status != KV_ZERO_SLOPE) return status;
  p.updates = 0;
  double elsewhere = P;
  const bool outside = !(P > p.s.lowest_pressure() && P <= p.s.highest_pressure());
  if (!search(p, elsewhere)) return status == KV_OK && outside ? StatusCode{KV_NOT_CONVERGED} : status;
  P = elsewhere;
  return KV_OK;
}

// ---- Temperature at a pressure --------------------------------------------------------------------

struct TemperatureSearch {
  const Gas& gas;
  support::Arena& arena;
  double water, P;
  int limit;
  double lowest, highest;  // temperatures of the method
};

// G = ln(y/water) at T; infinite where the gas takes up any amount of water.
StatusCode residual(const TemperatureSearch& t, double T, double& G) {
  Saturation s;
  StatusCode status = prepare_saturation(t.gas, T, t.arena, s);
  double y = 0.0;  // from the vapour: the fraction that is looked for may lead to the liquid's root
  if (status == KV_OK) status = saturated_fraction(s, t.P, y);
  G = status == KV_NO_WATER_LIMIT ? HUGE_VAL : std::log(y / t.water);
  return status == KV_NO_WATER_LIMIT ? StatusCode{KV_OK} : status;
}

// Where water alone would have the vapour pressure y P, from its values at 0 and 100 C.
double ideal_temperature(double partial) noexcept {
  const double u = (13.960 - std::log(partial)) / 5209.0;
  return u > 0.0 ? 1.0 / u : DBL_MAX;
}

// Interval of 1/T, and the last point with a finite residual.
struct Bracket {
  double low, high;  // too cold or the end of the range, too hot or the end
  bool low_known = false, high_known = false;
  double u = 0.0, G = HUGE_VAL;
};

// The temperature that the secant through the last two points gives, or the middle of what is left.
double next_temperature(const Bracket& b, double T, double G, double slope) noexcept {
  const double middle = 2.0 / (1.0 / b.low + 1.0 / b.high);
  if (!std::isfinite(G)) return b.low_known ? middle : std::fmax(b.low, 0.95 * T);
  const double u = 1.0 / T - G / slope;
  const double next = u > 0.0 ? 1.0 / u : b.high;
  const bool inside = next > b.low && next < b.high;
  if (inside) return next;
  if (next <= b.low) return b.low_known ? middle : b.low;
  return b.high_known ? middle : b.high;
}

// Secants of ln y over 1/T as they come, within the range of the method. 115: the content does not change with
// temperature; 112: out of updates, or held by an end of the range; others of the model. T holds the last
// temperature.
StatusCode secants(const TemperatureSearch& t, double& T) {
  double last_u = 0.0, last_G = 0.0;
  for (int updates = 0;;) {
    double G = 0.0;
    const StatusCode status = residual(t, T, G);
    if (status != KV_OK || std::fabs(G) < kExact) return status;
    const double u = 1.0 / T, slope = updates > 0 ? (G - last_G) / (u - last_u) : kSlopeOfLnY;
    if (!std::isfinite(G) || slope == 0.0) return KV_ZERO_SLOPE;
    const double next_u = u - G / slope;
    const double next = next_u > 0.0 ? std::clamp(1.0 / next_u, t.lowest, t.highest) : t.highest;
    const bool last = updates > 0 && std::fabs(G) < kAlmost, held = next == T;
    last_u = u;
    last_G = G;
    T = next;
    if (last) return KV_OK;
    if (held || ++updates > t.limit) return KV_NOT_CONVERGED;
  }
}

// The same kept within the interval in which the sign changes. True when it ends on a solution.
bool bracketed_secants(const TemperatureSearch& t, double& T) {
  double next = T;
  Bracket b{t.lowest, t.highest};
  for (int k = 0; k <= t.limit; ++k) {
    double G = 0.0;
    const StatusCode status = residual(t, next, G);
    if (status != KV_OK) return false;
    T = next;
    if (std::fabs(G) < kExact) return true;
    (G < 0.0 ? b.low : b.high) = T;
    (G < 0.0 ? b.low_known : b.high_known) = true;
    if ((G < 0.0 && T >= t.highest) || (G > 0.0 && T <= t.lowest)) return false;
    double slope = std::isfinite(b.G) && std::isfinite(G) ? (G - b.G) / (1.0 / T - b.u) : kSlopeOfLnY;
    const bool secant = std::isfinite(b.G) && slope < 0.0;
    if (!(slope < 0.0)) slope = kSlopeOfLnY;
    next = next_temperature(b, T, G, slope);
    if (secant && std::fabs(G) < kAlmost) {
      T = next;
      return true;
    }
    if (b.high - b.low < kNarrow * T) return false;  // the content jumps
    if (std::isfinite(G)) {
      b.u = 1.0 / T;
      b.G = G;
    }
  }
  return false;
}

StatusCode find_temperature(const TemperatureSearch& t, double& T) {
  if (!(t.water > 0.0)) return KV_NOT_CONVERGED;
  if (!(T >= t.lowest && T <= t.highest)) T = std::clamp(ideal_temperature(t.water * t.P), t.lowest, t.highest);
  const StatusCode status = secants(t, T);
  if ((status != KV_NOT_CONVERGED && status != KV_ZERO_SLOPE) || t.limit <= 0) return status;
  double elsewhere = T;
  if (!bracketed_secants(t, elsewhere)) return status;
  T = elsewhere;
  return KV_OK;
}

template <class Body>
StatusCode with_gas(const DewCall& call, Body&& body) {
  Method method = Method::equation_of_state;
  StatusCode status = check(call, method);
  if (status == KV_FEED_SUM) return status;
  return support::with_arena<3, 64>(call.context.record->count, [&](support::Arena& arena) -> StatusCode {
    Gas gas;
    const StatusCode opened = open_gas(call.context, call.z, method, arena, gas);
    if (opened == KV_NO_WATER || status == KV_OK) status = opened;
    return status == KV_OK ? body(gas, arena) : status;
  });
}

StatusCode temperature_at(const DewCall& call, const Gas& gas, support::Arena& arena, double P, double& T) {
  TemperatureSearch t{gas, arena, call.z[gas.water], P, iteration_limit(call.context), 0.0, 0.0};
  return temperature_range(gas, t.lowest, t.highest) ? find_temperature(t, T) : StatusCode{KV_WATER_RANGE};
}

}  // namespace

StatusCode dew_pressure(const DewCall& call, double T, double& P) {
  if (!(P > 0.0 && P <= kLargestStart)) P = 1.0;
  return with_gas(call, [&](const Gas& gas, support::Arena& arena) -> StatusCode {
    Saturation s;
    const StatusCode status = prepare_saturation(gas, T, arena, s);
    if (status != KV_OK) return status;
    PressureSearch p{s, call.z[gas.water]};
    p.limit = iteration_limit(call.context);
    return find_pressure(p, P);
  });
}

StatusCode dew_temperature(const DewCall& call, double P, double& T) {
  return with_gas(call, [&](const Gas& gas, support::Arena& arena) -> StatusCode {
    return temperature_at(call, gas, arena, P, T);
  });
}

StatusCode dew_line(const DewCall& call, double lowest, double highest, int points, double* T, double* P,
                    StatusCode* status, int& found) {
  found = 0;
  if (lowest == 0.0) lowest = kLineLowestPressure;
  if (highest == 0.0) highest = kLineHighestPressure;
  if (!(lowest > 0.0 && highest >= lowest && highest <= DBL_MAX)) return KV_SPECIFICATION;
  return with_gas(call, [&](const Gas& gas, support::Arena& arena) -> StatusCode {
    double start = 0.0;
    for (int k = 0; k < points; ++k) {
      const double share = points > 1 ? static_cast<double>(k) / (points - 1) : 0.0;
      P[k] = k == points - 1 && k > 0 ? highest : std::pow(lowest, 1.0 - share) * std::pow(highest, share);
      T[k] = start;
      status[k] = temperature_at(call, gas, arena, P[k], T[k]);
      if (status[k] == KV_OK) {
        ++found;
        start = T[k];
      } else {
        T[k] = 0.0;
      }
    }
    return found > 0 || points <= 0 ? StatusCode{KV_OK} : status[0];
  });
}

}  // namespace kestrune::water
