// kestrune_envelopes: envelopes and critical points of random gases, asked of the shared library as a host does
// and judged independently.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include "common/mixture.hpp"
#include "gases.hpp"
#include "judge.hpp"
#include "states.hpp"
#include "tables.hpp"

namespace {

using namespace kestrune;
using namespace kestrune::envelopes;

constexpr const char* kUsage =
    "kestrune_envelopes [options]\n"
    "  --gases N   random gases (default 500)\n"
    "  --first N   number of the first gas (default 0)\n"
    "  --seed N    other gases (default 1)\n"
    "  --points N  points per curve, evenly spaced (default 0: as traced)\n"
    "  --jobs N    threads of the judge (default 1)\n"
    "  --only LIST gases of several seeds: SEED:NUMBER,SEED:NUMBER,...\n"
    "  --verbose   one line for every gas\n";

struct Options {
  int gases = 500, first = 0, points = 0, jobs = 1;
  uint64_t seed = 1;
  bool verbose = false;
  std::vector<std::pair<uint64_t, int>> only;  // seed and number
};

bool parse(int argc, char** argv, Options& o) {
  for (int i = 1; i < argc; ++i) {
    const std::string name = argv[i];
    if (name == "--verbose") {
      o.verbose = true;
      continue;
    }
    if (i + 1 >= argc) return false;
    const char* text = argv[++i];
    if (name == "--only") {
      for (char* at = const_cast<char*>(text); *at != '\0'; at += *at == ',') {
        const uint64_t seed = std::strtoul(at, &at, 10);
        if (*at++ != ':') return false;
        o.only.emplace_back(seed, static_cast<int>(std::strtol(at, &at, 10)));
      }
      continue;
    }
    const int value = std::atoi(text);
    if (name == "--gases")
      o.gases = value;
    else if (name == "--first")
      o.first = value;
    else if (name == "--points")
      o.points = value;
    else if (name == "--jobs")
      o.jobs = std::max(1, value);
    else if (name == "--seed")
      o.seed = static_cast<uint64_t>(value);
    else
      return false;
  }
  return true;
}

struct CriticalAnswer {
  int status = 0;
  double T = 0, P = 0, V = 0, Z = 0;
};

struct Case {
  Gas gas;
  sweep::Components components;
  Curve curve;
  CriticalAnswer critical;
  double envelope_us = 0, critical_us = 0;
  CurveVerdict of_curve;
  CriticalConditions of_critical;
};

template <class Call>
double microseconds(const Call& call) {
  const auto start = std::chrono::steady_clock::now();
  call();
  return 1e6 * std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void ask(Case& c, int points) {
  constexpr int kCapacity = 1000;
  tests::Mixture m = tests::mixture_of(c.gas.ids);
  m.use();
  Curve& curve = c.curve;
  for (auto* v : {&curve.T, &curve.P, &curve.kind}) v->resize(kCapacity);
  std::int32_t count = 0, criticals = 0;
  double* e = curve.extremes;
  c.envelope_us = microseconds([&] {
    curve.status =
        PhaseEnvelope(c.gas.z.data(), &m.record, nullptr, 0, 0, 0, 0, points, kCapacity, 1.0, 0, curve.T.data(),
                      curve.P.data(), curve.kind.data(), &count, &criticals, e, e + 1, e + 2, e + 3);
  });
  curve.criticals = criticals;
  for (auto* v : {&curve.T, &curve.P, &curve.kind}) v->resize(static_cast<size_t>(count));
  CriticalAnswer& a = c.critical;
  c.critical_us =
      microseconds([&] { a.status = CriticalPoint(c.gas.z.data(), &m.record, 0, &a.T, &a.P, &a.V, &a.Z); });
}

bool complete(int status) {
  return status == KV_OK || status == KV_ENVELOPE_OPEN || status == KV_ENVELOPE_COLD ||
         status == KV_ENVELOPE_LIQUIDS;
}

// A critical point is owed where the outline has one, and is the hottest of them.
bool critical_good(const Case& c) {
  const Curve& curve = c.curve;
  double hottest = 0;
  int listed = 0;
  for (size_t k = 0; k < curve.T.size(); ++k)
    if (curve.kind[k] == 0.5) {
      ++listed;
      hottest = std::max(hottest, curve.T[k]);
    }
  if (listed != curve.criticals) return false;
  if (c.critical.status != KV_OK) return c.critical.status == KV_NO_CRITICAL && listed == 0;
  return std::fabs(hottest / c.critical.T - 1) < 1e-7 && std::fabs(c.of_critical.eigenvalue) < 1e-8 &&
         std::fabs(c.of_critical.form) < 1e-8 && c.of_critical.tpd > -1e-8;
}

void print_case(int number, const Case& c) {
  std::printf(
      "gas %d: %d components%s%s, status %d, %d points (%d stable, %d wrong, lowest tpd %.2g), %d critical\n",
      number, static_cast<int>(c.gas.ids.size()), c.gas.sour ? ", sour" : "", c.gas.heavy ? ", heavy" : "",
      c.curve.status, static_cast<int>(c.curve.T.size()), c.of_curve.stable, c.of_curve.wrong,
      c.of_curve.lowest, c.curve.criticals);
  std::printf("  critical: status %d T %.4f P %.4f, eigenvalue %.2g form %.2g tpd %.2g; %.0f us, %.0f us\n",
              c.critical.status, c.critical.T, c.critical.P, c.of_critical.eigenvalue, c.of_critical.form,
              c.of_critical.tpd, c.envelope_us, c.critical_us);
  if (!c.of_curve.reason.empty()) std::printf("  %s\n", c.of_curve.reason.c_str());
}

// No bubble or dew point far above the cricondenbar, where dense fluids are beside each other.
bool kinds_good(const Curve& curve) {
  const double bar = curve.extremes[3];
  if (bar == 0) return true;
  for (size_t k = 1; k + 1 < curve.T.size(); ++k)
    if ((curve.kind[k] == 0.0 || curve.kind[k] == 1.0) && curve.P[k] > 1.5 * bar) return false;
  return true;
}

double median(std::vector<double> v) {
  std::nth_element(v.begin(), v.begin() + static_cast<std::ptrdiff_t>(v.size() / 2), v.end());
  return v[v.size() / 2];
}

int report(const Options& o, const std::vector<Case>& cases) {
  std::map<int, int> statuses;
  int completed = 0, wrong_curves = 0, wrong_points = 0, points = 0, critical = 0, found = 0, misnamed = 0;
  double lowest = 0, eigenvalue = 0, form = 0;
  std::vector<double> envelope_us, critical_us;
  for (size_t k = 0; k < cases.size(); ++k) {
    const Case& c = cases[k];
    ++statuses[c.curve.status];
    completed += complete(c.curve.status);
    wrong_curves += c.of_curve.wrong > 0;
    wrong_points += c.of_curve.wrong;
    points += c.of_curve.stable;
    critical += critical_good(c);
    misnamed += !kinds_good(c.curve);
    found += c.critical.status == KV_OK;
    lowest = std::min(lowest, c.of_curve.lowest);
    eigenvalue = std::max(eigenvalue, std::fabs(c.of_critical.eigenvalue));
    form = std::max(form, std::fabs(c.of_critical.form));
    envelope_us.push_back(c.envelope_us);
    critical_us.push_back(c.critical_us);
    if (o.verbose || !complete(c.curve.status) || c.of_curve.wrong > 0 || !critical_good(c) ||
        !kinds_good(c.curve))
      print_case(o.only.empty() ? o.first + static_cast<int>(k) : o.only[k].second, c);
  }
  const double n = static_cast<double>(cases.size());
  std::printf("%d gases, seed %d\n", static_cast<int>(n), static_cast<int>(o.seed));
  for (const auto& [status, count] : statuses)
    std::printf("  %5d x %d %s\n", count, status, kv_status_text(status));
  std::printf("complete %d (%.2f %%)\n", completed, 100 * completed / n);
  std::printf("points %d on the boundary of %d, gases with others %d; lowest distance %.2g\n",
              points - wrong_points, points, wrong_curves, lowest);
  std::printf("critical points good %d (%.2f %%), found %d; largest eigenvalue %.2g, form %.2g\n", critical,
              100 * critical / n, found, eigenvalue, form);
  std::printf("gases with bubble or dew points above 1.5 times the cricondenbar: %d\n", misnamed);
  std::printf("median times: envelope %.0f us, critical point %.0f us\n", median(envelope_us),
              median(critical_us));
  const int allowed = static_cast<int>(n) / 500;
  return static_cast<int>(n) - completed <= allowed && wrong_curves == 0 && misnamed == 0 &&
                 static_cast<int>(n) - critical <= allowed
             ? 0
             : 1;
}

}  // namespace

int main(int argc, char** argv) {
  Options o;
  if (!parse(argc, argv, o) || o.gases < 1) {
    std::fputs(kUsage, stderr);
    return 2;
  }
  if (!o.only.empty()) o.gases = static_cast<int>(o.only.size());
  std::vector<Case> cases(static_cast<size_t>(o.gases));
  for (int k = 0; k < o.gases; ++k) {
    Case& c = cases[static_cast<size_t>(k)];
    c.gas = o.only.empty()
                ? random_gas(o.seed, o.first + k)
                : random_gas(o.only[static_cast<size_t>(k)].first, o.only[static_cast<size_t>(k)].second);
    c.components = sweep::read_components(KESTRUNE_DATA, c.gas.ids);
    ask(c, o.points);
  }
  sweep::parallel_for(o.gases, o.jobs, [&](int k) {
    Case& c = cases[static_cast<size_t>(k)];
    c.of_curve = judge_curve(c.components, c.gas.z, c.curve);
    if (c.critical.status == KV_OK)
      c.of_critical = judge_critical(c.components, c.gas.z, c.critical.T, c.critical.P, c.critical.V);
  });
  return report(o, cases);
}
