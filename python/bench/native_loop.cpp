// The same states as bench_states.py in the plainest loop a C++ host would write: one thread, results into arrays.
//
//   native_loop LIBRARY MIXTURE PHASES STATES.bin    STATES.bin: count as a double, T in K, P in Pa
//
// Prints the seconds of processor time and of the clock, and the sum of the vapour fractions.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

#include "composition.hpp"
#include "error.hpp"
#include "library.hpp"
#include "mixture.hpp"
#include "units.hpp"

using namespace kestrune::host;

namespace {

std::vector<double> read_states(const char* path) {
  std::FILE* file = std::fopen(path, "rb");
  double count = 0.0;
  if (file == nullptr || std::fread(&count, sizeof count, 1, file) != 1)
    throw InputError("no states in the file");
  std::vector<double> states(2 * static_cast<std::size_t>(count));
  const std::size_t read = std::fread(states.data(), sizeof(double), states.size(), file);
  std::fclose(file);
  if (read != states.size()) throw InputError("the file of states is too short");
  return states;
}

int run(char** argument) {
  const Exports library = load_library(argument[1]);
  Composition composition;
  read_inline(argument[2], composition, false);
  Mixture m = build_mixture(composition, interaction_set("2022"));
  m.hand_over(library);
  const bool three = std::atoi(argument[3]) == 3;
  const std::vector<double> states = read_states(argument[4]);
  const std::size_t n = states.size() / 2, nc = m.z.size();
  std::vector<double> beta(n), A(n), y(n * nc), x(n * nc), xB(three ? n * nc : 0), K(nc), K2(nc);
  std::vector<StatusCode> status(n);
  const auto begin = std::chrono::steady_clock::now();
  const std::clock_t clock = std::clock();
  for (std::size_t i = 0; i < n; ++i) {
    const double T = states[i], P = states[n + i] / kAtmInPa;
    status[i] = three ? library.FlashLLVatTP(T, P, m.z.data(), &m.record, nullptr, 0, &A[i], &beta[i],
                                             &x[i * nc], &xB[i * nc], &y[i * nc], K.data(), K2.data())
                      : library.FlashLVatTP(T, P, m.z.data(), &m.record, nullptr, 1, &beta[i], &x[i * nc],
                                            &y[i * nc], K.data());
  }
  const double processor = static_cast<double>(std::clock() - clock) / CLOCKS_PER_SEC;
  const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - begin;
  double sum = 0.0;
  for (const double b : beta) sum += b;
  std::printf("%.4f %.4f %.12g\n", processor, wall.count(), sum);
  return 0;
}

}  // namespace

int main(int count, char** argument) {
  try {
    if (count == 5) return run(argument);
    std::fputs("native_loop LIBRARY MIXTURE 2|3 STATES.bin\n", stderr);
  } catch (const InputError& e) {
    std::fprintf(stderr, "native_loop: %s\n", e.what());
  }
  return 2;
}
