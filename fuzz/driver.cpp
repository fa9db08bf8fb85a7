// The plain driver: runs of random bytes, the same ones for the same seed on every machine.
//
//   fuzz_exports | fuzz_readers [--seed S] [--first K] [--runs N | --run K] [--minutes M] [--only NAME]
//
// The known cases come first, where the runs are not only some of them. --run K makes run K alone and prints every
// call before it is made. Natively the runs are made in a process of their own: one that crashes or hangs is a fault,
// and the next one goes on behind it.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "report.hpp"

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

using namespace kestrune::fuzz;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kBytes = 4096;
constexpr int kSecondsOfARun = 20;

struct Options {
  std::uint64_t runs = 1000;
  double minutes = 0.0;
};

// Bytes of run K of a seed.
void fill(std::uint64_t seed, std::uint64_t run, std::uint8_t* bytes) {
  std::uint64_t state = (seed * 0x9E3779B97F4A7C15u) ^ ((run + 1) * 0xD1342543DE82EF95u);
  if (state == 0) state = 1;
  for (std::size_t k = 0; k < kBytes; k += 8) {
    for (int round = k == 0 ? 8 : 1; round > 0; --round) {
      state ^= state << 13;
      state ^= state >> 7;
      state ^= state << 17;
    }
    const std::uint64_t word = state * 0x2545F4914F6CDD1Du;
    std::memcpy(bytes + k, &word, 8);
  }
}

// Makes the runs from progress->run on.
void runs_from_here(const Options& o, Clock::time_point end) {
  std::uint8_t bytes[kBytes];
  for (; progress->known < known_cases(); ++progress->known) known_case(progress->known);
  for (; progress->run < progress->first + o.runs; ++progress->run) {
    if (o.minutes > 0.0 && Clock::now() > end) return;
#if !defined(_WIN32)
    alarm(kSecondsOfARun);
#endif
    fill(progress->seed, progress->run, bytes);
    one_run(bytes, kBytes);
  }
}

#if defined(_WIN32)

LONG WINAPI on_exception(EXCEPTION_POINTERS* e) {
  char text[80];
  std::snprintf(text, sizeof text, " exception %08lx", e->ExceptionRecord->ExceptionCode);
  count_fault("process", "ended", text);
  print_table(*progress);
  std::fflush(stdout);
  TerminateProcess(GetCurrentProcess(), 3);
  return EXCEPTION_EXECUTE_HANDLER;
}

void all_runs(const Options& o, Clock::time_point end) {
  SetUnhandledExceptionFilter(on_exception);
  runs_from_here(o, end);
}

#else

void all_runs(const Options& o, Clock::time_point end) {
  void* shared = mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (shared == MAP_FAILED) std::abort();
  progress = new (shared) Progress(*progress);
  while (progress->run < progress->first + o.runs && (o.minutes == 0.0 || Clock::now() < end)) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
      runs_from_here(o, end);
      std::fflush(stdout);
      _exit(0);
    }
    int state = 0;
    if (child < 0 || waitpid(child, &state, 0) != child) std::abort();
    if (WIFEXITED(state) && WEXITSTATUS(state) == 0) return;
    const std::string text =
        WIFSIGNALED(state) ? std::string(" signal ") + strsignal(WTERMSIG(state)) : " exit";
    count_fault("process", WIFSIGNALED(state) && WTERMSIG(state) == SIGALRM ? "hung" : "ended", text.c_str());
    ++(progress->known < known_cases() ? progress->known : progress->run);
  }
}

#endif

int usage() {
  std::fprintf(stderr, "options: [--seed S] [--first K] [--runs N | --run K] [--minutes M] [--only NAME]\n");
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  Options o;
  bool runs_given = false;
  progress->seed = 1;
  for (int k = 1; k < argc; k += 2) {
    const std::string option = argv[k];
    if (k + 1 >= argc) return usage();
    const char* value = argv[k + 1];
    if (option == "--seed") {
      progress->seed = std::strtoull(value, nullptr, 10);
    } else if (option == "--first") {
      progress->first = std::strtoull(value, nullptr, 10);
    } else if (option == "--runs") {
      o.runs = std::strtoull(value, nullptr, 10);
      runs_given = true;
    } else if (option == "--run") {
      progress->first = std::strtoull(value, nullptr, 10);
      o.runs = 1;
      runs_given = progress->narrate = true;
    } else if (option == "--minutes") {
      o.minutes = std::strtod(value, nullptr);
    } else if (option == "--only") {
      progress->only = value;
    } else {
      return usage();
    }
  }
  if (o.minutes > 0.0 && !runs_given) o.runs = UINT64_MAX / 2;
  progress->run = progress->first;
  if (progress->first > 0 || progress->narrate || progress->only != nullptr) progress->known = known_cases();
  std::printf("seed %llu\n", static_cast<unsigned long long>(progress->seed));
  all_runs(o, Clock::now() + std::chrono::milliseconds(static_cast<long long>(60000.0 * o.minutes)));
  if (!progress->narrate) print_table(*progress);
  return progress->faults == 0 ? 0 : 1;
}
