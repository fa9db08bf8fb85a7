// One state after another of one thread: its flash and the properties that the columns want.
#ifndef KESTRUNE_HOST_BATCH_STATE_HPP
#define KESTRUNE_HOST_BATCH_STATE_HPP

#include <array>
#include <string_view>
#include <vector>

#include "batch/columns.hpp"
#include "cold_flash.hpp"
#include "equilibrium_parts.hpp"

namespace kestrune::host::batch {

// Statuses of rows for which nothing was calculated, beside those of kestrune/status.h.
enum RowStatus : StatusCode {
  kRowUnreadable = 9101,  // a cell is missing or no number
  kRowWidth = 9102,       // more cells than the heading
  kRowPair = 9103,        // components without a published interaction
  kRowNoProperty = 9104,  // a phase that has no such property: free water
};
inline constexpr const char* kNoPropertyText = "free water has no property but H, S and G";

inline constexpr std::size_t kFlashPhases = 3;

class StateSolver {
 public:
  StateSolver(const Exports& library, const Mixture& mixture, Given given, int phases,
              const std::vector<Column>& columns);

  // What was given in base units, z[components], its molar mass in g/mol. The status is that of the flash, else the first
  // one of the properties that has no value, else 1003 where one was continued beyond its correlation.
  StatusCode solve(double first, double second, const double* z, double molar_mass);
  // A state for which nothing is calculated.
  void leave(double first, double second, StatusCode status);

  StatusCode status() const { return status_; }
  double T() const { return T_; }  // K
  // The value of a column in its unit, NaN for what does not exist; of kinds with a number.
  double value(const Column& column) const;
  // "V", "VL", "LW": the letters of what there is; empty without an answer.
  std::string_view phases() const;

 private:
  bool has_answer() const { return has_value(flash_status_); }
  bool is_there(std::size_t phase) const { return x_[phase][0] == x_[phase][0]; }
  PropertyValues properties_of(std::size_t phase, unsigned wanted);
  LastCritical& critical_of(std::size_t phase);
  void name_phases();
  void name_packed_gas();
  void settle_root();
  void place_phases();
  void add_properties();
  double whole(Property property) const;
  double mass_of(std::size_t phase) const;

  const Exports& library_;
  const Mixture& mixture_;
  Given given_;
  std::size_t phase_count_, nc_;
  ColdFlash flash_;
  bool tell_dense_, free_water_;
  std::array<unsigned, kPlaces> wanted_{};
  StatusCode status_ = KV_OK, flash_status_ = KV_OK;
  double first_ = kNone, T_ = kNone, P_ = kNone, molar_mass_ = kNone;
  const double* z_ = nullptr;
  // Of the flash: vapour, liquid A or the only one, liquid B.
  std::array<std::vector<double>, kFlashPhases> x_;  // NaN for one that is absent
  std::array<double, kFlashPhases> share_{};
  std::array<PhaseKind, kFlashPhases> kinds_{};
  std::array<PropertyValues, kFlashPhases> properties_;
  std::vector<LastCritical> critical_;  // of compositions that come again, by their hash
  std::array<std::size_t, kFlashPhases> place_of_{};
  std::array<std::size_t, kPlaces> at_{};  // which of them is in a place; kFlashPhases for none
  std::array<char, kFlashPhases> letters_{};
  std::size_t letter_count_ = 0;
};

}  // namespace kestrune::host::batch

#endif
