// A 32-bit host that catches a structured exception, as __try and __except do with other compilers.
#ifndef KESTRUNE_TESTS_WINE_SEH_HPP
#define KESTRUNE_TESTS_WINE_SEH_HPP

#include <windows.h>

struct Caught {
  bool any = false;
  DWORD code = 0;
  DWORD flags = 0;
};

namespace seh {

// Lies on the stack and is linked into the thread's chain of handlers while the body runs.
struct Registration {
  Registration* previous;
  EXCEPTION_DISPOSITION(__cdecl* handler)(EXCEPTION_RECORD*, void*, CONTEXT*, void*);
  void* landing[5];
  Caught caught;
};

inline EXCEPTION_DISPOSITION __cdecl on_exception(EXCEPTION_RECORD* record, void* frame, CONTEXT*, void*) {
  if (record->ExceptionFlags & (EXCEPTION_UNWINDING | EXCEPTION_EXIT_UNWIND)) return ExceptionContinueSearch;
  auto* self = static_cast<Registration*>(frame);
  self->caught = {true, record->ExceptionCode, record->ExceptionFlags};
  RtlUnwind(frame, nullptr, record, nullptr);
  __builtin_longjmp(self->landing, 1);
}

inline void link(Registration* first) {
  __asm__ __volatile__("movl %0, %%fs:0" : : "r"(first) : "memory");
}

}  // namespace seh

// Runs the body and tells which exception ended it.
template <class Body>
[[gnu::noinline]] Caught run_catching(Body body) {
  seh::Registration registration{nullptr, &seh::on_exception, {}, {}};
  __asm__ __volatile__("movl %%fs:0, %0" : "=r"(registration.previous));
  if (__builtin_setjmp(registration.landing) == 0) {
    seh::link(&registration);
    body();
  }
  seh::link(registration.previous);
  return registration.caught;
}

#endif
