// kestrune_sweep: asks the flashes of two and three phases at many states and judges every answer
// independently.
#include <exception>
#include <stdexcept>

#include "options.hpp"

namespace {

using namespace kestrune::sweep;

int run(const Options& o) {
  Library library(o.library);
  std::FILE* failures = std::fopen(o.failures.c_str(), "w");
  if (!failures) throw std::runtime_error("cannot write " + o.failures);
  const int bad = run_of(o.mode).body(o, library, failures);
  std::fclose(failures);
  if (bad > 0 && o.failures != "/dev/null") std::printf("wrong answers: %s\n", o.failures.c_str());
  return bad == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (!parse(argc, argv, options)) {
    print_usage();
    return 2;
  }
  try {
    return run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "kestrune_sweep: %s\n", error.what());
    return 2;
  }
}
