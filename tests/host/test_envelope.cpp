// Curves for drawing, the chart itself, lines from files.
#include <gtest/gtest.h>

#include <cstdio>

#include "commands/envelope_report.hpp"
#include "support.hpp"

using namespace kestrune::host;

namespace {

TEST(EnvelopeCurve, PiecesShareTheirEnds) {
  const Curve curve{1.0,
                    KV_OK,
                    {{250, 1e5, 1.0},
                     {260, 2e5, 1.0},
                     {255, 3e5, 0.5},
                     {250, 2.9e5, 0.0},
                     {249, 3e5, 4.0},
                     {248, 3.1e5, 2.0},
                     {150, 1e5, 0.0},
                     {151, 1.1e5, 0.0}},
                    {},
                    {}};
  const auto pieces = pieces_of(curve);
  ASSERT_EQ(pieces.size(), 5u);
  EXPECT_EQ(pieces[0].kind, Piece::Kind::dew);
  EXPECT_EQ(pieces[0].points.size(), 3u);
  EXPECT_EQ(pieces[1].kind, Piece::Kind::bubble);
  EXPECT_EQ(pieces[1].points.front().T, 255.0);
  EXPECT_EQ(pieces[2].kind, Piece::Kind::liquids);
  EXPECT_EQ(pieces[3].kind, Piece::Kind::not_stable);
  EXPECT_EQ(pieces[4].points.front().T, 150.0);  // begins elsewhere
  EXPECT_EQ(kind_in_words(curve, curve.points[2]), "critical");
  // The critical point that the library returns is not shown twice.
  Curve several = curve;
  several.points.push_back({180, 4e6, 0.5});
  const EnvelopeReport report{Mixture{}, unit_system("C,bar"), {several}, {KV_OK, 255.0, 3e5, 1e-4, 0.3}};
  ASSERT_EQ(further_critical(report).size(), 1u);
  EXPECT_EQ(further_critical(report)[0].T, 180.0);
  EXPECT_EQ(kind_in_words(curve, curve.points[5]), "bubble (not stable)");
}

TEST(Chart, RangesBecomeWholeSteps) {
  const double cases[][5] = {
      {-14.2, 93.0, -20.0, 100.0, 20.0}, {0.0, 84.0, 0.0, 90.0, 10.0}, {3.0, 3.0, 3.0, 4.0, 0.1}};
  for (const auto& c : cases) {
    double low = c[0], high = c[1];
    EXPECT_NEAR(round_range(low, high), c[4], 1e-12);
    EXPECT_NEAR(low, c[2], 1e-9);
    EXPECT_NEAR(high, c[3], 1e-9);
  }
}

TEST(Chart, LinesAreCutAtTheFrameAndTextIsEscaped) {
  Chart chart;
  chart.title = "a < b & \"c\"";
  chart.x_high = chart.y_high = 10.0;
  chart.lines.push_back({"line", "#000000", 1.0, false, {-5.0, 5.0, 5.0}, {5.0, 5.0, 25.0}});
  const std::string svg = svg_of(chart);
  EXPECT_TRUE(host_test::contains(svg, "a &lt; b &amp; &quot;c&quot;"));
  // In at the left edge, out at the top: 80 .. 690 by 52 .. 528.
  EXPECT_TRUE(host_test::contains(svg, "d=\"M80.00 290.00L385.00 290.00L385.00 52.00\""));
  EXPECT_TRUE(host_test::contains(gnuplot_script(chart, "a\"b.png"), "set output \"a\\\"b.png\""));
}

TEST(Overlay, ReadsBothForms) {
  const UnitSystem units = unit_system("C,bar");
  const std::string name = testing::TempDir() + "kestrune_overlay.csv";
  const auto write = [&](const char* text) { std::ofstream(name) << text; };
  write("T,P\n-10,20\n0,30\n,\n10,45\n");
  Overlay line = read_overlay(name + ":hydrates", units);
  EXPECT_EQ(line.label, "hydrates");
  EXPECT_EQ(line.T, (std::vector<double>{-10, 0, 10}));
  write("pressure_Pa,x,temperature_K\n100000,1,273.15\n200000,1,283.15\n");
  line = read_overlay(name, units);
  EXPECT_EQ(line.label, "kestrune_overlay.csv");
  EXPECT_NEAR(line.T[1], 10.0, 1e-9);
  EXPECT_NEAR(line.P[1], 2.0, 1e-9);
  write("nothing\n");
  EXPECT_TRUE(host_test::contains(host_test::error_of([&] { read_overlay(name, units); }), "has no line"));
  std::remove(name.c_str());
  EXPECT_TRUE(host_test::contains(host_test::error_of([&] { read_overlay(name, units); }), "cannot read"));
}

}  // namespace
