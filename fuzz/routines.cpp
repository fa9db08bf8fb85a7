#include "routines.hpp"

#include <algorithm>

namespace kestrune::fuzz {
namespace {

enum Manner { works, nan, huge, negative, doubled, silent, fails };
constexpr const char* kManners[] = {"work",          "write NaN",     "write 1e300", "write negative numbers",
                                    "write doubles", "write nothing", "fail"};

struct Behaviour {
  Manner manner = works;
  StatusCode status = 0;  // of a routine that fails
  int good_calls = 0;     // before it sets in
  bool own_address = false;
  int calls = 0;
  bool failed = false, abused = false;
};
Behaviour behaviour;  // one call at a time

struct Output {
  double* values;
  int count;
};

// What a routine does with the library's answer: hands it on, or spoils two outputs of three.
template <class Library>
StatusCode behave(double T, double P, const double* x, const MixtureRecord* m,
                  std::initializer_list<Output> outputs, Library library) {
  Behaviour& b = behaviour;
  double sum = 0.0;
  for (int i = 0; i < m->count; ++i) sum += x[i] >= 0.0 ? x[i] : NAN;
  b.abused =
      b.abused || !(std::abs(sum - 1.0) < 1e-6 && T > 0.0 && std::isfinite(T) && P > 0.0 && std::isfinite(P));
  const bool bad = ++b.calls > b.good_calls && b.manner != works;
  if (bad && b.manner == silent) return KV_OK;
  const StatusCode status = library();
  if (!bad) return status;
  int place = b.calls;
  for (const Output& o : outputs) {
    const bool spared = o.values == nullptr || (outputs.size() > 1 && ++place % 3 == 0);
    for (int i = 0; i < o.count && !spared; ++i) {
      double& v = o.values[i];
      v = b.manner == nan ? NAN : b.manner == huge ? 1e300 : b.manner == negative ? -v - 0.5 : 2.0 * v;
    }
  }
  b.failed = b.failed || b.manner == fails;
  return b.manner == fails ? b.status : status;
}

template <bool liquids>
StatusCode KV_CALL two_phases(double T, double P, const double* z, MixtureRecord* m, const ModelRoutines*,
                              std::int32_t options, double* beta, double* x, double* y, double* K) {
  const int n = m->count;
  return behave(T, P, z, m, {{beta, 1}, {x, n}, {y, n}, {K, n}}, [&] {
    return (liquids ? FlashLLatTP : FlashLVatTP)(T, P, z, m, nullptr, options, beta, x, y, K);
  });
}

StatusCode KV_CALL fugacity(double T, double P, const double* x, MixtureRecord* m, std::int32_t phase,
                            std::int32_t option, std::int32_t mask, double* ln_phi, double* dT, double* dP,
                            double* dn) {
  const int n = m->count;
  const auto asked = [=](int bit, double* values) { return mask & bit ? values : nullptr; };
  const auto library = phase == KV_PHASE_GAS ? GasPhi_Derivatives_PPR78 : LiquidPhi_Derivatives_PPR78;
  return behave(
      T, P, x, m,
      {{ln_phi, n}, {asked(KV_DERIV_T, dT), n}, {asked(KV_DERIV_P, dP), n}, {asked(KV_DERIV_N, dn), n * n}},
      [&] { return library(T, P, x, m, option, mask, ln_phi, dT, dP, dn); });
}

StatusCode KV_CALL density(double T, double P, const double* x, MixtureRecord* m, double* value, double* dT,
                           double* dP, double* dTdP) {
  return behave(T, P, x, m, {{value, 1}, {dT, 1}, {dP, 1}, {dTdP, 1}},
                [&] { return LiquidDensity_PPR78(T, P, x, m, value, dT, dP, dTdP); });
}

template <int entry>
StatusCode KV_CALL property(double T, double P, const double* x, MixtureRecord* m, double* value) {
  const auto library = entry == KV_ROUTINE_GAS_ENTHALPY      ? GasMolarEnthalpy_PPR78
                       : entry == KV_ROUTINE_GAS_ENTROPY     ? GasMolarEntropy_PPR78
                       : entry == KV_ROUTINE_LIQUID_ENTHALPY ? LiquidMolarEnthalpy_PPR78
                                                             : LiquidMolarEntropy_PPR78;
  return behave(T, P, x, m, {{value, 1}}, [&] { return library(T, P, x, m, value); });
}

struct Routine {
  int entry;
  void *own, *library;
};
#define KV_ADDRESS(f) reinterpret_cast<void*>(&(f))
const Routine kRoutines[] = {
    {KV_ROUTINE_FUGACITY, KV_ADDRESS(fugacity), nullptr},
    {KV_ROUTINE_LV_FLASH, KV_ADDRESS(two_phases<false>), KV_ADDRESS(FlashLVatTP)},
    {KV_ROUTINE_LL_FLASH, KV_ADDRESS(two_phases<true>), KV_ADDRESS(FlashLLatTP)},
    {KV_ROUTINE_LIQUID_ORDER, KV_ADDRESS(density), KV_ADDRESS(LiquidDensity_PPR78)},
    {KV_ROUTINE_GAS_ENTHALPY, KV_ADDRESS(property<KV_ROUTINE_GAS_ENTHALPY>),
     KV_ADDRESS(GasMolarEnthalpy_PPR78)},
    {KV_ROUTINE_GAS_ENTROPY, KV_ADDRESS(property<KV_ROUTINE_GAS_ENTROPY>), KV_ADDRESS(GasMolarEntropy_PPR78)},
    {KV_ROUTINE_LIQUID_ENTHALPY, KV_ADDRESS(property<KV_ROUTINE_LIQUID_ENTHALPY>),
     KV_ADDRESS(LiquidMolarEnthalpy_PPR78)},
    {KV_ROUTINE_LIQUID_ENTROPY, KV_ADDRESS(property<KV_ROUTINE_LIQUID_ENTROPY>),
     KV_ADDRESS(LiquidMolarEntropy_PPR78)}};

}  // namespace

bool draw_routines(Choices& choices, ModelRoutines& routines) {
  behaviour = Behaviour{};
  behaviour.own_address = choices.chance(15);
  bool any = false;
  const bool all = choices.chance(20);
  const int one = choices.below(static_cast<int>(std::size(kRoutines)));
  for (int k = 0; k < static_cast<int>(std::size(kRoutines)); ++k) {
    if (!all && k != one && !choices.chance(15)) continue;
    const Routine& r = kRoutines[k];
    routines.entry[r.entry - 1] = behaviour.own_address ? r.library : r.own;
    any = true;
  }
  if (!behaviour.own_address)
    behaviour.manner =
        static_cast<Manner>(choices.pick<int>({works, works, nan, huge, negative, doubled, silent, fails}));
  behaviour.status = choices.pick<StatusCode>(
      {112, -1, 50, 51, 95, 130, 201, 1003, 9001, 9012, 120, 116, 117, INT32_MIN, INT32_MAX});
  behaviour.good_calls = choices.pick({0, 0, 0, 1, 5, 20});
  return any;
}

void set_routines(ModelRoutines& routines, std::initializer_list<int> wanted, std::string_view manner,
                  int good_calls) {
  behaviour = Behaviour{};
  behaviour.good_calls = good_calls;
  while (kManners[behaviour.manner] != manner) behaviour.manner = static_cast<Manner>(behaviour.manner + 1);
  for (const Routine& r : kRoutines)
    if (std::find(wanted.begin(), wanted.end(), r.entry) != wanted.end()) routines.entry[r.entry - 1] = r.own;
}

void start_routines() {
  behaviour.calls = 0;
  behaviour.failed = behaviour.abused = false;
}

bool routines_were_abused() {
  return behaviour.abused;
}
bool routines_are_faithful() {
  return behaviour.manner == works;
}
StatusCode status_of_routines() {
  return behaviour.failed ? behaviour.status : KV_OK;
}

std::string routines_text(const ModelRoutines& routines) {
  std::string text = "routines";
  for (int k = 0; k < KV_ROUTINE_COUNT; ++k)
    if (routines.entry[k] != nullptr) text += " " + std::to_string(k + 1);
  if (behaviour.own_address) return text + " are the library's exports";
  text += std::string(" ") + kManners[behaviour.manner];
  if (behaviour.manner == fails) text += " with " + std::to_string(behaviour.status);
  if (behaviour.manner != works) text += " after " + std::to_string(behaviour.good_calls) + " calls";
  return text;
}

}  // namespace kestrune::fuzz
