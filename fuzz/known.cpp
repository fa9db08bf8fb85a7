// Cases that once went wrong, made before the random runs.
#include "invariants.hpp"

#include "report.hpp"

namespace kestrune::fuzz {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Known {
  const char* name;     // of the export
  const char* mixture;  // as on the command line; amounts are mole fractions of any sum
  std::uint8_t flags;
  double first, second;  // doubles by value, in their order
  // What else is special; both may be null. change is before the group data are converted.
  void (*change)(Scenario&) = nullptr;
  void (*arrange)(Call&) = nullptr;
  const char* set = "2022";  // of group interactions
};

void unmask_traps(Call& c) {
  c.host = tests::kHosts[0];
}

template <int... entry>
void with_routines(Call& c, const char* manner, int good_calls = 0) {
  set_routines(c.routines, {entry...}, manner, good_calls);
  c.own_routines = true;
}

constexpr char kTraces[] =
    "propane=7.4e-16,COS=1.5e-16,n-hexane=2.2e-16,water=1.5e-16,methane=8e-16,n-dodecane=0.99999999999999,N2=3."
    "8e-15";
constexpr char kSulphideTrace[] =
    "trans-decalin=5.91e-16,n-nonadecane=1.131e-15,diethyl sulfide=2.073e-15,n-nonane=0.999999999999994,methyl "
    "mercaptan=2.616e-15";
constexpr char kThreeGases[] =
    "water=0.069564812281585175,n-butane=0.063982412884698733,SO2=0.86645277483371608";

const Known kKnown[] = {
    // Checks of arguments behind the guard of the floating-point words.
    {"FlashLLVatWP", "methane=.6,n-pentane=.3,water=.1", 0, 0.5, NAN, nullptr, unmask_traps},
    {"FlashLLVatWT", "methane=.6,n-pentane=.3,water=.1", 0, 0.5, 5e-324, nullptr, unmask_traps},
    {"FlashLVatWT", "methane=.6,n-pentane=.4", 0, 0.5, NAN, nullptr, unmask_traps},
    // What a routine of the host writes is looked at.
    {"FlashLVatHP", "methane=.6,n-pentane=.4", 0, -1000, 20, nullptr,
     [](Call& c) { with_routines<11, 13>(c, "write NaN"); }},
    {"FlashLVatSP", "methane=.6,n-pentane=.4", 0, -10, 20, nullptr,
     [](Call& c) { with_routines<12, 14>(c, "write NaN"); }},
    {"FlashLLVatTP", "methane=.6,n-pentane=.3,water=.1", 1, 300, 20, nullptr,
     [](Call& c) { with_routines<2>(c, "write NaN"); }},
    {"FlashLLVatTP", "methane=.6,n-pentane=.3,water=.1", 1, 300, 20, nullptr,
     [](Call& c) { with_routines<2>(c, "write 1e300"); }},
    {"FlashLVatTP", "n-decane=.4,hydrogen=.3,n-pentane=0,propane=.3", 0, 314, 0.97, nullptr,
     [](Call& c) { with_routines<8>(c, "write 1e300", 5); }},
    // The feed divided by its sum; nothing of a phase lost where fractions are at the bounds of K.
    {"FlashLLatTP", "methane=2", 0, 200, 10},
    {"FlashLVatTP", kTraces, 0, 229.17, 0.598},
    {"FlashLVatTP", "He=8e-21,n-heptane=.047,H2=8e-13,water=.66,propane=.29", 128, 372.6,
     2.2250738585072014e-308},
    {"FlashLVatTP", kThreeGases, 128, 282.74472244083881, 2.7777153474151177},
    // A trace that is not written, of which the interactions are continued to where their slopes are enormous.
    {"FlashLLVatHP", kSulphideTrace, 0, -23382.580733868777, 59.832096220314718, nullptr, nullptr, "original"},
    // Traces of the feed that are much of a phase of 1e-10 of it.
    {"FlashLVatSP", "argon=0.9999999999,ammonia=9.99893e-11,n-butane=5e-16,n-hexane=1e-16", 0, -25.7203770357,
     61.4335},
    // Finite numbers.
    {"GasPhi_Derivatives_PPR78", "methane=.6,n-pentane=.4", 0, 300, 1e-310},
    {"LiquidPhi_Derivatives_PPR78", "methane=.6,n-pentane=.4", 0, 300, 1,
     [](Scenario& s) { s.mixture.A.back() = s.mixture.A[1] = NAN; }},
    {"GasMolarEnthalpy_Derivatives_PPR78", "methane=.6,n-pentane=.4", 0, 1e300, 1},
    {"LiquidMolarEntropy_Derivatives_PPR78", "methane=.6,n-pentane=.4", 0, 1e300, 1},
    {"CriticalPoint", "methane=.6,n-pentane=.4", 0, 0, 0, [](Scenario& s) { s.at(0, KV_COL_PC) = 5e-324; }},
    {"CriticalPoint", "methane=1", 0, 0, 0, [](Scenario& s) { s.at(0, KV_COL_TC) = 1e-310; }},
    {"CriticalPoint", "methane=.6,n-pentane=.4", 0, 0, 0,
     [](Scenario& s) { s.at(0, KV_COL_TC) = s.at(1, KV_COL_TC) = 0.0; }},
    {"WaterDewLine", "methane=.9,water=.1", 0, 1e-310, 0},
    {"MolecularWeight", "methane=.9,water=.1", 0, 0, 0,
     [](Scenario& s) { s.at(0, KV_COL_MOLAR_MASS) = kInfinity; }},
    // States at the edge.
    {"FlashLVatSP", "methane=.259,water=.741", 1, -28.306, 31577},
    {"FlashLVatTP", "methane=.9,water=.1", 1, 105, 1},
    {"FlashLVatTP", "methane=.9,water=.1", 1, 60, 1},
    {"GasSpecificHeat_PPR78", "isopentane=.75,water=.25", 0, 303.66, 104.7},
    // Counts and missing data.
    {"HydrateLine", "methane=.9,ethane=.1", 0, 0, 0, nullptr, [](Call& c) { c.slot('#').integer = INT32_MIN; }},
    {"Humidity", "methane=.9,water=.1", 0, 300, 10, [](Scenario& s) { s.hand_over(0); }},
    {"FlashLLVatWP", "methane=.5,ethane=.2,n-hexane=.2,water=.1", 0, 0.5, 30,
     [](Scenario& s) { s.record->ITEMAX = INT32_MAX; }},
    {"FlashLVatHP", "methane=.6,n-pentane=.4", 0, 1e6, 30, [](Scenario& s) { s.record->ITEMAX = INT32_MAX; }}};

}  // namespace

std::size_t known_cases() {
  return std::size(kKnown);
}

void known_case(std::size_t k) {
  const Known& known = kKnown[k];
  host::Composition composition;
  host::read_inline(known.mixture, composition, false);
  Scenario scenario(composition, known.flags, known.set);
  scenario.hand_over(scenario.n());
  if (known.change != nullptr) {
    scenario.flaw = "known";
    known.change(scenario);
    if (known.name != std::string_view("Humidity")) scenario.hand_over(scenario.n());
  }
  Choices none(nullptr, 0);
  Call call(none, scenario, entry_of(known.name));
  const double numbers[] = {known.first, known.second};
  std::size_t next = 0;
  for (Slot& slot : call.slots)
    if (std::string_view("TPHSWl").find(slot.kind) != std::string_view::npos && next < 2)
      slot.number = numbers[next++];
  if (call.has('k')) call.slot('k').integer = 7;
  if (known.arrange != nullptr) known.arrange(call);
  make_call(call);
}

}  // namespace kestrune::fuzz
