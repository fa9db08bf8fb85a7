// A host that fills its record with the library's own routines gets the answers of the null record: every flash
// at states of one, two and three phases, with and without free water.
#include <algorithm>
#include <cmath>

#include "report.hpp"
#include "tables.hpp"
#include "three_states.hpp"

namespace kestrune::sweep {
namespace {

constexpr double tolerance = 1e-9;
const char* const record_names[] = {"none", "exports", "properties forwarded", "flashes forwarded",
                                    "all forwarded"};

// An answer as a row of numbers of about the size 1, and its status.
struct Row {
  const char* flash = "";
  int status = 0;
  std::vector<double> values;

  void add(double value, double unit = 1.0) { values.push_back(value / unit); }
  void add(const Composition& part) { values.insert(values.end(), part.begin(), part.end()); }
};

// What stands beside a single phase is close to appearing at best, and may be any.
Row row_of(const char* flash, const Answer& a) {
  Row row{flash, a.status, {}};
  row.add(a.beta);
  if (a.beta == 0.0 || a.beta == 1.0) return row;
  row.add(a.x);
  row.add(a.y);
  return row;
}

Row row_of(const char* flash, const ThreeAnswer& a) {
  Row row{flash, a.status, {}};
  row.add(a.beta);
  row.add(a.V);
  row.add(a.y);
  if (a.V == 1.0) return row;
  row.add(a.a);
  row.add(a.b);
  return row;
}

// What is asked at a state; the values come from the state itself.
struct RoutinesQuestion {
  double T, P, value[2], W;
};

std::vector<Row> ask(Library& library, const Feed& feed, const RoutinesQuestion& s) {
  const char* const caloric[] = {"FlashLVatHP", "FlashLVatSP"};
  const char* const three_caloric[] = {"FlashLLVatHP", "FlashLLVatSP"};
  std::vector<Row> rows{row_of("FlashLVatTP", library.flash(feed, s.T, s.P)),
                        row_of("FlashLLVatTP", library.three(s.T, s.P, feed.z))};
  for (const int q : {0, 1}) {
    const Quantity quantity = q == 0 ? Quantity::enthalpy : Quantity::entropy;
    const double size = std::max(1.0, std::fabs(s.value[q]));
    const CaloricAnswer a = library.caloric(feed, quantity, s.value[q], s.P, 0);
    Row row = row_of(caloric[q], a.phases);
    row.add(a.T, s.T);
    row.add(a.phases.beta < 1 ? a.liquid : 0, size);
    row.add(a.phases.beta > 0 ? a.vapour : 0, size);
    rows.push_back(row);
    const ThreeCaloricAnswer b = library.three_caloric(quantity, s.value[q], s.P, feed.z, 0);
    row = row_of(three_caloric[q], b.phases);
    row.add(b.T, s.T);
    for (const double v : b.values) row.add(v, size);
    rows.push_back(row);
  }
  for (const Given given : {Given::pressure, Given::temperature}) {
    const bool of_T = given == Given::pressure;
    const SaturationQuestion question{given, s.W, of_T ? s.P : s.T};
    const SaturationAnswer a = library.saturation(feed, question);
    Row row{of_T ? "FlashLVatWP" : "FlashLVatWT", a.status, {}};
    row.add(std::log(std::max(a.found, 1e-300)));
    row.add(a.x);
    row.add(a.y);
    rows.push_back(row);
    const ThreePoint b = library.three_point(question, feed.z, 0);
    row = row_of(of_T ? "FlashLLVatWP" : "FlashLLVatWT", b.phases);
    row.add(std::log(std::max(b.found, 1e-300)));
    rows.push_back(row);
  }
  return rows;
}

// Enthalpy and entropy of what the three-phase flash says, or of the flash of two with free water.
bool value_at(Library& library, const Feed& feed, double T, double P, Quantity quantity, double& total) {
  const Answer a = library.flash(feed, T, P);
  double liquid = 0, vapour = 0;
  if (a.status != 0) return false;
  if (a.beta < 1 && !library.property(quantity, false, T, P, a.beta > 0 ? a.x : feed.z, liquid)) return false;
  if (a.beta > 0 && !library.property(quantity, true, T, P, a.beta < 1 ? a.y : feed.z, vapour)) return false;
  total = (1 - a.beta) * liquid + a.beta * vapour;
  return std::isfinite(total);
}

double difference(const Row& one, const Row& other) {
  if (one.status != other.status) return INFINITY;
  if (one.status != 0) return 0;  // what stands beside a failure is no answer
  double most = 0;
  for (size_t i = 0; i < one.values.size(); ++i) {
    const double apart = std::fabs(one.values[i] - other.values[i]);
    most = std::max(most, apart <= 1e300 ? apart : INFINITY);
  }
  return most;
}

void compare(Library& library, const Feed& feed, const RoutinesQuestion& s, Tally& tally, std::FILE* failures) {
  library.use(OwnRoutines::none);
  const std::vector<Row> expected = ask(library, feed, s);
  tally.count("states");
  for (int which = 1; which <= static_cast<int>(OwnRoutines::all); ++which) {
    library.use(static_cast<OwnRoutines>(which));
    const std::vector<Row> rows = ask(library, feed, s);
    for (size_t k = 0; k < rows.size(); ++k) {
      tally.count("calls");
      const double apart = difference(rows[k], expected[k]);
      if (!(apart > tolerance)) continue;
      const bool status = rows[k].status != expected[k].status;
      tally.blame({std::string(rows[k].flash) + ", " + record_names[which] + (status ? ": status" : "")});
      Line(failures) << feed.name << feed.free_water << rows[k].flash << record_names[which] << s.T << s.P
                     << s.value[0] << s.value[1] << s.W << rows[k].status << expected[k].status << apart
                     << feed.z;
    }
  }
  library.use(OwnRoutines::none);
}

}  // namespace

int run_routines(const Options& o, Library& library, std::FILE* failures) {
  std::fprintf(failures, "mixture,free_water,flash,record,T_K,P_atm,H,S,W,status,expected,apart,z\n");
  const std::vector<System> systems = three_phase_systems();
  const int count_of = o.states / static_cast<int>(systems.size()) + 1;
  return run_over(o, {{"calls", "states"}, {}}, systems, [&](const System& system, Tally& tally) {
    const Components components = read_components(o.data, system.feed.ids);
    const std::vector<ThreeState> states = draw_states(system, count_of, o.seed_of(system.feed));
    const bool wet = std::ranges::count(system.feed.ids, "water") > 0;
    for (size_t k = 0; k < states.size(); ++k) {
      Feed feed = system.feed;
      feed.z = states[k].z;
      feed.free_water = wet && k % 3 == 2;
      feed.solubility_a = 11.2;
      feed.solubility_b = 6290.0;
      library.prepare(feed, components);
      RoutinesQuestion s{states[k].T, states[k].P, {}, (k % 5) * 0.25};
      if (value_at(library, feed, s.T, s.P, Quantity::enthalpy, s.value[0]) &&
          value_at(library, feed, s.T, s.P, Quantity::entropy, s.value[1]))
        compare(library, feed, s, tally, failures);
    }
  });
}

}  // namespace kestrune::sweep
