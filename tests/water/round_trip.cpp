// Judge of the dew points: the content of a random gas at random T and P, then the dew pressure at T and the
// dew temperature at P of the gas with that content. Both must lead back to 1e-8, or to another pressure or
// temperature with the same content (a compressed gas can have several). Cold starts, and warm ones from 10 %
// beside the answer.
//
//   water_round_trip [--states N] [--seed S]      returns 1 when a point is wrong, and prints it
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>

#include "common/mixture.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

const std::vector<std::string> kIds{"methane",  "ethane",         "propane",          "n_butane", "n_pentane",
                                    "nitrogen", "carbon_dioxide", "hydrogen_sulfide", "water"};
constexpr double kClose = 1e-8, kSameContent = 1e-9;

struct Tally {
  int states = 0, refused = 0, direct[2] = {}, other[2] = {}, kept = 0, wrong = 0;
  double worst[2] = {};
};

struct State {
  double T, P, y;
  int method;
  std::vector<double> z;
};

double content(Mixture& m, const State& s, double T, double P) {
  double y = 0.0, mg = 0.0;
  return Humidity(T, P, s.method, s.z.data(), &m.record, &y, &mg) == KV_OK ? y : NAN;
}

void judge(Mixture& m, const State& s, bool pressure, double start, Tally& tally) {
  double found = start;
  const StatusCode status = pressure
                                ? WaterDewPressure(s.T, s.z.data(), s.method, 0, 0, &m.record, 0, &found)
                                : WaterDewTemperature(s.P, s.z.data(), s.method, 0, 0, &m.record, 0, &found);
  const double wanted = pressure ? s.P : s.T;
  const double off = std::fabs(found / wanted - 1.0);
  if (status == KV_OK && off <= kClose) {
    ++tally.direct[pressure];
    tally.worst[pressure] = std::max(tally.worst[pressure], off);
    return;
  }
  const double y = pressure ? content(m, s, s.T, found) : content(m, s, found, s.P);
  if (status == KV_OK && std::fabs(y / s.y - 1.0) <= kSameContent) {
    ++tally.other[pressure];
    return;
  }
  // A start whose content is within 1e-8, absolute, is the answer of WaterDewPressure.
  if (pressure && status == KV_OK && found == start && std::fabs(y - s.y) < 1e-8) {
    ++tally.kept;
    return;
  }
  if (++tally.wrong <= 20)
    std::printf("dew %s, method %d, %.17g K %.17g atm, y %.17g, start %g: status %d, %.17g with %.17g\n",
                pressure ? "pressure" : "temperature", s.method, s.T, s.P, s.y, start, status, found, y);
}

}  // namespace

int main(int argc, char** argv) {
  int states = 2000;
  unsigned seed = 20240611;
  for (int i = 1; i + 1 < argc; i += 2) {
    if (std::strcmp(argv[i], "--states") == 0) states = std::atoi(argv[i + 1]);
    if (std::strcmp(argv[i], "--seed") == 0) seed = static_cast<unsigned>(std::atoi(argv[i + 1]));
  }
  Mixture m = mixture_of(kIds);
  m.use();
  std::mt19937_64 random(seed);
  const auto uniform = [&](double low, double high) {
    return low + (high - low) * static_cast<double>(random() >> 11) * 0x1p-53;
  };
  Tally tally;
  while (tally.states < states) {
    State s{uniform(235.0, 500.0), std::exp(uniform(std::log(0.5), std::log(650.0))), 0.0,
            1 + static_cast<int>(random() % 2), std::vector<double>(kIds.size(), 0.0)};
    double sum = 0.0;
    const bool sour = random() % 2 == 0;
    for (std::size_t i = 0; i + 1 < s.z.size(); ++i) {
      s.z[i] = uniform(0.0, 1.0) * (i == 0 ? 4.0 : i < 6 ? 0.2 : sour ? 0.8 : 0.02);
      sum += s.z[i];
    }
    for (double& v : s.z) v /= sum;
    s.y = content(m, s, s.T, s.P);
    if (!(s.y < 0.99)) {
      ++tally.refused;
      continue;
    }
    ++tally.states;
    for (double& v : s.z) v *= 1.0 - s.y;
    s.z.back() = s.y;
    for (const bool pressure : {false, true}) {
      judge(m, s, pressure, 0.0, tally);
      judge(m, s, pressure, (pressure ? s.P : s.T) * uniform(0.9, 1.1), tally);
    }
  }
  std::printf("%d states (%d more without saturation or out of range), seed %u\n", tally.states, tally.refused,
              seed);
  for (const int pressure : {0, 1})
    std::printf("%s: %d of %d back, worst relative %.1e; %d at another solution\n",
                pressure ? "dew pressure" : "dew temperature", tally.direct[pressure], 2 * tally.states,
                tally.worst[pressure], tally.other[pressure]);
  std::printf("%d starts of the dew pressure kept, %d wrong\n", tally.kept, tally.wrong);
  return tally.wrong == 0 ? 0 : 1;
}
