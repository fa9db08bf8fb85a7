// One state after another of one thread: its flash and the properties that the columns want.
#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "batch/columns.hpp"
#include "cold_flash.hpp"

namespace kestrune::host::batch {

// Statuses of rows for which nothing was calculated, beside those of kestrune/status.h.
enum RowStatus : StatusCode {
  kRowUnreadable = 9101,  // a cell is missing or no number
  kRowWidth = 9102,       // more cells than the heading
  kRowPair = 9103,        // components without a published interaction
};

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
  // The value of a column in its unit, NaN for what does not exist; of kinds with a number.
  double value(const Column& column) const;
  // "V", "VL", "LW": what there is of vapour, liquid and aqueous liquid; empty without an answer.
  std::string_view phases();

 private:
  bool has_answer() const { return has_value(flash_status_); }
  void add_properties();
  void add_property_status(const PropertyValues& of, unsigned wanted);
  double whole(Property property) const;
  double mass_of(std::size_t phase) const;

  const Mixture& mixture_;
  Given given_;
  std::size_t phase_count_, nc_;
  ColdFlash flash_;
  PhaseAsker asker_;
  std::array<unsigned, kPhases> wanted_{};
  StatusCode status_ = KV_OK, flash_status_ = KV_OK;
  double first_ = kNone, T_ = kNone, P_ = kNone, molar_mass_ = kNone;
  const double* z_ = nullptr;
  std::array<std::vector<double>, kPhases> x_;
  std::array<double, kPhases> share_{};
  std::array<PropertyValues, kPhases> properties_;
  std::vector<double> spare_;
  char letters_[4] = {};
};

}  // namespace kestrune::host::batch
