// Free water asked from every side: random feeds with the flag set, water or none in them, at T and P, at
// vapour fractions, at values of enthalpy and entropy over a range, and as three phases.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

#include "report.hpp"
#include "tables.hpp"
#include "wet_states.hpp"

namespace kestrune::sweep {
namespace {

const std::vector<std::vector<std::string>> systems = {
    {"methane", "n_hexane", "water"},
    {"methane", "n_butane", "water"},
    {"propane", "water"},
    {"propane", "n_heptane", "water"},
    {"methane", "ethane", "propane", "n_butane", "n_hexane", "carbon_dioxide", "water"},
    {"methane", "propane", "n_hexane", "n_decane", "water"},
    {"nitrogen", "methane", "ethane", "propane", "n_butane", "n_pentane", "n_octane", "water"},
    {"methane", "carbon_dioxide", "hydrogen_sulfide", "n_butane", "water"},
    {"carbon_dioxide", "n_decane", "water"},
    {"methane", "benzene", "toluene", "n_heptane", "water"}};
const double waters[] = {0,    1e-20, 3e-16, 1e-12, 1e-7, 1e-5, 1e-4, 1e-3, 5e-3,
                         0.02, 0.05,  0.1,   0.2,   0.4,  0.6,  0.9,  0.99, 0.997};
const double limits[][2] = {{11.2, 6290}, {12.5, 6000}, {8.0, 5000}};  // A, B of the solubility

struct Draw {
  Feed feed;
  double T = 0, P = 0;
};

// Up to where a fifth of a liquid at its limit is water: beyond, the rules describe no liquid.
double hottest(const Draw& d) {
  return std::min(560.0, d.feed.solubility_b / (d.feed.solubility_a - std::log(0.2)));
}

void set_state(Draw& d, std::mt19937_64& random) {
  d.T = 230 + (hottest(d) - 230) * ((random() % 10000) / 1e4);
  d.P = std::exp(std::log(0.2) + std::log(1000) * ((random() % 10000) / 1e4));
}

Draw draw(std::mt19937_64& random) {
  std::uniform_real_distribution<double> part(0, 1);
  Draw d;
  d.feed.name = "wet";
  d.feed.ids = systems[random() % systems.size()];
  const size_t n = d.feed.ids.size();
  const double water = waters[random() % std::size(waters)];
  double sum = 0;
  d.feed.z.resize(n);
  for (size_t i = 0; i + 1 < n; ++i) sum += d.feed.z[i] = std::exp(-4 * part(random));
  for (size_t i = 0; i + 1 < n; ++i) d.feed.z[i] *= (1 - water) / sum;
  d.feed.z[n - 1] = water;
  d.feed.free_water = true;
  const auto& limit = limits[random() % std::size(limits)];
  d.feed.solubility_a = limit[0];
  d.feed.solubility_b = limit[1];
  set_state(d, random);
  return d;
}

struct Sweep {
  Library& library;
  std::FILE* failures;
  std::map<std::string, Tally> tallies;  // by what is asked

  void count(const Draw& d, const std::string& what, const std::string& reason, double value, double found,
             int status, double beta) {
    Tally& tally = tallies[what];
    tally.count("asked");
    if (reason.empty()) return;
    tally.blame({what + ": " + reason.substr(0, reason.find_first_of("0123456789"))});
    std::string ids;
    for (const auto& id : d.feed.ids) ids += id + ";";
    Line(failures) << what << reason << d.T << d.P << value << found << status << beta << d.feed.solubility_a
                   << d.feed.solubility_b << ids << d.feed.z;
  }
};

bool same(const Answer& a, const Answer& b) {
  return a.status == b.status && std::memcmp(&a.beta, &b.beta, sizeof a.beta) == 0 && a.x == b.x &&
         a.y == b.y && a.K == b.K;
}

Question question_at(const Draw& d, const Components& c, double T, double P) {
  return {&c, d.feed.z, T, P, true, d.feed.solubility_a, d.feed.solubility_b};
}

// Why an answer is wrong; not when a phase is missing beside it, or the flash refused, and the rules have no
// state.
std::string blame(Sweep& s, const std::string& what, const Question& question, const std::string& reason) {
  if (reason.find("missing") == std::string::npos && reason.find("120") == std::string::npos) return reason;
  if (wet_state_exists(question)) return reason;
  s.tallies[what].count("no state");
  return {};
}

std::string no_answer(int status) {
  return "status " +
         std::string(status == 112   ? "112."
                     : status == 116 ? "116."
                     : status == 120 ? "120."
                                     : "other") +
         std::to_string(status);
}

// At T and P, cold, and warm from what another state had.
Answer ask_isothermal(Sweep& s, const Draw& d, const Components& c, const Answer* before) {
  const Answer cold = s.library.flash(d.feed, d.T, d.P);
  const Question question = question_at(d, c, d.T, d.P);
  const std::string reason = cold.status != 0 ? no_answer(cold.status) : judge(question, cold).reason;
  s.count(d, "T,P", blame(s, "T,P", question, reason), 0, 0, cold.status, cold.beta);
  const Answer warm = s.library.flash(d.feed, d.T, d.P, before ? before : &cold);
  double apart = std::abs(warm.beta - cold.beta);
  for (size_t i = 0; i < warm.x.size() && cold.beta > 0 && cold.beta < 1; ++i)
    apart = std::max({apart, std::abs(warm.x[i] - cold.x[i]), std::abs(warm.y[i] - cold.y[i])});
  s.count(d, "T,P warm",
          warm.status != cold.status ? "another status"
          : apart > 1e-7             ? "another answer"
                                     : "",
          apart, 0, warm.status, warm.beta);
  return cold;
}

// Whether the answer has a vapour or is one fluid: of two liquids the one in the vapour's place is no less
// dense.
bool has_vapour(const Draw& d, const Components& c, const Answer& a, double T, double P) {
  if (!(a.beta > 0 && a.beta < 1)) return true;
  const size_t w = d.feed.ids.size() - 1;
  const double s = water_solubility(d.feed.solubility_a, d.feed.solubility_b, T);
  const auto par = parameters_at<double>(c, T);
  Composition oil = a.x;
  double rest = 0;
  for (size_t i = 0; i < w; ++i) rest += oil[i];
  if (rest < 1e-12) return true;
  for (size_t i = 0; i <= w && a.x[w] > s; ++i) oil[i] = i == w ? s : oil[i] * (1 - s) / rest;
  Phase<double> liquid, vapour;
  evaluate(par, P, oil.data(), Root::smallest, false, liquid);
  evaluate(par, P, a.y.data(), Root::largest, false, vapour);
  return vapour.Z / vapour.b > liquid.Z / liquid.b;
}

// Whether the flash has states with less and more gas than W next to each other, and not by a change of name
// alone.
bool crossed(Sweep& s, const Draw& d, const Components& c, Given given, double W) {
  constexpr int points = 60;
  const bool of_T = given == Given::pressure;
  const double low = std::log(of_T ? 220 : 1e-3), high = std::log(of_T ? hottest(d) : 1e3);
  const auto excess = [&](double u, double& f) {
    const double T = of_T ? std::exp(u) : d.T, P = of_T ? d.P : std::exp(u);
    const Answer a = s.library.flash(d.feed, T, P);
    f = W == 0 && a.beta == 0 ? -1 : W == 1 && a.beta == 1 ? 1 : a.beta - W;
    return a.status == 0 && has_vapour(d, c, a, T, P);
  };
  double before = 0, f = 0;
  bool known = false;
  for (int k = 0; k <= points; ++k) {
    const double u = low + (high - low) * k / points;
    if (!excess(u, f)) continue;
    if (known && (f > 0) != (before > 0)) {
      double a = u - (high - low) / points, b = u, fa = before, fb = f, fm = 0;
      bool good = true;
      for (int halving = 0; halving < 45 && good; ++halving) {
        good = excess(0.5 * (a + b), fm);
        ((fm > 0) == (fa > 0) ? a : b) = 0.5 * (a + b);
        ((fm > 0) == (fa > 0) ? fa : fb) = fm;
      }
      // At the ends the state with both phases has next to nothing of one of them.
      const double near = W == 0 ? std::max(fa, fb) : W == 1 ? -std::min(fa, fb) : std::abs(fb - fa);
      if (good && near < 1e-3) return true;
    }
    before = f;
    known = true;
  }
  return false;
}

void ask_fraction(Sweep& s, const Draw& d, const Components& c, Given given, double W) {
  const SaturationQuestion q{given, W, given == Given::pressure ? d.P : d.T};
  const SaturationAnswer a = s.library.saturation(d.feed, q);
  const std::string what = given == Given::pressure ? "W,P" : "W,T";
  std::string reason;
  if (a.status == 116) {
    if (crossed(s, d, c, given, W)) reason = "a point exists";
  } else if (a.status != 0 && a.status != 117) {
    reason = no_answer(a.status);
  } else {
    const Answer point{0, W, a.x, a.y, a.K};
    const double T = given == Given::pressure ? a.found : d.T, P = given == Given::pressure ? d.P : a.found;
    const Verdict v = judge_free_water_point(question_at(d, c, T, P), point);
    if (a.status == 0 && T <= hottest(d)) reason = v.reason;
  }
  s.count(d, what, reason, W, a.found, a.status, W);
}

bool value_of(Sweep& s, Quantity quantity, double T, double P, const Answer& a, double& value) {
  double liquid = 0, vapour = 0;
  if (a.status != 0) return false;
  if (a.beta < 1 && !s.library.property(quantity, false, T, P, a.x, liquid)) return false;
  if (a.beta > 0 && !s.library.property(quantity, true, T, P, a.y, vapour)) return false;
  value = (1 - a.beta) * liquid + a.beta * vapour;
  return std::isfinite(value);
}

// A value between those of two temperatures.
void ask_value(Sweep& s, const Draw& d, const Components& c, Quantity quantity, double part) {
  double low = 0, high = 0, value = 0;
  const double top = hottest(d);
  if (!value_of(s, quantity, 220, d.P, s.library.flash(d.feed, 220, d.P), low) ||
      !value_of(s, quantity, top, d.P, s.library.flash(d.feed, top, d.P), high))
    return;
  const double wanted = low + part * (high - low);
  const CaloricAnswer a = s.library.caloric(d.feed, quantity, wanted, d.P, 0);
  std::string reason;
  if (a.phases.status != 0) {
    // Refused: right only in a jump, where the flash has values on both sides within a hair.
    double T_low = 220, T_high = top;
    bool stuck = false;
    for (int k = 0; k < 45; ++k) {
      const double T = 0.5 * (T_low + T_high);
      const Answer there = s.library.flash(d.feed, T, d.P);
      if (!value_of(s, quantity, T, d.P, there, value)) {
        stuck = true;
        reason = blame(s, "H,P and S,P", question_at(d, c, T, d.P), no_answer(120));
        break;
      }
      (value < wanted ? T_low : T_high) = T;
    }
    double below = 0, above = 0;
    const double size = quantity == Quantity::enthalpy ? 600 : 2;
    if (!stuck && (!value_of(s, quantity, T_low, d.P, s.library.flash(d.feed, T_low, d.P), below) ||
                   !value_of(s, quantity, T_high, d.P, s.library.flash(d.feed, T_high, d.P), above) ||
                   above - below < 1e-6 * size))
      reason = no_answer(a.phases.status);
  } else {
    const Question question = question_at(d, c, a.T, d.P);
    reason = blame(s, "H,P and S,P", question, judge(question, a.phases).reason);
    if (!value_of(s, quantity, a.T, d.P, a.phases, value) ||
        std::abs(value - wanted) > 1e-8 * std::max({1.0, std::abs(wanted), std::abs(low), std::abs(high)}))
      reason = "the value is off";
  }
  s.count(d, quantity == Quantity::enthalpy ? "H,P" : "S,P", reason, wanted, a.T, a.phases.status,
          a.phases.beta);
}

void ask_without_water(Sweep& s, const Draw& d, const Components& c) {
  Draw clear = d;
  clear.feed.free_water = false;
  const Answer with = s.library.flash(d.feed, d.T, d.P);
  SaturationAnswer point[2];
  CaloricAnswer value[2];
  Answer plain;
  for (const int k : {0, 1}) {
    const Feed& feed = k ? clear.feed : d.feed;
    s.library.prepare(feed, c);
    if (k) plain = s.library.flash(feed, d.T, d.P);
    point[k] = s.library.saturation(feed, {Given::temperature, 0.0, d.T});
    value[k] = s.library.caloric(feed, Quantity::enthalpy, 100, d.P, 0);
  }
  s.count(d, "no water", same(with, plain) ? "" : "T,P differs from the flag clear", 0, 0, with.status,
          with.beta);
  s.count(d, "no water", point[0].found == point[1].found && point[0].x == point[1].x ? "" : "W,T differs", 0,
          0, 0, 0);
  s.count(d, "no water",
          value[0].T == value[1].T && same(value[0].phases, value[1].phases) ? "" : "H,P differs", 0, 0, 0, 0);
}

}  // namespace

int run_wet(const Options& o, Library& library, std::FILE* failures) {
  std::fprintf(failures, "export,reason,T_K,P_atm,value,found,status,beta,A,B,components,z\n");
  std::mt19937_64 random(o.seed);
  Sweep s{library, failures, {}};
  for (int k = 0; k < o.states / 12; ++k) {
    Draw d = draw(random);
    const Components c = read_components(o.data, d.feed.ids);
    library.prepare(d.feed, c);
    if (d.feed.z.back() < 1e-15) {
      ask_without_water(s, d, c);
      continue;
    }
    Answer before;
    for (int state = 0; state < 4; ++state) {
      const Answer a = ask_isothermal(s, d, c, state ? &before : nullptr);
      before = a;
      const double W = state == 0 ? 0 : state == 1 ? 1 : 0.1 + 0.4 * (random() % 3);
      ask_fraction(s, d, c, state % 2 ? Given::pressure : Given::temperature, W);
      ask_value(s, d, c, state < 2 ? Quantity::enthalpy : Quantity::entropy, (random() % 1000 + 0.5) / 1000);
      set_state(d, random);
    }
  }
  const Columns columns{{"asked", "no state"}, {}};
  print_head(columns);
  Tally total;
  for (const auto& [what, tally] : s.tallies) {
    print_line(columns, what, tally);
    total.add(tally);
  }
  return finish(o, columns, total);
}

}  // namespace kestrune::sweep
