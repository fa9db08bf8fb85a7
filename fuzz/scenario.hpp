// A mixture as a host hands it over, drawn from a stream of choices: sound most of the time, else with one flaw.
#ifndef KESTRUNE_FUZZ_SCENARIO_HPP
#define KESTRUNE_FUZZ_SCENARIO_HPP

#include <string>
#include <vector>

#include "choices.hpp"
#include "kestrune/kvgasthermo.h"
#include "mixture.hpp"
#include "zones.hpp"

namespace kestrune::fuzz {

struct Scenario {
  explicit Scenario(Choices& choices);
  // A given composition in a sound record with given flags; what is changed in it holds after hand_over.
  Scenario(const host::Composition& composition, std::uint8_t flags, const char* set);
  Scenario(const Scenario&) = delete;
  Scenario& operator=(const Scenario&) = delete;
  ~Scenario();

  int n() const { return mixture.count(); }
  double& at(int component, int column) {
    return table[static_cast<std::size_t>(column - 1) * static_cast<std::size_t>(n()) +
                 static_cast<std::size_t>(component)];
  }
  // Converts the group data, for so many components.
  void hand_over(int components);
  // The mixture on one line.
  std::string text() const;

  host::Mixture mixture;
  Zones zones, buffers;  // record and table; group data
  MixtureRecord* record = nullptr;
  double* table = nullptr;
  std::string flaw;         // what is wrong with the mixture; empty: nothing
  bool sound_model = true;  // the flaw does not touch the equation of state

 private:
  void lay_out(Choices& choices);
  void draw_feed(Choices& choices);
  void draw_settings(Choices& choices);
  void draw_flaw(Choices& choices);
};

// Feeds of a call: the sound one of the scenario, or with one thing wrong with it.
std::vector<double> spoiled(Choices& choices, std::vector<double> z, std::string& flaw);

std::string shown(double value);

}  // namespace kestrune::fuzz

#endif
