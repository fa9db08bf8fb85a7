// The exports that take a mixture, as data: their arguments can be replaced one by one, whatever the signature.
#ifndef KESTRUNE_TESTS_EXPORT_TABLE_HPP
#define KESTRUNE_TESTS_EXPORT_TABLE_HPP

#include <functional>
#include <utility>

#include "common/mixture.hpp"

namespace kestrune::tests {

// One argument. kind: d double, i int32, z composition, m record, r routines, o double output, c int32 output.
struct Slot {
  char kind;
  double number = 0.0;
  std::int32_t integer = 0;
  void* address = nullptr;
};

// What the outputs hold after a call that could not be worked with.
enum class Refused {
  untouched,
  zeroed,         // the property exports: the value and the asked derivatives
  per_component,  // ln phi and its derivatives: arrays of the count, where it can be read
  envelope        // arrays up to the capacity
};

// What a feed that cannot be worked with ends with: the status of its check, KV_FEED_SUM where it does not sum
// to one, the same but for KV_NO_WATER in front of the checks, or nothing at all.
enum class Feed { checked, summed, watered, any };

struct Export {
  const char* name;
  const char* roles;  // of the doubles by value: T, P, s specified quantity, o 0 for a default, w fraction, -
                      // not checked
  Refused outputs;
  std::vector<char> kinds;
  void* address;
  std::function<StatusCode(const std::vector<Slot>&)> call;
  StatusCode good;  // of good arguments for a mixture without water
  bool model;       // evaluates the equation of state of that mixture
  Feed feed;
};

template <class A>
constexpr char kind_of_argument() {
  if constexpr (std::is_same_v<A, double>) return 'd';
  if constexpr (std::is_same_v<A, std::int32_t>) return 'i';
  if constexpr (std::is_same_v<A, const double*>) return 'z';
  if constexpr (std::is_same_v<A, MixtureRecord*>) return 'm';
  if constexpr (std::is_same_v<A, const ModelRoutines*>) return 'r';
  if constexpr (std::is_same_v<A, double*>) return 'o';
  if constexpr (std::is_same_v<A, std::int32_t*>) return 'c';
}

template <class A>
A pull(const Slot& slot) {
  if constexpr (std::is_same_v<A, double>) {
    return slot.number;
  } else if constexpr (std::is_same_v<A, std::int32_t>) {
    return slot.integer;
  } else {
    return static_cast<A>(slot.address);
  }
}

template <class... A, std::size_t... k>
StatusCode apply_slots(StatusCode(KV_CALL* f)(A...), const std::vector<Slot>& slots,
                       std::index_sequence<k...>) {
  return f(pull<A>(slots[k])...);
}

template <class... A>
Export described(const char* name, StatusCode(KV_CALL* f)(A...), const char* roles, Refused outputs,
                 StatusCode good = KV_OK, bool model = true, Feed feed = Feed::checked) {
  return {name,
          roles,
          outputs,
          {kind_of_argument<A>()...},
          reinterpret_cast<void*>(f),
          [f](const std::vector<Slot>& s) { return apply_slots(f, s, std::index_sequence_for<A...>{}); },
          good,
          model,
          feed};
}

// All of them but MolecularWeight and ConvertPPR78GroupData, which know no record.
inline std::vector<Export> export_table() {
#define KV_ROW(name, ...) described(#name, name, __VA_ARGS__)
  constexpr Refused keep = Refused::untouched, zero = Refused::zeroed, each = Refused::per_component;
  return {KV_ROW(FlashLVatTP, "TP", keep),
          KV_ROW(FlashLVatHP, "sP", keep),
          KV_ROW(FlashLVatSP, "sP", keep),
          KV_ROW(FlashLVatWP, "sP", keep),
          KV_ROW(FlashLVatWT, "sT", keep),
          KV_ROW(FlashLLVatTP, "TP", keep, KV_OK, true, Feed::summed),
          KV_ROW(FlashLLVatHP, "sP", keep, KV_OK, true, Feed::summed),
          KV_ROW(FlashLLVatSP, "sP", keep, KV_OK, true, Feed::summed),
          KV_ROW(FlashLLVatWP, "sP", keep, KV_OK, true, Feed::summed),
          KV_ROW(FlashLLVatWT, "sT", keep, KV_OK, true, Feed::summed),
          KV_ROW(FlashLLatTP, "TP", keep),
          KV_ROW(PhaseEnvelope, "ooowo", Refused::envelope),
          KV_ROW(CriticalPoint, "", keep),
          KV_ROW(WaterDewTemperature, "P", keep, KV_NO_WATER, false, Feed::watered),
          KV_ROW(WaterDewPressure, "T", keep, KV_NO_WATER, false, Feed::watered),
          KV_ROW(WaterDewLine, "--", keep, KV_NO_WATER, false, Feed::watered),
          KV_ROW(Humidity, "TP", zero, KV_NO_WATER, false),
          KV_ROW(WetGasComposition, "TP", keep, KV_NO_WATER, false),
          KV_ROW(HydrateLine, "--", keep, KV_OK, false, Feed::any),
          KV_ROW(GasN, "TP", zero),
          KV_ROW(LiquidDensity_PPR78, "TP", zero),
          KV_ROW(GasDensity_PPR78, "TP", zero),
          KV_ROW(LiquidMolarEnthalpy_PPR78, "TP", zero),
          KV_ROW(GasMolarEnthalpy_PPR78, "TP", zero),
          KV_ROW(LiquidMolarEntropy_PPR78, "TP", zero),
          KV_ROW(GasMolarEntropy_PPR78, "TP", zero),
          KV_ROW(LiquidMolarFreeEnthalpy_PPR78, "TP", zero),
          KV_ROW(GasMolarFreeEnthalpy_PPR78, "TP", zero),
          KV_ROW(LiquidMolarEnthalpy_Derivatives_PPR78, "TP", zero),
          KV_ROW(GasMolarEnthalpy_Derivatives_PPR78, "TP", zero),
          KV_ROW(LiquidMolarEntropy_Derivatives_PPR78, "TP", zero),
          KV_ROW(GasMolarEntropy_Derivatives_PPR78, "TP", zero),
          KV_ROW(LiquidPhi_Derivatives_PPR78, "TP", each),
          KV_ROW(GasPhi_Derivatives_PPR78, "TP", each),
          KV_ROW(GasSpecificHeat_PPR78, "TP", zero),
          KV_ROW(GasDynamicViscosity_PPR78, "TP", zero),
          KV_ROW(GasThermalConductivity_PPR78, "TP", zero)};
#undef KV_ROW
}

inline constexpr double kMark = -7.25;
inline constexpr std::int32_t kIntegerMark = -7;
inline constexpr std::int32_t kInteger = 7;  // every integer: mask, cold start, capacity, number of points
inline constexpr std::size_t kOutputSize = 64;

// Good arguments for an export, with marked outputs of their own.
struct Arguments {
  std::vector<Slot> slots;
  std::vector<std::vector<double>> doubles;
  std::vector<std::vector<std::int32_t>> integers;

  Arguments(const Export& e, Mixture& m, std::vector<double>& z) {
    std::size_t number = 0;
    doubles.reserve(e.kinds.size());
    integers.reserve(e.kinds.size());
    for (const char kind : e.kinds) {
      Slot s{kind};
      if (kind == 'd') {
        const char role = e.roles[number++];
        s.number = role == 'T' ? 250.0 : role == 'o' ? 0.0 : role == 'w' ? 1.0 : 40.0;
      }
      if (kind == 'i') s.integer = kInteger;
      if (kind == 'z') s.address = z.data();
      if (kind == 'm') s.address = &m.record;
      if (kind == 'o') s.address = doubles.emplace_back(kOutputSize, kMark).data();
      if (kind == 'c') s.address = integers.emplace_back(kOutputSize, kIntegerMark).data();
      slots.push_back(s);
    }
  }
  bool untouched() const {
    for (const auto& array : doubles)
      for (const double v : array)
        if (v != kMark) return false;
    for (const auto& array : integers)
      for (const std::int32_t v : array)
        if (v != kIntegerMark) return false;
    return true;
  }
};

}  // namespace kestrune::tests

#endif
