// Judgement with free water: water's fugacity in a liquid is Psat x_w / s below the solubility limit s and Psat
// at and above it; the equation of state rules in the vapour and for all other components. These rules are not
// a Gibbs energy, so a missing phase is looked for by fixed points of the trial composition (sum above one).
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "judge.hpp"

namespace kestrune::sweep {
namespace {

struct Water {
  const Question& question;
  const Parameters<double> par;
  int n, iw = -1;
  double psat, s;

  explicit Water(const Question& q)
      : question(q),
        par(parameters_at<double>(*q.components, q.T)),
        n(q.components->n),
        psat(water_vapour_pressure(q.T)),
        s(water_solubility(q.solubility_a, q.solubility_b, q.T)) {
    for (int i = 0; i < n; ++i) {
      if (q.components->family[i] == 20.0) iw = i;
    }
  }

  // All but water, also where that is next to nothing.
  double rest(const Composition& x) const {
    double sum = 0;
    for (int i = 0; i < n; ++i) sum += i == iw ? 0 : x[i];
    return sum;
  }

  double covolume(const Composition& x) const {
    double b = 0;
    for (int i = 0; i < n; ++i) b += x[i] * par.b[i];
    return b;
  }

  // ln(f_i / P) in a vapour.
  Composition vapour(const Composition& y, double& Z) const {
    Phase<double> phase;
    evaluate(par, question.P, y.data(), Root::largest, false, phase);
    Composition ln_f(n);
    for (int i = 0; i < n; ++i) ln_f[i] = std::log(y[i]) + phase.ln_phi[i];
    Z = phase.Z;
    return ln_f;
  }

  // The hydrocarbons of a liquid with the water that they hold.
  Composition oil(const Composition& x) const {
    Composition part = x;
    for (int i = 0; i < n && x[iw] >= s; ++i) part[i] = i == iw ? s : x[i] * (1 - s) / rest(x);
    return part;
  }

  // ln(f_i / P) in a liquid, free water above the limit included.
  Composition liquid(const Composition& x, double& Z) const {
    const Composition part = oil(x);
    Phase<double> phase;
    evaluate(par, question.P, part.data(), Root::smallest, false, phase);
    Composition ln_f(n);
    for (int i = 0; i < n; ++i) ln_f[i] = std::log(part[i]) + phase.ln_phi[i];
    ln_f[iw] = std::log(psat / question.P * std::min(1.0, x[iw] / s));
    Z = phase.Z;
    return ln_f;
  }
};

struct Known {
  Composition x;
  double Z;
  double volume;  // over the covolume, in P/(R T)
  bool vapour;    // the lighter phase, or the only one
};

// Successive substitution on a trial phase w with ln(f_i / P) = d_i; total: what its fractions add up to. True
// when it settles.
bool settle(const Water& water, const Composition& d, bool trial_is_liquid, Composition& w,
            Phase<double>& phase, double& total) {
  Composition next(water.n);
  bool settled = false;
  for (int k = 0; k < 1000 && !settled; ++k) {
    evaluate(water.par, water.question.P, w.data(), trial_is_liquid ? Root::smallest : Root::largest, false,
             phase);
    total = 0;
    for (int i = 0; i < water.n; ++i) {
      next[i] = std::exp(std::clamp(d[i] - phase.ln_phi[i], -300.0, 300.0));
      if (i == water.iw && trial_is_liquid) next[i] = std::exp(d[i]) * water.question.P / water.psat * water.s;
      total += next[i];
    }
    double change = 0;
    for (int i = 0; i < water.n; ++i) {
      change = std::max(change, std::abs(next[i] / total - w[i]));
      w[i] = next[i] / total;
    }
    settled = change < 1e-12;
  }
  return settled;
}

// One fluid: its hydrocarbons and its packing.
bool same(const Water& water, const Composition& w, double Z, const Known& other) {
  double distance = 0;
  for (int i = 0; i < water.n; ++i) {
    if (i != water.iw)
      distance = std::max(distance, std::abs(w[i] / water.rest(w) - other.x[i] / water.rest(other.x)));
  }
  return distance < 1e-3 && std::abs(Z - other.Z) < 0.1 * std::max(Z, other.Z);
}

// Whether a trial settles on a phase that is not one of the known ones and grows: that phase is missing.
bool phase_missing(const Water& water, const Composition& d, Composition w, bool trial_is_liquid,
                   const std::vector<Known>& known) {
  Phase<double> phase;
  double total = 1;
  const bool settled = settle(water, d, trial_is_liquid, w, phase, total);
  // The equation of state lets a liquid hold another amount of water than the rules do: a trial counts only as
  // what it was tried for, a liquid below and a vapour above the pseudo-critical volume.
  const double volume_ratio = phase.Z * 82.057 * water.par.T / (water.question.P * phase.b);
  const bool thin = volume_ratio > vapour_volume_ratio;
  const Known* lighter = nullptr;    // the vapour, when it is denser than the trial
  bool lightest = known.size() > 1;  // of two fluids in equilibrium both are denser than the trial
  for (const Known& k : known) {
    if (same(water, w, phase.Z, k)) return false;
    const bool denser = phase.Z / phase.b > k.volume;
    if (k.vapour && denser) lighter = &k;
    lightest = lightest && denser;
  }
  if (trial_is_liquid ? thin : !thin && lighter == nullptr && !lightest) return false;
  if (trial_is_liquid && lighter != nullptr) {
    // It may be that vapour, with the water that a liquid would hold: by the rules of a vapour it comes to it
    // then.
    Composition v = w;
    Phase<double> there;
    double sum = 1;
    settle(water, d, false, v, there, sum);
    if (same(water, v, there.Z, *lighter)) return false;
  }
  return total > 1 + (settled ? fugacity_tolerance : 1e-6);  // slow beside a critical point
}

std::string message(const char* format, double value) {
  char buffer[120];
  std::snprintf(buffer, sizeof buffer, format, value);
  return buffer;
}

// Trials of both kinds from Wilson's guesses and from the near-pure heaviest and lightest components.
std::string missing_phase(const Water& water, const Composition& d, const std::vector<Known>& known) {
  const Components& c = *water.question.components;
  std::vector<Composition> starts;
  for (double sign : {1.0, -1.0}) {
    Composition w(water.n);
    double total = 0;
    for (int i = 0; i < water.n; ++i) {
      const double ln_k = std::log(c.pc[i] / water.question.P) + wilson_exponent(c, i, water.question.T);
      total += w[i] = i == water.iw ? 1e-9 : water.question.z[i] * std::exp(sign * ln_k);
    }
    for (double& v : w) v /= total;
    starts.push_back(w);
  }
  Composition ideal(water.n);
  double sum = 0;
  for (int i = 0; i < water.n; ++i) sum += ideal[i] = std::exp(std::clamp(d[i], -300.0, 300.0));
  for (double& v : ideal) v /= sum;
  starts.push_back(ideal);
  for (int k = 0; k < water.n; ++k) {
    if (k == water.iw) continue;
    Composition w(water.n);
    for (int i = 0; i < water.n; ++i) w[i] = i == k ? 0.999 : 0.001 / (water.n - 1);
    starts.push_back(w);
    for (const double part : {0.5, 0.1}) {
      Composition between(water.n);
      for (int i = 0; i < water.n; ++i) between[i] = part * w[i] + (1 - part) * ideal[i];
      starts.push_back(between);
    }
  }
  for (const Composition& start : starts) {
    if (phase_missing(water, d, start, true, known)) return "a liquid is missing";
    if (phase_missing(water, d, start, false, known)) return "a vapour is missing";
  }
  return {};
}

// Whether what a water-rich liquid holds beside water is an oil in equilibrium with the vapour: then it is one.
bool holds_oil(const Water& water, const Answer& answer, const Composition& liquid, const Composition& vapour) {
  int compared = 0;
  for (int i = 0; i < water.n; ++i) {
    if (i == water.iw || !(answer.x[i] > 1e-15)) continue;
    ++compared;
    if (!(std::abs(liquid[i] - vapour[i]) <= fugacity_tolerance)) return false;
  }
  return compared > 0;
}

void judge_rules(const Question& question, const Answer& answer, Verdict& verdict, bool point = false) {
  const Water water(question);
  const int n = water.n;
  std::vector<Known> known;
  Composition d(n);
  double liquid_Z = 0, vapour_Z = 0;
  const bool has_liquid = answer.beta < 1 || point, has_vapour = answer.beta > 0 || point;
  const Composition liquid = has_liquid ? water.liquid(answer.x, liquid_Z) : Composition(n);
  const Composition vapour = has_vapour ? water.vapour(answer.y, vapour_Z) : Composition(n);
  const bool water_rich =
      has_liquid && answer.x[water.iw] > 0.9999 && !(has_vapour && holds_oil(water, answer, liquid, vapour));
  for (int i = 0; i < n && has_liquid && has_vapour; ++i) {
    if (water_rich && i != water.iw) continue;  // what a water-rich phase dissolves is left open
    if (question.z[i] == 0) continue;
    const double true_ln_k = liquid[i] - vapour[i] + std::log(answer.y[i] / answer.x[i]);
    const double bound = 34.538776394910684;
    const double K = answer.y[i] / answer.x[i];
    if ((K < 1.000001e-15 && true_ln_k < -bound + 1e-6) || (K > 0.999999e15 && true_ln_k > bound - 1e-6)) {
      ++verdict.clamped;
      continue;
    }
    verdict.fugacity = std::max(verdict.fugacity, std::abs(liquid[i] - vapour[i]));
  }
  if (!(verdict.fugacity <= fugacity_tolerance)) {
    verdict.reason = message("fugacities differ by %.3g in ln f (free water)", verdict.fugacity);
    return;
  }
  if (has_vapour) {
    // At the bound of its K it follows no vapour pressure.
    const double excess = vapour[water.iw] + std::log(question.P / water.psat);
    if (excess > fugacity_tolerance && answer.y[water.iw] > 1e-15) {
      verdict.reason = message("the vapour is supersaturated with water by %.3g", excess);
      return;
    }
    const double volume = vapour_Z / water.covolume(answer.y);
    const bool lighter = !has_liquid || water_rich || volume > liquid_Z / water.covolume(water.oil(answer.x));
    known.push_back({answer.y, vapour_Z, volume, lighter});
  }
  if (has_liquid && !water_rich)
    known.push_back({answer.x, liquid_Z, liquid_Z / water.covolume(water.oil(answer.x)), false});
  const bool by_vapour = has_vapour && (water_rich || answer.beta > 0.5);
  d = by_vapour ? vapour : liquid;
  // Water at the bound of its K follows no fugacity where it is a trace: the liquid has it.
  if (by_vapour && has_liquid && answer.y[water.iw] <= 1e-15) d[water.iw] = liquid[water.iw];
  if (has_vapour || !water_rich) verdict.reason = missing_phase(water, d, known);
  if (verdict.reason.empty())
    verdict.outcome = has_liquid && has_vapour ? Outcome::two_phase : Outcome::single_phase;
}

}  // namespace

Verdict judge_free_water(const Question& question, const Answer& answer) {
  Verdict verdict;
  verdict.reason = check_balance(question, answer, verdict.balance);
  if (!verdict.reason.empty()) return verdict;
  judge_rules(question, answer, verdict);
  if (verdict.outcome == Outcome::wrong && question.P > critical_pressure_of_water) {
    const Verdict without = judge_equation_of_state(question, answer);
    if (without.outcome != Outcome::wrong) return without;
  }
  return verdict;
}

Verdict judge_free_water_point(const Question& question, const Answer& answer) {
  Verdict verdict;
  verdict.reason = check_balance(question, answer, verdict.balance);
  if (verdict.reason.empty()) judge_rules(question, answer, verdict, true);
  return verdict;
}

}  // namespace kestrune::sweep
