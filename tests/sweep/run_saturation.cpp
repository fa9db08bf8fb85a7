// Bubble, dew and quality points at given T and at given P, asked at many values.
#include <algorithm>

#include "options.hpp"
#include "saturation_points.hpp"
#include "tables.hpp"

namespace {

using namespace kestrune::sweep;
using Result = SaturationVerdict::Result;

struct Tally {
  int points = 0, bubble = 0, dew = 0, between = 0, none = 0, liquids = 0, before = 0, missed = 0, unstable = 0,
      clamped = 0, wrong = 0;
  double balance = 0, fugacity = 0, tpd = 0, trip = 0, seconds = 0;
  std::map<std::string, int> groups;

  void add(const SaturationQuestion& q, const SaturationAnswer& a, const SaturationVerdict& v) {
    ++points;
    seconds += a.seconds;
    none += v.result == Result::none;
    liquids += v.result == Result::none_but_liquids;
    before += v.result == Result::split_before;
    missed += v.missed;
    if (v.result == Result::wrong) {
      ++wrong;
      ++groups[v.group];
    }
    if (v.result != Result::point && v.result != Result::quality_unstable) return;
    unstable += v.result == Result::quality_unstable;
    (q.W == 0 ? bubble : q.W == 1 ? dew : between) += 1;
    clamped += v.clamped > 0;
    balance = std::max(balance, v.balance);
    fugacity = std::max(fugacity, v.fugacity);
    if (v.result == Result::point) tpd = std::min(tpd, v.tpd);
    trip = std::max(trip, v.trip);
  }

  void add(const Tally& t) {
    points += t.points;
    bubble += t.bubble;
    dew += t.dew;
    between += t.between;
    none += t.none;
    liquids += t.liquids;
    before += t.before;
    missed += t.missed;
    unstable += t.unstable;
    clamped += t.clamped;
    wrong += t.wrong;
    balance = std::max(balance, t.balance);
    fugacity = std::max(fugacity, t.fugacity);
    tpd = std::min(tpd, t.tpd);
    trip = std::max(trip, t.trip);
    seconds += t.seconds;
    for (const auto& [name, count] : t.groups) groups[name] += count;
  }

  void print(const char* name, bool times) const {
    std::printf("%-26s %7d %7d %7d %7d %6d %6d %6d %6d %6d %6d %6d  %8.1e %8.1e %9.1e %8.1e", name, points,
                bubble, dew, between, none, liquids, before, missed, unstable, clamped, wrong, balance,
                fugacity, tpd, trip);
    if (times) std::printf(" %8.1f us", 1e6 * seconds / std::max(1, points));
    std::printf("\n");
    std::fflush(stdout);
  }
};

struct Asked {
  SaturationAnswer answer, back;
  SaturationVerdict verdict;
};

Asked ask(Library& library, const Sides& sides, const Components& components, const SaturationQuestion& q) {
  Asked out;
  out.answer = library.saturation(sides.feed, q);
  out.verdict = judge_saturation(sides, components, q, out.answer);
  if (out.verdict.result != Result::point && out.verdict.result != Result::quality_unstable) return out;
  SaturationQuestion reverse = q;
  reverse.given = q.given == Given::temperature ? Given::pressure : Given::temperature;
  reverse.value = out.answer.found;
  SaturationAnswer estimate = out.answer;
  estimate.found = q.value;
  out.back = library.saturation(sides.feed, reverse, &estimate);
  judge_return(sides, components, q, out.answer, out.back, out.verdict);
  return out;
}

void write_failure(std::FILE* file, const Feed& feed, const SaturationQuestion& q, const Asked& out) {
  std::fprintf(file, "%s,%s,%s,%.17g,%.17g,%d,%.17g,%d,%.17g,%.17g,\"%s\",\"%s\",", feed.name.c_str(), q.kind,
               q.given == Given::temperature ? "WT" : "WP", q.W, q.value, out.answer.status, out.answer.found,
               out.back.status, out.back.found, out.verdict.other, out.verdict.group.c_str(),
               out.verdict.reason.c_str());
  write_values(file, feed.z);
  std::fprintf(file, "\n");
  std::fflush(file);
}

Tally sweep_feed(const Options& o, Library& library, const Feed& feed, int count, std::FILE* failures) {
  const Components components = read_components(o.data, feed.ids);
  const Sides sides(feed, components);
  const StatePlan plan{count, o.jobs, o.critical_steps, o.seed_of(feed)};
  const std::vector<SaturationQuestion> questions = make_saturation_questions(sides, plan);
  library.prepare(feed, components);
  std::vector<Asked> asked(questions.size());
  parallel_for(static_cast<int>(questions.size()), o.jobs,
               [&](int k) { asked[k] = ask(library, sides, components, questions[k]); });
  Tally tally;
  for (size_t k = 0; k < questions.size(); ++k) {
    tally.add(questions[k], asked[k].answer, asked[k].verdict);
    if (asked[k].verdict.result == Result::wrong || asked[k].verdict.missed)
      write_failure(failures, feed, questions[k], asked[k]);
  }
  tally.print(feed.name.c_str(), o.times);
  return tally;
}

}  // namespace

namespace kestrune::sweep {

int run_saturation(const Options& o, Library& library, std::FILE* failures) {
  std::fprintf(failures,
               "mixture,kind,export,W,given,status,answer,status_back,answer_back,judge,group,reason,z\n");
  std::vector<Feed> feeds;
  for (const Feed& feed : all_feeds()) {
    if (!feed.free_water) feeds.push_back(feed);
  }
  const int count = o.states / static_cast<int>(feeds.size()) + 1;
  std::printf("%-26s %7s %7s %7s %7s %6s %6s %6s %6s %6s %6s %6s  %8s %8s %9s %8s\n", "mixture", "points",
              "bubble", "dew", "between", "none", "2 liq", "117", "missed", "unst", "clamp", "wrong", "balance",
              "ln f", "tpd", "trip");
  Tally total;
  for (const Feed& feed : feeds) {
    if (!o.mixture.empty() && feed.name != o.mixture) continue;
    total.add(sweep_feed(o, library, feed, count, failures));
  }
  total.print("all", o.times);
  print_groups(total.groups);
  std::printf("%d passed, %d failed\n", total.points - total.wrong, total.wrong);
  return total.points > 0 ? total.wrong : -1;
}

}  // namespace kestrune::sweep
