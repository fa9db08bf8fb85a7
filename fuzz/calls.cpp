#include "calls.hpp"

#include <numeric>

#include "report.hpp"

namespace kestrune::fuzz {
namespace {

template <class... A>
StatusCode through_slots(StatusCode(KV_CALL* address)(A...), const std::vector<Slot>& slots) {
  return tests::apply_slots(address, slots, std::index_sequence_for<A...>{});
}

constexpr double kCasOfWater = 7732185.0;

double draw_temperature(Choices& choices) {
  const int share = choices.below(10);
  if (share == 9) return choices.between(5.0, 3000.0);
  return share < 6 ? choices.between(150.0, 450.0) : choices.between(60.0, 800.0);
}

double draw_pressure(Choices& choices) {
  return choices.chance(10) ? choices.even_in_logarithm(1e-7, 1e6) : choices.even_in_logarithm(0.05, 1000.0);
}

double draw_fraction(Choices& choices) {
  return choices.chance(40) ? choices.unit() : choices.pick({0.0, 1.0, 0.5, -0.1, 1.2, 1e-9});
}

// How arguments by value are drawn; H and S depend on the mixture.
using C = Choices;
const struct {
  char word;
  double (*draw)(C&);
} kNumbers[] = {{'T', draw_temperature},
                {'P', draw_pressure},
                {'W', draw_fraction},
                {'l', [](C& c) { return c.chance(20) ? c.even_in_logarithm(0.01, 1000.0) : 0.0; }},
                {'q', [](C& c) { return c.chance(30) ? c.unit() : 1.0; }},
                {'a', [](C& c) { return c.chance(50) ? c.even_in_logarithm(1e-10, 1e-3) : 0.0; }},
                {'M', [](C& c) { return c.between(20.0, 200.0); }},
                {'%', [](C& c) { return c.between(0.0, 60.0); }}};
const struct {
  char word;
  std::initializer_list<std::int32_t> values;
} kIntegers[] = {{'o', {1, 0, 1, 0, 2, 3}},
                 {'k', {7, 0, 1, 2, 3, 4, 5, 6}},
                 {'2', {2}},
                 {'e', {1, 2, 0, 1, 2, 3}},
                 {'s', {0, 1, 2}},
                 {'h', {0, 1, 2, 3, 4, 5}},
                 {'w', {0, 0, 0, 2, 30, 100, 1}},
                 {'c', {400, 1000, 400, 20, 2, 1}},
                 {'#', {10, 1, 2, 5, 30, 0}}};

bool is_one_of(char word, std::string_view words) {
  return words.find(word) != std::string_view::npos;
}
bool is_number(char word) {
  return is_one_of(word, "TPHSWlqaM%");
}
bool is_integer(char word) {
  return is_one_of(word, "o2k0eshwnc#");
}

}  // namespace

#define KV_ENTRY_OF(name, words, family) \
  {#name, words, Family::family, [](const std::vector<Slot>& s) { return through_slots(&::name, s); }},
// One after the other: a list in braces would be indented by the formatter up to its macro.
#define KV_ENTRIES                                                          \
  KV_ENTRY_OF(FlashLVatTP, "TPzmroBXXK", two_phases)                        \
  KV_ENTRY_OF(FlashLVatHP, "HPzmroEBXXKvv", two_phases)                     \
  KV_ENTRY_OF(FlashLVatSP, "SPzmroEBXXKvv", two_phases)                     \
  KV_ENTRY_OF(FlashLVatWP, "WPzmroEXXK", two_phases)                        \
  KV_ENTRY_OF(FlashLVatWT, "WTzmroEXXK", two_phases)                        \
  KV_ENTRY_OF(FlashLLVatTP, "TPzmroBBXXXKK", three_phases)                  \
  KV_ENTRY_OF(FlashLLVatHP, "HPzmroEBBXXXKKvvv", three_phases)              \
  KV_ENTRY_OF(FlashLLVatSP, "SPzmroEBBXXXKKvvv", three_phases)              \
  KV_ENTRY_OF(FlashLLVatWP, "WPzmroEBXXXKK", three_phases)                  \
  KV_ENTRY_OF(FlashLLVatWT, "WTzmroEBXXXKK", three_phases)                  \
  KV_ENTRY_OF(FlashLLatTP, "TPzmroBXXK", liquids)                           \
  KV_ENTRY_OF(PhaseEnvelope, "zmr0lllwcqaAAAjjvvvv", envelope)              \
  KV_ENTRY_OF(CriticalPoint, "zm0vvvv", critical)                           \
  KV_ENTRY_OF(WaterDewTemperature, "Pze00m0E", water)                       \
  KV_ENTRY_OF(WaterDewPressure, "Tze00m0E", water)                          \
  KV_ENTRY_OF(WaterDewLine, "ze00m0ll#AAIj", water)                         \
  KV_ENTRY_OF(WetGasComposition, "TPzse0m0X", water)                        \
  KV_ENTRY_OF(HydrateLine, "zhM%#m0AA", hydrate)                            \
  KV_ENTRY_OF(Humidity, "TPezmvv", property)                                \
  KV_ENTRY_OF(MolecularWeight, "nzgv", property)                            \
  KV_ENTRY_OF(GasN, "TPzmvvvv", property)                                   \
  KV_ENTRY_OF(LiquidDensity_PPR78, "TPzmvvvv", property)                    \
  KV_ENTRY_OF(GasDensity_PPR78, "TPzmvvvv", property)                       \
  KV_ENTRY_OF(LiquidMolarEnthalpy_PPR78, "TPzmv", property)                 \
  KV_ENTRY_OF(GasMolarEnthalpy_PPR78, "TPzmv", property)                    \
  KV_ENTRY_OF(LiquidMolarEntropy_PPR78, "TPzmv", property)                  \
  KV_ENTRY_OF(GasMolarEntropy_PPR78, "TPzmv", property)                     \
  KV_ENTRY_OF(LiquidMolarFreeEnthalpy_PPR78, "TPzmv", property)             \
  KV_ENTRY_OF(GasMolarFreeEnthalpy_PPR78, "TPzmv", property)                \
  KV_ENTRY_OF(LiquidMolarEnthalpy_Derivatives_PPR78, "TPzmkvvvD", property) \
  KV_ENTRY_OF(GasMolarEnthalpy_Derivatives_PPR78, "TPzmkvvvD", property)    \
  KV_ENTRY_OF(LiquidMolarEntropy_Derivatives_PPR78, "TPzmkvvvD", property)  \
  KV_ENTRY_OF(GasMolarEntropy_Derivatives_PPR78, "TPzmkvvvD", property)     \
  KV_ENTRY_OF(LiquidPhi_Derivatives_PPR78, "TPzm2kDDDN", property)          \
  KV_ENTRY_OF(GasPhi_Derivatives_PPR78, "TPzm2kDDDN", property)             \
  KV_ENTRY_OF(GasSpecificHeat_PPR78, "TPzmvvvv", property)                  \
  KV_ENTRY_OF(GasDynamicViscosity_PPR78, "TPzmv", property)                 \
  KV_ENTRY_OF(GasThermalConductivity_PPR78, "TPzmv", property)

const std::vector<Entry>& entries() {
  static const std::vector<Entry> all{KV_ENTRIES};
  return all;
}

const Entry& entry_of(std::string_view name) {
  return *std::find_if(entries().begin(), entries().end(), [=](const Entry& e) { return name == e.name; });
}

Call::Call(Choices& choices, Scenario& s, const Entry& e)
    : scenario(s), entry(e), slots(e.words.size()), z(s.mixture.z) {
  if (choices.chance(12)) z = spoiled(choices, z, flaw);
  for (std::size_t k = 0; k < slots.size(); ++k) draw_slot(choices, k);
  if (has('H') || has('S')) draw_energy(choices);
  if (flaw.empty() && choices.chance(25)) draw_flaw(choices);
  if (has('r') && choices.chance(25)) own_routines = draw_routines(choices, routines);
  zones.seal();
  if (choices.chance(30)) host = tests::kHosts[choices.below(static_cast<int>(std::size(tests::kHosts)))];
}

void Call::draw_slot(Choices& choices, std::size_t argument) {
  const char word = entry.words[argument];
  const std::size_t size = size_of(argument);
  Slot& slot = slots[argument];
  slot.kind = word;
  if (is_number(word)) {
    for (const auto& row : kNumbers)
      if (row.word == word) slot.number = row.draw(choices);
  } else if (is_integer(word)) {
    if (word == 'n') slot.integer = count();
    for (const auto& row : kIntegers)
      if (row.word == word) slot.integer = choices.pick(row.values);
    if (is_one_of(word, "c#")) points_ = slot.integer;
  } else if (word == 'm') {
    slot.address = scenario.record;
  } else if (word == 'g') {
    slot.address = &scenario.at(0, KV_COL_MOLAR_MASS);
  } else if (is_one_of(word, "Ij")) {
    slot.address = zones.array<std::int32_t>(size);
  } else if (word != 'r' && (asked(argument) || choices.chance(50))) {
    double* const values = zones.array<double>(size);
    if (word == 'z') std::copy_n(z.begin(), size, values);
    if (is_one_of(word, "EBX")) draw_start(choices, word, values, size);
    slot.address = values;
  }
}

// What in/out arguments hold: nothing, something to start from, or garbage.
void Call::draw_start(Choices& choices, char word, double* values, std::size_t count) {
  const int manner = choices.below(10);
  if (manner < 5) return;
  if (manner == 9) {
    for (std::size_t i = 0; i < count; ++i) values[i] = choices.absurd();
  } else if (word == 'X') {
    double sum = 0.0;
    for (std::size_t i = 0; i < count; ++i) sum += values[i] = choices.unit() * z[i];
    for (std::size_t i = 0; i < count && sum > 0.0; ++i) values[i] /= sum;
  } else {
    *values = word == 'B' ? choices.unit() : has('T') ? draw_pressure(choices) : draw_temperature(choices);
  }
}

// An enthalpy or entropy that the mixture has at some temperature, or any.
void Call::draw_energy(Choices& choices) {
  const bool enthalpy = has('H');
  double& value = slots[0].number;
  value = enthalpy ? choices.between(-9000.0, 9000.0) : choices.between(-60.0, 60.0);
  if (choices.chance(25)) return;
  double found = 0.0;
  const double T = draw_temperature(choices);
  const auto property = choices.chance(30) ? (enthalpy ? GasMolarEnthalpy_PPR78 : GasMolarEntropy_PPR78)
                                           : (enthalpy ? LiquidMolarEnthalpy_PPR78 : LiquidMolarEntropy_PPR78);
  const StatusCode known = property(T, slots[1].number, scenario.mixture.z.data(), scenario.record, &found);
  if (known == KV_OK || known == KV_PURE_RANGE) value = found;
}

// One argument is made unusable or strange. Arrays stay as they are: none is larger than it says.
void Call::draw_flaw(Choices& choices) {
  const auto k = static_cast<std::size_t>(choices.below(static_cast<int>(slots.size())));
  const char word = entry.words[k];
  Slot& slot = slots[k];
  if (is_number(word)) {
    slot.number =
        choices.chance(30) ? slot.number * choices.pick({1e3, 1e-3, -1.0, 1e9, 1e-9}) : choices.absurd();
  } else if (is_one_of(word, "c#n")) {
    slot.integer = choices.pick({0, -1, INT32_MIN, INT32_MIN + 1});
    points_ = word == 'n' ? points_ : 0;
  } else if (word == 'k') {
    slot.integer |= choices.absurd_integer();
  } else if (is_integer(word)) {
    slot.integer = choices.absurd_integer();
  } else {
    slot.address = nullptr;
  }
  flaw = "argument " + std::to_string(k + 1);
}

const Slot& Call::slot(char word, int k) const {
  for (std::size_t at = 0;; ++at)
    if (entry.words.at(at) == word && k-- == 0) return slots[at];
}

std::size_t Call::size_of(std::size_t argument) const {
  const char word = entry.words[argument];
  const auto n = static_cast<std::size_t>(count());
  if (is_one_of(word, "AI")) return static_cast<std::size_t>(points_);
  return is_one_of(word, "XKDz") ? n : word == 'N' ? n * n : 1;
}

bool Call::free_water() const {
  bool water = false;
  for (int i = 0; i < count(); ++i)
    water = water ||
            (z[static_cast<std::size_t>(i)] > 0.0 &&
             (scenario.at(i, KV_COL_FAMILY) == KV_FAMILY_WATER || scenario.at(i, KV_COL_CAS) == kCasOfWater));
  return water && (scenario.record->flags & FreeWaterFlag) != 0;
}

bool Call::asked(std::size_t argument) const {
  if (!has('k') || argument + 3 < slots.size()) return true;
  return (slot('k').integer >> (argument + 3 - slots.size()) & 1) != 0;
}

void Call::run() {
  if (own_routines && slot('r').address == nullptr) slots[entry.words.find('r')].address = &routines;
  const ModelRoutines given = routines;
  start_routines();
  scenario.zones.seal();
  scenario.zones.guard(true);
  zones.guard(true);
  const double begin = processor_ms();
  tests::set_words(host.control, host.mxcsr);
  const tests::Words before = tests::read_words();
  const StatusCode returned = entry.call(slots);
  const tests::Words after = tests::read_words();
  tests::default_words();
  milliseconds = processor_ms() - begin;
  zones.guard(false);
  scenario.zones.guard(false);
  status = returned;
  const auto note = [this](bool good, const char* what) {
    if (!good && harm.empty()) harm = what;
  };
  note(before == after, "floating-point words changed");
  note(zones.red_zones_whole(), "a red zone around an array was written");
  note(scenario.zones.red_zones_whole(), "a red zone around the record or the table was written");
  note(scenario.zones.unchanged(scenario.record), "the record was changed");
  note(scenario.zones.unchanged(scenario.table), "the component table was changed");
  note(std::equal(given.entry, given.entry + KV_ROUTINE_COUNT, routines.entry),
       "the routines record was changed");
  for (std::size_t k = 0; k < slots.size(); ++k)
    if (entry.words[k] == 'z' && slots[k].address != nullptr)
      note(zones.unchanged(slots[k].address), "the composition of the host was changed");
  note(!routines_were_abused(), "a routine of the host was called with arguments that are no state");
}

namespace {

std::string list_of(const double* values, std::size_t count) {
  std::string text = "{";
  for (std::size_t i = 0; i < count && i < 16; ++i) text += (i > 0 ? " " : "") + shown(values[i]);
  return text + (count > 16 ? " ..}" : "}");
}

}  // namespace

std::string Call::text() const {
  std::string text = std::string(entry.name) + "(";
  for (std::size_t k = 0; k < slots.size(); ++k) {
    const char word = entry.words[k];
    const Slot& s = slots[k];
    text += k > 0 ? ", " : "";
    if (is_number(word)) {
      text += std::string(1, word) + "=" + shown(s.number);
    } else if (is_integer(word)) {
      text += std::to_string(s.integer);
    } else if (s.address == nullptr) {
      text += word == 'r' ? "no routines" : "null";
    } else if (is_one_of(word, "zEBX")) {
      text += word + list_of(zones.before<double>(s.address), size_of(k));
    } else {
      text += word;
    }
  }
  text += ")";
  if (own_routines) text += " " + routines_text(routines);
  if (host.control != tests::kDefaultWords.control) text += std::string(" [") + host.what + "]";
  if (!flaw.empty()) text += " FLAW " + flaw;
  return text + "\n      mixture " + scenario.text();
}

std::string Call::results() const {
  std::string text = "status " + std::to_string(status);
  for (std::size_t k = 0; k < slots.size(); ++k)
    if (slots[k].address != nullptr && is_one_of(entry.words[k], "EBXvKD"))
      text +=
          std::string(" ") + entry.words[k] + list_of(static_cast<const double*>(slots[k].address), size_of(k));
  return text;
}

}  // namespace kestrune::fuzz
