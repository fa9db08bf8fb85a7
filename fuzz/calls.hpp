// The exports as data, and one call of one of them with arguments drawn from a stream of choices.
#ifndef KESTRUNE_FUZZ_CALLS_HPP
#define KESTRUNE_FUZZ_CALLS_HPP

#include <string>
#include <string_view>
#include <vector>

#include "common/environment.hpp"
#include "exports/export_table.hpp"
#include "routines.hpp"
#include "scenario.hpp"

namespace kestrune::fuzz {

using tests::Slot;

enum class Family { two_phases, three_phases, liquids, envelope, critical, water, hydrate, property };

/*
 * words: one letter for each argument.
 *   T P H S W  doubles by value: what the call is at          z  composition          m  record
 *   l q a      a limit, a fraction, an accuracy (0: default)  r  routines             g  molar masses
 *   M %        molar mass and percent of an inhibitor         n  count of the arrays
 *   o k 2 0    options, mask, the constant, not read          c # w  capacity of the arrays, points, points wanted
 *   e s h      method, method switch, kind of inhibitor
 *   E B X      in/out: estimate of T or P, fraction, composition
 *   v K D N    out: value, ratios [n], derivatives [n] and [n * n]
 *   A I j      out: arrays of the capacity, doubles and integers; an integer
 */
struct Entry {
  const char* name;
  std::string_view words;
  Family family;
  StatusCode (*call)(const std::vector<Slot>&);
};

const std::vector<Entry>& entries();
const Entry& entry_of(std::string_view name);

struct Call {
  Call(Choices& choices, Scenario& scenario, const Entry& entry);

  // Calls, and notes in harm what came back changed that may not: words, red zones, inputs.
  void run();

  bool has(char word) const { return entry.words.find(word) != std::string_view::npos; }
  // The k-th argument of this word.
  const Slot& slot(char word, int k = 0) const;
  Slot& slot(char word) { return slots[entry.words.find(word)]; }
  double number(char word) const { return slot(word).number; }
  const double* array(char word, int k = 0) const { return static_cast<const double*>(slot(word, k).address); }
  double value(char word, int k = 0) const { return *array(word, k); }
  // Numbers behind a pointer; of the derivatives the last three are 0 where the mask does not ask for them.
  std::size_t size_of(std::size_t argument) const;
  bool asked(std::size_t argument) const;
  // Components as the record says it, where it can be believed.
  int count() const {
    const std::int32_t n = scenario.record->count;
    return n >= 1 && n <= scenario.n() ? n : scenario.n();
  }
  // Water may form a phase of its own.
  bool free_water() const;
  bool sound() const { return scenario.flaw.empty() && flaw.empty(); }
  std::string text() const;     // the arguments
  std::string results() const;  // after the call

  Scenario& scenario;
  const Entry& entry;
  std::vector<Slot> slots;
  std::vector<double> z;  // as handed over
  std::string flaw;       // what is wrong with the arguments; empty: nothing
  Zones zones;
  ModelRoutines routines{};
  bool own_routines = false;  // of the host
  StatusCode status = 0;
  double milliseconds = 0.0;
  std::string harm;
  tests::HostWords host = tests::kDefaultWords;

 private:
  void draw_slot(Choices& choices, std::size_t argument);
  void draw_start(Choices& choices, char word, double* values, std::size_t count);
  void draw_energy(Choices& choices);
  void draw_flaw(Choices& choices);

  std::int32_t points_ = 0;
};

}  // namespace kestrune::fuzz

#endif
