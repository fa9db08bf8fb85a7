// Working storage that stays on the stack for the usual sizes.
#ifndef KESTRUNE_SIBLINGS_TOOLS_SCRATCH_HPP
#define KESTRUNE_SIBLINGS_TOOLS_SCRATCH_HPP

#include <cstddef>
#include <limits>
#include <new>

namespace kestrune::tools {

// Uninitialised storage of count values: local up to N of them, else from the heap.
// data() is null when the heap has no room; nothing is thrown.
template <class T, std::size_t N>
class Scratch {
 public:
  explicit Scratch(std::size_t count) noexcept {
    if (count <= N) {
      data_ = local_;
    } else if (count <= std::numeric_limits<std::ptrdiff_t>::max() / sizeof(T)) {
      data_ = heap_ = new (std::nothrow) T[count];
    }
  }
  ~Scratch() { delete[] heap_; }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  T* data() noexcept { return data_; }

 private:
  T local_[N];
  T* heap_ = nullptr;
  T* data_ = nullptr;
};

}  // namespace kestrune::tools

#endif
