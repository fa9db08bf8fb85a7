// Arrays for a call with red zones around them and a copy of what they held before it.
#ifndef KESTRUNE_FUZZ_ZONES_HPP
#define KESTRUNE_FUZZ_ZONES_HPP

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <deque>
#include <vector>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/asan_interface.h>
#endif
#endif
#if !defined(ASAN_POISON_MEMORY_REGION)
#define ASAN_POISON_MEMORY_REGION(address, size) static_cast<void>(address)
#define ASAN_UNPOISON_MEMORY_REGION(address, size) static_cast<void>(address)
#endif

namespace kestrune::fuzz {

class Zones {
 public:
  ~Zones() { guard(false); }

  // Zeros, at an address that is shift off a multiple of 8.
  void* bytes(std::size_t size, std::size_t shift = 0) { return zones_.emplace_back(size, shift).data(); }
  template <class Value>
  Value* array(std::size_t count) {
    return static_cast<Value*>(bytes(count * sizeof(Value)));
  }
  // Remembers what the arrays hold.
  void seal() {
    for (Zone& z : zones_) z.before.assign(z.data(), z.data() + z.size);
  }
  // Where a sanitizer can see to it, the red zones may not be touched while they are guarded.
  void guard(bool on) {
    for (Zone& z : zones_) {
      ASAN_UNPOISON_MEMORY_REGION(z.all.data(), z.all.size());
      if (!on) continue;
      ASAN_POISON_MEMORY_REGION(z.all.data(), z.at & ~std::size_t{7});
      ASAN_POISON_MEMORY_REGION(z.data() + z.size, kRed);
    }
  }
  bool red_zones_whole() const {
    const auto red = [](std::uint8_t b) { return b == kMark; };
    return std::all_of(zones_.begin(), zones_.end(), [&](const Zone& z) {
      return std::all_of(z.all.data(), z.data(), red) &&
             std::all_of(z.data() + z.size, z.data() + z.size + kRed, red);
    });
  }
  // The array at this address holds what it held when it was sealed.
  bool unchanged(const void* address) const {
    const Zone& z = of(address);
    return std::equal(z.before.begin(), z.before.end(), z.data());
  }
  template <class Value>
  const Value* before(const void* address) const {
    return reinterpret_cast<const Value*>(of(address).before.data());
  }

 private:
  static constexpr std::size_t kRed = 64;
  static constexpr std::uint8_t kMark = 0xA5;

  struct Zone {
    Zone(std::size_t bytes, std::size_t shift) : size(bytes), at(kRed + shift), all(at + size + kRed, kMark) {
      std::memset(data(), 0, size);
    }
    std::uint8_t* data() { return all.data() + at; }
    const std::uint8_t* data() const { return all.data() + at; }

    std::size_t size, at;
    std::vector<std::uint8_t> all, before;
  };

  const Zone& of(const void* address) const {
    return *std::find_if(zones_.begin(), zones_.end(), [=](const Zone& z) { return z.data() == address; });
  }

  std::deque<Zone> zones_;
};

}  // namespace kestrune::fuzz

#endif
