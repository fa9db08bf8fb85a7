// A constant that a run may multiply. The file KESTRUNE_TUNE, where there is one, is words of 64 bits: evaluations of
// ln phi, the reads of each constant, at the end the number of the constant that is multiplied, from 1, and its factor.
// For one thread.
#ifndef KESTRUNE_TUNE_HPP
#define KESTRUNE_TUNE_HPP

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace tune {

inline constexpr int kRoom = 4096;

struct State {
  std::uint64_t* words;
  State() {
    static std::uint64_t unseen[kRoom];
    words = unseen;
    const char* const name = std::getenv("KESTRUNE_TUNE");
    const int file = name != nullptr ? open(name, O_RDWR) : -1;
    if (file < 0) return;
    void* const memory = mmap(nullptr, sizeof unseen, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (memory != MAP_FAILED) words = static_cast<std::uint64_t*>(memory);
    close(file);
  }
  bool multiplied(int number) const { return words[kRoom - 2] == static_cast<std::uint64_t>(number) + 1; }
  double factor() const {
    double value;
    std::memcpy(&value, words + kRoom - 1, sizeof value);
    return value;
  }
};

inline State& state() {
  static State one;
  return one;
}

inline void work() {
  ++state().words[0];
}

inline double scaled(int number, double value) {
  const State& s = state();
  return s.multiplied(number) ? value * s.factor() : value;
}

// Not a read: of what is initialised with the library.
inline double quiet(int number, double value) {
  return scaled(number, value);
}

inline double real(int number, double value) {
  ++state().words[1 + number];
  return scaled(number, value);
}

template <class Whole>
inline Whole whole(int number, Whole value) {
  const State& s = state();
  ++s.words[1 + number];
  if (!s.multiplied(number)) return value;
  const double changed = std::fmin(std::round(static_cast<double>(value) * s.factor()), 1e9);
  return changed < 1.0 ? Whole{1} : static_cast<Whole>(changed);
}

template <class Any>
inline Any& seen(int number, Any& any) {
  ++state().words[1 + number];
  return any;
}

}  // namespace tune

#endif
