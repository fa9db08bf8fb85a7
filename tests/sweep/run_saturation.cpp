// Bubble, dew and quality points at given T and at given P, asked at many values.
#include "report.hpp"
#include "saturation_points.hpp"
#include "tables.hpp"

namespace kestrune::sweep {
namespace {

using Result = SaturationVerdict::Result;

struct Asked {
  SaturationAnswer answer, back;
  SaturationVerdict verdict;
};

void count(const SaturationQuestion& q, const Asked& asked, Tally& tally) {
  const SaturationVerdict& v = asked.verdict;
  tally.count("points");
  tally.seconds["point"].push_back(asked.answer.seconds);
  tally.count("none", v.result == Result::none);
  tally.count("2 liq", v.result == Result::none_but_liquids);
  tally.count("117", v.result == Result::split_before);
  tally.count("missed", v.missed);
  if (v.result == Result::wrong) tally.blame({v.group});
  if (v.result != Result::point && v.result != Result::quality_unstable) return;
  tally.count("unst", v.result == Result::quality_unstable);
  tally.count(q.W == 0 ? "bubble" : q.W == 1 ? "dew" : "between");
  tally.count("clamp", v.clamped > 0);
  tally.size("balance", v.balance);
  tally.size("ln f", v.fugacity);
  if (v.result == Result::point) tally.size("-tpd", -v.tpd);
  tally.size("trip", v.trip);
}

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

void sweep_saturation(const Options& o, Library& library, const Feed& feed, int count_of, std::FILE* failures,
                      Tally& tally) {
  const Components components = read_components(o.data, feed.ids);
  const Sides sides(feed, components);
  const std::vector<SaturationQuestion> questions =
      make_saturation_questions(sides, {count_of, o.jobs, o.critical_steps, o.seed_of(feed)});
  library.prepare(feed, components);
  std::vector<Asked> asked(questions.size());
  parallel_for(static_cast<int>(questions.size()), o.jobs,
               [&](int k) { asked[k] = ask(library, sides, components, questions[k]); });
  for (size_t k = 0; k < questions.size(); ++k) {
    const SaturationQuestion& q = questions[k];
    const auto& [answer, back, verdict] = asked[k];
    count(q, asked[k], tally);
    if (verdict.result == Result::wrong || verdict.missed)
      Line(failures) << feed.name << q.kind << (q.given == Given::temperature ? "WT" : "WP") << q.W << q.value
                     << answer.status << answer.found << back.status << back.found << verdict.other
                     << verdict.group << verdict.reason << feed.z;
  }
}

}  // namespace

int run_saturation(const Options& o, Library& library, std::FILE* failures) {
  std::fprintf(failures,
               "mixture,kind,export,W,given,status,answer,status_back,answer_back,judge,group,reason,z\n");
  std::vector<Feed> feeds = all_feeds();
  std::erase_if(feeds, [](const Feed& feed) { return feed.free_water; });
  const int count_of = o.states / static_cast<int>(feeds.size()) + 1;
  const Columns columns{
      {"points", "bubble", "dew", "between", "none", "2 liq", "117", "missed", "unst", "clamp"},
      {"balance", "ln f", "-tpd", "trip"}};
  return run_over(o, columns, feeds, [&](const Feed& feed, Tally& tally) {
    sweep_saturation(o, library, feed, count_of, failures, tally);
  });
}

}  // namespace kestrune::sweep
