// The library as a host sees it: loaded at run time, called through its exported names.
#ifndef KESTRUNE_TESTS_SWEEP_LIBRARY_HPP
#define KESTRUNE_TESTS_SWEEP_LIBRARY_HPP
#include <chrono>
#include <mutex>
#include <string>

#include "caloric.hpp"
#include "feeds.hpp"
#include "kestrune/kvgasthermo.h"
#include "saturation.hpp"
#include "three_given.hpp"

namespace kestrune::sweep {

// Seconds that call() takes.
template <class Call>
double timed(const Call& call) {
  const auto start = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// What stands in the model routines record of the calls: nothing, or the library's own routines, as they are or
// behind routines of the host that forward to them.
enum class OwnRoutines { none, exports, properties, flashes, all };

class Library {
 public:
  // Loads the shared library; empty: the one in the folder of this program. Throws std::runtime_error.
  explicit Library(const std::string& file);

  // Hands over the components and groups of one feed. Only one feed is in use at a time.
  void prepare(const Feed& feed, const Components& components);

  // What later calls hand over as the model routines record.
  void use(OwnRoutines which);

  // Cold start of the liquid-vapour flash, or a warm one from the answer given. One caller at a time.
  Answer flash(const Feed& feed, double T, double P, const Answer* warm = nullptr);

  // Bubble, dew or quality point; cold without an estimate, or warm from one. Any number of callers.
  SaturationAnswer saturation(const Feed& feed, const SaturationQuestion& question,
                              const SaturationAnswer* warm = nullptr);

  // Flash at enthalpy or entropy and pressure; T_start 0: none. Any number of callers, as below.
  CaloricAnswer caloric(const Feed& feed, Quantity quantity, double value, double P, double T_start,
                        const Answer* warm = nullptr);

  // Two liquids and a vapour at T and P, of the feed z; from a cold start or an estimate. Any number of
  // callers.
  ThreeAnswer three(double T, double P, const Composition& z, const ThreeAnswer* estimate = nullptr);

  // The same at enthalpy or entropy and P, and at vapour fraction W and T or P; start 0: none.
  ThreeCaloricAnswer three_caloric(Quantity quantity, double value, double P, const Composition& z,
                                   double start, const ThreeAnswer* estimate = nullptr);
  ThreePoint three_point(const SaturationQuestion& question, const Composition& z, double start,
                         const ThreeAnswer* estimate = nullptr);

  // Enthalpy or entropy of a phase; false when it has no value. A heat capacity outside its range counts.
  bool property(Quantity quantity, bool gas, double T, double P, const Composition& x, double& value);

 private:
  decltype(&FlashLVatTP) flash_ = nullptr;
  decltype(&ConvertPPR78GroupData) convert_ = nullptr;
  decltype(&FlashLVatWP) at_pressure_ = nullptr, at_temperature_ = nullptr;
  decltype(&FlashLVatHP) caloric_[2] = {};
  decltype(&FlashLLVatTP) three_ = nullptr;
  decltype(&FlashLLVatHP) three_caloric_[2] = {};
  decltype(&FlashLLVatWP) three_at_pressure_ = nullptr, three_at_temperature_ = nullptr;
  decltype(&GasMolarEnthalpy_PPR78) property_[2][2] = {};  // [Quantity][gas]
  // Throws when a call did not put back the flags of its record.
  void check_flags(const MixtureRecord& record) const;

  std::mutex one_caller_;
  std::vector<double> table_, buffers_[5];
  MixtureRecord record_{};
  ModelRoutines own_[static_cast<int>(OwnRoutines::all) + 1] = {};
  const ModelRoutines* routines_ = nullptr;
  // Fills own_ with what the library of this handle exports.
  void find_own_routines(void* handle);
};

}  // namespace kestrune::sweep

#endif
