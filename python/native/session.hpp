// What all functions of the interface share: the opened library, whose turn it is with the group data, errors as
// texts, and loops over states in threads.
#ifndef KESTRUNE_PYTHON_NATIVE_SESSION_HPP
#define KESTRUNE_PYTHON_NATIVE_SESSION_HPP

#include <atomic>
#include <cmath>
#include <cstdint>
#include <exception>
#include <mutex>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

#include "arrays.h"
#include "error.hpp"
#include "mixture.hpp"

struct KaMixture {
  kestrune::host::Mixture mixture;
};

namespace kestrune::arrays {

// The opened library; InputError before ka_open.
const host::Exports& library();
// Its file, beside which the tools lie that characterise fractions.
std::string library_path();

// Copies a text to a buffer of the caller, cut where it is too long; its length.
std::int32_t copied(std::string_view from, char* text, std::int32_t size);

// Runs a body; what it throws becomes -1 with its message.
template <class Body>
std::int32_t guarded(char* text, std::int32_t size, Body body) noexcept {
  try {
    return body();
  } catch (const std::exception& e) {
    copied(e.what(), text, size);
  } catch (...) {
    copied("unexpected failure", text, size);
  }
  return -1;
}

// As long as it lives, the library reads the group data of this mixture. Others with the same mixture run at the same
// time; one with another mixture waits until they are through, and one that is alone for all of them: for calls that write
// to the mixture's own record. First come, first served.
class Turn {
 public:
  explicit Turn(host::Mixture& mixture, bool alone = false);
  ~Turn();
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
};

inline std::size_t index(std::int64_t i) {
  return static_cast<std::size_t>(i);
}

// Calls make_worker() once in each of the threads and what it returns with every i of 0 .. count - 1. The calling thread
// is one of them. What a worker throws is thrown here.
template <class MakeWorker>
void for_each_state(std::int64_t count, std::int32_t threads, MakeWorker make_worker) {
  constexpr std::int64_t chunk = 16;  // states taken at once: a few hundred microseconds of work
  if (threads <= 0) threads = static_cast<std::int32_t>(std::thread::hardware_concurrency());
  const std::int64_t chunks = (count + chunk - 1) / chunk;
  std::atomic<std::int64_t> next{0};
  std::exception_ptr failure;
  std::mutex failing;
  const auto run = [&] {
    try {
      auto worker = make_worker();
      for (std::int64_t c = next++; c < chunks; c = next++)
        for (std::int64_t i = c * chunk; i < count && i < (c + 1) * chunk; ++i) worker(i);
    } catch (...) {
      const std::lock_guard<std::mutex> lock(failing);
      failure = std::current_exception();
    }
  };
  std::vector<std::thread> others;
  for (std::int64_t t = 1; t < threads && t < chunks; ++t) {
    try {
      others.emplace_back(run);
    } catch (const std::system_error&) {
      break;  // no more threads to be had: the others do the work
    }
  }
  run();
  for (std::thread& t : others) t.join();
  if (failure) std::rethrow_exception(failure);
}

// The composition of state i.
inline const double* row(const double* all, std::size_t nc, std::int64_t i, const host::Mixture& mixture) {
  return all == nullptr ? mixture.z.data() : all + index(i) * nc;
}

}  // namespace kestrune::arrays

#endif
