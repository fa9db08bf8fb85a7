// The library as a host sees it: loaded at run time, called through its exported names.
#pragma once
#include <mutex>
#include <string>

#include "caloric.hpp"
#include "feeds.hpp"
#include "kestrune/kvgasthermo.h"
#include "saturation.hpp"

namespace kestrune::sweep {

class Library {
 public:
  // Loads the shared library; empty: the one in the folder of this program. Throws std::runtime_error.
  explicit Library(const std::string& file);

  // Hands over the components and groups of one feed. Only one feed is in use at a time.
  void prepare(const Feed& feed, const Components& components);

  // Cold start of the liquid-vapour flash, or a warm one from the answer given. One caller at a time.
  Answer flash(const Feed& feed, double T, double P, const Answer* warm = nullptr);

  // Bubble, dew or quality point; cold without an estimate, or warm from one. Any number of callers.
  SaturationAnswer saturation(const Feed& feed, const SaturationQuestion& question,
                              const SaturationAnswer* warm = nullptr);

  // Flash at enthalpy or entropy and pressure; T_start 0: none. Any number of callers, as below.
  CaloricAnswer caloric(const Feed& feed, Quantity quantity, double value, double P, double T_start,
                        const Answer* warm = nullptr);

  // Enthalpy or entropy of a phase; false when it has no value. A heat capacity outside its range counts.
  bool property(Quantity quantity, bool gas, double T, double P, const Composition& x, double& value);

 private:
  decltype(&FlashLVatTP) flash_ = nullptr;
  decltype(&ConvertPPR78GroupData) convert_ = nullptr;
  decltype(&FlashLVatWP) at_pressure_ = nullptr, at_temperature_ = nullptr;
  decltype(&FlashLVatHP) caloric_[2] = {};
  decltype(&GasMolarEnthalpy_PPR78) property_[2][2] = {};  // [Quantity][gas]
  std::mutex one_caller_;
  std::vector<double> table_, buffers_[5];
  MixtureRecord record_{};
};

}  // namespace kestrune::sweep
