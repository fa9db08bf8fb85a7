#include "saturation.hpp"

#include <algorithm>
#include <cmath>

#include "split.hpp"

namespace kestrune::sweep {
namespace {

using Result = SaturationVerdict::Result;

double T_of(const SaturationQuestion& q, double found) {
  return q.given == Given::temperature ? q.value : found;
}

double P_of(const SaturationQuestion& q, double found) {
  return q.given == Given::temperature ? found : q.value;
}

void fail(SaturationVerdict& verdict, const char* group, const std::string& reason) {
  verdict.result = Result::wrong;
  verdict.group = group;
  verdict.reason = reason;
}

// Sums, signs, presence, the balance and K = y / x.
std::string check_compositions(const Composition& z, double W, const SaturationAnswer& a, double& residual) {
  double sum_x = 0, sum_y = 0, sum_z = 0, k_error = 0;
  for (double v : z) sum_z += v;
  for (size_t i = 0; i < z.size(); ++i) {
    if (!(a.x[i] >= 0) || !(a.y[i] >= 0)) return "a mole fraction is negative or not a number";
    if ((z[i] > 0) != (a.x[i] > 0) || (z[i] > 0) != (a.y[i] > 0))
      return "components of a phase are not those of the feed";
    sum_x += a.x[i];
    sum_y += a.y[i];
    residual = std::max(residual, std::abs(z[i] / sum_z - (1 - W) * a.x[i] - W * a.y[i]));
    if (z[i] > 0 && a.K[i] > 1.000001e-15 && a.K[i] < 0.999999e15)
      k_error = std::max(k_error, std::abs(std::log(a.K[i] * a.x[i] / a.y[i])));
  }
  if (!(residual <= balance_tolerance)) return text("material balance off by %.3g", residual);
  if (!(std::abs(sum_x - 1) <= balance_tolerance)) return text("sum of x is 1 %+.3g", sum_x - 1);
  if (!(std::abs(sum_y - 1) <= balance_tolerance)) return text("sum of y is 1 %+.3g", sum_y - 1);
  if (!(k_error <= fugacity_tolerance)) return text("ln K is off from ln y/x by %.3g", k_error);
  return {};
}

// Whether the feed splits at T and P, by trials near the ones expected only: a true answer is a proof.
bool splits_near(const Sides& sides, double T, double P, const std::vector<Composition>& trials) {
  const auto par = parameters_at<double>(sides.components, T);
  const Plane plane = plane_of(par, P, sides.z);
  return !search(par, P, plane, trials, -tpd_tolerance, false).unstable.empty();
}

std::vector<Composition> heavy_trials(const Sides& sides, double T, double P, const Composition& incipient) {
  const Components& c = sides.components;
  Composition heavy(c.n), heaviest(c.n);
  const auto heavier = std::max_element(c.tc.begin(), c.tc.end()) - c.tc.begin();
  double total = 0, rest = 0;
  for (int i = 0; i < c.n; ++i) {
    const double e = wilson_exponent(c, i, T) + std::log(c.pc[i] / P);
    total += heavy[i] = sides.z[i] * std::exp(std::clamp(-e, -200.0, 200.0));
    rest += heaviest[i] = i == heavier ? 0.999 : 0.001 * sides.z[i];
  }
  for (double& v : heavy) v = std::max(v / total, 1e-280);
  for (double& v : heaviest) v /= rest;
  return {incipient, heavy, heaviest};
}

// A dew point is the first one met from the side of the dilute gas: below its pressure at T, and above its
// temperature at P, the feed is one phase. Returns where it is not, 0 when nowhere.
double splits_beyond_dew(const Sides& sides, const SaturationQuestion& q, double found, const Composition& x) {
  if (q.given == Given::temperature) {
    for (double part : {0.9999, 0.999, 0.99, 0.97, 0.9, 0.8, 0.6, 0.4, 0.2, 0.1, 0.03, 0.01, 0.001}) {
      const double P = found * part;
      if (splits_near(sides, q.value, P, heavy_trials(sides, q.value, P, x))) return P;
    }
    return 0;
  }
  for (double part : {1.0001, 1.0003, 1.001, 1.003, 1.01, 1.03, 1.06, 1.1, 1.15, 1.25, 1.4, 1.7, 2.2}) {
    const double T = found * part;
    if (T > 1000) break;
    if (splits_near(sides, T, q.value, heavy_trials(sides, T, q.value, x))) return T;
  }
  return 0;
}

// Feeds of (nearly) one component: a point exists below the critical point of the one fluid. -1 no, 1 yes, 0
// too close to say.
int one_fluid_exists(const Sides& sides, const SaturationQuestion& q) {
  double T = 0, P = 0;
  one_fluid_critical(sides, T, P);
  const double critical = q.given == Given::temperature ? T : P;
  if (std::abs(q.value / critical - 1) < 1e-5) return 0;
  return q.value < critical ? 1 : -1;
}

// No point was returned: is there one?
void judge_absence(const Sides& sides, const SaturationQuestion& q, const SaturationAnswer& a,
                   SaturationVerdict& verdict) {
  Existence found = Existence::no;
  if (sides.nearly_pure()) {
    const int side = one_fluid_exists(sides, q);
    if (side > 0 || (side == 0 && a.status != 116)) found = Existence::yes;
  } else {
    found = point_exists(sides, q, verdict.other);
    if (q.exists) found = Existence::yes;
  }
  if (a.status == 116 && found != Existence::yes) {
    verdict.result = found == Existence::no ? Result::none : Result::none_but_liquids;
    return;
  }
  const bool exists = found != Existence::no;
  const std::string status = text("status %.0f", a.status, 0);
  if (exists)
    fail(verdict, (status + ", a point exists").c_str(),
         status + text(", a point exists at %.10g", verdict.other));
  else
    fail(verdict, (status + " where no point exists").c_str(), status + ", no point exists");
}

// At given T the fraction falls from 1 at low pressure: nowhere below the answer may it lie below W already.
// Returns where it does, 0 when nowhere.
double fraction_passed_before(const Sides& sides, const SaturationQuestion& q, double found) {
  const auto par = parameters_at<double>(sides.components, q.value);
  for (double part : {0.999, 0.98, 0.9, 0.7, 0.4}) {
    const Split split = flash(sides.components, par, found * part, sides.z);
    if (split.two_phase && split.beta < q.W - 1e-6) return found * part;
  }
  return 0;
}

// Stability of the point and which of several it is.
void judge_place(const Sides& sides, const Question& point, const Answer& phases, const Reduced& r,
                 const SaturationQuestion& q, const SaturationAnswer& a, SaturationVerdict& verdict) {
  const bool between = q.W > 0 && q.W < 1;
  Plane plane = plane_of(r.par, point.P, q.W < 0.5 ? r.x : r.y);
  plane.phases = {r.x, r.y};
  if (between) {
    const Plane other = plane_of(r.par, point.P, q.W < 0.5 ? r.y : r.x);
    for (int i = 0; i < r.components.n; ++i) {
      const double amount = phases.beta * r.y[i] / r.z[i],
                   share = std::clamp(q.W < 0.5 ? amount : 1 - amount, 0.0, 1.0);
      plane.d[i] = (1 - share) * plane.d[i] + share * other.d[i];
    }
  }
  const auto starts = starting_points(r.components, r.par, point.P, r.z, plane);
  verdict.tpd = search(r.par, point.P, plane, starts, -tpd_tolerance, false).lowest;
  const bool unstable = verdict.tpd < -tpd_tolerance;
  if (a.status == 117) {
    verdict.result = Result::split_before;
    // In a three-phase region the lowest split has W at the answer itself.
    verdict.missed = unstable && !sides.nearly_pure() &&
                     point_exists(sides, q, verdict.other) == Existence::yes &&
                     std::abs(verdict.other / a.found - 1) > 1e-3;
    if (verdict.missed) verdict.group = "not counted: 117, a stable point exists";
    if (!unstable)
      fail(verdict, "status 117 at a stable point", text("status 117, lowest tpd %.3g", verdict.tpd, 0));
    return;
  }
  if (unstable && !between)
    return fail(verdict, "the point is unstable",
                text("the feed is unstable there (tpd %.3g)", verdict.tpd, 0));
  verdict.result = unstable ? Result::quality_unstable : Result::point;
  if (q.W == 0 || sides.nearly_pure()) return;
  if (between) {
    if (q.given == Given::temperature && !unstable) verdict.other = fraction_passed_before(sides, q, a.found);
    if (verdict.other > 0)
      fail(verdict, "another quality branch", text("the fraction is lower already at %.10g", verdict.other, 0));
    return;
  }
  verdict.other = splits_beyond_dew(sides, q, a.found, r.x);
  if (verdict.other > 0)
    fail(verdict, "another dew branch",
         text("the feed splits beyond the dew point, at %.10g", verdict.other, 0));
}

}  // namespace

void one_fluid_critical(const Sides& sides, double& T, double& P) {
  double b = 0, low = 40, high = 900;
  for (int k = 0; k < 60; ++k) {
    const double middle = 0.5 * (low + high);
    Phase<double> phase;
    evaluate(parameters_at<double>(sides.components, middle), 1.0, sides.z.data(), Root::stable, false, phase);
    b = phase.b;
    (phase.a > critical_attraction * b * 82.057 * middle ? low : high) = middle;
  }
  T = low;
  P = 0.0777960739 * 82.057 * low / b;
}

Sharpness sharpness_at(const Question& point, const Answer& phases) {
  const auto gap = [&](double T, double P) {
    Question q = point;
    q.T = T;
    const Reduced r(q, phases);
    const bool same = largest_difference(r.x, r.y) < 1e-7;
    const auto liquid = exact_phase(r, P, r.x, same ? Root::smallest : Root::stable);
    const auto vapour = exact_phase(r, P, r.y, same ? Root::largest : Root::stable);
    long double sum = 0;
    for (int i = 0; i < r.components.n; ++i) {
      const long double difference =
          std::log(static_cast<long double>(r.y[i]) / r.x[i]) + vapour.ln_phi[i] - liquid.ln_phi[i];
      sum += phases.beta < 0.5 ? r.y[i] * difference : -r.x[i] * difference;
    }
    return sum;
  };
  const double h = 1e-5;
  return {static_cast<double>(gap(point.T * (1 + h), point.P) - gap(point.T * (1 - h), point.P)) / (2 * h),
          static_cast<double>(gap(point.T, point.P * (1 + h)) - gap(point.T, point.P * (1 - h))) / (2 * h)};
}

SaturationVerdict judge_saturation(const Sides& sides, const Components& components,
                                   const SaturationQuestion& q, const SaturationAnswer& a) {
  SaturationVerdict verdict;
  if (a.status != 0 && a.status != 117) {
    judge_absence(sides, q, a, verdict);
    return verdict;
  }
  const Question point{&components, sides.feed.z, T_of(q, a.found), P_of(q, a.found)};
  if (!(a.found > 0) || !std::isfinite(a.found)) {
    fail(verdict, "not a number", text("the result is %.17g", a.found, 0));
    return verdict;
  }
  const std::string bad = check_compositions(sides.feed.z, q.W, a, verdict.balance);
  if (!bad.empty()) {
    fail(verdict, "compositions", bad);
    return verdict;
  }
  const Answer phases{0, q.W, a.x, a.y, a.K};
  const Reduced reduced(point, phases);
  bool agree = phases_agree(point, phases, reduced, verdict);
  if (!agree && a.status == 117) {  // not stable, so perhaps with a root that is not either
    verdict.fugacity = 0;
    agree = phases_agree(point, phases, reduced, verdict, true);
    if (agree) verdict.reason.clear();
  }
  if (!agree) {
    const char* group = verdict.reason.find("identical") != std::string::npos ? "trivial"
                        : verdict.reason.find("denser") != std::string::npos  ? "phases exchanged"
                                                                              : "fugacities";
    fail(verdict, group, verdict.reason);
    return verdict;
  }
  judge_place(sides, point, phases, reduced, q, a, verdict);
  return verdict;
}

void judge_return(const Sides& sides, const Components& components, const SaturationQuestion& q,
                  const SaturationAnswer& a, const SaturationAnswer& back, SaturationVerdict& verdict) {
  if (back.status != 0)
    return fail(verdict, "no way back", text("the way back ends with status %.0f", back.status, 0));
  verdict.trip = std::abs(back.found / q.value - 1);
  if (verdict.trip <= 1e-8) return;
  // Errors of 1e-10 in ln f and 1e-9 in the value found move the other one the more, the flatter the curve is.
  const Question point{&components, sides.feed.z, T_of(q, a.found), P_of(q, a.found)};
  const Sharpness sharp = sharpness_at(point, {0, q.W, a.x, a.y, a.K});
  const double to = std::abs(q.given == Given::temperature ? sharp.by_T : sharp.by_P);
  const double from = std::abs(q.given == Given::temperature ? sharp.by_P : sharp.by_T);
  if (verdict.trip <= std::min(1e-3, 1e-8 + (1e-9 * from + 4e-10) / to)) {
    verdict.trip = 0;
    return;
  }
  fail(verdict, "round trip", text("the way back ends %.3g beside, at %.17g", verdict.trip, back.found));
}

}  // namespace kestrune::sweep
