#include "invariants.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace kestrune::fuzz {
namespace {

// Thrown by the rules: the first one that is broken is the finding.
void rule(bool holds, const char* what, std::initializer_list<double> numbers = {}) {
  if (holds) return;
  std::string text;
  for (const double v : numbers) text += " " + shown(v);
  throw Finding{what, text};
}

double sum_of(const double* x, int n) {
  return std::accumulate(x, x + n, 0.0);
}

bool is_output(char word) {
  return std::string_view("EBXvKDNAIj").find(word) != std::string_view::npos;
}
bool is_integer(char word) {
  return word == 'I' || word == 'j';
}

template <class Visit>
void for_each_output(const Call& c, Visit visit) {
  for (std::size_t k = 0; k < c.slots.size(); ++k)
    if (is_output(c.entry.words[k]) && c.slots[k].address != nullptr)
      visit(k, c.entry.words[k], c.slots[k].address);
}

bool untouched(const Call& c, std::size_t argument) {
  return c.zones.unchanged(c.slots[argument].address);
}

// ---- Statuses and the outputs of calls without an answer ----

void check_status(const Call& c) {
  const std::string text = kv_status_text(c.status);
  rule(text.find("unknown") != 0 && text != "pure-component library: error" ? true
                                                                            : c.status == status_of_routines(),
       "a status that stands in no list", {double(c.status)});
  rule(c.status != KV_INTERNAL || c.status == status_of_routines(), "KV_INTERNAL");
  const StatusCode host = status_of_routines();
  const bool goes_on = host <= 50 || host == 201 || host == 202 || host == KV_PURE_RANGE;
  // With free water a flash may be called once more, and the routine need not be asked again then.
  const bool retried = c.free_water();
  if (host != KV_OK && !goes_on && !retried && c.entry.family == Family::two_phases)
    rule(c.status == host, "the status of a host's routine did not end the flash",
         {double(host), double(c.status)});
}

// Of the property exports zeros, of the others what was there, where the call could not be worked with.
void check_refused(const Call& c) {
  const bool refused =
      c.status >= KV_NULL_ARGUMENT && c.status <= KV_COMPOSITION && status_of_routines() == KV_OK;
  const bool has_zeros = c.entry.family == Family::property || c.entry.family == Family::envelope;
  const bool partly = c.status == KV_PURE_RANGE || c.entry.name == std::string_view("GasN") ||
                      c.entry.name == std::string_view("GasSpecificHeat_PPR78");
  for_each_output(c, [&](std::size_t k, char word, const void* address) {
    if (refused && !has_zeros && !(c.entry.family == Family::water && (word == 'A' || is_integer(word))))
      rule(untouched(c, k), "outputs were changed by a call that was refused", {double(k + 1)});
    if (c.entry.family != Family::property || partly) return;
    const auto* values = static_cast<const double*>(address);
    const bool one = word == 'v';
    if (!c.asked(k) || (!one && (c.scenario.record->count != c.count() || c.slot('m').address == nullptr)))
      return;
    for (std::size_t i = 0; i < (one ? 1 : c.size_of(k)); ++i)
      rule(values[i] == 0.0, "an output is not zero where the call failed", {double(k + 1), values[i]});
  });
}

void check_finite(const Call& c) {
  for_each_output(c, [&](std::size_t k, char word, const void* address) {
    if (!c.asked(k)) {
      rule(untouched(c, k), "an output was written that the mask does not ask for", {double(k + 1)});
      return;
    }
    if (is_integer(word) || c.entry.family == Family::hydrate) return;
    const auto* values = static_cast<const double*>(address);
    for (std::size_t i = 0; i < c.size_of(k); ++i)
      rule(std::isfinite(values[i]), "an output is not finite with status 0",
           {double(k + 1), double(i + 1), values[i]});
  });
}

// ---- Phases of a flash ----

struct PhasePart {
  double amount;
  const double* x;
  bool may_be_zero;
  bool is_absent(int n) const { return may_be_zero && sum_of(x, n) == 0.0; }
};

std::vector<PhasePart> phases_of(const Call& c) {
  const bool quality = c.has('W');
  const double W = quality ? std::min(1.0, std::max(0.0, c.number('W'))) : 0.0;
  if (c.entry.family != Family::three_phases) {
    const double beta = quality ? W : c.value('B');
    const bool liquids = c.entry.family == Family::liquids;
    return {{1.0 - beta, c.array('X', 0), liquids}, {beta, c.array('X', 1), liquids}};
  }
  const double beta = c.value('B'), V = quality ? W : c.value('B', 1);
  return {{beta, c.array('X', 0), true}, {1.0 - beta - V, c.array('X', 1), true}, {V, c.array('X', 2), true}};
}

void check_phases(const Call& c, const std::vector<PhasePart>& phases) {
  const int n = c.count();
  const double feed = sum_of(c.z.data(), n);
  for (const PhasePart& p : phases) {
    rule(p.amount >= -1e-12 && p.amount <= 1.0 + 1e-12, "an amount of a phase is outside 0 .. 1", {p.amount});
    for (int i = 0; i < n; ++i)
      rule(p.x[i] >= 0.0 && p.x[i] <= 1.0 + 1e-12, "a mole fraction is outside 0 .. 1", {p.x[i]});
    const double sum = sum_of(p.x, n);
    rule(p.is_absent(n) || std::abs(sum - 1.0) < 1e-9, "a composition does not sum to one",
         {sum - 1.0, p.amount});
    rule(!p.is_absent(n) || std::abs(p.amount) < 1e-12, "a phase has an amount but no composition", {p.amount});
  }
  for (int i = 0; i < n; ++i) {
    double balance = -c.z[static_cast<std::size_t>(i)] / feed;
    for (const PhasePart& p : phases) balance += p.amount * p.x[i];
    rule(std::abs(balance) < 1e-9, "material balance", {double(i + 1), balance});
  }
}

struct Root {
  StatusCode status = KV_OK;
  double gibbs = 0.0;
  std::vector<double> ln_phi;
};

Root root_of(const Call& c, double T, double P, const double* x, bool gas) {
  const int n = c.count();
  Root r;
  r.ln_phi.resize(static_cast<std::size_t>(n));
  const auto property = gas ? GasPhi_Derivatives_PPR78 : LiquidPhi_Derivatives_PPR78;
  r.status = property(T, P, x, c.scenario.record, 2, 0, r.ln_phi.data(), nullptr, nullptr, nullptr);
  for (int i = 0; i < n; ++i) r.gibbs += x[i] * r.ln_phi[static_cast<std::size_t>(i)];
  return r;
}

// Largest difference of ln f of the components that both phases have.
double fugacity_gap(const double* x, const Root& of_x, const double* y, const Root& of_y, int n) {
  double gap = 0.0;
  for (int i = 0; i < n; ++i) {
    if (x[i] < 1e-14 || y[i] < 1e-14) continue;
    const auto k = static_cast<std::size_t>(i);
    gap = std::max(gap, std::abs(std::log(x[i] / y[i]) + of_x.ln_phi[k] - of_y.ln_phi[k]));
  }
  return gap;
}

// What rounding leaves of the digits of ln f in a phase: of large ln phi (1e8 atm) a part in 1e10, and where a component
// that a phase cannot hold has an ln phi of 1e10 (some coefficients below 150 K), what fractions of 1e-15, which are
// written as 0, do to that of the others.
double rounding_of(const double* x, const Root& root, int n) {
  double rounding = 0.0;
  for (int i = 0; i < n; ++i)
    rounding =
        std::max(rounding, (x[i] < 1e-14 ? 1e-14 : 1e-10) * std::abs(root.ln_phi[static_cast<std::size_t>(i)]));
  return rounding;
}

// Whether of the roots of a phase, the one of lower Gibbs energy first, this one is as good as the first: where an
// almost pure component boils rounding and traces tell which is lower.
bool as_good(const Root (&roots)[2], int k) {
  return k == 0 || roots[k].gibbs - roots[0].gibbs < 1e-8;
}

// ln f of a dry mixture are the same in all phases that are there, each at its root of lower Gibbs energy; where
// another phase splits off (117), at any.
void check_fugacities(const Call& c, const std::vector<PhasePart>& phases, double T, double P) {
  const int n = c.count();
  const double crit = c.scenario.record->CRIT > 0.0 ? c.scenario.record->CRIT : KV_DEFAULT_CRIT;
  const double accepted = std::max(1e-6, 10.0 * std::sqrt(crit));
  const double* reference = nullptr;
  Root first[2];
  for (const PhasePart& p : phases) {
    if (p.is_absent(n) || (!c.has('W') && (p.amount < 1e-13 || p.amount > 1.0 - 1e-13))) continue;
    Root here[2] = {root_of(c, T, P, p.x, true), root_of(c, T, P, p.x, false)};
    rule(here[0].status == KV_OK && here[1].status == KV_OK, "the model has no fugacities at the answer",
         {double(here[0].status)});
    if (here[1].gibbs < here[0].gibbs) std::swap(here[0], here[1]);
    if (reference == nullptr) {
      reference = p.x;
      for (int k = 0; k < 2; ++k) first[k] = std::move(here[k]);
      continue;
    }
    double gap = fugacity_gap(reference, first[0], p.x, here[0], n);
    for (int k = 1; k < 4; ++k)
      if (c.status == KV_UNSTABLE_POINT || (as_good(first, k / 2) && as_good(here, k % 2)))
        gap = std::min(gap, fugacity_gap(reference, first[k / 2], p.x, here[k % 2], n));
    const double digits = std::max(rounding_of(reference, first[0], n), rounding_of(p.x, here[0], n));
    rule(gap < std::max(accepted, digits), "ln fugacities differ", {gap});
  }
}

// The phases add up to the enthalpy or entropy, and each has the value that the property exports give it.
void check_energy(const Call& c, const std::vector<PhasePart>& phases, double T) {
  const bool enthalpy = c.has('H');
  const double given = c.number(enthalpy ? 'H' : 'S'), P = c.number('P');
  const double scale = std::max(std::abs(given), 1.987 * (enthalpy ? T : 1.0));
  double sum = 0.0;
  for (std::size_t k = 0; k < phases.size(); ++k) sum += phases[k].amount * c.value('v', static_cast<int>(k));
  rule(std::abs(sum - given) < 1e-6 * scale, "the phases do not add up to what was given", {sum, given});
  if (c.own_routines || c.free_water()) return;
  for (std::size_t k = 0; k < phases.size(); ++k) {
    if (phases[k].amount < 1e-12) continue;
    const double own = c.value('v', static_cast<int>(k));
    double values[2] = {};
    const auto gas = enthalpy ? GasMolarEnthalpy_PPR78 : GasMolarEntropy_PPR78;
    const auto liquid = enthalpy ? LiquidMolarEnthalpy_PPR78 : LiquidMolarEntropy_PPR78;
    const StatusCode known = gas(T, P, phases[k].x, c.scenario.record, values);
    liquid(T, P, phases[k].x, c.scenario.record, values + 1);
    if (known != KV_OK && known != KV_PURE_RANGE) continue;
    const double off = std::min(std::abs(values[0] - own), std::abs(values[1] - own));
    double digits = 1e-6 * std::max(scale, std::abs(own));
    if (off >= digits)
      digits += 1.987 * (enthalpy ? T : 1.0) *
                rounding_of(phases[k].x, root_of(c, T, P, phases[k].x, false), c.count());
    rule(off < digits, "a phase's value is not that of the property exports",
         {double(k + 1), own, values[0], values[1]});
  }
}

void check_ratios(const Call& c) {
  const double *x = c.array('X', 0), *y = c.array('X', 1), *K = c.array('K');
  for (int i = 0; i < c.count(); ++i) {
    const double ratio = x[i] > 0.0 ? std::min(1e15, std::max(1e-15, y[i] / x[i])) : 1e15;
    rule(std::abs(K[i] - ratio) <= 1e-9 * ratio, "K is not y/x", {double(i + 1), K[i], x[i], y[i]});
  }
}

void check_flash(const Call& c) {
  const std::vector<PhasePart> phases = phases_of(c);
  check_phases(c, phases);
  if (c.entry.family == Family::two_phases) check_ratios(c);
  const double T = c.has('T') ? c.number('T') : c.value('E'), P = c.has('P') ? c.number('P') : c.value('E');
  rule(T > 0.0 && P > 0.0, "temperature or pressure is not positive", {T, P});
  if (!c.scenario.sound_model) return;
  if (c.has('H') || c.has('S')) check_energy(c, phases, T);
  // The liquids of FlashLLatTP are on the liquid's root; those of free water follow rules of their own.
  if (!c.free_water() && routines_are_faithful() && c.entry.family != Family::liquids)
    check_fugacities(c, phases, T, P);
}

// ---- The others ----

void check_envelope(const Call& c) {
  const auto* count = static_cast<const std::int32_t*>(c.slot('j').address);
  const auto* criticals = static_cast<const std::int32_t*>(c.slot('j', 1).address);
  const std::int32_t capacity = c.slot('c').integer;
  rule(*count >= 0 && *count <= capacity, "number of points", {double(*count), double(capacity)});
  const double *T = c.array('A', 0), *P = c.array('A', 1), *kind = c.array('A', 2), fraction = c.number('q');
  const auto limit = [&](int k, double otherwise) {
    const double v = static_cast<const Slot&>(c.slot('l', k)).number;
    return v > 0.0 ? v : otherwise;
  };
  int marked = 0;
  for (int i = 0; i < capacity; ++i) {
    if (i >= *count) {
      rule(T[i] == 0.0 && P[i] == 0.0 && kind[i] == 0.0, "an entry behind the last point is not zero",
           {T[i], P[i], kind[i]});
      continue;
    }
    const double k = kind[i] >= 2.0 && kind[i] != 4.0 ? kind[i] - 2.0 : kind[i];
    rule(k == 0.0 || k == 1.0 || k == 0.5 || k == 4.0 || std::abs(k - fraction) < 1e-15, "kind of a point",
         {kind[i]});
    marked += kind[i] == 0.5 && fraction != 0.5 ? 1 : 0;
    rule(P[i] >= limit(0, 1.0) * (1.0 - 1e-6) &&
             P[i] <= limit(1, std::max(2000.0, 2.0 * limit(0, 1.0))) * (1.0 + 1e-6) &&
             T[i] >= limit(2, 50.0) * (1.0 - 1e-6),
         "a point outside the limits", {T[i], P[i]});
  }
  if (c.status == KV_OK && fraction != 0.5)
    rule(marked == *criticals, "number of critical points", {double(marked), double(*criticals)});
}

void check_property(const Call& c) {
  const std::string_view name = c.entry.name;
  if (name == "Humidity")
    rule(c.value('v') >= 0.0 && c.value('v') <= 1.0 && c.value('v', 1) >= 0.0, "water content", {c.value('v')});
  if (!c.sound()) return;
  if (name.find("Density") != name.npos || name == "GasN" || name.find("Viscosity") != name.npos ||
      name.find("Conductivity") != name.npos)
    rule(c.value('v') > 0.0, "a value that is positive by nature", {c.value('v')});
  const int n = c.count();
  if (c.has('N') && c.slots.back().address != nullptr && c.asked(c.slots.size() - 1)) {
    const double* dn = c.array('N');
    // Far below 60 K group interactions may grow to 1e15: differences of such numbers have no digits.
    constexpr double kNoDigits = 1e10;
    if (std::any_of(dn, dn + n * n, [](double v) { return std::abs(v) > kNoDigits; })) return;
    for (int i = 0; i < n; ++i) {
      double sum = 0.0, scale = 1.0;
      for (int j = 0; j < n; ++j) {
        sum += c.z[static_cast<std::size_t>(j)] * dn[j * n + i];
        scale = std::max(scale, std::abs(dn[j * n + i]));
      }
      rule(std::abs(sum) < 1e-6 * scale, "derivatives with mole numbers along the composition",
           {double(i + 1), sum, scale});
    }
  }
}

void check_water(const Call& c) {
  if (!c.has('X') || c.entry.name != std::string_view("WetGasComposition")) return;
  const double* wet = c.array('X');
  const int n = c.count();
  for (int i = 0; i < n; ++i)
    rule(wet[i] >= 0.0 && wet[i] <= 1.0, "a mole fraction is outside 0 .. 1", {wet[i]});
  rule(std::abs(sum_of(wet, n) - 1.0) < 1e-9, "a composition does not sum to one", {sum_of(wet, n) - 1.0});
}

// Statuses with which there is an answer.
bool answered(const Call& c) {
  switch (c.entry.family) {
    case Family::envelope:
      return c.status == KV_OK || (c.status >= KV_ENVELOPE_OPEN && c.status <= KV_ENVELOPE_LIQUIDS);
    case Family::two_phases:
      return c.status == KV_OK || (c.status == KV_UNSTABLE_POINT && status_of_routines() == KV_OK);
    case Family::property:
      return c.status == KV_OK || c.status == KV_PURE_RANGE;
    default:
      return c.status == KV_OK;
  }
}

void check_answer(const Call& c) {
  for (std::size_t k = 0; k < c.slots.size(); ++k)
    rule(c.slots[k].address != nullptr ||
             std::string_view("zmgEBXvKDNAIj").find(c.entry.words[k]) == std::string_view::npos ||
             !c.asked(k) || c.entry.family == Family::hydrate || c.has('n'),
         "an answer with a null pointer", {double(k + 1)});
  check_finite(c);
  switch (c.entry.family) {
    case Family::two_phases:
    case Family::three_phases:
    case Family::liquids:
      return check_flash(c);
    case Family::envelope:
      return check_envelope(c);
    case Family::property:
      return check_property(c);
    case Family::water:
      return check_water(c);
    default:
      return;
  }
}

}  // namespace

Finding broken_rule(const Call& c) {
  if (!c.harm.empty()) return {c.harm, ""};
  try {
    check_status(c);
    if (answered(c))
      check_answer(c);
    else
      check_refused(c);
  } catch (const Finding& finding) {
    return finding;
  }
  return {};
}

}  // namespace kestrune::fuzz
