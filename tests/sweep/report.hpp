// What every run of the sweep prints and writes: a line of counts and largest errors for each system and their sum,
// what was wrong, and a file of the wrong answers.
#ifndef KESTRUNE_TESTS_SWEEP_REPORT_HPP
#define KESTRUNE_TESTS_SWEEP_REPORT_HPP
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "options.hpp"
#include "states.hpp"

namespace kestrune::sweep {

// The columns of a run; the first counts what was judged.
struct Columns {
  std::vector<const char*> counts, sizes;
};

struct Tally {
  std::map<std::string, int> counts, wrong;  // wrong: by what is wrong
  std::map<std::string, double> sizes;       // the largest
  std::map<std::string, std::vector<double>> seconds;
  int bad = 0;

  void count(const std::string& column, int more = 1) { counts[column] += more; }
  void size(const std::string& column, double value) {
    sizes[column] = value > sizes[column] ? value : sizes[column];
  }
  // One more that is wrong, in one or several ways.
  void blame(const std::vector<std::string>& groups);
  void add(const Tally& tally);
};

void print_head(const Columns& columns);
void print_line(const Columns& columns, const std::string& name, const Tally& tally);
// The sum, what was wrong and, if wanted, the times of the calls. Returns the number of wrong ones, -1 for none at all.
int finish(const Options& options, const Columns& columns, const Tally& total);

inline const std::string& name_of(const Feed& feed) {
  return feed.name;
}
template <class System>
const std::string& name_of(const System& system) {
  return system.feed.name;
}

// body(system, tally) for all systems, or for the one that is asked for.
template <class System, class Body>
int run_over(const Options& o, const Columns& columns, const std::vector<System>& systems, const Body& body) {
  print_head(columns);
  Tally total;
  for (const System& system : systems) {
    if (!o.mixture.empty() && name_of(system) != o.mixture) continue;
    Tally tally;
    body(system, tally);
    print_line(columns, name_of(system), tally);
    total.add(tally);
  }
  return finish(o, columns, total);
}

inline Question question_of(const Feed& f, const Components& components, const State& s) {
  return {&components, f.z, s.T, s.P, f.free_water, f.solubility_a, f.solubility_b};
}

// A line of the file of wrong answers: texts between quotes, a composition between semicolons.
class Line {
 public:
  explicit Line(std::FILE* file) : file_(file) {}
  ~Line();
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;
  Line& operator<<(const std::string& text);
  Line& operator<<(const char* text) { return *this << std::string(text); }
  Line& operator<<(double value);
  Line& operator<<(const Composition& values);

 private:
  std::FILE* file_;
  bool first_ = true;
};

}  // namespace kestrune::sweep

#endif
