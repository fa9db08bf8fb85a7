#include "calls.hpp"

#include <chrono>
#include <numeric>

namespace kestrune::fuzz {
namespace {

template <class... A>
StatusCode through_slots(StatusCode(KV_CALL* address)(A...), const std::vector<Slot>& slots) {
  return tests::apply_slots(address, slots, std::index_sequence_for<A...>{});
}

double draw_temperature(Choices& choices) {
  const int share = choices.below(10);
  return share < 6 ? choices.between(150.0, 450.0) : share < 9 ? choices.between(60.0, 800.0) : choices.between(5.0, 3000.0);
}

double draw_pressure(Choices& choices) {
  return choices.chance(10) ? choices.even_in_logarithm(1e-7, 1e6) : choices.even_in_logarithm(0.05, 1000.0);
}

}  // namespace

const std::vector<Entry>& entries() {
#define KV_ENTRY_OF(name, words, family) \
  {#name, words, Family::family, [](const std::vector<Slot>& slots) { return through_slots(&::name, slots); }}
  static const std::vector<Entry> all{
      KV_ENTRY_OF(FlashLVatTP, "TPzmroBXXK", two_phases),
      KV_ENTRY_OF(FlashLVatHP, "HPzmroEBXXKvv", two_phases),
      KV_ENTRY_OF(FlashLVatSP, "SPzmroEBXXKvv", two_phases),
      KV_ENTRY_OF(FlashLVatWP, "WPzmroEXXK", two_phases),
      KV_ENTRY_OF(FlashLVatWT, "WTzmroEXXK", two_phases),
      KV_ENTRY_OF(FlashLLVatTP, "TPzmroBBXXXKK", three_phases),
      KV_ENTRY_OF(FlashLLVatHP, "HPzmroEBBXXXKKvvv", three_phases),
      KV_ENTRY_OF(FlashLLVatSP, "SPzmroEBBXXXKKvvv", three_phases),
      KV_ENTRY_OF(FlashLLVatWP, "WPzmroEBXXXKK", three_phases),
      KV_ENTRY_OF(FlashLLVatWT, "WTzmroEBXXXKK", three_phases),
      KV_ENTRY_OF(FlashLLatTP, "TPzmroBXXK", liquids),
      KV_ENTRY_OF(PhaseEnvelope, "zmr0lllwcqaAAAjjvvvv", envelope),
      KV_ENTRY_OF(CriticalPoint, "zm0vvvv", critical),
      KV_ENTRY_OF(WaterDewTemperature, "Pze00m0E", water),
      KV_ENTRY_OF(WaterDewPressure, "Tze00m0E", water),
      KV_ENTRY_OF(WaterDewLine, "ze00m0ll#AAIj", water),
      KV_ENTRY_OF(WetGasComposition, "TPzse0m0X", water),
      KV_ENTRY_OF(HydrateLine, "zhM%#m0AA", hydrate),
      KV_ENTRY_OF(Humidity, "TPezmvv", property),
      KV_ENTRY_OF(MolecularWeight, "nzgv", property),
      KV_ENTRY_OF(GasN, "TPzmvvvv", property),
      KV_ENTRY_OF(LiquidDensity_PPR78, "TPzmvvvv", property),
      KV_ENTRY_OF(GasDensity_PPR78, "TPzmvvvv", property),
      KV_ENTRY_OF(LiquidMolarEnthalpy_PPR78, "TPzmv", property),
      KV_ENTRY_OF(GasMolarEnthalpy_PPR78, "TPzmv", property),
      KV_ENTRY_OF(LiquidMolarEntropy_PPR78, "TPzmv", property),
      KV_ENTRY_OF(GasMolarEntropy_PPR78, "TPzmv", property),
      KV_ENTRY_OF(LiquidMolarFreeEnthalpy_PPR78, "TPzmv", property),
      KV_ENTRY_OF(GasMolarFreeEnthalpy_PPR78, "TPzmv", property),
      KV_ENTRY_OF(LiquidMolarEnthalpy_Derivatives_PPR78, "TPzmkvvvD", property),
      KV_ENTRY_OF(GasMolarEnthalpy_Derivatives_PPR78, "TPzmkvvvD", property),
      KV_ENTRY_OF(LiquidMolarEntropy_Derivatives_PPR78, "TPzmkvvvD", property),
      KV_ENTRY_OF(GasMolarEntropy_Derivatives_PPR78, "TPzmkvvvD", property),
      KV_ENTRY_OF(LiquidPhi_Derivatives_PPR78, "TPzm2kDDDN", property),
      KV_ENTRY_OF(GasPhi_Derivatives_PPR78, "TPzm2kDDDN", property),
      KV_ENTRY_OF(GasSpecificHeat_PPR78, "TPzmvvvv", property),
      KV_ENTRY_OF(GasDynamicViscosity_PPR78, "TPzmv", property),
      KV_ENTRY_OF(GasThermalConductivity_PPR78, "TPzmv", property)};
#undef KV_ENTRY_OF
  return all;
}

const Entry& entry_of(std::string_view name) {
  return *std::find_if(entries().begin(), entries().end(), [=](const Entry& e) { return name == e.name; });
}

Call::Call(Choices& choices, Scenario& s, const Entry& e) : scenario(s), entry(e), slots(e.words.size()), z(s.mixture.z) {
  if (choices.chance(12)) z = spoiled(choices, z, flaw);
  for (std::size_t k = 0; k < slots.size(); ++k) draw_slot(choices, entry.words[k], slots[k]);
  if (has('H') || has('S')) draw_energy(choices);
  if (flaw.empty() && choices.chance(25)) draw_flaw(choices);
  if (has('r') && choices.chance(25)) own_routines = draw_routines(choices, routines);
  zones.seal();
  if (choices.chance(30)) host = tests::kHosts[choices.below(static_cast<int>(std::size(tests::kHosts)))];
}

void Call::draw_slot(Choices& choices, char word, Slot& slot) {
  const auto n = static_cast<std::size_t>(scenario.n());
  slot.kind = word;
  switch (word) {
    case 'T': slot.number = draw_temperature(choices); return;
    case 'P': slot.number = draw_pressure(choices); return;
    case 'W': slot.number = choices.chance(40) ? choices.unit() : choices.pick({0.0, 1.0, 0.5, -0.1, 1.2, 1e-9}); return;
    case 'l': slot.number = choices.chance(20) ? choices.even_in_logarithm(0.01, 1000.0) : 0.0; return;
    case 'q': slot.number = choices.chance(30) ? choices.unit() : 1.0; return;
    case 'a': slot.number = choices.pick({0.0, 0.0, 0.0, 1e-6, 1e-3, 1e-10}); return;
    case 'M': slot.number = choices.between(20.0, 200.0); return;
    case '%': slot.number = choices.between(0.0, 60.0); return;
    case 'o': slot.integer = choices.pick({1, 0, 1, 0, 2, 3}); return;
    case 'k': slot.integer = choices.below(8); return;
    case '2': slot.integer = 2; return;
    case 'e': slot.integer = choices.pick({1, 2, 0, 1, 2, 3}); return;
    case 's': slot.integer = choices.below(3); return;
    case 'h': slot.integer = choices.below(6); return;
    case 'w': slot.integer = choices.pick({0, 0, 0, 2, 30, 100, 1}); return;
    case 'n': slot.integer = scenario.n(); return;
    case 'c': slot.integer = points_ = choices.pick({400, 1000, 400, 20, 2, 1}); return;
    case '#': slot.integer = points_ = choices.pick({10, 1, 2, 5, 30, 0}); return;
    case '0': return;
    case 'm': slot.address = scenario.record; return;
    case 'r': return;  // where it is known that there are any
    case 'g': slot.address = scenario.table + n * (KV_COL_MOLAR_MASS - 1); return;
    case 'z': slot.address = std::copy(z.begin(), z.end(), zones.array<double>(n)) - n; return;
    case 'X': draw_start(choices, word, static_cast<double*>(slot.address = zones.array<double>(n)), n); return;
    case 'K':
    case 'D': slot.address = zones.array<double>(n); return;
    case 'N': slot.address = zones.array<double>(n * n); return;
    case 'A': slot.address = zones.array<double>(static_cast<std::size_t>(points_)); return;
    case 'I': slot.address = zones.array<std::int32_t>(static_cast<std::size_t>(points_)); return;
    case 'j': slot.address = zones.array<std::int32_t>(1); return;
    case 'E':
    case 'B': draw_start(choices, word, static_cast<double*>(slot.address = zones.array<double>(1)), 1); return;
    case 'v': slot.address = zones.array<double>(1); return;
    default: return;
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

// One argument is made unusable or strange.
void Call::draw_flaw(Choices& choices) {
  const auto k = static_cast<std::size_t>(choices.below(static_cast<int>(slots.size())));
  Slot& slot = slots[k];
  switch (entry.words[k]) {
    case 'T': case 'P': case 'H': case 'S': case 'W': case 'l': case 'q': case 'a': case 'M': case '%':
      slot.number = choices.chance(30) ? slot.number * choices.pick({1e3, 1e-3, -1.0, 1e9, 1e-9}) : choices.absurd();
      break;
    case 'c': case '#':  // the arrays stay as they are: larger would be an array that is not there
      slot.integer = choices.pick({0, -1, INT32_MIN, INT32_MIN + 1});
      points_ = 0;
      break;
    case 'n': slot.integer = choices.pick({0, -1, INT32_MIN, 1}); break;
    case 'k': slot.integer |= choices.absurd_integer(); break;
    case 'o': case '2': case '0': case 'e': case 's': case 'h': case 'w': slot.integer = choices.absurd_integer(); break;
    case 'r': return;
    default: slot.address = nullptr;
  }
  flaw = "argument " + std::to_string(k + 1);
}

const Slot& Call::slot(char word, int k) const {
  for (std::size_t at = 0;; ++at)
    if (entry.words.at(at) == word && k-- == 0) return slots[at];
}

std::size_t Call::size_of(std::size_t argument) const {
  const auto n = static_cast<std::size_t>(count());
  switch (entry.words[argument]) {
    case 'X': case 'K': case 'D': case 'z': return n;
    case 'N': return n * n;
    case 'A': case 'I': return static_cast<std::size_t>(points_);
    default: return 1;
  }
}

bool Call::asked(std::size_t argument) const {
  if (!has('k') || argument + 3 < slots.size()) return true;
  return (slot('k').integer >> (argument + 3 - slots.size()) & 1) != 0;
}

bool Call::run() {
  if (own_routines && slot('r').address == nullptr) slots[entry.words.find('r')].address = &routines;
  const ModelRoutines given = routines;
  start_routines();
  scenario.zones.seal();
  scenario.zones.guard(true);
  zones.guard(true);
  const auto begin = std::chrono::steady_clock::now();
  tests::set_words(host.control, host.mxcsr);
  const tests::Words before = tests::read_words();
  const StatusCode returned = entry.call(slots);
  const tests::Words after = tests::read_words();
  tests::default_words();
  milliseconds = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
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
  note(std::equal(given.entry, given.entry + KV_ROUTINE_COUNT, routines.entry), "the routines record was changed");
  for (std::size_t k = 0; k < slots.size(); ++k)
    if (entry.words[k] == 'z' && slots[k].address != nullptr)
      note(zones.unchanged(slots[k].address), "the composition of the host was changed");
  note(!routines_were_abused(), "a routine of the host was called with arguments that are no state");
  return harm.empty();
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
    if (std::string_view("TPHSWlqaM%").find(word) != std::string_view::npos) {
      text += std::string(1, word) + "=" + shown(s.number);
    } else if (std::string_view("o2k0eshwnc#").find(word) != std::string_view::npos) {
      text += std::to_string(s.integer);
    } else if (s.address == nullptr) {
      text += word == 'r' ? "no routines" : "null";
    } else if (word == 'z' || word == 'E' || word == 'B' || word == 'X') {
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
    if (slots[k].address != nullptr && std::string_view("EBXvKD").find(entry.words[k]) != std::string_view::npos)
      text += std::string(" ") + entry.words[k] + list_of(static_cast<const double*>(slots[k].address), size_of(k));
  return text;
}

}  // namespace kestrune::fuzz
