#include "gases.hpp"

#include <algorithm>
#include <cmath>
#include <random>

namespace kestrune::envelopes {
namespace {

// Every pair of them has published group interactions.
struct Part {
  const char* id;
  double low, high;  // of a log-uniform amount, per cent of the gas
};

const std::vector<Part> kAcid{{"carbon_dioxide", 0.5, 30}, {"hydrogen_sulfide", 0.5, 25}};
const std::vector<Part> kLight{{"ethane", 1, 14},        {"propane", 0.5, 9},     {"isobutane", 0.1, 3},
                               {"n_butane", 0.2, 4},     {"isopentane", 0.05, 2}, {"n_pentane", 0.05, 2},
                               {"neopentane", 0.01, 0.3}};
const std::vector<Part> kOthers{
    {"nitrogen", 0.2, 12},          {"carbon_dioxide", 0.1, 4},  {"n_hexane", 0.02, 1.5},
    {"2_methylpentane", 0.02, 0.5}, {"cyclopentane", 0.01, 0.3}, {"methylcyclopentane", 0.01, 0.4},
    {"cyclohexane", 0.01, 0.5},     {"benzene", 0.01, 0.5},      {"hydrogen", 0.02, 2}};
const std::vector<Part> kHeavy{
    {"n_heptane", 0.02, 2},        {"methylcyclohexane", 0.02, 0.8}, {"toluene", 0.02, 0.8},
    {"n_octane", 0.01, 1.5},       {"m_xylene", 0.01, 0.5},          {"n_nonane", 0.01, 1},
    {"n_decane", 0.005, 1},        {"n_undecane", 0.003, 0.8},       {"n_dodecane", 0.002, 0.7},
    {"n_tetradecane", 0.001, 0.5}, {"n_hexadecane", 0.0005, 0.4},    {"n_eicosane", 0.0001, 0.3}};

class Draw {
 public:
  explicit Draw(uint64_t seed) : engine_(seed) {}
  double number() { return static_cast<double>(engine_() >> 11) / 9007199254740992.0; }
  int below(int n) { return std::min(n - 1, static_cast<int>(number() * n)); }
  double amount(const Part& p) { return p.low * std::exp(number() * std::log(p.high / p.low)); }

 private:
  std::mt19937_64 engine_;
};

}  // namespace

Gas random_gas(uint64_t seed, int number) {
  Draw draw(seed * 1000003u + static_cast<uint64_t>(number));
  Gas gas;
  gas.sour = draw.number() < 0.4;
  gas.heavy = draw.number() < 0.5;
  const int wanted = 5 + draw.below(11);
  double others = 0.0;
  const auto add = [&](const Part& p) {
    if (static_cast<int>(gas.ids.size()) + 1 >= wanted) return;
    if (std::find(gas.ids.begin(), gas.ids.end(), p.id) != gas.ids.end()) return;
    gas.ids.emplace_back(p.id);
    gas.z.push_back(draw.amount(p));
    others += gas.z.back();
  };
  const auto add_some = [&](std::vector<Part> parts, int count) {
    for (int k = 0; k < count && !parts.empty(); ++k) {
      const int which = draw.below(static_cast<int>(parts.size()));
      add(parts[static_cast<size_t>(which)]);
      parts.erase(parts.begin() + which);
    }
  };
  if (gas.sour) add_some(kAcid, 1 + draw.below(2));
  add(kLight[0]);
  add(kLight[1]);
  if (gas.heavy) add_some(kHeavy, 1 + draw.below(5));
  add_some(kLight, wanted / 2);
  add_some(kOthers, wanted);
  gas.ids.emplace_back("methane");
  gas.z.push_back(std::max(100.0 - others, 20.0));
  double sum = 0.0;
  for (const double v : gas.z) sum += v;
  for (double& v : gas.z) v /= sum;
  return gas;
}

}  // namespace kestrune::envelopes
