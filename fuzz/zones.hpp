// Arrays for a call with red zones around them and a copy of what they held before it.
#ifndef KESTRUNE_FUZZ_ZONES_HPP
#define KESTRUNE_FUZZ_ZONES_HPP

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <deque>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
#define KV_FUZZ_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KV_FUZZ_ASAN 1
#endif
#endif
#if defined(KV_FUZZ_ASAN)
#include <sanitizer/asan_interface.h>
#endif

namespace kestrune::fuzz {

// `size` bytes with kRed bytes on either side, at an address that is `shift` off a multiple of 8.
class Zone {
 public:
  static constexpr std::size_t kRed = 64;

  explicit Zone(std::size_t size, std::size_t shift = 0) : size_(size), at_(kRed + shift), bytes_(at_ + size + kRed) {
    for (std::size_t k = 0; k < at_; ++k) bytes_[k] = mark(k);
    for (std::size_t k = at_ + size; k < bytes_.size(); ++k) bytes_[k] = mark(k);
  }
  Zone(const Zone&) = delete;
  Zone& operator=(const Zone&) = delete;
  ~Zone() { guard(false); }

  const void* data() const { return bytes_.data() + at_; }
  void* data() { return bytes_.data() + at_; }
  // Remembers the content.
  void seal() { before_.assign(bytes_.begin() + static_cast<std::ptrdiff_t>(at_), bytes_.end() - kRed); }
  // Where a sanitizer can see to it, the red zones may not be touched while they are guarded.
  void guard([[maybe_unused]] bool on) {
#if defined(KV_FUZZ_ASAN)
    if (on) {
      ASAN_POISON_MEMORY_REGION(bytes_.data(), at_ & ~std::size_t{7});
      ASAN_POISON_MEMORY_REGION(bytes_.data() + at_ + size_, kRed);
    } else {
      ASAN_UNPOISON_MEMORY_REGION(bytes_.data(), bytes_.size());
    }
#endif
  }
  bool unchanged() const { return std::memcmp(before_.data(), bytes_.data() + at_, size_) == 0; }
  const void* before() const { return before_.data(); }
  bool red_zones_whole() const {
    for (std::size_t k = 0; k < at_; ++k)
      if (bytes_[k] != mark(k)) return false;
    for (std::size_t k = at_ + size_; k < bytes_.size(); ++k)
      if (bytes_[k] != mark(k)) return false;
    return true;
  }

 private:
  static std::uint8_t mark(std::size_t k) { return static_cast<std::uint8_t>(0xA5 ^ (k * 29)); }

  std::size_t size_, at_;
  std::vector<std::uint8_t> bytes_, before_;
};

class Zones {
 public:
  template <class Value>
  Value* array(std::size_t count) {
    return static_cast<Value*>(zones_.emplace_back(count * sizeof(Value)).data());
  }
  void* bytes(std::size_t count, std::size_t shift) { return zones_.emplace_back(count, shift).data(); }
  void seal() {
    for (Zone& z : zones_) z.seal();
  }
  void guard(bool on) {
    for (Zone& z : zones_) z.guard(on);
  }
  bool red_zones_whole() const {
    return std::all_of(zones_.begin(), zones_.end(), [](const Zone& z) { return z.red_zones_whole(); });
  }
  // The array at this address holds what it held when it was sealed.
  bool unchanged(const void* address) const { return of(address).unchanged(); }
  template <class Value>
  const Value* before(const void* address) const {
    return static_cast<const Value*>(of(address).before());
  }

 private:
  const Zone& of(const void* address) const {
    return *std::find_if(zones_.begin(), zones_.end(), [=](const Zone& z) { return z.data() == address; });
  }

  std::deque<Zone> zones_;
};

}  // namespace kestrune::fuzz

#endif
