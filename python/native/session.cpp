#include "session.hpp"

#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <new>
#include <optional>

#ifndef _WIN32
#include <pthread.h>
#endif

namespace kestrune::arrays {

namespace {

// The library and its group data are one per process, and so is what guards them.
std::mutex opening;
std::optional<host::Exports> opened;
std::string opened_path;

std::mutex queue;
std::condition_variable moved;
std::uint64_t next_ticket = 0, serving = 0;
int running = 0;
bool running_alone = false;
const host::Mixture* current = nullptr;

// A forked process has the thread that forked alone: calls of the others, which held the turn, never end in it. What they
// left locked is made anew, not unlocked, for its owner is not there.
[[maybe_unused]] void start_anew_in_child() {
  new (&opening) std::mutex;
  new (&queue) std::mutex;
  new (&moved) std::condition_variable;
  next_ticket = serving = 0;
  running = 0;
  running_alone = false;
  current = nullptr;
}

}  // namespace

const host::Exports& library() {
  const std::lock_guard<std::mutex> lock(opening);
  if (!opened) throw host::InputError("the calculation library is not open: call ka_open first");
  return *opened;
}

std::string library_path() {
  library();
  const std::lock_guard<std::mutex> lock(opening);
  return opened_path;
}

std::int32_t copied(std::string_view from, char* text, std::int32_t size) {
  if (text != nullptr && size > 0) {
    const std::size_t n = std::min(from.size(), index(size) - 1);
    std::memcpy(text, from.data(), n);
    text[n] = '\0';
  }
  return static_cast<std::int32_t>(from.size());
}

// Nobody else's group data count while calls run. Handed over anew whenever none did: another host of the same process
// may have given the library others in between.
Turn::Turn(host::Mixture& mixture, bool alone) {
  const host::Exports& exports = library();
  std::unique_lock<std::mutex> lock(queue);
  const std::uint64_t ticket = next_ticket++;
  moved.wait(lock, [&] {
    const bool beside = current == &mixture && !alone && !running_alone;
    return serving == ticket && (running == 0 || beside);
  });
  std::exception_ptr failure;
  try {
    if (running == 0) mixture.hand_over(exports);
  } catch (...) {
    failure = std::current_exception();
  }
  ++serving;
  if (!failure) {
    current = &mixture;
    running_alone = alone;
    ++running;
  }
  moved.notify_all();
  if (failure) std::rethrow_exception(failure);
}

Turn::~Turn() {
  const std::lock_guard<std::mutex> lock(queue);
  --running;
  moved.notify_all();
}

}  // namespace kestrune::arrays

using namespace kestrune;

extern "C" int32_t ka_open(const char* path, char* text, int32_t size) {
  return arrays::guarded(text, size, [&] {
    const std::lock_guard<std::mutex> lock(arrays::opening);
    if (arrays::opened && arrays::opened_path != path)
      throw host::InputError("another calculation library is open already: " + arrays::opened_path);
    if (!arrays::opened) {
      arrays::opened = host::load_library(path);
      arrays::opened_path = path;
#ifndef _WIN32
      pthread_atfork(nullptr, nullptr, arrays::start_anew_in_child);
#endif
    }
    return 0;
  });
}

extern "C" const char* ka_status_text(int32_t status) {
  return kv_status_text(status);
}

extern "C" const char* ka_version(void) {
  return KESTRUNE_ARRAYS_VERSION;
}
