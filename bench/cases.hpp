// Benchmark cases: what is timed, apart from who times it (google_front.cpp, own_front.cpp).
#ifndef KESTRUNE_BENCH_CASES_HPP
#define KESTRUNE_BENCH_CASES_HPP

#include <algorithm>
#include <cstdio>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace kestrune::bench {

struct Case {
  std::string name;
  std::string what;              // one line: the work and its inputs
  double target = 0.0;           // ns for one evaluation on the native build, 0 = none
  double batch = 1.0;            // evaluations in one pass
  std::function<void()> set_up;  // before the passes; not timed
  std::function<double()> pass;  // returns a number that depends on every result
};

/* The cases of this program, in the order in which they run. */
std::vector<Case> cases();

/* Lines "name<TAB>text" of what does not depend on the machine: work done, shares of answers. */
void print_counts();

/* One line of results, tab-separated: name, minimum, median and target in ns for one evaluation, what. */
inline void print_row(const Case& c, std::vector<double> ns) {
  if (ns.empty()) return;
  std::sort(ns.begin(), ns.end());
  const std::size_t half = ns.size() / 2;
  const double median = ns.size() % 2 != 0 ? ns[half] : 0.5 * (ns[half - 1] + ns[half]);
  std::printf("%s\t%.1f\t%.1f\t%.0f\t%s\n", c.name.c_str(), ns.front(), median, c.target, c.what.c_str());
  std::fflush(stdout);
}

inline constexpr int kRepeats = 15;
inline constexpr double kSecondsOfRepeat = 0.05;  // at least

/* The compiler must believe that the value is used. */
inline void keep(double value) {
  static_cast<void>(*const_cast<volatile double*>(&value));
}

/*
 * The options that time nothing: --counts, and --passes N NAME, which runs a case N times: what one pass more
 * takes is exact under an instruction counter. True when there was one.
 */
inline bool run_untimed(int argc, char** argv) {
  const std::string option = argc > 1 ? argv[1] : "";
  if (option == "--counts") print_counts();
  if (option != "--passes" || argc < 4) return option == "--counts";
  const std::vector<Case> all = cases();
  const auto c = std::find_if(all.begin(), all.end(), [&](const Case& one) { return one.name == argv[3]; });
  if (c == all.end()) throw std::invalid_argument(std::string("no such case: ") + argv[3]);
  c->set_up();
  for (int k = std::stoi(argv[2]); k > 0; --k) keep(c->pass());
  return true;
}

}  // namespace kestrune::bench

#endif
